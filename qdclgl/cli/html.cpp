#include "qdclgl/cli/html.h"

#include <algorithm>

#include "qdclgl/cli/one_line.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kStyle = R"(
:root { color-scheme: light dark; --text: #1c2024; --paper: #fff; --soft: #f3f4f6; --line: #ccd1d7;
  --link: #0b57a4; --bad: #b3261e; --bar: #2f6fb0; }
@media (prefers-color-scheme: dark) {
  :root { --text: #e4e6e9; --paper: #16191d; --soft: #22272e; --line: #444c56; --link: #82b6f0;
    --bad: #ff8a80; --bar: #6ea8e0; } }
* { box-sizing: border-box }
body { margin: 0; font: 15px/1.5 system-ui, sans-serif; color: var(--text);
  background: var(--paper) }
a { color: var(--link) }
a:focus-visible, summary:focus-visible { outline: 3px solid var(--link); outline-offset: 2px }
.skip { position: absolute; left: -999em }
.skip:focus { left: 1em; top: 1em; background: var(--paper); padding: .5em }
nav { background: var(--soft); border-bottom: 1px solid var(--line) }
nav ul { display: flex; flex-wrap: wrap; gap: .25em 1.25em; list-style: none; margin: 0;
  padding: .6em 1.25em }
nav a[aria-current] { color: inherit; font-weight: 600; text-decoration: none }
header { padding: .6em 1.25em 0 }
main { padding: 0 1.25em 3em; max-width: 80em }
h1, h2, td, th, caption, p, li { overflow-wrap: anywhere }
h1 { font-size: 1.6em; line-height: 1.25 } h2 { font-size: 1.15em; margin: 1.8em 0 .4em }
.scroll { overflow-x: auto }
table { border-collapse: collapse; margin: .5em 0 1em }
caption { text-align: left; font-weight: 600; padding: .3em 0 }
th, td { border-bottom: 1px solid var(--line); padding: .2em .6em; text-align: left;
  vertical-align: top; min-width: 4em }
thead { display: table-header-group } thead th { background: var(--soft) }
.figure { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums }
.negative { color: var(--bad) }
tr.sum td, tr.sum th { font-weight: 600; border-top: 1px solid var(--text) }
tr:target, article:target h2 { background: var(--soft) }
figure { margin: 1em 0; max-width: 50em } figcaption { font-weight: 600 }
svg { width: 100%; height: auto; font: 11px system-ui, sans-serif }
svg text { fill: var(--text) } svg .bar { fill: var(--bar) } svg .bar.negative { fill: var(--bad) }
svg line { stroke: var(--line) }
@media print {
  :root { color-scheme: light; --text: #000; --paper: #fff; --soft: #fff; --line: #999;
    --link: #000; --bad: #000; --bar: #555 }
  nav, .skip { display: none } body { font-size: 9pt } main { max-width: none; padding: 0 }
  a { text-decoration: none } article, tr, figure { break-inside: avoid }
  .scroll { overflow: visible }
  details::details-content { content-visibility: visible; height: auto } }
)";

// Letters that run from right to left stay within their place.
std::string Isolated(const std::string& text) {
  const bool is_ascii = std::ranges::all_of(text, [](char c) { return (c & 0x80) == 0; });
  const std::string escaped = Escaped(text);
  return is_ascii ? escaped : "<bdi>" + escaped + "</bdi>";
}

const char* FigureClass(const std::string& text) {
  return text.starts_with('-') ? " class=\"figure negative\"" : " class=\"figure\"";
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : OneLine(text)) {
    switch (c) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      case '"': escaped += "&quot;"; break;
      case '\'': escaped += "&#39;"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

void BeginPage(std::ostream& out, const PageHead& head) {
  out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"><title>"
      << Escaped(head.title) << "</title>\n<style>" << kStyle
      << "</style></head>\n<body><a class=\"skip\" href=\"#main\">To the content</a>\n";
  if (!head.links.empty()) {
    out << "<nav aria-label=\"Pages\"><ul>";
    for (const PageLink& link : head.links) {
      out << "<li><a href=\"" << Escaped(link.file) << '"'
          << (link.file == head.file ? " aria-current=\"page\"" : "") << '>' << Escaped(link.text)
          << "</a></li>";
    }
    out << "</ul></nav>\n";
  }
  if (!head.company.name.empty() || !head.company.address.empty()) {
    out << "<header><strong>" << Isolated(head.company.name) << "</strong> "
        << Isolated(head.company.address) << "</header>\n";
  }
  out << "<main id=\"main\"><h1>" << Isolated(head.title) << "</h1>\n";
}

void EndPage(std::ostream& out) { out << "</main></body></html>\n"; }

HtmlTable::HtmlTable(std::ostream& out, std::string_view caption, std::vector<HtmlColumn> columns)
    : out_(out), columns_(std::move(columns)) {
  out_ << "<div class=\"scroll\"><table><caption>" << Isolated(std::string(caption))
       << "</caption>\n<thead><tr>";
  for (const HtmlColumn& column : columns_) {
    out_ << "<th scope=\"col\"" << (column.is_figure ? " class=\"figure\"" : "") << '>'
         << Isolated(column.heading) << "</th>";
  }
  out_ << "</tr></thead>\n<tbody>\n";
}

void HtmlTable::Row(const std::vector<HtmlCell>& cells, HtmlRow kind, std::string_view id) {
  out_ << "<tr";
  if (!id.empty()) out_ << " id=\"" << Escaped(id) << '"';
  out_ << (kind == HtmlRow::kSum ? " class=\"sum\">" : ">");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const HtmlCell& cell = cells[i];
    out_ << "<td" << (columns_[i].is_figure ? FigureClass(cell.text) : "") << '>';
    if (!cell.link.empty()) out_ << "<a href=\"" << Escaped(cell.link) << "\">";
    out_ << Isolated(cell.text) << (cell.link.empty() ? "</td>" : "</a></td>");
  }
  out_ << "</tr>\n";
}

void HtmlTable::End() { out_ << "</tbody></table></div>\n"; }

}  // namespace qdclgl::cli
