#include "qdclgl/frame/session/registry.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"
#include "tests/support/test_platform.h"

#ifndef _WIN32

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#endif

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::StateText;

constexpr Long kRoot = registry_root::kLocalMachine;

Variant ByteArray(const std::vector<std::uint8_t>& bytes) { return Variant(Bytes{bytes}); }

class RegTest : public ::testing::Test {
 protected:
  // The whole registry: a line for each key, and behind it one for each of its values.
  std::string Registry() const {
    std::string text;
    for (const auto& [key, values] : platform.registry) {
      text += key + "\n";
      for (const auto& [name, value] : values) {
        text += "  " + name + " " + std::to_string(value.type) + " " + Shown(value) + "\n";
      }
    }
    return text;
  }

  // Puts a value into the key HKEY_LOCAL_MACHINE\Key.
  void Store(const std::string& name, Long type, const std::string& data) {
    platform.registry["HKEY_LOCAL_MACHINE\\Key"][name] = {type, data};
  }

  // What the two ways to read give, one text where they agree: the result and what was read.
  std::string Read(const std::string& name, Long type, const Variant& in = Variant("before")) {
    Variant long_text = in, short_text = in;
    const bool read = reg.GetKeyValue(kRoot, "Key", name, long_text, type);
    const bool also_read = reg.GetValue(kRoot, "Key", name, short_text, type);
    const std::string text = read ? StateText(long_text) : "False";
    const std::string also = also_read ? StateText(short_text) : "False";
    return text == also ? text : text + ", with less room " + also;
  }

  TestPlatform platform;
  Reg reg;

 private:
  static std::string Shown(const RegistryValue& value) {
    if (value.IsText()) return "\"" + value.data + "\"";
    return StateText(ByteArray({value.data.begin(), value.data.end()}));
  }
};

// ---- Create ----

TEST_F(RegTest, CreateMakesAKeyForEachElementOfThePath) {
  const Long key = reg.Create(kRoot, "SoftWare\\Quenda\\LocalDatabase");
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\SoftWare\n"
                        "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\n"
                        "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase\n");
  EXPECT_EQ(platform.RegistrySetValue(key, "name", {registry_type::kText, "deepest"}), 0);
  EXPECT_EQ(platform.registry.at("HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase").size(), 1u);
}

TEST_F(RegTest, CreateSkipsEmptyElements) {
  reg.Create(kRoot, "\\\\A\\\\B C\\");
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\A\nHKEY_LOCAL_MACHINE\\A\\B C\n");
}

TEST_F(RegTest, CreateOfAnEmptyPathIsTheKeyItself) {
  EXPECT_EQ(reg.Create(kRoot, ""), kRoot);
  EXPECT_EQ(reg.Create(kRoot, "\\\\"), kRoot);
  EXPECT_EQ(reg.Create(12345, ""), 12345) << "nobody is asked whether there is such a key";
  EXPECT_EQ(Registry(), "");
}

TEST_F(RegTest, CreateStartsBelowAnyKey) {
  const Long key = reg.Create(registry_root::kCurrentUser, "A");
  reg.Create(key, "B");
  EXPECT_EQ(Registry(), "HKEY_CURRENT_USER\\A\nHKEY_CURRENT_USER\\A\\B\n");
}

TEST_F(RegTest, CreateRaisesTheCodeOfARefusedKey) {
  for (const Long code : {system_code::kAccessDenied, system_code::kDiskFull, Long{87}}) {
    platform.registry_create_code = code;
    EXPECT_EQ(ErrorOf([&] { reg.Create(kRoot, "A\\B"); }), "error " + std::to_string(code));
  }
  EXPECT_EQ(Registry(), "");
  platform.registry_create_code = system_code::kSuccess;
  EXPECT_EQ(ErrorOf([&] { reg.Create(12345, "A"); }), "error 6");
}

// A registry that takes the keys of one name for refused and notes the kind of each key asked for.
class ChoosyPlatform final : public Platform {
 public:
  ChoosyPlatform() { SetPlatform(this); }
  ~ChoosyPlatform() override { SetPlatform(&former_); }

  std::string log;

