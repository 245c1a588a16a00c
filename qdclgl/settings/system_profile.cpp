#include "qdclgl/settings/system_profile.h"

#include <limits>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/enumeration.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

constexpr const char* kProfileComponent = "QDSVBase.SystemProfile";
constexpr const char* kCalendarComponent = "QDCPeriodDate.clsPeriodDate";
constexpr const char* kOverrideFile = "SpecFun.ini";
constexpr Long kNoOverrideFile = -1;

// The cached settings of a category. Error 91 for a category that the server gave nothing for.
Ref<Dictionary> ProfilesOf(const SystemProfile& profile, const String& category) {
  Ref<Dictionary> profiles = profile.ProfileList(category);
  if (!profiles) RaiseError(error_number::kObjectNotSet);
  return profiles;
}

}  // namespace

template <class T>
T SystemProfile::ReadProfile(const char* category, const char* profile_id) const {
  const Double number = Val(Item(category, profile_id));
  if constexpr (std::is_same_v<T, Boolean>) {
    return number != 0;
  } else {
    return ConvertTo<T>(Variant(number));
  }
}

// Collects the readers' rows, which need the template above.
QD_DEFINE_MEMBERS(SystemProfile)

template Boolean SystemProfile::ReadProfile<Boolean>(const char*, const char*) const;
template Integer SystemProfile::ReadProfile<Integer>(const char*, const char*) const;
template Long SystemProfile::ReadProfile<Long>(const char*, const char*) const;
template Double SystemProfile::ReadProfile<Double>(const char*, const char*) const;

// ---- The cache ----

void SystemProfile::Refresh() { Fetch(); }

void SystemProfile::Fetch() const {
  const CallingOut out(this);
  const Ref<Object> component = ServerGateway().CreateInstance(kProfileComponent);
  const Ref<Dictionary> lists = Make<Dictionary>();  // a component may fetch them anew meanwhile
  m_Lists = lists;
  for (const std::string_view category : strings::kProfileCategories) {
    const Variant profiles = component->Call("ListProfiles", GetPropsString(), category);
    lists->Put(category, Variant(profiles.As<Object>()));
  }
}

Ref<Dictionary> SystemProfile::ProfileList(String Category) const {
  const Ref self(this);
  if (!m_Lists) Fetch();
  return Category.empty() ? m_Lists : m_Lists->Value(Category).As<Dictionary>();
}

String SystemProfile::ProfileText(const String& category, const String& profile_id,
                                  const String& fallback) const {
  const Ref self(this);
  if (!ProfileList({})->Contains(category)) RaiseError(error_number::kUnknownProfileCategory);
  const Ref<Dictionary> profiles = ProfilesOf(*this, category);
  if (!profiles->Contains(profile_id)) return fallback;
  return EnumFactory().NullToDefault(profiles->Value(profile_id), Variant("")).As<String>();
}

String SystemProfile::Item(String Category, String ProfileID) const {
  return ProfileText(Category, ProfileID, {});
}

void SystemProfile::Item(String Category, String ProfileID, String value) {
  const CallingOut out(this);
  if (ToUpper(Item(Category, ProfileID)) == ToUpper(value)) return;
  const Ref<Object> component = ServerGateway().CreateInstance(kProfileComponent);
  component->Call("SetProfile", GetPropsString(), ByRef(Category), ByRef(ProfileID), ByRef(value));
  ProfilesOf(*this, Category)->Put(ProfileID, Variant(value));
}

String SystemProfile::GetSystemProfile(String Category, String ProfileID, String Default) {
  return ProfileText(Category, ProfileID, Default);
}

// ---- Settings with a rule of their own ----

String SystemProfile::CompanyAddress() const { return Item("General", "CompanyAddress"); }

String SystemProfile::CompanyName() const { return Item("General", "CompanyName"); }

String SystemProfile::CompanyPhone() const { return Item("General", "CompanyPhone"); }

