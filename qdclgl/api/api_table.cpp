#include "qdclgl/api/api_table.h"

#include "qdclgl/api/class_list.h"

namespace qdclgl {

namespace {

std::string ArgumentText(const ClassMember& member) {
  std::string text;
  for (const MemberParameter& parameter : member.parameters) {
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

}  // namespace

std::vector<ApiRow> ApiRows() {
  std::vector<ApiRow> rows;
  for (const ClassTable* public_class : PublicClasses()) {
    if (public_class->takes_context()) {
      rows.push_back({.class_name = public_class->name(),
                      .member = "ISetXactContext.SetTransactionContext",
                      .kind = "interface",
                      .type = "none",
                      .arguments = "xa:Object",
                      .help = "Hands over the transaction context."});
    }
    for (const ClassMember& member : public_class->members()) {
      const auto add = [&](std::string_view kind, Invoker invoker, std::string_view type,
                           std::string clear = "") {
        if (invoker == nullptr) return;
        rows.push_back({public_class->name(), member.ordinal, member.row.name, kind, type,
                        ArgumentText(member), member.row.options.is_default_member, member.row.key,
                        std::move(clear), member.row.help});
      };
      add("method", member.row.method, member.row.type);
      add("get", member.row.get, member.row.type);
      add("let", member.row.let, member.row.PutType(), member.row.options.clear_value.ToText());
      add("set", member.row.set, member.row.PutType());
    }
  }
  return rows;
}

std::string ApiTable(const std::vector<ApiRow>& rows) {
  std::string table = "class\tordinal\tmember\tkind\ttype\targs\tdefault\tkey\tclear\n";
  for (const ApiRow& row : rows) {
    const std::string place = std::to_string(row.ordinal);
    table += row.class_name;
    for (const std::string_view cell :
         {std::string_view(place), row.member, row.kind, row.type, std::string_view(row.arguments),
          std::string_view(row.is_default ? "default" : ""), row.key,
          std::string_view(row.clear)}) {
      table += '\t';
      table += cell;
    }
    table += '\n';
  }
  return table;
}

}  // namespace qdclgl
