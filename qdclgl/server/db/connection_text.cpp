#include "qdclgl/server/db/connection_text.h"

#include <algorithm>
#include <array>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/path_text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

using namespace connection_key;

constexpr std::array kKeys = {kProvider,
                              kDataSource,
                              kSynchronous,
                              kService,
                              kHost,
                              kPort,
                              kCatalog,
                              kSchema,
                              kUser,
                              kPassword,
                              kSslMode,
                              kSslRootCert,
                              kSslCert,
                              kSslKey,
                              kLockTimeout,
                              kKeepalivesIdle,
                              kKeepalivesInterval,
                              kKeepalivesCount,
                              kTcpUserTimeout,
                              kSession};

// Whole numbers, and what they are where the text doesn't tell.
struct NumberKey {
  std::string_view key;
  int otherwise;
};
// A machine that dies says nothing; it is noticed within a minute.
constexpr std::array kNumbers = {NumberKey{kLockTimeout, 60}, NumberKey{kKeepalivesIdle, 30},
                                 NumberKey{kKeepalivesInterval, 10}, NumberKey{kKeepalivesCount, 3},
                                 NumberKey{kTcpUserTimeout, 60000}};
constexpr std::array<std::string_view, 6> kSslModes = {"disable", "allow",     "prefer",
                                                       "require", "verify-ca", "verify-full"};

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Takes one value off the front of `rest`, with the ";" behind it.
std::string TakeValue(std::string_view& rest) {
  const auto first = rest.find_first_not_of(" \t");
  if (first == std::string_view::npos || rest[first] != '{') {
    const auto end = std::min(rest.find(';'), rest.size());
    std::string value(Trimmed(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return value;
  }
  std::string value;
  for (std::size_t i = first + 1; i < rest.size(); ++i) {
    if (rest[i] == '}') {
      if (i + 1 >= rest.size() || rest[i + 1] != '}') {
        rest.remove_prefix(i + 1);
        if (!Trimmed(rest.substr(0, rest.find(';'))).empty()) {
          Refuse(refusal::kBadConnectionText, "The connection text has words behind a \"}\".");
        }
        rest.remove_prefix(
            std::min(rest.size(), rest.find(';') == rest.npos ? rest.size() : rest.find(';') + 1));
        return value;
      }
      ++i;
    }
    value += rest[i];
  }
  Refuse(refusal::kBadConnectionText, "The connection text has a \"{\" without its \"}\".");
}

// From 1 to 999999.
bool IsNumber(std::string_view text) {
  constexpr std::size_t kMostDigits = 6;
  return !text.empty() && text.size() <= kMostDigits && text.front() != '0' &&
         text.find_first_not_of("0123456789") == text.npos;
}

bool NeedsBraces(std::string_view value) {
  return value.find_first_of(";{}") != value.npos || value != Trimmed(value);
}

}  // namespace

ConnectionText ConnectionText::Parse(std::string_view text) {
  ConnectionText result;
  if (text.find('\0') != text.npos) {
    Refuse(refusal::kBadConnectionText, "The connection text holds a zero byte.");
  }
  if (text.find('=') == text.npos) {
    if (Trimmed(text).empty()) Refuse(refusal::kBadConnectionText, "The connection text is empty.");
    result.values_.emplace(kProvider, "SQLite");
    result.values_.emplace(kDataSource, text);
    return result;
  }
  for (std::string_view rest = text; !Trimmed(rest).empty();) {
    if (Trimmed(rest).front() == ';') {
      rest.remove_prefix(rest.find(';') + 1);
      continue;
    }
    const auto equals = rest.find('=');
    const std::string_view word = Trimmed(rest.substr(0, equals));
    if (equals == rest.npos || word.find(';') != word.npos) {
      Refuse(refusal::kBadConnectionText, "The connection text has a key without a value: \"" +
                                              std::string(word.substr(0, word.find(';'))) + "\".");
    }
    std::string_view key;
    for (const std::string_view known : kKeys) {
      if (EqualsIgnoringAsciiCase(known, word)) key = known;
    }
    if (key.empty()) {
      Refuse(refusal::kBadConnectionText,
             "The connection text has an unknown key: \"" + std::string(word) + "\".");
    }
    rest.remove_prefix(equals + 1);
    if (!result.values_.emplace(key, TakeValue(rest)).second) {
      Refuse(refusal::kBadConnectionText,
             "The connection text has the key \"" + std::string(key) + "\" twice.");
    }
  }
  const auto need = [&](std::string_view key) {
    if (result[key].empty()) {
      Refuse(refusal::kBadConnectionText,
             "The connection text does not say its \"" + std::string(key) + "\".");
    }
  };
  if (result.IsSQLite()) {
    need(kDataSource);
    const std::string_view synchronous = result[kSynchronous];
    if (!synchronous.empty() && !EqualsIgnoringAsciiCase(synchronous, "Full") &&
        !EqualsIgnoringAsciiCase(synchronous, "Normal")) {
      Refuse(refusal::kBadConnectionText, "\"Synchronous\" is Full or Normal.");
    }
  } else if (EqualsIgnoringAsciiCase(result[kProvider], "PostgreSQL")) {
    need(kCatalog);
    const std::string_view mode = result[kSslMode];
    if (!mode.empty() && std::ranges::find(kSslModes, mode) == kSslModes.end()) {
      Refuse(refusal::kBadConnectionText,
             "\"Sslmode\" is disable, allow, prefer, require, verify-ca or verify-full.");
    }
  } else {
    Refuse(refusal::kBadConnectionText,
           "The provider is SQLite or PostgreSQL, not \"" + std::string(result[kProvider]) + "\".");
  }
  for (const NumberKey& number : kNumbers) {
    if (!result[number.key].empty() && !IsNumber(result[number.key])) {
      Refuse(refusal::kBadConnectionText,
             "\"" + std::string(number.key) + "\" is a whole number from 1 to 999999.");
    }
  }
  return result;
}

std::string_view ConnectionText::operator[](std::string_view key) const {
  const auto found = values_.find(key);
  return found == values_.end() ? std::string_view() : std::string_view(found->second);
}

bool ConnectionText::IsSQLite() const {
  return EqualsIgnoringAsciiCase((*this)[kProvider], "SQLite");
}

int ConnectionText::Number(std::string_view key) const {
  const std::string_view text = (*this)[key];
  if (!text.empty()) return std::stoi(std::string(text));
  return std::ranges::find(kNumbers, key, &NumberKey::key)->otherwise;
}

ConnectionText ConnectionText::Without(std::string_view key) const {
  ConnectionText result = *this;
  result.values_.erase(std::string(key));
  return result;
}

ConnectionText ConnectionText::With(std::string_view key, std::string_view value) const {
  ConnectionText result = *this;
  result.values_.insert_or_assign(std::string(key), std::string(value));
  return result;
}

std::string ConnectionText::ToText() const {
  std::string text;
  for (const std::string_view key : kKeys) {
    const std::string_view value = (*this)[key];
    if (value.empty()) continue;
    text.append(key).append("=");
    if (NeedsBraces(value)) {
      text += '{';
      for (const char c : value) text.append(c == '}' ? 2 : 1, c);
      text += '}';
    } else {
      text += value;
    }
    text += ';';
  }
  return text;
}

ConnectionText ConnectionText::Canonical() const {
  ConnectionText result = Without(kSession).With(kProvider, IsSQLite() ? "SQLite" : "PostgreSQL");
  for (const NumberKey& number : kNumbers) {
    if (Number(number.key) == number.otherwise) result = result.Without(number.key);
  }
  if (!IsSQLite()) return result;
  result = result.Only({kProvider, kLockTimeout});
  const std::filesystem::path file = PathOf((*this)[kDataSource]);
  std::error_code unknown;
  const std::filesystem::path path =
      std::filesystem::weakly_canonical(std::filesystem::absolute(file, unknown), unknown);
  result = result.With(kDataSource, TextOf(path.empty() ? file : path));
  const bool normal = EqualsIgnoringAsciiCase((*this)[kSynchronous], "Normal");
  return normal ? result.With(kSynchronous, "Normal") : result;
}

ConnectionText ConnectionText::Place() const {
  return Canonical().Only({kProvider, kDataSource, kService, kHost, kPort, kCatalog, kSchema});
}

ConnectionText ConnectionText::Only(std::initializer_list<std::string_view> keys) const {
  ConnectionText result;
  for (const std::string_view key : keys) {
    const auto found = values_.find(key);
    if (found != values_.end()) result.values_.insert(*found);
  }
  return result;
}

std::string ConnectionText::ForMessage() const {
  return Without(kPassword).Without(kSession).ToText();
}

}  // namespace qdclgl::server
