// The class reference, from the member rows of the library.
#include <nlohmann/json.hpp>

#include "qdclgl/api/api_table.h"
#include "qdclgl/api/class_list.h"
#include "qdclgl/api/reference.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/cli/program.h"

namespace qdclgl::cli {

namespace {

enum class ApiForm { kPlain, kTsv, kJson, kMarkdown };

struct ApiOptions {
  std::string class_name;
  ApiForm form = ApiForm::kPlain;
};

using Classes = std::span<const ClassTable* const>;

std::vector<ApiRow> RowsOf(const ClassTable& table) {
  std::vector<ApiRow> rows = ApiRows();
  std::erase_if(rows, [&](const ApiRow& row) { return row.class_name != table.name(); });
  return rows;
}

void PrintJson(std::ostream& out, Classes classes) {
  using Json = nlohmann::ordered_json;
  Json reference = Json::array();
  for (const ClassTable* table : classes) {
    Json members = Json::array();
    for (const ApiRow& row : RowsOf(*table)) {
      members.push_back({{"ordinal", row.ordinal},
                         {"name", row.member},
                         {"kind", row.kind},
                         {"type", row.type},
                         {"arguments", row.arguments},
                         {"default", row.is_default},
                         {"key", row.key},
                         {"clear", row.clear},
                         {"help", row.help}});
    }
    reference.push_back({{"class", table->name()},
                         {"help", table->help()},
                         {"creatable", table->creatable()},
                         {"members", members}});
  }
  out << reference.dump(2) << '\n';
}

// The pages of docs/reference/ one below the other, their headings a level deeper.
void PrintMarkdown(std::ostream& out, Classes classes) {
  for (const ClassTable* table : classes) out << '#' << ReferenceText(*table) << '\n';
}

void PrintPlain(std::ostream& out, Classes classes) {
  for (const ClassTable* table : classes) {
    out << table->name() << (table->creatable() ? "" : " (made by other objects)") << ": "
        << table->help() << '\n';
    for (const ApiRow& row : RowsOf(*table)) {
      out << "  " << row.kind << ' ' << row.member << '(' << row.arguments << ')';
      if (row.type != "none") out << " As " << row.type;
      out << (row.is_default ? " [default]" : "") << "\n      " << row.help << '\n';
    }
    out << '\n';
  }
}

std::string NoSuchClass(const std::string& name) {
  std::vector<std::string_view> names;
  for (const ClassTable* table : PublicClasses()) names.push_back(table->name());
  return "there is no class " + Quoted(name) + DidYouMean(name, names);
}

int PrintApi(const ApiOptions& options, std::ostream& out) {
  Classes classes = PublicClasses();
  const ClassTable* one = nullptr;
  if (!options.class_name.empty()) {
    one = FindPublicClass(options.class_name);
    if (one == nullptr) throw UsageError(NoSuchClass(options.class_name));
    classes = std::span(&one, 1);
  }
  switch (options.form) {
    case ApiForm::kPlain: PrintPlain(out, classes); break;
    case ApiForm::kTsv: out << (one != nullptr ? ApiTable(RowsOf(*one)) : ApiTable()); break;
    case ApiForm::kJson: PrintJson(out, classes); break;
    case ApiForm::kMarkdown: PrintMarkdown(out, classes); break;
  }
  return kDone;
}

}  // namespace

void AddApiCommand(Program& program) {
  const auto options = std::make_shared<ApiOptions>();
  const Command command =
      program.Add("api", "Prints the class reference of the library",
                  [options, &program] { return PrintApi(*options, program.console().out); });
  command.Word("CLASS", options->class_name, "One class alone");
  const auto form = [&](const char* name, ApiForm value, const char* help) {
    return command.Flag(
        name, [options, value] { options->form = value; }, help);
  };
  const Option tsv =
      form("--tsv", ApiForm::kTsv, "Prints tab-separated lines, as docs/api.tsv has them");
  const Option json = form("--json", ApiForm::kJson, "Prints JSON").Excludes(tsv);
  form("--markdown", ApiForm::kMarkdown, "Prints Markdown").Excludes(tsv).Excludes(json);
}

}  // namespace qdclgl::cli
