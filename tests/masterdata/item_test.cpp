#include "qdclgl/masterdata/item.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/columns.h"
#include "tests/support/entity_suite.h"
#include "tests/support/recording_server.h"

namespace qdclgl {
namespace {

using testing::Column;
using testing::EntityCase;
using testing::EntityCaseOf;
using testing::EntitySuite;
using testing::ErrorOf;
using testing::Event;
using testing::ExpectEvents;
using testing::NameOfUse;
using testing::Opaque;
using testing::ReadOnlyColumn;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;
using testing::TypedAndByName;
using testing::WithDefault;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";
constexpr const char* kCreateInfo = "create QDSVGLItem.ItemInfo";
constexpr const char* kCreateUpdate = "create QDSVGLItem.ItemUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &Item::Name, &Item::Name, kIsStored)
#define READ_ONLY(Type, Name, key) ReadOnlyColumn<Type>(#Name, key, &Item::Name)

// The members that read and write one key.
std::vector<Column<Item>> Columns() {
  return {
      READ_ONLY(Long, ChkUserID, "FChkUserID"),
      COLUMN(Boolean, Deleted, "FDeleted"),
      READ_ONLY(Boolean, Detail, "FDetail"),
      READ_ONLY(String, FullName, "FFullName"),
      COLUMN(String, HelpCode, "FHelpCode"),
      READ_ONLY(String, ItemModel, "FModel"),
      READ_ONLY(Integer, Level, "FLevel"),
      COLUMN(String, Name, "FName"),
      WithDefault(COLUMN(String, Number, "FNumber"), "", "TEXT"),
      READ_ONLY(Long, ParentID, "FParentID"),
      COLUMN(String, UUID, "UUID"),
  };
}

#undef COLUMN
#undef READ_ONLY

Ref<Item> ItemOf(const Ref<Dictionary>& row) { return testing::ViewOn<Item>(row); }

// The ids of the item and of its class, and the row with its records of change.
std::string State(const Item& item) {
  return "id " + std::to_string(item.ItemID()) + " of " + std::to_string(item.ItemClassID()) + " " +
         testing::State(static_cast<const RowView&>(item));
}

std::string StateOf(const Ref<Object>& given) { return State(*Variant(given).As<Item>()); }

class ItemTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

// ---- What items share with all entities ----

EntityCase ItemCase() {
  return EntityCaseOf(&Item::ItemID, &Item::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "ItemID",
                       .id_key = "FItemID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .create = "Create(\"props\", Empty, <row>)",
                       .track_state = {.construct = 1, .cancel_changes = 1, .refresh = 1},
                       .refresh_shows_failures = true});
}

INSTANTIATE_TEST_SUITE_P(Item, EntitySuite, TypedAndByName(ItemCase()), NameOfUse());

// ---- The members ----

TEST_F(ItemTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<Item>(),
            "UNDetail DictDeifne CancelChanges Construct Refresh SaveChanges UpdateDefineField "
            "ChkUserID Deleted Detail FullName HelpCode ItemClassID ItemID ItemModel Level Name "
            "Number ParentID Properties UUID");
}

TEST_F(ItemTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(ItemTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(ItemTest, WritesEachMemberUnderItsKey) {
  testing::ExpectWrites(Columns());
  testing::ExpectWritesOfZero(Columns());
  testing::ExpectRefusedLets(Columns());
}

TEST_F(ItemTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  const auto item = Make<Item>();
  EXPECT_EQ(ErrorOf([&] { item->UNDetail(true); }), "error 91");
}

TEST_F(ItemTest, HasNeitherModifiedNorCloneAndItsIdsAreReadOnly) {
  const Ref<Object> item = ItemOf(Nothing);
  EXPECT_EQ(ErrorOf([&] { item->Get("Modified"); }), "error 438 (Item): No member Modified.");
  EXPECT_EQ(ErrorOf([&] { item->Call("Clone"); }), "error 438 (Item): No member Clone.");
  for (const std::string name : {"ItemID", "ItemClassID"}) {
    EXPECT_EQ(ErrorOf([&] { item->Let(name, Long{1}); }),
              "error 438 (Item): The member " + name + " can't be used this way.");
  }
}

TEST_F(ItemTest, UNDetailIsOnlyWrittenAndFalseRemovesTheKey) {
  const auto item = ItemOf(Row({{"FUNDetail", true}}));
  item->UNDetail(false);
  EXPECT_EQ(State(*item), "id 0 of 0 {} modified flagged");
  item->Let("UNDetail", false);
  EXPECT_EQ(State(*item), "id 0 of 0 {} modified flagged");
  item->UNDetail(true);
  EXPECT_EQ(State(*item), "id 0 of 0 {FUNDetail: True} modified flagged");
  const auto absent = ItemOf(Row({}));
  absent->UNDetail(false);
  EXPECT_EQ(State(*absent), "id 0 of 0 {} flagged");
  EXPECT_EQ(ErrorOf([&] { item->Get("UNDetail"); }),
            "error 438 (Item): The member UNDetail can't be used this way.");
}

TEST_F(ItemTest, NumberIsStoredInUpperCase) {
  const auto item = ItemOf(Row({{"FNumber", "from the server"}}));
  EXPECT_EQ(item->Number(), "from the server");
  item->Number("ab.1é");
  EXPECT_EQ(State(*item), "id 0 of 0 {FNumber: \"AB.1É\"} modified flagged");
}

TEST_F(ItemTest, AUuidHasUpTo38CharactersHoweverManyBytesTheyTake) {
  const std::string refused = "error 5 (QDCLGL.Item.UUID): 全球未已识别符号格式不正确。";
  const auto times = [](int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  };
  // A character beyond the first 65,536 counts as the two halves that it has outside.
  for (const auto& [longest, longer] :
       {std::pair{times(38, "a"), times(39, "a")}, std::pair{times(38, "号"), times(39, "号")},
        std::pair{times(19, "𠀀"), times(19, "𠀀") + "a"}}) {
    const auto item = ItemOf(Nothing);
    item->UUID(longest);
    EXPECT_EQ(ErrorOf([&, &longer = longer] { item->UUID(longer); }), refused);
    EXPECT_EQ(ErrorOf([&, &longer = longer] { item->Let("UUID", longer); }), refused);
    EXPECT_EQ(State(*item), "id 0 of 0 {UUID: \"" + longest + "\"} modified flagged");
  }
  const auto item = ItemOf(Row({{"UUID", "x"}}));
  item->UUID("");
  EXPECT_EQ(State(*item), "id 0 of 0 {UUID: \"\"} modified flagged");
}

// ---- The ids ----

TEST_F(ItemTest, ConstructTakesBothIds) {
  const auto item = ItemOf(Row({{"FItemID", "7"}, {"FItemClassID", Integer{3}}}));
  EXPECT_EQ(State(*item), "id 7 of 3 {FItemID: \"7\", FItemClassID: 3%}");
  item->Construct(Nothing, Nothing);
  EXPECT_EQ(State(*item), "id 7 of 3 {}");
  item->Construct(Row({}), Nothing);
  EXPECT_EQ(State(*item), "id 0 of 0 {}");
}

TEST_F(ItemTest, AClassThatIsNoNumberRaisesTypeMismatchBeforeTheContextIsTaken) {
  const auto context = Make<Opaque>();
  const auto item = ItemOf(Row({{"FItemClassID", Long{3}}}));
  EXPECT_EQ(ErrorOf([&] {
              item->Construct(Row({{"FItemID", Long{7}}, {"FItemClassID", "none"}}), context);
            }),
            "error 13");
  EXPECT_EQ(State(*item), "id 7 of 3 {FItemID: 7, FItemClassID: \"none\"}");
  EXPECT_EQ(context->holders(), 1);
}

TEST_F(ItemTest, ReadingAgainOrCancellingTakesNoIds) {
  server.Answer(kInfo, "GetDetail",
                Variant(Row({{"FItemID", Long{8}}, {"FItemClassID", Long{4}}})));
  const auto item = ItemOf(Row({{"FItemID", Long{7}}, {"FItemClassID", Long{3}}}));
  item->Refresh();
  EXPECT_EQ(State(*item), "id 7 of 3 {FItemID: 8, FItemClassID: 4}");
  item->CancelChanges();
  EXPECT_EQ(State(*item), "id 7 of 3 {FItemID: 8, FItemClassID: 4}");
}

// ---- Reading and saving ----

TEST_F(ItemTest, AFailedReadIsShownWithItsWordsAlone) {
  const auto item = ItemOf(Row({{"FItemID", Long{7}}, {"FItemClassID", Long{3}}}));
  item->Name("New");
  server.FailAt(2, Error(1004, "server", "The item was deleted."));
  item->Refresh();
  EXPECT_EQ(server.platform().messages, std::vector<std::string>{"The item was deleted."});
  EXPECT_EQ(State(*item),
            "id 7 of 3 {FItemID: 7, FItemClassID: 3, FName: \"New\"} modified flagged");
}

TEST_F(ItemTest, AnotherThreadIsRefusedAndNotShown) {
  const auto item = ItemOf(Row({{"FItemID", Long{7}}}));
  std::string outcome;
  std::thread([&] { outcome = ErrorOf([&] { item->Refresh(); }); }).join();
  EXPECT_EQ(outcome.substr(0, 16), "error 0x8001010E");
  EXPECT_TRUE(server.platform().messages.empty());
}

TEST_F(ItemTest, ANewItemIsCreatedInTheClassOfItsRowAsItStandsThere) {
  server.Answer(kUpdate, "Create", Long{8});
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FItemID", Long{8}}})));
  const auto item = ItemOf(Row({{"FItemClassID", "3"}}));
  item->Name("New");
  item->SaveChanges();
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLItem.ItemUpdate\n"
            "call Create(\"props\", \"3\", {FItemClassID: \"3\", FName: \"New\", MachineName: "
            "\"HOST\", IPAddress: \"10.0.0.1\"}) -> 8\n"
            "create QDSVGLItem.ItemInfo\n"
            "call GetDetail(\"props\", ref 8) -> {FItemID: 8}\n");
  EXPECT_EQ(State(*item), "id 8 of 3 {FItemID: 8}");
}

// ---- Defined fields ----

TEST_F(ItemTest, DefinedFieldsGoToTheServerByReferenceAndAreWhatItLeavesThere) {
  server.Answer(kInfo, "GetDetail", Variant(Row({{"FItemID", Long{7}}})));
  const std::string stored = "id 7 of 3 {FItemID: 7}";
  const std::string edited =
      "id 7 of 3 {FItemID: 7, FItemClassID: 3, FName: \"New\"} modified flagged";
  server.Answer(kUpdate, "UpdateDefineField", true);
  Boolean answer = false;
  ExpectEvents(
      server,
      [] {
        auto item = ItemOf(Row({{"FItemID", Long{7}}, {"FItemClassID", Long{3}}}));
        item->Name("New");
        item->DictDeifne(Row({{"FColour", "red"}}));
        return item;
      },
      [&](Item& item) { answer = item.UpdateDefineField(); },
      {{kCreateUpdate, "", edited},
       {"call UpdateDefineField(\"props\", ref 3, ref {FColour: \"red\"})", " -> True", edited},
       {kCreateInfo, "", edited, true},
       {"call GetDetail(\"props\", ref 7)", " -> {FItemID: 7}", edited, true}},
      stored, State);
  EXPECT_TRUE(answer);

  server.AnswerWith(kUpdate, "UpdateDefineField", [](std::span<Argument> arguments) {
    arguments[2].Put(Variant(Row({{"FLeft", Long{1}}})));
    return Variant(false);
  });
  const auto item = ItemOf(Nothing);
  item->Set("DictDeifne", Variant(Row({{"FColour", "red"}})));
  EXPECT_EQ(StateText(item->Call("UpdateDefineField")), "False");
  item->UpdateDefineField();
  EXPECT_EQ(server.TakeLog(), "create QDSVGLItem.ItemUpdate\n"
                              "call UpdateDefineField(\"props\", ref 0, ref {FColour: \"red\"}) -> "
                              "False\n"
                              "create QDSVGLItem.ItemUpdate\n"
                              "call UpdateDefineField(\"props\", ref 0, ref {FLeft: 1}) -> False\n")
      << "an item that is not saved has nothing to read";
}

TEST_F(ItemTest, TheCallIsMadeWithoutDefinedFieldsTooAndTheyAreOnlySet) {
  server.Answer(kUpdate, "UpdateDefineField", "none");
  const auto item = ItemOf(Row({{"FItemID", Long{7}}}));
  EXPECT_EQ(ErrorOf([&] { item->UpdateDefineField(); }), "error 13");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLItem.ItemUpdate\n"
            "call UpdateDefineField(\"props\", ref 0, ref Nothing) -> \"none\"\n");
  const std::string refused = "error 438 (Item): The member DictDeifne can't be used this way.";
  EXPECT_EQ(ErrorOf([&] { item->Get("DictDeifne"); }), refused);
  EXPECT_EQ(ErrorOf([&] { item->Let("DictDeifne", "text"); }), refused);
  EXPECT_EQ(ErrorOf([&] { item->Set("DictDeifne", Variant(Make<Opaque>())); }), "error 13");
}

// ---- ItemSet ----

class ItemSetTest : public ::testing::Test {
 protected:
  ItemSetTest() {
    server.AnswerWith(kInfo, "GetList", [](std::span<Argument>) { return Variant(TwoRows()); });
    server.AnswerWith(kInfo, "GetDetail", [](std::span<Argument> arguments) {
      return Variant(Row({{"FItemID", arguments[1].Value()}, {"FItemClassID", Long{3}}}));
    });
    server.Answer(kInfo, "GetDetailByNumber",
                  Variant(Row({{"FItemID", Long{9}}, {"FItemClassID", Long{3}}})));
    server.Answer(kInfo, "ExistenceCheck", Long{7});
  }

