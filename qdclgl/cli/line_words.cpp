#include "qdclgl/cli/line_words.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/voucher_draft.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

constexpr std::string_view kAmountSigns = "-.,0123456789";

[[noreturn]] void Refuse(const std::string& reason) { RefuseOption("--line", reason); }

// The first word of what is left, which loses it.
std::string TakeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  const std::string word(rest.substr(0, rest.find(' ')));
  rest.remove_prefix(word.size());
  return word;
}

// "20USD@0.9": an amount, perhaps with a currency, perhaps with its rate.
void ReadWorth(LineWords& line, std::string_view word) {
  const std::size_t end = std::min(word.find_first_not_of(kAmountSigns), word.size());
  line.amount = ReadAmount(word.substr(0, end));
  word.remove_prefix(end);
  const std::size_t at = word.find('@');
  line.currency = word.substr(0, at);
  if (at != word.npos) line.rate = ReadRate(word.substr(at + 1));
}

Long CurrencyNamed(const std::string& number) {
  const auto currencies = Make<CurrencySet>();
  currencies->Filter("FNumber = " + FilterText(number));
  if (currencies->Count() > 0) return currencies->GetCurrent()->CurrencyID();
  throw Error(server::refusal::kBadCurrency, "qdclgl", "There is no currency " + number + ".");
}

}  // namespace

LineWords ReadLineWords(const std::string& text) {
  LineWords line;
  std::string_view rest = text;
  line.account = TakeWord(rest);
  const std::string side = TakeWord(rest);
  if (side != "debit" && side != "credit") {
    Refuse(Quoted(text) + " is not ACCOUNT debit|credit [AMOUNT] [TEXT]");
  }
  line.is_debit = side == "debit";
  std::string_view behind = rest;
  const std::string worth = TakeWord(behind);
  if (!worth.empty() && kAmountSigns.find(worth.front()) != kAmountSigns.npos) {
    try {
      ReadWorth(line, worth);
    } catch (const BadCell& bad) {
      Refuse(bad.what());
    }
    rest = behind;
  }
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  line.explanation = rest;
  return line;
}

void PutWords(VoucherEntry& line, const LineWords& words, DateTime day) {
  line.AccountNumber(words.account);
  line.DC(words.is_debit ? 1 : 0);
  line.Explanation(words.explanation);
  if (!words.currency.empty()) line.CurrencyID(CurrencyNamed(words.currency));
  line.ExchangeRate(words.rate);
  if (words.amount) PutAmount(line, *words.amount, day);
}

}  // namespace qdclgl::cli
