// What the two kinds of plain rows, unit groups and sub-message types, and their lists share.
#include "qdclgl/masterdata/named_row.h"

#include <gtest/gtest.h>

#include "qdclgl/masterdata/measure_unit_group.h"
#include "qdclgl/masterdata/sub_mes_type.h"
#include "tests/support/failing_events.h"
#include "tests/support/family.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Event;
using testing::Opaque;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;

// What differs; calls as the log has them behind "call ".
struct Groups {
  using Element = MeasureUnitGroup;
  using Set = MeasureUnitGroupSet;
  static constexpr const char* kInfo = "QDSVGLUnit.MeasureUnitInfo";
  static constexpr const char* kUpdate = "QDSVGLUnit.MeasureUnitUpdate";
  static constexpr const char* kIdColumn = "FUnitGroupID";
  static constexpr const char* kIdArgument = "GroupID";
  static constexpr const char* kDetail = "GetUnitGroupDetail";
  static constexpr const char* kCreate = "CreateUnitGroup";
  static constexpr const char* kRename = "RenameUnitGroup";
  static constexpr const char* kDelete = "DeleteUnitGroup";
  static constexpr const char* kList = "GetUnitGroupList";
  static constexpr const char* kListCall = "GetUnitGroupList(\"props\", ref 0)";
  static Long Id(const Element& group) { return group.GroupID(); }
};

struct Types {
  using Element = SubMesType;
  using Set = SubMesTypeSet;
  static constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
  static constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";
  static constexpr const char* kIdColumn = "FTypeID";
  static constexpr const char* kIdArgument = "ClassID";
  static constexpr const char* kDetail = "GetSubMesTypeDetail";
  static constexpr const char* kCreate = "CreateSubMesType";
  static constexpr const char* kRename = "RenameSubMesType";
  static constexpr const char* kDelete = "DeleteSubMesType";
  static constexpr const char* kList = "GetSubMesTypeList";
  static constexpr const char* kListCall = "GetSubMesTypeList(\"props\", Missing, ref \"\")";
  static Long Id(const Element& type) { return type.TypeID(); }
};

template <class Kind>
class NamedRowTest : public ::testing::Test {
 protected:
  using Element = typename Kind::Element;
  using Set = typename Kind::Set;

  NamedRowTest() {
    server.Answer(Kind::kInfo, Kind::kDetail,
                  Variant(Row({{Kind::kIdColumn, Long{6}}, {"FName", "Stored"}})));
    server.Answer(Kind::kUpdate, Kind::kCreate, Long{8});
    server.AnswerWith(Kind::kInfo, Kind::kList,
                      [](std::span<Argument>) { return Variant(ThreeRows()); });
  }

  static Ref<Recordset> NoRows() { return Recordset::Create({Kind::kIdColumn, "FName"}); }
  static Ref<Recordset> ThreeRows() {
    auto list = NoRows();
    list->AddRow({Long{1}, "First"});
    list->AddRow({Long{2}, "Second"});
    list->AddRow({Long{3}, "Third"});
    return list;
  }
  static std::string ThreeRowsText() { return StateText(Variant(ThreeRows())); }

  static Ref<Element> Constructed(Long id, const String& name = "Old") {
    auto element = Make<Element>();
    element->Construct(Nothing, id, name);
    return element;
  }
  static Ref<Element> Edited(Long id) {
    auto element = Constructed(id);
    element->Name("New");
    return element;
  }
  // Id and name, and the name that CancelChanges brings back.
  static std::string State(Element& element) {
    const std::string state = std::to_string(Kind::Id(element)) + " " + element.Name();
    const String name = element.Name();
    element.CancelChanges();
    return state + " from " + element.Name();
  }
  static std::string Text(const Ref<Element>& element) {
    return std::to_string(Kind::Id(*element)) + " " + element->Name();
  }
  // The list and where its cursor stands.
  static std::string ListOf(Set& set) {
    const Ref<Recordset> list = set.RecordSet();
    if (!list) return "none";
    return list->Eof() ? "at the end" : "at " + StateText(list->FieldValue(0));
  }
  Ref<Set> Fetched() {
    auto set = Make<Set>();
    set->Refresh();
    server.TakeLog();
    return set;
  }
  static std::string Fetch() {
    return CreateInfo() + "\ncall " + Kind::kListCall + " -> " + ThreeRowsText() + "\n";
  }
  static std::string CreateInfo() { return std::string("create ") + Kind::kInfo; }
  static std::string CreateUpdate() { return std::string("create ") + Kind::kUpdate; }
  static std::string Call(const char* method, const std::string& arguments) {
    return std::string("call ") + method + "(\"props\", " + arguments + ")";
  }

