#include "qdclgl/frame/containers/recordset.h"

#include <gtest/gtest.h>

#include <functional>

#include "qdclgl/frame/containers/vector.h"
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

Ref<Vector> List(std::initializer_list<Variant> elements) {
  auto list = Make<Vector>();
  for (const Variant& element : elements) list->Append(element);
  return list;
}

// What GetRows has read, by the indexes it is told to have: `1;2;|"a";"b";|`.
std::string Flat(const Ref<Vector>& columns) {
  std::string text;
  for (Long i = 0; i < columns->Count(); ++i) {
    const auto column = columns->Item(i).As<Vector>();
    for (Long j = 0; j < column->Count(); ++j) text += StateText(column->Item(j)) + ";";
    text += "|";
  }
  return text;
}

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
      [&] { list->AddNew("FID", Long{1}); },
      [&] { list->Clone(); },
      [&] { list->Delete(); },
      [&] { list->Find("FID = 1"); },
      [&] { list->GetRows(); },
      [&] { list->MoveFirst(); },
      [&] { list->MoveLast(); },
      [&] { list->MoveNext(); },
      [&] { list->MovePrevious(); },
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

TEST(Recordset, MovesToTheRowBeforeAndBeforeTheFirst) {
  const auto list = Groups();
  list->MoveLast();
  EXPECT_EQ(Current(list), "{FGroupID: 3, FName: Null}");
  list->MoveNext();
  list->MovePrevious();
  EXPECT_EQ(Current(list), "{FGroupID: 3, FName: Null}");
  list->MovePrevious();
  list->MovePrevious();
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Receipts\"}");
  EXPECT_FALSE(list->Bof());
  list->MovePrevious();
  EXPECT_TRUE(list->Bof());
  EXPECT_FALSE(list->Eof());
  EXPECT_EQ(ErrorOf([&] { list->Row(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->GetRows(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->MovePrevious(); }), kNoRow);
  EXPECT_TRUE(list->Bof());
  list->MoveNext();
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Receipts\"}");
}

