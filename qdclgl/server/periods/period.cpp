#include "qdclgl/server/periods/period.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/periods/text_signature.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(PeriodUpdate)

namespace {

// FirstPeriod for a period before the books' first one.
void RequireInBooks(Database& db, AccountingPeriod period) {
  const AccountingPeriod first{SettingNumber(GlSetting(db, setting::kStartYear)),
                               SettingNumber(GlSetting(db, setting::kStartPeriod))};
  if (period < first) {
    Refuse(refusal::kFirstPeriod, "The books begin with period " + first.ToText() + ".");
  }
}

void MoveTo(const Caller& caller, AccountingPeriod period, AccountingPeriod closed,
            std::string_view action) {
  const auto current = [&] {
    return TrailedSettings(caller.db, strings::categories::GL,
                           {setting::kCurrentYear, setting::kCurrentPeriod});
  };
  const TrailedSettings before = current();
  PutGlSetting(caller.db, setting::kCurrentYear, std::to_string(period.year));
  PutGlSetting(caller.db, setting::kCurrentPeriod, std::to_string(period.period));
  const TrailedSettings after = current();
  const std::string record = closed.ToText();
  WriteAudit(caller, {.subject = kPeriodSubject,
                      .record = record,
                      .action = action,
                      .changes = ChangesText(&before.row(), &after.row())});
  SealTrail(caller.db);
}

}  // namespace

void PeriodUpdate::Close(std::string_view PropsString) {
  const Caller caller = EnterUnconfirmed(PropsString, RightTo<PeriodUpdate>("Close"));
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  const LedgerRules rules = LedgerRules::Of(caller.db);
  const AccountingPeriod current = rules.current;
  const auto open = caller.db.Query<std::string, Long>(
      "SELECT g.FName, v.FNumber FROM t_Voucher v"
      " JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID"
      " WHERE v.FYear = ? AND v.FPeriod = ? AND v.FPosted = 0 AND v.FDeleted = 0"
      " ORDER BY g.FName, v.FNumber",
      current.year, current.period);
  if (!open.empty()) {
    const auto& [group, number] = open.front();
    Refuse(refusal::kNotAllPosted, "Period " + current.ToText() + " has " +
                                       std::to_string(open.size()) +
                                       " voucher(s) that are not posted, the first is " + group +
                                       " " + std::to_string(number) + ".");
  }
  SignVouchersOf(caller.db, current);
  MoveTo(caller, rules.calendar.After(current), current, "Close");
  transaction.Commit();
}

void PeriodUpdate::Reopen(std::string_view PropsString) {
  const Caller caller = EnterUnconfirmed(PropsString, RightTo<PeriodUpdate>("Reopen"));
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  const LedgerRules rules = LedgerRules::Of(caller.db);
  const AccountingPeriod current = rules.current;
  const AccountingPeriod reopened = rules.calendar.Before(current);
  RequireInBooks(caller.db, reopened);
  const auto posted = caller.db.QueryRow<Long, Long>(
      "SELECT FYear, FPeriod FROM t_Voucher WHERE FPosted = 1 AND FYear * 1000 + FPeriod >= ?"
      " ORDER BY FYear, FPeriod LIMIT 1",
      std::int64_t{current.year} * 1000 + current.period);
  if (posted) {
    const AccountingPeriod period{std::get<0>(*posted), std::get<1>(*posted)};
    Refuse(refusal::kLaterPostings, "Period " + reopened.ToText() +
                                        " can't be reopened: vouchers are posted in period " +
                                        period.ToText() + ".");
  }
  TakeBackSignatures(caller.db, reopened);
  MoveTo(caller, reopened, reopened, "Reopen");
  transaction.Commit();
}

void PeriodUpdate::ReopenTo(std::string_view PropsString, Long nYear, Long Period) {
  const Caller caller = EnterUnconfirmed(PropsString, RightTo<PeriodUpdate>("ReopenTo"));
  CallersTransaction transaction(caller, Transaction::Kind::kChangeRules);
  const LedgerRules rules = LedgerRules::Of(caller.db);
  const AccountingPeriod wanted{nYear, Period};
  rules.calendar.SpanOf(wanted);  // it must be one of the calendar's
  RequireInBooks(caller.db, wanted);
  if (wanted >= rules.current) {
    Refuse(refusal::kBadValue, "Period " + wanted.ToText() + " is not closed; the books stand at " +
                                   rules.current.ToText() + ".");
  }
  TakeBackSignatures(caller.db, wanted);
  // Each period that is open again stands on the trail.
  for (AccountingPeriod period = rules.current; period > wanted;) {
    period = rules.calendar.Before(period);
    MoveTo(caller, period, period, "Reopen");
  }
  transaction.Commit();
}

}  // namespace qdclgl::server
