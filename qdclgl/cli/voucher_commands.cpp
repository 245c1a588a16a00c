// One voucher to read, and the steps of the workflow for one, many or all.
#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/cli/template_voucher.h"
#include "qdclgl/cli/voucher_draft.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

struct VoucherOptions {
  Login login;
  std::vector<Long> ids;
  bool all = false;
  bool json = false;
  TemplateUse from = {};  // a template to make a voucher of, when it has a name
};

// ---- voucher ----

// A value that has no member of its own in the class, or one that hides it.
std::string Stored(const Ref<Properties>& bag, std::string_view key) {
  return CellText(bag->Dictionary()->Value(key));
}

std::string StateOf(Voucher& voucher) {
  std::string state;
  const auto add = [&](bool is_so, const std::string& what, const std::string& who) {
    if (is_so) state += (state.empty() ? "" : ", ") + what + " by " + who;
  };
  add(voucher.Checked(), "checked", voucher.Checker());
  add(voucher.ApproveID() > 0, "approved", voucher.Approver());
  add(voucher.CashierID() > 0, "cashed", voucher.Cashier());
  add(voucher.Posted(), "posted", voucher.Poster());
  return state.empty() ? "open" : state;
}

std::string DetailsOf(VoucherEntry& line) {
  std::string text;
  for (auto& detail : line.Details()) {
    if (!text.empty()) text += ", ";
    text += detail.ItemClassNumber() + " " + detail.ItemNumber();
  }
  return text;
}

void PrintPlain(Voucher& voucher, const Console& console) {
  std::ostream& out = console.out;
  const auto field = [&](const char* name, const std::string& value) {
    if (!value.empty()) out << name << OneLine(value) << '\n';
  };
  field("Voucher    ", std::to_string(voucher.VoucherID()));
  field("Number     ", std::to_string(voucher.Year()) + "/" + std::to_string(voucher.Period()) +
                           " " + voucher.Group() + " " + std::to_string(voucher.Number()));
  field("Date       ", voucher.VoucherDate().ToText());
  field("Reference  ", voucher.Reference());
  field("Prepared   ", voucher.Preparer());
  field("State      ", StateOf(voucher));
  out << '\n';

  TableWriter table(console, Format::kPlain,
                    {"Line", "FAccountNumber", "FAccountName", "FExplanation", "FDebit", "FCredit",
                     "FCurrencyNumber", "FAmountFor", "FExchangeRate", "FQuantity", "FMeasureUnit",
                     "FUnitPrice", "FTransNo", "Details"});
  table.LeaveOutEmpty();
  const Variant none("");
  const auto number = [&](double value) { return value != 0 ? Variant(value) : none; };
  Long index = 0;
  for (auto& line : voucher.Entries()) {
    const bool is_foreign = line.CurrencyID() > 1;
    table.Row({++index, line.AccountNumber(), line.AccountName(), line.Explanation(),
               line.DC() == 1 ? Variant(line.Debit()) : none,
               line.DC() == 1 ? none : Variant(line.Credit()),
               is_foreign ? Variant(line.CurrencyNumber()) : none,
               is_foreign ? Variant(line.AmountFor()) : none,
               is_foreign ? Variant(line.ExchangeRate()) : none, number(line.Quantity()),
               Stored(line.Properties(), "FMeasureUnit"), number(line.UnitPrice()), line.TransNo(),
               DetailsOf(line)},
              line.CurrencyID());
  }
  table.Finish();
}

int MakeVoucher(const VoucherOptions& options, const Console& console) {
  if (!options.ids.empty()) throw UsageError("voucher takes an ID or --from-template");
  const std::string props = options.login.Open();
  const Ref<Voucher> voucher = VoucherOf(options.from, props);
  SaveDraft(*voucher, console);
  return kDone;
}

int PrintVoucher(const VoucherOptions& options, const Console& console) {
  if (options.ids.size() != 1) throw UsageError("voucher takes one ID");
  options.login.Open();
  const Ref<Voucher> voucher = OpenVoucher(*Make<VoucherSet>(), options.ids.front());
  if (options.json) {
    console.out << JsonText(Variant(voucher->Properties()->Dictionary()), 2) << '\n';
  } else {
    PrintPlain(*voucher, console);
  }
  return kDone;
}

// ---- voucher --from-template ----

// "2=850.50"
void AddAmount(std::map<Long, Currency>& amounts, const std::string& text) {
  const std::size_t at = text.find('=');
  if (at == text.npos) RefuseOption("--amount", Quoted(text) + " is not LINE=AMOUNT");
  try {
    amounts[ReadWhole(text.substr(0, at))] = ReadAmount(text.substr(at + 1));
  } catch (const BadCell& bad) {
    RefuseOption("--amount", bad.what());
  }
}

void AddTemplateOptions(const Command& command, TemplateUse& use) {
  const Option from = command.Text("--from-template", use.name, "TEMPLATE",
                                   "Makes a voucher of a template, by its name or id");
  const auto add = [&](const char* name, const char* type, const char* help, Command::Take take) {
    command.ReadEach(name, std::move(take), type, help).Needs(from);
  };
  add("--amount", "LINE=AMOUNT", "The amount of a line, in its currency; may stand again",
      [&use](const std::string& text) { AddAmount(use.amounts, text); });
  add("--date", "DATE", "Its date; otherwise today, or the current period's nearest day",
      [&use](const std::string& text) { use.date = DateOption("--date", text); });
  add("--group", "NAME", "Its voucher group; otherwise the template's",
      [&use](const std::string& text) { use.group = text; });
  add("--reference", "TEXT", "Its reference; otherwise the template's",
      [&use](const std::string& text) { use.reference = text; });
}

}  // namespace

// ---- The steps ----

int RunStep(const Step& step, const Login& login, const std::vector<Long>& ids, bool all,
            const Console& console) {
  if (all == !ids.empty()) throw UsageError(std::string(step.name) + " takes IDs or --all");
  const std::string props = login.Open();
  return all ? TakeStepOnAll(step, props, console) : TakeStep(step, ids, props, console);
}

void AddVoucherCommands(Program& program) {
  const auto options = std::make_shared<VoucherOptions>();
  const Command command = program.AddForVouchers(
      "voucher", "Prints a voucher with its lines, or makes one of a template", options->login,
      options->ids, [options, &program] {
        return options->from.name.empty() ? PrintVoucher(*options, program.console())
                                          : MakeVoucher(*options, program.console());
      });
  command.Flag("--json", options->json, "Prints JSON");
  AddTemplateOptions(command, options->from);

  for (const Step& step : Steps()) {
    if (&step == &StepNamed(kRemoval)) continue;  // removes other records too
    const auto step_options = std::make_shared<VoucherOptions>();
    const Command step_command =
        program.AddForVouchers(step.name, step.help, step_options->login, step_options->ids,
                               [step_options, &program, &step] {
                                 return RunStep(step, step_options->login, step_options->ids,
                                                step_options->all, program.console());
                               });
    step_command.Flag("--all", step_options->all, "All vouchers that are ready for it");
  }
}

}  // namespace qdclgl::cli
