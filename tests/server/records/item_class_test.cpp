#include "qdclgl/masterdata/item_class.h"

#include "qdclgl/frame/containers/vector.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLItemClass.ItemClassInfo";
constexpr const char* kUpdate = "QDSVGLItemClass.ItemClassUpdate";

void UseInAccount(RecordBooks& books, Long item_class) {
  auto items = Make<Vector>();
  items->Append(Variant(Row({{"FItemClassID", item_class}})));
  books.Call("QDSVGLAccount.AccountUpdate", "Create", books.props,
             Row({{"FNumber", "A" + std::to_string(item_class)},
                  {"FName", "Cash"},
                  {"_Items", Variant(items)}}));
}

void UseInVoucher(RecordBooks& books, Long item_class) {
  const std::string name = "V" + std::to_string(item_class);
  const Long account = books.AddAccount(name);
  auto details = Make<Vector>();
  details->Append(Variant(Row({{"FItemClassID", item_class}, {"FItemNumber", "01"}})));
  auto lines = Make<Vector>();
  for (const Long side : {1, 0}) {
    lines->Append(Variant(Row({{"FAccountID", account},
                               {"FDC", side},
                               {"FAmount", Currency(7)},
                               {"FCurrencyID", Long{1}},
                               {"_Details", Variant(details)}})));
  }
  books.Call("QDSVGLVoucher.VoucherUpdate", "Create", books.props,
             Row({{"FDate", DateTime::FromYmd(2024, 1, 31)},
                  {"FGroupID", books.AddGroup(name)},
                  {"_Entries", Variant(lines)}}));
}

