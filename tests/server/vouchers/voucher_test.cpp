#include "qdclgl/server/vouchers/voucher.h"

#include <cmath>

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/db/refusals.h"
#include "tests/server/item_records.h"
#include "tests/server/ledger_fixture.h"
#include "tests/support/state_text.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::StateText;

constexpr std::string_view kUpdate = "QDSVGLVoucher.VoucherUpdate";
constexpr std::string_view kInfo = "QDSVGLVoucher.VoucherInfo";

Ref<Dictionary> LineAt(const Ref<Dictionary>& voucher, Long index) {
  return voucher->Value("_Entries").As<Vector>()->Item(index).As<Dictionary>();
}

class VoucherServer : public LedgerTest {
 protected:
  void SetSetting(std::string_view key, std::string_view value) {
    Call("QDSVBase.SystemProfile", "SetProfile", props, "GL", key, value);
  }
  Ref<Recordset> List(String filter = "", String sort = "", Long options = 0) {
    return Call(kInfo, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
        .As<Recordset>();
  }
};
QDCLGL_BOOKS_TEST(VoucherServer);

// ---- Saving and reading ----

TEST_P(VoucherServer, AVoucherComesBackAsOneTreeWithWhatTheServerKnows) {
  auto detail = Make<Dictionary>();
  detail->Value("FItemClassID", Long{3});
  detail->Value("FItemClassNumber", "DEP");
  detail->Value("FValue", "Shop");
  auto details = Make<Vector>();
  details->Append(Variant(detail));
  const Long id =
      Save(Voucher("2024-02-29",
                   {Line("1000", Currency::FromUnits(1234567), 0,
                         {{"FExplanation", "Till"}, {"_Details", Variant(details)}}),
                    Line("3000", 0, Currency::FromUnits(1234567),
                         {{"FQuantity", 2.5}, {"FUnitPrice", 49.382268}, {"FSettleNo", "S-1"}})},
                   {{"FReference", "R1"}, {"FAttachments", Long{2}}, {"FFootNote", " "}}));

  const Ref<Dictionary> voucher = Read(id);
  EXPECT_EQ(CLng(voucher->Value("FVoucherID")), id);
  EXPECT_EQ(CStr(voucher->Value("FDate")), "2024-02-29");
  EXPECT_EQ(CLng(voucher->Value("FYear")), 2024);
  EXPECT_EQ(CLng(voucher->Value("FPeriod")), 2);
  EXPECT_EQ(CLng(voucher->Value("FNumber")), 1);
  EXPECT_EQ(CStr(voucher->Value("FGroup")), "Receipts");
  EXPECT_EQ(CStr(voucher->Value("FPreparer")), "administrator");
  EXPECT_EQ(CCur(voucher->Value("FDebitTotal")), Currency::FromUnits(1234567));
  EXPECT_EQ(CCur(voucher->Value("FCreditTotal")), Currency::FromUnits(1234567));
  EXPECT_EQ(CLng(voucher->Value("FEntryCount")), 2);
  EXPECT_EQ(CLng(voucher->Value("FAttachments")), 2);
  EXPECT_EQ(CStr(voucher->Value("FFootNote")), " ");
  EXPECT_EQ(CInt(voucher->Value("FCheckerID")), -1);
  EXPECT_EQ(CInt(voucher->Value("FPosterID")), -1);
  EXPECT_FALSE(CBool(voucher->Value("FChecked")));

  const Ref<Dictionary> cash = LineAt(voucher, 1), sales = LineAt(voucher, 2);
  EXPECT_EQ(CStr(cash->Value("FAccountNumber")), "1000");
  EXPECT_EQ(CStr(cash->Value("FAccountName")), "Cash");
  EXPECT_EQ(CStr(cash->Value("FCurrencyNumber")), "EUR");
  EXPECT_EQ(CLng(cash->Value("FDC")), 1);
  EXPECT_EQ(CStr(cash->Value("FExplanation")), "Till");
  EXPECT_EQ(StateText(cash->Value("_Details")),
            "[{FDetail: False, FItemClassID: 3, FItemClassNumber: \"DEP\", FItemClassName: \"\", "
            "FItemID: 0, FItemNumber: \"\", FItemName: \"\", FItemFullName: \"\", "
            "FValue: \"Shop\"}]");
  EXPECT_EQ(CDbl(sales->Value("FQuantity")), 2.5);
  EXPECT_EQ(CDbl(sales->Value("FUnitPrice")), 49.382268);
  EXPECT_EQ(CStr(sales->Value("FSettleNo")), "S-1");
  EXPECT_EQ(sales->Value("_Details").As<Vector>()->Count(), 0);
}

TEST_P(VoucherServer, KeysWithoutAColumnTravelAlong) {
  auto bill = Make<Dictionary>();
  bill->Value("FBillNo", "B-7");
  bill->Value("Amount", Currency::FromUnits(12345));
  bill->Value("When", DateTime::FromYmd(2024, 3, 1));
  Ref<Dictionary> sent = Sale(5);
  sent->Value("BillInfo", Variant(bill));
  LineAt(sent, 1)->Value("FCussentUserName", "zoë");
  LineAt(sent, 1)->Value("LockAmount", true);
  LineAt(sent, 1)->Value("FTaskID", Long{42});
  const Ref<Dictionary> voucher = Read(Save(sent));
  EXPECT_EQ(StateText(voucher->Value("BillInfo")),
            "{FBillNo: \"B-7\", Amount: 1.2345@, When: #2024-03-01#}");
  EXPECT_TRUE(
      voucher->Value("BillInfo").As<Dictionary>()->Value("Amount").Is(VariantType::kCurrency));
  EXPECT_EQ(CStr(LineAt(voucher, 1)->Value("FCussentUserName")), "zoë");
  EXPECT_TRUE(CBool(LineAt(voucher, 1)->Value("LockAmount")));
  EXPECT_EQ(CLng(LineAt(voucher, 1)->Value("FTaskID")), 42);
  EXPECT_FALSE(LineAt(voucher, 2)->Contains("FTaskID"));
  EXPECT_FALSE(voucher->Contains("MachineName"));
}

TEST_P(VoucherServer, CreateTellsTheSentRowWhatTheServerGave) {
  const Ref<Dictionary> sent = Sale(5);
  const Long id = Save(sent);
  EXPECT_EQ(CLng(sent->Value("FVoucherID")), id);
  EXPECT_EQ(CLng(sent->Value("FVersion")), 1);
  EXPECT_EQ(CLng(sent->Value("FNumber")), 1);
  EXPECT_EQ(CLng(sent->Value("FYear")), 2024);
  EXPECT_EQ(CLng(sent->Value("FPeriod")), 1);
}

TEST_P(VoucherServer, NumbersRunWithinYearPeriodAndGroup) {
  const auto number = [&](const Ref<Dictionary>& voucher) {
    Save(voucher);
    return CLng(voucher->Value("FNumber"));
  };
  EXPECT_EQ(number(Sale(1)), 1);
  EXPECT_EQ(number(Sale(1)), 2);
  EXPECT_EQ(number(Sale(1, "2024-02-01")), 1);
  EXPECT_EQ(number(Sale(1, "2024-01-15", {{"FGroupID", Long{2}}})), 1);
  EXPECT_EQ(number(Sale(1, "2025-01-15")), 1);
  EXPECT_EQ(number(Sale(1, "2024-01-15", {{"FNumber", Long{10}}})), 10);
  EXPECT_EQ(number(Sale(1)), 11);
  EXPECT_EQ(number(Sale(1, "2024-01-15", {{"FNumber", Long{5}}})), 5);
  EXPECT_EQ(number(Sale(1)), 12);
}

TEST_P(VoucherServer, ATakenNumberIsRefusedAndCostsNone) {
  const Long first = Save(Sale(1));
  EXPECT_EQ(ErrorText([&] {
              Save(Sale(1, "2024-01-15", {{"FNumber", Long{1}}}));
            }),
            "80044216: Voucher 2024/1 Receipts 1: another voucher has that number (id " +
                std::to_string(first) + ").");
  const Ref<Dictionary> next = Sale(1);
  Save(next);
  EXPECT_EQ(CLng(next->Value("FNumber")), 2);
}

TEST_P(VoucherServer, VouchersAreFoundByNumberGroupNameOrId) {
  const Long id = Save(Sale(1, "2024-03-05"));
  Long year = 2024, period = 3, number = 1;
  Boolean deleted = false;
  String group = "Receipts";
  EXPECT_EQ(CLng(Call(kInfo, "GetDetailByNumber", props, ByRef(year), ByRef(period), ByRef(group),
                      ByRef(number), ByRef(deleted))
                     .As<Dictionary>()
                     ->Value("FVoucherID")),
            id);
  group = "Payments";
  EXPECT_TRUE(Call(kInfo, "GetDetailByNumber", props, ByRef(year), ByRef(period), ByRef(group),
                   ByRef(number), ByRef(deleted))
                  .IsNothing());
  Variant key(id), y(Long{2024}), p(Long{3}), by_id(Long{1}), by_name("Receipts"), n(Long{1});
  const auto exists = [&](Variant& g) {
    return Call(kInfo, "ExistenceCheck", props, Named("nYear", ByRef(y)), Named("Period", ByRef(p)),
                Named("Group", ByRef(g)), Named("Number", ByRef(n)))
        .As<Long>();
  };
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, ByRef(key)).As<Long>(), id);
  EXPECT_EQ(exists(by_id), id);
  EXPECT_EQ(exists(by_name), id);
  y = Variant(Missing);
  EXPECT_EQ(exists(by_name), id) << "without a year the current one counts";
  n = Variant(Long{2});
  EXPECT_EQ(exists(by_name), 0);
  key = Variant(Long{99});
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, ByRef(key)).As<Long>(), 0);
  EXPECT_TRUE(Call(kInfo, "GetDetail", props, Long{99}, false).IsNothing());
}

