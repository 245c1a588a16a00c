#include "tests/server/model/model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace qdclgl::server::testing::model {

namespace {

constexpr std::int64_t kLargestAmount = INT64_MAX / 2;
constexpr Long kLargestGivenNumber = 999'999'999;
const std::string kNone = Model::kNone;

bool Has(const User& user, Right right) { return (user.rights & (right | kAdminister)) != 0; }

std::int64_t Millionths(double quantity) { return std::llround(quantity * 1e6); }

double FromMillionths(std::int64_t count) {
  constexpr std::int64_t kOne = 1'000'000;
  return static_cast<double>(count / kOne) + static_cast<double>(count % kOne) / 1e6;
}

bool IsInRange(std::int64_t amount) {
  return amount >= -kLargestAmount && amount <= kLargestAmount;
}

std::int64_t SizeOf(const Line& line) {
  return std::max(
      {std::abs(line.amount), std::abs(line.amount_for), std::abs(Millionths(line.quantity))});
}

// Sizes are not negative; their sum, or -1 where 64 bits don't hold it.
std::int64_t Sum(std::int64_t one, std::int64_t other) {
  return one < 0 || other > INT64_MAX - one ? -1 : one + other;
}

std::int64_t SizeOf(const Content& content) {
  std::int64_t size = 0;
  for (const Line& line : content.lines) size = Sum(size, SizeOf(line));
  return size;
}

bool IsAtRate(const Line& line, bool divides) {
  if (line.rate == 0 || line.amount_for == 0) return true;
  const long double amount_for = static_cast<long double>(line.amount_for);
  const long double expected = divides ? amount_for / line.rate : amount_for * line.rate;
  return std::abs(static_cast<long double>(line.amount) - expected) <= 100;
}

std::string Above(const std::string& number) {
  const auto dot = number.rfind('.');
  return dot == number.npos ? "" : number.substr(0, dot);
}

std::string PeriodText(Long period) {
  return std::to_string(2024 + period / 12) + " " + std::to_string(1 + period % 12);
}

template <class... Values>
std::string Row(const char* word, const Values&... values) {
  std::string text = word;
  const auto add = [&](const auto& value) {
    using Value = std::decay_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, std::string>) {
      text += " " + value;
    } else if constexpr (std::is_same_v<Value, double>) {
      char number[32];
      std::snprintf(number, sizeof number, " %.12g", value);
      text += number;
    } else {
      text += " " + std::to_string(value);
    }
  };
  (add(values), ...);
  return text + "\n";
}

}  // namespace

// ---- Vouchers ----

std::string Model::LineRules(const Content& content) const {
  if (content.lines.empty()) return "NoLines";
  for (const Line& line : content.lines) {
    if (!IsInRange(line.amount) || !IsInRange(line.amount_for) || std::abs(line.quantity) > 1e12) {
      return "TooLarge";
    }
  }
  if (SizeOf(content) < 0) return "TooLarge";
  std::int64_t debit = 0, credit = 0;
  for (const Line& line : content.lines) {
    if (line.side != 0 && line.side != 1) return "BadSide";
    (line.side == 1 ? debit : credit) += line.amount;
  }
  if (debit != credit) return "NotBalanced";
  const bool takes_red_ink =
      !settings.contains("NoNegativeAmounts") || !settings.at("NoNegativeAmounts");
  for (const Line& line : content.lines) {
    if (!takes_red_ink && (line.amount < 0 || line.amount_for < 0)) return "NegativeAmount";
  }
  for (const Line& line : content.lines) {
    const auto account = accounts.find(line.account);
    if (account == accounts.end() || account->second.deleted ||
        HasAccountsBelow(line.account, true)) {
      return "BadAccount";
    }
  }
  for (const Line& line : content.lines) {
    const auto currency = currencies.find(line.currency);
    if (currency == currencies.end() || currency->second.deleted) return "BadCurrency";
    if (currency->second.id != 1 && !IsAtRate(line, currency->second.divides)) return "NotAtRate";
  }
  return kNone;
}

std::string Model::Rules(const Content& content) const {
  if (content.number < 0) return "BadNumber";
  if (content.period < current) return "PeriodClosed";
  if (content.group < 1 || content.group > kGroups) return "BadGroup";
  return LineRules(content);
}

