// The chart of accounts: a tree by number. "1000.01" stands below "1000". The server keeps the
// accounts' place in the tree: parent, root, level, detail flag and full name.
#include <algorithm>
#include <set>

#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/record_save.h"
#include "qdclgl/server/records/record_tree.h"

namespace qdclgl::server {

const MasterData& Accounts();
const MasterData& Currencies();
const MasterData& MeasureUnits();
const MasterData& UnitGroups();

namespace {

constexpr std::string_view kItems = "_Items";
constexpr std::size_t kLongestNumber = 40;

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

constexpr RecordTree kTree = {.table = "t_Account", .id = "FAccountID", .deleted = "FDelete"};

void RefuseChildren(Database& db, const Dictionary& account, Long id, bool deleted_too) {
  if (!kTree.HasBelow(db, id, deleted_too)) return;
  Refuse(refusal::kHasChildren, Accounts().Called(account) + ": it has sub-accounts.");
}

// Gives the record its place below the account that its number names. With `moves` the account is
// new there, and the one above must be able to take it.
void PlaceInTree(RecordSave& save, bool moves) {
  Database& db = save.db();
  Dictionary& record = save.record();
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
    save.Refuse(refusal::kNoParent, "there is no account " + parent_number + " above it.");
  }
  const Ref<Dictionary> parent = Accounts().Require(db, parent_id);
  if (parent->Value("FDelete").As<Boolean>() && !record.Value("FDelete").As<Boolean>()) {
    save.Refuse(refusal::kNoParent, "account " + parent_number + " above it is deleted.");
  }
  if (moves && IsUsedInVouchers(db, "FAccountID", parent_id)) {
    save.Refuse(refusal::kParentInUse,
                "account " + parent_number + " above it has lines in vouchers.");
  }
  record.Put("FParentID", parent_id);
  record.Put("FRootID", parent->Value("FRootID"));
  record.Put("FLevel", static_cast<Integer>(parent->Value("FLevel").As<Long>() + 1));
  record.Put("FFullName", parent->Value("FFullName").As<String>() + "_" + save.Text("FName"));
}

// The full names of the accounts below begin with that of the account itself.
void RenameBelow(const RecordSave& save) {
  const auto old_name = save.stored().Value("FFullName").As<String>();
  const std::string prefix = save.Text("FNumber") + ".";
  save.db().Execute("UPDATE t_Account SET FFullName = CAST(? AS TEXT) ||"
                    " substr(FFullName, length(CAST(? AS TEXT)) + 1)"
                    " WHERE substr(FNumber, 1, length(CAST(? AS TEXT))) = ?",
                    save.Text("FFullName"), old_name, prefix, prefix);
}

// ---- Item classes ----

// What an account asks for stays once it has lines: those that it has would name too little or too
// much, and balances are kept by what it asks for.
void RequireItemsOpen(const RecordSave& save, const std::set<Long>& classes) {
  std::set<Long> stored;
  for (const auto& [id] : save.db().Query<Long>(
           "SELECT FItemClassID FROM t_AccountItem WHERE FAccountID = ?", save.id())) {
    stored.insert(id);
  }
  if (classes == stored || !IsUsedInVouchers(save.db(), "FAccountID", save.id())) return;
  save.Refuse(refusal::kInUse, "it can't get other item classes, vouchers use it.");
}

void ReplaceItems(const RecordSave& save) {
  const std::span<const Column> columns = std::span(kItemColumns).subspan(1);
  const std::vector<Ref<Dictionary>> items = save.SentRows(kItems, kItemColumns);
  const auto cell = [](const Ref<Dictionary>& item, const Column& column) {
    return Normalized(column, item->Value(column.name));
  };
  const auto refuse = [&](const std::string& reason) { save.Refuse(refusal::kBadValue, reason); };
  std::set<Long> classes;
  for (const Ref<Dictionary>& item : items) {
    const auto id = cell(item, columns[0]).As<Long>();
    if (id == 0) refuse("an element of _Items has no FItemClassID.");
    if (!classes.insert(id).second) {
      refuse("item class " + std::to_string(id) + " stands twice in _Items.");
    }
  }
  RequireItemsOpen(save, classes);
  save.db().Execute("DELETE FROM t_AccountItem WHERE FAccountID = ?", save.id());
  for (const Ref<Dictionary>& item : items) {
    save.db().Execute(
        "INSERT INTO t_AccountItem (FAccountID, FItemClassID, FItemClassNumber, FItemClassName)"
        " VALUES (?, ?, ?, ?)",
        save.id(), cell(item, columns[0]).As<Long>(), cell(item, columns[1]).As<String>(),
        cell(item, columns[2]).As<String>());
  }
}

// ---- Saving ----

// The unit that an account counts in: its own or the default one of its group; 0 for none.
Long CountingUnit(Database& db, const Dictionary& account) {
  const auto unit = account.Value("FMeasureUnitID").As<Long>();
  if (unit != 0) return unit;
  return db
      .QueryValue<Long>("SELECT FDefaultUnitID FROM t_UnitGroup WHERE FUnitGroupID = ?",
                        account.Value("FUnitGroupID").As<Long>())
      .value_or(0);
}

// What is posted on an account has been counted in its unit.
void KeepCountingUnit(RecordSave& save) {
  if (save.is_new()) return;
  const Long unit = CountingUnit(save.db(), save.stored());
  if (unit == 0 || unit == CountingUnit(save.db(), save.record())) return;
  if (!save.db().QueryValue<int>("SELECT 1 FROM t_VoucherEntry WHERE FAccountID = ?"
                                 " AND FQuantity <> 0 LIMIT 1",
                                 save.id())) {
    return;
  }
  const Ref<Dictionary> counted = MeasureUnits().Require(save.db(), unit);
  save.Refuse(refusal::kInUse, "vouchers count its quantities in " +
                                   counted->Value("FNumber").As<String>() + "; that unit stays.");
}

// The unit is one of the account's group; an account that names a unit alone is of that group. The
// group's name stands beside it.
void SettleUnit(RecordSave& save) {
  if (!save.Changes("FMeasureUnitID") && !save.Changes("FUnitGroupID")) return;
  const Long unit = save.Number("FMeasureUnitID");
  const Long group = save.db()
                         .QueryValue<Long>("SELECT FUnitGroupID FROM t_MeasureUnit"
                                           " WHERE FMeasureUnitID = ?",
                                           unit)
                         .value_or(0);
  if (save.Number("FUnitGroupID") == 0) save.record().Put("FUnitGroupID", group);
  if (unit != 0 && save.Number("FUnitGroupID") != group) {
    save.Refuse(refusal::kBadReference,
                "unit of measure " + std::to_string(unit) + " is of another unit group.");
  }
  const auto name = save.db().QueryValue<std::string>(
      "SELECT FName FROM t_UnitGroup WHERE FUnitGroupID = ?", save.Number("FUnitGroupID"));
  save.record().Put("FUnitGroup", Variant(name.value_or("")));
  KeepCountingUnit(save);
}

bool IsRenumbered(const RecordSave& save) { return !save.is_new() && save.Changes("FNumber"); }

void Check(RecordSave& save) {
  Dictionary& record = save.record();
  save.RequireKey();
  save.RequireText("FName");
  if (!IsAccountNumber(save.Text("FNumber"))) {
    save.Refuse(refusal::kBadNumber,
                "a number has 1 to 40 letters, digits, \"-\" and \"_\", with single dots between"
                " the levels.");
  }
  save.RequireUniqueKey();
  if (std::abs(save.Number("FDC")) > 1) {
    save.Refuse(refusal::kBadValue, "FDC is 0, 1 or -1.");
  }
  save.RequireReferences();
  SettleUnit(save);

  if (IsRenumbered(save)) {
    RefuseChildren(save.db(), save.stored(), save.id(), true);
    if (IsUsedInVouchers(save.db(), "FAccountID", save.id())) {
      Refuse(refusal::kInUse,
             Accounts().Called(save.stored()) + ": it can't get another number, vouchers use it.");
    }
  }
  if (!save.is_new() && record.Value("FDelete").As<Boolean>()) {
    RefuseChildren(save.db(), save.stored(), save.id(), false);
  }
  PlaceInTree(save, save.is_new() || IsRenumbered(save));
  if (save.is_new()) record.Put("FDetail", true);
}

void Follow(RecordSave& save) {
  Database& db = save.db();
  db.Execute("UPDATE t_Account SET FRootID = FAccountID WHERE FAccountID = ? AND FParentID = 0",
             save.id());
  if (!save.is_new() && save.Changes("FName")) RenameBelow(save);
  if (IsRenumbered(save)) kTree.KeepDetailFlag(db, save.stored().Value("FParentID").As<Long>());
  kTree.KeepDetailFlag(db, save.Number("FParentID"));
  if (save.sent().Contains(kItems)) ReplaceItems(save);
}

void Remove(RecordRemoval& removal) {
  Database& db = removal.db();
  const Long id = removal.id();
  RefuseChildren(db, removal.stored(), id, true);
  if (IsUsedInVouchers(db, "FAccountID", id)) removal.Refuse(refusal::kInUse, "vouchers use it.");
  RemoveEmptyBalances(db, "FAccountID", id);
  db.Execute("DELETE FROM t_AccountItem WHERE FAccountID = ?", id);
  removal.Remove();
  kTree.KeepDetailFlag(db, removal.stored().Value("FParentID").As<Long>());
}

// ---- The components ----

class AccountInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_INHERITED(GetDetail)
  QD_INHERITED(GetDetailByNumber)
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Reserved = Missing,
             const Long& DataAuthority = {}, const Variant& Page = Missing),
            "The accounts; bit 1 of ListOptions includes those marked deleted. Every reader sees "
            "all accounts, whatever the DataAuthority. {page} BadFilter, BadSort, BadValue.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& AccountID = Missing,
             const Variant& Number = Missing, const Variant& HelperCode = Missing),
            "The id of the account with that id, or otherwise that number, or otherwise that "
            "helper code (the first one saved); 0 when there is none.")
  QD_METHOD(Boolean, CheckAccountInVoucher, (std::string_view PropsString, const Long& AccountID),
            "Whether lines of vouchers, deleted ones too, use the account.")
  QD_METHOD(Boolean, ExistsSpecialChild, (std::string_view PropsString, const Long& AccountID),
            "Whether any account below has a special type.")
  QD_METHOD(String, GetFullName,
            (std::string_view PropsString, const Long& AccountID, const String& Separator = "_"),
            "The names from the root to the account, joined by the separator. NotFound.")
};

