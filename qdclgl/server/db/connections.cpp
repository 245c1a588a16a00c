#include "qdclgl/server/db/connections.h"

#include <algorithm>

#include "qdclgl/frame/platform/thread_own.h"

namespace qdclgl::server {

namespace {

// Idle ones beyond these are closed; a program seldom has so many books open.
constexpr std::size_t kMostKept = 16;

}  // namespace

Connections& Connections::OfThisThread() { return ThreadOwn<Connections>(); }

std::shared_ptr<Database> Connections::To(const std::string& books,
                                          const Database::BatchOwner& session) {
  EndOrphanedBatches();
  bool is_beside_batch = false;
  auto found = kept_.end();
  for (auto kept = kept_.begin(); kept != kept_.end(); ++kept) {
    if (kept->books != books) continue;
    if (!kept->database->InBatch()) {
      found = kept;
    } else if (kept->database->InBatchOf(session)) {
      return kept->database;
    } else {
      is_beside_batch = true;
    }
  }
  Kept kept{books, nullptr};
  if (found != kept_.end()) {
    if (!found->database->IsStale()) kept = std::move(*found);
    kept_.erase(found);
  }
  if (!kept.database) {
    MakeRoom();
    kept.database = std::make_shared<Database>(ConnectionText::Parse(books));
  }
  kept.database->SetBesideBatch(is_beside_batch);
  kept_.push_back(kept);
  return kept.database;
}

std::unique_ptr<Database> Connections::Apart(const ConnectionText& text) {
  EndOrphanedBatches();
  auto database = std::make_unique<Database>(text);
  database->SetBesideBatch(std::ranges::any_of(kept_, [&](const Kept& kept) {
    return kept.database->InBatch() && ConnectionText::Parse(kept.books).Place() == text.Place();
  }));
  return database;
}

void Connections::EndOrphanedBatches() {
  std::erase_if(kept_, [](const Kept& kept) { return kept.database->IsBatchOrphaned(); });
}

void Connections::MakeRoom() {
  while (kept_.size() >= kMostKept) {
    const auto idle = std::ranges::find_if(kept_, [](const Kept& kept) {
      return kept.database.use_count() == 1 && !kept.database->InBatch();
    });
    if (idle == kept_.end()) return;
    kept_.erase(idle);
  }
}

}  // namespace qdclgl::server