std::string Model::GiveNumber(const Voucher* stored, Content& content) {
  std::int64_t& next = next_numbers_.try_emplace({content.period, content.group}, 1).first->second;
  if (content.number == 0) {
    content.number = static_cast<Long>(next++);
    return kNone;
  }
  const auto has_number = [&](const Voucher& voucher) {
    return voucher.id != 0 && voucher.period == content.period && voucher.group == content.group &&
           voucher.number == content.number;
  };
  if (content.number > kLargestGivenNumber && !(stored != nullptr && has_number(*stored))) {
    return "BadNumber";
  }
  for (const Voucher& voucher : vouchers) {
    if (&voucher != stored && has_number(voucher)) return "NumberTaken";
  }
  next = std::max<std::int64_t>(next, std::int64_t{content.number} + 1);
  return kNone;
}

std::string Model::Create(const User& user, Content content) {
  if (!Has(user, kPrepare)) return "NotPermitted";
  if (const std::string refusal = Rules(content); refusal != kNone) return refusal;
  const auto numbers = next_numbers_;
  if (const std::string refusal = GiveNumber(nullptr, content); refusal != kNone) {
    next_numbers_ = numbers;
    return refusal;
  }
  Voucher voucher{std::move(content)};
  voucher.preparer = user.id;
  voucher.hands = {user.id};
  vouchers.push_back(std::move(voucher));
  return kNone;
}

std::string Model::Unsigned(const Voucher& voucher) const {
  if (voucher.posted) return "VoucherPosted";
  if (voucher.checked) return "VoucherChecked";
  return voucher.cashier != -1 ? "VoucherCashed" : kNone;
}

std::string Model::Changeable(const Voucher& voucher) const {
  if (voucher.deleted) return "VoucherDeleted";
  if (const std::string refusal = Unsigned(voucher); refusal != kNone) return refusal;
  return voucher.period < current ? "PeriodClosed" : kNone;
}

