#include "qdclgl/masterdata/item.h"

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/books/books_check.h"
#include "qdclgl/server/records/item_slots.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";

constexpr Long kDepartments = 1, kStaff = 2;

Long NewClass(RecordBooks& books) {
  static int number = 0;
  const std::string name = "C" + std::to_string(++number);
  return books
      .Call("QDSVGLItemClass.ItemClassUpdate", "Create", books.props,
            Row({{"FNumber", name}, {"FName", name}}))
      .As<Long>();
}

// A voucher with a line that names the item.
void NameInLine(RecordBooks& books, Long item) {
  const Long account = books.AddAccount("V" + std::to_string(item));
  auto details = Make<Vector>();
  details->Append(Row({{"FItemClassID", kDepartments}, {"FItemID", item}}));
  auto lines = Make<Vector>();
  for (const Long side : {1, 0}) {
    lines->Append(Row({{"FAccountID", account},
                       {"FDC", side},
                       {"FAmount", Currency(7)},
                       {"_Details", details->Clone()}}));
  }
  books.Call("QDSVGLVoucher.VoucherUpdate", "Create", books.props,
             Row({{"FDate", DateTime::FromYmd(2024, 1, 31)},
                  {"FGroupID", books.AddGroup("V" + std::to_string(item))},
                  {"_Entries", lines}}));
}

std::vector<std::string_view> Slots() {
  std::vector<std::string_view> names;
  for (const Column& slot : ItemSlots()) names.push_back(slot.name);
  return names;
}

