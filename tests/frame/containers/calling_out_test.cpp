// What the containers do while code of others runs in the middle of them: destructors of released
// elements, `Clone` methods, default values.
#include <gtest/gtest.h>

#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/containers/recordset.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::AtEnd;
using testing::ErrorOf;
using testing::Foreign;
using testing::Row;
using testing::StateText;

// Enough writes to make any block of memory move.
void Fill(const Ref<Vector>& list) {
  for (Long i = 0; i < 1000; ++i) list->Append(i);
}
void Fill(const Ref<Dictionary>& row) {
  for (int i = 0; i < 1000; ++i) row->Put("key" + std::to_string(i), Variant(i));
}

// ---- Elements that end ----

TEST(ContainersCallingOut, AnElementThatEndsInARemoveMayAppend) {
  const auto list = Make<Vector>();
  for (int i = 0; i < 3; ++i) list->Append(Variant(Make<AtEnd>([&] { Fill(list); })));
  list->Append("last");
  list->Remove(1, 3);
  EXPECT_EQ(list->Count(), 3001);
  EXPECT_EQ(list->Item(1).As<String>(), "last");
}

TEST(ContainersCallingOut, AnElementThatEndsInARemoveMayRemoveTheOthers) {
  const auto list = Make<Vector>();
  list->Append(Variant(Make<AtEnd>([&] { list->Remove(1, list->Count()); })));
  for (Long i = 0; i < 10; ++i) list->Append(i);
  list->Remove(1);
  EXPECT_EQ(list->Count(), 0);
}

TEST(ContainersCallingOut, AnElementThatIsWrittenOverMayReleaseTheList) {
  auto list = Make<Vector>();
  list->Append(Variant(Make<AtEnd>([&] { list = nullptr; })));
  list->Item(1, Variant(Long{2}));
  EXPECT_EQ(list, nullptr);
  list = Make<Vector>();
  list->Append(Variant(Make<AtEnd>([&] { list = nullptr; })));
  list->Remove(1);
  EXPECT_EQ(list, nullptr);
}

TEST(ContainersCallingOut, AValueThatEndsMayWriteTheRowOrReleaseIt) {
  for (const bool release : {false, true}) {
    for (const int operation : {0, 1, 2}) {
      auto row = Make<Dictionary>();
      row->Put("K", Variant(Make<AtEnd>([&] { release ? void(row = nullptr) : Fill(row); })));
      if (operation == 0) row->Put("K", Variant(1));
      if (operation == 1) row->Erase("K");
      if (operation == 2) row->Remove("K");
      EXPECT_EQ(row == nullptr, release);
      if (!release) {
        EXPECT_EQ(row->Count(), operation == 0 ? 1001 : 1000);
      }
    }
  }
}

TEST(ContainersCallingOut, AnElementOfACollectionThatEndsMayAddAndRemoveAndReleaseIt) {
  auto list = Make<Collection>();
  list->Add(Variant(Make<AtEnd>([&] {
              for (int i = 0; i < 100; ++i) list->Add(i, "k" + std::to_string(i));
              list->Remove("K5");
            })),
            "first");
  list->Remove("FIRST");
  EXPECT_EQ(list->Count(), 99);
  list->Add(Variant(Make<AtEnd>([&] { list = nullptr; })), "last");
  list->Remove("last");
  EXPECT_EQ(list, nullptr);
}

TEST(ContainersCallingOut, AKeyOfACollectionMayShortenItWhenItIsAskedForItsText) {
  const auto list = Make<Collection>();
  for (int i = 0; i < 10; ++i) list->Add(i);
  const auto key = Make<Foreign>([&] {
    while (list->Count() > 0) list->Remove(1);
    return Variant("key");
  });
  EXPECT_EQ(ErrorOf([&] { list->Add("new", Variant(key), 10); }), "error 9");
  list->Add("new", Variant(key));
  EXPECT_EQ(list->Item("KEY").As<String>(), "new");
}

