#include "api/api_table.h"

#include "api/class_list.h"

namespace qdclgl {

namespace {

std::string ArgumentText(const Member& member) {
  std::string text;
  for (const Parameter& parameter : member.parameters) {
    if (!text.empty()) text += ',';
    if (parameter.by_ref) text += "ref ";
    text += parameter.name;
    if (parameter.optional) text += '?';
    text += ':';
    text += parameter.type;
    if (!parameter.default_text.empty()) text += "=" + parameter.default_text;
  }
  return text;
}

void AppendLine(std::string& table, std::string_view class_name, int ordinal,
                std::string_view member, std::string_view kind, std::string_view type,
                std::string_view arguments, bool is_default) {
  const std::string place = std::to_string(ordinal);
  table += class_name;
  for (const std::string_view cell : {std::string_view(place), member, kind, type, arguments,
                                      std::string_view(is_default ? "default" : "")}) {
    table += '\t';
    table += cell;
  }
  table += '\n';
}

}  // namespace

std::string ApiTable() {
  std::string table = "class\tordinal\tmember\tkind\ttype\targs\tdefault\n";
  for (const ClassTable* public_class : PublicClasses()) {
    if (public_class->takes_context()) {
      AppendLine(table, public_class->name(), 0, "ISetXactContext_SetTransactionContext", "method",
                 "none", "xa:Object", false);
    }
    for (const Member& member : public_class->members()) {
      const auto line = [&](std::string_view kind, Invoker invoker, std::string_view type) {
        if (invoker == nullptr) return;
        AppendLine(table, public_class->name(), member.ordinal, member.row.name, kind, type,
                   ArgumentText(member), member.row.options.is_default_member);
      };
      line("method", member.row.method, member.row.type);
      line("get", member.row.get, member.row.type);
      line("let", member.row.let, member.row.type);
      line("set", member.row.set, member.row.type);
    }
  }
  return table;
}

}  // namespace qdclgl
