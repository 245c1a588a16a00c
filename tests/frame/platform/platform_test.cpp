#include "qdclgl/frame/platform/platform.h"

#include <gtest/gtest.h>

#include "tests/support/test_platform.h"

#ifndef _WIN32

#include <arpa/inet.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#endif

namespace qdclgl {

#ifndef _WIN32

namespace {

using namespace std::string_literals;

class ScopedEnvironment {
 public:
  // nullptr unsets the variable.
  ScopedEnvironment(const char* name, const char* value) : name_(name) {
    if (const char* former = std::getenv(name)) former_ = former;
    Put(value);
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment() { Put(former_ ? former_->c_str() : nullptr); }

 private:
  void Put(const char* value) const {
    if (value != nullptr) {
      ::setenv(name_, value, 1);
    } else {
      ::unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> former_;
};

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "platform_test.XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(*this / name, std::ios::binary) << text;
    return *this / name;
  }
  std::string Read(const std::string& name) const {
    std::ifstream file(*this / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

// A registry file of the test's own.
struct TemporaryRegistry {
  TemporaryFolder folder;
  ScopedEnvironment variable{"QDCLGL_REGISTRY", (folder / "registry").c_str()};
};

Long ReadNumber(const std::string& profile, Long default_value = 99) {
  const TemporaryFolder folder;
  return MachinePlatform().PrivateProfileInt("Options", "Check", default_value,
                                             folder.Write("SpecFun.ini", profile));
}

// The number of a key with that text.
Long NumberOf(const std::string& text) { return ReadNumber("[Options]\nCheck=" + text + "\n"); }

Long OpenKey(const std::string& path) {
  Long key = 0;
  EXPECT_EQ(MachinePlatform().RegistryCreateKey(registry_root::kLocalMachine, path, true, key), 0);
  return key;
}

Long SetText(Long key, const std::string& name, const std::string& text) {
  return MachinePlatform().RegistrySetValue(key, name, {registry_type::kText, text});
}

// The text of a value, or "code n".
std::string GetText(Long key, const std::string& name, std::size_t buffer_size = 2048) {
  RegistryValue value;
  const Long code = MachinePlatform().RegistryQueryValue(key, name, buffer_size, value);
  return code == 0 ? value.data : "code " + std::to_string(code);
}

// Runs `action` in a child process that exits with what it returns.
template <class Action>
pid_t Fork(Action action) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(action());
  return child;
}

// Waits for the child; -1 when it did not exit by itself.
int ExitStatus(pid_t child) {
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

}  // namespace

TEST(PosixPlatform, IsCurrentUnlessReplaced) { EXPECT_EQ(&CurrentPlatform(), &MachinePlatform()); }

TEST(PosixPlatform, NamesTheComputerAsTheSystemDoes) {
  std::array<char, 1025> name{};
  ASSERT_EQ(::gethostname(name.data(), name.size() - 1), 0);
  EXPECT_EQ(MachinePlatform().ComputerName(1025), name.data());
}

TEST(PosixPlatform, GivesNoComputerNameThatDoesNotFitWithItsNul) {
  const auto name = MachinePlatform().ComputerName(1025);
  ASSERT_TRUE(name);
  EXPECT_EQ(MachinePlatform().ComputerName(name->size() + 1), name);
  EXPECT_EQ(MachinePlatform().ComputerName(name->size()), std::nullopt);
  EXPECT_EQ(MachinePlatform().ComputerName(0), std::nullopt);
}

TEST(PosixPlatform, TellsTheProcessId) {
  EXPECT_EQ(MachinePlatform().ProcessId(), static_cast<Long>(::getpid()));
}

// The machine's clock as its own functions tell it, as a text.
std::string ClockText() {
  const std::time_t now = std::time(nullptr);
  char text[32];
  std::tm local{};
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", ::localtime_r(&now, &local));
  return text;
}

TEST(PosixPlatform, TellsTheDayAndTheTimeInWholeSeconds) {
  const std::string before = ClockText();
  const DateTime now = MachinePlatform().Now();
  const std::string after = ClockText();
  EXPECT_LE(before.substr(0, 10), now.ToText().substr(0, 10));
  if (now.days != std::floor(now.days)) {  // midnight is a day without a time
    EXPECT_LE(before, now.ToText());
    EXPECT_LE(now.ToText(), after);
  }
  EXPECT_EQ(DateTime::FromParts(now.ToParts()), now);
}

TEST(PosixPlatform, TakesTheSystemDirectoryFromTheEnvironment) {
  const ScopedEnvironment variable("QDCLGL_SYSTEM_DIRECTORY", "/opt/settings");
  EXPECT_EQ(MachinePlatform().SystemDirectory(128), "/opt/settings");
  EXPECT_EQ(MachinePlatform().SystemDirectory(14), "/opt/settings");
  EXPECT_EQ(MachinePlatform().SystemDirectory(13), std::nullopt);
}

TEST(PosixPlatform, HasASystemDirectoryWithoutTheVariable) {
  for (const char* value : {static_cast<const char*>(nullptr), ""}) {
    const ScopedEnvironment variable("QDCLGL_SYSTEM_DIRECTORY", value);
    EXPECT_EQ(MachinePlatform().SystemDirectory(128), "/etc/qdclgl");
  }
}

TEST(PosixPlatform, EndsTheSystemDirectoryWithoutASeparator) {
  const ScopedEnvironment slashes("QDCLGL_SYSTEM_DIRECTORY", "/opt/settings//");
  EXPECT_EQ(MachinePlatform().SystemDirectory(128), "/opt/settings");
  const ScopedEnvironment root("QDCLGL_SYSTEM_DIRECTORY", "/");
  EXPECT_EQ(MachinePlatform().SystemDirectory(128), "/");
}

TEST(PosixPlatform, GivesAnAddressThatIsNoLoopback) {
  const auto address = MachinePlatform().AddressText(64);
  if (!address) GTEST_SKIP() << "this machine has no network";
  in_addr parsed{};
  EXPECT_EQ(::inet_pton(AF_INET, address->c_str(), &parsed), 1);
  EXPECT_FALSE(address->starts_with("127."));
  EXPECT_EQ(MachinePlatform().AddressText(address->size() + 1), address);
  EXPECT_EQ(MachinePlatform().AddressText(address->size()), std::nullopt);
}

TEST(PosixPlatform, ReadsAProfileNumber) {
  EXPECT_EQ(ReadNumber("[Options]\r\nOther=7\r\nCheck=1\r\n"), 1);
}

TEST(PosixPlatform, ReadsAProfileNumberWithBlanksAroundTheEqualsSign) {
  EXPECT_EQ(ReadNumber("  [ Options ]  \n \t Check \t = \t 12 \t \n"), 12);
}

TEST(PosixPlatform, ReadsAProfileNumberOnTheLastUnclosedLine) {
  EXPECT_EQ(ReadNumber("[Options]\nCheck=3"), 3);
}

TEST(PosixPlatform, MatchesProfileNamesIgnoringCaseAndBlanks) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("SpecFun.ini", "[OPTIONS]\ncheck=5\n[Prüfung]\nZähler=6\n");
  EXPECT_EQ(MachinePlatform().PrivateProfileInt(" options ", " CHECK ", 0, file), 5);
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("PRÜFUNG", "ZÄHLER", 0, file), 6);
}

TEST(PosixPlatform, GivesTheDefaultForAMissingProfile) {
  const TemporaryFolder folder;
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("Options", "Check", -3, folder / "none.ini"), -3);
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("Options", "Check", -3, folder / "no/none.ini"),
            -3);
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("Options", "Check", -3, ""), -3);
}

