#include "qdclgl/server/records/account.h"

#include <algorithm>
#include <set>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/record.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(AccountInfo)
QD_DEFINE_MEMBERS(AccountItemInfo)
QD_DEFINE_MEMBERS(AccountUpdate)

namespace {

constexpr std::string_view kChange = "change accounts";
constexpr std::string_view kRead = "read accounts";
constexpr std::string_view kItems = "_Items";
constexpr std::size_t kLongestNumber = 40;

const RecordTable& Accounts() {
  using enum ColumnType;
  using enum Keeper;
  static const RecordTable kTable({
      .subject = "Account",
      .noun = "Account",
      .table = "t_Account",
      .id = "FAccountID",
      .query = "SELECT a.*, c.FNumber AS FCurrencyNumber, c.FName AS FCurrencyName"
               " FROM t_Account a JOIN t_Currency c ON c.FCurrencyID = a.FCurrencyID",
      .order = "FNumber",
      .deleted = "FDelete",
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FFullName", kText}, kServer},
                  {{"FLevel", kInteger}, kServer},
                  {{"FDetail", kBoolean}, kServer},
                  {{"FParentID", kLong}, kServer},
                  {{"FRootID", kLong}, kServer},
                  {{"FDC", kLong}},
                  {{"FGroupID", kLong}},
                  {{"FCurrencyID", kLong}, kCaller, kBaseCurrency},
                  {{"FCurrencyNumber", kText}, kJoined},
                  {{"FCurrencyName", kText}, kJoined},
                  {{"FHelperCode", kText}},
                  {{"FQuantities", kBoolean}},
                  {{"FMeasureUnitID", kLong}},
                  {{"FMeasureUnit", kText}},
                  {{"FUnitGroupID", kLong}},
                  {{"FUnitGroup", kText}, kServer},
                  {{"FIsCash", kBoolean}},
                  {{"FIsBank", kBoolean}},
                  {{"FIsBudget", kBoolean}},
                  {{"FIsBusi", kBoolean}},
                  {{"FIsCashFlow", kBoolean}},
                  {{"FJournal", kBoolean}},
                  {{"FContact", kBoolean}},
                  {{"FAdjustRate", kBoolean}},
                  {{"FAcctint", kBoolean}},
                  {{"FintRate", kSingle}},
                  {{"FInterest", kBoolean}},
                  {{"FLastIntDate", kDate}},
                  {{"FAcnt", kBoolean}},
                  {{"FAcntID", kLong}, kServer},
                  {{"FAcntType", kLong}},
                  {{"FIsAcnt", kBoolean}, kServer},
                  {{"FControl", kLong}, kServer},
                  {{"FControlSystem", kLong}},
                  {{"FDetailID", kLong}, kServer},
                  {{"FEarnAccountID", kLong}},
                  {{"FSpecialType", kInteger}},
                  {{"FMessage", kText}},
                  {{"FViewMsg", kBoolean}},
                  {{"FDelete", kBoolean}},
                  {{"UUID", kText}}},
      .further_keys = {kItems},
  });
  return kTable;
}

constexpr Column kItemColumns[] = {
    {"FAccountID", ColumnType::kLong},
    {"FItemClassID", ColumnType::kLong},
    {"FItemClassNumber", ColumnType::kText},
    {"FItemClassName", ColumnType::kText},
};

// "1000" for "1000.01", "" for a number at level 1.
std::string ParentNumber(const std::string& number) {
  const auto dot = number.rfind('.');
  return dot == number.npos ? std::string() : number.substr(0, dot);
}

// Segments of letters, digits, "_" and "-", with dots between them.
bool IsAccountNumber(std::string_view number) {
  if (Utf16Length(number) > kLongestNumber) return false;
  for (std::size_t first = 0; first <= number.size();) {
    const std::size_t end = std::min(number.find('.', first), number.size());
    std::string segment(number.substr(first, end - first));
    std::erase(segment, '-');
    if (first == end || !IsValidCode(segment, 0, true)) return false;
    first = end + 1;
  }
  return true;
}

// ---- The tree ----

