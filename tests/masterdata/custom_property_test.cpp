#include "qdclgl/masterdata/custom_property.h"

#include <gtest/gtest.h>

#include "tests/support/columns.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::ErrorOf;
using testing::List;
using testing::ReadOnlyColumn;
using testing::Row;
using testing::StateText;
using testing::WithDefault;
using testing::WritableColumn;
using enum testing::Zero;

constexpr Integer kOwn = 101;  // the first field that is not the system's
constexpr Integer kUnsaved = 32767;

// A description of a list of its own.
Ref<CustomProperty> PropertyOf(const Ref<Dictionary>& row,
                               const Ref<Collection>& names = Make<Collection>()) {
  auto property = Make<CustomProperty>();
  property->Init(row, names, Make<ChangeFlag>());
  return property;
}

Ref<Dictionary> Field(Integer id, const char* name) {
  return Row({{"FPropID", id}, {"FNewName", name}});
}

// A list of descriptions as an item class holds it.
struct Descriptions {
  explicit Descriptions(std::initializer_list<Variant> elements) : rows(List(elements)) {
    set->Init(rows, flag);
  }

  std::string State() const { return testing::State(rows, flag); }
  std::string Names() const {
    std::string names;
    for (Long i = 1; i <= set->Count(); ++i) names += (i == 1 ? "" : " ") + set->Item(i)->Name();
    return names;
  }

  Ref<Vector> rows;
  Ref<ChangeFlag> flag = Make<ChangeFlag>();
  Ref<CustomPropertySet> set = Make<CustomPropertySet>();
};

constexpr const char* kNameInUse = "error 5 (QDCLGL.CustomProperty): 名称重复，请重新输入";

// ---- CustomProperty ----

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &CustomProperty::Name, &CustomProperty::Name, kIsStored)
#define READ_ONLY(Type, Name, key) ReadOnlyColumn<Type>(#Name, key, &CustomProperty::Name)

// The members that read one key, with those that may be written in any description.
std::vector<Column<CustomProperty>> PlainColumns() {
  return {
      READ_ONLY(Long, ActualSize, "FActualSize"),
      READ_ONLY(Integer, ActualType, "FActualType"),
      COLUMN(String, DefaultValue, "FDefaultValue"),
      COLUMN(String, FilterField, "FFilterField"),
      WithDefault(COLUMN(Boolean, IsDisplay, "FIsDisplay"), true, false),
      WithDefault(COLUMN(Boolean, IsInput, "FIsInput"), true, false),
      COLUMN(Boolean, IsShownF7, "FIsShownList"),
      WithDefault(COLUMN(String, PageName, "FPageName"), "1.基本资料", "2"),
      READ_ONLY(Integer, PropID, "FPropID"),
      COLUMN(Long, Search, "FSearch"),
      READ_ONLY(String, SQLColumnName, "FSQLColumnName"),
      COLUMN(Long, ViewMask, "FViewMask"),
  };
}

// Those that may not be written in a field of the system.
std::vector<Column<CustomProperty>> GuardedColumns() {
  return {
      COLUMN(String, DisplayField, "FDisplayField"), COLUMN(Long, Precision, "FPrecision"),
      COLUMN(String, SaveRule, "FSaveRule"),         COLUMN(Integer, Scales, "FScale"),
      COLUMN(String, SrcField, "FSrcField"),         COLUMN(String, SrcTable, "FSrcTable"),
  };
}

#undef COLUMN
#undef READ_ONLY

std::vector<Column<CustomProperty>> AllColumns() {
  std::vector<Column<CustomProperty>> columns = PlainColumns();
  for (const Column<CustomProperty>& column : GuardedColumns()) columns.push_back(column);
  return columns;
}

}  // namespace

// The checks of columns make their views by themselves.
namespace testing {
template <>
Ref<CustomProperty> ViewOn<CustomProperty>(const Ref<Dictionary>& row) {
  return PropertyOf(row);
}
}  // namespace testing

