#include "qdclgl/server/records/user.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(UserInfo)
QD_DEFINE_MEMBERS(UserUpdate)

namespace {

constexpr std::string_view kChange = "change users";
constexpr std::string_view kRead = "read users";
constexpr std::string_view kPassword = "FPassword";
constexpr std::string_view kRoles = "FRoles";
constexpr Column kSentPassword{kPassword, ColumnType::kText};
constexpr Column kSentRoles{kRoles, ColumnType::kText};

// Vouchers hold the ids of users in 16 bits.
constexpr Long kLastUserID = 32767;

std::string RolesOf(const Variant& bits) {
  return RolesText(static_cast<unsigned>(bits.As<Long>()));
}

// As the table holds users: with the password's hash, and the roles as bits.
const RecordTable& Users() {
  using enum ColumnType;
  static const RecordTable kTable({
      .subject = "User",
      .noun = "User",
      .table = "t_User",
      .id = "FUserID",
      .query = "SELECT * FROM t_User",
      .order = "FName",
      .columns = {{{"FName", kText}},
                  {{kPassword, kText}, Keeper::kServer},
                  {{kRoles, kLong}, Keeper::kCaller, {}, RolesOf},
                  {{"FDisabled", kBoolean}}},
  });
  return kTable;
}

// As callers see them.
constexpr Column kShown[] = {
    {"FUserID", ColumnType::kLong},      {"FVersion", ColumnType::kLong},
    {"FName", ColumnType::kText},        {kRoles, ColumnType::kText},
    {"FDisabled", ColumnType::kBoolean},
};

// The users with their roles as text, so that filters and sorts work on what callers see.
const std::string& ShownQuery() {
  static const std::string kQuery = [] {
    std::string roles = "''";
    for (unsigned role = 1; role <= static_cast<unsigned>(Role::kAdministrator); role *= 2) {
      roles += " || CASE WHEN (FRoles & " + std::to_string(role) + ") <> 0 THEN ', " +
               RolesText(role) + "' ELSE '' END";
    }
    return "SELECT FUserID, FVersion, FName, substr(" + roles +
           ", 3) AS FRoles, FDisabled"
           " FROM t_User";
  }();
  return kQuery;
}

// The sent row as the table has its columns.
Ref<Dictionary> WithRoleBits(const Ref<Dictionary>& sent) {
  if (!sent) RaiseError(error_number::kObjectNotSet);
  const Ref<Dictionary> row = sent->Clone();
  const auto roles = Normalized(kSentRoles, sent->Value(kRoles)).As<String>();
  row->Put(kRoles, static_cast<Long>(RolesFrom(roles)));
  return row;
}

// Behind every change that may have taken the last one.
void RequireAdministrator(Database& db, const std::string& called) {
  const auto left =
      db.QueryValue<Long>("SELECT COUNT(*) FROM t_User WHERE FDisabled = 0 AND (FRoles & ?) <> 0",
                          static_cast<Long>(Role::kAdministrator));
  if (left != 0) return;
  Refuse(refusal::kInUse, called + ": this is the last administrator.");
}

void Save(Database& db, RecordSave& save) {
  save.RequireText("FName");
  save.RequireUnique("FName");
  save.Write();
  const std::string called = Users().Called(save.record());
  if (save.id() > kLastUserID) {
    Refuse(refusal::kBadValue,
           called + ": there is no id left; they go to " + std::to_string(kLastUserID) + ".");
  }
  RequireAdministrator(db, called);
  save.Commit();
}

void CopyIdAndVersion(const Dictionary& from, Dictionary& to) {
  for (const std::string_view key : {"FUserID", "FVersion"}) to.Put(key, from.Value(key));
}

}  // namespace

Ref<Recordset> UserInfo::GetList(std::string_view PropsString, const String& Filter,
                                 const String& Sort) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return FetchList(caller.db, {ShownQuery(), kShown, "FName"}, Filter, Sort);
}

Ref<Dictionary> UserInfo::GetDetail(std::string_view PropsString, const Long& UserID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  const Ref<Recordset> list = FetchList(caller.db, {ShownQuery(), kShown, "FName"},
                                        "FUserID = " + std::to_string(UserID), "");
  return list->Eof() ? nullptr : list->Row();
}

Long UserUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  const Ref<Dictionary> row = WithRoleBits(dict);
  // Hashing takes its time on purpose, so it is done before others have to wait.
  const std::string hash =
      HashedPassword(Normalized(kSentPassword, dict->Value(kPassword)).As<String>());
  RecordSave save(caller, Users(), row);
  save.record().Put(kPassword, hash);
  Save(caller.db, save);
  CopyIdAndVersion(*row, *dict);
  return save.id();
}

void UserUpdate::Update(std::string_view PropsString, const Long& UserID,
                        const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  const Ref<Dictionary> row = WithRoleBits(dict);
  RecordSave save(caller, Users(), row, UserID);
  if (dict->Contains(kPassword)) {
    Refuse(refusal::kBadValue,
           Users().Called(save.stored()) + ": the password is changed by SetPassword alone.");
  }
  Save(caller.db, save);
  CopyIdAndVersion(*row, *dict);
}

void UserUpdate::SetPassword(std::string_view PropsString, const Long& UserID,
                             std::string_view Password) {
  const Caller caller = Enter(PropsString, Role::kReader, "change a password");
  const Long own = caller.session->user_id;
  const Long id = UserID == 0 ? own : UserID;
  if (id != own) Enter(PropsString, Role::kAdministrator, "change the passwords of others");
  const std::string hash = HashedPassword(Password);
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> user = Users().Require(caller.db, id);
  caller.db.Execute("UPDATE t_User SET FPassword = ? WHERE FUserID = ?", hash, id);
  const std::string name = RecordTable::NameOf(*user);
  WriteAudit(caller, {.subject = "User", .record_id = id, .record = name, .action = "SetPassword"});
  transaction.Commit();
}

void UserUpdate::Delete(std::string_view PropsString, const Long& UserID,
                        std::string_view MachineName, std::string_view IPAddress) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> user = Users().Require(caller.db, UserID);
  Users().Remove(caller.db, UserID);
  RequireAdministrator(caller.db, Users().Called(*user));
  AuditDeletion(caller, Users(), *user, MachineName, IPAddress);
  transaction.Commit();
}

}  // namespace qdclgl::server