const RecordKind kItemClasses = {
    .noun = "Item class",
    .subject = "ItemClass",
    .info = kInfo,
    .update = kUpdate,
    .table = "t_ItemClass",
    .id = "FItemClassID",
    .columns = {{"FNumber", "PROJECT", "ORDER"},
                {"FName", "Projects", "Orders"},
                {"FName_Cht", "p", "o"},
                {"FName_en", "Project", "Order"},
                {"FType", Integer{4}, Integer{3}},
                {"FImport", Long{0}, Long{0}},
                {"FRemark", "r", "s"},
                {"FLastPropID", Integer{100}, Integer{100}}},
    .absent = {{"FType", Integer{1}}},
    .spelled = {{"FNumber", "pRoject"}},
    .longest = {{"FNumber", 255}, {"FName", 255}},
    .coded = {"FNumber"},
    .kept_by_server = {"FImport", "FLastPropID"},
    .lists = {"_PropDesc"},
    .required = {"FNumber", "FName"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FItemClassID",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "ItemClassID",
    .text_argument = "Number",
    .further_methods = {{kInfo, "GetShownF7Fields", "reader"}},
    .uses = {UseInAccount, UseInVoucher},
};
QDCLGL_RECORD_KIND(ItemClass, kItemClasses);

class ItemClassTest : public RecordCalls {
 protected:
  ItemClassTest() : RecordCalls("QDSVGLItemClass.ItemClass") {}

  Ref<Vector> Fields(Long id) { return Detail(id)->Value("_PropDesc").As<Vector>(); }
  static std::string AllOf(const Vector& fields) {
    std::string text;
    for (Long i = 1; i <= fields.Count(); ++i) {
      text += TextOf(*fields.Item(i).As<Dictionary>()) + "\n";
    }
    return text;
  }
  // "101 Size 200 20,0 202 20 F1000_101", a line for each field that is not the system's.
  std::string OwnFields(Long id) {
    std::string text;
    const Ref<Vector> fields = Fields(id);
    for (Long i = 1; i <= fields->Count(); ++i) {
      const Ref<Dictionary> field = fields->Item(i).As<Dictionary>();
      if (field->Value("FPropID").As<Integer>() < 101) continue;
      const auto cell = [&](const char* key) { return CStr(field->Value(key)); };
      text += cell("FPropID") + " " + cell("FName") + " " + cell("FDataType") + " " +
              cell("FPrecision") + "," + cell("FScale") + " " + cell("FActualType") + " " +
              cell("FActualSize") + " " + cell("FSQLColumnName") + "\n";
    }
    return text;
  }
  Long ClassWith(std::initializer_list<Ref<Dictionary>> fields) {
    auto list = Make<Vector>();
    for (const auto& field : fields) list->Append(Variant(field));
    return Create(
        Row({{"FNumber", "PROJECT"}, {"FName", "Projects"}, {"_PropDesc", Variant(list)}}));
  }
  static Ref<Dictionary> NewField(const char* name, Long type = 200, Long precision = 0,
                                  Integer scale = 0) {
    return Row({{"FPropID", Integer{32767}},
                {"FNewName", name},
                {"FDataType", type},
                {"FPrecision", precision},
                {"FScale", scale}});
  }
  // Saves a class with fields that `change` has changed.
  void ChangeFields(Long id, const std::function<void(Vector& fields)>& change) {
    const Ref<Dictionary> row = Detail(id);
    change(*row->Value("_PropDesc").As<Vector>());
    Update(id, row);
  }
};

TEST_P(ItemClassTest, AllBooksHaveFiveClassesAndThoseOfAUsersOwnBeginBehindThem) {
  EXPECT_EQ(TextOf(Call(kInfo, "GetList", props).As<Recordset>(),
                   {"FItemClassID", "FVersion", "FNumber", "FName", "FName_Cht", "FName_en",
                    "FType", "FLastPropID"}),
            "1 1 DEP 部门 部門 Department 0 100\n2 1 STAFF 职员 職員 Staff 0 100\n"
            "3 1 CUSTOMER 客户 客戶 Customer 0 100\n4 1 SUPPLIER 供应商 供應商 Supplier 0 100\n"
            "5 1 GOODS 商品 商品 Goods 0 100\n");
  EXPECT_EQ(Create(Row({{"FNumber", "a"}, {"FName", "A"}})), 1000);
  EXPECT_EQ(Create(Row({{"FNumber", "b"}, {"FName", "B"}})), 1001);
  Delete(1001);
  EXPECT_EQ(Create(Row({{"FNumber", "c"}, {"FName", "C"}})), 1002) << "an id is given once";
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemClassTest, ThereAreClassesOfAUsersOwnUpToTheId1999) {
  const auto make = [&](const char* number) {
    return Create(Row({{"FNumber", number}, {"FName", number}}));
  };
  make("a");
  // The last but one has been there.
  if (Books().IsSQLite()) {
    Break("UPDATE sqlite_sequence SET seq = 1998 WHERE name = 't_ItemClass'");
  } else {
    Books().QueryValue<Long>(
        "SELECT setval(pg_get_serial_sequence('t_ItemClass', 'fitemclassid'), 1998)");
  }
  EXPECT_EQ(make("b"), 1999);
  const auto last = Make<ItemClassSet>()->Item(Long{1999});
  EXPECT_TRUE(last->IsCustom());
  const std::string before = State();
  EXPECT_EQ(SentenceOf([&] { make("c"); }),
            "Item class C (c): the ids of classes of one's own, up to 1999, are used up.");
  EXPECT_EQ(RefusalOf([&] { make("c"); }), "TooLarge");
  EXPECT_EQ(State(), before);
  last->Name("still");
  last->SaveChanges();
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemClassTest, AClassThatAllBooksHaveMayChangeAndStays) {
  Change(1, "FName", "Units");
  EXPECT_EQ(Detail(1)->Value("FName").As<String>(), "Units");
  for (Long id = 1; id <= 5; ++id) {
    EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse");
  }
  EXPECT_EQ(SentenceOf([&] { Delete(1); }), "Item class DEP (Units): all books have it.");
}

TEST_P(ItemClassTest, EveryClassHasTheFieldsOfTheSystem) {
  const std::string fields = AllOf(*Fields(1));
  EXPECT_EQ(Fields(1)->Count(), 4);
  EXPECT_EQ(TextOf(*Fields(1)->Item(1).As<Dictionary>()),
            "FPropID=1;FName=代码;FDataType=200;FPrecision=40;FScale=0;FActualType=202;"
            "FActualSize=40;FSQLColumnName=FNumber;FBehavior=;FComCall=;FDefaultValue=;"
            "FDisplayField=;FFilterField=;FIsDisplay=True;FIsInput=True;"
            "FIsShownList=True;FPageName=1.基本资料;FSaveRule=;FSearch=0;FSrcField=;"
            "FSrcTable=;FViewMask=0;");
  const Long id = Create(Row({{"FNumber", "a"}, {"FName", "A"}}));
  EXPECT_EQ(AllOf(*Fields(id)), fields);
  ChangeFields(id, [](Vector& own) { own.Append(Variant(NewField("Size"))); });
  EXPECT_EQ(OwnFields(Create(Row({{"FNumber", "b"}, {"FName", "B"}}))), "");
}

TEST_P(ItemClassTest, ANewFieldGetsAnIdAColumnAndItsTypeAndSize) {
  const Long id =
      ClassWith({NewField("Size", 200, 20), NewField("Text"), NewField("Note", 201),
                 NewField("Count", 3), NewField("Ratio", 5, 15, 4), NewField("Share", 131, 18, 6),
                 NewField("Price", 6), NewField("Day", 7), NewField("Done", 11)});
  EXPECT_EQ(OwnFields(id), "101 Size 200 20,0 202 20 F1000_101\n"
                           "102 Text 200 0,0 202 255 F1000_102\n"
                           "103 Note 201 0,0 203 1000000 F1000_103\n"
                           "104 Count 3 0,0 3 4 F1000_104\n"
                           "105 Ratio 5 15,4 5 8 F1000_105\n"
                           "106 Share 131 18,6 131 19 F1000_106\n"
                           "107 Price 6 0,0 6 8 F1000_107\n"
                           "108 Day 7 0,0 7 8 F1000_108\n"
                           "109 Done 11 0,0 11 2 F1000_109\n");
  EXPECT_EQ(Detail(id)->Value("FLastPropID").As<Long>(), 109);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(ItemClassTest, ARenamedFieldKeepsItsIdAndItsColumn) {
  const Long id = ClassWith({NewField("Size"), NewField("Weight")});
  ChangeFields(id, [](Vector& fields) {
    fields.Item(5).As<Dictionary>()->Put("FNewName", "Weight");
    fields.Item(6).As<Dictionary>()->Put("FNewName", "Size");
  });
  EXPECT_EQ(OwnFields(id), "101 Weight 200 0,0 202 255 F1000_101\n"
                           "102 Size 200 0,0 202 255 F1000_102\n");
}

TEST_P(ItemClassTest, ARemovedFieldIsGoneAndItsIdAndColumnAreNotGivenAgain) {
  const Long id = ClassWith({NewField("Size"), NewField("Weight")});
  ChangeFields(id, [](Vector& fields) { fields.Remove(6); });
  ChangeFields(id, [](Vector& fields) { fields.Append(Variant(NewField("Weight"))); });
  EXPECT_EQ(OwnFields(id), "101 Size 200 0,0 202 255 F1000_101\n"
                           "103 Weight 200 0,0 202 255 F1000_103\n");
}

TEST_P(ItemClassTest, ASaveWithoutFieldsLeavesThem) {
  const Long id = ClassWith({NewField("Size")});
  const Ref<Dictionary> row = Detail(id);
  row->Remove("_PropDesc");
  row->Put("FName", "Other");
  Update(id, row);
  EXPECT_EQ(OwnFields(id), "101 Size 200 0,0 202 255 F1000_101\n");
}

TEST_P(ItemClassTest, WhatAClientWritesOfAFieldIsStored) {
  const Long id = ClassWith({NewField("Size")});
  ChangeFields(id, [](Vector& fields) {
    const Ref<Dictionary> field = fields.Item(5).As<Dictionary>();
    field->Put("ComCall", "call");
    field->Put("FBehavior", Null);
    field->Put("FIsInput", false);
    field->Put("FPageName", "2");
    field->Put("FSQLColumnName", "FNumber");  // the server's
    field->Put("FActualSize", Long{1});
    const Ref<Dictionary> number = fields.Item(1).As<Dictionary>();
    number->Put("FIsShownList", false);
    number->Put("FPageName", "3");
  });
  EXPECT_EQ(TextOf(*Fields(id)->Item(5).As<Dictionary>()),
            "FPropID=101;FName=Size;FDataType=200;FPrecision=0;FScale=0;FActualType=202;"
            "FActualSize=255;FSQLColumnName=F1000_101;FBehavior=;FComCall=call;"
            "FDefaultValue=;FDisplayField=;FFilterField=;FIsDisplay=True;FIsInput=False;"
            "FIsShownList=False;FPageName=2;FSaveRule=;FSearch=0;FSrcField=;FSrcTable=;"
            "FViewMask=0;");
  EXPECT_EQ(CStr(Fields(id)->Item(1).As<Dictionary>()->Value("FPageName")), "3");
  EXPECT_EQ(TextOf(Call(kInfo, "GetShownF7Fields", props, id).As<Recordset>(),
                   {"FPropID", "FSQLColumnName"}),
            "2 FName\n");
  EXPECT_EQ(Call(kInfo, "GetShownF7Fields", props, Long{0}).As<Recordset>()->RecordCount(), 2)
      << "what a class of one's own begins with";
  EXPECT_EQ(Call(kInfo, "GetShownF7Fields", props, kNoRecord).As<Recordset>()->RecordCount(), 0);
}

TEST_P(ItemClassTest, WhatAFieldCannotBeIsRefusedWithItsNameAndChangesNothing) {
  const Long id = ClassWith({NewField("Size", 131, 10, 2)});
  const std::string before = State();
  const auto refusal = [&](const std::function<void(Vector & fields)>& change) {
    const std::string sentence = SentenceOf([&] { ChangeFields(id, change); });
    EXPECT_EQ(State(), before) << sentence;
    return RefusalOf([&] { ChangeFields(id, change); }) + ": " +
           sentence.substr(sentence.find(": ") + 2);
  };
  const auto added = [&](const Ref<Dictionary>& field) {
    return refusal([&](Vector& fields) { fields.Append(Variant(field)); });
  };
  const auto put = [&](Long position, std::string_view key, const Variant& value) {
    return refusal(
        [&](Vector& fields) { fields.Item(position).As<Dictionary>()->Put(key, value); });
  };
  EXPECT_EQ(added(NewField("")), "Required: a field has no name.");
  EXPECT_EQ(added(NewField(std::string(256, 'a').c_str())),
            "BadValue: the name of a field is longer than 255 characters.");
  EXPECT_EQ(added(NewField("size")), "NameTaken: two fields have the name \"size\".");
  EXPECT_EQ(added(NewField("代码")), "NameTaken: two fields have the name \"代码\".");
  EXPECT_EQ(added(NewField("A", 9)), "BadValue: field \"A\": a database holds no data type 9.");
  EXPECT_EQ(added(NewField("A", 200, 256)), "BadValue: field \"A\": FPrecision is from 0 to 255.");
  EXPECT_EQ(added(NewField("A", 200, -1)), "BadValue: field \"A\": FPrecision is from 0 to 255.");
  EXPECT_EQ(added(NewField("A", 131, 4, 5)), "BadValue: field \"A\": FScale is from 0 to 4.");
  EXPECT_EQ(added(NewField("A", 6, 0, 5)), "BadValue: field \"A\": FScale is from 0 to 4.");
  EXPECT_EQ(added(NewField("A", 3, 0, 1)), "BadValue: field \"A\": FScale is from 0 to 0.");
  EXPECT_EQ(added(Row({{"FPropID", Integer{102}}, {"FNewName", "A"}})),
            "BadValue: there is no field 102.");
  EXPECT_EQ(added(Row({{"FPropID", Integer{101}},
                       {"FName", "Size"},
                       {"FNewName", "A"},
                       {"FDataType", Long{131}}})),
            "BadValue: field 101 stands twice in _PropDesc.");
  EXPECT_EQ(added(Row({{"FColour", "red"}})),
            "BadValue: there is no column \"FColour\" in a field.");
  EXPECT_EQ(put(5, "FDataType", Long{5}),
            "BadValue: field \"Size\": its data type stays once it is saved.");
  EXPECT_EQ(put(5, "FNewName", ""), "Required: a field has no name.");
  EXPECT_EQ(put(1, "FNewName", "Nr"),
            "BadValue: field \"代码\": FName of a field of the system stays.");
  EXPECT_EQ(put(1, "FPrecision", Long{20}),
            "BadValue: field \"代码\": FPrecision of a field of the system stays.");
  EXPECT_EQ(refusal([](Vector& fields) { fields.Remove(3); }),
            "InUse: field \"上级\" is the system's and can't be removed.");
  EXPECT_EQ(refusal([](Vector& fields) { fields.Item(1, Variant("text")); }),
            "BadValue: an element of _PropDesc is no Dictionary.");
  EXPECT_EQ(RefusalOf([&] { Change(id, "_PropDesc", "text"); }), "BadValue");
  EXPECT_EQ(State(), before);
}

TEST_P(ItemClassTest, TheTrailTellsOfTheFields) {
  const Long id = ClassWith({NewField("Size")});
  ChangeFields(id,
               [](Vector& fields) { fields.Item(5).As<Dictionary>()->Put("FNewName", "Length"); });
  const std::string trail =
      TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props,
                  "FSubject = 'ItemClass' AND FRecordID = " + std::to_string(id))
                 .As<Recordset>(),
             {"FAction", "FChanges"});
  EXPECT_NE(trail.find("\"FName\":\"Size\""), std::string::npos) << trail;
  EXPECT_NE(trail.find("Length"), std::string::npos) << trail;
  EXPECT_EQ(Breaches(), "");
  Break("UPDATE t_ItemClassField SET FName = 'X' WHERE FItemClassID = " + std::to_string(id) +
        " AND FPropID = 101");
  EXPECT_EQ(Breaches(), "Record ItemClass 1000 PROJECT (Projects)\n");
}

