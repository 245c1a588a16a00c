#include "qdclgl/frame/session/startup.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "qdclgl/api/class_list.h"
#include "qdclgl/settings/system_profile.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "tests/support/recording_server.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::RecordingServer;
using testing::StateText;

constexpr const char* kBase = "QDSVBase.BaseInfo";
constexpr const char* kFacade = "QDCMtsCacheService.CacheFacade";
constexpr const char* kShareProps = "QDCPropsMgr.ShareProps";
constexpr const char* kProps = "Initial catalog=ACC1;Data Source=X;";

// Runs `action` with a server of its own in an apartment of its own, which has not started yet. The
// session is user Anna's in the database ACC1.
template <class Action>
void InNewApartment(Action action) {
  std::thread([&] {
    RecordingServer server;
    server.session_values["PropsString"] = Variant(kProps);
    server.session_values["UserName"] = Variant("Anna");
    SetApartmentStarted(false);
    action(server);
  }).join();
}

// The values in the registry, a line for each: "path, name = data". Keys without a value are left
// out.
std::string Written(RecordingServer& server) {
  std::string text;
  for (const auto& [path, values] : server.platform().registry) {
    for (const auto& [name, value] : values) {
      EXPECT_EQ(value.type, registry_type::kText);
      text += path + ", " + name + " = " + value.data + "\n";
    }
  }
  return text;
}

const std::string kAnnasKey = "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase\\Anna";

// What the session stores are asked for one of the session's texts.
std::string SessionLog(const std::string& key, const std::string& text) {
  const std::string ask = "call GetItem(ref 4711, \"" + key + "\") -> \"" + text + "\"\n";
  return "create-object QDCMtsCacheService.CacheFacade\n"
         "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n" +
         ask + ask;
}

// ---- The offline state ----

TEST(OfflineState, IsOnlineBeforeAnybodyDecides) {
  InNewApartment([](RecordingServer&) { EXPECT_FALSE(IsOffline()); });
}

TEST(OfflineState, IsWrittenUnderTheUserAndTheDatabase) {
  InNewApartment([](RecordingServer& server) {
    EXPECT_EQ(StateText(SetOfflineState(true)), "Empty");
    EXPECT_TRUE(IsOffline());
    EXPECT_EQ(Written(server), kAnnasKey + ", ACC1 = OFFLINE\n");

    EXPECT_EQ(StateText(SetOfflineState(false)), "Empty");
    EXPECT_FALSE(IsOffline());
    EXPECT_EQ(Written(server), kAnnasKey + ", ACC1 = ONLINE\n");
    EXPECT_EQ(server.TakeLog(), "");
  });
}

TEST(OfflineState, ReadsTheConnectionTextAndThenTheUser) {
  InNewApartment([](RecordingServer& server) {
    server.LogSession();
    SetOfflineState(true);
    EXPECT_EQ(server.TakeLog(), SessionLog("PropsString", kProps) + SessionLog("UserName", "Anna"));
  });
}

TEST(OfflineState, KeepsUsersAndDatabasesApart) {
  InNewApartment([](RecordingServer& server) {
    SetOfflineState(true);
    server.session_values["PropsString"] = Variant("Data Source=X;INITIAL CATALOG=ACC2};");
    SetOfflineState(false);
    server.session_values["UserName"] = Variant("Ben");
    SetOfflineState(true);
    EXPECT_EQ(Written(server),
              kAnnasKey + ", ACC1 = OFFLINE\n" + kAnnasKey +
                  ", ACC2 = ONLINE\n"
                  "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase\\Ben, ACC2 = OFFLINE\n");
  });
}

TEST(OfflineState, GoesToTheDefaultValueWithoutADatabase) {
  InNewApartment([](RecordingServer& server) {
    for (const char* props : {"Data Source=X;", "", "Initial catalog=;"}) {
      server.platform().registry.clear();
      server.session_values["PropsString"] = Variant(props);
      EXPECT_EQ(StateText(SetOfflineState(true)), "Empty");
      EXPECT_EQ(Written(server), kAnnasKey + ",  = OFFLINE\n") << props;
    }
  });
}

TEST(OfflineState, GoesToTheKeyOfAllUsersWithoutAUser) {
  InNewApartment([](RecordingServer& server) {
    server.session_values.erase("UserName");
    EXPECT_EQ(StateText(SetOfflineState(true)), "Empty");
    EXPECT_EQ(Written(server),
              "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase, ACC1 = OFFLINE\n");
  });
}

