#include "qdclgl/server/records/currency.h"

#include "qdclgl/frame/containers/vector.h"
#include "tests/server/records/record_suite.h"

namespace qdclgl::server::testing {
namespace {

constexpr const char* kInfo = "QDSVGLCurrency.CurrencyInfo";
constexpr const char* kUpdate = "QDSVGLCurrency.CurrencyUpdate";

Long AddAccountIn(RecordBooks& books, Long currency, const std::string& number) {
  return books
      .Call("QDSVGLAccount.AccountUpdate", "Create", books.props,
            Row({{"FNumber", number}, {"FName", "Cash"}, {"FCurrencyID", currency}}))
      .As<Long>();
}

void UseInAccount(RecordBooks& books, Long currency) {
  AddAccountIn(books, currency, "A" + std::to_string(currency));
}

void UseInVoucher(RecordBooks& books, Long currency) {
  const std::string name = "V" + std::to_string(currency);
  const Long account = books.AddAccount(name);
  auto lines = Make<Vector>();
  for (const Long side : {1, 0}) {
    lines->Append(Row({{"FAccountID", account},
                       {"FDC", side},
                       {"FAmount", qdclgl::Currency(7)},
                       {"FCurrencyID", currency},
                       {"FAmountFor", qdclgl::Currency(7)},
                       {"FExchangeRate", 1.0}}));
  }
  books.Call("QDSVGLVoucher.VoucherUpdate", "Create", books.props,
             Row({{"FDate", DateTime::FromYmd(2024, 1, 31)},
                  {"FGroupID", books.AddGroup(name)},
                  {"_Entries", lines}}));
}

const RecordKind kCurrencies = {
    .noun = "Currency",
    .subject = "Currency",
    .info = kInfo,
    .update = kUpdate,
    .table = "t_Currency",
    .id = "FCurrencyID",
    .columns = {{"FNumber", "USD", "CHF"},
                {"FName", "Dollar", "Franc"},
                {"FExchangeRate", 1.25, 0.5},
                {"FOperator", "/", "*"},
                {"FScale", Integer{4}, Integer{3}},
                {"FFixRate", Integer{1}, Integer{7}},
                {"FDeleted", false, false},
                {"UUID", "u", "v"}},
    .absent = {{"FExchangeRate", 1.0}, {"FOperator", "*"}, {"FScale", Integer{2}}},
    .spelled = {{"FNumber", "uSd"}},
    .coded = {"FNumber", "FOperator"},
    .kept_by_server = {"FDeleted"},
    .required = {"FNumber"},
    .unique = {{"FNumber", "NumberTaken"}},
    .order = "FCurrencyID",
    .text_key = "FNumber",
    .detail_by_text = "GetDetailByNumber",
    .id_argument = "CurrencyID",
    .text_argument = "Number",
    .mark = "FDeleted",
    .uses = {UseInAccount, UseInVoucher},
    .used_is_marked = true,
};
QDCLGL_RECORD_KIND(Currency, kCurrencies);

class CurrencyTest : public RecordsTest {
 protected:
  Long Create(const Ref<Dictionary>& row) { return Call(kUpdate, "Create", props, row).As<Long>(); }
  void Update(Long id, const Ref<Dictionary>& row) { Call(kUpdate, "Update", props, id, row); }
  void Delete(Long id) { Call(kUpdate, "Delete", props, id); }
  Ref<Dictionary> Detail(Long id) { return Call(kInfo, "GetDetail", props, id).As<Dictionary>(); }
};

TEST_P(CurrencyTest, NewBooksHaveTheBaseCurrency) {
  EXPECT_EQ(TextOf(*Detail(1)),
            "FCurrencyID=1;FVersion=1;FNumber=EUR;FName=EUR;FExchangeRate=1;FOperator=*;FScale=2;"
            "FFixRate=1;FDeleted=False;UUID=;");
}

TEST_P(CurrencyTest, NumbersRatesAndOperatorsHaveTheirRules) {
  const std::string before = State();
  const auto refusal = [&](std::initializer_list<std::pair<std::string_view, Variant>> cells) {
    return RefusalOf([&] { Create(Row(cells)); });
  };
  EXPECT_EQ(refusal({{"FNumber", "A-B"}}), "BadNumber");
  EXPECT_EQ(refusal({{"FNumber", "ABCDEFGHI"}}), "BadNumber");
  EXPECT_EQ(refusal({{"FNumber", "元"}}), "BadNumber");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FExchangeRate", 0.0}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FOperator", "+"}}), "BadValue");
  EXPECT_EQ(refusal({{"FNumber", "GBP"}, {"FOperator", ""}}), "BadValue");
  EXPECT_EQ(State(), before);
  Create(Row({{"FNumber", "A_345678"}}));
}

TEST_P(CurrencyTest, TheBaseCurrencyKeepsItsRate) {
  const Ref<Dictionary> row = Detail(1);
  row->Value("FExchangeRate", 1.01);
  EXPECT_EQ(RefusalOf([&] { Update(1, row); }), "BadValue");
  row->Value("FExchangeRate", 1.0);
  row->Value("FName", "Euro");
  Update(1, row);
  EXPECT_EQ(Detail(1)->Value("FName").As<String>(), "Euro");
  EXPECT_EQ(RefusalOf([&] { Delete(1); }), "InUse");
}

TEST_P(CurrencyTest, ACurrencyThatIsMarkedAlreadyIsNotMarkedAgain) {
  const Long id = Create(Row({{"FNumber", "USD"}}));
  const Long account = AddAccountIn(*this, id, "1000");
  Delete(id);
  const std::string before = State();
  EXPECT_EQ(RefusalOf([&] { Delete(id); }), "InUse");
  EXPECT_EQ(State(), before);
  Call("QDSVGLAccount.AccountUpdate", "Delete", props, account);
  Delete(id);
  EXPECT_EQ(Detail(id), nullptr) << "nothing uses it any longer";
}

TEST_P(CurrencyTest, WhatStoredAmountsGoByStays) {
  const Long id = Create(Row({{"FNumber", "USD"}}));
  const auto outcome = [&](Long currency, std::string_view key, const Variant& value) {
    const Ref<Dictionary> row = Detail(currency);
    row->Put(key, value);
    return RefusalOf([&] { Update(currency, row); });
  };
  EXPECT_EQ(outcome(id, "FOperator", "/"), "none") << "nothing uses it yet";
  EXPECT_EQ(outcome(id, "FOperator", "*"), "none");
  EXPECT_EQ(outcome(1, "FScale", Integer{3}), "none");
  UseInVoucher(*this, id);
  UseInVoucher(*this, 1);
  const std::string before = State();
  EXPECT_EQ(outcome(id, "FOperator", "/"), "InUse");
  EXPECT_EQ(outcome(1, "FScale", Integer{2}), "InUse");
  EXPECT_EQ(State(), before);
  EXPECT_EQ(outcome(id, "FScale", Integer{4}), "none");
  EXPECT_EQ(outcome(id, "FExchangeRate", 3.0), "none");
}

QDCLGL_BOOKS_TEST(CurrencyTest);

}  // namespace
}  // namespace qdclgl::server::testing
