// Records of every kind that the server has, told by KIND and KEY.
#include <algorithm>

#include "qdclgl/cli/program.h"
#include "qdclgl/cli/records.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

using server::MasterData;

struct RecordOptions {
  Login login;
  std::vector<std::string> words;
  Format format = Format::kPlain;
  // Of removals alone.
  bool yes = false;
  bool all = false;
};

// Whether a first word is no BOOK but the subject that follows one. Where books are told otherwise,
// that may be a misspelt one.
template <class IsSubject>
auto BeginsWith(IsSubject is_subject) {
  return [is_subject](const std::string& first, const std::vector<std::string>& rest) {
    if (is_subject(first)) return true;
    if (BookFromEnvironment().empty() || rest.empty() || is_subject(rest.front())) return false;
    return IsNearKind(first) || !IsNearKind(rest.front());
  };
}
bool IsKind(std::string_view word) { return FindKind(word) != nullptr; }

// KIND, and so many words at least behind it.
const MasterData& KindOf(const std::vector<std::string>& words, std::size_t further,
                         const std::string& usage) {
  if (words.empty()) throw UsageError(usage);
  const MasterData& kind = KindNamed(words[0]);
  if (words.size() <= further) throw UsageError(usage);
  return kind;
}

std::vector<Assignment> AssignmentsOf(const MasterData& kind,
                                      const std::vector<std::string>& words) {
  std::vector<Assignment> assignments;
  for (std::size_t i = 2; i < words.size(); ++i) {
    assignments.push_back(ReadAssignment(kind, words[i]));
    const auto twice =
        std::ranges::count(assignments, assignments.back().column, &Assignment::column);
    if (twice > 1) {
      throw UsageError(std::string(assignments.back().column) + " gets more than one value");
    }
  }
  return assignments;
}

void Assign(Dictionary& row, const std::vector<Assignment>& assignments) {
  for (const Assignment& assignment : assignments) row.Put(assignment.column, assignment.value);
}

// ---- add, set ----

void Tell(const Console& console, const Records& records, Long id, const std::string& deed) {
  console.out << OneLine(records.kind().Called(*records.Read(id))) << " is " << deed << ".\n";
}

int Add(const RecordOptions& options, const Console& console) {
  const MasterData& kind = KindOf(options.words, 1, "add takes KIND KEY column=value ...");
  const std::vector<Assignment> assignments = AssignmentsOf(kind, options.words);
  const Records records(kind, options.login.Open());
  const auto row = Make<Dictionary>();
  row->Put(kind.description().key.column, Variant(options.words[1]));
  Assign(*row, assignments);
  const Long id = records.Save(row, 0);
  Tell(console, records, id, "added, with id " + std::to_string(id));
  return kDone;
}

int Set(const RecordOptions& options, const Console& console) {
  const MasterData& kind = KindOf(options.words, 2, "set takes KIND KEY column=value ...");
  const std::vector<Assignment> assignments = AssignmentsOf(kind, options.words);
  const Records records(kind, options.login.Open());
  const Ref<Dictionary> record = records.Find(options.words[1]);
  Assign(*record, assignments);
  Tell(console, records, records.Save(record, records.IdOf(*record)), "changed");
  return kDone;
}

// ---- show, remove ----

// Does something with each of them, and counts; what is refused is told and leaves the others
// alone.
template <class Items, class Deed>
std::size_t TryEach(const Items& items, const Console& console, Deed deed) {
  std::size_t done = 0;
  for (const auto& item : items) {
    try {
      deed(item);
      ++done;
    } catch (const Error& error) {
      if (!IsAboutRecord(error)) throw;
      console.err << "qdclgl: " << ErrorText(error) << '\n';
    }
  }
  return done;
}

// The records that the words behind KIND name.
std::vector<Ref<Dictionary>> FindAll(const Records& records, const std::vector<std::string>& words,
                                     const Console& console) {
  std::vector<Ref<Dictionary>> found;
  TryEach(std::span(words).subspan(1), console,
          [&](const std::string& key) { found.push_back(records.Find(key)); });
  return found;
}

int Show(const RecordOptions& options, const Console& console) {
  const MasterData& kind = KindOf(options.words, 1, "show takes KIND KEY ...");
  const Records records(kind, options.login.Open());
  const std::vector<Ref<Dictionary>> found = FindAll(records, options.words, console);
  for (const Ref<Dictionary>& record : found) records.AddLists(*record);
  if (!found.empty()) WriteRecords(console, options.format, found);
  return OutcomeOf(found.size(), options.words.size() - 1);
}

std::string QuestionAbout(const MasterData& kind, const std::vector<Ref<Dictionary>>& found) {
  const MasterData::Description& description = kind.description();
  std::string names;
  for (const Ref<Dictionary>& record : found) {
    names += (names.empty() ? " " : ", ") + OneLine(kind.NameOf(*record));
  }
  return "Remove " + std::string(found.size() == 1 ? description.noun : description.nouns) + names +
         "?";
}