  static Ref<Recordset> NoRows() { return Recordset::Create({"FItemID", "FName"}); }
  static Ref<Recordset> TwoRows() {
    auto list = NoRows();
    list->AddRow({Long{1}, "First"});
    list->AddRow({Long{2}, "Second"});
    return list;
  }
  static std::string Detail(Long id) {
    return " -> {FItemID: " + std::to_string(id) + ", FItemClassID: 3}";
  }
  static std::string Fields(const ItemSet& set) {
    return std::to_string(set.ListOptions()) + " " + set.Filter() + " " + set.Sort() + " " +
           std::to_string(set.ItemClassID()) + " " + StateText(Variant(set.Parameters())) +
           (set.IgnoreRight() ? " True" : " False");
  }

  // What an operation on a new set of class 3 asks for.
  void Expect(const std::function<void(ItemSet&)>& operate, const std::vector<Event>& events) {
    ExpectEvents(
        server,
        [] {
          auto set = Make<ItemSet>();
          set->ItemClassID(3);
          return set;
        },
        operate, events, "", [](ItemSet&) { return ""; });
  }

  const std::string kRows = " -> recordset{FItemID, FName | 1, \"First\" | 2, \"Second\"}";
  const std::string kGetList =
      "call GetList(\"props\", ref 3, ref 0, ref \"\", ref \"\", ref Nothing, ref False)";