TEST(PosixPlatform, GivesTheDefaultForAProfileThatIsNoFile) {
  const TemporaryFolder folder;
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("Options", "Check", 8, folder.path()), 8);
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("Options", "Check", 8, pipe), 8);
}

TEST(PosixPlatform, GivesTheDefaultForAMissingSectionOrKey) {
  EXPECT_EQ(ReadNumber(""), 99);
  EXPECT_EQ(ReadNumber("Check=1\n"), 99);
  EXPECT_EQ(ReadNumber("[Other]\nCheck=1\n"), 99);
  EXPECT_EQ(ReadNumber("[Options]\nOther=1\n[More]\nCheck=2\n"), 99);
}

TEST(PosixPlatform, TakesNoLineWithoutAnEqualsSignAndNoCommentForAKey) {
  EXPECT_EQ(ReadNumber("[Options]\nCheck\n;Check=1\n  ; Check=1\n"), 99);
}

TEST(PosixPlatform, CountsTheFirstSectionAndTheFirstKeyOfAName) {
  EXPECT_EQ(ReadNumber("[Options]\nCheck=1\nCheck=2\n[Options]\nCheck=3\n"), 1);
  EXPECT_EQ(ReadNumber("[Options]\nOther=1\n[Options]\nCheck=3\n"), 99);
}

