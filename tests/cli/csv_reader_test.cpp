#include "qdclgl/cli/csv_reader.h"

#include <gtest/gtest.h>

#include <sstream>

namespace qdclgl::cli {
namespace {

// The rows as text: "1:1[a|b]", with a problem "2:1[a] !2:3 reason".
std::string RowsOf(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::string result;
  const auto place = [](Position at) {
    return std::to_string(at.line) + ":" + std::to_string(at.column);
  };
  for (CsvRow row; reader.Next(row);) {
    result += place(row.at) + "[";
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
      result += (i == 0 ? "" : "|") + row.cells[i].text;
    }
    result += "]";
    if (row.problem)
      result += " !" + place(row.problem->at) + " " + row.problem->reason.substr(0, 23);
    result += "\n";
  }
  return result;
}

std::string PlacesOf(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::string result;
  for (CsvRow row; reader.Next(row);) {
    for (const CsvCell& cell : row.cells) {
      result += std::to_string(cell.at.line) + ":" + std::to_string(cell.at.column) + " ";
    }
  }
  return result;
}

TEST(CsvReader, RowsEndWithAnyLineEndAndTheLastNeedsNone) {
  EXPECT_EQ(RowsOf("a,b\nc,d"), "1:1[a|b]\n2:1[c|d]\n");
  EXPECT_EQ(RowsOf("a,b\r\nc,d\r\n"), "1:1[a|b]\n2:1[c|d]\n");
  EXPECT_EQ(RowsOf("a,b\rc,d\r"), "1:1[a|b]\n2:1[c|d]\n");
  EXPECT_EQ(RowsOf(""), "");
}

TEST(CsvReader, AByteOrderMarkAndBlankLinesAreNoRows) {
  EXPECT_EQ(RowsOf("\xEF\xBB\xBF"
                   "a\n\n\r\n  \nb\n\n"),
            "1:1[a]\n5:1[b]\n");
}

TEST(CsvReader, QuotesHoldCommasQuotesAndLineEnds) {
  EXPECT_EQ(RowsOf("\"a,\"\"b\"\"\",c\n\"x\ny\",z\nlast\n"),
            "1:1[a,\"b\"|c]\n2:1[x\ny|z]\n4:1[last]\n");
  EXPECT_EQ(RowsOf("\"\"\n,\n"), "1:1[]\n2:1[|]\n");
}

TEST(CsvReader, BlanksAroundACellDoNotCountUnlessQuoted) {
  EXPECT_EQ(RowsOf(" a ,\" b \" , c\n"), "1:1[a| b |c]\n");
}

TEST(CsvReader, EachCellKnowsItsLineAndItsColumnInCharacters) {
  EXPECT_EQ(PlacesOf("a,\xC3\xA9\xE8\x8C\xB6,c\r\n\"x\ny\",z\n"), "1:1 1:3 1:6 2:1 3:4 ");
}

TEST(CsvReader, AQuoteInTheMiddleIsAProblemOfItsRowAlone) {
  EXPECT_EQ(RowsOf("a,b\"c,d\ne,f\n"), "1:1[a] !1:4 the quotes are wrong he\n2:1[e|f]\n");
  EXPECT_EQ(RowsOf("a,\"b\"c,d\r\ne,f\n"), "1:1[a] !1:6 the quotes are wrong he\n2:1[e|f]\n");
}

TEST(CsvReader, AnOpenQuoteCostsItsOwnLineAndNoMore) {
  EXPECT_EQ(RowsOf("a,\"b\nc,d\ne,f\n"),
            "1:1[a] !1:3 the quoted text that be\n2:1[c|d]\n3:1[e|f]\n");
  // The next quote ends the text in a place where no quote may stand.
  EXPECT_EQ(RowsOf("a,\"b\nc,\"d\",e\n"), "1:1[a] !1:3 the quoted text that be\n2:1[c|d|e]\n");
  EXPECT_EQ(RowsOf("a,\"b"), "1:1[a] !1:3 the quoted text that be\n");
}

TEST(CsvReader, TextThatIsNotUtf8IsAProblemAndTheRowIsThere) {
  EXPECT_EQ(RowsOf("a,\xE9,c\nd\n"), "1:1[a|\xE9|c] !1:3 the text is not UTF-8\n2:1[d]\n");
}

TEST(CsvReader, AZeroByteIsAProblemOfItsRowAlone) {
  EXPECT_EQ(RowsOf(std::string("a,b\0c,d\ne,f\n", 12)),
            "1:1[a|b" + std::string(1, '\0') + "c|d] !1:3 the text holds a zero b\n2:1[e|f]\n");
}

TEST(CsvReader, ARowOfTooManyCellsCostsNeitherMemoryNorTheNextRow) {
  std::istringstream in(std::string(300'000, ',') + "\ne,f\n");
  CsvReader reader(in);
  CsvRow row;
  ASSERT_TRUE(reader.Next(row));
  ASSERT_TRUE(row.problem);
  EXPECT_EQ(row.problem->reason, "the row has more than 1000 cells");
  EXPECT_EQ(row.problem->at.column, 1001);
  EXPECT_EQ(row.cells.size(), 1000u);
  ASSERT_TRUE(reader.Next(row));
  EXPECT_FALSE(row.problem);
  EXPECT_EQ(row.at.line, 2);
  EXPECT_EQ(row.cells.size(), 2u);
}

TEST(CsvReader, PlacesHoldAcrossTheBlocksOfALongFile) {
  std::string text;
  for (int i = 0; i < 30000; ++i) text += "abc,\"d\"\"e\",f\n";
  std::istringstream in(text + "last,\"open\n");
  CsvReader reader(in);
  CsvRow row;
  for (long line = 1; line <= 30000; ++line) {
    ASSERT_TRUE(reader.Next(row));
    ASSERT_FALSE(row.problem);
    ASSERT_EQ(row.cells.size(), 3u);
    ASSERT_EQ(row.cells[1].text, "d\"e");
    ASSERT_EQ(row.cells[2].at.line, line);
    ASSERT_EQ(row.cells[2].at.column, 12);
  }
  ASSERT_TRUE(reader.Next(row));
  ASSERT_TRUE(row.problem);
  EXPECT_EQ(row.problem->at.line, 30001);
  EXPECT_FALSE(reader.Next(row));
}

TEST(CsvReader, AQuoteThatStaysOpenDoesNotDrawTheWholeFileIn) {
  std::string text = "a,\"open\n";
  for (int i = 0; i < 400000; ++i) text += "row,x\n";
  std::istringstream in(text);
  CsvReader reader(in);
  CsvRow row;
  ASSERT_TRUE(reader.Next(row));
  EXPECT_TRUE(row.problem);
  EXPECT_LT(reader.bytes(), 1500000);
  long rows = 0;
  while (reader.Next(row)) ++rows;
  EXPECT_EQ(rows, 400000);
}

}  // namespace
}  // namespace qdclgl::cli
