#include "qdclgl/accounts/currency.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/columns.h"
#include "tests/support/failing_events.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::AtEachFailure;
using testing::Column;
using testing::ErrorOf;
using testing::Opaque;
using testing::ReadOnlyColumn;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;
using testing::WithDefault;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLCurrency.CurrencyInfo";
constexpr const char* kUpdate = "QDSVGLCurrency.CurrencyUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &Currencyx::Name, &Currencyx::Name, kIsStored)
#define READ_ONLY(Type, Name, key) ReadOnlyColumn<Type>(#Name, key, &Currencyx::Name)

// The members that read and write one key.
std::vector<Column<Currencyx>> Columns() {
  return {
      READ_ONLY(Boolean, Deleted, "FDeleted"),
      WithDefault(COLUMN(Double, ExchangeRate, "FExchangeRate"), 1.0, 7.25),
      COLUMN(Integer, FixRate, "FFixRate"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "USD_1"),
      WithDefault(COLUMN(String, Operator, "FOperator"), "*", "/"),
      WithDefault(COLUMN(Integer, Scalex, "FScale"), Integer{2}, Integer{4}),
      COLUMN(String, UUID, "UUID"),
  };
}

#undef COLUMN
#undef READ_ONLY

Ref<Currencyx> CurrencyOf(const Ref<Dictionary>& row) { return testing::ViewOn<Currencyx>(row); }

// Everything that one can see of a currency: id, bag, the Dictionary's modified state, the flag.
std::string State(const Currencyx& currency) {
  return "id " + std::to_string(currency.CurrencyID()) + " " +
         testing::State(static_cast<const RowView&>(currency));
}

std::string State(const CurrencySet& currencies) {
  return StateText(Variant(currencies.RecordSet())) + " by " +
         std::to_string(currencies.ListOptions()) + " \"" + currencies.Filter() + "\" \"" +
         currencies.Sort() + "\"";
}

Ref<Recordset> ThreeCurrencies() {
  auto list = Recordset::Create({"FCurrencyID", "FNumber", "FExchangeRate"});
  list->AddRow({Long{1}, "RMB", 1.0});
  list->AddRow({Long{2}, "USD", 7.1});
  list->AddRow({Long{3}, "EUR", 0.0});
  return list;
}

constexpr const char* kThreeCurrencies =
    "recordset{FCurrencyID, FNumber, FExchangeRate | 1, \"RMB\", 1# | 2, \"USD\", 7.1# | "
    "3, \"EUR\", 0#}";

class CurrencyxTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class CurrencySetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<CurrencySet> currencies = Make<CurrencySet>();
};

// ---- The members ----

TEST_F(CurrencyxTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<Currencyx>(),
            "CancelChanges Construct Refresh SaveChanges CurrencyID Deleted ExchangeRate FixRate "
            "MulExchangeRate Name Number Operator Properties Scalex UUID");
}

TEST_F(CurrencyxTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(CurrencyxTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(CurrencyxTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(CurrencyxTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(CurrencyxTest, StoresZeroInTheMembersWithoutACheck) {
  const auto currency = CurrencyOf(Nothing);
  currency->FixRate(0);
  currency->Scalex(0);
  currency->Name("");
  currency->UUID("");
  EXPECT_EQ(State(*currency),
            "id 0 {FFixRate: 0%, FScale: 0%, FName: \"\", UUID: \"\"} modified flagged");
  EXPECT_EQ(currency->Scalex(), 0);
}

TEST_F(CurrencyxTest, StoresAnyValueInTheMembersWithoutACheck) {
  const auto currency = CurrencyOf(Nothing);
  currency->FixRate(-32768);
  currency->Scalex(32767);
  currency->UUID("no uuid");
  EXPECT_EQ(State(*currency),
            "id 0 {FFixRate: -32768%, FScale: 32767%, UUID: \"no uuid\"} modified flagged");
}

TEST_F(CurrencyxTest, RefusesALetOfAnotherTypeAndAnyLetOfAReadOnlyMember) {
  testing::ExpectRefusedLets(Columns());
}

TEST_F(CurrencyxTest, SixteenBitMembersRaiseOverflowForALargerStoredNumber) {
  const auto currency = CurrencyOf(Row({{"FFixRate", Long{40000}}, {"FScale", Long{-40000}}}));
  EXPECT_EQ(ErrorOf([&] { currency->FixRate(); }), "error 6");
  EXPECT_EQ(ErrorOf([&] { currency->Scalex(); }), "error 6");
}

TEST_F(CurrencyxTest, TheIdTheFactorAndTheBagCannotBeLet) {
  Ref<Object> currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}}));
  for (const std::string name : {"CurrencyID", "MulExchangeRate", "Properties"}) {
    EXPECT_EQ(ErrorOf([&] { currency->Let(name, Long{1}); }),
              "error 438 (Currencyx): The member " + name + " can't be used this way.");
  }
  EXPECT_EQ(StateText(currency->Get("CurrencyID")), "5");
  EXPECT_EQ(StateText(currency->Get("MulExchangeRate")), "1#");
  EXPECT_EQ(StateText(currency->Get("Properties")), "<Properties>");
}

TEST_F(CurrencyxTest, HasNeitherCloneNorModified) {
  Ref<Object> currency = CurrencyOf(Nothing);
  EXPECT_EQ(ErrorOf([&] { currency->Call("Clone"); }), "error 438 (Currencyx): No member Clone.");
  EXPECT_EQ(ErrorOf([&] { currency->Get("Modified"); }),
            "error 438 (Currencyx): No member Modified.");
}