TEST(PosixPlatform, ReadsWhatItCanOfAMalformedProfile) {
  EXPECT_EQ(ReadNumber("\xEF\xBB\xBF[Options]\nCheck=1\n"), 1);
  EXPECT_EQ(ReadNumber("[Options\nCheck=1\n"), 1);
  EXPECT_EQ(ReadNumber("[Options] trailing\nCheck=1\n"), 1);
  EXPECT_EQ(ReadNumber("]]==[[\n=\n[]\n=5\n[Options]\n=\n\xFF\xFE=3\nCheck==1\nCheck=2\n"), 0);
  EXPECT_EQ(ReadNumber("\0\0[Options]\n\0=1\n[Options]\nCheck=4\n"s), 4);
}

TEST(PosixPlatform, ReadsAQuotedProfileNumber) {
  EXPECT_EQ(NumberOf("\"7\""), 7);
  EXPECT_EQ(NumberOf("' 7 '"), 7);
  EXPECT_EQ(NumberOf("\"7"), 0);
  EXPECT_EQ(NumberOf("\"7'"), 0);
  EXPECT_EQ(NumberOf("\""), 0);
}

TEST(PosixPlatform, ReadsASignedProfileNumber) {
  EXPECT_EQ(NumberOf("-1"), -1);
  EXPECT_EQ(NumberOf("+1"), 1);
  EXPECT_EQ(NumberOf("- 1"), 0);
  EXPECT_EQ(NumberOf("--1"), 0);
  EXPECT_EQ(NumberOf("-"), 0);
}

TEST(PosixPlatform, ReadsTheNumberAProfileTextBeginsWith) {
  EXPECT_EQ(NumberOf("102abc"), 102);
  EXPECT_EQ(NumberOf("42A94967297"), 42);
  EXPECT_EQ(NumberOf("3 ; yes"), 3);
  EXPECT_EQ(NumberOf("1.9"), 1);
}

TEST(PosixPlatform, ReadsAProfileTextThatIsNoNumberAsZero) {
  EXPECT_EQ(NumberOf("yes"), 0);
  EXPECT_EQ(NumberOf("B1"), 0);
  EXPECT_EQ(NumberOf(""), 0);
}

TEST(PosixPlatform, ReadsAProfileNumberWithABasePrefix) {
  EXPECT_EQ(NumberOf("0x10"), 16);
  EXPECT_EQ(NumberOf("0xfFg"), 255);
  EXPECT_EQ(NumberOf("-0x1"), -1);
  EXPECT_EQ(NumberOf("0xFFFFFFFF"), -1);
  EXPECT_EQ(NumberOf("0o17"), 15);
  EXPECT_EQ(NumberOf("0b101"), 5);
  EXPECT_EQ(NumberOf("0x"), 0);
  EXPECT_EQ(NumberOf("0X10"), 0);
  EXPECT_EQ(NumberOf("010"), 10);
}

TEST(PosixPlatform, WrapsAProfileNumberBeyond32BitsAround) {
  EXPECT_EQ(NumberOf("2147483647"), 2147483647);
  EXPECT_EQ(NumberOf("2147483648"), INT32_MIN);
  EXPECT_EQ(NumberOf("-2147483648"), INT32_MIN);
  EXPECT_EQ(NumberOf("4294967296"), 0);
  EXPECT_EQ(NumberOf("4294967297"), 1);
  EXPECT_EQ(NumberOf("-4294967297"), -1);
}

TEST(PosixPlatform, TakesABackslashInAPathForASeparator) {
  const TemporaryFolder folder;
  folder.Write("SpecFun.ini", "[Options]\nCheck=1\n");
  const std::string path = folder.path() + "\\SpecFun.ini";
  EXPECT_EQ(MachinePlatform().PrivateProfileInt("Options", "Check", 0, path), 1);
  EXPECT_EQ(MachinePlatform().FileAttributes(path), file_attribute::kNormal);
}

TEST(PosixPlatform, TellsFileAttributes) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("file", "");
  EXPECT_EQ(MachinePlatform().FileAttributes(file), file_attribute::kNormal);
  EXPECT_EQ(MachinePlatform().FileAttributes(folder.path()), file_attribute::kDirectory);
  ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
  EXPECT_EQ(MachinePlatform().FileAttributes(file), file_attribute::kReadOnly);
}