  RecordingServer server;
};

using Kinds = ::testing::Types<Groups, Types>;
TYPED_TEST_SUITE(NamedRowTest, Kinds);

// ---- The row ----

TYPED_TEST(NamedRowTest, ConstructTakesIdAndNameWithoutACall) {
  EXPECT_EQ(this->State(*this->Constructed(5)), "5 Old from Old");
  const auto element = Make<typename TypeParam::Element>();
  EXPECT_EQ(this->State(*element), "0  from ");
  element->Construct(Nothing);
  EXPECT_EQ(this->State(*element), "0  from ");
  Ref<Object> late = element;
  late->Call("Construct", Nothing, Long{7});
  EXPECT_EQ(this->State(*element), "7  from ");
  EXPECT_EQ(ErrorOf([&] { late->Call("Construct"); }), "error 449");
  EXPECT_EQ(this->server.TakeLog(), "");
}

TYPED_TEST(NamedRowTest, ConstructForgetsAnEdit) {
  const auto element = this->Edited(5);
  element->Construct(Nothing, 5, "Other");
  element->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");
  EXPECT_EQ(this->State(*element), "5 Other from Other");
}

TYPED_TEST(NamedRowTest, TheUuidIsAStub) {
  const auto element = this->Constructed(5);
  element->UUID("u");
  EXPECT_EQ(element->UUID(), "");
  element->Let("UUID", "u");
  EXPECT_EQ(StateText(element->Get("UUID")), "\"\"");
  element->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");
}

TYPED_TEST(NamedRowTest, SaveChangesOfAnExistingRowRenamesIt) {
  testing::ExpectEvents(
      this->server, [&] { return this->Edited(5); },
      [](typename TypeParam::Element& element) { element.SaveChanges(); },
      {{this->CreateUpdate(), "", "5 New from Old"},
       {this->Call(TypeParam::kRename, "ref 5, ref \"New\", \"HOST\", \"10.0.0.1\""), "",
        "5 New from Old"}},
      "5 New from Old", this->State);
}

TYPED_TEST(NamedRowTest, SaveChangesOfANewRowCreatesItAndTakesItsId) {
  testing::ExpectEvents(
      this->server, [&] { return this->Edited(0); },
      [](typename TypeParam::Element& element) { element.Call("SaveChanges"); },
      {{this->CreateUpdate(), "", "0 New from Old"},
       {this->Call(TypeParam::kCreate, "ref \"New\", \"HOST\", \"10.0.0.1\""), " -> 8",
        "0 New from Old"}},
      "8 New from Old", this->State);
}

TYPED_TEST(NamedRowTest, AnyWriteOfTheNameIsSavedAndNothingElse) {
  const auto element = this->Constructed(5);
  element->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "") << "nothing was written";
  element->Name("Old");
  element->SaveChanges();
  const std::string renamed =
      this->CreateUpdate() + "\n" +
      this->Call(TypeParam::kRename, "ref 5, ref \"Old\", \"HOST\", \"10.0.0.1\"") + "\n";
  EXPECT_EQ(this->server.TakeLog(), renamed) << "a write of the present name counts";
  element->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");
  element->Name("");
  element->SaveChanges();
  EXPECT_NE(this->server.TakeLog(), "");
}

