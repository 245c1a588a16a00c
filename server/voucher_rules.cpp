#include "server/voucher_rules.h"

#include <algorithm>
#include <cmath>

#include "server/posting.h"
#include "server/refusals.h"

namespace qdclgl::server {

namespace {

constexpr Long kBaseCurrency = 1;
constexpr double kLargestQuantity = 1e12;

// A voucher that may have no number yet, as a sentence begins with it.
std::string Sentence(const VoucherTree& tree) {
  if (tree.header.Get<"FNumber">() != 0) return "Voucher " + tree.Name() + ": ";
  const std::string reference = tree.header.Get<"FReference">();
  return "The new voucher of " + DateText(tree.header.Get<"FDate">()) +
         (reference.empty() ? "" : " (" + reference + ")") + ": ";
}

std::string LineSentence(const VoucherTree& tree, std::size_t line) {
  return Sentence(tree) + "line " + std::to_string(line + 1) + ": ";
}

void SettlePeriod(const LedgerRules& rules, VoucherTree& tree) {
  const Date date = tree.header.Get<"FDate">();
  if (date.days == 0) Refuse(refusal::kRequired, Sentence(tree) + "it has no date.");
  const AccountingPeriod period = rules.calendar.PeriodOf(date);
  AccountingPeriod given{tree.header.Get<"FYear">(), tree.header.Get<"FPeriod">()};
  if (given.year == 0) given.year = period.year;
  if (given.period == 0) given.period = period.period;
  if (given != period) {
    Refuse(refusal::kWrongPeriod, Sentence(tree) + DateText(date) + " belongs to period " +
                                      period.ToText() + ", not to " + given.ToText() + ".");
  }
  tree.header.Put<"FYear">(period.year);
  tree.header.Put<"FPeriod">(period.period);
  RequireOpenPeriod(rules, tree);
}

void SettleGroup(Database& db, VoucherTree& tree) {
  const Long id = tree.header.Get<"FGroupID">();
  if (id == 0 && tree.group.empty()) {
    Refuse(refusal::kBadGroup, Sentence(tree) + "it has no voucher group.");
  }
  const auto group =
      id != 0 ? db.QueryRow<Long, std::string, bool>(
                    "SELECT FGroupID, FName, FDeleted FROM t_VoucherGroup WHERE FGroupID = ?", id)
              : db.QueryRow<Long, std::string, bool>(
                    "SELECT FGroupID, FName, FDeleted FROM t_VoucherGroup WHERE FName = ?",
                    tree.group);
  if (!group || std::get<2>(*group)) {
    Refuse(refusal::kBadGroup, Sentence(tree) + "there is no voucher group " +
                                   (id != 0 ? std::to_string(id) : "\"" + tree.group + "\"") + ".");
  }
  tree.header.Put<"FGroupID">(std::get<0>(*group));
  tree.group = std::get<1>(*group);
}

// What a line needs to know of its account.
struct AccountFacts {
  std::string number;
  bool is_detail;
  bool is_deleted;
};

// The accounts with these ids, as few queries as their number allows.
std::map<Long, AccountFacts> FactsOf(Database& db, std::vector<Long> ids) {
  std::map<Long, AccountFacts> facts;
  std::ranges::sort(ids);
  ids.erase(std::ranges::unique(ids).begin(), ids.end());
  static constexpr Storage kResults[] = {Storage::kWhole, Storage::kText, Storage::kWhole,
                                         Storage::kWhole};
  for (std::size_t first = 0; first < ids.size();) {
    std::size_t count = 1;
    while (count < 16 && count < ids.size() - first) count *= 2;
    std::string sql = "SELECT FAccountID, FNumber, FDetail, FDelete FROM t_Account"
                      " WHERE FAccountID IN (?";
    for (std::size_t i = 1; i < count; ++i) sql += ", ?";
    const std::vector<Storage> parameters(count, Storage::kWhole);
    Statement& statement = db.Prepared(sql + ")", parameters, kResults);
    for (std::size_t i = 0; i < count; ++i) {
      statement.Set(i, std::int64_t{ids[std::min(first + i, ids.size() - 1)]});
    }
    for (statement.Open(); statement.Fetch();) {
      facts[static_cast<Long>(statement.Whole(0))] = {statement.Text(1), statement.Whole(2) != 0,
                                                      statement.Whole(3) != 0};
    }
    first += count;
  }
  return facts;
}

void SettleAccounts(Database& db, VoucherTree& tree) {
  std::vector<Long> ids;
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    VoucherLine& line = tree.lines[i];
    if (line.cells.Get<"FAccountID">() == 0) {
      const auto number = line.names[PlaceOf(kLineNames, "FAccountNumber")].Held<String>();
      if (number.empty()) Refuse(refusal::kBadAccount, LineSentence(tree, i) + "it has no account.");
      const auto id =
          db.QueryValue<Long>("SELECT FAccountID FROM t_Account WHERE FNumber = ?", number);
      if (!id) {
        Refuse(refusal::kBadAccount, LineSentence(tree, i) + "there is no account " + number + ".");
      }
      line.cells.Put<"FAccountID">(*id);
    }
    ids.push_back(line.cells.Get<"FAccountID">());
  }
  const std::map<Long, AccountFacts> facts = FactsOf(db, std::move(ids));
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    const Long id = tree.lines[i].cells.Get<"FAccountID">();
    const auto found = facts.find(id);
    if (found == facts.end()) {
      Refuse(refusal::kBadAccount,
             LineSentence(tree, i) + "there is no account with the id " + std::to_string(id) + ".");
    }
    const AccountFacts& account = found->second;
    if (!account.is_detail || account.is_deleted) {
      Refuse(refusal::kBadAccount, LineSentence(tree, i) + "account " + account.number +
                                       (account.is_deleted ? " is out of use."
                                                           : " has accounts below it."));
    }
  }
}

