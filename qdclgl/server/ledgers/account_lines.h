// The lines of an account and those below it, day by day, and the balances that are kept of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

using Units = std::int64_t;  // ten-thousandths

// Which lines are meant: those of the account and of all below it. With an item class those of
// accounts that ask for it, each with its item of the class; perhaps those of one item alone.
struct AccountLines {
  Long account = 0;
  Long item_class = 0;  // 0: whatever items
  std::optional<Long> item = {};
};

// Whether one of the accounts asks for items of the class.
bool IsAskedFor(Database& db, const AccountLines& which);

// What goes onto the two sides, in base currency and in the one that lines are in.
struct TwoSides {
  Units debit = 0, credit = 0, debit_for = 0, credit_for = 0;

  // TooLarge when it can't be told any more.
  void Add(const TwoSides& more);
};

struct AccountLine {
  DateTime date;
  std::string group;
  AccountingPeriod period;
  Long number, voucher, entry;
  bool is_posted;
  std::string account, currency;  // their numbers
  Long side, currency_id, item;
  Units amount, amount_for;
  double rate;
  std::string explanation, reference;

  TwoSides Sides() const;
  // By day, group and number.
  bool operator<(const AccountLine& other) const;
};

enum class LineState { kPosted, kNotPosted };

// The lines `e` of vouchers `v` on the accounts `below` (accounts_below.h), as a query goes to
// them; it has placeholders for the first day and for the one behind the last.
std::string FromLinesBelow(const Database& db, LineState state);

// The lines of the days from one up to another, which is not among them, in no order. What is
// deleted is left out.
std::vector<AccountLine> LinesOf(Database& db, const AccountLines& which, LineState state,
                                 DateTime from, DateTime behind);

// The line with this place, as far as its order goes; NotFound when there is none.
AccountLine PlaceOfLine(Database& db, Long voucher, Long entry);

// What was posted in a period, or in all periods of a span together, for an item in a currency.
struct PeriodSum {
  AccountingPeriod period;  // none, when all are together
  Long item = 0, currency_id = 0;
  std::string currency;
  TwoSides sides;
};

enum class Split { kTogether, kByPeriod };

// From the kept balances, the periods from one to another, which is not among them.
std::vector<PeriodSum> KeptSums(Database& db, const AccountLines& which, AccountingPeriod from,
                                AccountingPeriod behind, Split split);

}  // namespace qdclgl::server