TEST_P(VoucherServer, TheListIsFilteredAndSorted) {
  Save(Sale(30, "2024-01-03", {{"FReference", "C"}}));
  Save(Sale(10, "2024-01-02", {{"FReference", "A"}}));
  Save(Sale(20, "2024-02-01", {{"FReference", "B"}}));
  const auto references = [](const Ref<Recordset>& list) {
    std::string text;
    for (; !list->Eof(); list->MoveNext())
      text += CStr(list->FieldValue(list->FieldPosition("FReference")));
    return text;
  };
  EXPECT_EQ(references(List()), "ACB");
  EXPECT_EQ(references(List("", "FDebitTotal DESC")), "CBA");
  EXPECT_EQ(references(List("FDebitTotal >= 20 AND FPeriod = 1")), "C");
  EXPECT_EQ(references(List("FGroup = 'Receipts' AND FDate > #2024-01-02#", "FReference")), "BC");
  EXPECT_EQ(references(List("NOT FPosted AND FReference IN ('A', 'B')")), "AB");
}

// ---- Rules ----

TEST_P(VoucherServer, WhatBreaksARuleIsRefusedWithItsReasonAndNothingIsStored) {
  struct Case {
    Ref<Dictionary> voucher;
    const char* refusal;
  };
  const std::string before = State();
  for (const Case& test : std::vector<Case>{
           {Voucher("2024-01-15", {}), "80044220: The new voucher of 2024-01-15: it has no lines."},
           {Voucher("2024-01-15", {Line("1000", 10, 0), Line("3000", 0, 9)},
                    {{"FReference", "R7"}}),
            "80044221: The new voucher of 2024-01-15 (R7): debits 10 and credits 9 differ by 1."},
           {Voucher("2024-01-15", {Line("1000", Currency::FromUnits(1), 0),
                                   Line("3000", 0, Currency::FromUnits(2))}),
            "80044221: The new voucher of 2024-01-15: debits 0.0001 and credits 0.0002 differ by "
            "-0.0001."},
           {Voucher("2024-01-15", {Line("1000", 10, 0), Line("9999", 0, 10)}),
            "80044222: The new voucher of 2024-01-15: line 2: there is no account 9999."},
           {Voucher("2024-01-15", {Line("1000", 10, 0), Line("4000", 0, 10)}),
            "80044222: The new voucher of 2024-01-15: line 2: account 4000 has accounts below it."},
           {Voucher("2024-01-15", {Line("1000", 10, 0), Line("", 0, 10)}),
            "80044222: The new voucher of 2024-01-15: line 2: it has no account."},
           {Voucher("2024-01-15",
                    {Line("1000", 10, 0), Line("", 0, 10, {{"FAccountID", Long{77}}})}),
            "80044222: The new voucher of 2024-01-15: line 2: there is no account with the id 77."},
           {Voucher("2024-01-15",
                    {Line("1000", 10, 0, {{"FCurrencyID", Long{9}}}), Line("3000", 0, 10)}),
            "80044223: The new voucher of 2024-01-15: line 1: there is no currency 9 in use."},
           {Voucher("2024-01-15",
                    {Line("1000", 10, 0, {{"FCurrencyNumber", "XXX"}}), Line("3000", 0, 10)}),
            "80044223: The new voucher of 2024-01-15: line 1: there is no currency XXX in use."},
           {Voucher("2024-01-15", {Line("1000", 10, 0, {{"FDC", Long{2}}}), Line("3000", 0, 10)}),
            "80044224: The new voucher of 2024-01-15: line 1: it is neither debit (1) nor credit "
            "(0)."},
           {Sale(1, "2024-01-15", {{"FGroupID", Long{9}}}),
            "80044225: The new voucher of 2024-01-15: there is no voucher group 9."},
           {Sale(1, "2024-01-15", {{"FGroupID", Long{0}}}),
            "80044225: The new voucher of 2024-01-15: it has no voucher group."},
           {Sale(1, "2023-12-31"),
            "80044226: The new voucher of 2023-12-31: period 2023/12 is closed; the books stand at "
            "2024/1."},
           {Sale(1, "2024-01-15", {{"FPeriod", Long{2}}}),
            "80044227: The new voucher of 2024-01-15: 2024-01-15 belongs to period 2024/1, not to "
            "2024/2."},
           {Sale(1, "2024-01-15", {{"FYear", Long{2025}}}),
            "80044227: The new voucher of 2024-01-15: 2024-01-15 belongs to period 2024/1, not to "
            "2025/1."},
           {Sale(1, "2024-01-15", {{"FDate", Variant()}}),
            "80044218: The new voucher of : it has no date."},
           {Sale(1, "2024-01-15", {{"FNumber", Long{-1}}}),
            "80044233: The number of a voucher is not negative."},
           {Sale(1, "2024-01-15", {{"FReference", std::string(256, 'r')}}),
            "80044212: The reference of a voucher has at most 255 characters."},
           {Sale(1, "2024-01-15", {{"FAttachments", "many"}}),
            "80044212: The value of FAttachments does not fit its column."},
           {Sale(1, "2024-01-15", {{"_Entries", "lines"}}),
            "80044212: The value of _Entries is no list."},
           {Voucher("2024-01-15", {Line("1000", 10, 0, {{"FAmount", "x"}}), Line("3000", 0, 10)}),
            "80044212: Line 1: The value of FAmount does not fit its column."},
           {Voucher("2024-01-15",
                    {Line("1000", 10, 0, {{"FUnitPrice", std::numeric_limits<double>::infinity()}}),
                     Line("3000", 0, 10)}),
            "80044212: Line 1: The value of FUnitPrice does not fit its column."},
           {Voucher(
                "2024-01-15",
                {Line("1000", 10, 0, {{"_Details", Variant(ListOf({Row({{"FColor", "red"}})}))}}),
                 Line("3000", 0, 10)}),
            "80044212: Line 1: A detail has no column FColor."},
           {Voucher("2024-01-15", {Line("1000", Currency::FromUnits(INT64_MAX), 0),
                                   Line("3000", 0, Currency::FromUnits(INT64_MAX))}),
            "8004422D: The new voucher of 2024-01-15: line 1: the amount is too large."},
           {Voucher("2024-01-15",
                    {Line("1000", 10, 0, {{"FQuantity", 1e300}}), Line("3000", 0, 10)}),
            "8004422D: The new voucher of 2024-01-15: line 1: the quantity is too large."},
           {Voucher("2024-01-15", {Line("1000", 10, 0, {{"FExplanation", std::string("a\0b", 3)}}),
                                   Line("3000", 0, 10)}),
            "80044212: Line 1: The value of FExplanation does not fit its column."},
           {Voucher("2024-01-15",
                    {Line("1000", 10, 0, {{"FExplanation", "\xff\xfe"}}), Line("3000", 0, 10)}),
            "80044212: Line 1: The value of FExplanation does not fit its column."},
       }) {
    const std::string sent = StateText(Variant(test.voucher));
    EXPECT_EQ(ErrorText([&] { Save(test.voucher); }), test.refusal);
    EXPECT_EQ(StateText(Variant(test.voucher)), sent) << test.refusal;
    EXPECT_EQ(State(), before) << test.refusal;
  }
}