TEST_F(CurrencyxTest, ACurrencyThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  const auto currency = Make<Currencyx>();
  EXPECT_EQ(ErrorOf([&] { currency->MulExchangeRate(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { currency->SaveChanges(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { currency->CancelChanges(); }), "error 91");
  EXPECT_EQ(currency->Properties(), nullptr);
  currency->Refresh();
  EXPECT_EQ(currency->CurrencyID(), 0);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencyxTest, ANewCurrencyMultipliesByOneWithTwoDecimals) {
  const auto currency = CurrencyOf(Nothing);
  EXPECT_EQ(currency->Operator(), "*");
  EXPECT_EQ(currency->Scalex(), 2);
  EXPECT_EQ(currency->FixRate(), 0);
  EXPECT_EQ(currency->ExchangeRate(), 1);
  EXPECT_EQ(currency->MulExchangeRate(), 1);
  EXPECT_EQ(State(*currency), "id 0 {}");
}

// ---- The rate ----

TEST_F(CurrencyxTest, AMissingRateReadsOneAndChangesNothing) {
  for (const auto& row : {Row({}), Row({{"FExchangeRate", Null}}), Row({{"FExchangeRate", ""}})}) {
    const auto currency = CurrencyOf(row);
    EXPECT_EQ(currency->ExchangeRate(), 1);
    EXPECT_EQ(currency->MulExchangeRate(), 1);
    EXPECT_EQ(State(*currency), "id 0 " + StateText(Variant(row)));
    currency->SaveChanges();
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencyxTest, AStoredRateOfZeroIsMendedByTheReadAlone) {
  const Variant zeros[] = {0.0,         -0.0, Long{0}, Integer{0}, Single{0},
                           Currency(0), "0",  "0.00",  false,      CDec(Variant("0"))};
  for (const Variant& zero : zeros) {
    const auto currency = CurrencyOf(Row({{"FExchangeRate", zero}, {"FName", "x"}}));
    EXPECT_EQ(State(*currency), "id 0 {FExchangeRate: " + StateText(zero) + ", FName: \"x\"}");
    EXPECT_EQ(currency->ExchangeRate(), 1);
    EXPECT_EQ(State(*currency), "id 0 {FExchangeRate: 1#, FName: \"x\"} modified flagged");
    EXPECT_EQ(currency->ExchangeRate(), 1);
  }
}

TEST_F(CurrencyxTest, AStoredRateOfZeroIsMendedByALateBoundReadToo) {
  const auto currency = CurrencyOf(Row({{"FExchangeRate", 0.0}}));
  EXPECT_EQ(StateText(currency->Get("ExchangeRate")), "1#");
  EXPECT_EQ(State(*currency), "id 0 {FExchangeRate: 1#} modified flagged");
}

TEST_F(CurrencyxTest, TheFactorMendsARateOfZeroWhicheverOperatorIsSet) {
  for (const char* sign : {"*", "/"}) {
    const auto currency = CurrencyOf(Row({{"FExchangeRate", 0.0}, {"FOperator", sign}}));
    EXPECT_EQ(currency->MulExchangeRate(), 1);
    EXPECT_EQ(State(*currency), std::string("id 0 {FExchangeRate: 1#, FOperator: \"") + sign +
                                    "\"} modified flagged");
  }
}

TEST_F(CurrencyxTest, AMendedRateIsSavedAndOneThatNobodyReadIsNot) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{3}}, {"FExchangeRate", 0.0}}));
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
  currency->ExchangeRate();
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FCurrencyID", Long{3}}, {"FExchangeRate", 1.0}})));
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyUpdate\n"
            "call Update(\"props\", ref 3, {FCurrencyID: 3, FExchangeRate: 1#, "
            "MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetail(\"props\", ref 3) -> {FCurrencyID: 3, FExchangeRate: 1#}\n");
  EXPECT_EQ(State(*currency), "id 3 {FCurrencyID: 3, FExchangeRate: 1#}");
}

TEST_F(CurrencyxTest, CancelChangesBringsARateOfZeroBackForTheNextRead) {
  const auto currency = CurrencyOf(Row({{"FExchangeRate", 0.0}}));
  currency->ExchangeRate();
  currency->CancelChanges();
  EXPECT_EQ(State(*currency), "id 0 {FExchangeRate: 0#}");
  EXPECT_EQ(currency->ExchangeRate(), 1);
  EXPECT_EQ(State(*currency), "id 0 {FExchangeRate: 1#} modified flagged");
}

TEST_F(CurrencyxTest, ARateOfZeroCannotBeWrittenAndLeavesTheOldOne) {
  const auto currency = CurrencyOf(Row({{"FExchangeRate", 7.1}}));
  EXPECT_EQ(ErrorOf([&] { currency->ExchangeRate(0); }), "error 380");
  EXPECT_EQ(ErrorOf([&] { currency->ExchangeRate(-0.0); }), "error 380");
  for (const Variant& zero : {Variant(Long{0}), Variant(0.0), Variant("0"), Variant(false)}) {
    EXPECT_EQ(ErrorOf([&] { currency->Let("ExchangeRate", zero); }), "error 380");
  }
  EXPECT_EQ(State(*currency), "id 0 {FExchangeRate: 7.1#}");
}

