// How far a work on the whole of the books is: checking, copying, upgrading them.
#pragma once

#include <functional>
#include <string_view>

namespace qdclgl::server {

// Is told what is being done and how much of the whole work is done, 0 to 1, some times a second.
// It does not call the server. An exception ends the work, as any failure in it does.
using WorkListener = std::function<void(std::string_view work, double share)>;

// Of this thread; null: nobody listens.
void SetWorkListener(WorkListener listener);

// A work, or a part of one.
class WorkProgress {
 public:
  WorkProgress() : WorkProgress(0, 1) {}

  // The part that begins and ends where so much of this one is done.
  WorkProgress Part(double from, double to) const { return {Of(from), Of(to)}; }
  void Tell(std::string_view work, double share) const;

 private:
  WorkProgress(double from, double to) : from_(from), to_(to) {}
  double Of(double share) const { return from_ + share * (to_ - from_); }

  double from_, to_;
};

}  // namespace qdclgl::server