  std::optional<std::string> ComputerName(std::size_t) override { return std::nullopt; }
  Long ProcessId() override { return 0; }
  DateTime Now() override { return {}; }
  std::optional<std::string> SystemDirectory(std::size_t) override { return std::nullopt; }
  std::optional<std::string> AddressText(std::size_t) override { return std::nullopt; }
  Long PrivateProfileInt(const std::string&, const std::string&, Long value,
                         const std::string&) override {
    return value;
  }
  std::optional<std::uint32_t> FileAttributes(const std::string&) override { return std::nullopt; }
  Long RegistryCreateKey(Long parent, const std::string& name, bool persistent,
                         Long& key) override {
    log += std::to_string(parent) + " " + name + (persistent ? " persistent\n" : " volatile\n");
    if (name == "Refused") return system_code::kAccessDenied;
    key = ++last_key_;
    return system_code::kSuccess;
  }
  Long RegistryQueryValue(Long, const std::string&, std::size_t, RegistryValue&) override {
    return system_code::kFileNotFound;
  }
  Long RegistrySetValue(Long, const std::string&, const RegistryValue&) override {
    return system_code::kFileNotFound;
  }
  void ShowMessage(const std::string&) override {}

 private:
  Platform& former_ = CurrentPlatform();
  Long last_key_ = 0;
};

TEST(Reg, CreateMakesPersistentKeysUnlessToldOtherwise) {
  ChoosyPlatform platform;
  EXPECT_EQ(Reg().Create(77, "A\\B"), 2);
  EXPECT_EQ(Reg().Create(77, "A\\B", true), 4);
  EXPECT_EQ(Reg().Create(77, "A\\B", false), 6);
  EXPECT_EQ(platform.log, "77 A persistent\n1 B persistent\n"
                          "77 A persistent\n3 B persistent\n"
                          "77 A volatile\n5 B volatile\n");
}

TEST(Reg, CreateAsksNobodyForAnEmptyElement) {
  ChoosyPlatform platform;
  EXPECT_EQ(Reg().Create(77, "\\A\\\\B\\"), 2);
  EXPECT_EQ(platform.log, "77 A persistent\n1 B persistent\n");
}

TEST(Reg, CreateStopsAtTheFirstRefusedKey) {
  ChoosyPlatform platform;
  EXPECT_EQ(ErrorOf([] { Reg().Create(77, "A\\Refused\\B"); }), "error 5");
  EXPECT_EQ(platform.log, "77 A persistent\n1 Refused persistent\n");
}

TEST(Reg, ValuesLieInPersistentKeys) {
  ChoosyPlatform platform;
  Variant value;
  Reg().GetKeyValue(77, "A", "name", value, registry_type::kText);
  Reg().GetValue(77, "B", "name", value, registry_type::kText);
  EXPECT_FALSE(Reg().SetValue(77, "C", "name", Variant("text"), registry_type::kText));
  EXPECT_EQ(platform.log, "77 A persistent\n77 B persistent\n77 C persistent\n");
}

// ---- Reading ----

TEST_F(RegTest, ReadsATextUpToItsFirstNul) {
  Store("text", registry_type::kText, "ONLINE");
  Store("empty", registry_type::kText, "");
  Store("blanks", registry_type::kText, " a b");
  Store("cut", registry_type::kText, std::string("ON\0LINE", 7));
  Store("nothing", registry_type::kText, std::string("\0LINE", 5));
  EXPECT_EQ(Read("text", registry_type::kText), "\"ONLINE\"");
  EXPECT_EQ(Read("TEXT", registry_type::kText), "\"ONLINE\"");
  EXPECT_EQ(Read("empty", registry_type::kText), "\"\"");
  EXPECT_EQ(Read("blanks", registry_type::kText), "\" a b\"");
  EXPECT_EQ(Read("cut", registry_type::kText), "\"ON\"");
  EXPECT_EQ(Read("nothing", registry_type::kText), "\"\"");
}

TEST_F(RegTest, HasRoomFor2048BytesOfTextOr255WithTheClosingNul) {
  const auto long_text = [](std::size_t size) { return std::string(size, 'x'); };
  const auto shown = [&](std::size_t size) { return "\"" + long_text(size) + "\""; };
  Store("text", registry_type::kText, long_text(254));
  EXPECT_EQ(Read("text", registry_type::kText), shown(254));
  Store("text", registry_type::kText, long_text(255));
  EXPECT_EQ(Read("text", registry_type::kText), shown(255) + ", with less room False");
  Store("text", registry_type::kText, long_text(2047));
  EXPECT_EQ(Read("text", registry_type::kText), shown(2047) + ", with less room False");
  Store("text", registry_type::kText, long_text(2048));
  EXPECT_EQ(Read("text", registry_type::kText), "False");
}