TEST(PosixPlatform, TellsNoAttributesOfWhatDoesNotExist) {
  const TemporaryFolder folder;
  EXPECT_EQ(MachinePlatform().FileAttributes(folder / "none"), std::nullopt);
  EXPECT_EQ(MachinePlatform().FileAttributes(folder.Write("file", "") + "/below"), std::nullopt);
  EXPECT_EQ(MachinePlatform().FileAttributes(""), std::nullopt);
}

TEST(PosixPlatform, ReadsARegistryTextThatItWrote) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("SoftWare\\Quenda\\LocalDatabase\\Meier");
  EXPECT_EQ(SetText(key, "ACC1", "OFFLINE"), 0);
  EXPECT_EQ(GetText(key, "ACC1"), "OFFLINE");
  EXPECT_EQ(SetText(key, "ACC1", "ONLINE"), 0);
  EXPECT_EQ(GetText(key, "ACC1"), "ONLINE");
  EXPECT_EQ(registry.folder.Read("registry"),
            "HKEY_LOCAL_MACHINE\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase\\Meier\tACC1\t1\tONLINE\n");
}

TEST(PosixPlatform, KeepsRegistryValuesOfEveryType) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Types");
  const RegistryValue values[] = {
      {registry_type::kExpandableText, "%HOME%"},
      {registry_type::kBinary, "\0\x01\x7F\xFF\n\t%"s},
      {registry_type::kNumber, "\x01\0\0\x80"s},
      {registry_type::kText, ""},
      {12345, "own"},
  };
  for (const RegistryValue& value : values) {
    const std::string name = "type " + std::to_string(value.type);
    ASSERT_EQ(MachinePlatform().RegistrySetValue(key, name, value), 0);
    RegistryValue found;
    ASSERT_EQ(MachinePlatform().RegistryQueryValue(key, name, 2048, found), 0);
    EXPECT_EQ(found, value);
  }
}

TEST(PosixPlatform, KeepsAnyTextInTheRegistry) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("SoftWare\\用户\tA=B");
  const std::string odd[] = {"张三的账套",   "two\nlines\r\n", "a=b;c\td%0A%",
                             "[section]",    " blanks ",       "#",
                             "\xFF\xFE\x80", "\x01\x1B\x7F"};
  for (const std::string& text : odd) {
    EXPECT_EQ(SetText(key, text, text), 0);
  }
  for (const std::string& text : odd) {
    EXPECT_EQ(GetText(key, text), text);
  }
}

TEST(PosixPlatform, LeavesTheClosingNulsOfARegistryTextOut) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Key");
  EXPECT_EQ(SetText(key, "name", "ONLINE\0\0\0"s), 0);
  EXPECT_EQ(GetText(key, "name"), "ONLINE");
}

TEST(PosixPlatform, MatchesRegistryNamesIgnoringCase) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("SoftWare\\Müller");
  EXPECT_EQ(SetText(key, "Größe", "one"), 0);
  const Long same = OpenKey("SOFTWARE\\MÜLLER");
  EXPECT_EQ(same, key);
  EXPECT_EQ(GetText(same, "GRÖßE"), "one");
  EXPECT_EQ(SetText(same, "GRÖßE", "two"), 0);
  SetText(OpenKey("software\\müller\\Below"), "", "three");
  EXPECT_EQ(registry.folder.Read("registry"),
            "HKEY_LOCAL_MACHINE\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\\Müller\tGröße\t1\ttwo\n"
            "HKEY_LOCAL_MACHINE\\SoftWare\\Müller\\Below\t\t1\tthree\n");
}

TEST(PosixPlatform, OpensTheSameKeyByStepsAndByPath) {
  const TemporaryRegistry registry;
  Long key = registry_root::kCurrentUser;
  for (const char* element : {"SoftWare", "", "Quenda"}) {
    ASSERT_EQ(MachinePlatform().RegistryCreateKey(key, element, true, key), 0);
  }
  Long same = 0;
  ASSERT_EQ(MachinePlatform().RegistryCreateKey(registry_root::kCurrentUser, "SoftWare\\\\Quenda\\",
                                                true, same),
            0);
  EXPECT_EQ(same, key);
  Long root = 0;
  ASSERT_EQ(MachinePlatform().RegistryCreateKey(registry_root::kCurrentUser, "", true, root), 0);
  EXPECT_EQ(root, registry_root::kCurrentUser);
}

