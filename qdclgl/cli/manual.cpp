#include "qdclgl/cli/manual.h"

#include <algorithm>
#include <memory>
#include <set>

namespace qdclgl::cli {

namespace {

// ---- Books ----

constexpr Chapter kBooks[] = {
    {"init",
     R"(Makes empty books with a base currency (EUR unless said otherwise) and an
administrator, who gets the name of `--user` and the password in
`QDCLGL_PASSWORD`, or none with `--no-password`. They begin with the first
period of the year. A number of periods that does not divide 12 is counted in
weeks. On PostgreSQL the tables can belong to one role, and programs log in with
the one that `--program-role` names.

Examples:

  qdclgl init books.db --no-password --year 2024
  QDCLGL_PASSWORD=... qdclgl init books.db --user ann --currency USD --year 2024)"},
    {"login",
     R"(Logs in for the commands that follow on these books, which need no password
then. It is taken from `QDCLGL_PASSWORD` or asked for at the terminal.

Examples:

  qdclgl login books.db --user ann
  qdclgl balance books.db
  qdclgl logout books.db)"},
    {"logout", R"(Ends what `login` has begun: the commands that follow need a password again.)"},
    {"upgrade", R"(Brings books of an older version to this program's. Back them up before.)"},
    {"doctor",
     R"(Tests every rule that the books must keep, the audit trail and every record
against it too, and prints what breaks one. With a head that `audit --head`
printed, also that the trail leads to it.

Examples:

  qdclgl doctor books.db)"},
    {"audit",
     R"(Tells who did what, and when, and which values were changed: in short, or with
`--whole`, `--csv` and `--json` as the trail keeps it. `--head` seals the trail
and prints the seal, to be kept elsewhere.

Examples:

  qdclgl audit books.db --voucher 12
  qdclgl audit books.db --filter "FUserName = 'ann'" --csv)"},
    {"backup",
     R"(Copies the books, of either database, into a SQLite file as they are at one
moment, while others work, and checks the copy before it is there.

Examples:

  qdclgl backup books.db friday.db)"},
    {"restore",
     R"(Makes books out of such a file, and tells which they are. Books that exist stay;
with `--force` a file in the place gets another name first.

Examples:

  qdclgl restore friday.db books.db)"},
    {"close",
     R"(Closes the current period. It tells before what it will do, and asks unless
`--yes` answers.

  qdclgl close [BOOK] --year [Y] [--to ACCOUNT] [--undo] [--dry-run] [--yes]

Carries a year's result to an account of equity, by vouchers of the year's last
day that bring the accounts of income and expense to zero. The account is kept
for the next time. `--undo` takes these vouchers back, and reopens the year's
last period where it is closed.

Examples:

  qdclgl close books.db
  qdclgl close books.db --year 2024 --to 2000.02 --dry-run)"},
    {"reopen",
     R"(Reopens the period that was closed last, or all back to another one, whatever is
posted behind it.)"},
    {"settings",
     R"(Lists the settings of the books, or those of one category: value, default, range
and meaning.

  qdclgl settings [BOOK] set KEY VALUE | reset KEY

Gives a setting a value, or its default again. A KEY is told with its category
(GL.CheckBeforePost) or without. CompanyName and CompanyAddress stand at the
head of pages and exports.

Examples:

  qdclgl settings books.db GL
  qdclgl settings books.db set CompanyName "Miller & Sons")"},
    {"user",
     R"(Makes a user of the books, or changes one. The roles are reader, preparer,
checker, cashier, poster and administrator, several with commas between them. A
password is taken from `QDCLGL_NEW_PASSWORD`; a new user without one logs in
with `--no-password` alone. One's own password changes with the old one in
`QDCLGL_PASSWORD`.

Examples:

  QDCLGL_NEW_PASSWORD=... qdclgl user books.db rita --roles checker --set-password)"},
};

// ---- Files of others ----

constexpr Chapter kFilesOfOthers[] = {
    {"import",
     R"(Stores accounts, items of a class and vouchers from CSV files; `help files` tells
their columns. What can't be right is reported as FILE:LINE:COLUMN: reason; its
voucher is left out whole and the others are stored. With `--dry-run` all of it is
tried and told, and nothing stored.

With `--resume` vouchers that are in the books already are passed over in silence,
so that an import which was stopped, by whatever, goes on where it was.
`--new-currencies` makes the currencies that the books don't have; otherwise what
names them is left out. `--update` changes items that are there already.
`--check-all` and `--post-all` check and post all vouchers of the books behind it.

`--undo` takes all vouchers of an import, by its number in `imports`, out of the
books again, or none where one of them was checked, posted, closed or changed
since.

Examples:

  qdclgl import books.db --accounts accounts.csv
  qdclgl import books.db --journal journal.csv --dry-run
  qdclgl import books.db --journal bank.csv --format bank
  qdclgl imports books.db
  qdclgl import books.db --undo 3)"},
    {"formats",
     R"(Lists the formats of other programs' files that the books keep for
`import --format`.

  qdclgl formats [BOOK] add NAME COLUMN=HEADING... | show NAME | remove NAME

Keeps, prints or takes away a format: separator, decimal and dates, and the
headings under which the file has the columns of a journal, amount,
debit_account and credit_account. A value behind two equals signs is the same in
all rows.

Examples:

  qdclgl formats books.db add bank separator=; decimal=, date=Day amount=Amount
  qdclgl import books.db --journal bank.csv --format bank)"},
    {"export",
     R"(Writes the chart and the vouchers as `import` reads them, or the vouchers as
text for `hledger`, `ledger` or `beancount`. A file appears when it is whole,
and one that is there stays unless it is forced; - is the output. `--posted`
takes posted vouchers only, `--whole` writes all columns that vouchers and lines
can have. What a journal can't hold is told, with exit code 3.

Examples:

  qdclgl export books.db --accounts accounts.csv --journal journal.csv
  qdclgl export books.db --format hledger books.journal)"},
    {"report",
     R"(Writes what is posted as pages for a browser, which need no server and nothing
from outside: an overview, the trial balance, statements of accounts, vouchers
and the audit trail. A report that is in DIR is replaced as a whole; anything
else there is left alone, and the report refused.

Examples:

  qdclgl report books.db pages)"},
};

// ---- Vouchers ----

constexpr Chapter kVouchers[] = {
    {"new",
     R"(Makes a voucher of lines such as `1000.02 debit 119 Tea`. One line may be without
its amount and gets what the others lack; `100USD@0.92` is an amount in another
currency at its rate.

Examples:

  qdclgl new books.db --line "1000.02 debit 119 Tea" --line "1000.01 credit")"},
    {"edit",
     R"(Opens the editor that `VISUAL` or `EDITOR` names with the voucher as rows of a
journal, and saves what they then say. What is refused is shown beside its line
and the editor opened again. A text that is given up, or of a voucher that
somebody else has saved meanwhile, is kept in a file that is told.)"},
    {"copy",
     R"(Makes a voucher with the lines of another one.

  qdclgl copy FROM TO [--program-role ROLE]

Where the last word is no id, copies the books of FROM into another database,
each a SQLite file or a connection text: all records with their ids, users with
their passwords, the audit trail. They are copied as they are when it begins;
others may go on working, and what they save from then on is not in the copy.
Where it was broken off the same command goes on, or begins anew when the books
have changed since. TO is books once all rows are there and have passed the
check; nothing that stands there is written over.

Examples:

  qdclgl copy books.db 7 --date 2024-02-01
  qdclgl copy books.db "$LEDGER"
  qdclgl copy "$LEDGER" here.db)"},
    {"reverse",
     R"(Makes a voucher that takes another one back: its lines on the other side or,
with `--red`, with negative amounts.

Examples:

  qdclgl reverse books.db 12 --date 2024-04-01)"},
    {"voucher",
     R"(Prints a voucher with its lines.

  qdclgl voucher [BOOK] --from-template TEMPLATE [--amount LINE=AMOUNT]...

Makes a voucher of a template, which is told by its name or id, in the current
period. Lines have the amounts that are given, each in the line's currency, and
otherwise those of the template; one line without an amount gets what balances
the voucher.

Examples:

  qdclgl voucher books.db 12
  qdclgl voucher books.db --from-template Rent --amount 1=900)"},
    {"check",
     R"(Checks vouchers, or all that are ready for it. Where the books say so, only a
checked voucher is posted. What is refused is told and leaves the others alone.

Examples:

  qdclgl check books.db --all)"},
    {"uncheck", R"(Takes the check of vouchers back.)"},
    {"approve",
     R"(Approves vouchers that are checked. What is refused is told and leaves the others
alone.)"},
    {"unapprove", R"(Takes the approval of vouchers back.)"},
    {"cash", R"(Marks vouchers as seen by the cashier.)"},
    {"uncash", R"(Takes the cashier's mark back.)"},
    {"post",
     R"(Posts vouchers, or all that are ready for it: they count in the balances from
then on. It needs a check where the books say so. What is refused is told and
leaves the others alone.

Examples:

  qdclgl post books.db 12 13
  qdclgl post books.db --all)"},
    {"unpost", R"(Takes the posting of vouchers back, and their amounts out of the balances.)"},
};

// ---- Reports ----

constexpr Chapter kReports[] = {
    {"balance",
     R"(Prints the trial balance of periods of a year, or of everything posted. `--by`
splits it by the items of these classes, each called by its number or any of its
names; `--item` shows only what is posted for that item. `--csv` prints account,
debit, credit and balance, one row for each account with movement.

Examples:

  qdclgl balance books.db --year 2024 --from 1 --to 3
  qdclgl balance books.db --by customer)"},
    {"statement",
     R"(Prints what is posted on an account and those below it, a row for each line with
the balance behind it and the accounts on the other side, or with `--monthly` for
each period. A day is 2024-02-01, a period 2024-02 or 2024/2, or a year; without
them it is the current year.

`--unposted` counts what is not posted too, `--by` goes item by item, `--item`
shows one alone. `--count` prints so many lines; `--after` goes on behind one.

Examples:

  qdclgl statement books.db 1000 --from 2024-02
  qdclgl statement books.db 1000 --monthly)"},
    {"ledger",
     R"(Prints a multi-column ledger: what is posted on its account and those below it, a
row for each line of a voucher, with sums of periods and of the year so far, and
what of it falls under each of its columns. A DAY is a day (2024-01-31) or a
period (2024/1).

  qdclgl ledger [BOOK] add NAME --account NUMBER [--columns children|NUMBERS]

Adds a ledger of an account, with a column for each account right below it, or for
those that are given with commas between them, and sub-columns for currencies.

Examples:

  qdclgl ledger books.db add Costs --account 6000 --columns children
  qdclgl ledger books.db Costs --from 2024/1 --to 2024/3)"},
    {"find",
     R"(Lists the lines that have every word: in a text, a reference, the name or number
of the account or of an item, as an amount or as a day. Case is ignored. Where
`QDCLGL_BOOK` is set all words are looked for.

Examples:

  qdclgl find books.db tea 119 --account 1000 --from 2024-02)"},
    {"open",
     R"(Lists open items: lines of one item with the same reference on one account settle
each other, lines without a reference the oldest ones without. What is left is open
since the first of them.

Examples:

  qdclgl open books.db --by customer --ageing 30,60,90)"},
    {"cashflow",
     R"(Prints where the money on cash and bank accounts has come from and gone to: by
the cash flow items of lines, otherwise by the accounts on the other side.
`--compare` puts the same days a year before beside it.)"},
    {"income",
     R"(Prints the income statement of what is posted: accounts of kind income, those of
kind expense, and the result. `--monthly` and `--quarterly` have a column for
each period or quarter, `--compare` has the year before beside it, `--percent`
tells each amount in percent of the income too, and `--depth` leaves out
accounts on deeper levels of the chart. `--budget` has what is budgeted beside
what is posted, with the difference and the percentage.

Examples:

  qdclgl income books.db --year 2024 --quarterly --compare)"},
    {"position",
     R"(Prints the balance sheet at the end of the periods, or on the last day of one:
assets, liabilities, and equity with the result that is not carried yet.

Examples:

  qdclgl position books.db --date 2024-03-31)"},
    {"budget",
     R"(Lists the budgets of a year, or sets that of an account: for a period, or for
the year, over whose periods it is then spread evenly. An amount of 0 takes it
away. `--import` stores those of a CSV file with the columns account, year,
period and amount.

Examples:

  qdclgl budget books.db 6000 12000 --year 2024)"},
    {"rates",
     R"(Lists the exchange rates by day.

  qdclgl rates [BOOK] add CURRENCY RATE | remove CURRENCY... | --import FILE

Keeps a rate from a day on, removes that of a day, or takes rates from a CSV
file with the columns currency, date and rate.

Examples:

  qdclgl rates books.db add USD 0.92 --date 2024-01-31)"},
    {"revalue",
     R"(Books what balances in other currencies have gained or lost by the rates of the
period's last day, by vouchers that are shown first. The account of the
differences is kept for the next time.

Examples:

  qdclgl revalue books.db --period 2024/1 --dry-run)"},
};

// ---- Records ----

constexpr Chapter kRecords[] = {
    {"list",
     R"(Prints a list of the books, with `--with-deleted` also what is marked deleted. With
`--class` items are those of that class, with the columns of its fields.

A filter compares columns with values and a sort names columns:

  --filter "FDate >= #2024-01-01# AND FReference LIKE 'INV-%'"
  --sort "FDate DESC, FNumber"

`--keys` shows how the columns are called. `--limit` prints at most so many rows,
`--after` those behind the row with that id, in the same order.

Examples:

  qdclgl list books.db vouchers --filter "FDate >= #2024-01-01#" --limit 20
  qdclgl accounts books.db --sort "FName DESC" --csv)"},
    {"kinds",
     R"(Prints the kinds of records that the following commands know, or the columns of
one.

Examples:

  qdclgl kinds accounts)"},
    {"show",
     R"(Prints records with all that they hold. A key is a record's number, or its name
where it has none; `'#5'` is the record with that id.

Examples:

  qdclgl show books.db accounts 1000)"},
    {"add",
     R"(Makes a record.

Examples:

  qdclgl add books.db accounts 1000 FName=Cash FDC=1)"},
    {"set",
     R"(Changes a record, and never makes one. A value is written as lists show it, dates
as yyyy-mm-dd. `COLUMN=` takes the value away, `COLUMN=@FILE` is a file's text but
for its last line end, `COLUMN=@@TEXT` a text that begins with @. Rows that belong
to a record are a JSON array; `kinds KIND` tells the columns. What somebody else
has saved in the meantime is not overwritten.

Examples:

  qdclgl set books.db accounts 1000 "FName=Cash in hand")"},
    {"remove",
     R"(Removes records, or marks those deleted that others need, and says which. It asks
before unless `--yes` answers. A removed voucher's number stays taken.

Examples:

  qdclgl remove books.db accounts 1000 --yes
  qdclgl remove books.db 12 13)"},
};

// ---- The program itself ----

constexpr Chapter kTheProgramItself[] = {
    {"help",
     R"(Tells all commands, one of them, or a topic: output, files, environment,
exit-codes. Without any command `qdclgl` tells what one would do next with the
books that `QDCLGL_BOOK` names.

Examples:

  qdclgl help statement
  qdclgl help files
  qdclgl help import --man | man -l -)"},
    {"api", R"(Prints the class reference of the library.)"},
    {"complete",
     R"(Tells what the last of these words of a command line could be, one a line with a
tab and an explanation behind it. Shells ask it.)"},
};

// ---- Topics ----

constexpr Chapter kTopics[] = {
    {"output",
     R"(Output
Tables are for people: headings, amounts with the decimals of their currency, as
wide as the terminal, and through a pager when they are longer than the screen.

`--csv` and `--json` are for programs and stay as they are. Their columns are
called by keys (`FDate`), which `--filter` and `--sort` take too and `--keys`
shows above a table. Amounts have 4 decimals; in JSON they are texts, so that no
reader rounds them.

What was wrong is one line on the standard error output: a number and a reason.)"},
    {"files",
     R"(Files
Files are CSV in UTF-8, with a line of headings, columns in any order. Dates are
written as yyyy-mm-dd, amounts with a point and at most 4 decimals, quantities
with at most 6. Files of other programs have forms of their own; see
`help formats`.

`accounts.csv`: number, name, dc (1 debit, -1 credit, 0 either); optional:
currency, unit, quantities (yes or no), items (numbers of item classes with
blanks between them), and other columns of `kinds accounts`.

`items.csv`: number, name; optional: parent (the number of the item above, which
stands in front of it), other columns of `kinds items`, and the fields of the
class by their names or columns.

`journal.csv`: voucher, date, account, debit, credit; optional: group, number,
explanation, currency, amount_for, rate, quantity, unit, unit_price, reference,
voucher_reference, voucher_explanation, settlement, item classes. Rows of one
voucher stand together and share the column voucher, which the books keep as the
voucher's reference. Missing groups are made, missing currencies with
`--new-currencies`.)"},
    {"environment",
     R"(Environment
`QDCLGL_BOOK`: the books, where the command line names none. Then a whole number
in their place is an ID, and the name of a kind in their place is always the
kind.

`QDCLGL_USER`: who works on the books; otherwise administrator.

`QDCLGL_PASSWORD`: the password; the empty one when it is not set.

`QDCLGL_NEW_PASSWORD`: the password that `user --set-password` gives.

`QDCLGL_NEGATIVE`: how tables show negative amounts, with a `minus` in front of
them or in `parentheses`.

`PAGER`: what shows output that is longer than the screen, on a terminal;
otherwise `less`, if it is there. An empty one is none.

`VISUAL`, `EDITOR`: what `edit` opens a voucher with.

`NO_COLOR`: with any value, there are no colours.)"},
    {"exit-codes",
     R"(Exit status
`0`: done.

`1`: the library or the server refused it, or it failed.

`2`: the command line can't be understood.

`3`: a part of the input was left out; the rest is done.

`4`: the books break a rule of their own.

`5`: the books can't be opened: connection, version or login.

`6`: a file can't be read or written.)"},
};

constexpr std::string_view kListText =
    "A short form of `list` with this list's name; see `help list`.";

// Tells a command's text between its usage and its options.
class ManualFormatter : public HelpFormatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    return Formatter::make_usage(app, std::move(name)) + '\n' + ManualText(app->get_name()) + '\n';
  }
};

}  // namespace

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
  static constexpr std::string_view kExcludes = " Excludes:";
  std::string text = Formatter::make_option_opts(option);
  const std::size_t at = text.find(kExcludes);
  if (at == text.npos) return text;
  std::set<std::string> names;
  for (const CLI::Option* other : option->get_excludes()) names.insert(other->get_name());
  text.erase(at + kExcludes.size());
  for (const std::string& name : names) text += ' ' + name;
  return text;
}

