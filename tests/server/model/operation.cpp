#include "tests/server/model/operation.h"

#include <array>
#include <cmath>
#include <sstream>

namespace qdclgl::server::testing::model {

namespace {

constexpr std::array kAccounts = {"1000",    "2000",    "3000", "4000",
                                  "4000.01", "4000.02", "5000", "5000.01.01"};
constexpr std::array kUsualAccounts = {"1000", "2000", "3000", "4000.01"};
constexpr std::array kCurrencies = {"USD", "USD", "USD", "USD", "JPY", "JPY", "JPY", "EUR", "XXX"};
constexpr std::array kSettings = {"CheckBeforePost",    "CheckerNotPreparer", "ApproverNotPreparer",
                                  "CashierNotPreparer", "PosterNotPreparer",  "NoNegativeAmounts"};
constexpr std::array kKindNames = {
    "Create",      "Update",        "Delete",      "Check",          "Approve",       "Cash",
    "Post",        "ClearCashFlow", "Close",       "Reopen",         "Set",           "AddAccount",
    "MarkAccount", "RemoveAccount", "AddCurrency", "ChangeOperator", "RemoveCurrency"};

class Draws {
 public:
  explicit Draws(std::mt19937& random) : random_(random) {}

  int Below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }
  bool OneIn(int count) { return Below(count) == 0; }
  template <class Values>
  auto Of(const Values& values) {
    return values[static_cast<std::size_t>(Below(static_cast<int>(std::size(values))))];
  }

  // More often what goes well than what does not.
  Kind AnyKind() {
    static constexpr int kWeights[] = {30, 10, 4, 14, 4, 4, 22, 2, 3, 3, 2, 5, 3, 2, 2, 1, 1};
    return static_cast<Kind>(
        std::discrete_distribution<int>(std::begin(kWeights), std::end(kWeights))(random_));
  }

