#include "qdclgl/server/periods/settings.h"

#include <map>

#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/server/periods/setting_types.h"
#include "qdclgl/settings/system_profile.h"
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
  Set("PA", "Longest", std::string(1'000'000, 'x'));
  EXPECT_EQ(RefusalOf([&] { Set("PA", "Too long", std::string(1'000'001, 'x')); }), "BadValue");
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

TEST_P(SettingsTest, TheCalendarStaysOnceAPeriodIsClosed) {
  Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  for (const char* key : {"PeriodCount", "PeriodByMonth", "YearStartMonth"}) {
    EXPECT_EQ(RefusalOf([&] { Set("GL", key, "1"); }), "SettingFixed") << key;
  }
}

TEST_P(SettingsTest, SavingIsOnTheAuditTrail) {
  Set("Base", "Offline", "1");
  Set("Base", "Offline", "HOST \"A\"");
  EXPECT_EQ(TextOf(Call("QDSVGLAudit.AuditInfo", "GetList", props,
                        "FSubject = 'Setting' AND FAction <> 'Create'")
                       .As<Recordset>(),
                   {"FSubject", "FRecord", "FAction", "FChanges"}),
            "Setting Base.Offline Update {\"Base.Offline\":[\"\",\"1\"]}\n"
            "Setting Base.Offline Update {\"Base.Offline\":[\"1\",\"HOST \\\"A\\\"\"]}\n");
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

TEST_P(SettingsTest, ASettingTakesWhatIsOfItsTypeAndRangeAlone) {
  const auto taken = [&](const char* category, const char* key,
                         std::initializer_list<const char*> values) {
    std::string text;
    for (const char* value : values) {
      const std::string refusal = RefusalOf([&] { Set(category, key, value); });
      if (refusal == "none") text += std::string(text.empty() ? "" : " ") + "'" + value + "'";
      else EXPECT_EQ(refusal, "BadSetting") << key << " " << value;
    }
    return text;
  };
  for (const char* key : {"CheckBeforePost", "CheckerNotPreparer", "ApproverNotPreparer",
                          "CashierNotPreparer", "PosterNotPreparer", "PeriodByMonth"}) {
    EXPECT_EQ(taken("GL", key,
                    {"True", "yes", "on", "1e20", "2", "-1", "1.0", " 1", "1 ", "false", "0x1", "1",
                     "0"}),
              "'1' '0'")
        << key;
  }
  EXPECT_EQ(taken("Base", "Offline", {"True", "YES", "on", "off", "2", "1e20", "0", "1", "desk"}),
            "'0' '1' 'desk'");
  EXPECT_EQ(taken("Base", "SessionMinutes", {"-1", "10081", "1e3", "5 min", "0", "10080"}),
            "'0' '10080'");
  EXPECT_EQ(taken("GL", "YearStartMonth", {"0", "13", "1e20", "7.0", "July", "7"}), "'7'");
  EXPECT_EQ(taken("SC", "SCIntTaxRate", {"inf", "nan", "1,5", "1e999", "5%", "0.05", "1e-2"}),
            "'0.05' '1e-2'");
  EXPECT_EQ(taken("SC", "SCDateToday",
                  {"31.1.2024", "2024-13-01", "2024-02-30", "2024-01/31", "soon", "2024-02-29",
                   "2024/02/29"}),
            "'2024-02-29' '2024/02/29'");
  EXPECT_EQ(SentenceOf([&] { Set("GL", "CheckBeforePost", "True"); }),
            "Setting CheckBeforePost of GL is 0 or 1, not \"True\".");
}

TEST_P(SettingsTest, AllThatAreKnownOrSetAreListedWithWhatTheyMayBe) {
  Set("PA", "MyOwn", "x");
  Set("GL", "MyOwn", "y");
  Set("GL", "CheckBeforePost", "1");
  const auto rows = Call(kProfile, "ListSettings", props).As<Recordset>();
  EXPECT_EQ(rows->RecordCount(), static_cast<Long>(KnownSettings().size()) + 2);
  const auto line = [&](const std::string& key) {
    rows->MoveFirst();
    rows->Find("FKey = '" + key + "'");
    return TextOf(*rows->Row());
  };
  EXPECT_EQ(line("CheckBeforePost"),
            "FCategory=GL;FKey=CheckBeforePost;FValue=1;FDefault=0;FRange=0 or 1;"
            "FMeaning=a voucher is checked before it is posted;");
  EXPECT_EQ(line("StartYear"),
            "FCategory=GL;FKey=StartYear;FValue=2024;FDefault=;"
            "FRange=kept by closing and reopening;FMeaning=the year that the books begin with;");
  EXPECT_EQ(line("MyOwn"), "FCategory=GL;FKey=MyOwn;FValue=y;FDefault=;FRange=;FMeaning=;");
}

// What is listed as the default holds: a setting may always be set to it.
TEST_P(SettingsTest, EachDefaultIsOneOfTheValuesThatTheSettingMayHave) {
  for (const KnownSetting& known : KnownSettings()) {
    if (known.type == SettingType::kKept) continue;
    const std::string key(known.key);
    EXPECT_EQ(
        RefusalOf([&] { Set(std::string(known.category), key, std::string(known.otherwise)); }),
        "none")
        << key;
  }
}

TEST_P(SettingsTest, SettingsOfCallersOwnTakeAnyText) {
  for (const char* value : {"True", "yes", "1e20", ""}) {
    Set("GL", "MyOwn", value);
    Set("SC", "CheckBeforePost", value);
  }
}

// Each option that the library reads by a member of its own is known here by the same type.
TEST_P(SettingsTest, WhatTheLibraryReadsIsOfTheTypeThatItReads) {
  const std::map<std::string, std::pair<const char*, const char*>> values = {
      {"Boolean", {"1", "2"}},
      {"Integer", {"32767", "32768"}},
      {"Long", {"2147483647", "2147483648"}},
      {"Double", {"0.5", "half"}},
      {"Date", {"2024-01-31", "January"}}};
  const std::string option = "Settlement option ";
  int options = 0;
  for (const ClassMember& member : SystemProfile::Table().members()) {
    const std::string help(member.row.help);
    if (!help.starts_with(option)) continue;
    const std::string key = help.substr(option.size(), help.find_first_of(".,;") - option.size());
    const auto [right, wrong] = values.at(std::string(member.row.type));
    EXPECT_EQ(RefusalOf([&, text = right] { Set("SC", key, text); }), "none") << key;
    EXPECT_EQ(RefusalOf([&, text = wrong] { Set("SC", key, text); }), "BadSetting") << key;
    ++options;
  }
  EXPECT_EQ(options, 53);
}

QDCLGL_BOOKS_TEST(SettingsTest);

}  // namespace
}  // namespace qdclgl::server::testing
