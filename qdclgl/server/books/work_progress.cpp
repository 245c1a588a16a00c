#include "qdclgl/server/books/work_progress.h"

#include <utility>

#include "qdclgl/frame/platform/thread_own.h"

namespace qdclgl::server {

void SetWorkListener(WorkListener listener) { ThreadOwn<WorkListener>() = std::move(listener); }

void WorkProgress::Tell(std::string_view work, double share) const {
  const WorkListener& listener = ThreadOwn<WorkListener>();
  if (listener) listener(work, Of(share));
}

}  // namespace qdclgl::server
