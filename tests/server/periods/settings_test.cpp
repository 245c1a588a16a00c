#include "qdclgl/server/periods/settings.h"

#include "qdclgl/frame/vocabulary/strings.h"
#include "tests/server/books_state.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kProfile = "QDSVBase.SystemProfile";

class SettingsTest : public RecordsTest {
 protected:
  void Set(std::string category, std::string key, std::string value) {
    Call(kProfile, "SetProfile", props, ByRef(category), ByRef(key), ByRef(value));
  }
  std::string List(std::string_view category) {
    return TextOf(*Call(kProfile, "ListProfiles", props, category).As<Dictionary>());
  }
};

TEST_P(SettingsTest, NewBooksKnowTheirCalendar) {
  EXPECT_EQ(List("GL"),
            "CurrentPeriod=1;CurrentYear=2024;PeriodByMonth=1;PeriodCount=12;StartPeriod=1;"
            "StartYear=2024;YearStartMonth=1;");
}

TEST_P(SettingsTest, AllFifteenCategoriesAreThere) {
  for (const std::string_view category : strings::kProfileCategories) {
    Set(std::string(category), "Key", "of " + std::string(category));
  }
  for (const std::string_view category : strings::kProfileCategories) {
    EXPECT_NE(List(category).find("Key=of " + std::string(category) + ";"), std::string::npos);
  }
  for (const char* category : {"gl", "", "XX", "GL' OR '1'='1", "GL "}) {
    EXPECT_EQ(RefusalOf([&] { List(category); }), "UnknownCategory") << category;
    EXPECT_EQ(RefusalOf([&] { Set(category, "a", "b"); }), "UnknownCategory") << category;
  }
}

TEST_P(SettingsTest, TextsAreKeptAsTheyAre) {
  const std::string odd = "'; DROP TABLE t_SystemProfile; -- ? :a 元 \\ %";
  Set("Base", odd, odd);
  Set("Base", odd, odd + odd);
  EXPECT_EQ(List("Base"), odd + "=" + odd + odd + ";");
  Set("PA", "Long", std::string(100'000, 'x'));
  EXPECT_EQ(List("PA").size(), 100'006u);
  EXPECT_EQ(RefusalOf([&] { Set("Base", "", "x"); }), "Required");
  EXPECT_EQ(RefusalOf([&] { Set("Base", std::string("a\0b", 3), "x"); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Set("Base", "x", "\xFF"); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Set("Base", "x", "half \xED\xA0\xBD"); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Set("Base", "x", "\xED\xA0\xBD\xED\xB8\x80"); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Set("Base", std::string(256, 'k'), "x"); }), "BadValue");
}

TEST_P(SettingsTest, WhatClosingKeepsIsFixed) {
  const std::string before = State();
  for (const char* key : {"CurrentYear", "CurrentPeriod", "StartYear", "StartPeriod"}) {
    EXPECT_EQ(RefusalOf([&] { Set("GL", key, "2030"); }), "SettingFixed") << key;
  }
  EXPECT_EQ(State(), before);
  Set("FA", "CurrentYear", "2030");
}

TEST_P(SettingsTest, CalendarsThatCantBeAreRefused) {
  const std::string before = State();
  for (const char* value : {"5", "0", "-1", "", "many", "1e300"}) {
    EXPECT_EQ(RefusalOf([&] { Set("GL", "PeriodCount", value); }), "BadSetting") << value;
  }
  EXPECT_EQ(RefusalOf([&] { Set("GL", "YearStartMonth", "13"); }), "BadSetting");
  EXPECT_EQ(State(), before);
  Set("GL", "PeriodCount", "4");
  Set("GL", "YearStartMonth", "7");
}

TEST_P(SettingsTest, TheCalendarStaysOnceThereAreVouchers) {
  AddVoucher(AddGroup("Receipts"), AddAccount("1"), AddAccount("2"), Currency(1));
  for (const char* key : {"PeriodCount", "PeriodByMonth", "YearStartMonth"}) {
    EXPECT_EQ(RefusalOf([&] { Set("GL", key, "1"); }), "SettingFixed") << key;
  }
  Set("GL", "CheckBeforePost", "1");
}

TEST_P(SettingsTest, SavingIsOnTheAuditTrail) {
  Set("Base", "Offline", "1");
  EXPECT_EQ(TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props).As<Recordset>(),
                   {"FSubject", "FRecord", "FAction", "FChanges"}),
            "Setting Base.Offline Update 1\n");
}

TEST_P(SettingsTest, OnlyAdministratorsWrite) {
  ExpectAdministratorsOnly(
      [&](const std::string& who) { Call(kProfile, "SetProfile", who, "Base", "Offline", "1"); });
  AddUser("anna", "reader");
  Login("anna");
  List("GL");
  EXPECT_EQ(RefusalOf([&] { Call(kProfile, "ListProfiles", connection, "GL"); }), "NotLoggedIn");
}

TEST_P(SettingsTest, AFailureAtAnyStatementLeavesNothingBehind) {
  FailEachStatement([&] { Set("GL", "CheckBeforePost", "1"); });
  FailEachStatement([&] { Set("GL", "PeriodCount", "4"); });
}

TEST_P(SettingsTest, ClientsAskWhetherToWorkOffLine) {
  const auto offline = [&](std::string_view computer) {
    return Call("QDSVBase.BaseInfo", "IsNeedOffline", props, Integer{1}, computer).As<Boolean>();
  };
  EXPECT_FALSE(offline("DESK"));
  EXPECT_FALSE(offline(""));
  Set("Base", "Offline", "desk");
  EXPECT_TRUE(offline("DESK"));
  EXPECT_FALSE(offline("OTHER"));
  Set("Base", "Offline", "0");
  EXPECT_FALSE(offline("DESK"));
  Set("Base", "Offline", "1");
  EXPECT_TRUE(offline("OTHER"));
}

QDCLGL_BOOKS_TEST(SettingsTest);

}  // namespace
}  // namespace qdclgl::server::testing
