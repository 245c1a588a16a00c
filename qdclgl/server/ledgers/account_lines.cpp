#include "qdclgl/server/ledgers/account_lines.h"

#include <tuple>

#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/ledgers/accounts_below.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

void AddUnits(Units& sum, Units more) { AddChecked(sum, more, "lines that are not posted"); }

// That the account of a row asks for items of the class, where one is meant.
std::string AsksFor(const AccountLines& which, std::string_view row) {
  if (which.item_class == 0) return "";
  return " AND EXISTS (SELECT 1 FROM t_AccountItem asked WHERE asked.FAccountID = " +
         std::string(row) +
         ".FAccountID AND asked.FItemClassID = " + std::to_string(which.item_class) + ")";
}

// The item of the class that a line names, 0 for none.
std::string ItemOfLine(const AccountLines& which) {
  if (which.item_class == 0) return "0";
  return "COALESCE((SELECT MIN(d.FItemID) FROM t_VoucherDetail d"
         " JOIN t_Item i ON i.FItemID = d.FItemID AND i.FItemClassID = d.FItemClassID"
         " WHERE d.FVoucherID = e.FVoucherID AND d.FEntryID = e.FEntryID"
         " AND d.FItemClassID = " +
         std::to_string(which.item_class) + "), 0)";
}

}  // namespace

std::string FromLinesBelow(const Database& db, LineState state) {
  if (state == LineState::kPosted) {
    return " FROM below" +
           Reached(db, "t_PostedLine", "p",
                   "p.FAccountID = below.FAccountID AND p.FDate >= ? AND p.FDate < ?") +
           Reached(db, "t_VoucherEntry", "e",
                   "e.FVoucherID = p.FVoucherID AND e.FEntryID = p.FEntryID") +
           Reached(db, "t_Voucher", "v", "v.FVoucherID = p.FVoucherID");
  }
  return " FROM (SELECT * FROM t_Voucher WHERE FPosted = 0 AND FDeleted = 0"
         " AND FDate >= ? AND FDate < ?" +
         std::string(db.Dialect("", " OFFSET 0")) + ") v" +
         Reached(db, "t_VoucherEntry", "e",
                 "e.FVoucherID = v.FVoucherID AND e.FAccountID IN (SELECT FAccountID FROM below)");
}

bool IsAskedFor(Database& db, const AccountLines& which) {
  return db
      .QueryValue<Long>(std::string(kBelow) + " SELECT FAccountID FROM below WHERE 1 = 1" +
                            AsksFor(which, "below") + " LIMIT 1",
                        which.account)
      .has_value();
}

void TwoSides::Add(const TwoSides& more) {
  AddUnits(debit, more.debit);
  AddUnits(credit, more.credit);
  AddUnits(debit_for, more.debit_for);
  AddUnits(credit_for, more.credit_for);
}

TwoSides AccountLine::Sides() const {
  return side == 1 ? TwoSides{.debit = amount, .debit_for = amount_for}
                   : TwoSides{.credit = amount, .credit_for = amount_for};
}

bool AccountLine::operator<(const AccountLine& other) const {
  return std::tie(date, group, period, number, entry) <
         std::tie(other.date, other.group, other.period, other.number, other.entry);
}

std::vector<AccountLine> LinesOf(Database& db, const AccountLines& which, LineState state,
                                 DateTime from, DateTime behind) {
  static_assert(kBaseCurrency == 1);
  const std::string sql =
      std::string(kBelow) +
      " SELECT v.FDate, g.FName, v.FYear, v.FPeriod, v.FNumber, v.FVoucherID, e.FEntryID,"
      " v.FPosted, a.FNumber, c.FNumber, e.FDC, e.FCurrencyID, " +
      ItemOfLine(which) +
      ", e.FAmount, CASE WHEN e.FCurrencyID = 1 THEN e.FAmount ELSE e.FAmountFor END,"
      " e.FExchangeRate, e.FExplanation, e.FTransNo" +
      FromLinesBelow(db, state) + Reached(db, "t_VoucherGroup", "g", "g.FGroupID = v.FGroupID") +
      Reached(db, "t_Account", "a", "a.FAccountID = e.FAccountID") +
      Reached(db, "t_Currency", "c", "c.FCurrencyID = e.FCurrencyID") + " WHERE 1 = 1" +
      AsksFor(which, "e");
  std::vector<AccountLine> lines;
  for (auto& [date, group, year, period, number, voucher, entry, is_posted, account, currency, side,
              currency_id, item, amount, amount_for, rate, explanation, reference] :
       db.Query<std::string, std::string, Long, Long, Long, Long, Long, bool, std::string,
                std::string, Long, Long, Long, Units, Units, double, std::string, std::string>(
           sql, which.account, DateText(from), DateText(behind))) {
    if (which.item && item != *which.item) continue;
    lines.push_back({DateFrom(date),
                     std::move(group),
                     {year, period},
                     number,
                     voucher,
                     entry,
                     is_posted,
                     std::move(account),
                     std::move(currency),
                     side,
                     currency_id,
                     item,
                     amount,
                     amount_for,
                     rate,
                     std::move(explanation),
                     std::move(reference)});
  }
  return lines;
}

