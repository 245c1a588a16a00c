#include "qdclgl/server/ledgers/open_items.h"

#include <map>

#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

// Accounts 1130 and 1140.01, below 1140, ask for customers.
class OpenItemsTest : public LedgerTest {
 protected:
  OpenItemsTest() {
    for (const char* number : {"1130", "1140", "1140.01"}) {
      const Ref<Dictionary> account = Row({{"FNumber", number}, {"FName", number}});
      auto customers = Make<Vector>();
      customers->Append(Variant(Row({{"FItemClassID", Long{3}}})));
      if (number != std::string_view("1140")) account->Put("_Items", Variant(customers));
      Call("QDSVGLAccount.AccountUpdate", "Create", props, account);
    }
    for (const auto& [number, name] : {std::pair("C001", "Anna"), std::pair("C002", "Bert")}) {
      Call("QDSVGLItem.ItemUpdate", "Create", props, Long{3},
           Row({{"FItemClassID", Long{3}}, {"FNumber", number}, {"FName", name}}));
    }
  }

  // An amount on an account for a customer: an invoice, or less than 0 a payment.
  Long Post(std::string_view date, std::string_view customer, std::string_view reference,
            Currency amount, std::string_view account = "1130") {
    const bool is_payment = amount < 0;
    auto details = Make<Vector>();
    details->Append(Variant(Row({{"FItemClassNumber", "CUSTOMER"}, {"FItemNumber", customer}})));
    const Currency size = is_payment ? -amount : amount;
    const Ref<Dictionary> line = Line(account, is_payment ? 0 : size, is_payment ? size : 0,
                                      {{"FTransNo", reference}, {"_Details", Variant(details)}});
    const Long id =
        Save(Voucher(date, {line, Line("3000", is_payment ? size : 0, is_payment ? 0 : size)}));
    Step("Post", id);
    return id;
  }
  Ref<Recordset> Open(std::string_view date, std::string_view account = "",
                      std::string_view ageing = "", std::string_view item_class = "CUSTOMER") {
    return Call("QDSVGLOpenItem.OpenItemInfo", "GetOpenItems", props, item_class,
                CDate(Variant(date)), account, ageing)
        .As<Recordset>();
  }
  std::string Text(std::string_view date, std::string_view account = "") {
    return TextOf(Open(date, account), {"FAccountNumber", "FItemNumber", "FTransNo", "FDate",
                                        "FDays", "FDebit", "FCredit", "FOpen"});
  }
};

TEST_P(OpenItemsTest, LinesOfOneItemAndReferenceSettleEachOther) {
  Post("2024-01-05", "C001", "A-1", Currency(100));
  Post("2024-01-10", "C001", "A-2", Currency(50));
  Post("2024-01-20", "C002", "A-1", Currency(7));
  Post("2024-02-01", "C001", "A-1", Currency(-100));
  Post("2024-02-03", "C001", "A-2", Currency(-20));
  EXPECT_EQ(Text("2024-02-03"), "1130 C001 A-2 2024-01-10 24 50 20 30\n"
                                "1130 C002 A-1 2024-01-20 14 7 0 7\n");
  EXPECT_EQ(Text("2024-02-02"), "1130 C001 A-2 2024-01-10 23 50 0 50\n"
                                "1130 C002 A-1 2024-01-20 13 7 0 7\n")
      << "as it was on a day";
  EXPECT_EQ(Text("2024-01-04"), "");
}

TEST_P(OpenItemsTest, AccountsAreSettledApart) {
  Post("2024-01-05", "C001", "A-1", Currency(100));
  Post("2024-01-06", "C001", "A-1", Currency(-30), "1140.01");
  EXPECT_EQ(Text("2024-01-31"), "1130 C001 A-1 2024-01-05 26 100 0 100\n"
                                "1140.01 C001 A-1 2024-01-06 25 0 30 -30\n");
  EXPECT_EQ(Text("2024-01-31", "1140"), "1140.01 C001 A-1 2024-01-06 25 0 30 -30\n");
}

