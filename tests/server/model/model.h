// Books as a plain data structure that knows the rules: what the server has to answer to a piece of
// work, and what the books are afterwards.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::server::testing::model {

enum Right : unsigned { kPrepare = 1, kCheck = 2, kCash = 4, kPost = 8, kAdminister = 16 };

struct User {
  std::string name;
  std::string roles;  // as the server takes them
  unsigned rights;
  Long id = 0;
};

struct Line {
  std::string account = {};   // its number
  std::string currency = {};  // its number
  Long side = 0;
  std::int64_t amount = 0, amount_for = 0;
  double rate = 0, quantity = 0;
  Long cash_flow = 0;
};

// What a caller writes into a voucher.
struct Content {
  Long period = 0;  // counted in months from January 2024
  Long group = 0, number = 0;
  std::vector<Line> lines = {};
};

struct Voucher : Content {
  Long id = 0, version = 1;
  Long preparer = 0, checker = -1, approver = -1, cashier = -1, poster = -1;
  bool checked = false, posted = false, deleted = false;
  std::set<Long> hands = {};  // who made it or changed a part of it
};

struct Account {
  Long id = 0, version = 1;
  bool deleted = false;
};

struct CurrencyRecord {
  Long id = 0, version = 1;
  bool divides = false, deleted = false;
};

// Each piece of work gives the name of the refusal that the server answers with, or "none".
class Model {
 public:
  static constexpr Long kGroups = 2;
  static constexpr const char* kNone = "none";

  std::string Create(const User& user, Content content);
  std::string Update(const User& user, std::size_t voucher, Long version, Content content);
  std::string Delete(const User& user, std::size_t voucher, bool purge);
  std::string Check(const User& user, std::size_t voucher, bool way);
  std::string Approve(const User& user, std::size_t voucher, bool way);
  std::string Cash(const User& user, std::size_t voucher, bool way);
  std::string Post(const User& user, std::size_t voucher, bool way);
  std::string ClearCashFlow(const User& user, std::size_t voucher);
  std::string Close(const User& user);
  std::string Reopen(const User& user);
  std::string Set(const User& user, const std::string& setting, bool value);
  std::string AddAccount(const User& user, const std::string& number);
  std::string MarkAccount(const User& user, const std::string& number, bool deleted);
  std::string RemoveAccount(const User& user, const std::string& number);
  std::string AddCurrency(const User& user, const std::string& number, bool divides);
  std::string ChangeOperator(const User& user, const std::string& number);
  std::string RemoveCurrency(const User& user, const std::string& number);

  // Everything that the books hold, as text; and the balances of periods, -1 for everything.
  std::string State() const;
  std::string Balances(Long first = -1, Long last = -1) const;

  std::vector<Voucher> vouchers;  // also those that are gone, with the id 0
  std::map<std::string, Account> accounts;
  std::map<std::string, CurrencyRecord> currencies = {{"EUR", {.id = 1}}};
  std::map<std::string, bool> settings;
  Long current = 0;  // the period at which the books stand

 private:
  std::string Rules(const Content& content) const;
  std::string LineRules(const Content& content) const;
  std::string GiveNumber(const Voucher* stored, Content& content);
  std::string Unsigned(const Voucher& voucher) const;
  std::string Changeable(const Voucher& voucher) const;
  std::string OpenForStep(const Voucher& voucher) const;
  bool HasAccountsBelow(const std::string& number, bool deleted_too) const;
  template <class Condition>
  bool IsInSomeLine(Condition condition) const;

  std::map<std::pair<Long, Long>, std::int64_t> next_numbers_;  // by period and group
};

}  // namespace qdclgl::server::testing::model
