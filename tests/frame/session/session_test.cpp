#include "qdclgl/frame/session/session.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>

#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::Opaque;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;

constexpr char kFacade[] = "QDCMtsCacheService.CacheFacade";
constexpr char kStore[] = "QDCPropsMgr.ShareProps";

// A session object whose properties are plain values.
class PlainSession final : public Object {
 public:
  std::string_view ClassName() const override { return "Session"; }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override {
    const auto found = properties.find(name);
    if (found == properties.end()) return Object::Invoke(name, kind, arguments);
    log += std::string(name) + (kind == CallKind::kGet && arguments.empty() ? " " : "? ");
    return found->second;
  }

  std::map<std::string, Variant, std::less<>> properties;
  std::string log;
};

// Puts a session object into the apartment's slot for a while.
class ScopedSessionObject {
 public:
  explicit ScopedSessionObject(const Ref<Object>& session) { SetSessionObject(session); }
  ScopedSessionObject(const ScopedSessionObject&) = delete;
  ScopedSessionObject& operator=(const ScopedSessionObject&) = delete;
  ~ScopedSessionObject() { SetSessionObject(Nothing); }
};

class Session : public ::testing::Test {
 protected:
  Session() { server.LogSession(); }

  // The value of a key, and behind it the log of what was asked.
  std::string Asked(const String& key) {
    const std::string value = StateText(GetSessionProperty(key));
    return value + "\n" + server.TakeLog();
  }

  RecordingServer server;
};

// ---- A session object ----

TEST_F(Session, ASessionThatPutsAnotherInItsPlaceMayFinishItsAnswer) {
  const auto session = [] {
    return Make<testing::Foreign>([text = std::string("a text of more than fourteen bytes")] {
      SetSessionObject(Nothing);
      return Variant(text);
    });
  };
  const ScopedSessionObject scope(session());
  EXPECT_EQ(GetPropsString(), "a text of more than fourteen bytes");
  EXPECT_EQ(SessionObject(), nullptr);
}

// ---- Outer login ----

