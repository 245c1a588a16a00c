#include "qdclgl/cli/voucher_draft.h"

#include <algorithm>

#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/exchange_rates.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

constexpr Long kBaseCurrency = 1;

Double RateFor(Long currency, DateTime day) {
  const Double kept = KeptRate(currency, day);
  return kept != 0 ? kept : Make<CurrencySet>()->Item(currency)->ExchangeRate();
}

}  // namespace

DateTime DayInCurrentPeriod(const std::string& props) {
  const auto profile = Make<SystemProfile>();
  Long year = profile->GLGetCurrentYear(), period = profile->GLGetCurrentPeriod();
  DateTime start, end;
  CreateObject("QDCPeriodDate.clsPeriodDate")
      ->Call("GetPeriodStartEnd", props, ByRef(period), ByRef(year), ByRef(start), ByRef(end));
  return std::clamp(CurrentPlatform().Today(), start, end);
}

void CopyLines(const Ref<VoucherEntrySet>& from, const Ref<VoucherEntrySet>& to) {
  for (auto& line : from) {
    to->Count(to->Count() + 1);
    to->Item(to->Count(), line.Clone());
  }
}

void PutAmount(VoucherEntry& line, Currency amount, DateTime day) {
  if (line.CurrencyID() > kBaseCurrency) {
    line.AmountFor(amount);
    if (line.ExchangeRate() == 0) line.ExchangeRate(RateFor(line.CurrencyID(), day));
    amount = WorthAt(line.CurrencyID(), amount, line.ExchangeRate());
  }
  line.Amount(amount);
}

void Balance(Voucher& voucher) {
  Ref<VoucherEntry> open;
  for (auto& line : voucher.Entries()) {
    if (line.Amount() != Currency()) continue;
    if (open) {
      throw Error(server::refusal::kNotBalanced, "qdclgl",
                  "More than one line has no amount; give amounts to all but one.");
    }
    open = Ref<VoucherEntry>(&line);
  }
  if (!open) return;
  const Currency lacking = voucher.DebitTotal() - voucher.CreditTotal();
  open->Amount(open->DC() == 1 ? -lacking : lacking);
}

void SaveDraft(Voucher& voucher, const Console& console) {
  voucher.SaveChanges();
  TellDraft(voucher, console);
}

void TellDraft(Voucher& voucher, const Console& console) {
  console.out << "Voucher " << voucher.VoucherID() << " is made: " << voucher.Year() << '/'
              << voucher.Period() << ' ' << OneLine(voucher.Group()) << ' ' << voucher.Number()
              << ", " << voucher.VoucherDate().ToText() << ", "
              << MoneyText(voucher.DebitTotal(), console.look.DecimalsOf(kBaseCurrencyID)) << ".\n";
}

}  // namespace qdclgl::cli
