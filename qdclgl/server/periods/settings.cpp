#include "qdclgl/server/periods/settings.h"

#include <algorithm>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/setting_types.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(ServerProfile)
QD_DEFINE_MEMBERS(BaseInfo)

namespace {

constexpr std::size_t kLongestName = 255;

std::string_view CategoryNamed(std::string_view name) {
  const auto found = std::ranges::find(strings::kProfileCategories, name);
  if (found == strings::kProfileCategories.end()) {
    Refuse(refusal::kUnknownCategory,
           "There is no category of settings \"" + std::string(name) + "\".");
  }
  return *found;
}

// "" when it is not set.
std::string SettingOf(Database& db, std::string_view category, std::string_view key) {
  return db
      .QueryValue<std::string>(
          "SELECT FValue FROM t_SystemProfile WHERE FCategory = ? AND FKey = ?", category, key)
      .value_or("");
}

void PutSetting(Database& db, std::string_view category, std::string_view key,
                std::string_view value) {
  if (value.size() > kLongestStoredText) {
    Refuse(refusal::kBadValue, "The value of setting " + std::string(key) + " has more than " +
                                   std::to_string(kLongestStoredText) + " bytes.");
  }
  db.Execute("INSERT INTO t_SystemProfile (FCategory, FKey, FValue) VALUES (?, ?, ?)"
             " ON CONFLICT (FCategory, FKey) DO UPDATE SET FValue = excluded.FValue",
             category, key, value);
}

// Refuses values of GL that would break the books.
void CheckGlSetting(Database& db, const std::string& key, const std::string& value) {
  using namespace setting;
  if (key == kCurrentYear || key == kCurrentPeriod || key == kStartYear || key == kStartPeriod) {
    Refuse(refusal::kSettingFixed, "Setting " + key + " of GL is kept by closing and reopening.");
  }
  if (key != kPeriodCount && key != kPeriodByMonth && key != kYearStartMonth) return;
  if (db.QueryValue<int>("SELECT 1 FROM t_Voucher LIMIT 1")) {
    Refuse(refusal::kSettingFixed,
           "Setting " + key + " of GL can't change any more: the books have vouchers.");
  }
  if (CurrentPeriod(db) != AccountingPeriod{SettingNumber(GlSetting(db, kStartYear)),
                                            SettingNumber(GlSetting(db, kStartPeriod))}) {
    Refuse(refusal::kSettingFixed,
           "Setting " + key + " of GL can't change any more: a period is closed.");
  }
  const auto number = [&](std::string_view wanted, Long otherwise) {
    if (key == wanted) return SettingNumber(value);
    const std::string text = GlSetting(db, wanted);
    return text.empty() ? otherwise : SettingNumber(text);
  };
  const Calendar calendar(number(kPeriodCount, 12), number(kPeriodByMonth, 1) != 0,
                          number(kYearStartMonth, 1));
  calendar.SpanOf(CurrentPeriod(db));  // the books' first period must be there
}

}  // namespace

Long SettingNumber(std::string_view text) {
  try {
    return CLng(Variant(Val(text)));
  } catch (const Error&) {
    Refuse(refusal::kBadSetting, "\"" + std::string(text) + "\" is no number for a setting.");
  }
}

std::string GlSetting(Database& db, std::string_view key) {
  return SettingOf(db, strings::categories::GL, key);
}

void PutGlSetting(Database& db, std::string_view key, std::string_view value) {
  PutSetting(db, strings::categories::GL, key, value);
}

TrailedSettings::TrailedSettings(Database& db) {
  for (const auto& [category, key, value] : db.Query<std::string, std::string, std::string>(
           "SELECT FCategory, FKey, FValue FROM t_SystemProfile ORDER BY FCategory, FKey")) {
    Add(category, key, value);
  }
}

TrailedSettings::TrailedSettings(Database& db, std::string_view category,
                                 std::initializer_list<std::string_view> keys) {
  for (const std::string_view key : keys) Add(category, key, SettingOf(db, category, key));
}

void TrailedSettings::Add(std::string_view category, std::string_view key, std::string_view value) {
  keys_.push_back(std::string(category) + "." + std::string(key));
  row_.AddText(keys_.back(), value);
}

LedgerRules LedgerRules::Of(Database& db) {
  std::map<std::string, std::string, std::less<>> settings;
  for (auto& [key, value] : db.Query<std::string, std::string>(
           "SELECT FKey, FValue FROM t_SystemProfile WHERE FCategory = 'GL'")) {
    settings.emplace(std::move(key), std::move(value));
  }
  return From(settings);
}

