#include "qdclgl/server/vouchers/voucher_rules.h"

#include <algorithm>
#include <bit>
#include <map>
#include <set>

#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/coefficient.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/references.h"
#include "qdclgl/server/vouchers/exchange.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

// What an index of every database takes.
constexpr std::size_t kLongestReference = 255;

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
  const DateTime date = tree.header.Get<"FDate">();
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

// Whether two states of a voucher have one number in one place.
bool HasSamePlace(const VoucherTree& one, const VoucherTree& other) {
  return one.header.Get<"FYear">() == other.header.Get<"FYear">() &&
         one.header.Get<"FPeriod">() == other.header.Get<"FPeriod">() &&
         one.header.Get<"FGroupID">() == other.header.Get<"FGroupID">() &&
         one.header.Get<"FNumber">() == other.header.Get<"FNumber">();
}

void SettleGroup(const VoucherFacts& facts, VoucherTree& tree) {
  const Long id = tree.header.Get<"FGroupID">();
  if (id == 0 && tree.group.empty()) {
    Refuse(refusal::kBadGroup, Sentence(tree) + "it has no voucher group.");
  }
  if (!facts.group || facts.group->is_deleted) {
    Refuse(refusal::kBadGroup, Sentence(tree) + "there is no voucher group " +
                                   (id != 0 ? std::to_string(id) : "\"" + tree.group + "\"") + ".");
  }
  tree.header.Put<"FGroupID">(facts.group->id);
  tree.group = facts.group->name;
}

std::string AccountNumber(const VoucherLine& line) {
  return line.names[PlaceOf(kLineNames, "FAccountNumber")].Held<String>();
}

void SettleAccounts(const VoucherFacts& facts, VoucherTree& tree) {
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    VoucherLine& line = tree.lines[i];
    const Long id = line.cells.Get<"FAccountID">();
    const std::string number = AccountNumber(line);
    if (id == 0 && number.empty()) {
      Refuse(refusal::kBadAccount, LineSentence(tree, i) + "it has no account.");
    }
    const auto account = std::ranges::find_if(facts.accounts, [&](const auto& known) {
      return id != 0 ? known.id == id : known.number == number;
    });
    if (account == facts.accounts.end()) {
      Refuse(refusal::kBadAccount, LineSentence(tree, i) + "there is no account " +
                                       (id != 0 ? "with the id " + std::to_string(id) : number) +
                                       ".");
    }
    if (!account->is_detail || account->is_deleted) {
      Refuse(refusal::kBadAccount,
             LineSentence(tree, i) + "account " + account->number +
                 (account->is_deleted ? " is out of use." : " has accounts below it."));
    }
    line.cells.Put<"FAccountID">(account->id);
  }
}

struct KnownCurrency {
  Long id;
  std::string number;
  bool is_deleted;
  Exchange exchange;
};

// The currency with that id or, where it is 0, that number.
std::optional<KnownCurrency> CurrencyOf(Database& db, Long id, const std::string& number) {
  const std::string query =
      "SELECT c.FCurrencyID, c.FNumber, c.FDeleted, c.FOperator, base.FScale FROM t_Currency c"
      " JOIN t_Currency base ON base.FCurrencyID = 1 WHERE ";
  const auto row = id != 0 ? db.QueryRow<Long, std::string, bool, std::string, Long>(
                                 query + "c.FCurrencyID = ?", id)
                           : db.QueryRow<Long, std::string, bool, std::string, Long>(
                                 query + "c.FNumber = ?", number);
  if (!row) return std::nullopt;
  const auto& [known_id, known_number, is_deleted, sign, scale] = *row;
  return KnownCurrency{
      known_id, known_number, is_deleted, {.divides = sign == "/", .scale = scale}};
}

// The currency of a line that names one.
KnownCurrency RequireCurrency(Database& db, const VoucherTree& tree, std::size_t i,
                              std::vector<KnownCurrency>& known) {
  const VoucherLine& line = tree.lines[i];
  const Long id = line.cells.Get<"FCurrencyID">();
  const auto number = line.names[PlaceOf(kLineNames, "FCurrencyNumber")].Held<String>();
  const auto found = std::ranges::find_if(known, [&](const KnownCurrency& currency) {
    return id != 0 ? currency.id == id : currency.number == number;
  });
  if (found != known.end()) return *found;
  const std::optional<KnownCurrency> currency = CurrencyOf(db, id, number);
  if (!currency || currency->is_deleted) {
    Refuse(refusal::kBadCurrency, LineSentence(tree, i) + "there is no currency " +
                                      (id != 0 ? std::to_string(id) : number) + " in use.");
  }
  return known.emplace_back(*currency);
}