namespace {

TEST(CustomPropertyTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(
      testing::MemberNames<CustomProperty>(),
      "ActualSize ActualType Behavior ComCall DataType DefaultValue DisplayField FilterField "
      "IsDisplay IsInput IsShownF7 Modified Name PageName Precision Properties PropID SaveRule "
      "Scales Search SQLColumnName SrcField SrcTable ViewMask");
}

TEST(CustomPropertyTest, ReadsDefaultsWhereTheRowHasNoValue) {
  testing::ExpectDefaults(AllColumns());
}

TEST(CustomPropertyTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(AllColumns()); }

TEST(CustomPropertyTest, WritesEachUnguardedMemberUnderItsKey) {
  testing::ExpectWrites(PlainColumns());
  testing::ExpectWritesOfZero(PlainColumns());
  testing::ExpectRefusedLets(PlainColumns());
}

TEST(CustomPropertyTest, OneThatWasNeverBoundRaisesObjectNotSet) {
  testing::ExpectUnusable(AllColumns());
  const auto property = Make<CustomProperty>();
  EXPECT_EQ(ErrorOf([&] { property->Name(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { property->Modified(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { property->DataType(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { property->Name("x"); }), "no error") << "as any failure of that write";
}

TEST(CustomPropertyTest, ANewDescriptionIsATextOnTheFirstPage) {
  const auto property = PropertyOf(Row({}));
  EXPECT_EQ(property->PageName(), "1.基本资料");
  EXPECT_EQ(property->DataType(), 200);
  EXPECT_TRUE(property->IsDisplay());
  EXPECT_TRUE(property->IsInput());
  EXPECT_FALSE(property->IsShownF7());
  EXPECT_FALSE(property->Modified());
}

TEST(CustomPropertyTest, AFieldOfTheSystemRefusesTheGuardedMembersAndOneAboveTakesThem) {
  for (const Column<CustomProperty>& column : GuardedColumns()) {
    for (const Variant& id : {Variant(Integer{100}), Variant(Integer{0}), Variant(Integer{-1})}) {
      const auto row = Row({{"FPropID", id}, {column.key, column.value}});
      const std::string before = StateText(Variant(row));
      const auto property = PropertyOf(row);
      EXPECT_EQ(ErrorOf([&] { column.write(*property, column.value); }), "error 387")
          << column.name;
      EXPECT_EQ(ErrorOf([&] { property->Let(column.name, column.value); }), "error 387");
      EXPECT_EQ(testing::State(*property), before);
    }
    const auto absent = PropertyOf(Row({}));
    EXPECT_EQ(ErrorOf([&] { column.write(*absent, column.value); }), "error 387") << "id 0";

    const auto own = PropertyOf(Row({{"FPropID", kOwn}}));
    column.write(*own, column.value);
    EXPECT_EQ(testing::State(*own), "{FPropID: 101%, " + column.key + ": " +
                                        StateText(column.value) + "} modified flagged");
  }
}

TEST(CustomPropertyTest, GuardedTextsAreTrimmedButTheTable) {
  const auto property = PropertyOf(Row({{"FPropID", kOwn}}));
  property->DisplayField(" a ");
  property->SaveRule(" b ");
  property->SrcField(" c\t ");
  property->SrcTable(" d ");
  EXPECT_EQ(testing::State(*property),
            "{FPropID: 101%, FDisplayField: \"a\", FSaveRule: \"b\", FSrcField: \"c\t\", "
            "FSrcTable: \" d \"} modified flagged");
}

TEST(CustomPropertyTest, BehaviorStoresNullForAnEmptyTextAndReadsEmptyForBoth) {
  const auto property = PropertyOf(Row({}));
  property->Behavior("move");
  EXPECT_EQ(testing::State(*property), "{FBehavior: \"move\"} modified flagged");
  property->Behavior("");
  EXPECT_EQ(testing::State(*property), "{FBehavior: Null} modified flagged");
  EXPECT_EQ(property->Behavior(), "");
  EXPECT_EQ(PropertyOf(Row({{"FBehavior", ""}}))->Behavior(), "");
}

TEST(CustomPropertyTest, ComCallReadsOneKeyAndWritesAnother) {
  const auto property = PropertyOf(Row({{"FComCall", "from the server"}}));
  property->ComCall("written");
  EXPECT_EQ(property->ComCall(), "from the server");
  EXPECT_EQ(testing::State(*property),
            "{FComCall: \"from the server\", ComCall: \"written\"} modified flagged");
}

TEST(CustomPropertyTest, TheDataTypeIsChosenOnlyWhileTheDescriptionIsUnsaved) {
  const auto fresh = PropertyOf(Row({{"FPropID", kUnsaved}}));
  fresh->DataType(200);
  EXPECT_EQ(testing::State(*fresh), "{FPropID: 32767%}") << "what it is already";
  fresh->DataType(5);
  EXPECT_EQ(testing::State(*fresh), "{FPropID: 32767%, FDataType: 5} modified flagged");
  fresh->DataType(200);
  EXPECT_EQ(testing::State(*fresh), "{FPropID: 32767%, FDataType: 200} modified flagged");

  for (const Integer id : {Integer{1}, Integer{100}, kOwn, Integer{32766}}) {
    const auto saved = PropertyOf(Row({{"FPropID", id}, {"FDataType", Integer{5}}}));
    const std::string before = testing::State(*saved);
    EXPECT_EQ(ErrorOf([&] { saved->DataType(5); }), "no error");
    EXPECT_EQ(ErrorOf([&] { saved->DataType(200); }), "error 387");
    EXPECT_EQ(testing::State(*saved), before);
  }
}

// ---- The name ----

TEST(CustomPropertyTest, ANameIsTrimmedAndTakesTheFormerOnesPlaceAmongTheNamesInUse) {
  Descriptions it{Field(kOwn, "Size")};
  it.set->Item(1)->Name(" Weight ");
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Weight\"}] *");
  it.set->Add("Size");
  EXPECT_EQ(it.Names(), "Weight Size") << "the former name is free";
}

TEST(CustomPropertyTest, ANameInUseIsRefusedCaseIgnoredAndLeavesTheOldOne) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "Weight")};
  for (const char* name : {"Size", "SIZE", " size "}) {
    EXPECT_EQ(ErrorOf([&] { it.set->Item(2)->Name(name); }), kNameInUse);
    EXPECT_EQ(ErrorOf([&] { it.set->Item(2)->Let("Name", name); }), kNameInUse);
  }
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Size\"}, "
                        "{FPropID: 102%, FNewName: \"Weight\"}] -");
  // The old name is still in use, and "Size" once.
  EXPECT_EQ(ErrorOf([&] { it.set->Item(1)->Name("weight"); }), kNameInUse);
  it.set->Item(1)->Name("Length");
  it.set->Item(2)->Name("Size");
  EXPECT_EQ(it.Names(), "Length Size");
}

TEST(CustomPropertyTest, ANameThatDiffersFromItsOwnInCaseIsInUseToo) {
  Descriptions it{Field(kOwn, "Size")};
  EXPECT_EQ(ErrorOf([&] { it.set->Item(1)->Name("SIZE"); }), kNameInUse);
  EXPECT_EQ(ErrorOf([&] { it.set->Item(1)->Name("Size"); }), "no error");
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Size\"}] -") << "the same name is no write";
}

TEST(CustomPropertyTest, AnEmptyNameFreesTheOldOneAndIsNeverInUse) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "Weight")};
  it.set->Item(1)->Name("  ");
  it.set->Item(2)->Name("");
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"\"}, {FPropID: 102%, FNewName: \"\"}] *");
  it.set->Item(2)->Name("Size");
  EXPECT_EQ(it.Names(), " Size");
}

