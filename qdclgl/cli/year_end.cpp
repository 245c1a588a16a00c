#include "qdclgl/cli/year_end.h"

#include <vector>

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/kept_account.h"
#include "qdclgl/cli/proposed_vouchers.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/reports/voucher_marks.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

Long YearOf(const YearEnd& wanted) {
  return wanted.year != 0 ? wanted.year : Make<SystemProfile>()->GLGetCurrentYear();
}

constexpr const char* kSetting = "EarnAccount";

Ref<Recordset> VouchersWhere(const std::string& filter) {
  const auto vouchers = Make<VoucherSet>();
  vouchers->Filter(filter);
  vouchers->Refresh();
  return vouchers->RecordSet();
}

void AnnounceOpenVouchers(Long year, const Console& console) {
  const Long open =
      VouchersWhere("FPosted = FALSE AND FYear = " + std::to_string(year))->RecordCount();
  if (open == 0) return;
  console.out << open << (open == 1 ? " voucher" : " vouchers") << " of the year that "
              << (open == 1 ? "is" : "are") << " not posted will not be in it.\n";
}

// ---- Taking it back ----

struct CarryingVoucher {
  Long id = 0;
  bool is_posted = false, is_approved = false, is_checked = false, is_cashed = false;
};

std::vector<CarryingVoucher> CarryingVouchersOf(Long year) {
  const Ref<Recordset> rows = VouchersWhere(std::string(server::kWhereCarriesResult) +
                                            " AND FYear = " + std::to_string(year));
  std::vector<CarryingVoucher> vouchers;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    const auto is = [&](const char* column) { return row->Value(column).As<Boolean>(); };
    const auto has = [&](const char* column) { return row->Value(column).As<Long>() > 0; };
    vouchers.push_back({row->Value("FVoucherID").As<Long>(), is("FPosted"), has("FApproveID"),
                        is("FChecked"), has("FCashierID")});
  }
  return vouchers;
}

void TakeBack(const CarryingVoucher& voucher) {
  const auto vouchers = Make<VoucherSet>();
  const auto take = [&](const char* step) { StepNamed(step).take(*vouchers, voucher.id); };
  if (voucher.is_posted) take("unpost");
  if (voucher.is_cashed) take("uncash");
  if (voucher.is_approved) take("unapprove");
  if (voucher.is_checked) take("uncheck");
  take("remove");
}

}  // namespace

int CarryResult(const YearEnd& wanted, const std::string& props, const Console& console) {
  const Long year = YearOf(wanted);
  const Ref<Account> account = NamedOrKeptAccount(wanted.account, kSetting,
                                                  "close --year takes --to, the account of equity "
                                                  "that the result is carried to; it is kept for "
                                                  "the next time");
  const Propose propose = [&] {
    return CreateObject("QDSVGLYearEnd.YearEndInfo")
        ->Call("GetResultVouchers", props, year, account->AccountID())
        .As<Recordset>();
  };
  const Ref<Recordset> vouchers = propose();
  if (vouchers->Eof()) {
    console.out << "There is no result of " << year << " to carry.\n";
    return kDone;
  }
  console.out << "This carries the result of " << year << " to " << account->Number() << " "
              << OneLine(account->Name()) << ":\n\n";
  WriteProposedVouchers(console, *vouchers);
  console.out << '\n';
  AnnounceOpenVouchers(year, console);
  if (wanted.dry_run) return kDone;
  if (!wanted.yes && !IsAgreed(console, "Carry it?")) {
    console.out << "Nothing is carried.\n";
    return kRefused;
  }
  SaveProposedVouchers(props, propose, console);
  KeepAccount(*account, kSetting);
  return kDone;
}

int TakeResultBack(const YearEnd& wanted, const std::string& props, const Console& console) {
  const Long year = YearOf(wanted);
  const std::vector<CarryingVoucher> vouchers = CarryingVouchersOf(year);
  if (vouchers.empty()) {
    console.out << "No result of " << year << " is carried.\n";
    return kDone;
  }
  const auto profile = Make<SystemProfile>();
  const Long last = profile->GLGetPeriodCount();
  const bool is_closed = profile->GLGetCurrentYear() > year;
  console.out << "This removes " << vouchers.size()
              << (vouchers.size() == 1 ? " voucher that carries" : " vouchers that carry")
              << " the result of " << year << ".\n";
  if (is_closed) {
    console.out << "Period " << year << "/" << last << " and all behind it are reopened.\n";
  }
  if (wanted.dry_run) return kDone;
  if (!wanted.yes && !IsAgreed(console, "Take it back?")) {
    console.out << "Nothing is taken back.\n";
    return kRefused;
  }
  Batch batch(props);
  if (is_closed) CreateObject("QDSVGLPeriod.PeriodUpdate")->Call("ReopenTo", props, year, last);
  for (const CarryingVoucher& voucher : CarryingVouchersOf(year)) TakeBack(voucher);
  batch.Commit();
  console.out << "The result of " << year << " is taken back.\n";
  return kDone;
}

}  // namespace qdclgl::cli
