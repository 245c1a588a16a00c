// Calls of every method of every server component, see office.h: on SQLite, or with `postgresql` as
// the first argument on the database that QDCLGL_TEST_POSTGRESQL names.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "tests/fuzz/office.h"

int main(int argc, char** argv) {
  using namespace qdclgl::fuzz;
  using qdclgl::server::testing::DatabaseKind;
  DatabaseKind kind = DatabaseKind::kSQLite;
  if (argc > 1 && std::string_view(argv[1]) == "postgresql") {
    kind = DatabaseKind::kPostgreSQL;
    --argc;
    ++argv;
  }
  // Whatever the calls make of files stays in a folder, also where a path leads up. Where there is
  // one in memory, no run waits for a disk.
  std::filesystem::path home = "/dev/shm";
  if (!std::filesystem::is_directory(home)) home = std::filesystem::temp_directory_path();
  std::string folder = (home / "qdclgl-fuzz-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    std::perror("no folder for the books");
    return 2;
  }
  const std::filesystem::path inside = std::filesystem::path(folder) / "a" / "b";
  std::filesystem::create_directories(inside);
  std::filesystem::current_path(inside);
  setenv("TMPDIR", inside.c_str(), 1);
  // The books that all runs copy are made before the first of them.
  if (kind == DatabaseKind::kSQLite) const qdclgl::server::testing::TestBooks model(kind);
  const int status =
      FuzzMain(argc, argv,
               {kind == DatabaseKind::kSQLite ? "server-sqlite" : "server-postgresql", 150,
                [kind](Choices&) { return std::make_unique<Office>(kind); }});
  std::filesystem::current_path("/");
  std::filesystem::remove_all(folder);
  return status;
}