TEST_F(CurrencyxTest, AnyOtherRateIsStoredANegativeOneToo) {
  for (const double rate : {-1.0, 8.0, 1e-9, -0.5, 1e15}) {
    const auto currency = CurrencyOf(Nothing);
    currency->ExchangeRate(rate);
    EXPECT_EQ(currency->ExchangeRate(), rate);
    EXPECT_EQ(State(*currency),
              "id 0 {FExchangeRate: " + StateText(Variant(rate)) + "} modified flagged");
  }
}

TEST_F(CurrencyxTest, TheFactorIsTheRateOrOneDividedByItAsTheOperatorSays) {
  const auto currency = CurrencyOf(Nothing);
  currency->ExchangeRate(8);
  EXPECT_EQ(currency->MulExchangeRate(), 8);
  currency->Operator("/");
  EXPECT_EQ(currency->MulExchangeRate(), 0.125);
  EXPECT_EQ(StateText(currency->Get("MulExchangeRate")), "0.125#");
  currency->Operator("*");
  EXPECT_EQ(currency->MulExchangeRate(), 8);
  currency->ExchangeRate(-4);
  currency->Operator("/");
  EXPECT_EQ(currency->MulExchangeRate(), -0.25);
}

TEST_F(CurrencyxTest, TheFactorIsTheRateForAStoredOperatorThatIsNotJustASlash) {
  for (const Variant& sign :
       {Variant(" /"), Variant("/ "), Variant("x"), Variant(Null), Variant("")}) {
    const auto currency = CurrencyOf(Row({{"FExchangeRate", 8.0}, {"FOperator", sign}}));
    EXPECT_EQ(currency->MulExchangeRate(), 8) << StateText(sign);
  }
}

// ---- The operator and the number ----

TEST_F(CurrencyxTest, AnyOtherOperatorRaises380AndLeavesTheOldOne) {
  const auto currency = CurrencyOf(Row({{"FOperator", "/"}}));
  for (const char* sign : {"", " ", "+", "-", "x", "**", "//", "*/", "* ", " /", "÷", "＊", "／"}) {
    EXPECT_EQ(ErrorOf([&] { currency->Operator(sign); }), "error 380") << sign;
    EXPECT_EQ(ErrorOf([&] { currency->Let("Operator", sign); }), "error 380") << sign;
  }
  EXPECT_EQ(State(*currency), "id 0 {FOperator: \"/\"}");
  EXPECT_EQ(currency->Operator(), "/");
}

TEST_F(CurrencyxTest, AStoredOperatorReadsAsItIs) {
  EXPECT_EQ(CurrencyOf(Row({{"FOperator", "x"}}))->Operator(), "x");
}

TEST_F(CurrencyxTest, NumberIsStoredInUpperCaseUpToEightLettersDigitsAndUnderscores) {
  const std::pair<const char*, const char*> cases[] = {
      {"usd", "USD"}, {"ABCDEFGH", "ABCDEFGH"}, {"abcdefgh", "ABCDEFGH"},
      {"a_1", "A_1"}, {"12345678", "12345678"}, {"_", "_"},
      {"", ""},
  };
  for (const auto& [written, stored] : cases) {
    const auto currency = CurrencyOf(Nothing);
    currency->Number(written);
    EXPECT_EQ(currency->Number(), stored);
    EXPECT_EQ(State(*currency), std::string("id 0 {FNumber: \"") + stored + "\"} modified flagged");

    const auto late = CurrencyOf(Nothing);
    late->Let("Number", written);
    EXPECT_EQ(State(*late), State(*currency));
  }
}

TEST_F(CurrencyxTest, ANumberThatCannotBeOneRaises380AndLeavesTheOldOne) {
  const auto currency = CurrencyOf(Row({{"FNumber", "USD"}}));
  for (const char* number : {"ABCDEFGHI", "abcdefghi", "A-B", "A B", " USD", "USD ", "A.B", "$",
                             "美元", "é", "ß", "ı", "ſ", "ｕｓｄ", "１", "А"}) {
    EXPECT_EQ(ErrorOf([&] { currency->Number(number); }), "error 380") << number;
    EXPECT_EQ(ErrorOf([&] { currency->Let("Number", number); }), "error 380") << number;
  }
  EXPECT_EQ(State(*currency), "id 0 {FNumber: \"USD\"}");
  EXPECT_EQ(currency->Number(), "USD");
}

TEST_F(CurrencyxTest, ANumberFromTheServerStaysAsItIs) {
  EXPECT_EQ(CurrencyOf(Row({{"FNumber", "us-dollar, old"}}))->Number(), "us-dollar, old");
}

// ---- Construct, Refresh, CancelChanges ----

TEST_F(CurrencyxTest, ConstructTakesACopyAndTheIdAndIsUnmodified) {
  const auto row = Row({{"FCurrencyID", "17"}, {"FName", "Dollar"}});
  const auto currency = CurrencyOf(row);
  EXPECT_EQ(State(*currency), "id 17 {FCurrencyID: \"17\", FName: \"Dollar\"}");
  currency->Name("Euro");
  EXPECT_EQ(StateText(Variant(row)), "{FCurrencyID: \"17\", FName: \"Dollar\"}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencyxTest, ConstructOfARowWithoutTheIdGivesZeroAndOfNothingKeepsTheId) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{4}}}));
  currency->Construct(Nothing, Nothing);
  EXPECT_EQ(State(*currency), "id 4 {}");
  currency->Construct(Row({{"FName", "Dollar"}}), Nothing);
  EXPECT_EQ(State(*currency), "id 0 {FName: \"Dollar\"}");
}

TEST_F(CurrencyxTest, ConstructPassesOnAnIdThatIsNoNumber) {
  EXPECT_EQ(ErrorOf([] { CurrencyOf(Row({{"FCurrencyID", "seven"}})); }), "error 13");
}

TEST_F(CurrencyxTest, RefreshOfAnUnsavedCurrencyDoesNothing) {
  const auto currency = CurrencyOf(Nothing);
  currency->Name("Dollar");
  currency->Refresh();
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(State(*currency), "id 0 {FName: \"Dollar\"} modified flagged");
}

TEST_F(CurrencyxTest, RefreshReadsTheRowByItsIdByReferenceAndKeepsTheId) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}, {"FName", "Old"}}));
  currency->Name("Edited");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{6}}, {"FName", "New"}})));
  currency->Refresh();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetail(\"props\", ref 5) -> {FCurrencyID: 6, FName: \"New\"}\n");
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 6, FName: \"New\"}");
  server.Answer(kInfo, "GetDetail", Nothing);
  currency->Refresh();
  EXPECT_EQ(State(*currency), "id 5 {}");
}