// Reads what accounts are associated with.
class AccountItemInfo final : public Object {
  QD_MEMBERS(AccountItemInfo, Object, Creatable, "Reads the item classes of accounts.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLAccount.AccountItemInfo";
  static constexpr MethodRight kRights[] = {{"GetListByAccount", {Role::kReader, "read accounts"}}};

  QD_METHOD(Ref<Recordset>, GetListByAccount, (std::string_view PropsString, const Long& AccountID),
            "The item classes of an account: FAccountID, FItemClassID, and FItemClassNumber and "
            "FItemClassName as the class has them now.")
};

QD_DEFINE_MEMBERS(AccountItemInfo)

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

Ref<Recordset> AccountInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                    const String& Filter, const String& Sort, const Variant&,
                                    const Long&, const Variant& Page) {
  return RecordInfo::GetList(PropsString, ListOptions, Filter, Sort, Page);
}

Long AccountInfo::ExistenceCheck(std::string_view PropsString, const Variant& AccountID,
                                 const Variant& Number, const Variant& HelperCode) {
  if (!AccountID.IsMissing() || !Number.IsMissing()) {
    return RecordInfo::ExistenceCheck(PropsString, AccountID, Number);
  }
  const Caller caller = Enter(PropsString, kind().reading());
  const std::string code = HelperCode.IsMissing() ? std::string() : HelperCode.As<String>();
  // Accounts without a helper code are not to be found by it.
  return code.empty() ? 0 : kind().IdWith(caller.db, "FHelperCode", code);
}

