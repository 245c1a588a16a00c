// Backups, and books from them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "qdclgl/cli/system_calls.h"
#include "qdclgl/server/db/connections.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class Backup : public CliTest {
 protected:
  Backup() : other(server::testing::NewConnectionText(GetParam())), file(folder.Path("b.db")) {}
  ~Backup() override { server::testing::RemoveBooks(other); }

  void MakeBooks() const {
    KeepSample();
    ASSERT_EQ(Run({"add", "items", "C1", "FItemClassID=3", "FName=Ann"}).err, "");
    ASSERT_EQ(Run({"add", "notes", "FName=n", "FData=words"}).code, 0);
    // The id of a record that is gone is given to no other one.
    ASSERT_EQ(Run({"add", "currencies", "GONE", "FName=Gone"}).err, "");
    ASSERT_EQ(Run({"remove", "currencies", "GONE", "--yes"}).err, "");
  }
  // What the books tell of themselves, but for what logins leave behind.
  static std::vector<std::string> Told(const std::string& books) {
    std::vector<std::string> told;
    for (std::vector<std::string> words : std::initializer_list<std::vector<std::string>>{
             {"vouchers", "--json"},
             {"accounts", "--json"},
             {"balance", "--json"},
             {"users", "--json"},
             {"items", "--json"},
             {"notes", "--json"},
             {"audit", "--filter", "FSubject <> 'Session'", "--csv"},
             {"doctor"}}) {
      words.insert(words.begin() + 1, books);
      const RunResult result = RunInProcess(words);
      EXPECT_EQ(result.err, "");
      told.push_back(result.out);
    }
    return told;
  }

  const std::string other, file;
};

TEST_P(Backup, GivesTheSameBooksAgain) {
  MakeBooks();
  const RunResult backed_up = Run({"backup", file});
  EXPECT_EQ(backed_up.err, "");
  ASSERT_EQ(backed_up.code, 0);
  EXPECT_NE(backed_up.out.find("75 vouchers, the last one 2024/3 Bank 8 of 2024-03-29, "),
            std::string::npos)
      << backed_up.out;
  namespace fs = std::filesystem;
  EXPECT_TRUE(IsPrivate(file));
  EXPECT_FALSE(fs::exists(file + ".part"));
  EXPECT_FALSE(fs::exists(file + "-wal"));

  const RunResult restored = RunInProcess({"restore", file, other});
  EXPECT_EQ(restored.err, "");
  ASSERT_EQ(restored.code, 0);
  EXPECT_EQ(restored.out.substr(restored.out.find(':')),
            backed_up.out.substr(backed_up.out.find(':')));
  EXPECT_EQ(Told(other), Told(book));

  // Both go on alike: with the next number, and with an id that no record ever had.
  for (const std::string& books : {book, other}) {
    EXPECT_EQ(RunInProcess({"new", books, "--line", "1000.01 debit 3 Tea", "--line",
                            "3000.01 credit", "--date", "2024-12-31"})
                  .err,
              "");
    EXPECT_EQ(RunInProcess({"add", books, "currencies", "NEW", "FName=New"}).err, "");
  }
  EXPECT_EQ(RunInProcess({"vouchers", other, "--json"}).out, Run({"vouchers", "--json"}).out);
  EXPECT_EQ(RunInProcess({"currencies", other, "--json"}).out, Run({"currencies", "--json"}).out);
  EXPECT_EQ(RunInProcess({"doctor", other}).out, "The books are in order.\n");
}

TEST_P(Backup, NeverWritesOverAnything) {
  MakeBooks();
  ASSERT_EQ(Run({"backup", file}).code, 0);
  const std::string bytes = ReadFile(file);
  const RunResult again = Run({"backup", file});
  EXPECT_EQ(again.err, "qdclgl: " + file + " is there already; --force writes over it\n");
  EXPECT_EQ(again.code, 6);
  EXPECT_EQ(ReadFile(file), bytes);
  EXPECT_EQ(Run({"backup", file, "--force"}).code, 0);

  const std::vector<std::string> told = Told(book);
  const RunResult refused = RunInProcess({"restore", file, book});
  EXPECT_EQ(refused.code, 1);
  EXPECT_TRUE(refused.err.starts_with("qdclgl: 80044205: ")) << refused.err;
  EXPECT_EQ(Told(book), told);
}

TEST_P(Backup, OfDamagedBooksIsRefused) {
  MakeBooks();
  server::Connections::OfThisThread().CloseAll();
  server::Database(server::ConnectionText::Parse(book))
      .Execute("UPDATE t_Balance SET FDebit = FDebit + 1 WHERE FDebit > 0");
  const RunResult refused = Run({"backup", file});
  EXPECT_EQ(refused.code, 4);
  EXPECT_NE(refused.err.find("do not pass their check"), std::string::npos) << refused.err;
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_FALSE(std::filesystem::exists(file + ".part"));
}

TEST_P(Backup, IsForAdministrators) {
  MakeBooks();
  ASSERT_EQ(Run({"user", "ann", "--roles", "reader", "--no-password"}).err, "");
  const RunResult refused = Run({"backup", file, "--user", "ann"});
  EXPECT_EQ(refused.err, "qdclgl: 80044202: User ann (reader) may not back up the books.\n");
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_P(Backup, TellsWrongUses) {
  Init();
  EXPECT_EQ(Run({"backup"}).code, 2);
  EXPECT_EQ(RunInProcess({"restore"}).code, 2);
  EXPECT_EQ(RunInProcess({"restore", file, other}).code, 6);
  const std::string garbage = folder.Write("garbage.db", "no books");
  EXPECT_NE(RunInProcess({"restore", garbage, other}).code, 0);
  EXPECT_NE(RunInProcess({"accounts", other}).code, 0);
  EXPECT_NE(Run({"backup", folder.Path("no/such/folder.db")}).code, 0);
}

QDCLGL_CLI_TEST(Backup);

// Books in files are put aside where it is forced.
TEST(BackupFile, PutsFormerBooksAside) {
  const Folder folder;
  const std::string book = folder.Path("books.db"), file = folder.Path("backup.db");
  SetVariable("QDCLGL_REGISTRY", folder.Path("registry"));
  ASSERT_EQ(RunInProcess({"init", book, "--no-password"}).code, 0);
  ASSERT_EQ(RunInProcess({"backup", book, file}).code, 0);
  ASSERT_EQ(RunInProcess({"add", book, "currencies", "USD", "FName=Dollar"}).err, "");
  server::Connections::OfThisThread().CloseAll();
  const RunResult restored = RunInProcess({"restore", file, book, "--force"});
  EXPECT_EQ(restored.code, 0) << restored.err;
  EXPECT_NE(restored.out.find("The books that were there are " + book + ".replaced now."),
            std::string::npos);
  EXPECT_NE(RunInProcess({"show", book, "currencies", "USD"}).code, 0);
  EXPECT_EQ(RunInProcess({"show", book + ".replaced", "currencies", "USD"}).code, 0);
  // A second time finds the name taken, and one that fails puts back what was there.
  server::Connections::OfThisThread().CloseAll();
  EXPECT_EQ(RunInProcess({"restore", file, book, "--force"}).code, 6);
  std::filesystem::remove(book + ".replaced");
  const std::string garbage = folder.Write("garbage.db", "no books");
  EXPECT_NE(RunInProcess({"restore", garbage, book, "--force"}).code, 0);
  EXPECT_EQ(RunInProcess({"doctor", book}).out, "The books are in order.\n");
}

}  // namespace
}  // namespace qdclgl::cli::testing
