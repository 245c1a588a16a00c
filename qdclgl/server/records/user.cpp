// The users of the books: FName, FRoles ("preparer, checker") and FDisabled. Their passwords never
// leave the server. Some enabled administrator remains, whatever happens to users; a call that
// would leave none is refused as InUse.
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/kept_session.h"
#include "qdclgl/server/access/login_attempt.h"
#include "qdclgl/server/access/password.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/sha256.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kPassword = "FPassword";
constexpr std::string_view kRoles = "FRoles";
constexpr Column kSentPassword{kPassword, ColumnType::kText};
constexpr Column kSentRoles{kRoles, ColumnType::kText};

constexpr Right kOwnPassword{Role::kReader, "change a password"};
constexpr Right kPasswordsOfOthers{Role::kAdministrator, "change the passwords of others"};

// Vouchers hold the ids of users in 16 bits.
constexpr Long kLastUserID = 32767;

// A password's hash never leaves its column. This tells whether it is the same one, and nothing
// that a password could be tried against: the hash has a salt of its own.
std::string FingerprintOf(const Variant& hash) {
  constexpr std::size_t kDigits = 16;
  return "fingerprint " + Sha256Of(hash.TextView()).substr(0, kDigits);
}

std::string RolesOf(const Variant& bits) {
  return RolesText(static_cast<unsigned>(bits.As<Long>()));
}

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
template <class Change>
void RequireAdministrator(const Change& change) {
  const auto left = change.db().template QueryValue<Long>(
      "SELECT COUNT(*) FROM t_User WHERE FDisabled = 0 AND (FRoles & ?) <> 0",
      static_cast<Long>(Role::kAdministrator));
  if (left != 0) return;
  change.Refuse(refusal::kInUse, "this is the last administrator.");
}

// Who gets other rights, another name or another password logs in anew.
void Follow(RecordSave& save) {
  if (!save.is_new() &&
      (save.Changes(kRoles) || save.Changes("FName") || save.Changes("FDisabled"))) {
    EndKeptSessionsOf(save.db(), save.id());
  }
  if (save.id() > kLastUserID) {
    save.Refuse(refusal::kBadValue,
                "there is no id left; they go to " + std::to_string(kLastUserID) + ".");
  }
  RequireAdministrator(save);
}

void Remove(RecordRemoval& removal) {
  removal.Remove();
  EndKeptSessionsOf(removal.db(), removal.id());
  RequireAdministrator(removal);
}

// What is kept of the password that comes with a new user; none for a row without one.
std::string SentHash(const Dictionary& sent) {
  const Variant& password = sent.Value(kPassword);
  if (password.IsEmpty() || password.IsNull()) return std::string(kNoHash);
  return HashedPassword(Normalized(kSentPassword, password).As<String>());
}

void RequireOldPassword(const Caller& caller, std::string_view password) {
  const Session& session = *caller.session;
  LoginAttempt attempt(caller.db, session.user_name);
  const auto hash = caller.db.QueryValue<std::string>(
      "SELECT FPassword FROM t_User WHERE FUserID = ?", session.user_id);
  attempt.Require(caller, hash.value_or(std::string(kNoHash)), password, true,
                  "The old password is wrong.");
}

void CopyIdAndVersion(const Dictionary& from, Dictionary& to) {
  for (const std::string_view key : {"FUserID", "FVersion"}) to.Put(key, from.Value(key));
}

// ---- The components ----

class UserInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const String& Filter = {}, const String& Sort = {},
             const Variant& Page = Missing),
            "The users. {page} BadFilter, BadSort, BadValue.")
  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& UserID),
            "A user, Nothing when there is none.")
};

class UserUpdate final : public RecordUpdate {
  QD_BASE_MEMBERS(RecordUpdate)

