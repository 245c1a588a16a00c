// The lists: accounts, currencies, voucher groups, vouchers, users, and the audit trail.
#include "qdclgl/accounts/account_set.h"
#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "qdclgl/vouchers/voucher_set.h"

namespace qdclgl::cli {

namespace {

// The rows of a list of the library.
template <class Set>
Ref<Recordset> Fetch(const std::string&, const std::string& filter, const std::string& sort) {
  const auto set = Make<Set>();
  set->Filter(filter);
  set->Sort(sort);
  set->Refresh();
  return set->RecordSet();
}

// The rows of a list that the server alone has.
Ref<Recordset> FetchFrom(const char* component, const std::string& props, const std::string& filter,
                         const std::string& sort) {
  return CreateObject(component)->Call("GetList", props, filter, sort).As<Recordset>();
}
Ref<Recordset> FetchAudit(const std::string& props, const std::string& filter,
                          const std::string& sort) {
  return FetchFrom("QDSVGLAudit.AuditInfo", props, filter, sort);
}
Ref<Recordset> FetchUsers(const std::string& props, const std::string& filter,
                          const std::string& sort) {
  return FetchFrom("QDSVGLUser.UserInfo", props, filter, sort);
}

constexpr std::string_view kAccountColumns[] = {"FAccountID", "FNumber", "FName", "FDC", "FDetail"};
constexpr std::string_view kCurrencyColumns[] = {"FCurrencyID", "FNumber", "FName", "FExchangeRate",
                                                 "FOperator"};
constexpr std::string_view kGroupColumns[] = {"FGroupID", "FName"};
constexpr std::string_view kVoucherColumns[] = {
    "FVoucherID",  "FDate",    "FGroup",    "FNumber",  "FReference", "FExplanation",
    "FDebitTotal", "FChecked", "FApprover", "FCashier", "FPosted"};
constexpr std::string_view kUserColumns[] = {"FUserID", "FName", "FRoles", "FDisabled"};
constexpr std::string_view kAuditColumns[] = {"FTime",   "FUserName", "FSubject", "FRecordID",
                                              "FRecord", "FAction",   "FChanges"};

struct List {
  const char* name;
  const char* help;
  std::span<const std::string_view> columns;  // of the plain table
  Ref<Recordset> (*fetch)(const std::string& props, const std::string& filter,
                          const std::string& sort);
};

constexpr List kLists[] = {
    {"accounts", "Lists the chart of accounts", kAccountColumns, Fetch<AccountSet>},
    {"currencies", "Lists the currencies", kCurrencyColumns, Fetch<CurrencySet>},
    {"groups", "Lists the voucher groups", kGroupColumns, Fetch<VoucherGroupSet>},
    {"vouchers", "Lists the vouchers", kVoucherColumns, Fetch<VoucherSet>},
    {"users", "Lists the users of the books", kUserColumns, FetchUsers},
    {"audit", "Tells who did what, and when", kAuditColumns, FetchAudit},
};

struct ListOptions {
  Login login;
  Format format = Format::kPlain;
  std::string filter;
  std::string sort;
  Long voucher = 0;
};

int Print(const List& list, const ListOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  std::string filter = options.filter;
  if (options.voucher != 0) {
    const std::string one =
        "FSubject = 'Voucher' AND FRecordID = " + std::to_string(options.voucher);
    filter = filter.empty() ? one : one + " AND (" + filter + ")";
  }
  WriteRecordset(console.out, options.format, list.fetch(props, filter, options.sort),
                 list.columns);
  return kDone;
}

}  // namespace

void AddListCommands(Program& program) {
  for (const List& list : kLists) {
    const auto options = std::make_shared<ListOptions>();
    CLI::App* command = program.AddForBooks(
        list.name, list.help, options->login,
        [options, &program, &list] { return Print(list, *options, program.console()); });
    command->add_option("--filter", options->filter, "Which rows: \"FNumber LIKE '1%'\"")
        ->type_name("FILTER");
    command->add_option("--sort", options->sort, "In which order: \"FNumber DESC, FName\"")
        ->type_name("COLUMNS");
    if (list.fetch == FetchAudit) {
      AddWhole(*command, "--voucher", options->voucher, "The deeds on this voucher alone");
    }
    AddFormat(*command, options->format);
  }
}

}  // namespace qdclgl::cli
