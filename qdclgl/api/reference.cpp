#include "qdclgl/api/reference.h"

namespace qdclgl {

namespace {

std::string Code(std::string_view text) {
  return text.empty() ? "" : "`" + MarkdownCell(text) + "`";
}

// "ref dict As Dictionary", "Separator As String = "_""; in brackets where it may be left out.
std::string ParameterText(const MemberParameter& parameter) {
  std::string text = parameter.by_ref ? "ref " : "";
  text += parameter.name + " As " + std::string(parameter.type);
  if (!parameter.default_text.empty()) text += " = " + parameter.default_text;
  return parameter.optional ? "[" + text + "]" : text;
}

// "GetFullName([Separator As String = "_"]) As String".
std::string Signature(const ClassMember& member) {
  std::string parameters;
  for (const MemberParameter& parameter : member.parameters) {
    parameters += (parameters.empty() ? "" : ", ") + ParameterText(parameter);
  }
  std::string text(member.row.name);
  if (!parameters.empty() || member.row.method != nullptr) text += "(" + parameters + ")";
  if (member.row.type != "none") text += " As " + std::string(member.row.type);
  return text;
}

// "method", or "get, let".
std::string Uses(const ClassMember& member) {
  const MemberRow& row = member.row;
  std::string text;
  const auto add = [&](Invoker invoker, std::string_view use) {
    if (invoker != nullptr) text += (text.empty() ? "" : ", ") + std::string(use);
  };
  add(row.method, "method");
  add(row.get, "get");
  add(row.let, "let");
  add(row.set, "set");
  if (row.options.is_default_member) text += "; default member";
  return text;
}

std::string DefaultOf(const MemberRow& row) {
  if (row.key.empty()) return "";
  return row.options.has_default ? Code(row.options.default_value.ToText()) : "none: error 13";
}

std::string HowOneGetsAnObject(const ClassTable& table) {
  if (!table.creatable()) return "Its objects are made by other objects.";
  const std::string name(table.name());
  return "Created as `Make<" + name + ">()` in C++, `QDCLGL." + name + "` by automation, `qdclgl." +
         name + "()` in Python.";
}

}  // namespace

std::string MarkdownCell(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '|') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string ReferenceText(const ClassTable& table, std::string_view title,
                          const CallersOf& callers) {
  std::string text = "# " + std::string(title) + "\n\n" + std::string(table.help()) + "\n\n";
  if (callers) {
    text += "| Method | Who may call it | What it does |\n| --- | --- | --- |\n";
  } else {
    text += HowOneGetsAnObject(table) + "\n\n";
    if (table.takes_context()) {
      text += "It takes a transaction context by `ISetXactContext.SetTransactionContext`.\n\n";
    }
    text += "| Member | Use | Key | Default | Cleared by | What it does |\n"
            "| --- | --- | --- | --- | --- | --- |\n";
  }
  for (const ClassMember& member : table.members()) {
    text += "| " + Code(Signature(member)) + " | ";
    if (callers) {
      text += callers(member.row.name);
    } else {
      text += Uses(member) + " | " + Code(member.row.key) + " | " + DefaultOf(member.row) + " | " +
              Code(member.row.options.clear_value.ToText());
    }
    text += " | " + MarkdownCell(member.row.help) + " |\n";
  }
  return text;
}

}  // namespace qdclgl
