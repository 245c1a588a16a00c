// The main job: a chart of accounts and a journal from files into the books.
#include <map>
#include <tuple>
#include <unordered_set>

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/format_sniffer.h"
#include "qdclgl/cli/import_undo.h"
#include "qdclgl/cli/item_import.h"
#include "qdclgl/cli/journal.h"
#include "qdclgl/cli/journal_columns.h"
#include "qdclgl/cli/kept_formats.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/cli/voucher_filler.h"

namespace qdclgl::cli {

namespace {

struct ImportOptions {
  Login login;
  ImportUndo undo;
  std::string accounts;
  std::string journal;
  std::string format;
  std::string items, item_class;
  bool update = false;
  bool check_all = false;
  bool post_all = false;
  bool resume = false;
  bool new_currencies = false;
};

struct JournalResult {
  long stored = 0;
  long passed = 0;  // in the books already
  long left_out = 0;
  bool is_whole = true;  // nothing was reported
  std::string import;    // the number of what was stored, in the books' list of imports
};

class JournalImport {
 public:
  JournalImport(const ImportOptions& options, std::string props, Names& names,
                const Console& console, const NamedFormat* format)
      : options_(options),
        props_(std::move(props)),
        names_(names),
        progress_(console),
        reports_(options.journal, console, progress_),
        reader_(options.journal, items_.columns(), reports_, format) {}

  // The vouchers of the journal, as many in a transaction as a batch has: books that a killed
  // import leaves hold each voucher wholly or not at all.
  JournalResult Run() {
    if (!reader_.IsUsable()) ++result_.left_out;
    std::vector<JournalVoucher> vouchers;
    for (JournalVoucher voucher; reader_.IsUsable() && reader_.Next(voucher);) {
      if (voucher.is_whole) vouchers.push_back(std::move(voucher));
      else ++result_.left_out;
      if (vouchers.size() == Batch::kSize) StoreAll(vouchers);
    }
    StoreAll(vouchers);
    ReportKnown();
    result_.is_whole = reports_.IsEmpty();
    return result_;
  }

 private:
  void StoreAll(std::vector<JournalVoucher>& vouchers) {
    if (vouchers.empty()) return;
    Batch batch(props_);
    names_.Refresh();
    const std::unordered_set<std::string> known = KnownOf(vouchers);
    stored_ = Make<Vector>();
    for (const JournalVoucher& voucher : vouchers) {
      if (known.contains(voucher.key)) {
        PassOver(voucher);
      } else if (Store(voucher)) {
        ++result_.stored;
      } else {
        ++result_.left_out;
      }
      progress_.Show("vouchers", result_.stored, reader_.Share());
    }
    KeepStored();
    batch.Commit();
    vouchers.clear();
  }

  // Tells the books which vouchers have come with this import.
  void KeepStored() {
    if (stored_->size() == 0) return;
    const auto imports = CreateObject("QDSVGLImport.ImportUpdate");
    if (import_ == 0) {
      auto row = Make<Dictionary>();
      row->Put("FName", options_.journal);
      import_ = imports->Call("Create", props_, row).As<Long>();
      result_.import = CreateObject("QDSVGLImport.ImportInfo")
                           ->Call("GetDetail", props_, import_)
                           .As<Dictionary>()
                           ->Value("FNumber")
                           .As<String>();
    }
    imports->Call("AddVouchers", props_, import_, stored_);
  }

  // The keys of those vouchers that the books have already. A voucher is known by its reference;
  // where the file tells that apart from the key, by date, group and number.
  std::unordered_set<std::string> KnownOf(const std::vector<JournalVoucher>& vouchers) {
    return vouchers.front().reference ? KnownByNumber(vouchers) : KnownByReference(vouchers);
  }

  std::unordered_set<std::string> KnownByReference(const std::vector<JournalVoucher>& vouchers) {
    std::string filter;
    for (const JournalVoucher& voucher : vouchers) {
      filter += (filter.empty() ? "FReference IN (" : ", ") + FilterText(voucher.key);
    }
    const Ref<Recordset> rows = Headers(filter + ")");
    const Long reference_at = rows->FieldPosition("FReference");
    std::unordered_set<std::string> known;
    for (; !rows->Eof(); rows->MoveNext()) {
      known.insert(rows->FieldValue(reference_at).As<String>());
    }
    return known;
  }