TEST_F(RegTest, ReadsANumberOfFourBytesAsALong) {
  Store("number", registry_type::kNumber, std::string("\x04\x03\x02\x01", 4));
  Store("negative", registry_type::kNumber, "\xFE\xFF\xFF\xFF");
  Store("zero", registry_type::kNumber, std::string(4, '\0'));
  Store("long", registry_type::kNumber, "12345");
  EXPECT_EQ(Read("number", registry_type::kNumber), "16909060");
  EXPECT_EQ(Read("negative", registry_type::kNumber), "-2");
  EXPECT_EQ(Read("zero", registry_type::kNumber), "0");
  EXPECT_EQ(Read("long", registry_type::kNumber), "False");
}

TEST_F(RegTest, ReadsBytesIntoAnArrayOfTheCallersLength) {
  Store("bytes", registry_type::kBinary, std::string("\x01\x00\x03", 3));
  EXPECT_EQ(Read("bytes", registry_type::kBinary, ByteArray({9, 9, 9})), "bytes(010003)");
  EXPECT_EQ(Read("bytes", registry_type::kBinary, ByteArray({9, 9})), "False");
  EXPECT_EQ(Read("bytes", registry_type::kBinary, ByteArray({})), "False");
}

TEST_F(RegTest, BytesBehindThoseThatWereReadStay) {
  Store("bytes", registry_type::kBinary, "\x01\x02");
  EXPECT_EQ(Read("bytes", registry_type::kBinary, ByteArray({7, 8, 9, 10})), "bytes(0102090a)");
}

TEST_F(RegTest, ReadsBytesIntoNothingButAnArray) {
  Store("bytes", registry_type::kBinary, "\x01\x02");
  for (const Variant& in : {Variant("ab"), Variant(), Variant(Null), Variant(Long{2})}) {
    EXPECT_EQ(Read("bytes", registry_type::kBinary, in), "False") << StateText(in);
  }
}

TEST_F(RegTest, ReadsNoOtherType) {
  Store("text", registry_type::kExpandableText, "%HOME%");
  for (const Long type : {registry_type::kExpandableText, Long{0}, Long{5}, Long{7}, Long{-1}}) {
    Variant value = Variant("before");
    EXPECT_FALSE(reg.GetKeyValue(kRoot, "Key", "text", value, type));
    EXPECT_FALSE(reg.GetValue(kRoot, "Key", "text", value, type));
    EXPECT_EQ(StateText(value), "\"before\"") << type;
  }
}

TEST_F(RegTest, AMissingValueIsFalseAndItsPathIsMade) {
  Variant value;
  EXPECT_FALSE(reg.GetValue(kRoot, "A\\B", "none", value, registry_type::kText));
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\A\nHKEY_LOCAL_MACHINE\\A\\B\n");
  EXPECT_FALSE(reg.GetKeyValue(kRoot, "C", "none", value, registry_type::kNumber));
  value = ByteArray({1});
  EXPECT_FALSE(reg.GetValue(kRoot, "D", "none", value, registry_type::kBinary));
  EXPECT_FALSE(reg.GetValue(kRoot, "E", "none", value, 99));
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\A\nHKEY_LOCAL_MACHINE\\A\\B\nHKEY_LOCAL_MACHINE\\C\n"
                        "HKEY_LOCAL_MACHINE\\D\nHKEY_LOCAL_MACHINE\\E\n");
}

TEST_F(RegTest, AFailureToReadIsFalse) {
  Store("text", registry_type::kText, "ONLINE");
  platform.registry_query_code = system_code::kAccessDenied;
  EXPECT_EQ(Read("text", registry_type::kText), "False");
  platform.registry_query_code = system_code::kSuccess;
  platform.registry_create_code = system_code::kAccessDenied;
  EXPECT_EQ(Read("text", registry_type::kText), "False");
  platform.registry_create_code = system_code::kSuccess;
  EXPECT_EQ(Read("text", registry_type::kText), "\"ONLINE\"");
}

// ---- Writing ----

