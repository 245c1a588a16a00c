#include "qdclgl/frame/entities/walkers.h"

#include <gtest/gtest.h>

#include <string>

#include "qdclgl/frame/entities/row_view.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;

// A line as the sets of a document hand it out: it shares its row with the list.
class Child final : public RowView {
 public:
  std::string_view ClassName() const override { return "Child"; }

  void Attach(const Ref<Dictionary>& row, const Ref<ChangeFlag>& flag) {
    RowView::Attach(row, true, flag, 0);
  }
  Ref<Dictionary> row() const { return Bag().Dictionary(); }
  Ref<ChangeFlag> flag() const { return Bag().ChangeFlag(); }
  void Write(std::string_view key, const Variant& value) { Bag().SetValue(key, value); }
};

// Groups 1 to `count`.
Ref<Recordset> Groups(Long count) {
  const auto rows = Recordset::Create({"FGroupID", "FName"});
  for (Long id = 1; id <= count; ++id) rows->AddRow({id, "Group " + std::to_string(id)});
  return rows;
}

Ref<VoucherGroupSet> SetOf(const Ref<Recordset>& rows) {
  auto set = Make<VoucherGroupSet>();
  set->RecordSet(rows);
  return set;
}

// The ids of the groups that are left, in order.
std::string IdsOf(const Ref<Enumerator>& enumerator) {
  std::string text;
  Variant item;
  while (enumerator->Next(item)) {
    text += (text.empty() ? "" : " ") + std::to_string(item.As<VoucherGroup>()->VoucherGroupID());
  }
  return text;
}

Ref<Vector> ListOf(std::initializer_list<Variant> elements) {
  auto list = Make<Vector>();
  for (const Variant& element : elements) list->Append(element);
  return list;
}

Ref<VectorWalker<Child>> WalkerOver(const Ref<Vector>& list, const Ref<ChangeFlag>& flag) {
  auto walker = Make<VectorWalker<Child>>();
  walker->Init(list, flag);
  return walker;
}

Ref<Enumerator> EnumeratorOver(const Ref<Vector>& list, const Ref<ChangeFlag>& flag) {
  return EnumFactory().CreateEnum(WalkerOver(list, flag));
}

Ref<Child> NextChild(const Ref<Enumerator>& enumerator) {
  Variant item;
  return enumerator->Next(item) ? item.As<Child>() : nullptr;
}

// A recordset of others that has no end, and tells some number of rows.
class Endless final : public Recordset {
 public:
  explicit Endless(Long told) : told_(told) {}
  Ref<Recordset> Clone(Long) override { return Ref<Recordset>(this); }
  void MoveFirst() override {}
  void MoveNext() override { ++moved_; }
  Boolean Bof() const override { return false; }
  Boolean Eof() const override { return false; }
  Long RecordCount() const override { return told_; }
  Ref<Dictionary> Row() const override { return Make<Dictionary>(); }

  int moved() const { return moved_; }

 private:
  Long told_;
  int moved_ = 0;
};

constexpr std::string_view kNoEnd = "error 6 (QDCLGL): The recordset has more than 1000000 rows.";

// ---- Recordset walkers ----

TEST(WalkRecordset, ARecordsetWithoutEndIsAnErrorBehindTheRowsThatItMayHave) {
  for (const Long told : {-1, 0, 2'000'000}) {
    const auto rows = Make<Endless>(told);
    const Ref<Enumerator> walk = SetOf(rows)->NewEnum();
    EXPECT_EQ(ErrorOf([&] { walk->Skip(INT32_MAX); }), kNoEnd);
    EXPECT_EQ(rows->moved(), told > 0 ? told : 1'000'000);
    Variant item;
    EXPECT_EQ(ErrorOf([&] { walk->Next(item); }), kNoEnd);
    walk->Reset();
    EXPECT_TRUE(walk->Next(item));
  }
}

TEST(RecordsetToVector, ARecordsetWithoutEndIsAnError) {
  const auto rows = Make<Endless>(INT32_MAX);
  EXPECT_EQ(ErrorOf([&] { RecordsetToVector(rows); }), kNoEnd);
  EXPECT_EQ(rows->moved(), 1'000'000);
}

