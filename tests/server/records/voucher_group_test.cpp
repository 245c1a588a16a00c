#include "qdclgl/server/records/voucher_group.h"

#include "qdclgl/frame/containers/vector.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLVoucherGroup.VoucherGroupInfo";
constexpr const char* kUpdate = "QDSVGLVoucherGroup.VoucherGroupUpdate";

class VoucherGroupTest : public RecordsTest {
 protected:
  Long Create(const Ref<Dictionary>& row) { return Call(kUpdate, "Create", props, row).As<Long>(); }
  void Update(Long id, const Ref<Dictionary>& row) {
    Call(kUpdate, "Update", props, ByRef(id), row);
  }
  void Delete(Long id, Long sign = 0) {
    Call(kUpdate, "Delete", props, ByRef(id), std::string("HOST"), std::string("10.0.0.1"),
         ByRef(sign));
  }
  Ref<Dictionary> Detail(Long id) {
    return Call(kInfo, "GetDetail", props, ByRef(id)).As<Dictionary>();
  }
  std::string Names(Long options = 0, std::string filter = "", std::string sort = "") {
    return TextOf(
        Call(kInfo, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort)).As<Recordset>(),
        {"FName"});
  }
  Long AddVoucherIn(Long group) {
    return AddVoucher(group, AddAccount("1000"), AddAccount("2000"), Currency(5));
  }
};

TEST_P(VoucherGroupTest, AGroupKeepsAllItsColumns) {
  const Ref<Dictionary> row = Row({{"FName", "Receipts"},
                                   {"FStandard", Integer{1}},
                                   {"FLimitMulti", Integer{5}},
                                   {"FDRange", "D"},
                                   {"FCRange", "C"},
                                   {"FDCRange", "DC"},
                                   {"FNDRange", "ND"},
                                   {"FNCRange", "NC"},
                                   {"FNDCRange", "NDC"},
                                   {"UUID", "anything"}});
  const Long id = Create(row);
  EXPECT_EQ(TextOf(*Detail(id)),
            "FGroupID=" + std::to_string(id) +
                ";FVersion=1;FName=Receipts;FStandard=1;FLimitMulti=5;FDRange=D;FCRange=C;"
                "FDCRange=DC;FNDRange=ND;FNCRange=NC;FNDCRange=NDC;FDeleted=False;UUID=anything;");
  EXPECT_EQ(row->Value("FGroupID").As<Long>(), id);
  EXPECT_EQ(row->Value("FVersion").As<Long>(), 1);
  Update(id, Row({{"FName", "Payments"}, {"FVersion", Long{1}}}));
  EXPECT_EQ(TextOf(*Detail(id)),
            "FGroupID=" + std::to_string(id) +
                ";FVersion=2;FName=Payments;FStandard=0;FLimitMulti=0;FDRange=;FCRange=;FDCRange=;"
                "FNDRange=;FNCRange=;FNDCRange=;FDeleted=False;UUID=;");
}

TEST_P(VoucherGroupTest, AGroupIsFoundByIdAndName) {
  const Long id = AddGroup("O'Neill; DROP TABLE t_VoucherGroup --");
  Variant name = "O'Neill; DROP TABLE t_VoucherGroup --";
  EXPECT_EQ(Call(kInfo, "GetDetailByNumber", props, ByRef(name))
                .As<Dictionary>()
                ->Value("FGroupID")
                .As<Long>(),
            id);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("Name", ByRef(name))).As<Long>(), id);
  Variant key = id;
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("VoucherGroupID", ByRef(key))).As<Long>(),
            id);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("Name", "receipts")).As<Long>(), 0);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("Name", "' OR ''='")).As<Long>(), 0);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, Named("VoucherGroupID", Long{99})).As<Long>(), 0);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props).As<Long>(), 0);
  EXPECT_EQ(Call(kInfo, "GetDetailByNumber", props, "").As<Dictionary>(), nullptr);
  EXPECT_EQ(RefusalOf([&] { Call(kInfo, "ExistenceCheck", props, Named("Nmae", "x")); }),
            "error 448");
  EXPECT_EQ(RefusalOf([&] { Call(kInfo, "ExistenceCheck", props, "no id"); }), "error 13");
}