TEST_F(CurrencyxTest, RefreshRefusesAnAnswerThatIsNoDictionary) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}}));
  for (const Variant& answer : {Variant("text"), Variant(Long{1}), Variant(Make<Vector>())}) {
    server.Answer(kInfo, "GetDetail", answer);
    EXPECT_EQ(ErrorOf([&] { currency->Refresh(); }), "error 13") << StateText(answer);
    EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5}");
  }
}

TEST_F(CurrencyxTest, CancelChangesGoesBackToTheLastRowWithoutAServerCall) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}, {"FName", "First"}}));
  currency->Name("Edited");
  currency->CancelChanges();
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FName: \"First\"}");

  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{5}}, {"FName", "Second"}})));
  currency->Refresh();
  server.TakeLog();
  currency->Name("Edited");
  currency->CancelChanges();
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FName: \"Second\"}");
  EXPECT_EQ(server.TakeLog(), "");

  const auto unsaved = CurrencyOf(Nothing);
  unsaved->Name("Dollar");
  unsaved->CancelChanges();
  EXPECT_EQ(State(*unsaved), "id 0 {}");
}

TEST_F(CurrencyxTest, AFailedRefreshLeavesTheEditsAndTheRowTheyCameFrom) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{5}}})));
  const auto edited = [] {
    const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}, {"FName", "Old"}}));
    currency->Name("x");
    return currency;
  };
  const auto state_and_row = [](Currencyx& currency) {
    const std::string state = State(currency);
    currency.CancelChanges();
    return state + " from " + State(currency);
  };
  EXPECT_EQ(AtEachFailure(
                server, edited, [](Currencyx& c) { c.Refresh(); }, state_and_row),
            "1 fails: id 5 {FCurrencyID: 5, FName: \"x\"} modified flagged from "
            "id 5 {FCurrencyID: 5, FName: \"Old\"}\n"
            "2 fails: id 5 {FCurrencyID: 5, FName: \"x\"} modified flagged from "
            "id 5 {FCurrencyID: 5, FName: \"Old\"}\n"
            "3 no error: id 5 {FCurrencyID: 5} from id 5 {FCurrencyID: 5}\n");
}

TEST_F(CurrencyxTest, ARefreshedOrCancelledCurrencySeesEditsInsideNestedRowsAndANewOneDoesNot) {
  const auto nested = [] {
    return Row({{"FCurrencyID", Long{5}}, {"_Own", Variant(Row({{"FItemID", Long{1}}}))}});
  };
  const auto edit = [](const Currencyx& currency) {
    currency.Properties()->Dictionary()->Value("_Own").As<Dictionary>()->Value("FItemID", Long{2});
  };
  server.Answer(kInfo, "GetDetail", Variant(nested()));
  const std::string kEdited = "id 5 {FCurrencyID: 5, _Own: {FItemID: 2}}";
  const auto currency = CurrencyOf(nested());
  edit(*currency);
  EXPECT_EQ(State(*currency), kEdited);
  currency->CancelChanges();
  edit(*currency);
  EXPECT_EQ(State(*currency), kEdited + " modified");
  currency->Refresh();
  edit(*currency);
  EXPECT_EQ(State(*currency), kEdited + " modified");
}

// ---- SaveChanges ----

TEST_F(CurrencyxTest, SaveChangesWithoutAChangeMakesNoServerCall) {
  CurrencyOf(Row({{"FCurrencyID", Long{5}}}))->SaveChanges();
  CurrencyOf(Nothing)->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencyxTest, SaveChangesOfANewCurrencyCreatesItAndReadsItByItsNewId) {
  const auto currency = CurrencyOf(Nothing);
  currency->Number("usd");
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{8}}, {"FNumber", "USD"}})));
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyUpdate\n"
            "call Create(\"props\", {FNumber: \"USD\", MachineName: \"HOST\", "
            "IPAddress: \"10.0.0.1\"}) -> 8\n"
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetail(\"props\", ref 8) -> {FCurrencyID: 8, FNumber: \"USD\"}\n");
  EXPECT_EQ(State(*currency), "id 8 {FCurrencyID: 8, FNumber: \"USD\"}");
}

TEST_F(CurrencyxTest, SaveChangesOfAnExistingCurrencyUpdatesItWithTheIdByReference) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}}));
  currency->Name("New");
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{5}}, {"FName", "New"}})));
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyUpdate\n"
            "call Update(\"props\", ref 5, {FCurrencyID: 5, FName: \"New\", "
            "MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetail(\"props\", ref 5) -> {FCurrencyID: 5, FName: \"New\"}\n");
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FName: \"New\"}");
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "") << "there is nothing left to save";
}

