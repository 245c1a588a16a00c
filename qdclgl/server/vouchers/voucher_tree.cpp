#include "qdclgl/server/vouchers/voucher_tree.h"

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/extras.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kEntries = "_Entries", kDetails = "_Details";

// Lists of columns laid one behind the other, so that one statement serves them all.
template <std::size_t... N>
constexpr auto Joined(const Column (&... lists)[N]) {
  std::array<Column, (N + ...)> all{};
  std::size_t i = 0;
  const auto add = [&](std::span<const Column> list) {
    for (const Column& column : list) all[i++] = column;
  };
  (add(lists), ...);
  return all;
}

constexpr Column kGroupName[] = {{"FGroup", ColumnType::kText}};
constexpr Column kExtra[] = {{kExtraColumn, ColumnType::kText}};
// Behind the id of whoever has the lines.
constexpr Column kLinePlace[] = {{"FEntryID", ColumnType::kLong}};
constexpr Column kDetailPlace[] = {{"FEntryID", ColumnType::kLong}, {"FIndex", ColumnType::kLong}};

// The header's columns in the database behind its id, which the database gives.
constexpr auto kHeaderTable = [] {
  constexpr auto kAll = Joined(kStateColumns, kHeaderColumns, kExtra);
  std::array<Column, kAll.size() - 1> columns{};
  std::copy(kAll.begin() + 1, kAll.end(), columns.begin());
  return columns;
}();
// What a caller reads of a header.
constexpr auto kRowColumns = Joined(kStateColumns, kHeaderColumns, kGroupName);

template <std::size_t N>
bool Has(const Column (&columns)[N], std::string_view key) {
  return std::ranges::any_of(columns, [&](const Column& column) { return column.name == key; });
}

bool IsHeaderKey(std::string_view key) {
  return Has(kHeaderColumns, key) || Has(kStateColumns, key) || key == "FGroup" ||
         key == kEntries || key == "MachineName" || key == "IPAddress" || key == "EditMode";
}

bool IsLineKey(std::string_view key) {
  return Has(kLineColumns, key) || Has(kLinePlace, key) || Has(kLineNames, key) ||
         key == "FVoucherID" || key == kDetails;
}

bool IsDetailKey(std::string_view key) {
  return Has(kDetailColumns, key) || Has(kDetailPlace, key) || key == "FVoucherID";
}

void BindCells(Statement& statement, std::size_t& position, std::span<const Column> columns,
               const std::vector<Variant>& cells, std::size_t skipped = 0) {
  for (std::size_t i = skipped; i < columns.size(); ++i) {
    BindHeld(statement, position++, columns[i].type, cells[i]);
  }
}

// The list under `key`, null when there is none. BadValue for anything but a list of rows.
Ref<Vector> ListIn(const Dictionary& row, std::string_view key) {
  const Variant* value = row.Find(RowKey(key));
  if (value == nullptr || value->IsEmpty() || value->IsNull() || value->IsNothing()) return nullptr;
  auto list =
      value->IsObject() ? Ref<Vector>(dynamic_cast<Vector*>(value->As<Object>().get())) : nullptr;
  if (!list) Refuse(refusal::kBadValue, "The value of " + std::string(key) + " is no list.");
  return list;
}

// An element of such a list; an empty slot is a row without keys.
Ref<Dictionary> RowIn(const Vector& list, std::size_t position) {
  const Variant& value = list.at(position);
  if (value.IsEmpty() || value.IsNothing()) return Make<Dictionary>();
  auto row = value.IsObject() ? Ref<Dictionary>(dynamic_cast<Dictionary*>(value.As<Object>().get()))
                              : nullptr;
  if (!row) Refuse(refusal::kBadValue, "An element of a list is no row.");
  return row;
}

VoucherLine LineFromRow(const Dictionary& row) {
  VoucherLine line;
  line.cells = LineCells(NormalizedCells(kLineColumns, row));
  line.cells.Put<"FBaseQuantity">(0);
  line.names = NormalizedCells(kLineNames, row);
  line.extras = ExtrasText(row, IsLineKey);
  if (const Ref<Vector> details = ListIn(row, kDetails)) {
    for (std::size_t i = 0; i < details->size(); ++i) {
      const Ref<Dictionary> detail = RowIn(*details, i);
      for (std::uint32_t k = 0; k < detail->size(); ++k) {
        if (!IsDetailKey(detail->key_at(k))) {
          Refuse(refusal::kBadValue, "A detail has no column " + detail->key_at(k) + ".");
        }
      }
      line.details.push_back(NormalizedCells(kDetailColumns, *detail));
    }
  }
  return line;
}