  RecordingServer server;
  Ref<ItemSet> items = Make<ItemSet>();
};

TEST_F(ItemSetTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<ItemSet>(),
            "ListOptions Filter Sort ItemClassID CreateNew ExistenceCheck GetCurrent GetNext "
            "NewEnum Refresh Remove Count Item Parameters RecordSet IgnoreRight");
  EXPECT_EQ(ItemSet::Table().default_member()->row.name, "Item");
}

TEST_F(ItemSetTest, RefreshPassesAllFieldsByReferenceAndKeepsWhatTheServerWritesBack) {
  EXPECT_EQ(Fields(*items), "0   0 Nothing False");
  const auto parameters = Row({{"a", Long{1}}});
  items->ListOptions(4);
  items->Filter("f");
  items->Sort("s");
  items->ItemClassID(3);
  items->Parameters(parameters);
  items->IgnoreRight(true);
  server.AnswerWith(kInfo, "GetList", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{30}));
    arguments[2].Put(Variant(Long{40}));
    arguments[3].Put(Variant("ff"));
    arguments[4].Put(Variant("ss"));
    arguments[5].Put(Variant(Row({{"b", Long{2}}})));
    arguments[6].Put(Variant(false));
    return Variant(TwoRows());
  });
  items->Refresh();
  EXPECT_EQ(Fields(*items), "40 ff ss 30 {b: 2} False");
  EXPECT_EQ(server.TakeLog(),
            std::string(kCreateInfo) +
                "\ncall GetList(\"props\", ref 3, ref 4, ref \"f\", ref \"s\", ref {a: 1}, ref "
                "True)" +
                kRows + "\n");
}