TEST_F(CurrencyxTest, AWriteStraightIntoTheDictionaryIsSavedThoughNoFlagTellsOfIt) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}}));
  currency->Properties()->Dictionary()->Value("FName", "Direct");
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FName: \"Direct\"} modified");
  server.Answer(kInfo, "GetDetail", Nothing);
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyUpdate\n"
                              "call Update(\"props\", ref 5, {FCurrencyID: 5, FName: \"Direct\", "
                              "MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
                              "create QDSVGLCurrency.CurrencyInfo\n"
                              "call GetDetail(\"props\", ref 5) -> Nothing\n");
}

TEST_F(CurrencyxTest, AFlagWithoutAnEditOfTheDictionaryIsNotSaved) {
  const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}}));
  currency->Name("x");
  currency->Properties()->Dictionary()->ResetModified();
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FName: \"x\"} flagged");
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencyxTest, AServerFailureAtAnyEventOfACreatingSaveLeavesTheEditsAndTheIdOnceThereIsOne) {
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{8}}, {"FName", "x"}})));
  const auto edited = [] {
    const auto currency = CurrencyOf(Nothing);
    currency->Name("x");
    return currency;
  };
  const std::string kStamped =
      "{FName: \"x\", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"} modified flagged\n";
  EXPECT_EQ(AtEachFailure(
                server, edited, [](Currencyx& c) { c.SaveChanges(); },
                [](const Currencyx& c) { return State(c); }),
            "1 fails: id 0 {FName: \"x\"} modified flagged\n"
            "2 fails: id 0 " +
                kStamped + "3 fails: id 8 " + kStamped + "4 fails: id 8 " + kStamped +
                "5 no error: id 8 {FCurrencyID: 8, FName: \"x\"}\n");
}

TEST_F(CurrencyxTest, AServerFailureAtAnyEventOfAnUpdatingSaveLeavesTheEdits) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{5}}})));
  const auto healed = [] {
    const auto currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}, {"FExchangeRate", 0.0}}));
    currency->ExchangeRate();
    return currency;
  };
  const std::string kStamped = "id 5 {FCurrencyID: 5, FExchangeRate: 1#, MachineName: \"HOST\", "
                               "IPAddress: \"10.0.0.1\"} modified flagged\n";
  EXPECT_EQ(AtEachFailure(
                server, healed, [](Currencyx& c) { c.SaveChanges(); },
                [](const Currencyx& c) { return State(c); }),
            "1 fails: id 5 {FCurrencyID: 5, FExchangeRate: 1#} modified flagged\n"
            "2 fails: " +
                kStamped + "3 fails: " + kStamped + "4 fails: " + kStamped +
                "5 no error: id 5 {FCurrencyID: 5}\n");
}

TEST_F(CurrencyxTest, AFailedSaveIsTriedAgain) {
  const auto currency = CurrencyOf(Nothing);
  currency->Name("x");
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{8}}})));
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { currency->SaveChanges(); }), "error 70");
  server.FailAt(4, Error(71));
  EXPECT_EQ(ErrorOf([&] { currency->SaveChanges(); }), "error 71");
  server.TakeLog();
  currency->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyUpdate\n"
                              "call Update(\"props\", ref 8, {FName: \"x\", MachineName: \"HOST\", "
                              "IPAddress: \"10.0.0.1\"})\n"
                              "create QDSVGLCurrency.CurrencyInfo\n"
                              "call GetDetail(\"props\", ref 8) -> {FCurrencyID: 8}\n");
  EXPECT_EQ(State(*currency), "id 8 {FCurrencyID: 8}");
}

TEST_F(CurrencyxTest, WorksThroughLateBoundCallsAsThroughTypedOnes) {
  Ref<Object> currency = Make<Currencyx>();
  currency->Call("Construct", Named("xa", Nothing), Named("dict", Row({{"FCurrencyID", Long{9}}})));
  currency->Let("SCALEX", 3);
  currency->Call("CancelChanges");
  EXPECT_EQ(StateText(currency->Get("Scalex")), "2%");
  currency->Let("Scalex", 3);
  server.Answer(kInfo, "GetDetail", Nothing);
  currency->Call("SaveChanges");
  currency->Call("Refresh");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyUpdate\n"
            "call Update(\"props\", ref 9, {FCurrencyID: 9, FScale: 3%, MachineName: \"HOST\", "
            "IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetail(\"props\", ref 9) -> Nothing\n"
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetail(\"props\", ref 9) -> Nothing\n");
}

// ---- The set: list, cursor, fields ----

TEST_F(CurrencySetTest, HasItsMembersInInterfaceOrderAndItemAsDefault) {
  EXPECT_EQ(testing::MemberNames<CurrencySet>(),
            "ListOptions Filter Sort CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh "
            "Remove Count Item RecordSet");
  ASSERT_NE(CurrencySet::Table().default_member(), nullptr);
  EXPECT_EQ(CurrencySet::Table().default_member()->row.name, "Item");
}

TEST_F(CurrencySetTest, IsUnfetchedAtFirst) {
  EXPECT_EQ(State(*currencies), "Nothing by 0 \"\" \"\"");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencySetTest, CountFetchesTheListOnce) {
  server.Answer(kInfo, "GetList", Variant(ThreeCurrencies()));
  EXPECT_EQ(currencies->Count(), 3);
  EXPECT_EQ(currencies->Count(), 3);
  EXPECT_EQ(server.TakeLog(),
            std::string("create QDSVGLCurrency.CurrencyInfo\n"
                        "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> ") +
                kThreeCurrencies + "\n");
}