TEST(PosixPlatform, KeepsTheRootsOfTheRegistryApart) {
  const TemporaryRegistry registry;
  EXPECT_EQ(SetText(registry_root::kCurrentUser, "name", "user"), 0);
  EXPECT_EQ(SetText(registry_root::kLocalMachine, "name", "machine"), 0);
  EXPECT_EQ(GetText(registry_root::kCurrentUser, "name"), "user");
  EXPECT_EQ(GetText(registry_root::kLocalMachine, "name"), "machine");
  EXPECT_EQ(GetText(registry_root::kUsers, "name"), "code 2");
}

TEST(PosixPlatform, KeepsTheDefaultValueOfARegistryKeyUnderTheEmptyName) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Key");
  EXPECT_EQ(SetText(key, "", "ONLINE"), 0);
  EXPECT_EQ(GetText(key, ""), "ONLINE");
}

TEST(PosixPlatform, FindsNoMissingRegistryValue) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Key");
  RegistryValue value{registry_type::kBinary, "untouched"};
  EXPECT_EQ(MachinePlatform().RegistryQueryValue(key, "none", 2048, value),
            system_code::kFileNotFound);
  EXPECT_EQ(value, (RegistryValue{registry_type::kBinary, "untouched"}));
  std::filesystem::remove(registry.folder / "registry");
  EXPECT_EQ(GetText(key, "none"), "code 2");
}

TEST(PosixPlatform, RefusesARegistryHandleThatNobodyGave) {
  const TemporaryRegistry registry;
  for (const Long handle : {0, -1, 1 << 30, static_cast<Long>(0x80000004u)}) {
    Long key = 77;
    EXPECT_EQ(MachinePlatform().RegistryCreateKey(handle, "Key", true, key),
              system_code::kInvalidHandle);
    EXPECT_EQ(key, 77);
    EXPECT_EQ(GetText(handle, "name"), "code 6");
    EXPECT_EQ(SetText(handle, "name", "text"), system_code::kInvalidHandle);
  }
}

TEST(PosixPlatform, RefusesARegistryPathThatBeginsWithASeparator) {
  const TemporaryRegistry registry;
  Long key = 77;
  EXPECT_EQ(MachinePlatform().RegistryCreateKey(registry_root::kUsers, "\\Key", true, key),
            system_code::kBadPathName);
  EXPECT_EQ(key, 77);
}

TEST(PosixPlatform, RefusesARegistryValueThatDoesNotFitTheBuffer) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Key");
  SetText(key, "text", "12345");
  EXPECT_EQ(GetText(key, "text", 6), "12345");
  EXPECT_EQ(GetText(key, "text", 5), "code 234");
  MachinePlatform().RegistrySetValue(key, "bytes", {registry_type::kBinary, "12345"});
  EXPECT_EQ(GetText(key, "bytes", 5), "12345");
  EXPECT_EQ(GetText(key, "bytes", 4), "code 234");
}

TEST(PosixPlatform, KeepsAVolatileRegistryKeyOffTheDisk) {
  const TemporaryRegistry registry;
  const Long parent = OpenKey("VolatileTest");
  Long key = 0;
  ASSERT_EQ(MachinePlatform().RegistryCreateKey(parent, "Volatile\\Below", false, key), 0);
  EXPECT_EQ(SetText(key, "name", "text"), 0);
  EXPECT_EQ(GetText(key, "name"), "text");
  EXPECT_EQ(GetText(OpenKey("VolatileTest\\volatile\\below"), "NAME"), "text");
  EXPECT_EQ(registry.folder.Read("registry"),
            "HKEY_LOCAL_MACHINE\nHKEY_LOCAL_MACHINE\\VolatileTest\n");

  Long child = 77;
  EXPECT_EQ(MachinePlatform().RegistryCreateKey(key, "Persistent", true, child),
            system_code::kChildMustBeVolatile);
  EXPECT_EQ(child, 77);
  EXPECT_EQ(MachinePlatform().RegistryCreateKey(key, "Volatile", false, child), 0);
}

TEST(PosixPlatform, OpensAPersistentRegistryKeyAsItIsWhenAskedForAVolatileOne) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Persistent");
  Long same = 0;
  ASSERT_EQ(
      MachinePlatform().RegistryCreateKey(registry_root::kLocalMachine, "persistent", false, same),
      0);
  EXPECT_EQ(same, key);
  EXPECT_EQ(SetText(same, "name", "text"), 0);
  EXPECT_NE(registry.folder.Read("registry").find("text"), std::string::npos);
}