TEST(EntityWalker, MakesAnEntityOfEachRowWithoutAServerCall) {
  RecordingServer server;
  server.LogSession();
  const auto set = SetOf(Groups(3));
  std::string text;
  for (auto& group : *set) {
    text += StateText(Variant(group.Properties()->Dictionary())) + "\n";
  }
  EXPECT_EQ(text, "{FGroupID: 1, FName: \"Group 1\"}\n"
                  "{FGroupID: 2, FName: \"Group 2\"}\n"
                  "{FGroupID: 3, FName: \"Group 3\"}\n");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST(EntityWalker, FetchesTheListOfASetThatHasNone) {
  RecordingServer server;
  server.Answer("QDSVGLVoucherGroup.VoucherGroupInfo", "GetList", Groups(2));
  const auto set = Make<VoucherGroupSet>();
  EXPECT_EQ(IdsOf(set->NewEnum()), "1 2");
  EXPECT_EQ(IdsOf(set->NewEnum()), "1 2");
  EXPECT_EQ(server.TakeLog(),
            "create QDSVGLVoucherGroup.VoucherGroupInfo\n"
            "call GetList(\"props\", ref 0, ref \"\", ref \"\") -> recordset{FGroupID, FName | 1, "
            "\"Group 1\" | 2, \"Group 2\"}\n");
}

TEST(EntityWalker, AnEmptyRecordsetProducesNothing) {
  const Ref<Enumerator> enumerator = SetOf(Groups(0))->NewEnum();
  Variant item = "untouched";
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_FALSE(enumerator->Skip(1));
  enumerator->Reset();
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "\"untouched\"");
}

TEST(EntityWalker, StartsAtTheFirstRowWhereverTheCursorStands) {
  const auto rows = Groups(3);
  rows->MoveNext();
  EXPECT_EQ(IdsOf(SetOf(rows)->NewEnum()), "1 2 3");
  rows->MoveNext();
  rows->MoveNext();
  ASSERT_TRUE(rows->Eof());
  EXPECT_EQ(IdsOf(SetOf(rows)->NewEnum()), "1 2 3");
}

TEST(EntityWalker, LeavesTheCursorOfTheSetWhereItStands) {
  const auto rows = Groups(3);
  rows->MoveNext();
  const auto set = SetOf(rows);
  const Ref<Enumerator> enumerator = set->NewEnum();
  enumerator->Skip(1);
  EXPECT_EQ(set->GetCurrent()->VoucherGroupID(), 2);
  EXPECT_EQ(IdsOf(enumerator), "2 3");
  EXPECT_EQ(set->GetCurrent()->VoucherGroupID(), 2);
  enumerator->Reset();
  EXPECT_EQ(set->GetNext()->VoucherGroupID(), 2);
  EXPECT_EQ(IdsOf(enumerator), "1 2 3");
  EXPECT_EQ(set->GetCurrent()->VoucherGroupID(), 3);
}

TEST(EntityWalker, TwoWalksDoNotDisturbEachOther) {
  const auto set = SetOf(Groups(2));
  std::string met;
  for (auto& outer : *set) {
    for (auto& inner : *set) {
      met += std::to_string(outer.VoucherGroupID()) + std::to_string(inner.VoucherGroupID()) + " ";
    }
  }
  EXPECT_EQ(met, "11 12 21 22 ");
}

TEST(EntityWalker, ResetStartsAtTheFirstRowAgain) {
  const Ref<Enumerator> enumerator = SetOf(Groups(3))->NewEnum();
  EXPECT_EQ(IdsOf(enumerator), "1 2 3");
  enumerator->Reset();
  EXPECT_EQ(IdsOf(enumerator), "1 2 3");
  enumerator->Reset();
  enumerator->Skip(1);
  enumerator->Reset();
  EXPECT_EQ(IdsOf(enumerator), "1 2 3");
}

