// A voucher as the server handles it: header, lines and details in the types of their columns,
// between the Dictionary of a caller and the rows of the database.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/platform/thread_own.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/access/trail_row.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

// What a caller writes into a header.
inline constexpr Column kHeaderColumns[] = {
    {"FDate", ColumnType::kDate},
    {"FYear", ColumnType::kLong},
    {"FPeriod", ColumnType::kLong},
    {"FGroupID", ColumnType::kLong},
    {"FNumber", ColumnType::kLong},
    {"FReference", ColumnType::kText},
    {"FExplanation", ColumnType::kText},
    {"FAttachments", ColumnType::kLong},
    {"FTransDate", ColumnType::kDate},
    {"FTranType", ColumnType::kLong},
    {"FSerialNum", ColumnType::kLong},
    {"FInternalInd", ColumnType::kText},
    {"FHandler", ColumnType::kText},
    {"FObjectName", ColumnType::kText},
    {"FParameter", ColumnType::kText},
    {"FFootNote", ColumnType::kText},
    {"FLockDate", ColumnType::kBoolean},
    {"FIsAmortize", ColumnType::kLong},
    {"FAmortizeSchemeID", ColumnType::kLong},
    {"FBlankOutFlag", ColumnType::kInteger},
};

// What the server keeps in a header; a caller reads it.
inline constexpr Column kStateColumns[] = {
    {"FVoucherID", ColumnType::kLong},       {"FVersion", ColumnType::kLong},
    {"FEntryCount", ColumnType::kLong},      {"FDetailCount", ColumnType::kLong},
    {"FDebitTotal", ColumnType::kCurrency},  {"FCreditTotal", ColumnType::kCurrency},
    {"FOwnerGroupID", ColumnType::kInteger}, {"FPreparerID", ColumnType::kInteger},
    {"FPreparer", ColumnType::kText},        {"FChecked", ColumnType::kBoolean},
    {"FCheckerID", ColumnType::kInteger},    {"FChecker", ColumnType::kText},
    {"FApproveID", ColumnType::kInteger},    {"FApprover", ColumnType::kText},
    {"FCashierID", ColumnType::kInteger},    {"FCashier", ColumnType::kText},
    {"FPosted", ColumnType::kBoolean},       {"FPosterID", ColumnType::kInteger},
    {"FPoster", ColumnType::kText},          {"FSummarized", ColumnType::kBoolean},
    {"FDeleted", ColumnType::kBoolean},
};

// The server settles FBaseQuantity: the quantity in the unit that its account counts in, where the
// line has another one; 0 where it counts as it was entered.
inline constexpr Column kLineColumns[] = {
    {"FAccountID", ColumnType::kLong},     {"FDC", ColumnType::kLong},
    {"FAmount", ColumnType::kCurrency},    {"FCurrencyID", ColumnType::kLong},
    {"FAmountFor", ColumnType::kCurrency}, {"FExchangeRate", ColumnType::kDouble},
    {"FQuantity", ColumnType::kDouble},    {"FBaseQuantity", ColumnType::kDouble},
    {"FUnitPrice", ColumnType::kDouble},   {"FMeasureUnitID", ColumnType::kLong},
    {"FMeasureUnit", ColumnType::kText},   {"FMeasureUnitNumber", ColumnType::kText},
    {"FExplanation", ColumnType::kText},   {"FCashFlowItem", ColumnType::kLong},
    {"FSettleTypeID", ColumnType::kLong},  {"FSettleNo", ColumnType::kText},
    {"FTransNo", ColumnType::kText},
};

// What other tables tell about a line.
inline constexpr Column kLineNames[] = {
    {"FAccountNumber", ColumnType::kText},  {"FAccountName", ColumnType::kText},
    {"FCurrencyNumber", ColumnType::kText}, {"FCurrencyName", ColumnType::kText},
    {"FSettleType", ColumnType::kText},     {"FSettleTypeName", ColumnType::kText},
};

inline constexpr Column kDetailColumns[] = {
    {"FDetail", ColumnType::kBoolean},       {"FItemClassID", ColumnType::kLong},
    {"FItemClassNumber", ColumnType::kText}, {"FItemClassName", ColumnType::kText},
    {"FItemID", ColumnType::kLong},          {"FItemNumber", ColumnType::kText},
    {"FItemName", ColumnType::kText},        {"FItemFullName", ColumnType::kText},
    {"FValue", ColumnType::kText},
};

// A column's name as a template argument.
template <std::size_t N>
struct ColumnName {
  consteval ColumnName(const char (&name)[N]) { std::copy_n(name, N, text); }
  constexpr std::string_view view() const { return {text, N - 1}; }
  char text[N];
};

// Values in the order of a list of columns, reached by a column's name: `cells.Get<"FYear">()`. A
// name that is not in the list does not compile.
template <const auto& kColumns>
class Cells {
 public:
  // The zero of every column.
  Cells() : values_(Zeros()) {}
  explicit Cells(std::vector<Variant> values) : values_(std::move(values)) {}

