// Quantities of lines in other units than those that their accounts count in.
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::Row;

constexpr const char* kUnits = "QDSVGLUnit.MeasureUnitUpdate";

class QuantitiesTest : public LedgerTest {
 protected:
  // Groups "Weights" with g (the default unit), kg and t, and "Pieces" with pc and dz. Accounts
  // 5000 in kg and 5100 in the default unit of Weights, 5200 in dz.
  QuantitiesTest() {
    weights = AddUnitGroup("Weights");
    gram = AddUnit(weights, "g", 1);
    kilogram = AddUnit(weights, "kg", 1000);
    tonne = AddUnit(weights, "t", 1e6);
    pieces = AddUnitGroup("Pieces");
    piece = AddUnit(pieces, "pc", 1);
    dozen = AddUnit(pieces, "dz", 12);
    AddAccountIn("5000", weights, kilogram);
    AddAccountIn("5100", weights, 0);
    AddAccountIn("5200", pieces, dozen);
  }

  Long AddUnitGroup(std::string_view name) {
    return Call(kUnits, "CreateUnitGroup", props, name).As<Long>();
  }
  Long AddUnit(Long group, std::string_view number, Double coefficient) {
    const auto row = Row({{"FNumber", number}, {"FName", number}, {"FCoefficient", coefficient}});
    return Call(kUnits, "CreateUnit", props, group, row).As<Long>();
  }
  void AddAccountIn(std::string_view number, Long group, Long unit) {
    Call("QDSVGLAccount.AccountUpdate", "Create", props,
         Row({{"FNumber", number},
              {"FName", number},
              {"FUnitGroupID", group},
              {"FMeasureUnitID", unit}}));
  }
  void ChangeAccount(std::string_view number, Long group, Long unit) {
    const auto row =
        Call("QDSVGLAccount.AccountInfo", "GetDetailByNumber", props, number).As<Dictionary>();
    row->Put("FUnitGroupID", group);
    row->Put("FMeasureUnitID", unit);
    Call("QDSVGLAccount.AccountUpdate", "Update", props, row->Value("FAccountID"), row);
  }
  void SetCoefficient(Long unit, Double coefficient) {
    const auto row =
        Call("QDSVGLUnit.MeasureUnitInfo", "GetUnitDetail", props, unit).As<Dictionary>();
    row->Put("FCoefficient", coefficient);
    Call(kUnits, "UpdateUnit", props, unit, row);
  }

  // Goods on that account against Cash.
  Ref<Dictionary> Goods(std::string_view account, Double quantity, Long unit) {
    return Voucher("2024-01-15",
                   {Line(account, 10, 0,
                         {{"FQuantity", quantity}, {"FMeasureUnitID", unit}, {"FUnitPrice", 4.0}}),
                    Line("1000", 0, 10)});
  }
  // "2.5 t at 4, counts as 2500": the first line as it is read.
  std::string FirstLine(Long voucher) {
    const auto line = Read(voucher)->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>();
    return ValueText(line->Value("FQuantity")) + " " + ValueText(line->Value("FMeasureUnit")) +
           " at " + ValueText(line->Value("FUnitPrice")) + ", counts as " +
           ValueText(line->Value("FBaseQuantity"));
  }
  // "debits - credits = end" of an account, from the stored balances, which the lines agree with.
  std::string Counted(std::string_view account) {
    const auto text = [&](const char* method) {
      const auto list =
          Call("QDSVGLBalance.BalanceInfo", method, props, Long{2024}, Long{1}, Long{1},
               "FCurrencyID = 0 AND FAccountNumber = '" + std::string(account) + "'");
      return TextOf(list.As<Recordset>(), {"FDebitQty", "FCreditQty", "FEndQty"});
    };
    EXPECT_EQ(text("GetList"), text("GetListFromLines"));
    return text("GetList");
  }

  Long weights = 0, gram = 0, kilogram = 0, tonne = 0, pieces = 0, piece = 0, dozen = 0;
};

