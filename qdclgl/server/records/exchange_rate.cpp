// Exchange rates by day. A rate holds from its day on until there is a later one.
#include "qdclgl/server/records/exchange_rate.h"

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

const MasterData& Currencies();

namespace {

class ExchangeRateInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_INHERITED(GetDetail)
  QD_INHERITED(GetDetailByNumber)
  QD_INHERITED(GetList)
  QD_INHERITED(ExistenceCheck)
  QD_METHOD(Double, GetRate,
            (std::string_view PropsString, const Long& CurrencyID, const DateTime& Day),
            "The rate of a currency that holds on a day: the last one of that day or before, of "
            "two of one day the one that was made last. 0 when there is none; 1 for the base "
            "currency.")
};

Double ExchangeRateInfo::GetRate(std::string_view PropsString, const Long& CurrencyID,
                                 const DateTime& Day) {
  const Caller caller = Enter(PropsString, kind().reading());
  if (CurrencyID == kBaseCurrency) return 1;
  const std::optional<RateOfDay> found = RateOn(caller.db, CurrencyID, Day);
  return found ? found->rate : 0;
}

void Check(RecordSave& save) {
  CheckKey(save);
  save.RequireReferences();
  if (save.record().Value("FExchangeRate").As<Double>() <= 0) {
    save.Refuse(refusal::kBadValue, "FExchangeRate is above 0.");
  }
  if (save.Number("FCurrencyID") == kBaseCurrency) {
    save.Refuse(refusal::kBadReference, "the rate of the base currency is always 1.");
  }
}

}  // namespace

std::optional<RateOfDay> RateOn(Database& db, Long currency, DateTime day) {
  const auto row = db.QueryRow<double, std::string>(
      "SELECT FExchangeRate, FDate FROM t_ExchangeRate WHERE FCurrencyID = ? AND FDate <= ?"
      " ORDER BY FDate DESC, FRateID DESC LIMIT 1",
      currency, DateText(day));
  if (!row) return {};
  return RateOfDay{std::get<0>(*row), std::get<1>(*row)};
}

const MasterData& ExchangeRates() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLExchangeRate.ExchangeRate",
      .noun = "exchange rate",
      .nouns = "exchange rates",
      .brief = "rate",
      .list = {"exchange-rates", "Lists the exchange rates by day",
               "FNumber FCurrencyNumber FDate FExchangeRate FName"},
      .table = "t_ExchangeRate",
      .id = "FRateID",
      .key = {.column = "FNumber", .ignores_case = true},
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {.column = {"FCurrencyID", kLong},
                   .refers = {.kind = Currencies, .is_required = true}},
                  {{"FCurrencyNumber", kText}, Keeper::kJoined},
                  {{"FDate", kDate}},
                  {{"FExchangeRate", kDouble}, Keeper::kCaller, 1.0}},
      .query = "SELECT r.*, c.FNumber AS FCurrencyNumber"
               " FROM t_ExchangeRate r JOIN t_Currency c ON c.FCurrencyID = r.FCurrencyID",
      .order = "FNumber",
      .check = Check,
      .info = RecordClassOf<ExchangeRateInfo>(),
      .errors = "Required, NumberTaken, BadReference, BadValue",
  });
  return kKind;
}

}  // namespace qdclgl::server
