// Filter and sort texts of lists, run on a table: the database understands all that is let through,
// a filter and its opposite share out the rows, a sort loses none.
#include "qdclgl/server/db/filter.h"

#include <memory>

#include "qdclgl/server/db/refusals.h"
#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl;
using namespace qdclgl::server;
using fuzz::Require;

constexpr Column kColumns[] = {
    {"FName", ColumnType::kText},   {"FNote", ColumnType::kText},
    {"FYear", ColumnType::kLong},   {"FTotal", ColumnType::kCurrency},
    {"FDate", ColumnType::kDate},   {"FPosted", ColumnType::kBoolean},
    {"FRate", ColumnType::kDouble}, {"FSmall", ColumnType::kInteger},
};

Database& Table() {
  static const fuzz::TargetFile file("filter");
  static const std::unique_ptr<Database> db = [] {
    file.Write("");  // an empty file is an empty database
    auto made = std::make_unique<Database>(ConnectionText::Parse(file.path()));
    made->ExecuteScript(
        "CREATE TABLE t (FName TEXT, FNote TEXT, FYear INTEGER, FTotal INTEGER, FDate TEXT,"
        " FPosted INTEGER, FRate REAL, FSmall INTEGER);"
        "INSERT INTO t VALUES ('Ann', 'it''s', 2024, 1000500, '2024-01-31', 1, 1.5, 1);"
        "INSERT INTO t VALUES ('', 'INV-1', 2023, -1, '2024-02-29 13:05:00', 0, 0.0, 0);"
        "INSERT INTO t VALUES ('a%', 'a_\\', 0, 0, '', 0, -1e300, -1);");
    return made;
  }();
  return *db;
}

std::int64_t Count(const Filter& filter) {
  const std::unique_ptr<Statement> statement = Table().MakeStatement(
      "SELECT COUNT(*) FROM t" + (filter.sql.empty() ? "" : " WHERE " + filter.sql));
  for (std::size_t i = 0; i < filter.values.size(); ++i) {
    std::visit([&](const auto& value) { statement->Set(i, value); }, filter.values[i]);
  }
  statement->Open();
  Require(statement->Fetch(), "there is a count");
  return statement->Whole(0);
}

void LookAtFilter(std::string_view text) {
  try {
    const Filter filter = ParseFilter(text, kColumns);
    const std::int64_t rows = Count(filter);
    Require(rows >= 0 && rows <= 3, "a filter chooses among the rows");
    if (filter.sql.empty()) return;
    const std::string opposite = "NOT (" + std::string(text) + ")";
    Require(Count(ParseFilter(opposite, kColumns)) == 3 - rows,
            "a filter and its opposite share out the rows");
    Require(Count(ParseFilter("(" + std::string(text) + ") AND (" + std::string(text) + ")",
                              kColumns)) == rows,
            "a filter and itself is itself");
  } catch (const Error& error) {
    Require(error.number() == refusal::kBadFilter, "a filter is refused as such");
  }
}

void LookAtSort(std::string_view text) {
  try {
    const std::string sort = SortText(SortTerms(text, kColumns));
    const auto rows =
        Table().Query<Long>("SELECT FYear FROM t" + (sort.empty() ? "" : " ORDER BY " + sort));
    Require(rows.size() == 3, "a sort loses no row");
  } catch (const Error& error) {
    Require(error.number() == refusal::kBadSort, "a sort is refused as such");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  LookAtFilter(fuzz::TextOf(data, size));
  LookAtSort(fuzz::TextOf(data, size));
  return 0;
}