TEST(OfflineState, RaisesForAConnectionTextWithoutASemicolon) {
  InNewApartment([](RecordingServer& server) {
    server.session_values["PropsString"] = Variant("Data Source=X;Initial catalog=ACC1");
    EXPECT_EQ(ErrorOf([] { SetOfflineState(true); }), "error 5");
    EXPECT_TRUE(IsOffline()) << "the new state is kept";
    EXPECT_TRUE(server.platform().registry.empty());
  });
}

TEST(OfflineState, GivesARefusedKeyInWordsAndKeepsTheNewState) {
  InNewApartment([](RecordingServer& server) {
    server.platform().registry_create_code = system_code::kAccessDenied;
    EXPECT_EQ(StateText(SetOfflineState(true)), "\"error 5\"");
    EXPECT_TRUE(IsOffline());
    EXPECT_TRUE(server.platform().registry.empty());
    EXPECT_EQ(StateText(SetOfflineState(false)), "\"error 5\"");
    EXPECT_FALSE(IsOffline());
  });
}

TEST(OfflineState, TakesARefusedValueInSilence) {
  InNewApartment([](RecordingServer& server) {
    server.platform().registry_set_code = system_code::kDiskFull;
    EXPECT_EQ(StateText(SetOfflineState(true)), "Empty");
    EXPECT_TRUE(IsOffline());
    EXPECT_EQ(Written(server), "");
  });
}

TEST(OfflineState, BelongsToItsApartment) {
  InNewApartment([](RecordingServer&) {
    SetOfflineState(true);
    InNewApartment([](RecordingServer&) {
      EXPECT_FALSE(IsOffline());
      SetOfflineState(false);
    });
    EXPECT_TRUE(IsOffline());
  });
}

// ---- The start-up ----

TEST(Main, AsksTheServerAndWritesItsAnswer) {
  for (const bool offline : {false, true}) {
    InNewApartment([&](RecordingServer& server) {
      server.LogSession();
      server.Answer(kBase, "IsNeedOffline", Variant(offline));
      Main();
      EXPECT_EQ(server.TakeLog(), "create QDSVBase.BaseInfo\n" + SessionLog("PropsString", kProps) +
                                      "call IsNeedOffline(\"Initial catalog=ACC1;Data Source=X;\", "
                                      "-1%, ref \"HOST\") -> " +
                                      (offline ? "True\n" : "False\n") +
                                      SessionLog("PropsString", kProps) +
                                      SessionLog("UserName", "Anna"));
      EXPECT_EQ(IsOffline(), offline);
      EXPECT_EQ(Written(server), kAnnasKey + ", ACC1 = " + (offline ? "OFFLINE\n" : "ONLINE\n"));
    });
  }
}

TEST(Main, RunsOnThroughAFailureWhereverItCan) {
  const std::string written = kAnnasKey + ", ACC1 = OFFLINE\n";
  const std::string without_database = kAnnasKey + ",  = OFFLINE\n";
  const std::string without_user =
      "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase, ACC1 = OFFLINE\n";
  struct Outcome {
    const char* failed;  // what the failing event begins with
    bool offline;
    std::string written;
  };
  const Outcome outcomes[] = {
      {"create QDSVBase.BaseInfo", false, ""},
      // The connection text of the question: a session that can't be read is one without a text.
      {"create-object QDCMtsCacheService.CacheFacade", true, written},
      {"call GetItem(ref 4711, \"IsOuterLogin\")", true, written},
      {"call GetItem(ref 4711, \"PropsString\")", true, written},
      {"call GetItem(ref 4711, \"PropsString\")", true, written},
      {"call IsNeedOffline(", false, ""},
      // The connection text that names the database. The other session store knows it too.
      {"create-object QDCMtsCacheService.CacheFacade", true, written},
      {"call GetItem(ref 4711, \"IsOuterLogin\")", true, written},
      {"call GetItem(ref 4711, \"PropsString\")", true, without_database},
      {"call GetItem(ref 4711, \"PropsString\")", true, without_database},
      // The user.
      {"create-object QDCMtsCacheService.CacheFacade", true, written},
      {"call GetItem(ref 4711, \"IsOuterLogin\")", true, written},
      {"call GetItem(ref 4711, \"UserName\")", true, without_user},
      {"call GetItem(ref 4711, \"UserName\")", true, without_user},
  };
  int event = 0;
  for (const Outcome& outcome : outcomes) {
    ++event;
    InNewApartment([&](RecordingServer& server) {
      server.LogSession();
      server.Answer(kBase, "IsNeedOffline", Variant(true));
      server.FailAt(event, Error(1234, "server", "words"));
      Main();
      const std::string log = server.TakeLog();
      const auto failure = log.find(" -> error 1234 (server): words\n");
      ASSERT_NE(failure, std::string::npos) << event;
      const std::string failed = log.substr(0, failure);
      const auto line = failed.rfind('\n');
      EXPECT_TRUE(std::string_view(failed)
                      .substr(line == std::string::npos ? 0 : line + 1)
                      .starts_with(outcome.failed))
          << event << "\n"
          << log;
      EXPECT_EQ(IsOffline(), outcome.offline) << event;
      EXPECT_EQ(Written(server), outcome.written) << event;
      if (outcome.written.empty()) {
        EXPECT_TRUE(server.platform().registry.empty()) << event;
      }
    });
  }
}

