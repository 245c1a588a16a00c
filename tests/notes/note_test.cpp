#include "qdclgl/notes/note.h"

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
using testing::Opaque;
using testing::RecordingServer;
using testing::Row;
using testing::SetCaseOf;
using testing::SetSuite;
using testing::StateText;
using testing::TypedAndByName;
using testing::ViewOn;
using testing::WritableColumn;
using enum testing::Zero;

constexpr const char* kInfo = "QDSVGLNote.NoteInfo";
constexpr const char* kUpdate = "QDSVGLNote.NoteUpdate";

#define COLUMN(Type, Name, key) \
  WritableColumn<Type>(#Name, key, &Note::Name, &Note::Name, kIsStored)

std::vector<Column<Note>> Columns() {
  return {
      COLUMN(String, CreatorName, "FCreatorName"),
      COLUMN(String, ModifierName, "FModifierName"),
      COLUMN(String, Name, "FName"),
      COLUMN(String, NoteType, "FType"),
  };
}

#undef COLUMN

Ref<Note> NoteOf(const Ref<Dictionary>& row) { return ViewOn<Note>(row); }

std::string State(const Note& note) {
  return "id " + std::to_string(note.NoteID()) + " " +
         testing::State(static_cast<const RowView&>(note));
}

class NoteTest : public ::testing::Test {
 protected:
  RecordingServer server;
};

class NoteSetTest : public ::testing::Test {
 protected:
  RecordingServer server;
  Ref<NoteSet> notes = Make<NoteSet>();
};

// ---- What notes share with all entities and sets ----

EntityCase NoteCase() {
  return EntityCaseOf(&Note::NoteID, &Note::Name,
                      {.info_component = kInfo,
                       .update_component = kUpdate,
                       .id_member = "NoteID",
                       .id_key = "FNoteID",
                       .text_member = "Name",
                       .text_key = "FName",
                       .stamps = false});
}

INSTANTIATE_TEST_SUITE_P(Note, EntitySuite, TypedAndByName(NoteCase()), NameOfUse());
INSTANTIATE_TEST_SUITE_P(
    NoteSet, SetSuite,
    TypedAndByName(SetCaseOf<NoteSet>(
        NoteCase(), {.get_detail_by_text = "GetDetailByName(\"props\", ref Variant <key>)",
                     .exists_by_text = "ExistenceCheck(\"props\", Name:=ref Variant <key>)",
                     .remove = "Delete(\"props\", ref <id>)",
                     .record_set_fetches = true,
                     .item_is_default = false})),
    NameOfUse());

// ---- The members ----

TEST_F(NoteTest, HasItsMembersInInterfaceOrder) {
  EXPECT_EQ(testing::MemberNames<Note>(),
            "CancelChanges Construct Refresh SaveChanges CreateDate CreatorName Data ModifierName "
            "ModifyDate Name NoteID NoteType Properties");
  EXPECT_EQ(testing::MemberNames<NoteSet>(),
            "ListOptions Filter Sort CreateNew ExistenceCheck GetCurrent GetNext NewEnum Refresh "
            "Remove Count Item RecordSet");
}

TEST_F(NoteTest, DescribesItsMembersInTheWordsOfTheInterface) {
  std::string helps;
  for (const ClassMember& member : Note::Table().members()) {
    helps += std::string(member.row.name) + " " + std::string(member.row.help) + "\n";
  }
  EXPECT_EQ(helps, "CancelChanges 取消上次保存以来所做的全部修改\n"
                   "Construct 根据字典的内容构造对象\n"
                   "Refresh 刷新对象\n"
                   "SaveChanges 保存对此对象的修改\n"
                   "CreateDate 创建日期\n"
                   "CreatorName 创建者姓名\n"
                   "Data 套打项对应的格式数据\n"
                   "ModifierName 修改者姓名\n"
                   "ModifyDate 最近一次修改日期\n"
                   "Name 套打项名称\n"
                   "NoteID 套打项ID\n"
                   "NoteType 单据类型\n"
                   "Properties 属性集合\n");
}

TEST_F(NoteTest, ReadsDefaultsWhereTheRowHasNoValue) { testing::ExpectDefaults(Columns()); }

TEST_F(NoteTest, ReadsEachMemberFromItsKeyAlone) { testing::ExpectReads(Columns()); }

TEST_F(NoteTest, WritesEachMemberUnderItsKey) { testing::ExpectWrites(Columns()); }

TEST_F(NoteTest, StoresEmptyTextSinceNoMemberHasAClearValue) {
  testing::ExpectWritesOfZero(Columns());
}

TEST_F(NoteTest, RefusesALetOfAnotherType) { testing::ExpectRefusedLets(Columns()); }

TEST_F(NoteTest, OneThatWasNeverConstructedRaisesObjectNotSet) {
  testing::ExpectUnusable(Columns());
  const auto note = Make<Note>();
  EXPECT_EQ(ErrorOf([&] { note->CreateDate(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { note->ModifyDate(DateTime(1)); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { note->Data(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { note->Data("x"); }), "error 91");
}

TEST_F(NoteTest, TheNameStandsForTheNoteAndTheIdCannotBeLet) {
  const auto note = NoteOf(Row({{"FNoteID", Long{5}}, {"FName", "Cheque"}}));
  EXPECT_EQ(CStr(Variant(note)), "Cheque");
  EXPECT_EQ(ErrorOf([&] { note->Let("NoteID", 6); }),
            "error 438 (Note): The member NoteID can't be used this way.");
}

// ---- Dates ----

// One of the two dates.
struct DateMember {
  const char* name;
  const char* key;
  DateTime (Note::*get)() const;
  void (Note::*let)(DateTime);
};
constexpr DateMember kDates[] = {
    {"CreateDate", "FCreateDate", &Note::CreateDate, &Note::CreateDate},
    {"ModifyDate", "FModifyDate", &Note::ModifyDate, &Note::ModifyDate},
};

TEST_F(NoteTest, ADateReadsTheDayAndTheTimeOfTheCallWhereThereIsNone) {
  for (const DateMember& date : kDates) {
    for (const auto& row : {Row({}), Row({{date.key, Null}}), Row({{date.key, ""}})}) {
      const auto note = NoteOf(row);
      server.platform().now = DateTime::FromParts({2026, 2, 28, 23, 59, 59});
      EXPECT_EQ(StateText(note->Get(date.name)), "#2026-02-28 23:59:59#");
      server.platform().now = DateTime::FromParts({2026, 3, 1, 0, 0, 1});
      EXPECT_EQ(((*note).*date.get)(), DateTime::FromParts({2026, 3, 1, 0, 0, 1}));
      EXPECT_EQ(State(*note), "id 0 " + StateText(Variant(row))) << "and stores nothing";
    }
  }
}

TEST_F(NoteTest, ADateReadsWhatIsStoredAndKeepsItsTime) {
  const DateTime moment = DateTime::FromParts({2024, 1, 31, 13, 5, 0});
  for (const DateMember& date : kDates) {
    const auto note = NoteOf(Row({}));
    ((*note).*date.let)(moment);
    EXPECT_EQ(((*note).*date.get)(), moment);
    EXPECT_EQ(State(*note),
              "id 0 {" + std::string(date.key) + ": #2024-01-31 13:05:00#} modified flagged");
    note->Let(date.name, "2024-02-01");
    EXPECT_EQ(StateText(note->Get(date.name)), "#2024-02-01#");
    const std::string before = State(*note);
    EXPECT_EQ(ErrorOf([&] { note->Let(date.name, "some day"); }), "error 13");
    EXPECT_EQ(State(*note), before);
    EXPECT_EQ(((*NoteOf(Row({{date.key, Long{0}}}))).*date.get)(), DateTime(0)) << "0 is a date";
    EXPECT_EQ(ErrorOf([&] { ((*NoteOf(Row({{date.key, "never"}}))).*date.get)(); }), "error 13");
  }
}

TEST_F(NoteTest, ASaveWritesNoDatesAndNoNames) {
  const auto note = NoteOf(Nothing);
  note->Name("Cheque");
  server.FailAt(2, Error(70));
  EXPECT_EQ(ErrorOf([&] { note->SaveChanges(); }), "error 70");
  EXPECT_EQ(State(*note), "id 0 {FName: \"Cheque\"} modified flagged");
}

// ---- Data ----

TEST_F(NoteTest, DataReadsEmptyTextWhereThereAreNone) {
  for (const auto& row : {Row({}), Row({{"FData", Null}}), Row({{"FData", ""}}),
                          Row({{"FData", Variant()}}), Row({{"FData", Variant(Bytes{})}})}) {
    EXPECT_EQ(StateText(NoteOf(row)->Data()), "\"\"");
    EXPECT_EQ(StateText(NoteOf(row)->Get("Data")), "\"\"");
  }
}

TEST_F(NoteTest, DataKeepAnyVariantAsItComes) {
  static constexpr std::uint8_t kByte[] = {0x2A}, kBytes[] = {0, 1, 0xFE, 0xFF};
  const Variant values[] = {
      "text",
      Bytes{kByte},
      Bytes{kBytes},
      Bytes{kBytes, 1},
      true,
      false,
      Byte{5},
      Integer{5},
      Long{0},
      Single{1.5},
      2.25,
      Currency(12.5),
      DateTime(45000.5),
      CDec(Variant("0.1")),
      ErrorValue{-2146826246},
      Variant(Row({{"FWidth", Long{210}}})),
      Variant(Make<Opaque>()),
      Nothing,
  };
  for (const Variant& value : values) {
    SCOPED_TRACE(StateText(value));
    const auto typed = NoteOf(Row({}));
    typed->Data(value);
    EXPECT_EQ(StateText(typed->Data()), StateText(value));
    EXPECT_EQ(State(*typed), "id 0 {FData: " + StateText(value) + "} modified flagged");
    const auto late = NoteOf(Row({}));
    late->Let("Data", value);
    EXPECT_EQ(StateText(late->Get("Data")), StateText(value));
    EXPECT_EQ(State(*late), State(*typed));
  }
}

TEST_F(NoteTest, DataOfMegabytesAreHeldAndNotCopied) {
  const std::vector<std::uint8_t> bytes(16'000'000, 0x5A);
  const std::string text(8'000'000, 'x');
  for (const Variant& value : {Variant(Bytes{bytes}), Variant(text)}) {
    const auto note = NoteOf(Row({{"FNoteID", Long{5}}}));
    note->Data(value);
    server.AnswerWith(kUpdate, "Update", [&](std::span<Argument> arguments) {
      const Variant sent = arguments[2].Value().As<Dictionary>()->Value("FData");
      if (value.IsString()) EXPECT_EQ(sent.TextView().data(), value.TextView().data());
      else EXPECT_EQ(sent.BytesView().data(), value.BytesView().data());
      return Variant();
    });
    server.Answer(kInfo, "GetDetail", Variant(Row({{"FNoteID", Long{5}}, {"FData", value}})));
    note->SaveChanges();
    const Variant read = note->Data();
    if (value.IsString()) EXPECT_EQ(read.TextView().data(), value.TextView().data());
    else EXPECT_EQ(read.BytesView().data(), value.BytesView().data());
  }
}

// ---- The set ----

TEST_F(NoteSetTest, CreateNewNamesTheNoteWhenItIsGivenAName) {
  EXPECT_EQ(State(*notes->CreateNew("Cheque")), "id 0 {FName: \"Cheque\"} modified flagged");
  EXPECT_EQ(State(*notes->CreateNew(12)), "id 0 {FName: \"12\"} modified flagged");
  EXPECT_EQ(ErrorOf([&] { notes->CreateNew(Null); }), "error 13");
  EXPECT_EQ(State(*notes->CreateNew()), "id 0 {}");
  EXPECT_EQ(server.TakeLog(), "");
}

}  // namespace
}  // namespace qdclgl
