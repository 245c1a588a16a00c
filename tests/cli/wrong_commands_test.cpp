// Command lines and files that can't be right, each with all that the program says to it.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

struct WrongCommand {
  std::vector<std::string> words;  // BOOK, and files by the names that the test gives them
  int code;
  std::string said;  // on the error output; files by the same names
};

// "accounts, check-types, ...": the kinds that the books keep.
std::string Kinds() {
  std::istringstream rows(RunInProcess({"kinds", "--csv"}).out);
  std::string kinds, row;
  std::getline(rows, row);
  while (std::getline(rows, row)) {
    kinds += (kinds.empty() ? "" : ", ") + row.substr(0, row.find(','));
  }
  return kinds;
}

class WrongCommands : public ::testing::Test {
 protected:
  WrongCommands() {
    Say({"init", "BOOK", "--no-password", "--year", "2024"});
    Write("chart.csv", "number,name,dc\n1000,Cash,1\n2000,Capital,-1\n");
    Write("journal.csv", "voucher,date,account,debit,credit\n"
                         "a,2024-01-05,1000,5,\na,2024-01-05,2000,,5\n"
                         "b,2024-01-06,1000,7,\nb,2024-01-06,2000,,7\n");
    Say({"import", "BOOK", "--accounts", "chart.csv", "--journal", "journal.csv"});
  }

  void Write(const std::string& name, const std::string& text) { folder_.Write(name, text); }

  // Runs the command with files in the test's folder; what is said names them without the folder.
  RunResult Say(std::vector<std::string> words) {
    for (std::string& word : words) {
      if (word == "BOOK" || word.ends_with(".csv") || word.ends_with(".db")) {
        word = folder_.Path(word == "BOOK" ? "books.db" : word);
      }
    }
    RunResult result = RunInProcess(words);
    const std::string place = folder_.Path("");
    for (std::size_t at; (at = result.err.find(place)) != std::string::npos;) {
      result.err.erase(at, place.size());
    }
    constexpr char kSeparator = std::filesystem::path::preferred_separator;
    if (kSeparator != '/') std::ranges::replace(result.err, kSeparator, '/');
    return result;
  }

  void Expect(const std::vector<WrongCommand>& commands) {
    for (const WrongCommand& wrong : commands) {
      std::string line = "qdclgl";
      for (const std::string& word : wrong.words) line += " " + word;
      const RunResult result = Say(wrong.words);
      EXPECT_EQ(result.code, wrong.code) << line;
      EXPECT_EQ(result.err, wrong.said) << line;
    }
  }

  Folder folder_;
};

TEST_F(WrongCommands, MisspeltOnesAreToldWithTheNearest) {
  Expect({
      {{"balanc", "BOOK"},
       2,
       "qdclgl: there is no command \"balanc\"; did you mean balance? See qdclgl help\n"},
      {{"vocuher", "BOOK", "1"},
       2,
       "qdclgl: there is no command \"vocuher\"; did you mean voucher? See qdclgl help\n"},
      {{"nothing"}, 2, "qdclgl: there is no command \"nothing\"; see qdclgl help\n"},
      {{""}, 2, "qdclgl: there is no command \"\"; see qdclgl help\n"},
      {{"help", "balanc"},
       2,
       "qdclgl: there is no command \"balanc\"; did you mean balance? See qdclgl help\n"},
      {{"--user", "ann", "balance"},
       2,
       "qdclgl: the command stands in front of its options, and --user is no option of qdclgl "
       "itself; see qdclgl help\n"},
      {{"--versoin"},
       2,
       "qdclgl: the command stands in front of its options, and --versoin is no option of qdclgl "
       "itself; did you mean --version? See qdclgl help\n"},
      {{"balance", "BOOK", "--yaer", "2024"},
       2,
       "qdclgl: balance has no option --yaer; did you mean --year? See qdclgl help balance\n"},
      {{"balance", "BOOK", "--cvs"},
       2,
       "qdclgl: balance has no option --cvs; did you mean --csv? See qdclgl help balance\n"},
      {{"post", "BOOK", "1", "--date", "3"},
       2,
       "qdclgl: post has no option --date; see qdclgl help post\n"},
      {{"close", "BOOK", "--yes", "--to", "2024/1"},
       2,
       "qdclgl: --to requires --year; see qdclgl help close\n"},
      {{"api", "Vuocher"},
       2,
       "qdclgl: there is no class \"Vuocher\"; did you mean Voucher? See qdclgl help api\n"},
      {{"show", "BOOK", "acounts", "1000"},
       2,
       "qdclgl: there is no kind \"acounts\"; did you mean accounts? There are " + Kinds() +
           "; see qdclgl help show\n"},
      {{"settings", "BOOK", "set", "CheckBeforPost", "1"},
       2,
       "qdclgl: there is no setting \"CheckBeforPost\"; did you mean CheckBeforePost? See qdclgl "
       "help settings\n"},
      {{"settings", "BOOK", "reset", "GL.PeriodCuont"},
       2,
       "qdclgl: there is no setting \"GL.PeriodCuont\"; did you mean GL.PeriodCount? See qdclgl "
       "help settings\n"},
      {{"set", "BOOK", "users", "ann", "FRole=reader"},
       2,
       "qdclgl: there is no column \"FRole\"; did you mean FRoles? There are FName, FRoles, "
       "FDisabled; see qdclgl help set\n"},
  });
}