// The keys of a row over these lists of columns, shared by all rows of the thread.
template <const auto& kColumns>
const Ref<KeyList>& SharedKeys() {
  struct Own {
    Ref<KeyList> keys = KeysOf(kColumns);
  };
  return ThreadOwn<Own>().keys;
}

constexpr auto kLineRowColumns = Joined(kLineColumns, kLineNames);

Ref<Dictionary> RowOf(const Ref<KeyList>& keys, std::vector<Variant> values,
                      std::span<const Variant> more, const std::string& extras) {
  values.insert(values.end(), more.begin(), more.end());
  Ref<Dictionary> row = Dictionary::FromRow(keys, values.data());
  PutExtras(extras, *row);
  return row;
}

template <class Cells>
Cells CellsFrom(const Statement& statement, std::span<const Column> columns, std::size_t first) {
  return Cells(ReadCells(statement, columns, first));
}

const std::string kHeaderCells = "SELECT " + NamesOf(kStateColumns, "v.") + ", " +
                                 NamesOf(kHeaderColumns, "v.") + ", g.FName, v.FExtra";
const std::string kFromHeaders =
    " FROM t_Voucher v JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID";
const std::string kSelectHeader = kHeaderCells + kFromHeaders;
const std::string kById = " WHERE v.FVoucherID = ?";

}  // namespace

// ---- Lines ----

std::vector<VoucherLine> LinesFromRow(const Dictionary& row) {
  std::vector<VoucherLine> lines;
  const Ref<Vector> entries = ListIn(row, kEntries);
  for (std::size_t i = 0; entries && i < entries->size(); ++i) {
    try {
      lines.push_back(LineFromRow(*RowIn(*entries, i)));
    } catch (const Error& error) {
      if (error.number() != refusal::kBadValue) throw;
      Refuse(refusal::kBadValue, "Line " + std::to_string(i + 1) + ": " + error.description());
    }
  }
  return lines;
}

Ref<Vector> RowsOfLines(const std::vector<VoucherLine>& lines) {
  auto entries = Make<Vector>();
  for (const VoucherLine& line : lines) {
    Ref<Dictionary> entry =
        RowOf(SharedKeys<kLineRowColumns>(), line.cells.values(), line.names, line.extras);
    // Always there, so that looking at the details of a line does not change it.
    auto details = Make<Vector>();
    for (const std::vector<Variant>& detail : line.details) {
      details->Append(Variant(RowOf(SharedKeys<kDetailColumns>(), detail, {}, "")));
    }
    entry->Put(RowKey(kDetails), Variant(details));
    entry->SetTrackState(0);
    entries->Append(Variant(entry));
  }
  return entries;
}

namespace {

template <std::size_t N>
StoredTable TableOf(std::string_view name, std::string_view id,
                    const std::array<Column, N>& columns) {
  StoredTable table{name, {{id, ColumnType::kLong}}};
  table.columns.insert(table.columns.end(), columns.begin(), columns.end());
  return table;
}

}  // namespace

LineTables::LineTables(std::string_view owners, std::string_view id, std::string_view lines,
                       std::string_view details)
    : lines_(TableOf(lines, id, Joined(kLinePlace, kLineColumns, kExtra))),
      details_(TableOf(details, id, Joined(kDetailPlace, kDetailColumns))),
      insert_lines_(lines, lines_.columns),
      insert_details_(details, details_.columns) {
  const std::string own_id(id);
  const auto from = [&](std::string_view table, const std::string& row) {
    return ", owner.FVersion FROM " + std::string(table) + " " + row + " JOIN " +
           std::string(owners) + " owner ON owner." + own_id + " = " + row + "." + own_id;
  };
  const auto where = [&](const std::string& row) {
    return " WHERE " + row + "." + own_id + " = ?";
  };
  read_lines_ = "SELECT " + NamesOf(kLineColumns, "e.") +
                ", a.FNumber, a.FName, c.FNumber, c.FName, COALESCE(s.FNumber, ''),"
                " COALESCE(s.FName, ''), e.FExtra" +
                from(lines, "e") +
                " JOIN t_Account a ON a.FAccountID = e.FAccountID"
                " JOIN t_Currency c ON c.FCurrencyID = e.FCurrencyID"
                " LEFT JOIN t_SettType s ON s.FItemID = e.FSettleTypeID" +
                where("e") + " ORDER BY e.FEntryID";
  read_details_ = "SELECT d.FEntryID, " + NamesOf(kDetailColumns, "d.") + from(details, "d") +
                  where("d") + " ORDER BY d.FEntryID, d.FIndex";
  remove_lines_ = "DELETE FROM " + std::string(lines) + " WHERE " + own_id + " = ?";
  remove_details_ = "DELETE FROM " + std::string(details) + " WHERE " + own_id + " = ?";
}