TEST_P(VoucherServer, ALineInAForeignCurrencyBalancesInBaseCurrency) {
  const Long id = Save(Voucher(
      "2024-01-15",
      {Line("1000", 110, 0,
            {{"FCurrencyNumber", "USD"}, {"FAmountFor", Currency(100)}, {"FExchangeRate", 1.1}}),
       Line("3000", 0, 110)}));
  const Ref<Dictionary> line = LineAt(Read(id), 1);
  EXPECT_EQ(CLng(line->Value("FCurrencyID")), 2);
  EXPECT_EQ(CStr(line->Value("FCurrencyName")), "Dollar");
  EXPECT_EQ(CCur(line->Value("FAmountFor")), Currency(100));
}

TEST_P(VoucherServer, AQuoteInATextStaysAText) {
  const Long id = Save(Sale(1, "2024-01-15", {{"FReference", "'); DROP TABLE t_Voucher; --"}}));
  EXPECT_EQ(CStr(Read(id)->Value("FReference")), "'); DROP TABLE t_Voucher; --");
  EXPECT_EQ(List("FReference = '''); DROP TABLE t_Voucher; --'")->RecordCount(), 1);
}

TEST_P(VoucherServer, AForeignAmountGoesWithItsRate) {
  const auto outcome = [&](Currency amount, Cells cells) {
    return ErrorText([&] {
      Save(Voucher("2024-01-15", {Line("1000", amount, 0, cells), Line("3000", 0, amount)}));
    });
  };
  const auto in_dollars = [&](Currency amount, Currency amount_for, double rate) {
    return outcome(amount,
                   {{"FCurrencyID", Long{2}}, {"FAmountFor", amount_for}, {"FExchangeRate", rate}});
  };
  const std::string start = "80044260: The new voucher of 2024-01-15: line 1: ";
  EXPECT_EQ(in_dollars(90, 100, 0.8), start + "100 times 0.8 is not 90.");
  EXPECT_EQ(in_dollars(-80, 100, 0.8), start + "100 times 0.8 is not -80.");
  EXPECT_EQ(in_dollars(80, 100, 0.8), "no error");
  EXPECT_EQ(in_dollars(-80, -100, 0.8), "no error");
  // One unit of the last decimal, whichever way somebody rounds: 33.333 times 1.1 is 36.6663.
  EXPECT_EQ(in_dollars(Currency::FromUnits(366'700), Currency::FromUnits(333'330), 1.1),
            "no error");
  EXPECT_EQ(in_dollars(Currency::FromUnits(366'600), Currency::FromUnits(333'330), 1.1),
            "no error");
  EXPECT_EQ(in_dollars(Currency::FromUnits(366'800), Currency::FromUnits(333'330), 1.1),
            start + "33.333 times 1.1 is not 36.68.");
  // A difference of rates, and a line that tells no rate.
  EXPECT_EQ(in_dollars(5, 0, 1.1), "no error");
  EXPECT_EQ(in_dollars(90, 100, 0), "no error");
  EXPECT_EQ(in_dollars(Currency::FromUnits(INT64_MAX / 4), Currency::FromUnits(INT64_MAX / 4), 1),
            "no error");
  // The base currency has no rate to keep.
  EXPECT_EQ(outcome(5, {{"FAmountFor", Currency(7)}, {"FExchangeRate", 2.0}}), "no error");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, ACurrencyWhoseOperatorDividesIsDividedByItsRate) {
  Call("QDSVGLCurrency.CurrencyUpdate", "Create", props,
       Row({{"FNumber", "JPY"}, {"FOperator", "/"}, {"FExchangeRate", 160.0}}));
  const auto in_yen = [&](Currency amount, Currency amount_for) {
    return ErrorText([&] {
      Save(Voucher(
          "2024-01-15",
          {Line("1000", amount, 0,
                {{"FCurrencyNumber", "JPY"}, {"FAmountFor", amount_for}, {"FExchangeRate", 160.0}}),
           Line("3000", 0, amount)}));
    });
  };
  EXPECT_EQ(in_yen(10, 1600), "no error");
  EXPECT_EQ(in_yen(1600, 10),
            "80044260: The new voucher of 2024-01-15: line 1: 10 divided by 160 is not 1600.");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, RedInkIsRefusedWhereTheBooksWantNone) {
  const auto outcome = [&](const Ref<Dictionary>& voucher) {
    return ErrorText([&] { Save(voucher); });
  };
  const auto red_in_dollars = [&] {
    return Voucher("2024-01-15",
                   {Line("1000", 1, 0, {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(-1)}}),
                    Line("3000", 0, 1)});
  };
  EXPECT_EQ(outcome(Sale(-5)), "no error");
  EXPECT_EQ(outcome(red_in_dollars()), "no error");
  SetSetting("NoNegativeAmounts", "1");
  const std::string refused = "80044261: The new voucher of 2024-01-15: line 1: its amount is "
                              "negative; these books want it on the other side.";
  EXPECT_EQ(outcome(Sale(-5)), refused);
  EXPECT_EQ(outcome(red_in_dollars()), refused);
  EXPECT_EQ(outcome(Sale(5)), "no error");
  EXPECT_EQ(Breaches(), "") << "what was stored before stays";
}

