// The commands for records of every kind: what is the same for all of them is proved for each kind
// that the server has.
#include "qdclgl/cli/records.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/sha256.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

using Words = std::vector<std::string>;

// A record of a kind: its key, in the case in which it is kept, and what else it can't be without;
// another key; and what changes it, the key itself where there is nothing else. The books have the
// accounts 6000 and 6001 with the ids 1 and 2.
struct Sample {
  std::string_view kind;
  std::string key = {};
  Words columns = {};
  std::string other_key = {};
  std::string change = {};
  std::vector<Words> before = {};  // commands for what it refers to
  bool keys_repeat = false;
};

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> kSamples = {
      {"accounts", "7000", {"FName=Cash", "FDC=1"}, "7001", "FHelperCode=C"},
      {"budgets", "RENT", {"FAccountID=1", "FYear=2024"}, "WAGES", "FAmount=12.0000"},
      {"check-types", "CHQ", {"FName=Cheques"}, "BILLS", "FName=Bills"},
      {"currencies", "USD", {"FName=Dollar", "FExchangeRate=0.9"}, "USN", "FFixRate=1"},
      {"exchange-rates",
       "CHF 1",
       {"FCurrencyID=2"},
       "CHF 2",
       "FExchangeRate=0.5",
       {{"add", "currencies", "CHF", "FName=Franc"}}},
      {"groups", "Receipts", {}, "Payments", "FDRange=1001"},
      {"imports", "JAN", {}, "FEB", "FName=February"},
      {"item-classes", "PROJ", {"FName=Projects"}, "JOBS", "FName=Jobs"},
      {"items", "SALES", {"FItemClassID=1", "FName=Sales"}, "SHOPS", "FHelpCode=s"},
      {"ledgers", "Costs", {"FAccountID=1"}, "Yields", "FAccountID=2"},
      {"notes", "Receipt", {"FType=Receipts"}, "Bill", "FType=Bills"},
      {"payment-terms", "N30", {"FName=Thirty days"}, "N60", "FStandDays=30"},
      {"settlement-accounts", "BANK", {"FName=Bank"}, "TILL", "FName=Till"},
      {"settlement-types", "CHQ", {"FName=Cheque"}, "BILL", "FName=Bill"},
      {"sub-message-types", "Sizes", {}, "Shapes", "FName=Sizes"},
      {"sub-messages",
       "red",
       {"FTypeID=1", "FName=Red"},
       "green",
       "FDay=30",
       {{"add", "sub-message-types", "Colours"}}},
      {"templates", "Rent", {"FReference=Rent"}, "Wages", "FReference=Wages", {}, true},
      {"unit-groups", "Lengths", {}, "Heights", "FName=Lengths"},
      {"units",
       "KG",
       {"FUnitGroupID=1", "FName=Kilogram"},
       "KILO",
       "FName=kilogramme",
       {{"add", "unit-groups", "Masses"}}},
      {"users", "ann", {"FRoles=reader"}, "o'hara", "FRoles=reader, poster"},
  };
  return kSamples;
}

Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

// A cell of JSON as the command line takes it.
std::string TextOf(const Json& cell) {
  return cell.is_string() ? cell.get<std::string>() : cell.dump();
}

// What a record has in the columns that callers write; others may follow from these.
Json Written(const server::MasterData& kind, const Json& row) {
  Json written;
  for (const WrittenColumn& column : WrittenColumns(kind)) written[column.name] = row[column.name];
  return written;
}

// As messages call a record.
std::string Called(const Sample& sample, const Json& row) {
  if (!row.contains("FNumber")) return sample.key;
  return TextOf(row["FNumber"]) + " (" + TextOf(row["FName"]) + ")";
}