void SettleCurrencies(Database& db, VoucherTree& tree) {
  std::vector<KnownCurrency> known = {{kBaseCurrency, "", false, {}}};
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    LineCells& cells = tree.lines[i].cells;
    if (cells.Get<"FCurrencyID">() == 0 &&
        tree.lines[i].names[PlaceOf(kLineNames, "FCurrencyNumber")].Held<String>().empty()) {
      cells.Put<"FCurrencyID">(kBaseCurrency);
      continue;
    }
    const KnownCurrency currency = RequireCurrency(db, tree, i, known);
    cells.Put<"FCurrencyID">(currency.id);
    const Currency amount = cells.Get<"FAmount">(), amount_for = cells.Get<"FAmountFor">();
    const Double rate = cells.Get<"FExchangeRate">();
    if (currency.id == kBaseCurrency || IsAtRate(amount, amount_for, rate, currency.exchange)) {
      continue;
    }
    Refuse(refusal::kNotAtRate, LineSentence(tree, i) + amount_for.ToText() +
                                    (currency.exchange.divides ? " divided by " : " times ") +
                                    CStr(Variant(rate)) + " is not " + amount.ToText() + ".");
  }
}

// Refuses ids that the save brings in and that are no records in use.
void CheckReferences(Database& db, const VoucherTree* stored, const VoucherTree& tree) {
  for (const auto& [column, refers] : LineReferences()) {
    const auto at = std::ranges::find(kLineColumns, column, &Column::name);
    const auto place = static_cast<std::size_t>(at - std::begin(kLineColumns));
    const auto id_of = [&](const VoucherLine& line) {
      return line.cells.values()[place].Held<Long>();
    };
    std::set<Long> known;
    if (stored != nullptr) {
      for (const VoucherLine& line : stored->lines) known.insert(id_of(line));
    }
    for (std::size_t i = 0; i < tree.lines.size(); ++i) {
      const Long id = id_of(tree.lines[i]);
      if (!known.insert(id).second) continue;
      const auto reason = ReasonAgainst(db, refers, column, id);
      if (reason) Refuse(refers.refusal, LineSentence(tree, i) + *reason);
    }
  }
}

// Lines on accounts that ask for items name them.
void SettleItems(Database& db, const VoucherFacts& facts, const VoucherTree* stored,
                 VoucherTree& tree) {
  ItemRules rules(db, stored != nullptr ? stored->lines : std::vector<VoucherLine>());
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    VoucherLine& line = tree.lines[i];
    const auto account = std::ranges::find(facts.accounts, line.cells.Get<"FAccountID">(),
                                           &VoucherFacts::Account::id);
    if (account->classes.empty()) continue;
    const auto reason = rules.Settle(account->classes, line);
    if (!reason) continue;
    Refuse(refusal::kBadItem, LineSentence(tree, i) + "account " + account->number + *reason);
  }
}

struct KnownUnit {
  Long id;
  Long account_id;
  std::string number, name;
  Double coefficient, base;  // its own, and that of the unit that the account counts in
};

// The unit of a line that has one: in use, and of the unit group of the line's account.
const KnownUnit& RequireUnit(Database& db, const VoucherTree& tree, std::size_t i,
                             std::vector<KnownUnit>& known) {
  const Long id = tree.lines[i].cells.Get<"FMeasureUnitID">();
  const Long account_id = tree.lines[i].cells.Get<"FAccountID">();
  const auto found = std::ranges::find_if(
      known, [&](const KnownUnit& unit) { return unit.id == id && unit.account_id == account_id; });
  if (found != known.end()) return *found;
  const auto refuse = [&](const std::string& reason) {
    Refuse(refusal::kBadReference, LineSentence(tree, i) + reason);
  };
  // An account without a unit counts in the default one of its group, whose coefficient is 1.
  const auto unit =
      db.QueryRow<std::string, std::string, bool, Long, Long, std::string, double, double>(
          "SELECT u.FNumber, u.FName, u.FDeleted, u.FUnitGroupID,"
          " COALESCE(base.FUnitGroupID, a.FUnitGroupID), a.FNumber,"
          " u.FCoefficient, COALESCE(base.FCoefficient, 1) FROM t_MeasureUnit u"
          " JOIN t_Account a ON a.FAccountID = ?"
          " LEFT JOIN t_MeasureUnit base ON base.FMeasureUnitID = a.FMeasureUnitID"
          " WHERE u.FMeasureUnitID = ?",
          account_id, id);
  if (!unit || std::get<bool>(*unit)) {
    refuse("there is no unit of measure " + std::to_string(id) + (unit ? " in use." : "."));
  }
  const auto& [number, name, is_deleted, group, account_group, account, coefficient, base] = *unit;
  if (group != account_group) {
    refuse("unit of measure " + number + " (" + name + ") is not of the unit group of account " +
           account + ".");
  }
  return known.emplace_back(KnownUnit{id, account_id, number, name, coefficient, base});
}

