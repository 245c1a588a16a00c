// The tables of the database against the descriptions of their columns, and the migrations that
// have been released.
#include <map>
#include <set>

#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/db/schema.h"
#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/vouchers/voucher_tree.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

std::string Folded(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return folded;
}

class TablesTest : public RecordsTest {
 protected:
  using Types = std::map<std::string, std::string>;

  // Column to type, "whole", "real" or "text", in lower case; nothing for a table that isn't there.
  Types TypesOf(std::string_view table) const {
    Database& db = Books();
    static const std::map<std::string, std::string> kWords = {{"integer", "whole"},
                                                              {"bigint", "whole"},
                                                              {"real", "real"},
                                                              {"double precision", "real"},
                                                              {"text", "text"}};
    Types types;
    for (const auto& [name, type] :
         db.IsSQLite() ? db.Query<std::string, std::string>(
                             "SELECT name, type FROM pragma_table_info(?)", table)
                       : db.Query<std::string, std::string>(
                             "SELECT column_name, data_type FROM information_schema.columns"
                             " WHERE table_schema = current_schema() AND table_name = ?",
                             Folded(table))) {
      const auto word = kWords.find(Folded(type));
      types[Folded(name)] = word != kWords.end() ? word->second : type;
    }
    return types;
  }
};

std::vector<StoredTable> DescribedTables() {
  std::vector<StoredTable> tables = VoucherTables();
  std::ranges::copy(AuditTables(), std::back_inserter(tables));
  for (const MasterData* kind : MasterDataKinds()) {
    for (StoredTable& table : kind->Tables()) tables.push_back(std::move(table));
  }
  return tables;
}

TEST_P(TablesTest, HaveTheColumnsThatTheirDescriptionsSay) {
  for (const StoredTable& table : DescribedTables()) {
    Types types = TypesOf(table.name);
    for (const Column& column : table.columns) {
      const std::string called = std::string(table.name) + "." + std::string(column.name);
      const auto found = types.find(Folded(column.name));
      if (found == types.end()) {
        ADD_FAILURE() << called << " is described and not in the database: a file of "
                      << "qdclgl/server/db/migrations/ has to add it";
        continue;
      }
      const Storage storage = StorageOf(column.type);
      EXPECT_EQ(found->second, storage == Storage::kWhole  ? "whole"
                               : storage == Storage::kReal ? "real"
                                                           : "text")
          << called;
      types.erase(found);
    }
    for (const auto& [name, type] : types) {
      ADD_FAILURE() << table.name << "." << name << " is in the database and not described";
    }
  }
}

// The others are written and read by SQL of their own.
TEST_P(TablesTest, EachOfMasterDataAndVouchersIsDescribed) {
  std::set<std::string> others = {"t_schema",          "t_systemprofile",       "t_counter",
                                  "t_balance",         "t_yearbalance",         "t_itembalance",
                                  "t_itemcombination", "t_itemcombinationitem", "t_posted",
                                  "t_postedline",      "t_loginfailure",        "t_keptsession",
                                  "t_textsignature"};
  for (const StoredTable& table : DescribedTables()) {
    EXPECT_TRUE(others.insert(Folded(table.name)).second) << table.name << " is described twice";
  }
  Database& db = Books();
  const auto tables = db.Query<std::string>(
      db.Dialect("SELECT name FROM sqlite_master WHERE type = 'table' AND name LIKE 't\\_%'"
                 " ESCAPE '\\'",
                 "SELECT table_name FROM information_schema.tables"
                 " WHERE table_schema = current_schema()"));
  for (const auto& [table] : tables) {
    EXPECT_TRUE(others.contains(Folded(table)))
        << table << " is in the database, and no kind of master data describes it";
  }
}

QDCLGL_BOOKS_TEST(TablesTest);

// A sum over a migration's text, as it stood when it was released.
std::uint64_t SumOf(const Migration& migration) {
  std::uint64_t sum = 14695981039346656037u;
  for (const std::string_view text : {migration.title, migration.sql}) {
    for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211u;
  }
  return sum;
}

TEST(MigrationsTest, AreNotEditedOnceTheyAreReleased) {
  // A release adds a line for each migration that it brings.
  constexpr std::uint64_t kReleased[] = {13391754157813545644u, 3187585371028099796u};
  ASSERT_GE(Migrations().size(), std::size(kReleased));
  for (std::size_t i = 0; i < std::size(kReleased); ++i) {
    EXPECT_EQ(SumOf(Migrations()[i]), kReleased[i])
        << "\"" << Migrations()[i].title << "\" has been released, and there are books that it has "
        << "made: take the edit back and add a file to qdclgl/server/db/migrations/";
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
