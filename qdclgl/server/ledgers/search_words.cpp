#include "qdclgl/server/ledgers/search_words.h"

#include <map>
#include <set>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::server {

namespace {

// The characters beyond ASCII of a text, each a text of its own.
std::set<std::string> CharactersBeyondAscii(std::string_view text) {
  std::set<std::string> characters;
  for (const char16_t unit : ToUtf16(text)) {
    if (unit >= 0x80) characters.insert(FromUtf16(std::u16string_view(&unit, 1)));
  }
  return characters;
}

// The small letters of a capital one. Those that ToUpper knows are in the basic plane.
const std::vector<std::string>& SmallLettersOf(const std::string& capital) {
  static const std::map<std::string, std::vector<std::string>> kLetters = [] {
    std::map<std::string, std::vector<std::string>> letters;
    for (char32_t code = 0x80; code < 0xD800; ++code) {
      const auto unit = static_cast<char16_t>(code);
      const std::string letter = FromUtf16(std::u16string_view(&unit, 1));
      const std::string upper = ToUpper(letter);
      if (upper != letter) letters[upper].push_back(letter);
    }
    return letters;
  }();
  static const std::vector<std::string> kNone;
  const auto found = kLetters.find(capital);
  return found == kLetters.end() ? kNone : found->second;
}

}  // namespace

std::vector<std::string> SearchWords(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  bool is_quoted = false, has_word = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_quote = text[i] == '"';
    if (is_quote && is_quoted && i + 1 < text.size() && text[i + 1] == '"') {
      word += text[i++];
    } else if (is_quote) {
      is_quoted = !is_quoted;
      has_word = true;
    } else if (text[i] == ' ' && !is_quoted) {
      if (has_word && !word.empty()) words.push_back(word);
      word.clear();
      has_word = false;
    } else {
      word += text[i];
      has_word = true;
    }
  }
  if (has_word && !word.empty()) words.push_back(word);
  return words;
}

std::string HasWord(const Database& db, std::span<const std::string> texts, std::string_view word,
                    std::vector<BoundValue>& values) {
  const std::string upper = ToUpper(word);
  values.emplace_back(upper);
  if (db.IsSQLite()) {
    std::string call = "HAS_WORD(?";
    for (const std::string& text : texts) call += ", " + text;
    return call + ")";
  }
  std::string condition;
  for (const std::string& text : texts) {
    std::string folded = "UPPER(" + text + ")";
    for (const std::string& capital : CharactersBeyondAscii(upper)) {
      for (const std::string& letter : SmallLettersOf(capital)) {
        folded = "REPLACE(" + folded + ", '" + letter + "', '" + capital + "')";
      }
    }
    // A line end is in no word.
    condition += (condition.empty() ? "" : " || '\n' || ") + folded;
  }
  return "STRPOS(" + condition + ", ?) > 0";
}

}  // namespace qdclgl::server