class Records : public CliTest {
 protected:
  void Make() const {
    ASSERT_EQ(Run({"init", "--no-password", "--year", "2024"}).code, 0);
    ASSERT_EQ(Run({"user", "rita", "--roles", "reader", "--no-password"}).code, 0);
    for (const char* number : {"6000", "6001"}) {
      ASSERT_EQ(Run({"add", "accounts", number, "FName=Costs"}).code, 0);
    }
  }
  // Runs a case on a record of each kind; `check` gets the kind and the words "KIND KEY".
  template <class Check>
  void OnEachKind(Check check) const {
    Make();
    for (const Sample& sample : Samples()) {
      for (const Words& command : sample.before) ExpectDone(Run(command));
    }
    for (const server::MasterData* kind : RecordKinds()) {
      const std::string name(KindName(*kind));
      SCOPED_TRACE(name);
      const auto sample = std::ranges::find(Samples(), KindName(*kind), &Sample::kind);
      if (sample == Samples().end()) {
        ADD_FAILURE() << "there is no sample of " << name << " in " << __FILE__;
        continue;
      }
      check(*kind, *sample);
    }
    EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
  }
  RunResult Add(const Sample& sample) const {
    return Run(Words{"add", std::string(sample.kind), sample.key} + sample.columns);
  }
  void ExpectDone(const RunResult& result) const { EXPECT_EQ(result.code, 0) << result.err; }
  void ExpectRefused(const RunResult& result, const std::string& number) const {
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(result.err.starts_with("qdclgl: " + number + ": ")) << result.err;
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
  }
  void ExpectWrongUsage(const RunResult& result, const std::string& words) const {
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(words), std::string::npos) << result.err;
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
  }
  Json Shown(const Sample& sample, const std::string& key) const {
    const RunResult result = Run({"show", std::string(sample.kind), key, "--json"});
    EXPECT_EQ(result.code, 0) << result.err;
    return result.code == 0 ? ParseJson(result.out).at(0) : Json();
  }
  Json Shown(const Sample& sample) const { return Shown(sample, sample.key); }
  std::string All(const Sample& sample) const {
    return Run({"list", std::string(sample.kind), "--with-deleted", "--csv"}).out;
  }
};

TEST_P(Records, OfEachKindAreMadeWithWhatTheirColumnsGet) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    const RunResult added = Add(sample);
    ExpectDone(added);
    const Json row = Shown(sample);
    const std::string id = row[kind.description().id].dump();
    EXPECT_EQ(added.out,
              kind.Noun() + " " + Called(sample, row) + " is added, with id " + id + ".\n");
    EXPECT_EQ(row["FVersion"], 1);
    EXPECT_EQ(row[kind.description().key.column], sample.key);
    for (const std::string& column : sample.columns) {
      const std::size_t sign = column.find('=');
      EXPECT_EQ(TextOf(row[column.substr(0, sign)]), column.substr(sign + 1));
    }
    if (sample.keys_repeat) return;
    const std::string all = All(sample);
    const RunResult again = Add(sample);
    ExpectRefused(again, kind.description().key.column == "FNumber" ? "80044216" : "80044217");
    EXPECT_EQ(All(sample), all);
  });
}

TEST_P(Records, OfEachKindAreShownWithAllThatTheyHold) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    ExpectDone(Add(sample));
    const Json row = Shown(sample);
    std::set<std::string> keys;
    for (const auto& [key, value] : row.items()) keys.insert(key);
    std::set<std::string> columns;
    for (const server::Column& column : kind.CallersColumns()) columns.emplace(column.name);
    for (const server::RecordList& list : kind.description().lists) {
      if (!list.is_within_list) columns.emplace(list.key);
    }
    EXPECT_EQ(keys, columns);

    const std::string name(sample.kind);
    const std::string plain = Run({"show", name, sample.key}).out;
    for (const std::string& column : columns) {
      EXPECT_TRUE(row[column].is_array() || ("\n" + plain).find("\n" + column) != plain.npos)
          << column << plain;
    }
    const std::string id = row[kind.description().id].dump();
    EXPECT_EQ(Run({"show", name, "#" + id}).out, plain);
    EXPECT_EQ(Run({"show", name, sample.key, "#" + id}).out, plain + "\n" + plain);
    const std::string csv = Run({"show", name, sample.key, "--csv"}).out;
    EXPECT_EQ(std::ranges::count(csv.substr(0, csv.find('\n')), ','),
              static_cast<std::ptrdiff_t>(columns.size()) - 1);
    const RunResult some = Run({"show", name, "#30000", sample.key});
    EXPECT_EQ(some.code, 3);
    EXPECT_EQ(some.out, plain);
    EXPECT_TRUE(some.err.starts_with("qdclgl: 80044213: ")) << some.err;
    ExpectRefused(Run({"show", name, "nobody knows it"}), "80044213");
  });
}

