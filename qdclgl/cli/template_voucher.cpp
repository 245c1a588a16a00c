#include "qdclgl/cli/template_voucher.h"

#include <algorithm>
#include <cmath>

#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"
#include "qdclgl/vouchers/voucher_temp.h"

namespace qdclgl::cli {

namespace {

namespace refusal = server::refusal;

constexpr Long kBaseCurrency = 1;

[[noreturn]] void Refuse(std::int32_t number, const std::string& sentence) {
  throw Error(number, "qdclgl", sentence);
}

Ref<VoucherTemp> TemplateOf(const std::string& name) {
  auto temps = Make<VoucherTempSet>();
  const bool is_id =
      !name.empty() && std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; });
  if (!is_id) {
    temps->Filter("FName = " + FilterText(name));
    if (temps->Count() > 1) {
      Refuse(refusal::kNameTaken,
             "Several templates are called " + Quoted(name) + "; name one by its id.");
    }
  }
  const Long id = is_id                 ? ReadWhole(name)
                  : temps->Count() == 0 ? 0
                                        : temps->GetCurrent()->VoucherTempID();
  const Ref<VoucherTemp> temp = temps->Item(id);
  if (temp->VoucherTempID() == 0) {
    Refuse(refusal::kNotFound, "There is no template " + Quoted(name) + ".");
  }
  return temp;
}

// Today, moved into the current period.
DateTime DayInCurrentPeriod(const std::string& props) {
  const auto profile = Make<SystemProfile>();
  Long year = profile->GLGetCurrentYear(), period = profile->GLGetCurrentPeriod();
  DateTime start, end;
  CreateObject("QDCPeriodDate.clsPeriodDate")
      ->Call("GetPeriodStartEnd", props, ByRef(period), ByRef(year), ByRef(start), ByRef(end));
  return std::clamp(CurrentPlatform().Today(), start, end);
}

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

void PutAmount(VoucherEntry& line, Currency amount) {
  if (line.CurrencyID() > kBaseCurrency) {
    line.AmountFor(amount);
    amount = InBase(line, amount);
  }
  line.Amount(amount);
}

// The side of the line stays as the template has it.
void Balance(Voucher& voucher) {
  Ref<VoucherEntry> open;
  for (auto& line : voucher.Entries()) {
    if (line.Amount() != Currency()) continue;
    if (open) {
      Refuse(refusal::kNotBalanced,
             "More than one line of the template has no amount; give amounts to all but one.");
    }
    open = Ref<VoucherEntry>(&line);
  }
  if (!open) return;
  const Currency lacking = voucher.DebitTotal() - voucher.CreditTotal();
  open->Amount(open->DC() == 1 ? -lacking : lacking);
}

}  // namespace

Ref<Voucher> VoucherOf(const TemplateUse& use, const std::string& props) {
  const Ref<VoucherTemp> temp = TemplateOf(use.name);
  auto voucher = Make<Voucher>();
  voucher->Construct(Nothing, Nothing);
  voucher->VoucherDate(use.date.days != 0 ? use.date : DayInCurrentPeriod(props));
  if (use.group.empty()) voucher->GroupID(temp->GroupID());
  else voucher->Group(use.group);
  voucher->Reference(use.reference.empty() ? temp->Reference() : use.reference);
  voucher->Attachments(temp->Attachments());
  const Ref<VoucherEntrySet> lines = voucher->Entries();
  for (auto& line : temp->Entries()) {
    lines->Count(lines->Count() + 1);
    lines->Item(lines->Count(), line.Clone());
  }
  for (const auto& [number, amount] : use.amounts) {
    if (number < 1 || number > lines->Count()) {
      Refuse(refusal::kNoLines,
             "The template " + Quoted(use.name) + " has no line " + std::to_string(number) + ".");
    }
    PutAmount(*lines->Item(number), amount);
  }
  Balance(*voucher);
  return voucher;
}

}  // namespace qdclgl::cli
