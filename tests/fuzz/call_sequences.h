// A fuzz of call sequences: runs of many calls over objects that stay alive from call to call, each
// run in a process of its own. A run that crashes, leaks, raises what it may not, or has a call
// that takes too long or too much memory, is a finding: its sequence is shortened and printed.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tests/fuzz/choices.h"

namespace qdclgl::fuzz {

using Tell = std::function<void(const std::string& words)>;

// Where a run takes place.
class Playground {
 public:
  virtual ~Playground() = default;
  // Makes the call that `choices` choose. They depend on the run and on the number of the step
  // alone, so that a run which leaves out other steps makes this step likewise. Tells each call in
  // words before it is made, as a crash leaves no time for that behind it. Whatever is thrown is a
  // finding.
  virtual void Step(Choices& choices, const Tell& tell) = 0;
  // Looks at what is left, once all steps are made.
  virtual void End() {}
  // Whether what the run leaves behind unreachable is a leak.
  virtual bool LeaksCount() const { return true; }
};

struct Fuzz {
  std::string name;
  int steps_in_a_run;
  std::function<std::unique_ptr<Playground>(Choices& choices)> make;
};

// What is thrown where something doesn't hold that must.
struct Breach {
  std::string what;
};

// The fuzz as a program:
//   --calls N           this many calls (10000 by default)
//   --seconds N         or calls for this long
//   --seed N            of the runs; by default QDCLGL_SEED, otherwise a new one
//   --run N [--steps 3,17,20]   that run only, or those of its steps, telling each call
// The last line tells how many calls were made and what was found; the status is 1 when something
// was.
int FuzzMain(int argc, char** argv, const Fuzz& fuzz);

}  // namespace qdclgl::fuzz
