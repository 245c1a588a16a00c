#include "qdclgl/server/db/list.h"

#include <algorithm>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

using Terms = std::span<const SortTerm>;

// What a list is sorted by as a whole: what the sort names, and then the list's own order.
std::vector<SortTerm> WholeOrder(const ListSource& source, std::string_view sort) {
  std::vector<SortTerm> terms;
  for (const std::string_view text : {sort, source.order}) {
    for (const SortTerm& term : SortTerms(text, source.columns)) {
      if (std::ranges::find(terms, term.column, &SortTerm::column) == terms.end()) {
        terms.push_back(term);
      }
    }
  }
  return terms;
}

// The columns of a list behind a row of it: how the row stands to them, with a placeholder for each
// value, and which of its values these are.
class BehindRow {
 public:
  BehindRow(const ListSource& source, Terms order, const Ref<Dictionary>& row)
      : source_(source), row_(*row), sql_(Behind(order)) {}

  const std::string& sql() const { return sql_; }

  // Gives the placeholders from `position` on their values, and tells the one behind them.
  std::size_t Bind(Statement& statement, std::size_t position) const {
    for (const SortTerm& term : values_) {
      const Column& column = *FindColumn(source_.columns, term.column);
      const Variant* value = row_.Find(column.name);
      if (value == nullptr) {
        Refuse(refusal::kBadValue,
               "The row that the page goes on behind has no " + std::string(column.name) + ".");
      }
      BindCell(statement, position++, column, *value);
    }
    return position;
  }

 private:
  // Columns that go in one direction are compared as one row, which an index can serve. Where the
  // direction turns, the columns before are the greater ones or the same ones; that they are not
  // less is said besides, for the index.
  std::string Behind(Terms order) {
    const bool falls = order.front().is_descending;
    const auto turn = std::ranges::find(order, !falls, &SortTerm::is_descending);
    const Terms same(order.begin(), turn), rest(turn, order.end());
    const std::string sign = falls ? "<" : ">";
    if (rest.empty()) return Compared(same, sign);
    std::string sql = Compared(same, sign + "=");
    sql += " AND (" + Compared(same, sign);
    sql += " OR (" + Compared(same, "=");
    sql += " AND " + Behind(rest) + "))";
    return sql;
  }

  std::string Compared(Terms terms, std::string_view sign) {
    std::string columns, places;
    for (const SortTerm& term : terms) {
      columns.append(columns.empty() ? "(" : ", ").append(term.column);
      places += places.empty() ? "(?" : ", ?";
      values_.push_back(term);
    }
    return columns + ") " + std::string(sign) + " " + places + ")";
  }

  const ListSource& source_;
  const Dictionary& row_;
  std::vector<SortTerm> values_;
  std::string sql_;
};

// A list in the making.
class ListQuery {
 public:
  ListQuery(Database& db, const ListSource& source, std::string_view filter, std::string_view sort,
            std::span<const BoundValue> values, const std::optional<Page>& page)
      : db_(db),
        source_(source),
        filter_(ParseFilter(filter, source.columns)),
        order_(WholeOrder(source, sort)),
        values_(values),
        page_(page) {
    if (page && page->behind) behind_.emplace(source, order_, page->behind);
  }

  Ref<Recordset> Fetch() const {
    if (page_ && !source_.walk.empty()) {
      if (filter_.sql.empty()) return Fetch(source_.walk);
      // A page whose rows stand close together is found by going along the index; where they
      // don't, it is quicker to read all rows than to go along the index to its end.
      constexpr int kFew = 5000;
      const std::string few = From(source_.walk) + BehindText(" WHERE ") + OrderText() + " LIMIT " +
                              std::to_string(kFew);
      Ref<Recordset> rows = Fetch("SELECT * " + few, Restricted::kInside);
      if (rows->RecordCount() == page_->count) return rows;
    }
    return Fetch(source_.query);
  }