TEST(EntityWalker, SkipPassesRowsWithoutMakingThem) {
  const auto rows = Recordset::Create({"FGroupID"});
  rows->AddRow({"no number"});
  rows->AddRow({2});
  const Ref<Enumerator> enumerator = SetOf(rows)->NewEnum();
  EXPECT_TRUE(enumerator->Skip(1));
  EXPECT_EQ(IdsOf(enumerator), "2");
}

TEST(EntityWalker, SkipOfMoreRowsThanThereAreTellsSo) {
  const Ref<Enumerator> enumerator = SetOf(Groups(3))->NewEnum();
  EXPECT_TRUE(enumerator->Skip(2));
  EXPECT_FALSE(enumerator->Skip(2));
  EXPECT_EQ(IdsOf(enumerator), "");
}

TEST(EntityWalker, NextAndSkipAtTheEndLeaveTheirArgumentsAlone) {
  const auto walker = Make<WalkVoucherGroupSet>();
  walker->Attach(Groups(1), Nothing);
  Variant item;
  Boolean done = false;
  walker->Next(item, done);
  EXPECT_TRUE(done);
  EXPECT_EQ(item.As<VoucherGroup>()->VoucherGroupID(), 1);
  for (const bool before : {true, false}) {
    item = "untouched";
    done = before;
    walker->Next(item, done);
    EXPECT_EQ(done, before);
    walker->Skip(done);
    EXPECT_EQ(done, before);
    EXPECT_EQ(StateText(item), "\"untouched\"");
  }
}

TEST(EntityWalker, HandsTheTransactionContextToEachEntity) {
  const auto context = Make<Opaque>();
  const auto walker = Make<WalkVoucherGroupSet>();
  walker->Attach(Groups(2), context);
  Variant first, second;
  Boolean done = false;
  const int held_by_the_walker = context->holders();
  walker->Next(first, done);
  EXPECT_EQ(context->holders(), held_by_the_walker + 1);
  walker->Next(second, done);
  EXPECT_EQ(context->holders(), held_by_the_walker + 2);
}

TEST(EntityWalker, ARowThatMakesNoEntityRaisesAndTheWalkStandsStill) {
  const auto rows = Recordset::Create({"FGroupID"});
  rows->AddRow({1});
  rows->AddRow({"no number"});
  rows->AddRow({3});
  const Ref<Enumerator> enumerator = SetOf(rows)->NewEnum();
  Variant item;
  ASSERT_TRUE(enumerator->Next(item));
  EXPECT_EQ(ErrorOf([&] { enumerator->Next(item); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { enumerator->Next(item); }), "error 13");
  EXPECT_EQ(item.As<VoucherGroup>()->VoucherGroupID(), 1);
  EXPECT_TRUE(enumerator->Skip(1));
  EXPECT_EQ(IdsOf(enumerator), "3");
}

TEST(EntityWalker, AClosedRecordsetRaisesWhenTheWalkIsMade) {
  const auto rows = Groups(2);
  rows->Close();
  EXPECT_EQ(ErrorOf([&] { SetOf(rows)->NewEnum(); }),
            "error 3704 (Recordset): The recordset is closed.");
}

TEST(EntityWalker, AWalkGoesOnOverTheListItBeganWith) {
  const auto set = SetOf(Groups(3));
  const Ref<Enumerator> enumerator = set->NewEnum();
  enumerator->Skip(1);
  set->RecordSet(Groups(1));
  EXPECT_EQ(IdsOf(enumerator), "2 3");
  EXPECT_EQ(IdsOf(set->NewEnum()), "1");
}

TEST(EntityWalker, AnEditOfAnEntityStaysOutOfTheRecordset) {
  const auto rows = Groups(2);
  const auto set = SetOf(rows);
  for (auto& group : *set) group.Name("edited");
  EXPECT_EQ(StateText(Variant(rows)),
            "recordset{FGroupID, FName | 1, \"Group 1\" | 2, \"Group 2\"}");
}

TEST(EntityWalker, EntitiesOutliveTheirSetAndWalk) {
  auto set = SetOf(Groups(2));
  Ref<Enumerator> enumerator = set->NewEnum();
  set = nullptr;
  Variant item;
  ASSERT_TRUE(enumerator->Next(item));
  enumerator = nullptr;
  EXPECT_EQ(item.As<VoucherGroup>()->Name(), "Group 1");
}

TEST(EntityWalker, LateBoundCallersWalkInTheSameWay) {
  const Ref<Enumerator> enumerator =
      Ref<Object>(SetOf(Groups(3)))->Call("NewEnum").As<Enumerator>();
  Variant item;
  EXPECT_TRUE(enumerator->Call("Skip", 1).As<Boolean>());
  EXPECT_TRUE(enumerator->Call("Next", ByRef(item)).As<Boolean>());
  EXPECT_EQ(item.As<Object>()->Get("VoucherGroupID").As<Long>(), 2);
  EXPECT_FALSE(enumerator->Call("Skip", 2).As<Boolean>());
  EXPECT_FALSE(enumerator->Call("Next", ByRef(item)).As<Boolean>());
  EXPECT_EQ(item.As<Object>()->Get("VoucherGroupID").As<Long>(), 2);
  enumerator->Call("Reset");
  EXPECT_EQ(IdsOf(enumerator), "1 2 3");
}

// ---- Vector walkers ----

TEST(VectorWalker, MakesAChildOfEachRowThatSharesItWithTheList) {
  const auto list = ListOf({Variant(Row({{"FDebit", 1}})), Variant(Row({{"FDebit", 2}}))});
  const Ref<Enumerator> enumerator = EnumeratorOver(list, Make<ChangeFlag>());
  for (Long i = 1; i <= 2; ++i) {
    const Ref<Child> child = NextChild(enumerator);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->row(), list->Item(i).As<Dictionary>());
    child->Write("FCredit", 10 * i);
  }
  EXPECT_EQ(NextChild(enumerator), nullptr);
  EXPECT_EQ(StateText(Variant(list)), "[{FDebit: 1, FCredit: 10}, {FDebit: 2, FCredit: 20}]");
}