std::string Model::Update(const User& user, std::size_t i, Long version, Content content) {
  if (!Has(user, kPrepare)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (voucher.id == 0) return "NotFound";
  if (version != voucher.version) return "Changed";
  if (const std::string refusal = Changeable(voucher); refusal != kNone) return refusal;
  if (const std::string refusal = Rules(content); refusal != kNone) return refusal;
  const auto numbers = next_numbers_;
  if (const std::string refusal = GiveNumber(&voucher, content); refusal != kNone) {
    next_numbers_ = numbers;
    return refusal;
  }
  static_cast<Content&>(voucher) = std::move(content);
  voucher.preparer = user.id;
  voucher.hands.insert(user.id);
  ++voucher.version;
  return kNone;
}

std::string Model::Delete(const User& user, std::size_t i, bool purge) {
  if (!Has(user, kPrepare)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (voucher.id == 0) return "NotFound";
  if (purge && voucher.deleted) {
    if (const std::string refusal = Unsigned(voucher); refusal != kNone) return refusal;
    if (voucher.period < current) return "PeriodClosed";
  } else if (const std::string refusal = Changeable(voucher); refusal != kNone) {
    return refusal;
  }
  if (purge) {
    voucher = Voucher();
  } else {
    voucher.deleted = true;
    ++voucher.version;
  }
  return kNone;
}

std::string Model::ClearCashFlow(const User& user, std::size_t i) {
  if (!Has(user, kPrepare)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (voucher.id == 0) return "NotFound";
  if (const std::string refusal = Changeable(voucher); refusal != kNone) return refusal;
  for (Line& line : voucher.lines) line.cash_flow = 0;
  voucher.hands.insert(user.id);
  ++voucher.version;
  return kNone;
}

// ---- Steps ----

std::string Model::OpenForStep(const Voucher& voucher) const {
  if (voucher.id == 0) return "NotFound";
  if (voucher.deleted) return "VoucherDeleted";
  return voucher.period < current ? "PeriodClosed" : kNone;
}

std::string Model::Check(const User& user, std::size_t i, bool way) {
  if (!Has(user, kCheck)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (const std::string refusal = OpenForStep(voucher); refusal != kNone) return refusal;
  if (voucher.posted || voucher.checked == way || voucher.approver != -1) return "WrongStep";
  if (way && settings["CheckerNotPreparer"] && voucher.hands.contains(user.id)) return "OwnVoucher";
  voucher.checked = way;
  voucher.checker = way ? user.id : -1;
  ++voucher.version;
  return kNone;
}

std::string Model::Approve(const User& user, std::size_t i, bool way) {
  if (!Has(user, kCheck)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (const std::string refusal = OpenForStep(voucher); refusal != kNone) return refusal;
  if (voucher.posted || !voucher.checked || (voucher.approver != -1) == way) return "WrongStep";
  if (way && settings["ApproverNotPreparer"] && voucher.hands.contains(user.id)) {
    return "OwnVoucher";
  }
  voucher.approver = way ? user.id : -1;
  ++voucher.version;
  return kNone;
}

std::string Model::Cash(const User& user, std::size_t i, bool way) {
  if (!Has(user, kCash)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (const std::string refusal = OpenForStep(voucher); refusal != kNone) return refusal;
  if ((voucher.cashier != -1) == way) return "WrongStep";
  if (way && settings["CashierNotPreparer"] && voucher.hands.contains(user.id)) {
    return "OwnVoucher";
  }
  voucher.cashier = way ? user.id : -1;
  ++voucher.version;
  return kNone;
}

std::string Model::Post(const User& user, std::size_t i, bool way) {
  if (!Has(user, kPost)) return "NotPermitted";
  Voucher& voucher = vouchers[i];
  if (const std::string refusal = OpenForStep(voucher); refusal != kNone) return refusal;
  if (voucher.posted == way) return "WrongStep";
  if (way && settings["CheckBeforePost"] && !voucher.checked) return "WrongStep";
  if (way && settings["PosterNotPreparer"] && voucher.hands.contains(user.id)) return "OwnVoucher";
  std::int64_t size = SizeOf(voucher);
  for (const Voucher& other : vouchers) {
    if (other.posted) size = Sum(size, SizeOf(other));
  }
  if (way && size < 0) return "TooLarge";
  voucher.posted = way;
  voucher.poster = way ? user.id : -1;
  ++voucher.version;
  return kNone;
}

// ---- Periods and settings ----

std::string Model::Close(const User& user) {
  if (!Has(user, kPost)) return "NotPermitted";
  for (const Voucher& voucher : vouchers) {
    if (voucher.id != 0 && voucher.period == current && !voucher.posted && !voucher.deleted) {
      return "NotAllPosted";
    }
  }
  ++current;
  return kNone;
}

std::string Model::Reopen(const User& user) {
  if (!Has(user, kPost)) return "NotPermitted";
  if (current == 0) return "FirstPeriod";
  for (const Voucher& voucher : vouchers) {
    if (voucher.posted && voucher.period >= current) return "LaterPostings";
  }
  --current;
  return kNone;
}

std::string Model::Set(const User& user, const std::string& setting, bool value) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  settings[setting] = value;
  return kNone;
}

// ---- Accounts and currencies ----

template <class Condition>
bool Model::IsInSomeLine(Condition condition) const {
  return std::ranges::any_of(vouchers, [&](const Voucher& voucher) {
    return std::ranges::any_of(voucher.lines, condition);
  });
}

bool Model::HasAccountsBelow(const std::string& number, bool deleted_too) const {
  return std::ranges::any_of(accounts, [&](const auto& entry) {
    return Above(entry.first) == number && (deleted_too || !entry.second.deleted);
  });
}

std::string Model::AddAccount(const User& user, const std::string& number) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  if (accounts.contains(number)) return "NumberTaken";
  if (const std::string above = Above(number); !above.empty()) {
    const auto parent = accounts.find(above);
    if (parent == accounts.end() || parent->second.deleted) return "NoParent";
    if (IsInSomeLine([&](const Line& line) { return line.account == above; })) return "ParentInUse";
  }
  accounts[number] = {};
  return kNone;
}

std::string Model::MarkAccount(const User& user, const std::string& number, bool deleted) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  const auto account = accounts.find(number);
  if (account == accounts.end()) return "NotFound";
  if (deleted && HasAccountsBelow(number, false)) return "HasChildren";
  const auto above = accounts.find(Above(number));
  if (!deleted && above != accounts.end() && above->second.deleted) return "NoParent";
  account->second.deleted = deleted;
  ++account->second.version;
  return kNone;
}

std::string Model::RemoveAccount(const User& user, const std::string& number) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  if (!accounts.contains(number)) return "NotFound";
  if (HasAccountsBelow(number, true)) return "HasChildren";
  if (IsInSomeLine([&](const Line& line) { return line.account == number; })) return "InUse";
  accounts.erase(number);
  return kNone;
}

std::string Model::AddCurrency(const User& user, const std::string& number, bool divides) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  if (currencies.contains(number)) return "NumberTaken";
  currencies[number] = {.divides = divides};
  return kNone;
}

std::string Model::ChangeOperator(const User& user, const std::string& number) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  const auto currency = currencies.find(number);
  if (currency == currencies.end()) return "NotFound";
  if (IsInSomeLine([&](const Line& line) { return line.currency == number; })) return "InUse";
  currency->second.divides = !currency->second.divides;
  ++currency->second.version;
  return kNone;
}

