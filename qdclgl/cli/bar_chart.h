// A chart of amounts as a drawing inside a page, with the same figures as a table.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "qdclgl/frame/values/values.h"

namespace qdclgl::cli {

struct ChartBar {
  std::string label;
  Currency amount;
  std::string text;        // the amount as it is read
  std::string below = {};  // what stands below the bar where the label is long
};

// `noun` heads the labels: "Month".
void WriteBarChart(std::ostream& out, const std::string& title, const std::string& noun,
                   const std::vector<ChartBar>& bars);

}  // namespace qdclgl::cli