void SettleCurrencies(Database& db, VoucherTree& tree) {
  std::vector<Long> known = {kBaseCurrency};
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    VoucherLine& line = tree.lines[i];
    const Long id = line.cells.Get<"FCurrencyID">();
    const auto number = line.names[PlaceOf(kLineNames, "FCurrencyNumber")].Held<String>();
    if (id == 0 && number.empty()) {
      line.cells.Put<"FCurrencyID">(kBaseCurrency);
      continue;
    }
    if (std::ranges::find(known, id) != known.end()) continue;
    const auto currency =
        id != 0 ? db.QueryRow<Long, bool>(
                      "SELECT FCurrencyID, FDeleted FROM t_Currency WHERE FCurrencyID = ?", id)
                : db.QueryRow<Long, bool>(
                      "SELECT FCurrencyID, FDeleted FROM t_Currency WHERE FNumber = ?", number);
    if (!currency || std::get<1>(*currency)) {
      Refuse(refusal::kBadCurrency, LineSentence(tree, i) + "there is no currency " +
                                        (id != 0 ? std::to_string(id) : number) + " in use.");
    }
    line.cells.Put<"FCurrencyID">(std::get<0>(*currency));
    known.push_back(std::get<0>(*currency));
  }
}

// Adds an amount of a line to a total. TooLarge beyond what balances can hold.
void Add(std::int64_t& total, std::int64_t units, const VoucherTree& tree, std::size_t line) {
  if (units > kLargestTotal || units < -kLargestTotal || total + units > kLargestTotal ||
      total + units < -kLargestTotal) {
    Refuse(refusal::kTooLarge, LineSentence(tree, line) + "the amount is too large.");
  }
  total += units;
}

void CheckBalance(VoucherTree& tree) {
  if (tree.lines.empty()) Refuse(refusal::kNoLines, Sentence(tree) + "it has no lines.");
  std::int64_t totals[2] = {0, 0}, totals_for[2] = {0, 0};
  Long details = 0;
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    const VoucherLine& line = tree.lines[i];
    const Long side = line.cells.Get<"FDC">();
    if (side != 0 && side != 1) {
      Refuse(refusal::kBadSide, LineSentence(tree, i) + "it is neither debit (1) nor credit (0).");
    }
    Add(totals[side], line.cells.Get<"FAmount">().units(), tree, i);
    Add(totals_for[side], line.cells.Get<"FAmountFor">().units(), tree, i);
    if (!(std::abs(line.cells.Get<"FQuantity">()) <= kLargestQuantity)) {
      Refuse(refusal::kTooLarge, LineSentence(tree, i) + "the quantity is too large.");
    }
    if (!std::isfinite(line.cells.Get<"FUnitPrice">()) ||
        !std::isfinite(line.cells.Get<"FExchangeRate">())) {
      Refuse(refusal::kBadValue, LineSentence(tree, i) + "price or rate is no number.");
    }
    details += static_cast<Long>(line.details.size());
  }
  const Currency credit = Currency::FromUnits(totals[0]), debit = Currency::FromUnits(totals[1]);
  if (debit != credit) {
    Refuse(refusal::kNotBalanced, Sentence(tree) + "debits " + debit.ToText() + " and credits " +
                                      credit.ToText() + " differ by " +
                                      (debit - credit).ToText() + ".");
  }
  tree.state.Put<"FDebitTotal">(debit);
  tree.state.Put<"FCreditTotal">(credit);
  tree.state.Put<"FEntryCount">(static_cast<Long>(tree.lines.size()));
  tree.state.Put<"FDetailCount">(details);
}

}  // namespace