  const std::vector<Variant>& values() const { return values_; }

  template <ColumnName name>
  auto Get() const {
    return values_[PlaceOf(kColumns, name.view())]
        .template Held<TypeOf<kColumns[PlaceOf(kColumns, name.view())].type>>();
  }
  template <ColumnName name>
  void Put(TypeOf<kColumns[PlaceOf(kColumns, name.view())].type> value) {
    values_[PlaceOf(kColumns, name.view())] = Variant(std::move(value));
  }

 private:
  // A thread's own, as all values are.
  static const std::vector<Variant>& Zeros() {
    struct Own {
      Own() {
        for (const Column& column : kColumns) values.push_back(Normalized(column, {}));
      }
      std::vector<Variant> values;
    };
    return ThreadOwn<Own>().values;
  }

  std::vector<Variant> values_;
};

using HeaderCells = Cells<kHeaderColumns>;
using StateCells = Cells<kStateColumns>;
using LineCells = Cells<kLineColumns>;
using DetailCells = Cells<kDetailColumns>;

struct VoucherLine {
  LineCells cells;
  std::vector<Variant> names;                 // of kLineNames
  std::vector<std::vector<Variant>> details;  // each of kDetailColumns
  std::string extras;
};

// The lines under _Entries in a caller's row. BadValue, naming key and line, for a value that
// doesn't fit.
std::vector<VoucherLine> LinesFromRow(const Dictionary& row);
// The list of rows for a caller.
Ref<Vector> RowsOfLines(const std::vector<VoucherLine>& lines);

// The tables that keep lines with their details, of vouchers or of others that have such lines.
class LineTables {
 public:
  // The table of those who have the lines, with their id; the tables of lines and of details.
  LineTables(std::string_view owners, std::string_view id, std::string_view lines,
             std::string_view details);

  const StoredTable& lines() const { return lines_; }
  const StoredTable& details() const { return details_; }

  void Insert(Database& db, Long owner, const std::vector<VoucherLine>& lines) const;
  void Remove(Database& db, Long owner) const;
  // Asks for an owner's lines and details.
  void Ask(Database& db, Long owner) const;
  // Adds what was asked for to `lines`. False when they are not those of the owner's version, or
  // details are missing that there should be.
  bool Take(Database& db, Long version, bool has_details, std::vector<VoucherLine>& lines) const;

 private:
  StoredTable lines_, details_;
  RowInsertion insert_lines_, insert_details_;
  std::string read_lines_, read_details_, remove_lines_, remove_details_;
};

struct VoucherTree {
  HeaderCells header;
  StateCells state;
  std::string group;  // the group's name
  std::string extras;
  std::vector<VoucherLine> lines;

  // The voucher as people call it: "2024/1 Receipts 5".
  std::string Name() const;

  // What a caller has sent. BadValue, naming key and line, for a value that doesn't fit.
  static VoucherTree FromRow(const Dictionary& row);
  // The whole tree for a caller.
  Ref<Dictionary> ToRow() const;

  // One state of the voucher, whoever saves it meanwhile. Nothing when there is no such voucher.
  // Confirms the caller along the way.
  static std::optional<VoucherTree> Read(const Caller& caller, Long id);
  // Asks for the header alone, and keeps others from changing the voucher before the transaction
  // ends; takes the answer.
  static Statement& AskToHold(Database& db, Long id);
  static std::optional<VoucherTree> Held(Statement& asked);
  // Asks for lines and details; takes the answer. False when they are not those of the header's
  // version.
  static void AskForLines(Database& db, Long id);
  bool TakeLines(Database& db);
  // All vouchers with ids from `first` to `last`, without what other tables tell about lines; in a
  // transaction that shows one state of the books.
  static std::vector<VoucherTree> ReadRange(Database& db, Long first, Long last);

  // Writes the header of a new voucher, with the last number that its counter gave where it has
  // none; takes its id, and gives its number, nothing when another voucher has that.
  Statement& InsertHeader(Database& db) const;
  std::optional<std::int64_t> TakeInserted(Statement& asked);
  // Writes the lines of a new voucher; or writes everything over what is there.
  void InsertLines(Database& db) const;
  void Update(Database& db) const;

  // The voucher as the trail tells it: all but its id and what follows from its lines. Without
  // lines, where those don't change.
  enum class Trailing { kHeader, kWhole };
  TrailRow Trail(Trailing part) const;
};

// The tables of headers, lines, details and editors.
std::vector<StoredTable> VoucherTables();

// The columns of the list of headers.
std::span<const Column> VoucherListColumns();
// The headers that meet the filter, sorted, all or a page of them. BadFilter, BadSort, BadValue.
Ref<Recordset> ListVouchers(Database& db, bool with_deleted, std::string_view filter,
                            std::string_view sort, const std::optional<Page>& page);

}  // namespace qdclgl::server