void LineTables::Ask(Database& db, Long owner) const {
  for (const std::string& sql : {std::cref(read_lines_), std::cref(read_details_)}) {
    Statement& statement = db.Prepared(sql);
    statement.Set(0, std::int64_t{owner});
    statement.Open();
  }
}

bool LineTables::Take(Database& db, Long version, bool has_details,
                      std::vector<VoucherLine>& lines) const {
  bool is_same = true;
  Statement& statement = db.Prepared(read_lines_);
  while (statement.Fetch()) {
    VoucherLine& line = lines.emplace_back();
    line.cells = CellsFrom<LineCells>(statement, kLineColumns, 0);
    line.names = ReadCells(statement, kLineNames, std::size(kLineColumns));
    constexpr std::size_t kBehind = std::size(kLineColumns) + std::size(kLineNames);
    line.extras = statement.Text(kBehind);
    is_same = is_same && statement.Whole(kBehind + 1) == version;
  }
  if (!is_same || !has_details) return is_same;
  Statement& details = db.Prepared(read_details_);
  bool is_empty = true;
  for (; details.Fetch(); is_empty = false) {
    const auto entry = static_cast<std::size_t>(details.Whole(0));
    is_same =
        is_same && entry <= lines.size() && details.Whole(std::size(kDetailColumns) + 1) == version;
    if (is_same) lines[entry - 1].details.push_back(ReadCells(details, kDetailColumns, 1));
  }
  return is_same && !is_empty;
}

void LineTables::Insert(Database& db, Long owner, const std::vector<VoucherLine>& lines) const {
  insert_lines_.Run(db, lines.size(),
                    [&](Statement& statement, std::size_t position, std::size_t row) {
                      const VoucherLine& line = lines[row];
                      statement.Set(position++, std::int64_t{owner});
                      statement.Set(position++, static_cast<std::int64_t>(row + 1));
                      BindCells(statement, position, kLineColumns, line.cells.values());
                      statement.Set(position, std::string_view(line.extras));
                    });
  struct Place {
    std::size_t line, index;
  };
  std::vector<Place> places;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    for (std::size_t i = 0; i < lines[line].details.size(); ++i) places.push_back({line, i});
  }
  insert_details_.Run(
      db, places.size(), [&](Statement& statement, std::size_t position, std::size_t row) {
        const Place place = places[row];
        statement.Set(position++, std::int64_t{owner});
        statement.Set(position++, static_cast<std::int64_t>(place.line + 1));
        statement.Set(position++, static_cast<std::int64_t>(place.index + 1));
        BindCells(statement, position, kDetailColumns, lines[place.line].details[place.index]);
      });
}

void LineTables::Remove(Database& db, Long owner) const {
  db.ExecuteLater(remove_details_, owner);
  db.ExecuteLater(remove_lines_, owner);
}

// ---- Vouchers ----

namespace {

const LineTables& VoucherLines() {
  static const LineTables kTables("t_Voucher", "FVoucherID", "t_VoucherEntry", "t_VoucherDetail");
  return kTables;
}

}  // namespace

std::string VoucherTree::Name() const {
  return std::to_string(header.Get<"FYear">()) + "/" + std::to_string(header.Get<"FPeriod">()) +
         " " + group + " " + std::to_string(header.Get<"FNumber">());
}

VoucherTree VoucherTree::FromRow(const Dictionary& row) {
  VoucherTree tree;
  tree.header = HeaderCells(NormalizedCells(kHeaderColumns, row));
  const Variant* group = row.Find(RowKey("FGroup"));
  tree.group = group != nullptr ? CStr(Normalized(kGroupName[0], *group)) : "";
  tree.extras = ExtrasText(row, IsHeaderKey);
  tree.lines = LinesFromRow(row);
  return tree;
}

