// Values as texts of a file or a command line: read exactly, or refused with a reason.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

// The reason why a text is no value of its kind: "\"12,50\" is not an amount".
class BadCell : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// At most 4 decimals; never through a binary fraction.
Currency ReadAmount(std::string_view text);
// At most 6 decimals.
Double ReadQuantity(std::string_view text);
// Any number of decimals; ReadRate is for one above 0.
Double ReadPrice(std::string_view text);
Double ReadRate(std::string_view text);
// "2024-01-31"
DateTime ReadDate(std::string_view text);
// The same, with " hh:mm:ss" behind it where there is a time.
DateTime ReadTime(std::string_view text);
// A whole number from 0 on.
Long ReadWhole(std::string_view text);
// A whole number between the bounds.
Long ReadInteger(std::string_view text, Long least, Long most);
// Any number: "-0.5", "1e-7".
Double ReadNumber(std::string_view text);
// A plain number with up to 28 decimals, exactly.
Decimal ReadDecimal(std::string_view text);
// 1, 0, yes, no, true, false.
Boolean ReadTruth(std::string_view text);

// An amount with its 4 decimals.
std::string AmountText(Currency amount);

// `text` in quotes, fit for a message.
std::string Quoted(std::string_view text);

}  // namespace qdclgl::cli
