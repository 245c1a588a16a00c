#include "qdclgl/cli/progress.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "qdclgl/server/books/work_progress.h"

namespace qdclgl::cli::testing {
namespace {

// Longer than a line stands at least.
void Wait() { std::this_thread::sleep_for(std::chrono::milliseconds(110)); }

class ProgressTest : public ::testing::Test {
 protected:
  std::string Shown(bool is_watched) {
    std::ostringstream out, err;
    Console console{out, err};
    console.shows_progress = is_watched;
    const int answer = Watched(console, [] {
      Wait();
      server::WorkProgress().Tell("Copying", 0.25);
      server::WorkProgress().Tell("Too soon to be seen", 0.5);
      return 42;
    });
    EXPECT_EQ(answer, 42);
    server::WorkProgress().Tell("Nobody listens", 1);
    EXPECT_EQ(out.str(), "");
    return err.str();
  }
};

TEST_F(ProgressTest, AWorkOnTheBooksIsShownOnALineThatGoesAway) {
  EXPECT_EQ(Shown(true), "\r 25 %  Copying\033[K\r\033[K");
}

TEST_F(ProgressTest, NothingIsShownWhereNobodyWatches) { EXPECT_EQ(Shown(false), ""); }

}  // namespace
}  // namespace qdclgl::cli::testing
