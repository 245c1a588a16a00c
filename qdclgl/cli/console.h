// Where a run of the program writes, and how it ends.
#pragma once

#include <istream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "qdclgl/cli/look.h"
#include "qdclgl/cli/one_line.h"
#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl::cli {

class Output;

struct Console {
  std::ostream& out;
  std::ostream& err;
  bool shows_progress = false;      // somebody watches err
  std::istream* answers = nullptr;  // somebody answers questions here; null: nobody
  Look look = {};
  Output* screen = nullptr;  // what `out` writes to, where it can be read by the page
};

enum ExitCode : int {
  kDone = 0,
  kRefused = 1,     // the library or the server refused it, or it failed
  kWrongUsage = 2,  // the command line can't be understood
  kLeftOut = 3,     // a part of the input was left out; the rest is done
  kDamaged = 4,     // the books break a rule of their own
  kNoEntry = 5,     // the books can't be opened: connection, version, login
  kBadFile = 6,     // a file can't be read or written
};

// A file that can't be read or written.
class FileError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A command line that can be read and makes no sense.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Whether somebody agrees: asks "Close it?". UsageError when there is nobody to ask.
bool IsAgreed(const Console& console, const std::string& question);

// How a run ends that did so many of the things it was to do.
ExitCode OutcomeOf(std::size_t done, std::size_t wanted);
ExitCode ExitCodeOf(const Error& error);

// Whether the server refuses one record, so that others can follow; otherwise it can't work at all.
bool IsAboutRecord(const Error& error);

// "80044221: The debits ..." for a number of ours or a server's, "429: ..." for automation's own.
// One line, whatever the error holds.
std::string ErrorText(const Error& error);

}  // namespace qdclgl::cli