  std::int64_t Amount() {
    static constexpr std::int64_t kExtremes[] = {INT64_MAX / 2,
                                                 -(INT64_MAX / 2),
                                                 INT64_MAX / 2 + 1,
                                                 INT64_MAX,
                                                 INT64_MIN,
                                                 INT64_MAX / 4,
                                                 INT64_MAX / 4 + 1,
                                                 1,
                                                 -1,
                                                 0};
    return OneIn(6) ? Of(kExtremes) : Below(2'000'000) - (OneIn(4) ? 1'000'000 : 0);
  }
  double Quantity() {
    static constexpr double kExtremes[] = {1e12, -1e12, 1.1e12, 5e-7, -25e-7, 4.9999999999999e-7};
    return OneIn(2) ? 0 : OneIn(6) ? Of(kExtremes) : Below(1000) / 7.0;
  }
  Long Number() {
    static constexpr Long kNumbers[] = {1, 2, 3, 5, 999'999'999, 1'000'000'000, INT32_MAX, -1};
    return OneIn(8) ? Of(kNumbers) : 0;
  }

 private:
  std::mt19937& random_;
};

Line DrawLine(Draws& draws) {
  Line line;
  line.account = draws.OneIn(3) ? draws.Of(kAccounts) : draws.Of(kUsualAccounts);
  line.currency = draws.OneIn(2) ? draws.Of(kCurrencies) : "EUR";
  line.side = draws.OneIn(60) ? 2 : draws.Below(2);
  line.amount = draws.Amount();
  line.quantity = draws.Quantity();
  line.cash_flow = draws.OneIn(3) ? 4 : 0;
  if (line.currency == "EUR") return line;
  static constexpr double kRates[] = {0, 0.8, 1, 160, 1.1};
  line.rate = draws.Of(kRates);
  // At a rate of its own; see ContentOf.
  line.amount_for = line.rate == 0 || line.rate == 1 ? draws.Amount() : draws.Below(2'000'000);
  return line;
}

// A line that hardly any other is to be added to.
Line DrawHugeLine(Draws& draws) {
  static constexpr std::int64_t kAmounts[] = {INT64_MAX / 2, -(INT64_MAX / 2), INT64_MAX / 4};
  Line line{.account = draws.Of(kUsualAccounts), .currency = "EUR", .side = draws.Below(2)};
  switch (draws.Below(3)) {
    case 0: line.quantity = draws.OneIn(2) ? 1e12 : -1e12; break;
    case 1:
      line.currency = "USD";
      line.amount_for = draws.Of(kAmounts);
      break;
    default: line.amount = draws.Of(kAmounts);
  }
  return line;
}

Content DrawContent(Draws& draws) {
  Content content;
  content.period = draws.OneIn(10) ? -1 : draws.Below(3);
  content.group = draws.OneIn(40) ? 3 : 1 + draws.Below(2);
  content.number = draws.Number();
  if (draws.OneIn(6)) {
    content.lines.push_back(DrawHugeLine(draws));
    return content;
  }
  for (int count = draws.OneIn(30) ? 0 : 1 + draws.Below(4); count > 0; --count) {
    content.lines.push_back(DrawLine(draws));
  }
  return content;
}

// Who does such work; now and then somebody else tries.
std::size_t DrawUser(Draws& draws, Kind kind) {
  const std::vector<User> users = Users();
  if (draws.OneIn(12)) return static_cast<std::size_t>(draws.Below(static_cast<int>(users.size())));
  const unsigned right = kind <= Kind::kDelete || kind == Kind::kClearCashFlow ? kPrepare
                         : kind <= Kind::kApprove                              ? kCheck
                         : kind == Kind::kCash                                 ? kCash
                         : kind <= Kind::kReopen                               ? kPost
                                                                               : kAdminister;
  for (;;) {
    const auto user = static_cast<std::size_t>(draws.Below(static_cast<int>(users.size())));
    if ((users[user].rights & (right | kAdminister)) != 0) return user;
  }
}

}  // namespace

std::vector<User> Users() {
  return {{"administrator", "administrator", kAdminister},
          {"paula", "preparer", kPrepare},
          {"peter", "preparer, poster", kPrepare | kPost},
          {"clara", "checker", kCheck},
          {"carl", "preparer, checker", kPrepare | kCheck},
          {"kate", "cashier", kCash},
          {"otto", "poster", kPost},
          {"rita", "reader", 0}};
}

Operation DrawOperation(std::mt19937& random) {
  Draws draws(random);
  Operation operation{.kind = draws.AnyKind()};
  operation.user = DrawUser(draws, operation.kind);
  operation.voucher = static_cast<std::size_t>(draws.Below(1000));
  operation.way = draws.Below(3) != 0;
  operation.is_stale = draws.OneIn(6);
  switch (operation.kind) {
    case Kind::kCreate:
    case Kind::kUpdate: operation.content = DrawContent(draws); break;
    case Kind::kDelete:
    case Kind::kMarkAccount:
      operation.way = draws.OneIn(4);
      operation.name = draws.Of(kAccounts);
      break;
    case Kind::kAddAccount:
    case Kind::kRemoveAccount: operation.name = draws.Of(kAccounts); break;
    case Kind::kAddCurrency:
    case Kind::kChangeOperator:
    case Kind::kRemoveCurrency: operation.name = draws.Of(std::array{"USD", "JPY", "EUR"}); break;
    case Kind::kSet:
      operation.name = draws.Of(kSettings);
      operation.way = draws.Below(3) == 0;
      break;
    default: break;
  }
  // EUR keeps its operator.
  if (operation.kind == Kind::kChangeOperator && operation.name == "EUR") operation.name = "USD";
  return operation;
}

std::string_view NameOf(Kind kind) { return kKindNames[static_cast<std::size_t>(kind)]; }

std::string TextOf(const Operation& operation) {
  std::ostringstream text;
  text << Users()[operation.user].name << " " << NameOf(operation.kind) << " " << operation.name
       << " voucher " << operation.voucher << (operation.way ? " way" : "")
       << (operation.is_stale ? " stale" : "");
  const Content& content = operation.content;
  if (content.group != 0) {
    text << " period " << content.period << " group " << content.group << " number "
         << content.number;
  }
  for (const Line& line : content.lines) {
    text << "\n    " << line.account << " " << line.currency << " side " << line.side << " amount "
         << line.amount << " for " << line.amount_for << " rate " << line.rate << " quantity "
         << line.quantity << " cash flow " << line.cash_flow;
  }
  return text.str() + "\n";
}

Content ContentOf(const Operation& operation, const Model& model) {
  Content content = operation.content;
  content.period += model.current;
  if (content.lines.empty()) return content;
  std::int64_t debit = 0;
  bool is_sum = true;
  for (Line& line : content.lines) {
    const auto currency = model.currencies.find(line.currency);
    if (line.rate != 0 && line.rate != 1 && currency != model.currencies.end()) {
      const auto amount_for = static_cast<double>(line.amount_for);
      const bool is_wrong = line.amount % 3 == 0;
      line.amount =
          std::llround(currency->second.divides ? amount_for / line.rate : amount_for * line.rate) +
          (is_wrong ? 300 : 0);
    } else if (line.rate == 1) {
      line.amount = line.amount_for;
    }
    const bool is_small = line.amount > -(INT64_MAX / 16) && line.amount < INT64_MAX / 16;
    is_sum = is_sum && (is_small || (content.lines.size() == 1 && line.amount != INT64_MIN));
    if (is_sum) debit += line.side == 1 ? line.amount : 0 - line.amount;
  }
  // What is too large to be summed here stays out of balance.
  if (is_sum) {
    content.lines.push_back({.account = "3000", .currency = "EUR", .side = 0, .amount = debit});
  }
  return content;
}

}  // namespace qdclgl::server::testing::model
