// What an operation asks of the server event by event, and what is left of it when the server fails
// at any of them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/recording_server.h"
#include "tests/support/test_objects.h"

namespace qdclgl::testing {

// One creation or call in the order of the log, and the state that is left when the server fails at
// it.
struct Event {
  std::string line;    // "call GetDetail(\"props\", ref 5)"
  std::string answer;  // as it stands behind the line: " -> {FGroupID: 5}"
  std::string state_at_failure;
  bool is_shown = false;  // the failure is shown to the user and not raised
};

// The log of the first `count` events; of all of them unless it is given.
inline std::string LogOf(const std::vector<Event>& events, std::size_t count = SIZE_MAX) {
  std::string log;
  for (std::size_t i = 0; i < events.size() && i < count; ++i) {
    log += events[i].line + events[i].answer + "\n";
  }
  return log;
}

// Number, source and description of what an operation raises, "no error" when it raises nothing.
template <class Operation>
std::string WholeErrorOf(Operation operation) {
  try {
    operation();
    return "no error";
  } catch (const Error& error) {
    return std::to_string(error.number()) + "|" + error.source() + "|" + error.description();
  }
}

// Runs `operate` on what `make` gives: once to its end, which is to leave `state_behind`, and then
// with the server failing at each event in turn. The server's error must come through as it was, or
// be shown to the user where the event says so.
template <class MakeObject, class Operate, class StateOf>
void ExpectEvents(RecordingServer& server, MakeObject make, Operate operate,
                  const std::vector<Event>& events, const std::string& state_behind,
                  StateOf state_of) {
  const Error failure(-2147217900, "database", "deadlock");
  {
    const auto object = make();
    server.TakeLog();
    operate(*object);
    EXPECT_EQ(server.TakeLog(), LogOf(events));
    EXPECT_EQ(state_of(*object), state_behind);
  }
  for (std::size_t i = 0; i < events.size(); ++i) {
    SCOPED_TRACE("failure at: " + events[i].line);
    const auto object = make();
    server.TakeLog();
    server.FailAt(static_cast<int>(i) + 1, failure);
    server.platform().messages.clear();
    const bool is_shown = events[i].is_shown;
    EXPECT_EQ(WholeErrorOf([&] { operate(*object); }),
              is_shown ? "no error" : "-2147217900|database|deadlock");
    EXPECT_EQ(server.platform().messages,
              std::vector<std::string>(is_shown ? 1 : 0, failure.description()));
    EXPECT_EQ(server.TakeLog(), LogOf(events, i) + events[i].line + " -> " + failure.what() + "\n");
    EXPECT_EQ(state_of(*object), events[i].state_at_failure);
    server.TakeLog();
  }
}

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
