#include "qdclgl/masterdata/item_class.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::ChangeRecord;
using testing::Column;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::ExpectEvents;
using testing::List;
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

constexpr const char* kInfo = "QDSVGLItemClass.ItemClassInfo";
constexpr const char* kUpdate = "QDSVGLItemClass.ItemClassUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &ItemClass::Name, &ItemClass::Name, kIsStored)
#define READ_ONLY(Type, Name, key) ReadOnlyColumn<Type>(#Name, key, &ItemClass::Name)

// The members that read and write one key.
std::vector<Column<ItemClass>> Columns() {
  return {
      WithDefault(COLUMN(Integer, DType, "FType"), Integer{1}, Integer{2}),
      READ_ONLY(Long, Import, "FImport"),
      READ_ONLY(String, Name_Chs, "FName"),
      COLUMN(String, Name_Cht, "FName_Cht"),
      COLUMN(String, Name_en, "FName_en"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "TEXT"),
      COLUMN(String, Remark, "FRemark"),
  };
}

#undef COLUMN
#undef READ_ONLY

Ref<ItemClass> ClassOf(const Ref<Dictionary>& row) { return testing::ViewOn<ItemClass>(row); }

// A saved class with the fields "Size" and "Weight".
Ref<Dictionary> RowWithFields() {
  return Row(
      {{"FItemClassID", Long{1000}},
       {"_PropDesc", Variant(List({Row({{"FPropID", Integer{101}}, {"FName", "Size"}}),
                                   Row({{"FPropID", Integer{102}}, {"FName", "Weight"}})}))}});
}

std::string State(const ItemClass& item_class) {
  return "id " + std::to_string(item_class.ItemClassID()) + " " +
         testing::State(static_cast<const RowView&>(item_class));
}

class ItemClassTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class ItemClassSetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<ItemClassSet> classes = Make<ItemClassSet>();
};

// ---- What item classes share with all entities and sets ----

EntityCase ItemClassCase() {
  return EntityCaseOf(&ItemClass::ItemClassID, &ItemClass::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "ItemClassID",
                       .id_key = "FItemClassID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .track_state = {.construct = 0, .cancel_changes = 0, .refresh = 0},
                       .refresh_takes_id = true,
                       .cancel_constructs = true,
                       .saved_by = ChangeRecord::kFlag});
}