TEST_P(ItemClassTest, AStatementThatFailsLeavesTheClassAndItsFields) {
  const Long id = ClassWith({NewField("Size")});
  FailEachStatement([&] {
    ChangeFields(id, [](Vector& fields) {
      fields.Append(Variant(NewField("Weight")));
      fields.Item(5).As<Dictionary>()->Put("FNewName", "Length");
    });
  });
  EXPECT_EQ(OwnFields(id), "101 Length 200 0,0 202 255 F1000_101\n"
                           "102 Weight 200 0,0 202 255 F1000_102\n");
}

TEST_P(ItemClassTest, AnObjectOfTheLibraryAddsRenamesAndRemovesFields) {
  const auto classes = Make<ItemClassSet>();
  const Ref<qdclgl::ItemClass> fresh = classes->CreateNew("project", "Projects");
  fresh->CustomProperties()->Add("Size", 5, "", 15, 2);
  fresh->CustomProperties()->Add("Weight");
  EXPECT_EQ(fresh->SaveChanges(), 0);
  EXPECT_EQ(fresh->ItemClassID(), 1000);
  EXPECT_TRUE(fresh->IsCustom());

  const Ref<qdclgl::ItemClass> loaded = classes->Item("PROJECT");
  const Ref<CustomPropertySet> fields = loaded->CustomProperties();
  EXPECT_EQ(fields->Count(), 6);
  EXPECT_EQ(fields->Item("Size")->SQLColumnName(), "F1000_101");
  fields->Item("Size")->Name("Length");
  fields->Item("Length")->ComCall("call");
  fields->Item("代码")->IsShownF7(false);
  fields->Remove("Weight");
  fields->Sort(0, true);
  EXPECT_EQ(loaded->SaveChanges(), 0);
  EXPECT_EQ(OwnFields(1000), "101 Length 5 15,2 5 8 F1000_101\n");
  EXPECT_EQ(loaded->CustomProperties()->Item("Length")->ComCall(), "call");
  EXPECT_EQ(loaded->GetF7ShownFields()->RecordCount(), 1);

  EXPECT_EQ(fresh->CustomProperties()->Count(), 6);
  fresh->Remark("late");
  EXPECT_EQ(RefusalOf([&] { fresh->SaveChanges(); }), "Changed");
  classes->Remove("project");
  EXPECT_EQ(Breaches(), "");
}

QDCLGL_BOOKS_TEST(ItemClassTest);

}  // namespace
}  // namespace qdclgl::server::testing
