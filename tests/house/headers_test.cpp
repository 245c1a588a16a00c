// What a program sees of the library's headers: which there are, which macros they leave behind,
// and what the compiler says to a program that gets something wrong.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = QDCLGL_SOURCE_DIR;

struct Compiled {
  int status = 0;
  std::string output;

  // How many errors the compiler reported.
  std::size_t errors() const {
    const std::regex error(R"((^|\n)[^\n]*error: )");
    return static_cast<std::size_t>(std::distance(
        std::sregex_iterator(output.begin(), output.end(), error), std::sregex_iterator()));
  }
};

// Runs the compiler on a file without writing anything.
Compiled Compile(const fs::path& file, const std::string& options) {
  const std::string command = std::string(QDCLGL_COMPILER) + " -x c++ -Wall -Wextra -Wpedantic " +
                              options + " -I '" + kRoot.string() + "' '" + file.string() + "' 2>&1";
  Compiled compiled;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("can't run " + command);
  std::array<char, 4096> part;
  while (const std::size_t read = std::fread(part.data(), 1, part.size(), pipe)) {
    compiled.output.append(part.data(), read);
  }
  compiled.status = pclose(pipe);
  return compiled;
}

Compiled CompileText(const std::string& text, const std::string& options) {
  const fs::path file =
      fs::path(testing::TempDir()) /
      ("qdclgl_" + std::to_string(testing::UnitTest::GetInstance()->random_seed()) +
       testing::UnitTest::GetInstance()->current_test_info()->name() + ".cpp");
  std::ofstream(file) << text;
  Compiled compiled = Compile(file, options);
  fs::remove(file);
  return compiled;
}

// The files of ours that the umbrella header reaches, itself included.
std::set<std::string> PublicHeaders() {
  std::set<std::string> headers{"qdclgl/qdclgl.h"};
  std::vector<std::string> unread(headers.begin(), headers.end());
  while (!unread.empty()) {
    std::ifstream file(kRoot / unread.back());
    unread.pop_back();
    for (std::string line; std::getline(file, line);) {
      std::smatch name;
      if (std::regex_match(line, name, std::regex("#include \"(qdclgl/.*)\"")) &&
          headers.insert(name[1]).second) {
        unread.push_back(name[1]);
      }
    }
  }
  return headers;
}

TEST(PublicHeaders, AreTheClassesAndTheFrameBelowThem) {
  const std::set<std::string> headers = PublicHeaders();
  EXPECT_GT(headers.size(), 40u);
  for (const char* inside : {"frame/vocabulary/text.h", "frame/platform/thread_own.h",
                             "frame/containers/criterion.h", "frame/session/registry.h"}) {
    EXPECT_TRUE(fs::exists(kRoot / "qdclgl" / inside)) << inside;
    EXPECT_FALSE(headers.contains(std::string("qdclgl/") + inside))
        << inside << " is not for users";
  }
  for (const std::string& header : headers) {
    EXPECT_FALSE(header.starts_with("qdclgl/server/") || header.starts_with("qdclgl/cli/") ||
                 header.starts_with("qdclgl/automation/"))
        << header;
  }
}

TEST(PublicHeaders, EachCompilesByItself) {
  for (const std::string& header : PublicHeaders()) {
    const Compiled compiled =
        CompileText("#include \"" + header + "\"\n", "-std=c++20 -fsyntax-only -Werror");
    EXPECT_EQ(compiled.status, 0) << header << "\n" << compiled.output;
  }
}

// What users write; all other macros of ours are for the library alone.
const std::set<std::string> kUserMacros = {
    "QD_MEMBERS",       "QD_BASE_MEMBERS",  "QD_DEFINE_MEMBERS", "QD_METHOD",
    "QD_OVERRIDE",      "QD_FIELD",         "QD_PROPERTY",       "QD_INDEXED",
    "QD_VARIABLE",      "QD_INHERITED",     "QD_INHERITED_AS",   "QD_VERSION",
    "QD_VERSION_MAJOR", "QD_VERSION_MINOR", "QD_VERSION_PATCH"};

// Those that stand defined behind the given text.
std::set<std::string> MacrosBehind(const std::string& text) {
  const Compiled compiled = CompileText(text, "-std=c++20 -E -dM");
  EXPECT_EQ(compiled.status, 0) << compiled.output;
  std::set<std::string> macros;
  std::istringstream lines(compiled.output);
  for (std::string line; std::getline(lines, line);) {
    std::smatch name;
    if (std::regex_search(line, name, std::regex(R"(^#define (\w+))"))) macros.insert(name[1]);
  }
  return macros;
}

TEST(PublicHeaders, LeaveNoMacroBehindButTheirOwn) {
  std::string standard;
  std::set<std::string> includes;
  for (const std::string& header : PublicHeaders()) {
    std::ifstream file(kRoot / header);
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("#include <")) includes.insert(line);
    }
  }
  for (const std::string& include : includes) standard += include + "\n";
  const std::set<std::string> before = MacrosBehind(standard);
  ASSERT_GT(before.size(), 100u);

  std::set<std::string> for_users;
  for (const std::string& macro : MacrosBehind(standard + "#include \"qdclgl/qdclgl.h\"\n")) {
    if (before.contains(macro) || macro.starts_with("QD_IMPL_")) continue;
    for_users.insert(macro);
  }
  EXPECT_EQ(for_users, kUserMacros);
}

