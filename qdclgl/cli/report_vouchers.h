// The vouchers in a report: a page for each period, and one that leads to them.
#pragma once

#include <fstream>
#include <map>
#include <string>
#include <unordered_map>

#include "qdclgl/cli/report_books.h"
#include "qdclgl/cli/report_folder.h"

namespace qdclgl::cli {

class ReportVouchers {
 public:
  struct Period {
    long vouchers = 0;
    Currency debit;
  };

  ReportVouchers(const ReportBooks& books, const ReportFolder& folder)
      : books_(books), folder_(folder) {}

  // Vouchers come by period.
  void Add(const Dictionary& voucher);
  void Finish();

  const std::map<YearAndPeriod, Period>& periods() const { return periods_; }
  long count() const { return static_cast<long>(places_.size()); }
  // Where a voucher stands; "" when it is not in the report.
  std::string LinkTo(Long voucher) const;

 private:
  void EndPeriod();
  void WriteVoucher(const Dictionary& voucher, Long id);
  void WriteIndex();

  const ReportBooks& books_;
  const ReportFolder& folder_;
  YearAndPeriod period_;
  std::ofstream out_;  // the page of that period
  std::map<YearAndPeriod, Period> periods_;
  std::unordered_map<Long, YearAndPeriod> places_;
};

}  // namespace qdclgl::cli