TEST_F(CurrencySetTest, RefreshPassesTheThreeFieldsByReference) {
  currencies->ListOptions(4);
  currencies->Let("Filter", "FDeleted = 0");
  currencies->Let("Sort", "FNumber");
  server.AnswerWith(kInfo, "GetList", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{9}));
    arguments[2].Put(Variant("filter back"));
    arguments[3].Put(Variant("sort back"));
    return Variant(Recordset::Create({"FCurrencyID"}));
  });
  currencies->Refresh();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetList(\"props\", ref 4, ref \"FDeleted = 0\", ref \"FNumber\") -> "
            "recordset{FCurrencyID}\n");
  EXPECT_EQ(State(*currencies), "recordset{FCurrencyID} by 9 \"filter back\" \"sort back\"");
}

TEST_F(CurrencySetTest, ChangedFieldsKeepTheOldRowsUntilRefresh) {
  server.AnswerOnce(kInfo, "GetList", Variant(ThreeCurrencies()));
  EXPECT_EQ(currencies->Count(), 3);
  server.TakeLog();
  currencies->Filter("FCurrencyID > 10");
  currencies->ListOptions(1);
  currencies->Sort("FName");
  EXPECT_EQ(currencies->Count(), 3);
  EXPECT_EQ(currencies->GetCurrent()->Number(), "RMB");
  EXPECT_EQ(server.TakeLog(), "");
  server.Answer(kInfo, "GetList", Variant(Recordset::Create({"FCurrencyID"})));
  currencies->Refresh();
  EXPECT_EQ(currencies->Count(), 0);
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetList(\"props\", ref 1, ref \"FCurrencyID > 10\", ref \"FName\") -> "
            "recordset{FCurrencyID}\n");
}

TEST_F(CurrencySetTest, ARecordsetPutInTakesThePlaceOfTheHeldOneWithoutTheServer) {
  currencies->RecordSet(ThreeCurrencies());
  EXPECT_EQ(currencies->Count(), 3);
  const auto other = Recordset::Create({"FCurrencyID"});
  currencies->Set("RecordSet", Variant(other));
  EXPECT_EQ(currencies->RecordSet(), other);
  EXPECT_EQ(currencies->Count(), 0);
  currencies->RecordSet(Nothing);
  EXPECT_EQ(currencies->RecordSet(), nullptr);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencySetTest, GetCurrentLeavesTheCursorAndGetNextMovesItToTheEnd) {
  currencies->RecordSet(ThreeCurrencies());
  const std::string kFirst = "id 1 {FCurrencyID: 1, FNumber: \"RMB\", FExchangeRate: 1#}";
  EXPECT_EQ(State(*currencies->GetCurrent()), kFirst);
  EXPECT_EQ(State(*currencies->GetCurrent()), kFirst);
  EXPECT_EQ(State(*currencies->GetNext()), kFirst);
  EXPECT_EQ(currencies->GetNext()->CurrencyID(), 2);
  EXPECT_EQ(currencies->GetNext()->CurrencyID(), 3);
  EXPECT_EQ(ErrorOf([&] { currencies->GetNext(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { currencies->GetNext(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { currencies->GetCurrent(); }), "error 5");
}

TEST_F(CurrencySetTest, GetCurrentOfAnEmptyListFetchesItAndRaisesFive) {
  server.Answer(kInfo, "GetList", Variant(Recordset::Create({"FCurrencyID"})));
  EXPECT_EQ(ErrorOf([&] { currencies->GetCurrent(); }), "error 5");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> recordset{FCurrencyID}\n");
}

TEST_F(CurrencySetTest, AWalkFetchesTheListOnceAndLeavesTheCursor) {
  server.Answer(kInfo, "GetList", Variant(ThreeCurrencies()));
  std::string seen;
  for (auto& currency : *currencies) seen += currency.Number() + " ";
  EXPECT_EQ(seen, "RMB USD EUR ");
  EXPECT_EQ(currencies->GetNext()->Number(), "RMB");
  for (auto& outer : *currencies) {
    for (auto& inner : *currencies) seen += outer.Number().substr(0, 1) + inner.Number() + " ";
  }
  EXPECT_EQ(seen, "RMB USD EUR RRMB RUSD REUR URMB UUSD UEUR ERMB EUSD EEUR ");
  EXPECT_EQ(currencies->GetNext()->Number(), "USD");
  EXPECT_EQ(server.TakeLog(),
            std::string("create QDSVGLCurrency.CurrencyInfo\n"
                        "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> ") +
                kThreeCurrencies + "\n");
}

// ---- The set: single currencies ----

TEST_F(CurrencySetTest, ItemOfANumberReadsTheRowByItsIdByValue) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{5}}, {"FName", "x"}})));
  const std::pair<Variant, const char*> keys[] = {
      {Long{5}, "5"},   {Integer{5}, "5"},         {Byte{5}, "5"}, {5.4, "5"},
      {Single{5}, "5"}, {CDec(Variant("5")), "5"}, {4.5, "4"},     {5.5, "6"},
  };
  for (const auto& [key, id] : keys) {
    EXPECT_EQ(State(*currencies->Item(key)), "id 5 {FCurrencyID: 5, FName: \"x\"}");
    EXPECT_EQ(server.TakeLog(), std::string("create QDSVGLCurrency.CurrencyInfo\n"
                                            "call GetDetail(\"props\", ") +
                                    id + ") -> {FCurrencyID: 5, FName: \"x\"}\n");
  }
}