TEST(CustomPropertyTest, AFieldOfTheSystemKeepsItsNameWithoutAWord) {
  Descriptions it{Field(100, "Number"), Field(102, "Weight")};
  it.set->Item(1)->Name("Other");
  it.set->Item(1)->Name("Weight");
  EXPECT_EQ(it.State(), "[{FPropID: 100%, FNewName: \"Number\"}, "
                        "{FPropID: 102%, FNewName: \"Weight\"}] -");
  it.set->Item(2)->Name("Other");
  EXPECT_EQ(it.Names(), "Number Other") << "the refused name is not in use";
}

TEST(CustomPropertyTest, ANameThatStandsTwiceInTheListIsKeptByTheSecondWithoutAWord) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "Size")};
  it.set->Item(1)->Name("Length");
  it.set->Item(2)->Name("Weight");  // "Size" is not in use any more, so that it can't be given up
  EXPECT_EQ(it.Names(), "Length Size");
  EXPECT_EQ(ErrorOf([&] { it.set->Item(1)->Name("Weight"); }), kNameInUse);
}

// ---- CustomPropertySet ----

TEST(CustomPropertySetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<CustomPropertySet>(),
            "Add ExistenceCheck GetPageNameList NewEnum Remove Sort Count Item Modified");
  EXPECT_EQ(CustomPropertySet::Table().default_member()->row.name, "Item");
  EXPECT_EQ(testing::MemberNames<WalkCustomPropertySet>(), "Next Skip Reset");
}

