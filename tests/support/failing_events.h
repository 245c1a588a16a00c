// What is left of an operation when the server fails at any of its events.
#pragma once

#include <string>

#include "tests/support/recording_server.h"
#include "tests/support/test_objects.h"

namespace qdclgl::testing {

// Runs `operate` on what `make` gives with the server failing at the first event (a creation or a
// call), then at the second and so on, until an attempt ends otherwise. A line for each attempt
// tells the position, how it ended and the state that it left:
//   1 fails: id 5 {FName: "x"} modified flagged
//   2 no error: id 5 {FName: "x"}
// An attempt "fails" when the server's error came through as it was.
template <class MakeObject, class Operate, class StateOf>
std::string AtEachFailure(RecordingServer& server, MakeObject make, Operate operate,
                          StateOf state_of) {
  const Error failure(-2147217900, "database", "deadlock");
  std::string attempts;
  for (int position = 1;; ++position) {
    const auto object = make();
    server.FailAt(position, failure);
    const std::string outcome = ErrorOf([&] { operate(*object); });
    const bool fails = outcome == failure.what();
    server.FailAt(0, failure);  // no event is the one
    server.TakeLog();
    attempts += std::to_string(position) + (fails ? " fails" : " " + outcome) + ": " +
                state_of(*object) + "\n";
    if (!fails) return attempts;
  }
}

}  // namespace qdclgl::testing