TEST_F(Session, AnOuterLoginIsAskedAtTheFacadeForTheKindAndForTheValue) {
  EXPECT_EQ(Asked("UserName"), "\"user\"\n"
                               "create-object QDCMtsCacheService.CacheFacade\n"
                               "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                               "call GetItem(ref 4711, \"UserName\") -> \"user\"\n"
                               "call GetItem(ref 4711, \"UserName\") -> \"user\"\n");
}

TEST_F(Session, TheProcessIdIsTheKeyOfTheSession) {
  server.platform().process_id = 99;
  EXPECT_EQ(Asked("UserName"), "\"user\"\n"
                               "create-object QDCMtsCacheService.CacheFacade\n"
                               "call GetItem(ref 99, \"IsOuterLogin\") -> 1\n"
                               "call GetItem(ref 99, \"UserName\") -> \"user\"\n"
                               "call GetItem(ref 99, \"UserName\") -> \"user\"\n");
}

TEST_F(Session, AnOuterLoginAnswersFourteenKeys) {
  for (const char* key :
       {"UserName", "UserID", "PropsString", "LogStatus", "AcctName", "AcctType", "Setuptype",
        "AcctID", "SubID", "AcctClosed", "MachineName", "IP", "UUID", "QDCLogin"}) {
    server.session_values[key] = 7;
    const std::string question = "call GetItem(ref 4711, \"" + std::string(key) + "\") -> 7\n";
    EXPECT_EQ(Asked(key), "7\n"
                          "create-object QDCMtsCacheService.CacheFacade\n"
                          "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n" +
                              question + question);
  }
}

TEST_F(Session, AnOuterLoginIsNotAskedForAnyOtherKey) {
  for (const char* key : {"username", "USERNAME", "UserName ", "User", "", "IsOuterLogin",
                          "SetupType", "Ip", "Language", "Other"}) {
    server.session_values[key] = "secret";
    EXPECT_EQ(Asked(key), "Empty\n"
                          "create-object QDCMtsCacheService.CacheFacade\n"
                          "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n");
  }
}

// ---- Ordinary login ----

TEST_F(Session, AnOrdinaryLoginIsAskedAtTheSharedProperties) {
  server.outer_login = 0;
  EXPECT_EQ(Asked("PropsString"), "\"props\"\n"
                                  "create-object QDCMtsCacheService.CacheFacade\n"
                                  "call GetItem(ref 4711, \"IsOuterLogin\") -> 0\n"
                                  "create-object QDCPropsMgr.ShareProps\n"
                                  "call GetProperty(ref 4711, \"PropsString\") -> \"props\"\n"
                                  "call GetProperty(ref 4711, \"PropsString\") -> \"props\"\n");
}

TEST_F(Session, AnOrdinaryLoginAnswersEveryKey) {
  server.outer_login = 0;
  server.session_values["username"] = "small";
  server.session_values["Other"] = Currency(5);
  EXPECT_EQ(StateText(GetSessionProperty("username")), "\"small\"");
  EXPECT_EQ(StateText(GetSessionProperty("Other")), "5@");
  EXPECT_EQ(StateText(GetSessionProperty("Unknown")), "Empty");
}

// ---- The kind of login ----

TEST_F(Session, AnyOtherLoginYieldsEmptyForEveryKey) {
  for (const Long login : {2, -1, 3, 10}) {
    server.outer_login = login;
    for (const char* key : {"PropsString", "UserName", "Other"}) {
      EXPECT_EQ(Asked(key), "Empty\n"
                            "create-object QDCMtsCacheService.CacheFacade\n"
                            "call GetItem(ref 4711, \"IsOuterLogin\") -> " +
                                std::to_string(login) + "\n");
    }
  }
}

TEST_F(Session, TheKindOfLoginIsTakenAsALong) {
  const std::string outer = "call GetItem(ref 4711, \"UserName\") -> \"user\"\n"
                            "call GetItem(ref 4711, \"UserName\") -> \"user\"\n";
  const std::string ordinary = "create-object QDCPropsMgr.ShareProps\n"
                               "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"
                               "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n";
  const struct {
    Variant answer;
    const char* shown;
    std::string value;
    std::string rest;
  } table[] = {
      {"1", " -> \"1\"", "\"user\"", outer},    {Integer{1}, " -> 1%", "\"user\"", outer},
      {0.6, " -> 0.6#", "\"user\"", outer},     {0.5, " -> 0.5#", "\"user\"", ordinary},
      {"0", " -> \"0\"", "\"user\"", ordinary}, {Variant(), "", "\"user\"", ordinary},
      {true, " -> True", "Empty", ""},
  };
  for (const auto& row : table) {
    server.outer_login = row.answer;
    EXPECT_EQ(Asked("UserName"), row.value +
                                     "\ncreate-object QDCMtsCacheService.CacheFacade\n"
                                     "call GetItem(ref 4711, \"IsOuterLogin\")" +
                                     row.shown + "\n" + row.rest);
  }
}

TEST_F(Session, AnAnswerThatIsNoNumberCountsAsAnOrdinaryLogin) {
  for (const Variant& answer : {Variant("yes"), Variant(Null), Variant(Nothing), Variant(1e10)}) {
    server.outer_login = answer;
    EXPECT_EQ(Asked("UserName"), "\"user\"\n"
                                 "create-object QDCMtsCacheService.CacheFacade\n"
                                 "call GetItem(ref 4711, \"IsOuterLogin\") -> " +
                                     StateText(answer) +
                                     "\n"
                                     "create-object QDCPropsMgr.ShareProps\n"
                                     "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"
                                     "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n");
  }
}

// ---- What a store answers ----

TEST_F(Session, AnObjectIsHandedOnAsItIs) {
  const auto object = Make<Opaque>();
  server.session_values["UserName"] = object;
  for (const Long login : {0, 1}) {
    server.outer_login = login;
    EXPECT_EQ(GetSessionProperty("UserName").As<Opaque>(), object);
  }
}

TEST_F(Session, APlainValueKeepsItsType) {
  for (const Variant& value : {Variant(5), Variant(Null), Variant(), Variant(""), Variant(2.5),
                               Variant(Nothing), Variant(DateTime(1))}) {
    server.session_values["UserName"] = value;
    for (const Long login : {0, 1}) {
      server.outer_login = login;
      EXPECT_EQ(StateText(GetSessionProperty("UserName")), StateText(value));
    }
  }
}

TEST_F(Session, TheValueIsThatOfTheSecondAnswer) {
  server.AnswerOnce(kFacade, "GetItem", 1);
  server.AnswerOnce(kFacade, "GetItem", "first");
  server.AnswerOnce(kFacade, "GetItem", "second");
  EXPECT_EQ(Asked("UserName"), "\"second\"\n"
                               "create-object QDCMtsCacheService.CacheFacade\n"
                               "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                               "call GetItem(ref 4711, \"UserName\") -> \"first\"\n"
                               "call GetItem(ref 4711, \"UserName\") -> \"second\"\n");
}

TEST_F(Session, AnAnswerThatIsNoLongerAnObjectIsDropped) {
  server.AnswerOnce(kFacade, "GetItem", 1);
  server.AnswerOnce(kFacade, "GetItem", Row({}));
  server.AnswerOnce(kFacade, "GetItem", "plain");
  EXPECT_EQ(Asked("UserName"), "Empty\n"
                               "create-object QDCMtsCacheService.CacheFacade\n"
                               "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                               "call GetItem(ref 4711, \"UserName\") -> {}\n"
                               "call GetItem(ref 4711, \"UserName\") -> \"plain\"\n");
}

// ---- Failures ----

struct FailureCase {
  int position;
  const char* value;
  const char* log;
};

TEST_F(Session, AFailureAtAnyStepOfAnOuterLoginStaysInside) {
  const FailureCase table[] = {
      {1, "\"user\"",
       "create-object QDCMtsCacheService.CacheFacade -> error 70 (Store): refused\n"
       "create-object QDCPropsMgr.ShareProps\n"
       "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"
       "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"},
      {2, "\"user\"",
       "create-object QDCMtsCacheService.CacheFacade\n"
       "call GetItem(ref 4711, \"IsOuterLogin\") -> error 70 (Store): refused\n"
       "create-object QDCPropsMgr.ShareProps\n"
       "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"
       "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"},
      {3, "Empty",
       "create-object QDCMtsCacheService.CacheFacade\n"
       "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
       "call GetItem(ref 4711, \"UserName\") -> error 70 (Store): refused\n"
       "call GetItem(ref 4711, \"UserName\") -> \"user\"\n"},
      {4, "Empty",
       "create-object QDCMtsCacheService.CacheFacade\n"
       "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
       "call GetItem(ref 4711, \"UserName\") -> \"user\"\n"
       "call GetItem(ref 4711, \"UserName\") -> error 70 (Store): refused\n"},
  };
  for (const FailureCase& row : table) {
    server.FailAt(row.position, Error(70, "Store", "refused"));
    EXPECT_EQ(Asked("UserName"), std::string(row.value) + "\n" + row.log);
  }
}

TEST_F(Session, AFailureAtAnyStepOfAnOrdinaryLoginStaysInside) {
  server.outer_login = 0;
  const FailureCase table[] = {
      {3, "Empty",
       "create-object QDCMtsCacheService.CacheFacade\n"
       "call GetItem(ref 4711, \"IsOuterLogin\") -> 0\n"
       "create-object QDCPropsMgr.ShareProps -> error 70 (Store): refused\n"},
      {4, "Empty",
       "create-object QDCMtsCacheService.CacheFacade\n"
       "call GetItem(ref 4711, \"IsOuterLogin\") -> 0\n"
       "create-object QDCPropsMgr.ShareProps\n"
       "call GetProperty(ref 4711, \"UserName\") -> error 70 (Store): refused\n"
       "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"},
      {5, "Empty",
       "create-object QDCMtsCacheService.CacheFacade\n"
       "call GetItem(ref 4711, \"IsOuterLogin\") -> 0\n"
       "create-object QDCPropsMgr.ShareProps\n"
       "call GetProperty(ref 4711, \"UserName\") -> \"user\"\n"
       "call GetProperty(ref 4711, \"UserName\") -> error 70 (Store): refused\n"},
  };
  for (const FailureCase& row : table) {
    server.FailAt(row.position, Error(70, "Store", "refused"));
    EXPECT_EQ(Asked("UserName"), std::string(row.value) + "\n" + row.log);
  }
}

TEST_F(Session, AfterAFailedFirstQuestionAnObjectIsStillTaken) {
  for (const Long login : {0, 1}) {
    server.outer_login = login;
    server.session_values["UserName"] = Row({{"A", 1}});
    server.FailAt(login == 1 ? 3 : 4, Error(70));
    EXPECT_EQ(StateText(GetSessionProperty("UserName")), "{A: 1}");
  }
}

TEST_F(Session, WithoutAnyStoreEveryKeyIsEmpty) {
  server.missing_components = {kFacade, kStore};
  EXPECT_EQ(Asked("UserName"), "Empty\n"
                               "create-object QDCMtsCacheService.CacheFacade -> error 429\n"
                               "create-object QDCPropsMgr.ShareProps -> error 429\n");
  EXPECT_EQ(GetPropsString(), "");
  EXPECT_EQ(GetSessionUserName(), "");
}

// ---- PropsString and UserName ----

TEST_F(Session, TheConnectionTextAndTheUserNameComeFromTheStore) {
  EXPECT_EQ(GetPropsString(), "props");
  EXPECT_EQ(server.TakeLog(), "create-object QDCMtsCacheService.CacheFacade\n"
                              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n");
  EXPECT_EQ(GetSessionUserName(), "user");
  EXPECT_EQ(server.TakeLog(), "create-object QDCMtsCacheService.CacheFacade\n"
                              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                              "call GetItem(ref 4711, \"UserName\") -> \"user\"\n"
                              "call GetItem(ref 4711, \"UserName\") -> \"user\"\n");
}

TEST_F(Session, TheyAreConvertedToText) {
  server.session_values = {{"PropsString", 12}, {"UserName", Variant()}};
  EXPECT_EQ(GetPropsString(), "12");
  EXPECT_EQ(GetSessionUserName(), "");
}

TEST_F(Session, ASessionThatIsNoTextFailsInTheConversion) {
  server.session_values = {{"PropsString", Row({})}, {"UserName", Null}};
  EXPECT_EQ(ErrorOf([] { GetPropsString(); }),
            "error 438 (Dictionary): The object has no default value.");
  EXPECT_EQ(ErrorOf([] { GetSessionUserName(); }), "error 13");
}

TEST_F(Session, NothingIsKeptBetweenTwoReadings) {
  EXPECT_EQ(GetPropsString(), "props");
  const std::string first = server.TakeLog();
  EXPECT_EQ(GetPropsString(), "props");
  EXPECT_EQ(server.TakeLog(), first);

  server.session_values["PropsString"] = "others";
  EXPECT_EQ(GetPropsString(), "others");
  server.outer_login = 2;
  EXPECT_EQ(GetPropsString(), "");
  server.outer_login = 0;
  EXPECT_EQ(GetPropsString(), "others");
}

TEST_F(Session, TheStoresDoNotGoThroughTheGateway) {
  server.outer_login = 0;
  GetPropsString();
  GetSessionUserName();
  EXPECT_EQ(server.TakeLog().find("create "), std::string::npos);
}

TEST_F(Session, TheStoresAreReleasedBehindTheReading) {
  class Store final : public Object {
   public:
    explicit Store(int& live) : live_(live) { ++live_; }
    ~Store() override { --live_; }
    std::string_view ClassName() const override { return "Store"; }
    Variant Invoke(std::string_view name, CallKind, std::span<Argument>) override {
      if (name == "GetItem") return 0;
      return Variant(std::to_string(live_) + " live");
    }

   private:
    int& live_;
  };
  int live = 0;
  RegisterComponent(kFacade, [&live] { return Make<Store>(live); });
  RegisterComponent(kStore, [&live] { return Make<Store>(live); });
  const String props = GetPropsString();
  UnregisterComponent(kFacade);
  UnregisterComponent(kStore);
  EXPECT_EQ(props, "2 live");
  EXPECT_EQ(live, 0);
}

// ---- The session object ----

TEST_F(Session, ASessionObjectIsAskedInPlaceOfTheStores) {
  const auto session = Make<PlainSession>();
  session->properties = {{"PropsString", "own props"}, {"UserName", 5}};
  const ScopedSessionObject scope(session);
  EXPECT_EQ(GetPropsString(), "own props");
  EXPECT_EQ(GetSessionUserName(), "5");
  EXPECT_EQ(session->log, "PropsString UserName ");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(Session, ASessionObjectIsAskedAnewEachTime) {
  const auto session = Make<PlainSession>();
  session->properties = {{"PropsString", "first"}};
  const ScopedSessionObject scope(session);
  EXPECT_EQ(GetPropsString(), "first");
  session->properties["PropsString"] = "second";
  EXPECT_EQ(GetPropsString(), "second");
  EXPECT_EQ(session->log, "PropsString PropsString ");
}

TEST_F(Session, AFailureOfTheSessionObjectPasses) {
  const ScopedSessionObject scope(Make<PlainSession>());
  EXPECT_EQ(ErrorOf([] { GetPropsString(); }), "error 438 (Session): No member PropsString.");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(Session, OtherPropertiesComeFromTheStoresAllTheSame) {
  const auto session = Make<PlainSession>();
  session->properties = {{"UserName", "own"}};
  const ScopedSessionObject scope(session);
  EXPECT_EQ(StateText(GetSessionProperty("UserName")), "\"user\"");
  EXPECT_EQ(session->log, "");
}

TEST_F(Session, ASessionObjectIsHeldUntilItIsTakenAway) {
  EXPECT_EQ(SessionObject(), nullptr);
  const auto object = Make<Opaque>();
  {
    const ScopedSessionObject scope(object);
    EXPECT_EQ(SessionObject(), object);
    EXPECT_EQ(object->holders(), 2);
    SetSessionObject(object);
    EXPECT_EQ(object->holders(), 2);
    SetSessionObject(Make<PlainSession>());
    EXPECT_EQ(object->holders(), 1);
  }
  EXPECT_EQ(SessionObject(), nullptr);
  EXPECT_EQ(GetPropsString(), "props");
}

TEST_F(Session, ASessionObjectIsOneApartmentsOwn) {
  const ScopedSessionObject scope(Make<Opaque>());
  bool other_has_one = true;
  std::thread([&] { other_has_one = SessionObject() != nullptr; }).join();
  EXPECT_FALSE(other_has_one);
}

// ---- GetPropsValue ----

TEST(GetPropsValue, GivesTheValueOfAPair) {
  const struct {
    const char* name;
    const char* props;
    const char* value;
  } table[] = {
      {"FirstPair", "Initial catalog=ACC1;Data Source=X;", "ACC1"},
      {"LastPair", "Data Source=X;Initial Catalog=ACC1;", "ACC1"},
      {"ClosingBrace", "Provider={P;Initial Catalog=ACC1};", "ACC1"},
      {"BraceAlone", "Initial Catalog=};", ""},
      {"OneOfTwoBraces", "Initial Catalog=ACC1}};", "ACC1}"},
      {"OpeningBrace", "Initial Catalog={ACC1;", "{ACC1"},
      {"BraceInside", "Initial Catalog=A}C;", "A}C"},
      {"AbsentKey", "Data Source=X;", ""},
      {"NoText", "", ""},
      {"EmptyValue", "Initial catalog=;Data Source=X;", ""},
      {"OtherCase", "INITIAL CATALOG=Acc1;", "Acc1"},
      {"BlanksStay", "Initial catalog = ACC1 ;", " ACC1 "},
      {"QuotesStay", "Initial catalog=\"A;C\";", "\"A"},
      {"FirstOccurrence", "initial catalog=A;Initial Catalog=B;", "A"},
      {"InsideALongerKey", "My Initial catalog=A;Initial catalog=B;", "A"},
      {"InsideAValue", "Note=Initial catalog of A=1;Initial catalog=B;", "1"},
      {"DelimiterInTheValue", "Initial catalog=A=B;", "A=B"},
      {"OtherAlphabets", "Server=主机;Initial Catalog=账套一;", "账套一"},
      {"BraceBehindAnotherAlphabet", "Initial Catalog=账套};", "账套"},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(GetPropsValue(row.props, "Initial catalog", "="), row.value);
  }
}

TEST(GetPropsValue, AKeyNotFoundGivesEmptyText) {
  EXPECT_EQ(GetPropsValue("Data Source=X;", "Initial catalog", "="), "");
  EXPECT_EQ(GetPropsValue("", "Initial catalog", "="), "");
  EXPECT_EQ(GetPropsValue("Initial catalo", "Initial catalog", "="), "");
}

TEST(GetPropsValue, WithoutASemicolonBehindTheKeyItFails) {
  const auto error_of = [](const char* props) {
    return ErrorOf([&] { GetPropsValue(props, "Initial catalog", "="); });
  };
  EXPECT_EQ(error_of("Initial catalog=ACC1"), "error 5");
  EXPECT_EQ(error_of("Data Source=X;Initial catalog=ACC1"), "error 5");
  EXPECT_EQ(error_of("Initial catalog="), "error 5");
  EXPECT_EQ(error_of("Initial catalog"), "error 5");
}

TEST(GetPropsValue, ASemicolonBeforeTheDelimiterFails) {
  EXPECT_EQ(
      ErrorOf([] { GetPropsValue("Initial catalog;Data Source=X;", "Initial catalog", "="); }),
      "error 5");
}

TEST(GetPropsValue, WithoutADelimiterTheValueBeginsAtTheKey) {
  EXPECT_EQ(GetPropsValue("A;Initial catalog ACC1;", "Initial catalog", "="),
            "Initial catalog ACC1");
}

TEST(GetPropsValue, TheDelimiterMayBeAnotherText) {
  EXPECT_EQ(GetPropsValue("Name:Receipts;", "Name", ":"), "Receipts");
  EXPECT_EQ(GetPropsValue("Name=A:B;", "Name", ":"), "B");
  EXPECT_EQ(GetPropsValue("Name=>Receipts;", "Name", "=>"), ">Receipts");
  EXPECT_EQ(GetPropsValue("Size X5;", "Size", "x"), "5");
  EXPECT_EQ(GetPropsValue("Name=Receipts;", "Name", "a"), "me=Receipts");
  EXPECT_EQ(GetPropsValue("Name号Receipts;", "Name", "号").substr(2), "Receipts");
}

TEST(GetPropsValue, KeysOfOtherAlphabetsIgnoreCaseToo) {
  EXPECT_EQ(GetPropsValue("ÄRA=1;", "ära", "="), "1");
  EXPECT_EQ(GetPropsValue("счёт=1;", "СЧЁТ", "="), "1");
}

TEST(GetPropsValue, NoCharacterBeforeTheKeyMovesTheValue) {
  std::u16string characters;
  for (unsigned c = 0x80; c < 0x10000; ++c) {
    if (c < 0xD800 || c > 0xDFFF) characters += static_cast<char16_t>(c);
  }
  const std::string text = FromUtf16(characters);
  EXPECT_EQ(GetPropsValue("Note=" + text + ";Initial catalog=ACC1;", "Initial catalog", "="),
            "ACC1");
  EXPECT_EQ(GetPropsValue("Initial catalog=" + text + ";", "Initial catalog", "="), text);
}

}  // namespace
}  // namespace qdclgl