TEST(VectorWalker, EachChildHasTheFlagOfItsPosition) {
  const auto list = ListOf({Variant(Row({})), Variant(Row({})), Variant(Row({}))});
  const auto flag = Make<ChangeFlag>();
  const Ref<ChangeFlag> former = flag->Item(2);
  const Ref<Enumerator> enumerator = EnumeratorOver(list, flag);
  EXPECT_EQ(NextChild(enumerator)->flag(), flag->Item(1));
  EXPECT_EQ(NextChild(enumerator)->flag(), former);
  const Ref<Child> third = NextChild(enumerator);
  third->Write("FDebit", 1);
  EXPECT_FALSE(flag->PrivateModified());
  EXPECT_FALSE(flag->Item(1)->Modified());
  EXPECT_FALSE(flag->Item(2)->Modified());
  EXPECT_TRUE(flag->Item(3)->PrivateModified());
}

TEST(VectorWalker, ASecondWalkFindsTheFlagsOfTheFirst) {
  const auto list = ListOf({Variant(Row({})), Variant(Row({}))});
  const auto flag = Make<ChangeFlag>();
  const Ref<Enumerator> first = EnumeratorOver(list, flag);
  NextChild(first);
  NextChild(first)->Write("FDebit", 1);
  const Ref<Enumerator> second = EnumeratorOver(list, flag);
  EXPECT_FALSE(NextChild(second)->flag()->Modified());
  EXPECT_TRUE(NextChild(second)->flag()->Modified());
}

TEST(VectorWalker, SkipMakesNeitherRowsNorFlags) {
  const auto list = ListOf({Nothing, Nothing, Nothing});
  const auto flag = Make<ChangeFlag>();
  const Ref<Enumerator> enumerator = EnumeratorOver(list, flag);
  EXPECT_TRUE(enumerator->Skip(3));
  EXPECT_FALSE(enumerator->Skip(1));
  EXPECT_EQ(StateText(Variant(list)), "[Nothing, Nothing, Nothing]");
  Variant child;
  EXPECT_FALSE(flag->NewEnum()->Next(child));
}

