// The reference of a class as Markdown, from its rows.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

// Who may call a method.
using CallersOf = std::function<std::string(std::string_view method)>;

// What the class is for, how one gets an object, and a table of its members: how they are written,
// the keys that they stand under, defaults, what errors they raise and which server calls they
// make; with `callers`, who may call each. Begins with the heading "# title".
std::string ReferenceText(const ClassTable& table, std::string_view title,
                          const CallersOf& callers = {});
inline std::string ReferenceText(const ClassTable& table) {
  return ReferenceText(table, table.name());
}

// A text as a cell of a Markdown table.
std::string MarkdownCell(std::string_view text);

}  // namespace qdclgl