Boolean AccountInfo::CheckAccountInVoucher(std::string_view PropsString, const Long& AccountID) {
  const Caller caller = Enter(PropsString, kind().reading());
  return IsUsedInVouchers(caller.db, "FAccountID", AccountID);
}

Boolean AccountInfo::ExistsSpecialChild(std::string_view PropsString, const Long& AccountID) {
  const Caller caller = Enter(PropsString, kind().reading());
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
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction transaction(caller.db, Transaction::Kind::kRead);
  const std::vector<std::string> names = NamesUpwards(caller.db, AccountID);
  if (names.empty()) kind().Require(caller.db, AccountID);
  std::string full_name;
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    if (name != names.rbegin()) full_name += Separator;
    full_name += *name;
  }
  return full_name;
}

Ref<Recordset> AccountItemInfo::GetListByAccount(std::string_view PropsString,
                                                 const Long& AccountID) {
  const Caller caller = Enter(PropsString, RightTo<AccountItemInfo>("GetListByAccount"));
  const BoundValue id = std::int64_t{AccountID};
  // Accounts keep what they were saved with: an id alone, or a number that the class had then.
  return FetchList(
      caller.db,
      {"SELECT i.FAccountID, i.FItemClassID, COALESCE(c.FNumber, i.FItemClassNumber) AS"
       " FItemClassNumber, COALESCE(c.FName, i.FItemClassName) AS FItemClassName FROM t_AccountItem"
       " i LEFT JOIN t_ItemClass c ON c.FItemClassID = i.FItemClassID WHERE i.FAccountID = ?",
       kItemColumns, "FItemClassID"},
      "", "", std::span(&id, 1));
}

}  // namespace

