#include "qdclgl/masterdata/check_type.h"

#include "tests/masterdata/settlement_suite.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::NameOfUse;
using testing::RecordingServer;
using testing::Row;
using testing::SetSuite;
using testing::SettlementCase;
using testing::StateOf;
using testing::TypedAndByName;
using testing::ViewOn;
using testing::WithDefault;

// Nothing is asked for without arguments.
testing::SetCase CheckTypeSetCase() {
  return testing::SetCaseOf<CheckTypeSet>(SettlementCase<CheckType>(),
                                          {.walked_class = "Currencyx", .item_is_default = false});
}

INSTANTIATE_TEST_SUITE_P(CheckType, EntitySuite, TypedAndByName(SettlementCase<CheckType>()),
                         NameOfUse());
INSTANTIATE_TEST_SUITE_P(CheckTypeSet, SetSuite, TypedAndByName(CheckTypeSetCase()), NameOfUse());

#define COLUMN(Type, Name, key) \
  testing::SettlementColumn<CheckType, Type>(#Name, key, &CheckType::Name, &CheckType::Name)

// The members that read and write one key.
std::vector<Column<CheckType>> Columns() {
  return {
      COLUMN(Long, AdjustAcctID, "FAdjustAcctID"),
      COLUMN(Long, CheckAcctID, "FCheckAcctID"),
      COLUMN(Long, CostAcctID, "FCostAcctID"),
      COLUMN(Long, IncomAcctID, "FIncomAcctID"),
      COLUMN(Long, SellAcctID, "FSellAcctID"),
      COLUMN(Long, ZZCXAcctID, "FZZCXAcctID"),
      COLUMN(Integer, Deleted, "FDeleted"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "CHQ_1"),
  };
}

#undef COLUMN

class CheckTypeTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

TEST_F(CheckTypeTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<CheckType>(),
            "CancelChanges Construct Refresh SaveChanges AdjustAcctID AdjustAcctNumber "
            "CheckAcctID CheckAcctNumber CostAcctID CostAcctNumber Deleted IncomAcctID "
            "IncomAcctNumber ItemID Name Number Properties SellAcctID SellAcctNumber ZZCXAcctID "
            "ZZCXAcctNumber");
}

TEST_F(CheckTypeTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(CheckTypeTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(CheckTypeTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(CheckTypeTest, StoresTheDefaultSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(CheckTypeTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(CheckTypeTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  EXPECT_EQ(ErrorOf([&] { Make<CheckType>()->ZZCXAcctNumber(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { Make<CheckType>()->ZZCXAcctNumber("1"); }), "error 91");
  EXPECT_EQ(server.TakeLog(), "");
}

// ---- The accounts ----

struct Part {
  std::string name;
  Long (CheckType::*id)() const;
  String (CheckType::*number)() const;
  void (CheckType::*write)(String);
};
#define PART(Name)                                                                              \
  Part {                                                                                        \
#Name, &CheckType::Name##AcctID, &CheckType::Name##AcctNumber, &CheckType::Name##AcctNumber \
  }
const Part kParts[] = {PART(Adjust), PART(Check), PART(Cost), PART(Incom), PART(Sell), PART(ZZCX)};
#undef PART

constexpr const char* kAccounts = "QDSVGLAccount.AccountInfo";

TEST_F(CheckTypeTest, AnAccountNumberIsLookedUpWhenItIsWrittenAndStoredBesideItsId) {
  for (const Part& part : kParts) {
    SCOPED_TRACE(part.name);
    const std::string& name = part.name;
    testing::ExpectEvents(
        server,
        [&] {
          server.Answer(kAccounts, "ExistenceCheck", Long{31});
          return ViewOn<CheckType>(Row({{name + "AcctNumber", "OLD"}}));
        },
        [&](CheckType& type) { (type.*part.write)("a1"); },
        {{std::string("create ") + kAccounts, "", "id 0 {" + name + "AcctNumber: \"OLD\"}"},
         {"call ExistenceCheck(\"props\", Number:=ref Variant \"a1\")", " -> 31",
          "id 0 {" + name + "AcctNumber: \"OLD\"}"}},
        "id 0 {" + name + "AcctNumber: \"a1\", F" + name + "AcctID: 31} modified flagged",
        [](const CheckType& type) { return StateOf(type); });
  }
}

TEST_F(CheckTypeTest, AnUnknownAccountNumberStaysReadableBesideTheIdZero) {
  for (const Part& part : kParts) {
    SCOPED_TRACE(part.name);
    const std::string& name = part.name;
    for (const Long unknown : {0, -1}) {
      server.Answer(kAccounts, "ExistenceCheck", unknown);
      const auto type = ViewOn<CheckType>(Row({{"F" + name + "AcctID", Long{5}}}));
      type->Let(name + "AcctNumber", "none");
      EXPECT_EQ((*type.*part.id)(), 0);
      EXPECT_EQ((*type.*part.number)(), "none");
      EXPECT_EQ(StateOf(*type),
                "id 0 {F" + name + "AcctID: 0, " + name + "AcctNumber: \"none\"} modified flagged");
    }
  }
}

TEST_F(CheckTypeTest, AnEmptyAccountNumberIsLookedUpAndStoredToo) {
  const auto type = ViewOn<CheckType>(Nothing);
  type->ZZCXAcctNumber("");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLAccount.AccountInfo\n"
                              "call ExistenceCheck(\"props\", Number:=ref Variant \"\")\n");
  EXPECT_EQ(StateOf(*type), "id 0 {FZZCXAcctID: 0, ZZCXAcctNumber: \"\"} modified flagged");
}

TEST_F(CheckTypeTest, AnIdThatIsWrittenLeavesTheNumberAlone) {
  const auto type = ViewOn<CheckType>(Row({{"SellAcctNumber", "OLD"}}));
  type->SellAcctID(9);
  EXPECT_EQ(type->SellAcctNumber(), "OLD");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(CheckTypeTest, HasNoAccountOfItsOwnAndNoBrNo) {
  const Ref<Object> type = ViewOn<CheckType>(Nothing);
  for (const std::string name : {"AccountID", "AccountNumber", "BrNo"}) {
    EXPECT_EQ(ErrorOf([&] { type->Get(name); }), "error 438 (CheckType): No member " + name + ".");
  }
}

}  // namespace
}  // namespace qdclgl