TEST_F(RegTest, WritesATextUnderTheTypeAskedFor) {
  EXPECT_TRUE(reg.SetValue(kRoot, "Key", "text", Variant("ONLINE"), registry_type::kText));
  EXPECT_TRUE(reg.SetValue(kRoot, "Key", "path", Variant("%X%"), registry_type::kExpandableText));
  EXPECT_TRUE(reg.SetValue(kRoot, "Key", "", Variant("default"), registry_type::kText));
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\Key\n"
                        "   1 \"default\"\n"
                        "  path 2 \"%X%\"\n"
                        "  text 1 \"ONLINE\"\n");
}

TEST_F(RegTest, WritesAWholeNumberAsFourBytes) {
  const std::pair<Variant, std::string> numbers[] = {
      {Variant(Long{16909060}), "bytes(04030201)"}, {Variant(Long{-2}), "bytes(feffffff)"},
      {Variant(Integer{-1}), "bytes(ffffffff)"},    {Variant(Integer{258}), "bytes(02010000)"},
      {Variant(Byte{255}), "bytes(ff000000)"},      {Variant(Long{0}), "bytes(00000000)"},
  };
  for (const auto& [number, bytes] : numbers) {
    EXPECT_TRUE(reg.SetValue(kRoot, "Key", "n", number, registry_type::kNumber));
    EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\Key\n  n 4 " + bytes + "\n") << StateText(number);
  }
}

TEST_F(RegTest, WritesAByteArrayUnderTheTypeAskedFor) {
  EXPECT_TRUE(reg.SetValue(kRoot, "Key", "bytes", ByteArray({1, 0, 255}), registry_type::kBinary));
  EXPECT_TRUE(reg.SetValue(kRoot, "Key", "other", ByteArray({}), 7));
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\Key\n  bytes 3 bytes(0100ff)\n  other 7 bytes()\n");
}

TEST_F(RegTest, WritesNothingOfAnyOtherTypeAndMakesThePath) {
  const Variant values[] = {
      Variant(),
      Variant(Null),
      Variant(Missing),
      Variant(true),
      Variant(Single{1}),
      Variant(Double{1}),
      Variant(DateTime(1)),
      Variant(Currency(1)),
      Variant(Decimal::FromInteger(1)),
      Variant(Nothing),
      Variant(Make<Dictionary>()),
  };
  for (const Variant& value : values) {
    for (const Long type : {registry_type::kText, registry_type::kBinary, registry_type::kNumber}) {
      EXPECT_FALSE(reg.SetValue(kRoot, "Key", "name", value, type)) << StateText(value);
    }
  }
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\Key\n");
}

TEST_F(RegTest, ARefusedWriteIsFalse) {
  platform.registry_set_code = system_code::kDiskFull;
  EXPECT_FALSE(reg.SetValue(kRoot, "Key", "name", Variant("text"), registry_type::kText));
  EXPECT_EQ(Registry(), "HKEY_LOCAL_MACHINE\\Key\n");
}

TEST_F(RegTest, AKeyRefusedToAWriteIsRaised) {
  platform.registry_create_code = system_code::kAccessDenied;
  for (const Variant& value : {Variant("text"), Variant(Long{1}), Variant()}) {
    EXPECT_EQ(ErrorOf([&] { reg.SetValue(kRoot, "Key", "name", value, registry_type::kText); }),
              "error 5");
  }
  EXPECT_EQ(Registry(), "");
}

TEST_F(RegTest, ReadsBackWhatItWrote) {
  reg.SetValue(kRoot, "Key", "text", Variant("Größe"), registry_type::kText);
  reg.SetValue(kRoot, "Key", "number", Variant(Long{-123456}), registry_type::kNumber);
  reg.SetValue(kRoot, "Key", "bytes", ByteArray({1, 2, 3}), registry_type::kBinary);
  EXPECT_EQ(Read("text", registry_type::kText), "\"Größe\"");
  EXPECT_EQ(Read("number", registry_type::kNumber), "-123456");
  EXPECT_EQ(Read("bytes", registry_type::kBinary, ByteArray({0, 0, 0})), "bytes(010203)");
}

// ---- The machine's own registry ----

#ifndef _WIN32