bool HasChildren(Database& db, Long id, bool deleted_too) {
  return db
      .QueryValue<int>(deleted_too
                           ? "SELECT 1 FROM t_Account WHERE FParentID = ? LIMIT 1"
                           : "SELECT 1 FROM t_Account WHERE FParentID = ? AND FDelete = 0 LIMIT 1",
                       id)
      .has_value();
}

void RefuseChildren(Database& db, const Dictionary& account, Long id, bool deleted_too) {
  if (!HasChildren(db, id, deleted_too)) return;
  Refuse(refusal::kHasChildren, Accounts().Called(account) + ": it has sub-accounts.");
}

// An account without accounts below is a detail account.
void KeepDetailFlag(Database& db, Long id) {
  db.Execute(
      "UPDATE t_Account SET FDetail = CASE WHEN EXISTS (SELECT 1 FROM t_Account child"
      " WHERE child.FParentID = t_Account.FAccountID) THEN 0 ELSE 1 END WHERE FAccountID = ?",
      id);
}

// Gives the record its place below the account that its number names. With `moves` the account is
// new there, and the one above must be able to take it.
void PlaceInTree(Database& db, RecordSave& save, bool moves) {
  Dictionary& record = save.record();
  const std::string called = Accounts().Called(record);
  const std::string parent_number = ParentNumber(save.Text("FNumber"));
  if (parent_number.empty()) {
    record.Put("FParentID", Long{0});
    record.Put("FRootID", save.id());  // known only afterwards when the account is new
    record.Put("FLevel", Integer{1});
    record.Put("FFullName", record.Value("FName"));
    return;
  }
  const Long parent_id = Accounts().IdWith(db, "FNumber", parent_number);
  if (parent_id == 0 || parent_id == save.id()) {
    Refuse(refusal::kNoParent, called + ": there is no account " + parent_number + " above it.");
  }
  const Ref<Dictionary> parent = Accounts().Require(db, parent_id);
  if (parent->Value("FDelete").As<Boolean>() && !record.Value("FDelete").As<Boolean>()) {
    Refuse(refusal::kNoParent, called + ": account " + parent_number + " above it is deleted.");
  }
  if (moves && IsUsedInVouchers(db, "FAccountID", parent_id)) {
    Refuse(refusal::kParentInUse,
           called + ": account " + parent_number + " above it has lines in vouchers.");
  }
  record.Put("FParentID", parent_id);
  record.Put("FRootID", parent->Value("FRootID"));
  record.Put("FLevel", static_cast<Integer>(parent->Value("FLevel").As<Long>() + 1));
  record.Put("FFullName", parent->Value("FFullName").As<String>() + "_" + save.Text("FName"));
}

// The full names of the accounts below begin with that of the account itself.
void RenameBelow(Database& db, const RecordSave& save) {
  const auto old_name = save.stored().Value("FFullName").As<String>();
  const std::string prefix = save.Text("FNumber") + ".";
  db.Execute("UPDATE t_Account SET FFullName = CAST(? AS TEXT) ||"
             " substr(FFullName, length(CAST(? AS TEXT)) + 1)"
             " WHERE substr(FNumber, 1, length(CAST(? AS TEXT))) = ?",
             save.Text("FFullName"), old_name, prefix, prefix);
}

// ---- Item classes ----

