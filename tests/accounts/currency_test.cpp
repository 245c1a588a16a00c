#include "qdclgl/accounts/currency.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::NameOfUse;
using testing::ReadOnlyColumn;
using testing::RecordingServer;
using testing::Row;
using testing::SetCaseOf;
using testing::SetSuite;
using testing::StateText;
using testing::TypedAndByName;
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

class CurrencyxTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class CurrencySetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<CurrencySet> currencies = Make<CurrencySet>();
};

// ---- What currencies share with all entities and sets ----

EntityCase CurrencyxCase() {
  return EntityCaseOf(&Currencyx::CurrencyID, &Currencyx::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "CurrencyID",
                       .id_key = "FCurrencyID",
                       .text_member = "Name",
                       .text_key = "FName"});
}

INSTANTIATE_TEST_SUITE_P(Currencyx, EntitySuite, TypedAndByName(CurrencyxCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(CurrencySet, SetSuite,
                         TypedAndByName(SetCaseOf<CurrencySet>(CurrencyxCase(), {})), NameOfUse());

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

TEST_F(CurrencyxTest, TheIdAndTheFactorCannotBeLet) {
  Ref<Object> currency = CurrencyOf(Row({{"FCurrencyID", Long{5}}}));
  for (const std::string name : {"CurrencyID", "MulExchangeRate"}) {
    EXPECT_EQ(ErrorOf([&] { currency->Let(name, Long{1}); }),
              "error 438 (Currencyx): The member " + name + " can't be used this way.");
  }
  EXPECT_EQ(StateText(currency->Get("CurrencyID")), "5");
  EXPECT_EQ(StateText(currency->Get("MulExchangeRate")), "1#");
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

// ---- The set ----

TEST_F(CurrencySetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<CurrencySet>(),
            "ListOptions Filter Sort CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh "
            "Remove Count Item RecordSet");
}

TEST_F(CurrencySetTest, ItemMayHealTheRateOfItsRow) {
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FCurrencyID", Long{5}}, {"FExchangeRate", Long{0}}})));
  const auto currency = currencies->Item(5);
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FExchangeRate: 0}");
  EXPECT_EQ(currency->MulExchangeRate(), 1);
  EXPECT_EQ(State(*currency), "id 5 {FCurrencyID: 5, FExchangeRate: 1#} modified flagged");
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

}  // namespace
}  // namespace qdclgl
