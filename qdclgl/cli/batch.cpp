#include "qdclgl/cli/batch.h"

#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kBatch = "QDSVGLBatch.BatchUpdate";

thread_local bool is_trial = false;

void Begin(const std::string& props) { CreateObject(kBatch)->Call("Begin", props, true); }

void RollBack(const std::string& props) noexcept {
  try {
    CreateObject(kBatch)->Call("RollBack", props);
  } catch (const Error&) {
    // An error that brought us here tells more than this one; without one the batch ends with the
    // program at the latest.
  }
}

}  // namespace

Batch::Batch(std::string props) : props_(std::move(props)), is_open_(!Trial::IsUnderWay()) {
  if (is_open_) Begin(props_);
}

Batch::~Batch() {
  if (is_open_) RollBack(props_);
}

Trial::Trial(std::string props) : props_(std::move(props)) {
  Begin(props_);
  is_trial = true;
}

Trial::~Trial() {
  is_trial = false;
  RollBack(props_);
}

bool Trial::IsUnderWay() { return is_trial; }

void Batch::Commit() {
  if (!is_open_) return;
  CreateObject(kBatch)->Call("Commit", props_);
  is_open_ = false;
}

}  // namespace qdclgl::cli
