// What only POSIX has: modes of files, and variables that are empty.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/cli_fixture.h"

namespace qdclgl::cli::testing {
namespace {

namespace fs = std::filesystem;

class Posix : public CliTest {};
QDCLGL_CLI_TEST(Posix);

TEST_P(Posix, AUserIsChangedAsAWholeOrNotAtAll) {
  Init();
  EXPECT_EQ(Run({"user", "ann", "--roles", "reader", "--no-password"}).code, 0);
  const auto roles = [&] {
    return ParseJson(Run({"users", "--json", "--filter", "FName = 'ann'"}).out).at(0).at("FRoles");
  };
  // No password may be empty unless somebody says so.
  SetVariable("QDCLGL_NEW_PASSWORD", "");
  EXPECT_EQ(Run({"user", "ann", "--roles", "poster", "--set-password"}).code, 1);
  EXPECT_EQ(roles(), "reader");
  SetVariable("QDCLGL_NEW_PASSWORD", "open");
  EXPECT_EQ(Run({"user", "ann", "--roles", "poster", "--set-password"}).code, 0);
  EXPECT_EQ(roles(), "poster");
  UnsetVariable("QDCLGL_NEW_PASSWORD");
}

TEST_P(Posix, ALoginThatOthersCanReachIsNotGoneBy) {
  SetVariable("QDCLGL_PASSWORD", "sesame");
  ASSERT_EQ(Run({"init", "--year", "2024"}).code, 0);
  ASSERT_EQ(Run({"login"}).code, 0);
  UnsetVariable("QDCLGL_PASSWORD");
  const fs::path file = fs::directory_iterator(folder.Path("sessions"))->path();
  fs::permissions(file, fs::perms::others_read, fs::perm_options::add);
  EXPECT_EQ(Said({"settings"}), "6 qdclgl: " + file.string() +
                                    " keeps a login and others can reach it; remove it, and log in "
                                    "again\n");
}

}  // namespace
}  // namespace qdclgl::cli::testing
