#include "qdclgl/frame/entities/line_view.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "qdclgl/frame/objects/class_table.h"
#include "tests/support/allocations.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl {
namespace {

using testing::AllocationsOf;
using testing::ErrorOf;
using testing::FlagText;
using testing::Row;
using testing::State;
using testing::StateText;

class Line final : public LineView {
  QD_MEMBERS(Line, LineView, Internal, "A line.")

 public:
  QD_FIELD(GetLet, Long, Number, "N", "A number.")
  QD_INHERITED(Modified)
  QD_INHERITED(Properties)
};

class Lines final : public LineList<Line> {
  QD_MEMBERS(Lines, LineList<Line>, Internal, "A list of lines.")

 public:
  QD_INHERITED(NewEnum)
};

QD_DEFINE_MEMBERS(Line)
QD_DEFINE_MEMBERS(Lines)

class LineWalk : public ::testing::Test {
 protected:
  LineWalk() { lines->Attach(rows, flag); }

  // Lines with the numbers from 1 on.
  void Fill(Long count) {
    for (Long number = 1; number <= count; ++number) rows->Append(Variant(Row({{"N", number}})));
  }
  Ref<Dictionary> RowOf(Long index) const { return rows->Item(index).As<Dictionary>(); }

  Ref<Vector> rows = Make<Vector>();
  Ref<ChangeFlag> flag = Make<ChangeFlag>();
  Ref<Lines> lines = Make<Lines>();
};

// ---- What a walk makes ----

TEST_F(LineWalk, InALoopTakesOneObjectForAllLines) {
  Fill(100);
  flag->At(100);  // the flags are the document's and stay
  Long sum = 0;
  EXPECT_EQ(AllocationsOf([&] {
              for (auto& line : lines) sum += line.Number();
            }),
            1u);
  EXPECT_EQ(sum, 5050);
}

TEST_F(LineWalk, OverLinesThatAreWrittenTakesNoMore) {
  Fill(100);
  flag->At(100);
  EXPECT_EQ(AllocationsOf([&] {
              for (auto& line : lines) line.Number(line.Number() + 1);
            }),
            1u);
  EXPECT_EQ(RowOf(100)->Value("N").As<Long>(), 101);
}

TEST_F(LineWalk, ThatKeepsItsLinesTakesOneObjectForEach) {
  Fill(100);
  flag->At(100);
  std::vector<Ref<Line>> kept;
  kept.reserve(100);
  EXPECT_EQ(AllocationsOf([&] {
              for (auto& line : lines) kept.emplace_back(&line);
            }),
            100u);
  for (Long i = 1; i <= 100; ++i) {
    EXPECT_EQ(kept[static_cast<std::size_t>(i - 1)]->Number(), i);
  }
}

TEST_F(LineWalk, ByAnEnumeratorTakesOneObjectForEachLine) {
  Fill(100);
  flag->At(100);
  const Ref<Enumerator> enumerator = lines->NewEnum();
  Long sum = 0;
  EXPECT_EQ(AllocationsOf([&] {
              Variant item;
              while (enumerator->Next(item)) sum += item.As<Line>()->Number();
            }),
            100u);
  EXPECT_EQ(sum, 5050);
}

TEST_F(LineWalk, AViewOfOneLineIsOneObject) {
  const auto row = Row({});
  EXPECT_EQ(AllocationsOf([&] { ViewOf<Line>(row, flag); }), 1u);
}

// ---- What a line is ----

TEST_F(LineWalk, ALineThatIsKeptOutlivesTheWalkAndTheDocument) {
  Fill(3);
  Ref<Line> kept;
  for (auto& line : lines) {
    if (line.Number() == 2) kept = Ref<Line>(&line);
  }
  const Ref<ChangeFlag> second = flag->At(2);
  lines = nullptr;
  rows = nullptr;
  flag = nullptr;
  EXPECT_EQ(kept->Number(), 2);
  kept->Number(20);
  EXPECT_EQ(State(*kept), "{N: 20} modified flagged");
  EXPECT_TRUE(second->Modified());
}

TEST_F(LineWalk, ALineThatIsKeptInAVariantStaysToo) {
  Fill(2);
  std::vector<Variant> kept;
  for (auto& line : lines) kept.emplace_back(&line);
  EXPECT_EQ(kept[0].As<Line>()->Number(), 1);
  EXPECT_EQ(kept[1].As<Line>()->Number(), 2);
}

TEST_F(LineWalk, ACopyOfTheIteratorStaysAtItsLine) {
  Fill(3);
  auto iterator = lines->begin();
  const auto first = iterator;
  ++iterator;
  EXPECT_EQ(first->Number(), 1);
  EXPECT_EQ(iterator->Number(), 2);
  ++iterator;
  EXPECT_EQ(first->Number(), 1);
  EXPECT_EQ((*iterator).Number(), 3);
  ++iterator;
  EXPECT_TRUE(iterator == lines->end());
  EXPECT_EQ(ErrorOf([&] { *iterator; }), "error 91");
  EXPECT_EQ(ErrorOf([&] { iterator->Number(); }), "error 91");
}

TEST_F(LineWalk, TheLoopSharesTheRowsAndTheFlagsOfTheirPositions) {
  Fill(3);
  const Ref<ChangeFlag> second = flag->At(2);
  for (auto& line : lines) {
    EXPECT_EQ(line.Properties()->Dictionary(), RowOf(line.Number()));
    EXPECT_EQ(line.Properties()->ChangeFlag(), flag->At(line.Number()));
    if (line.Number() == 2) line.Number(20);
    EXPECT_EQ(line.Modified(), line.Number() == 20);
  }
  EXPECT_EQ(State(rows, flag), "[{N: 1}, {N: 20}, {N: 3}] +[- * -]");
  EXPECT_TRUE(second->Modified());
}

TEST_F(LineWalk, EachStepSetsTheTrackingOfItsRowAnew) {
  Fill(3);
  for (Long i = 1; i <= 3; ++i) RowOf(i)->Put("N", i);
  const auto modified = [&] {
    std::string text;
    for (Long i = 1; i <= 3; ++i) text += RowOf(i)->Modified() ? "m" : "-";
    return text;
  };
  EXPECT_EQ(modified(), "mmm");
  std::string seen;
  for (auto& line : lines) {
    seen += modified() + " ";
    line.Number(0);
  }
  EXPECT_EQ(seen, "-mm m-m mm- ");
  EXPECT_TRUE(RowOf(1)->touched());  // the document doesn't forget
}

TEST_F(LineWalk, AHoleBecomesAnEmptyRowThatStays) {
  Fill(1);
  rows->Append(Nothing);
  rows->Append(Nothing);
  std::string seen;
  for (auto& line : lines)
    seen += std::to_string(line.Number()) + " of " + StateText(Variant(rows)) + "\n";
  EXPECT_EQ(seen, "1 of [{N: 1}, Nothing, Nothing]\n"
                  "0 of [{N: 1}, {}, Nothing]\n"
                  "0 of [{N: 1}, {}, {}]\n");
  EXPECT_EQ(State(rows, flag), "[{N: 1}, {}, {}] -[- - -]");
}

TEST_F(LineWalk, MeetsLinesThatAreAddedOnTheWayAndEndsWhereTheyAreRemoved) {
  Fill(2);
  std::string met;
  for (auto& line : lines) {
    met += std::to_string(line.Number());
    if (line.Number() == 2) rows->Append(Variant(Row({{"N", 3}})));
  }
  EXPECT_EQ(met, "123");
  met.clear();
  for (auto& line : lines) {
    met += std::to_string(line.Number());
    rows->Remove(3 - line.Number() + 1, 1);
  }
  EXPECT_EQ(met, "12");
}

TEST_F(LineWalk, ARowThatIsRemovedUnderItsLineLivesOnWithIt) {
  Fill(2);
  for (auto& line : lines) {
    rows->Remove(1, 1);
    EXPECT_EQ(line.Number(), 1);
    line.Number(5);
    EXPECT_EQ(line.Number(), 5);
  }
  EXPECT_EQ(StateText(Variant(rows)), "[{N: 2}]");
}

TEST_F(LineWalk, AnElementThatIsNoRowRaisesAndLeavesTheLineBefore) {
  Fill(1);
  rows->Append("text");
  auto iterator = lines->begin();
  EXPECT_EQ(ErrorOf([&] { ++iterator; }), "error 13");
  EXPECT_EQ(iterator->Number(), 1);
}

TEST_F(LineWalk, InALoopOverflowsBehindTheGreatestPosition) {
  for (Long i = 1; i <= 32768; ++i) rows->Append(Variant(Row({})));
  Long met = 0;
  EXPECT_EQ(ErrorOf([&] {
              for ([[maybe_unused]] auto& line : lines) ++met;
            }),
            "error 6");
  EXPECT_EQ(met, 32767);
  rows->Remove(32768, 1);
  met = 0;
  for ([[maybe_unused]] auto& line : lines) ++met;
  EXPECT_EQ(met, 32767);
}

TEST_F(LineWalk, LateBoundCallersSeeTheSame) {
  Fill(2);
  rows->Append(Nothing);
  RowOf(1)->Put("N", 10);
  const Ref<Enumerator> enumerator = Ref<Object>(lines)->Call("NewEnum").As<Enumerator>();
  std::string met;
  std::vector<Variant> kept;
  Variant item;
  while (enumerator->Call("Next", ByRef(item)).As<Boolean>()) {
    const auto line = item.As<Object>();
    met += StateText(line->Get("Number")) + StateText(line->Get("Modified")) + " ";
    if (kept.size() == 1) line->Let("Number", 20);
    kept.push_back(item);
  }
  EXPECT_EQ(met, "10False 2False 0False ");
  EXPECT_EQ(State(rows, flag), "[{N: 10}, {N: 20}, {}] +[- * -]");
  EXPECT_FALSE(RowOf(1)->Modified());
  EXPECT_EQ(State(*kept[0].As<Line>()), "{N: 10}");
  EXPECT_EQ(State(*kept[1].As<Line>()), "{N: 20} modified flagged");
}

TEST(LineList, ThatWasNeverBoundRaisesNinetyOne) {
  const auto unbound = Make<Lines>();
  EXPECT_EQ(ErrorOf([&] { unbound->begin(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { unbound->NewEnum(); }), "error 91");
}

TEST(LineList, LinesLiveAndDieOnTheirThread) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      const auto rows = Make<Vector>();
      for (Long number = 1; number <= 50; ++number) rows->Append(Variant(Row({{"N", number}})));
      const auto lines = Make<Lines>();
      lines->Attach(rows, Make<ChangeFlag>());
      thread_local std::vector<Ref<Line>> kept;  // released when the thread is gone
      Long sum = 0;
      for (auto& line : lines) {
        sum += line.Number();
        if (line.Number() % 10 == 0) kept.emplace_back(&line);
      }
      EXPECT_EQ(sum, 1275);
      EXPECT_EQ(kept.back()->Number(), 50);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// ---- The bag as an object ----

TEST(LineView, PropertiesAreMadeWhenSomeoneAsksAndShareRowAndFlag) {
  const auto row = Row({{"N", 1}});
  const auto flag = Make<ChangeFlag>();
  const auto line = ViewOf<Line>(row, flag);
  Ref<Properties> bag;
  EXPECT_EQ(AllocationsOf([&] { bag = line->Properties(); }), 1u);
  EXPECT_EQ(AllocationsOf([&] { EXPECT_EQ(line->Properties(), bag); }), 0u);
  EXPECT_EQ(bag->Dictionary(), row);
  EXPECT_EQ(bag->ChangeFlag(), flag);
  bag->SetValue("N", Long{2});
  EXPECT_EQ(line->Number(), 2);
  EXPECT_TRUE(line->Modified());
  line->Number(3);
  EXPECT_EQ(StateText(bag->Item("N")->Value()), "\"3\"");
}

TEST(LineView, PropertiesOutliveTheLine) {
  const auto row = Row({{"N", 1}});
  const Ref<Properties> bag = ViewOf<Line>(row, Make<ChangeFlag>())->Properties();
  bag->SetValue("N", Long{2});
  EXPECT_EQ(StateText(Variant(row)), "{N: 2}");
}

TEST(LineView, OfNothingHasARowAndAFlagOfItsOwn) {
  const auto line = ViewOf<Line>(Nothing, Nothing);
  EXPECT_EQ(State(*line), "{}");
  line->Number(1);
  EXPECT_EQ(State(*line), "{N: 1} modified flagged");
}

TEST(LineView, ThatWasNeverBoundHasNoPropertiesAndRaisesNinetyOne) {
  const auto line = Make<Line>();
  EXPECT_EQ(line->Properties(), nullptr);
  EXPECT_EQ(ErrorOf([&] { line->Number(); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { line->Number(1); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { line->Modified(); }), "error 91");
}

TEST_F(LineWalk, PropertiesStayWithTheirLineWhenTheLoopMovesOn) {
  Fill(3);
  std::vector<Ref<Properties>> bags;
  for (auto& line : lines) bags.push_back(line.Properties());
  for (Long i = 1; i <= 3; ++i) {
    const Ref<Properties>& bag = bags[static_cast<std::size_t>(i - 1)];
    EXPECT_EQ(bag->Dictionary(), RowOf(i));
    EXPECT_EQ(bag->ChangeFlag(), flag->At(i));
  }
  bags[1]->SetValue("N", Long{20});
  EXPECT_EQ(State(rows, flag), "[{N: 1}, {N: 20}, {N: 3}] +[- * -]");
}

}  // namespace
}  // namespace qdclgl
