#include "qdclgl/vouchers/voucher_entry.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/support/columns.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::ErrorOf;
using testing::FlagText;
using testing::Opaque;
using testing::ReadOnlyColumn;
using testing::Row;
using testing::State;
using testing::StateText;
using testing::ViewOn;
using testing::WritableColumn;
using enum testing::Zero;

#define COLUMN(Type, Name, key, zero) \
  WritableColumn<Type>(#Name, key, &VoucherEntry::Name, &VoucherEntry::Name, zero)
#define READ_ONLY(Type, Name, key) ReadOnlyColumn<Type>(#Name, key, &VoucherEntry::Name)

// The members without a rule of their own.
std::vector<Column<VoucherEntry>> Columns() {
  return {
      COLUMN(Long, AccountID2, "FAccountID2", kRemovesTheKey),
      COLUMN(Long, AccountID, "FAccountID", kRemovesTheKey),
      COLUMN(String, AccountName, "FAccountName", kRemovesTheKey),
      COLUMN(String, AccountNumber, "FAccountNumber", kRemovesTheKey),
      COLUMN(Currency, AmountFor, "FAmountFor", kIsStored),
      COLUMN(Long, CashFlowItem, "FCashFlowItem", kRemovesTheKey),
      READ_ONLY(Double, Coefficient, "FCoefficient"),
      COLUMN(Long, ContrastID, "FContrastID", kIsStored),
      COLUMN(Long, CurrencyID, "FCurrencyID", kRemovesTheKey),
      COLUMN(String, CurrencyName, "FCurrencyName", kRemovesTheKey),
      COLUMN(String, CurrencyNumber, "FCurrencyNumber", kRemovesTheKey),
      COLUMN(String, CussentDatabaseLocation, "FCussentDatabaseLocation", kIsStored),
      COLUMN(Long, CussentFrameworkID, "FCussentFrameworkID", kIsStored),
      COLUMN(String, CussentFrameWorkName, "FCussentFrameWorkName", kIsStored),
      COLUMN(Long, CussentID, "FCussentID", kIsStored),
      COLUMN(String, CussentPassword, "FCussentPassword", kIsStored),
      COLUMN(String, CussentPropsstring, "CussentPropsstring", kIsStored),
      COLUMN(String, CussentUserName, "FCussentUserName", kIsStored),
      COLUMN(Long, DC, "FDC", kIsStored),
      READ_ONLY(Long, DetailID, "FDetailID"),
      COLUMN(Double, ExchangeRate, "FExchangeRate", kRemovesTheKey),
      COLUMN(String, Explanation, "FExplanation", kRemovesTheKey),
      COLUMN(String, InternalInd, "FInternalInd", kRemovesTheKey),
      COLUMN(Boolean, IsReadOnly, "FIsReadOnly", kIsStored),
      COLUMN(Boolean, LockAmount, "LockAmount", kIsStored),
      COLUMN(Long, MeasureUnitID, "FMeasureUnitID", kRemovesTheKey),
      COLUMN(Long, MGBillID, "FMgBillID", kRemovesTheKey),
      COLUMN(Currency, MGBillMoney, "FMgBillMoney", kRemovesTheKey),
      COLUMN(Long, MGDetailID, "FMgDetailID", kRemovesTheKey),
      COLUMN(Double, Quantity, "FQuantity", kIsStored),
      COLUMN(Long, ResourceID, "FResourceID", kRemovesTheKey),
      COLUMN(String, SettleNo, "FSettleNo", kRemovesTheKey),
      COLUMN(String, SettleType, "FSettleType", kRemovesTheKey),
      COLUMN(Long, SettleTypeID, "FSettleTypeID", kRemovesTheKey),
      COLUMN(String, SettleTypeName, "FSettleTypeName", kRemovesTheKey),
      COLUMN(Long, TaskID, "FTaskID", kRemovesTheKey),
      COLUMN(String, TransNo, "FTransNo", kRemovesTheKey),
      COLUMN(Long, UnitGroupID, "FUnitGroupID", kRemovesTheKey),
      COLUMN(Double, UnitPrice, "FUnitPrice", kIsStored),
  };
}

#undef COLUMN
#undef READ_ONLY

Ref<VoucherEntry> Line(const Ref<Dictionary>& row = Row({})) { return ViewOn<VoucherEntry>(row); }

// ---- The members that are no more than a key ----

TEST(VoucherEntry, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<VoucherEntry>(),
            "Clone IsEmpty AccountID2 AccountID AccountName AccountNumber AmountFor Amount "
            "CashFlow CashFlowItem Coefficient ContrastID Credit CurrencyID CurrencyName "
            "CurrencyNumber CussentDatabaseLocation CussentFrameworkID CussentFrameWorkName "
            "CussentFrameWorkNum CussentID CussentPassword CussentPropsstring CussentUserName DC "
            "Debit DetailID Details ExchangeRate Explanation InternalInd IsReadOnly LockAmount "
            "MeasureUnit MeasureUnitID MeasureUnitNumber MGBill MGBillID MGBillMoney MGDetailID "
            "Modified Properties Quantity ResourceID SettleNo SettleType SettleTypeID "
            "SettleTypeName TaskID TransNo UnitGroupID UnitPrice");
}

