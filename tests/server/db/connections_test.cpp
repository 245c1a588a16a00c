#include "qdclgl/server/db/connections.h"

#include <filesystem>

#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

namespace fs = std::filesystem;

std::ptrdiff_t OpenFiles() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

class ConnectionsTest : public RecordsTest {
 protected:
  void LoginBy(const std::string& text) {
    Call("QDSVGLSession.SessionUpdate", "Login", text, "administrator", "");
  }
};

TEST_P(ConnectionsTest, SpellingsOfOneTextShareOneConnection) {
  const ConnectionText text = ConnectionText::Parse(connection);
  const std::ptrdiff_t before = OpenFiles();
  for (int i = 0; i < 40; ++i) {
    const std::string blanks(static_cast<std::size_t>(i), ' ');
    LoginBy(blanks + connection + blanks);
    LoginBy("Initial catalog=" + std::string(text[connection_key::kCatalog]) + ";" + blanks +
            text.Without(connection_key::kCatalog).ToText());
    if (!text.IsSQLite()) continue;
    const std::string dots = "/." + std::string(static_cast<std::size_t>(i + 1), '/');
    const fs::path file{text[connection_key::kDataSource]};
    LoginBy(text.With(connection_key::kCatalog, "Books" + std::to_string(i))
                .With(connection_key::kDataSource,
                      file.parent_path().string() + dots + file.filename().string())
                .ToText());
  }
  EXPECT_EQ(OpenFiles(), before);
}

QDCLGL_BOOKS_TEST(ConnectionsTest);

class ManyBooksTest : public ConnectionsTest {};

TEST_P(ManyBooksTest, AThreadKeepsSoManyConnectionsAndNoMore) {
  constexpr int kBooks = 60, kFilesOfEach = 3, kKept = 16;
  std::vector<std::string> books;
  for (int i = 0; i < kBooks; ++i) {
    books.push_back(NewConnectionText(DatabaseKind::kSQLite));
    CopyBooks(connection, books.back());
  }
  const std::ptrdiff_t before = OpenFiles();
  for (const std::string& each : books) {
    LoginBy(each);
    EXPECT_LE(OpenFiles() - before, kKept * kFilesOfEach);
  }
  for (const std::string& each : books) RemoveBooks(each);
}

QDCLGL_BOOKS_TEST_OF(ManyBooksTest, kSQLite);

}  // namespace
}  // namespace qdclgl::server::testing
