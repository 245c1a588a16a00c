// The file of SQLite books: whose it is, and who can read it.
#include "qdclgl/server/db/books_file.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "qdclgl/server/db/connections.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

namespace fs = std::filesystem;

// A process of its own that may write nothing that is not its own, at work on an operation.
class Reader {
 public:
  explicit Reader(const std::function<std::string()>& operation) {
    Connections::OfThisThread().CloseAll();
    EXPECT_EQ(pipe(ends_), 0);
    pid_ = fork();
    if (pid_ != 0) {
      close(ends_[1]);
      return;
    }
    constexpr unsigned kNobody = 65534;
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(1);
    std::string answer;
    try {
      answer = operation();
    } catch (const Error& error) {
      answer = error.what();
    }
    _exit(write(ends_[1], answer.data(), answer.size()) < 0 ? 1 : 0);
  }

  // What the operation gave, at its end.
  std::string Answer() const {
    std::string answer;
    char bytes[4096];
    for (ssize_t count; (count = read(ends_[0], bytes, sizeof bytes)) > 0;) {
      answer.append(bytes, static_cast<std::size_t>(count));
    }
    close(ends_[0]);
    int status = 0;
    waitpid(pid_, &status, 0);
    EXPECT_EQ(status, 0);
    return answer;
  }

 private:
  int ends_[2] = {-1, -1};
  pid_t pid_ = -1;
};

// Lets two processes take turns.
class Turn {
 public:
  Turn() { EXPECT_EQ(pipe(ends_), 0); }
  void Give() const { EXPECT_EQ(write(ends_[1], "x", 1), 1); }
  void Await() const {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
  }

 private:
  int ends_[2] = {-1, -1};
};

class FileOfBooksTest : public LedgerTest {
 protected:
  FileOfBooksTest() {
    Step("Post", Save(Sale(10)));
    const std::string file(ConnectionText::Parse(connection)[connection_key::kDataSource]);
    folder_ = file + ".folder";
    fs::create_directory(folder_);
    place_ = "Provider=SQLite;Data Source=" + Path("books.db") + ";";
  }
  ~FileOfBooksTest() override {
    Connections::OfThisThread().CloseAll();
    SetMode(folder_, 0700);
    fs::remove_all(folder_);
  }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  static void SetMode(const std::string& path, unsigned mode) {
    fs::permissions(path, static_cast<fs::perms>(mode));
  }
  static std::string ModeOf(const std::string& path) {
    struct stat state {};
    if (stat(path.c_str(), &state) != 0) return "none";
    char text[8];
    std::snprintf(text, sizeof text, "%03o", state.st_mode & 0777u);
    return text;
  }
  std::string NamesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    std::string text;
    for (const std::string& name : names) text += name + " ";
    return text;
  }

  // Books in the folder that can be read by everybody, and written to by nobody but root.
  void PutBooks() {
    CopyBooks(connection, place_);
    SetMode(Path("books.db"), 0444);
    SetMode(folder_, 0555);
  }
  void LoginThere() {
    props = Call("QDSVGLSession.SessionUpdate", "Login", place_, "administrator", "").As<String>();
  }
  std::string Cash() {
    return TextOf(Call("QDSVGLBalance.BalanceInfo", "GetList", props, Long{0}, Long{0}, Long{0},
                       "FAccountNumber = '1000' AND FCurrencyID = 0")
                      .As<Recordset>(),
                  {"FEndBalance"});
  }

  // What an operation gives in a process that may write nothing there.
  static std::string AsReader(const std::function<std::string()>& operation) {
    return Reader(operation).Answer();
  }

  std::string folder_;
  std::string place_;
};
QDCLGL_BOOKS_TEST_OF(FileOfBooksTest, kSQLite);

TEST_P(FileOfBooksTest, NewBooksAreTheirMakersAlone) {
  const mode_t former = umask(0);
  Call("QDSVGLBooks.BooksUpdate", "Create", place_, "EUR", Long{2024}, Named("NoPassword", true));
  EXPECT_EQ(NamesInFolder(), "books.db ") << "nothing else is left of the making";
  LoginThere();
  AddGroup("Receipts");
  EXPECT_EQ(NamesInFolder(), "books.db books.db-shm books.db-wal ");
  umask(former);
  for (const char* name : {"books.db", "books.db-wal", "books.db-shm"}) {
    EXPECT_EQ(ModeOf(Path(name)), "600") << name;
  }
}

