// Journals in the forms of other programs: found in the file, or kept under a name.
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

class FormatsCommand : public CliTest {
 protected:
  void Init() const {
    CliTest::Keep("2024", "1000,Cash,1,asset\n1900,Open,0,asset\n4000,Sales,-1,income\n", "");
  }
  // What an import of the file says, with the file's name left out.
  std::string Imported(const std::string& text, const std::string& format) const {
    const std::string file = folder.Write("foreign.txt", text);
    std::string said = Said({"import", "--journal", file, "--format", format});
    for (std::size_t at; (at = said.find(file)) != std::string::npos;) {
      said.replace(at, file.size(), "FILE");
    }
    return said;
  }
  std::string Balances() const {
    EXPECT_EQ(Run({"import", "--post-all"}).code, 0);
    return Run({"balance", "--csv"}).out;
  }
};

constexpr const char* kStored = "vouchers: 2 stored as import 1, 0 passed over, 0 left out\n";
constexpr const char* kBalances =
    "account,debit,credit,balance\n"
    "1000,1234.5000,30.2500,1204.2500\n4000,30.2500,1234.5000,-1204.2500\n";

TEST_P(FormatsCommand, SemicolonsDecimalCommasAndDaysFirstAreFound) {
  Init();
  EXPECT_EQ(Imported("Belegnummer;Belegdatum;Konto;Soll;Haben;Buchungstext\n"
                     "1;5.1.2024;1000;1.234,50;;Verkauf\n1;5.1.2024;4000;;1.234,50;Verkauf\n"
                     "2;17.01.2024;4000;30,25;0,00;Retoure\n2;17.01.2024;1000;0,00;30,25;Retoure\n",
                     "auto"),
            std::string("0 FILE: columns separated by a semicolon, decimals behind a comma, dates "
                        "dd.mm.yyyy\n") +
                kStored);
  EXPECT_EQ(Balances(), kBalances);
}

TEST_P(FormatsCommand, QuotedThousandsAndMonthsFirstAreFound) {
  Init();
  EXPECT_EQ(Imported("Journal,Date,Account Number,Debit,Credit,Memo\r\n"
                     "1,01/05/2024,1000,\"1,234.50\",,\"Sale, shop\"\r\n"
                     "1,01/05/2024,4000,,\"1,234.50\",\"Sale, shop\"\r\n"
                     "2,01/17/2024,4000,30.25,,Return\r\n2,01/17/2024,1000,,30.25,Return\r\n",
                     "auto"),
            std::string("0 FILE: columns separated by a comma, decimals behind a point, dates "
                        "mm/dd/yyyy\n") +
                kStored);
  EXPECT_EQ(Balances(), kBalances);
}

TEST_P(FormatsCommand, ARowWithTwoAccountsIsAVoucher) {
  Init();
  const std::string rows = "Datum\tSollkonto\tHabenkonto\tBetrag\tText\tKST\n"
                           "05.01.2024\t1000\t4000\t1.234,50\tVerkauf\tA\n"
                           "05.01.2024\t1000\t4000\t30,25-\tRetoure\tB\n";
  const std::string found =
      "FILE: columns separated by a tab, decimals behind a comma, dates dd.mm.yyyy\n";
  EXPECT_EQ(Imported(rows, "auto"), "0 " + found + kStored);
  EXPECT_EQ(Imported(rows, "auto").substr(0, 2), "3 ") << "they are known again";
  EXPECT_EQ(Run({"vouchers", "--csv", "--filter", "FReference = 'row 2024-01-05 2'"}).out.empty(),
            false);
  EXPECT_EQ(Balances(), kBalances);
}

TEST_P(FormatsCommand, ABanksFileIsReadByAFormatThatIsKept) {
  Init();
  EXPECT_EQ(Said({"formats"}),
            "0 No formats are kept; qdclgl import --format auto finds out what a file is like.\n");
  EXPECT_EQ(Said({"formats", "add", "bank", "separator=;", "decimal=comma", "dates=yyyymmdd",
                  "date=Valuta", "explanation=Zweck", "amount=Betrag", "debit_account==1000",
                  "credit_account==4000"}),
            "0 Format bank is kept.\n");
  EXPECT_EQ(Imported("\xEF\xBB\xBFIBAN;Valuta;Zweck;Betrag;Saldo\n"
                     "X1;20240105;\"Kunde; A\";+1234,50;9\nX1;20240105;Kunde B;-30,25;8\n",
                     "bank"),
            std::string("0 FILE: columns separated by a semicolon, decimals behind a comma, dates "
                        "yyyymmdd\n") +
                kStored);
  EXPECT_EQ(Balances(), kBalances);
  EXPECT_EQ(Said({"formats", "show", "bank"}),
            "0 separator=semicolon\ndecimal=comma\ndates=yyyymmdd\namount=Betrag\n"
            "credit_account==4000\ndate=Valuta\ndebit_account==1000\nexplanation=Zweck\n");
  EXPECT_EQ(Run({"formats", "--csv"}).out,
            "FName,FFormat\nbank,separator=semicolon decimal=comma dates=yyyymmdd amount=Betrag "
            "credit_account==4000 date=Valuta debit_account==1000 explanation=Zweck\n");
  EXPECT_EQ(Said({"formats", "remove", "bank"}), "0 Format bank is removed.\n");
  EXPECT_EQ(Run({"formats", "--csv"}).out, "FName,FFormat\n");
}