TEST(ContainersCallingOut, ACellThatEndsMayCloseTheRecordsetOrReleaseIt) {
  for (const bool release : {false, true}) {
    for (const bool close : {false, true}) {
      auto rows = Recordset::Create({"A"});
      rows->AddRow({Variant(Make<AtEnd>([&] {
        if (release) {
          rows = nullptr;
        } else {
          rows->Close();
        }
      }))});
      if (close) {
        rows->Close();
      } else {
        rows->Fields()->Item("A")->Value(Variant(1));
      }
      EXPECT_EQ(rows == nullptr, release);
    }
  }
}

// ---- Copies ----

TEST(ContainersCallingOut, ACopyOfAListEndsWhereTheListDoesWhateverItsElementsDo) {
  auto list = Make<Vector>();
  list->Append(Variant(Make<Foreign>([&] {
    if (list) Fill(list);
    return Variant(Nothing);
  })));
  list->Append(Variant(Make<Foreign>([&] {
    list->Remove(1, list->Count());
    list = nullptr;
    return Variant(Row({}));
  })));
  list->Append("third");
  EXPECT_EQ(StateText(Variant(CloneVector(list))), "[Nothing, {}]");
  EXPECT_EQ(list, nullptr);
}

TEST(ContainersCallingOut, ACopyIsOfTheRowAsItStoodWhateverItsObjectsDo) {
  auto row = Make<Dictionary>();
  row->Put("A", Variant(Make<Foreign>([&] {
             Fill(row);
             row->Erase("B");
             return Variant(Nothing);
           })));
  row->Put("B", Variant("second"));
  row->Put("C", Variant(Make<Foreign>([&] {
             row = nullptr;
             return Variant(Row({}));
           })));
  EXPECT_EQ(StateText(Variant(CloneDictionary(row))), "{A: Nothing, B: \"second\", C: {}}");
  EXPECT_EQ(row, nullptr);
}

// ---- Values that are asked for ----

TEST(ContainersCallingOut, AValueThatIsAskedForMayWriteOverItself) {
  auto row = Make<Dictionary>();
  const auto put = [&] {
    row = Make<Dictionary>();
    row->Put("K", Variant(Make<Foreign>([&] {
               row->Put("K", Variant("over"));
               row = nullptr;
               return Variant("7");
             })));
  };
  put();
  EXPECT_EQ(CLng(*row->Find("K")), 7);
  put();
  EXPECT_EQ(CStr(*row->Find("K")), "7");
  put();
  EXPECT_TRUE(Equals(*row->Find("K"), Variant("7")));
  put();
  const Ref<Dictionary> other = row;
  other->Put("L", Variant("7"));
  EXPECT_TRUE(Equals(*other->Find("L"), *other->Find("K")));
}

TEST(ContainersCallingOut, AFindEndsWhateverItsCellsDoToTheRecordset) {
  for (const int deed : {0, 1, 2, 3}) {
    auto rows = Recordset::Create({"A"});
    const auto cell = Make<Foreign>([&] {
      if (deed == 0) rows->MoveFirst();
      if (deed == 1) rows->Close();
      if (deed == 2) rows->AddRow({Variant(1)});
      if (deed == 3) rows = nullptr;
      return Variant(0);
    });
    for (int i = 0; i < 3; ++i) rows->AddRow({deed == 0 || i == 0 ? Variant(cell) : Variant(i)});
    rows->Find("A = 5");
    if (deed == 0) {
      EXPECT_TRUE(rows->Eof());
    }
    if (deed == 1) {
      EXPECT_EQ(rows->State(), 0);
    }
    if (deed == 2) {
      EXPECT_EQ(rows->RecordCount(), 4);
    }
    if (deed == 3) {
      EXPECT_EQ(rows, nullptr);
    }
  }
}

}  // namespace
}  // namespace qdclgl