TEST(VectorWalker, AHoleBecomesAnEmptyRowThatStaysInTheList) {
  const auto list = ListOf({Variant(Row({{"FDebit", 1}})), Nothing, Nothing});
  const Ref<Enumerator> enumerator = EnumeratorOver(list, Make<ChangeFlag>());
  NextChild(enumerator);
  const Ref<Child> child = NextChild(enumerator);
  EXPECT_EQ(StateText(Variant(list)), "[{FDebit: 1}, {}, Nothing]");
  EXPECT_EQ(child->row(), list->Item(2).As<Dictionary>());
  child->Write("FDebit", 2);
  EXPECT_EQ(StateText(Variant(list)), "[{FDebit: 1}, {FDebit: 2}, Nothing]");
  const Ref<Enumerator> again = EnumeratorOver(list, Make<ChangeFlag>());
  again->Skip(1);
  EXPECT_EQ(NextChild(again)->row(), child->row());
}

TEST(VectorWalker, AnEmptyListProducesNothing) {
  const Ref<Enumerator> enumerator = EnumeratorOver(Make<Vector>(), Make<ChangeFlag>());
  Variant item = "untouched";
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_FALSE(enumerator->Skip(1));
  enumerator->Reset();
  EXPECT_FALSE(enumerator->Next(item));
  EXPECT_EQ(StateText(item), "\"untouched\"");
}

TEST(VectorWalker, NextAndSkipAtTheEndLeaveTheirArgumentsAlone) {
  const auto walker = WalkerOver(ListOf({Variant(Row({}))}), Make<ChangeFlag>());
  Variant item;
  Boolean done = false;
  walker->Next(item, done);
  EXPECT_TRUE(done);
  for (const bool before : {true, false}) {
    item = "untouched";
    done = before;
    walker->Next(item, done);
    EXPECT_EQ(done, before);
    walker->Skip(done);
    EXPECT_EQ(done, before);
    EXPECT_EQ(StateText(item), "\"untouched\"");
  }
}

TEST(VectorWalker, ResetAndInitBeginAgain) {
  const auto list = ListOf({Variant(Row({{"FDebit", 1}})), Variant(Row({{"FDebit", 2}}))});
  const auto walker = WalkerOver(list, Make<ChangeFlag>());
  const Ref<Enumerator> enumerator = EnumFactory().CreateEnum(walker);
  EXPECT_TRUE(enumerator->Skip(2));
  enumerator->Reset();
  EXPECT_EQ(NextChild(enumerator)->row(), list->Item(1).As<Dictionary>());
  const auto other = ListOf({Variant(Row({{"FDebit", 3}}))});
  walker->Init(other, Make<ChangeFlag>());
  EXPECT_EQ(NextChild(enumerator)->row(), other->Item(1).As<Dictionary>());
}

TEST(VectorWalker, TwoWalksDoNotDisturbEachOther) {
  const auto list = ListOf({Variant(Row({})), Variant(Row({}))});
  const auto flag = Make<ChangeFlag>();
  const Ref<Enumerator> first = EnumeratorOver(list, flag);
  const Ref<Enumerator> second = EnumeratorOver(list, flag);
  const Ref<Child> child = NextChild(first);
  EXPECT_TRUE(first->Skip(1));
  const Ref<Child> same = NextChild(second);
  EXPECT_NE(same, child);
  EXPECT_EQ(same->row(), child->row());
  EXPECT_EQ(same->flag(), child->flag());
  EXPECT_EQ(NextChild(first), nullptr);
  EXPECT_NE(NextChild(second), nullptr);
}

TEST(VectorWalker, AWalkMeetsRowsThatAreAddedOnTheWay) {
  const auto list = ListOf({Variant(Row({}))});
  const Ref<Enumerator> enumerator = EnumeratorOver(list, Make<ChangeFlag>());
  EXPECT_NE(NextChild(enumerator), nullptr);
  EXPECT_EQ(NextChild(enumerator), nullptr);
  list->Append(Variant(Row({})));
  EXPECT_NE(NextChild(enumerator), nullptr);
}

