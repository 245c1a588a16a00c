#include "qdclgl/settings/system_profile.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/class_table.h"
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

constexpr const char* kProfile = "QDSVBase.SystemProfile";
constexpr const char* kBase = "QDSVBase.BaseInfo";
constexpr const char* kCalendar = "QDCPeriodDate.clsPeriodDate";
constexpr const char* kOverrideFile = "C:\\SYS\\SpecFun.ini";

const std::vector<std::string> kCategories = {"Base", "General", "GL", "SC", "MG",
                                              "GB",   "GR",      "PM", "BM", "CM",
                                              "Bank", "CN",      "IC", "FA", "PA"};

// How the call for a period's days ends: two dates that the server is to fill in.
const std::string kTwoUnsetDates =
    ", ref " + StateText(Variant(DateTime())) + ", ref " + StateText(Variant(DateTime())) + ")\n";

// A server that keeps the settings in `stored`, and an object that has read nothing yet.
class ProfileTest : public ::testing::Test {
 protected:
  ProfileTest() {
    server.AnswerWith(kProfile, "ListProfiles", [this](std::span<Argument> arguments) {
      const auto settings = stored.find(arguments[1].As<String>());
      return Variant(settings != stored.end() ? settings->second->Clone() : Make<Dictionary>());
    });
  }

  void Store(const std::string& category, const std::string& key, const Variant& value) {
    Ref<Dictionary>& settings = stored[category];
    if (!settings) settings = Make<Dictionary>();
    settings->Put(key, value);
  }

  // A new object, which reads what is stored now.
  static Ref<SystemProfile> Fresh() { return Make<SystemProfile>(); }

  // The log of the first `calls` calls that fetch the settings.
  std::string LoadLog(std::size_t calls = 15) const {
    std::string log = "create QDSVBase.SystemProfile\n";
    for (std::size_t i = 0; i < calls; ++i) {
      const auto settings = stored.find(kCategories[i]);
      log += "call ListProfiles(\"props\", \"" + kCategories[i] + "\") -> " +
             (settings != stored.end() ? StateText(Variant(settings->second)) : "{}") + "\n";
    }
    return log;
  }

  // The cache with the first `count` categories.
  std::string Cache(std::size_t count = 15) const {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      const auto settings = stored.find(kCategories[i]);
      text += (i > 0 ? ", " : "") + kCategories[i] + ": " +
              (settings != stored.end() ? StateText(Variant(settings->second)) : "{}");
    }
    return "{" + text + "}";
  }

  RecordingServer server;
  std::map<std::string, Ref<Dictionary>> stored;  // by category
  Ref<SystemProfile> profile = Make<SystemProfile>();
};

class SystemProfileTest : public ProfileTest {
 protected:
  // Puts the override file in its place, with a number under a key unless that is empty.
  void WriteOverride(const std::string& section, const std::string& key, Long value) {
    server.platform().file_attributes[kOverrideFile] = file_attribute::kNormal;
    if (!key.empty()) server.platform().SetProfileInt(kOverrideFile, section, key, value);
  }
};

class AccountingCalendarTest : public ProfileTest {
 protected:
  AccountingCalendarTest() {
    Store("GL", "CurrentPeriod", "3");
    Store("GL", "CurrentYear", "2004");
    Store("GL", "PeriodCount", "12");
    server.AnswerWith(kCalendar, "GetPeriodStartEnd", [](std::span<Argument> arguments) {
      arguments[3].Put(Variant(DateTime::FromYmd(2004, 2, 26)));
      arguments[4].Put(Variant(DateTime::FromYmd(2004, 3, 25)));
      return Variant();
    });
  }

  void AnswerPeriod(const Variant& year, Long period) {
    server.AnswerWith(kCalendar, "GetPeriod", [=](std::span<Argument> arguments) {
      arguments[2].Put(Variant(period));
      return year;
    });
  }

  // The result and the year: "3 of 2004".
  std::string PeriodOf(DateTime day) {
    Long year = 77;
    const Long period = profile->GLGetPeriodByDate(day, year);
    return std::to_string(period) + " of " + std::to_string(year);
  }

  // What a new object asks the calendar for: "2 of 2005", or the error and how often the calendar
  // was asked.
  std::string AskedFor(Long year, Long period) {
    const auto fresh = Fresh();
    fresh->Refresh();
    server.TakeLog();
    const std::string error = ErrorOf([&] { fresh->GLGetPeriodDate(year, period); });
    const std::string log = server.TakeLog();
    if (error != "no error") return error + (log.empty() ? ", nobody asked" : ", asked");
    const std::string before = "create QDCPeriodDate.clsPeriodDate\n"
                               "call GetPeriodStartEnd(\"props\", ref ";
    const std::string after = kTwoUnsetDates;
    if (!log.starts_with(before) || !log.ends_with(after)) return log;
    std::string asked = log.substr(before.size(), log.size() - before.size() - after.size());
    asked.replace(asked.find(", ref "), 6, " of ");
    return asked;
  }
};

class SettlementOptionsTest : public ProfileTest {};

// ---- The members ----

TEST_F(SystemProfileTest, HasItsMembersInInterfaceOrder) {
  std::string names;
  for (const ClassMember& member : SystemProfile::Table().members()) {
    names += std::string(member.row.name) + " ";
  }
  EXPECT_EQ(names,
            "GetSystemProfile GLGetCheckBeforePost GLGetCurrentPeriod GLGetCurrentYear "
            "GLGetEarnAccount GLGetEarnAssignAccount GLGetExpEachEnt GLGetPeriodByDate "
            "GLGetPeriodByMonth GLGetPeriodCount GLGetPeriodDate IsNeedOffline Refresh "
            "ScGetAcctBalStop SCGetActionForOverDue ScGetAutoVchNotDblChk SCGetBillAutoVch "
            "SCGetChangeRenewAcct SCGetConsignSaveAutoCheck ScGetDailyEnd SCGetDateToday "
            "SCGetDiscAmtAcct SCGetDiscIntEarnAcct SCGetDiscInterAcct SCGetDpstPayWithInt "
            "SCGetForbidHistory ScGetForIntMakeNow ScGetInSettNoteReCheck ScGetInSettReCheck "
            "SCGetIntAutoVch ScGetIntCalByBill SCGetIntDpstModifySum SCGetIntMultiSaveNoVch "
            "SCGetIntOneYear SCGetIntSaveAutoCheck SCGetIntTaxAcct SCGetIntTaxRate "
            "SCGetIntToDpst SCGetIntToLoan SCGetIntToOneVch SCGetLoanPayWithInt "
            "SCGetLongTermLoanMidCal ScGetMakeVchInLoanExt ScGetMakeVchInReStat "
            "SCGetMaxLoanExt SCGetMaxRtStat ScGetNotiPayBillVch SCGetOneTimeLoanMidCal "
            "ScGetOverDue180 ScGetOverDueNum ScGetPayBillVch ScGetPayNoteReCheck "
            "ScGetPayReCheck SCGetPreIntCalDpst SCGetPreIntCalLoan SCGetPreIntCalStat "
            "SCGetRtLongLoanIntMethod SCGetRtShortLoanIntMethod SCGetRtStatIntMethod "
            "SCGetSettAcntSel SCGetSettOneVch ScGetStrikeRed ScGetTransferBillVch "
            "SCGetUsePlan SCGetYearRateStartDate SCStatIntCalWhole SetGlobalQueryStatus "
            "CompanyAddress CompanyName CompanyPhone GLGetClosed Item ProfileList SpecItem ");
  EXPECT_EQ(SystemProfile::Table().default_member()->row.name, "Item");
  EXPECT_TRUE(SystemProfile::Table().takes_context());
  EXPECT_TRUE(SystemProfile::Table().creatable());
}

TEST_F(SystemProfileTest, ANewObjectAsksNobody) { EXPECT_EQ(server.TakeLog(), ""); }

// ---- The cache ----

TEST_F(SystemProfileTest, RefreshFetchesFifteenCategoriesEachWithAFreshConnectionText) {
  int calls = 0;
  server.AnswerWith(kProfile, "ListProfiles", [&](std::span<Argument>) {
    server.session_values["PropsString"] = Variant("props" + std::to_string(++calls));
    return Variant(Row({{"Number", calls}}));
  });
  server.session_values["PropsString"] = Variant("props0");
  profile->Refresh();
  EXPECT_EQ(server.TakeLog(), "create QDSVBase.SystemProfile\n"
                              "call ListProfiles(\"props0\", \"Base\") -> {Number: 1}\n"
                              "call ListProfiles(\"props1\", \"General\") -> {Number: 2}\n"
                              "call ListProfiles(\"props2\", \"GL\") -> {Number: 3}\n"
                              "call ListProfiles(\"props3\", \"SC\") -> {Number: 4}\n"
                              "call ListProfiles(\"props4\", \"MG\") -> {Number: 5}\n"
                              "call ListProfiles(\"props5\", \"GB\") -> {Number: 6}\n"
                              "call ListProfiles(\"props6\", \"GR\") -> {Number: 7}\n"
                              "call ListProfiles(\"props7\", \"PM\") -> {Number: 8}\n"
                              "call ListProfiles(\"props8\", \"BM\") -> {Number: 9}\n"
                              "call ListProfiles(\"props9\", \"CM\") -> {Number: 10}\n"
                              "call ListProfiles(\"props10\", \"Bank\") -> {Number: 11}\n"
                              "call ListProfiles(\"props11\", \"CN\") -> {Number: 12}\n"
                              "call ListProfiles(\"props12\", \"IC\") -> {Number: 13}\n"
                              "call ListProfiles(\"props13\", \"FA\") -> {Number: 14}\n"
                              "call ListProfiles(\"props14\", \"PA\") -> {Number: 15}\n");
  EXPECT_EQ(StateText(Variant(profile->ProfileList(""))),
            "{Base: {Number: 1}, General: {Number: 2}, GL: {Number: 3}, SC: {Number: 4}, "
            "MG: {Number: 5}, GB: {Number: 6}, GR: {Number: 7}, PM: {Number: 8}, BM: {Number: 9}, "
            "CM: {Number: 10}, Bank: {Number: 11}, CN: {Number: 12}, IC: {Number: 13}, "
            "FA: {Number: 14}, PA: {Number: 15}}");
}