// Lines that name a unit alone get its number and name. A quantity in another unit than that of the
// account is converted, once and for all: what becomes of coefficients later on leaves it alone.
void SettleUnits(Database& db, VoucherTree& tree) {
  std::vector<KnownUnit> known;
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    LineCells& cells = tree.lines[i].cells;
    if (cells.Get<"FMeasureUnitID">() == 0) continue;
    const KnownUnit& unit = RequireUnit(db, tree, i, known);
    if (cells.Get<"FMeasureUnit">().empty()) cells.Put<"FMeasureUnit">(unit.name);
    if (cells.Get<"FMeasureUnitNumber">().empty()) cells.Put<"FMeasureUnitNumber">(unit.number);
    if (unit.coefficient == unit.base) continue;
    cells.Put<"FBaseQuantity">(Converted(cells.Get<"FQuantity">(), unit.coefficient, unit.base));
  }
}

// What is too large to be added up, see line_size.h.
void CheckSizes(const VoucherTree& tree) {
  std::int64_t size = 0;
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    const LineCells& cells = tree.lines[i].cells;
    const std::int64_t amount = cells.Get<"FAmount">().units();
    const std::int64_t amount_for = cells.Get<"FAmountFor">().units();
    const Double quantity = CountedQuantity(cells.Get<"FQuantity">(), cells.Get<"FBaseQuantity">());
    if (!IsAmountInRange(amount) || !IsAmountInRange(amount_for)) {
      Refuse(refusal::kTooLarge, LineSentence(tree, i) + "the amount is too large.");
    }
    if (!IsQuantityInRange(quantity)) {
      Refuse(refusal::kTooLarge, LineSentence(tree, i) + "the quantity is too large.");
    }
    if (!AddLine(size, amount, amount_for, quantity)) {
      Refuse(refusal::kTooLarge, Sentence(tree) + "its lines are too large to add up.");
    }
  }
}

void CheckSigns(const LedgerRules& rules, const VoucherTree& tree) {
  if (!rules.no_negative_amounts) return;
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    const LineCells& cells = tree.lines[i].cells;
    if (cells.Get<"FAmount">() < 0 || cells.Get<"FAmountFor">() < 0) {
      Refuse(refusal::kNegativeAmount,
             LineSentence(tree, i) + "its amount is negative; these books want it on the other "
                                     "side.");
    }
  }
}

void CheckBalance(VoucherTree& tree) {
  if (tree.lines.empty()) Refuse(refusal::kNoLines, Sentence(tree) + "it has no lines.");
  CheckSizes(tree);
  std::int64_t totals[2] = {0, 0};
  Long details = 0;
  for (std::size_t i = 0; i < tree.lines.size(); ++i) {
    const VoucherLine& line = tree.lines[i];
    const Long side = line.cells.Get<"FDC">();
    if (side != 0 && side != 1) {
      Refuse(refusal::kBadSide, LineSentence(tree, i) + "it is neither debit (1) nor credit (0).");
    }
    totals[side] += line.cells.Get<"FAmount">().units();
    details += static_cast<Long>(line.details.size());
  }
  const Currency credit = Currency::FromUnits(totals[0]), debit = Currency::FromUnits(totals[1]);
  if (debit != credit) {
    Refuse(refusal::kNotBalanced, Sentence(tree) + "debits " + debit.ToText() + " and credits " +
                                      credit.ToText() + " differ by " + (debit - credit).ToText() +
                                      ".");
  }
  tree.state.Put<"FDebitTotal">(debit);
  tree.state.Put<"FCreditTotal">(credit);
  tree.state.Put<"FEntryCount">(static_cast<Long>(tree.lines.size()));
  tree.state.Put<"FDetailCount">(details);
}

}  // namespace

