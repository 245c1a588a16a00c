// What a year ends with.
#include "qdclgl/server/reports/year_end.h"

#include "tests/server/reports/statement_fixture.h"

namespace qdclgl::server::testing {
namespace {

class YearEndTest : public StatementTest {
 protected:
  YearEndTest() {
    TellKinds();
    AddAccount("5000", "Earnings", "equity");
  }

  Long IdOf(std::string_view number) { return AccountRow(number)->Value("FAccountID").As<Long>(); }
  Ref<Recordset> Fetch(Long year = 2024, std::string_view account = "5000") {
    return Call("QDSVGLYearEnd.YearEndInfo", "GetResultVouchers", props, year, IdOf(account))
        .As<Recordset>();
  }
  static Ref<Vector> LinesOf(const Ref<Dictionary>& voucher) {
    return voucher->Value("_Entries").As<Vector>();
  }
  // "2024-12-31 Result of 2024 TransferPL" and a line for each line: "3000 debit 5 USD 4 x 2".
  std::string Text(const Ref<Recordset>& vouchers) {
    std::string text;
    for (; !vouchers->Eof(); vouchers->MoveNext()) {
      const Ref<Dictionary> voucher = vouchers->Row();
      text += voucher->Value("FDate").As<DateTime>().ToText() + " " +
              CStr(voucher->Value("FExplanation")) + " " + CStr(voucher->Value("FInternalInd")) +
              "\n";
      const Ref<Vector> lines = LinesOf(voucher);
      for (std::size_t i = 0; i < lines->size(); ++i) {
        const auto line = lines->at(i).As<Dictionary>();
        const auto number =
            Call("QDSVGLAccount.AccountInfo", "GetDetail", props, line->Value("FAccountID"))
                .As<Dictionary>()
                ->Value("FNumber")
                .As<String>();
        text += number + (line->Value("FDC").As<Long>() == 1 ? " debit " : " credit ") +
                ValueText(line->Value("FAmount"));
        if (line->Value("FCurrencyID").As<Long>() != 1) {
          text += " USD " + ValueText(line->Value("FAmountFor"));
        }
        if (line->Contains("FQuantity")) text += " x " + ValueText(line->Value("FQuantity"));
        text += "\n";
      }
    }
    return text;
  }
  // Saves and posts them, as clients do.
  std::vector<Long> Carry(Long year = 2024) {
    std::vector<Long> ids;
    for (const Ref<Recordset> rows = Fetch(year); !rows->Eof(); rows->MoveNext()) {
      const Ref<Dictionary> voucher = rows->Row();
      voucher->Put("FGroup", "Receipts");
      ids.push_back(Save(voucher));
      Step("Post", ids.back());
    }
    return ids;
  }
};

TEST_P(YearEndTest, IncomeAndExpenseGoToTheEquityAndLeaveNothing) {
  Post("2024-01-15", "1000", "3000", Currency(400));
  Post("2024-02-01", "4000.01", "1000", Currency(100));
  EXPECT_EQ(Text(Fetch()), "2024-12-31 Result of 2024 TransferPL\n"
                           "3000 debit 400\n"
                           "4000.01 credit 100\n"
                           "5000 credit 300\n");
  EXPECT_EQ(Carry().size(), 1u);
  EXPECT_EQ(Text(Fetch()), "");
  EXPECT_EQ(BalanceText(2025), "1000 0 300 0 0 300\n1000 1 300 0 0 300\n"
                               "5000 0 -300 0 0 -300\n5000 1 -300 0 0 -300\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(YearEndTest, ALossIsADebitOfTheEquityAndNoResultNeedsNoLine) {
  Post("2024-02-01", "4000.01", "1000", Currency(100));
  EXPECT_EQ(Text(Fetch()), "2024-12-31 Result of 2024 TransferPL\n"
                           "4000.01 credit 100\n"
                           "5000 debit 100\n");
  Post("2024-02-01", "1000", "3000", Currency(100));
  EXPECT_EQ(Text(Fetch()), "2024-12-31 Result of 2024 TransferPL\n"
                           "3000 debit 100\n"
                           "4000.01 credit 100\n");
}

TEST_P(YearEndTest, CurrenciesAndQuantitiesGoToZeroEachForItself) {
  Step("Post",
       Save(Voucher(
           "2024-01-05",
           {Line("4000.01", Currency(11), 0,
                 {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(10)}, {"FQuantity", 2.5}}),
            Line("4000.01", Currency(3), 0), Line("1000", 0, Currency(14))})));
  // What is left of the dollars is worth less than nothing.
  Step("Post", Save(Voucher("2024-02-05",
                            {Line("1000", Currency(12), 0),
                             Line("4000.01", 0, Currency(12),
                                  {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(4)}})})));
  EXPECT_EQ(Text(Fetch()), "2024-12-31 Result of 2024 TransferPL\n"
                           "4000.01 credit 3\n"
                           "4000.01 debit 1 USD 0 x -2.5\n"
                           "4000.01 credit 0 USD 6\n"
                           "5000 debit 2\n");
  Carry();
  EXPECT_EQ(Text(Fetch()), "");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(YearEndTest, WhatStandsForItemsIsCarriedForEachOfThem) {
  constexpr Long kDepartments = 1;
  const auto list = [](const Ref<Dictionary>& row) {
    auto rows = Make<Vector>();
    rows->Append(Variant(row));
    return Variant(rows);
  };
  Call("QDSVGLAccount.AccountUpdate", "Create", props,
       Row({{"FNumber", "6000"},
            {"FName", "Wages"},
            {"FKind", "expense"},
            {"_Items", list(Row({{"FItemClassID", kDepartments}}))}}));
  std::vector<Long> items;
  for (const char* number : {"SHOP", "YARD"}) {
    items.push_back(
        Call("QDSVGLItem.ItemUpdate", "Create", props, kDepartments,
             Row({{"FItemClassID", kDepartments}, {"FNumber", number}, {"FName", number}}))
            .As<Long>());
    const Variant details = list(Row({{"FItemClassID", kDepartments}, {"FItemID", items.back()}}));
    const Currency amount(static_cast<int>(3 * items.size()));
    Step("Post", Save(Voucher("2024-01-05", {Line("6000", amount, 0, {{"_Details", details}}),
                                             Line("1000", 0, amount)})));
  }
  EXPECT_EQ(Text(Fetch()), "2024-12-31 Result of 2024 TransferPL\n"
                           "6000 credit 3\n6000 credit 6\n5000 debit 9\n");
  const Ref<Vector> lines = LinesOf(Fetch()->Row());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const auto details = lines->at(i).As<Dictionary>()->Value("_Details").As<Vector>();
    ASSERT_EQ(details->size(), 1u);
    EXPECT_EQ(details->at(0).As<Dictionary>()->Value("FItemID").As<Long>(), items[i]);
  }
  Carry();
  EXPECT_EQ(Text(Fetch()), "");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(YearEndTest, WhatComesLaterIsCarriedByTheNextRun) {
  Post("2024-01-15", "1000", "3000", Currency(5));
  Carry();
  Post("2024-03-15", "1000", "3000", Currency(2));
  Post("2025-03-15", "1000", "3000", Currency(9));
  EXPECT_EQ(Text(Fetch()), "2024-12-31 Result of 2024 TransferPL\n3000 debit 2\n5000 credit 2\n");
}

TEST_P(YearEndTest, WhatIsCarriedAndNotPostedIsNotCarriedTwice) {
  Post("2024-01-15", "1000", "3000", Currency(5));
  const Ref<Dictionary> voucher = Fetch()->Row();
  voucher->Put("FGroup", "Receipts");
  Long id = Save(voucher);
  EXPECT_EQ(ErrorText([&] { Fetch(); }), "80044250: The voucher with the id " + std::to_string(id) +
                                             " carries the result of 2024 and is not posted; post "
                                             "or delete it.");
  Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, ByRef(id));
  EXPECT_EQ(Fetch()->RecordCount(), 1);
}

TEST_P(YearEndTest, ManyLinesAreSeveralVouchersEachBalanced) {
  std::vector<Ref<Dictionary>> lines;
  for (int i = 0; i < 1001; ++i) {
    const std::string number = "8" + std::to_string(1000 + i);
    AddAccount(number, number, "income");
    lines.push_back(Line(number, 0, Currency(1)));
  }
  lines.push_back(Line("1000", Currency(1001), 0));
  Step("Post", Save(Voucher("2024-01-05", lines)));
  const Ref<Recordset> vouchers = Fetch();
  ASSERT_EQ(vouchers->RecordCount(), 2);
  EXPECT_EQ(LinesOf(vouchers->Row())->size(), 1001u);
  vouchers->MoveNext();
  EXPECT_EQ(LinesOf(vouchers->Row())->size(), 2u);
  EXPECT_EQ(Carry().size(), 2u);
  EXPECT_EQ(Text(Fetch()), "");
}

TEST_P(YearEndTest, TheResultGoesToEquityAlone) {
  EXPECT_EQ(ErrorText([&] { Fetch(2024, "1000"); }),
            "8004421A: Account 1000 (Cash) is of kind asset; a year's result is carried to an "
            "account of kind equity.");
  AddAccount("6000", "Other", "");
  EXPECT_EQ(ErrorText([&] { Fetch(2024, "6000"); }),
            "8004421A: Account 6000 (Other) is of no kind; a year's result is carried to an "
            "account of kind equity.");
  EXPECT_EQ(
      ErrorText([&] { Call("QDSVGLYearEnd.YearEndInfo", "GetResultVouchers", props, 2024, 999); }),
      "8004421A: There is no account with the id 999.");
}

QDCLGL_BOOKS_TEST(YearEndTest);

}  // namespace
}  // namespace qdclgl::server::testing
