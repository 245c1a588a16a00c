// A statement of a year as people read it: its sections and sums, its columns beside each other.
#pragma once

#include <string>
#include <vector>

#include "qdclgl/cli/console.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::cli {

struct StatementLayout {
  std::vector<std::string> columns = {};  // headings, one for each span of periods
  std::string nothing = {};               // the sentence for a statement without any account
  bool has_change = false;                // by how much the first column differs from the second
  bool has_percent = false;
  bool has_budget = false;  // with the difference, and the amount in percent of it
  Long depth = 0;           // of the tree of accounts that is shown; 0: all of it
};

// A line of cells: the account's number and name, and then figures, which are amounts or texts.
struct StatementLine {
  std::vector<Variant> cells;
  bool is_total = false;
};

struct StatementText {
  std::vector<std::string> headings;  // the first two are keys (headings.h)
  std::vector<StatementLine> lines;   // none: the first remark says so
  // Sentences behind the lines: what the assets and their sources differ by, and which accounts
  // have no kind.
  std::vector<std::string> remarks;
};

// A statement of QDSVGLReport.ReportInfo as people read it.
StatementText Arranged(Recordset& rows, const StatementLayout& layout, const Look& look);
// Prints it.
void WriteStatement(const Console& console, Recordset& rows, const StatementLayout& layout);

}  // namespace qdclgl::cli
