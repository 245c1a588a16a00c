// Multi-column ledgers: an account with the columns and sub-columns that its lines are shown under.
#include <algorithm>
#include <set>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/ledgers/ledger_sheet.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

const MasterData& Accounts();
const MasterData& Currencies();
const MasterData& MultiLedgers();

namespace {

constexpr std::size_t kMostColumns = 1000;
constexpr std::size_t kLongestName = 255;

// ---- Saving ----

// The columns of a list's table that callers write; before them stand ledger and position.
std::span<const Column> Written(const RecordList& list) {
  return std::span(list.table.columns).subspan(2);
}

// One of a ledger's lists on its way into its table. The first column that callers write numbers
// the rows, the second one names them.
class SentList {
 public:
  SentList(const RecordSave& save, const RecordList& list) : save_(save), list_(list) {
    for (const Ref<Dictionary>& row : save.SentRows(list.key, list.shown)) {
      rows_.push_back(NormalizedCells(Written(list), *row));
    }
    if (rows_.size() > kMostColumns) {
      Refuse("there are more than " + std::to_string(kMostColumns) + " rows.");
    }
    RequireNames();
    NumberRows();
  }

  const std::vector<std::vector<Variant>>& rows() const { return rows_; }

  [[noreturn]] void Refuse(const std::string& reason) const {
    save_.Refuse(refusal::kBadValue, std::string(list_.key) + ": " + reason);
  }

  void Replace() const {
    Database& db = save_.db();
    const StoredTable& table = list_.table;
    db.Execute("DELETE FROM " + std::string(table.name) + " WHERE FLedgerID = ?", save_.id());
    RowInsertion(table.name, table.columns)
        .Run(db, rows_.size(), [&](Statement& statement, std::size_t position, std::size_t row) {
          statement.Set(position++, std::int64_t{save_.id()});
          statement.Set(position++, static_cast<std::int64_t>(row + 1));
          for (std::size_t i = 0; i < Written(list_).size(); ++i) {
            BindHeld(statement, position + i, Written(list_)[i].type, rows_[row][i]);
          }
        });
  }

 private:
  void RequireNames() const {
    for (const auto& row : rows_) {
      if (Utf16Length(row[1].TextView()) <= kLongestName) continue;
      Refuse(std::string(Written(list_)[1].name) + " is longer than " +
             std::to_string(kLongestName) + " characters.");
    }
  }
  // Gives those without a number the next ones.
  void NumberRows() {
    std::set<Long> numbers;
    for (const auto& row : rows_) {
      const auto number = row[0].As<Long>();
      if (number != 0 && !numbers.insert(number).second) {
        Refuse(std::string(Written(list_)[0].name) + " " + std::to_string(number) +
               " stands twice.");
      }
    }
    Long next = 1;
    for (auto& row : rows_) {
      if (row[0].As<Long>() != 0) continue;
      while (!numbers.insert(next).second) ++next;
      row[0] = Variant(next);
    }
  }

  const RecordSave& save_;
  const RecordList& list_;
  std::vector<std::vector<Variant>> rows_;
};

const RecordList& ColumnList() { return MultiLedgers().description().lists[0]; }
const RecordList& SubColumnList() { return MultiLedgers().description().lists[1]; }

void Follow(RecordSave& save) {
  if (save.sent().Contains(ColumnList().key)) {
    const SentList columns(save, ColumnList());
    for (const auto& row : columns.rows()) {
      const auto side = row.back().As<Long>();
      if (side != 0 && side != 1) columns.Refuse("FDC is 1 for debit or 0 for credit.");
    }
    columns.Replace();
  }
  if (save.sent().Contains(SubColumnList().key)) SentList(save, SubColumnList()).Replace();
}

void Remove(RecordRemoval& removal) {
  for (const RecordList& list : MultiLedgers().description().lists) {
    removal.db().Execute("DELETE FROM " + std::string(list.table.name) + " WHERE FLedgerID = ?",
                         removal.id());
  }
  removal.Remove();
}

// ---- The component that reads ----

class MultiLedgerInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_METHOD(Ref<Dictionary>, GetDetail,
            (std::string_view PropsString, const Long& LedgerID, const Boolean& ViewDisable = true,
             const String& Filter = {}),
            "{A record} with its columns and sub-columns; Nothing when there is none, when it "
            "doesn't meet the filter, and, without ViewDisable, when its account is deleted. "
            "BadFilter.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view RecordKey),
            "{A record} by its name, Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetLedger,
            (std::string_view PropsString, const Long& LedgerID, DateTime DateFrom = {},
             DateTime DateTo = {}),
            "The ledger itself: what is posted on its account and those below it from DateFrom "
            "(otherwise the first day of the current year) to DateTo (otherwise the last day of "
            "that year). NotFound, BadValue.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Page = Missing),
            "The {records} with their columns and sub-columns; bit 1 of ListOptions includes those "
            "whose account is deleted. {page} BadFilter, BadSort, BadValue.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& LedgerID = Missing,
             const Variant& RecordKey = Missing),
            "The id of the {record} with that id, or otherwise with that {key}; 0 when there is "
            "none.")
};

Ref<Dictionary> MultiLedgerInfo::GetDetail(std::string_view PropsString, const Long& LedgerID,
                                           const Boolean& ViewDisable, const String& Filter) {
  const Caller caller = Enter(PropsString, kind().reading());
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  Ref<Dictionary> ledger = kind().Read(caller.db, LedgerID);
  if (!ViewDisable || !Filter.empty()) {
    // Nothing else understands a filter.
    const Ref<Recordset> meeting =
        kind().List(caller.db, ViewDisable ? kWithDeleted : 0, Filter, "");
    while (!meeting->Eof() && meeting->FieldValue(0).As<Long>() != LedgerID) meeting->MoveNext();
    if (meeting->Eof()) ledger = nullptr;
  }
  transaction.Commit();
  return ledger;
}