TEST_F(SystemProfileTest, RefreshReadsTheSessionBehindTheCreationAndBeforeEachCall) {
  server.LogSession();
  profile->Refresh();
  std::string log = "create QDSVBase.SystemProfile\n";
  for (const std::string& category : kCategories) {
    log += "create-object QDCMtsCacheService.CacheFacade\n"
           "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
           "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
           "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
           "call ListProfiles(\"props\", \"" +
           category + "\") -> {}\n";
  }
  EXPECT_EQ(server.TakeLog(), log);
}

TEST_F(SystemProfileTest, RefreshReplacesTheWholeCache) {
  Store("GL", "K", "old");
  profile->Refresh();
  const Ref<Dictionary> former = profile->ProfileList("");
  former->Put("Mine", Variant(1));
  Store("GL", "K", "new");
  profile->Refresh();
  EXPECT_EQ(StateText(Variant(profile->ProfileList(""))), Cache());
  EXPECT_EQ(StateText(former->Value("GL")), "{K: \"old\"}");
}

TEST_F(SystemProfileTest, TheFirstReadFetchesAndFurtherOnesDoNot) {
  Store("GL", "K", "v");
  EXPECT_EQ(profile->Item("GL", "K"), "v");
  EXPECT_EQ(server.TakeLog(), LoadLog());
  EXPECT_EQ(profile->Item("GL", "K"), "v");
  EXPECT_EQ(profile->GetSystemProfile("SC", "K", "none"), "none");
  EXPECT_EQ(profile->CompanyName(), "");
  EXPECT_FALSE(profile->SCGetUsePlan());
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))), "{K: \"v\"}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SystemProfileTest, EveryObjectFetchesForItself) {
  profile->Refresh();
  server.TakeLog();
  Fresh()->Item("GL", "K");
  EXPECT_EQ(server.TakeLog(), LoadLog());
}

TEST_F(SystemProfileTest, AChangeOnTheServerIsSeenOnlyBehindRefresh) {
  Store("GL", "K", "old");
  EXPECT_EQ(profile->Item("GL", "K"), "old");
  Store("GL", "K", "new");
  EXPECT_EQ(profile->Item("GL", "K"), "old");
  profile->Refresh();
  EXPECT_EQ(profile->Item("GL", "K"), "new");
}

TEST_F(SystemProfileTest, AFailedCreationLeavesTheObjectAsItWas) {
  server.FailAt(1, Error(1234, "server", "words"));
  EXPECT_EQ(ErrorOf([&] { profile->Refresh(); }), "error 1234 (server): words");
  EXPECT_EQ(server.TakeLog(), "create QDSVBase.SystemProfile -> error 1234 (server): words\n");
  profile->Item("GL", "K");
  EXPECT_EQ(server.TakeLog(), LoadLog()) << "not loaded: the next read fetches";

  Store("GL", "K", "new");
  server.FailAt(1, Error(1234, "server", "words"));
  EXPECT_EQ(ErrorOf([&] { profile->Refresh(); }), "error 1234 (server): words");
  EXPECT_EQ(profile->Item("GL", "K"), "") << "loaded: the former cache stays";
}

TEST_F(SystemProfileTest, AFailedCallLeavesTheCategoriesFetchedUntilThenAndCountsAsLoaded) {
  for (const std::string& category : kCategories) Store(category, "K", "of " + category);
  for (int call = 1; call <= 15; ++call) {
    SCOPED_TRACE(call);
    const auto fetched = static_cast<std::size_t>(call - 1);
    const auto fresh = Fresh();
    server.FailAt(call + 1, Error(1234, "server", "words"));
    EXPECT_EQ(ErrorOf([&] { fresh->Item("GL", "K"); }), "error 1234 (server): words");
    EXPECT_EQ(server.TakeLog(), LoadLog(fetched) + "call ListProfiles(\"props\", \"" +
                                    kCategories[fetched] + "\") -> error 1234 (server): words\n");
    EXPECT_EQ(StateText(Variant(fresh->ProfileList(""))), Cache(fetched));
    for (std::size_t i = 0; i < kCategories.size(); ++i) {
      const std::string& category = kCategories[i];
      const std::string error = ErrorOf([&] { fresh->Item(category, "K"); });
      EXPECT_EQ(error, i < fetched ? "no error" : "error 0x80044000") << category;
    }
    EXPECT_EQ(server.TakeLog(), "");
  }
}

TEST_F(SystemProfileTest, AFailedRefreshDropsTheFormerCache) {
  profile->Refresh();
  server.TakeLog();
  server.FailAt(3, Error(1234));
  EXPECT_EQ(ErrorOf([&] { profile->Refresh(); }), "error 1234");
  EXPECT_EQ(StateText(Variant(profile->ProfileList(""))), "{Base: {}}");
}

TEST_F(SystemProfileTest, AnAnswerThatIsNoObjectEndsTheFetching) {
  server.Answer(kProfile, "ListProfiles", Variant("text"));
  EXPECT_EQ(ErrorOf([&] { profile->Refresh(); }), "error 13");
  EXPECT_EQ(StateText(Variant(profile->ProfileList(""))), "{}");
}

TEST_F(SystemProfileTest, ACategoryOfWhichTheServerGivesNothingCannotBeRead) {
  server.Answer(kProfile, "ListProfiles", Nothing);
  EXPECT_EQ(ErrorOf([&] { profile->Item("GL", "K"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { profile->GetSystemProfile("GL", "K", "d"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { profile->Item("GL", "K", "v"); }), "error 91");
  EXPECT_EQ(ErrorOf([&] { profile->GLGetCurrentYear(); }), "error 91");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))), "Nothing");
}

TEST_F(SystemProfileTest, ACategoryThatIsNoDictionaryCannotBeRead) {
  server.Answer(kProfile, "ListProfiles", Variant(Make<Vector>()));
  EXPECT_EQ(ErrorOf([&] { profile->Item("GL", "K"); }), "error 13");
  EXPECT_EQ(ErrorOf([&] { profile->ProfileList("GL"); }), "error 13");
}

TEST_F(SystemProfileTest, ProfileListWithoutACategoryIsTheLiveCache) {
  Store("GL", "K", "v");
  const Ref<Dictionary> lists = profile->ProfileList("");
  EXPECT_EQ(server.TakeLog(), LoadLog());
  EXPECT_EQ(StateText(Variant(lists)), Cache());
  EXPECT_EQ(profile->ProfileList(""), lists);
  EXPECT_EQ(profile->ProfileList(), lists);
  EXPECT_EQ(profile->Get("ProfileList").As<Dictionary>(), lists);

  lists->Value("GL").As<Dictionary>()->Put("K", Variant("edited"));
  lists->Put("XX", Variant(Row({{"K", "mine"}})));
  EXPECT_EQ(profile->Item("GL", "K"), "edited");
  EXPECT_EQ(profile->Item("XX", "K"), "mine");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SystemProfileTest, ProfileListOfACategoryIsTheCachedOne) {
  Store("General", "CompanyName", "Quenda");
  const Ref<Dictionary> general = profile->ProfileList("General");
  EXPECT_EQ(server.TakeLog(), LoadLog());
  EXPECT_EQ(StateText(Variant(general)), "{CompanyName: \"Quenda\"}");
  EXPECT_EQ(profile->Get("ProfileList", "General").As<Dictionary>(), general);
  general->Put("CompanyName", Variant("Other"));
  EXPECT_EQ(profile->CompanyName(), "Other");
}

TEST_F(SystemProfileTest, ProfileListOfAnUnknownCategoryIsARunTimeError) {
  EXPECT_EQ(ErrorOf([&] { profile->ProfileList("XX"); }), "error 13");
  EXPECT_EQ(server.TakeLog(), LoadLog());
  EXPECT_EQ(StateText(Variant(profile->ProfileList(""))), Cache());
}

// ---- Reading ----

