#include "qdclgl/masterdata/sub_mes.h"

#include "qdclgl/masterdata/sub_mes_type.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";

Long AddType(RecordBooks& books, const std::string& name) {
  return books.Call(kUpdate, "CreateSubMesType", books.props, name, "HOST", "10.0.0.1").As<Long>();
}
Long AddEntry(RecordBooks& books, Long type, const std::string& number) {
  return books
      .Call(kUpdate, "CreateSubMes", books.props, type, Row({{"FNumber", number}, {"FName", "x"}}))
      .As<Long>();
}

const RecordKind kEntries = {
    .noun = "Sub-message",
    .subject = "SubMes",
    .info = "QDSVGLItem.SubMesInfo",
    .update = "QDSVGLItem.SubMesUpdate",
    .table = "t_SubMes",
    .id = "FItemID",
    .columns = {{"FTypeID", Long{1}, Long{1}},
                {"FNumber", "red", "blue"},
                {"FName", "Red", "Blue"},
                {"FFullName", "Deep red", "Deep blue"},
                {"FSpec", "s", "t"},
                {"FAgioRatio", 1.5, 2.5},
                {"FCoefficient", 3.5, -4.5},
                {"FDay", Long{30}, Long{-60}},
                {"UUID", "u", "v"}},
    .longest = {{"FNumber", 255}},
    .required = {"FNumber"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FTypeID",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "SubMesID",
    .text_argument = "Number",
    .prepare = [](RecordBooks& books) { AddType(books, "Colours"); },
    .references = {{.column = "FTypeID",
                    .noun = "sub-message type",
                    .id = "FTypeID",
                    .update = "QDSVGLItem.SubMesTypeUpdate",
                    .make =
                        [](RecordBooks& books) {
                          static int number = 0;
                          return AddType(books, "R" + std::to_string(++number));
                        },
                    .is_required = true}},
};
QDCLGL_RECORD_KIND(SubMes, kEntries);

const RecordKind kTypes = {
    .noun = "Sub-message type",
    .subject = "SubMesType",
    .info = "QDSVGLItem.SubMesTypeInfo",
    .update = "QDSVGLItem.SubMesTypeUpdate",
    .table = "t_SubMesType",
    .id = "FTypeID",
    .columns = {{"FName", "Colours", "Sizes"}},
    .longest = {{"FName", 255}},
    .required = {"FName"},
    .unique = {{"FName", "NameTaken"}},
    .order = "FTypeID",
    .text_key = "FName",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "SubMesTypeID",
    .text_argument = "Name",
    .uses = {[](RecordBooks& books, Long type) { AddEntry(books, type, "1"); }},
};
QDCLGL_RECORD_KIND(SubMesType, kTypes);

class SubMesTest : public RecordsTest {
 protected:
  Ref<Dictionary> Entry(Long id, Long type = 0) {
    return Call(kInfo, "GetSubMesDetail", props, ByRef(id), type).As<Dictionary>();
  }
  std::string Numbers(const Variant& type, const std::string& filter = "",
                      const std::string& sort = "") {
    return TextOf(Call(kInfo, "GetSubMesList", props, type, Long{0}, filter, sort).As<Recordset>(),
                  {"FTypeID", "FNumber"});
  }

  const Long colours = AddType(*this, "Colours");
  const Long sizes = AddType(*this, "Sizes");
};

TEST_P(SubMesTest, ANumberIsOnceInItsType) {
  const Long red = AddEntry(*this, colours, "1");
  AddEntry(*this, sizes, "1");
  EXPECT_EQ(SentenceOf([&] { AddEntry(*this, colours, "1"); }),
            "Sub-message 1 (x) has FNumber 1 already.");
  AddEntry(*this, colours, "2");
  const Ref<Dictionary> row = Entry(red);
  row->Put("FNumber", "2");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "UpdateSubMes", props, red, row, colours); }),
            "NumberTaken");
}

TEST_P(SubMesTest, AnEntryIsMadeInTheTypeOfTheCallAndStaysThere) {
  const Long red = AddEntry(*this, colours, "red");
  EXPECT_EQ(Entry(red)->Value("FTypeID").As<Long>(), colours);
  const auto row = Row({{"FTypeID", sizes}, {"FNumber", "x"}});
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "CreateSubMes", props, colours, row); }), "BadValue");
  const Ref<Dictionary> moved = Entry(red);
  moved->Put("FTypeID", sizes);
  EXPECT_EQ(SentenceOf([&] { Call(kUpdate, "UpdateSubMes", props, red, moved, colours); }),
            "Sub-message red (x): an entry stays with its type.");
  EXPECT_EQ(RefusalOf([&] { AddEntry(*this, 77, "x"); }), "BadReference");
}

