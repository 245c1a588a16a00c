// The accounts on the other side of a line's voucher.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "qdclgl/server/ledgers/account_lines.h"

namespace qdclgl::server {

// The numbers of the accounts that the lines of a voucher are on, in order, with commas between
// them, by the side that they come to: a negative debit is a credit.
class ContraAccounts {
 public:
  // Of the vouchers of these lines.
  ContraAccounts(Database& db, const std::vector<AccountLine>& lines);

  const std::string& Of(const AccountLine& line) const;

 private:
  struct Sides {
    std::string debits, credits;
  };

  std::unordered_map<Long, Sides> vouchers_;
};

}  // namespace qdclgl::server