std::string Model::RemoveCurrency(const User& user, const std::string& number) {
  if (!Has(user, kAdminister)) return "NotPermitted";
  const auto currency = currencies.find(number);
  if (currency == currencies.end()) return "NotFound";
  if (currency->second.id == 1) return "InUse";
  if (!IsInSomeLine([&](const Line& line) { return line.currency == number; })) {
    currencies.erase(currency);
    return kNone;
  }
  if (currency->second.deleted) return "InUse";
  currency->second.deleted = true;
  ++currency->second.version;
  return kNone;
}

// ---- The whole ----

std::string Model::State() const {
  std::string state = "current " + PeriodText(current) + "\n";
  std::int64_t posted = 0;
  for (const Voucher& voucher : vouchers) {
    if (voucher.id == 0) continue;
    if (voucher.posted) posted = Sum(posted, SizeOf(voucher));
    std::int64_t totals[2] = {0, 0};
    for (const Line& line : voucher.lines) totals[line.side] += line.amount;
    state += Row("voucher", voucher.id, voucher.version, PeriodText(voucher.period), voucher.group,
                 voucher.number, voucher.preparer, voucher.checked, voucher.checker,
                 voucher.approver, voucher.cashier, voucher.posted, voucher.poster, voucher.deleted,
                 totals[1], totals[0], voucher.lines.size());
    Long number = 0;
    for (const Line& line : voucher.lines) {
      state += Row("line", ++number, line.account, line.currency, line.side, line.amount,
                   line.amount_for, line.rate, line.quantity, line.cash_flow);
    }
  }
  state += Row("posted", posted);
  for (const auto& [place, next] : next_numbers_) {
    state += Row("counter", PeriodText(place.first), place.second, next);
  }
  for (const auto& [number, account] : accounts) {
    state +=
        Row("account", number, account.id, account.version, std::ranges::count(number, '.') + 1,
            !HasAccountsBelow(number, true), account.deleted);
  }
  for (const auto& [number, currency] : currencies) {
    state += Row("currency", number, currency.id, currency.version,
                 std::string(currency.divides ? "/" : "*"), currency.deleted);
  }
  return state;
}

std::string Model::Balances(Long first, Long last) const {
  // Begin, debit and credit of base amounts, foreign amounts and millionths.
  using Sums = std::array<std::int64_t, 9>;
  std::map<std::pair<std::string, Long>, Sums> balances;
  const auto add = [&](const std::string& account, Long currency, const Voucher& voucher,
                       const Line& line, std::int64_t amount_for) {
    Sums& sums = balances[{account, currency}];
    const std::array amounts = {line.amount, amount_for, Millionths(line.quantity)};
    for (std::size_t i = 0; i < amounts.size(); ++i) {
      if (voucher.period < first) {
        sums[3 * i] += line.side == 1 ? amounts[i] : -amounts[i];
      } else {
        sums[3 * i + (line.side == 1 ? 1 : 2)] += amounts[i];
      }
    }
  };
  for (const Voucher& voucher : vouchers) {
    if (!voucher.posted || (last >= 0 && voucher.period > last)) continue;
    for (const Line& line : voucher.lines) {
      const Long currency = currencies.at(line.currency).id;
      for (std::string account = line.account; !account.empty(); account = Above(account)) {
        add(account, 0, voucher, line, 0);
        add(account, currency, voucher, line, currency == 1 ? line.amount : line.amount_for);
      }
    }
  }
  std::string text;
  for (const auto& [key, sums] : balances) {
    if (sums == Sums()) continue;
    text += Row("balance", key.first, key.second, sums[0], sums[1], sums[2],
                sums[0] + sums[1] - sums[2], sums[3], sums[4], sums[5], sums[3] + sums[4] - sums[5],
                FromMillionths(sums[6]), FromMillionths(sums[7]), FromMillionths(sums[8]),
                FromMillionths(sums[6] + sums[7] - sums[8]));
  }
  return text;
}

}  // namespace qdclgl::server::testing::model
