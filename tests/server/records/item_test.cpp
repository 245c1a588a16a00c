#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr Long kDepartments = 1;

Long NewClass(RecordBooks& books) {
  static int number = 0;
  const std::string name = "C" + std::to_string(++number);
  return books
      .Call("QDSVGLItemClass.ItemClassUpdate", "Create", books.props,
            Row({{"FNumber", name}, {"FName", name}}))
      .As<Long>();
}

// A voucher with a line that names the item.
void NameInLine(RecordBooks& books, Long item) {
  const Long account = books.AddAccount("V" + std::to_string(item));
  auto details = Make<Vector>();
  details->Append(Row({{"FItemClassID", kDepartments}, {"FItemID", item}}));
  auto lines = Make<Vector>();
  for (const Long side : {1, 0}) {
    lines->Append(Row({{"FAccountID", account},
                       {"FDC", side},
                       {"FAmount", Currency(7)},
                       {"_Details", details->Clone()}}));
  }
  books.Call("QDSVGLVoucher.VoucherUpdate", "Create", books.props,
             Row({{"FDate", DateTime::FromYmd(2024, 1, 31)},
                  {"FGroupID", books.AddGroup("V" + std::to_string(item))},
                  {"_Entries", lines}}));
}

const RecordKind kItems = {
    .noun = "Item",
    .subject = "Item",
    .info = "QDSVGLItems.ItemInfo",
    .update = "QDSVGLItems.ItemUpdate",
    .table = "t_Item",
    .id = "FItemID",
    .columns = {{"FItemClassID", kDepartments, kDepartments},
                {"FParentID", Long{0}, Long{0}},
                {"FNumber", "SALES", "SHOPS"},
                {"FName", "Sales", "Shops"},
                {"FFullNumber", "SALES", "SHOPS"},
                {"FFullName", "Sales", "Shops"},
                {"FLevel", Integer{1}, Integer{1}},
                {"FDetail", true, true},
                {"FUNDetail", false, false},
                {"FHelpCode", "s", "h"},
                {"FModel", "m", "n"},
                {"FChkUserID", Long{0}, Long{0}},
                {"FRemark", "r", "t"},
                {"FDeleted", false, false},
                {"UUID", "u", "v"}},
    .absent = {{"FDetail", true}},
    .spelled = {{"FNumber", "sales"}},
    .longest = {{"FNumber", 255}, {"FName", 255}},
    .kept_by_server = {"FFullNumber", "FFullName", "FLevel", "FDetail", "FChkUserID"},
    .required = {"FNumber", "FName"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FItemClassID",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "ItemID",
    .text_argument = "Number",
    .mark = "FDeleted",
    .uses = {NameInLine},
    .references = {{.column = "FItemClassID",
                    .noun = "item class",
                    .id = "FItemClassID",
                    .update = "QDSVGLItemClass.ItemClassUpdate",
                    .make = NewClass,
                    .is_required = true}},
};
QDCLGL_RECORD_KIND(Item, kItems);

}  // namespace
}  // namespace qdclgl::server::testing
