#include "qdclgl/cli/bar_chart.h"

#include <algorithm>
#include <cstdio>

#include "qdclgl/cli/html.h"

namespace qdclgl::cli {

namespace {

constexpr double kWidth = 720, kHeight = 200, kFoot = 18, kWidestStep = 60;

double Size(Currency amount) { return static_cast<double>(amount.units()); }

// A number of a drawing: one decimal is finer than any screen.
std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

const ChartBar& Extreme(const std::vector<ChartBar>& bars, bool greatest) {
  const auto [least, most] = std::ranges::minmax_element(bars, {}, &ChartBar::amount);
  return greatest ? *most : *least;
}

// What somebody hears who can't see the drawing.
std::string Description(const std::string& title, const std::vector<ChartBar>& bars) {
  const ChartBar &most = Extreme(bars, true), &least = Extreme(bars, false);
  return title + ": from " + bars.front().label + " to " + bars.back().label + ", the most is " +
         most.text + " (" + most.label + "), the least " + least.text + " (" + least.label +
         "). The table below has all figures.";
}

void Draw(std::ostream& out, const std::string& title, const std::vector<ChartBar>& bars) {
  const double top = std::max(0.0, Size(Extreme(bars, true).amount));
  const double bottom = std::min(0.0, Size(Extreme(bars, false).amount));
  const double scale = top > bottom ? kHeight / (top - bottom) : 0, axis = top * scale;
  const double step = std::min(kWidestStep, kWidth / static_cast<double>(bars.size()));
  const std::size_t labels_apart = bars.size() / 12 + 1;
  out << "<svg viewBox=\"0 0 " << Number(kWidth) << ' ' << Number(kHeight + kFoot)
      << "\" role=\"img\" aria-label=\"" << Escaped(Description(title, bars)) << "\">\n";
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const double size = Size(bars[i].amount) * scale, left = step * static_cast<double>(i);
    out << "<rect class=\"bar" << (size < 0 ? " negative" : "") << "\" x=\""
        << Number(left + step * 0.1) << "\" y=\"" << Number(axis - std::max(size, 0.0))
        << "\" width=\"" << Number(step * 0.8) << "\" height=\"" << Number(std::abs(size))
        << "\"><title>" << Escaped(bars[i].label + ": " + bars[i].text) << "</title></rect>\n";
    if (i % labels_apart == 0) {
      out << "<text x=\"" << Number(left + step * 0.1) << "\" y=\"" << Number(kHeight + kFoot - 4)
          << "\">" << Escaped(bars[i].below.empty() ? bars[i].label : bars[i].below) << "</text>\n";
    }
  }
  out << "<line x1=\"0\" x2=\"" << Number(kWidth) << "\" y1=\"" << Number(axis) << "\" y2=\""
      << Number(axis) << "\"/></svg>\n";
}

}  // namespace

void WriteBarChart(std::ostream& out, const std::string& title, const std::string& noun,
                   const std::vector<ChartBar>& bars) {
  if (bars.empty()) return;
  out << "<figure><figcaption>" << Escaped(title) << "</figcaption>\n";
  Draw(out, title, bars);
  out << "<details><summary>The figures</summary>\n";
  HtmlTable table(out, title, {{noun}, {"Amount", true}});
  for (const ChartBar& bar : bars) table.Row({{bar.label}, {bar.text}});
  table.End();
  out << "</details></figure>\n";
}

}  // namespace qdclgl::cli