 public:
  using RecordUpdate::RecordUpdate;

  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new user, with the password under FPassword, which may be an empty text; "
            "without the key nobody logs in as the user before a password is set. Id and version "
            "come back in the row too. Administrators only. Errors: Required, NameTaken, "
            "BadValue.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& UserID, const Ref<Dictionary>& dict),
            "Saves a user, all but the password; the new version comes back in the row. "
            "Administrators only. Errors: NotFound, NoVersion, Changed, InUse, and those of "
            "Create.")
  QD_METHOD(void, SetPassword,
            (std::string_view PropsString, const Long& UserID, std::string_view Password,
             std::string_view OldPassword = "", Boolean NoPassword = false),
            "Gives a user another password: oneself with id 0 or the own one, for which the old "
            "one is asked; others by administrators, who need none. An empty password only with "
            "NoPassword. Errors: NotFound, Required, LoginRefused, LoginDelayed.")
  QD_INHERITED(Delete)
};

Ref<Recordset> UserInfo::GetList(std::string_view PropsString, const String& Filter,
                                 const String& Sort, const Variant& Page) {
  const Caller caller = Enter(PropsString, kind().reading());
  return FetchList(caller.db, {ShownQuery(), kind().CallersColumns(), "FName"}, Filter, Sort, {},
                   PageIn(Page));
}

Ref<Dictionary> UserInfo::GetDetail(std::string_view PropsString, const Long& UserID) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Ref<Recordset> list = FetchList(caller.db, {ShownQuery(), kind().CallersColumns(), "FName"},
                                        "FUserID = " + std::to_string(UserID), "");
  return list->Eof() ? nullptr : list->Row();
}

Long UserUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kind().writing());
  const Ref<Dictionary> row = WithRoleBits(dict);
  // Hashing takes its time on purpose, so it is done before others have to wait.
  const std::string hash = SentHash(*dict);
  RecordSave save(caller, kind(), row);
  save.record().Put(kPassword, hash);
  save.Run();
  CopyIdAndVersion(*row, *dict);
  return save.id();
}

void UserUpdate::Update(std::string_view PropsString, const Long& UserID,
                        const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kind().writing());
  const Ref<Dictionary> row = WithRoleBits(dict);
  RecordSave save(caller, kind(), row, UserID);
  if (dict->Contains(kPassword)) {
    Refuse(refusal::kBadValue,
           kind().Called(save.stored()) + ": the password is changed by SetPassword alone.");
  }
  save.Run();
  CopyIdAndVersion(*row, *dict);
}

void UserUpdate::SetPassword(std::string_view PropsString, const Long& UserID,
                             std::string_view Password, std::string_view OldPassword,
                             Boolean NoPassword) {
  const Long own = Enter(PropsString, kOwnPassword).session->user_id;
  const Long id = UserID == 0 ? own : UserID;
  const Caller caller = Enter(PropsString, id == own ? kOwnPassword : kPasswordsOfOthers);
  RequirePassword(Password, NoPassword);
  if (id == own) RequireOldPassword(caller, OldPassword);
  const std::string hash = HashedPassword(Password);
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> user = kind().Require(caller.db, id);
  const std::optional<TrailRow> before = kind().TrailOf(caller.db, id);
  caller.db.Execute("UPDATE t_User SET FPassword = ? WHERE FUserID = ?", hash, id);
  const std::string name = kind().NameOf(*user);
  LoginAttempt::Forget(caller.db, name);
  EndKeptSessionsOf(caller.db, id);
  const std::string changes = kind().Changes(caller.db, id, before);
  WriteAudit(caller, {.subject = kind().subject(),
                      .record_id = id,
                      .record = name,
                      .action = "SetPassword",
                      .changes = changes});
  transaction.Commit();
}

}  // namespace

const MasterData& Users() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLUser.User",
      .noun = "user",
      .nouns = "users",
      .list = {"users", "Lists the users of the books", "FUserID FName FRoles FDisabled"},
      .table = "t_User",
      .id = "FUserID",
      .key = {"FName"},
      .columns = {{{"FName", kText}},
                  {{kPassword, kText}, Keeper::kSecret, {}, FingerprintOf},
                  {.column = {kRoles, kLong}, .shown = RolesOf, .sent = kText},
                  {{"FDisabled", kBoolean}}},
      .order = "FName",
      .follow = Follow,
      .remove = Remove,
      .info = RecordClassOf<UserInfo>(),
      .update = RecordClassOf<UserUpdate>(),
      .rights = {{"SetPassword", kOwnPassword}},
      .helps = {{"Delete", "Removes a user; vouchers and the audit trail keep the name. "
                           "Administrators only. NotFound, InUse."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
