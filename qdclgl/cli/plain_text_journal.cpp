#include "qdclgl/cli/plain_text_journal.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/journal_writer.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::cli {

namespace {

bool IsAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

std::string Replaced(std::string_view text, std::string_view marks, char with) {
  std::string replaced = OneLine(text);
  for (char& c : replaced) {
    if (marks.find(c) != marks.npos) c = with;
  }
  return replaced;
}

// One blank between words and none around them or before a comma: two end a name.
std::string SingleSpaced(const std::string& text) {
  std::string spaced;
  for (const char c : text) {
    if (c == ',' && spaced.ends_with(' ')) spaced.pop_back();
    if (c != ' ' || (!spaced.empty() && spaced.back() != ' ')) spaced += c;
  }
  if (spaced.ends_with(' ')) spaced.pop_back();
  return spaced;
}

// A text without the marks by which the programs begin a comment, a tag, a date or a payee.
std::string Prose(std::string_view text) {
  return SingleSpaced(Replaced(Replaced(Replaced(text, "[", '('), "]", ')'), ":;|", ','));
}

std::string InQuotes(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : OneLine(text)) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

// The parts of "1000.01.02", and the numbers of the accounts above up to each.
std::vector<std::pair<std::string, std::string>> Levels(const std::string& number) {
  std::vector<std::pair<std::string, std::string>> levels;
  for (std::size_t begin = 0; begin <= number.size();) {
    const std::size_t end = std::min(number.find('.', begin), number.size());
    levels.emplace_back(number.substr(begin, end - begin), number.substr(0, end));
    begin = end + 1;
  }
  return levels;
}

// The part of an account's name in beancount: letters, digits and hyphens, and a capital letter or
// a digit first.
std::string BeancountPart(const std::string& text) {
  std::string part;
  for (const char c : text) {
    const bool stays = IsAsciiLetter(c) || IsAsciiDigit(c) || IsBeyondAscii(c);
    if (stays) part += c;
    else if (!part.empty() && part.back() != '-') part += '-';
  }
  while (part.ends_with('-')) part.pop_back();
  if (part.empty()) return "0";
  part[0] = ToUpper(part.substr(0, 1))[0];
  return part;
}

// Where beancount's five roots put an account that stands on that side.
std::string_view BeancountRoot(Long side) {
  return side > 0 ? "Assets" : side < 0 ? "Liabilities" : "Equity";
}

// The same kind of sign, so that the one is the worth of the other.
bool AgreeInSign(double a, double b) { return (a > 0 && b > 0) || (a < 0 && b < 0); }

Currency Size(Currency amount) { return amount < Currency() ? -amount : amount; }

}  // namespace

const std::string& Substitutes::Of(const std::string& name, const std::string& wished) {
  const auto [place, is_new] = of_.try_emplace(name, wished);
  for (int i = 2; is_new && !taken_.insert(place->second).second; ++i) {
    place->second = wished + "-" + std::to_string(i);
  }
  return place->second;
}

PlainTextJournal::PlainTextJournal(std::ostream& out, PlainText format,
                                   const std::string& base_currency,
                                   const std::vector<Ref<Dictionary>>& accounts)
    : out_(out), format_(format), base_(Commodity(base_currency)) {
  std::map<std::string, std::string> names;
  for (const Ref<Dictionary>& account : accounts) {
    names[account->Value("FNumber").As<String>()] = account->Value("FName").As<String>();
  }
  for (const Ref<Dictionary>& account : accounts) {
    accounts_[account->Value("FAccountID").As<Long>()] = {
        AccountName(*account, names), account->Value("FMeasureUnit").As<String>()};
  }
  if (IsBeancount()) OpenAccounts();
}

std::string PlainTextJournal::AccountName(const Dictionary& account,
                                          const std::map<std::string, std::string>& names) {
  const std::string number = WithoutOwnLines(account.Value("FNumber").As<String>());
  std::string name;
  for (const auto& [part, up_to] : Levels(number)) {
    const auto known = names.find(up_to);
    const std::string words = part + " " + (known == names.end() ? "" : known->second);
    if (!name.empty()) name += ':';
    name += IsBeancount() ? BeancountPart(words) : SingleSpaced(Replaced(words, ":;", ','));
  }
  if (!IsBeancount()) return account_names_.Of(number, name);
  const std::string root(BeancountRoot(account.Value("FDC").As<Long>()));
  return account_names_.Of(number, root + ":" + name);
}

