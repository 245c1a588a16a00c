// Books that are copied from one database to another.
#include <gtest/gtest.h>

#include <filesystem>

#include "qdclgl/server/db/connections.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class BooksMove : public CliTest {
 protected:
  BooksMove() {
    for (const DatabaseKind kind : server::testing::Databases()) {
      places.push_back(server::testing::NewConnectionText(kind));
    }
  }
  ~BooksMove() override {
    server::Connections::OfThisThread().CloseAll();
    for (const std::string& place : places) server::testing::RemoveBooks(place);
  }

  // What a command prints of books.
  static std::string Told(const std::string& books, std::vector<std::string> words) {
    words.insert(words.begin() + 1, books);
    const RunResult result = RunInProcess(words);
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  std::string Exported(const std::string& books) const {
    std::string content;
    for (const char* part : {"--accounts", "--journal"}) {
      const std::string file = folder.Path("exported.csv");
      EXPECT_EQ(RunInProcess({"export", books, part, file}).err, "");
      content += ReadFile(file);
      std::filesystem::remove(file);
    }
    return content;
  }

  std::vector<std::string> places;  // on each database
};
QDCLGL_CLI_TEST(BooksMove);

TEST_P(BooksMove, GivesTheSameBooksOnEitherDatabase) {
  KeepSample();
  const std::string exported = Exported(book);
  EXPECT_GT(exported.size(), 1000);
  for (const std::string& place : places) {
    const RunResult copied = Run({"copy", place});
    EXPECT_EQ(copied.err, "");
    ASSERT_EQ(copied.code, 0);
    EXPECT_TRUE(copied.out.starts_with("Copied: version ")) << copied.out;
    EXPECT_NE(copied.out.find(", 75 vouchers, the last one 2024/3 Bank 8 of 2024-03-29, "),
              std::string::npos)
        << copied.out;
    EXPECT_EQ(Told(place, {"doctor"}), "The books are in order.\n");
    EXPECT_EQ(Exported(place), exported);
    for (const std::vector<std::string>& words : std::initializer_list<std::vector<std::string>>{
             {"balance", "--csv"}, {"users", "--json"}, {"vouchers", "--json"}}) {
      EXPECT_EQ(Told(place, words), Told(book, words)) << words.front();
    }
  }
}

TEST_P(BooksMove, TellsThatACopyWentOnOrBeganAnew) {
  KeepSample();
  const auto break_off = [&] {
    server::Database::SetStatementHook([](std::string_view sql) {
      if (sql.starts_with("INSERT INTO t_VoucherEntry")) {
        throw Error(4711, "test", "broken off");
      }
    });
    EXPECT_EQ(Run({"copy", places.front()}).err, "qdclgl: 4711: broken off\n");
    server::Database::SetStatementHook(nullptr);
  };
  break_off();
  EXPECT_EQ(RunInProcess({"balance", places.front()}).err,
            "qdclgl: 80044204: A copy of books is not complete here: repeat the qdclgl copy that "
            "began it.\n");
  const RunResult went_on = Run({"copy", places.front()});
  EXPECT_TRUE(went_on.out.starts_with("The copy went on where it was broken off.\nCopied: "))
      << went_on.out << went_on.err;
  server::Connections::OfThisThread().CloseAll();
  server::testing::RemoveBooks(places.front());
  break_off();
  ASSERT_EQ(Run({"set", "accounts", "1000", "FName=Money"}).err, "");
  const RunResult anew = Run({"copy", places.front()});
  EXPECT_TRUE(anew.out.starts_with(
      "The books had changed since the copy was broken off: it began anew.\nCopied: "))
      << anew.out << anew.err;
  EXPECT_EQ(Exported(places.front()), Exported(book));
}

TEST_P(BooksMove, TellsWrongUses) {
  Init();
  const std::string to = folder.Path("to.db");
  EXPECT_EQ(Said({"copy", to, "--group", "General"}),
            "2 qdclgl: --date, --group and --reference go with the ID of a voucher; see qdclgl "
            "help copy\n");
  EXPECT_EQ(Said({"copy", "1", "--program-role", "clerk"}),
            "2 qdclgl: --program-role goes with FROM and TO; see qdclgl help copy\n");
  EXPECT_EQ(Said({"copy", to, to}),
            "2 qdclgl: copy takes one ID, or FROM and TO; see qdclgl help copy\n");
  EXPECT_TRUE(Said({"copy", book}).starts_with("1 qdclgl: 80044205: There are books already."));
  ASSERT_EQ(Run({"user", "ann", "--roles", "reader", "--no-password"}).err, "");
  EXPECT_EQ(Said({"copy", to, "--user", "ann"}),
            "1 qdclgl: 80044202: User ann (reader) may not copy the books.\n");
  EXPECT_FALSE(std::filesystem::exists(to));
}

}  // namespace
}  // namespace qdclgl::cli::testing
