#include "qdclgl/server/reports/standings.h"

#include <algorithm>
#include <string>
#include <tuple>

#include "qdclgl/frame/containers/dictionary.h"

namespace qdclgl::server {

namespace {

// The items of a combination as the details of a line.
Ref<Vector> DetailsOf(Database& db, Long combination) {
  auto details = Make<Vector>();
  for (const auto& [item_class, item] : db.Query<Long, Long>(
           "SELECT FItemClassID, FItemID FROM t_ItemCombinationItem WHERE FCombinationID = ?"
           " ORDER BY FItemClassID",
           combination)) {
    auto detail = Make<Dictionary>();
    detail->Put("FItemClassID", item_class);
    detail->Put("FItemID", item);
    details->Append(Variant(detail));
  }
  return details;
}

// The sums of a table of balances, for accounts that ask for items or for those that don't.
std::string SumsOf(const char* table, const char* combination, const char* asks) {
  return "SELECT b.FAccountID AS FAccountID, b.FCurrencyID AS FCurrencyID, " +
         std::string(combination) +
         " AS FCombinationID, CAST(SUM(b.FDebit - b.FCredit) AS BIGINT) AS FAmount,"
         " CAST(SUM(b.FDebitFor - b.FCreditFor) AS BIGINT) AS FAmountFor,"
         " CAST(SUM(b.FDebitQty - b.FCreditQty) AS BIGINT) AS FQuantity FROM " +
         table + " b WHERE (b.FYear < ? OR (b.FYear = ? AND b.FPeriod <= ?)) AND " + asks +
         " (SELECT 1 FROM t_AccountItem i WHERE i.FAccountID = b.FAccountID)"
         " GROUP BY 1, 2, 3";
}

}  // namespace

std::vector<StandingPlace> StandingsOf(Database& db, const KindChart& chart, AccountingPeriod until,
                                       const IsWanted& is_wanted) {
  std::vector<StandingPlace> places;
  for (const auto& [account, currency, combination, amount, amount_for, quantity] :
       db.Query<Long, Long, Long, Units, Units, std::int64_t>(
           "SELECT * FROM (" + SumsOf("t_Balance", "0", "NOT EXISTS") + " UNION ALL " +
               SumsOf("t_ItemBalance", "b.FCombinationID", "EXISTS") +
               ") AS standing WHERE FAmount <> 0 OR FAmountFor <> 0 OR FQuantity <> 0",
           until.year, until.year, until.period, until.year, until.year, until.period)) {
    const std::size_t place = chart.PlaceOf(account);
    if (!is_wanted(chart.accounts()[place].kind, currency)) continue;
    places.push_back({place,
                      currency,
                      combination,
                      {account, currency, combination == 0 ? nullptr : DetailsOf(db, combination),
                       amount, amount_for, quantity}});
  }
  std::ranges::sort(places, {}, [](const StandingPlace& place) {
    return std::tuple(place.account, place.currency, place.combination);
  });
  return places;
}

}  // namespace qdclgl::server
