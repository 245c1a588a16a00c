// What settlement types, settlement accounts, check types and payment terms have in common beyond
// what all entities and sets share.
#include "qdclgl/masterdata/settlement.h"

#include "qdclgl/masterdata/check_type.h"
#include "qdclgl/masterdata/payment.h"
#include "qdclgl/masterdata/sett_acct.h"
#include "qdclgl/masterdata/sett_type.h"
#include "tests/masterdata/settlement_suite.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::InfoOf;
using testing::RecordingServer;
using testing::Row;
using testing::StateOf;
using testing::StateText;
using testing::ViewOn;

template <class SetClass, class EntityClass>
struct Dictionaries {
  using Set = SetClass;
  using Entity = EntityClass;
};

template <class Pair>
class SettlementTest : public ::testing::Test {
 protected:
  using Set = typename Pair::Set;
  using Kind = typename Pair::Entity;

  RecordingServer server;
  Ref<Set> set = Make<Set>();
  std::string info = InfoOf<Kind>();
};

using All =
    ::testing::Types<Dictionaries<SettTypeSet, SettType>, Dictionaries<SettAcctSet, SettAcct>,
                     Dictionaries<CheckTypeSet, CheckType>, Dictionaries<PaymentSet, Payment>>;
TYPED_TEST_SUITE(SettlementTest, All);

TYPED_TEST(SettlementTest, SetsHaveTheirMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<typename TestFixture::Set>(),
            "ListOptions Filter Sort CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh "
            "Remove Count Item RecordSet");
}

TYPED_TEST(SettlementTest, NumberIsStoredInUpperCaseUpTo80LettersDigitsAndUnderscores) {
  using Entity = typename TestFixture::Kind;
  const std::string longest(80, 'z');
  const std::pair<std::string, std::string> cases[] = {
      {"ab1", "AB1"}, {"A_1", "A_1"}, {"", ""}, {longest, std::string(80, 'Z')}};
  for (const auto& [written, stored] : cases) {
    const auto entity = ViewOn<Entity>(Nothing);
    entity->Number(written);
    EXPECT_EQ(entity->Number(), stored);
    EXPECT_EQ(StateOf(*entity), "id 0 {FNumber: \"" + stored + "\"} modified flagged");
    const auto late = ViewOn<Entity>(Nothing);
    late->Let("Number", written);
    EXPECT_EQ(StateOf(*late), StateOf(*entity));
  }
}

TYPED_TEST(SettlementTest, ANumberThatCannotBeOneRaises380AndLeavesTheOldOne) {
  using Entity = typename TestFixture::Kind;
  const auto entity = ViewOn<Entity>(Row({{"FNumber", "OLD"}}));
  for (const std::string& number : {std::string("ab-1"), std::string("A.B"), std::string("A B"),
                                    std::string("支票"), std::string("é"), std::string(81, 'A')}) {
    EXPECT_EQ(ErrorOf([&] { entity->Number(number); }), "error 380") << number;
    EXPECT_EQ(ErrorOf([&] { entity->Let("Number", number); }), "error 380") << number;
  }
  EXPECT_EQ(StateOf(*entity), "id 0 {FNumber: \"OLD\"}");
}

TYPED_TEST(SettlementTest, ANumberFromTheServerStaysAsItIs) {
  using Entity = typename TestFixture::Kind;
  EXPECT_EQ(ViewOn<Entity>(Row({{"FNumber", "old-one."}}))->Number(), "old-one.");
}

TYPED_TEST(SettlementTest, TheIdCannotBeLet) {
  using Entity = typename TestFixture::Kind;
  const Ref<Object> entity = ViewOn<Entity>(Row({{"FItemID", Long{5}}}));
  EXPECT_EQ(ErrorOf([&] { entity->Let("ItemID", Long{1}); }),
            "error 438 (" + std::string(Entity::kClassName) +
                "): The member ItemID can't be used this way.");
  EXPECT_EQ(StateText(entity->Get("ItemID")), "5");
}

