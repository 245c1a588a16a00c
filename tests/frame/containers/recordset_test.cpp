#include "qdclgl/frame/containers/recordset.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::StateText;

constexpr const char* kClosed = "error 3704 (Recordset): The recordset is closed.";
constexpr const char* kNoRow = "error 3021 (Recordset): There is no current row.";

Ref<Recordset> Groups() {
  auto list = Recordset::Create({"FGroupID", "FName"});
  list->AddRow({Long{1}, "Receipts"});
  list->AddRow({Long{2}, "Payments"});
  list->AddRow({Long{3}, Null});
  return list;
}

std::string Text(const Ref<Recordset>& list) { return StateText(Variant(list)); }

std::string Current(const Ref<Recordset>& list) {
  return list->Eof() ? "end" : StateText(Variant(list->Row()));
}

// ---- Opening and closing ----

TEST(Recordset, IsBornClosedWithoutFields) {
  const auto list = Make<Recordset>();
  EXPECT_EQ(list->State(), 0);
  EXPECT_EQ(list->FieldCount(), 0);
  EXPECT_EQ(Text(list), "recordset(closed)");
}

TEST(Recordset, TakesFieldsWhileItIsClosed) {
  const auto list = Make<Recordset>();
  list->Fields()->Append("FID");
  list->Fields()->Append("FName", Long{200}, Long{80}, Long{4});
  list->Open();
  EXPECT_EQ(list->State(), 1);
  EXPECT_EQ(Text(list), "recordset{FID, FName}");
  EXPECT_EQ(ErrorOf([&] { list->AppendField("FMore"); }),
            "error 3001 (Recordset): Fields are appended before the recordset is opened.");
}

TEST(Recordset, RefusesASecondFieldOfOneName) {
  const auto list = Make<Recordset>();
  list->AppendField("FName");
  EXPECT_EQ(ErrorOf([&] { list->AppendField("fname"); }),
            "error 3001 (Recordset): There is a field fname already.");
  EXPECT_EQ(list->FieldCount(), 1);
}

TEST(Recordset, EveryUseOfRowsNeedsAnOpenOne) {
  const auto list = Make<Recordset>();
  list->AppendField("FID");
  const std::function<void()> uses[] = {
      [&] { list->AddNew(); },
      [&] { list->Clone(); },
      [&] { list->Find("FID = 1"); },
      [&] { list->MoveFirst(); },
      [&] { list->MoveNext(); },
      [&] { list->Update(); },
      [&] { list->Bof(); },
      [&] { list->Eof(); },
      [&] { list->RecordCount(); },
      [&] { list->Row(); },
      [&] { list->FieldValue(0); },
      [&] { list->SetFieldValue(0, Long{1}); },
      [&] { list->AddRow({Long{1}}); },
      [&] { list->Fields()->Item("FID")->Value(); },
  };
  for (const auto& use : uses) EXPECT_EQ(ErrorOf(use), kClosed);
}

TEST(Recordset, CloseGivesUpTheRowsOfThisCursorOnly) {
  const auto list = Groups();
  const auto clone = list->Clone();
  list->Close();
  EXPECT_EQ(list->State(), 0);
  EXPECT_EQ(ErrorOf([&] { list->Eof(); }), kClosed);
  EXPECT_EQ(Text(clone),
            "recordset{FGroupID, FName | 1, \"Receipts\" | 2, \"Payments\" | 3, Null}");
  list->AppendField("FOther");
  list->Open();
  EXPECT_EQ(Text(list), "recordset{FOther}");
}

// ---- The cursor ----

TEST(Recordset, BeginsOnTheFirstRow) {
  const auto list = Groups();
  EXPECT_FALSE(list->Bof());
  EXPECT_FALSE(list->Eof());
  EXPECT_EQ(list->RecordCount(), 3);
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Receipts\"}");
}

TEST(Recordset, MovesToTheNextRowAndBehindTheLast) {
  const auto list = Groups();
  list->MoveNext();
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  list->MoveNext();
  list->MoveNext();
  EXPECT_TRUE(list->Eof());
  EXPECT_FALSE(list->Bof());
  EXPECT_EQ(ErrorOf([&] { list->MoveNext(); }), kNoRow);
  EXPECT_TRUE(list->Eof());
  list->MoveFirst();
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Receipts\"}");
}