TEST_P(SubMesTest, AnEntryOfAnotherTypeIsNotThere) {
  const Long red = AddEntry(*this, colours, "red");
  EXPECT_EQ(Entry(red, sizes), nullptr);
  EXPECT_NE(Entry(red, colours), nullptr);
  EXPECT_NE(Entry(red, 0), nullptr) << "no type is any";
  const std::string before = State();
  const Ref<Dictionary> row = Entry(red);
  row->Put("FName", "Red");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "UpdateSubMes", props, red, row, sizes); }), "NotFound");
  EXPECT_EQ(
      SentenceOf([&] { Call(kUpdate, "DeleteSubMes", props, red, sizes, "HOST", "10.0.0.1"); }),
      "Sub-message with id " + std::to_string(red) + " of type " + std::to_string(sizes) +
          ": there is none.");
  EXPECT_EQ(State(), before);
  Call(kUpdate, "UpdateSubMes", props, red, row, colours);
  EXPECT_EQ(Entry(red)->Value("FName").As<String>(), "Red");
  Call(kUpdate, "DeleteSubMes", props, red, Long{0}, "HOST", "10.0.0.1");
  EXPECT_EQ(Entry(red), nullptr);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(SubMesTest, EntriesAreFoundByNumberInTheirTypeAndListedByTypes) {
  const Long red = AddEntry(*this, colours, "b");
  AddEntry(*this, colours, "a");
  const Long large = AddEntry(*this, sizes, "b");
  const auto by_number = [&](Long type, const std::string& number) -> Long {
    const auto row =
        Call(kInfo, "GetSubMesDetailByNumber", props, ByRef(type), number).As<Dictionary>();
    return row ? row->Value("FItemID").As<Long>() : 0;
  };
  EXPECT_EQ(by_number(colours, "b"), red);
  EXPECT_EQ(by_number(sizes, "b"), large);
  EXPECT_EQ(by_number(sizes, "a"), 0);
  EXPECT_EQ(Numbers(colours), "1 a\n1 b\n");
  EXPECT_EQ(Numbers("2"), "2 b\n");
  EXPECT_EQ(Numbers(Long{0}), "1 a\n1 b\n2 b\n");
  EXPECT_EQ(Numbers(Long{0}, "FNumber = 'b' OR FTypeID = 1", "FNumber DESC"), "1 b\n2 b\n1 a\n");
  EXPECT_EQ(RefusalOf([&] { Numbers(colours, "x"); }), "BadFilter");
  EXPECT_EQ(RefusalOf([&] { Numbers(colours, "", "x"); }), "BadSort");
}

TEST_P(SubMesTest, TypesAreFoundByIdAndNameRenamedAndKeptWhileTheyHaveEntries) {
  const auto detail = [&](const Variant& key) {
    return Call(kInfo, "GetSubMesTypeDetail", props, key).As<Dictionary>();
  };
  EXPECT_EQ(TextOf(*detail(sizes)), "FTypeID=2;FVersion=1;FName=Sizes;");
  EXPECT_EQ(detail("Sizes")->Value("FTypeID").As<Long>(), sizes);
  EXPECT_EQ(SentenceOf([&] { detail("x"); }), "Sub-message type \"x\": there is none.");
  const auto rename = [&](Long type, const std::string& name) {
    Call(kUpdate, "RenameSubMesType", props, type, name, "HOST", "10.0.0.1");
  };
  rename(sizes, "Widths");
  rename(sizes, "Lengths");
  EXPECT_EQ(TextOf(*detail(sizes)), "FTypeID=2;FVersion=3;FName=Lengths;");
  EXPECT_EQ(RefusalOf([&] { rename(sizes, "Colours"); }), "NameTaken");
  EXPECT_EQ(RefusalOf([&] { rename(0, "x"); }), "NotFound");
  const auto list = [&](const std::string& filter) {
    return TextOf(Call(kInfo, "GetSubMesTypeList", props, Missing, filter).As<Recordset>(),
                  {"FName"});
  };
  EXPECT_EQ(list(""), "Colours\nLengths\n");
  EXPECT_EQ(list("FName LIKE 'L%'"), "Lengths\n");
  const auto remove = [&](Long type) {
    Call(kUpdate, "DeleteSubMesType", props, type, "HOST", "10.0.0.1");
  };
  const Long red = AddEntry(*this, colours, "red");
  EXPECT_EQ(SentenceOf([&] { remove(colours); }),
            "Sub-message type Colours: sub-message red (x) refers to it.");
  EXPECT_EQ(RefusalOf([&] { remove(0); }), "NotFound");
  Call(kUpdate, "DeleteSubMes", props, red, colours, "HOST", "10.0.0.1");
  remove(colours);
  EXPECT_EQ(list(""), "Lengths\n");
  EXPECT_EQ(Breaches(), "");
}

// ---- By the library's classes ----

TEST_P(SubMesTest, TheClassesWorkOnTheBooks) {
  const auto types = Make<SubMesTypeSet>();
  const auto type = types->CreateNew();
  type->Name("Shapes");
  type->SaveChanges();
  const auto entries = Make<SubMesSet>();
  entries->TypeID(type->TypeID());
  const auto round = Variant(entries->CreateNew(type->TypeID(), "r")).As<SubMes>();
  round->Name("Round");
  round->sDay(30);
  round->SaveChanges();
  round->AgioRatio(2.5);
  round->SaveChanges();
  EXPECT_EQ(entries->Count(), 1);
  EXPECT_EQ(entries->ExistenceCheck(type->TypeID(), "r"), round->ItemID());
  const auto found = Variant(entries->Item(0, 0, "r")).As<SubMes>();
  EXPECT_EQ(CStr(Variant(found->AgioRatio())) + " " + CStr(Variant(found->sDay())), "2.5 30");
  EXPECT_EQ(types->ExistenceCheck(Missing, "Shapes"), type->TypeID());
  EXPECT_EQ(types->Item("Shapes")->TypeID(), type->TypeID());
  EXPECT_EQ(RefusalOf([&] { types->Remove(type->TypeID()); }), "InUse");
  entries->Remove(round->ItemID(), type->TypeID());
  entries->Refresh();
  EXPECT_EQ(entries->Count(), 0);
  types->Remove(type->TypeID());
  EXPECT_EQ(types->ExistenceCheck(type->TypeID()), 0);
  EXPECT_EQ(Breaches(), "");
}

QDCLGL_BOOKS_TEST(SubMesTest);

}  // namespace
}  // namespace qdclgl::server::testing