TEST(CustomPropertySetTest, OneThatWasNeverBoundRaisesObjectNotSet) {
  const auto set = Make<CustomPropertySet>();
  const std::function<void()> uses[] = {
      [&] { set->Add("x"); },          [&] { set->ExistenceCheck("x"); },
      [&] { set->GetPageNameList(); }, [&] { set->NewEnum(); },
      [&] { set->Remove(1); },         [&] { set->Sort(0); },
      [&] { set->Count(); },           [&] { set->Item(1); },
      [&] { set->Item("x"); },         [&] { set->Modified(); },
  };
  for (const auto& use : uses) EXPECT_EQ(ErrorOf(use), "error 91");
  const auto walk = Make<WalkCustomPropertySet>();
  Variant item = "untouched";
  Boolean done = false;
  EXPECT_EQ(ErrorOf([&] { walk->Next(item, done); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { walk->Skip(done); }), "error 91");
  walk->Reset();
}

TEST(CustomPropertySetTest, AddMakesAnUnsavedDescriptionThroughTheSetters) {
  Descriptions it{Field(kOwn, "Size")};
  const auto property = it.set->Add(" Weight ", 5, "ignored", 12, 3);
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Size\"}, {FPropID: 32767%, FNewName: "
                        "\"Weight\", FDataType: 5, FScale: 3%, FPrecision: 12}] *");
  EXPECT_EQ(property->Behavior(), "");
  property->Behavior("move");
  EXPECT_EQ(it.set->Item(2)->Behavior(), "move") << "one row";
  EXPECT_NE(it.set->Item(2), property);
}

TEST(CustomPropertySetTest, AddOfNothingGivesATextWithoutAName) {
  Descriptions it{};
  it.set->Call("Add");
  EXPECT_EQ(it.State(), "[{FPropID: 32767%, FScale: 0%, FPrecision: 0}] *");
  EXPECT_EQ(it.set->Item(1)->DataType(), 200);
  EXPECT_EQ(it.set->Item(1)->PageName(), "1.基本资料");
}

TEST(CustomPropertySetTest, AddOfANameInUseLeavesADescriptionWithoutOne) {
  Descriptions it{Field(kOwn, "Size")};
  EXPECT_EQ(ErrorOf([&] { it.set->Add("size", 5); }), kNameInUse);
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Size\"}, {FPropID: 32767%}] *");
}

TEST(CustomPropertySetTest, ExistenceCheckComparesWithCaseAndLooksAtNoId) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "size"), Field(103, "Size")};
  EXPECT_EQ(it.set->ExistenceCheck("Size", 103), 1);
  EXPECT_EQ(it.set->ExistenceCheck("size"), 2);
  EXPECT_EQ(it.set->ExistenceCheck("SIZE"), 0);
  EXPECT_EQ(it.set->ExistenceCheck(" Size"), 0);
  EXPECT_EQ(StateText(it.set->Call("ExistenceCheck")), "0");
  EXPECT_EQ(it.State().back(), '-');
}

TEST(CustomPropertySetTest, ASearchLeavesTheRecordOfWritesOfADescription) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "Weight")};
  const auto property = it.set->Item(1);
  property->Precision(3);
  it.set->ExistenceCheck("Weight");
  it.set->Sort(1);
  it.set->GetPageNameList();
  EXPECT_TRUE(property->Modified());
  it.set->Item(1);
  EXPECT_FALSE(property->Modified()) << "another view of the row begins its record anew";
  EXPECT_TRUE(it.set->Modified());
}

