// Vouchers that are entered at the command line: new ones, copies, reversals.
#include "qdclgl/cli/books_move.h"
#include "qdclgl/cli/line_words.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/cli/voucher_draft.h"
#include "qdclgl/cli/voucher_editor.h"

namespace qdclgl::cli {

namespace {

struct EntryOptions {
  Login login;
  std::vector<Long> ids;
  std::vector<LineWords> lines;
  DateTime date;
  std::string group;
  std::string reference;
  bool red = false;
  std::vector<std::string> words;  // of `copy`: an id, or where books go
  std::string program_role;
};

// A new voucher with what the options say of it.
Ref<Voucher> Draft(const EntryOptions& options, const std::string& props) {
  auto voucher = Make<VoucherSet>()->CreateNew();
  voucher->VoucherDate(options.date.days != 0 ? options.date : DayInCurrentPeriod(props));
  if (!options.group.empty()) voucher->Group(options.group);
  voucher->Reference(options.reference);
  return voucher;
}

// On a terminal a voucher without lines is written in an editor.
int NewInEditor(const EntryOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const Ref<Voucher> voucher = Draft(options, props);
  const std::string text = EmptyText(
      voucher->VoucherDate(), options.group.empty() ? std::string(kUsualGroup) : options.group);
  switch (EditVoucher(*voucher, text, console)) {
    case EditOutcome::kSaved: TellDraft(*voucher, console); return kDone;
    case EditOutcome::kUnchanged: console.out << "No voucher is made.\n"; return kDone;
    case EditOutcome::kGivenUp: return kRefused;
  }
  return kRefused;
}

int New(const EntryOptions& options, const Console& console) {
  if (options.lines.empty()) {
    if (console.answers != nullptr) return NewInEditor(options, console);
    throw UsageError("new needs a --line for each line of the voucher");
  }
  const std::string props = options.login.Open();
  const Ref<Voucher> voucher = Draft(options, props);
  if (options.group.empty()) voucher->Group(kUsualGroup);
  for (const LineWords& words : options.lines) {
    voucher->Entries()->Add();
    PutWords(*voucher->Entries()->Item(voucher->Entries()->Count()), words, voucher->VoucherDate());
  }
  Balance(*voucher);
  voucher->Explanation(options.lines.front().explanation);
  SaveDraft(*voucher, console);
  return kDone;
}

Ref<Voucher> Original(const EntryOptions& options, const char* command) {
  if (options.ids.size() != 1) throw UsageError(std::string(command) + " takes one ID");
  return OpenVoucher(*Make<VoucherSet>(), options.ids.front());
}

// A new voucher with the lines of one that there is.
Ref<Voucher> CopyOf(Voucher& original, const EntryOptions& options, const std::string& props) {
  const Ref<Voucher> copy = Draft(options, props);
  if (options.group.empty()) copy->GroupID(original.GroupID());
  copy->Attachments(original.Attachments());
  copy->Explanation(original.Explanation());
  CopyLines(original.Entries(), copy->Entries());
  return copy;
}

int Copy(const EntryOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const Ref<Voucher> original = Original(options, "copy");
  SaveDraft(*CopyOf(*original, options, props), console);
  return kDone;
}

// `copy FROM TO`, where TO is no id.
int CopyWholeBooks(const EntryOptions& options, const Console& console) {
  if (options.date.days != 0 || !options.group.empty() || !options.reference.empty()) {
    throw UsageError("--date, --group and --reference go with the ID of a voucher");
  }
  return CopyBooks(options.login, options.words.front(), options.program_role, console);
}

int CopyEither(EntryOptions& options, const Console& console) {
  if (options.words.size() != 1) throw UsageError("copy takes one ID, or FROM and TO");
  if (!IsID(options.words.front())) return CopyWholeBooks(options, console);
  if (!options.program_role.empty()) throw UsageError("--program-role goes with FROM and TO");
  options.ids = IDsOf(options.words);
  return Copy(options, console);
}

void Reverse(VoucherEntry& line, bool red) {
  if (red) {
    line.Amount(-line.Amount());
    line.AmountFor(-line.AmountFor());
    line.Quantity(-line.Quantity());
  } else {
    line.DC(line.DC() == 1 ? 0 : 1);
  }
}

int ReverseVoucher(const EntryOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  const Ref<Voucher> original = Original(options, "reverse");
  const Ref<Voucher> reversal = CopyOf(*original, options, props);
  if (options.reference.empty()) {
    reversal->Reference("Reversal of " + std::to_string(original->Year()) + "/" +
                        std::to_string(original->Period()) + " " + original->Group() + " " +
                        std::to_string(original->Number()));
  }
  for (auto& line : reversal->Entries()) Reverse(line, options.red);
  SaveDraft(*reversal, console);
  return kDone;
}

void AddHeadOptions(const Command& command, EntryOptions& options, const std::string& usual_group) {
  command.Date("--date", options.date,
               "Its date; otherwise today, or the current period's nearest day");
  command.Text("--group", options.group, "NAME", "Its voucher group; otherwise " + usual_group);
  command.Text("--reference", options.reference, "TEXT", "Its reference");
}

void AddNew(Program& program) {
  const auto options = std::make_shared<EntryOptions>();
  const Command command =
      program.AddForBooks("new", "Makes a voucher of the lines that are given", options->login,
                          [options, &program] { return New(*options, program.console()); });
  command.ReadEach(
      "--line",
      [options](const std::string& text) { options->lines.push_back(ReadLineWords(text)); },
      "\"ACCOUNT debit|credit [AMOUNT] [TEXT]\"",
      "A line, such as \"1000.02 debit 119 Tea\"; one may be without its amount");
  AddHeadOptions(command, *options, kUsualGroup);
}

void AddCopy(Program& program) {
  const auto options = std::make_shared<EntryOptions>();
  const Command command =
      program.AddForWords("copy", "Makes a voucher with the lines of another one, or copies books",
                          options->login, options->words,
                          {"ID", "The voucher's id; anything else is where the books are copied to",
                           [](const std::string& first, const auto&) { return IsID(first); }},
                          [options, &program] { return CopyEither(*options, program.console()); });
  AddHeadOptions(command, *options, "the other one's");
  command.Text("--program-role", options->program_role, "ROLE",
               "The PostgreSQL role that programs log in with to the copied books");
}

void AddReverse(Program& program) {
  const auto options = std::make_shared<EntryOptions>();
  const Command command = program.AddForVouchers(
      "reverse", "Makes a voucher that takes another one back", options->login, options->ids,
      [options, &program] { return ReverseVoucher(*options, program.console()); });
  AddHeadOptions(command, *options, "the other one's");
  command.Flag("--red", options->red, "Negative amounts in place of the other side");
}

}  // namespace

void AddEntryCommands(Program& program) {
  AddNew(program);
  AddCopy(program);
  AddReverse(program);
}

}  // namespace qdclgl::cli
