// Copies of the whole books, and books from them.
#include <filesystem>

#include "qdclgl/cli/output_file.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/cli/which_books.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/path_text.h"

namespace qdclgl::cli {

namespace {

namespace fs = std::filesystem;
using server::PathOf;

// ---- Backing up ----

struct BackupOptions {
  Login login;
  std::vector<std::string> files;
  bool force = false;
};

// A connection text that says nothing but the file.
std::string FileText(const std::string& path) {
  std::string quoted;
  for (const char c : path) quoted.append(c == '}' ? 2 : 1, c);
  return "Provider=SQLite;Data Source={" + quoted + "};";
}

int BackUp(const BackupOptions& options, const Console& console) {
  if (options.files.size() != 1) throw UsageError("FILE is required");
  const std::string& file = options.files.front();
  const Overwriting overwriting = options.force ? Overwriting::kAllowed : Overwriting::kRefused;
  RequireFree(file, overwriting);
  const std::string props = options.login.Open();
  const std::string part = file + ".part";
  std::error_code ignored;
  fs::remove(PathOf(part), ignored);  // of a run that was killed
  const auto account = Watched(console, [&] {
    return CreateObject("QDSVGLBooks.BooksInfo")
        ->Call("BackUp", props, FileText(part))
        .As<Dictionary>();
  });
  MoveInto(file, part, overwriting);
  console.out << "Backed up: " << WhichBooks(*account) << ".\n";
  return kDone;
}

// With books from the environment the first word is not BOOK.
bool IsFile(const std::string&, const std::vector<std::string>& rest) {
  return rest.empty() && !BookFromEnvironment().empty();
}

void AddBackup(Program& program) {
  const auto options = std::make_shared<BackupOptions>();
  const Command command = program.AddForWords(
      "backup", "Copies the books into a file while others work", options->login, options->files,
      {"FILE", "The file that the copy becomes", IsFile},
      [options, &program] { return BackUp(*options, program.console()); });
  command.Flag("--force", options->force, "Writes over a file that is there");
}

// ---- Restoring ----

struct RestoreOptions {
  Login login;
  std::string file;
  std::string program_role;
  bool force = false;
};

// Books that stood in the place of restored ones, kept beside them under another name.
class FormerBooks {
 public:
  // FileError for books that are no file, and for a name that is taken.
  explicit FormerBooks(const std::string& book) {
    const auto text = server::ConnectionText::Parse(book);
    if (!text.IsSQLite()) {
      throw UsageError("--force puts files aside; remove or rename the schema by the database");
    }
    place_ = text[server::connection_key::kDataSource];
    std::error_code unknown;
    if (!fs::exists(PathOf(place_), unknown)) return;
    aside_ = place_ + ".replaced";
    if (fs::exists(PathOf(aside_), unknown))
      throw FileError(aside_ + " is there already; move it away");
    Move(place_, aside_);
  }

  const std::string& aside() const { return aside_; }
  void PutBack() {
    if (!aside_.empty()) Move(aside_, place_);
  }

 private:
  // The file with those beside it that belong to it.
  static void Move(const std::string& from, const std::string& to) {
    for (const char* ending : {"-wal", "-shm", ""}) {
      std::error_code error;
      if (*ending != '\0' && !fs::exists(PathOf(from + ending), error)) continue;
      fs::rename(PathOf(from + ending), PathOf(to + ending), error);
      if (error) throw FileError(from + ending + " can't be moved: " + error.message());
    }
  }

  std::string place_, aside_;
};

int Restore(const RestoreOptions& options, const Console& console) {
  options.login.StartServer();
  if (!fs::exists(PathOf(options.file))) throw FileError(options.file + " can't be read");
  std::optional<FormerBooks> former;
  if (options.force) former.emplace(options.login.book);
  try {
    const auto account =
        CreateObject("QDSVGLBooks.BooksUpdate")
            ->Call("Restore", FileText(options.file), options.login.book, options.program_role)
            .As<Dictionary>();
    console.out << "Restored: " << WhichBooks(*account) << ".\n";
  } catch (...) {
    if (former) former->PutBack();
    throw;
  }
  if (former && !former->aside().empty()) {
    console.out << "The books that were there are " << former->aside() << " now.\n";
  }
  return kDone;
}

void AddRestore(Program& program) {
  const auto options = std::make_shared<RestoreOptions>();
  const Command command =
      program.Add("restore", "Makes books out of a backup", [options, &program] {
        if (options->login.book.empty()) throw UsageError("BOOK is required");
        return Restore(*options, program.console());
      });
  command.Word("FILE", options->file, "The file that backup has made").Required();
  AddBook(command, options->login);
  command.Text("--program-role", options->program_role, "ROLE",
               "The PostgreSQL role that programs log in with, another one than the owner");
  command.Flag("--force", options->force, "Puts books aside that are in the place");
}

}  // namespace

void AddBackupCommands(Program& program) {
  AddBackup(program);
  AddRestore(program);
}

}  // namespace qdclgl::cli
