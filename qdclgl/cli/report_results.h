// The results in a report: income statement and balance sheet of all years, and what its overview
// draws of them.
#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "qdclgl/cli/bar_chart.h"
#include "qdclgl/cli/report_books.h"
#include "qdclgl/cli/report_folder.h"

namespace qdclgl::cli {

class ReportResults {
 public:
  // The periods are those in which something is posted, in their order.
  ReportResults(const ReportBooks& books, const ReportFolder& folder,
                std::vector<YearAndPeriod> periods)
      : books_(books), folder_(folder), periods_(std::move(periods)) {}

  // The pages, with a column for each year.
  void WritePages() const;
  // The result of each period, and the accounts with the largest costs of the last year.
  void WriteCharts(std::ostream& out) const;

 private:
  std::vector<Long> Years() const;
  Ref<Recordset> Statement(const char* method, const std::string& spans) const;
  void WritePage(const std::string& title, const std::string& file, const char* method,
                 const std::string& nothing) const;
  void WriteMonths(std::ostream& out) const;
  void WriteCosts(std::ostream& out) const;

  const ReportBooks& books_;
  const ReportFolder& folder_;
  std::vector<YearAndPeriod> periods_;
};

}  // namespace qdclgl::cli
