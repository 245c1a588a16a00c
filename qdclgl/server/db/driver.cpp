#include "qdclgl/server/db/driver.h"

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

std::function<void(std::string_view)>& Hook() {
  static std::function<void(std::string_view)> hook;
  return hook;
}

}  // namespace

void Driver::RaiseBusy(int backend) const { Refuse(refusal::kDatabaseBusy, on_busy_(backend)); }

void Driver::NoteFailure(const Error& error) {
  // Who waited too long has lost nothing but the time.
  if (error.number() == refusal::kDatabaseBusy && IsInTransaction()) return;
  work_.has_failed = true;
}

void Driver::RequireSound() const {
  if (!work_.has_failed) return;
  if (work_.in_batch) {
    Refuse(refusal::kBatchFailed,
           "The database has failed in the batch; nothing of it is saved. Roll it back first.");
  }
  Refuse(refusal::kDatabaseFailed, "The transaction has failed; nothing of it is saved.");
}

void Driver::SetHook(std::function<void(std::string_view sql)> hook) { Hook() = std::move(hook); }

void Driver::CallHook(std::string_view sql) {
  if (Hook()) Hook()(sql);
}

}  // namespace qdclgl::server
