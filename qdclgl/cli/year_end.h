// The end of a year at the command line: its result is carried to the equity, or that is taken
// back.
#pragma once

#include <string>

#include "qdclgl/cli/program.h"

namespace qdclgl::cli {

struct YearEnd {
  Long year = 0;        // 0: the books' current one
  std::string account;  // the number of one of equity; "" for the one that the books keep
  bool dry_run = false;
  bool yes = false;
};

// Carries the result by vouchers of its own, posts them where the rules let this user do so, and
// keeps the account as setting EarnAccount. It tells before what it will do, and asks.
int CarryResult(const YearEnd& wanted, const std::string& props, const Console& console);
// Takes these vouchers back, and reopens the year's last period where it is closed.
int TakeResultBack(const YearEnd& wanted, const std::string& props, const Console& console);

}  // namespace qdclgl::cli
