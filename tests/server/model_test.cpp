// Random work of several people beside a model of the books: every answer and every state are those
// of the model. QDCLGL_SEED repeats a run; QDCLGL_MODEL_OPERATIONS makes it longer.
#include "tests/server/model/run.h"
#include "tests/support/random_seed.h"

namespace qdclgl::server::testing {
namespace {

using model::Kind;
using model::Operation;
using ::qdclgl::testing::RandomSeed;

constexpr std::size_t kEpisode = 400;

std::size_t OperationCount() {
  const char* count = std::getenv("QDCLGL_MODEL_OPERATIONS");
  return count != nullptr ? std::strtoul(count, nullptr, 10) : 8 * kEpisode;
}

std::string TextOf(const std::vector<Operation>& work) {
  std::string text;
  for (const Operation& operation : work) text += TextOf(operation);
  return text;
}

class ModelTest : public ::testing::TestWithParam<DatabaseKind> {
 protected:
  // The shortest work that fails as this one does, and how.
  std::string Explained(const std::vector<Operation>& work) {
    const auto shortest = model::Shrunk(work, [&](const std::vector<Operation>& shorter) {
      return model::Run(GetParam(), shorter).has_value();
    });
    return TextOf(shortest) + model::Run(GetParam(), shortest).value_or("it fails no more");
  }
};

TEST_P(ModelTest, BooksAreWhatTheModelSaysWhateverPeopleDo) {
  std::uint32_t seed = RandomSeed();
  std::map<std::string, int> answers;
  for (std::size_t done = 0; done < OperationCount(); done += kEpisode, ++seed) {
    std::mt19937 random(seed);
    std::vector<Operation> work;
    for (std::size_t i = 0; i < kEpisode; ++i) work.push_back(model::DrawOperation(random));
    if (model::Run(GetParam(), work, &answers)) {
      FAIL() << "QDCLGL_SEED=" << seed << ", the shortest form of it:\n" << Explained(work);
    }
  }
  // Everything goes well now and then, and what is refused is refused for all kinds of reasons.
  for (const char* answer : {"Create none",
                             "Create TooLarge",
                             "Create NotBalanced",
                             "Create BadAccount",
                             "Create BadCurrency",
                             "Create BadSide",
                             "Create BadGroup",
                             "Create BadNumber",
                             "Create NoLines",
                             "Create NotAtRate",
                             "Create PeriodClosed",
                             "Create NotPermitted",
                             "Update none",
                             "Update Changed",
                             "Update NotFound",
                             "Delete none",
                             "Delete VoucherPosted",
                             "Check none",
                             "Check WrongStep",
                             "Approve none",
                             "Cash none",
                             "Post none",
                             "Post TooLarge",
                             "Post VoucherDeleted",
                             "ClearCashFlow none",
                             "Close none",
                             "Close NotAllPosted",
                             "Set none",
                             "AddAccount none",
                             "MarkAccount none",
                             "RemoveAccount InUse",
                             "AddCurrency NumberTaken",
                             "RemoveCurrency none"}) {
    EXPECT_GT(answers[answer], 0) << answer;
  }
  for (const auto& [answer, count] : answers) RecordProperty(answer, count);
}

QDCLGL_BOOKS_TEST(ModelTest);

TEST(ModelShrinkTest, WhatAFailureDoesNotNeedIsLeftOut) {
  std::mt19937 random(1);
  std::vector<Operation> work;
  for (int i = 0; i < 200; ++i) work.push_back(model::DrawOperation(random));
  // Fails where somebody closes behind a voucher with a dollar line.
  int runs = 0;
  const auto fails = [&](const std::vector<Operation>& shorter) {
    ++runs;
    bool has_dollars = false;
    for (const Operation& operation : shorter) {
      for (const model::Line& line : operation.content.lines) {
        has_dollars = has_dollars || line.currency == "USD";
      }
      if (has_dollars && operation.kind == Kind::kClose) return true;
    }
    return false;
  };
  ASSERT_TRUE(fails(work));
  const std::vector<Operation> shortest = model::Shrunk(work, fails);
  ASSERT_EQ(shortest.size(), 2u) << TextOf(shortest);
  ASSERT_EQ(shortest[0].content.lines.size(), 1u);
  EXPECT_EQ(shortest[0].content.lines[0].currency, "USD");
  EXPECT_EQ(shortest[1].kind, Kind::kClose);
  EXPECT_LT(runs, 200);
}

}  // namespace
}  // namespace qdclgl::server::testing