Statement& VoucherFacts::Ask(Database& db, const VoucherTree& tree) {
  std::vector<Long> ids;
  std::vector<std::string> numbers;
  for (const VoucherLine& line : tree.lines) {
    const Long id = line.cells.Get<"FAccountID">();
    if (id != 0) {
      ids.push_back(id);
    } else {
      numbers.push_back(AccountNumber(line));
    }
  }
  const auto sort = [](auto& values) {
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
    // Filled up to a power of two with what is no account, so that few statements are ever
    // prepared.
    values.resize(std::bit_ceil(std::max<std::size_t>(values.size(), 1)));
  };
  sort(ids);
  sort(numbers);

  const auto places = [](std::size_t count) {
    std::string text = "(?";
    for (std::size_t i = 1; i < count; ++i) text += ", ?";
    return text + ")";
  };
  const std::string sql =
      "WITH account AS (SELECT FAccountID, FNumber, FDetail, FDelete FROM t_Account"
      " WHERE FAccountID IN " +
      places(ids.size()) + " OR FNumber IN " + places(numbers.size()) +
      ") SELECT 0, 0, FKey, FValue, 0, 0 FROM t_SystemProfile WHERE FCategory = 'GL'"
      " UNION ALL SELECT 1, FGroupID, FName, '', 0, FDeleted FROM t_VoucherGroup"
      " WHERE FGroupID = ? OR FName = ?"
      " UNION ALL SELECT 2, FAccountID, FNumber, '', FDetail, FDelete FROM account"
      " UNION ALL SELECT 3, account.FAccountID, c.FNumber, c.FName, c.FItemClassID, 0 FROM account"
      " JOIN t_AccountItem a ON a.FAccountID = account.FAccountID"
      " JOIN t_ItemClass c ON c.FItemClassID = a.FItemClassID";
  Statement& statement = db.Prepared(sql);
  const Long group_id = tree.header.Get<"FGroupID">();
  std::size_t position = 0;
  for (const Long id : ids) statement.Set(position++, std::int64_t{id});
  for (const std::string& number : numbers) statement.Set(position++, std::string_view(number));
  statement.Set(position++, std::int64_t{group_id});
  statement.Set(position++, group_id != 0 ? std::string_view() : std::string_view(tree.group));
  statement.Open();
  return statement;
}

VoucherFacts VoucherFacts::From(Statement& asked) {
  enum Kind { kSetting, kGroup, kAccount, kItemClass };
  std::map<std::string, std::string, std::less<>> settings;
  std::optional<Group> group;
  std::vector<Account> accounts;
  std::map<Long, std::vector<AskedClass>> classes;  // by account
  while (asked.Fetch()) {
    const auto id = static_cast<Long>(asked.Whole(1));
    const std::string name(asked.Text(2));
    const bool is_deleted = asked.Whole(5) != 0;
    switch (asked.Whole(0)) {
      case kSetting: settings.emplace(name, asked.Text(3)); break;
      case kGroup: group = {id, name, is_deleted}; break;
      case kAccount: accounts.push_back({id, name, asked.Whole(4) != 0, is_deleted}); break;
      case kItemClass:
        classes[id].push_back(
            {static_cast<Long>(asked.Whole(4)), name, std::string(asked.Text(3))});
    }
  }
  for (Account& account : accounts) account.classes = std::move(classes[account.id]);
  return {LedgerRules::From(settings), std::move(group), std::move(accounts)};
}

void ApplyRules(Database& db, const VoucherFacts& facts, const VoucherTree* stored,
                VoucherTree& tree) {
  if (tree.header.Get<"FNumber">() < 0) {
    Refuse(refusal::kBadNumber, "The number of a voucher is not negative.");
  }
  if (Utf16Length(tree.header.Get<"FReference">()) > kLongestReference) {
    Refuse(refusal::kBadValue, "The reference of a voucher has at most 255 characters.");
  }
  SettlePeriod(facts.rules, tree);
  SettleGroup(facts, tree);
  CheckBalance(tree);
  CheckSigns(facts.rules, tree);
  SettleAccounts(facts, tree);
  SettleCurrencies(db, tree);
  CheckReferences(db, stored, tree);
  SettleUnits(db, tree);
  CheckSizes(tree);  // of what was converted, too
  SettleItems(db, facts, stored, tree);
}