TEST(VectorWalker, AnElementThatIsNoRowIsATypeMismatch) {
  const std::initializer_list<Variant> no_rows = {5, "text", Null, Variant(Make<Vector>())};
  for (const Variant& element : no_rows) {
    SCOPED_TRACE(StateText(element));
    const Ref<Enumerator> enumerator = EnumeratorOver(ListOf({element}), Make<ChangeFlag>());
    EXPECT_EQ(ErrorOf([&] { NextChild(enumerator); }), "error 13");
  }
}

TEST(VectorWalker, IndexesAreTakenToStartAtOne) {
  const auto list = ListOf({Variant(Row({{"A", 0}})), Variant(Row({{"A", 1}}))});
  list->LowerBound(0);
  const Ref<Enumerator> enumerator = EnumeratorOver(list, Make<ChangeFlag>());
  EXPECT_EQ(StateText(Variant(NextChild(enumerator)->row())), "{A: 1}");
  EXPECT_EQ(ErrorOf([&] { NextChild(enumerator); }), "error 9");
}

TEST(VectorWalker, AListOfTheGreatestSizeIsWalkedToItsEnd) {
  const auto list = Make<Vector>();
  for (Long i = 0; i < 32767; ++i) list->Append(Nothing);
  const auto flag = Make<ChangeFlag>();
  const Ref<Enumerator> enumerator = EnumeratorOver(list, flag);
  ASSERT_TRUE(enumerator->Skip(32766));
  const Ref<Child> last = NextChild(enumerator);
  EXPECT_EQ(last->row(), list->Item(32767).As<Dictionary>());
  EXPECT_EQ(last->flag(), flag->Item(32767));
  EXPECT_FALSE(enumerator->Skip(1));
  EXPECT_EQ(NextChild(enumerator), nullptr);
}

TEST(VectorWalker, OneElementMoreOverflowsThePosition) {
  const auto list = Make<Vector>();
  for (Long i = 0; i < 32768; ++i) list->Append(Nothing);
  const auto flag = Make<ChangeFlag>();
  const Ref<Enumerator> enumerator = EnumeratorOver(list, flag);
  ASSERT_TRUE(enumerator->Skip(32767));
  EXPECT_EQ(ErrorOf([&] { NextChild(enumerator); }), "error 6");
  EXPECT_EQ(ErrorOf([&] { enumerator->Skip(1); }), "error 6");
  EXPECT_TRUE(list->Item(32768).IsNothing());
  enumerator->Reset();
  const Ref<Child> first = NextChild(enumerator);
  EXPECT_EQ(first->row(), list->Item(1).As<Dictionary>());
}

TEST(VectorWalker, ChildrenOutliveTheListAndTheWalk) {
  auto list = ListOf({Variant(Row({{"FDebit", 1}}))});
  auto enumerator = EnumeratorOver(list, Make<ChangeFlag>());
  const Ref<Child> child = NextChild(enumerator);
  enumerator = nullptr;
  list = nullptr;
  child->Write("FDebit", 2);
  EXPECT_EQ(StateText(Variant(child->row())), "{FDebit: 2}");
}

TEST(RowAt, GivesTheRowAtAnIndex) {
  const auto list = ListOf({Variant(Row({{"A", 1}})), Nothing});
  EXPECT_EQ(RowAt(list, 1), list->Item(1).As<Dictionary>());
  EXPECT_EQ(StateText(Variant(RowAt(list, 2))), "{}");
  EXPECT_EQ(RowAt(list, 2), list->Item(2).As<Dictionary>());
  EXPECT_EQ(ErrorOf([&] { RowAt(list, 0); }), "error 9");
  EXPECT_EQ(ErrorOf([&] { RowAt(list, 3); }), "error 9");
}

TEST(NextPosition, CountsToTheEndOfSixteenBits) {
  EXPECT_EQ(NextPosition(0), 1);
  EXPECT_EQ(NextPosition(32766), 32767);
  EXPECT_EQ(ErrorOf([] { NextPosition(32767); }), "error 6");
}

