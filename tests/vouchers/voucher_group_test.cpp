#include "qdclgl/vouchers/voucher_group.h"

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
using testing::OtherKey;
using testing::RecordingServer;
using testing::Row;
using testing::SetCaseOf;
using testing::SetSuite;
using testing::StateText;
using testing::TypedAndByName;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLVoucherGroup.VoucherGroupInfo";
constexpr const char* kUpdate = "QDSVGLVoucherGroup.VoucherGroupUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &VoucherGroup::Name, &VoucherGroup::Name, kIsStored)

std::vector<Column<VoucherGroup>> Columns() {
  return {
      COLUMN(String, CRange, "FCRange"),      COLUMN(String, DCRange, "FDCRange"),
      COLUMN(String, DRange, "FDRange"),      COLUMN(Integer, LimitMulti, "FLimitMulti"),
      COLUMN(String, Name, "FName"),          COLUMN(String, NCRange, "FNCRange"),
      COLUMN(String, NDCRange, "FNDCRange"),  COLUMN(String, NDRange, "FNDRange"),
      COLUMN(Integer, Standard, "FStandard"), COLUMN(String, UUID, "UUID"),
  };
}

#undef COLUMN

Ref<VoucherGroup> Group(const Ref<Dictionary>& row) { return testing::ViewOn<VoucherGroup>(row); }

std::string State(const VoucherGroup& group) {
  return "id " + std::to_string(group.VoucherGroupID()) + " " +
         testing::State(static_cast<const RowView&>(group));
}

class VoucherGroupTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class VoucherGroupSetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<VoucherGroupSet> groups = Make<VoucherGroupSet>();
};

// ---- What groups share with all entities and sets ----

EntityCase VoucherGroupCase() {
  return EntityCaseOf(&VoucherGroup::VoucherGroupID, &VoucherGroup::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "VoucherGroupID",
                       .id_key = "FGroupID",
                       .text_member = "Name",
                       .text_key = "FName"});
}

INSTANTIATE_TEST_SUITE_P(VoucherGroup, EntitySuite, TypedAndByName(VoucherGroupCase()),
                         NameOfUse());
INSTANTIATE_TEST_SUITE_P(
    VoucherGroupSet, SetSuite,
    TypedAndByName(SetCaseOf<VoucherGroupSet>(
        VoucherGroupCase(),
        {.exists_by_id = "ExistenceCheck(\"props\", VoucherGroupID:=ref Variant <key>)",
         .exists_by_text = "ExistenceCheck(\"props\", Name:=ref Variant <key>)",
         .remove = "Delete(\"props\", ref <id>, \"HOST\", \"10.0.0.1\", ref 0)",
         .remove_key = OtherKey::kAny})),
    NameOfUse());

// ---- The members ----

TEST_F(VoucherGroupTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(VoucherGroupTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(VoucherGroupTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(VoucherGroupTest, StoresZeroAndEmptyTextSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(VoucherGroupTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(VoucherGroupTest, AGroupThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
}

TEST_F(VoucherGroupTest, TheIdCannotBeLet) {
  const auto group = Group(Row({{"FGroupID", Long{5}}}));
  EXPECT_EQ(ErrorOf([&] { group->Let("VoucherGroupID", 5); }),
            "error 438 (VoucherGroup): The member VoucherGroupID can't be used this way.");
}

TEST_F(VoucherGroupTest, LimitMultiReadsOneForWhateverIsTrue) {
  const std::pair<Variant, Integer> cases[] = {
      {Long{5}, 1}, {Long{0}, 0}, {Integer{-1}, 1}, {true, 1}, {false, 0},
      {0.25, 1},    {"True", 1},  {"0", 0},         {"", 0},   {Null, 0},
  };
  for (const auto& [stored, read] : cases) {
    EXPECT_EQ(Group(Row({{"FLimitMulti", stored}}))->LimitMulti(), read) << StateText(stored);
  }
  EXPECT_EQ(ErrorOf([] { Group(Row({{"FLimitMulti", "many"}}))->LimitMulti(); }), "error 13");
}

TEST_F(VoucherGroupTest, LimitMultiOfFiveSavedReadsBackAsOneWithoutAnotherChange) {
  const auto group = Group(Row({{"FGroupID", Long{3}}}));
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FGroupID", Long{3}}, {"FLimitMulti", Long{5}}})));
  group->LimitMulti(5);
  EXPECT_EQ(State(*group), "id 3 {FGroupID: 3, FLimitMulti: 5%} modified flagged");
  group->SaveChanges();
  EXPECT_EQ(group->LimitMulti(), 1);
  EXPECT_EQ(State(*group), "id 3 {FGroupID: 3, FLimitMulti: 5}");
}

TEST_F(VoucherGroupTest, AStandardBeyondSixteenBitsRaisesOverflow) {
  EXPECT_EQ(ErrorOf([] { Group(Row({{"FStandard", Long{40000}}}))->Standard(); }), "error 6");
}

// ---- The set ----

TEST_F(VoucherGroupSetTest, RemovePassesTheSignByReference) {
  groups->Remove(5, 3);
  groups->Call("Remove", 6, Named("lngDelSign", "4"));
  EXPECT_EQ(server.TakeLog(), "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
                              "call Delete(\"props\", ref 5, \"HOST\", \"10.0.0.1\", ref 3)\n"
                              "create QDSVGLVoucherGroup.VoucherGroupUpdate\n"
                              "call Delete(\"props\", ref 6, \"HOST\", \"10.0.0.1\", ref 4)\n");
}

TEST_F(VoucherGroupSetTest, ExistenceCheckTakesItsArgumentsByName) {
  server.Answer(kInfo, "ExistenceCheck", Long{7});
  Ref<Object> late = groups;
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Named("name", "Receipts"))), "7");
  EXPECT_EQ(StateText(late->Call("ExistenceCheck", Named("vouchergroupid", 5))), "7");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", Name:=ref Variant \"Receipts\") -> 7\n"
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call ExistenceCheck(\"props\", VoucherGroupID:=ref Variant 5) -> 7\n");
}

TEST_F(VoucherGroupSetTest, CreateNewMakesAnUnsavedGroupWithTheNameAsText) {
  EXPECT_EQ(State(*groups->CreateNew("Receipts")), "id 0 {FName: \"Receipts\"} modified flagged");
  EXPECT_EQ(State(*groups->CreateNew(12)), "id 0 {FName: \"12\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { groups->CreateNew(Null); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

}  // namespace
}  // namespace qdclgl
