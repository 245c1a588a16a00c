// Exchange rates of the books, and amounts at them.
#pragma once

#include <string>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

// The rate of a currency on a day, as the books keep it by days; 0 when there is none.
Double KeptRate(Long currency, DateTime day);

// What an amount in a currency is worth at a rate, in whole units of the base currency's last
// decimal; and the amount in the currency that is worth so much, in those of its own unless the
// books would not take it as that at the rate.
Currency WorthAt(Long currency, Currency amount_for, Double rate);
Currency ForeignAt(Long currency, Currency worth, Double rate);

}  // namespace qdclgl::cli
