// The keys that the library's classes read and write, against the columns that the server has.
#include <map>

#include "qdclgl/api/api_table.h"
#include "qdclgl/api/class_list.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

class KeysTest : public LedgerTest {
 protected:
  // The columns of a set's list with the types that its rows have.
  static std::map<std::string, VariantType, std::less<>> ColumnsOf(const ClassTable& set) {
    const Ref<Object> object = set.Create();
    object->Call("Refresh");
    const auto rows = object->Get("RecordSet").As<Recordset>();
    EXPECT_FALSE(rows->Eof()) << set.name();
    std::map<std::string, VariantType, std::less<>> columns;
    for (Long i = 0; i < rows->FieldCount(); ++i) {
      columns.emplace(rows->FieldName(i), rows->FieldValue(i).Type());
    }
    return columns;
  }
};

// The word of the API table for a type of values.
std::string_view Word(VariantType type) {
  switch (type) {
    case VariantType::kBoolean: return "Boolean";
    case VariantType::kInteger: return "Integer";
    case VariantType::kLong: return "Long";
    case VariantType::kSingle: return "Single";
    case VariantType::kDouble: return "Double";
    case VariantType::kCurrency: return "Currency";
    case VariantType::kDate: return "Date";
    case VariantType::kString: return "String";
    default: return "another";
  }
}

TEST_P(KeysTest, EachKeyOfAClassIsAColumnOfItsList) {
  AddVoucher(1, 1, 2, Currency(5));
  int sets = 0, keys = 0;
  for (const ClassTable* set : PublicClasses()) {
    const ClassMember* current = set->Find("GetCurrent");
    if (current == nullptr || set->Find("RecordSet") == nullptr) continue;
    ++sets;
    const auto columns = ColumnsOf(*set);
    for (const ApiRow& row : ApiRows()) {
      if (row.class_name != current->row.type || row.key.empty()) continue;
      if (row.key == "EditMode") continue;  // tells the server about the moment, and is not kept
      ++keys;
      const std::string called = std::string(row.class_name) + "." + std::string(row.member) +
                                 " (key " + std::string(row.key) + ")";
      const auto column = columns.find(row.key);
      if (column == columns.end()) {
        ADD_FAILURE() << called << ": " << set->name() << "'s list has no such column";
      } else {
        EXPECT_EQ(row.type, Word(column->second)) << called;
      }
    }
  }
  EXPECT_GE(sets, 4);
  EXPECT_GT(keys, 80);
}

QDCLGL_BOOKS_TEST(KeysTest);

}  // namespace
}  // namespace qdclgl::server::testing
