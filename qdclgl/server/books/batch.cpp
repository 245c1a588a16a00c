#include "qdclgl/server/books/batch.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(BatchUpdate)

namespace {

Database& BooksOf(std::string_view props) { return Enter(props, BatchUpdate::kSaveInBatches).db; }

}  // namespace

void BatchUpdate::Begin(std::string_view PropsString) { BooksOf(PropsString).BeginBatch(); }

void BatchUpdate::Commit(std::string_view PropsString) { BooksOf(PropsString).CommitBatch(); }

void BatchUpdate::RollBack(std::string_view PropsString) { BooksOf(PropsString).RollBackBatch(); }

}  // namespace qdclgl::server
