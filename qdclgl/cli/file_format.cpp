#include "qdclgl/cli/file_format.h"

#include <algorithm>
#include <span>
#include <sstream>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/console.h"
#include "qdclgl/cli/journal_columns.h"
#include "qdclgl/cli/nearest.h"

namespace qdclgl::cli {

namespace {

using namespace format_place;

constexpr const char *kSeparator = "separator", *kDecimal = "decimal", *kDates = "dates";

struct NamedMark {
  char mark;
  std::string_view word, name;
};
constexpr NamedMark kSeparators[] = {{',', "comma", "a comma"},
                                     {';', "semicolon", "a semicolon"},
                                     {'\t', "tab", "a tab"},
                                     {'|', "bar", "a bar"}};
constexpr NamedMark kDecimals[] = {{'.', "point", "a point"}, {',', "comma", "a comma"}};

std::string WordsOf(std::span<const NamedMark> marks) {
  std::string text;
  for (const NamedMark& mark : marks) {
    text.append(text.empty() ? "" : ", ").append(mark.word);
  }
  return text;
}

char MarkNamed(const std::string& key, std::string_view text, std::span<const NamedMark> marks) {
  for (const NamedMark& mark : marks) {
    if (text == mark.word || text == std::string_view(&mark.mark, 1)) return mark.mark;
  }
  throw UsageError(key + " is one of " + WordsOf(marks) + ", not " + Quoted(text));
}

std::string WordOf(char mark, std::span<const NamedMark> marks) {
  return std::string(std::ranges::find(marks, mark, &NamedMark::mark)->word);
}

std::vector<std::string_view> Places() {
  std::vector<std::string_view> places = {kAmount, kDebitAccount, kCreditAccount};
  for (const SheetColumn& column : kJournalColumns) places.push_back(column.heading);
  return places;
}

// The digits of a date's parts, in the order of the form; a part may be a digit short.
std::vector<std::string> PartsOf(std::string_view date) {
  std::vector<std::string> parts(1);
  for (const char c : date) {
    if (c >= '0' && c <= '9') parts.back() += c;
    else parts.emplace_back();
  }
  return parts;
}

}  // namespace

std::optional<std::string> DateForm::Translated(std::string_view date) const {
  std::map<char, std::string> parts;
  if (text.size() == 8) {  // without marks
    if (date.size() != 8 || PartsOf(date).size() != 1) return {};
    parts = {{'y', std::string(date.substr(0, 4))},
             {'m', std::string(date.substr(4, 2))},
             {'d', std::string(date.substr(6, 2))}};
  } else {
    const char mark = text[text.find_first_not_of("ymd")];
    const std::vector<std::string> given = PartsOf(date);
    if (given.size() != 3 || std::ranges::count(date, mark) != 2) return {};
    std::size_t place = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (i == 0 || text[i - 1] == mark) parts[text[i]] = given[place++];
    }
  }
  if (parts['y'].size() != 4) return {};
  for (const char part : {'m', 'd'}) {
    if (parts[part].size() == 1) parts[part].insert(0, "0");
    if (parts[part].size() != 2) return {};
  }
  const std::string translated = parts['y'] + "-" + parts['m'] + "-" + parts['d'];
  try {
    ReadDate(translated);
    return translated;
  } catch (const BadCell&) {
    return {};
  }
}

FileFormat FileFormat::FromWords(const std::vector<std::string>& words) {
  FileFormat format;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    if (equals == word.npos || equals + 1 == word.size()) {
      throw UsageError(Quoted(word) + " is not of the form column=heading");
    }
    const std::string value = word.substr(equals + 1);
    if (key == kSeparator) {
      format.separator = MarkNamed(key, value, kSeparators);
    } else if (key == kDecimal) {
      format.decimal = MarkNamed(key, value, kDecimals);
    } else if (key == kDates) {
      if (std::ranges::find(DateForm::kTexts, value) == std::end(DateForm::kTexts)) {
        throw UsageError("dates is a form such as dd.mm.yyyy, mm/dd/yyyy or yyyymmdd, not " +
                         Quoted(value));
      }
      format.dates = DateForm{value};
    } else {
      const std::vector<std::string_view> places = Places();
      if (std::ranges::find(places, key) == places.end()) {
        throw UsageError(NoSuch("column", key, places) + ", separator, decimal, dates");
      }
      format.columns[key] = value;
    }
  }
  return format;
}

FileFormat FileFormat::FromText(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) words.push_back(line);
  return FromWords(words);
}

std::string FileFormat::ToText() const {
  std::string text;
  const auto add = [&](const std::string& key, const std::string& value) {
    text += (text.empty() ? "" : "\n") + key + "=" + value;
  };
  if (separator) add(kSeparator, WordOf(*separator, kSeparators));
  if (decimal) add(kDecimal, WordOf(*decimal, kDecimals));
  if (dates) add(kDates, dates->text);
  for (const auto& [column, heading] : columns) add(column, heading);
  return text;
}

bool FileFormat::HasVoucherInRow() const {
  return columns.contains(kDebitAccount) || columns.contains(kCreditAccount);
}

std::string SeparatorName(char separator) {
  return std::string(std::ranges::find(kSeparators, separator, &NamedMark::mark)->name);
}

}  // namespace qdclgl::cli