TEST_P(Records, OfEachKindAreListedByEitherCommand) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    ExpectDone(Add(sample));
    const std::string name(sample.kind);
    for (const Words& options : {Words{}, Words{"--csv"}, Words{"--json"},
                                 Words{"--filter", std::string(kind.description().key.column) +
                                                       " = " + FilterText(sample.key)}}) {
      const std::string listed = Run(Words{"list", name} + options).out;
      EXPECT_NE(listed.find(sample.key), listed.npos) << listed;
      EXPECT_EQ(Run(Words{name} + options).out, listed);
    }
    EXPECT_EQ(ParseJson(Run({"list", name, "--json", "--filter", "FVersion < 0"}).out).size(), 0u);
  });
}

TEST_P(Records, OfEachKindAreChangedAndRenamed) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    ExpectDone(Add(sample));
    const std::string name(sample.kind);
    Json expected = Shown(sample);
    const std::size_t sign = sample.change.find('=');
    const std::string column = sample.change.substr(0, sign);
    ExpectDone(Run({"set", name, sample.key, sample.change}));
    const Json changed = Shown(sample);
    EXPECT_EQ(TextOf(changed[column]), sample.change.substr(sign + 1));
    expected[column] = changed[column];
    EXPECT_EQ(Written(kind, changed), Written(kind, expected)) << "nothing else";
    EXPECT_EQ(changed["FVersion"], 2);

    const std::string key_column(kind.description().key.column);
    ExpectDone(Run({"set", name, sample.key, key_column + "=" + sample.other_key}));
    EXPECT_EQ(Shown(sample, sample.other_key)["FVersion"], 3);
    ExpectRefused(Run({"show", name, sample.key}), "80044213");
  });
}

TEST_P(Records, OfEachKindTakeTheValuesThatAreShown) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    ExpectDone(Add(sample));
    Json row = Shown(sample);
    Words words = {"set", std::string(sample.kind), sample.key};
    for (const WrittenColumn& column : WrittenColumns(kind)) {
      words.push_back(std::string(column.name) + "=" + TextOf(row[column.name]));
    }
    ExpectDone(Run(words));
    const Json written = Shown(sample);
    row["FVersion"] = 2;
    if (row.contains("FModifyDate")) {
      EXPECT_GE(TextOf(written["FModifyDate"]), TextOf(row["FModifyDate"]));
      row["FModifyDate"] = written["FModifyDate"];
    }
    EXPECT_EQ(written, row);
  });
}

TEST_P(Records, OfEachKindRefuseValuesOfOtherTypes) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    ExpectDone(Add(sample));
    const std::string all = All(sample);
    const std::string name(sample.kind);
    for (const WrittenColumn& column : WrittenColumns(kind)) {
      if (column.list == nullptr && column.type == server::ColumnType::kText) continue;
      const std::string word = std::string(column.name) + "=1x";
      for (const char* command : {"add", "set"}) {
        ExpectWrongUsage(Run({command, name, sample.key, word}),
                         std::string(column.name) + ": \"1x\" is n");
      }
    }
    for (const server::Column& column : kind.CallersColumns()) {
      const std::vector<WrittenColumn> written = WrittenColumns(kind);
      if (std::ranges::find(written, column.name, &WrittenColumn::name) != written.end()) continue;
      ExpectWrongUsage(Run({"set", name, sample.key, std::string(column.name) + "=1"}),
                       std::string(column.name) + " can't be set");
    }
    ExpectWrongUsage(Run({"set", name, sample.key, "FWhatever=1"}),
                     "there is no column \"FWhatever\"");
    EXPECT_EQ(All(sample), all);
  });
}

TEST_P(Records, OfEachKindAreNeverMadeByAChange) {
  OnEachKind([&](const server::MasterData&, const Sample& sample) {
    const std::string all = All(sample);
    ExpectRefused(Run({"set", std::string(sample.kind), sample.key, sample.change}), "80044213");
    EXPECT_EQ(All(sample), all);
  });
}

TEST_P(Records, OfEachKindAreReadButNotWrittenByReaders) {
  OnEachKind([&](const server::MasterData&, const Sample& sample) {
    const std::string name(sample.kind);
    const Words rita = {"--user", "rita"};
    ExpectRefused(Run(Words{"add", name, sample.key} + sample.columns + rita), "80044202");
    ExpectDone(Add(sample));
    const std::string all = All(sample);
    ExpectRefused(Run(Words{"set", name, sample.key, sample.change} + rita), "80044202");
    ExpectRefused(Run(Words{"remove", name, sample.key, "--yes"} + rita), "80044202");
    EXPECT_EQ(All(sample), all);
    ExpectDone(Run(Words{"show", name, sample.key} + rita));
    ExpectDone(Run(Words{"list", name} + rita));
    EXPECT_EQ(Run({"show", name, sample.key, "--user", "nobody"}).code, 5);
  });
}