  std::unordered_set<std::string> KnownByNumber(const std::vector<JournalVoucher>& vouchers) {
    std::map<std::tuple<DateTime, std::string, Long>, std::string> keys;
    for (const JournalVoucher& voucher : vouchers) {
      keys[{voucher.date, VoucherFiller::GroupOf(voucher), voucher.number}] = voucher.key;
    }
    const Ref<Recordset> rows =
        Headers("FDate >= " + FilterDay(std::get<0>(keys.begin()->first)) +
                " AND FDate <= " + FilterDay(std::get<0>(keys.rbegin()->first)));
    const Long date_at = rows->FieldPosition("FDate"), group_at = rows->FieldPosition("FGroup"),
               number_at = rows->FieldPosition("FNumber");
    std::unordered_set<std::string> known;
    for (; !rows->Eof(); rows->MoveNext()) {
      const auto found = keys.find({rows->FieldValue(date_at).As<DateTime>(),
                                    rows->FieldValue(group_at).As<String>(),
                                    rows->FieldValue(number_at).As<Long>()});
      if (found != keys.end()) known.insert(found->second);
    }
    return known;
  }

  static Ref<Recordset> Headers(const std::string& filter) {
    const auto set = Make<VoucherSet>();
    set->Filter(filter);
    set->Refresh();
    return set->RecordSet();
  }

  void PassOver(const JournalVoucher& voucher) {
    if (options_.resume) {
      ++result_.passed;
      return;
    }
    ++result_.left_out;
    if (known_++ == 0) first_known_ = voucher;
  }

  // A journal that comes a second time is one report and not one for each of its vouchers.
  void ReportKnown() {
    if (known_ == 0) return;
    std::string who = "voucher " + Quoted(first_known_.key);
    if (known_ > 1) who += " and " + std::to_string(known_ - 1) + " behind it";
    reports_.Add(first_known_.at, who + (known_ == 1 ? " is" : " are") +
                                      " in the books already; --resume passes over " +
                                      (known_ == 1 ? "it" : "them"));
  }

  // False when the voucher can't be stored; then why is reported.
  bool Store(const JournalVoucher& journal) {
    try {
      const Ref<Voucher> voucher = Make<VoucherSet>()->CreateNew();
      if (!filler_.Fill(*voucher, journal)) return false;
      voucher->SaveChanges1();
      stored_->Append(voucher->VoucherID());
      return true;
    } catch (const Error& error) {
      if (!IsAboutRecord(error)) throw;
      reports_.Add(journal.at, ErrorText(error));
      return false;
    }
  }