TYPED_TEST(NamedRowTest, CancelChangesBehindASaveGoesBackToTheNameBeforeItAndIsNotSaved) {
  const auto element = this->Edited(5);
  element->SaveChanges();
  this->server.TakeLog();
  element->CancelChanges();
  EXPECT_EQ(element->Name(), "Old");
  element->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");
}

TYPED_TEST(NamedRowTest, CancelChangesClearsTheChange) {
  const auto element = this->Edited(5);
  element->CancelChanges();
  element->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");
  EXPECT_EQ(this->State(*element), "5 Old from Old");
}

TYPED_TEST(NamedRowTest, AFailedSaveIsTriedAgain) {
  for (const int event : {1, 2}) {
    const auto element = this->Edited(0);
    this->server.FailAt(event, Error(70));
    EXPECT_EQ(ErrorOf([&] { element->SaveChanges(); }), "error 70");
    this->server.TakeLog();
    element->SaveChanges();
    EXPECT_EQ(TypeParam::Id(*element), 8);
  }
}

TYPED_TEST(NamedRowTest, TheServerMayWriteTheReferencesOfASaveBack) {
  this->server.AnswerWith(TypeParam::kUpdate, TypeParam::kRename,
                          [](std::span<Argument> arguments) {
                            arguments[1].Put(Variant(Long{9}));
                            arguments[2].Put(Variant("Written"));
                            return Variant();
                          });
  const auto element = this->Edited(5);
  element->SaveChanges();
  EXPECT_EQ(this->State(*element), "9 Written from Old");
}

TYPED_TEST(NamedRowTest, RefreshReadsTheRowAndKeepsTheId) {
  testing::ExpectEvents(
      this->server, [&] { return this->Edited(5); },
      [](typename TypeParam::Element& element) { element.Refresh(); },
      {{this->CreateInfo(), "", "5 New from Old"},
       {this->Call(TypeParam::kDetail, "ref 5"),
        std::string(" -> {") + TypeParam::kIdColumn + ": 6, FName: \"Stored\"}", "5 New from Old"}},
      "5 Stored from Stored", this->State);
  const auto fresh = this->Edited(0);
  this->server.TakeLog();
  fresh->Refresh();
  EXPECT_EQ(this->server.TakeLog(), "");
  EXPECT_EQ(this->State(*fresh), "0 New from Old");
}

TYPED_TEST(NamedRowTest, RefreshOfARowThatIsGoneRaisesObjectNotSetAndKeepsTheEdit) {
  this->server.Answer(TypeParam::kInfo, TypeParam::kDetail, Nothing);
  const auto element = this->Edited(5);
  EXPECT_EQ(ErrorOf([&] { element->Refresh(); }), "error 91");
  EXPECT_EQ(this->State(*element), "5 New from Old");
}

TYPED_TEST(NamedRowTest, TheTransactionContextIsKeptByARefreshReplacedAndReleased) {
  const auto context = Make<Opaque>();
  {
    const auto element = Make<typename TypeParam::Element>();
    element->Construct(context, 5, "Old");
    EXPECT_EQ(context->holders(), 2);
    element->Refresh();
    EXPECT_EQ(context->holders(), 2);
    element->SetTransactionContext(Nothing);
    EXPECT_EQ(context->holders(), 1);
    element->SetTransactionContext(context);
  }
  EXPECT_EQ(context->holders(), 1);
}

// ---- The list ----

TYPED_TEST(NamedRowTest, EveryUseOfTheListFetchesItAndPassesAFailureAtEachEvent) {
  using List = typename TypeParam::Set;
  const auto expect = [&](const char* what, const std::string& behind,
                          const std::function<void(List&)>& operate) {
    SCOPED_TRACE(what);
    testing::ExpectEvents(
        this->server, [] { return Make<List>(); }, operate,
        {{this->CreateInfo(), "", "none"},
         {std::string("call ") + TypeParam::kListCall, " -> " + this->ThreeRowsText(), "none"}},
        behind, this->ListOf);
  };
  expect("Refresh", "at 1", [](List& set) { set.Refresh(); });
  expect("Count", "at 1", [](List& set) { EXPECT_EQ(set.Count(), 3); });
  expect("GetCurrent", "at 1", [](List& set) { set.GetCurrent(); });
  expect("GetNext", "at 2", [](List& set) { set.GetNext(); });
  expect("NewEnum", "at 1", [](List& set) { set.NewEnum(); });
  expect("by name", "at 1", [](List& set) { set.Call("Refresh"); });
  expect("ExistenceCheck", "at 1", [](List& set) { set.ExistenceCheck(); });
}

