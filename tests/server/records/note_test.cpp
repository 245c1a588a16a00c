// Notes on the server: their data come back as they were sent, whatever they are.
#include "qdclgl/notes/note.h"

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/db/sha256.h"
#include "qdclgl/server/records/note_data.h"
#include "tests/server/books_state.h"
#include "tests/support/state_text.h"
#include "tests/support/test_platform.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::StateText;

constexpr std::string_view kInfo = "QDSVGLNote.NoteInfo";
constexpr std::string_view kUpdate = "QDSVGLNote.NoteUpdate";

std::string SizedText(const Variant& value) {
  const std::string text = StateText(value);
  return text.size() > 200 ? text.substr(0, 50) + std::to_string(text.size()) + Sha256Of(text)
                           : text;
}

class NoteServer : public RecordsTest {
 protected:
  NoteServer() { platform.process_id = MachinePlatform().ProcessId(); }

  Long Create(const Ref<Dictionary>& row) { return Call(kUpdate, "Create", props, row).As<Long>(); }
  Long CreateWith(std::string_view name, const Variant& data) {
    return Create(Row({{"FName", name}, {"FData", data}}));
  }
  void Save(Long id, const Ref<Dictionary>& row) { Call(kUpdate, "Update", props, ByRef(id), row); }
  void Delete(Long id) { Call(kUpdate, "Delete", props, ByRef(id)); }
  Ref<Dictionary> Detail(Long id) {
    return Call(kInfo, "GetDetail", props, ByRef(id)).As<Dictionary>();
  }
  Variant DataOf(Long id) { return Detail(id)->Value("FData"); }
  Ref<Recordset> List(String filter = "", String sort = "", Long options = 0) {
    return Call(kInfo, "GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
        .As<Recordset>();
  }
  std::string Trail(Long id) {
    return RecordsTest::Trail("FSubject = 'Note' AND FRecordID = " + std::to_string(id),
                              {"FNumber", "FRecord", "FAction", "FChanges"});
  }
  void At(int hour) { platform.now = DateTime::FromParts({2026, 1, 31, hour, 0, 0}); }

  TestPlatform platform;
};
QDCLGL_BOOKS_TEST(NoteServer);

// ---- Saving and reading ----

TEST_P(NoteServer, ANoteComesBackWithWhoMadeAndChangedItAndWhen) {
  AddUser("ann", "administrator");
  At(9);
  const Ref<Dictionary> sent = Row({{"FName", "Cheque"},
                                    {"FType", "CHQ"},
                                    {"FCreatorName", "somebody"},
                                    {"FModifyDate", DateTime(1)},
                                    {"FDataSize", Long{99}},
                                    {"FData", "layout"}});
  const Long id = Create(sent);
  EXPECT_EQ(sent->Value("FNoteID").As<Long>(), id);
  const std::string hash = Sha256Of("layout");
  const auto row = [&](int version, const std::string& modifier, const std::string& hour) {
    return "{FNoteID: " + std::to_string(id) + ", FVersion: " + std::to_string(version) +
           ", FName: \"Cheque\", FType: \"CHQ\", FCreatorName: \"administrator\", FCreateDate: "
           "#2026-01-31 09:00:00#, FModifierName: \"" +
           modifier + "\", FModifyDate: #2026-01-31 " + hour +
           ":00:00#, FDataKind: \"String\", FDataSize: 6, FDataHash: \"" + hash + "\"";
  };
  EXPECT_EQ(StateText(Variant(Detail(id))), row(1, "administrator", "09") + ", FData: \"layout\"}");
  EXPECT_EQ(StateText(Variant(List()->Row())), row(1, "administrator", "09") + "}");

  props = Login("ann");
  At(17);
  Save(id, Detail(id));
  EXPECT_EQ(StateText(Variant(Detail(id))), row(2, "ann", "17") + ", FData: \"layout\"}");
  Variant name("Cheque");
  EXPECT_EQ(StateText(Call(kInfo, "GetDetailByName", props, ByRef(name))),
            StateText(Variant(Detail(id))));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(NoteServer, DataComeBackAsTheKindThatTheyWere) {
  static constexpr std::uint8_t kBytes[] = {0, 1, 0xFE, 0xFF, 'a'};
  const Variant values[] = {
      "text",
      "",
      "套打项",
      std::string("with\0zero", 9),
      "half \xED\xA0\xBD a character",
      Bytes{std::span(kBytes).first(1)},
      Bytes{std::span(kBytes).first(2)},
      Bytes{kBytes},
      Bytes{kBytes, -3},
      Bytes{},
      Variant(),
      Null,
      true,
      false,
      Byte{255},
      Integer{-5},
      Long{2147483647},
      Single{0.1f},
      0.1,
      -1e308,
      Currency::FromUnits(-922337203685477580),
      DateTime(45000.123456789),
      DateTime(-0.5),
      CDec(Variant("79228162514264337593543950335")),
      CDec(Variant("-0.0000000000000000000000000001")),
      ErrorValue{-2146826246},
      Nothing,
      Variant(Row({{"FWidth", Long{210}}, {"FTitle", "A4"}})),
  };
  int number = 0;
  for (const Variant& value : values) {
    SCOPED_TRACE(StateText(value));
    const Long id = CreateWith("N" + std::to_string(++number), value);
    const Variant stored = DataOf(id);
    EXPECT_EQ(stored.Type(), value.Type());
    EXPECT_EQ(StateText(stored), StateText(value));
    if (value.Is(VariantType::kDouble)) {
      EXPECT_EQ(stored.Held<Double>(), value.Held<Double>());
    }
    if (value.Is(VariantType::kDate)) {
      EXPECT_EQ(stored.Held<DateTime>(), value.Held<DateTime>());
    }
    if (value.Is(VariantType::kByteArray)) {
      EXPECT_EQ(stored.BytesLowerBound(), value.BytesLowerBound());
    }
    Save(id, Detail(id));
    EXPECT_EQ(StateText(DataOf(id)), StateText(value));
  }
  EXPECT_EQ(Breaches(), "");
}

TEST_P(NoteServer, DataOfMegabytesComeBackWhole) {
  std::vector<std::uint8_t> bytes(3'500'001);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  std::string text;
  while (text.size() < 2'999'999) text += "套";  // ends of parts fall into characters
  int number = 0;
  for (const Variant& value : {Variant(Bytes{bytes}), Variant(text)}) {
    const Long id = CreateWith("N" + std::to_string(++number), value);
    const Variant stored = DataOf(id);
    if (value.IsString()) EXPECT_TRUE(stored.TextView() == text);
    else EXPECT_TRUE(std::ranges::equal(stored.BytesView(), bytes));
  }
  const std::string_view content(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  EXPECT_EQ(Books().QueryValue<std::string>("SELECT FDataHash FROM t_Note WHERE FName = 'N1'"),
            Sha256Of(content));
  EXPECT_LE(*Books().QueryValue<Long>("SELECT MAX(LENGTH(FText)) FROM t_NoteData"), 1'000'000);
  EXPECT_EQ(Breaches(), "");
}

TEST_P(NoteServer, DataHaveAtMostSixteenMegabytes) {
  const std::vector<std::uint8_t> largest(kLargestNoteData), larger(kLargestNoteData + 1);
  const Long id = CreateWith("Large", Variant(Bytes{largest}));
  EXPECT_EQ(DataOf(id).BytesView().size(), kLargestNoteData);
  const std::string before = SizedText(Variant(State()));
  for (const Variant& value :
       {Variant(Bytes{larger}), Variant(std::string(kLargestNoteData + 1, 'x'))}) {
    EXPECT_EQ(RefusalOf([&] { CreateWith("Larger", value); }), "TooLarge");
    EXPECT_EQ(SentenceOf([&] { CreateWith("Larger", value); }),
              "Note Larger: the data have 16777217 bytes; they may have 16777216.");
  }
  EXPECT_EQ(SizedText(Variant(State())), before);
}

TEST_P(NoteServer, DataThatNobodyCanKeepAreRefused) {
  EXPECT_EQ(RefusalOf([&] { CreateWith("N", Variant(Make<Recordset>())); }), "BadValue");
  auto holder = Make<Vector>();
  holder->Append(Variant(Make<Recordset>()));
  EXPECT_EQ(RefusalOf([&] { CreateWith("N", Variant(holder)); }), "BadValue");
  EXPECT_EQ(List()->RecordCount(), 0);
}

TEST_P(NoteServer, ARowWithoutDataLeavesThemAndOneOfEmptyTextClearsThem) {
  const Long id = CreateWith("Cheque", "layout");
  const Ref<Dictionary> listed = List()->Row();
  EXPECT_FALSE(listed->Contains("FData"));
  listed->Put("FType", "CHQ");
  Save(id, listed);
  EXPECT_EQ(StateText(DataOf(id)), "\"layout\"");
  EXPECT_EQ(Detail(id)->Value("FType").As<String>(), "CHQ");
  const Ref<Dictionary> row = Detail(id);
  row->Put("FData", "");
  Save(id, row);
  EXPECT_EQ(StateText(DataOf(id)), "\"\"");
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_NoteData"), 0);
  const Long bare = Create(Row({{"FName", "Bare"}}));
  EXPECT_FALSE(Detail(bare)->Contains("FData"));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(NoteServer, NamesAreThereAndUnique) {
  const Long id = CreateWith("Cheque", "x");
  EXPECT_EQ(RefusalOf([&] { CreateWith("", "x"); }), "Required");
  EXPECT_EQ(RefusalOf([&] { CreateWith(std::string(256, 'x'), "x"); }), "BadValue");
  EXPECT_EQ(SentenceOf([&] { CreateWith("Cheque", "y"); }),
            "Note Cheque has FName Cheque already.");
  EXPECT_EQ(RefusalOf([&] { CreateWith("Cheque", "y"); }), "NameTaken");
  const Long other = CreateWith("cheque", "y");
  const Ref<Dictionary> row = Detail(other);
  row->Put("FName", "Cheque");
  EXPECT_EQ(RefusalOf([&] { Save(other, row); }), "NameTaken");
  EXPECT_EQ(RefusalOf([&] { Create(Row({{"FName", "N"}, {"FLayout", "x"}})); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Save(id, Row({{"FName", "N"}})); }), "NoVersion");
  EXPECT_EQ(RefusalOf([&] { Save(id, Row({{"FName", "N"}, {"FVersion", Long{2}}})); }), "Changed");
  EXPECT_EQ(RefusalOf([&] { Save(99, Row({{"FName", "N"}, {"FVersion", Long{1}}})); }), "NotFound");
}

TEST_P(NoteServer, ListsAreFilteredAndSorted) {
  At(9);
  CreateWith("B", "1");
  At(10);
  CreateWith("A", "22");
  EXPECT_EQ(TextOf(List("", ""), {"FName", "FDataSize"}), "B 1\nA 2\n");
  EXPECT_EQ(TextOf(List("", "FName"), {"FName"}), "A\nB\n");
  EXPECT_EQ(TextOf(List("FCreateDate > #2026-01-31 09:30:00#", ""), {"FName"}), "A\n");
  EXPECT_EQ(RefusalOf([&] { List("FData = 'x'"); }), "BadFilter");
}

TEST_P(NoteServer, ExistenceIsAskedByIdOrName) {
  const Long id = CreateWith("Cheque", "x");
  const auto exists = [&](Argument argument) {
    return Call(kInfo, "ExistenceCheck", props, std::move(argument)).As<Long>();
  };
  EXPECT_EQ(exists(Variant(id)), id);
  EXPECT_EQ(exists(Variant(id + 1)), 0);
  EXPECT_EQ(exists(Named("Name", Variant("Cheque"))), id);
  EXPECT_EQ(exists(Named("Name", Variant("other"))), 0);
}

// ---- The trail, the check, failures ----

TEST_P(NoteServer, TheTrailTellsSizeAndHashOfTheDataAndNotTheData) {
  At(9);
  const std::string large(500'000, 'x');
  const Long id = CreateWith("Cheque", large);
  const Ref<Dictionary> row = Detail(id);
  row->Put("FData", "y");
  At(10);
  Save(id, row);
  Delete(id);
  const std::string trail = Trail(id);
  EXPECT_LT(trail.size(), 2'000u);
  const auto expect = [&](const std::string& part) {
    EXPECT_NE(trail.find(part), std::string::npos) << part << "\nin\n" << trail;
  };
  expect("1 Cheque Create "
         "{\"new\":{\"FVersion\":1,\"FName\":\"Cheque\",\"FCreatorName\":\"administrator\","
         "\"FCreateDate\":"
         "\"2026-01-31 09:00:00\",\"FModifierName\":\"administrator\",\"FModifyDate\":\"2026-01-31 "
         "09:00:00\",\"FDataKind\":\"String\",\"FDataSize\":500000,\"FDataHash\":\"" +
         Sha256Of(large) + "\"}}");
  expect(
      "2 Cheque Update {\"FVersion\":[1,2],\"FModifyDate\":[\"2026-01-31 09:00:00\",\"2026-01-31 "
      "10:00:00\"],\"FDataSize\":[500000,1],\"FDataHash\":[\"" +
      Sha256Of(large) + "\",\"" + Sha256Of("y") + "\"]}");
  expect("3 Cheque Delete {\"old\":{");
  EXPECT_EQ(Detail(id), nullptr);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_NoteData"), 0);
}

TEST_P(NoteServer, TheCheckFindsDataThatAreNotWhatTheNoteTells) {
  const Long id = CreateWith("Cheque", "layout");
  const std::string found = "NoteData Note " + std::to_string(id) + " Cheque\n";
  EXPECT_EQ(Breaches(), "");
  Break("UPDATE t_NoteData SET FText = 'layouT'");
  EXPECT_EQ(Breaches(), found);
  Break("UPDATE t_NoteData SET FText = 'layout', FEncoded = 1");
  EXPECT_EQ(Breaches(), found);
  EXPECT_EQ(RefusalOf([&] { Detail(id); }), "BadValue");
  Break("UPDATE t_NoteData SET FEncoded = 0");
  EXPECT_EQ(Breaches(), "");
  Break("DELETE FROM t_NoteData");
  EXPECT_EQ(Breaches(), found);
  Break("UPDATE t_Note SET FDataKind = 'Long', FDataSize = 0, FDataHash = '" + Sha256Of("") + "'");
  EXPECT_NE(Breaches().find(found), std::string::npos) << "no number is empty";
  EXPECT_EQ(RefusalOf([&] { Detail(id); }), "BadValue");
}

TEST_P(NoteServer, AFailureOfAnyStatementLeavesBooksAndRowAsTheyWere) {
  const Long id = CreateWith("Cheque", std::string(1'500'000, 'x'));
  const Ref<Dictionary> created =
      Row({{"FName", "New"}, {"FData", Variant(std::string(1'500'000, 'y'))}});
  const auto text = [](const Ref<Dictionary>& row) {
    return SizedText(row->Value("FData")) + StateText(row->Value("FVersion"));
  };
  FailEachStatement([&] { Create(created); }, [&] { return text(created); });
  const Ref<Dictionary> updated = Detail(id);
  updated->Put("FData", "small");
  FailEachStatement([&] { Save(id, updated); }, [&] { return text(updated); });
  FailEachStatement([&] { Delete(id); });
  EXPECT_EQ(Breaches(), "");
}

// ---- By the classes ----

TEST_P(NoteServer, TheClassesSaveListFindAndRemoveNotes) {
  auto notes = Make<NoteSet>();
  const Ref<Note> note = notes->CreateNew("Cheque");
  note->NoteType("CHQ");
  static constexpr std::uint8_t kBytes[] = {0, 255};
  note->Data(Bytes{kBytes});
  At(9);
  note->SaveChanges();
  EXPECT_NE(note->NoteID(), 0);
  EXPECT_EQ(note->CreatorName(), "administrator");
  EXPECT_EQ(note->CreateDate(), platform.now);
  EXPECT_EQ(StateText(note->Data()), "bytes(00ff)");
  EXPECT_EQ(StateText(notes->Item("Cheque")->Data()), "bytes(00ff)");
  EXPECT_EQ(notes->Item(note->NoteID())->NoteType(), "CHQ");
  EXPECT_EQ(notes->RecordSet()->RecordCount(), 1);

  // Of the list, without its data, until it is read.
  const Ref<Note> listed = notes->GetCurrent();
  EXPECT_EQ(StateText(listed->Data()), "\"\"");
  listed->NoteType("C");
  listed->SaveChanges();
  EXPECT_EQ(StateText(listed->Data()), "bytes(00ff)");
  notes->Remove("Cheque");
  EXPECT_EQ(notes->ExistenceCheck(Missing, "Cheque"), 0);
}

}  // namespace
}  // namespace qdclgl::server::testing
