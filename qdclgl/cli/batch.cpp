#include "qdclgl/cli/batch.h"

#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kBatch = "QDSVGLBatch.BatchUpdate";

}  // namespace

Batch::Batch(std::string props) : props_(std::move(props)) {
  CreateObject(kBatch)->Call("Begin", props_, true);
}

Batch::~Batch() {
  if (!is_open_) return;
  try {
    CreateObject(kBatch)->Call("RollBack", props_);
  } catch (const Error&) {
    // The error that brought us here tells more than this one.
  }
}

void Batch::Commit() {
  CreateObject(kBatch)->Call("Commit", props_);
  is_open_ = false;
}

}  // namespace qdclgl::cli