void ApplyRules(Database& db, const LedgerRules& rules, VoucherTree& tree) {
  if (tree.header.Get<"FNumber">() < 0) {
    Refuse(refusal::kBadNumber, "The number of a voucher is not negative.");
  }
  SettlePeriod(rules, tree);
  SettleGroup(db, tree);
  CheckBalance(tree);
  SettleAccounts(db, tree);
  SettleCurrencies(db, tree);
}

void GiveNumber(Database& db, VoucherTree& tree) {
  const Long year = tree.header.Get<"FYear">(), period = tree.header.Get<"FPeriod">(),
             group = tree.header.Get<"FGroupID">(), wanted = tree.header.Get<"FNumber">();
  // The counter's row makes those who number in the same place wait for each other.
  if (wanted == 0) {
    const auto next = db.QueryValue<std::int64_t>(
        "INSERT INTO t_Counter (FYear, FPeriod, FGroupID, FNext) VALUES (?, ?, ?, 2)"
        " ON CONFLICT (FYear, FPeriod, FGroupID) DO UPDATE SET FNext = t_Counter.FNext + 1"
        " RETURNING FNext - 1",
        year, period, group);
    if (*next > INT32_MAX) {
      Refuse(refusal::kBadNumber, Sentence(tree) + "the numbers of its period and group are used up.");
    }
    tree.header.Put<"FNumber">(static_cast<Long>(*next));
    return;
  }
  db.Execute(
      "INSERT INTO t_Counter (FYear, FPeriod, FGroupID, FNext) VALUES (?, ?, ?, ?)"
      " ON CONFLICT (FYear, FPeriod, FGroupID) DO UPDATE SET FNext ="
      " CASE WHEN t_Counter.FNext > excluded.FNext THEN t_Counter.FNext ELSE excluded.FNext END",
      year, period, group, std::int64_t{wanted} + 1);
  const auto other = db.QueryValue<Long>(
      "SELECT FVoucherID FROM t_Voucher WHERE FYear = ? AND FPeriod = ? AND FGroupID = ?"
      " AND FNumber = ?",
      year, period, group, wanted);
  if (other && *other != tree.state.Get<"FVoucherID">()) {
    Refuse(refusal::kNumberTaken, Sentence(tree) + "another voucher has that number (id " +
                                      std::to_string(*other) + ").");
  }
}

void RequireOpenPeriod(const LedgerRules& rules, const VoucherTree& tree) {
  const AccountingPeriod period{tree.header.Get<"FYear">(), tree.header.Get<"FPeriod">()};
  if (period < rules.current) {
    Refuse(refusal::kPeriodClosed, Sentence(tree) + "period " + period.ToText() +
                                       " is closed; the books stand at " +
                                       rules.current.ToText() + ".");
  }
}

void RequireChangeable(const LedgerRules& rules, const VoucherTree& tree) {
  const auto refuse = [&](std::int32_t number, const char* reason) {
    Refuse(number, Sentence(tree) + reason);
  };
  if (tree.state.Get<"FDeleted">()) refuse(refusal::kVoucherDeleted, "it is deleted.");
  if (tree.state.Get<"FPosted">()) refuse(refusal::kVoucherPosted, "it is posted.");
  if (tree.state.Get<"FChecked">()) refuse(refusal::kVoucherChecked, "it is checked.");
  RequireOpenPeriod(rules, tree);
}

}  // namespace qdclgl::server
