// Items from files.
#include <gtest/gtest.h>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class ItemImport : public CliTest {
 protected:
  // Books whose clients have a limit, a whole number that must be there, and a day.
  void InitWithFields() const {
    Init();
    ASSERT_EQ(
        Run({"add", "item-classes", "CLIENT", "FName=Clients", "FName_en=Clients",
             R"(_PropDesc=[{"FPropID":"32767","FNewName":"Limit","FDataType":3,"FSaveRule":"required"},)"
             R"({"FPropID":"32767","FNewName":"Since","FDataType":7},)"
             R"({"FPropID":"32767","FNewName":"Town","FDataType":200,"FPrecision":5}])"})
            .err,
        "");
  }
  RunResult ImportItems(const std::string& text,
                        const std::vector<std::string>& options = {}) const {
    const std::string path = folder.Write("items.csv", text);
    std::vector<std::string> words = {"import", "--items", path, "--class", "clients"};
    words.insert(words.end(), options.begin(), options.end());
    RunResult result = Run(words);
    for (std::size_t at; (at = result.err.find(path)) != result.err.npos;) {
      result.err.replace(at, path.size(), "items.csv");
    }
    return result;
  }
  std::string Items() const { return Run({"list", "items", "--class", "clients", "--csv"}).out; }
  // The cells of an item that the list has under these columns.
  std::string Cells(const std::string& number) const {
    std::string found;
    const std::string text = Run({"show", "items", number}).out;
    for (const std::string column :
         {"FName ", "FFullNumber ", "FRemark ", "F1000_101 ", "F1000_102 ", "F1000_103 "}) {
      const std::size_t at = text.find("\n" + column);
      if (at == text.npos) continue;
      std::string cell = text.substr(at + 1, text.find('\n', at + 1) - at - 1);
      cell.erase(0, std::min(cell.find_first_not_of(' ', column.size()), cell.size()));
      found += cell + ";";
    }
    return found;
  }
};

