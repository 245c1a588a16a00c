// Exchange rates by day.
#include "qdclgl/server/records/exchange_rate.h"

#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLExchangeRate.ExchangeRateInfo";

Long NewCurrency(RecordBooks& books) {
  static int number = 0;
  return books
      .Call("QDSVGLCurrency.CurrencyUpdate", "Create", books.props,
            Row({{"FNumber", "C" + std::to_string(++number)}, {"FName", "Currency"}}))
      .As<Long>();
}

const RecordKind kRates = {
    .noun = "Exchange rate",
    .subject = "ExchangeRate",
    .info = kInfo,
    .update = "QDSVGLExchangeRate.ExchangeRateUpdate",
    .table = "t_ExchangeRate",
    .id = "FRateID",
    .columns = {{"FNumber", "USD 1", "CHF 1"},
                {"FName", "Bank", "Customs"},
                {"FCurrencyID", Long{2}, Long{3}},
                {"FCurrencyNumber", "USD", "CHF"},
                {"FDate", DateTime::FromYmd(2024, 1, 31), DateTime::FromYmd(2024, 2, 29)},
                {"FExchangeRate", 0.92, 1.05}},
    .absent = {{"FExchangeRate", 1.0}},
    .spelled = {{"FNumber", "usd 1"}},
    .coded = {"FNumber"},
    .joined = {"FCurrencyNumber"},
    .required = {"FNumber"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FNumber",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "ExchangeRateID",
    .text_argument = "Number",
    .further_methods = {{kInfo, "GetRate", "reader", {DateTime::FromYmd(2024, 1, 31)}}},
    .prepare =
        [](RecordBooks& books) {
          for (const char* number : {"USD", "CHF"}) {
            books.Call("QDSVGLCurrency.CurrencyUpdate", "Create", books.props,
                       Row({{"FNumber", number}, {"FName", number}}));
          }
        },
    .references = {{.column = "FCurrencyID",
                    .noun = "currency",
                    .id = "FCurrencyID",
                    .update = "QDSVGLCurrency.CurrencyUpdate",
                    .make = NewCurrency,
                    .is_required = true,
                    .is_marked = true}},
};

QDCLGL_RECORD_KIND(ExchangeRate, kRates);

class ExchangeRateTest : public RecordCalls {
 protected:
  ExchangeRateTest() : RecordCalls("QDSVGLExchangeRate.ExchangeRate") { kRates.prepare(*this); }
  Long Add(std::string_view number, Long currency, DateTime day, Double rate) {
    return Create(Row(
        {{"FNumber", number}, {"FCurrencyID", currency}, {"FDate", day}, {"FExchangeRate", rate}}));
  }
  Double RateOf(Long currency, DateTime day) {
    return Call(kInfo, "GetRate", props, currency, day).As<Double>();
  }
};

TEST_P(ExchangeRateTest, HoldsFromItsDayUntilThereIsALaterOne) {
  const auto day = [](Long number) { return DateTime::FromYmd(2024, 2, number); };
  Add("b", 2, day(10), 0.9);
  Add("a", 2, day(20), 0.8);
  Add("c", 3, day(15), 1.1);
  EXPECT_EQ(RateOf(2, day(9)), 0);
  EXPECT_EQ(RateOf(2, day(10)), 0.9);
  EXPECT_EQ(RateOf(2, day(19)), 0.9);
  EXPECT_EQ(RateOf(2, day(20)), 0.8);
  EXPECT_EQ(RateOf(2, DateTime::FromYmd(2030, 1, 1)), 0.8);
  EXPECT_EQ(RateOf(3, day(20)), 1.1);
  EXPECT_EQ(RateOf(1, day(1)), 1) << "the base currency's";
  Add("d", 2, day(20), 0.7);
  EXPECT_EQ(RateOf(2, day(20)), 0.7) << "the one that was made last";
}

TEST_P(ExchangeRateTest, IsAboveZeroAndNotOfTheBaseCurrency) {
  const DateTime day = DateTime::FromYmd(2024, 2, 1);
  EXPECT_EQ(RefusalOf([&] { Add("x", 2, day, 0); }), "BadValue");
  EXPECT_EQ(RefusalOf([&] { Add("x", 2, day, -1); }), "BadValue");
  EXPECT_EQ(SentenceOf([&] { Add("x", 1, day, 1); }),
            "Exchange rate X (): the rate of the base currency is always 1.");
}

QDCLGL_BOOKS_TEST(ExchangeRateTest);

}  // namespace
}  // namespace qdclgl::server::testing
