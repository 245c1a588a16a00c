// Private profiles: two lines of names, then the file. What doesn't matter changes nothing.
#include <cstdlib>

#include "qdclgl/frame/platform/platform.h"
#include "tests/fuzz/targets/target.h"

namespace {

using namespace qdclgl;
using fuzz::Require;

std::string TakeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  std::string line(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

std::string Lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::TargetFile file("profile");
  std::string_view rest = fuzz::TextOf(data, size);
  const std::string section = TakeLine(rest);
  const std::string key = TakeLine(rest);
  const std::string profile(rest);
  const auto number = [&](const std::string& content, const std::string& of_section,
                          const std::string& of_key, Long default_value) {
    file.Write(content);
    return MachinePlatform().PrivateProfileInt(of_section, of_key, default_value, file.path());
  };
  const Long plain = number(profile, section, key, 1);
  const bool is_there = plain == number(profile, section, key, 2);

  Require(number(profile, Lower(section), Lower(key), 1) == plain, "case doesn't matter");
  Require(number(profile, " " + section + "\t", " " + key + " ", 1) == plain,
          "blanks around names don't matter");
  Require(!is_there ||
              number(profile + "\n[" + section + "]\n" + key + "=99", section, key, 1) == plain,
          "the first key of a name counts");
  if (!profile.starts_with("\xEF\xBB\xBF")) {
    Require(number("\xEF\xBB\xBF" + profile, section, key, 1) == plain, "a mark doesn't matter");
    Require(number("; x\n\n" + profile, section, key, 1) == plain, "a comment doesn't matter");
  }
  const bool is_plain_name = section.find_first_of("]\n\r\t\v\f ") == std::string::npos &&
                             key.find_first_of("=;[\n\r\t\v\f ") == std::string::npos;
  if (is_plain_name) {
    Require(number("[" + section + "]\n" + key + " = 0x10x\n" + profile, section, key, 1) == 16,
            "what is put in front is read");
  }
  return 0;
}