  const ImportOptions& options_;
  std::string props_;
  Names& names_;
  Progress progress_;
  Reports reports_;
  const ItemColumns items_;
  JournalReader reader_;
  VoucherFiller filler_{names_, items_, reports_};
  JournalResult result_;
  Ref<Vector> stored_;  // the ids of the batch's vouchers
  Long import_ = 0;
  long known_ = 0;  // vouchers that are in the books already
  JournalVoucher first_known_;
};

bool HasFiles(const ImportOptions& options) {
  return !options.accounts.empty() || !options.journal.empty() || !options.items.empty();
}

void RequireSense(const ImportOptions& options) {
  if (!options.undo.import.empty()) {
    if (HasFiles(options) || options.check_all || options.post_all || options.resume ||
        options.new_currencies || options.update) {
      throw UsageError("--undo goes with --dry-run or --yes alone");
    }
    return;
  }
  if (options.undo.yes) throw UsageError("--yes goes with --undo");
  if (!HasFiles(options) && !options.check_all && !options.post_all) {
    throw UsageError("import needs --accounts, --items, --journal or --undo");
  }
  if (options.items.empty() != options.item_class.empty()) {
    throw UsageError("--items and --class go together");
  }
  if (!options.format.empty() && options.journal.empty()) {
    throw UsageError("--format goes with --journal");
  }
  if (options.update && options.items.empty()) throw UsageError("--update goes with --items");
}

// What a journal of another program is like, as it is named and found; nothing for our own form.
std::optional<NamedFormat> FormatOf(const ImportOptions& options, const std::string& props,
                                    const Console& console) {
  if (options.format.empty()) return {};
  const bool is_found = options.format == kFoundFormat;
  const FileFormat kept = is_found ? FileFormat{} : KeptFormat(props, options.format);
  NamedFormat format{is_found ? "row" : options.format, Completed(options.journal, kept)};
  console.out << OneLine(options.journal) << ": " << Described(format.format) << '\n';
  return format;
}

void TellJournal(const JournalResult& journal, const ImportOptions& options,
                 const Console& console) {
  const bool is_kept = journal.stored > 0 && !options.undo.dry_run;
  console.out << "vouchers: " << journal.stored << " stored";
  if (is_kept) console.out << " as import " << journal.import;
  console.out << ", " << journal.passed << " passed over, " << journal.left_out << " left out\n";
  if (is_kept && journal.passed > 0) {
    console.out << "What was passed over was in the books before, and is no part of this import.\n";
  }
  console.out << std::flush;
}

// The files one after the other, what others stand on first. False when anything was reported.
bool ImportFiles(const ImportOptions& options, const std::string& props, const Console& console) {
  bool is_whole = true;
  if (!options.items.empty()) {
    const ItemImportResult items =
        ImportItems(options.items, options.item_class,
                    options.update ? KnownItems::kUpdated : KnownItems::kLeft, props, console);
    console.out << "items: " << items.stored << " stored, ";
    if (options.update) console.out << items.changed << " changed, ";
    console.out << items.passed << " there already, " << items.left_out << " left out\n"
                << std::flush;
    is_whole = items.is_whole;
  }
  Names names(options.new_currencies ? NewCurrencies::kMake : NewCurrencies::kReport);
  if (!options.accounts.empty()) {
    const ChartResult chart = ImportChart(options.accounts, props, names, console);
    console.out << "accounts: " << chart.stored << " stored, " << chart.passed << " there already, "
                << chart.left_out << " left out\n"
                << std::flush;
    is_whole = is_whole && chart.is_whole;
  }
  if (!options.journal.empty()) {
    const std::optional<NamedFormat> format = FormatOf(options, props, console);
    const JournalResult journal =
        JournalImport(options, props, names, console, format ? &*format : nullptr).Run();
    TellJournal(journal, options, console);
    is_whole = is_whole && journal.is_whole;
  }
  for (const auto& [wanted, name] :
       {std::pair(options.check_all, "check"), std::pair(options.post_all, "post")}) {
    if (wanted && TakeStepOnAll(StepNamed(name), props, console) != kDone) is_whole = false;
  }
  return is_whole;
}

int Import(const ImportOptions& options, const Console& console) {
  RequireSense(options);
  const std::string props = options.login.Open();
  if (!options.undo.import.empty()) return UndoImport(options.undo, props, console);
  std::optional<Trial> trial;
  if (options.undo.dry_run) trial.emplace(props);
  const bool is_whole = ImportFiles(options, props, console);
  if (options.undo.dry_run) console.out << "That is what an import would do; nothing is stored.\n";
  return is_whole ? kDone : kLeftOut;
}

}  // namespace

void AddImportCommand(Program& program) {
  const auto options = std::make_shared<ImportOptions>();
  const Command command = program.AddForBooks(
      "import", "Stores accounts, items and vouchers from CSV files", options->login,
      [options, &program] { return Import(*options, program.console()); });
  command.Text("--accounts", options->accounts, "FILE", "The chart of accounts");
  command.Text("--journal", options->journal, "FILE", "The vouchers");
  command.Text("--format", options->format, "NAME",
               "The vouchers are another program's file: a name of qdclgl formats, or auto");
  command.Text("--items", options->items, "FILE", "Items, with --class");
  command.Text("--class", options->item_class, "CLASS", "The class of the items");
  command.Flag("--update", options->update, "Changes items that are in the books already");
  command.Flag("--dry-run", options->undo.dry_run,
               "Tries everything, tells what would be stored, and stores nothing");
  command.Flag("--check-all", options->check_all, "Checks all vouchers behind the import");
  command.Flag("--post-all", options->post_all, "Posts all vouchers behind the import");
  command.Flag("--new-currencies", options->new_currencies,
               "Makes currencies that the books don't have");
  command.Flag("--resume", options->resume, "Passes over vouchers that are in the books already");
  command.Text("--undo", options->undo.import, "NUMBER",
               "Takes the vouchers of an import out again, by its number in qdclgl imports");
  command.Flag("--yes", options->undo.yes, "Undoes without a question");
}

}  // namespace qdclgl::cli