TEST(PosixPlatform, KeepsWhatItDoesNotUnderstandInTheRegistryFile) {
  const TemporaryRegistry registry;
  registry.folder.Write("registry", "# by hand\n"
                                    "HKEY_LOCAL_MACHINE\\A\tone\t1\tfirst\r\n"
                                    "HKEY_LOCAL_MACHINE\\A\ttwo\t1\n"
                                    "HKEY_LOCAL_MACHINE\\A\tthree\tx\ttext\n"
                                    "HKEY_LOCAL_MACHINE\\A\tfour\t1\tbad %4\n"
                                    "HKEY_LOCAL_MACHINE\\A\\\\B\tname\t1\ttext\n"
                                    "HKEY_NOWHERE\\A\n"
                                    "\n"
                                    "\xFF\x01 garbage\n"
                                    "HKEY_LOCAL_MACHINE\\A\tfive\t1\tlast");
  const Long key = OpenKey("A");
  EXPECT_EQ(GetText(key, "one"), "first");
  EXPECT_EQ(GetText(key, "two"), "code 2");
  EXPECT_EQ(GetText(key, "three"), "code 2");
  EXPECT_EQ(GetText(key, "four"), "code 2");
  EXPECT_EQ(GetText(key, "five"), "last");
  EXPECT_EQ(SetText(key, "six", "added"), 0);
  const std::string text = registry.folder.Read("registry");
  for (const char* line : {"# by hand\n", "\ttwo\t1\n", "\tthree\tx\ttext\n", "\tfour\t1\tbad %4\n",
                           "\\A\\\\B\tname\t1\ttext\n", "HKEY_NOWHERE\\A\n", "\tone\t1\tfirst\n",
                           "\tfive\t1\tlast\n", "\tsix\t1\tadded\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST(PosixPlatform, PutsTheRegistryIntoTheUsersConfigurationFolder) {
  const TemporaryFolder folder;
  const ScopedEnvironment own("QDCLGL_REGISTRY", nullptr);
  const ScopedEnvironment home("HOME", folder.path().c_str());
  {
    const ScopedEnvironment config("XDG_CONFIG_HOME", (folder / "config").c_str());
    EXPECT_EQ(SetText(registry_root::kCurrentUser, "name", "text"), 0);
    EXPECT_EQ(folder.Read("config/qdclgl/registry"), "HKEY_CURRENT_USER\tname\t1\ttext\n");
  }
  for (const char* unusable : {static_cast<const char*>(nullptr), "", "relative"}) {
    const ScopedEnvironment config("XDG_CONFIG_HOME", unusable);
    std::filesystem::remove_all(folder / ".config");
    EXPECT_EQ(SetText(registry_root::kCurrentUser, "name", "text"), 0);
    EXPECT_EQ(folder.Read(".config/qdclgl/registry"), "HKEY_CURRENT_USER\tname\t1\ttext\n");
  }
}

TEST(PosixPlatform, ReportsARegistryPathThatCannotBeMade) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("file", "") + "/below/registry";
  const ScopedEnvironment variable("QDCLGL_REGISTRY", path.c_str());
  Long key = 77;
  EXPECT_EQ(MachinePlatform().RegistryCreateKey(registry_root::kUsers, "Key", true, key),
            system_code::kPathNotFound);
  EXPECT_EQ(key, 77);
  EXPECT_EQ(SetText(registry_root::kUsers, "name", "text"), system_code::kPathNotFound);
}

TEST(PosixPlatform, ReportsAFolderInThePlaceOfTheRegistryFile) {
  const TemporaryFolder folder;
  const ScopedEnvironment variable("QDCLGL_REGISTRY", folder.path().c_str());
  EXPECT_EQ(SetText(registry_root::kUsers, "name", "text"), system_code::kAccessDenied);
  EXPECT_EQ(GetText(registry_root::kUsers, "name"), "code 5");
  std::filesystem::remove(folder.path() + ".lock");
}

TEST(PosixPlatform, ReportsAnUnwritableRegistryFolder) {
  const TemporaryRegistry registry;
  ASSERT_EQ(SetText(registry_root::kUsers, "name", "before"), 0);
  ASSERT_EQ(::chmod((registry.folder / "registry").c_str(), 0444), 0);
  std::filesystem::remove(registry.folder / "registry.lock");
  ASSERT_EQ(::chmod(registry.folder.path().c_str(), 0555), 0);
  // The superuser may write everywhere, so the child becomes somebody else.
  const int code = ExitStatus(Fork([] {
    if (::geteuid() == 0 && ::setuid(65534) != 0) return 100;
    Long key = 0;
    const Long create = MachinePlatform().RegistryCreateKey(registry_root::kUsers, "K", true, key);
    const Long set = SetText(registry_root::kUsers, "name", "after");
    return create == set ? static_cast<int>(set) : 101;
  }));
  ASSERT_EQ(::chmod(registry.folder.path().c_str(), 0755), 0);
  EXPECT_EQ(code, system_code::kAccessDenied);
  EXPECT_EQ(GetText(registry_root::kUsers, "name"), "before");
}

TEST(PosixPlatform, WritesTheRegistryOverWhatACrashLeft) {
  const TemporaryRegistry registry;
  const Long key = OpenKey("Key");
  SetText(key, "name", "whole");
  registry.folder.Write("registry.tmp", "HKEY_LOCAL_MACHINE\\Key\tname\t1\tha");
  EXPECT_EQ(GetText(key, "name"), "whole");
  EXPECT_EQ(SetText(key, "other", "text"), 0);
  EXPECT_EQ(GetText(key, "name"), "whole");
  EXPECT_FALSE(std::filesystem::exists(registry.folder / "registry.tmp"));
}

TEST(PosixPlatform, LosesNothingWhenSeveralProcessesWriteTheRegistryAtOnce) {
  constexpr int kWriters = 8;
  constexpr int kWrites = 40;
  const TemporaryRegistry registry;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    children.push_back(Fork([writer] {
      for (int i = 0; i < kWrites; ++i) {
        Long key = 0;
        const std::string path = "Shared\\Writer " + std::to_string(writer);
        if (MachinePlatform().RegistryCreateKey(registry_root::kUsers, path, true, key) != 0) {
          return 1;
        }
        if (SetText(key, std::to_string(i), std::string(200, 'x')) != 0) return 2;
        if (GetText(key, std::to_string(i)).size() != 200) return 3;
      }
      return 0;
    }));
  }
  for (const pid_t child : children) EXPECT_EQ(ExitStatus(child), 0);
  for (int writer = 0; writer < kWriters; ++writer) {
    Long key = 0;
    const std::string path = "Shared\\Writer " + std::to_string(writer);
    ASSERT_EQ(MachinePlatform().RegistryCreateKey(registry_root::kUsers, path, true, key), 0);
    for (int i = 0; i < kWrites; ++i) {
      EXPECT_EQ(GetText(key, std::to_string(i)), std::string(200, 'x')) << writer << ' ' << i;
    }
  }
}

