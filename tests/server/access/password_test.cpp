#include "qdclgl/server/access/password.h"

#include <gtest/gtest.h>

namespace qdclgl::server {
namespace {

class PasswordTest : public ::testing::Test {
 protected:
  PasswordTest() { SetPasswordCost(PasswordCost::kLeast); }
};

TEST_F(PasswordTest, APasswordFitsItsOwnHashAlone) {
  const std::string hash = HashedPassword("sesame");
  EXPECT_TRUE(FitsPassword(hash, "sesame"));
  for (const char* other : {"", "Sesame", "sesame ", "none"}) {
    EXPECT_FALSE(FitsPassword(hash, other)) << other;
  }
  EXPECT_NE(HashedPassword("sesame"), hash) << "each hash has a salt of its own";
}

TEST_F(PasswordTest, WhereThereIsNoPasswordNothingIsHashed) {
  EXPECT_EQ(HashedPassword(""), kHashOfNone);
  EXPECT_TRUE(FitsPassword(std::string(kHashOfNone), ""));
  for (const char* other : {"none", " ", "sesame"}) {
    EXPECT_FALSE(FitsPassword(std::string(kHashOfNone), other)) << other;
  }
}

TEST_F(PasswordTest, AnEmptyPasswordThatWasHashedStillFits) {
  EXPECT_TRUE(FitsPassword("$argon2id$v=19$m=8,t=1,p=1$tAhFKfcFGpkKIJFQXYNiRw$"
                           "542xvXPjaLAs4WmhRf5AINwzSlVZoWX/0ubWAJM8r9s",
                           ""));
}

TEST_F(PasswordTest, WhoHasNoPasswordYetDoesNotGetIn) {
  for (const char* password : {"", "none", "sesame"}) {
    EXPECT_FALSE(FitsPassword(std::string(kNoHash), password)) << password;
  }
}

}  // namespace
}  // namespace qdclgl::server
