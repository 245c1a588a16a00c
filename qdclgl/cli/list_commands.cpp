// The lists of the books: one command for all, and one for each list that a server component names.
#include <algorithm>
#include <sstream>

#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/records.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/audit.h"

namespace qdclgl::cli {

namespace {

struct ListOptions {
  Login login;
  std::vector<std::string> words;  // which list, where the command is none of its own
  Format format = Format::kPlain;
  ListQuery query;
  std::string item_class;  // of items alone
  // Of the audit trail alone.
  Long voucher = 0;
  bool whole = false;
  bool head = false;
};

// Puts what people read at a glance in place of what the trail tells.
void ShortenChanges(const Ref<Recordset>& deeds) {
  if (deeds->Eof()) return;
  const Long position = deeds->FieldPosition("FChanges");
  for (; !deeds->Eof(); deeds->MoveNext()) {
    deeds->SetFieldValue(position, server::ShortChanges(deeds->FieldValue(position).As<String>()));
  }
  deeds->MoveFirst();
}

bool KnowsItemClasses(const server::ServerComponent& component) {
  return std::ranges::any_of(
      component.table->Find("GetList")->parameters,
      [](const MemberParameter& parameter) { return parameter.name == "ItemClassID"; });
}

// What people see of a list at first; of items of a class also what the class describes.
std::vector<std::string> ShownColumns(const server::ServerComponent& component,
                                      const Recordset& rows) {
  std::istringstream words{std::string(component.list->columns)};
  std::vector<std::string> columns{std::istream_iterator<std::string>(words), {}};
  const server::MasterData* kind = FindKind(component.list->name);
  if (kind == nullptr || !KnowsItemClasses(component)) return columns;
  for (Long i = 0; i < rows.FieldCount(); ++i) {
    if (server::FindColumn(kind->CallersColumns(), rows.FieldName(i)) == nullptr) {
      columns.push_back(rows.FieldName(i));
    }
  }
  return columns;
}

// "There are no voucher groups."
std::string NoneOf(const server::ServerComponent& component, const ListQuery& query) {
  const server::MasterData* kind = FindKind(component.list->name);
  const std::string_view what = kind != nullptr ? kind->description().nouns
                                : component.prog_id == server::AuditInfo::kProgID
                                    ? "deeds"
                                    : component.list->name;
  return "There are no " + std::string(what) +
         (query.filter.empty() ? "." : " for which the filter is true.");
}

// Of rows that are there.
Long LastId(Recordset& rows) {
  Long id = 0;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) id = rows.FieldValue(0).As<Long>();
  return id;
}

int Print(const server::ServerComponent& component, const ListOptions& options,
          const Console& console) {
  const std::string props = options.login.Open();
  const bool is_trail = component.prog_id == server::AuditInfo::kProgID;
  if (options.head) {
    console.out << CreateObject(component.prog_id)->Call("GetHead", props).As<String>() << '\n';
    return kDone;
  }
  ListQuery query = options.query;
  if (options.voucher != 0) {
    const std::string one =
        "FSubject = 'Voucher' AND FRecordID = " + std::to_string(options.voucher);
    query.filter = query.filter.empty() ? one : one + " AND (" + query.filter + ")";
  }
  if (!options.item_class.empty()) {
    if (!KnowsItemClasses(component)) throw UsageError("--class is for items");
    const Records classes(KindNamed("item-classes"), props);
    query.item_class = classes.IdOf(*classes.Find(options.item_class));
  }
  const Ref<Recordset> rows = FetchList(component, props, query);
  const std::vector<std::string> columns = ShownColumns(component, *rows);
  if (is_trail && options.format == Format::kPlain && !options.whole) ShortenChanges(rows);
  WriteRecordset(console, options.format, rows,
                 std::vector<std::string_view>(columns.begin(), columns.end()),
                 NoneOf(component, query));
  if (options.format == Format::kPlain && query.limit != 0 && rows->RecordCount() == query.limit) {
    console.out << "There may be more rows; they go on with --after " << LastId(*rows) << '\n';
  }
  return kDone;
}

const server::ServerComponent& ListNamed(const std::vector<std::string>& words) {
  if (words.size() != 1) throw UsageError("list takes one LIST");
  if (const server::ServerComponent* list = FindList(words[0])) return *list;
  std::vector<std::string_view> names;
  for (const server::ServerComponent* list : Lists()) names.push_back(list->list->name);
  throw UsageError(NoSuch("list", words[0], names));
}

// A lone word is a list when books are told otherwise, or when it has the name of one.
bool IsList(const std::string& first, const std::vector<std::string>& rest) {
  return rest.empty() && (!BookFromEnvironment().empty() || FindList(first) != nullptr);
}

void AddQueryOptions(const Command& command, ListOptions& options) {
  command.Text("--filter", options.query.filter, "FILTER", "Which rows: \"FNumber LIKE '1%'\"");
  command.Text("--sort", options.query.sort, "COLUMNS", "In which order: \"FNumber DESC, FName\"");
  command.Flag("--with-deleted", options.query.with_deleted, "What is marked deleted too");
  command.Whole("--limit", options.query.limit, "At most so many rows").Positive();
  command
      .Whole("--after", options.query.after,
             "Goes on behind the row with this id, in the same order")
      .Positive();
  AddFormat(command, options.format);
}

void AddItemClass(const Command& command, ListOptions& options) {
  command.Text("--class", options.item_class, "CLASS",
               "Items of this class with its fields: customer, or #1000 for an id");
}

constexpr const char* kList = "list";

void AddList(Program& program) {
  const auto options = std::make_shared<ListOptions>();
  const Command command = program.AddForWords(
      kList, "Lists records of the books", options->login, options->words,
      {"LIST", "Which list: accounts, vouchers, ...", IsList}, [options, &program] {
        return Print(ListNamed(options->words), *options, program.console());
      });
  AddQueryOptions(command, *options);
  AddItemClass(command, *options);
}

// The short form of a list.
void AddShortForm(Program& program, const server::ServerComponent& component) {
  const auto own = std::make_shared<ListOptions>();
  const Command command = program.AddForBooks(
      std::string(component.list->name), std::string(component.list->help), own->login,
      [own, &program, &component] { return Print(component, *own, program.console()); });
  AddQueryOptions(command, *own);
  if (KnowsItemClasses(component)) AddItemClass(command, *own);
  if (component.prog_id == server::AuditInfo::kProgID) {
    command.Whole("--voucher", own->voucher, "The deeds on this voucher alone");
    command.Flag("--whole", own->whole, "What has changed as the trail keeps it");
    command.Flag("--head", own->head, "Seals the trail and prints the seal, to be kept elsewhere");
  }
}

}  // namespace

void AddListCommands(Program& program) {
  AddList(program);
  for (const server::ServerComponent* component : Lists()) AddShortForm(program, *component);
}

bool AddListCommand(Program& program, std::string_view name) {
  if (name == kList) {
    AddList(program);
    return true;
  }
  for (const server::ServerComponent* component : Lists()) {
    if (component->list->name != name) continue;
    AddShortForm(program, *component);
    return true;
  }
  return false;
}

}  // namespace qdclgl::cli
