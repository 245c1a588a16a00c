// What lines of vouchers refer to: settlement types.
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::Row;

class LineReferencesTest : public LedgerTest {
 protected:
  Long AddType(std::string_view number, std::string_view name = "") {
    return Call("QDSVGLSettType.SettTypeUpdate", "Create", props,
                Row({{"FNumber", number}, {"FName", name}}))
        .As<Long>();
  }
  void Remove(Long type) { Call("QDSVGLSettType.SettTypeUpdate", "Delete", props, Long{type}); }
  void Mark(Long type) {
    const auto row =
        Call("QDSVGLSettType.SettTypeInfo", "GetDetail", props, Long{type}).As<Dictionary>();
    row->Put("FDeleted", Integer{1});
    Call("QDSVGLSettType.SettTypeUpdate", "Update", props, Long{type}, row);
  }
  // Cash on account of Sales; the first line names the type.
  static Ref<Dictionary> SaleBy(Long type) {
    return Voucher("2024-01-15",
                   {Line("1000", 5, 0, {{"FSettleTypeID", type}}), Line("3000", 0, 5)});
  }
  static Ref<Dictionary> FirstLine(const Ref<Dictionary>& voucher) {
    return voucher->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>();
  }
  // "7 CHQ Check": what the first line of a stored voucher tells of its settlement type.
  std::string TypeIn(Long voucher) {
    const Ref<Dictionary> line = FirstLine(Read(voucher));
    return ValueText(line->Value("FSettleTypeID")) + " " + ValueText(line->Value("FSettleType")) +
           " " + ValueText(line->Value("FSettleTypeName"));
  }
};

TEST_P(LineReferencesTest, LinesTellNumberAndNameOfTheirSettlementType) {
  const Long type = AddType("chq", "Check");
  const Long voucher = Save(SaleBy(type)), plain = Save(Sale(5));
  EXPECT_EQ(TypeIn(voucher), std::to_string(type) + " CHQ Check");
  EXPECT_EQ(TypeIn(plain), "0  ");
  // Number and name follow the type; what a row sends of them is passed over.
  const Ref<Dictionary> row = Read(voucher);
  FirstLine(row)->Put("FSettleType", "OTHER");
  FirstLine(row)->Put("FSettleTypeName", "Other");
  Update(voucher, row);
  EXPECT_EQ(TypeIn(voucher), std::to_string(type) + " CHQ Check");
  FirstLine(row)->Put("FSettleTypeID", Long{0});
  Update(voucher, row);
  EXPECT_EQ(TypeIn(voucher), "0  ");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineReferencesTest, ASettlementTypeThatIsNoneOrMarkedIsRefusedByLine) {
  const Long type = AddType("CHQ");
  const Long voucher = Save(Sale(5));
  Mark(type);
  const std::string before = State();
  const std::string sentence = "8004421A: The new voucher of 2024-01-15: line 1: there is no "
                               "settlement type ";
  EXPECT_EQ(ErrorText([&] { Save(SaleBy(99)); }), sentence + "99.");
  EXPECT_EQ(ErrorText([&] { Save(SaleBy(-1)); }), sentence + "-1.");
  EXPECT_EQ(ErrorText([&] { Save(SaleBy(type)); }), sentence + std::to_string(type) + " in use.");
  const Ref<Dictionary> row = Read(voucher);
  FirstLine(row)->Put("FSettleTypeID", Long{99});
  EXPECT_EQ(RefusalOf([&] { Update(voucher, row); }), "BadReference");
  EXPECT_EQ(State(), before);
}

TEST_P(LineReferencesTest, ASettlementTypeThatIsMarkedStaysInTheVouchersThatHaveIt) {
  const Long type = AddType("CHQ", "Check");
  const Long voucher = Save(SaleBy(type));
  Mark(type);
  const Ref<Dictionary> row = Read(voucher);
  row->Put("FExplanation", "again");
  Update(voucher, row);
  EXPECT_EQ(TypeIn(voucher), std::to_string(type) + " CHQ Check");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineReferencesTest, ASettlementTypeThatALineNamesIsNotRemoved) {
  const Long type = AddType("CHQ", "Check");
  const Long voucher = Save(SaleBy(type));
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { Remove(type); }),
            "80044219: Settlement type CHQ (Check): voucher 2024/1 Receipts 1 refers to it.");
  EXPECT_EQ(State(), before);
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{voucher}, true);
  Remove(type);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(LineReferencesTest, ALineThatLeadsNowhereIsFound) {
  const Long voucher = Save(Sale(5));
  Break("UPDATE t_VoucherEntry SET FSettleTypeID = 7 WHERE FEntryID = 2");
  const auto list = Call("QDSVGLBooks.BooksInfo", "Check", props).As<Recordset>();
  EXPECT_EQ(
      TextOf(list, {"FRule", "FSubject", "FRecordID", "FRecord", "FProblem"}),
      "Reference Voucher " + std::to_string(voucher) +
          " 2024/1 Receipts 1 Its FSettleTypeID is 7, and there is no such settlement type.\n"
          "Record Voucher " +
          std::to_string(voucher) +
          " 2024/1 Receipts 1 It was changed past the trail: line 2 FSettleTypeID is 7, and its "
          "trail says nothing.\n");
}

QDCLGL_BOOKS_TEST(LineReferencesTest);

}  // namespace
}  // namespace qdclgl::server::testing
