// A voucher made of a template: in the current period, with the amounts of the day.
#pragma once

#include <map>
#include <string>

#include "qdclgl/vouchers/voucher.h"

namespace qdclgl::cli {

struct TemplateUse {
  std::string name;  // the template's, or its id
  DateTime date;     // day 0: today, or the last day of the current period where that is over
  std::map<Long, Currency> amounts = {};  // by the number of the line, in the line's currency
  std::string group = {};                 // otherwise the template's
  std::string reference = {};             // likewise
};

// The voucher, not saved. A line that has no amount, neither given nor of the template, gets what
// the others lack to balance. Errors: NotFound and NameTaken when the name stands for no template
// or for several; NoLines for an amount of a line that there isn't; NotBalanced when more than one
// line has no amount.
Ref<Voucher> VoucherOf(const TemplateUse& use, const std::string& props);

}  // namespace qdclgl::cli
