// Makes books whose receivables are kept by customer and contract, and prints what each owes:
// receivables BOOK
#include <cstdio>

#include "qdclgl/qdclgl.h"
#include "qdclgl/server/server.h"

using namespace qdclgl;

namespace {

constexpr Long kCustomers = 3;  // an item class of all books

Long MakeItem(Long item_class, const char* number, const char* name) {
  auto item = Variant(Make<ItemSet>()->CreateNew(item_class, 0)).As<Item>();
  item->Number(number);
  item->Name(name);
  item->SaveChanges();
  return item->ItemID();
}

// An item class of one's own, whose items have a field besides number and name.
Long MakeContracts() {
  auto contracts = Make<ItemClassSet>()->CreateNew("CONTRACT", "Contract");
  constexpr Long kText = 200;
  contracts->CustomProperties()->Add("Manager", kText, "", 40);
  contracts->SaveChanges();
  return contracts->ItemClassID();
}

// An account each of whose lines names an item of each class.
Long MakeAccount(const char* number, const char* name, std::initializer_list<Long> classes = {}) {
  auto account = Make<AccountSet>()->CreateNew(number, name);
  auto items = Make<Vector>();
  for (const Long item_class : classes) {
    auto row = Make<Dictionary>();
    row->Value("FItemClassID", item_class);
    items->Append(Variant(row));
  }
  account->SetProps("_Items", Variant(items));
  account->SaveChanges();
  return account->AccountID();
}

struct Books {
  Long receivables, sales, contracts;

  // An invoice: so much from Sales into Receivables, for that customer and contract.
  void Invoice(Currency amount, Long customer, Long contract) const {
    auto voucher = Make<VoucherSet>()->CreateNew();
    voucher->VoucherDate(DateTime::FromYmd(2024, 1, 15));
    voucher->GroupID(Make<VoucherGroupSet>()->Item("Invoices")->VoucherGroupID());
    auto lines = voucher->Entries();
    lines->Count(2);
    lines->Item(1)->AccountID(receivables);
    lines->Item(1)->Debit(amount);
    lines->Item(2)->AccountID(sales);
    lines->Item(2)->Credit(amount);
    auto details = lines->Item(1)->Details();
    details->Count(2);
    details->Item(1)->ItemClassID(kCustomers);
    details->Item(1)->ItemID(customer);
    details->Item(2)->ItemClassID(contracts);
    details->Item(2)->ItemID(contract);
    voucher->SaveChanges1();
    Make<VoucherSet>()->Post(voucher->VoucherID());
  }
};

void Print(const std::string& props, const char* classes) {
  std::printf("By %s:\n", classes);
  auto rows = CreateObject("QDSVGLBalance.BalanceInfo")
                  ->Call("GetItemList", props, classes, 2024, 1, 12, "FCurrencyID = 0")
                  .As<Recordset>();
  for (; !rows->Eof(); rows->MoveNext()) {
    auto row = rows->Row();
    std::string items;
    for (const std::string_view column : {"FItemName1", "FItemName2"}) {
      if (row->Contains(RowKey(column))) items += row->Value(column).As<String>() + "  ";
    }
    std::printf("  %s%s\n", items.c_str(),
                row->Value("FEndBalance").As<Currency>().ToText().c_str());
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return std::fputs("usage: receivables BOOK\n", stderr), 2;
  try {
    const char* book = arguments[1];
    server::RegisterServerComponents();
    CreateObject("QDSVGLBooks.BooksUpdate")
        ->Call("Create", book, "EUR", 2024, Named("NoPassword", true));
    const auto props = CreateObject("QDSVGLSession.SessionUpdate")
                           ->Call("Login", book, "administrator", "")
                           .As<String>();
    Make<VoucherGroupSet>()->CreateNew("Invoices")->SaveChanges();

    const Long contracts = MakeContracts();
    const Books books{MakeAccount("1130", "Receivables", {kCustomers, contracts}),
                      MakeAccount("3000", "Sales"), contracts};
    const Long anna = MakeItem(kCustomers, "C001", "Anna");
    const Long bert = MakeItem(kCustomers, "C002", "Bert");
    const Long roof = MakeItem(contracts, "2024-17", "Roof");
    const Long wall = MakeItem(contracts, "2024-18", "Wall");
    books.Invoice(500, anna, roof);
    books.Invoice(300, bert, wall);
    books.Invoice(120, anna, wall);

    Print(props, "CUSTOMER");
    Print(props, "CUSTOMER,CONTRACT");
  } catch (const Error& error) {
    return std::fprintf(stderr, "%s\n", error.what()), 1;
  }
}