TEST_F(SystemProfileTest, ItemGivesTheTextOfASetting) {
  Store("GL", "Text", "abc");
  Store("GL", "Number", Long{12});
  Store("GL", "Empty", "");
  Store("PA", "Text", "of PA");
  EXPECT_EQ(profile->Item("GL", "Text"), "abc");
  EXPECT_EQ(profile->Item("GL", "Number"), "12");
  EXPECT_EQ(profile->Item("GL", "Empty"), "");
  EXPECT_EQ(profile->Item("PA", "Text"), "of PA");
  EXPECT_EQ(StateText(profile->Get("Item", "GL", "Text")), "\"abc\"");
}

TEST_F(SystemProfileTest, ItemOfAMissingKeyIsEmptyText) {
  Store("GL", "Key", "abc");
  EXPECT_EQ(profile->Item("GL", "NoSuchKey"), "");
  EXPECT_EQ(profile->Item("GL", "KEY"), "") << "keys match exactly";
  EXPECT_EQ(profile->Item("GL", ""), "");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))), "{Key: \"abc\"}") << "no key is made";
}

TEST_F(SystemProfileTest, ItemOfNullIsEmptyText) {
  Store("GL", "K", Null);
  EXPECT_EQ(profile->Item("GL", "K"), "");
}

TEST_F(SystemProfileTest, GetSystemProfileGivesItsDefaultForAMissingKeyOnly) {
  Store("GL", "Text", "abc");
  Store("GL", "Null", Null);
  Store("GL", "Empty", "");
  EXPECT_EQ(profile->GetSystemProfile("GL", "Text", "default"), "abc");
  EXPECT_EQ(profile->GetSystemProfile("GL", "NoSuchKey", "default"), "default");
  EXPECT_EQ(profile->GetSystemProfile("GL", "Null", "default"), "");
  EXPECT_EQ(profile->GetSystemProfile("GL", "Empty", "default"), "");
  EXPECT_EQ(StateText(profile->Call("GetSystemProfile", "GL", "NoSuchKey", "default")),
            "\"default\"");
}

TEST_F(SystemProfileTest, AnUnknownCategoryIsRefusedBehindTheFetchingOfAll) {
  const std::function<void(SystemProfile&)> uses[] = {
      [](SystemProfile& p) { p.Item("XX", "K"); },
      [](SystemProfile& p) { p.Item("XX", "K", "v"); },
      [](SystemProfile& p) { p.GetSystemProfile("XX", "K", "d"); },
      [](SystemProfile& p) { p.Item("gl", "K"); },
      [](SystemProfile& p) { p.Item("", "K"); },
  };
  for (const auto& use : uses) {
    const auto fresh = Fresh();
    EXPECT_EQ(ErrorOf([&] { use(*fresh); }), "error 0x80044000");
    EXPECT_EQ(server.TakeLog(), LoadLog());
    EXPECT_EQ(ErrorOf([&] { use(*fresh); }), "error 0x80044000");
    EXPECT_EQ(server.TakeLog(), "");
    EXPECT_EQ(StateText(Variant(fresh->ProfileList(""))), Cache());
  }
}

// ---- Writing ----

TEST_F(SystemProfileTest, ItemWritesAChangeToTheServerAndTheCache) {
  Store("GL", "K", "old");
  profile->Item("GL", "K", "new");
  EXPECT_EQ(server.TakeLog(),
            LoadLog() + "create QDSVBase.SystemProfile\n"
                        "call SetProfile(\"props\", ref \"GL\", ref \"K\", ref \"new\")\n");
  EXPECT_EQ(profile->Item("GL", "K"), "new");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))), "{K: \"new\"}");
  EXPECT_EQ(server.TakeLog(), "");
}

TEST_F(SystemProfileTest, ItemIsWrittenByNameToo) {
  profile->Refresh();
  server.TakeLog();
  String category = "GL", key = "K", value = "v";
  server.AnswerWith(kProfile, "SetProfile", [](std::span<Argument> arguments) {
    arguments[3].Put(Variant("from the server"));
    return Variant();
  });
  profile->Let("Item", ByRef(category), ByRef(key), ByRef(value));
  EXPECT_EQ(server.TakeLog(), "create QDSVBase.SystemProfile\n"
                              "call SetProfile(\"props\", ref \"GL\", ref \"K\", ref \"v\")\n");
  EXPECT_EQ(category + key + value, "GLKv") << "the caller's variables stay";
}

TEST_F(SystemProfileTest, ItemWritesAKeyThatIsNotThereYet) {
  profile->Item("Bank", "New", "1");
  EXPECT_EQ(server.TakeLog(),
            LoadLog() + "create QDSVBase.SystemProfile\n"
                        "call SetProfile(\"props\", ref \"Bank\", ref \"New\", ref \"1\")\n");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("Bank"))), "{New: \"1\"}");
}

TEST_F(SystemProfileTest, ItemWritesNothingWhenOnlyTheCaseOfLettersChanges) {
  Store("GL", "K", "ABC");
  Store("GL", "Street", "Gr\u00fcne Stra\u00dfe");
  Store("GL", "Null", Null);
  profile->Refresh();
  server.TakeLog();
  profile->Item("GL", "K", "abc");
  profile->Item("GL", "K", "ABC");
  profile->Item("GL", "Street", "GR\u00dcNE stra\u00dfe");
  profile->Item("GL", "Null", "");
  profile->Item("GL", "NoSuchKey", "");
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))),
            "{K: \"ABC\", Street: \"Gr\u00fcne Stra\u00dfe\", Null: Null}");
}

TEST_F(SystemProfileTest, ItemWritesEveryOtherDifference) {
  Store("GL", "K", "abc");
  profile->Refresh();
  server.TakeLog();
  for (const char* value : {"abc ", "", "ab", "1", "1.0"}) {
    profile->Item("GL", "K", value);
    EXPECT_EQ(server.TakeLog(), "create QDSVBase.SystemProfile\n"
                                "call SetProfile(\"props\", ref \"GL\", ref \"K\", ref \"" +
                                    std::string(value) + "\")\n");
    EXPECT_EQ(profile->Item("GL", "K"), value);
  }
}

TEST_F(SystemProfileTest, ItemTakesAFreshConnectionTextBehindTheCreation) {
  profile->Refresh();
  server.TakeLog();
  server.LogSession();
  profile->Item("GL", "K", "v");
  EXPECT_EQ(server.TakeLog(), "create QDSVBase.SystemProfile\n"
                              "create-object QDCMtsCacheService.CacheFacade\n"
                              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call SetProfile(\"props\", ref \"GL\", ref \"K\", ref \"v\")\n");
}

TEST_F(SystemProfileTest, TheCacheFollowsWhatTheServerWritesBack) {
  Store("GL", "K", "old");
  server.AnswerWith(kProfile, "SetProfile", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant("SC"));
    arguments[2].Put(Variant("Other"));
    arguments[3].Put(Variant("trimmed"));
    return Variant();
  });
  profile->Item("GL", "K", "new");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("GL"))), "{K: \"old\"}");
  EXPECT_EQ(StateText(Variant(profile->ProfileList("SC"))), "{Other: \"trimmed\"}");
}

TEST_F(SystemProfileTest, AFailedWriteLeavesTheCacheAlone) {
  Store("GL", "K", "old");
  profile->Refresh();
  server.TakeLog();
  for (const int event : {1, 2}) {
    server.FailAt(event, Error(1234, "server", "words"));
    EXPECT_EQ(ErrorOf([&] { profile->Item("GL", "K", "new"); }), "error 1234 (server): words");
    EXPECT_EQ(profile->Item("GL", "K"), "old");
  }
  EXPECT_EQ(server.TakeLog(), "create QDSVBase.SystemProfile -> error 1234 (server): words\n"
                              "create QDSVBase.SystemProfile\n"
                              "call SetProfile(\"props\", ref \"GL\", ref \"K\", ref \"new\") -> "
                              "error 1234 (server): words\n");
}

TEST_F(SystemProfileTest, OtherObjectsSeeAWriteOnlyBehindTheirOwnRefresh) {
  Store("GL", "K", "old");
  server.AnswerWith(kProfile, "SetProfile", [this](std::span<Argument> arguments) {
    Store(arguments[1].As<String>(), arguments[2].As<String>(), arguments[3].Value());
    return Variant();
  });
  const auto other = Fresh();
  EXPECT_EQ(other->Item("GL", "K"), "old");
  profile->Item("GL", "K", "new");
  EXPECT_EQ(other->Item("GL", "K"), "old");
  EXPECT_EQ(Fresh()->Item("GL", "K"), "new");
  other->Refresh();
  EXPECT_EQ(other->Item("GL", "K"), "new");
}

TEST_F(SystemProfileTest, AReaderFollowsAWrite) {
  Store("GL", "CurrentYear", "2004");
  EXPECT_EQ(profile->GLGetCurrentYear(), 2004);
  profile->Item("GL", "CurrentYear", "2005");
  EXPECT_EQ(profile->GLGetCurrentYear(), 2005);
}

// ---- The typed readers ----

enum class Kind { kBoolean, kInteger, kLong, kDouble };

struct Reader {
  std::string name, category, key;
  Kind kind;
  std::function<Variant(SystemProfile&)> typed;
  CallKind use;
};