TEST(PosixPlatform, ShowsAMessageOnTheStandardError) {
  testing::internal::CaptureStderr();
  MachinePlatform().ShowMessage("Fehler im Gerät\nline 2");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Fehler im Gerät\nline 2\n");
}

#endif  // _WIN32

TEST(TestPlatform, IsCurrentAsLongAsItLives) {
  Platform* const before = &CurrentPlatform();
  {
    TestPlatform outer;
    EXPECT_EQ(&CurrentPlatform(), &outer);
    {
      TestPlatform inner;
      EXPECT_EQ(&CurrentPlatform(), &inner);
    }
    EXPECT_EQ(&CurrentPlatform(), &outer);
    SetPlatform(nullptr);
    EXPECT_EQ(&CurrentPlatform(), &MachinePlatform());
  }
  EXPECT_EQ(&CurrentPlatform(), before);
}

TEST(TestPlatform, AnswersWithItsFields) {
  TestPlatform platform;
  EXPECT_EQ(CurrentPlatform().ComputerName(128), "HOST");
  EXPECT_EQ(CurrentPlatform().ProcessId(), 4711);
  EXPECT_EQ(CurrentPlatform().Now().ToText(), "2026-01-31 13:05:00");
  EXPECT_EQ(CurrentPlatform().Today().ToText(), "2026-01-31");
  EXPECT_EQ(CurrentPlatform().SystemDirectory(128), "C:\\SYS");
  EXPECT_EQ(CurrentPlatform().AddressText(64), "10.0.0.1");
  platform.computer_name = "OTHER";
  EXPECT_EQ(CurrentPlatform().ComputerName(128), "OTHER");
}

TEST(TestPlatform, HonoursBufferSizes) {
  TestPlatform platform;
  EXPECT_EQ(platform.ComputerName(5), "HOST");
  EXPECT_EQ(platform.ComputerName(4), std::nullopt);
  EXPECT_EQ(platform.SystemDirectory(6), std::nullopt);
  EXPECT_EQ(platform.AddressText(8), std::nullopt);
}