TEST(CustomPropertySetTest, ItemIsADescriptionByPositionOrByNameAsANewViewOfItsRow) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "12")};
  for (const Variant& index : {Variant(Long{1}), Variant(1.4), Variant("Size"), Variant(Byte{1})}) {
    EXPECT_EQ(it.set->Item(index)->Name(), "Size") << StateText(index);
  }
  EXPECT_EQ(it.set->Item("12")->PropID(), 102) << "a text is a name, whatever it looks like";
  EXPECT_EQ(it.set->Item(Currency(12))->PropID(), 102) << "and so is what is no number by type";
  for (const Variant& index : {Variant(Long{0}), Variant(Long{3}), Variant("size"), Variant("")}) {
    EXPECT_EQ(ErrorOf([&] { it.set->Item(index); }), "error 9") << StateText(index);
  }
  it.set->Item(1)->Precision(4);
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Size\", FPrecision: 4}, "
                        "{FPropID: 102%, FNewName: \"12\"}] *");
}

TEST(CustomPropertySetTest, RemoveTakesADescriptionAndItsNameAway) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "Weight"), Field(kUnsaved, "")};
  it.set->Remove("Size");
  EXPECT_EQ(it.State(), "[{FPropID: 102%, FNewName: \"Weight\"}, "
                        "{FPropID: 32767%, FNewName: \"\"}] *");
  it.set->Remove(2);
  it.set->Item(1)->Name("SIZE");
  EXPECT_EQ(it.Names(), "SIZE");
  for (const Variant& index : {Variant(Long{0}), Variant(Long{2}), Variant("Weight")}) {
    EXPECT_EQ(ErrorOf([&] { it.set->Remove(index); }), "error 9") << StateText(index);
  }
}

TEST(CustomPropertySetTest, AFieldOfTheSystemCannotBeRemoved) {
  Descriptions it{Field(100, "Number"), Row({{"FNewName", "Name"}})};
  for (const Variant& index : {Variant("Number"), Variant(Long{2})}) {
    EXPECT_EQ(ErrorOf([&] { it.set->Remove(index); }), "error 0x80044042");
  }
  EXPECT_EQ(it.State(), "[{FPropID: 100%, FNewName: \"Number\"}, {FNewName: \"Name\"}] -");
}

TEST(CustomPropertySetTest, RemoveOfASecondOneOfANameRaisesFiveBehindTheRemoval) {
  Descriptions it{Field(kOwn, "Size"), Field(102, "Size")};
  it.set->Remove(1);
  EXPECT_EQ(ErrorOf([&] { it.set->Remove(1); }), "error 5");
  EXPECT_EQ(it.State(), "[] *");
}

TEST(CustomPropertySetTest, SortsByIdNameOrPageAndNameCaseIgnoredAndMarksNothing) {
  const auto field = [](Integer id, const char* name, const char* page) {
    return Variant(Row({{"FPropID", id}, {"FNewName", name}, {"FPageName", page}}));
  };
  Descriptions it{field(103, "b", "2"), field(101, "C", ""), field(102, "a", "2")};
  const auto sorted = [&](Long type, Boolean falling) {
    it.set->Sort(type, falling);
    return it.Names();
  };
  EXPECT_EQ(sorted(0, false), "C a b");
  EXPECT_EQ(sorted(0, true), "b a C");
  EXPECT_EQ(sorted(1, false), "a b C");
  EXPECT_EQ(sorted(1, true), "C b a");
  EXPECT_EQ(sorted(2, false), "C a b") << "an empty page is the first one";
  EXPECT_EQ(sorted(2, true), "b a C");
  EXPECT_FALSE(it.set->Modified());
  EXPECT_EQ(it.State().back(), '-');
}

TEST(CustomPropertySetTest, SortExchangesAgainstEachPositionSoThatEqualOnesMayChangePlaces) {
  // The first exchange takes the first "b" behind the second.
  Descriptions it{Field(101, "b"), Field(102, "B"), Field(103, "a")};
  it.set->Sort(1);
  EXPECT_EQ(it.State(), "[{FPropID: 103%, FNewName: \"a\"}, {FPropID: 102%, FNewName: \"B\"}, "
                        "{FPropID: 101%, FNewName: \"b\"}] -");
  it.set->Sort(1, true);
  EXPECT_EQ(it.Names(), "B b a") << "equal ones that no exchange touches stay";
}