template <class T>
constexpr Kind KindOf() {
  if constexpr (std::is_same_v<T, Boolean>) return Kind::kBoolean;
  else if constexpr (std::is_same_v<T, Integer>) return Kind::kInteger;
  else if constexpr (std::is_same_v<T, Long>) return Kind::kLong;
  else return Kind::kDouble;
}

template <class T>
Reader Method(const char* name, const char* category, const char* key,
              T (SystemProfile::*member)()) {
  return {name,
          category,
          key,
          KindOf<T>(),
          [=](SystemProfile& profile) { return Variant((profile.*member)()); },
          CallKind::kMethod};
}

template <class T>
Reader Property(const char* name, const char* category, const char* key,
                T (SystemProfile::*member)() const) {
  return {name,
          category,
          key,
          KindOf<T>(),
          [=](SystemProfile& profile) { return Variant((profile.*member)()); },
          CallKind::kGet};
}

// The readers of numbers and truth values without a rule of their own.
const std::vector<Reader>& Readers() {
  static const std::vector<Reader> readers = {
      Property<Boolean>("GLGetClosed", "GL", "Closed", &SystemProfile::GLGetClosed),
      Method<Integer>("GLGetCurrentPeriod", "GL", "CurrentPeriod",
                      &SystemProfile::GLGetCurrentPeriod),
      Method<Integer>("GLGetCurrentYear", "GL", "CurrentYear", &SystemProfile::GLGetCurrentYear),
      Method<Long>("GLGetEarnAccount", "GL", "EarnAccount", &SystemProfile::GLGetEarnAccount),
      Method<Long>("GLGetEarnAssignAccount", "GL", "EarnAssignAccount",
                   &SystemProfile::GLGetEarnAssignAccount),
      Method<Boolean>("GLGetPeriodByMonth", "GL", "PeriodByMonth",
                      &SystemProfile::GLGetPeriodByMonth),
      Method<Integer>("GLGetPeriodCount", "GL", "PeriodCount", &SystemProfile::GLGetPeriodCount),
      Method<Boolean>("GLGetCheckBeforePost", "GL", "CheckBeforePost",
                      &SystemProfile::GLGetCheckBeforePost),
      Method<Boolean>("GLGetExpEachEnt", "GL", "ExplanationEachEntry",
                      &SystemProfile::GLGetExpEachEnt),
      Method<Boolean>("ScGetAcctBalStop", "SC", "SCAcctBalStop", &SystemProfile::ScGetAcctBalStop),
      Method<Integer>("SCGetActionForOverDue", "SC", "SCActionForOverDue",
                      &SystemProfile::SCGetActionForOverDue),
      Method<Boolean>("ScGetAutoVchNotDblChk", "SC", "SCAutoVchNotDblChk",
                      &SystemProfile::ScGetAutoVchNotDblChk),
      Method<Boolean>("SCGetBillAutoVch", "SC", "SCBillAutoVch", &SystemProfile::SCGetBillAutoVch),
      Method<Boolean>("SCGetChangeRenewAcct", "SC", "SCChangeRenewAcct",
                      &SystemProfile::SCGetChangeRenewAcct),
      Method<Boolean>("SCGetConsignSaveAutoCheck", "SC", "SCConsignSaveAutoCheck",
                      &SystemProfile::SCGetConsignSaveAutoCheck),
      Method<Boolean>("ScGetDailyEnd", "SC", "SCDailyEnd", &SystemProfile::ScGetDailyEnd),
      Method<Long>("SCGetDiscAmtAcct", "SC", "SCDiscAmtAcct", &SystemProfile::SCGetDiscAmtAcct),
      Method<Long>("SCGetDiscIntEarnAcct", "SC", "SCDiscIntEarnAcct",
                   &SystemProfile::SCGetDiscIntEarnAcct),
      Method<Long>("SCGetDiscInterAcct", "SC", "SCDiscinterAcct",
                   &SystemProfile::SCGetDiscInterAcct),
      Method<Boolean>("SCGetDpstPayWithInt", "SC", "SCDpstPayWithInt",
                      &SystemProfile::SCGetDpstPayWithInt),
      Method<Boolean>("SCGetForbidHistory", "SC", "SCForbidHistory",
                      &SystemProfile::SCGetForbidHistory),
      Method<Boolean>("ScGetForIntMakeNow", "SC", "SCForIntMakeNow",
                      &SystemProfile::ScGetForIntMakeNow),
      Method<Boolean>("ScGetInSettNoteReCheck", "SC", "SCInSettNoteReCheck",
                      &SystemProfile::ScGetInSettNoteReCheck),
      Method<Boolean>("ScGetInSettReCheck", "SC", "SCInSettReCheck",
                      &SystemProfile::ScGetInSettReCheck),
      Method<Boolean>("SCGetIntAutoVch", "SC", "SCIntAutoVch", &SystemProfile::SCGetIntAutoVch),
      Method<Boolean>("ScGetIntCalByBill", "SC", "SCIntCalByBill",
                      &SystemProfile::ScGetIntCalByBill),
      Method<Boolean>("SCGetIntDpstModifySum", "SC", "SCIntDpstModifySum",
                      &SystemProfile::SCGetIntDpstModifySum),
      Method<Boolean>("SCGetIntMultiSaveNoVch", "SC", "SCIntMultiSaveNoVch",
                      &SystemProfile::SCGetIntMultiSaveNoVch),
      Method<Boolean>("SCGetIntOneYear", "SC", "SCIntOneYear", &SystemProfile::SCGetIntOneYear),
      Method<Boolean>("SCGetIntSaveAutoCheck", "SC", "SCIntSaveAutoCheck",
                      &SystemProfile::SCGetIntSaveAutoCheck),
      Method<Integer>("SCGetIntTaxAcct", "SC", "SCIntTaxAcct", &SystemProfile::SCGetIntTaxAcct),
      Method<Double>("SCGetIntTaxRate", "SC", "SCIntTaxRate", &SystemProfile::SCGetIntTaxRate),
      Method<Boolean>("SCGetIntToDpst", "SC", "SCIntToDpst", &SystemProfile::SCGetIntToDpst),
      Method<Boolean>("SCGetIntToLoan", "SC", "SCIntToLoan", &SystemProfile::SCGetIntToLoan),
      Method<Boolean>("SCGetIntToOneVch", "SC", "SCIntToOneVch", &SystemProfile::SCGetIntToOneVch),
      Method<Boolean>("SCGetLoanPayWithInt", "SC", "SCLoanPayWithInt",
                      &SystemProfile::SCGetLoanPayWithInt),
      Method<Boolean>("SCGetLongTermLoanMidCal", "SC", "SCLongTermLoanMidCal",
                      &SystemProfile::SCGetLongTermLoanMidCal),
      Method<Boolean>("ScGetMakeVchInLoanExt", "SC", "SCMakeVchInLoanExt",
                      &SystemProfile::ScGetMakeVchInLoanExt),
      Method<Boolean>("ScGetMakeVchInReStat", "SC", "SCMakeVchInReStat",
                      &SystemProfile::ScGetMakeVchInReStat),
      Method<Long>("SCGetMaxLoanExt", "SC", "SCMaxLoanExt", &SystemProfile::SCGetMaxLoanExt),
      Method<Long>("SCGetMaxRtStat", "SC", "SCMaxRtStat", &SystemProfile::SCGetMaxRtStat),
      Method<Boolean>("ScGetNotiPayBillVch", "SC", "SCNotiPayBillVch",
                      &SystemProfile::ScGetNotiPayBillVch),
      Method<Boolean>("SCGetOneTimeLoanMidCal", "SC", "SCOneTimeLoanMidCal",
                      &SystemProfile::SCGetOneTimeLoanMidCal),
      Method<Boolean>("ScGetOverDue180", "SC", "SCOverDue180", &SystemProfile::ScGetOverDue180),
      Method<Boolean>("ScGetPayBillVch", "SC", "SCPayBillVch", &SystemProfile::ScGetPayBillVch),
      Method<Boolean>("ScGetPayNoteReCheck", "SC", "SCPayNoteReCheck",
                      &SystemProfile::ScGetPayNoteReCheck),
      Method<Boolean>("ScGetPayReCheck", "SC", "SCPayReCheck", &SystemProfile::ScGetPayReCheck),
      Method<Boolean>("SCGetPreIntCalDpst", "SC", "SCPreIntCalDpst",
                      &SystemProfile::SCGetPreIntCalDpst),
      Method<Boolean>("SCGetPreIntCalLoan", "SC", "SCPreIntCalLoan",
                      &SystemProfile::SCGetPreIntCalLoan),
      Method<Boolean>("SCGetPreIntCalStat", "SC", "SCPreIntCalStat",
                      &SystemProfile::SCGetPreIntCalStat),
      Method<Integer>("SCGetRtLongLoanIntMethod", "SC", "SCRtLongLoanIntMethod",
                      &SystemProfile::SCGetRtLongLoanIntMethod),
      Method<Integer>("SCGetRtShortLoanIntMethod", "SC", "SCRtShortLoanIntMethod",
                      &SystemProfile::SCGetRtShortLoanIntMethod),
      Method<Integer>("SCGetRtStatIntMethod", "SC", "SCRtStatIntMethod",
                      &SystemProfile::SCGetRtStatIntMethod),
      Method<Boolean>("SCGetSettAcntSel", "SC", "SCSettAcntSel", &SystemProfile::SCGetSettAcntSel),
      Method<Boolean>("SCGetSettOneVch", "SC", "SCSettOneVch", &SystemProfile::SCGetSettOneVch),
      Method<Boolean>("ScGetStrikeRed", "SC", "SCStrikeRed", &SystemProfile::ScGetStrikeRed),
      Method<Boolean>("ScGetTransferBillVch", "SC", "SCTransferBillVch",
                      &SystemProfile::ScGetTransferBillVch),
      Method<Boolean>("SCGetUsePlan", "SC", "SCUsePlan", &SystemProfile::SCGetUsePlan),
      Method<Boolean>("SCStatIntCalWhole", "SC", "SCStatIntCalWhole",
                      &SystemProfile::SCStatIntCalWhole),
  };
  return readers;
}

