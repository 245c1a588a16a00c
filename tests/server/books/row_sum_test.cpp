#include "qdclgl/server/books/row_sum.h"

#include <gtest/gtest.h>

#include <vector>

namespace qdclgl::server::testing {
namespace {

struct AddedRow {
  std::array<std::int64_t, 3> numbers;
  const char* text;
};

RowSum SumOf(const std::vector<AddedRow>& rows) {
  RowSum sum;
  for (const AddedRow& row : rows) sum.Add(row.numbers, row.text);
  return sum;
}

const AddedRow kOne{{1, 2, 3}, "2024-01-31"};
const AddedRow kTwo{{4, 5, 6}, "2024-02-29"};

TEST(RowSumTest, IsTheSameInWhateverOrderTheRowsCome) {
  EXPECT_EQ(SumOf({kOne, kTwo}), SumOf({kTwo, kOne}));
}

TEST(RowSumTest, IsAnotherForAnyOtherRow) {
  for (const AddedRow& other : std::vector<AddedRow>{{{1, 2, 4}, "2024-01-31"},
                                                     {{1, 3, 2}, "2024-01-31"},
                                                     {{2, 1, 3}, "2024-01-31"},
                                                     {{3, 2, 1}, "2024-01-31"},
                                                     {{1, 2, -3}, "2024-01-31"},
                                                     {{1, 2, 3}, "2024-01-30"},
                                                     {{1, 2, 3}, "2024-01-3"},
                                                     {{1, 2, 3}, ""}}) {
    EXPECT_FALSE(SumOf({kTwo, other}) == SumOf({kTwo, kOne})) << other.text;
  }
}

TEST(RowSumTest, CountsARowThatComesTwice) {
  EXPECT_FALSE(SumOf({kOne, kOne}) == SumOf({kOne}));
  EXPECT_FALSE(SumOf({kOne, kOne}) == SumOf({kTwo, kTwo}));
  EXPECT_FALSE(SumOf({}) == SumOf({kOne}));
}

TEST(RowSumTest, TellsRowsApartThatHaveSwappedParts) {
  EXPECT_FALSE(SumOf({{{1, 2, 3}, "a"}, {{4, 5, 6}, "b"}}) ==
               SumOf({{{1, 2, 3}, "b"}, {{4, 5, 6}, "a"}}));
}

}  // namespace
}  // namespace qdclgl::server::testing