 private:
  // Where the rows in front of the page are left out: of the query, or within it already.
  enum class Restricted : std::uint8_t { kOutside, kInside };

  static std::string From(std::string_view query) {
    return " FROM (" + std::string(query) + ") AS list";
  }
  std::string BehindText(const char* joined) const {
    return behind_ ? joined + behind_->sql() : "";
  }
  std::string OrderText() const { return " ORDER BY " + SortText(order_); }

  Ref<Recordset> Fetch(std::string_view query, Restricted restricted = Restricted::kOutside) const {
    const bool is_inside = restricted == Restricted::kInside;
    std::string sql = "SELECT " + NamesOf(source_.columns) + From(query);
    if (!filter_.sql.empty()) sql += " WHERE (" + filter_.sql + ")";
    if (!is_inside) sql += BehindText(filter_.sql.empty() ? " WHERE " : " AND ");
    sql += OrderText();
    if (page_) {
      sql += " LIMIT " + std::to_string(page_->count) + " OFFSET " + std::to_string(page_->first);
    }
    // Not kept: there is no end of filters.
    const std::unique_ptr<Statement> statement = db_.MakeStatement(sql);
    SetAll(*statement, values_);
    std::size_t position = values_.size();
    if (behind_ && is_inside) position = behind_->Bind(*statement, position);
    position = SetAll(*statement, filter_.values, position);
    if (behind_ && !is_inside) behind_->Bind(*statement, position);
    return RowsOf(*statement);
  }

  Ref<Recordset> RowsOf(Statement& statement) const {
    auto list = Make<Recordset>();
    for (const Column& column : source_.columns) list->AppendField(column.name);
    list->Open();
    for (statement.Open(); statement.Fetch();) list->AddRow(ReadCells(statement, source_.columns));
    return list;
  }

  Database& db_;
  const ListSource& source_;
  Filter filter_;
  std::vector<SortTerm> order_;
  std::span<const BoundValue> values_;
  const std::optional<Page>& page_;
  std::optional<BehindRow> behind_;
};

}  // namespace

std::size_t SetAll(Statement& statement, std::span<const BoundValue> values, std::size_t position) {
  for (const BoundValue& each : values) {
    std::visit([&](const auto& value) { statement.Set(position++, value); }, each);
  }
  return position;
}

std::optional<Page> PageIn(const Variant& asked) {
  if (asked.IsMissing() || asked.IsEmpty() || asked.IsNothing()) return {};
  const auto dictionary_in = [](const Variant& value) {
    return Ref<Dictionary>(value.IsObject() ? dynamic_cast<Dictionary*>(value.ObjectPointer())
                                            : nullptr);
  };
  const Ref<Dictionary> parameters = dictionary_in(asked);
  if (!parameters) Refuse(refusal::kBadValue, "The parameters are no Dictionary.");
  Page page;
  for (std::uint32_t i = 0; i < parameters->size(); ++i) {
    const std::string key(parameters->key_at(i));
    const Variant& value = parameters->value_at(i);
    if (key == "Behind") {
      page.behind = dictionary_in(value);
      if (!page.behind) Refuse(refusal::kBadValue, "A page goes on behind a row of the list.");
      continue;
    }
    const auto number = Normalized({key, ColumnType::kLong}, value).As<Long>();
    if (key == "First" && number >= 1) page.first = number - 1;
    else if (key == "Count" && number >= 0) page.count = number;
    else
      Refuse(refusal::kBadValue,
             "The parameters have no " + key + " of " + std::to_string(number) + ".");
  }
  return page;
}

std::string_view FirstSorted(const ListSource& source, std::string_view sort) {
  return WholeOrder(source, sort).front().column;
}

Ref<Recordset> FetchList(Database& db, const ListSource& source, std::string_view filter,
                         std::string_view sort, std::span<const BoundValue> values,
                         const std::optional<Page>& page) {
  return ListQuery(db, source, filter, sort, values, page).Fetch();
}

}  // namespace qdclgl::server