namespace {

void RequireGivable(const VoucherTree& tree) {
  if (tree.header.Get<"FNumber">() <= kLargestGivenNumber) return;
  Refuse(refusal::kBadNumber, Sentence(tree) + "a number that is given is at most " +
                                  std::to_string(kLargestGivenNumber) + ".");
}

// Has the counter go on behind the number that the voucher asks for, or with the next one. The
// counter's row makes those who number in the same place wait for each other.
void RaiseCounter(Database& db, const VoucherTree& tree) {
  const Long year = tree.header.Get<"FYear">(), period = tree.header.Get<"FPeriod">(),
             group = tree.header.Get<"FGroupID">(), wanted = tree.header.Get<"FNumber">();
  if (wanted == 0) {
    db.ExecuteLater(
        "INSERT INTO t_Counter (FYear, FPeriod, FGroupID, FNext) VALUES (?, ?, ?, 2)"
        " ON CONFLICT (FYear, FPeriod, FGroupID) DO UPDATE SET FNext = t_Counter.FNext + 1",
        year, period, group);
    return;
  }
  db.ExecuteLater(
      "INSERT INTO t_Counter (FYear, FPeriod, FGroupID, FNext) VALUES (?, ?, ?, ?)"
      " ON CONFLICT (FYear, FPeriod, FGroupID) DO UPDATE SET FNext ="
      " CASE WHEN t_Counter.FNext > excluded.FNext THEN t_Counter.FNext ELSE excluded.FNext END",
      year, period, group, std::int64_t{wanted} + 1);
}

// Takes over the number that the counter gave.
void PutNumber(VoucherTree& tree, std::int64_t number) {
  if (number > INT32_MAX) {
    Refuse(refusal::kBadNumber,
           Sentence(tree) + "the numbers of its period and group are used up.");
  }
  tree.header.Put<"FNumber">(static_cast<Long>(number));
}

// The other voucher that has the number.
std::optional<Long> HolderOfNumber(Database& db, const VoucherTree& tree) {
  return db.QueryValue<Long>(
      "SELECT FVoucherID FROM t_Voucher WHERE FYear = ? AND FPeriod = ? AND FGroupID = ?"
      " AND FNumber = ? AND FVoucherID <> ?",
      tree.header.Get<"FYear">(), tree.header.Get<"FPeriod">(), tree.header.Get<"FGroupID">(),
      tree.header.Get<"FNumber">(), tree.state.Get<"FVoucherID">());
}

[[noreturn]] void RefuseNumber(const VoucherTree& tree, Long holder) {
  Refuse(refusal::kNumberTaken,
         Sentence(tree) + "another voucher has that number (id " + std::to_string(holder) + ").");
}

}  // namespace

void GiveNumber(Database& db, const VoucherTree& stored, VoucherTree& tree) {
  if (!HasSamePlace(stored, tree)) RequireGivable(tree);
  RaiseCounter(db, tree);
  if (tree.header.Get<"FNumber">() == 0) {
    return PutNumber(
        tree, *db.QueryValue<std::int64_t>("SELECT FNext - 1 FROM t_Counter"
                                           " WHERE FYear = ? AND FPeriod = ? AND FGroupID = ?",
                                           tree.header.Get<"FYear">(), tree.header.Get<"FPeriod">(),
                                           tree.header.Get<"FGroupID">()));
  }
  if (const auto holder = HolderOfNumber(db, tree)) RefuseNumber(tree, *holder);
}

void InsertNumbered(Database& db, VoucherTree& tree, const Transaction::Along& along) {
  RequireGivable(tree);
  RaiseCounter(db, tree);
  Statement& asked = tree.InsertHeader(db);
  along();
  const std::optional<std::int64_t> number = tree.TakeInserted(asked);
  if (!number) RefuseNumber(tree, HolderOfNumber(db, tree).value_or(0));
  PutNumber(tree, *number);
}

void RequireOpenPeriod(const LedgerRules& rules, const VoucherTree& tree) {
  const AccountingPeriod period{tree.header.Get<"FYear">(), tree.header.Get<"FPeriod">()};
  if (period < rules.current) {
    Refuse(refusal::kPeriodClosed, Sentence(tree) + "period " + period.ToText() +
                                       " is closed; the books stand at " + rules.current.ToText() +
                                       ".");
  }
}

void RequireUnsigned(const VoucherTree& tree) {
  const auto refuse = [&](std::int32_t number, const char* reason) {
    Refuse(number, Sentence(tree) + reason);
  };
  if (tree.state.Get<"FPosted">()) refuse(refusal::kVoucherPosted, "it is posted.");
  if (tree.state.Get<"FChecked">()) refuse(refusal::kVoucherChecked, "it is checked.");
  if (tree.state.Get<"FCashierID">() > 0) refuse(refusal::kVoucherCashed, "it is cashed.");
}

void RequireChangeable(const LedgerRules& rules, const VoucherTree& tree) {
  if (tree.state.Get<"FDeleted">()) {
    Refuse(refusal::kVoucherDeleted, Sentence(tree) + "it is deleted.");
  }
  RequireUnsigned(tree);
  RequireOpenPeriod(rules, tree);
}

}  // namespace qdclgl::server