const RecordKind kItems = {
    .noun = "Item",
    .subject = "Item",
    .info = "QDSVGLItems.ItemInfo",
    .update = "QDSVGLItems.ItemUpdate",
    .table = "t_Item",
    .id = "FItemID",
    .columns = {{"FItemClassID", kDepartments, kDepartments},
                {"FParentID", Long{0}, Long{0}},
                {"FNumber", "SALES", "SHOPS"},
                {"FName", "Sales", "Shops"},
                {"FFullNumber", "SALES", "SHOPS"},
                {"FFullName", "Sales", "Shops"},
                {"FLevel", Integer{1}, Integer{1}},
                {"FDetail", true, true},
                {"FUNDetail", false, false},
                {"FHelpCode", "s", "h"},
                {"FModel", "m", "n"},
                {"FChkUserID", Long{0}, Long{0}},
                {"FRemark", "r", "t"},
                {"FDeleted", false, false},
                {"UUID", "u", "v"}},
    .absent = {{"FDetail", true}},
    .spelled = {{"FNumber", "sales"}},
    .longest = {{"FName", 255}},
    .coded = {"FNumber"},
    .kept_by_server = {"FFullNumber", "FFullName", "FLevel", "FDetail", "FChkUserID"},
    .follows = {{"FFullNumber", "FNumber"}},
    .never_shown = Slots(),
    .required = {"FNumber", "FName"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FItemClassID",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "ItemID",
    .text_argument = "Number",
    .mark = "FDeleted",
    .uses = {NameInLine},
    .references = {{.column = "FItemClassID",
                    .noun = "item class",
                    .id = "FItemClassID",
                    .update = "QDSVGLItemClass.ItemClassUpdate",
                    .make = NewClass,
                    .is_required = true}},
};
QDCLGL_RECORD_KIND(Item, kItems);

class ItemTest : public RecordCalls {
 protected:
  ItemTest() : RecordCalls("QDSVGLItem.Item") {}

  Ref<Dictionary> ItemRow(const std::string& number, Long parent = 0) {
    return Row({{"FNumber", number}, {"FName", "N" + number}, {"FParentID", parent}});
  }
  Long CreateIn(Long item_class, const Ref<Dictionary>& row) {
    return Call(kUpdate, "Create", props, item_class, row).As<Long>();
  }
  Long New(const std::string& number, Long parent = 0) {
    return CreateIn(kDepartments, ItemRow(number, parent));
  }
  Ref<Recordset> List(Long item_class, const std::string& filter = "", const std::string& sort = "",
                      const Variant& parameters = Missing, Long options = 0) {
    return Call(kInfo, "GetList", props, ByRef(item_class), ByRef(options), filter, sort,
                parameters, false)
        .As<Recordset>();
  }
  // The items of departments: number, parent's id, level, detail flag, full number and full name.
  std::string Tree() {
    return TextOf(List(kDepartments, "", "FItemID"),
                  {"FNumber", "FParentID", "FLevel", "FDetail", "FFullNumber", "FFullName"});
  }
  Long NewClassWith(std::initializer_list<Ref<Dictionary>> fields) {
    auto list = Make<Vector>();
    for (const auto& field : fields) list->Append(Variant(field));
    return Call("QDSVGLItemClass.ItemClassUpdate", "Create", props,
                Row({{"FNumber", "PROJECT"}, {"FName", "Projects"}, {"_PropDesc", Variant(list)}}))
        .As<Long>();
  }
  static Ref<Dictionary> Field(const char* name, Long type, Long search = 0, Long precision = 0,
                               Integer scale = 0) {
    return Row({{"FPropID", Integer{32767}},
                {"FNewName", name},
                {"FDataType", type},
                {"FSearch", search},
                {"FPrecision", precision},
                {"FScale", scale}});
  }
  // Saves the class with fields that `change` has changed.
  void ChangeFields(Long item_class, const std::function<void(Vector& fields)>& change) {
    const auto row = Call("QDSVGLItemClass.ItemClassInfo", "GetDetail", props, ByRef(item_class))
                         .As<Dictionary>();
    change(*row->Value("_PropDesc").As<Vector>());
    Call("QDSVGLItemClass.ItemClassUpdate", "Update", props, ByRef(item_class), row);
  }
  // The numbers of a list, with a blank behind each.
  static std::string Numbers(const Ref<Recordset>& list) {
    std::string numbers;
    for (; !list->Eof(); list->MoveNext()) {
      numbers += CStr(list->FieldValue(list->FieldPosition("FNumber"))) + " ";
    }
    return numbers;
  }
};

// ---- The tree ----

TEST_P(ItemTest, LevelFullNumbersAndDetailFlagFollowFromTheTree) {
  const Long head = New("10"), shop = New("1", head), till = New("a", shop);
  EXPECT_EQ(Tree(), "10 0 1 False 10 N10\n1 1 2 False 10.1 N10_N1\nA 2 3 True 10.1.A N10_N1_Na\n");
  Change(head, "FName", "Head");
  EXPECT_EQ(Tree(),
            "10 0 1 False 10 Head\n1 1 2 False 10.1 Head_N1\nA 2 3 True 10.1.A Head_N1_Na\n");
  Change(shop, "FParentID", Long{0});
  EXPECT_EQ(Tree(), "10 0 1 True 10 Head\n1 0 1 False 1 N1\nA 2 2 True 1.A N1_Na\n");
  Delete(till);
  EXPECT_EQ(Tree(), "10 0 1 True 10 Head\n1 0 1 True 1 N1\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, AHeadingIsNoDetailItem) {
  const Long item = New("10");
  Change(item, "FUNDetail", true);
  EXPECT_EQ(Tree(), "10 0 1 False 10 N10\n");
  Change(item, "FUNDetail", false);
  EXPECT_EQ(Tree(), "10 0 1 True 10 N10\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, AnItemStandsBelowOneOfItsClassThatIsInUseAndNotBelowItself) {
  const Long head = New("10"), shop = New("1", head);
  const Long other = CreateIn(kStaff, ItemRow("7"));
  EXPECT_EQ(SentenceOf([&] { Change(head, "FParentID", shop); }),
            "Item 10 (N10): it would stand below itself.");
  EXPECT_EQ(SentenceOf([&] { Change(head, "FParentID", head); }),
            "Item 10 (N10): it would stand below itself.");
  EXPECT_EQ(SentenceOf([&] { Change(shop, "FParentID", other); }),
            "Item 1 (N1): there is no item 3 of its class above it.");
  EXPECT_EQ(RefusalOf([&] { New("2", 77); }), "NoParent");
  EXPECT_EQ(SentenceOf([&] { Change(head, "FDeleted", true); }),
            "Item 10 (N10): it has items below it.");
  Change(shop, "FDeleted", true);
  Change(head, "FDeleted", true);
  EXPECT_EQ(SentenceOf([&] { New("2", head); }), "Item 2 (N2): item 10 (N10) above it is deleted.");
  EXPECT_EQ(RefusalOf([&] { Change(shop, "FDeleted", false); }), "NoParent");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, AnItemWithItemsBelowOrInLinesStays) {
  const Long head = New("10"), shop = New("1", head), till = New("2");
  EXPECT_EQ(SentenceOf([&] { Delete(head); }), "Item 10 (N10): it has items below it.");
  NameInLine(*this, till);
  EXPECT_EQ(SentenceOf([&] { Delete(till); }), "Item 2 (N2): vouchers use it.");
  EXPECT_EQ(SentenceOf([&] { New("3", till); }),
            "Item 3 (N3): item 2 (N2) above it has lines in vouchers.");
  Delete(shop);
  Delete(head);
  EXPECT_EQ(Tree(), "2 0 1 True 2 N2\n");
}

TEST_P(ItemTest, ATreeHasFiftyLevelsHoweverItGrows) {
  Long above = 0;
  for (int level = 1; level <= 50; ++level) above = New(std::to_string(level), above);
  EXPECT_EQ(RefusalOf([&] { New("51", above); }), "BadValue");
  const Long head = New("60");
  New("61", head);
  EXPECT_EQ(SentenceOf([&] { Change(head, "FParentID", Long{49}); }),
            "Item 60 (N60): items have at most 50 levels.");
}

TEST_P(ItemTest, ANumberIsOnceInItsClassAndAnItemStaysInIt) {
  const Long item = New("a");
  CreateIn(kStaff, ItemRow("A"));
  EXPECT_EQ(SentenceOf([&] { New("A"); }), "Item A (Na) has FNumber A already.");
  EXPECT_EQ(SentenceOf([&] { Change(item, "FItemClassID", kStaff); }),
            "Item A (Na): an item stays in its class.");
  const Ref<Dictionary> row = ItemRow("b");
  row->Put("FItemClassID", kStaff);
  EXPECT_EQ(RefusalOf([&] { CreateIn(kDepartments, row); }), "BadValue");
}

// ---- Fields ----

TEST_P(ItemTest, FieldsAreColumnsOfTheirOwnTypes) {
  const Long id = NewClassWith({Field("Text", 200, 1), Field("Note", 201), Field("Count", 3),
                                Field("Ratio", 5, 1), Field("Share", 131, 0, 28, 6),
                                Field("Price", 6, 1), Field("Day", 7), Field("Done", 11)});
  const Ref<Dictionary> row = ItemRow("1");
  row->Put("F1000_101", "o'hara");
  row->Put("F1000_102", std::string(5000, 'x'));
  row->Put("F1000_103", "-7");
  row->Put("F1000_104", 0.1);
  row->Put("F1000_105", Variant(Decimal::FromText("-1234567890123456789012.345678")));
  row->Put("F1000_106", Currency::FromUnits(922337203685477580));
  row->Put("F1000_107", DateTime::FromYmd(2024, 2, 29));
  row->Put("F1000_108", true);
  const Long item = CreateIn(id, row);
  const std::string expected = "F1000_101: String o'hara\nF1000_102: String " +
                               std::string(5000, 'x') +
                               "\nF1000_103: Long -7\nF1000_104: Double 0.1\n"
                               "F1000_105: Decimal -1234567890123456789012.345678\n"
                               "F1000_106: Currency 92233720368547.758\nF1000_107: Date 45351\n"
                               "F1000_108: Boolean True\n";
  const std::string shown = TypedText(Detail(item));
  EXPECT_EQ(shown.substr(shown.find("F1000_101")), expected);
  const std::string listed = TypedText(List(id)->Row());
  EXPECT_EQ(listed.substr(listed.find("F1000_101")), expected);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, ListsFilterAndSortByFieldsInTheirTypes) {
  const Long id = NewClassWith({Field("Text", 200, 1), Field("Count", 3, 1), Field("Share", 131),
                                Field("Day", 7, 1), Field("Done", 11), Field("Price", 6)});
  const auto add = [&](const char* number, const char* text, Long count, const char* share,
                       int year, bool done, std::int64_t units) {
    const Ref<Dictionary> row = ItemRow(number);
    row->Put("F1000_101", text);
    row->Put("F1000_102", count);
    row->Put("F1000_103", Variant(Decimal::FromText(share)));
    row->Put("F1000_104", DateTime::FromYmd(year, 1, 1));
    row->Put("F1000_105", done);
    row->Put("F1000_106", Currency::FromUnits(units));
    CreateIn(id, row);
  };
  add("1", "b", 10, "-1.55", 2024, true, 100000);
  add("2", "a", 9, "-1.5", 2023, false, 20000);
  add("3", "c", -1, "0.001", 2025, true, -5);
  add("4", "B", 9, "10", 2022, false, 0);
  add("5", "", 100, "9.99", 2021, true, 30000);
  CreateIn(id, ItemRow("6"));
  EXPECT_EQ(Numbers(List(id, "", "F1000_101, FNumber")), "5 6 4 2 1 3 ");
  EXPECT_EQ(Numbers(List(id, "", "F1000_102 DESC, FNumber")), "5 1 2 4 6 3 ");
  EXPECT_EQ(Numbers(List(id, "", "F1000_103")), "1 2 6 3 5 4 ");
  EXPECT_EQ(Numbers(List(id, "F1000_103 > -1.5 AND f1000_103 <= 9.990", "FNumber")), "3 5 6 ");
  EXPECT_EQ(Numbers(List(id, "F1000_104 >= #2023-01-01# AND F1000_105", "FNumber DESC")), "3 1 ");
  EXPECT_EQ(Numbers(List(id, "F1000_102 IN (9, 10) OR F1000_106 < 0", "FNumber")), "1 2 3 4 ");
  EXPECT_EQ(Numbers(List(id, "F1000_101 LIKE 'b%'")), "1 ");
  EXPECT_EQ(RefusalOf([&] { List(kDepartments, "F1000_101 = ''"); }), "BadFilter");
  EXPECT_EQ(RefusalOf([&] { List(id, "", "FText1"); }), "BadSort");
}

TEST_P(ItemTest, AListComesInPagesThatFollowEachOther) {
  const Long id = NewClassWith({Field("Text", 200, 1), Field("Count", 3, 1)});
  for (Long i = 1; i <= 30; ++i) {
    const Ref<Dictionary> row = ItemRow(std::to_string(100 + i));
    row->Put("F1000_101", i % 2 == 0 ? "even" : "odd");
    row->Put("F1000_102", i % 3);
    CreateIn(id, row);
  }
  const auto page = [&](Long first, Long count, const std::string& filter,
                        const std::string& sort) {
    return Numbers(List(id, filter, sort, Variant(Row({{"First", first}, {"Count", count}}))));
  };
  EXPECT_EQ(page(1, 3, "", ""), "101 102 103 ");
  EXPECT_EQ(page(30, 3, "", ""), "130 ");
  EXPECT_EQ(page(31, 3, "", ""), "");
  for (const std::string filter : {"", "F1000_101 = 'odd'", "F1000_102 < 2 OR FNumber = '102'"}) {
    for (const std::string sort : {"", "F1000_101", "F1000_102 DESC, F1000_101", "FName DESC"}) {
      std::string pages;
      for (Long first = 1; first <= 30; first += 7) pages += page(first, 7, filter, sort);
      EXPECT_EQ(pages, Numbers(List(id, filter, sort))) << filter << " by " << sort;
    }
  }
  EXPECT_EQ(RefusalOf([&] { List(id, "", "", Variant("x")); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { List(id, "", "", Variant(Row({{"Last", Long{1}}}))); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { List(id, "", "", Variant(Row({{"First", Long{0}}}))); }), "BadValue");
}

TEST_P(ItemTest, AValueIsHeldAgainstTheDescriptionOfItsField) {
  const Long id =
      NewClassWith({Field("Text", 200, 0, 3), Field("Count", 3, 0, 2), Field("Ratio", 5, 0, 4, 1),
                    Field("Share", 131, 0, 5, 2), Field("Price", 6, 0, 5, 2)});
  const auto refusal = [&](const char* column, const Variant& value) {
    const Ref<Dictionary> row = ItemRow("1");
    row->Put(std::string_view(column), value);
    return SentenceOf([&] { CreateIn(id, row); });
  };
  EXPECT_EQ(refusal("F1000_101", "abcd"),
            "Item 1 (N1): field \"Text\" (F1000_101) has more than 3 characters.");
  EXPECT_EQ(refusal("F1000_102", Long{100}),
            "Item 1 (N1): field \"Count\" (F1000_102) has more than 2 digits before the point.");
  EXPECT_EQ(refusal("F1000_102", "many"),
            "Item 1 (N1): field \"Count\" (F1000_102) is no value of its type.");
  EXPECT_EQ(refusal("F1000_103", 0.25),
            "Item 1 (N1): field \"Ratio\" (F1000_103) has more than 1 decimals.");
  EXPECT_EQ(refusal("F1000_104", Variant(Decimal::FromText("1000"))),
            "Item 1 (N1): field \"Share\" (F1000_104) has more than 3 digits before the point.");
  EXPECT_EQ(refusal("F1000_105", Currency::FromUnits(12345)),
            "Item 1 (N1): field \"Price\" (F1000_105) has more than 2 decimals.");
  EXPECT_EQ(refusal("F1000_106", "x"),
            "Item 1 (N1): there is no column \"F1000_106\" in its class.");
  EXPECT_EQ(refusal("FText1", "x"), "") << "a slot is the server's, and passed over";
  EXPECT_EQ(Detail(1)->Value("F1000_101").As<String>(), "");
}

TEST_P(ItemTest, DefaultsAreFilledInAndARequiredFieldIsGiven) {
  const Ref<Dictionary> size = Field("Size", 200), count = Field("Count", 3);
  size->Put("FDefaultValue", "large");
  count->Put("FSaveRule", "other; Required");
  const Long id = NewClassWith({size, count});
  EXPECT_EQ(SentenceOf([&] { CreateIn(id, ItemRow("1")); }),
            "Item 1 (N1): field \"Count\" (F1000_102) is missing.");
  const Ref<Dictionary> row = ItemRow("1");
  row->Put("F1000_102", Long{7});
  const Long item = CreateIn(id, row);
  EXPECT_EQ(Detail(item)->Value("F1000_101").As<String>(), "large");
  Change(item, "F1000_101", "");
  EXPECT_EQ(Detail(item)->Value("F1000_101").As<String>(), "") << "a default is for new items";
  EXPECT_EQ(RefusalOf([&] { Change(item, "F1000_102", Long{0}); }), "Required");
  const Ref<Dictionary> without = Detail(item);
  without->Remove("F1000_102");
  Update(item, without);
  EXPECT_EQ(Detail(item)->Value("F1000_102").As<Long>(), 7) << "a row without the key leaves it";
  EXPECT_EQ(RefusalOf([&] {
              ChangeFields(id, [](Vector& fields) {
                fields.Item(6).As<Dictionary>()->Put("FDefaultValue", "x");
              });
            }),
            "BadValue");
}

TEST_P(ItemTest, ValuesOutliveARenameAndStandInTheWayOfARemoval) {
  const Long id = NewClassWith({Field("Size", 200), Field("Count", 3)});
  const Ref<Dictionary> row = ItemRow("1");
  row->Put("F1000_101", "large");
  const Long item = CreateIn(id, row);
  ChangeFields(id,
               [](Vector& fields) { fields.Item(5).As<Dictionary>()->Put("FNewName", "Width"); });
  EXPECT_EQ(Detail(item)->Value("F1000_101").As<String>(), "large");
  const auto remove = [&] { ChangeFields(id, [](Vector& fields) { fields.Remove(5); }); };
  EXPECT_EQ(SentenceOf(remove),
            "Item class PROJECT (Projects): field \"Width\": items have values in it; empty it "
            "first.");
  EXPECT_EQ(SentenceOf([&] {
              ChangeFields(id, [](Vector& fields) {
                fields.Item(5).As<Dictionary>()->Put("FPrecision", Long{4});
              });
            }),
            "Item class PROJECT (Projects): field \"Width\": items have values that are larger.");
  EXPECT_EQ(RefusalOf([&] {
              ChangeFields(id, [](Vector& fields) {
                fields.Item(5).As<Dictionary>()->Put("FSearch", Long{1});
              });
            }),
            "InUse");
  Change(item, "F1000_101", "");
  remove();
  ChangeFields(id, [](Vector& fields) { fields.Append(Variant(Field("Colour", 200))); });
  EXPECT_EQ(Detail(item)->Value("F1000_103").As<String>(), "") << "a slot is free when it is empty";
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, AClassHasAsManySearchedTextsAsThereAreSlots) {
  auto fields = Make<Vector>();
  for (int i = 0; i < 13; ++i) {
    fields->Append(Variant(Field(("T" + std::to_string(i)).c_str(), 200, 1)));
  }
  EXPECT_EQ(SentenceOf([&] {
              Call("QDSVGLItemClass.ItemClassUpdate", "Create", props,
                   Row({{"FNumber", "P"}, {"FName", "P"}, {"_PropDesc", Variant(fields)}}));
            }),
            "Item class P (P): field \"T12\": a class has at most 12 fields of such a type that it "
            "is searched by.");
}

TEST_P(ItemTest, DefinedFieldsOfAnItemChangeWithoutTheRestOfIt) {
  const Long id = NewClassWith({Field("Size", 200), Field("Count", 3)});
  const Ref<Dictionary> row = ItemRow("1");
  row->Put("F1000_102", Long{7});
  const Long item = CreateIn(id, row);
  const auto update = [&](Long item_class, const Ref<Dictionary>& dict) {
    return Call(kUpdate, "UpdateDefineField", props, ByRef(item_class), dict).As<Boolean>();
  };
  EXPECT_TRUE(update(id, Row({{"FItemID", item}, {"F1000_101", "large"}})));
  EXPECT_EQ(Detail(item)->Value("F1000_101").As<String>(), "large");
  EXPECT_EQ(Detail(item)->Value("F1000_102").As<Long>(), 7);
  EXPECT_EQ(Detail(item)->Value("FName").As<String>(), "N1");
  EXPECT_FALSE(update(id, nullptr));
  EXPECT_FALSE(update(id, Make<Dictionary>()));
  EXPECT_EQ(RefusalOf([&] { update(id, Row({{"F1000_101", "x"}})); }), "Required");
  EXPECT_EQ(RefusalOf([&] { update(kStaff, Row({{"FItemID", item}})); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { update(id, Row({{"FItemID", item}, {"FName", "x"}})); }), "BadValue");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, TheTrailTellsFieldsByTheirColumnsInEveryClass) {
  const Long id = NewClassWith({Field("Size", 200), Field("Count", 3)});
  const Ref<Dictionary> row = ItemRow("1");
  row->Put("F1000_101", "large");
  const Long item = CreateIn(id, row);
  Change(item, "F1000_102", Long{7});
  EXPECT_EQ(Trail("FSubject = 'Item'"),
            "Item 1 (N1) Create {\"new\":{\"FVersion\":1,\"FItemClassID\":1000,"
            "\"FNumber\":\"1\",\"FName\":\"N1\",\"F1000_101\":\"large\"}}\n"
            "Item 1 (N1) Update {\"FVersion\":[1,2],\"F1000_102\":[0,7]}\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemTest, AnItemThatTheFilterLeavesOutIsReadOnlyWithoutTheCheck) {
  const Long item = New("1");
  const auto read = [&](bool no_check, const std::string& filter) {
    return Call(kInfo, "GetDetail", props, item, no_check, filter).As<Dictionary>() != nullptr;
  };
  EXPECT_TRUE(read(false, ""));
  EXPECT_TRUE(read(false, "FName = 'N1'"));
  EXPECT_FALSE(read(false, "FName = 'N2'"));
  EXPECT_TRUE(read(true, "FName = 'N2'"));
  EXPECT_EQ(RefusalOf([&] { read(false, "FName"); }), "BadFilter");
  const auto by_number = [&](const std::string& filter) {
    return Call(kInfo, "GetDetailByNumber", props, kDepartments, "1", filter).As<Dictionary>() !=
           nullptr;
  };
  EXPECT_TRUE(by_number(""));
  EXPECT_FALSE(by_number("FLevel = 2"));
}

// ---- The check of the books ----

TEST_P(ItemTest, TheCheckFindsWhatTheClassDoesNotDescribe) {
  const Long id = NewClassWith({Field("Text", 200, 0, 3), Field("Day", 7), Field("Done", 11)});
  CreateIn(id, ItemRow("1"));
  const auto problems = [&](const std::string& change) {
    Call(kBatch, "Begin", props);
    Books().Execute("UPDATE t_Item SET " + change);
    const std::string found = TextOf(CheckBooks(Books(), ""), {"FRule", "FProblem"});
    Books().RollBackBatch();
    return found.substr(0, found.find('\n'));
  };
  EXPECT_EQ(problems("FText13 = 'abcd'"),
            "ItemField Field \"Text\" (F1000_101) has more than 3 characters.");
  EXPECT_EQ(problems("FText14 = 'soon'"),
            "ItemField Field \"Day\" (F1000_102) is no value of its type.");
  EXPECT_EQ(problems("FWhole7 = 2"),
            "ItemField Field \"Done\" (F1000_103) is kept in another form.");
  EXPECT_EQ(problems("FReal1 = 2"),
            "ItemField It has a value of a field that its class does not have.");
  EXPECT_EQ(problems("FLevel = 2"),
            "ItemTree Its level, full number or full name does not go with the item above it.");
  EXPECT_EQ(problems("FDetail = 0"),
            "ItemTree Its detail flag does not tell whether it has items below it.");
}

// ---- The library's classes ----

TEST_P(ItemTest, TheLibrarysItemsAreThoseOfTheServer) {
  const Long id = NewClassWith({Field("Size", 200)});
  const auto items = Make<qdclgl::ItemSet>();
  items->ItemClassID(id);
  const auto item =
      Variant(items->CreateNew(id, 0, Variant("a"), Variant("First"))).As<qdclgl::Item>();
  item->Properties()->Item("F1000_101")->Value(Variant("large"));
  item->SaveChanges();
  items->Refresh();
  EXPECT_EQ(items->Count(), 1);
  EXPECT_EQ(CStr(items->GetNext()->Properties()->Item("F1000_101")->Value()), "large");
  EXPECT_EQ(items->ExistenceCheck(Missing, 0, Variant("A")), item->ItemID());
  EXPECT_EQ(items->ExistenceCheck(Variant(item->ItemID())), item->ItemID());
  EXPECT_EQ(items->ExistenceCheck(Variant(Long{999})), 0);
  item->DictDeifne(Row({{"FItemID", item->ItemID()}, {"F1000_101", "small"}}));
  EXPECT_TRUE(item->UpdateDefineField());
  EXPECT_EQ(CStr(item->Properties()->Item("F1000_101")->Value()), "small");
  items->Remove(item->ItemID());
  items->Refresh();
  EXPECT_EQ(items->Count(), 0);
}

QDCLGL_BOOKS_TEST(ItemTest);

}  // namespace
}  // namespace qdclgl::server::testing