TEST_F(ItemSetTest, TheFieldsAreReachedByName) {
  const auto parameters = Make<Opaque>();
  items->Let("ItemClassID", "3");
  items->Let("IgnoreRight", Long{1});
  items->Set("Parameters", Variant(parameters));
  EXPECT_EQ(items->Get("Parameters").As<Opaque>(), parameters);
  EXPECT_EQ(StateText(items->Get("ItemClassID")) + StateText(items->Get("IgnoreRight")), "3True");
  items->Parameters(Nothing);
  EXPECT_EQ(parameters->holders(), 1);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemSetTest, EveryUseOfTheListFetchesItTheRecordSetAlsoWithoutAClass) {
  const std::vector<Event> fetch = {{kCreateInfo, "", ""}, {kGetList, kRows, ""}};
  Expect([](ItemSet& set) { set.Refresh(); }, fetch);
  Expect([](ItemSet& set) { EXPECT_EQ(set.Count(), 2); }, fetch);
  Expect([](ItemSet& set) { set.NewEnum(); }, fetch);
  Expect([](ItemSet& set) { EXPECT_NE(set.RecordSet(), nullptr); }, fetch);
  Expect([](ItemSet& set) { set.Get("RecordSet"); }, fetch);
  items->RecordSet();
  EXPECT_EQ(server.TakeLog(), std::string(kCreateInfo) +
                                  "\ncall GetList(\"props\", ref 0, ref 0, ref \"\", ref \"\", "
                                  "ref Nothing, ref False)" +
                                  kRows + "\n");
  items->RecordSet();
  items->Count();
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemSetTest, AListThatTheServerHasNotIsNothing) {
  server.Answer(kInfo, "GetList", Nothing);
  EXPECT_EQ(items->RecordSet(), nullptr);
  EXPECT_EQ(ErrorOf([&] { items->Count(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { items->GetCurrent(); }), "error 91");
}

TEST_F(ItemSetTest, ARecordsetPutInTakesTheListsPlace) {
  items->Refresh();
  server.TakeLog();
  const auto other = NoRows();
  items->RecordSet(other);
  EXPECT_EQ(items->RecordSet(), other);
  items->Set("RecordSet", Variant(TwoRows()));
  EXPECT_EQ(items->Count(), 2);
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemSetTest, GetCurrentReadsTheItemOfTheRowByItsIdEachTime) {
  Ref<Object> given;
  Expect([&](ItemSet& set) { given = set.GetCurrent(true); },
         {{kCreateInfo, "", ""},
          {kGetList, kRows, ""},
          {kCreateInfo, "", ""},
          {"call GetDetail(\"props\", ref 1, ref True, ref \"\")", Detail(1), ""}});
  EXPECT_EQ(StateOf(given), "id 1 of 3 {FItemID: 1, FItemClassID: 3}")
      << "the row's other columns have no part in it";
  items->Refresh();
  server.TakeLog();
  items->Call("GetCurrent");
  items->Call("GetCurrent", Named("blNoCheck", true));
  EXPECT_EQ(server.TakeLog(),
            std::string(kCreateInfo) + "\ncall GetDetail(\"props\", ref 1, ref False, ref \"\")" +
                Detail(1) + "\n" + kCreateInfo +
                "\ncall GetDetail(\"props\", ref 1, ref True, ref \"\")" + Detail(1) + "\n");
}

TEST_F(ItemSetTest, GetNextMovesTheCursorAndBehindTheLastRowBothRaiseFive) {
  items->Refresh();
  server.TakeLog();
  EXPECT_EQ(State(*items->GetNext()), "id 1 of 3 {FItemID: 1, FItemClassID: 3}");
  EXPECT_EQ(State(*items->GetNext()), "id 2 of 3 {FItemID: 2, FItemClassID: 3}");
  const std::string log = server.TakeLog();
  EXPECT_EQ(log, std::string(kCreateInfo) +
                     "\ncall GetDetail(\"props\", ref 1, ref False, ref \"\")" + Detail(1) + "\n" +
                     kCreateInfo + "\ncall GetDetail(\"props\", ref 2, ref False, ref \"\")" +
                     Detail(2) + "\n");
  EXPECT_EQ(ErrorOf([&] { items->GetNext(); }), "error 5");
  EXPECT_EQ(ErrorOf([&] { items->GetCurrent(); }), "error 5");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemSetTest, ARowThatCannotBeReadLeavesTheCursor) {
  items->Refresh();
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { items->GetNext(); }), "error 70");
  EXPECT_EQ(items->GetNext()->ItemID(), 1);
  items->RecordSet(Recordset::Create({"FName"}));
  items->RecordSet()->AddRow({"without an id"});
  EXPECT_EQ(ErrorOf([&] { items->GetNext(); }), "error 3265 (Recordset): No field FItemID.");
}