// A registry file of the test's own.
class TemporaryRegistry {
 public:
  TemporaryRegistry() {
    std::string pattern = std::filesystem::temp_directory_path() / "registry_test.XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    folder_ = pattern;
    if (const char* former = std::getenv(kVariable)) former_ = former;
    ::setenv(kVariable, File().c_str(), 1);
  }
  TemporaryRegistry(const TemporaryRegistry&) = delete;
  TemporaryRegistry& operator=(const TemporaryRegistry&) = delete;
  ~TemporaryRegistry() {
    if (former_) {
      ::setenv(kVariable, former_->c_str(), 1);
    } else {
      ::unsetenv(kVariable);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string Text() const {
    std::ifstream file(File(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  static constexpr const char* kVariable = "QDCLGL_REGISTRY";

  std::string File() const { return folder_ + "/registry"; }

  std::string folder_;
  std::optional<std::string> former_;
};

// Runs `action` in a child process; what it returns, or -1 when the child did not end by itself.
template <class Action>
int InOtherProcess(Action action) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(action());
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

TEST(Reg, AnotherProcessReadsWhatOneWrote) {
  const TemporaryRegistry registry;
  const int written = InOtherProcess([] {
    Reg reg;
    return reg.SetValue(kRoot, "SoftWare\\Quenda\\LocalDatabase\\Müller", "ACC1",
                        Variant("OFFLINE"), registry_type::kText) &&
                   reg.SetValue(kRoot, "SoftWare\\Quenda", "", Variant(Long{-5}),
                                registry_type::kNumber) &&
                   reg.SetValue(kRoot, "SoftWare\\Quenda", "Bytes", ByteArray({0, 10, 255}),
                                registry_type::kBinary)
               ? 0
               : 1;
  });
  ASSERT_EQ(written, 0);

  const Reg reg;
  Variant text, number, bytes = ByteArray({9, 9, 9, 9});
  EXPECT_TRUE(reg.GetKeyValue(kRoot, "software\\quenda\\localdatabase\\müller", "acc1", text,
                              registry_type::kText));
  EXPECT_TRUE(reg.GetValue(kRoot, "SoftWare\\Quenda", "", number, registry_type::kNumber));
  EXPECT_TRUE(reg.GetValue(kRoot, "SoftWare\\Quenda", "Bytes", bytes, registry_type::kBinary));
  EXPECT_EQ(StateText(text) + " " + StateText(number) + " " + StateText(bytes),
            "\"OFFLINE\" -5 bytes(000aff09)");
}

TEST(Reg, AProcessSeesWhatAnotherOneChanges) {
  const TemporaryRegistry registry;
  Reg().SetValue(kRoot, "Key", "state", Variant("ONLINE"), registry_type::kText);
  const int changed = InOtherProcess([] {
    Variant state;
    if (!Reg().GetValue(kRoot, "Key", "state", state, registry_type::kText)) return 1;
    if (StateText(state) != "\"ONLINE\"") return 2;
    return Reg().SetValue(kRoot, "Key", "state", Variant("OFFLINE"), registry_type::kText) ? 0 : 3;
  });
  ASSERT_EQ(changed, 0);
  Variant state;
  EXPECT_TRUE(Reg().GetValue(kRoot, "Key", "state", state, registry_type::kText));
  EXPECT_EQ(StateText(state), "\"OFFLINE\"");
}

TEST(Reg, AReadOfAMissingValueLeavesItsPathInTheFile) {
  const TemporaryRegistry registry;
  Variant value;
  EXPECT_FALSE(Reg().GetValue(kRoot, "A\\B", "none", value, registry_type::kText));
  EXPECT_EQ(registry.Text(), "HKEY_LOCAL_MACHINE\n"
                             "HKEY_LOCAL_MACHINE\\A\n"
                             "HKEY_LOCAL_MACHINE\\A\\B\n");
}

TEST(Reg, AVolatileKeyIsForgottenWithItsProcess) {
  const TemporaryRegistry registry;
  const int made = InOtherProcess([] {
    const Long key = Reg().Create(kRoot, "Volatile\\Below", false);
    return Reg().SetValue(key, "", "name", Variant("text"), registry_type::kText) ? 0 : 1;
  });
  ASSERT_EQ(made, 0);
  EXPECT_EQ(registry.Text().find("Volatile"), std::string::npos);
  Variant value;
  EXPECT_FALSE(Reg().GetValue(kRoot, "Volatile\\Below", "name", value, registry_type::kText));
}

#endif  // _WIN32

}  // namespace
}  // namespace qdclgl
