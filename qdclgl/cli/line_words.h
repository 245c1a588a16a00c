// A line of a voucher as one word of a command line.
#pragma once

#include <optional>
#include <string>

#include "qdclgl/qdclgl.h"

namespace qdclgl::cli {

struct LineWords {
  std::string account;
  bool is_debit = false;
  std::optional<Currency> amount;
  std::string currency;  // empty: the base currency
  Double rate = 0;       // 0: that of the day, or the currency's
  std::string explanation;
};

// Reads "1000.02 debit 119 Tea" or "1001 credit 20USD@0.9 Tea". UsageError tells what can't be
// read.
LineWords ReadLineWords(const std::string& text);

// Fills a new line of a voucher of that day. BadCurrency when the books have no such currency.
void PutWords(VoucherEntry& line, const LineWords& words, DateTime day);

}  // namespace qdclgl::cli
