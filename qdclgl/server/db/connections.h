// The connections of a thread: made on first use, kept by the books they lead to, and given to
// whoever asks next. A batch keeps its connection to itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

class Connections {
 public:
  static Connections& OfThisThread();

  // A connection to the books of a text as ConnectionText::Canonical has it: the one of the batch
  // that `session` has under way there, otherwise one in which nobody has. Errors: NoBooks,
  // ConnectionLost, DatabaseFailed.
  std::shared_ptr<Database> To(const std::string& books, const Database::BatchOwner& session);

  // One that the caller alone has, to books of whatever version. Beside a batch that is under way
  // there in this thread it only reads.
  std::unique_ptr<Database> Apart(const ConnectionText& text);

  // Closes them all, before a file is moved, say. Batches are rolled back.
  void CloseAll() { kept_.clear(); }
  // Rolls back the batches whose sessions have ended.
  void EndOrphanedBatches();

 private:
  struct Kept {
    std::string books;
    std::shared_ptr<Database> database;
  };

  // Closes those that were idle for longest until one more can be kept.
  void MakeRoom();

  std::vector<Kept> kept_;  // the one used last comes last
};

}  // namespace qdclgl::server
