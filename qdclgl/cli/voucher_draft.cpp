#include "qdclgl/cli/voucher_draft.h"

#include <algorithm>
#include <cmath>

#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

constexpr Long kBaseCurrency = 1;

// An amount in a line's currency at its rate, in whole units of the base currency's last decimal.
Currency InBase(VoucherEntry& line, Currency amount) {
  auto currencies = Make<CurrencySet>();
  const Ref<Currencyx> currency = currencies->Item(line.CurrencyID());
  if (line.ExchangeRate() == 0) line.ExchangeRate(currency->ExchangeRate());
  const double rate = line.ExchangeRate();
  const double exact =
      currency->Operator() == "/" ? amount.ToDouble() / rate : amount.ToDouble() * rate;
  const double scale = std::pow(10.0, currencies->Item(kBaseCurrency)->Scalex());
  return CCur(Variant(std::round(exact * scale) / scale));
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

void PutAmount(VoucherEntry& line, Currency amount) {
  if (line.CurrencyID() > kBaseCurrency) {
    line.AmountFor(amount);
    amount = InBase(line, amount);
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