TEST_F(ItemSetTest, AWalkMakesItemsOfTheRowsThemselvesAndLeavesTheCursor) {
  std::string walked;
  for (auto& item : *items) walked += State(item) + "; ";
  EXPECT_EQ(walked, "id 1 of 0 {FItemID: 1, FName: \"First\"}; "
                    "id 2 of 0 {FItemID: 2, FName: \"Second\"}; ");
  EXPECT_EQ(items->GetNext()->ItemID(), 1);
}

TEST_F(ItemSetTest, ItemOfAnIdIsReadByItWhateverElseIsGiven) {
  Ref<Object> given;
  Expect([&](ItemSet& set) { given = set.Item(5, 8, "01", true, "f"); },
         {{kCreateInfo, "", ""},
          {"call GetDetail(\"props\", ref 5, ref True, ref \"f\")", Detail(5), ""}});
  EXPECT_EQ(StateOf(given), "id 5 of 3 {FItemID: 5, FItemClassID: 3}");
  EXPECT_EQ(StateOf(items->Get("Item", Long{5}).As<Object>()),
            "id 5 of 3 {FItemID: 5, FItemClassID: 3}");
}

TEST_F(ItemSetTest, ItemOfANumberIsReadInTheClassGivenOrElseTheSets) {
  Ref<Object> given;
  Expect([&](ItemSet& set) { given = set.Item(0, 8, "01", true, "f"); },
         {{kCreateInfo, "", ""},
          {"call GetDetailByNumber(\"props\", ref 8, ref \"01\", ref \"f\")", Detail(9), ""}});
  EXPECT_EQ(StateOf(given), "id 9 of 3 {FItemID: 9, FItemClassID: 3}");
  Expect([&](ItemSet& set) { set.Get("Item", Named("Number", "01")); },
         {{kCreateInfo, "", ""},
          {"call GetDetailByNumber(\"props\", ref 3, ref \"01\", ref \"\")", Detail(9), ""}});
}