TEST_P(FormatsCommand, SignedAmountsStandOnTheSideOfTheirSign) {
  Init();
  EXPECT_EQ(Imported("Voucher|Date|Account|Amount|Description\n"
                     "s1|2024/1/5|1000|1'234.50|Sale\ns1|2024/1/5|4000|(1'234.50)|Sale\n"
                     "s2|2024/1/6|4000|30.25|Return\ns2|2024/1/6|1000|-30.25|Return\n",
                     "auto"),
            std::string("0 FILE: columns separated by a bar, decimals behind a point, dates "
                        "yyyy/mm/dd\n") +
                kStored);
  EXPECT_EQ(Balances(), kBalances);
}

TEST_P(FormatsCommand, WhatIsWrongIsReportedWhereItStandsInTheFile) {
  Init();
  EXPECT_EQ(Imported("Datum;Sollkonto;Habenkonto;Betrag\n"
                     "05.01.2024;1000;4000;1.5\n06.01.2024;1000;9999;2,50\n"
                     "31.02.2024;1000;4000;2,50\n07.01.2024;1000\n08.01.2024;1000;4000;1,00\n",
                     "auto"),
            "3 FILE: columns separated by a semicolon, decimals behind a comma, dates dd.mm.yyyy\n"
            "vouchers: 1 stored as import 1, 0 passed over, 4 left out\n"
            "FILE:2:22: \"1.5\" is not an amount; decimals stand behind a comma\n"
            "FILE:4:1: \"31.02.2024\" is not a date; dates are written as dd.mm.yyyy\n"
            "FILE:5:1: the row has 2 cells under 4 headings\n"
            "FILE:3:17: there is no account \"9999\"\n");
}

TEST_P(FormatsCommand, WhatCanNotBeMeantIsTold) {
  Init();
  EXPECT_EQ(Imported("Date,Debit account,Credit account,Amount\n01/02/2024,1000,4000,1\n", "auto"),
            "2 qdclgl: FILE: dates such as \"01/02/2024\" can be read in two ways; keep a format "
            "with dates=dd/mm/yyyy or dates=mm/dd/yyyy; see qdclgl help import\n");
  EXPECT_EQ(Imported("a\n", "bnak"),
            "2 qdclgl: there is no format \"bnak\"; there are auto; see qdclgl help import\n");
  EXPECT_EQ(Said({"import", "--check-all", "--format", "auto"}),
            "2 qdclgl: --format goes with --journal; see qdclgl help import\n");
  EXPECT_EQ(Said({"formats", "add", "bank"}),
            "2 qdclgl: formats takes add NAME COLUMN=HEADING..., show NAME or remove NAME; see "
            "qdclgl help formats\n");
  EXPECT_EQ(Said({"formats", "add", "bank", "decimal=;"}),
            "2 qdclgl: decimal is one of point, comma, not \";\"; see qdclgl help formats\n");
  EXPECT_EQ(Said({"formats", "add", "bank", "dates=d.m.y"}),
            "2 qdclgl: dates is a form such as dd.mm.yyyy, mm/dd/yyyy or yyyymmdd, not \"d.m.y\"; "
            "see qdclgl help formats\n");
  EXPECT_EQ(Said({"formats", "add", "bank", "date"}),
            "2 qdclgl: \"date\" is not of the form column=heading; see qdclgl help formats\n");
  EXPECT_EQ(Said({"formats", "add", "bank", "dat=Datum"}).substr(0, 64),
            "2 qdclgl: there is no column \"dat\"; did you mean date? There are");
  ASSERT_EQ(Run({"formats", "add", "bank", "date=Valuta"}).code, 0);
  EXPECT_EQ(Imported("Valuda;Betrag\n20240105;1\n", "bank"),
            "3 FILE: columns separated by a semicolon, decimals behind a point, dates yyyy-mm-dd\n"
            "vouchers: 0 stored, 0 passed over, 1 left out\n"
            "FILE:1:1: there is no column \"Valuta\"; did you mean Valuda? There are Valuda, "
            "Betrag\n");
}

QDCLGL_CLI_TEST(FormatsCommand);

}  // namespace
}  // namespace qdclgl::cli::testing