TEST_F(CurrencySetTest, ItemOfATextReadsTheRowByItsNumberByReference) {
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FCurrencyID", Long{5}}})));
  EXPECT_EQ(State(*currencies->Item("usd")), "id 5 {FCurrencyID: 5}");
  EXPECT_EQ(StateText(currencies->Get("Item", "12").As<Currencyx>()->Get("CurrencyID")), "5");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetailByNumber(\"props\", ref Variant \"usd\") -> {FCurrencyID: 5}\n"
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call GetDetailByNumber(\"props\", ref Variant \"12\") -> {FCurrencyID: 5}\n");
}

TEST_F(CurrencySetTest, ItemOfAnyOtherKeyRaisesFiveAndAsksForNothing) {
  const Variant keys[] = {Variant(),   Null,        Missing, true,
                          Currency(5), DateTime(5), Nothing, Variant(Row({}))};
  for (const Variant& key : keys) {
    EXPECT_EQ(ErrorOf([&] { currencies->Item(key); }), "error 5") << StateText(key);
    EXPECT_EQ(server.TakeLog().find("call"), std::string::npos) << StateText(key);
  }
}

TEST_F(CurrencySetTest, ItemOfAnUnknownIdIsAnEmptyNewCurrency) {
  server.Answer(kInfo, "GetDetail", Nothing);
  EXPECT_EQ(State(*currencies->Item(99)), "id 0 {}");
}

TEST_F(CurrencySetTest, ItemMayHealTheRateOfItsRow) {
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FCurrencyID", Long{5}}, {"FExchangeRate", Long{0}}})));
  const auto currency = currencies->Item(5);
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FExchangeRate: 0}");
  EXPECT_EQ(currency->MulExchangeRate(), 1);
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FExchangeRate: 1#} modified flagged");
}

TEST_F(CurrencySetTest, ExistenceCheckPassesTheIdByPositionAndReference) {
  server.Answer(kInfo, "ExistenceCheck", Long{5});
  EXPECT_EQ(currencies->ExistenceCheck(5), 5);
  EXPECT_EQ(currencies->ExistenceCheck("5"), 5);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant 5) -> 5\n"
                              "create QDSVGLCurrency.CurrencyInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant \"5\") -> 5\n");
}

TEST_F(CurrencySetTest, ExistenceCheckPassesTheNumberByName) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  EXPECT_EQ(currencies->ExistenceCheck(Missing, "USD"), 7);
  EXPECT_EQ(StateText(currencies->Call("ExistenceCheck", Named("number", "USD"))), "7");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"USD\") -> 7\n"
                              "create QDSVGLCurrency.CurrencyInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"USD\") -> 7\n");
}

TEST_F(CurrencySetTest, ExistenceCheckWithBothUsesTheIdOnly) {
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(currencies->ExistenceCheck(5, "USD"), 0);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyInfo\n"
                              "call ExistenceCheck(\"props\", ref Variant 5) -> 0\n");
}

TEST_F(CurrencySetTest, ExistenceCheckWithoutArgumentsMakesTheComponentAndAnswersZero) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  EXPECT_EQ(currencies->ExistenceCheck(), 0);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyInfo\n");
}

TEST_F(CurrencySetTest, RemoveByIdDeletesWithStampsAndKeepsTheRowInTheList) {
  currencies->RecordSet(ThreeCurrencies());
  const Variant keys[] = {Long{5}, Integer{5}, Byte{5}, 5.4, Single{5}, CDec(Variant("5"))};
  for (const Variant& key : keys) {
    currencies->Remove(key);
    EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyUpdate\n"
                                "call Delete(\"props\", ref 5, \"HOST\", \"10.0.0.1\")\n")
        << StateText(key);
  }
  EXPECT_EQ(currencies->Count(), 3);
}

TEST_F(CurrencySetTest, RemoveByTextLooksTheNumberUpFirst) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  currencies->Remove("USD");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLCurrency.CurrencyInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"USD\") -> 7\n"
                              "create QDSVGLCurrency.CurrencyUpdate\n"
                              "call Delete(\"props\", ref 7, \"HOST\", \"10.0.0.1\")\n");
}

TEST_F(CurrencySetTest, RemoveOfAnUnknownNumberRaisesFiveAndDeletesNothing) {
  server.Answer(kInfo, "ExistenceCheck", Long{0});
  EXPECT_EQ(ErrorOf([&] { currencies->Remove("nobody"); }), "error 5");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLCurrency.CurrencyInfo\n"
            "call ExistenceCheck(\"props\", Number:=ref Variant \"nobody\") -> 0\n");
}

