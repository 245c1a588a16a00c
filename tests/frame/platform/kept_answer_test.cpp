#include "qdclgl/frame/platform/kept_answer.h"

#include <gtest/gtest.h>

namespace qdclgl {
namespace {

TEST(KeptAnswer, AsksAnewOnlyWhenTheAnswerIsOld) {
  using std::chrono::seconds;
  KeptAnswer<int> kept(seconds(10));
  int asked = 0;
  const auto answer_after = [&](int time) {
    return kept.Get(KeptAnswer<int>::Clock::time_point(seconds(time)), [&] { return ++asked; });
  };
  EXPECT_EQ(answer_after(100), 1);
  EXPECT_EQ(answer_after(109), 1);
  EXPECT_EQ(answer_after(110), 2);
  EXPECT_EQ(answer_after(119), 2);
  EXPECT_EQ(answer_after(500), 3);
  EXPECT_EQ(asked, 3);
}

}  // namespace
}  // namespace qdclgl
