#include "qdclgl/frame/platform/thread_own.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace qdclgl {
namespace {

std::atomic<int> made = 0;
std::atomic<int> released = 0;

struct Counted {
  Counted() { ++made; }
  ~Counted() { ++released; }
  int value = 0;
};

TEST(ThreadOwn, EachThreadHasItsOwnUntilItEnds) {
  ThreadOwn<Counted>().value = 5;
  EXPECT_EQ(ThreadOwn<Counted>().value, 5);
  EXPECT_EQ(made, 1);
  std::thread([] {
    EXPECT_EQ(ThreadOwn<Counted>().value, 0);
    ThreadOwn<Counted>().value = 7;
    EXPECT_EQ(made, 2);
  }).join();
  EXPECT_EQ(released, 1);
  EXPECT_EQ(ThreadOwn<Counted>().value, 5);
}

}  // namespace
}  // namespace qdclgl
