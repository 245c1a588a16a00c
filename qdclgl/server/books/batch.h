// Batches: many saves in one transaction.
#pragma once

#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// Between Begin and Commit each save of this thread in these books is whole or undone by itself;
// all of them become lasting, and visible to others, together. Ids and versions that saves have
// written into rows are of no use once the batch is rolled back.
class BatchUpdate final : public Object {
  QD_MEMBERS(BatchUpdate, Object, Creatable, "Many saves in one transaction.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLBatch.BatchUpdate";
  // For all who may save anything: a batch holds up the saves of others.
  static constexpr Right kSaveInBatches{
      Role::kPreparer | Role::kChecker | Role::kCashier | Role::kPoster, "save in batches"};
  static constexpr MethodRight kRights[] = {
      {"Begin", kSaveInBatches}, {"Commit", kSaveInBatches}, {"RollBack", kSaveInBatches}};

  QD_METHOD(void, Begin, (std::string_view PropsString),
            "Begins a batch. BadBatch when one is under way in this thread.")
  QD_METHOD(void, Commit, (std::string_view PropsString),
            "Makes the saves of the batch lasting. BadBatch when none is under way.")
  QD_METHOD(void, RollBack, (std::string_view PropsString),
            "Takes back the saves of the batch. BadBatch when none is under way.")
};

}  // namespace qdclgl::server