TEST_F(CurrencySetTest, RemoveOfZeroOrOfAnyOtherKeyRaisesFiveWithoutAServerCall) {
  const Variant keys[] = {Long{0}, 0.4,         Variant(),   Null,    Missing,
                          true,    Currency(5), DateTime(5), Nothing, Variant(Row({}))};
  for (const Variant& key : keys) {
    EXPECT_EQ(ErrorOf([&] { currencies->Remove(key); }), "error 5") << StateText(key);
  }
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencySetTest, CreateNewMakesAnUnsavedCurrencyThroughTheSetters) {
  EXPECT_EQ(State(*currencies->CreateNew()), "id 0 {}");
  EXPECT_EQ(State(*currencies->CreateNew("usd")), "id 0 {FNumber: \"USD\"} modified flagged");
  EXPECT_EQ(State(*currencies->CreateNew("usd", "Dollar")),
            "id 0 {FNumber: \"USD\", FName: \"Dollar\"} modified flagged");
  EXPECT_EQ(State(*currencies->CreateNew(Missing, 12)), "id 0 {FName: \"12\"} modified flagged");
  EXPECT_EQ(State(*currencies->CreateNew(840)), "id 0 {FNumber: \"840\"} modified flagged");
  EXPECT_EQ(State(*currencies->Call("CreateNew", Named("Name", "Dollar")).As<Currencyx>()),
            "id 0 {FName: \"Dollar\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { currencies->CreateNew("A-B"); }), "error 380");
  EXPECT_EQ(ErrorOf([&] { currencies->CreateNew("ABCDEFGHI", "Dollar"); }), "error 380");
  EXPECT_EQ(ErrorOf([&] { currencies->CreateNew(Null); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CurrencySetTest, AServerFailureAtAnyEventPassesAndLeavesTheSetAsItCanBe) {
  server.Answer(kInfo, "GetList", Variant(Recordset::Create({"FCurrencyID"})));
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FCurrencyID", Long{5}}})));
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FCurrencyID", Long{5}}})));
  const auto outcomes = [&](const std::function<void(CurrencySet&)>& operate, bool fetched) {
    return AtEachFailure(
        server,
        [&] {
          auto set = Make<CurrencySet>();
          set->Filter("f");
          if (fetched) set->RecordSet(ThreeCurrencies());
          return set;
        },
        operate, [](const CurrencySet& set) { return State(set); });
  };
  const std::string kUnfetched = "Nothing by 0 \"f\" \"\"\n";
  const std::string kFetched = "recordset{FCurrencyID} by 0 \"f\" \"\"\n";
  const std::string kHeld = std::string(kThreeCurrencies) + " by 0 \"f\" \"\"\n";

  const std::string kDropped = "1 fails: " + kUnfetched + "2 fails: " + kUnfetched;
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.Refresh(); }, true),
            kDropped + "3 no error: " + kFetched);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.Count(); }, false),
            kDropped + "3 no error: " + kFetched);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.NewEnum(); }, false),
            kDropped + "3 no error: " + kFetched);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.GetCurrent(); }, false),
            kDropped + "3 error 5: " + kFetched);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.GetNext(); }, false),
            kDropped + "3 error 5: " + kFetched);

  const std::string kTwoEvents = "1 fails: " + kHeld + "2 fails: " + kHeld;
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.Item(5); }, true),
            kTwoEvents + "3 no error: " + kHeld);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.Item("USD"); }, true),
            kTwoEvents + "3 no error: " + kHeld);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.ExistenceCheck(5); }, true),
            kTwoEvents + "3 no error: " + kHeld);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.Remove(5); }, true),
            kTwoEvents + "3 no error: " + kHeld);
  EXPECT_EQ(outcomes([](CurrencySet& set) { set.Remove("USD"); }, true),
            kTwoEvents + "3 fails: " + kHeld + "4 fails: " + kHeld + "5 no error: " + kHeld);
}

TEST_F(CurrencySetTest, AListThatCouldNotBeFetchedIsFetchedAtTheNextUse) {
  currencies->RecordSet(ThreeCurrencies());
  server.FailAt(2, Error(70, "server", "gone"));
  EXPECT_EQ(ErrorOf([&] { currencies->Refresh(); }), "error 70 (server): gone");
  server.TakeLog();
  server.Answer(kInfo, "GetList", Variant(ThreeCurrencies()));
  EXPECT_EQ(currencies->Count(), 3);
  EXPECT_EQ(server.TakeLog(),
            std::string("create QDSVGLCurrency.CurrencyInfo\n"
                        "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> ") +
                kThreeCurrencies + "\n");
}

TEST_F(CurrencySetTest, AnAnswerOfAnotherTypeRaisesTypeMismatch) {
  server.Answer(kInfo, "GetList", Variant(Row({})));
  server.Answer(kInfo, "GetDetail", Variant(ThreeCurrencies()));
  server.Answer(kInfo, "ExistenceCheck", "none");
  EXPECT_EQ(ErrorOf([&] { currencies->Refresh(); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { currencies->Item(5); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { currencies->ExistenceCheck(5); }), "error 13");
  EXPECT_EQ(State(*currencies), "Nothing by 0 \"\" \"\"");
}

TEST_F(CurrencySetTest, TheTransactionContextIsKeptHandedOnAndReleased) {
  const auto context = Make<Opaque>();
  server.Answer(kInfo, "GetDetailByNumber", Nothing);
  currencies->SetTransactionContext(context);
  currencies->RecordSet(ThreeCurrencies());
  EXPECT_EQ(context->holders(), 2);  // this variable and the set
  {
    const auto created = currencies->CreateNew();
    const auto current = currencies->GetCurrent();
    const auto next = currencies->GetNext();
    const auto item = currencies->Item("x");
    EXPECT_EQ(context->holders(), 6);
    const auto enumerator = currencies->NewEnum();
    Variant element;
    ASSERT_TRUE(enumerator->Next(element));
    EXPECT_EQ(context->holders(), 8);  // the walker and its currency
  }
  EXPECT_EQ(context->holders(), 2);
  currencies->SetTransactionContext(Nothing);
  EXPECT_EQ(context->holders(), 1);
}

}  // namespace
}  // namespace qdclgl
