#include "qdclgl/cli/batch.h"

#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

Batch::Batch(std::string props) : props_(std::move(props)) { Call("Begin"); }

Batch::~Batch() {
  if (!is_open_) return;
  try {
    Call("RollBack");
  } catch (const Error&) {
    // The error that brought us here tells more than this one.
  }
}

void Batch::Commit() {
  is_open_ = false;
  Call("Commit");
}

void Batch::Call(const char* method) {
  CreateObject("QDSVGLBatch.BatchUpdate")->Call(method, props_);
}

}  // namespace qdclgl::cli