TEST(Main, EndsBehindAServerThatFails) {
  InNewApartment([](RecordingServer& server) {
    server.FailAt(2, Error(1234, "server", "words"));
    Main();
    EXPECT_EQ(server.TakeLog(),
              "create QDSVBase.BaseInfo\n"
              "call IsNeedOffline(\"Initial catalog=ACC1;Data Source=X;\", -1%, ref \"HOST\") -> "
              "error 1234 (server): words\n");
  });
}

TEST(Main, StartsOnLineWithoutASessionAndAServer) {
  InNewApartment([](RecordingServer& server) {
    server.missing_components = {kBase, kFacade, kShareProps};
    SetOfflineState(true);
    server.platform().registry.clear();
    Main();
    EXPECT_FALSE(IsOffline());
    EXPECT_TRUE(server.platform().registry.empty());
    EXPECT_EQ(server.TakeLog(), "create QDSVBase.BaseInfo -> error 429\n");
  });
}

TEST(Main, StartsOnLineWhenTheAnswerIsNoTruthValue) {
  InNewApartment([](RecordingServer& server) {
    for (const Variant& answer : {Variant("perhaps"), Variant(Null), Variant(Nothing)}) {
      server.Answer(kBase, "IsNeedOffline", answer);
      Main();
      EXPECT_FALSE(IsOffline()) << StateText(answer);
      EXPECT_TRUE(server.platform().registry.empty()) << StateText(answer);
    }
  });
}

TEST(Main, StartsOnLineForAConnectionTextWithoutASemicolon) {
  InNewApartment([](RecordingServer& server) {
    server.session_values["PropsString"] = Variant("Initial catalog=ACC1");
    server.Answer(kBase, "IsNeedOffline", Variant(true));
    Main();
    EXPECT_FALSE(IsOffline());
    EXPECT_TRUE(server.platform().registry.empty());
    EXPECT_EQ(server.TakeLog(),
              "create QDSVBase.BaseInfo\n"
              "call IsNeedOffline(\"Initial catalog=ACC1\", -1%, ref \"HOST\") -> True\n");
  });
}

TEST(Main, KeepsTheAnswerWhenTheRegistryRefuses) {
  InNewApartment([](RecordingServer& server) {
    server.Answer(kBase, "IsNeedOffline", Variant(true));
    server.platform().registry_create_code = system_code::kAccessDenied;
    Main();
    EXPECT_TRUE(IsOffline());
    EXPECT_TRUE(server.platform().registry.empty());
  });
}

TEST(Main, OverwritesTheAnswerOfAnEarlierStart) {
  InNewApartment([](RecordingServer& server) {
    server.Answer(kBase, "IsNeedOffline", Variant(true));
    Main();
    server.Answer(kBase, "IsNeedOffline", Variant(false));
    Main();
    EXPECT_FALSE(IsOffline());
    EXPECT_EQ(Written(server), kAnnasKey + ", ACC1 = ONLINE\n");
  });
}

// ---- When it runs ----

const std::string kStartLog =
    "create QDSVBase.BaseInfo\n"
    "call IsNeedOffline(\"Initial catalog=ACC1;Data Source=X;\", -1%, ref \"HOST\") -> True\n";

TEST(Main, RunsBeforeTheFirstObjectOfEveryClass) {
  int classes = 0;
  for (const ClassTable* table : PublicClasses()) {
    if (!table->creatable()) continue;
    ++classes;
    InNewApartment([&](RecordingServer& server) {
      server.Answer(kBase, "IsNeedOffline", Variant(true));
      const Ref<Object> first = table->Create();
      EXPECT_EQ(server.TakeLog(), kStartLog) << table->name();
      EXPECT_TRUE(IsOffline()) << table->name();
      EXPECT_EQ(Written(server), kAnnasKey + ", ACC1 = OFFLINE\n") << table->name();

      const Ref<Object> second = table->Create();
      const auto profile = Make<SystemProfile>();
      EXPECT_EQ(server.TakeLog(), "") << table->name();
    });
  }
  EXPECT_GE(classes, 5);
}

