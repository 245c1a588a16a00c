// Vouchers in an editor.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "qdclgl/cli/program.h"
#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

// The editor is a script that gets the text's file.
class Edit : public CliTest {
 protected:
  ~Edit() override {
    UnsetVariable("VISUAL");
    UnsetVariable("EDITOR");
  }
  void MakeVoucher() const {
    Init();
    ASSERT_EQ(ImportRows("a,2024-01-05,1000,5,\na,2024-01-05,1001,,5\n").code, 0);
  }
  // What is run in place of an editor: a line of shell for each time that it is opened. What it
  // was opened with is kept beside the text.
  void UseEditor(const std::vector<std::string>& times) const {
    std::string script = "n=$(cat " + folder.Path("n") + " 2>/dev/null || echo 0); n=$((n + 1))\n" +
                         "echo $n >" + folder.Path("n") + "\ncp \"$1\" " + folder.Path("seen") +
                         "$n\ncase $n in\n";
    for (std::size_t i = 0; i < times.size(); ++i) {
      script += std::to_string(i + 1) + ") " + times[i] + " ;;\n";
    }
    folder.Write("editor.sh", script + "esac\n");
    SetVariable("VISUAL", "sh " + folder.Path("editor.sh"));
  }
  std::string Seen(int time) const { return ReadFile(folder.Path("seen" + std::to_string(time))); }
  std::string Voucher() const { return Run({"voucher", "1", "--json"}).out; }
  // The text that an error names is there, and goes away.
  static std::string Kept(const std::string& err) {
    const std::string mark = "; the text is kept in ";
    const std::size_t at = err.find(mark);
    if (at == err.npos) return "nothing is kept: " + err;
    const std::string path = err.substr(at + mark.size(), err.size() - at - mark.size() - 1);
    const std::string text = ReadFile(path);
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
    return text;
  }
};

constexpr const char* kHeadings =
    "voucher,date,account,debit,credit,group,number,explanation,voucher_reference,"
    "voucher_explanation\n";

TEST_P(Edit, SavesWhatTheTextSays) {
  MakeVoucher();
  UseEditor({R"(sed -i -e 's/1000,5.0000/1000,7.5/' -e 's/1001,,5.0000/1001,,7/' "$1"; )"
             R"(echo '2024/1 General 1,2024-01-05,1002,,0.5,General,1,Tea,a,' >>"$1")"});
  const RunResult saved = Run({"edit", "1"});
  EXPECT_EQ(saved.err, "");
  EXPECT_EQ(saved.out, "Voucher 1 is saved.\n");
  EXPECT_EQ(saved.code, 0);
  const std::string seen = Seen(1);
  EXPECT_TRUE(seen.starts_with("# Voucher 2024/1 General 1\n#")) << seen;
  EXPECT_EQ(seen.substr(seen.find("\nvoucher,") + 1),
            kHeadings + std::string("2024/1 General 1,2024-01-05,1000,5.0000,,General,1,,a,\n"
                                    "2024/1 General 1,2024-01-05,1001,,5.0000,General,1,,a,\n"));
  EXPECT_EQ(Run({"export", "--journal", "-"}).out.find("1001,,7.0000") != std::string::npos, true);
  EXPECT_NE(Run({"vouchers", "--csv"}).out.find(",a,"), std::string::npos);
  EXPECT_EQ(Run({"vouchers", "--filter", "FReference = 'a' AND FEntryCount = 3", "--csv"}).out,
            Run({"vouchers", "--csv"}).out);
  EXPECT_EQ(Run({"doctor"}).out, "The books are in order.\n");
}

TEST_P(Edit, OfAnUnchangedTextSavesNothing) {
  MakeVoucher();
  UseEditor({"true"});
  const std::string before = Voucher();
  EXPECT_EQ(Run({"edit", "1"}).out, "Nothing is changed.\n");
  EXPECT_EQ(Voucher(), before);
}

