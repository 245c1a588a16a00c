#include "qdclgl/server/books/batch.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/login.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(BatchUpdate)

namespace {

// Who may save anything at all: a batch holds up the saves of others.
Database& BooksOf(std::string_view props) {
  constexpr auto kAnyWriter = static_cast<Role>(
      static_cast<unsigned>(Role::kPreparer) | static_cast<unsigned>(Role::kChecker) |
      static_cast<unsigned>(Role::kCashier) | static_cast<unsigned>(Role::kPoster));
  return Enter(props, kAnyWriter, "save in batches").db;
}

}  // namespace

void BatchUpdate::Begin(std::string_view PropsString) { BooksOf(PropsString).BeginBatch(); }

void BatchUpdate::Commit(std::string_view PropsString) { BooksOf(PropsString).CommitBatch(); }

void BatchUpdate::RollBack(std::string_view PropsString) { BooksOf(PropsString).RollBackBatch(); }

}  // namespace qdclgl::server