TEST_P(VoucherServer, AGivenNumberLeavesRoomForThoseThatFollow) {
  const auto save = [&](Long number) {
    const Ref<Dictionary> voucher = Sale(1, "2024-01-15", {{"FNumber", number}});
    const std::string outcome = ErrorText([&] { Save(voucher); });
    return outcome == "no error" ? CStr(voucher->Value("FNumber")) : outcome;
  };
  for (const Long number : {Long{INT32_MAX}, Long{1'000'000'000}}) {
    EXPECT_EQ(save(number), "80044233: Voucher 2024/1 Receipts " + std::to_string(number) +
                                ": a number that is given is at most 999999999.");
  }
  EXPECT_EQ(save(0), "1");
  EXPECT_EQ(save(999'999'999), "999999999");
  EXPECT_EQ(save(0), "1000000000");
  EXPECT_EQ(save(0), "1000000001");
  // A voucher keeps the number that the server has given it.
  const Ref<Dictionary> voucher = Read(3);
  ASSERT_EQ(CLng(voucher->Value("FNumber")), 1'000'000'000);
  voucher->Value("FExplanation", "changed");
  Update(3, voucher);
  EXPECT_EQ(CLng(Read(3)->Value("FNumber")), 1'000'000'000);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, TextsAndKeysWithoutAColumnHaveTheirBounds) {
  const auto outcome = [&](const Ref<Dictionary>& voucher) {
    return ErrorText([&] { Save(voucher); });
  };
  const std::string text(1'000'001, 'x');
  EXPECT_EQ(outcome(Sale(1, "2024-01-15", {{"FExplanation", text}})),
            "80044212: The value of FExplanation has more than 1000000 bytes.");
  Ref<Dictionary> sent = Sale(1);
  LineAt(sent, 2)->Value("FExplanation", text);
  EXPECT_EQ(outcome(sent),
            "80044212: Line 2: The value of FExplanation has more than 1000000 bytes.");
  EXPECT_EQ(outcome(Sale(1, "2024-01-15", {{"Memo", text}})),
            "80044212: The keys that have no column are longer than 1000000 bytes.");
  EXPECT_EQ(outcome(Sale(1, "2024-01-15", {{"Memo", text.substr(10'000)}})), "no error");

  sent = Sale(1);
  for (int i = 0; i < 10'000; ++i) sent->Put(RowKey("K" + std::to_string(i)), Long{i});
  const Long id = Save(sent);
  const Ref<Dictionary> read = Read(id);
  for (int i = 0; i < 10'000; ++i) {
    ASSERT_EQ(CLng(read->Value("K" + std::to_string(i))), i);
  }
  sent->Put(RowKey("One more"), Long{1});
  EXPECT_EQ(outcome(sent), "80044212: The keys that have no column hold more than 10000 values.");
}

TEST_P(VoucherServer, RowsThatHoldEachOtherManyTimesOverAreRefused) {
  const auto nested = [&](int levels, bool twice) {
    auto row = Make<Dictionary>();
    row->Value("Leaf", Long{1});
    for (int i = 1; i < levels; ++i) {
      auto above = Make<Dictionary>();
      above->Value("One", Variant(row));
      if (twice) above->Value("Other", Variant(row));
      row = above;
    }
    return ErrorText([&] { Save(Sale(1, "2024-01-15", {{"Nested", Variant(row)}})); });
  };
  EXPECT_EQ(nested(22, true),
            "80044212: The keys that have no column hold more than 10000 values.");
  EXPECT_EQ(nested(50, false), "no error");
  EXPECT_EQ(nested(51, false),
            "80044212: The keys that have no column are nested deeper than 50 levels.");
}

TEST_P(VoucherServer, KeysOfAllTypesComeBackInTheirOrder) {
  auto list = Make<Vector>();
  list->Append(Variant(Long{-1}));
  list->Append(Null);
  list->Append(Variant(Make<Vector>()));
  auto row = Make<Dictionary>();
  row->Value("Z", "text \"\\ \u00e9");
  row->Value("A", 2.5);
  row->Value("Currency", Currency::FromUnits(5));
  row->Value("Empty row", Variant(Make<Dictionary>()));
  list->Append(Variant(row));
  const Ref<Dictionary> voucher = Read(Save(Sale(1, "2024-01-15",
                                                 {{"List", Variant(list)},
                                                  {"Flag", true},
                                                  {"Date", "no date"},
                                                  {"Day", DateTime::FromYmd(2024, 2, 29)}})));
  EXPECT_EQ(StateText(voucher->Value("List")),
            "[-1, Null, [], {Z: \"text \"\\ \u00e9\", A: 2.5#, Currency: 0.0005@, Empty row: {}}]");
  EXPECT_EQ(CStr(voucher->Value("Date")), "no date");
  EXPECT_EQ(StateText(voucher->Value("Day")), "#2024-02-29#");
  EXPECT_TRUE(CBool(voucher->Value("Flag")));
}

// ---- Changing ----

TEST_P(VoucherServer, AnUpdateReplacesTheTreeAndRaisesTheVersion) {
  const Long id = Save(Sale(5));
  Ref<Dictionary> voucher = Read(id);
  voucher->Value("FExplanation", "changed");
  LineAt(voucher, 1)->Value("FAmount", Currency(8));
  LineAt(voucher, 2)->Value("FAmount", Currency(6));
  voucher->Value("_Entries").As<Vector>()->Append(Variant(Line("4000.01", 0, 2)));
  Update(id, voucher);
  EXPECT_EQ(CLng(voucher->Value("FVersion")), 2);
  Update(id, voucher);  // the row that was sent can be sent again
  const Ref<Dictionary> stored = Read(id);
  EXPECT_EQ(CLng(stored->Value("FVersion")), 3);
  EXPECT_EQ(CStr(stored->Value("FExplanation")), "changed");
  EXPECT_EQ(CCur(stored->Value("FDebitTotal")), Currency(8));
  EXPECT_EQ(CLng(stored->Value("FEntryCount")), 3);
  EXPECT_EQ(CStr(LineAt(stored, 3)->Value("FAccountName")), "Rent");
  EXPECT_EQ(CLng(stored->Value("FNumber")), 1);
}

TEST_P(VoucherServer, TheSecondOfTwoSavesOfOneVersionIsRefusedAndTheFirstStands) {
  const Long id = Save(Sale(5));
  Ref<Dictionary> mine = Read(id), yours = Read(id);
  mine->Value("FExplanation", "mine");
  yours->Value("FExplanation", "yours");
  Update(id, mine);
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { Update(id, yours); }),
            "80044214: Voucher 2024/1 Receipts 1: somebody else has saved it in the meantime; it "
            "has version 2, the row sent is version 1.");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(CStr(Read(id)->Value("FExplanation")), "mine");
  EXPECT_EQ(CStr(yours->Value("FExplanation")), "yours");
}

TEST_P(VoucherServer, ARowWithoutAVersionIsRefused) {
  const Long id = Save(Sale(5));
  EXPECT_EQ(ErrorText([&] { Update(id, Sale(6)); }),
            "80044215: Voucher 2024/1 Receipts 1: the row does not say which version it changes; "
            "read the voucher again.");
  EXPECT_EQ(ErrorText([&] { Update(99, Sale(6)); }),
            "80044213: There is no voucher with the id 99.");
}

TEST_P(VoucherServer, AVoucherMovesToAnotherPeriodWithANewNumberThere) {
  Save(Sale(1, "2024-02-01"));
  const Long id = Save(Sale(5));
  Ref<Dictionary> voucher = Read(id);
  voucher->Value("FDate", DateTime::FromYmd(2024, 2, 3));
  EXPECT_EQ(ErrorText([&] { Update(id, voucher); }).substr(0, 8), "80044227");
  voucher->Value("FPeriod", Long{2});
  EXPECT_EQ(ErrorText([&] { Update(id, voucher); }).substr(0, 8), "80044216");
  voucher->Value("FNumber", Long{0});
  Update(id, voucher);
  EXPECT_EQ(CLng(Read(id)->Value("FNumber")), 2);
  EXPECT_EQ(CLng(voucher->Value("FNumber")), 2);
}

TEST_P(VoucherServer, WhatTheServerKeepsIsNotTakenFromACaller) {
  Ref<Dictionary> sent = Sale(5);
  for (const char* key : {"FPosted", "FChecked", "FSummarized"}) sent->Value(key, true);
  for (const char* key : {"FPosterID", "FCheckerID", "FApproveID"}) sent->Value(key, Integer{7});
  sent->Value("FDebitTotal", Currency(1));
  const Ref<Dictionary> stored = Read(Save(sent));
  EXPECT_FALSE(CBool(stored->Value("FPosted")));
  EXPECT_FALSE(CBool(stored->Value("FChecked")));
  EXPECT_EQ(CInt(stored->Value("FCheckerID")), -1);
  EXPECT_EQ(CCur(stored->Value("FDebitTotal")), Currency(5));
}

// ---- Workflow ----

TEST_P(VoucherServer, EachStepNeedsTheStateBeforeIt) {
  const Long id = Save(Sale(5));
  const std::string name = "Voucher 2024/1 Receipts 1: ";
  const auto step = [&](std::string_view what, bool way = true) {
    return ErrorText([&] { Step(what, id, way); });
  };
  EXPECT_EQ(step("Check", false), "8004422B: " + name + "it is not checked.");
  EXPECT_EQ(step("Approve"), "8004422B: " + name + "it is not checked.");
  EXPECT_EQ(step("UnPost"), "8004422B: " + name + "it is not posted.");
  EXPECT_EQ(step("Cash", false), "8004422B: " + name + "it is not cashed.");
  EXPECT_EQ(step("Check"), "no error");
  EXPECT_EQ(step("Check"), "8004422B: " + name + "it is checked already.");
  EXPECT_EQ(step("Approve", false), "8004422B: " + name + "it is not approved.");
  EXPECT_EQ(step("Approve"), "no error");
  EXPECT_EQ(step("Approve"), "8004422B: " + name + "it is approved already.");
  EXPECT_EQ(step("Check", false),
            "8004422B: " + name + "it is approved; take the approval back first.");
  EXPECT_EQ(step("Cash"), "no error");
  EXPECT_EQ(step("Cash"), "8004422B: " + name + "it is cashed already.");
  EXPECT_EQ(step("Post"), "no error");
  EXPECT_EQ(step("Post"), "8004422B: " + name + "it is posted already.");
  EXPECT_EQ(step("Check", false), "8004422B: " + name + "it is posted.");
  EXPECT_EQ(step("Approve", false), "8004422B: " + name + "it is posted.");
  EXPECT_EQ(step("Cash", false), "no error");
  const Ref<Dictionary> posted = Read(id);
  EXPECT_EQ(CStr(posted->Value("FPoster")), "administrator");
  EXPECT_EQ(CInt(posted->Value("FApproveID")), 1);
  EXPECT_EQ(step("UnPost"), "no error");
  EXPECT_EQ(step("Approve", false), "no error");
  EXPECT_EQ(step("Check", false), "no error");
  const Ref<Dictionary> open = Read(id);
  EXPECT_EQ(CInt(open->Value("FCheckerID")), -1);
  EXPECT_EQ(CInt(open->Value("FApproveID")), -1);
  EXPECT_EQ(CInt(open->Value("FPosterID")), -1);
  EXPECT_EQ(CStr(open->Value("FChecker")), "");
  EXPECT_EQ(CLng(open->Value("FVersion")), 9);
}

TEST_P(VoucherServer, CheckedAndPostedVouchersAreNotChanged) {
  const Long id = Save(Sale(5));
  Step("Check", id);
  Long copy = id;
  const auto change = [&] { Update(id, Read(id)); };
  const auto remove = [&] { Call(kUpdate, "Delete", props, ByRef(copy), false, "M", "A"); };
  const auto clear = [&] { Call(kUpdate, "ClearCashFlow", props, ByRef(copy)); };
  EXPECT_EQ(ErrorText(change), "80044228: Voucher 2024/1 Receipts 1: it is checked.");
  EXPECT_EQ(ErrorText(remove), "80044228: Voucher 2024/1 Receipts 1: it is checked.");
  EXPECT_EQ(ErrorText(clear), "80044228: Voucher 2024/1 Receipts 1: it is checked.");
  Step("Post", id);
  EXPECT_EQ(ErrorText(change), "80044229: Voucher 2024/1 Receipts 1: it is posted.");
  EXPECT_EQ(ErrorText(remove), "80044229: Voucher 2024/1 Receipts 1: it is posted.");
  EXPECT_EQ(ErrorText(clear), "80044229: Voucher 2024/1 Receipts 1: it is posted.");
}

TEST_P(VoucherServer, PostingNeedsTheCheckWhereTheBooksWantIt) {
  SetSetting("CheckBeforePost", "1");
  const Long id = Save(Sale(5));
  EXPECT_EQ(ErrorText([&] { Step("Post", id); }),
            "8004422B: Voucher 2024/1 Receipts 1: it is not checked, as the books want it before "
            "posting.");
  Step("Check", id);
  Step("Post", id);
  EXPECT_TRUE(CBool(Read(id)->Value("FPosted")));
}

TEST_P(VoucherServer, NobodyChecksTheirOwnVoucherWhereTheBooksForbidIt) {
  SetSetting("CheckerNotPreparer", "1");
  AddUser("carl", "checker");
  const Long id = Save(Sale(5));
  EXPECT_EQ(ErrorText([&] { Step("Check", id); }),
            "8004422C: Voucher 2024/1 Receipts 1: administrator prepared it; somebody else must "
            "check it.");
  Login("carl");
  Step("Check", id);
  EXPECT_EQ(CStr(Read(id)->Value("FChecker")), "carl");
}

TEST_P(VoucherServer, CashTakesARowAndHoldsItAgainstTheVersion) {
  Long id = Save(Sale(5));
  const Ref<Dictionary> old = Read(id);
  Ref<Dictionary> voucher = Read(id);
  voucher->Value("FExplanation", "edited, not saved");
  Call(kUpdate, "Cash", props, ByRef(id), true, Variant(voucher));
  EXPECT_EQ(CStr(Read(id)->Value("FCashier")), "administrator");
  EXPECT_EQ(CStr(Read(id)->Value("FExplanation")), "");
  EXPECT_EQ(
      ErrorText([&] { Call(kUpdate, "Cash", props, ByRef(id), false, Variant(old)); }).substr(0, 8),
      "80044214");
  Boolean cashed = false;
  Call(kUpdate, "Cash", props, ByRef(id), ByRef(cashed));
  EXPECT_EQ(CInt(Read(id)->Value("FCashierID")), -1);
}

TEST_P(VoucherServer, ADeletedVoucherIsSeenOnlyWhenAskedForAndKeepsItsNumber) {
  Long id = Save(Sale(5));
  Call(kUpdate, "Delete", props, ByRef(id), false, "HOST", "10.0.0.1");
  EXPECT_FALSE(Read(id));
  EXPECT_TRUE(CBool(Read(id, true)->Value("FDeleted")));
  EXPECT_EQ(List()->RecordCount(), 0);
  EXPECT_EQ(List("", "", 1)->RecordCount(), 1);
  Variant key(id);
  EXPECT_EQ(Call(kInfo, "ExistenceCheck", props, ByRef(key)).As<Long>(), 0);
  EXPECT_EQ(ErrorText([&] { Step("Post", id); }),
            "8004422A: Voucher 2024/1 Receipts 1: it is deleted.");
  EXPECT_EQ(ErrorText([&] { Update(id, Read(id, true)); }),
            "8004422A: Voucher 2024/1 Receipts 1: it is deleted.");
  const Ref<Dictionary> next = Sale(1);
  Save(next);
  EXPECT_EQ(CLng(next->Value("FNumber")), 2);
  Call(kUpdate, "Delete", props, ByRef(id), true, "HOST", "10.0.0.1");
  EXPECT_FALSE(Read(id, true));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, CashFlowItemsAreToldAndCleared) {
  Ref<Dictionary> sent = Sale(5);
  LineAt(sent, 1)->Value("FCashFlowItem", Long{4});
  Long id = Save(sent);
  Long other = Save(Sale(1));
  EXPECT_EQ(Call(kInfo, "CheckExistCashProfit", props, ByRef(id)).As<Long>(), 1);
  EXPECT_EQ(Call(kInfo, "CheckExistCashProfit", props, ByRef(other)).As<Long>(), 0);
  Call(kUpdate, "ClearCashFlow", props, ByRef(id));
  EXPECT_EQ(Call(kInfo, "CheckExistCashProfit", props, ByRef(id)).As<Long>(), 0);
}

TEST_P(VoucherServer, ARowFromBeforeItsCashFlowItemsWereClearedIsNotSavedOverThem) {
  Ref<Dictionary> sent = Sale(5);
  LineAt(sent, 1)->Value("FCashFlowItem", Long{4});
  Long id = Save(sent);
  const Ref<Dictionary> stale = Read(id);
  Call(kUpdate, "ClearCashFlow", props, ByRef(id));
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Update(id, stale); }), "Changed");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(CLng(LineAt(Read(id), 1)->Value("FCashFlowItem")), 0);
  Update(id, Read(id));
}

// ---- Balances and periods ----

TEST_P(VoucherServer, PostingMovesTheBalancesAndUnpostingTakesThemBack) {
  const Long first = Save(Sale(100));
  Save(Sale(7));  // not posted
  const Long rent = Save(Voucher("2024-03-01", {Line("4000.01", 40, 0), Line("1000", 0, 40)}));
  Step("Post", first);
  Step("Post", rent);
  const std::string all =
      "1000 0 0 100 40 60\n1000 1 0 100 40 60\n3000 0 0 0 100 -100\n3000 1 0 0 100 -100\n"
      "4000 0 0 40 0 40\n4000 1 0 40 0 40\n4000.01 0 0 40 0 40\n4000.01 1 0 40 0 40\n";
  EXPECT_EQ(BalanceText(), all);
  EXPECT_EQ(RecomputedText(), all);
  EXPECT_EQ(BalanceText(2024, 2, 3),
            "1000 0 100 0 40 60\n1000 1 100 0 40 60\n3000 0 -100 0 0 -100\n3000 1 -100 0 0 -100\n"
            "4000 0 0 40 0 40\n4000 1 0 40 0 40\n4000.01 0 0 40 0 40\n4000.01 1 0 40 0 40\n");
  EXPECT_EQ(RecomputedText(2024, 2, 3), BalanceText(2024, 2, 3));
  EXPECT_EQ(BalanceText(2025),
            "1000 0 60 0 0 60\n1000 1 60 0 0 60\n3000 0 -100 0 0 -100\n3000 1 -100 0 0 -100\n"
            "4000 0 40 0 0 40\n4000 1 40 0 0 40\n4000.01 0 40 0 0 40\n4000.01 1 40 0 0 40\n");
  Step("UnPost", first);
  Step("UnPost", rent);
  EXPECT_EQ(BalanceText(), "");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, BalancesTellCurrenciesAndQuantities) {
  const Long id = Save(
      Voucher("2024-01-15",
              {Line("1000", 110, 0, {{"FCurrencyID", Long{2}}, {"FAmountFor", Currency(100)}}),
               Line("2000", 10, 0, {{"FQuantity", 0.1}}), Line("2000", 20, 0, {{"FQuantity", 0.2}}),
               Line("3000", 0, 140, {{"FQuantity", 2.5}})}));
  Step("Post", id);
  const Ref<Recordset> list =
      Call("QDSVGLBalance.BalanceInfo", "GetList", props, Long{2024}, Long{1}, Long{1},
           "FDetail AND (FCurrencyID = 2 OR FAccountNumber = '2000' OR FAccountNumber = '3000') "
           "AND NOT FCurrencyID = 0")
          .As<Recordset>();
  std::string text;
  for (; !list->Eof(); list->MoveNext()) {
    for (const char* column : {"FAccountNumber", "FCurrencyNumber", "FDebitFor", "FCreditFor",
                               "FEndBalanceFor", "FDebitQty", "FCreditQty", "FEndQty"}) {
      text += CStr(list->FieldValue(list->FieldPosition(column))) + " ";
    }
    text += "\n";
  }
  EXPECT_EQ(text, "1000 USD 100 0 100 0 0 0 \n2000 EUR 30 0 30 0.3 0 0.3 \n"
                  "3000 EUR 0 140 -140 0 2.5 -2.5 \n");
}

TEST_P(VoucherServer, ABalanceThatWouldNotFitIsRefusedAndNothingMoves) {
  const Currency huge = Currency::FromUnits(INT64_MAX / 2 - 1);
  const Long first = Save(Sale(huge)), second = Save(Sale(huge));
  Step("Post", first);
  const std::string before = State();
  EXPECT_EQ(
      ErrorText([&] { Step("Post", second); }),
      "8004422D: Voucher 2024/1 Receipts 2: with it, what is posted would be too large to add "
      "up.");
  EXPECT_EQ(State(), before);
}

// The balances of currencies and quantities as well, from both lists.
TEST_P(VoucherServer, WhatWouldNotAddUpIsRefusedWhereverItWouldBeAddedUp) {
  const Currency huge = Currency::FromUnits(INT64_MAX / 2);
  // Two accounts below one parent, red ink, and two periods: each row of balances would hold it.
  const Long first = Save(Voucher("2024-01-15", {Line("4000.01", huge, 0), Line("2000", 0, huge)}));
  const Long second =
      Save(Voucher("2024-02-15", {Line("4000.02", huge, 0), Line("2000", 0, huge)}));
  const Long red = Save(Voucher("2024-03-15", {Line("4000.01", -huge, 0), Line("2000", 0, -huge)}));
  Step("Post", first);
  const std::string before = State();
  for (const Long id : {second, red}) {
    EXPECT_EQ(RefusalOf([&] { Step("Post", id); }), "TooLarge");
    EXPECT_EQ(State(), before);
  }
  EXPECT_EQ(RecomputedText(), BalanceText());
  Step("UnPost", first);
  Step("Post", red);
  EXPECT_EQ(RecomputedText(), BalanceText());
  Step("UnPost", red);
  Step("Post", second);
  EXPECT_EQ(RecomputedText(2024, 2, 2), BalanceText(2024, 2, 2));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, ForeignAmountsAndQuantitiesThatWouldNotAddUpAreRefused) {
  const auto refused = [&](Cells cells) {
    const Long one = Save(Voucher("2024-01-15", {Line("1000", 1, 0, cells), Line("3000", 0, 1)}));
    const Long other = Save(Voucher("2024-02-15", {Line("1000", 1, 0, cells), Line("3000", 0, 1)}));
    const Long third = Save(Voucher("2024-02-15", {Line("1000", 1, 0, cells), Line("3000", 0, 1)}));
    Step("Post", one);
    Step("Post", other);
    const std::string refusal = RefusalOf([&] { Step("Post", third); });
    EXPECT_EQ(RecomputedText(), BalanceText());
    EXPECT_EQ(Breaches(), "");
    Step("UnPost", one);
    Step("UnPost", other);
    return refusal;
  };
  EXPECT_EQ(refused({{"FCurrencyID", Long{2}},
                     {"FAmountFor", Currency::FromUnits(INT64_MAX / 2 - 20'000)}}),
            "TooLarge");
  std::vector<Ref<Dictionary>> lines = {Line("3000", 0, 8)};
  for (int i = 0; i < 8; ++i) lines.push_back(Line("1000", 1, 0, {{"FQuantity", 1e12}}));
  const Long id = Save(Voucher("2024-01-15", lines));
  Step("Post", id);
  lines.push_back(Line("1000", 1, 0, {{"FQuantity", 1e12}}));
  lines.push_back(Line("1000", -1, 0, {{"FQuantity", 1e12}}));
  EXPECT_EQ(ErrorText([&] { Save(Voucher("2024-01-15", lines)); }),
            "8004422D: The new voucher of 2024-01-15: its lines are too large to add up.");
  const Long other = Save(Voucher("2024-02-15", {Line("1000", 1, 0, {{"FQuantity", 1e12}}),
                                                 Line("2000", 0, 1, {{"FQuantity", 1e12}})}));
  EXPECT_EQ(RefusalOf([&] { Step("Post", other); }), "TooLarge");
  EXPECT_EQ(RecomputedText(), BalanceText());
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, LinesThatWouldWrapAroundAreRefused) {
  // Modulo 2^64 these eight are -4 units.
  std::vector<Ref<Dictionary>> lines;
  for (int i = 0; i < 4; ++i) {
    lines.push_back(Line("1000", Currency::FromUnits(INT64_MAX / 2), 0));
    lines.push_back(Line("3000", 0, Currency::FromUnits(INT64_MAX / 2)));
  }
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { Save(Voucher("2024-01-15", lines)); }),
            "8004422D: The new voucher of 2024-01-15: its lines are too large to add up.");
  EXPECT_EQ(State(), before);
}

TEST_P(VoucherServer, AVoucherOfAnOlderProgramThatWouldNotAddUpIsNotPosted) {
  const Long id = Save(Sale(1));
  Books().Execute("UPDATE t_VoucherEntry SET FQuantity = 6e12, FAmount = ? WHERE FVoucherID = ?",
                  INT64_MAX / 2, id);
  const std::string before = State();
  EXPECT_EQ(ErrorText([&] { Step("Post", id); }),
            "8004422D: Voucher 2024/1 Receipts 1: its lines are too large to add up.");
  EXPECT_EQ(State(), before);
}

TEST_P(VoucherServer, BooksOfAnOlderProgramThatDoNotAddUpAreMendedByUnposting) {
  const Long fine = Save(Sale(2)), wrong = Save(Sale(1));
  Step("Post", fine);
  Step("Post", wrong);
  // Foreign amounts of the base currency are in no balance; as an upgrade leaves the size.
  Books().Execute("UPDATE t_VoucherEntry SET FAmountFor = ? WHERE FVoucherID = ?", INT64_MAX,
                  wrong);
  Books().Execute("UPDATE t_Posted SET FSize = ?", INT64_MAX);
  const Long next = Save(Sale(3));
  EXPECT_EQ(RefusalOf([&] { Step("Post", next); }), "TooLarge");
  Step("UnPost", wrong);
  EXPECT_EQ(Books().QueryValue<std::int64_t>("SELECT FSize FROM t_Posted"), 2 * 20'000);
  EXPECT_EQ(RefusalOf([&] { Step("Post", wrong); }), "TooLarge");
  Step("Post", next);
  Long id = wrong;
  Call(kUpdate, "Delete", props, ByRef(id), true, "M", "A");
  EXPECT_EQ(RecomputedText(), BalanceText());
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, QuantitiesAreRoundedAlikeInBothLists) {
  const auto quantity = [&](std::string_view method) {
    return TextOf(Call("QDSVGLBalance.BalanceInfo", method, props, Long{0}, Long{0}, Long{0},
                       "FCurrencyID = 1 AND FAccountNumber = '1000'")
                      .As<Recordset>(),
                  {"FDebitQty"});
  };
  // Halves of a millionth, which the databases round either way, and what is next to one.
  double sum = 0;
  for (const double value :
       {0.0000005, 0.0000015, 0.0000025, -0.0000005, 0.00000049999999999999994}) {
    Step("Post", Save(Voucher("2024-01-15",
                              {Line("1000", 1, 0, {{"FQuantity", value}}), Line("3000", 0, 1)})));
    sum += std::round(value * 1e6) / 1e6;
    EXPECT_EQ(quantity("GetListFromLines"), quantity("GetList")) << value << " " << sum;
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, ClosingNeedsEverythingPostedAndShutsThePeriod) {
  const Long id = Save(Sale(5));
  const auto close = [&] { Call("QDSVGLPeriod.PeriodUpdate", "Close", props); };
  const auto reopen = [&] { Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props); };
  EXPECT_EQ(ErrorText(close), "80044250: Period 2024/1 has 1 voucher(s) that are not posted, the "
                              "first is Receipts 1.");
  EXPECT_EQ(ErrorText(reopen), "80044252: The books begin with period 2024/1.");
  Step("Post", id);
  close();
  const Ref<Dictionary> settings =
      Call("QDSVBase.SystemProfile", "ListProfiles", props, "GL").As<Dictionary>();
  EXPECT_EQ(CStr(settings->Value("CurrentPeriod")), "2");
  EXPECT_EQ(CStr(settings->Value("CurrentYear")), "2024");
  EXPECT_EQ(ErrorText([&] { Step("UnPost", id); }),
            "80044226: Voucher 2024/1 Receipts 1: period 2024/1 is closed; the books stand at "
            "2024/2.");
  EXPECT_EQ(ErrorText([&] { Save(Sale(1)); }).substr(0, 8), "80044226");
  const Long later = Save(Sale(1, "2024-02-01"));
  Step("Post", later);
  EXPECT_EQ(ErrorText(reopen), "80044251: Period 2024/1 can't be reopened: vouchers are posted in "
                               "period 2024/2.");
  Step("UnPost", later);
  reopen();
  Step("UnPost", id);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, TheYearEndsWithItsLastPeriod) {
  for (int i = 0; i < 12; ++i) Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  EXPECT_EQ(ErrorText([&] { Save(Sale(1, "2024-12-31")); }).substr(0, 8), "80044226");
  Save(Sale(1, "2025-01-01"));
  Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props);
  Save(Sale(1, "2024-12-31"));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, BalancesOfPeriodsThatAreNotThereAreRefused) {
  const auto list = [&](Long year, Long from, Long to) {
    return ErrorText([&] { BalanceText(year, from, to); });
  };
  EXPECT_EQ(list(2024, 13, 13), "80044212: There is no period 2024/13; a year has 12.");
  EXPECT_EQ(list(2024, 3, 2), "80044212: Periods go forward, not from 2024/3 to 2024/2.");
  EXPECT_EQ(list(0, 1, 2), "80044212: Periods without a year say nothing.");
}

// ---- Audit and permissions ----

TEST_P(VoucherServer, TheTrailTellsEveryDeedWithOldAndNewValues) {
  Long id = Save(Sale(5, "2024-01-15", {{"MachineName", "HOST"}, {"IPAddress", "10.0.0.1"}}));
  Ref<Dictionary> voucher = Read(id);
  voucher->Value("FReference", "R");
  LineAt(voucher, 1)->Value("FAmount", Currency(9));
  LineAt(voucher, 1)->Value("FCashFlowItem", Long{3});
  LineAt(voucher, 1)
      ->Value("_Details")
      .As<Vector>()
      ->Append(Variant(qdclgl::testing::Row({{"FItemClassID", Long{4}}, {"FValue", "x"}})));
  LineAt(voucher, 2)->Value("FAmount", Currency(7));
  voucher->Value("_Entries").As<Vector>()->Append(Variant(Line("2000", 0, 2)));
  Call(kUpdate, "Update", "<>1" + props, ByRef(id), voucher);
  for (const char* step : {"Check", "Approve", "Cash", "Post", "UnPost"}) Step(step, id);
  Step("Cash", id, false);
  Step("Approve", id, false);
  Step("Check", id, false);
  Call(kUpdate, "ClearCashFlow", props, ByRef(id));
  Call(kUpdate, "Delete", props, ByRef(id), false, "DESK", "10.0.0.2");
  Call(kUpdate, "Delete", props, ByRef(id), true, "DESK", "10.0.0.2");
  Call(kUpdate, "Create", props, Sale(1), Integer{2});
  const std::string first_line = R"({"FAccountID":1,"FDC":1,"FAmount":"5","FCurrencyID":1})";
  const std::string second_line = R"({"FAccountID":3,"FAmount":"5","FCurrencyID":1})";
  const std::string start =
      R"("FDate":"2024-01-15","FYear":2024,"FPeriod":1,"FGroupID":1,"FNumber":)";
  const std::string nobody =
      R"("FOwnerGroupID":-1,"FPreparerID":1,"FPreparer":"administrator","FCheckerID":-1,)"
      R"("FApproveID":-1)";
  const std::vector<std::array<std::string, 3>> expected = {
      {"Create", "1",
       R"({"new":{"FVersion":1,)" + start + "1," + nobody +
           R"(,"FCashierID":-1,"FPosterID":-1,"_Entries":[)" + first_line + "," + second_line +
           "]}}"},
      {"Update", "2",
       R"({"FVersion":[1,2],"FDetailCount":[0,1],"FReference":["","R"],"_Entries":{)"
       R"("1":{"FAmount":["5","9"],"FCashFlowItem":[0,3],)"
       R"("_Details":{"1":{"new":{"FItemClassID":4,"FValue":"x"}}}},)"
       R"("2":{"FAmount":["5","7"]},)"
       R"("3":{"new":{"FAccountID":2,"FAmount":"2","FCurrencyID":1}}}})"},
      {"Check", "1",
       R"({"FVersion":[2,3],"FChecked":[false,true],"FCheckerID":[-1,1],)"
       R"("FChecker":["","administrator"]})"},
      {"Approve", "1",
       R"({"FVersion":[3,4],"FApproveID":[-1,1],"FApprover":["","administrator"]})"},
      {"Cash", "1", R"({"FVersion":[4,5],"FCashierID":[-1,1],"FCashier":["","administrator"]})"},
      {"Post", "1",
       R"({"FVersion":[5,6],"FPosted":[false,true],"FPosterID":[-1,1],)"
       R"("FPoster":["","administrator"]})"},
      {"UnPost", "1",
       R"({"FVersion":[6,7],"FPosted":[true,false],"FPosterID":[1,-1],)"
       R"("FPoster":["administrator",""]})"},
      {"UnCash", "1", R"({"FVersion":[7,8],"FCashierID":[1,-1],"FCashier":["administrator",""]})"},
      {"UnApprove", "1",
       R"({"FVersion":[8,9],"FApproveID":[1,-1],"FApprover":["administrator",""]})"},
      {"UnCheck", "1",
       R"({"FVersion":[9,10],"FChecked":[true,false],"FCheckerID":[1,-1],)"
       R"("FChecker":["administrator",""]})"},
      {"ClearCashFlow", "1", R"({"FVersion":[10,11],"_Entries":{"1":{"FCashFlowItem":[3,0]}}})"},
      {"Delete", "1", R"({"FVersion":[11,12],"FDeleted":[false,true]})"},
      {"Purge", "1",
       R"({"old":{"FVersion":12,"FDetailCount":1,)" + start + R"(1,"FReference":"R",)" + nobody +
           R"(,"FCashierID":-1,"FPosterID":-1,"FDeleted":true,)"
           R"("_Entries":[{"FAccountID":1,"FDC":1,"FAmount":"9","FCurrencyID":1,)"
           R"("_Details":[{"FItemClassID":4,"FValue":"x"}]},)"
           R"({"FAccountID":3,"FAmount":"7","FCurrencyID":1},)"
           R"({"FAccountID":2,"FAmount":"2","FCurrencyID":1}]}})"},
  };
  const auto list = [&](const std::string& filter) {
    return Call("QDSVGLAudit.AuditInfo", "GetList", props, "FSubject = 'Voucher' AND " + filter)
        .As<Recordset>();
  };
  const auto deeds = list("FRecordID = " + std::to_string(id));
  ASSERT_EQ(deeds->RecordCount(), static_cast<Long>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i, deeds->MoveNext()) {
    const auto& [action, origin, changes] = expected[i];
    const Ref<Dictionary> deed = deeds->Row();
    EXPECT_EQ(deed->Value("FRecord").As<String>(), "2024/1 Receipts 1");
    EXPECT_EQ(deed->Value("FAction").As<String>(), action);
    EXPECT_EQ(deed->Value("FOrigin").As<String>(), origin) << action;
    EXPECT_EQ(deed->Value("FChanges").As<String>(), changes) << action;
    EXPECT_EQ(deed->Value("FNumber").As<Long>(), static_cast<Long>(i + 1));
  }
  EXPECT_EQ(TextOf(list("FRecordID > " + std::to_string(id)), {"FRecord", "FAction", "FOrigin"}),
            "2024/1 Receipts 2 Create 2\n");
  EXPECT_EQ(TextOf(list("FMachineName = 'HOST' AND FIPAddress = '10.0.0.1'"), {"FAction"}),
            "Create\n");
  EXPECT_EQ(TextOf(list("FMachineName = 'DESK' AND FIPAddress = '10.0.0.2'"), {"FAction"}),
            "Delete\nPurge\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(VoucherServer, EachRoleMayDoItsOwnAndARefusedCallChangesNothing) {
  Long id = Save(Sale(5));
  struct Deed {
    const char* name;
    const char* roles;  // that may do it, the administrator aside
    std::function<void()> act;
  };
  const Ref<Dictionary> row = Read(id);
  const std::vector<Deed> deeds = {
      {"Create", "preparer", [&] { Save(Sale(1)); }},
      {"Update", "preparer", [&] { Update(id, Read(id)); }},
      {"ClearCashFlow", "preparer", [&] { Call(kUpdate, "ClearCashFlow", props, ByRef(id)); }},
      {"Check", "checker",
       [&] {
         Step("Check", id);
         Step("Check", id, false);
       }},
      {"Approve", "checker",
       [&] {
         Step("Check", id);
         Step("Approve", id);
         Step("Approve", id, false);
         Step("Check", id, false);
       }},
      {"Cash", "cashier",
       [&] {
         Step("Cash", id);
         Step("Cash", id, false);
       }},
      {"Post", "poster",
       [&] {
         Step("Post", id);
         Step("UnPost", id);
       }},
      {"UnPost", "poster",
       [&] {
         Step("Post", id);
         Step("UnPost", id);
       }},
      {"Close", "poster", [&] { Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props); }},
  };
  for (const char* role : {"reader", "preparer", "checker", "cashier", "poster"})
    AddUser(role, role);
  for (const char* role : {"reader", "preparer", "checker", "cashier", "poster"}) {
    Login(role);
    EXPECT_TRUE(Read(id)) << role << " reads";
    EXPECT_EQ(ErrorText([&] {
                List();
                BalanceText();
              }),
              "no error")
        << role;
    for (const Deed& deed : deeds) {
      const std::string before = State();
      const std::string outcome = ErrorText(deed.act);
      if (std::string_view(deed.roles) == role) {
        EXPECT_NE(outcome.substr(0, 8), "80044202") << role << " " << deed.name;
      } else {
        EXPECT_EQ(outcome.substr(0, 8), "80044202") << role << " " << deed.name;
        EXPECT_EQ(State(), before) << role << " " << deed.name;
      }
    }
  }
  Login("reader");
  EXPECT_EQ(ErrorText([&] { Step("Post", id); }),
            "80044202: User reader (reader) may not post vouchers.");
}

TEST_P(VoucherServer, WithoutASessionNothingIsDone) {
  Call("QDSVGLSession.SessionUpdate", "Logout", props);
  EXPECT_EQ(ErrorText([&] { Save(Sale(1)); }),
            "80044200: There is no session behind the connection text; log in first.");
  EXPECT_EQ(ErrorText([&] { Read(1); }).substr(0, 8), "80044200");
  props = connection;
  EXPECT_EQ(ErrorText([&] { Read(1); }).substr(0, 8), "80044200");
}

// ---- Failures ----

TEST_P(VoucherServer, EveryStatementMayFailAndNothingIsHalfDone) {
  Long id = Save(Sale(5));
  Step("Check", id);
  const Long open = Save(Sale(6));
  Ref<Dictionary> fresh = Sale(1), edited = Read(open);
  edited->Value("FExplanation", "edited");
  const auto sent = [&] { return StateText(Variant(fresh)) + StateText(Variant(edited)); };
  FailEachStatement([&] { Save(fresh); }, sent);
  FailEachStatement([&] { Update(open, edited); }, sent);
  FailEachStatement([&] { Step("Check", open); });
  FailEachStatement([&] { Step("Approve", id); });
  FailEachStatement([&] { Step("Cash", id); });
  FailEachStatement([&] { Step("Post", id); });
  FailEachStatement([&] { Step("UnPost", id); });
  Long other = open;
  Step("Check", open, false);
  FailEachStatement([&] { Call(kUpdate, "Delete", props, ByRef(other), false, "M", "A"); });
  FailEachStatement([&] { Call(kUpdate, "Delete", props, ByRef(other), true, "M", "A"); });
  Step("Post", id);
  Step("Post", CLng(fresh->Value("FVoucherID")));
  FailEachStatement([&] { Call("QDSVGLPeriod.PeriodUpdate", "Close", props); });
  FailEachStatement([&] { Call("QDSVGLPeriod.PeriodUpdate", "Reopen", props); });
  EXPECT_EQ(Breaches(), "");
}

// ---- The journal ----

TEST_P(VoucherServer, TheJournalComesInPagesByDateAndId) {
  const Long late = Save(Sale(1, "2024-03-01"));
  const Long first = Save(Sale(2, "2024-01-10"));
  const Long second = Save(Sale(3, "2024-01-10"));
  Long gone = Save(Sale(4, "2024-01-11"));
  const Long third = Save(Sale(5, "2024-02-01"));
  Call(kUpdate, "Delete", props, ByRef(gone));
  const auto page = [&](DateTime from, Long after, DateTime to, Long count) {
    const auto vouchers = Call(kInfo, "GetJournal", props, from, after, to, count).As<Vector>();
    std::vector<Long> ids;
    for (std::size_t i = 0; i < vouchers->size(); ++i) {
      const auto voucher = vouchers->at(i).As<Dictionary>();
      ids.push_back(voucher->Value("FVoucherID").As<Long>());
      EXPECT_EQ(StateText(Variant(voucher)), StateText(Variant(Read(ids.back()))));
    }
    return ids;
  };
  using Ids = std::vector<Long>;
  const DateTime none, day = DateTime::FromYmd(2024, 1, 10);
  EXPECT_EQ(page(none, 0, none, 9), (Ids{first, second, third, late}));
  EXPECT_EQ(page(none, 0, none, 2), (Ids{first, second}));
  EXPECT_EQ(page(day, first, none, 2), (Ids{second, third}));
  EXPECT_EQ(page(day, second, DateTime::FromYmd(2024, 2, 1), 9), Ids{third});
  EXPECT_EQ(page(DateTime::FromYmd(2024, 1, 11), 0, none, 9), (Ids{third, late}));
  EXPECT_EQ(page(DateTime::FromYmd(2024, 3, 2), 0, none, 9), Ids{});
}

}  // namespace
}  // namespace qdclgl::server::testing