Ref<Dictionary> MultiLedgerInfo::GetDetailByNumber(std::string_view PropsString,
                                                   std::string_view RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  Ref<Dictionary> ledger = kind().Read(caller.db, kind().IdWithKey(caller.db, RecordKey));
  transaction.Commit();
  return ledger;
}

Ref<Recordset> MultiLedgerInfo::GetLedger(std::string_view PropsString, const Long& LedgerID,
                                          DateTime DateFrom, DateTime DateTo) {
  const Caller caller = Enter(PropsString, kind().reading());
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  Ref<Recordset> sheet =
      LedgerSheet(caller.db, *kind().Require(caller.db, LedgerID), DateFrom, DateTo);
  transaction.Commit();
  return sheet;
}

Ref<Recordset> MultiLedgerInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                        const String& Filter, const String& Sort,
                                        const Variant& Page) {
  const Caller caller = Enter(PropsString, kind().reading());
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  Ref<Recordset> list = kind().List(caller.db, ListOptions, Filter, Sort, PageIn(Page));
  transaction.Commit();
  return list;
}

Long MultiLedgerInfo::ExistenceCheck(std::string_view PropsString, const Variant& LedgerID,
                                     const Variant& RecordKey) {
  return RecordInfo::ExistenceCheck(PropsString, LedgerID, RecordKey);
}

}  // namespace

const MasterData& MultiLedgers() {
  using enum ColumnType;
  using enum Keeper;
  static const MasterData kKind({
      .component = "QDSVGLMCLedger.MultiColumnLedger",
      .update_component = "QDSVGLMCLedger.MColLedger",
      .noun = "multi-column ledger",
      .nouns = "multi-column ledgers",
      .brief = "ledger",
      .list = {"ledgers", "Lists the multi-column ledgers",
               "FLedgerID FLedgerName FAccountNumber FAccountName"},
      .table = "t_MultiColumnLedger",
      .id = "FLedgerID",
      .key = {"FLedgerName"},
      .name = "FLedgerName",
      .deleted = "FDelete",
      .columns = {{{"FLedgerName", kText}},
                  {.column = {"FAccountID", kLong},
                   .refers = {.kind = Accounts, .is_required = true}},
                  {{"FAccountNumber", kText}, kJoined},
                  {{"FAccountName", kText}, kJoined},
                  {{"FDelete", kBoolean}, kJoined}},
      .query = "SELECT l.*, a.FNumber AS FAccountNumber, a.FName AS FAccountName, a.FDelete"
               " FROM t_MultiColumnLedger l JOIN t_Account a ON a.FAccountID = l.FAccountID",
      .order = "FLedgerName",
      .lists = {{.key = "_Columns",
                 .table = {"t_MultiColumn",
                           {{"FLedgerID", kLong},
                            {"FIndex", kLong},
                            {"FColumnID", kLong},
                            {"FColumnName", kText},
                            {"FAccountID", kLong},
                            {"FDC", kLong}}},
                 .order = "FLedgerID, FIndex",
                 .refers = {{"FAccountID", {.kind = Accounts, .is_required = true}}},
                 .shown = {{"FColumnID", kLong},
                           {"FColumnName", kText},
                           {"FAccountID", kLong},
                           {"FAccountNumber", kText},
                           {"FAccountName", kText},
                           {"FDC", kLong}},
                 .query = "SELECT m.*, a.FNumber AS FAccountNumber, a.FName AS FAccountName"
                          " FROM t_MultiColumn m JOIN t_Account a ON a.FAccountID = m.FAccountID"},
                {.key = "_SubColumns",
                 .table = {"t_MultiSubColumn",
                           {{"FLedgerID", kLong},
                            {"FIndex", kLong},
                            {"FSerialNo", kLong},
                            {"FSubColumnName", kText},
                            {"FCurrencyID", kLong}}},
                 .order = "FLedgerID, FIndex",
                 .refers = {{"FCurrencyID", {.kind = Currencies, .is_required = true}}},
                 .shown = {{"FSerialNo", kLong},
                           {"FSubColumnName", kText},
                           {"FCurrencyID", kLong},
                           {"FCurrencyNumber", kText},
                           {"FCurrencyName", kText},
                           {"FExchangeRate", kDouble}},
                 .query = "SELECT m.*, c.FNumber AS FCurrencyNumber, c.FName AS FCurrencyName,"
                          " c.FExchangeRate"
                          " FROM t_MultiSubColumn m JOIN t_Currency c ON c.FCurrencyID = "
                          "m.FCurrencyID"}},
      .follow = Follow,
      .remove = Remove,
      .info = RecordClassOf<MultiLedgerInfo>(),
      .errors = "Required, NameTaken, BadReference, BadValue",
      .helps = {{"Create", "Saves a new ledger; its id and version come back in the row too. Keys "
                           "_Columns and _SubColumns are its columns, in their order; those "
                           "without a number get one. Errors: {errors}."},
                {"Update", "Saves a ledger; the new version comes back in the row. Keys _Columns "
                           "and _SubColumns replace what was there. Errors: NotFound, NoVersion, "
                           "Changed, and those of Create."},
                {"Delete", "Removes a ledger with its columns. NotFound."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