TEST(Recordset, WithoutRowsStandsBeforeTheFirstAndBehindTheLast) {
  const auto list = Recordset::Create({"FID"});
  EXPECT_TRUE(list->Bof());
  EXPECT_TRUE(list->Eof());
  EXPECT_EQ(list->RecordCount(), 0);
  EXPECT_EQ(ErrorOf([&] { list->MoveFirst(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->MoveNext(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->Row(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->Update(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->Find("FID = 1"); }), kNoRow);
}

TEST(Recordset, BehindTheLastRowThereIsNoCurrentOne) {
  const auto list = Groups();
  list->Find("FGroupID = 9");
  const std::function<void()> uses[] = {
      [&] { list->Row(); },
      [&] { list->FieldValue(0); },
      [&] { list->SetFieldValue(0, Long{1}); },
      [&] { list->Update(); },
      [&] { list->Find("FGroupID = 1"); },
      [&] { RowToDictionary(list); },
      [&] { list->Fields()->Item("FName")->Value(); },
  };
  for (const auto& use : uses) EXPECT_EQ(ErrorOf(use), kNoRow);
}

TEST(Recordset, ClonesShareTheRowsAndHaveACursorEach) {
  const auto list = Groups();
  list->MoveNext();
  const auto clone = list->Clone(1);
  EXPECT_EQ(Current(clone), "{FGroupID: 1, FName: \"Receipts\"}");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  clone->SetFieldValue(1, "Income");
  list->AddRow({Long{4}, "Transfers"});
  EXPECT_EQ(Text(list), Text(clone));
  list->MoveFirst();
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Income\"}");
  EXPECT_EQ(clone->RecordCount(), 4);
}

// ---- Writing ----

TEST(Recordset, AddNewBeginsARowOfNullsAndMakesItTheCurrentOne) {
  const auto list = Groups();
  list->AddNew();
  EXPECT_EQ(Current(list), "{FGroupID: Null, FName: Null}");
  list->Fields()->Item("FGroupID")->Value(Long{4});
  list->Update();
  EXPECT_EQ(Current(list), "{FGroupID: 4, FName: Null}");
  EXPECT_EQ(list->RecordCount(), 4);
  list->MoveNext();
  EXPECT_TRUE(list->Eof());
}

TEST(Recordset, AddRowLeavesTheCursorAndNeedsAValueForEachColumn) {
  const auto list = Groups();
  list->AddRow({Long{4}, "x"});
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Receipts\"}");
  EXPECT_EQ(ErrorOf([&] { list->AddRow({Long{4}}); }),
            "error 3001 (Recordset): A row of 2 columns was given 1 values.");
  EXPECT_EQ(list->RecordCount(), 4);
}

TEST(Recordset, ARowIsACopyThatKeepsItsValues) {
  const auto list = Groups();
  const auto row = list->Row();
  list->SetFieldValue(1, "Income");
  row->Value("FGroupID", Long{9});
  row->Remove("FName");
  EXPECT_EQ(StateText(Variant(row)), "{FGroupID: 9}");
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Income\"}");
}

// ---- Fields ----

TEST(Recordset, FieldsAreFoundByNameAndPosition) {
  const auto list = Groups();
  const auto fields = list->Fields();
  EXPECT_EQ(fields->Count(), 2);
  EXPECT_EQ(fields->Item("fname")->Name(), "FName");
  EXPECT_EQ(fields->Item(Long{0})->Name(), "FGroupID");
  EXPECT_EQ(StateText(fields->Item(Long{1})->Value()), "\"Receipts\"");
  EXPECT_EQ(list->FieldPosition("FNAME"), 1);
  EXPECT_EQ(list->FieldName(1), "FName");
}

TEST(Recordset, AnUnknownFieldRaisesError) {
  const auto list = Groups();
  EXPECT_EQ(ErrorOf([&] { list->FieldPosition("FNo"); }), "error 3265 (Recordset): No field FNo.");
  EXPECT_EQ(ErrorOf([&] { list->Fields()->Item("FNo"); }), "error 3265 (Recordset): No field FNo.");
  for (const Long position : {-1, 2, 2147483647}) {
    const std::string error = "error 3265 (Recordset): No field " + std::to_string(position) + ".";
    EXPECT_EQ(ErrorOf([&] { list->Fields()->Item(position); }), error);
    EXPECT_EQ(ErrorOf([&] { list->FieldName(position); }), error);
    EXPECT_EQ(ErrorOf([&] { list->FieldValue(position); }), error);
    EXPECT_EQ(ErrorOf([&] { list->SetFieldValue(position, Long{1}); }), error);
  }
}

TEST(Recordset, AFieldFollowsTheCursor) {
  const auto list = Groups();
  const auto name = list->Fields()->Item("FName");
  list->MoveNext();
  EXPECT_EQ(StateText(name->Value()), "\"Payments\"");
  EXPECT_EQ(CStr(Variant(name)), "Payments");
}

TEST(Recordset, AFieldKeepsItsRecordsetAlive) {
  auto list = Groups();
  const auto name = list->Fields()->Item("FName");
  list = nullptr;
  EXPECT_EQ(StateText(name->Value()), "\"Receipts\"");
}

TEST(Recordset, EnumeratesItsFields) {
  const auto list = Groups();
  const auto enumerator = list->Fields()->NewEnum();
  std::string names;
  for (const Field& field : EnumeratorRange<Field>(enumerator)) names += field.Name() + ";";
  EXPECT_EQ(names, "FGroupID;FName;");
  enumerator->Reset();
  EXPECT_TRUE(enumerator->Skip(1));
  Variant field;
  EXPECT_TRUE(enumerator->Next(field));
  EXPECT_EQ(field.As<Field>()->Name(), "FName");
  EXPECT_FALSE(enumerator->Skip(1));
  EXPECT_FALSE(enumerator->Next(field));
}

// ---- Find ----

TEST(Recordset, FindMovesToTheFirstRowThatMeetsTheCriterion) {
  const auto list = Groups();
  list->Find("FName = 'Payments'");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  list->MoveFirst();
  list->Find("fgroupid >= 3");
  EXPECT_EQ(Current(list), "{FGroupID: 3, FName: Null}");
  list->MoveFirst();
  list->Find("FName like 'Pay*'");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
}

TEST(Recordset, FindBeginsWithTheCurrentRow) {
  const auto list = Groups();
  list->MoveNext();
  list->Find("FGroupID > 1");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  list->Find("FGroupID = 1");
  EXPECT_EQ(Current(list), "end");
}

TEST(Recordset, FindPassesOverNulls) {
  const auto list = Groups();
  list->Find("FName <> 'Receipts'");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  list->MoveNext();
  list->Find("FName <> 'Receipts'");
  EXPECT_EQ(Current(list), "end");
}

TEST(Recordset, ARefusedFindLeavesTheCursor) {
  const auto list = Groups();
  list->MoveNext();
  EXPECT_EQ(ErrorOf([&] { list->Find("FName = 'O'Brien'"); }),
            "error 3001 (Recordset): The criterion \"FName = 'O'Brien'\" needs its end at position "
            "12.");
  EXPECT_EQ(ErrorOf([&] { list->Find("FNo = 5"); }), "error 3265 (Recordset): No field FNo.");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
}

// ---- RowToDictionary ----

TEST(RowToDictionary, GivesTheCurrentRowAndLeavesTheCursor) {
  const auto list = Groups();
  list->MoveNext();
  list->MoveNext();
  const auto row = RowToDictionary(list);
  EXPECT_EQ(StateText(Variant(row)), "{FGroupID: 3, FName: Null}");
  EXPECT_FALSE(row->Modified());
  EXPECT_EQ(Current(list), "{FGroupID: 3, FName: Null}");
}

TEST(RowToDictionary, OfARowWithoutFieldsIsEmpty) {
  const auto list = Recordset::Create({});
  list->AddRow({});
  const auto row = RowToDictionary(list);
  EXPECT_EQ(StateText(Variant(row)), "{}");
  row->Value("FID", Long{1});
  EXPECT_EQ(StateText(Variant(row)), "{FID: 1}");
  EXPECT_EQ(list->FieldCount(), 0);
}

TEST(RowToDictionary, SharesObjectsAndCountsThem) {
  const auto object = Make<Opaque>();
  {
    const auto list = Recordset::Create({"F"});
    list->AddRow({object});
    EXPECT_EQ(object->holders(), 2);
    const auto row = RowToDictionary(list);
    EXPECT_EQ(object->holders(), 3);
  }
  EXPECT_EQ(object->holders(), 1);
}

// ---- Late-bound calls ----

TEST(RecordsetLateBound, EveryMemberAnswersToItsName) {
  const auto list = Make<Recordset>();
  const auto fields = list->Get("Fields").As<Object>();
  fields->Call("Append", "FID", Long{3});
  fields->Call("Append", Named("DefinedSize", Long{80}), Named("Name", "FName"));
  list->Call("Open");
  EXPECT_EQ(StateText(list->Get("State")), "1");
  list->Call("AddNew");
  fields->Get("Item", "FID").As<Object>()->Let("Value", Long{1});
  fields->Get("Item", Long{1}).As<Object>()->Let("Value", "Receipts");
  list->Call("Update");
  EXPECT_EQ(Text(list), "recordset{FID, FName | 1, \"Receipts\"}");
  EXPECT_EQ(StateText(list->Get("RecordCount")), "1");
  EXPECT_EQ(StateText(list->Get("EOF")), "False");
  EXPECT_EQ(StateText(list->Get("BOF")), "False");
  list->Call("MoveNext");
  EXPECT_EQ(StateText(list->Get("Eof")), "True");
  list->Call("MoveFirst");
  list->Call("Find", "FID = 2");
  EXPECT_EQ(StateText(list->Get("Eof")), "True");
  EXPECT_EQ(StateText(list->Call("Clone")), "recordset{FID, FName | 1, \"Receipts\"}");
  EXPECT_EQ(StateText(fields->Get("Count")), "2");
  EXPECT_EQ(StateText(fields->Get("Item", "FID").As<Object>()->Get("Name")), "\"FID\"");
  EXPECT_EQ(StateText(fields->Call("NewEnum")), "<IEnumVARIANT>");
  list->Call("Close");
  EXPECT_EQ(StateText(list->Get("State")), "0");
}

}  // namespace
}  // namespace qdclgl
