#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/session.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLUser.UserInfo";
constexpr const char* kUpdate = "QDSVGLUser.UserUpdate";

const RecordKind kUsers = {
    .noun = "User",
    .subject = "User",
    .info = kInfo,
    .update = kUpdate,
    .table = "t_User",
    .id = "FUserID",
    .columns = {{"FName", "anna", "Bob"},
                {"FRoles", "preparer, checker", "reader"},
                {"FDisabled", true, false}},
    .spelled = {{"FRoles", " Checker ,preparer,"}},
    .longest = {{"FName", 255}},
    .coded = {"FRoles"},
    .never_shown = {"FPassword"},
    .required = {"FName"},
    .unique = {{"FName", "NameTaken"}},
    .order = "FName",
    .has_list_options = false,
    .further_methods = {{kUpdate, "SetPassword", "administrator", {"x"}}},
};
QDCLGL_RECORD_KIND(User, kUsers);

class UserTest : public RecordCalls {
 protected:
  UserTest() : RecordCalls("QDSVGLUser.User") {}

  std::string Users(std::string filter = "", std::string sort = "") {
    return TextOf(Call(kInfo, "GetList", props, ByRef(filter), ByRef(sort)).As<Recordset>(),
                  {"FName", "FRoles", "FDisabled"});
  }
  Long IdOf(std::string_view name) {
    return Books().QueryValue<Long>("SELECT FUserID FROM t_User WHERE FName = ?", name).value_or(0);
  }
};

TEST_P(UserTest, AUserIsSavedAndLogsIn) {
  const Ref<Dictionary> row =
      Row({{"FName", "anna"}, {"FRoles", " Checker ,preparer,"}, {"FPassword", "sesame"}});
  const Long id = Create(row);
  EXPECT_EQ(row->Value("FUserID").As<Long>(), id);
  EXPECT_EQ(row->Value("FVersion").As<Long>(), 1);
  EXPECT_EQ(row->Value("FRoles").As<String>(), " Checker ,preparer,");
  EXPECT_EQ(TextOf(*Detail(id)), "FUserID=" + std::to_string(id) +
                                     ";FVersion=1;FName=anna;FRoles=preparer, checker;"
                                     "FDisabled=False;");
  EXPECT_EQ(RefusalOf([&] { Login("anna"); }), "LoginRefused");
  EXPECT_EQ(RefusalOf([&] { Login("anna", "Sesame"); }), "LoginRefused");
  Login("anna", "sesame");
}

TEST_P(UserTest, PasswordsAreKeptAsSaltedHashesOnly) {
  Create(Row({{"FName", "anna"}, {"FPassword", "sesame"}}));
  Create(Row({{"FName", "bob"}, {"FPassword", "sesame"}}));
  const auto hashes =
      Books().Query<std::string>("SELECT FPassword FROM t_User WHERE FName <> 'administrator'");
  ASSERT_EQ(hashes.size(), 2u);
  EXPECT_NE(hashes[0], hashes[1]);
  EXPECT_TRUE(std::get<0>(hashes[0]).starts_with("$argon2id$"));
  EXPECT_EQ(State().find("sesame"), std::string::npos);
}

TEST_P(UserTest, AnUpdateKeepsThePassword) {
  const Long id = Create(Row({{"FName", "anna"}, {"FRoles", "reader"}, {"FPassword", "sesame"}}));
  Change(id, "FName", "anne");
  Login("anne", "sesame");
  Login("administrator");
  const Ref<Dictionary> row = Detail(id);
  row->Value("FPassword", "other");
  EXPECT_EQ(RefusalOf([&] { Update(id, row); }), "BadValue");
  Login("anne", "sesame");
}

TEST_P(UserTest, TheLastAdministratorStays) {
  AddUser("anna", "preparer, administrator");
  const Long administrator = IdOf("administrator"), anna = IdOf("anna");
  Change(anna, "FDisabled", true);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Change(administrator, "FDisabled", true); }), "InUse");
  EXPECT_EQ(RefusalOf([&] { Change(administrator, "FRoles", "reader, poster"); }), "InUse");
  EXPECT_EQ(RefusalOf([&] { Delete(administrator); }), "InUse");
  EXPECT_EQ(SentenceOf([&] { Delete(administrator); }),
            "User administrator: this is the last administrator.");
  EXPECT_EQ(State(), before);
  Change(anna, "FDisabled", false);
  Login("anna");
  Delete(administrator);
  EXPECT_EQ(Users(), "anna preparer, administrator False\n");
  EXPECT_EQ(Breaches(), "");
}

