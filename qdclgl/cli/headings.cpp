#include "qdclgl/cli/headings.h"

#include <algorithm>

namespace qdclgl::cli {

namespace {

bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }

// What doesn't follow from the key.
struct KnownHeading {
  std::string_view key, heading;
};
constexpr KnownHeading kKnown[] = {
    {"FDC", "Side"},
    {"FName_en", "Name (English)"},
    {"FName_Cht", "Name (traditional)"},
    {"FAccountName", "Name"},
    {"FRecordID", "ID"},
    {"FAmountFor", "Amount"},
    {"FExchangeRate", "Rate"},
    {"FMeasureUnit", "Unit"},
    {"FUnitPrice", "Price"},
    {"FTransNo", "Reference"},
    {"FBrNo", "Branch"},
    {"FBeginBalance", "Begin"},
    {"FEndBalance", "End"},
    {"FLedgerName", "Ledger"},
    {"FVoucherCount", "Vouchers"},
    {"CheckAcctNumber", "Check account"},
    {"AcctNumber", "Account"},
};

// The words of a key: {"Account", "Number"}, {"Voucher", "ID"}.
std::vector<std::string> WordsOf(std::string_view key) {
  std::vector<std::string> words;
  for (std::size_t i = 0; i < key.size(); ++i) {
    const bool goes_on = i > 0 && (!IsUpper(key[i]) || (IsUpper(key[i - 1]) && IsUpper(key[i])));
    if (key[i] == '_') continue;
    if (!goes_on) words.emplace_back();
    words.back() += key[i];
  }
  return words;
}

// Words as a heading: those behind the first are in small letters, but for ID and the like.
std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    const bool is_first = text.empty();
    if (!is_first) text += ' ';
    text += word;
    const bool is_short_form = word.size() > 1 && IsUpper(word[1]);
    if (is_first || is_short_form) continue;
    char& letter = text[text.size() - word.size()];
    if (IsUpper(letter)) letter = static_cast<char>(letter - 'A' + 'a');
  }
  return text;
}

bool IsKey(std::string_view key) { return key.size() > 1 && key[0] == 'F' && IsUpper(key[1]); }

std::string WholeHeading(std::string_view key) {
  return IsKey(key) ? Joined(WordsOf(key.substr(1))) : std::string(key);
}

}  // namespace

std::string HeadingOf(std::string_view key) {
  const auto known = std::ranges::find(kKnown, key, &KnownHeading::key);
  if (known != std::end(kKnown)) return std::string(known->heading);
  if (!IsKey(key)) return std::string(key);
  std::vector<std::string> words = WordsOf(key.substr(1));
  if (words.size() > 1 && words.back() == "Number") words.pop_back();
  return Joined(words);
}

std::vector<std::string> HeadingsOf(const std::vector<std::string>& keys) {
  std::vector<std::string> headings;
  std::ranges::transform(keys, std::back_inserter(headings),
                         [](const std::string& key) { return HeadingOf(key); });
  const std::vector<std::string> first = headings;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (std::ranges::count(first, first[i]) > 1) headings[i] = WholeHeading(keys[i]);
  }
  return headings;
}

bool IsSideOfAccount(std::string_view key) {
  return key.starts_with("FDebit") || key.starts_with("FCredit") || key == "Debit" ||
         key == "Credit";
}

bool IsInRowsCurrency(std::string_view key) { return IsKey(key) && key.ends_with("For"); }

}  // namespace qdclgl::cli