TEST_F(ItemSetTest, ItemWithoutAClassOrWithoutANumberIsRefusedBehindTheComponent) {
  const std::string no_class = "error 0x80044104";
  EXPECT_EQ(ErrorOf([&] { items->Item(); }), no_class);
  EXPECT_EQ(ErrorOf([&] { items->Item(0, 0, "01"); }), no_class);
  EXPECT_EQ(ErrorOf([&] { items->Item(0, 8); }), "error 5");
  items->ItemClassID(3);
  EXPECT_EQ(ErrorOf([&] { items->Get("Item"); }), "error 5");
  EXPECT_EQ(server.TakeLog(), std::string(kCreateInfo) + "\n" + kCreateInfo + "\n" + kCreateInfo +
                                  "\n" + kCreateInfo + "\n");
}

TEST_F(ItemSetTest, AnItemThatTheServerDoesNotKnowIsAnEmptyOne) {
  server.Answer(kInfo, "GetDetail", Nothing);
  EXPECT_EQ(StateOf(items->Item(5)), "id 0 of 0 {}");
  server.Answer(kInfo, "GetDetail", "text");
  EXPECT_EQ(ErrorOf([&] { items->Item(5); }), "error 13");
}

TEST_F(ItemSetTest, CreateNewMakesAnUnsavedItemOfItsWordsAsTheyAre) {
  const auto item = Variant(items->CreateNew(3, 12, "ab", 7)).As<Item>();
  EXPECT_EQ(State(*item), "id 0 of 3 {FItemClassID: 3, FParentID: 12, FNumber: \"ab\", FName: "
                          "\"7\"}");
  EXPECT_EQ(item->Number(), "ab");
  item->SaveChanges();
  EXPECT_EQ(server.TakeLog(), "") << "unmodified until a member is written";
  item->Number("ab");
  EXPECT_EQ(item->Number(), "AB");
  item->CancelChanges();
  EXPECT_EQ(State(*item), "id 0 of 3 {FItemClassID: 3, FParentID: 12, FNumber: \"ab\", FName: "
                          "\"7\"}");
  EXPECT_FALSE(item->Detail());
  EXPECT_EQ(StateOf(items->Call("CreateNew", Long{3}, Long{0}).As<Object>()),
            "id 0 of 3 {FItemClassID: 3, FParentID: 0}");
}