TEST(TestPlatform, FailsOneOperationAtATime) {
  TestPlatform platform;
  platform.fail_computer_name = true;
  EXPECT_EQ(platform.ComputerName(128), std::nullopt);
  EXPECT_NE(platform.SystemDirectory(128), std::nullopt);
  platform.fail_system_directory = true;
  EXPECT_EQ(platform.SystemDirectory(128), std::nullopt);
  EXPECT_NE(platform.AddressText(64), std::nullopt);
  platform.fail_address_text = true;
  EXPECT_EQ(platform.AddressText(64), std::nullopt);
}

TEST(TestPlatform, ReadsItsProfileNumbersAndFileAttributes) {
  TestPlatform platform;
  const std::string file = "C:\\SYS\\SpecFun.ini";
  EXPECT_EQ(platform.FileAttributes(file), std::nullopt);
  EXPECT_EQ(platform.PrivateProfileInt("Options", "Check", -1, file), -1);
  platform.file_attributes[file] = file_attribute::kNormal;
  platform.SetProfileInt(file, "Options", "Check", 1);
  EXPECT_EQ(platform.FileAttributes("c:\\sys\\specfun.INI"), file_attribute::kNormal);
  EXPECT_EQ(platform.PrivateProfileInt("OPTIONS", "check", -1, file), 1);
  platform.fail_file_attributes = true;
  platform.fail_private_profile = true;
  EXPECT_EQ(platform.FileAttributes(file), std::nullopt);
  EXPECT_EQ(platform.PrivateProfileInt("Options", "Check", -1, file), -1);
}

TEST(TestPlatform, KeepsItsRegistryInSight) {
  TestPlatform platform;
  Long key = registry_root::kLocalMachine;
  for (const char* element : {"SoftWare", "", "Quenda"}) {
    ASSERT_EQ(platform.RegistryCreateKey(key, element, true, key), 0);
  }
  const RegistryValue value{registry_type::kText, "ONLINE"};
  EXPECT_EQ(platform.RegistrySetValue(key, "ACC1", value), 0);
  EXPECT_EQ(platform.registry.at("HKEY_LOCAL_MACHINE\\SoftWare\\Quenda").at("ACC1"), value);
  RegistryValue found;
  EXPECT_EQ(platform.RegistryQueryValue(key, "acc1", 7, found), 0);
  EXPECT_EQ(found, value);
  EXPECT_EQ(platform.RegistryQueryValue(key, "acc1", 6, found), system_code::kMoreData);
  EXPECT_EQ(platform.RegistryQueryValue(key, "none", 7, found), system_code::kFileNotFound);
  EXPECT_EQ(platform.RegistryQueryValue(registry_root::kUsers, "none", 7, found),
            system_code::kFileNotFound);
}

TEST(TestPlatform, RefusesBadRegistryCallsLikeTheMachine) {
  TestPlatform platform;
  Long key = 77;
  RegistryValue value;
  EXPECT_EQ(platform.RegistryCreateKey(123, "Key", true, key), system_code::kInvalidHandle);
  EXPECT_EQ(platform.RegistryCreateKey(registry_root::kUsers, "\\Key", true, key),
            system_code::kBadPathName);
  EXPECT_EQ(platform.RegistryQueryValue(123, "name", 7, value), system_code::kInvalidHandle);
  EXPECT_EQ(platform.RegistrySetValue(123, "name", value), system_code::kInvalidHandle);
  EXPECT_EQ(key, 77);
}

TEST(TestPlatform, FailsRegistryCallsWithTheCodeAskedFor) {
  TestPlatform platform;
  Long key = registry_root::kLocalMachine;
  RegistryValue value;
  platform.registry_create_code = system_code::kAccessDenied;
  platform.registry_query_code = 87;
  platform.registry_set_code = system_code::kDiskFull;
  EXPECT_EQ(platform.RegistryCreateKey(key, "Key", true, key), system_code::kAccessDenied);
  EXPECT_EQ(platform.RegistryQueryValue(key, "name", 7, value), 87);
  EXPECT_EQ(platform.RegistrySetValue(key, "name", value), system_code::kDiskFull);
  EXPECT_TRUE(platform.registry.empty());
}

TEST(TestPlatform, CollectsMessages) {
  TestPlatform platform;
  CurrentPlatform().ShowMessage("one");
  CurrentPlatform().ShowMessage("two");
  EXPECT_EQ(platform.messages, (std::vector<std::string>{"one", "two"}));
}

}  // namespace qdclgl