TEST_P(Edit, ShowsWhatIsWrongBesideTheLineUntilItIsRight) {
  MakeVoucher();
  UseEditor({R"(sed -i 's/,1000,5.0000/,999,5.0000/' "$1")",
             R"(sed -i -e 's/,999,/,1000,/' -e 's/,,5.0000/,,6/' "$1")",
             R"(sed -i -e 's/,,6,/,,5,/' -e 's/General,1,,a/General,1,Till,a/' "$1")"});
  const RunResult saved = Run({"edit", "1"});
  EXPECT_EQ(saved.err, "");
  EXPECT_EQ(saved.out, "Voucher 1 is saved.\n");
  EXPECT_NE(
      Seen(2).find(",999,5.0000,,General,1,,a,\n#   ^ column 29: there is no account \"999\"\n"),
      std::string::npos)
      << Seen(2);
  EXPECT_EQ(Seen(3).find("999"), std::string::npos) << Seen(3);
  EXPECT_NE(Seen(3).find("\n#   ^ column 1: 80044221: "), std::string::npos) << Seen(3);
  EXPECT_NE(Voucher().find("\"Till\""), std::string::npos);
}

TEST_P(Edit, KeepsTheTextOfWhoGivesUp) {
  MakeVoucher();
  UseEditor({R"(sed -i 's/,1000,5.0000/,999,5.0000/' "$1")", "true"});
  const std::string before = Voucher();
  const RunResult given_up = Run({"edit", "1"});
  EXPECT_EQ(given_up.code, 1);
  EXPECT_EQ(given_up.out, "");
  EXPECT_TRUE(given_up.err.starts_with("qdclgl: the voucher is not saved; the text is kept in "));
  EXPECT_NE(Kept(given_up.err).find(",999,5.0000"), std::string::npos);
  EXPECT_EQ(Voucher(), before);

  UseEditor({});
  SetVariable("VISUAL", "false");
  const RunResult failed = Run({"edit", "1"});
  EXPECT_EQ(failed.code, 1);
  EXPECT_NE(Kept(failed.err).find("5.0000"), std::string::npos);
}

TEST_P(Edit, TakesNobodysChangesAway) {
  MakeVoucher();
  const std::string other = std::string("VISUAL= EDITOR=\"sed -i s/5.0000/7.0000/\" ") +
                            QDCLGL_PROGRAM + " edit '" + book + "' 1 >/dev/null";
  UseEditor({other + R"(; sed -i 's/5.0000/9.0000/' "$1")"});
  const RunResult refused = Run({"edit", "1"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_TRUE(refused.err.starts_with("qdclgl: 80044214: ")) << refused.err;
  EXPECT_NE(Kept(refused.err).find("9.0000"), std::string::npos);
  EXPECT_NE(Voucher().find("\"7.0000\""), std::string::npos);
}

TEST_P(Edit, ANewVoucherIsWrittenInTheEditorOnATerminal) {
  Init();
  UseEditor(
      {R"(sed -i -e '0,/,,,,General/s//,1000,3,,General/' -e 's/,,,,General/,1001,,3,General/' "$1")",
       "true"});
  const auto run = [&] {
    std::istringstream answers;
    std::ostringstream out, err;
    const int code =
        qdclgl::cli::Run({"new", book, "--date", "2024-01-09"}, {out, err, false, &answers});
    return std::to_string(code) + " " + out.str() + err.str();
  };
  EXPECT_EQ(run(), "0 Voucher 1 is made: 2024/1 General 1, 2024-01-09, 3.00.\n");
  EXPECT_EQ(run(), "0 No voucher is made.\n");
  EXPECT_NE(Voucher().find("\"FReference\": \"\""), std::string::npos);
  EXPECT_EQ(Run({"new"}).code, 2);
}

TEST_P(Edit, TellsWrongUses) {
  MakeVoucher();
  UseEditor({});
  EXPECT_EQ(Run({"edit"}).err, "qdclgl: edit takes one ID; see qdclgl help edit\n");
  EXPECT_EQ(Run({"edit", "1", "2"}).code, 2);
  EXPECT_EQ(Run({"edit", "7"}).err, "qdclgl: 80044213: There is no voucher with the id 7.\n");
}

QDCLGL_CLI_TEST(Edit);

}  // namespace
}  // namespace qdclgl::cli::testing
