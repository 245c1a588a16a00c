// Exchange rates by day: listed, kept, taken away, or imported.
#include <array>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/sheet_import.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

constexpr const char *kAdd = "add", *kRemove = "remove";
constexpr const char* kInfo = "QDSVGLExchangeRate.ExchangeRateInfo";
constexpr const char* kUpdate = "QDSVGLExchangeRate.ExchangeRateUpdate";

struct RatesOptions {
  Login login;
  Format format = Format::kPlain;
  std::vector<std::string> words;  // behind BOOK: CURRENCY, add CURRENCY RATE, remove CURRENCY
  DateTime date;
  std::string file;
};

struct DayRate {
  std::string currency;
  DateTime day;
  Double rate = 0;

  // The number under which the books keep it, so that a second one takes its place.
  std::string Number() const { return ToUpper(currency) + " " + day.ToText(); }
};

Ref<Dictionary> Kept(const std::string& props, const DayRate& rate) {
  return CreateObject(kInfo)->Call("GetDetailByNumber", props, rate.Number()).As<Dictionary>();
}

Long CurrencyNamed(const std::string& props, const std::string& number) {
  const Long id = CreateObject("QDSVGLCurrency.CurrencyInfo")
                      ->Call("ExistenceCheck", props, Missing, ToUpper(number))
                      .As<Long>();
  if (id != 0) return id;
  throw Error(server::refusal::kBadCurrency, "qdclgl",
              "There is no currency " + Quoted(number) + ".");
}

void Put(const std::string& props, const DayRate& rate) {
  const Long currency = CurrencyNamed(props, rate.currency);
  Ref<Dictionary> record = Kept(props, rate);
  const bool is_new = !record;
  if (is_new) record = Make<Dictionary>();
  record->Put("FNumber", rate.Number());
  record->Put("FCurrencyID", currency);
  record->Put("FDate", rate.day);
  record->Put("FExchangeRate", rate.rate);
  const auto update = CreateObject(kUpdate);
  if (is_new) update->Call("Create", props, record);
  else update->Call("Update", props, record->Value("FRateID"), record);
}

DateTime DayOf(const RatesOptions& options) {
  return options.date.days != 0 ? options.date : CurrentPlatform().Today();
}

int AddRate(const RatesOptions& options, const Console& console) {
  DayRate rate{options.words[1], DayOf(options)};
  try {
    rate.rate = ReadRate(options.words[2]);
  } catch (const BadCell& bad) {
    throw UsageError(bad.what());
  }
  Put(options.login.Open(), rate);
  console.out << "The rate of " << ToUpper(rate.currency) << " is " << CStr(rate.rate) << " from "
              << rate.day.ToText() << " on.\n";
  return kDone;
}

int RemoveRate(const RatesOptions& options, const Console& console) {
  if (options.date.days == 0) throw UsageError("rates remove takes --date, the day of the rate");
  const DayRate rate{options.words[1], options.date};
  const std::string props = options.login.Open();
  const Ref<Dictionary> record = Kept(props, rate);
  if (!record) {
    throw Error(server::refusal::kNotFound, "qdclgl",
                "There is no rate of " + ToUpper(rate.currency) + " of " + rate.day.ToText() + ".");
  }
  CreateObject(kUpdate)->Call("Delete", props, record->Value("FRateID"));
  console.out << "The rate of " << ToUpper(rate.currency) << " of " << rate.day.ToText()
              << " is removed.\n";
  return kDone;
}

int ListRates(const RatesOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  std::string filter;
  std::string none = "No exchange rates are kept.";
  if (!options.words.empty()) {
    const std::string number = ToUpper(options.words[0]);
    filter = "FCurrencyID = " + std::to_string(CurrencyNamed(props, number));
    none = "No exchange rates of " + OneLine(number) + " are kept.";
  }
  if (options.date.days != 0) {
    filter += (filter.empty() ? "" : " AND ") + ("FDate = " + FilterDay(options.date));
  }
  const auto rows = CreateObject(kInfo)
                        ->Call("GetList", props, Long{0}, filter, "FCurrencyNumber, FDate, FRateID")
                        .As<Recordset>();
  constexpr std::array<std::string_view, 4> kShown = {"FCurrencyNumber", "FDate", "FExchangeRate",
                                                      "FName"};
  WriteRecordset(console, options.format, rows, kShown, none);
  return kDone;
}

// ---- Importing ----

enum Column : std::size_t { kCurrency, kDay, kRate };
constexpr std::array kColumns = {SheetColumn{"currency", true}, SheetColumn{"date", true},
                                 SheetColumn{"rate", true}};

DayRate ReadDayRate(RowCells& cells) {
  DayRate rate;
  rate.currency = cells.Text(kCurrency);
  if (rate.currency.empty()) throw BadCell("the rate has no currency");
  rate.day = ReadDate(cells.Text(kDay));
  rate.rate = ReadRate(cells.Text(kRate));
  cells.Leave();
  return rate;
}

int ImportRates(const RatesOptions& options, const Console& console) {
  const std::string props = options.login.Open();
  return ImportSheet(options.file, kColumns, "rates", props, console,
                     [&](RowCells& cells) { Put(props, ReadDayRate(cells)); });
}

int RunRates(const RatesOptions& options, const Console& console) {
  const std::vector<std::string>& words = options.words;
  const bool adds = !words.empty() && words[0] == kAdd;
  const bool removes = !words.empty() && words[0] == kRemove;
  if (!options.file.empty() && words.empty()) return ImportRates(options, console);
  if (options.file.empty() && adds && words.size() == 3) return AddRate(options, console);
  if (options.file.empty() && removes && words.size() == 2) return RemoveRate(options, console);
  if (!options.file.empty() || adds || removes || words.size() > 1) {
    throw UsageError("rates takes CURRENCY, add CURRENCY RATE, remove CURRENCY, or --import");
  }
  return ListRates(options, console);
}

// A lone word is a currency where the books are told otherwise.
bool IsWord(const std::string& first, const std::vector<std::string>& rest) {
  return first == kAdd || first == kRemove || (rest.empty() && !BookFromEnvironment().empty());
}

}  // namespace

void AddRatesCommand(Program& program) {
  const auto options = std::make_shared<RatesOptions>();
  const Command command = program.AddForWords(
      "rates", "Lists, keeps, removes or imports exchange rates by day", options->login,
      options->words,
      {"CURRENCY | add CURRENCY RATE | remove CURRENCY",
       "The rates of one currency; a rate from --date on, in place of that of the day; the rate of "
       "--date goes",
       IsWord},
      [options, &program] { return RunRates(*options, program.console()); });
  const Option date = command.Date("--date", options->date,
                                   "The day of the rate [with add: today; of a list: all]");
  command.Text("--import", options->file, "FILE", "Rates from a CSV file: currency, date, rate")
      .Excludes(date);
  AddFormat(command, options->format);
}

}  // namespace qdclgl::cli