TEST_F(WrongCommands, WhatIsMissingOrTooMuchIsNamed) {
  Expect({
      {{"balance", "BOOK", "--year"},
       2,
       "qdclgl: --year needs NUMBER behind it; see qdclgl help balance\n"},
      {{"balance", "BOOK", "--year", "x"},
       2,
       "qdclgl: --year: \"x\" is not a whole number; see qdclgl help balance\n"},
      {{"balance", "BOOK", "--from", "99999999999"},
       2,
       "qdclgl: --from: \"99999999999\" is too large; see qdclgl help balance\n"},
      {{"balance", "BOOK", "--csv", "--json"},
       2,
       "qdclgl: --csv excludes --json; see qdclgl help balance\n"},
      {{"vouchers", "BOOK", "y"},
       2,
       "qdclgl: vouchers doesn't know what to do with \"y\"; see qdclgl help vouchers\n"},
      {{"balance", "BOOK", "--", "x", "y"},
       2,
       "qdclgl: balance doesn't know what to do with \"x\"; see qdclgl help balance\n"},
      {{"voucher", "BOOK"}, 2, "qdclgl: voucher takes one ID; see qdclgl help voucher\n"},
      {{"open", "BOOK"},
       2,
       "qdclgl: open takes a class of items: --by customers; see qdclgl help open\n"},
      {{"open", "BOOK", "--by", "customers", "--date", "soon"},
       2,
       "qdclgl: --date: \"soon\" is not a date; dates are written as yyyy-mm-dd; see qdclgl help "
       "open\n"},
      {{"find", "BOOK", "tea", "--amount", "1..x"},
       2,
       "qdclgl: --amount: \"x\" is not an amount; see qdclgl help find\n"},
      {{"find", "BOOK", "--posted", "--unposted"},
       2,
       "qdclgl: --posted excludes --unposted; see qdclgl help find\n"},
      {{"statement", "BOOK"},
       2,
       "qdclgl: statement takes one ACCOUNT; see qdclgl help statement\n"},
      {{"statement", "BOOK", "1000", "--from", "January"},
       2,
       "qdclgl: --from takes a day such as 2024-01-31, a period such as 2024-01 or 2024/1, or a "
       "year, not \"January\"; see qdclgl help statement\n"},
      {{"statement", "BOOK", "1000", "--after", "5"},
       2,
       "qdclgl: --after takes VOUCHER/LINE, not \"5\"; see qdclgl help statement\n"},
      {{"statement", "BOOK", "1000", "--monthly", "--count", "5"},
       2,
       "qdclgl: --monthly excludes --count; see qdclgl help statement\n"},
      {{"voucher", "BOOK", "1", "2"}, 2, "qdclgl: voucher takes one ID; see qdclgl help voucher\n"},
      {{"post", "BOOK"}, 2, "qdclgl: post takes IDs or --all; see qdclgl help post\n"},
      {{"post", "BOOK", "y"}, 2, "qdclgl: ID: \"y\" is not a whole number; see qdclgl help post\n"},
      {{"user", "BOOK"}, 2, "qdclgl: user takes one NAME; see qdclgl help user\n"},
      {{"settings", "BOOK", "set", "CheckBeforePost"},
       2,
       "qdclgl: settings takes set KEY VALUE, reset KEY, or a category; see qdclgl help "
       "settings\n"},
      {{"settings", "BOOK", "XX"},
       2,
       "qdclgl: there are no settings of category \"XX\"; see qdclgl help settings\n"},
      {{"formats", "BOOK", "add", "auto", "date=Day"},
       2,
       "qdclgl: auto is the format that is found in the file; see qdclgl help formats\n"},
      {{"import", "BOOK", "--undo", "1", "--journal", "journal.csv"},
       2,
       "qdclgl: --undo goes with --dry-run or --yes alone; see qdclgl help import\n"},
      {{"import", "BOOK", "--undo", "1", "--resume"},
       2,
       "qdclgl: --undo goes with --dry-run or --yes alone; see qdclgl help import\n"},
      {{"import", "BOOK", "--journal", "journal.csv", "--yes"},
       2,
       "qdclgl: --yes goes with --undo; see qdclgl help import\n"},
      {{"import", "BOOK", "--undo", "7", "--yes"},
       1,
       "qdclgl: 80044213: There is no import \"7\".\n"},
      {{"import", "BOOK", "--undo", "1"},
       2,
       "qdclgl: \"Remove them?\" - nobody is there to answer; say --yes; see qdclgl help import\n"},
      {{"import", "BOOK"},
       2,
       "qdclgl: import needs --accounts, --items, --journal or --undo; see qdclgl help import\n"},
      {{"list", "BOOK"}, 2, "qdclgl: list takes one LIST; see qdclgl help list\n"},
      {{"set", "BOOK", "accounts", "1000", "FName"},
       2,
       "qdclgl: \"FName\" is not of the form column=value; see qdclgl help set\n"},
      {{"add", "BOOK", "currencies", "USD", "FExchangeRate=x"},
       2,
       "qdclgl: FExchangeRate: \"x\" is not a number; see qdclgl help add\n"},
      {{"reopen", "BOOK", "--to", "March"},
       2,
       "qdclgl: --to takes a period such as 2024/3; see qdclgl help reopen\n"},
      {{"close", "BOOK"},
       2,
       "qdclgl: \"Close it?\" - nobody is there to answer; say --yes; see qdclgl help close\n"},
  });
}

