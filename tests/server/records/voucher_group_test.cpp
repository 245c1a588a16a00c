#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLVoucherGroup.VoucherGroupInfo";
constexpr const char* kUpdate = "QDSVGLVoucherGroup.VoucherGroupUpdate";

Long AddVoucherIn(RecordBooks& books, Long group) {
  const std::string number = std::to_string(group);
  return books.AddVoucher(group, books.AddAccount("D" + number), books.AddAccount("C" + number),
                          Currency(5));
}

const RecordKind kGroups = {
    .noun = "Voucher group",
    .subject = "VoucherGroup",
    .info = kInfo,
    .update = kUpdate,
    .table = "t_VoucherGroup",
    .id = "FGroupID",
    .columns = {{"FName", "Receipts", "Payments"},
                {"FStandard", Integer{1}, Integer{2}},
                {"FLimitMulti", Integer{5}, Integer{6}},
                {"FDRange", "D", "d"},
                {"FCRange", "C", "c"},
                {"FDCRange", "DC", "dc"},
                {"FNDRange", "ND", "nd"},
                {"FNCRange", "NC", "nc"},
                {"FNDCRange", "NDC", "ndc"},
                {"FDeleted", false, false},
                {"UUID", "u", "v"}},
    .longest = {{"FName", 255}},
    .required = {"FName"},
    .unique = {{"FName", "NameTaken"}},
    .order = "FGroupID",
    .text_key = "FName",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "VoucherGroupID",
    .text_argument = "Name",
    .mark = "FDeleted",
    .mark_by_sign = true,
    .uses = {[](RecordBooks& books, Long group) { AddVoucherIn(books, group); }},
};
QDCLGL_RECORD_KIND(VoucherGroup, kGroups);

class VoucherGroupTest : public RecordsTest {
 protected:
  void Delete(Long id, Long sign = 0) {
    Call(kUpdate, "Delete", props, id, "HOST", "10.0.0.1", sign);
  }
  Ref<Dictionary> Detail(Long id) { return Call(kInfo, "GetDetail", props, id).As<Dictionary>(); }
};

TEST_P(VoucherGroupTest, AGroupWithVouchersIsMarkedButNotRemoved) {
  const Long id = AddGroup("Receipts");
  AddVoucherIn(*this, id);
  Delete(id, -7);
  EXPECT_TRUE(Detail(id)->Value("FDeleted").As<Boolean>());
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse");
}

TEST_P(VoucherGroupTest, AGroupWhoseVouchersArePurgedIsRemovedWithItsCounters) {
  const Long id = AddGroup("Receipts");
  const Long voucher = AddVoucherIn(*this, id);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, voucher, true);
  Delete(id);
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherGroupTest, NamesDifferInCase) {
  AddGroup("Receipts");
  AddGroup("receipts");
  EXPECT_EQ(
      Call(kInfo, "GetList", props, Long{0}, "FName LIKE 'r%'").As<Recordset>()->RecordCount(), 1);
}

QDCLGL_BOOKS_TEST(VoucherGroupTest);

}  // namespace
}  // namespace qdclgl::server::testing