TEST_P(OpenItemsTest, WithoutAReferenceTheOldestAreSettledFirst) {
  Post("2024-01-05", "C001", "", Currency(100));
  Post("2024-01-10", "C001", "", Currency(50));
  Post("2024-01-15", "C001", "", Currency(30));
  Post("2024-01-06", "C001", "A-1", Currency(5));
  Post("2024-02-01", "C001", "", Currency(-120));
  EXPECT_EQ(Text("2024-02-01"), "1130 C001 A-1 2024-01-06 26 5 0 5\n"
                                "1130 C001  2024-01-10 22 50 0 30\n"
                                "1130 C001  2024-01-15 17 30 0 30\n");
  Post("2024-02-02", "C001", "", Currency(-90));
  EXPECT_EQ(Text("2024-02-02"), "1130 C001 A-1 2024-01-06 27 5 0 5\n"
                                "1130 C001  2024-02-02 0 0 90 -30\n")
      << "what was paid too much is open too";
}

TEST_P(OpenItemsTest, StandInTheColumnOfTheirAge) {
  Post("2024-01-01", "C001", "A-1", Currency(1));
  Post("2024-01-02", "C001", "A-2", Currency(2));
  Post("2024-01-31", "C001", "A-3", Currency(4));
  const auto ages = [&](std::string_view ageing) {
    const Ref<Recordset> rows = Open("2024-01-31", "", ageing);
    std::string text;
    for (; !rows->Eof(); rows->MoveNext()) {
      text += CStr(rows->FieldValue(3)) + ":";
      for (Long i = 10; i < rows->FieldCount(); ++i) text += " " + ValueText(rows->FieldValue(i));
      text += "\n";
    }
    return text;
  };
  EXPECT_EQ(ages("29,60"), "A-1: 0 1 0\nA-2: 2 0 0\nA-3: 4 0 0\n");
  EXPECT_EQ(ages("0"), "A-1: 0 1\nA-2: 0 2\nA-3: 4 0\n");
  EXPECT_EQ(ages(""), "A-1:\nA-2:\nA-3:\n");
}

TEST_P(OpenItemsTest, AddUpToTheBalancesByItems) {
  unsigned random = 3;
  for (int i = 0; i < 60; ++i) {
    random = random * 1103515245 + 12345;
    const unsigned number = random >> 8;
    const DateTime day(DateTime::FromYmd(2024, 1, 1).days + number % 300);
    const std::string reference = number % 4 == 0 ? "" : "R-" + std::to_string(number % 9);
    Post(day.ToText(), number % 2 == 0 ? "C001" : "C002", reference,
         Currency(static_cast<double>(number % 41) - 20.5), number % 3 == 0 ? "1140.01" : "1130");
  }
  std::map<std::string, Currency> open, balances;
  for (auto rows = Open("2024-12-31"); !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    open[CStr(row->Value("FAccountNumber")) + CStr(row->Value("FItemNumber"))] +=
        row->Value("FOpen").As<Currency>();
  }
  for (auto rows = Call("QDSVGLBalance.BalanceInfo", "GetItemList", props, "CUSTOMER", Long{0},
                        Long{0}, Long{0}, "FCurrencyID = 0 AND FDetail = TRUE")
                       .As<Recordset>();
       !rows->Eof(); rows->MoveNext()) {
    const Ref<Dictionary> row = rows->Row();
    balances[CStr(row->Value("FAccountNumber")) + CStr(row->Value("FItemNumber1"))] =
        row->Value("FEndBalance").As<Currency>();
  }
  EXPECT_EQ(open.size(), 4u);
  EXPECT_EQ(open, balances);
}

TEST_P(OpenItemsTest, WhatCanNotBeToldIsRefused) {
  EXPECT_EQ(RefusalOf([&] { Open("2024-01-31", "9"); }), "NotFound");
  EXPECT_EQ(RefusalOf([&] { Open("2024-01-31", "", "", "NOBODY"); }), "BadReference");
  EXPECT_EQ(SentenceOf([&] { Open("2024-01-31", "1000"); }),
            "No such account asks for items of item class CUSTOMER.");
  for (const char* ageing : {"30,30", "60,30", "x", "30,", "-5", "123456"}) {
    EXPECT_EQ(RefusalOf([&] { Open("2024-01-31", "", ageing); }),
              std::string_view(ageing) == "30," ? "none" : "BadValue")
        << ageing;
  }
}

QDCLGL_BOOKS_TEST(OpenItemsTest);

}  // namespace
}  // namespace qdclgl::server::testing