TEST(Recordset, WithoutRowsStandsBeforeTheFirstAndBehindTheLast) {
  const auto list = Recordset::Create({"FID"});
  EXPECT_TRUE(list->Bof());
  EXPECT_TRUE(list->Eof());
  EXPECT_EQ(list->RecordCount(), 0);
  EXPECT_EQ(ErrorOf([&] { list->MoveFirst(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->MoveNext(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->MoveLast(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->MovePrevious(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->Delete(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->GetRows(); }), kNoRow);
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
      [&] { list->Delete(); },
      [&] { list->GetRows(); },
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

TEST(Recordset, AddNewFillsTheNewRowFromAFieldOrAListOfFields) {
  const auto list = Groups();
  list->AddNew("fname", "Transfers");
  EXPECT_EQ(Current(list), "{FGroupID: Null, FName: \"Transfers\"}");
  list->AddNew(List({Long{1}, "FGroupID"}), List({"Others", Long{5}}));
  EXPECT_EQ(Current(list), "{FGroupID: 5, FName: \"Others\"}");
  list->MovePrevious();
  EXPECT_EQ(Current(list), "{FGroupID: Null, FName: \"Transfers\"}");
  EXPECT_EQ(list->RecordCount(), 5);
}

TEST(Recordset, AnAddNewThatIsRefusedAddsNothing) {
  const auto list = Groups();
  EXPECT_EQ(ErrorOf([&] { list->AddNew("FNo", Long{1}); }),
            "error 3265 (Recordset): No field FNo.");
  EXPECT_EQ(ErrorOf([&] {
              list->AddNew(List({Long{0}, "FNo"}), List({Long{1}, Long{2}}));
            }),
            "error 3265 (Recordset): No field FNo.");
  EXPECT_EQ(ErrorOf([&] { list->AddNew("FName"); }),
            "error 3001 (Recordset): The fields of a new row and its values are given together.");
  EXPECT_EQ(ErrorOf([&] { list->AddNew(Missing, "x"); }),
            "error 3001 (Recordset): The fields of a new row and its values are given together.");
  EXPECT_EQ(ErrorOf([&] {
              list->AddNew(List({"FGroupID", "FName"}), List({Long{1}}));
            }),
            "error 3001 (Recordset): A new row was given 2 fields and 1 values.");
  EXPECT_EQ(list->RecordCount(), 3);
  EXPECT_EQ(Current(list), "{FGroupID: 1, FName: \"Receipts\"}");
}

// ---- Deleting ----

TEST(Recordset, ADeletedRowIsGoneFromAllClones) {
  const auto list = Groups();
  const auto clone = list->Clone();
  list->MoveNext();
  list->Delete();
  EXPECT_EQ(Text(list), "recordset{FGroupID, FName | 1, \"Receipts\" | 3, Null}");
  EXPECT_EQ(Text(clone), Text(list));
  EXPECT_EQ(clone->RecordCount(), 2);
  clone->MoveNext();
  EXPECT_EQ(Current(clone), "{FGroupID: 3, FName: Null}");
  clone->MovePrevious();
  EXPECT_EQ(Current(clone), "{FGroupID: 1, FName: \"Receipts\"}");
}

TEST(Recordset, ACursorOnADeletedRowHasNoCurrentOneUntilItMoves) {
  for (const bool on_the_clone : {false, true}) {
    const auto list = Groups();
    list->MoveNext();
    const auto other = list->Clone();
    other->MoveNext();
    (on_the_clone ? other : list)->Delete();
    const std::function<void()> uses[] = {
        [&] { list->Row(); },     [&] { list->SetFieldValue(0, Long{1}); }, [&] { list->Delete(); },
        [&] { list->GetRows(); }, [&] { list->Find("FGroupID = 3"); },
    };
    for (const auto& use : uses) EXPECT_EQ(ErrorOf(use), kNoRow);
    EXPECT_FALSE(list->Eof());
    list->MoveNext();
    EXPECT_EQ(Current(list), "{FGroupID: 3, FName: Null}");
    other->MovePrevious();
    EXPECT_EQ(Current(other), "{FGroupID: 1, FName: \"Receipts\"}");
  }
}

TEST(Recordset, AllRowsAreDeletedOnTheWayThrough) {
  const auto list = Groups();
  const auto clone = list->Clone();
  int deleted = 0;
  for (; !list->Eof(); ++deleted) {
    list->Delete();
    list->MoveNext();
  }
  EXPECT_EQ(deleted, 3);
  EXPECT_EQ(Text(list), "recordset{FGroupID, FName}");
  EXPECT_TRUE(list->Bof());
  for (const auto& cursor : {list, clone, list->Clone()}) {
    EXPECT_TRUE(cursor->Bof());
    EXPECT_TRUE(cursor->Eof());
    EXPECT_EQ(ErrorOf([&] { cursor->MoveFirst(); }), kNoRow);
    EXPECT_EQ(ErrorOf([&] { cursor->MoveLast(); }), kNoRow);
  }
  EXPECT_EQ(ErrorOf([&] { list->MoveNext(); }), kNoRow);
  EXPECT_EQ(ErrorOf([&] { list->MovePrevious(); }), kNoRow);
  list->AddNew("FGroupID", Long{7});
  EXPECT_EQ(Text(clone), "recordset{FGroupID, FName | 7, Null}");
  clone->MoveFirst();
  EXPECT_EQ(Current(clone), "{FGroupID: 7, FName: Null}");
}

TEST(Recordset, DeletedRowsAreNeitherFoundNorFirstNorLast) {
  const auto list = Groups();
  list->Delete();
  list->MoveLast();
  list->Delete();
  EXPECT_EQ(Current(list->Clone()), "{FGroupID: 2, FName: \"Payments\"}");
  list->MoveFirst();
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  list->Find("FGroupID >= 3");
  EXPECT_EQ(Current(list), "end");
  list->MoveLast();
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
}

TEST(Recordset, DeletesTheCurrentRowOnly) {
  const auto list = Groups();
  EXPECT_EQ(ErrorOf([&] { list->Delete(Long{2}); }),
            "error 3001 (Recordset): The current row alone is deleted, which is 1.");
  EXPECT_EQ(list->RecordCount(), 3);
  list->Delete(Long{1});
  EXPECT_EQ(list->RecordCount(), 2);
}

TEST(Recordset, ADeletedRowGivesUpItsValues) {
  const auto object = Make<Opaque>();
  const auto list = Recordset::Create({"F"});
  list->AddRow({object});
  EXPECT_EQ(object->holders(), 2);
  list->Delete();
  EXPECT_EQ(object->holders(), 1);
}

// ---- GetRows ----

TEST(Recordset, GetRowsReadsTheRestByFieldAndRow) {
  const auto list = Groups();
  list->MoveNext();
  EXPECT_EQ(Flat(list->GetRows()), "2;3;|\"Payments\";Null;|");
  EXPECT_TRUE(list->Eof());
  EXPECT_EQ(ErrorOf([&] { list->GetRows(); }), kNoRow);
}

TEST(Recordset, GetRowsReadsSomeRowsAndFieldsFromAPlace) {
  const auto list = Groups();
  EXPECT_EQ(Flat(list->GetRows(1)), "1;|\"Receipts\";|");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
  EXPECT_EQ(Flat(list->GetRows(9, Long{0}, "FName")), "\"Payments\";Null;|");
  EXPECT_EQ(Flat(list->GetRows(2, Long{1}, List({Long{1}, "fgroupid", Long{1}}))),
            "\"Receipts\";\"Payments\";|1;2;|\"Receipts\";\"Payments\";|");
  EXPECT_EQ(Flat(list->GetRows(-1, Long{2}, Long{0})), "3;|");
  EXPECT_TRUE(list->Eof());
}

TEST(Recordset, AGetRowsThatIsRefusedLeavesTheCursor) {
  const auto list = Groups();
  list->MoveNext();
  for (const Long count : {0, -2}) {
    EXPECT_EQ(ErrorOf([&] { list->GetRows(count); }),
              "error 3001 (Recordset): So many rows are 1 or more, or all: -1.");
  }
  for (const Long start : {-1, 3}) {
    EXPECT_EQ(ErrorOf([&] { list->GetRows(1, start); }),
              "error 3001 (Recordset): Rows are read from the current one (0), the first (1) or "
              "the last (2) on.");
  }
  EXPECT_EQ(ErrorOf([&] { list->GetRows(1, Long{1}, "FNo"); }),
            "error 3265 (Recordset): No field FNo.");
  EXPECT_EQ(Current(list), "{FGroupID: 2, FName: \"Payments\"}");
}

// A recordset of others, which comes to no end.
class Endless final : public Recordset {
 public:
  void MoveNext() override {}
  Boolean Bof() const override { return false; }
  Boolean Eof() const override { return false; }
  Long RecordCount() const override { return -1; }
  Long FieldCount() const override { return 1; }
  Variant FieldValue(Long) const override { return Long{1}; }
};

TEST(Recordset, GetRowsEndsWhereARecordsetHasNoEnd) {
  EXPECT_EQ(ErrorOf([] { Make<Endless>()->GetRows(); }),
            "error 6 (Recordset): The recordset has more than 1000000 rows.");
  EXPECT_EQ(Flat(Make<Endless>()->GetRows(2)), "1;1;|");
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
  list->Call("AddNew", "FID", Long{2});
  list->Call("MovePrevious");
  EXPECT_EQ(Flat(list->Call("GetRows", Named("Fields", "FID")).As<Vector>()), "1;2;|");
  list->Call("MoveLast");
  list->Call("Delete");
  EXPECT_EQ(Text(list), "recordset{FID, FName | 1, \"Receipts\"}");
  list->Call("Close");
  EXPECT_EQ(StateText(list->Get("State")), "0");
}

TEST(RecordsetLateBound, AnIndexMayBeAnObjectThatStandsForOne) {
  const auto list = Groups();
  const auto indexes = List({Variant(list->Fields()->Item("FGroupID"))});
  EXPECT_EQ(Flat(list->GetRows(1, Missing, indexes)), "\"Receipts\";|");
}

}  // namespace
}  // namespace qdclgl