TEST_P(Records, OfEachKindAreRemovedWhenSomebodyAgrees) {
  OnEachKind([&](const server::MasterData& kind, const Sample& sample) {
    ExpectDone(Add(sample));
    const std::string name(sample.kind), all = All(sample);
    ExpectWrongUsage(Run({"remove", name, sample.key}), "--yes");
    const auto answered = [&](const std::string& answer) {
      std::istringstream answers(answer);
      std::ostringstream out, err;
      const int code = cli::Run({"remove", book, name, sample.key}, {out, err, false, &answers});
      return std::to_string(code) + " " + out.str() + err.str();
    };
    const Json row = Shown(sample);
    const std::string called = Called(sample, row);
    const std::string question =
        "Remove " + std::string(kind.description().noun) + " " + called + "? [y/N] ";
    EXPECT_EQ(answered("n\n"), "1 " + question + "Nothing is removed.\n");
    EXPECT_EQ(All(sample), all);
    EXPECT_EQ(answered("y\n"), "0 " + question + kind.Noun() + " " + called + " is removed.\n");
    ExpectRefused(Run({"show", name, sample.key}), "80044213");
    ExpectRefused(Run({"remove", name, sample.key, "--yes"}), "80044213");
    ExpectDone(Add(sample));
    const RunResult two = Run({"remove", name, "nobody knows it", sample.key, "--yes"});
    EXPECT_EQ(two.code, 3);
    EXPECT_EQ(two.out, kind.Noun() + " " + called + " is removed.\n");
    EXPECT_EQ(std::ranges::count(two.err, '\n'), 1) << two.err;
  });
}

// ---- What some kinds alone can show ----

TEST_P(Records, ItemsOfAClassAreListedAndWrittenWithItsFields) {
  Make();
  ExpectDone(Run(
      {"add", "item-classes", "CLIENT", "FName=Clients",
       R"(_PropDesc=[{"FPropID":"32767","FNewName":"City","FDataType":"200","FSearch":"1"}])"}));
  ExpectDone(Run({"add", "items", "1", "FItemClassID=1000", "FName=Ann", "F1000_101=Oslo"}));
  ExpectDone(Run({"add", "items", "2", "FItemClassID=1000", "FName=Bob"}));
  ExpectDone(Run({"add", "items", "3", "FItemClassID=3", "FName=Eve"}));
  ExpectDone(Run({"set", "items", "2", "F1000_101=Rome"}));
  EXPECT_EQ(Shown({.kind = "items"}, "2")["F1000_101"], "Rome");
  EXPECT_EQ(Run({"list", "items", "--class", "client", "--sort", "F1000_101 DESC"}).out,
            "Item ID  Item class ID  Number  Name  Full name  F1000_101\n"
            "      2           1000  2       Bob   Bob        Rome\n"
            "      1           1000  1       Ann   Ann        Oslo\n");
  const RunResult found =
      Run({"items", "--class", "#1000", "--filter", "F1000_101 = 'Oslo'", "--csv"});
  EXPECT_EQ(std::ranges::count(found.out, '\n'), 2) << found.out << found.err;
  ExpectRefused(Run({"list", "items", "--class", "nobody"}), "80044213");
  ExpectWrongUsage(Run({"list", "accounts", "--class", "client"}), "--class is for items");
  ExpectRefused(Run({"add", "items", "4", "FItemClassID=3", "FName=Kim", "F1000_101=x"}),
                "80044212");
}

TEST_P(Records, ThatOthersNeedAreMarkedDeletedAndStayToBeFound) {
  Make();
  ExpectDone(Run({"add", "currencies", "usd", "FName=Dollar"}));
  ExpectDone(Run({"add", "accounts", "1", "FName=Cash", "FCurrencyID=2"}));
  EXPECT_EQ(Run({"remove", "currencies", "usd", "--yes"}).out,
            "Currency USD (Dollar) is marked deleted.\n");
  const auto count = [&](const Words& options) {
    return ParseJson(Run(Words{"list", "currencies", "--json"} + options).out).size();
  };
  EXPECT_EQ(count({}), 1u);
  EXPECT_EQ(count({"--with-deleted"}), 2u);
  EXPECT_NE(Run({"show", "currencies", "usd"}).out.find("FDeleted       true\n"),
            std::string::npos);
}