TEST_P(ItemImport, StoresFieldsUnderNamesOrColumnsAndTrees) {
  InitWithFields();
  const RunResult result = ImportItems("number,name,parent,FRemark,Limit,since,F1000_103\n"
                                       "n,North,,,1,,\n"
                                       "n1,Ann,N,\"a, b\",100,2024-02-29,Oslo\n"
                                       "n2,Bert,n1,,-5,,\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, "items: 3 stored, 0 there already, 0 left out\n");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(Cells("N1"), "Ann;N.N1;a, b;100;2024-02-29;Oslo;");
  EXPECT_EQ(Cells("N2"), "Bert;N.N1.N2;-5;");
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
}

TEST_P(ItemImport, ReportsWhatIsWrongWhereItStands) {
  InitWithFields();
  const RunResult result = ImportItems("number,name,parent,Limit,Since,Town\n"
                                       ",Nobody,,1,,\n"
                                       "a,,,1,,\n"
                                       "b,Bert,,,,\n"
                                       "c,Carl,,1.5,,\n"
                                       "d,Dora,,1,2024-02-30,\n"
                                       "e,Emil,,1,,Bergen\n"
                                       "f,Fay,zz,1,,\n"
                                       "g,Good,,1,,\n"
                                       "g,Again,,1,,\n"
                                       "h,Hal,,1\n");
  EXPECT_EQ(result.err,
            "items.csv:2:1: the item has no number\n"
            "items.csv:3:3: the item has no name\n"
            "items.csv:4:9: field \"Limit\" is missing\n"
            "items.csv:5:9: \"1.5\" is not a whole number\n"
            "items.csv:6:11: \"2024-02-30\" is not a day of the calendar\n"
            "items.csv:7:12: \"Bergen\" has more than 5 characters\n"
            "items.csv:11:1: the row has 4 cells under 6 headings\n"
            "items.csv:8:7: there is no item \"zz\" of item class CLIENT; an item stands behind "
            "the one above it\n");
  EXPECT_EQ(result.out, "items: 1 stored, 1 there already, 8 left out\n");
  EXPECT_EQ(result.code, 3);
}

TEST_P(ItemImport, LeavesKnownItemsAloneOrUpdatesThem) {
  InitWithFields();
  ASSERT_EQ(ImportItems("number,name,Limit\na,Ann,1\nb,Bert,2\n").code, 0);
  const std::string changed = "number,name,Limit,Town\na,Anna,1,Oslo\nb,Bert,2,\nc,Carl,3,\n";
  EXPECT_EQ(ImportItems(changed).out, "items: 1 stored, 2 there already, 0 left out\n");
  EXPECT_EQ(Cells("A"), "Ann;A;1;");
  const std::string trail = Run({"audit", "--csv"}).out;
  EXPECT_EQ(ImportItems(changed, {"--update"}).out,
            "items: 0 stored, 1 changed, 2 there already, 0 left out\n");
  EXPECT_EQ(Cells("A"), "Anna;A;1;Oslo;");
  // Once more changes nothing, and nothing is told of it.
  const std::string behind = Run({"audit", "--filter", "FSubject = 'Item'", "--csv"}).out;
  EXPECT_EQ(ImportItems(changed, {"--update"}).out,
            "items: 0 stored, 0 changed, 3 there already, 0 left out\n");
  EXPECT_EQ(Run({"audit", "--filter", "FSubject = 'Item'", "--csv"}).out, behind);
}

TEST_P(ItemImport, TriesEverythingAndStoresNothing) {
  InitWithFields();
  const std::string items = Items();
  const std::string accounts = Run({"accounts", "--csv"}).out;
  std::string rows = "number,name,Limit,parent\nroot,Root,1,\n";
  for (int i = 0; i < 1100; ++i) {
    rows += "i" + std::to_string(i) + ",Item," + std::to_string(i + 1) + ",root\n";
  }
  const std::string chart =
      folder.Write("more.csv", "number,name,dc,items\n3000,Debtors,1,CLIENT\n");
  const std::string journal =
      folder.Write("j.csv", "voucher,date,account,debit,credit,CLIENT\n"
                            "a,2024-01-02,3000,5,,i7\na,2024-01-02,1000,,5,\n"
                            "b,2024-01-02,3000,5,,zz\nb,2024-01-02,1000,,5,\n");
  const RunResult tried = ImportItems(
      rows, {"--dry-run", "--accounts", chart, "--journal", journal, "--check-all", "--post-all"});
  EXPECT_EQ(tried.out, "items: 1101 stored, 0 there already, 0 left out\n"
                       "accounts: 1 stored, 0 there already, 0 left out\n"
                       "vouchers: 1 stored, 0 passed over, 1 left out\n"
                       "1 voucher checked.\n1 voucher posted.\n"
                       "That is what an import would do; nothing is stored.\n");
  EXPECT_EQ(tried.err, journal + ":4:22: there is no item \"zz\" of item class CLIENT\n");
  EXPECT_EQ(tried.code, 3);
  EXPECT_EQ(Items(), items);
  EXPECT_EQ(Run({"accounts", "--csv"}).out, accounts);
  EXPECT_EQ(Run({"vouchers", "--csv"}).out.find("\n1,"), std::string::npos);
  EXPECT_EQ(Run({"balance", "--csv"}).out, "account,debit,credit,balance\n");
}

TEST_P(ItemImport, TellsWrongUses) {
  Init();
  const std::string file = folder.Write("i.csv", "number,name\n");
  EXPECT_EQ(Run({"import", "--items", file}).err,
            "qdclgl: --items and --class go together; see qdclgl help import\n");
  EXPECT_NE(Run({"import", "--items", file, "--class", "custommers"})
                .err.find("there is no item class \"custommers\"; did you mean CUSTOMER?"),
            std::string::npos);
  EXPECT_EQ(Run({"import", "--update", "--post-all"}).err,
            "qdclgl: --update goes with --items; see qdclgl help import\n");
  EXPECT_EQ(Run({"import", "--items", file + "x", "--class", "customers"}).code, 6);
}

QDCLGL_CLI_TEST(ItemImport);

}  // namespace
}  // namespace qdclgl::cli::testing