Ref<Dictionary> VoucherTree::ToRow() const {
  std::vector<Variant> cells = state.values();
  cells.insert(cells.end(), header.values().begin(), header.values().end());
  const Variant group_name(group);
  Ref<Dictionary> row =
      RowOf(SharedKeys<kRowColumns>(), std::move(cells), std::span(&group_name, 1), extras);
  row->Put(RowKey(kEntries), Variant(RowsOfLines(lines)));
  row->SetTrackState(0);
  return row;
}

namespace {

// How much kSelectHeader gives.
constexpr std::size_t kHeaderResults = std::size(kStateColumns) + std::size(kHeaderColumns) +
                                       std::size(kGroupName) + std::size(kExtra);

VoucherTree HeaderFrom(const Statement& statement) {
  VoucherTree tree;
  tree.state = CellsFrom<StateCells>(statement, kStateColumns, 0);
  tree.header = CellsFrom<HeaderCells>(statement, kHeaderColumns, std::size(kStateColumns));
  constexpr std::size_t kBehind = std::size(kStateColumns) + std::size(kHeaderColumns);
  tree.group = statement.Text(kBehind);
  tree.extras = statement.Text(kBehind + 1);
  return tree;
}

// Asks for a header, and along with it for what confirms the caller.
Statement& AskForHeader(const Caller& caller, Long id) {
  static const std::string kSql =
      kHeaderCells + ", (" + StandingQuery("?") + ") AS standing" + kFromHeaders + kById;
  Statement& statement = caller.db.Prepared(kSql);
  statement.Set(0, std::int64_t{caller.session->user_id});
  statement.Set(1, std::int64_t{id});
  statement.Open();
  return statement;
}

std::optional<VoucherTree> ConfirmedHeader(const Caller& caller, Statement& asked) {
  if (!asked.Fetch()) {
    caller.Confirm();
    return std::nullopt;
  }
  std::optional<std::string> standing;
  if (!asked.IsNull(kHeaderResults)) standing = asked.Text(kHeaderResults);
  caller.Confirm(standing);
  return HeaderFrom(asked);
}

// Resets a query at the end of a scope.
struct QueryEnd {
  Statement& query;
  ~QueryEnd() { query.Reset(); }
};

}  // namespace

Statement& VoucherTree::AskToHold(Database& db, Long id) {
  static const std::string kSQLite = kSelectHeader + kById;
  static const std::string kPostgreSQL = kSQLite + " FOR UPDATE OF v";
  Statement& statement = db.Prepared(db.Dialect(kSQLite, kPostgreSQL));
  statement.Set(0, std::int64_t{id});
  statement.Open();
  return statement;
}

std::optional<VoucherTree> VoucherTree::Held(Statement& asked) {
  if (!asked.Fetch()) return std::nullopt;
  VoucherTree tree = HeaderFrom(asked);
  asked.Reset();
  return tree;
}

std::optional<VoucherTree> VoucherTree::Read(const Caller& caller, Long id) {
  // Without a transaction, which would cost PostgreSQL two more messages: every change of a voucher
  // raises its version, so that lines tell which header they belong to.
  constexpr int kMostAttempts = 100;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    Statement& header = AskForHeader(caller, id);
    // As long as it is open, SQLite looks at one state of the books and need not begin anew.
    const QueryEnd end{header};
    AskForLines(caller.db, id);
    std::optional<VoucherTree> tree = ConfirmedHeader(caller, header);
    if (!tree || tree->TakeLines(caller.db)) return tree;
  }
  Refuse(refusal::kDatabaseBusy,
         "Others kept changing the voucher with the id " + std::to_string(id) + "; try again.");
}

void VoucherTree::AskForLines(Database& db, Long id) { VoucherLines().Ask(db, id); }

bool VoucherTree::TakeLines(Database& db) {
  const bool is_same =
      VoucherLines().Take(db, state.Get<"FVersion">(), state.Get<"FDetailCount">() > 0, lines);
  return is_same && !(lines.empty() && state.Get<"FEntryCount">() > 0);
}