const MasterData& Accounts() {
  using enum ColumnType;
  using enum Keeper;
  static const MasterData kKind({
      .component = "QDSVGLAccount.Account",
      .noun = "account",
      .nouns = "accounts",
      .list = {"accounts", "Lists the chart of accounts", "FAccountID FNumber FName FDC FDetail"},
      .table = "t_Account",
      .id = "FAccountID",
      .key = {.column = "FNumber", .ignores_case = true},
      .deleted = "FDelete",
      .columns =
          {{{"FNumber", kText}},
           {{"FName", kText}},
           {{"FFullName", kText}, kDerived},
           {{"FLevel", kInteger}, kDerived},
           {{"FDetail", kBoolean}, kDerived},
           {{"FParentID", kLong}, kDerived},
           {{"FRootID", kLong}, kDerived},
           {{"FDC", kLong}},
           {{"FGroupID", kLong}},
           {.column = {"FCurrencyID", kLong},
            .absent = kBaseCurrency,
            .refers = {.kind = Currencies, .is_required = true, .refusal = refusal::kBadCurrency}},
           {{"FCurrencyNumber", kText}, kJoined},
           {{"FCurrencyName", kText}, kJoined},
           {{"FHelperCode", kText}},
           {{"FQuantities", kBoolean}},
           {.column = {"FMeasureUnitID", kLong}, .refers = {.kind = MeasureUnits}},
           {{"FMeasureUnit", kText}},
           {.column = {"FUnitGroupID", kLong}, .refers = {.kind = UnitGroups}},
           {{"FUnitGroup", kText}, kDerived},
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
           {{"UUID", kText}},
           {.column = {"FKind", kText}, .words = account_kind::kAll}},
      .query = "SELECT a.*, c.FNumber AS FCurrencyNumber, c.FName AS FCurrencyName"
               " FROM t_Account a JOIN t_Currency c ON c.FCurrencyID = a.FCurrencyID",
      .order = "FNumber",
      .lists = {{.key = kItems,
                 .table = {"t_AccountItem", {std::begin(kItemColumns), std::end(kItemColumns)}},
                 .order = "FAccountID, FItemClassID",
                 .component = AccountItemInfo::kProgID,
                 .method = "GetListByAccount"}},
      .check = Check,
      .follow = Follow,
      .remove = Remove,
      .info = RecordClassOf<AccountInfo>(),
      .errors = "Required, BadNumber, NumberTaken, NoParent, ParentInUse, HasChildren, "
                "BadCurrency, BadValue",
      .helps = {{"Create", "Saves a new account; its id and version come back in the row too. A "
                           "key _Items replaces its item classes: lines on it name an item of "
                           "each. Errors: {errors}."},
                {"Update", "Saves an account; the new version comes back in the row. An account "
                           "that vouchers use keeps its number and its item classes (InUse), and "
                           "one with accounts below its number (HasChildren). Further errors: "
                           "NotFound, NoVersion, Changed, and those of Create."},
                {"Delete", "Removes an account. Errors: NotFound, InUse, HasChildren."}},
      .components = {ComponentOf<AccountItemInfo>()},
  });
  return kKind;
}

}  // namespace qdclgl::server