TEST_F(WrongCommands, FiltersAndSortsTellWhatThereIs) {
  Expect({
      {{"groups", "BOOK", "--filter", "FNam = 'x'"},
       1,
       "qdclgl: 80044210: The filter can't be understood at character 1: there is no column FNam; "
       "there are FGroupID, FVersion, FName, FStandard, FLimitMulti, FDRange, FCRange, FDCRange, "
       "FNDRange, FNCRange, FNDCRange, FDeleted, UUID.\n"},
      {{"groups", "BOOK", "--sort", "FNam"},
       1,
       "qdclgl: 80044211: The sort can't be understood at character 1: there is no column FNam; "
       "there are FGroupID, FVersion, FName, FStandard, FLimitMulti, FDRange, FCRange, FDCRange, "
       "FNDRange, FNCRange, FNDCRange, FDeleted, UUID.\n"},
      {{"vouchers", "BOOK", "--filter", "FDate > 2024"},
       1,
       "qdclgl: 80044210: The filter can't be understood at character 9: a date is expected, such "
       "as #2024-01-31#.\n"},
      {{"vouchers", "BOOK", "--filter", "FDate >= #31.1.2024#"},
       1,
       "qdclgl: 80044210: The filter can't be understood at character 10: there is no such date; "
       "dates are written as #2024-01-31#.\n"},
  });
}

TEST_F(WrongCommands, BooksThatAreNoneSayWhatTheyAre) {
  Write("text.db", std::string(200, 'x'));
  namespace fs = std::filesystem;
  const std::string damaged = folder_.Path("damaged.db");
  fs::copy_file(folder_.Path("books.db"), damaged);
  fs::resize_file(damaged, fs::file_size(damaged) / 2);
  const std::string lament =
      "qdclgl: 8004420F: The file damaged.db is damaged: database disk image is malformed.\n";
  Expect({
      {{"balance", "text.db"}, 5, "qdclgl: 80044204: The file text.db holds no books.\n"},
      {{"doctor", "text.db"}, 5, "qdclgl: 80044204: The file text.db holds no books.\n"},
      {{"balance", "damaged.db"}, 4, lament},
      {{"doctor", "damaged.db"}, 4, lament},
      {{"balance", "none.db"}, 5, "qdclgl: 80044204: There is no file none.db.\n"},
      {{"balance", "none/books.db"}, 5, "qdclgl: 80044204: There is no file none/books.db.\n"},
      {{"init", "none/books.db", "--no-password"},
       5,
       "qdclgl: 80044204: There is no folder none for the books.\n"},
      {{"init", "BOOK", "--no-password"},
       1,
       "qdclgl: 80044205: There is a file books.db already.\n"},
      {{"balance", "Provider=Abacus;"},
       5,
       "qdclgl: 80044203: The provider is SQLite or PostgreSQL, not \"Abacus\".\n"},
      {{"balance", "BOOK", "--user", "ann"},
       5,
       "qdclgl: 80044201: The user or the password is wrong, or the user is disabled.\n"},
  });
}