// What a reader gives, typed and by name, or its error.
std::string Read(const Reader& reader, SystemProfile& profile) {
  const auto text = [](const std::function<Variant()>& read) {
    try {
      return StateText(read());
    } catch (const Error& error) {
      return std::string(error.what());
    }
  };
  const std::string typed = text([&] { return reader.typed(profile); });
  const std::string late = text([&] { return profile.Invoke(reader.name, reader.use, {}); });
  return typed == late ? typed : typed + ", but by name " + late;
}

// What a text reads as in each type.
struct Reading {
  const char* stored;
  const char* as_boolean;
  const char* as_integer;
  const char* as_long;
  const char* as_double;

  std::string As(Kind kind) const {
    switch (kind) {
      case Kind::kBoolean: return as_boolean;
      case Kind::kInteger: return as_integer;
      case Kind::kLong: return as_long;
      case Kind::kDouble: return as_double;
    }
    return "?";
  }
};

constexpr Reading kReadings[] = {
    {"", "False", "0%", "0", "0#"},
    {"0", "False", "0%", "0", "0#"},
    {"0.0", "False", "0%", "0", "0#"},
    {"1", "True", "1%", "1", "1#"},
    {"-1", "True", "-1%", "-1", "-1#"},
    {"abc", "False", "0%", "0", "0#"},
    {"True", "False", "0%", "0", "0#"},
    {"12abc", "True", "12%", "12", "12#"},
    {" 7 ", "True", "7%", "7", "7#"},
    {"0.25", "True", "0%", "0", "0.25#"},
    {"0.5", "True", "0%", "0", "0.5#"},
    {"2.5", "True", "2%", "2", "2.5#"},
    {"3.5", "True", "4%", "4", "3.5#"},
    {"-2.5", "True", "-2%", "-2", "-2.5#"},
    {"32767", "True", "32767%", "32767", "32767#"},
    {"32767.5", "True", "error 6", "32768", "32767.5#"},
    {"32768", "True", "error 6", "32768", "32768#"},
    {"-32768", "True", "-32768%", "-32768", "-32768#"},
    {"-32769", "True", "error 6", "-32769", "-32769#"},
    {"40000", "True", "error 6", "40000", "40000#"},
    {"2147483647", "True", "error 6", "2147483647", "2147483647#"},
    {"2147483648", "True", "error 6", "error 6", "2147483648#"},
    {"-2147483649", "True", "error 6", "error 6", "-2147483649#"},
};

TEST_F(SystemProfileTest, EveryReaderConvertsTheNumberThatItsTextBeginsWith) {
  ASSERT_EQ(Readers().size(), 9u + 50u);
  for (const Reading& reading : kReadings) {
    for (const Reader& reader : Readers()) Store(reader.category, reader.key, reading.stored);
    const auto fresh = Fresh();
    for (const Reader& reader : Readers()) {
      EXPECT_EQ(Read(reader, *fresh), reading.As(reader.kind))
          << reader.name << " of \"" << reading.stored << "\"";
    }
  }
}

TEST_F(SystemProfileTest, EveryReaderReadsItsOwnKeyAndNoOther) {
  for (const Reader& own : Readers()) {
    SCOPED_TRACE(own.name);
    const Reading& zero = kReadings[0];
    const Reading& one = kReadings[3];
    stored.clear();
    Store(own.category, own.key, "1");
    EXPECT_EQ(Read(own, *Fresh()), one.As(own.kind));

    stored.clear();
    for (const std::string& category : kCategories) {
      for (const Reader& reader : Readers()) {
        if (category != own.category || reader.key != own.key) Store(category, reader.key, "1");
      }
    }
    EXPECT_EQ(Read(own, *Fresh()), zero.As(own.kind)) << "without its key";
  }
}

TEST_F(SystemProfileTest, EveryReaderTakesNullForZero) {
  for (const Reader& reader : Readers()) Store(reader.category, reader.key, Null);
  for (const Reader& reader : Readers()) {
    EXPECT_EQ(Read(reader, *profile), kReadings[0].As(reader.kind)) << reader.name;
  }
}

TEST_F(SystemProfileTest, EveryReaderFetchesOnceAndPassesAFailureOn) {
  for (const Reader& reader : Readers()) {
    SCOPED_TRACE(reader.name);
    const auto fresh = Fresh();
    reader.typed(*fresh);
    EXPECT_EQ(server.TakeLog(), LoadLog());
    reader.typed(*fresh);
    EXPECT_EQ(server.TakeLog(), "");

    server.FailAt(1, Error(1234, "server", "words"));
    EXPECT_EQ(ErrorOf([&] { reader.typed(*Fresh()); }), "error 1234 (server): words");
    server.TakeLog();
  }
}

TEST_F(SystemProfileTest, TheCompanysReadersGiveTheirTextsAsTheyAre) {
  EXPECT_EQ(profile->CompanyAddress() + profile->CompanyName() + profile->CompanyPhone(), "");
  Store("General", "CompanyAddress", "1 High Street");
  Store("General", "CompanyName", " Quenda ");
  Store("General", "CompanyPhone", "0049");
  Store("GL", "CompanyName", "of another category");
  const auto fresh = Fresh();
  EXPECT_EQ(fresh->CompanyAddress(), "1 High Street");
  EXPECT_EQ(fresh->CompanyName(), " Quenda ");
  EXPECT_EQ(fresh->CompanyPhone(), "0049");
  EXPECT_EQ(StateText(fresh->Get("CompanyAddress")), "\"1 High Street\"");
  EXPECT_EQ(StateText(fresh->Get("CompanyName")), "\" Quenda \"");
  EXPECT_EQ(StateText(fresh->Get("CompanyPhone")), "\"0049\"");
}

// ---- The local override file ----

TEST_F(SystemProfileTest, SpecItemIsMinusOneWithoutTheFile) {
  EXPECT_EQ(profile->SpecItem("Options", "CheckBeforePost"), -1);
  server.platform().SetProfileInt(kOverrideFile, "Options", "CheckBeforePost", 5);
  EXPECT_EQ(profile->SpecItem("Options", "CheckBeforePost"), -1);
  EXPECT_EQ(server.TakeLog(), "") << "the server has no part in it";
}

TEST_F(SystemProfileTest, SpecItemIsMinusOneForAFolderOfThatName) {
  server.platform().SetProfileInt(kOverrideFile, "Options", "CheckBeforePost", 5);
  for (const std::uint32_t attributes :
       {file_attribute::kDirectory, file_attribute::kDirectory | file_attribute::kReadOnly}) {
    server.platform().file_attributes[kOverrideFile] = attributes;
    EXPECT_EQ(profile->SpecItem("Options", "CheckBeforePost"), -1);
  }
}

TEST_F(SystemProfileTest, SpecItemIsMinusOneWhenTheFileCannotBeAsked) {
  WriteOverride("Options", "CheckBeforePost", 5);
  server.platform().fail_file_attributes = true;
  EXPECT_EQ(profile->SpecItem("Options", "CheckBeforePost"), -1);
}

TEST_F(SystemProfileTest, SpecItemIsZeroForWhatTheFileDoesNotHold) {
  WriteOverride("Options", "CheckBeforePost", 5);
  EXPECT_EQ(profile->SpecItem("Options", "NoSuchKey"), 0);
  EXPECT_EQ(profile->SpecItem("NoSuchSection", "CheckBeforePost"), 0);
  server.platform().fail_private_profile = true;
  EXPECT_EQ(profile->SpecItem("Options", "CheckBeforePost"), 0);
}

TEST_F(SystemProfileTest, SpecItemIsTheNumberInTheFile) {
  for (const Long number : {5, 0, -5}) {
    WriteOverride("Options", "Number", number);
    EXPECT_EQ(profile->SpecItem("Options", "Number"), number);
    EXPECT_EQ(profile->Get("SpecItem", "Options", "Number").As<Long>(), number);
  }
  server.platform().file_attributes[kOverrideFile] = file_attribute::kReadOnly;
  EXPECT_EQ(profile->SpecItem("Options", "Number"), -5);
}

