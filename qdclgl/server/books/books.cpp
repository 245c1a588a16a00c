#include "qdclgl/server/books/books.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/password.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/books/books_check.h"
#include "qdclgl/server/books/books_copy.h"
#include "qdclgl/server/books/books_transfer.h"
#include "qdclgl/server/books/trail_beginning.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/program_role.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/schema.h"
#include "qdclgl/server/periods/calendar.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/periods/text_signature.h"
#include "qdclgl/server/vouchers/posting.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(BooksUpdate)
QD_DEFINE_MEMBERS(BooksInfo)

namespace {

// Who makes or upgrades books, which have no sessions meanwhile.
Caller CallerFromHere(Database& db, Long user_id, std::string_view user_name) {
  const auto session = std::make_shared<Session>();
  session->user_id = user_id;
  session->user_name = user_name;
  session->machine_name = GetMachineName();
  session->address = GetIPAddress();
  return {session, nullptr, db, false, {Role::kAdministrator, "make books"}};
}

}  // namespace

void BooksUpdate::Create(std::string_view connection, std::string_view CurrencyNumber, Long nYear,
                         Long PeriodCount, Long StartMonth, std::string_view UserName,
                         std::string_view Password, Boolean NoPassword,
                         std::string_view ProgramRole) {
  const ConnectionText text = ConnectionText::Parse(connection);
  const std::string currency = ToUpper(CurrencyNumber);
  if (currency.empty() || !IsValidCode(currency, 8, false)) {
    Refuse(refusal::kBadNumber, "The base currency's number has 1 to 8 letters and digits.");
  }
  if (UserName.empty()) Refuse(refusal::kRequired, "The administrator has a name.");
  RequirePassword(Password, NoPassword);
  const bool by_month = PeriodCount > 0 && 12 % PeriodCount == 0;
  const Calendar calendar(PeriodCount, by_month, StartMonth);
  const AccountingPeriod first{nYear != 0 ? nYear : CurrentPlatform().Today().ToParts().year, 1};
  calendar.SpanOf(first);

  // Hashing takes its time on purpose, so it is done before others have to wait.
  const std::string password = HashedPassword(Password);
  MakeBooks(text, [&](Database& db) {
    WorkProgress().Tell("Upgrading the tables", 0);
    Migrate(db, CurrentSchemaVersion());
    db.Execute("INSERT INTO t_Currency (FVersion, FNumber, FName, FExchangeRate, FOperator, FScale,"
               " FFixRate, FDeleted, UUID) VALUES (1, ?, ?, 1, '*', 2, 1, 0, '')",
               currency, currency);
    db.Execute(
        "INSERT INTO t_User (FVersion, FName, FPassword, FRoles, FDisabled) VALUES (1, ?, ?, ?, 0)",
        UserName, password, static_cast<Long>(Role::kAdministrator));
    using namespace setting;
    PutGlSetting(db, kStartYear, std::to_string(first.year));
    PutGlSetting(db, kStartPeriod, std::to_string(first.period));
    PutGlSetting(db, kCurrentYear, std::to_string(first.year));
    PutGlSetting(db, kCurrentPeriod, std::to_string(first.period));
    PutGlSetting(db, kPeriodCount, std::to_string(PeriodCount));
    PutGlSetting(db, kPeriodByMonth, by_month ? "1" : "0");
    PutGlSetting(db, kYearStartMonth, std::to_string(StartMonth));
    constexpr Long kAdministrator = 1;
    BeginTrail(CallerFromHere(db, kAdministrator, UserName), "Create");
    if (!ProgramRole.empty()) GrantToProgramRole(db, ProgramRole);
  });
}

Long BooksUpdate::Upgrade(std::string_view connection) {
  const auto connected = Connections::OfThisThread().Apart(ConnectionText::Parse(connection));
  Database& db = *connected;
  Transaction transaction(db, Transaction::Kind::kChangeRules);
  const int version = SchemaVersion(db);
  if (version == 0 || version > CurrentSchemaVersion()) RequireCurrentSchema(db);
  const std::vector<const TrailedKind*> coming = KindsToCome(db);
  const bool had_item_balances = HasTable(db, "t_itembalance");
  const bool had_signatures = HasTable(db, "t_textsignature");
  Migrate(db, CurrentSchemaVersion());
  if (!had_item_balances) MakeItemBalances(db);
  if (!had_signatures) {
    SignVouchersBefore(db,
                       {SettingNumber(GlSetting(db, setting::kCurrentYear)),
                        SettingNumber(GlSetting(db, setting::kCurrentPeriod))},
                       [](double share) { WorkProgress().Tell("Reading texts", share); });
  }
  const Caller caller = CallerFromHere(db, 0, "");  // nobody is logged in
  if (version < CurrentSchemaVersion() && !HasTrailBegun(db)) {
    BeginTrail(caller, "Upgrade");
  } else {
    TrailWhole(caller, "Upgrade", coming);
  }
  GrantToProgramRoles(db);
  transaction.Commit();
  return version;
}

Ref<Dictionary> BooksUpdate::Restore(std::string_view BackupText, std::string_view connection,
                                     std::string_view ProgramRole) {
  const ConnectionText to = ConnectionText::Parse(connection);
  Connections& connections = Connections::OfThisThread();
  CopyBooks(*connections.Apart(ConnectionText::Parse(BackupText)), to, ProgramRole);
  return AccountOfBooks(*connections.Apart(to));
}

Long BooksInfo::Version(std::string_view connection) {
  Database db(ConnectionText::Parse(connection));
  return SchemaVersion(db);
}

Ref<Recordset> BooksInfo::Check(std::string_view PropsString, std::string_view KeptHead) {
  const Caller caller = Enter(PropsString, RightTo<BooksInfo>("Check"));
  return CheckBooks(caller.db, KeptHead);
}

Ref<Dictionary> BooksInfo::BackUp(std::string_view PropsString, std::string_view BackupText) {
  const Caller caller = Enter(PropsString, RightTo<BooksInfo>("BackUp"));
  const ConnectionText to = ConnectionText::Parse(BackupText);
  CopyBooks(caller.db, to, "");
  return AccountOfBooks(*Connections::OfThisThread().Apart(to));
}

Ref<Dictionary> BooksInfo::CopyTo(std::string_view PropsString, std::string_view connection,
                                  std::string_view ProgramRole) {
  const Caller caller = Enter(PropsString, RightTo<BooksInfo>("CopyTo"));
  const Transfer transfer =
      TransferBooks(caller.db, ConnectionText::Parse(connection), ProgramRole);
  transfer.account->Put("FWentOn", transfer.went_on);
  transfer.account->Put("FBeganAnew", transfer.began_anew);
  return transfer.account;
}

}  // namespace qdclgl::server
