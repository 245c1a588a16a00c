#include "qdclgl/server/books/batch.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(BatchUpdate)

void BatchUpdate::Begin(std::string_view PropsString, Boolean Alone) {
  const Caller caller = Enter(PropsString, RightTo<BatchUpdate>("Begin"));
  caller.db.BeginBatch(caller.session, Alone);
}

void BatchUpdate::Commit(std::string_view PropsString) {
  Enter(PropsString, RightTo<BatchUpdate>("Commit")).db.CommitBatch();
}

void BatchUpdate::RollBack(std::string_view PropsString) {
  EnterBatch(PropsString, RightTo<BatchUpdate>("RollBack")).db.RollBackBatch();
}

}  // namespace qdclgl::server