TEST_P(VoucherGroupTest, NamesAreNeededAndUnique) {
  AddGroup("Receipts");
  const Long id = AddGroup("Payments");
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "NameTaken");
  EXPECT_EQ(RefusalOf([&] { AddGroup(""); }), "Required");
  EXPECT_EQ(RefusalOf([&] { Create(Make<Dictionary>()); }), "Required");
  EXPECT_EQ(RefusalOf([&] { AddGroup(std::string(256, 'x')); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { AddGroup(std::string("a\0b", 3)); }), "BadValue");
  const Ref<Dictionary> row = Detail(id);
  row->Value("FName", "Receipts");
  EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "NameTaken");
  EXPECT_EQ(SentenceOf([&] { Update(id, row); }),
            "Voucher group Receipts has FName Receipts already.");
  EXPECT_EQ(State(), before);
  AddGroup(std::string(255, 'x'));
  AddGroup("receipts");  // case counts
}

TEST_P(VoucherGroupTest, OldVersionsAreRefused) {
  const Long id = AddGroup("Receipts");
  const Ref<Dictionary> old = Detail(id), row = Detail(id);
  Update(id, row);
  const std::string before = State(), sent = TextOf(*old);
  EXPECT_EQ(SentenceOf([&] { Update(id, old); }),
            "Voucher group Receipts: saved by somebody else in the meantime; it has version 2, the "
            "row sent is version 1.");
  EXPECT_EQ(TextOf(*old), sent);
  EXPECT_EQ(State(), before);
}

TEST_P(VoucherGroupTest, AnUnusedGroupIsRemoved) {
  const Long id = AddGroup("Receipts");
  Delete(id);
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Delete(id, 1); }), "NotFound");
}

TEST_P(VoucherGroupTest, AGroupWithVouchersIsOnlyMarked) {
  const Long id = AddGroup("Receipts");
  AddVoucherIn(id);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse");
  EXPECT_EQ(State(), before);
  Delete(id, -7);
  EXPECT_EQ(Names(), "");
  EXPECT_EQ(Names(1), "Receipts\n");
  EXPECT_TRUE(Detail(id)->Value("FDeleted").As<Boolean>());
  EXPECT_EQ(Detail(id)->Value("FVersion").As<Long>(), 2);
  EXPECT_EQ(RefusalOf([&] { AddGroup("Receipts"); }), "NameTaken");
  const Ref<Dictionary> row = Detail(id);
  row->Value("FDeleted", false);
  Update(id, row);
  EXPECT_EQ(Names(), "Receipts\n");
}

TEST_P(VoucherGroupTest, AGroupWhoseVouchersArePurgedIsRemovedWithItsCounters) {
  const Long id = AddGroup("Receipts");
  const Long voucher = AddVoucherIn(id);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, voucher, true);
  Delete(id);
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherGroupTest, ListsFilterAndSort) {
  AddGroup("Receipts");
  AddGroup("Payments");
  AddGroup("100% \\ _");
  EXPECT_EQ(Names(), "Receipts\nPayments\n100% \\ _\n");
  EXPECT_EQ(Names(0, "", "FName DESC"), "Receipts\nPayments\n100% \\ _\n");
  EXPECT_EQ(Names(0, "FName LIKE '100\\% \\\\ \\_'"), "100% \\ _\n");
  EXPECT_EQ(Names(0, "FName LIKE 'p%'"), "") << "case counts on every database";
  EXPECT_EQ(RefusalOf([&] { Names(0, "1=1; DROP TABLE t_VoucherGroup"); }), "BadFilter");
}

TEST_P(VoucherGroupTest, OnlyAdministratorsWrite) {
  const Long id = AddGroup("Receipts");
  const Ref<Dictionary> row = Detail(id);
  ExpectAdministratorsOnly([&](const std::string& who) {
    Call(kUpdate, "Create", who, Row({{"FName", "Mine"}}));
  });
  ExpectAdministratorsOnly(
      [&](const std::string& who) { Call(kUpdate, "Update", who, Long{id}, row); });
  ExpectAdministratorsOnly([&](const std::string& who) { Call(kUpdate, "Delete", who, Long{id}); });
}

TEST_P(VoucherGroupTest, AFailureAtAnyStatementOfASaveLeavesNothingBehind) {
  const Ref<Dictionary> row = Row({{"FName", "Receipts"}});
  FailEachStatement([&] { Create(row); }, [&] { return TextOf(*row); });
  const auto id = row->Value("FGroupID").As<Long>();
  row->Value("FDRange", "1000");
  FailEachStatement([&] { Update(id, row); }, [&] { return TextOf(*row); });
  FailEachStatement([&] { Delete(id, 1); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Detail(id), nullptr);
}

QDCLGL_BOOKS_TEST(VoucherGroupTest);

}  // namespace
}  // namespace qdclgl::server::testing