TEST_F(WrongCommands, FilesSayWhereAndWhatToDo) {
  Write("semicolons.csv", "voucher;date;account;debit;credit\nx;2024-01-05;1000;1;\n");
  Write("tabs.csv", "number\tname\tdc\n");
  Write("heading.csv", "voucher,dat,account,debit,credit\n");
  Write("dates.csv", "voucher,date,account,debit,credit\n"
                     "x,05.01.2024,1000,1,\nx,05.01.2024,2000,,1\n");
  Write("amounts.csv", "voucher,date,account,debit,credit\n"
                       "x,2024-01-05,1000,\"1,50\",\nx,2024-01-05,2000,,1.50\n");
  Write("unknown.csv", "voucher,date,account,debit,credit\n"
                       "x,2024-01-05,1000,1,\nx,2024-01-05,200,,1\n");
  Expect({
      {{"import", "BOOK", "--journal", "none.csv"}, 6, "qdclgl: none.csv can't be read\n"},
      {{"import", "BOOK", "--journal", "semicolons.csv"},
       3,
       "semicolons.csv:1:1: the columns are separated by semicolons, where commas are expected\n"},
      {{"import", "BOOK", "--accounts", "tabs.csv"},
       3,
       "tabs.csv:1:1: the columns are separated by tabs, where commas are expected\n"},
      {{"import", "BOOK", "--journal", "heading.csv"},
       3,
       "heading.csv:1:9: there is no column \"dat\"; did you mean date? There are voucher, date, "
       "account, debit, credit, group, number, explanation, currency, amount_for, rate, quantity, "
       "unit, unit_price, reference, voucher_reference, voucher_explanation, settlement, "
       "CUSTOMER, department, GOODS, STAFF, SUPPLIER\nheading.csv:1:1: the column \"date\" is "
       "missing\n"},
      {{"import", "BOOK", "--journal", "dates.csv"},
       3,
       "dates.csv:2:3: \"05.01.2024\" is not a date; dates are written as yyyy-mm-dd\n"},
      {{"import", "BOOK", "--journal", "amounts.csv"},
       3,
       "amounts.csv:2:19: \"1,50\" is not an amount; decimals stand behind a point\n"},
      {{"import", "BOOK", "--journal", "unknown.csv"},
       3,
       "unknown.csv:3:14: there is no account \"200\"\n"},
      {{"import", "BOOK", "--journal", "journal.csv"},
       3,
       "journal.csv:2:1: voucher \"a\" and 1 behind it are in the books already; --resume passes "
       "over them\n"},
  });
}

TEST_F(WrongCommands, WhatTheBooksRefuseHasANumberAndASentence) {
  Expect({
      {{"settings", "BOOK", "set", "CheckBeforePost", "yes"},
       1,
       "qdclgl: 80044242: Setting CheckBeforePost of GL is 0 or 1, not \"yes\".\n"},
      {{"settings", "BOOK", "set", "YearStartMonth", "13"},
       1,
       "qdclgl: 80044242: Setting YearStartMonth of GL is a whole number from 1 to 12, not "
       "\"13\".\n"},
      {{"settings", "BOOK", "reset", "CurrentPeriod"},
       1,
       "qdclgl: 80044241: Setting CurrentPeriod of GL is kept by closing and reopening.\n"},
      {{"report", "BOOK", "none/report"},
       6,
       "qdclgl: none/report can't be made: No such file or directory\n"},
      {{"voucher", "BOOK", "5"}, 1, "qdclgl: 80044213: There is no voucher with the id 5.\n"},
      {{"show", "BOOK", "accounts", "9"}, 1, "qdclgl: 80044213: Account 9: there is none.\n"},
      {{"open", "BOOK", "--by", "customers"},
       1,
       "qdclgl: 8004421A: No such account asks for items of item class CUSTOMER.\n"},
      {{"cashflow", "BOOK"},
       1,
       "qdclgl: 80044218: No account is a cash account: set FIsCash or FIsBank of those that "
       "are.\n"},
      {{"find", "BOOK", "tea", "--account", "9"},
       1,
       "qdclgl: 80044213: There is no account \"9\".\n"},
      {{"statement", "BOOK", "9"}, 1, "qdclgl: 80044213: There is no account \"9\".\n"},
      {{"ledger", "BOOK", "Costs"}, 1, "qdclgl: 80044213: There is no ledger \"Costs\".\n"},
      {{"reopen", "BOOK"}, 1, "qdclgl: 80044252: The books begin with period 2024/1.\n"},
      {{"close", "BOOK", "--yes"},
       1,
       "qdclgl: 80044250: Period 2024/1 has 2 voucher(s) that are not posted, the first is General "
       "1.\n"},
      {{"unpost", "BOOK", "1"},
       1,
       "qdclgl: 8004422B: Voucher 2024/1 General 1: it is not posted.\n"},
  });
}

}  // namespace
}  // namespace qdclgl::cli::testing