TEST_P(QuantitiesTest, AQuantityCountsInTheUnitOfItsAccountAndReadsAsItWasEntered) {
  const Long in_tonnes = Save(Goods("5000", 2.5, tonne)),
             in_grams = Save(Goods("5000", -500, gram)),
             in_kilograms = Save(Goods("5000", 3, kilogram)), bare = Save(Goods("5000", 0.25, 0));
  for (const Long voucher : {in_tonnes, in_grams, in_kilograms, bare}) Step("Post", voucher);
  EXPECT_EQ(FirstLine(in_tonnes), "2.5 t at 4, counts as 2500");
  EXPECT_EQ(FirstLine(in_grams), "-500 g at 4, counts as -0.5");
  EXPECT_EQ(FirstLine(in_kilograms), "3 kg at 4, counts as 0") << "as it was entered";
  EXPECT_EQ(FirstLine(bare), "0.25  at 4, counts as 0") << "in the account's unit";
  EXPECT_EQ(Counted("5000"), "2502.75 0 2502.75\n");
  EXPECT_EQ(Breaches(), "");
  Step("UnPost", in_tonnes);
  EXPECT_EQ(Counted("5000"), "2.75 0 2.75\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(QuantitiesTest, AnAccountWithoutAUnitCountsInTheDefaultOneOfItsGroup) {
  Step("Post", Save(Goods("5100", 2, kilogram)));
  Step("Post", Save(Goods("5100", 5, gram)));
  EXPECT_EQ(Counted("5100"), "2005 0 2005\n");
}

TEST_P(QuantitiesTest, WhatIsConvertedIsRoundedOnceToFifteenDigits) {
  const Long voucher = Save(Goods("5200", 7, piece));
  EXPECT_EQ(FirstLine(voucher), "7 pc at 4, counts as 0.583333333333333");
  const Long many = Save(Goods("5200", 999999999996, piece));
  EXPECT_EQ(FirstLine(many), "999999999996 pc at 4, counts as 83333333333");
  Step("Post", voucher);
  EXPECT_EQ(Counted("5200"), "0.583333 0 0.583333\n") << "balances count millionths";
  EXPECT_EQ(Breaches(), "");
}

TEST_P(QuantitiesTest, ACallerDoesNotSayWhatAQuantityCountsAs) {
  const Ref<Dictionary> sent = Goods("5000", 3, kilogram);
  sent->Value("_Entries").As<Vector>()->Item(1).As<Dictionary>()->Put("FBaseQuantity", 99.0);
  EXPECT_EQ(FirstLine(Save(sent)), "3 kg at 4, counts as 0");
}

TEST_P(QuantitiesTest, ACoefficientThatChangesLeavesWhatWasSavedAndHoldsFromTheNextSaveOn) {
  const Long before = Save(Goods("5000", 2, tonne)), posted = Save(Goods("5000", 1, tonne));
  Step("Post", posted);
  SetCoefficient(tonne, 2e6);
  EXPECT_EQ(FirstLine(before), "2 t at 4, counts as 2000");
  EXPECT_EQ(Counted("5000"), "1000 0 1000\n");
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(FirstLine(Save(Goods("5000", 2, tonne))), "2 t at 4, counts as 4000");
  Update(before, Read(before));
  EXPECT_EQ(FirstLine(before), "2 t at 4, counts as 4000");
  Step("UnPost", posted);
  EXPECT_EQ(Counted("5000"), "") << "what was posted is what is taken out";
  EXPECT_EQ(Breaches(), "");
}

TEST_P(QuantitiesTest, AdjustingAllCoefficientsOfAGroupChangesNoQuantity) {
  const Long voucher = Save(Goods("5000", 2, tonne));
  Call(kUnits, "AdjustCoefficient", props, weights, 1000.0, true);
  Update(voucher, Read(voucher));
  EXPECT_EQ(FirstLine(voucher), "2 t at 4, counts as 2000");
}

TEST_P(QuantitiesTest, AnAccountKeepsTheUnitThatVouchersCountIn) {
  ChangeAccount("5000", weights, tonne);
  ChangeAccount("5000", weights, kilogram);
  Save(Sale(5));
  Save(Goods("5000", 2, tonne));
  Save(Goods("5100", 2, tonne));
  Save(Voucher("2024-01-15", {Line("2000", 5, 0, {{"FQuantity", 7.0}}), Line("1000", 0, 5)}));
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { ChangeAccount("5000", weights, tonne); }),
            "80044219: Account 5000 (5000): vouchers count its quantities in kg; that unit stays.");
  EXPECT_EQ(RefusalOf([&] { ChangeAccount("5000", weights, 0); }), "InUse");
  EXPECT_EQ(RefusalOf([&] { ChangeAccount("5000", 0, 0); }), "InUse");
  EXPECT_EQ(RefusalOf([&] { ChangeAccount("5100", weights, kilogram); }), "InUse");
  EXPECT_EQ(State(), before);
  ChangeAccount("5100", weights, gram);
  ChangeAccount("2000", pieces, piece);  // its quantities had no unit
  EXPECT_EQ(Breaches(), "");
}

TEST_P(QuantitiesTest, AGroupKeepsTheDefaultUnitThatVouchersCountIn) {
  Save(Goods("5000", 2, tonne));
  Call(kUnits, "SetDefaultMeasureUnit", props, weights, kilogram);
  Call(kUnits, "SetDefaultMeasureUnit", props, weights, gram);
  Save(Goods("5100", 2, tonne));
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { Call(kUnits, "SetDefaultMeasureUnit", props, weights, kilogram); }),
            "80044219: Unit group Weights: vouchers count the quantities of account 5100 in its "
            "default unit; give the account that unit first.");
  EXPECT_EQ(RefusalOf([&] { Call(kUnits, "AdjustCoefficient", props, weights, 1000.0, true); }),
            "InUse");
  Call(kUnits, "SetDefaultMeasureUnit", props, weights, gram);
  EXPECT_EQ(State(), before);
  ChangeAccount("5100", weights, gram);
  Call(kUnits, "SetDefaultMeasureUnit", props, weights, kilogram);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(QuantitiesTest, TheLastUnitOfAGroupStaysWhileVouchersCountInIt) {
  const Long group = AddUnitGroup("Lengths"), metre = AddUnit(group, "m", 1);
  AddAccountIn("5300", group, 0);
  Save(Goods("5300", 2, 0));
  EXPECT_EQ(RefusalOf([&] { Call(kUnits, "DeleteUnit", props, metre); }), "InUse");
}

TEST_P(QuantitiesTest, WhatIsTooLargeOnlyInTheAccountsUnitIsRefused) {
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { Save(Goods("5000", 2e9, tonne)); }),
            "8004422D: The new voucher of 2024-01-15: line 1: the quantity is too large.");
  EXPECT_EQ(State(), before);
}

TEST_P(QuantitiesTest, TheCheckFindsAQuantityThatNeededNoConversion) {
  const Long voucher = Save(Goods("5000", 3, kilogram));
  Break("UPDATE t_VoucherEntry SET FBaseQuantity = 4 WHERE FEntryID = 1");
  EXPECT_EQ(Breaches(), "LineQuantity Voucher " + std::to_string(voucher) +
                            " 2024/1 Receipts 1, line 1\nRecord Voucher " +
                            std::to_string(voucher) + " 2024/1 Receipts 1\n");
}

QDCLGL_BOOKS_TEST(QuantitiesTest);

}  // namespace
}  // namespace qdclgl::server::testing