TYPED_TEST(NamedRowTest, TheCursorGivesARowEachAndRaisesFiveBehindTheLast) {
  const auto set = this->Fetched();
  EXPECT_EQ(this->Text(set->GetCurrent()), "1 First");
  EXPECT_EQ(this->Text(set->GetNext()), "1 First");
  EXPECT_EQ(this->Text(set->GetNext()), "2 Second");
  EXPECT_EQ(this->Text(set->GetNext()), "3 Third");
  EXPECT_EQ(ErrorOf([&] { set->GetNext(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { set->GetCurrent(); }), "error 5");
  EXPECT_EQ(this->server.TakeLog(), "");
}

TYPED_TEST(NamedRowTest, AWalkMakesARowEachAndLeavesTheCursor) {
  const auto set = this->Fetched();
  set->GetNext();
  for (int i = 0; i < 2; ++i) {
    std::string seen;
    for (auto& element : *set) seen += element.Name() + " ";
    EXPECT_EQ(seen, "First Second Third ");
  }
  EXPECT_EQ(this->ListOf(*set), "at 2");
  const auto enumerator = set->NewEnum();
  set->Refresh();
  Variant element;
  EXPECT_TRUE(enumerator->Skip(2));
  EXPECT_TRUE(enumerator->Next(element));
  EXPECT_EQ(element.As<typename TypeParam::Element>()->Name(), "Third");
  EXPECT_FALSE(enumerator->Next(element));
}

TYPED_TEST(NamedRowTest, ExistenceCheckSearchesAFreshListAndMovesItsCursor) {
  const auto set = this->Fetched();
  const auto expect = [&](const Variant& id, const Variant& name, Long found, const char* cursor) {
    EXPECT_EQ(set->ExistenceCheck(id, name), found);
    EXPECT_EQ(this->server.TakeLog(), this->Fetch());
    EXPECT_EQ(this->ListOf(*set), cursor);
  };
  expect(Long{2}, Missing, 2, "at 2");
  expect("3", Missing, 3, "at 3");
  expect(Missing, "Second", 2, "at 2");
  expect(Long{3}, "Second", 3, "at 3");
  expect(Long{77}, "Second", 0, "at the end");
  expect(Missing, "nobody", 0, "at the end");
  expect(Missing, Missing, 0, "at 1");
  EXPECT_EQ(StateText(set->Call("ExistenceCheck", Named("Name", "First"))), "1");
  EXPECT_EQ(StateText(set->Call("ExistenceCheck", Named(TypeParam::kIdArgument, Long{3}))), "3");
  EXPECT_EQ(ErrorOf([&] { set->ExistenceCheck(Missing, "O'Neil"); }),
            "error 3001 (Recordset): The criterion \"FName = 'O'Neil'\" needs its end at position "
            "12.");
  EXPECT_EQ(ErrorOf([&] { set->ExistenceCheck("x"); }), "error 13");
}

TYPED_TEST(NamedRowTest, ExistenceCheckOnAnEmptyListIsZeroWithoutASearch) {
  this->server.Answer(TypeParam::kInfo, TypeParam::kList, Variant(this->NoRows()));
  const auto set = Make<typename TypeParam::Set>();
  EXPECT_EQ(set->ExistenceCheck(5), 0);
  EXPECT_EQ(set->ExistenceCheck(Missing, "O'Neil"), 0) << "which no search would take";
  this->server.Answer(TypeParam::kInfo, TypeParam::kList, Nothing);
  EXPECT_EQ(ErrorOf([&] { set->ExistenceCheck(5); }), "error 91");
}

TYPED_TEST(NamedRowTest, ItemReadsTheRowByAnyKeyWithoutAListAndRaisesObjectNotSetWithoutARow) {
  const auto set = Make<typename TypeParam::Set>();
  std::vector<Variant> keys = testing::OtherKeys();
  keys.insert(keys.end(), {Variant(Long{5}), Variant("Stored"), Variant(2.5)});
  for (const Variant& key : keys) {
    SCOPED_TRACE(StateText(key));
    testing::ExpectEvents(
        this->server, [&] { return set; },
        [&](typename TypeParam::Set& of) { EXPECT_EQ(this->Text(of.Item(key)), "6 Stored"); },
        {{this->CreateInfo(), "", "none"},
         {this->Call(TypeParam::kDetail, "ref Variant " + StateText(key)),
          std::string(" -> {") + TypeParam::kIdColumn + ": 6, FName: \"Stored\"}", "none"}},
        "none", this->ListOf);
  }
  this->server.Answer(TypeParam::kInfo, TypeParam::kDetail, Nothing);
  EXPECT_EQ(ErrorOf([&] { set->Item(5); }), "error 91");
}

TYPED_TEST(NamedRowTest, RemoveDeletesByTheIdAndFetchesTheListAgain) {
  for (const auto& [key, id] : testing::NumericKeys()) {
    SCOPED_TRACE(StateText(key));
    testing::ExpectEvents(
        this->server,
        [&] {
          auto set = this->Fetched();
          set->GetNext();
          return set;
        },
        [&, &key = key](typename TypeParam::Set& set) { set.Remove(key); },
        {{this->CreateUpdate(), "", "at 2"},
         {this->Call(TypeParam::kDelete, "ref " + std::to_string(id) + ", \"HOST\", \"10.0.0.1\""),
          "", "at 2"},
         {this->CreateInfo(), "", "none"},
         {std::string("call ") + TypeParam::kListCall, " -> " + this->ThreeRowsText(), "none"}},
        "at 1", this->ListOf);
  }
}

TYPED_TEST(NamedRowTest, RecordSetIsTheListAsItStandsAndMayBePut) {
  const auto set = Make<typename TypeParam::Set>();
  EXPECT_EQ(set->RecordSet(), nullptr);
  const auto own = this->NoRows();
  set->RecordSet(own);
  EXPECT_EQ(set->RecordSet(), own);
  EXPECT_EQ(set->Count(), 0);
  EXPECT_EQ(this->server.TakeLog(), "");
  set->Set("RecordSet", Nothing);
  EXPECT_EQ(set->Count(), 3);
  EXPECT_EQ(this->server.TakeLog(), this->Fetch());
}

TYPED_TEST(NamedRowTest, CreateNewMakesAnUnsavedRowThatIsSavedOnceItIsNamed) {
  const auto set = Make<typename TypeParam::Set>();
  const auto created = set->CreateNew();
  created->SaveChanges();
  EXPECT_EQ(this->server.TakeLog(), "");
  EXPECT_EQ(this->Text(created), "0 ");
  created->Name("New");
  created->SaveChanges();
  EXPECT_EQ(this->Text(created), "8 New");
}

TYPED_TEST(NamedRowTest, TheTransactionContextGoesToEveryRowMade) {
  const auto context = Make<Opaque>();
  const auto set = this->Fetched();
  set->SetTransactionContext(context);
  const auto created = set->CreateNew();
  const auto current = set->GetCurrent();
  const auto read = set->Item(5);
  EXPECT_EQ(context->holders(), 5);  // this variable, the set and the three
  Variant element;
  const auto enumerator = set->NewEnum();
  ASSERT_TRUE(enumerator->Next(element));
  EXPECT_EQ(context->holders(), 7) << "the walker and its row";
}

}  // namespace
}  // namespace qdclgl
