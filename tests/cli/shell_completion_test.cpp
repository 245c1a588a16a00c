// What a command line's last word could be, as shells offer it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/cli/completion_fixture.h"
#include "tests/cli/screen.h"

namespace qdclgl::cli::testing {
namespace {

// A shell that knows the completion, in which `probe` is completed as qdclgl is, and prints what it
// became.
class ShellCompletion : public CompletionTest {
 protected:
  static constexpr const char* kFiles = QDCLGL_SOURCE_DIR "/qdclgl/cli/completion/";

  // What `probe` was given when somebody typed that, with a tab in place of each "<tab>".
  std::string Became(const std::string& shell, const std::vector<std::string>& options,
                     const std::string& typed) const {
    std::string keys = "probe " + typed;
    for (std::size_t at; (at = keys.find("<tab>")) != keys.npos;) keys.replace(at, 5, "\t");
    Screen screen;
    screen.columns = 200;
    screen.typed = keys + "\rexit\r";
    screen.environment = {{"QDCLGL_BOOK", book},
                          {"HOME", folder.Path("")},
                          {"ZDOTDIR", folder.Path("")},
                          {"PATH", std::filesystem::path(QDCLGL_PROGRAM).parent_path().string() +
                                       ":" + std::getenv("PATH")}};
    const std::string shown = RunOnScreen(screen, options, shell).out;
    const std::size_t first = shown.rfind("<<"), last = shown.find(">>", first);
    return first == shown.npos ? shown : shown.substr(first + 2, last - first - 2);
  }

  void ExpectAllCompleted(const std::string& shell, const std::vector<std::string>& options) const {
    ASSERT_TRUE(std::filesystem::exists(shell)) << "scripts/install-tools test brings it";
    EXPECT_EQ(Became(shell, options, "bala<tab>--cs<tab>"), "balance --csv");
    EXPECT_EQ(Became(shell, options, "show accounts 1001<tab>"), "show accounts 1001");
    EXPECT_EQ(Became(shell, options, "show acc<tab>1001"), "show accounts 1001");
    EXPECT_EQ(Became(shell, options, "set users ann FRol<tab>reader"),
              "set users ann FRoles=reader");
    EXPECT_EQ(Became(shell, options, "new --group Cas<tab>"), "new --group Cash book");
    EXPECT_EQ(Became(shell, options, "new --group <tab>--red"), "new --group Cash book --red");
  }
};

TEST_F(ShellCompletion, OfBash) {
  folder.Write("rc", std::string("source ") + kFiles + "qdclgl.bash\n" +
                         "probe() { echo \"<<$*>>\"; }\n"
                         "_probe() { COMP_WORDS[0]=qdclgl; _qdclgl; }\n"
                         "complete -o default -F _probe probe\n");
  ExpectAllCompleted("/bin/bash", {"--noprofile", "--rcfile", folder.Path("rc"), "-i"});
}

TEST_F(ShellCompletion, OfZsh) {
  folder.Write(".zshrc", std::string("fpath=(") + kFiles + " $fpath)\n" +
                             "autoload -Uz compinit; compinit -u -D\n"
                             "probe() { print -r -- \"<<$*>>\"; }\ncompdef _qdclgl probe\n");
  ExpectAllCompleted("/usr/bin/zsh", {"-d", "-i"});
}

TEST_F(ShellCompletion, OfFish) {
  const std::string start = std::string("source ") + kFiles + "qdclgl.fish; " +
                            "function probe; echo \"<<$argv>>\"; end; complete -c probe -w qdclgl; "
                            "function fish_prompt; end; set -U fish_greeting";
  ExpectAllCompleted("/usr/bin/fish", {"--no-config", "-i", "-C", start});
}

}  // namespace
}  // namespace qdclgl::cli::testing