TEST_F(ItemSetTest, CreateNewWithoutAClassIsRefusedWhateverTheSets) {
  items->ItemClassID(3);
  EXPECT_EQ(ErrorOf([&] { items->CreateNew(0, 12, "ab"); }), "error 0x80044104");
  EXPECT_EQ(ErrorOf([&] { items->CreateNew(3, 0, Null); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemSetTest, ExistenceCheckAsksByTheIdOrByTheNumberInAClass) {
  const auto by_id = [](const char* id) {
    return std::string("call ExistenceCheck(\"props\", ref Variant ") + id + ")";
  };
  const auto by_number = [](const char* item_class, const char* number) {
    return std::string("call ExistenceCheck(\"props\", ItemClassID:=ref ") + item_class +
           ", Number:=ref Variant " + number + ")";
  };
  const auto expect = [&](const std::function<Long(ItemSet&)>& check, const std::string& call) {
    Expect([&](ItemSet& set) { EXPECT_EQ(check(set), 7); },
           {{kCreateInfo, "", ""}, {call, " -> 7", ""}});
  };
  expect([](ItemSet& set) { return set.ExistenceCheck(5, 8, "01"); }, by_id("5"));
  expect([](ItemSet& set) { return set.ExistenceCheck(Variant(), 8, "01"); }, by_id("Empty"));
  expect([](ItemSet& set) { return set.ExistenceCheck(Missing, 8, "01"); },
         by_number("8", "\"01\""));
  expect([](ItemSet& set) { return set.ExistenceCheck(Missing, 0, 1); }, by_number("3", "1"));
  expect([](ItemSet& set) { return set.Call("ExistenceCheck", Named("Number", "01")).As<Long>(); },
         by_number("3", "\"01\""));
  EXPECT_EQ(items->ExistenceCheck(Missing, 0, "01"), 7) << "a class of 0 is asked for as it is";
  EXPECT_EQ(items->ExistenceCheck(Missing, 8), 0);
  EXPECT_EQ(server.TakeLog(), std::string(kCreateInfo) + "\n" + by_number("0", "\"01\"") +
                                  " -> 7\n" + kCreateInfo + "\n");
}

TEST_F(ItemSetTest, RemoveDeletesByTheIdWhateverItIs) {
  for (const Long id : {5, 0, -1}) {
    Expect([&](ItemSet& set) { set.Remove(id); },
           {{kCreateUpdate, "", ""},
            {"call Delete(\"props\", ref " + std::to_string(id) + ", \"HOST\", \"10.0.0.1\")", "",
             ""}});
  }
  EXPECT_EQ(ErrorOf([&] { items->Call("Remove", "First"); }), "error 13");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(ItemSetTest, TheServerWritesNothingIntoTheCallersVariables) {
  const auto write = [&](const char* component, const char* method, Variant answer) {
    server.AnswerWith(component, method, [answer](std::span<Argument> arguments) {
      for (Argument& argument : arguments) {
        if (!argument.IsByRef()) continue;
        const bool is_text = argument.reference().type() == VariantType::kString;
        argument.Put(is_text ? Variant("written") : Variant(Long{1}));
      }
      return answer;
    });
  };
  write(kInfo, "GetDetail", Variant(Row({})));
  write(kInfo, "GetDetailByNumber", Variant(Row({})));
  write(kInfo, "ExistenceCheck", Long{7});
  write(kUpdate, "Delete", {});
  Long id = 5, none = 0, item_class = 8;
  String number = "01", filter = "f";
  Boolean no_check = false;
  Variant key = Long{5}, text = "01";
  items->ItemClassID(3);
  items->Get("Item", ByRef(id), ByRef(item_class), ByRef(number), ByRef(no_check), ByRef(filter));
  items->Get("Item", ByRef(none), ByRef(item_class), ByRef(number), ByRef(no_check), ByRef(filter));
  items->Call("ExistenceCheck", ByRef(key));
  items->Call("ExistenceCheck", Missing, ByRef(item_class), ByRef(text));
  items->Call("ExistenceCheck", Missing, Missing, ByRef(text));
  items->Call("Remove", ByRef(id));
  EXPECT_EQ(std::to_string(id) + " " + std::to_string(none) + " " + std::to_string(item_class) +
                " " + number + filter + (no_check ? "True" : "False") + StateText(key) +
                StateText(text) + std::to_string(items->ItemClassID()),
            "5 0 8 01fFalse5\"01\"3");
}

TEST_F(ItemSetTest, TheTransactionContextGoesToEveryItem) {
  const auto context = Make<Opaque>();
  items->SetTransactionContext(context);
  items->Refresh();
  const Ref<Object> made[] = {items->CreateNew(3, 0), items->Item(5), items->GetCurrent()};
  EXPECT_EQ(context->holders(), 5);
  const auto next = items->GetNext();
  EXPECT_EQ(context->holders(), 6);
}

}  // namespace
}  // namespace qdclgl