LedgerRules LedgerRules::From(const std::map<std::string, std::string, std::less<>>& settings) {
  using namespace setting;
  const auto number = [&](std::string_view key, Long otherwise) {
    const auto found = settings.find(key);
    return found == settings.end() || found->second.empty() ? otherwise
                                                            : SettingNumber(found->second);
  };
  // What former versions may have let in counts as on: these switches guard the books.
  const auto is_on = [&](std::string_view key) {
    const auto found = settings.find(key);
    return found != settings.end() && !found->second.empty() && found->second != "0";
  };
  const AccountingPeriod current{number(kCurrentYear, 0), number(kCurrentPeriod, 0)};
  if (current.period == 0) Refuse(refusal::kBadSetting, "The books have no current period.");
  return {Calendar(number(kPeriodCount, 12), number(kPeriodByMonth, 1) != 0,
                   number(kYearStartMonth, 1)),
          current,
          is_on(kCheckBeforePost),
          is_on(kCheckerNotPreparer),
          is_on(kApproverNotPreparer),
          is_on(kCashierNotPreparer),
          is_on(kPosterNotPreparer),
          is_on(kNoNegativeAmounts)};
}

AccountingPeriod CurrentPeriod(Database& db) { return LedgerRules::Of(db).current; }

Ref<Dictionary> ServerProfile::ListProfiles(std::string_view PropsString,
                                            std::string_view Category) {
  const Caller caller = Enter(PropsString, RightTo<ServerProfile>("ListProfiles"));
  auto list = Make<Dictionary>();
  for (const auto& [key, value] : caller.db.Query<std::string, std::string>(
           "SELECT FKey, FValue FROM t_SystemProfile WHERE FCategory = ? ORDER BY FKey",
           CategoryNamed(Category))) {
    list->Put(RowKey(key), value);
  }
  list->SetTrackState(0);
  return list;
}

void ServerProfile::SetProfile(std::string_view PropsString, const String& Category,
                               const String& ProfileID, const String& Value) {
  const Caller caller = EnterUnconfirmed(PropsString, RightTo<ServerProfile>("SetProfile"));
  const std::string_view category = CategoryNamed(Category);
  if (ProfileID.empty()) Refuse(refusal::kRequired, "A setting has a name.");
  if (Utf16Length(ProfileID) > kLongestName) {
    Refuse(refusal::kBadValue,
           "A setting's name has at most " + std::to_string(kLongestName) + " characters.");
  }
  CheckSettingType(category, ProfileID, Value);
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  if (category == strings::categories::GL) CheckGlSetting(caller.db, ProfileID, Value);
  const TrailedSettings before(caller.db, category, {ProfileID});
  PutSetting(caller.db, category, ProfileID, Value);
  const TrailedSettings after(caller.db, category, {ProfileID});
  WriteAudit(caller, {.subject = kSettingSubject,
                      .record = Category + "." + ProfileID,
                      .action = "Update",
                      .changes = ChangesText(&before.row(), &after.row())});
  transaction.Commit();
}

Ref<Recordset> ServerProfile::ListSettings(std::string_view PropsString) {
  const Caller caller = Enter(PropsString, RightTo<ServerProfile>("ListSettings"));
  std::map<std::pair<std::string, std::string>, std::string> set;
  for (const auto& [category, key, value] : caller.db.Query<std::string, std::string, std::string>(
           "SELECT FCategory, FKey, FValue FROM t_SystemProfile")) {
    set[{category, key}] = value;
  }
  auto list = Recordset::Create({"FCategory", "FKey", "FValue", "FDefault", "FRange", "FMeaning"});
  for (const std::string_view category : strings::kProfileCategories) {
    for (const KnownSetting& known : KnownSettings()) {
      if (known.category != category) continue;
      const auto found = set.extract({std::string(category), std::string(known.key)});
      list->AddRow({category, known.key, found ? found.mapped() : "", known.otherwise,
                    RangeOf(known), known.meaning});
    }
    for (const auto& [name, value] : set) {
      if (name.first == category) list->AddRow({category, name.second, value, "", "", ""});
    }
  }
  return list;
}

Boolean BaseInfo::IsNeedOffline(std::string_view PropsString, Integer, const String& ComputerName) {
  const Caller caller = Enter(PropsString, RightTo<BaseInfo>("IsNeedOffline"));
  const std::string offline = SettingOf(caller.db, "Base", "Offline");
  return Val(offline) != 0 || (!offline.empty() && EqualsIgnoringAsciiCase(offline, ComputerName));
}

}  // namespace qdclgl::server