TEST(PublicHeaders, StandBesideAProgramsOwnWords) {
  const Compiled compiled =
      Compile(kRoot / "tests/house/snippets/own_words.cpp", "-std=c++20 -fsyntax-only -Werror");
  EXPECT_EQ(compiled.status, 0) << compiled.output;
}

TEST(PublicHeaders, StandBehindAProgramsOwnMacros) {
  const Compiled compiled =
      Compile(kRoot / "tests/house/snippets/own_macros.cpp", "-std=c++20 -fsyntax-only -Werror");
  EXPECT_EQ(compiled.status, 0) << compiled.output;
}

TEST(PublicHeaders, AnOlderStandardIsToldInOneSentence) {
  for (const std::string& header : PublicHeaders()) {
    const Compiled compiled =
        CompileText("#include \"" + header + "\"\n", "-std=c++17 -fsyntax-only");
    EXPECT_NE(compiled.status, 0) << header;
    EXPECT_NE(compiled.output.find("QDCLGL is a C++20 library: compile with -std=c++20 or newer."),
              std::string::npos)
        << header << "\n"
        << compiled.output;
    // The sentence, and the missing file that ends the compilation behind it.
    EXPECT_EQ(compiled.errors(), 2u) << header << "\n" << compiled.output;
  }
}

// ---- Rows that are wrong ----

// What the compiler says to a class with these rows.
Compiled CompileRows(const std::string& rows) {
  return CompileText("#include \"qdclgl/frame/objects/class_table.h\"\n"
                     "#include \"qdclgl/frame/entities/entity.h\"\n"
                     "namespace qdclgl {\n"
                     "class Sample final : public Entity {\n"
                     "  QD_MEMBERS(Sample, Entity, Creatable, \"A sample.\")\n" +
                         rows +
                         " protected:\n"
                         "  const EntityProtocol& Protocol() const override;\n"
                         "};\n"
                         "QD_DEFINE_MEMBERS(Sample)\n"
                         "}\n",
                     "-std=c++20 -fsyntax-only");
}

void ExpectOneSentence(const std::string& rows, const std::string& sentence) {
  const Compiled compiled = CompileRows(rows);
  EXPECT_NE(compiled.status, 0) << rows;
  EXPECT_NE(compiled.output.find(sentence), std::string::npos) << compiled.output;
  EXPECT_EQ(compiled.errors(), 1u) << compiled.output;
}

TEST(MemberRows, ThatAreRightCompile) {
  const Compiled compiled = CompileRows(
      "  QD_INHERITED(Refresh)\n"
      "  QD_FIELD(GetLet, String, Name, \"FName\", \"The name.\", Default(\"none\"), Clear(\"\"))\n"
      "  QD_PROPERTY(GetSet, Ref<Object>, Child,\n"
      "              \"An object, told on \"\n"
      "              \"two lines.\")\n"
      "  QD_INDEXED(GetLetSet, Variant, Item, (Long Index), \"A value.\", DefaultMember)\n");
  EXPECT_EQ(compiled.status, 0) << compiled.output;
}

TEST(MemberRows, AMisspeltAccessWordIsToldInOneSentence) {
  ExpectOneSentence(
      "  QD_PROPERTY(GetLte, Long, Count, \"The number.\")\n",
      "GetLte is no access word; they are Get, Let, Set, GetLet, GetSet, GetLetSet and "
      "GetLetVariant");
  ExpectOneSentence("  QD_INDEXED(Gett, Long, At, (Long Index), \"A number.\")\n",
                    "Gett is no access word; they are Get, Let, Set, GetLet, GetSet, GetLetSet and "
                    "GetLetVariant");
  ExpectOneSentence("  QD_FIELD(GetSet, Long, Count, \"FCount\", \"The number.\")\n",
                    "GetSet is no access word; a field is Get or GetLet");
}

TEST(MemberRows, AnInheritedNameThatTheBaseLacksIsToldInOneSentence) {
  ExpectOneSentence("  QD_INHERITED(Refesh)\n",
                    "the base class has no row Refesh that could be inherited");
}

TEST(MemberRows, ARowOutOfReachOfItsClassIsAnError) {
  const std::string row = "  QD_FIELD(Get, Long, Last, \"FLast\", \"The last one.\")\n";
  const auto behind = [&](int lines) {
    return CompileRows(std::string(static_cast<std::size_t>(lines), '\n') + row);
  };
  EXPECT_EQ(behind(510).status, 0);
  const Compiled compiled = behind(511);
  EXPECT_NE(compiled.output.find("this row stands more than 512 lines below"), std::string::npos)
      << compiled.output;
  EXPECT_EQ(compiled.errors(), 1u) << compiled.output;
}

}  // namespace