// ---- Rows as containers ----

TEST(RecordsetToVector, TakesAllRowsAndStandsBehindTheLastOne) {
  const auto rows = Groups(2);
  EXPECT_EQ(StateText(Variant(RecordsetToVector(rows))),
            "[{FGroupID: 1, FName: \"Group 1\"}, {FGroupID: 2, FName: \"Group 2\"}]");
  EXPECT_TRUE(rows->Eof());
}

TEST(RecordsetToVector, LeavesOutTheRowsBeforeTheCursor) {
  const auto rows = Groups(3);
  rows->MoveNext();
  EXPECT_EQ(StateText(Variant(RecordsetToVector(rows))),
            "[{FGroupID: 2, FName: \"Group 2\"}, {FGroupID: 3, FName: \"Group 3\"}]");
  EXPECT_TRUE(rows->Eof());
  EXPECT_EQ(StateText(Variant(RecordsetToVector(rows))), "[]");
}

TEST(RecordsetToVector, WithoutRowsGivesANewEmptyVector) {
  const auto rows = Groups(0);
  const Ref<Vector> first = RecordsetToVector(rows);
  const Ref<Vector> second = RecordsetToVector(rows);
  EXPECT_EQ(StateText(Variant(first)), "[]");
  EXPECT_EQ(first->LowerBound(), 1);
  EXPECT_NE(first, second);
}

TEST(RecordsetToVector, ItsRowsAreApartFromTheRecordsetAndFromEachOther) {
  const auto rows = Groups(2);
  const Ref<Vector> list = RecordsetToVector(rows);
  list->Item(1).As<Dictionary>()->Put("FName", "edited");
  list->Item(1).As<Dictionary>()->Put("FNote", "new");
  EXPECT_EQ(StateText(Variant(list)), "[{FGroupID: 1, FName: \"edited\", FNote: \"new\"}, "
                                      "{FGroupID: 2, FName: \"Group 2\"}]");
  EXPECT_EQ(StateText(Variant(rows)),
            "recordset{FGroupID, FName | 1, \"Group 1\" | 2, \"Group 2\"}");
}

TEST(RowToDictionary, TakesTheCurrentRowInColumnOrderAndLeavesTheCursor) {
  const auto rows = Recordset::Create({"C", "A", "B"});
  rows->AddRow({1, "one", Null});
  rows->AddRow({2, Variant(), Currency(2)});
  rows->MoveNext();
  EXPECT_EQ(StateText(Variant(RowToDictionary(rows))), "{C: 2, A: Empty, B: 2@}");
  EXPECT_EQ(StateText(Variant(RowToDictionary(rows))), "{C: 2, A: Empty, B: 2@}");
  rows->MoveFirst();
  EXPECT_EQ(StateText(Variant(RowToDictionary(rows))), "{C: 1, A: \"one\", B: Null}");
}

TEST(RowToDictionary, MakesANewUnmodifiedDictionaryEachTime) {
  const auto rows = Groups(1);
  const Ref<Dictionary> first = RowToDictionary(rows);
  EXPECT_NE(first, RowToDictionary(rows));
  EXPECT_FALSE(first->Modified());
  first->Put("FName", "edited");
  EXPECT_TRUE(first->Modified());
  EXPECT_EQ(StateText(Variant(RowToDictionary(rows))), "{FGroupID: 1, FName: \"Group 1\"}");
}

TEST(RowToDictionary, HoldsTheVeryObjectsOfTheRow) {
  const auto object = Make<Opaque>();
  const auto rows = Recordset::Create({"Held"});
  rows->AddRow({Variant(object)});
  EXPECT_EQ(RowToDictionary(rows)->Value("Held").As<Opaque>(), object);
}

TEST(RowToDictionary, BehindTheLastRowThereIsNone) {
  EXPECT_EQ(ErrorOf([] { RowToDictionary(Groups(0)); }),
            "error 3021 (Recordset): There is no current row.");
}

}  // namespace
}  // namespace qdclgl