TEST_F(SystemProfileTest, SpecItemLooksBesideTheProgramWithoutASystemDirectory) {
  WriteOverride("Options", "Number", 5);
  server.platform().fail_system_directory = true;
  EXPECT_EQ(profile->SpecItem("Options", "Number"), -1);
  server.platform().file_attributes["SpecFun.ini"] = file_attribute::kNormal;
  server.platform().SetProfileInt("SpecFun.ini", "Options", "Number", 6);
  EXPECT_EQ(profile->SpecItem("Options", "Number"), 6);
}

TEST_F(SystemProfileTest, TheOverrideFileForcesASettingOnAndNeverOff) {
  struct Override {
    const char* section;
    const char* profile_key;
    const char* file_key;
    Boolean (SystemProfile::*read)();
  };
  const Override overrides[] = {
      {"Options", "CheckBeforePost", "CheckBeforePost", &SystemProfile::GLGetCheckBeforePost},
      {"Voucher", "ExplanationEachEntry", "RequireBrief", &SystemProfile::GLGetExpEachEnt},
  };
  for (const Override& override : overrides) {
    SCOPED_TRACE(override.profile_key);
    const auto read = [&](const char* setting) {
      Store("GL", override.profile_key, setting);
      return ((*Fresh()).*override.read)();
    };
    server.platform().file_attributes.clear();
    EXPECT_FALSE(read("0"));
    EXPECT_TRUE(read("1"));

    server.platform().file_attributes[kOverrideFile] = file_attribute::kNormal;
    EXPECT_FALSE(read("0")) << "without the key";
    EXPECT_TRUE(read("1")) << "without the key";

    for (const Long number : {1, 2, 0, -1}) {
      SCOPED_TRACE(number);
      server.platform().SetProfileInt(kOverrideFile, override.section, override.file_key, number);
      EXPECT_EQ(read("0"), number > 0);
      EXPECT_TRUE(read("1"));
    }

    server.platform().SetProfileInt(kOverrideFile, override.section, override.file_key, 1);
    server.platform().file_attributes[kOverrideFile] = file_attribute::kDirectory;
    EXPECT_FALSE(read("0")) << "a folder of that name";
  }
}

TEST_F(SystemProfileTest, EachForcedSettingHasItsOwnKeyInTheOverrideFile) {
  WriteOverride("Options", "CheckBeforePost", 1);
  EXPECT_TRUE(profile->GLGetCheckBeforePost());
  EXPECT_FALSE(profile->GLGetExpEachEnt());
  server.platform().SetProfileInt(kOverrideFile, "Options", "CheckBeforePost", 0);
  server.platform().SetProfileInt(kOverrideFile, "Voucher", "RequireBrief", 1);
  EXPECT_FALSE(profile->GLGetCheckBeforePost());
  EXPECT_TRUE(profile->GLGetExpEachEnt());
}

// ---- The offline state ----

TEST_F(SystemProfileTest, IsNeedOfflineAsksTheServerEachTime) {
  server.Answer(kBase, "IsNeedOffline", Variant(true));
  const std::string log = "create QDSVBase.BaseInfo\n"
                          "call IsNeedOffline(\"props\", -1%, ref \"HOST\") -> True\n";
  EXPECT_TRUE(profile->IsNeedOffline());
  EXPECT_EQ(server.TakeLog(), log);
  EXPECT_EQ(StateText(profile->Call("IsNeedOffline")), "True");
  EXPECT_EQ(server.TakeLog(), log);
}

TEST_F(SystemProfileTest, IsNeedOfflineTakesTheAnswerAsATruthValue) {
  const std::pair<Variant, Boolean> answers[] = {
      {false, false}, {Long{0}, false}, {Variant(), false},  {"False", false},
      {true, true},   {Long{2}, true},  {Integer{-1}, true}, {"True", true},
  };
  for (const auto& [answer, offline] : answers) {
    server.Answer(kBase, "IsNeedOffline", answer);
    EXPECT_EQ(profile->IsNeedOffline(), offline) << StateText(answer);
  }
  server.Answer(kBase, "IsNeedOffline", Variant("perhaps"));
  EXPECT_EQ(ErrorOf([&] { profile->IsNeedOffline(); }), "error 13");
}

TEST_F(SystemProfileTest, IsNeedOfflineNamesTheComputerAsTheSystemDoes) {
  server.platform().computer_name = "Front Desk";
  profile->IsNeedOffline();
  server.platform().fail_computer_name = true;
  profile->IsNeedOffline();
  EXPECT_EQ(server.TakeLog(), "create QDSVBase.BaseInfo\n"
                              "call IsNeedOffline(\"props\", -1%, ref \"Front Desk\")\n"
                              "create QDSVBase.BaseInfo\n"
                              "call IsNeedOffline(\"props\", -1%, ref \"NoName\")\n");
}

TEST_F(SystemProfileTest, IsNeedOfflinePassesAFailureOn) {
  for (const int event : {1, 2}) {
    server.FailAt(event, Error(1234, "server", "words"));
    EXPECT_EQ(ErrorOf([&] { profile->IsNeedOffline(); }), "error 1234 (server): words");
  }
}

TEST_F(SystemProfileTest, SetGlobalQueryStatusWritesTheCallersDecisionToTheRegistry) {
  server.session_values["PropsString"] = Variant("Initial catalog=ACC1;Data Source=X;");
  server.session_values["UserName"] = Variant("Anna");
  const std::string key = "HKEY_LOCAL_MACHINE\\SoftWare\\Quenda\\LocalDatabase\\Anna";

  Boolean offline = true;
  profile->SetGlobalQueryStatus(offline);
  EXPECT_EQ(server.platform().registry.at(key).at("ACC1"),
            (RegistryValue{registry_type::kText, "OFFLINE"}));
  EXPECT_TRUE(IsOffline());

  offline = false;
  profile->Call("SetGlobalQueryStatus", ByRef(offline));
  EXPECT_EQ(server.platform().registry.at(key).at("ACC1"),
            (RegistryValue{registry_type::kText, "ONLINE"}));
  EXPECT_FALSE(IsOffline());
  EXPECT_FALSE(offline);
  EXPECT_EQ(server.TakeLog(), "") << "the server is not asked";
}

TEST_F(SystemProfileTest, SetGlobalQueryStatusRaisesForAConnectionTextWithoutASemicolon) {
  SetOfflineState(false);
  server.session_values["PropsString"] = Variant("Initial catalog=ACC1");
  server.platform().registry.clear();
  EXPECT_EQ(ErrorOf([&] { profile->SetGlobalQueryStatus(true); }), "error 5");
  EXPECT_TRUE(IsOffline()) << "the decision is kept all the same";
  EXPECT_TRUE(server.platform().registry.empty());
}

TEST_F(SystemProfileTest, SetGlobalQueryStatusRaisesNothingWhenTheRegistryRefuses) {
  SetOfflineState(false);
  server.platform().registry_create_code = system_code::kAccessDenied;
  EXPECT_EQ(ErrorOf([&] { profile->SetGlobalQueryStatus(true); }), "no error");
  EXPECT_TRUE(IsOffline());
}

// ---- The transaction context ----

TEST_F(SystemProfileTest, TheTransactionContextIsKeptAndGivenToNobody) {
  const auto context = Make<Opaque>();
  profile->SetTransactionContext(context);
  EXPECT_EQ(context->holders(), 2);
  profile->Refresh();
  Long year = 0;
  profile->GLGetPeriodByDate(DateTime::FromYmd(2004, 3, 15), year);
  EXPECT_EQ(server.TakeLog(), LoadLog() + "create QDCPeriodDate.clsPeriodDate\n"
                                          "call GetPeriod(\"props\", ref #2004-03-15#, ref 0)\n");
  EXPECT_EQ(context->holders(), 2);

  const auto other = Make<Opaque>();
  profile->SetTransactionContext(other);
  EXPECT_EQ(context->holders(), 1);
  EXPECT_EQ(other->holders(), 2);
  profile->SetTransactionContext(Nothing);
  EXPECT_EQ(other->holders(), 1);
}

// ---- The period of a date ----

TEST_F(AccountingCalendarTest, ThePeriodOfADateIsTheServers) {
  AnswerPeriod(Variant(Long{2005}), 13);
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(2004, 3, 15)), "13 of 2005");
  EXPECT_EQ(server.TakeLog(), "create QDCPeriodDate.clsPeriodDate\n"
                              "call GetPeriod(\"props\", ref #2004-03-15#, ref 0) -> 2005\n");
}

TEST_F(AccountingCalendarTest, ThePeriodOfADateIsAskedAnewEachTimeWithoutTheSettings) {
  AnswerPeriod(Variant("2004"), 3);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(PeriodOf(DateTime(DateTime::FromYmd(2004, 3, 15).days + 0.5)), "3 of 2004");
    EXPECT_EQ(server.TakeLog(),
              "create QDCPeriodDate.clsPeriodDate\n"
              "call GetPeriod(\"props\", ref #2004-03-15 12:00:00#, ref 0) -> \"2004\"\n");
  }
}