INSTANTIATE_TEST_SUITE_P(ItemClass, EntitySuite, TypedAndByName(ItemClassCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(
    ItemClassSet, SetSuite,
    TypedAndByName(SetCaseOf<ItemClassSet>(
        ItemClassCase(),
        {.get_list = "GetList(\"props\", ref <options>, ref <filter>, ref <sort>, Missing, ref 0)",
         .get_detail = "GetDetail(\"props\", <id>, ref \"\", ref False)"})),
    NameOfUse());

// ---- The members ----

TEST_F(ItemClassTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<ItemClass>(),
            "CancelChanges Construct GetF7ShownFields Refresh SaveChanges CustomProperties DType "
            "Import IsCustom ItemClassID Modified Name_Chs Name_Cht Name_en Name Number Properties "
            "Remark");
}

TEST_F(ItemClassTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(ItemClassTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(ItemClassTest, WritesEachMemberUnderItsKey) {
  testing::ExpectWrites(Columns());
  testing::ExpectWritesOfZero(Columns());
  testing::ExpectRefusedLets(Columns());
}

TEST_F(ItemClassTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  const auto item_class = Make<ItemClass>();
  EXPECT_EQ(ErrorOf([&] { item_class->CustomProperties(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { item_class->Name(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { item_class->Modified(); }), "error 91");
}

TEST_F(ItemClassTest, NumberIsStoredInUpperCaseAndTheNameUnderThePlainKey) {
  const auto item_class = ClassOf(Row({{"FName", "old"}, {"FName_en", "English"}}));
  EXPECT_EQ(item_class->Name() + item_class->Name_Chs(), "oldold");
  item_class->Number("01-a");
  item_class->Name("new");
  EXPECT_EQ(State(*item_class), "id 0 {FName: \"new\", FName_en: \"English\", FNumber: \"01-A\"} "
                                "modified flagged");
}

TEST_F(ItemClassTest, TheIdIsAFieldOfTheObjectAlone) {
  const auto item_class = ClassOf(Row({{"FItemClassID", Long{5}}}));
  item_class->ItemClassID(7);
  EXPECT_EQ(State(*item_class), "id 7 {FItemClassID: 5}");
  item_class->CancelChanges();
  EXPECT_EQ(State(*item_class), "id 5 {FItemClassID: 5}") << "the row has the word again";
}

TEST_F(ItemClassTest, AClassOfAUsersOwnIsKnownByItsId) {
  const auto item_class = ClassOf(Nothing);
  std::string own;
  for (const Long id : {0, 999, 1000, 1999, 2000, 2999, 3000, 9999, 10000, -1000}) {
    item_class->ItemClassID(id);
    if (item_class->IsCustom()) own += std::to_string(id) + " ";
  }
  EXPECT_EQ(own, "1000 1999 3000 9999 ");
}

TEST_F(ItemClassTest, TheShownFieldsAreAskedForWhateverTheId) {
  const auto fields = Recordset::Create({"FName"});
  server.Answer(kInfo, "GetShownF7Fields", Variant(fields));
  const auto item_class = ClassOf(Nothing);
  Ref<Recordset> given;
  ExpectEvents(
      server, [&] { return item_class; }, [&](ItemClass& of) { given = of.GetF7ShownFields(); },
      {{"create QDSVGLItemClass.ItemClassInfo", "", "id 0 {}"},
       {"call GetShownF7Fields(\"props\", ref 0)", " -> recordset{FName}", "id 0 {}"}},
      "id 0 {}", State);
  EXPECT_EQ(given, fields);
}

// ---- The descriptions of fields ----

TEST_F(ItemClassTest, TheDescriptionsOfANewClassAreMadeAndMarkItModified) {
  const auto item_class = ClassOf(Nothing);
  const auto set = item_class->CustomProperties();
  EXPECT_EQ(State(*item_class), "id 0 {_PropDesc: []} modified flagged");
  EXPECT_TRUE(item_class->Modified());
  EXPECT_FALSE(set->Modified()) << "the list itself was not written";
  EXPECT_EQ(set, item_class->CustomProperties());
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemClassTest, TheDescriptionsOfALoadedClassTakeTheirNameToBeEditedAndMarkNothing) {
  const auto row = RowWithFields();
  row->Value("_PropDesc").As<Vector>()->Item(1).As<Dictionary>()->Put("FNewName", "stale");
  const auto item_class = ClassOf(row);
  const auto set = item_class->CustomProperties();
  EXPECT_EQ(State(*item_class),
            "id 1000 {FItemClassID: 1000, _PropDesc: [{FPropID: 101%, FName: \"Size\", FNewName: "
            "\"Size\"}, {FPropID: 102%, FName: \"Weight\", FNewName: \"Weight\"}]}");
  EXPECT_FALSE(item_class->Modified());
  EXPECT_FALSE(set->Item(1)->Modified());
  EXPECT_EQ(set, item_class->CustomProperties());
  EXPECT_EQ(StateText(Variant(row->Value("_PropDesc").As<Vector>()->Item(2))),
            "{FPropID: 102%, FName: \"Weight\"}")
      << "the row as it came has no part in it";
}

TEST_F(ItemClassTest, ARowWithoutANameOrAHoleAmongTheDescriptionsStopsNothing) {
  const auto item_class =
      ClassOf(Row({{"_PropDesc", Variant(List({Row({{"FPropID", Integer{101}}}), Nothing}))}}));
  EXPECT_EQ(item_class->CustomProperties()->Count(), 2);
  EXPECT_EQ(State(*item_class), "id 0 {_PropDesc: [{FPropID: 101%, FNewName: Empty}, {}]}");
}

TEST_F(ItemClassTest, WhatIsNoListOfDescriptionsIsRefused) {
  for (const Variant& list : {Variant(Row({})), Variant("text"), Variant(List({"text"}))}) {
    const auto item_class = ClassOf(Row({{"_PropDesc", list}}));
    EXPECT_EQ(ErrorOf([&] { item_class->CustomProperties(); }), "error 13") << StateText(list);
  }
}

TEST_F(ItemClassTest, AWriteOfADescriptionIsAWriteOfTheClass) {
  const auto item_class = ClassOf(RowWithFields());
  item_class->CustomProperties()->Item("Size")->Name("Length");
  EXPECT_TRUE(item_class->Modified());
  EXPECT_FALSE(item_class->Properties()->ChangeFlag()->PrivateModified());
  item_class->CancelChanges();
  EXPECT_FALSE(item_class->Modified());
}

TEST_F(ItemClassTest, ASaveSendsTheDescriptionsWithTheOldNameAndTheNewOne) {
  server.Answer(kInfo, "GetDetail", Variant(RowWithFields()));
  const auto item_class = ClassOf(RowWithFields());
  const auto set = item_class->CustomProperties();
  set->Item("Size")->Name("Length");
  set->Add("Colour", 200, "", 20);
  EXPECT_EQ(item_class->SaveChanges(), 0);
  const std::string fields = StateText(Variant(RowWithFields()));
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLItemClass.ItemClassUpdate\n"
            "call Update(\"props\", ref 1000, {FItemClassID: 1000, _PropDesc: "
            "[{FPropID: 101%, FName: \"Size\", FNewName: \"Length\"}, "
            "{FPropID: 102%, FName: \"Weight\", FNewName: \"Weight\"}, "
            "{FPropID: 32767%, FNewName: \"Colour\", FScale: 0%, FPrecision: 20}], "
            "MachineName: \"HOST\", IPAddress: \"10.0.0.1\"})\n"
            "create QDSVGLItemClass.ItemClassInfo\n"
            "call GetDetail(\"props\", ref 1000) -> " +
                fields + "\n");
  EXPECT_FALSE(item_class->Modified());
}

TEST_F(ItemClassTest, ConstructionDropsTheDescriptionsWhichGoOnWithTheRowThatTheyBelongTo) {
  server.AnswerWith(kInfo, "GetDetail",
                    [](std::span<Argument>) { return Variant(RowWithFields()); });
  const std::function<void(ItemClass&)> ways[] = {
      [](ItemClass& it) { it.CancelChanges(); },
      [](ItemClass& it) { it.Refresh(); },
      [](ItemClass& it) { it.Construct(RowWithFields(), Nothing); },
  };
  for (const auto& way : ways) {
    const auto item_class = ClassOf(RowWithFields());
    const auto set = item_class->CustomProperties();
    const auto size = set->Item(1);
    way(*item_class);
    size->Name("Length");
    set->Add("Colour");
    EXPECT_EQ(set->Item(1)->Name() + std::to_string(set->Count()), "Length3");
    EXPECT_TRUE(set->Modified());
    EXPECT_FALSE(item_class->Modified());
    const auto anew = item_class->CustomProperties();
    EXPECT_NE(anew, set);
    EXPECT_EQ(anew, item_class->CustomProperties());
    EXPECT_EQ(anew->Item(1)->Name() + std::to_string(anew->Count()), "Size2");
    EXPECT_EQ(ErrorOf([&] { anew->Item(2)->Name("Length"); }), "no error") << "names of its own";
  }
}

TEST_F(ItemClassTest, ARowThatCannotBeCopiedLeavesTheDescriptions) {
  const auto item_class = ClassOf(RowWithFields());
  const auto set = item_class->CustomProperties();
  const auto uncopied = Row({{"Held", Variant(Make<testing::Opaque>())}});
  EXPECT_NE(ErrorOf([&] { item_class->Construct(uncopied, Nothing); }), "no error");
  EXPECT_EQ(item_class->CustomProperties(), set);
}

TEST_F(ItemClassTest, AConstructionWhileTheDescriptionsAreReadLeavesTheNewRowItsOwn) {
  const auto item_class = ClassOf(RowWithFields());
  const auto fields = item_class->Properties()->Dictionary()->Value("_PropDesc").As<Vector>();
  fields->Item(1).As<Dictionary>()->Put(
      "FNewName", Variant(Make<testing::AtEnd>([&] { item_class->Construct(Nothing, Nothing); })));
  const auto former = item_class->CustomProperties();
  EXPECT_EQ(former->Count(), 2);
  EXPECT_EQ(item_class->CustomProperties()->Count(), 0);
  EXPECT_EQ(State(*item_class), "id 1000 {_PropDesc: []} modified flagged");
}

// ---- SaveChanges ----

TEST_F(ItemClassTest, SaveChangesAnswersZeroWithAndWithoutAChange) {
  server.Answer(kUpdate, "Create", Long{1001});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FItemClassID", Long{1001}}})));
  const auto item_class = ClassOf(Nothing);
  EXPECT_EQ(StateText(item_class->Call("SaveChanges")), "0");
  EXPECT_EQ(server.TakeLog(), "");
  item_class->Number("01");
  EXPECT_EQ(StateText(item_class->Call("SaveChanges")), "0");
  EXPECT_EQ(State(*item_class), "id 1001 {FItemClassID: 1001}");
}

TEST_F(ItemClassTest, ANewClassThatTheServerAnswersWithMinusOneStaysModifiedAndIsUpdatedNextTime) {
  server.Answer(kUpdate, "Create", Long{-1});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FItemClassID", Long{-1}}})));
  const auto item_class = ClassOf(Nothing);
  item_class->Number("01");
  EXPECT_EQ(item_class->SaveChanges(), -1);
  const std::string row = "{FNumber: \"01\", MachineName: \"HOST\", IPAddress: \"10.0.0.1\"}";
  EXPECT_EQ(State(*item_class), "id -1 " + row + " modified flagged");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLItemClass.ItemClassUpdate\ncall Create(\"props\", " + row + ") -> -1\n");
  EXPECT_EQ(item_class->SaveChanges(), 0);
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItemClass.ItemClassUpdate\n"
                              "call Update(\"props\", ref -1, " +
                                  row +
                                  ")\n"
                                  "create QDSVGLItemClass.ItemClassInfo\n"
                                  "call GetDetail(\"props\", ref -1) -> {FItemClassID: -1}\n");
}

// ---- The set ----

TEST_F(ItemClassSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<ItemClassSet>(),
            "ListOptions Filter Sort CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh "
            "Remove Count Item RecordSet");
}

TEST_F(ItemClassSetTest, TheSignGoesByReferenceWithItsRefreshAlone) {
  const auto list = Recordset::Create({"FItemClassID"});
  server.AnswerWith(kInfo, "GetList", [&](std::span<Argument> arguments) {
    arguments[5].Put(Variant(Long{77}));
    return Variant(list);
  });
  const auto fetch = [](const char* sign) {
    return std::string("create QDSVGLItemClass.ItemClassInfo\n"
                       "call GetList(\"props\", ref 0, ref \"\", ref \"\", Missing, ref ") +
           sign + ") -> recordset{FItemClassID}\n";
  };
  Long sign = 5;
  classes->Call("Refresh", ByRef(sign));
  EXPECT_EQ(sign, 5);
  classes->RecordSet(Nothing);
  classes->Count();
  EXPECT_EQ(server.TakeLog(), fetch("5") + fetch("0"));

  server.missing_components = {kInfo};
  EXPECT_EQ(ErrorOf([&] { classes->Refresh(6); }), "error 429");
  server.missing_components = {};
  server.TakeLog();
  classes->Count();
  EXPECT_EQ(server.TakeLog(), fetch("0"));
}

TEST_F(ItemClassSetTest, ItemOfANumberHandsFilterAndMarkOverAndItemOfATextDoesNot) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FItemClassID", Long{5}}})));
  server.Answer(kInfo, "GetDetailByNumber", Variant(Row({{"FItemClassID", Long{6}}})));
  EXPECT_EQ(State(*classes->Item(5, "f", true)), "id 5 {FItemClassID: 5}");
  EXPECT_EQ(State(*classes->Item("01", "f", true)), "id 6 {FItemClassID: 6}");
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItemClass.ItemClassInfo\n"
                              "call GetDetail(\"props\", 5, ref \"f\", ref True) -> "
                              "{FItemClassID: 5}\n"
                              "create QDSVGLItemClass.ItemClassInfo\n"
                              "call GetDetailByNumber(\"props\", ref Variant \"01\") -> "
                              "{FItemClassID: 6}\n");
}

TEST_F(ItemClassSetTest, CreateNewMakesAnUnsavedClassThroughTheSetters) {
  EXPECT_EQ(State(*classes->CreateNew("01-a", "Projects")),
            "id 0 {FNumber: \"01-A\", FName: \"Projects\"} modified flagged");
  EXPECT_EQ(State(*classes->Call("CreateNew", Named("Name", 12)).As<ItemClass>()),
            "id 0 {FName: \"12\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { classes->CreateNew(Null); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

}  // namespace
}  // namespace qdclgl
