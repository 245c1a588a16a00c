// Batches: many saves in one transaction.
#pragma once

#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// Between Begin and Commit each save of the session in this thread is whole or undone by itself;
// all of them become lasting, and visible to others, together. Ids and versions that saves have
// written into rows are of no use once the batch is rolled back. The batch is its session's alone:
// another one in this thread reads what was there before, and its writes are refused
// (DatabaseBusy), since they would wait for the batch.
//
// When the database fails in a batch, all of it is taken back at once, and every further call of
// the session is refused (BatchFailed) until RollBack.
class BatchUpdate final : public Object {
  QD_MEMBERS(BatchUpdate, Object, Creatable, "Many saves in one transaction.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLBatch.BatchUpdate";
  // For all who may save anything: a batch holds up the saves of others.
  static constexpr Right kSaveInBatches{
      Role::kPreparer | Role::kChecker | Role::kCashier | Role::kPoster, "save in batches"};
  static constexpr MethodRight kRights[] = {
      {"Begin", kSaveInBatches}, {"Commit", kSaveInBatches}, {"RollBack", kSaveInBatches}};

  QD_METHOD(
      void, Begin, (std::string_view PropsString, Boolean Alone = false),
      "Begins a batch of the session in this thread. With Alone it waits until no other batch "
      "that is alone is under way: what it looks up, no such batch changes before its end. "
      "BadBatch when one is under way, DatabaseBusy when one of another session is.")
  QD_METHOD(void, Commit, (std::string_view PropsString),
            "Makes the saves of the batch lasting. BadBatch when none is under way, BatchFailed "
            "when the database has failed in it.")
  QD_METHOD(void, RollBack, (std::string_view PropsString),
            "Takes back the saves of the batch, and ends a failed one. BadBatch when none is under "
            "way.")
};

}  // namespace qdclgl::server