TEST_P(FileOfBooksTest, WhatStandsInThePlaceOfNewBooksStays) {
  NewBooksFile first(Path("books.db")), second(Path("books.db"));
  EXPECT_NE(first.path(), second.path());
  EXPECT_EQ(ModeOf(first.path()), "600");
  first.PutInPlace();
  EXPECT_EQ(RefusalOf([&] { second.PutInPlace(); }), "BooksExist");
  fs::create_directory_symlink("nowhere", Path("link"));
  NewBooksFile third(Path("link"));
  EXPECT_EQ(RefusalOf([&] { third.PutInPlace(); }), "BooksExist");
  EXPECT_EQ(ModeOf(Path("books.db")), "600");
  EXPECT_EQ(RefusalOf([&] { NewBooksFile nowhere(Path("none/books.db")); }), "NoBooks");
}

TEST_P(FileOfBooksTest, ANameThatNoFileCanHaveIsRefused) {
  const std::string name = "/" + std::string(5000, '9');
  EXPECT_EQ(RefusalOf([&] {
              CreateObject("QDSVGLSession.SessionUpdate")->Call("Login", name, "administrator", "");
            }),
            "NoBooks");
}

TEST_P(FileOfBooksTest, WhoMayOnlyReadTheFolderReads) {
  PutBooks();
  EXPECT_EQ(AsReader([&] {
              LoginThere();
              return Cash() + Breaches();
            }),
            "10\n");
  EXPECT_EQ(NamesInFolder(), "books.db ");
}

TEST_P(FileOfBooksTest, WhoMayOnlyReadTheFileLeavesNothingBesideIt) {
  PutBooks();
  SetMode(folder_, 0777);
  EXPECT_EQ(AsReader([&] {
              LoginThere();
              return Cash();
            }),
            "10\n");
  EXPECT_EQ(NamesInFolder(), "books.db ") << "files of the reader would keep writers out";
}

TEST_P(FileOfBooksTest, AReaderIsToldThatThisIsAllThatCanBeDone) {
  PutBooks();
  EXPECT_EQ(AsReader([&] {
              LoginThere();
              return RefusalOf([&] { AddGroup("Transfers"); }) +
                     RefusalOf([&] { Call("QDSVGLBatch.BatchUpdate", "Begin", props); }) + Cash();
            }),
            "ReadOnlyReadOnly10\n");
}

TEST_P(FileOfBooksTest, AReaderSeesWhatIsSavedMeanwhile) {
  PutBooks();
  Turn writers, readers;
  const Reader reader([&] {
    LoginThere();
    std::string seen = Cash();
    for (int i = 0; i < 2; ++i) {
      writers.Give();
      readers.Await();
      seen += Cash();
    }
    return seen;
  });
  writers.Await();
  SetMode(folder_, 0755);
  SetMode(Path("books.db"), 0644);
  LoginThere();
  Step("Post", Save(Sale(10)));
  Connections::OfThisThread().CloseAll();
  EXPECT_EQ(NamesInFolder(), "books.db ") << "the reader's own view of the file holds nobody up";
  readers.Give();
  writers.Await();
  Step("Post", Save(Sale(10)));
  EXPECT_EQ(NamesInFolder(), "books.db books.db-shm books.db-wal ");
  readers.Give();
  EXPECT_EQ(reader.Answer(), "10\n20\n30\n");
}

TEST_P(FileOfBooksTest, SavesThatAReaderCannotGetAtAreNotLeftOutInSilence) {
  PutBooks();
  SetMode(folder_, 0755);
  SetMode(Path("books.db"), 0644);
  LoginThere();
  Step("Post", Save(Sale(10)));
  fs::create_directory(Path("copy"));
  for (const char* name : {"books.db", "books.db-wal"}) {
    fs::copy_file(Path(name), Path(std::string("copy/") + name));
  }
  SetMode(Path("copy"), 0555);
  const std::string copy = Path("copy/books.db");
  EXPECT_EQ(AsReader([&] {
              return SentenceOf(
                  [&] { Call("QDSVGLSession.SessionUpdate", "Login", copy, "administrator", ""); });
            }),
            "Saves of " + copy + " stand in " + copy +
                "-wal; only who may write there can open the books.");
  SetMode(Path("copy"), 0755);
}

}  // namespace
}  // namespace qdclgl::server::testing
