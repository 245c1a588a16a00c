#include "qdclgl/server/ledgers/search_words.h"

#include "qdclgl/server/db/list.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

TEST(SearchWords, StandBetweenBlanksAndInQuotes) {
  using Words = std::vector<std::string>;
  EXPECT_EQ(SearchWords(""), Words());
  EXPECT_EQ(SearchWords("  tea  119 "), (Words{"tea", "119"}));
  EXPECT_EQ(SearchWords("\"green tea\" \"say \"\"no\"\"\" \"\" x"),
            (Words{"green tea", "say \"no\"", "x"}));
  EXPECT_EQ(SearchWords("\"open"), Words{"open"});
}

class HasWordTest : public LedgerTest {
 protected:
  bool Has(std::string_view text, std::string_view word) {
    std::vector<BoundValue> values = {std::string(text)};
    const std::string texts[] = {"'other'", "given.FText"};
    const std::string sql = "SELECT CASE WHEN " + HasWord(Books(), texts, word, values) +
                            " THEN 1 ELSE 0 END FROM (SELECT CAST(? AS TEXT) AS FText) AS given";
    std::swap(values[0], values[1]);
    const auto statement = Books().MakeStatement(sql);
    SetAll(*statement, values);
    statement->Open();
    statement->Fetch();
    return statement->Whole(0) == 1;
  }
};

TEST_P(HasWordTest, IgnoresCaseBeyondAsciiOnBothDatabasesAlike) {
  EXPECT_TRUE(Has("Black TEA", "tea"));
  EXPECT_TRUE(Has("KÄSE aus Köln", "käse"));
  EXPECT_TRUE(Has("käse aus Köln", "KÖLN"));
  EXPECT_TRUE(Has("ΛΌΓΟΣ", "λόγος")) << "two small letters have one capital";
  EXPECT_TRUE(Has("λόγος", "ΛΌΓΟΣ"));
  EXPECT_TRUE(Has("Счёт", "счЁт"));
  EXPECT_TRUE(Has("茶 5", "茶"));
  EXPECT_FALSE(Has("Kase", "käse"));
  EXPECT_FALSE(Has("tea", "teas"));
  EXPECT_TRUE(Has("100% ok_", "% OK_")) << "nothing stands for anything else";
  EXPECT_FALSE(Has("100 ok", "%"));
  EXPECT_TRUE(Has("C:\\Temp", "\\TEMP"));
  EXPECT_TRUE(Has("a" + std::string(60'000, 'x') + "b", std::string(60'000, 'X') + "B"));
}

QDCLGL_BOOKS_TEST(HasWordTest);

}  // namespace
}  // namespace qdclgl::server::testing