TEST_F(AccountingCalendarTest, ThePeriodOfADateIsAskedForWithAFreshConnectionText) {
  server.LogSession();
  PeriodOf(DateTime::FromYmd(2004, 3, 15));
  EXPECT_EQ(server.TakeLog(), "create QDCPeriodDate.clsPeriodDate\n"
                              "create-object QDCMtsCacheService.CacheFacade\n"
                              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetPeriod(\"props\", ref #2004-03-15#, ref 0)\n");
}

TEST_F(AccountingCalendarTest, APeriodThatTheServerDoesNotWriteIsZero) {
  server.Answer(kCalendar, "GetPeriod", Variant(Long{2004}));
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(2004, 3, 15)), "0 of 2004");
}

TEST_F(AccountingCalendarTest, TheYearOfADateComesBackIntoTheCallersVariableByName) {
  server.AnswerWith(kCalendar, "GetPeriod", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(DateTime::FromYmd(1999, 1, 1)));
    arguments[2].Put(Variant(Long{4}));
    return Variant(Long{2006});
  });
  DateTime day = DateTime::FromYmd(2004, 3, 15);
  Long year = 77;
  EXPECT_EQ(StateText(profile->Call("GLGetPeriodByDate", ByRef(day), ByRef(year))), "4");
  EXPECT_EQ(year, 2006);
  EXPECT_EQ(day, DateTime::FromYmd(2004, 3, 15)) << "the caller's date stays";

  Variant any = Variant("text");
  EXPECT_EQ(ErrorOf([&] { profile->Call("GLGetPeriodByDate", day, ByRef(any)); }), "error 13");
  any = Variant();
  EXPECT_EQ(StateText(profile->Call("GLGetPeriodByDate", "2004-03-15", ByRef(any))), "4");
  EXPECT_EQ(StateText(any), "2006");
}

TEST_F(AccountingCalendarTest, DatesFromTheYear9999AreNotAskedFor) {
  AnswerPeriod(Variant(Long{1}), 1);
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(9999, 1, 1)), "1 of 9999");
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(9999, 12, 31)), "12 of 9999");
  EXPECT_EQ(server.TakeLog(), "");
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(9998, 12, 31)), "1 of 1");
  EXPECT_EQ(server.TakeLog(), "create QDCPeriodDate.clsPeriodDate\n"
                              "call GetPeriod(\"props\", ref #9998-12-31#, ref 0) -> 1\n");
}

TEST_F(AccountingCalendarTest, ThePeriodOfADateIsTheCalendarsWhenTheServerFails) {
  AnswerPeriod(Variant(Long{2005}), 13);
  for (const int event : {1, 2}) {
    server.FailAt(event, Error(1234, "server", "words"));
    EXPECT_EQ(PeriodOf(DateTime::FromYmd(2004, 3, 15)), "3 of 2004");
  }
  EXPECT_EQ(server.TakeLog(),
            "create QDCPeriodDate.clsPeriodDate -> error 1234 (server): words\n"
            "create QDCPeriodDate.clsPeriodDate\n"
            "call GetPeriod(\"props\", ref #2004-03-15#, ref 0) -> error 1234 (server): words\n");
}

TEST_F(AccountingCalendarTest, ThePeriodOfADateIsTheCalendarsWithoutAServer) {
  server.missing_components = {kCalendar, "QDCMtsCacheService.CacheFacade",
                               "QDCPropsMgr.ShareProps"};
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(2004, 3, 15)), "3 of 2004");
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(1899, 12, 29)), "12 of 1899");
}

TEST_F(AccountingCalendarTest, AFailureBehindAWrittenPeriodGivesTheCalendarsPeriod) {
  server.AnswerWith(kCalendar, "GetPeriod", [](std::span<Argument> arguments) -> Variant {
    arguments[2].Put(Variant(Long{13}));
    throw Error(1234);
  });
  EXPECT_EQ(PeriodOf(DateTime::FromYmd(2004, 3, 15)), "3 of 2004");
}

TEST_F(AccountingCalendarTest, AYearThatIsNoLongGivesTheCalendarsPeriod) {
  for (const Variant& answer :
       {Variant("soon"), Variant(Null), Variant(1e10), Variant(Make<Vector>())}) {
    AnswerPeriod(answer, 13);
    EXPECT_EQ(PeriodOf(DateTime::FromYmd(2004, 3, 15)), "3 of 2004") << StateText(answer);
  }
}

// ---- The first day of a period ----

TEST_F(AccountingCalendarTest, TheFirstDayOfAPeriodIsTheServers) {
  EXPECT_EQ(profile->GLGetPeriodDate(2004, 3), DateTime::FromYmd(2004, 2, 26));
  EXPECT_EQ(server.TakeLog(), LoadLog() +
                                  "create QDCPeriodDate.clsPeriodDate\n"
                                  "call GetPeriodStartEnd(\"props\", ref 3, ref 2004" +
                                  kTwoUnsetDates);
  EXPECT_EQ(StateText(profile->Call("GLGetPeriodDate", 2004, 3)), "#2004-02-26#");
  EXPECT_EQ(server.TakeLog(), "create QDCPeriodDate.clsPeriodDate\n"
                              "call GetPeriodStartEnd(\"props\", ref 3, ref 2004" +
                                  kTwoUnsetDates);
}

TEST_F(AccountingCalendarTest, TheFirstDayIsAskedForWithAFreshConnectionText) {
  profile->Refresh();
  server.TakeLog();
  server.LogSession();
  profile->GLGetPeriodDate(2004, 3);
  EXPECT_EQ(server.TakeLog(), "create QDCPeriodDate.clsPeriodDate\n"
                              "create-object QDCMtsCacheService.CacheFacade\n"
                              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
                              "call GetPeriodStartEnd(\"props\", ref 3, ref 2004" +
                                  kTwoUnsetDates);
}

TEST_F(AccountingCalendarTest, AFirstDayThatTheServerDoesNotWriteIsDayZero) {
  server.Answer(kCalendar, "GetPeriodStartEnd", Variant(DateTime::FromYmd(2004, 1, 1)));
  EXPECT_EQ(profile->GLGetPeriodDate(2004, 3), DateTime(0));
}

TEST_F(AccountingCalendarTest, ZeroStandsForTheCurrentPeriodAndYear) {
  EXPECT_EQ(AskedFor(0, 0), "3 of 2004");
  EXPECT_EQ(AskedFor(0, 5), "5 of 2004");
  EXPECT_EQ(AskedFor(1999, 0), "3 of 1999");
}

TEST_F(AccountingCalendarTest, APeriodPastTheYearsEndCountsOnInTheNextYears) {
  EXPECT_EQ(AskedFor(2004, 12), "12 of 2004");
  EXPECT_EQ(AskedFor(2004, 13), "1 of 2005");
  EXPECT_EQ(AskedFor(2004, 14), "2 of 2005");
  EXPECT_EQ(AskedFor(2004, 24), "12 of 2005");
  EXPECT_EQ(AskedFor(2004, 25), "1 of 2006");
  EXPECT_EQ(AskedFor(0, 14), "2 of 2005");
  EXPECT_EQ(AskedFor(-1, 13), "1 of 0");
  EXPECT_EQ(AskedFor(2004, 2147483647), "7 of 178958974");

  Store("GL", "PeriodCount", "13");
  EXPECT_EQ(AskedFor(2004, 13), "13 of 2004");
  EXPECT_EQ(AskedFor(2004, 14), "1 of 2005");

  Store("GL", "PeriodCount", "1");
  EXPECT_EQ(AskedFor(2004, 5), "1 of 2008");

  Store("GL", "PeriodCount", "2");
  EXPECT_EQ(AskedFor(0, 0), "1 of 2005") << "the current period counts on too";
}

TEST_F(AccountingCalendarTest, APeriodBelowOneIsRefusedBeforeTheCalendarIsAsked) {
  EXPECT_EQ(AskedFor(2004, -1), "error 5, nobody asked");
  EXPECT_EQ(AskedFor(0, -12), "error 5, nobody asked");
  EXPECT_EQ(AskedFor(2004, -2147483647 - 1), "error 5, nobody asked");
  Store("GL", "CurrentPeriod", "-3");
  EXPECT_EQ(AskedFor(2004, 0), "error 5, nobody asked");
  Store("GL", "CurrentPeriod", "");
  EXPECT_EQ(AskedFor(2004, 0), "error 5, nobody asked");
}

TEST_F(AccountingCalendarTest, AYearBeyondAllYearsOverflowsBeforeTheCalendarIsAsked) {
  EXPECT_EQ(AskedFor(2147483647, 12), "12 of 2147483647");
  EXPECT_EQ(AskedFor(2147483647, 13), "error 6, nobody asked");
  EXPECT_EQ(AskedFor(2147483646, 24), "12 of 2147483647");
  EXPECT_EQ(AskedFor(2147483646, 25), "error 6, nobody asked");
  Store("GL", "PeriodCount", "1");
  EXPECT_EQ(AskedFor(1, 2147483647), "1 of 2147483647");
  EXPECT_EQ(AskedFor(2, 2147483647), "error 6, nobody asked");
}

