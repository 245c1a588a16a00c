// The statements of accounts in a report: a page for each account and year, and one that leads to
// them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "qdclgl/cli/report_books.h"
#include "qdclgl/cli/report_folder.h"

namespace qdclgl::cli {

class ReportStatements {
 public:
  ReportStatements(const ReportBooks& books, const ReportFolder& folder)
      : books_(books), folder_(folder) {}

  // Vouchers come by date. What is kept of them is a year's lines.
  void Add(const Dictionary& voucher);
  void Finish();

  bool Has(Long account) const { return years_.contains(account); }
  Currency BalanceOf(Long account) const;
  // The balance of all cash, or of all banks, at the end of each period.
  bool HasCash() const { return has_cash_; }
  const std::map<YearAndPeriod, Currency>& cash() const { return cash_; }

 private:
  struct Line {
    std::string date, voucher, link, id, explanation;
    Currency debit, credit;
  };
  struct Year {
    Currency begin, debit, credit, end;
  };

  void WriteYear();
  void WriteYearOf(Long account, const std::vector<Line>& lines);
  void WriteAccount(Long account, const std::map<Long, Year>& years);

  const ReportBooks& books_;
  const ReportFolder& folder_;
  Long year_ = 0;
  std::map<Long, std::vector<Line>> lines_;     // of that year, by account
  std::map<Long, std::map<Long, Year>> years_;  // by account
  std::map<YearAndPeriod, Currency> cash_;
  Currency all_cash_;
  bool has_cash_ = false;
};

// Where a line of a voucher stands in the statement of its account.
std::string LineAnchor(Long voucher, std::size_t line);

}  // namespace qdclgl::cli
