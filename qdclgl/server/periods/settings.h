// The settings of the books, texts under a category and a key.
#pragma once

#include <deque>
#include <initializer_list>
#include <map>
#include <string>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"
#include "qdclgl/server/access/trail_row.h"
#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

// The settings of category GL that the server itself goes by.
namespace setting {
inline constexpr std::string_view kCurrentYear = "CurrentYear";      // written by closing alone
inline constexpr std::string_view kCurrentPeriod = "CurrentPeriod";  // likewise
inline constexpr std::string_view kStartYear = "StartYear";          // where the books begin
inline constexpr std::string_view kStartPeriod = "StartPeriod";
inline constexpr std::string_view kPeriodCount = "PeriodCount";          // 12
inline constexpr std::string_view kPeriodByMonth = "PeriodByMonth";      // 1; 0: by weeks
inline constexpr std::string_view kYearStartMonth = "YearStartMonth";    // 1
inline constexpr std::string_view kCheckBeforePost = "CheckBeforePost";  // 1: post needs check
// 1: who made a voucher or changed a part of it does not take the step.
inline constexpr std::string_view kCheckerNotPreparer = "CheckerNotPreparer";
inline constexpr std::string_view kApproverNotPreparer = "ApproverNotPreparer";
inline constexpr std::string_view kCashierNotPreparer = "CashierNotPreparer";
inline constexpr std::string_view kPosterNotPreparer = "PosterNotPreparer";
inline constexpr std::string_view kNoNegativeAmounts = "NoNegativeAmounts";  // 1: no red ink
}  // namespace setting

// The number at the beginning of a setting's text, rounded; 0 when there is none.
Long SettingNumber(std::string_view text);

// A setting of category GL, "" when it is not set.
std::string GlSetting(Database& db, std::string_view key);
void PutGlSetting(Database& db, std::string_view key, std::string_view value);

// On the trail all settings are one record without an id; a key is "GL.CurrentYear".
inline constexpr std::string_view kSettingSubject = "Setting";
// Closing and reopening are told of apart, and change settings too.
inline constexpr std::string_view kPeriodSubject = "Period";
// The settings as the trail tells them, all of them or those of one category and key.
class TrailedSettings {
 public:
  explicit TrailedSettings(Database& db);
  TrailedSettings(Database& db, std::string_view category,
                  std::initializer_list<std::string_view> keys);
  TrailedSettings(const TrailedSettings&) = delete;
  TrailedSettings& operator=(const TrailedSettings&) = delete;

  const TrailRow& row() const { return row_; }

 private:
  void Add(std::string_view category, std::string_view key, std::string_view value);

  std::deque<std::string> keys_;
  TrailRow row_;
};

// The settings that every save goes by, read at once.
struct LedgerRules {
  Calendar calendar;
  AccountingPeriod current;  // the books stand here: it and all behind it are open
  bool check_before_post;
  bool checker_not_preparer;
  bool approver_not_preparer;
  bool cashier_not_preparer;
  bool poster_not_preparer;
  bool no_negative_amounts;

  static LedgerRules Of(Database& db);
  // From the settings of category GL, key to text.
  static LedgerRules From(const std::map<std::string, std::string, std::less<>>& settings);
};

AccountingPeriod CurrentPeriod(Database& db);

// Reads and writes the settings.
class ServerProfile final : public Object {
  QD_MEMBERS(ServerProfile, Object, Creatable, "The settings of the books.")

 public:
  static constexpr std::string_view kProgID = "QDSVBase.SystemProfile";
  static constexpr MethodRight kRights[] = {
      {"ListProfiles", {Role::kReader, "read settings"}},
      {"SetProfile", {Role::kAdministrator, "change settings"}},
      {"ListSettings", {Role::kReader, "read settings"}}};

  QD_METHOD(Ref<Dictionary>, ListProfiles,
            (std::string_view PropsString, std::string_view Category),
            "The settings of a category, key to text. UnknownCategory for one that is not of the "
            "fifteen.")
  QD_METHOD(void, SetProfile,
            (std::string_view PropsString, const String& Category, const String& ProfileID,
             const String& Value),
            "Writes a setting; administrators only. UnknownCategory; SettingFixed for a setting "
            "that closing keeps, or that dates and periods of present vouchers rest on; BadSetting "
            "for a value that is not of the setting's type and range, as settings.md tells them. "
            "Settings that nobody knows take any text.")
  QD_METHOD(Ref<Recordset>, ListSettings, (std::string_view PropsString),
            "All settings that are known or set, those of one category together: FCategory, FKey, "
            "FValue (\"\" while it is not set), FDefault (what holds then), FRange and FMeaning, "
            "which are \"\" for settings that nobody knows.")
};

class BaseInfo final : public Object {
  QD_MEMBERS(BaseInfo, Object, Creatable, "Questions about the server itself.")

 public:
  static constexpr std::string_view kProgID = "QDSVBase.BaseInfo";
  static constexpr MethodRight kRights[] = {{"IsNeedOffline", {Role::kReader, "ask the server"}}};

  QD_METHOD(Boolean, IsNeedOffline,
            (std::string_view PropsString, Integer AtLogin, const String& ComputerName),
            "Whether a client must work off line: True when setting Offline of category Base is "
            "on, or names this computer.")
};

}  // namespace qdclgl::server