TEST_P(Records, ShowTheRowsThatBelongToThem) {
  Make();
  const std::string items = R"([{"FItemClassID":1,"FItemClassNumber":"DEP"},{"FItemClassID":"2"}])";
  ExpectDone(Run({"add", "accounts", "1", "FName=Cash", "_Items=" + items}));
  const std::string plain = Run({"show", "accounts", "1"}).out;
  EXPECT_TRUE(plain.ends_with("\n\n_Items\nFItemClassID  FItemClassNumber  FItemClassName\n"
                              "           1  DEP               部门\n"
                              "           2  STAFF             职员\n"))
      << plain << "as the classes are called, whatever was sent";
  const Json row = ParseJson(Run({"show", "accounts", "1", "--json"}).out).at(0);
  EXPECT_EQ(row["_Items"].dump(),
            R"([{"FItemClassID":1,"FItemClassNumber":"DEP","FItemClassName":"部门"},)"
            R"({"FItemClassID":2,"FItemClassNumber":"STAFF","FItemClassName":"职员"}])");
  const std::string csv = Run({"show", "accounts", "1", "--csv"}).out;
  EXPECT_NE(csv.find(R"("[{""FItemClassID"":1,)"), csv.npos) << csv;

  ExpectDone(Run({"set", "accounts", "1", "FName=Till"}));
  EXPECT_EQ(Run({"show", "accounts", "1"}).out.substr(plain.find("\n\n")),
            plain.substr(plain.find("\n\n")))
      << "a change leaves them alone";
  ExpectDone(Run({"set", "accounts", "1", "_Items="}));
  EXPECT_EQ(Run({"show", "accounts", "1"}).out.find("_Items"), std::string::npos);
  ExpectWrongUsage(Run({"set", "accounts", "1", R"(_Items=[{"FItemClass":1}])"}),
                   "_Items: there is no column \"FItemClass\"; did you mean FItemClassID?");
  ExpectWrongUsage(Run({"set", "accounts", "1", R"(_Items=[{"FItemClassID":"x"}])"}),
                   "FItemClassID: \"x\" is not a whole number");
  ExpectWrongUsage(Run({"set", "accounts", "1", "_Items=[5]"}), "\"5\" is not a JSON object");
}

TEST_P(Records, TakeValuesOfEveryTypeAndFromFiles) {
  Make();
  const std::string file = folder.Write("message", "Two lines,\nand no more\n");
  ExpectDone(Run({"add", "accounts", "1", "FName=Cash", "FDC=-1", "fjournal=Yes", "FintRate=1.25",
                  "FLastIntDate=2024-02-29", "FSpecialType=-32768", "FMessage=@" + file,
                  "FHelperCode=@@home"}));
  Json row = ParseJson(Run({"show", "accounts", "1", "--json"}).out).at(0);
  EXPECT_EQ(row["FDC"], -1);
  EXPECT_EQ(row["FJournal"], true);
  EXPECT_EQ(row["FintRate"], 1.25);
  EXPECT_EQ(row["FLastIntDate"], "2024-02-29");
  EXPECT_EQ(row["FSpecialType"], -32768);
  EXPECT_EQ(row["FMessage"], "Two lines,\nand no more");
  EXPECT_EQ(row["FHelperCode"], "@home");
  ExpectDone(Run({"set", "accounts", "1", "FDC=", "FJournal=", "FintRate=", "FLastIntDate=",
                  "FSpecialType=", "FMessage=", "FHelperCode=", "FCurrencyID="}));
  const Json cleared = ParseJson(Run({"show", "accounts", "1", "--json"}).out).at(0);
  EXPECT_EQ(cleared["FDC"], 0);
  EXPECT_EQ(cleared["FJournal"], false);
  EXPECT_EQ(cleared["FintRate"], 0);
  EXPECT_EQ(cleared["FLastIntDate"], "");
  EXPECT_EQ(cleared["FMessage"], "");
  EXPECT_EQ(cleared["FHelperCode"], "");
  EXPECT_EQ(cleared["FCurrencyID"], 1) << "what stands for a value that is not given";

  ExpectWrongUsage(Run({"set", "accounts", "1", "FSpecialType=32768"}),
                   "FSpecialType: \"32768\" is not between -32768 and 32767");
  ExpectWrongUsage(Run({"set", "accounts", "1", "FLastIntDate=29.02.2024"}),
                   "FLastIntDate: \"29.02.2024\" is not a date; dates are written as yyyy-mm-dd");
  ExpectWrongUsage(Run({"set", "accounts", "1", "FName"}), "is not of the form column=value");
  ExpectWrongUsage(Run({"set", "accounts", "1", "FName=a", "fname=b"}),
                   "FName gets more than one value");
  EXPECT_EQ(Run({"set", "accounts", "1", "FMessage=@" + folder.Path("none")}).code, 6);
  EXPECT_EQ(Run({"set", "accounts", "1", "FMessage=@" + folder.Path("")}).code, 6) << "a folder";
  const std::string long_file = folder.Write("long", std::string(1'000'001, 'x'));
  ExpectRefused(Run({"set", "accounts", "1", "FMessage=@" + long_file}), "80044212");
}

TEST_P(Records, MisspeltWordsAreToldTheNearest) {
  Make();
  ExpectWrongUsage(Run({"show", "acounts", "1"}),
                   "there is no kind \"acounts\"; did you mean accounts? There are accounts, ");
  ExpectWrongUsage(Run({"list", "vuochers"}), "did you mean vouchers?");
  ExpectWrongUsage(Run({"list", "x"}), "there is no list \"x\"; there are accounts, audit, ");
  ExpectWrongUsage(Run({"set", "groups", "x", "name=y"}), "did you mean FName?");
}

TEST_P(Records, TheBooksCanComeFromTheEnvironment) {
  Make();
  ExpectDone(Run({"add", "groups", "Receipts"}));
  SetVariable("QDCLGL_BOOK", book);
  EXPECT_EQ(RunInProcess({"show", "groups", "Receipts"}).code, 0);
  EXPECT_EQ(RunInProcess({"show", book, "groups", "Receipts"}).code, 0);
  EXPECT_EQ(RunInProcess({"list", "groups"}).code, 0);
  EXPECT_EQ(RunInProcess({"list", book, "groups"}).code, 0);
  ExpectWrongUsage(RunInProcess({"show", "grups", "Receipts"}), "did you mean groups?");
  ExpectWrongUsage(RunInProcess({"show", book, "grups", "Receipts"}), "did you mean groups?");
  EXPECT_EQ(RunInProcess({"remove", "--all"}).out, "0 vouchers removed.\n");
  EXPECT_EQ(RunInProcess({"remove", book, "groups", "Receipts", "--yes"}).code, 0);
  UnsetVariable("QDCLGL_BOOK");
  ExpectWrongUsage(RunInProcess({"show", "groups", "Receipts"}), "no BOOK is given");
}

TEST_P(Records, TheDataOfANoteAreTheBytesOfAFileWhateverTheyAre) {
  Make();
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  bytes += "\n\r\n";
  const auto set = [&](const std::string& content) {
    return Run({"set", "notes", "Form", "FData=@" + folder.Write("form.bin", content)});
  };
  const auto kept = [&] {
    const auto note =
        ParseJson(Run({"list", "notes", "--json", "--filter", "FName = 'Form'"}).out).at(0);
    return TextOf(note["FDataKind"]) + " " + TextOf(note["FDataSize"]) + " " +
           TextOf(note["FDataHash"]);
  };
  ExpectDone(Run({"add", "notes", "Form"}));
  ExpectDone(set(bytes));
  EXPECT_EQ(kept(), "Byte array 259 " + server::Sha256Of(bytes));
  const std::string largest(16 * 1024 * 1024, '\xff');
  ExpectDone(set(largest));
  EXPECT_EQ(kept(), "Byte array 16777216 " + server::Sha256Of(largest));
  ExpectRefused(set(largest + "x"), "8004422D");
  EXPECT_EQ(kept(), "Byte array 16777216 " + server::Sha256Of(largest));
  ExpectDone(Run({"set", "notes", "Form", "FData=@@words"}));
  EXPECT_EQ(kept(), "String 6 " + server::Sha256Of("@words"));
  EXPECT_EQ(Run({"set", "notes", "Form", "FData=@" + folder.Path("none")}).code, 6);
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
}

TEST_P(Records, AKeyIsOneWordWhateverItHolds) {
  Make();
  for (const char* key : {"[a,b]", "-1", "#x", "{}", "a=b", "o'hara", "[]"}) {
    const RunResult added = Run({"add", "groups", key});
    EXPECT_TRUE(added.out.starts_with("Voucher group " + std::string(key) + " is added")) << key;
    EXPECT_EQ(Run({"remove", "groups", key, "--yes"}).out,
              "Voucher group " + std::string(key) + " is removed.\n");
  }
}

TEST_P(Records, CommandsTakeTheWordsThatTheyNeed) {
  Make();
  for (const Words& words :
       {Words{"show"}, Words{"show", "groups"}, Words{"add"}, Words{"add", "groups"},
        Words{"set", "groups"}, Words{"set", "groups", "x"}, Words{"remove", "groups"},
        Words{"remove"}, Words{"list"}, Words{"list", "groups", "users"},
        Words{"remove", "groups", "x", "--all"}}) {
    ExpectWrongUsage(Run(words), " take");
  }
}

TEST_P(Records, OfTwoWhoChangeOneAtOnceNobodyLosesAnything) {
  constexpr int kRounds = 4, kPeople = 4;
  Make();
  ExpectDone(Run({"add", "currencies", "USD", "FName=Dollar"}));
  server::Connections::OfThisThread().CloseAll();
  int saved = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<Process> people;
    for (int person = 0; person < kPeople; ++person) {
      const std::string change = person % 2 == 0 ? "FName=" : "FScale=";
      const std::string file = folder.Path(std::to_string(person));
      people.push_back(Start(
          {"set", book, "currencies", "USD", change + std::to_string(round * kPeople + person + 3)},
          file, file));
    }
    for (int person = 0; person < kPeople; ++person) {
      const int code = people[static_cast<std::size_t>(person)].Wait();
      const std::string said = ReadFile(folder.Path(std::to_string(person)));
      if (code == 0) ++saved;
      else EXPECT_TRUE(said.starts_with("qdclgl: 80044214: Currency USD ")) << said;
    }
  }
  EXPECT_GE(saved, kRounds);
  EXPECT_EQ(ParseJson(Run({"show", "currencies", "USD", "--json"}).out).at(0)["FVersion"],
            saved + 1);
  // Had a save gone by a row of before another one, it would have written that one's column too.
  for (const auto& deed : ParseJson(
           Run({"audit", "--json", "--filter", "FSubject = 'Currency' AND FAction = 'Update'"})
               .out)) {
    EXPECT_EQ(ParseJson(deed["FChanges"].get<std::string>()).size(), 2u) << deed;
  }
}

TEST_P(Records, ThatTwoHaveReadAreNotOverwrittenByTheSecond) {
  Make();
  ExpectDone(Run({"add", "currencies", "USD", "FName=Dollar"}));
  const Login login{book, "administrator"};
  const cli::Records records(KindNamed("currencies"), login.Open());
  const Ref<Dictionary> first = records.Find("usd"), second = records.Find("USD");
  first->Put("FName", Variant("first"));
  second->Put("FScale", Variant(Long{3}));
  records.Save(first, records.IdOf(*first));
  EXPECT_THROW(records.Save(second, records.IdOf(*second)), Error);
  const Json row = ParseJson(Run({"show", "currencies", "USD", "--json"}).out).at(0);
  EXPECT_EQ(row["FName"], "first");
  EXPECT_EQ(row["FScale"], 2);
}

QDCLGL_CLI_TEST(Records);

TEST(Kinds, AreTheServersWithTheColumnsThatCallersSee) {
  const std::string kinds = RunInProcess({"kinds", "--csv"}).out;
  for (const server::MasterData* kind : RecordKinds()) {
    const std::string name(KindName(*kind));
    EXPECT_NE(kinds.find("\n" + name + ","), kinds.npos) << kinds;
    const std::string columns = RunInProcess({"kinds", name, "--csv"}).out;
    for (const server::Column& column : kind->CallersColumns()) {
      EXPECT_NE(columns.find("\n" + std::string(column.name) + ","), columns.npos) << columns;
    }
  }
  EXPECT_EQ(RunInProcess({"kinds", "users"}).out, "Column     Value         Written by\n"
                                                  "FUserID    whole number\n"
                                                  "FVersion   whole number\n"
                                                  "FName      text          add, set\n"
                                                  "FRoles     text          add, set\n"
                                                  "FDisabled  yes or no     add, set\n");
  EXPECT_EQ(RunInProcess({"kinds", "userz"}).code, 2);
}

}  // namespace
}  // namespace qdclgl::cli::testing