TEST(CustomPropertySetTest, AnUnknownOrderRaisesFive) {
  Descriptions it{Field(102, "b"), Field(101, "a")};
  for (const Long type : {-1, 3}) EXPECT_EQ(ErrorOf([&] { it.set->Sort(type); }), "error 5");
  EXPECT_EQ(it.Names(), "b a");
}

TEST(CustomPropertySetTest, ThePagesAreListedOnceInTheOrderOfTheirFirstAppearance) {
  Descriptions it{Row({}), Row({{"FPageName", "2"}}), Row({{"FPageName", "1.基本资料"}}),
                  Row({{"FPageName", "B"}}), Row({{"FPageName", "b"}})};
  EXPECT_EQ(StateText(Variant(it.set->GetPageNameList())),
            "{1.基本资料: \"1.基本资料\", 2: \"2\", B: \"B\", b: \"b\"}");
}

TEST(CustomPropertySetTest, RepeatedAndEmptyNamesAndRowsThatHaveNoneStopNothing) {
  Descriptions it{Field(kOwn, "Size"),
                  Field(102, ""),
                  Field(103, "SIZE"),
                  Nothing,
                  Row({{"FNewName", Variant(Make<testing::Opaque>())}}),
                  Field(104, "Last")};
  EXPECT_EQ(it.set->Count(), 6);
  EXPECT_EQ(StateText(it.rows->Item(4)), "{}") << "a hole becomes an empty row";
  EXPECT_EQ(ErrorOf([&] { it.set->Add("last"); }), kNameInUse);
}

TEST(CustomPropertySetTest, AWalkGivesEachDescriptionWithTheListsNamesAndFlag) {
  Descriptions it{Field(kOwn, "Size"), Nothing, Field(103, "Weight")};
  std::string names;
  for (auto& property : *it.set) names += property.Name() + ",";
  EXPECT_EQ(names, "Size,,Weight,");

  const Ref<Enumerator> enumerator = it.set->NewEnum();
  Variant element;
  EXPECT_TRUE(enumerator->Skip(2));
  EXPECT_TRUE(enumerator->Next(element));
  const auto third = element.As<CustomProperty>();
  EXPECT_FALSE(enumerator->Next(element));
  EXPECT_EQ(ErrorOf([&] { third->Name("Size"); }), kNameInUse);
  third->Name("Length");
  EXPECT_EQ(it.State(), "[{FPropID: 101%, FNewName: \"Size\"}, {}, "
                        "{FPropID: 103%, FNewName: \"Length\"}] *");
  enumerator->Reset();
  EXPECT_TRUE(enumerator->Next(element));
  EXPECT_EQ(element.As<CustomProperty>()->Name(), "Size");
}

TEST(CustomPropertySetTest, TheWalkIsCalledByNameAndLeavesTheVariablesAtItsEnd) {
  const auto walk = Make<WalkCustomPropertySet>();
  walk->Init(List({Field(kOwn, "Size")}), Make<Collection>(), Make<ChangeFlag>());
  Variant item;
  Boolean done = false;
  walk->Call("Next", ByRef(item), ByRef(done));
  EXPECT_EQ(item.As<CustomProperty>()->Name() + (done ? " done" : ""), "Size done");
  item = Variant("untouched");
  done = false;
  walk->Call("Next", ByRef(item), ByRef(done));
  walk->Call("Skip", ByRef(done));
  EXPECT_EQ(StateText(item) + (done ? " done" : ""), "\"untouched\"");
  walk->Call("Reset");
  walk->Call("Skip", ByRef(done));
  EXPECT_TRUE(done);
}

TEST(CustomPropertySetTest, AWalkOverflowsBehindItsSixteenBits) {
  auto rows = Make<Vector>();
  for (int i = 0; i < 32768; ++i) rows->Append(Variant(Make<Dictionary>()));
  const auto walk = Make<WalkCustomPropertySet>();
  walk->Init(rows, Make<Collection>(), Make<ChangeFlag>());
  Boolean done = false;
  for (int i = 0; i < 32767; ++i) walk->Skip(done);
  EXPECT_EQ(ErrorOf([&] { walk->Skip(done); }), "error 6");
}

}  // namespace
}  // namespace qdclgl
