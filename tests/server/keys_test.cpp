// The keys that the library's classes read and write, against the columns that the server has.
#include <map>

#include "qdclgl/api/api_table.h"
#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/vouchers/voucher_tree.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

// The word of the API table for a column's type.
std::string_view Word(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean: return "Boolean";
    case ColumnType::kInteger: return "Integer";
    case ColumnType::kLong: return "Long";
    case ColumnType::kSingle: return "Single";
    case ColumnType::kDouble: return "Double";
    case ColumnType::kCurrency: return "Currency";
    case ColumnType::kDecimal: return "Decimal";
    case ColumnType::kDate: return "Date";
    case ColumnType::kText: return "String";
  }
  return "";
}

// The columns of a set's list, as its component describes them: that of the set's own name, or the
// one that has this column first.
std::span<const Column> DescribedFor(std::string_view set, std::string_view first) {
  for (const MasterData* kind : MasterDataKinds()) {
    if (std::string(kind->subject()) + "Set" == set) return kind->CallersColumns();
  }
  for (const MasterData* kind : MasterDataKinds()) {
    if (kind->CallersColumns()[0].name == first) return kind->CallersColumns();
  }
  return VoucherListColumns();
}

class KeysTest : public RecordsTest {
 protected:
  // The words for the types of a set's columns.
  static std::map<std::string_view, std::string_view> ColumnsOf(const ClassTable& set) {
    const Ref<Object> object = set.Create();
    object->Call("Refresh");
    const auto rows = object->Get("RecordSet").As<Recordset>();
    const std::span<const Column> described = DescribedFor(set.name(), rows->FieldName(0));
    Long lists = 0;  // of rows, which are no columns
    for (Long i = 0; i < rows->FieldCount(); ++i) lists += rows->FieldName(i).starts_with('_');
    EXPECT_EQ(static_cast<std::size_t>(rows->FieldCount() - lists), described.size()) << set.name();
    std::map<std::string_view, std::string_view> columns;
    for (const Column& column : described) {
      EXPECT_NO_THROW(rows->FieldPosition(column.name)) << set.name();
      columns[column.name] = Word(column.type);
    }
    return columns;
  }
};

TEST_P(KeysTest, EachKeyOfAClassIsAColumnOfItsList) {
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
        EXPECT_EQ(row.type, column->second) << called;
      }
    }
  }
  EXPECT_GE(sets, 4);
  EXPECT_GT(keys, 80);
}

QDCLGL_BOOKS_TEST(KeysTest);

}  // namespace
}  // namespace qdclgl::server::testing