void ReplaceItems(Database& db, Long account_id, const std::string& called, const Variant& items) {
  db.Execute("DELETE FROM t_AccountItem WHERE FAccountID = ?", account_id);
  const auto refuse = [&](const std::string& reason) {
    Refuse(refusal::kBadValue, called + ": " + reason);
  };
  const auto* list =
      items.IsObject() ? dynamic_cast<const Vector*>(items.ObjectPointer()) : nullptr;
  if (list == nullptr) refuse("_Items is no Vector.");
  const std::span<const Column> columns = std::span(kItemColumns).subspan(1);
  std::set<Long> classes;
  for (std::size_t i = 0; i < list->size(); ++i) {
    const Variant& element = list->at(i);
    const auto* item =
        element.IsObject() ? dynamic_cast<const Dictionary*>(element.ObjectPointer()) : nullptr;
    if (item == nullptr) refuse("an element of _Items is no Dictionary.");
    for (std::uint32_t key = 0; key < item->size(); ++key) {
      if (std::ranges::find(kItemColumns, std::string_view(item->key_at(key)), &Column::name) ==
          std::end(kItemColumns)) {
        refuse("there is no column \"" + item->key_at(key) + "\" in an element of _Items.");
      }
    }
    const auto cell = [&](const Column& column) {
      return Normalized(column, item->Value(column.name));
    };
    const auto id = cell(columns[0]).As<Long>();
    if (id == 0) refuse("an element of _Items has no FItemClassID.");
    if (!classes.insert(id).second) {
      refuse("item class " + std::to_string(id) + " stands twice in _Items.");
    }
    db.Execute(
        "INSERT INTO t_AccountItem (FAccountID, FItemClassID, FItemClassNumber, FItemClassName)"
        " VALUES (?, ?, ?, ?)",
        account_id, id, cell(columns[1]).As<String>(), cell(columns[2]).As<String>());
  }
}

// ---- Saving ----

void CheckCurrency(Database& db, const RecordSave& save, const std::string& called) {
  const Long id = save.Number("FCurrencyID");
  const auto deleted =
      db.QueryValue<bool>("SELECT FDeleted FROM t_Currency WHERE FCurrencyID = ?", id);
  if (!deleted || (*deleted && save.Changes("FCurrencyID"))) {
    Refuse(refusal::kBadCurrency,
           called + ": there is no currency " + std::to_string(id) + (deleted ? " in use." : "."));
  }
}

void Save(Database& db, RecordSave& save, const Dictionary& sent) {
  Dictionary& record = save.record();
  record.Put("FNumber", ToUpper(save.Text("FNumber")));
  save.RequireText("FNumber");
  save.RequireText("FName");
  const std::string called = Accounts().Called(record);
  if (!IsAccountNumber(save.Text("FNumber"))) {
    Refuse(refusal::kBadNumber,
           called + ": a number has 1 to 40 letters, digits, \"-\" and \"_\", with single dots"
                    " between the levels.");
  }
  save.RequireUnique("FNumber");
  if (std::abs(save.Number("FDC")) > 1) {
    Refuse(refusal::kBadValue, called + ": FDC is 0, 1 or -1.");
  }
  CheckCurrency(db, save, called);

  const bool renumbered = !save.is_new() && save.Changes("FNumber");
  if (renumbered) {
    RefuseChildren(db, save.stored(), save.id(), true);
    if (IsUsedInVouchers(db, "FAccountID", save.id())) {
      Refuse(refusal::kInUse,
             Accounts().Called(save.stored()) + ": it can't get another number, vouchers use it.");
    }
  }
  if (!save.is_new() && record.Value("FDelete").As<Boolean>()) {
    RefuseChildren(db, save.stored(), save.id(), false);
  }
  PlaceInTree(db, save, save.is_new() || renumbered);
  if (save.is_new()) record.Put("FDetail", true);
  save.Write();

  db.Execute("UPDATE t_Account SET FRootID = FAccountID WHERE FAccountID = ? AND FParentID = 0",
             save.id());
  if (!save.is_new() && save.Changes("FName")) RenameBelow(db, save);
  if (renumbered) KeepDetailFlag(db, save.stored().Value("FParentID").As<Long>());
  KeepDetailFlag(db, save.Number("FParentID"));
  if (const Variant* items = sent.Find(kItems)) ReplaceItems(db, save.id(), called, *items);
  save.Commit();
}

// The accounts from the one given up to the root.
std::vector<std::string> NamesUpwards(Database& db, Long id) {
  std::vector<std::string> names;
  while (id != 0 && names.size() < kLongestNumber) {
    const auto row = db.QueryRow<Long, std::string>(
        "SELECT FParentID, FName FROM t_Account WHERE FAccountID = ?", id);
    if (!row) break;
    id = std::get<0>(*row);
    names.push_back(std::get<1>(*row));
  }
  return names;
}

}  // namespace

// ---- AccountInfo ----

Ref<Dictionary> AccountInfo::GetDetail(std::string_view PropsString, const Long& AccountID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Accounts().Read(caller.db, AccountID);
}