std::vector<VoucherTree> VoucherTree::ReadRange(Database& db, Long first, Long last) {
  // A statement for the rows between the two ids.
  const auto rows = [&](const std::string& sql, std::string_view table,
                        std::string_view order) -> Statement& {
    Statement& statement =
        db.Prepared(sql + " WHERE " + std::string(table) + ".FVoucherID BETWEEN ? AND ? ORDER BY " +
                    std::string(order));
    statement.Set(0, std::int64_t{first});
    statement.Set(1, std::int64_t{last});
    statement.Open();
    return statement;
  };
  std::vector<VoucherTree> trees;
  Statement& headers = rows(kSelectHeader, "v", "v.FVoucherID");
  while (headers.Fetch()) trees.push_back(HeaderFrom(headers));

  // Lines and details come in the order of their vouchers. Those of none are left out: foreign keys
  // are another rule.
  const auto voucher_of = [&, at = std::size_t{0}](std::int64_t id) mutable -> VoucherTree* {
    while (at < trees.size() && trees[at].state.Get<"FVoucherID">() < id) ++at;
    return at < trees.size() && trees[at].state.Get<"FVoucherID">() == id ? &trees[at] : nullptr;
  };
  const std::vector<Column>& line_columns = VoucherLines().lines().columns;
  static const std::string kLines =
      "SELECT " + NamesOf(line_columns, "e.") + " FROM t_VoucherEntry e";
  Statement& line_rows = rows(kLines, "e", "e.FVoucherID, e.FEntryID");
  for (auto voucher = voucher_of; line_rows.Fetch();) {
    VoucherTree* const tree = voucher(line_rows.Whole(0));
    if (tree == nullptr) continue;
    VoucherLine& line = tree->lines.emplace_back();
    line.cells = CellsFrom<LineCells>(line_rows, kLineColumns, 1 + std::size(kLinePlace));
    line.extras = line_rows.Text(line_columns.size() - 1);
  }
  const std::vector<Column>& detail_columns = VoucherLines().details().columns;
  static const std::string kDetailRows =
      "SELECT " + NamesOf(detail_columns, "d.") + " FROM t_VoucherDetail d";
  Statement& detail_rows = rows(kDetailRows, "d", "d.FVoucherID, d.FEntryID, d.FIndex");
  for (auto voucher = voucher_of; detail_rows.Fetch();) {
    VoucherTree* const tree = voucher(detail_rows.Whole(0));
    const auto entry = static_cast<std::size_t>(detail_rows.Whole(1));
    if (tree == nullptr || entry < 1 || entry > tree->lines.size()) continue;
    tree->lines[entry - 1].details.push_back(
        ReadCells(detail_rows, kDetailColumns, 1 + std::size(kDetailPlace)));
  }
  return trees;
}

namespace {

void BindHeader(Statement& statement, const VoucherTree& tree) {
  std::size_t position = 0;
  BindCells(statement, position, kStateColumns, tree.state.values(), 1);
  BindCells(statement, position, kHeaderColumns, tree.header.values());
  statement.Set(position, std::string_view(tree.extras));
}

}  // namespace

std::vector<StoredTable> VoucherTables() {
  std::vector<Column> header = {kStateColumns[0]};
  header.insert(header.end(), kHeaderTable.begin(), kHeaderTable.end());
  return {{"t_Voucher", header},
          VoucherLines().lines(),
          VoucherLines().details(),
          {"t_VoucherEditor", {{"FVoucherID", ColumnType::kLong}, {"FUserID", ColumnType::kLong}}}};
}

Statement& VoucherTree::InsertHeader(Database& db) const {
  static const std::string kInsert = [] {
    std::string places;
    for (const Column& column : kHeaderTable) {
      if (!places.empty()) places += ", ";
      places += column.name != "FNumber"
                    ? "?"
                    : "COALESCE(NULLIF(CAST(? AS BIGINT), 0), (SELECT FNext - 1 FROM t_Counter"
                      " WHERE FYear = ? AND FPeriod = ? AND FGroupID = ?))";
    }
    return "INSERT INTO t_Voucher (" + NamesOf(kHeaderTable) + ") VALUES (" + places +
           ") ON CONFLICT (FYear, FPeriod, FGroupID, FNumber) DO NOTHING"
           " RETURNING FVoucherID, FNumber";
  }();
  constexpr std::size_t kBehindNumber = PlaceOf(kHeaderColumns, "FNumber") + 1;
  const std::span<const Column> columns(kHeaderColumns);
  Statement& statement = db.Prepared(kInsert);
  std::size_t position = 0;
  BindCells(statement, position, kStateColumns, state.values(), 1);
  BindCells(statement, position, columns.first(kBehindNumber), header.values());
  for (const Long place :
       {header.Get<"FYear">(), header.Get<"FPeriod">(), header.Get<"FGroupID">()}) {
    statement.Set(position++, std::int64_t{place});
  }
  BindCells(statement, position, columns, header.values(), kBehindNumber);
  statement.Set(position, std::string_view(extras));
  statement.Open();
  return statement;
}