TEST(VoucherEntry, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST(VoucherEntry, ReadsEachMemberFromItsKey) { testing::ExpectReads(Columns()); }

TEST(VoucherEntry, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST(VoucherEntry, AWriteOfZeroRemovesTheKeyOrIsStoredAsTheKeyHasIt) {
  testing::ExpectWritesOfZero(Columns());
}

TEST(VoucherEntry, RefusesALetOfAnotherTypeAndAnyLetOfAReadOnlyMember) {
  testing::ExpectRefusedLets(Columns());
}

TEST(VoucherEntry, ExchangeRateDisappearsAtZeroAndQuantityDoesNot) {
  const auto line = Line(Row({{"FExchangeRate", 7.1}, {"FQuantity", 3.0}}));
  line->ExchangeRate(0);
  line->Quantity(0);
  EXPECT_EQ(State(*line), "{FQuantity: 0#} modified flagged");
}

TEST(VoucherEntry, AmountsRatesAndQuantitiesHaveNoRuleAmongThemselves) {
  const auto line = Line();
  line->Quantity(3);
  line->UnitPrice(2.5);
  line->ExchangeRate(7.1);
  line->AmountFor(Currency(10.5));
  EXPECT_EQ(State(*line),
            "{FQuantity: 3#, FUnitPrice: 2.5#, FExchangeRate: 7.1#, FAmountFor: 10.5@} modified "
            "flagged");
  EXPECT_EQ(line->Amount(), Currency());
}

TEST(VoucherEntry, IsReadOnlyAndLockAmountBlockNothing) {
  const auto line = Line();
  line->IsReadOnly(true);
  line->LockAmount(true);
  line->Debit(100);
  line->Explanation("x");
  EXPECT_EQ(State(*line),
            "{FIsReadOnly: True, LockAmount: True, FDC: 1, FAmount: 100@, FExplanation: \"x\"} "
            "modified flagged");
}

TEST(VoucherEntry, ComputedAndInheritedMembersRefuseALet) {
  const auto line = Line();
  for (const char* name : {"Modified", "Details", "Properties"}) {
    EXPECT_EQ(
        ErrorOf([&] { line->Let(name, 1); }),
        "error 438 (VoucherEntry): The member " + std::string(name) + " can't be used this way.");
  }
  EXPECT_EQ(State(*line), "{}");
}

TEST(VoucherEntry, ModifiedIsTheFlagsAnswerAndNotTheDictionarys) {
  const auto line = Line();
  line->Properties()->Dictionary()->Value("FAccountID", 5);
  EXPECT_FALSE(line->Modified());
  line->Properties()->Item("FTaskID")->Value(3);
  EXPECT_TRUE(line->Modified());
  EXPECT_EQ(StateText(line->Get("Modified")), "True");
  EXPECT_EQ(State(*line), "{FAccountID: 5, FTaskID: 3} modified flagged");
}

TEST(VoucherEntry, TwoViewsOfOneLineShareItsData) {
  const Ref<Dictionary> row = Row({{"FExplanation", "a"}});
  const auto one = Line(row);
  const auto other = Line(row);
  one->Explanation("b");
  other->Debit(5);
  EXPECT_EQ(other->Explanation(), "b");
  EXPECT_EQ(one->Debit(), Currency(5));
  EXPECT_EQ(one->Properties()->Dictionary(), row);
}

TEST(VoucherEntry, RaisesNinetyOneUntilItIsAttached) {
  testing::ExpectUnusable(Columns());
  const auto line = Make<VoucherEntry>();
  const std::function<void()> operations[] = {
      [&] { line->Clone(); },
      [&] { line->IsEmpty(); },
      [&] { line->Amount(); },
      [&] { line->Amount(1); },
      [&] { line->CashFlow(); },
      [&] { line->CashFlow(Make<Opaque>()); },
      [&] { line->Credit(); },
      [&] { line->Credit(1); },
      [&] { line->CussentFrameWorkNum(); },
      [&] { line->CussentFrameWorkNum("x"); },
      [&] { line->Debit(); },
      [&] { line->Debit(1); },
      [&] { line->Details(); },
      [&] { line->MeasureUnit(); },
      [&] { line->MeasureUnit("x"); },
      [&] { line->MeasureUnitNumber(); },
      [&] { line->MeasureUnitNumber("x"); },
      [&] { line->MGBill(); },
      [&] { line->MGBill(Row({})); },
      [&] { line->Modified(); },
  };
  for (const auto& operation : operations) EXPECT_EQ(ErrorOf(operation), "error 91");
}

// ---- Side and amount ----

TEST(VoucherEntry, ANewLineIsAnEmptyCreditLine) {
  const auto line = Line();
  EXPECT_EQ(line->DC(), 0);
  EXPECT_EQ(line->Debit(), Currency());
  EXPECT_EQ(line->Credit(), Currency());
  EXPECT_EQ(line->Amount(), Currency());
  EXPECT_EQ(State(*line), "{}");
  EXPECT_FALSE(line->Modified());
  EXPECT_TRUE(line->IsEmpty());
  EXPECT_TRUE(line->Modified());
}

TEST(VoucherEntry, TheAmountShowsOnTheSideOfTheLine) {
  const struct {
    Variant side;
    Currency debit, credit;
  } cases[] = {
      {Long{1}, 100, 0},    {Long{0}, 0, 100},     {Null, 0, 100},  {"", 0, 100},     {"1", 100, 0},
      {Integer{1}, 100, 0}, {Currency(1), 100, 0}, {Long{2}, 0, 0}, {Long{-1}, 0, 0}, {true, 0, 0},
  };
  for (const auto& [side, debit, credit] : cases) {
    const auto line = Line(Row({{"FDC", side}, {"FAmount", Currency(100)}}));
    EXPECT_EQ(line->Debit(), debit) << StateText(side);
    EXPECT_EQ(line->Credit(), credit) << StateText(side);
    EXPECT_EQ(line->Get("Debit").As<Currency>(), debit) << StateText(side);
    EXPECT_EQ(line->Get("Credit").As<Currency>(), credit) << StateText(side);
    EXPECT_EQ(line->Amount(), Currency(100)) << StateText(side);
    EXPECT_FALSE(line->Modified());
  }
}

TEST(VoucherEntry, ASideThatIsNoNumberRaisesThirteenAndChangesNothing) {
  const auto line = Line(Row({{"FDC", "left"}, {"FAmount", Currency(100)}}));
  EXPECT_EQ(ErrorOf([&] { line->DC(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { line->Debit(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { line->Credit(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { line->Debit(5); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { line->Credit(5); }), "error 13");
  EXPECT_EQ(State(*line), "{FDC: \"left\", FAmount: 100@}");
}

TEST(VoucherEntry, DebitAndCreditFollowOneRuleFromEveryState) {
  const std::optional<Long> sides[] = {std::nullopt, 0, 1, 2, -1};
  const std::optional<Long> amounts[] = {std::nullopt, 0, 100, -5};
  for (const auto& side : sides) {
    for (const auto& amount : amounts) {
      for (const Long written : {0, 40, -3}) {
        for (const Long target : {1, 0}) {
          const Ref<Dictionary> row = Row({});
          if (amount) row->Put("FAmount", Variant(Currency(*amount)));
          if (side) row->Put("FDC", Variant(*side));
          const auto line = Line(row);
          const std::string before = State(*line);
          target == 1 ? line->Debit(written) : line->Credit(written);

          const bool on_the_other_side = side.value_or(0) == 1 - target;
          const bool other_side_holds = on_the_other_side && amount.value_or(0) != 0;
          std::string after = before;
          if (written != 0 || !other_side_holds) {
            const std::string new_side = "FDC: " + std::to_string(target);
            const std::string new_amount = "FAmount: " + std::to_string(written) + "@";
            after = "{" + (amount ? new_amount + ", " + new_side : new_side + ", " + new_amount) +
                    "} modified flagged";
          }
          EXPECT_EQ(State(*line), after)
              << before << (target == 1 ? ", Debit = " : ", Credit = ") << written;
        }
      }
    }
  }
}

TEST(VoucherEntry, AZeroOnTheEmptySideLeavesTheLine) {
  const auto line = Line();
  line->Debit(100);
  line->Credit(0);
  EXPECT_EQ(State(*line), "{FDC: 1, FAmount: 100@} modified flagged");
  line->Credit(100);
  line->Debit(0);
  EXPECT_EQ(State(*line), "{FDC: 0, FAmount: 100@} modified flagged");
}

TEST(VoucherEntry, AWriteThatLeavesTheLineSetsNoFlag) {
  const auto line = Line(Row({{"FDC", Long{1}}, {"FAmount", Currency(100)}}));
  line->Credit(0);
  EXPECT_EQ(State(*line), "{FDC: 1, FAmount: 100@}");
}

TEST(VoucherEntry, DebitAndCreditWrittenInTurnLeaveTheLastOneThatIsNotZero) {
  const auto line = Line();
  line->Let("Debit", 100);
  line->Let("Credit", 40);
  EXPECT_EQ(State(*line), "{FDC: 0, FAmount: 40@} modified flagged");
  EXPECT_EQ(line->Debit(), Currency());
  line->Let("Debit", -7);
  EXPECT_EQ(State(*line), "{FDC: 1, FAmount: -7@} modified flagged");
  line->Let("Debit", 0);
  EXPECT_EQ(State(*line), "{FDC: 1, FAmount: 0@} modified flagged");
  line->Let("Credit", 0);
  EXPECT_EQ(State(*line), "{FDC: 0, FAmount: 0@} modified flagged");
}

TEST(VoucherEntry, DebitOfZeroOnANewLineMakesItADebitLine) {
  const auto line = Line();
  line->Debit(0);
  EXPECT_EQ(State(*line), "{FDC: 1, FAmount: 0@} modified flagged");
}

TEST(VoucherEntry, DebitKeepsFourDecimals) {
  const auto line = Line();
  line->Debit(Currency(0.1234));
  EXPECT_EQ(line->Debit(), Currency::FromUnits(1234));
  line->Let("Credit", "1.00005");
  EXPECT_EQ(line->Credit(), Currency(1));
}

TEST(VoucherEntry, AmountStoresTheSideToo) {
  const struct {
    Ref<Dictionary> row;
    Currency amount;
    const char* after;
  } cases[] = {
      {Row({}), 0, "{FAmount: 0@, FDC: 0} modified flagged"},
      {Row({}), 12, "{FAmount: 12@, FDC: 0} modified flagged"},
      {Row({{"FDC", Long{1}}}), -3, "{FDC: 1, FAmount: -3@} modified flagged"},
      {Row({{"FDC", Null}}), 5, "{FDC: 0, FAmount: 5@} modified flagged"},
      {Row({{"FDC", "1"}}), 5, "{FDC: 1, FAmount: 5@} modified flagged"},
      {Row({{"FDC", Integer{0}}}), 5, "{FDC: 0, FAmount: 5@} modified flagged"},
  };
  for (const auto& [row, amount, after] : cases) {
    for (const bool late : {false, true}) {
      const auto line = Line(row->Clone());
      late ? line->Let("Amount", amount) : line->Amount(amount);
      EXPECT_EQ(State(*line), after);
      EXPECT_EQ(line->Amount(), amount);
    }
  }
}

TEST(VoucherEntry, AmountReadsZeroWhereTheRowHasNone) {
  for (const Ref<Dictionary>& row : {Row({}), Row({{"FAmount", Null}}), Row({{"FAmount", ""}})}) {
    EXPECT_EQ(Line(row)->Amount(), Currency());
    EXPECT_EQ(StateText(Line(row)->Get("Amount")), "0@");
  }
  EXPECT_EQ(Line(Row({{"FAmount", "12.5"}}))->Amount(), Currency(12.5));
  EXPECT_EQ(ErrorOf([] { Line(Row({{"FAmount", "much"}}))->Amount(); }), "error 13");
}

TEST(VoucherEntry, AmountOnALineWithABadSideIsKeptAndThenRaises) {
  for (const Long side : {2, -1}) {
    const auto line = Line(Row({{"FDC", side}, {"FAmount", Currency(1)}}));
    EXPECT_EQ(ErrorOf([&] { line->Amount(9); }), "error 380");
    EXPECT_EQ(State(*line), "{FDC: " + std::to_string(side) + ", FAmount: 9@} modified flagged");
  }
  const auto text = Line(Row({{"FDC", "left"}}));
  EXPECT_EQ(ErrorOf([&] { text->Amount(9); }), "error 13");
  EXPECT_EQ(State(*text), "{FDC: \"left\", FAmount: 9@} modified flagged");
}

TEST(VoucherEntry, DebitAndCreditMendABadSide) {
  const auto line = Line(Row({{"FDC", Long{2}}, {"FAmount", Currency(100)}}));
  line->Debit(0);
  EXPECT_EQ(State(*line), "{FDC: 1, FAmount: 0@} modified flagged");
}

TEST(VoucherEntry, DCRefusesAllButZeroAndOneAndLeavesTheLine) {
  const Variant refused[] = {Long{2}, Long{-1}, Long{100}, 1.5, true, "2"};
  for (const Variant& side : refused) {
    const auto line = Line(Row({{"FDC", Long{1}}}));
    EXPECT_EQ(ErrorOf([&] { line->DC(side.As<Long>()); }), "error 380") << StateText(side);
    EXPECT_EQ(ErrorOf([&] { line->Let("DC", side); }), "error 380") << StateText(side);
    EXPECT_EQ(State(*line), "{FDC: 1}");
  }
  const auto empty = Line();
  EXPECT_EQ(ErrorOf([&] { empty->DC(2); }), "error 380");
  EXPECT_EQ(State(*empty), "{}");
}

TEST(VoucherEntry, DCIsStoredAsALong) {
  for (const Variant& side : {Variant(Integer{1}), Variant(1.4), Variant("1"), Variant(Byte{1})}) {
    const auto line = Line();
    line->Let("DC", side);
    EXPECT_EQ(State(*line), "{FDC: 1} modified flagged");
  }
}

TEST(VoucherEntry, DCMovesTheAmountToTheOtherSide) {
  const auto line = Line(Row({{"FAmount", Currency(8)}}));
  EXPECT_EQ(line->Credit(), Currency(8));
  line->DC(1);
  EXPECT_EQ(line->Credit(), Currency());
  EXPECT_EQ(line->Debit(), Currency(8));
  EXPECT_EQ(State(*line), "{FAmount: 8@, FDC: 1} modified flagged");
}

// ---- Details ----

TEST(VoucherEntry, TheFirstReadOfDetailsMarksALineWithoutThem) {
  for (const Ref<Dictionary>& row : {Row({}), Row({{"_Details", Nothing}}),
                                     Row({{"_Details", Null}}), Row({{"_Details", ""}})}) {
    const auto line = Line(row);
    EXPECT_EQ(line->Details()->Count(), 0);
    EXPECT_EQ(State(*line), "{_Details: []} modified flagged");
    EXPECT_EQ(FlagText(*line->Properties()->ChangeFlag()), "*[-]");
  }
}

TEST(VoucherEntry, ALaterReadOfDetailsMarksNothing) {
  const auto line = Line();
  line->Details();
  line->Properties()->Dictionary()->ResetModified();
  line->Properties()->ChangeFlag()->Reset();
  EXPECT_EQ(line->Get("Details").As<VoucherDetailSet>()->Count(), 0);
  EXPECT_EQ(State(*line), "{_Details: []}");
  EXPECT_EQ(FlagText(*line->Properties()->ChangeFlag()), "-[-]");
}

TEST(VoucherEntry, DetailsOfALoadedLineMarkItOnlyWhenTheyAreWritten) {
  auto details = Make<Vector>();
  details->Append(Variant(Row({{"FItemID", Long{1}}})));
  const auto line = Line(Row({{"_Details", details}}));
  const auto set = line->Details();
  EXPECT_EQ(set->Count(), 1);
  EXPECT_EQ(State(*line), "{_Details: [{FItemID: 1}]}");
  set->Item(1)->ItemID(2);
  EXPECT_EQ(State(*line), "{_Details: [{FItemID: 2}]} flagged")
      << "the line's own Dictionary was not written";
  EXPECT_EQ(FlagText(*line->Properties()->ChangeFlag()), "+[*]");
}

TEST(VoucherEntry, EachReadOfDetailsIsANewViewOfOneList) {
  const auto line = Line();
  const auto one = line->Details();
  const auto other = line->Details();
  EXPECT_NE(one, other);
  one->Add();
  one->Item(1)->Value("x");
  EXPECT_EQ(other->Item(1)->Value(), "x");
  EXPECT_TRUE(other->Item(1)->Modified());
  EXPECT_EQ(State(*line), "{_Details: [{FValue: \"x\"}]} modified flagged");
}

TEST(VoucherEntry, DetailsThatAreNoListRaiseThirteen) {
  for (const Variant& stored : {Variant("text"), Variant(Long{1}), Variant(Row({}))}) {
    const auto line = Line(Row({{"_Details", stored}}));
    EXPECT_EQ(ErrorOf([&] { line->Details(); }), "error 13") << StateText(stored);
    EXPECT_FALSE(line->Modified());
  }
}

// ---- IsEmpty ----

TEST(VoucherEntry, IsEmptyOfALineThatPassesAllTestsMakesItsDetails) {
  const auto line = Line();
  EXPECT_TRUE(line->IsEmpty());
  EXPECT_EQ(State(*line), "{_Details: []} modified flagged");
  EXPECT_EQ(StateText(line->Call("IsEmpty")), "True");
}

TEST(VoucherEntry, IsEmptyStopsAtTheFirstTestThatFails) {
  // In the order of the tests. What can't be read behind the first failure is never read.
  const std::pair<std::string_view, Variant> tests[] = {
      {"FAccountID", Long{1}},      {"FAccountNumber", "1001"}, {"FCurrencyID", Long{1}},
      {"FCurrencyNumber", "EUR"},   {"FAmount", Currency(-1)},  {"FExplanation", "x"},
      {"_Details", Make<Vector>()},
  };
  tests[6].second.As<Vector>()->Append(Variant(Row({})));
  const Variant unreadable = Make<Opaque>();
  for (std::size_t failing = 0; failing < std::size(tests); ++failing) {
    const auto [key, value] = tests[failing];
    SCOPED_TRACE(key);

    const auto alone = Line(Row({{key, value}}));
    EXPECT_FALSE(alone->IsEmpty());
    EXPECT_EQ(State(*alone), "{" + std::string(key) + ": " + StateText(value) + "}");

    const Ref<Dictionary> row = Row({{key, value}});
    for (std::size_t i = failing + 1; i < std::size(tests); ++i) {
      row->Put(tests[i].first, unreadable);
    }
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(Line(row)->IsEmpty()); }), "no error");

    const auto reached = Line(Row({{key, unreadable}}));
    EXPECT_NE(ErrorOf([&] { reached->IsEmpty(); }), "no error");
  }
}

TEST(VoucherEntry, IsEmptyOfALineWithAnEmptyListOfDetailsMarksNothing) {
  const auto line = Line(Row({{"_Details", Make<Vector>()}}));
  EXPECT_TRUE(line->IsEmpty());
  EXPECT_EQ(State(*line), "{_Details: []}");
}

TEST(VoucherEntry, ALineWithOnlyOtherDataStillCountsAsEmpty) {
  const auto line = Line(Row({{"FQuantity", 3.0},
                              {"FMeasureUnitID", Long{2}},
                              {"FSettleNo", "7"},
                              {"FAmountFor", Currency(5)},
                              {"FDC", Long{1}},
                              {"FAmount", Currency(0)},
                              {"FAccountName", "Cash"},
                              {"_Details", Make<Vector>()}}));
  EXPECT_TRUE(line->IsEmpty());
}

// ---- Clone ----

TEST(VoucherEntry, CloneIsADeepCopyThatReachesNobody) {
  auto details = Make<Vector>();
  details->Append(Variant(Row({{"FItemID", Long{1}}})));
  const auto line = Line(Row(
      {{"FAmount", Currency(5)}, {"_Details", details}, {"FMgBill", Row({{"FNumber", "B1"}})}}));
  line->Explanation("edited");
  const std::string row = "{FAmount: 5@, _Details: [{FItemID: 1}], FMgBill: {FNumber: \"B1\"}, "
                          "FExplanation: \"edited\"}";
  const auto clone = line->Clone();
  EXPECT_EQ(State(*clone), row);
  EXPECT_EQ(FlagText(*clone->Properties()->ChangeFlag()), "-");
  EXPECT_EQ(State(*line), row + " modified flagged");

  clone->Debit(9);
  clone->Details()->Item(1)->ItemID(2);
  clone->MGBill()->Value("FNumber", "B2");
  EXPECT_EQ(State(*line), row + " modified flagged");
  line->Properties()->ChangeFlag()->Reset();
  line->Details()->Item(1)->ItemID(3);
  line->Explanation("again");
  EXPECT_EQ(State(*clone), "{FAmount: 9@, _Details: [{FItemID: 2}], FMgBill: {FNumber: \"B2\"}, "
                           "FExplanation: \"edited\", FDC: 1} modified flagged");
}

TEST(VoucherEntry, CloneOfAnUnwrittenLineLeavesBothUnmodified) {
  const auto line = Line(Row({{"FAccountID", Long{5}}}));
  const auto clone = line->Call("Clone").As<VoucherEntry>();
  EXPECT_EQ(State(*clone), "{FAccountID: 5}");
  EXPECT_EQ(State(*line), "{FAccountID: 5}");
  clone->AccountID(6);
  EXPECT_FALSE(line->Modified());
  line->AccountID(7);
  EXPECT_EQ(clone->AccountID(), 6);
}

TEST(VoucherEntry, CloneNeedsACloneOfEveryObjectOnTheLine) {
  const auto line = Line(Row({{"CashFlow", Make<Opaque>()}}));
  EXPECT_EQ(ErrorOf([&] { line->Clone(); }).substr(0, 9), "error 438");
  EXPECT_EQ(State(*line), "{CashFlow: <Opaque>}");
}

// ---- CussentFrameWorkNum ----

TEST(VoucherEntry, CussentFrameWorkNumReadsEmptyAndShowsItsValueAsTheName) {
  const auto line = Line();
  line->CussentFrameWorkNum("F01");
  EXPECT_EQ(State(*line), "{FCussentFrameWorkNum: \"F01\"} modified flagged");
  EXPECT_EQ(line->CussentFrameWorkName(), "");
  EXPECT_EQ(line->CussentFrameWorkNum(), "");
  EXPECT_EQ(line->CussentFrameWorkName(), "F01");
  EXPECT_EQ(State(*line),
            "{FCussentFrameWorkNum: \"F01\", FCussentFrameWorkName: \"F01\"} modified flagged");
}

TEST(VoucherEntry, AReadOfCussentFrameWorkNumOverwritesTheNameAndMarksTheLine) {
  const auto line = Line(Row({{"FCussentFrameWorkName", "old"}}));
  EXPECT_EQ(StateText(line->Get("CussentFrameWorkNum")), "\"\"");
  EXPECT_EQ(State(*line), "{FCussentFrameWorkName: \"\"} modified flagged");
  const auto empty = Line();
  empty->CussentFrameWorkNum();
  EXPECT_EQ(State(*empty), "{FCussentFrameWorkName: \"\"} modified flagged");
}

TEST(VoucherEntry, CussentFrameWorkNumStoresEmptyText) {
  const auto line = Line(Row({{"FCussentFrameWorkNum", "F01"}}));
  line->Let("CussentFrameWorkNum", "");
  EXPECT_EQ(State(*line), "{FCussentFrameWorkNum: \"\"} modified flagged");
}

// ---- Units ----

TEST(VoucherEntry, UnitTextsReadEmptyUntilTheLineHasAUnit) {
  const auto line = Line();
  line->MeasureUnit("kg");
  line->MeasureUnitNumber("01");
  EXPECT_EQ(State(*line), "{FMeasureUnit: \"kg\", FMeasureUnitNumber: \"01\"} modified flagged");
  EXPECT_EQ(line->MeasureUnit() + line->MeasureUnitNumber(), "");
  EXPECT_EQ(StateText(line->Get("MeasureUnit")), "\"\"");
  EXPECT_EQ(StateText(line->Get("MeasureUnitNumber")), "\"\"");
  line->MeasureUnitID(4);
  EXPECT_EQ(line->MeasureUnit(), "kg");
  EXPECT_EQ(line->MeasureUnitNumber(), "01");
  EXPECT_EQ(StateText(line->Get("MeasureUnit")), "\"kg\"");
  EXPECT_EQ(StateText(line->Get("MeasureUnitNumber")), "\"01\"");
  line->MeasureUnitID(0);
  EXPECT_EQ(line->MeasureUnit() + line->MeasureUnitNumber(), "");
}

TEST(VoucherEntry, UnitTextsReadEmptyWhereTheRowHasNone) {
  const auto line = Line(Row({{"FMeasureUnitID", Long{4}}, {"FMeasureUnit", Null}}));
  EXPECT_EQ(line->MeasureUnit() + line->MeasureUnitNumber(), "");
}

TEST(VoucherEntry, AWriteOfAnEmptyUnitTextRemovesTheKey) {
  const auto line = Line(Row({{"FMeasureUnit", "kg"}, {"FMeasureUnitNumber", "01"}}));
  line->MeasureUnit("");
  line->Let("MeasureUnitNumber", "");
  EXPECT_EQ(State(*line), "{} modified flagged");
  line->Let("MeasureUnit", "t");
  line->MeasureUnitNumber("02");
  EXPECT_EQ(State(*line), "{FMeasureUnit: \"t\", FMeasureUnitNumber: \"02\"} modified flagged");
  const auto absent = Line();
  absent->MeasureUnit("");
  EXPECT_EQ(State(*absent), "{} flagged");
}

// ---- Objects on a line ----

TEST(VoucherEntry, CashFlowHoldsAnObjectAndNothingRemovesIt) {
  const auto line = Line();
  EXPECT_EQ(line->CashFlow(), nullptr);
  EXPECT_EQ(StateText(line->Get("CashFlow")), "Nothing");
  EXPECT_EQ(State(*line), "{}");
  const Ref<Object> flow = Make<Opaque>();
  line->CashFlow(flow);
  EXPECT_EQ(line->CashFlow(), flow);
  EXPECT_EQ(State(*line), "{CashFlow: <Opaque>} modified flagged");
  line->CashFlow(Nothing);
  EXPECT_EQ(State(*line), "{} modified flagged");

  line->Let("CashFlow", Row({{"FAmount", Long{1}}}));
  EXPECT_EQ(State(*line), "{CashFlow: {FAmount: 1}} modified flagged");
  line->Let("CashFlow", Nothing);
  EXPECT_EQ(State(*line), "{} modified flagged");
  const auto absent = Line();
  absent->CashFlow(Nothing);
  EXPECT_EQ(State(*absent), "{} flagged");
}

TEST(VoucherEntry, CashFlowTakesAVariantThatHoldsAnObject) {
  const auto line = Line();
  const Variant flow(Make<Opaque>());
  line->CashFlow(flow);
  EXPECT_EQ(State(*line), "{CashFlow: <Opaque>} modified flagged");
  EXPECT_EQ(line->CashFlow().get(), flow.ObjectPointer());
  line->CashFlow(Variant(Nothing));
  EXPECT_EQ(State(*line), "{} modified flagged");
  const MemberRow& row = VoucherEntry::Table().Find("CashFlow")->row;
  EXPECT_EQ(std::string(row.type) + " " + std::string(row.PutType()), "Object Variant");
}

TEST(VoucherEntry, CashFlowRefusesPlainValues) {
  for (const Variant& value : {Variant(5), Variant("text"), Variant(Null), Variant()}) {
    const auto line = Line();
    EXPECT_EQ(ErrorOf([&] { line->Let("CashFlow", value); }), "error 13") << StateText(value);
    EXPECT_EQ(ErrorOf([&] { line->CashFlow(value); }), "error 13") << StateText(value);
    EXPECT_EQ(State(*line), "{}");
  }
}

TEST(VoucherEntry, MGBillHoldsADictionaryAndNothingRemovesIt) {
  const auto line = Line();
  const Ref<Dictionary> bill = Row({{"FNumber", "B1"}});
  line->MGBill(bill);
  EXPECT_EQ(line->MGBill(), bill);
  EXPECT_EQ(State(*line), "{FMgBill: {FNumber: \"B1\"}} modified flagged");
  line->MGBill(Nothing);
  EXPECT_EQ(State(*line), "{} modified flagged");

  line->Set("MGBill", bill);
  EXPECT_EQ(line->Get("MGBill").As<Dictionary>(), bill);
  line->Set("MGBill", Nothing);
  EXPECT_EQ(State(*line), "{} modified flagged");
}

TEST(VoucherEntry, MGBillRefusesWhatIsNoDictionary) {
  const Variant values[] = {5, "text", Null, Variant(), Make<Opaque>(), Make<Vector>()};
  for (const Variant& value : values) {
    const auto line = Line();
    EXPECT_EQ(ErrorOf([&] { line->Set("MGBill", value); }), "error 13") << StateText(value);
    EXPECT_EQ(State(*line), "{}");
  }
}

TEST(VoucherEntry, MGBillOfALineWithoutOneRaisesThirteen) {
  for (const Ref<Dictionary>& row :
       {Row({}), Row({{"FMgBill", Null}}), Row({{"FMgBill", "B1"}}), Row({{"FMgBill", Long{1}}}),
        Row({{"FMgBill", Make<Vector>()}})}) {
    const auto line = Line(row);
    EXPECT_EQ(ErrorOf([&] { line->MGBill(); }), "error 13") << StateText(Variant(row));
    EXPECT_EQ(ErrorOf([&] { line->Get("MGBill"); }), "error 13") << StateText(Variant(row));
    EXPECT_FALSE(line->Modified());
  }
}

}  // namespace
}  // namespace qdclgl