Ref<Dictionary> AccountInfo::GetDetailByNumber(std::string_view PropsString,
                                               std::string_view Number) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Accounts().Read(caller.db, Accounts().IdWith(caller.db, "FNumber", ToUpper(Number)));
}

Ref<Recordset> AccountInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                    const String& Filter, const String& Sort, const Variant&,
                                    const Long&) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Accounts().List(caller.db, ListOptions, Filter, Sort);
}

Long AccountInfo::ExistenceCheck(std::string_view PropsString, const Variant& AccountID,
                                 const Variant& Number, const Variant& HelperCode) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  if (!AccountID.IsMissing()) {
    const auto id = AccountID.As<Long>();
    return Accounts().Read(caller.db, id) ? id : 0;
  }
  if (!Number.IsMissing()) {
    return Accounts().IdWith(caller.db, "FNumber", ToUpper(Number.As<String>()));
  }
  const std::string code = HelperCode.IsMissing() ? std::string() : HelperCode.As<String>();
  // Accounts without a helper code are not to be found by it.
  return code.empty() ? 0 : Accounts().IdWith(caller.db, "FHelperCode", code);
}

Boolean AccountInfo::CheckAccountInVoucher(std::string_view PropsString, const Long& AccountID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return IsUsedInVouchers(caller.db, "FAccountID", AccountID);
}

Boolean AccountInfo::ExistsSpecialChild(std::string_view PropsString, const Long& AccountID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  const auto number = caller.db.QueryValue<std::string>(
      "SELECT FNumber FROM t_Account WHERE FAccountID = ?", AccountID);
  const std::string prefix = number.value_or("") + ".";
  return caller.db
      .QueryValue<int>("SELECT 1 FROM t_Account WHERE FSpecialType <> 0 AND"
                       " substr(FNumber, 1, length(CAST(? AS TEXT))) = ? LIMIT 1",
                       prefix, prefix)
      .has_value();
}

String AccountInfo::GetFullName(std::string_view PropsString, const Long& AccountID,
                                const String& Separator) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  const Transaction transaction(caller.db, Transaction::Kind::kRead);
  const std::vector<std::string> names = NamesUpwards(caller.db, AccountID);
  if (names.empty()) Accounts().Require(caller.db, AccountID);
  std::string full_name;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    if (name != names.rbegin()) full_name += Separator;
    full_name += *name;
  }
  return full_name;
}

// ---- AccountItemInfo ----

Ref<Recordset> AccountItemInfo::GetListByAccount(std::string_view PropsString,
                                                 const Long& AccountID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  const BoundValue id = std::int64_t{AccountID};
  return FetchList(
      caller.db, {"SELECT * FROM t_AccountItem WHERE FAccountID = ?", kItemColumns, "FItemClassID"},
      "", "", std::span(&id, 1));
}

// ---- AccountUpdate ----

Long AccountUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  RecordSave save(caller, Accounts(), dict);
  Save(caller.db, save, *dict);
  return save.id();
}

void AccountUpdate::Update(std::string_view PropsString, const Long& AccountID,
                           const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  RecordSave save(caller, Accounts(), dict, AccountID);
  Save(caller.db, save, *dict);
}

void AccountUpdate::Delete(std::string_view PropsString, const Long& AccountID,
                           std::string_view MachineName, std::string_view IPAddress) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> account = Accounts().Require(caller.db, AccountID);
  RefuseChildren(caller.db, *account, AccountID, true);
  if (IsUsedInVouchers(caller.db, "FAccountID", AccountID)) {
    Refuse(refusal::kInUse, Accounts().Called(*account) + ": vouchers use it.");
  }
  caller.db.Execute("DELETE FROM t_Balance WHERE FAccountID = ?", AccountID);  // zeros
  caller.db.Execute("DELETE FROM t_AccountItem WHERE FAccountID = ?", AccountID);
  Accounts().Remove(caller.db, AccountID);
  KeepDetailFlag(caller.db, account->Value("FParentID").As<Long>());
  AuditDeletion(caller, Accounts(), *account, MachineName, IPAddress);
  transaction.Commit();
}

}  // namespace qdclgl::server