int RemoveRecords(const RecordOptions& options, const Console& console) {
  const MasterData& kind = KindOf(options.words, 1, "remove takes KIND KEY ..., IDs or --all");
  if (options.all) throw UsageError("--all is for vouchers; " + options.words[0] + " take KEYs");
  const Records records(kind, options.login.Open());
  const std::vector<Ref<Dictionary>> found = FindAll(records, options.words, console);
  if (!found.empty() && !options.yes && !IsAgreed(console, QuestionAbout(kind, found))) {
    console.out << "Nothing is removed.\n";
    return kRefused;
  }
  const std::size_t done = TryEach(found, console, [&](const Ref<Dictionary>& record) {
    const bool is_gone = records.Delete(records.IdOf(*record));
    console.out << OneLine(kind.Called(*record))
                << (is_gone ? " is removed.\n" : " is marked deleted.\n");
  });
  return OutcomeOf(done, options.words.size() - 1);
}

int Remove(const RecordOptions& options, const Console& console) {
  const bool takes_vouchers = options.words.empty() ? options.all : IsID(options.words[0]);
  if (!takes_vouchers) return RemoveRecords(options, console);
  return RunStep(StepNamed(kRemoval), options.login, IDsOf(options.words), options.all, console);
}

// ---- kinds ----

struct KindsOptions {
  std::string kind;
  Format format = Format::kPlain;
};

void WriteKinds(TableWriter table) {
  for (const MasterData* kind : RecordKinds()) {
    const MasterData::Description& description = kind->description();
    table.Row({Variant(description.list.name), Variant(description.key.column),
               Variant(description.nouns)});
  }
  table.Finish();
}

void WriteColumns(const MasterData& kind, TableWriter table) {
  const std::vector<WrittenColumn> written = WrittenColumns(kind);
  const auto row = [&](std::string_view name, std::string_view value) {
    const bool is_written = std::ranges::find(written, name, &WrittenColumn::name) != written.end();
    table.Row({Variant(name), Variant(value), Variant(is_written ? "add, set" : "")});
  };
  for (const server::Column& column : kind.CallersColumns())
    row(column.name, ValueOf(kind, column));
  for (const server::RecordList& list : kind.description().lists) row(list.key, "rows");
  table.Finish();
}

int PrintKinds(const KindsOptions& options, const Console& console) {
  if (options.kind.empty()) {
    WriteKinds({console, options.format, {"Kind", "Key", "Records"}});
  } else {
    WriteColumns(KindNamed(options.kind),
                 {console, options.format, {"Column", "Value", "Written by"}});
  }
  return kDone;
}

void AddKinds(Program& program) {
  const auto options = std::make_shared<KindsOptions>();
  const Command command =
      program.Add("kinds", "Lists the kinds of records, or the columns of one",
                  [options, &program] { return PrintKinds(*options, program.console()); });
  command.Word("KIND", options->kind, "The kind whose columns are listed");
  AddFormat(command, options->format);
}

using Run = int (*)(const RecordOptions& options, const Console& console);

std::pair<Command, std::shared_ptr<RecordOptions>> AddForRecords(Program& program,
                                                                 const std::string& name,
                                                                 const std::string& help,
                                                                 Program::Words words, Run run) {
  const auto options = std::make_shared<RecordOptions>();
  const Command command =
      program.AddForWords(name, help, options->login, options->words, std::move(words),
                          [options, &program, run] { return run(*options, program.console()); });
  return {command, options};
}

}  // namespace

void AddRecordCommands(Program& program) {
  AddKinds(program);
  const Program::Words keys = {"KIND KEY",
                               "A kind (see `qdclgl kinds`) and numbers or names; '#5' is an id",
                               BeginsWith(IsKind)};
  const Program::Words values = {"KIND KEY column=value",
                                 "A kind (see `qdclgl kinds`), a number or name ('#5' is an id), "
                                 "and what columns get; column=@FILE takes a file's text",
                                 BeginsWith(IsKind)};
  const auto [show, show_options] =
      AddForRecords(program, "show", "Prints records with all that they hold", keys, Show);
  AddFormat(show, show_options->format);
  AddForRecords(program, "add", "Makes a record", values, Add);
  AddForRecords(program, "set", "Changes a record", values, Set);
  const Program::Words removed = {
      "KIND KEY|ID", "A kind and numbers or names ('#5' is an id), or ids of vouchers",
      BeginsWith([](std::string_view word) { return IsID(word) || IsKind(word); })};
  const auto [remove, remove_options] =
      AddForRecords(program, std::string(kRemoval),
                    "Removes records; numbers of vouchers stay taken", removed, Remove);
  remove.Flag("--all", remove_options->all, "All vouchers that are ready for it");
  remove.Flag("--yes", remove_options->yes, "Removes records without a question");
}

}  // namespace qdclgl::cli