std::optional<std::int64_t> VoucherTree::TakeInserted(Statement& asked) {
  if (!asked.Fetch()) return std::nullopt;
  state.Put<"FVoucherID">(static_cast<Long>(asked.Whole(0)));
  const std::int64_t number = asked.Whole(1);
  asked.Reset();
  return number;
}

void VoucherTree::InsertLines(Database& db) const {
  VoucherLines().Insert(db, state.Get<"FVoucherID">(), lines);
}

void VoucherTree::Update(Database& db) const {
  static const std::string kUpdate = [] {
    std::string sets;
    for (const Column& column : kHeaderTable) {
      if (!sets.empty()) sets += ", ";
      sets.append(column.name).append(" = ?");
    }
    return "UPDATE t_Voucher SET " + sets + " WHERE FVoucherID = ?";
  }();
  const Long id = state.Get<"FVoucherID">();
  Statement& statement = db.Prepared(kUpdate);
  BindHeader(statement, *this);
  statement.Set(kHeaderTable.size(), std::int64_t{id});
  statement.ExecuteLater();
  VoucherLines().Remove(db, id);
  InsertLines(db);
}

// ---- The trail ----

namespace {

// The version, and what steps set. Of the counts and totals between them those that the check of
// the books finds in the lines are left out.
constexpr std::size_t kVersionAt = PlaceOf(kStateColumns, "FVersion");
constexpr std::size_t kDetailCountAt = PlaceOf(kStateColumns, "FDetailCount");
constexpr std::size_t kStepsAt = PlaceOf(kStateColumns, "FOwnerGroupID");

TrailRow TrailOf(const VoucherLine& line) {
  TrailRow row;
  row.Add(kLineColumns, line.cells.values());
  row.AddText(kExtra[0].name, line.extras);
  TrailList& details = row.lists.emplace_back(TrailList{kDetails, {}});
  for (const std::vector<Variant>& detail : line.details) {
    details.rows.emplace_back().Add(kDetailColumns, detail);
  }
  return row;
}

}  // namespace

TrailRow VoucherTree::Trail(Trailing part) const {
  const std::span<const Column> columns(kStateColumns);
  const std::span<const Variant> values(state.values());
  TrailRow row;
  for (const std::size_t at : {kVersionAt, kDetailCountAt}) {
    row.Add(columns.subspan(at, 1), values.subspan(at, 1));
  }
  row.Add(kHeaderColumns, header.values());
  row.Add(columns.subspan(kStepsAt), values.subspan(kStepsAt));
  row.AddText(kExtra[0].name, extras);
  if (part == Trailing::kHeader) return row;
  TrailList& entries = row.lists.emplace_back(TrailList{kEntries, {}});
  entries.rows.reserve(lines.size());
  for (const VoucherLine& line : lines) entries.rows.push_back(TrailOf(line));
  return row;
}

namespace {

// The indexes that lists go along, by the column that they begin with.
constexpr std::pair<std::string_view, std::string_view> kWalks[] = {
    {"FDate", "t_Voucher_Date"}, {"FReference", "t_Voucher_Reference"}};

std::string ListQueryBy(bool with_deleted, std::string_view index) {
  return "SELECT v.*, g.FName AS FGroup FROM t_Voucher v" +
         (index.empty() ? std::string() : " INDEXED BY " + std::string(index)) +
         " JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID" +
         (with_deleted ? "" : " WHERE v.FDeleted = 0");
}

}  // namespace

std::span<const Column> VoucherListColumns() { return kRowColumns; }

Ref<Recordset> ListVouchers(Database& db, bool with_deleted, std::string_view filter,
                            std::string_view sort, const std::optional<Page>& page) {
  const std::string query = ListQueryBy(with_deleted, {});
  std::string walk;
  ListSource list{query, kRowColumns, "FDate, FYear, FPeriod, FGroupID, FNumber"};
  // PostgreSQL sees by itself that an index spares the sort.
  if (page && db.IsSQLite()) {
    const auto index = std::ranges::find(kWalks, FirstSorted(list, sort),
                                         &std::pair<std::string_view, std::string_view>::first);
    if (index != std::end(kWalks)) walk = ListQueryBy(with_deleted, index->second);
    list.walk = walk;
  }
  return FetchList(db, list, filter, sort, {}, page);
}

}  // namespace qdclgl::server
