// What a report shows of the books, as it is read from them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "qdclgl/cli/html.h"
#include "qdclgl/cli/look.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::cli {

struct ReportAccount {
  std::string number;
  std::string name;
  Long level = 1;
  bool is_detail = false;
  bool is_cash = false;  // cash or bank
};

using YearAndPeriod = std::pair<Long, Long>;

// The books of a session, and amounts as they are read there.
struct ReportBooks {
  std::string props;
  Look look;
  std::map<Long, ReportAccount> accounts;  // by id
  Company company;

  ReportBooks(std::string session, const Look& console_look);

  std::string Money(Currency amount) const;
  // Nothing for an amount of nothing.
  std::string SideText(Currency amount) const;
  // The head of a page of the report.
  PageHead Head(std::string title, std::string file) const;
  // The trial balance of all that is posted.
  Ref<Recordset> TrialBalance() const;
};

// Calls `take` with each posted voucher, as GetDetail gives it, by year, period and date, and with
// the share of the year that is done. Between two calls only one year's headers are held.
void EachPostedVoucher(const ReportBooks& books,
                       const std::function<void(const Dictionary& voucher, double share)>& take);

// The places of things in the report.
std::string VouchersFile(YearAndPeriod period);
std::string VoucherAnchor(Long voucher);
std::string AccountFile(Long account);
std::string AccountFile(Long account, Long year);

// "2024/3"
std::string PeriodText(YearAndPeriod period);
// "2024/3 General 7"
std::string VoucherText(const Dictionary& voucher);

// Somebody has changed what is being read.
[[noreturn]] void RefuseChangedBooks();

}  // namespace qdclgl::cli
