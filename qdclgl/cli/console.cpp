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

std::string OneLine(std::string_view text) {
  std::string line(text);
  for (std::size_t i = 0; i < line.size(); ++i) {
    const auto byte = static_cast<unsigned char>(line[i]);
    // U+0080 to U+009F are control characters as well.
    const bool is_c1 =
        byte == 0xC2 && i + 1 < line.size() && static_cast<unsigned char>(line[i + 1]) < 0xA0;
    if (is_c1) line.replace(i, 2, " ");
    else if (byte < 0x20 || byte == 0x7F) line[i] = ' ';
  }
  return line;
}

}  // namespace qdclgl::cli