TEST_P(UserTest, ADisabledUserDoesNotLogIn) {
  AddUser("anna", "reader");
  Change(IdOf("anna"), "FDisabled", true);
  EXPECT_EQ(RefusalOf([&] { Login("anna"); }), "LoginRefused");
}

TEST_P(UserTest, IdsFitIntoVouchers) {
  Books().Execute("INSERT INTO t_User (FUserID, FVersion, FName, FPassword, FRoles, FDisabled)"
                  " VALUES (32767, 1, 'last', '', 0, 0)");
  if (!Books().IsSQLite()) {
    Books().QueryValue<Long>("SELECT setval(pg_get_serial_sequence('t_user', 'fuserid'), 32767)");
  }
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { AddUser("anna", "reader"); }), "BadValue");
  EXPECT_EQ(State(), before);
}

TEST_P(UserTest, PeopleChangeTheirOwnPassword) {
  AddUser("anna", "reader");
  AddUser("bob", "reader, preparer, checker, cashier, poster");
  const Long anna = IdOf("anna"), bob = IdOf("bob");
  Login("anna");
  Call(kUpdate, "SetPassword", props, anna, "one");
  Login("anna", "one");
  Call(kUpdate, "SetPassword", props, Long{0}, "two", "one");
  EXPECT_EQ(RefusalOf([&] { Login("anna", "one"); }), "LoginRefused");
  for (const auto& [user, password, other] :
       {std::tuple("anna", "two", bob), std::tuple("bob", "", anna)}) {
    Login(user, password);
    const std::string before = State();
    EXPECT_EQ(RefusalOf([&, id = other] { Call(kUpdate, "SetPassword", props, id, "x"); }),
              "NotPermitted");
    EXPECT_EQ(State(), before);
  }
  Login("administrator");
  Call(kUpdate, "SetPassword", props, anna, "three");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "SetPassword", props, Long{99}, "x"); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Call(kUpdate, "SetPassword", connection, anna, "x"); }), "NotLoggedIn");
  Login("anna", "three");
}

TEST_P(UserTest, RolesAreWordsAndPasswordsTexts) {
  const std::string before = State();
  const auto refusal = [&](std::string_view key, const Variant& value) {
    const Ref<Dictionary> row = Row({{"FName", "bob"}, {key, value}});
    const std::string sent = TextOf(*row);
    const std::string name = RefusalOf([&] { Create(row); });
    EXPECT_EQ(TextOf(*row), sent);
    return name;
  };
  EXPECT_EQ(refusal("FRoles", "king"), "BadValue");
  EXPECT_EQ(refusal("FRoles", Long{32}), "BadValue");
  EXPECT_EQ(refusal("FPassword", std::string("a\0b", 3)), "BadValue");
  EXPECT_EQ(State(), before);
}

TEST_P(UserTest, ListsAreFilteredByWordsOfRoles) {
  AddUser("anna", "preparer, checker");
  AddUser("bob", "");
  EXPECT_EQ(Users("FRoles LIKE '%checker%'"), "anna preparer, checker False\n");
  EXPECT_EQ(Users("NOT FDisabled AND FRoles = ''"), "bob  False\n");
}

TEST_P(UserTest, ANewPasswordIsOnTheAuditTrailWithoutItsText) {
  AddUser("anna", "reader");
  const Long id = IdOf("anna");
  FailEachStatement([&] { Call(kUpdate, "SetPassword", props, id, "sesame"); });
  const auto list =
      Call("QDSVGLAudit.AuditInfo", "GetList", props, "FSubject = 'User' AND FAction <> 'Create'")
          .As<Recordset>();
  EXPECT_EQ(TextOf(list, {"FUserName", "FSubject", "FRecordID", "FRecord", "FAction"}),
            "administrator User " + std::to_string(id) + " anna SetPassword\n");
  list->MoveFirst();
  const std::string changes = list->Row()->Value("FChanges").As<String>();
  EXPECT_TRUE(changes.starts_with("{\"FPassword\":[\"fingerprint ")) << changes;
  const auto trail =
      TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props).As<Recordset>(), {"FChanges"});
  const auto hash =
      Books().QueryValue<std::string>("SELECT FPassword FROM t_User WHERE FUserID = ?", id);
  for (const std::string& secret : {std::string("sesame"), std::string("argon2"), *hash}) {
    EXPECT_EQ(trail.find(secret), trail.npos) << secret;
  }
  EXPECT_EQ(Detail(id)->Value("FVersion").As<Long>(), 1) << "who edits the user is not disturbed";
}

QDCLGL_BOOKS_TEST(UserTest);

}  // namespace
}  // namespace qdclgl::server::testing
