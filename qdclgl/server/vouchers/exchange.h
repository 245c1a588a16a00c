// What a line's amount in another currency is in base currency.
#pragma once

#include "qdclgl/frame/values/values.h"

namespace qdclgl::server {

// How a currency's amounts become base amounts.
struct Exchange {
  bool divides = false;  // the currency's operator is "/": amounts are divided by the rate
  Long scale = 2;        // decimals of the base currency
};

// Whether `amount` is `amount_for` at `rate`, to one unit of the base currency's last decimal:
// whichever way somebody rounds stays within that. A line without a rate claims nothing, and one
// without an amount in its currency moves the base amount alone, as differences of rates do.
bool IsAtRate(Currency amount, Currency amount_for, Double rate, const Exchange& exchange);

// What `amount_for` is worth at `rate`, in whole units of the base currency's last decimal: as
// decimals, exact for amounts of up to 15 digits, half to even. Error 6 where it is too large.
Currency WorthOf(Currency amount_for, Double rate, const Exchange& exchange);

}  // namespace qdclgl::server
