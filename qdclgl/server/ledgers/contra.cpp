#include "qdclgl/server/ledgers/contra.h"

#include <algorithm>
#include <set>

#include "qdclgl/server/ledgers/accounts_below.h"

namespace qdclgl::server {

namespace {

bool IsDebit(Long side, Units amount) { return (side == 1) == (amount >= 0); }

// A voucher with very many lines is not told with each of them.
constexpr std::size_t kMostAccounts = 20;

void Append(std::string& text, std::size_t count, const std::string& number) {
  if (count > kMostAccounts) return;
  if (!text.empty()) text += ',';
  text += count < kMostAccounts ? number : "...";
}

}  // namespace

ContraAccounts::ContraAccounts(Database& db, const std::vector<AccountLine>& lines) {
  std::set<Long> ids;
  for (const AccountLine& line : lines) ids.insert(line.voucher);
  // So many with a query; what is left of the last one stays 0, which no voucher has.
  constexpr std::size_t kAtOnce = 100;
  static const std::string kPlaces = [] {
    std::string places = "?";
    for (std::size_t i = 1; i < kAtOnce; ++i) places += ", ?";
    return places;
  }();
  Statement& statement =
      db.Prepared("SELECT DISTINCT e.FVoucherID, a.FNumber, CASE WHEN (e.FDC = 1) = (e.FAmount >= "
                  "0) THEN 1 ELSE 0 END FROM t_VoucherEntry e" +
                  Reached(db, "t_Account", "a", "a.FAccountID = e.FAccountID") +
                  " WHERE e.FVoucherID IN (" + kPlaces + ") ORDER BY 1, 2");
  for (auto next = ids.begin(); next != ids.end();) {
    for (std::size_t i = 0; i < kAtOnce; ++i) {
      statement.Set(i, std::int64_t{next != ids.end() ? *next++ : 0});
    }
    Long voucher = 0;
    std::size_t debits = 0, credits = 0;
    for (statement.Open(); statement.Fetch();) {
      const auto id = static_cast<Long>(statement.Whole(0));
      if (id != voucher) debits = credits = 0;
      voucher = id;
      Sides& sides = vouchers_[id];
      const std::string number(statement.Text(1));
      if (statement.Whole(2) == 1) Append(sides.debits, debits++, number);
      else Append(sides.credits, credits++, number);
    }
  }
}

const std::string& ContraAccounts::Of(const AccountLine& line) const {
  const Sides& sides = vouchers_.at(line.voucher);
  return IsDebit(line.side, line.amount) ? sides.credits : sides.debits;
}

}  // namespace qdclgl::server
