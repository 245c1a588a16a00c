// Batches: many saves in one transaction.
#pragma once

#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// "QDSVGLBatch.BatchUpdate": a component of this server. Between Begin and Commit each save of this
// thread in these books is whole or undone by itself; all of them become lasting, and visible to
// others, together. Ids and versions that saves have written into rows are of no use once the batch
// is rolled back.
class BatchUpdate final : public Object {
  QD_MEMBERS(BatchUpdate, Object, Creatable, "Many saves in one transaction.")

 public:
  QD_METHOD(void, Begin, (std::string_view PropsString),
            "Begins a batch. BadBatch when one is under way in this thread.")
  QD_METHOD(void, Commit, (std::string_view PropsString),
            "Makes the saves of the batch lasting. BadBatch when none is under way.")
  QD_METHOD(void, RollBack, (std::string_view PropsString),
            "Takes back the saves of the batch. BadBatch when none is under way.")
};

}  // namespace qdclgl::server