TYPED_TEST(SettlementTest, CreateNewMakesAnUnsavedEntityThroughTheSetters) {
  EXPECT_EQ(StateOf(*this->set->CreateNew()), "id 0 {}");
  EXPECT_EQ(StateOf(*this->set->CreateNew("chq")), "id 0 {FNumber: \"CHQ\"} modified flagged");
  EXPECT_EQ(StateOf(*this->set->CreateNew("chq", "Check")),
            "id 0 {FNumber: \"CHQ\", FName: \"Check\"} modified flagged");
  EXPECT_EQ(StateOf(*this->set->CreateNew(Missing, 12)), "id 0 {FName: \"12\"} modified flagged");
  EXPECT_EQ(StateOf(*this->set->CreateNew(840)), "id 0 {FNumber: \"840\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { this->set->CreateNew("A-B"); }), "error 380");
  EXPECT_EQ(ErrorOf([&] { this->set->CreateNew(std::string(81, 'A'), "Check"); }), "error 380");
  EXPECT_EQ(ErrorOf([&] { this->set->CreateNew(Null); }), "error 13");
  EXPECT_EQ(this->server.TakeLog(), "");
}

TYPED_TEST(SettlementTest, WhatIsCreatedIsSavedAtOnceAndWhatIsEmptyIsNot) {
  using Entity = typename TestFixture::Kind;
  const std::string name(Entity::kClassName), subject = "QDSVGL" + name + "." + name;
  this->set->CreateNew()->SaveChanges();
  ViewOn<Entity>(Row({{"FItemID", Long{4}}, {"FName", "x"}}))->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");

  this->server.Answer(subject + "Update", "Create", Long{9});
  this->server.Answer(this->info, "GetDetail",
                      Variant(Row({{"FItemID", Long{9}}, {"FNumber", "CHQ"}})));
  const Ref<Entity> entity = this->set->CreateNew("chq");
  entity->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(),
            "create " + subject + "Update\n" +
                "call Create(\"props\", {FNumber: \"CHQ\", MachineName: \"HOST\", IPAddress: "
                "\"10.0.0.1\"}) -> 9\n" +
                "create " + this->info + "\n" +
                "call GetDetail(\"props\", ref 9) -> {FItemID: 9, FNumber: \"CHQ\"}\n");
  EXPECT_EQ(StateOf(*entity), "id 9 {FItemID: 9, FNumber: \"CHQ\"}");
}

TYPED_TEST(SettlementTest, WhatIsWrittenIntoTheRowDirectlyIsSaved) {
  using Entity = typename TestFixture::Kind;
  const std::string name(Entity::kClassName);
  const Ref<Entity> entity = this->set->CreateNew();
  entity->Properties()->Dictionary()->Value("FNumber", "CHQ");
  EXPECT_EQ(StateOf(*entity), "id 0 {FNumber: \"CHQ\"} modified");
  entity->SaveChanges();
  EXPECT_TRUE(this->server.TakeLog().starts_with("create QDSVGL" + name + "." + name +
                                                 "Update\n"
                                                 "call Create("));
}

TYPED_TEST(SettlementTest, ExistenceCheckGoesByTheFirstOfIdNumberAndName) {
  this->server.Answer(this->info, "ExistenceCheck", Long{7});
  const auto log_of = [&](Variant id, Variant number, Variant name) {
    EXPECT_EQ(this->set->ExistenceCheck(id, number, name), 7);
    return this->server.TakeLog();
  };
  const std::string head = "create " + this->info + "\ncall ExistenceCheck(\"props\", ";
  EXPECT_EQ(log_of(Long{5}, "A", "B"), head + "ref Variant 5) -> 7\n");
  EXPECT_EQ(log_of(Missing, "A", "B"), head + "Number:=ref Variant \"A\") -> 7\n");
  EXPECT_EQ(log_of(Missing, Missing, "B"), head + "Name:=ref Variant \"B\") -> 7\n");
  EXPECT_EQ(StateText(this->set->Call("ExistenceCheck", Named("Name", "B"))), "7");
  EXPECT_EQ(this->server.TakeLog(), head + "Name:=ref Variant \"B\") -> 7\n");
}

TYPED_TEST(SettlementTest, WalksYieldCurrenciesAndGetNextTheSetsOwnEntities) {
  using Entity = typename TestFixture::Kind;
  const Ref<Recordset> list = Recordset::Create({"FItemID", "FName"});
  list->AddRow({Long{3}, "Check"});
  this->server.Answer(this->info, "GetList", Variant(list));
  int walked = 0;
  for (Currencyx& element : *this->set) {
    ++walked;
    EXPECT_EQ(element.CurrencyID(), 0) << "the row has no FCurrencyID";
    EXPECT_EQ(element.Name(), "Check");
  }
  EXPECT_EQ(walked, 1);
  EXPECT_EQ(this->set->GetNext()->ClassName(), Entity::kClassName);
}

