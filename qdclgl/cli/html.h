// Pages for a browser or a printer: one template, in which everything that books say is escaped.
// They need nothing from outside.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/cli/company.h"

namespace qdclgl::cli {

// Fit for the text of a page and for its attributes.
std::string Escaped(std::string_view text);

struct PageLink {
  std::string text;
  std::string file;
};

struct PageHead {
  std::string title;
  Company company = {};
  std::vector<PageLink> links = {};  // to the other pages of a report
  std::string file = {};             // which of them this is
};

void BeginPage(std::ostream& out, const PageHead& head);
void EndPage(std::ostream& out);

struct HtmlColumn {
  std::string heading;
  bool is_figure = false;
};

struct HtmlCell {
  std::string text;
  std::string link = {};
};

enum class HtmlRow { kPlain, kSum };

class HtmlTable {
 public:
  HtmlTable(std::ostream& out, std::string_view caption, std::vector<HtmlColumn> columns);

  // `id` is what links name it by, where they do.
  void Row(const std::vector<HtmlCell>& cells, HtmlRow kind = HtmlRow::kPlain,
           std::string_view id = {});
  void End();

 private:
  std::ostream& out_;
  std::vector<HtmlColumn> columns_;
};

}  // namespace qdclgl::cli