Boolean SystemProfile::GLGetClosed() const { return ReadProfile<Boolean>("GL", "Closed"); }

Boolean SystemProfile::GLGetCheckBeforePost() {
  const Ref self(this);
  return ReadProfile<Boolean>("GL", "CheckBeforePost") || IsForcedOn("Options", "CheckBeforePost");
}

Boolean SystemProfile::GLGetExpEachEnt() {
  const Ref self(this);
  return ReadProfile<Boolean>("GL", "ExplanationEachEntry") ||
         IsForcedOn("Voucher", "RequireBrief");
}

Boolean SystemProfile::IsForcedOn(const char* section, const char* key) const {
  return SpecItem(section, key) > 0;
}

Long SystemProfile::SpecItem(String Section, String Key) const {
  const String file = GetSystemDirectoryPath() + kOverrideFile;
  const auto attributes = CurrentPlatform().FileAttributes(file);
  if (!attributes || (*attributes & file_attribute::kDirectory) != 0) return kNoOverrideFile;
  return CurrentPlatform().PrivateProfileInt(Section, Key, 0, file);
}

Long SystemProfile::ScGetOverDueNum() {
  constexpr Long kUnset = 180;
  const Ref self(this);
  if (Item("SC", "SCOverDueNum").empty()) return kUnset;
  return ReadProfile<Long>("SC", "SCOverDueNum");
}

DateTime SystemProfile::ReadDay(const char* profile_id, DateTime fallback) const {
  try {
    const DateTime::Parts parts = CDate(Variant(Item("SC", profile_id))).ToParts();
    return DateTime::FromYmd(parts.year, parts.month, parts.day);
  } catch (const Error&) {
    return fallback;
  }
}

DateTime SystemProfile::SCGetDateToday() {
  return ReadDay("SCDateToday", CurrentPlatform().Today());
}

DateTime SystemProfile::SCGetYearRateStartDate() {
  return ReadDay("SCYearRateStartDate", DateTime::FromYmd(1995, 10, 25));
}

// ---- Offline state ----

Boolean SystemProfile::IsNeedOffline() { return QueryNeedOffline(); }

void SystemProfile::SetGlobalQueryStatus(const Boolean& bOffline) { SetOfflineState(bOffline); }

// ---- Accounting calendar ----

Long SystemProfile::GLGetPeriodByDate(DateTime d, Long& nYear) {
  constexpr int kBeyondTheBooks = 9999;
  const DateTime::Parts calendar = d.ToParts();
  if (calendar.year < kBeyondTheBooks) {
    try {
      const Ref<Object> component = ServerGateway().CreateInstance(kCalendarComponent);
      Long period = 0;
      nYear = component->Call("GetPeriod", GetPropsString(), ByRef(d), ByRef(period)).As<Long>();
      return period;
    } catch (const Error&) {
      // Without a server the calendar answers.
    }
  }
  nYear = calendar.year;
  return calendar.month;
}

DateTime SystemProfile::GLGetPeriodDate(Long nYear, Long Period) {
  const CallingOut out(this);
  if (Period == 0) Period = GLGetCurrentPeriod();
  const Long count = GLGetPeriodCount();
  const Long current_year = GLGetCurrentYear();
  if (nYear == 0) nYear = current_year;
  if (Period > count) {
    // A year without periods is never long enough: counting on would end beyond all years.
    if (count <= 0) RaiseError(error_number::kOverflow);
    const Long years = (Period - 1) / count;
    if (nYear > std::numeric_limits<Long>::max() - years) RaiseError(error_number::kOverflow);
    nYear += years;
    Period -= years * count;
  }
  if (Period < 1) RaiseError(error_number::kInvalidCall);
  const Ref<Object> component = ServerGateway().CreateInstance(kCalendarComponent);
  DateTime start, end;
  component->Call("GetPeriodStartEnd", GetPropsString(), ByRef(Period), ByRef(nYear), ByRef(start),
                  ByRef(end));
  return start;
}

}  // namespace qdclgl
