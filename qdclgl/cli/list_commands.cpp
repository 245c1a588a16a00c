// The lists of the books: a command for each list that a server component names.
#include <algorithm>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/server.h"

namespace qdclgl::cli {

namespace {

struct ListOptions {
  Login login;
  Format format = Format::kPlain;
  std::string filter;
  std::string sort;
  // Of the audit trail alone.
  Long voucher = 0;
  bool whole = false;
  bool head = false;
};

// The components that have a list, by its name.
std::vector<const server::ServerComponent*> Listing() {
  std::vector<const server::ServerComponent*> listing;
  for (const server::ServerComponent& component : server::ServerComponents()) {
    if (component.list != nullptr) listing.push_back(&component);
  }
  std::ranges::sort(listing, {}, [](const auto* component) { return component->list->name; });
  return listing;
}

// The rows of a component's GetList. What it takes besides filter and sort is left at its zero.
Ref<Recordset> Fetch(const server::ServerComponent& component, const std::string& props,
                     const std::string& filter, const std::string& sort) {
  std::vector<Argument> arguments;
  for (const MemberParameter& parameter : component.table->Find("GetList")->parameters) {
    if (parameter.name == "PropsString") arguments.emplace_back(props);
    else if (parameter.name == "Filter") arguments.emplace_back(filter);
    else if (parameter.name == "Sort") arguments.emplace_back(sort);
    else if (parameter.optional) arguments.emplace_back(Missing);
    else arguments.emplace_back(Long{0});
  }
  return CreateObject(component.prog_id)
      ->Invoke("GetList", CallKind::kMethod, arguments)
      .As<Recordset>();
}

// Puts what people read at a glance in place of what the trail tells.
void ShortenChanges(const Ref<Recordset>& deeds) {
  if (deeds->Eof()) return;
  const Long position = deeds->FieldPosition("FChanges");
  for (; !deeds->Eof(); deeds->MoveNext()) {
    deeds->SetFieldValue(position, server::ShortChanges(deeds->FieldValue(position).As<String>()));
  }
  deeds->MoveFirst();
}

int Print(const server::ServerComponent& component, const ListOptions& options,
          const Console& console) {
  const std::string props = options.login.Open();
  const bool is_trail = component.prog_id == server::AuditInfo::kProgID;
  if (options.head) {
    console.out << CreateObject(component.prog_id)->Call("GetHead", props).As<String>() << '\n';
    return kDone;
  }
  std::string filter = options.filter;
  if (options.voucher != 0) {
    const std::string one =
        "FSubject = 'Voucher' AND FRecordID = " + std::to_string(options.voucher);
    filter = filter.empty() ? one : one + " AND (" + filter + ")";
  }
  std::istringstream words{std::string(component.list->columns)};
  const std::vector<std::string> columns{std::istream_iterator<std::string>(words), {}};
  const Ref<Recordset> rows = Fetch(component, props, filter, options.sort);
  if (is_trail && options.format == Format::kPlain && !options.whole) ShortenChanges(rows);
  WriteRecordset(console.out, options.format, rows,
                 std::vector<std::string_view>(columns.begin(), columns.end()));
  return kDone;
}

}  // namespace

void AddListCommands(Program& program) {
  for (const server::ServerComponent* component : Listing()) {
    const auto options = std::make_shared<ListOptions>();
    CLI::App* command = program.AddForBooks(
        std::string(component->list->name), std::string(component->list->help), options->login,
        [options, &program, component] { return Print(*component, *options, program.console()); });
    command->add_option("--filter", options->filter, "Which rows: \"FNumber LIKE '1%'\"")
        ->type_name("FILTER");
    command->add_option("--sort", options->sort, "In which order: \"FNumber DESC, FName\"")
        ->type_name("COLUMNS");
    if (component->prog_id == server::AuditInfo::kProgID) {
      AddWhole(*command, "--voucher", options->voucher, "The deeds on this voucher alone");
      command->add_flag("--whole", options->whole, "What has changed as the trail keeps it");
      command->add_flag("--head", options->head,
                        "Seals the trail and prints the seal, to be kept elsewhere");
    }
    AddFormat(*command, options->format);
  }
}

}  // namespace qdclgl::cli