AccountLine PlaceOfLine(Database& db, Long voucher, Long entry) {
  const auto place = db.QueryRow<std::string, std::string, Long, Long, Long>(
      "SELECT v.FDate, g.FName, v.FYear, v.FPeriod, v.FNumber FROM t_Voucher v"
      " JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID WHERE v.FVoucherID = ?",
      voucher);
  if (!place) {
    Refuse(refusal::kNotFound, "There is no voucher with the id " + std::to_string(voucher) + ".");
  }
  AccountLine line{};
  std::string date;
  std::tie(date, line.group, line.period.year, line.period.period, line.number) = *place;
  line.date = DateFrom(date);
  line.entry = entry;
  return line;
}

std::vector<PeriodSum> KeptSums(Database& db, const AccountLines& which, AccountingPeriod from,
                                AccountingPeriod behind, Split split) {
  const std::string period = split == Split::kByPeriod ? "b.FYear, b.FPeriod" : "0, 0";
  const std::string item_class = std::to_string(which.item_class);
  std::string item = "0", kept;
  if (which.item_class == 0) {
    kept = Reached(db, "t_Balance", "b", "b.FAccountID = below.FAccountID");
  } else if (which.item) {
    item = "i.FItemID";
    kept = Reached(db, "t_ItemCombinationItem", "i",
                   "i.FItemID = ? AND i.FItemClassID = " + item_class) +
           Reached(db, "t_ItemBalance", "b",
                   "b.FAccountID = below.FAccountID AND b.FCombinationID = i.FCombinationID");
  } else {
    item = "COALESCE(i.FItemID, 0)";
    kept = Reached(db, "t_ItemBalance", "b", "b.FAccountID = below.FAccountID") +
           " LEFT JOIN t_ItemCombinationItem i ON i.FCombinationID = b.FCombinationID"
           " AND i.FItemClassID = " +
           item_class;
  }
  const std::string sql = std::string(kBelow) + " SELECT " + period + ", " + item +
                          ", b.FCurrencyID, c.FNumber, CAST(SUM(b.FDebit) AS BIGINT),"
                          " CAST(SUM(b.FCredit) AS BIGINT), CAST(SUM(b.FDebitFor) AS BIGINT),"
                          " CAST(SUM(b.FCreditFor) AS BIGINT) FROM below" +
                          kept + " JOIN t_Currency c ON c.FCurrencyID = b.FCurrencyID" +
                          " WHERE b.FYear * 1000 + b.FPeriod >= ?"
                          " AND b.FYear * 1000 + b.FPeriod < ?" +
                          AsksFor(which, "b") + " GROUP BY 1, 2, 3, 4, 5 ORDER BY 1, 2, 3, 4";
  const auto at = [](AccountingPeriod place) {
    return std::int64_t{place.year} * 1000 + place.period;
  };
  const auto query = [&](const auto&... places) {
    return db.Query<Long, Long, Long, Long, std::string, Units, Units, Units, Units>(
        sql, places..., at(from), at(behind));
  };
  std::vector<PeriodSum> sums;
  for (auto& [year, number, of, currency_id, currency, debit, credit, debit_for, credit_for] :
       which.item ? query(which.account, *which.item) : query(which.account)) {
    sums.push_back({{year, number},
                    of,
                    currency_id,
                    std::move(currency),
                    {debit, credit, debit_for, credit_for}});
  }
  return sums;
}

}  // namespace qdclgl::server
