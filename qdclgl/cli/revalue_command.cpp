// Balances in other currencies are brought to what they are worth at the end of a period.
#include <array>

#include "qdclgl/cli/day_words.h"
#include "qdclgl/cli/kept_account.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/proposed_vouchers.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/vouchers/voucher_set.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kInfo = "QDSVGLRevaluation.RevaluationInfo";
constexpr const char* kSetting = "RevaluationAccount";

struct RevalueOptions {
  Login login;
  std::string period, account;
  bool dry_run = false;
  bool yes = false;
};

struct Period {
  Long year = 0, period = 0;
  DateTime last_day;

  std::string ToText() const { return std::to_string(year) + "/" + std::to_string(period); }
};

Period PeriodOf(const std::string& props, const std::string& text) {
  Period found;
  found.last_day = DayFrom(props, "--period", text, DayEnd::kLast);
  const auto calendar = CreateObject("QDCPeriodDate.clsPeriodDate");
  found.year = calendar->Call("GetPeriod", props, found.last_day, ByRef(found.period)).As<Long>();
  DateTime first;
  calendar->Call("GetPeriodStartEnd", props, found.period, found.year, ByRef(first),
                 ByRef(found.last_day));
  return found;
}

void ShowDifferences(const std::string& props, const Period& period, const Console& console) {
  constexpr std::array<std::string_view, 10> kShown = {
      "FAccountNumber", "FAccountName", "FItems",        "FCurrencyNumber", "FAmountFor",
      "FAmount",        "FRateDate",    "FExchangeRate", "FWorth",          "FDifference"};
  WriteRecordset(console, Format::kPlain,
                 CreateObject(kInfo)
                     ->Call("GetDifferences", props, period.year, period.period)
                     .As<Recordset>(),
                 kShown);
  console.out << '\n';
}

void AnnounceOpenVouchers(const Period& period, const Console& console) {
  const auto vouchers = Make<VoucherSet>();
  vouchers->Filter("FPosted = FALSE AND FDate <= " + FilterDay(period.last_day));
  vouchers->Refresh();
  const Long open = vouchers->RecordSet()->RecordCount();
  if (open == 0) return;
  console.out << open << (open == 1 ? " voucher" : " vouchers") << " up to that day that "
              << (open == 1 ? "is" : "are") << " not posted will not be in it.\n";
}

int Revalue(const RevalueOptions& options, const Console& console) {
  if (options.period.empty()) throw UsageError("revalue takes --period, such as 2024/3");
  const std::string props = options.login.Open();
  const Period period = PeriodOf(props, options.period);
  const Ref<Account> account = NamedOrKeptAccount(
      options.account, kSetting,
      "revalue takes --account, the one that differences are booked on; it is kept for the next "
      "time");
  const Propose propose = [&] {
    return CreateObject(kInfo)
        ->Call("GetRevaluationVouchers", props, period.year, period.period, account->AccountID())
        .As<Recordset>();
  };
  const Ref<Recordset> vouchers = propose();
  if (vouchers->Eof()) {
    console.out << "There is no difference to book for " << period.ToText() << ".\n";
    return kDone;
  }
  console.out << "This brings balances in other currencies to their worth of "
              << period.last_day.ToText() << ":\n\n";
  ShowDifferences(props, period, console);
  console.out << "by these lines, against " << account->Number() << ' ' << OneLine(account->Name())
              << ":\n\n";
  WriteProposedVouchers(console, *vouchers);
  console.out << '\n';
  AnnounceOpenVouchers(period, console);
  if (options.dry_run) return kDone;
  if (!options.yes && !IsAgreed(console, "Book them?")) {
    console.out << "Nothing is booked.\n";
    return kRefused;
  }
  SaveProposedVouchers(props, propose, console);
  KeepAccount(*account, kSetting);
  return kDone;
}

}  // namespace

void AddRevalueCommand(Program& program) {
  const auto options = std::make_shared<RevalueOptions>();
  const Command command = program.AddForBooks(
      "revalue", "Books what balances in other currencies have gained or lost by their rates",
      options->login, [options, &program] { return Revalue(*options, program.console()); });
  command.Text("--period", options->period, "YEAR/PERIOD", "The period, at whose last day's rates");
  command.Text("--account", options->account, "ACCOUNT",
               "The account that differences are booked on [the one of last time]");
  command.Flag("--dry-run", options->dry_run, "Shows the vouchers and makes none");
  command.Flag("--yes", options->yes, "Books without a question");
}

}  // namespace qdclgl::cli