std::span<const ManualGroup> ManualGroups() {
  static const ManualGroup kGroups[] = {
      {"Books", kBooks},       {"Files of others", kFilesOfOthers},
      {"Vouchers", kVouchers}, {"Reports", kReports},
      {"Records", kRecords},   {"The program itself", kTheProgramItself},
  };
  return kGroups;
}

std::string ListsTitle() { return "Lists"; }

namespace {

// A command's chapter and the title of its group; of the lists, no chapter.
struct Place {
  const Chapter* chapter;
  std::string title;
};

Place Find(std::string_view command) {
  for (const ManualGroup& group : ManualGroups()) {
    for (const Chapter& chapter : group.chapters) {
      if (chapter.name == command) return {&chapter, group.title};
    }
  }
  return {nullptr, ListsTitle()};
}

}  // namespace

std::span<const Chapter> Topics() { return kTopics; }

const Chapter* TopicNamed(std::string_view name) {
  const auto* topic = std::ranges::find(kTopics, name, &Chapter::name);
  return topic == std::end(kTopics) ? nullptr : topic;
}

std::string ManualText(std::string_view command) {
  const Chapter* chapter = Find(command).chapter;
  return std::string(chapter == nullptr ? kListText : chapter->text);
}

void AddManual(CLI::App& app) {
  const auto formatter = std::make_shared<ManualFormatter>();
  for (CLI::App* command : app.get_subcommands({})) {
    command->formatter(formatter);
    command->group(Find(command->get_name()).title);
  }
}

}  // namespace qdclgl::cli