TEST_F(AccountingCalendarTest, AYearWithoutPeriodsOverflowsAtOnce) {
  for (const char* count : {"0", "", "abc", "-1", "-3"}) {
    SCOPED_TRACE(count);
    Store("GL", "PeriodCount", count);
    EXPECT_EQ(AskedFor(2004, 1), "error 6, nobody asked");
    EXPECT_EQ(AskedFor(0, 0), "error 6, nobody asked");
    EXPECT_EQ(AskedFor(2004, 2147483647), "error 6, nobody asked");
    EXPECT_EQ(AskedFor(2004, -4), "error 5, nobody asked");
  }
  Store("GL", "PeriodCount", "-3");
  EXPECT_EQ(AskedFor(2004, -2), "error 6, nobody asked") << "above the count";
  EXPECT_EQ(AskedFor(2004, -3), "error 5, nobody asked");
}

TEST_F(AccountingCalendarTest, TheCountAndTheCurrentYearAreReadEvenWhenTheyAreNotNeeded) {
  Store("GL", "CurrentPeriod", "40000");
  EXPECT_EQ(AskedFor(2004, 3), "3 of 2004") << "the current period only for period 0";
  EXPECT_EQ(AskedFor(2004, 0), "error 6, nobody asked");
  Store("GL", "CurrentYear", "40000");
  EXPECT_EQ(AskedFor(2004, 3), "error 6, nobody asked");
  Store("GL", "CurrentYear", "2004");
  Store("GL", "PeriodCount", "40000");
  EXPECT_EQ(AskedFor(2004, 3), "error 6, nobody asked");
}

TEST_F(AccountingCalendarTest, TheArgumentsOfTheCallerStay) {
  server.AnswerWith(kCalendar, "GetPeriodStartEnd", [](std::span<Argument> arguments) {
    arguments[1].Put(Variant(Long{8}));
    arguments[2].Put(Variant(Long{1999}));
    return Variant();
  });
  Long year = 2004, period = 14;
  profile->Call("GLGetPeriodDate", ByRef(year), ByRef(period));
  EXPECT_EQ(year, 2004);
  EXPECT_EQ(period, 14);
  year = period = 0;
  profile->Call("GLGetPeriodDate", ByRef(year), ByRef(period));
  EXPECT_EQ(year, 0);
  EXPECT_EQ(period, 0);
}

TEST_F(AccountingCalendarTest, TheFirstDayOfAPeriodPassesEveryFailureOn) {
  constexpr int kEvents = 1 + 15 + 2;
  for (int event = 1; event <= kEvents; ++event) {
    SCOPED_TRACE(event);
    const auto fresh = Fresh();
    server.FailAt(event, Error(1234, "server", "words"));
    EXPECT_EQ(ErrorOf([&] { fresh->GLGetPeriodDate(2004, 3); }), "error 1234 (server): words");
    EXPECT_TRUE(server.TakeLog().ends_with(" -> error 1234 (server): words\n"));
  }
}

// ---- The settlement centre's own rules ----

TEST_F(SettlementOptionsTest, TheDaysOfAnOverdueBillAre180WithoutASetting) {
  EXPECT_EQ(profile->ScGetOverDueNum(), 180);
  EXPECT_EQ(StateText(profile->Call("ScGetOverDueNum")), "180");
  const std::pair<Variant, const char*> cases[] = {
      {"", "180"},  {Null, "180"},   {"0", "0"},   {"0.0", "0"}, {"1", "1"}, {"-1", "-1"},
      {"abc", "0"}, {"12abc", "12"}, {"2.5", "2"}, {"3.5", "4"}, {" ", "0"}, {"40000", "40000"},
  };
  for (const auto& [text, days] : cases) {
    Store("SC", "SCOverDueNum", text);
    const auto fresh = Fresh();
    EXPECT_EQ(StateText(Variant(fresh->ScGetOverDueNum())), days) << StateText(text);
    EXPECT_EQ(StateText(fresh->Call("ScGetOverDueNum")), days) << StateText(text);
  }
  Store("SC", "SCOverDueNum", "2147483648");
  EXPECT_EQ(ErrorOf([] { Fresh()->ScGetOverDueNum(); }), "error 6");
}

TEST_F(SettlementOptionsTest, TheDaysOfAnOverdueBillPassAFailureOn) {
  server.FailAt(1, Error(1234));
  EXPECT_EQ(ErrorOf([&] { profile->ScGetOverDueNum(); }), "error 1234");
}

// A member that is a day, its key, and what it gives without a day.
struct DayOption {
  const char* name;
  const char* key;
  DateTime (SystemProfile::*read)();
  DateTime fallback;
};

const DayOption kDays[] = {
    {"SCGetDateToday", "SCDateToday", &SystemProfile::SCGetDateToday,
     DateTime::FromYmd(2026, 1, 31)},
    {"SCGetYearRateStartDate", "SCYearRateStartDate", &SystemProfile::SCGetYearRateStartDate,
     DateTime::FromYmd(1995, 10, 25)},
};

TEST_F(SettlementOptionsTest, ADayIsReadFromItsText) {
  const std::pair<Variant, DateTime> cases[] = {
      {"2004-03-15", DateTime::FromYmd(2004, 3, 15)},
      {"2004/03/15", DateTime::FromYmd(2004, 3, 15)},
      {"2004-3-5", DateTime::FromYmd(2004, 3, 5)},
      {"2004-02-29", DateTime::FromYmd(2004, 2, 29)},
      {"2004-03-15 13:05:09", DateTime::FromYmd(2004, 3, 15)},
      {"2004-03-15 23:59:59", DateTime::FromYmd(2004, 3, 15)},
      {"38061", DateTime::FromYmd(2004, 3, 15)},
      {"38061.75", DateTime::FromYmd(2004, 3, 15)},
      {"-1.75", DateTime::FromYmd(1899, 12, 29)},
      {"13:05:09", DateTime(0)},
      {DateTime(38061.75), DateTime::FromYmd(2004, 3, 15)},
  };
  for (const DayOption& option : kDays) {
    for (const auto& [text, day] : cases) {
      Store("SC", option.key, text);
      const auto fresh = Fresh();
      EXPECT_EQ(StateText(Variant(((*fresh).*option.read)())), StateText(Variant(day)))
          << option.name << " of " << StateText(text);
      EXPECT_EQ(StateText(fresh->Call(option.name)), StateText(Variant(day)));
    }
  }
}

TEST_F(SettlementOptionsTest, ADayThatIsNotSetOrCannotBeReadIsTheFallback) {
  for (const DayOption& option : kDays) {
    SCOPED_TRACE(option.name);
    stored.clear();
    EXPECT_EQ(((*Fresh()).*option.read)(), option.fallback);
    for (const Variant& text : {Variant(""), Variant(Null), Variant("abc"), Variant("2004-13-01"),
                                Variant("2004-02-30"), Variant("12abc"), Variant("1E9")}) {
      Store("SC", option.key, text);
      const auto fresh = Fresh();
      EXPECT_EQ(((*fresh).*option.read)(), option.fallback) << StateText(text);
      EXPECT_EQ(StateText(fresh->Call(option.name)), StateText(Variant(option.fallback)));
    }
  }
}

TEST_F(SettlementOptionsTest, TodayIsTheMachinesDayOfTheCall) {
  profile->Refresh();
  server.platform().now = DateTime::FromParts({2026, 2, 28, 23, 59, 59});
  EXPECT_EQ(profile->SCGetDateToday(), DateTime::FromYmd(2026, 2, 28));
  server.platform().now = DateTime::FromYmd(2026, 3, 1);
  EXPECT_EQ(profile->SCGetDateToday(), DateTime::FromYmd(2026, 3, 1));
}

TEST_F(SettlementOptionsTest, EachDayHasItsOwnKey) {
  Store("SC", "SCDateToday", "2004-03-15");
  EXPECT_EQ(profile->SCGetYearRateStartDate(), DateTime::FromYmd(1995, 10, 25));
  stored.clear();
  Store("SC", "SCYearRateStartDate", "2004-03-15");
  EXPECT_EQ(Fresh()->SCGetDateToday(), DateTime::FromYmd(2026, 1, 31));
}

TEST_F(SettlementOptionsTest, ADaySwallowsTheServersFailure) {
  for (const DayOption& option : kDays) {
    SCOPED_TRACE(option.name);
    Store("SC", option.key, "2004-03-15");
    for (int event = 1; event <= 16; ++event) {
      const auto fresh = Fresh();
      server.FailAt(event, Error(1234, "server", "words"));
      EXPECT_EQ(((*fresh).*option.read)(), option.fallback) << event;
      EXPECT_TRUE(server.TakeLog().ends_with(" -> error 1234 (server): words\n")) << event;
      // The next read finds what was fetched: nothing before the settlement centre's category, and
      // everything after a creation that failed.
      const bool read = event == 1 || event > 5;
      EXPECT_EQ(((*fresh).*option.read)(), read ? DateTime::FromYmd(2004, 3, 15) : option.fallback)
          << event;
      EXPECT_EQ(server.TakeLog(), event == 1 ? LoadLog() : "") << event;
    }
  }
}

}  // namespace
}  // namespace qdclgl