// ---- The account of those that name one ----

template <class Pair>
class SettlementOfAccountTest : public SettlementTest<Pair> {
 protected:
  // What looks numbers up: settlement accounts for types, the chart of accounts for these.
  const std::string looked_up_by = std::is_same_v<typename Pair::Entity, SettType>
                                       ? InfoOf<SettAcct>()
                                       : "QDSVGLAccount.AccountInfo";
};
using OfAccount =
    ::testing::Types<Dictionaries<SettTypeSet, SettType>, Dictionaries<SettAcctSet, SettAcct>>;
TYPED_TEST_SUITE(SettlementOfAccountTest, OfAccount);

TYPED_TEST(SettlementOfAccountTest, AnAccountNumberIsLookedUpWhenItIsWrittenAndTheOldOneReadsOn) {
  using Entity = typename TestFixture::Kind;
  const std::string row = "AcctNumber: \"OLD\"";
  testing::ExpectEvents(
      this->server,
      [&] {
        this->server.Answer(this->looked_up_by, "ExistenceCheck", Long{31});
        return ViewOn<Entity>(Row({{"AcctNumber", "OLD"}}));
      },
      [](Entity& entity) { entity.AccountNumber("a1"); },
      {{"create " + this->looked_up_by, "", "id 0 {" + row + "}"},
       {"call ExistenceCheck(\"props\", Number:=ref Variant \"a1\")", " -> 31",
        "id 0 {" + row + "}"}},
      "id 0 {" + row + ", FAcctID: 31} modified flagged",
      [](const Entity& entity) { return StateOf(entity); });
}

TYPED_TEST(SettlementOfAccountTest, AnUnknownAccountNumberClearsTheLinkAndRaisesNothing) {
  using Entity = typename TestFixture::Kind;
  for (const Long unknown : {0, -1}) {
    this->server.Answer(this->looked_up_by, "ExistenceCheck", unknown);
    const auto entity = ViewOn<Entity>(Row({{"FAcctID", Long{5}}, {"AcctNumber", "OLD"}}));
    entity->AccountNumber("none");
    EXPECT_EQ(entity->AccountID(), 0);
    EXPECT_EQ(entity->AccountNumber(), "OLD");
    EXPECT_EQ(StateOf(*entity), "id 0 {FAcctID: 0, AcctNumber: \"OLD\"} modified flagged");
  }
}

TYPED_TEST(SettlementOfAccountTest, AnEmptyAccountNumberIsLookedUpToo) {
  using Entity = typename TestFixture::Kind;
  ViewOn<Entity>(Nothing)->Let("AccountNumber", "");
  EXPECT_EQ(this->server.TakeLog(),
            "create " + this->looked_up_by +
                "\n"
                "call ExistenceCheck(\"props\", Number:=ref Variant \"\")\n");
}

TYPED_TEST(SettlementOfAccountTest, TheIdAndTheNumberOfTheAccountAreNotTiedTogether) {
  using Entity = typename TestFixture::Kind;
  const auto entity = ViewOn<Entity>(Row({{"FAcctID", Long{5}}, {"AcctNumber", "OLD"}}));
  entity->AccountID(9);
  EXPECT_EQ(entity->AccountNumber(), "OLD");
  EXPECT_EQ(StateOf(*entity), "id 0 {FAcctID: 9, AcctNumber: \"OLD\"} modified flagged");
  EXPECT_EQ(this->server.TakeLog(), "");
}

TYPED_TEST(SettlementOfAccountTest, AnAccountNumberReadsAsTextAndEmptyWhereThereIsNone) {
  using Entity = typename TestFixture::Kind;
  EXPECT_EQ(ViewOn<Entity>(Nothing)->AccountNumber(), "");
  EXPECT_EQ(ViewOn<Entity>(Row({{"AcctNumber", Null}}))->AccountNumber(), "");
  EXPECT_EQ(ViewOn<Entity>(Row({{"AcctNumber", Long{12}}}))->AccountNumber(), "12");
}

}  // namespace
}  // namespace qdclgl