TEST(Main, RunsBeforeAnObjectThatIsMadeInCode) {
  InNewApartment([](RecordingServer& server) {
    server.LogSession();
    const auto group = Make<VoucherGroup>();
    EXPECT_TRUE(server.TakeLog().starts_with("create QDSVBase.BaseInfo\n"));
    const auto groups = Make<VoucherGroupSet>();
    const auto profile = Make<SystemProfile>();
    groups->CreateNew();
    EXPECT_EQ(server.TakeLog(), "") << "later objects cost nothing, not even session traffic";
  });
}

TEST(Main, RunsOnceInEachApartment) {
  InNewApartment([](RecordingServer& server) {
    server.Answer(kBase, "IsNeedOffline", Variant(true));
    Make<VoucherGroup>();
    InNewApartment([](RecordingServer& others) {
      others.Answer(kBase, "IsNeedOffline", Variant(false));
      Make<VoucherGroup>();
      EXPECT_EQ(others.TakeLog(),
                "create QDSVBase.BaseInfo\n"
                "call IsNeedOffline(\"Initial catalog=ACC1;Data Source=X;\", -1%, ref \"HOST\") -> "
                "False\n");
      EXPECT_FALSE(IsOffline());
    });
    Make<VoucherGroup>();
    EXPECT_EQ(server.TakeLog(), kStartLog);
    EXPECT_TRUE(IsOffline());
  });
}

TEST(Main, DoesNotRunAgainAfterAFailure) {
  InNewApartment([](RecordingServer& server) {
    server.FailAt(1, Error(1234));
    EXPECT_EQ(ErrorOf([] { Make<VoucherGroup>(); }), "no error");
    EXPECT_EQ(server.TakeLog(), "create QDSVBase.BaseInfo -> error 1234\n");
    Make<VoucherGroup>();
    EXPECT_EQ(server.TakeLog(), "");
  });
}

TEST(Main, IsNotStartedAgainByAnObjectThatIsMadeMeanwhile) {
  InNewApartment([](RecordingServer& server) {
    server.AnswerWith(kBase, "IsNeedOffline", [](std::span<Argument>) {
      Make<VoucherGroup>();
      Make<SystemProfile>();
      return Variant(true);
    });
    Make<VoucherGroup>();
    EXPECT_EQ(server.TakeLog(), kStartLog);
  });
}

TEST(Main, LeavesTheAnswerInForceOverWhatTheSessionDidMeanwhile) {
  InNewApartment([](RecordingServer& server) {
    server.Answer(kBase, "IsNeedOffline", Variant(true));
    bool decided = false;
    server.AnswerWith(kFacade, "GetItem", [&](std::span<Argument> arguments) -> Variant {
      const String key = arguments[1].As<String>();
      if (key == "IsOuterLogin") return Variant(Long{1});
      if (key == "UserName" && !std::exchange(decided, true)) SetOfflineState(false);
      return server.session_values[key];
    });
    Main();
    EXPECT_TRUE(decided);
    EXPECT_TRUE(IsOffline());
    EXPECT_EQ(Written(server), kAnnasKey + ", ACC1 = OFFLINE\n");
  });
}

TEST(StartApartment, RunsMainOnlyInAnApartmentThatHasNotStarted) {
  InNewApartment([](RecordingServer& server) {
    server.Answer(kBase, "IsNeedOffline", Variant(true));
    StartApartment();
    EXPECT_EQ(server.TakeLog(), kStartLog);
    StartApartment();
    EXPECT_EQ(server.TakeLog(), "");
    EXPECT_TRUE(SetApartmentStarted(false));
    EXPECT_FALSE(SetApartmentStarted(false));
    StartApartment();
    EXPECT_EQ(server.TakeLog(), kStartLog);
    EXPECT_TRUE(SetApartmentStarted(true));
  });
}

TEST(StartApartment, DoesNothingForAProgramThatStartsOnItsOwnTerms) {
  InNewApartment([](RecordingServer& server) {
    SetApartmentStarted(true);
    Make<VoucherGroup>();
    EXPECT_EQ(server.TakeLog(), "");
    EXPECT_TRUE(server.platform().registry.empty());
  });
}

}  // namespace
}  // namespace qdclgl
