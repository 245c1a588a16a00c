#include "qdclgl/cli/console.h"

#include <cstdio>

#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

bool IsAgreed(const Console& console, const std::string& question) {
  if (console.answers == nullptr) {
    throw UsageError("\"" + question + "\" - nobody is there to answer; say --yes");
  }
  console.out << question << " [y/N] " << std::flush;
  std::string answer;
  std::getline(*console.answers, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

ExitCode OutcomeOf(std::size_t done, std::size_t wanted) {
  if (done == wanted) return kDone;
  return done == 0 ? kRefused : kLeftOut;
}

ExitCode ExitCodeOf(const Error& error) {
  using namespace server::refusal;
  switch (error.number()) {
    case kNotLoggedIn:
    case kLoginRefused:
    case kLoginDelayed:
    case kBadConnectionText:
    case kNoBooks:
    case kWrongSchema:
    case kConnectionLost: return kNoEntry;
    case server::refusal::kDamaged: return ExitCode::kDamaged;
    default: return kRefused;
  }
}

bool IsAboutRecord(const Error& error) {
  return error.number() >= server::refusal::kBadValue && error.number() <= error_number::Own(0x2FF);
}

std::string ErrorText(const Error& error) {
  char number[16];
  std::snprintf(number, sizeof number, error.number() < 0 ? "%08X" : "%d",
                static_cast<unsigned>(error.number()));
  const std::string& reason = error.description();
  return std::string(number) + ": " + (reason.empty() ? "no reason was given." : OneLine(reason));
}

}  // namespace qdclgl::cli
