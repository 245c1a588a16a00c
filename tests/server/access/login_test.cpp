#include "qdclgl/server/access/login.h"

#include <thread>

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kSession = "QDSVGLSession.SessionUpdate";

class LoginTest : public RecordsTest {
 protected:
  static Long ProcessId() { return CurrentPlatform().ProcessId(); }
  static Variant Stored(std::string_view key) {
    return Call("QDCPropsMgr.ShareProps", "GetProperty", ProcessId(), key);
  }
  static Variant Cached(std::string_view key) {
    return Call("QDCMtsCacheService.CacheFacade", "GetItem", ProcessId(), key);
  }
};

TEST_P(LoginTest, TheLibraryFindsItsSession) {
  EXPECT_EQ(GetPropsString(), props);
  EXPECT_EQ(Stored("PropsString").As<String>(), props);
  EXPECT_EQ(Stored("UserName").As<String>(), "administrator");
  EXPECT_EQ(Stored("UserID").As<Long>(), 1);
  EXPECT_EQ(Stored("LogStatus").As<Long>(), 1);
  EXPECT_EQ(Stored("MachineName").As<String>(), GetMachineName());
  EXPECT_EQ(Cached("IsOuterLogin").As<Long>(), 0);
  EXPECT_TRUE(Stored("FPassword").IsEmpty());
  EXPECT_TRUE(Stored("username").IsEmpty()) << "keys are exact";
  EXPECT_TRUE(Call("QDCPropsMgr.ShareProps", "GetProperty", ProcessId() + 1, "UserName").IsEmpty())
      << "the session is of this process";
}

TEST_P(LoginTest, AnOuterLoginIsToldByTheCache) {
  Call(kSession, "Login", connection, "administrator", "", true);
  EXPECT_EQ(Cached("IsOuterLogin").As<Long>(), 1);
}

TEST_P(LoginTest, WrongUsersAndPasswordsAreToldAlike) {
  AddUser("anna", "reader");
  Call("QDSVGLUser.UserUpdate", "Create", props,
       Row({{"FName", "bob"}, {"FRoles", "reader"}, {"FDisabled", true}}));
  std::string first;
  for (const auto& [user, password] : std::initializer_list<std::pair<std::string, std::string>>{
           {"nobody", ""},
           {"anna", "x"},
           {"bob", ""},
           {"", ""},
           {"Anna", ""},
           {"anna ", ""},
           {"' OR '1'='1", ""},
           {"anna' --", ""},
           {"anna", std::string(100'000, 'x')}}) {
    const auto login = [&, name = user, word = password] { Login(name, word); };
    EXPECT_EQ(RefusalOf(login), "LoginRefused") << user;
    if (first.empty()) first = SentenceOf(login);
    EXPECT_EQ(SentenceOf(login), first) << user;
  }
  EXPECT_NE(RefusalOf([&] { Login(std::string("anna\0", 5)); }), "none");
  EXPECT_NE(RefusalOf([&] { Login("anna", std::string("\0", 1)); }), "none");
  EXPECT_NE(RefusalOf([&] { Login("\xFF"); }), "none");
  EXPECT_EQ(Stored("UserName").As<String>(), "administrator")
      << "a refused login leaves the session before it";
}

TEST_P(LoginTest, ASessionIsNeededAndCantBeGuessed) {
  const auto read = [](std::string_view who) {
    return RefusalOf([&] { Call("QDSVBase.SystemProfile", "ListProfiles", who, "GL"); });
  };
  EXPECT_EQ(read(props), "none");
  const std::string token(ConnectionText::Parse(props)[connection_key::kSession]);
  EXPECT_EQ(token.size(), 32u);
  for (const std::string& wrong :
       {std::string(), connection, props + " ", props.substr(1), "<>1<>1" + props,
        ConnectionText::Parse(props).With(connection_key::kSession, "0").ToText(),
        ConnectionText::Parse(props).With(connection_key::kDataSource, "x").ToText()}) {
    EXPECT_EQ(read(wrong), "NotLoggedIn") << wrong;
  }
  EXPECT_EQ(read("<>1" + props), "none") << "the mark of an automatic save";
}

TEST_P(LoginTest, EachLoginIsASessionOfItsOwn) {
  AddUser("anna", "reader");
  const std::string administrator = props;
  const std::string anna = Login("anna");
  EXPECT_NE(anna, administrator);
  EXPECT_EQ(Stored("UserName").As<String>(), "anna");
  const auto write = [](const std::string& who) {
    return RefusalOf([&] { Call("QDSVBase.SystemProfile", "SetProfile", who, "PA", "a", "b"); });
  };
  EXPECT_EQ(write(anna), "NotPermitted");
  EXPECT_EQ(write(administrator), "none");
  EXPECT_EQ(SentenceOf([&] { Call("QDSVBase.SystemProfile", "SetProfile", anna, "PA", "a", "b"); }),
            "User anna (reader) may not change settings.");
}

TEST_P(LoginTest, ALogoutEndsTheSession) {
  Call(kSession, "Logout", props);
  EXPECT_TRUE(Stored("UserName").IsEmpty());
  EXPECT_EQ(RefusalOf([&] { Call(kSession, "Logout", props); }), "NotLoggedIn");
  EXPECT_EQ(RefusalOf([&] { Call("QDSVBase.SystemProfile", "ListProfiles", props, "GL"); }),
            "NotLoggedIn");
}

TEST_P(LoginTest, OtherThreadsWorkInTheSameSession) {
  std::string periods;
  std::thread([&] {
    SetApartmentStarted(true);
    periods = TextOf(*Call("QDSVBase.SystemProfile", "ListProfiles", props, "GL").As<Dictionary>());
    Connections::OfThisThread().CloseAll();
  }).join();
  EXPECT_NE(periods.find("CurrentYear=2024"), std::string::npos);
}

TEST_P(LoginTest, AUserWithoutRolesDoesNothing) {
  AddUser("anna", "");
  Login("anna");
  EXPECT_EQ(RefusalOf([&] { Call("QDSVBase.SystemProfile", "ListProfiles", props, "GL"); }),
            "NotPermitted");
}

TEST(RolesTest, RolesAreWordsInOneOrder) {
  EXPECT_EQ(RolesText(0), "");
  EXPECT_EQ(RolesText(63), "reader, preparer, checker, cashier, poster, administrator");
  for (unsigned roles = 0; roles < 64; ++roles) EXPECT_EQ(RolesFrom(RolesText(roles)), roles);
  EXPECT_EQ(RolesFrom(" POSTER,,reader , reader"), 17u);
  for (const char* text : {"king", "reader checker", "reader;", "32", "reader\n"}) {
    EXPECT_EQ(RefusalOf([&] { RolesFrom(text); }), "BadValue") << text;
  }
}

QDCLGL_BOOKS_TEST(LoginTest);

}  // namespace
}  // namespace qdclgl::server::testing
