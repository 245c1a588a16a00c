#include "qdclgl/server/db/refusals.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>

namespace qdclgl::server::testing {
namespace {

TEST(RefusalsTest, NumbersAndNamesAreUsedOnce) {
  std::set<std::int32_t> numbers;
  std::set<std::string_view> names;
  for (const RefusalRow& row : kRefusals) {
    EXPECT_TRUE(numbers.insert(row.number).second) << row.name;
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
    EXPECT_GE(static_cast<std::uint32_t>(row.number), 0x80044200u) << row.name;
  }
}

// docs/reference/errors.md has a table of refusals: number, name, meaning, what to do.
TEST(RefusalsTest, TheManualListsThemAllAndNoOthers) {
  std::ifstream manual(QDCLGL_SOURCE_DIR "/docs/reference/errors.md");
  ASSERT_TRUE(manual) << "docs/reference/errors.md is missing";
  std::string listed;
  for (std::string line; std::getline(manual, line);) {
    if (!line.starts_with("| 0x800442")) continue;
    // The first three cells; the fourth says what to do.
    std::istringstream cells(line.substr(1));
    std::string number, name, meaning, advice;
    std::getline(cells, number, '|');
    std::getline(cells, name, '|');
    std::getline(cells, meaning, '|');
    std::getline(cells, advice, '|');
    listed += number + "|" + name + "|" + meaning + "\n";
    EXPECT_GT(advice.size(), 5u) << name;
  }
  std::string expected;
  for (const RefusalRow& row : kRefusals) {
    char number[sizeof "0x80044200"];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<std::uint32_t>(row.number));
    expected += std::string(" ") + number + " | " + std::string(row.name) + " | " +
                std::string(row.meaning) + " \n";
  }
  EXPECT_EQ(listed, expected);
}

}  // namespace
}  // namespace qdclgl::server::testing
