#include "qdclgl/cli/exchange_rates.h"

#include "qdclgl/accounts/currency.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/vouchers/exchange.h"

namespace qdclgl::cli {

namespace {

constexpr Long kDecimals = 4;  // of the books' amounts

server::Exchange ExchangeOf(CurrencySet& currencies, Long currency) {
  return {currencies.Item(currency)->Operator() == "/",
          currencies.Item(server::kBaseCurrency)->Scalex()};
}

}  // namespace

Double KeptRate(Long currency, DateTime day) {
  return CreateObject("QDSVGLExchangeRate.ExchangeRateInfo")
      ->Call("GetRate", GetPropsString(), currency, day)
      .As<Double>();
}

Currency WorthAt(Long currency, Currency amount_for, Double rate) {
  return server::WorthOf(amount_for, rate, ExchangeOf(*Make<CurrencySet>(), currency));
}

Currency ForeignAt(Long currency, Currency worth, Double rate) {
  const auto currencies = Make<CurrencySet>();
  const server::Exchange exchange = ExchangeOf(*currencies, currency);
  const auto at_scale = [&](Long scale) {
    return server::WorthOf(worth, rate, {!exchange.divides, scale});
  };
  const Currency rounded = at_scale(currencies->Item(currency)->Scalex());
  return server::IsAtRate(worth, rounded, rate, exchange) ? rounded : at_scale(kDecimals);
}

}  // namespace qdclgl::cli
