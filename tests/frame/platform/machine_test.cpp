#include "qdclgl/frame/platform/machine.h"

#include <gtest/gtest.h>

#include "tests/support/test_platform.h"

namespace qdclgl {
namespace {

class MachineTest : public ::testing::Test {
 protected:
  TestPlatform platform;
};

// ---- GetMachineName ----

TEST_F(MachineTest, TheMachineNameIsInUpperCase) {
  platform.computer_name = "ledger-7b";
  EXPECT_EQ(GetMachineName(), "LEDGER-7B");
  platform.computer_name = "büro";
  EXPECT_EQ(GetMachineName(), "BÜRO");
}

TEST_F(MachineTest, TheMachineNameIsEmptyOnFailure) {
  platform.fail_computer_name = true;
  EXPECT_EQ(GetMachineName(), "");
}

TEST_F(MachineTest, TheMachineNameHasUpTo127Characters) {
  platform.computer_name = std::string(127, 'n');
  EXPECT_EQ(GetMachineName(), std::string(127, 'N'));
  platform.computer_name = std::string(128, 'n');
  EXPECT_EQ(GetMachineName(), "");
}

// ---- GetComputerNameOrNoName ----

TEST_F(MachineTest, TheComputerNameStaysAsTheSystemGivesIt) {
  platform.computer_name = "Ledger-7b";
  EXPECT_EQ(GetComputerNameOrNoName(), "Ledger-7b");
}

TEST_F(MachineTest, TheComputerNameLosesItsLeadingBlanksOnly) {
  platform.computer_name = "  Ledger 7 ";
  EXPECT_EQ(GetComputerNameOrNoName(), "Ledger 7 ");
}

TEST_F(MachineTest, AComputerNameOfBlanksOrNothingIsEmpty) {
  platform.computer_name = "   ";
  EXPECT_EQ(GetComputerNameOrNoName(), "");
  platform.computer_name = "";
  EXPECT_EQ(GetComputerNameOrNoName(), "");
}

TEST_F(MachineTest, TheComputerNameIsNoNameOnFailure) {
  platform.fail_computer_name = true;
  EXPECT_EQ(GetComputerNameOrNoName(), "NoName");
}

TEST_F(MachineTest, TheComputerNameHasUpTo39Characters) {
  platform.computer_name = std::string(39, 'n');
  EXPECT_EQ(GetComputerNameOrNoName(), std::string(39, 'n'));
  platform.computer_name = std::string(40, 'n');
  EXPECT_EQ(GetComputerNameOrNoName(), "NoName");
  EXPECT_EQ(GetMachineName(), std::string(40, 'N'));
}

// ---- GetIPAddress ----

TEST_F(MachineTest, TheAddressIsThePlatformsText) {
  platform.address = "192.168.1.20";
  EXPECT_EQ(GetIPAddress(), "192.168.1.20");
}

TEST_F(MachineTest, TheAddressIsEmptyOnFailure) {
  platform.fail_address_text = true;
  EXPECT_EQ(GetIPAddress(), "");
}

TEST_F(MachineTest, TheAddressHasUpTo63Characters) {
  platform.address = std::string(63, '1');
  EXPECT_EQ(GetIPAddress(), std::string(63, '1'));
  platform.address = std::string(64, '1');
  EXPECT_EQ(GetIPAddress(), "");
}

// ---- GetSystemDirectoryPath ----

TEST_F(MachineTest, TheSystemDirectoryEndsInABackslash) {
  platform.system_directory = "C:\\WINDOWS\\system32";
  EXPECT_EQ(GetSystemDirectoryPath(), "C:\\WINDOWS\\system32\\");
  platform.system_directory = "C:\\";
  EXPECT_EQ(GetSystemDirectoryPath(), "C:\\");
}

TEST_F(MachineTest, TheSystemDirectoryIsEmptyOnFailure) {
  platform.fail_system_directory = true;
  EXPECT_EQ(GetSystemDirectoryPath(), "");
}

TEST_F(MachineTest, AnEmptySystemDirectoryStaysEmpty) {
  platform.system_directory = "";
  EXPECT_EQ(GetSystemDirectoryPath(), "");
}

TEST_F(MachineTest, TheSystemDirectoryHasUpTo127Characters) {
  platform.system_directory = std::string(127, 'd');
  EXPECT_EQ(GetSystemDirectoryPath(), std::string(127, 'd') + "\\");
  platform.system_directory = std::string(128, 'd');
  EXPECT_EQ(GetSystemDirectoryPath(), "");
}

// ---- AppendBackslash ----

TEST(AppendBackslash, PutsOneBehindATextThatHasNone) {
  const std::pair<const char*, const char*> cases[] = {
      {"C:", "C:\\"}, {"C:\\", "C:\\"},     {"C:\\\\", "C:\\\\"},   {"", "\\"},
      {"\\", "\\"},   {"/usr/", "/usr/\\"}, {"C:\\a ", "C:\\a \\"},
  };
  for (const auto& [path, ended] : cases) {
    String text = path;
    AppendBackslash(text);
    EXPECT_EQ(text, ended);
  }
}

}  // namespace
}  // namespace qdclgl