std::string PlainTextJournal::Commodity(const std::string& symbol) {
  if (!IsBeancount()) {
    const bool is_word = std::ranges::all_of(symbol, IsAsciiLetter);
    return is_word ? symbol : "\"" + Replaced(symbol, "\"", '\'') + "\"";
  }
  std::string name;
  for (const char c : ToUpper(symbol)) name += IsAsciiLetter(c) || IsAsciiDigit(c) ? c : '-';
  if (name.empty() || !IsAsciiLetter(name.front())) name.insert(0, "C");
  if (name.size() < 2 || name.ends_with('-')) name += 'X';
  return commodities_.Of(symbol, name.substr(0, 20));
}

void PlainTextJournal::OpenAccounts() {
  // Before any voucher: books know no day on which an account was opened.
  constexpr std::string_view kFirstDay = "1900-01-01";
  out_ << "option \"operating_currency\" " << InQuotes(base_) << "\n\n";
  std::set<std::string> names;
  for (const auto& [id, account] : accounts_) names.insert(account.name);
  for (const std::string& name : names) out_ << kFirstDay << " open " << name << '\n';
}

void PlainTextJournal::WriteHead(DateTime date, bool is_posted, const std::string& code,
                                 const std::string& text) {
  out_ << '\n' << date.ToText() << (is_posted ? " * " : " ! ");
  if (IsBeancount()) {
    out_ << InQuotes(text) << '\n';
    if (!code.empty()) out_ << "  code: " << InQuotes(code) << '\n';
    return;
  }
  if (!code.empty()) out_ << '(' << Replaced(Prose(code), "()", ' ') << ") ";
  out_ << Prose(text) << '\n';
}

void PlainTextJournal::WritePosting(const Movement& movement, const std::string& note) {
  const Account& account = accounts_[movement.account];
  // What agrees in sign is told with its worth behind it. All else, such as a difference of rates,
  // is told in base currency.
  const auto is_worth_it = [&](double size) { return AgreeInSign(size, movement.base.ToDouble()); };
  out_ << "  " << account.name << "  ";
  if (movement.currency != Names::kBaseCurrency && is_worth_it(movement.amount_for.ToDouble())) {
    out_ << AmountText(movement.amount_for) << ' ' << Commodity(movement.currency_number);
  } else if (movement.currency == Names::kBaseCurrency && !account.unit.empty() &&
             is_worth_it(movement.quantity)) {
    out_ << DigitsOf(movement.quantity) << ' ' << Commodity(account.unit);
  } else {
    out_ << AmountText(movement.base) << ' ' << base_ << note << '\n';
    return;
  }
  out_ << " @@ " << AmountText(Size(movement.base)) << ' ' << base_ << note << '\n';
}

void PlainTextJournal::WriteCompany(const Company& company) {
  for (const std::string& line : {company.name, company.address}) {
    if (!line.empty()) out_ << "; " << OneLine(line) << '\n';
  }
}

void PlainTextJournal::WriteOpening(DateTime day, Recordset& balances) {
  if (balances.Eof()) return;
  WriteHead(day, true, "", "Opening balances");
  for (; !balances.Eof(); balances.MoveNext()) {
    const Ref<Dictionary> row = balances.Row();
    WritePosting(
        {row->Value("FAccountID").As<Long>(), row->Value("FBeginBalance").As<Currency>(),
         row->Value("FCurrencyID").As<Long>(), row->Value("FCurrencyNumber").As<String>(),
         row->Value("FBeginBalanceFor").As<Currency>(), row->Value("FBeginQty").As<Double>()},
        "");
  }
}

void PlainTextJournal::Write(const Dictionary& voucher) {
  const auto explanation = voucher.Value("FExplanation").As<String>();
  WriteHead(voucher.Value("FDate").As<DateTime>(), voucher.Value("FPosted").As<Boolean>(),
            VoucherName(voucher), explanation);
  const auto entries = voucher.Value(strings::lists::Entries).As<Vector>();
  for (std::size_t i = 0; i < entries->size(); ++i) {
    const auto line = entries->at(i).As<Dictionary>();
    const bool is_debit = line->Value("FDC").As<Long>() == 1;
    const auto amount = [&](const char* key) {
      const auto value = line->Value(key).As<Currency>();
      return is_debit ? value : -value;
    };
    const auto entered = line->Value("FQuantity").As<Double>();
    const auto counted = line->Value("FBaseQuantity").As<Double>();
    const auto text = line->Value("FExplanation").As<String>();
    WritePosting(
        {line->Value("FAccountID").As<Long>(), amount("FAmount"),
         line->Value("FCurrencyID").As<Long>(), line->Value("FCurrencyNumber").As<String>(),
         amount("FAmountFor"), (is_debit ? 1 : -1) * (counted != 0 ? counted : entered)},
        text.empty() || text == explanation ? "" : "  ; " + Prose(text));
  }
}

}  // namespace qdclgl::cli
