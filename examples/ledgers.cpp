// A ledger with columns of one's own, and a note of how it is printed: ledgers FILE
#include "examples/story.h"

namespace {

using namespace example;

void SetUp() {
  Make<VoucherGroupSet>()->CreateNew("General")->SaveChanges();
  auto accounts = Make<AccountSet>();
  for (const auto& [number, name] : {std::pair("1000", "Cash"), std::pair("5000", "Expenses"),
                                     std::pair("5000.01", "Rent"), std::pair("5000.02", "Post")}) {
    accounts->CreateNew(number, name)->SaveChanges();
  }
  SaveAndPost(DateTime::FromYmd(2024, 1, 3), "Rent for January", Currency(900), "5000.01", "1000");
  SaveAndPost(DateTime::FromYmd(2024, 1, 9), "Stamps", Currency(17), "5000.02", "1000");
}

Long MakeLedger() {
  Ref<MultiLedgerSet> ledgers = Make<MultiLedgerSet>();
  Ref<MultiLedger> expenses = ledgers->CreateNew("Expenses");
  expenses->AccountID(AccountId("5000"));

  Ref<MultiColumnSet> columns = expenses->Columns();
  columns->Count(2);
  Ref<MultiColumn> rent = columns->Item(1);
  rent->AccountID(AccountId("5000.01"));
  rent->DC(1);
  columns->Item(2)->AccountID(AccountId("5000.02"));
  columns->Item(2)->DC(1);

  Ref<MultiSubColumnSet> currencies = expenses->SubColumns();
  currencies->Add();
  Ref<MultiSubColumn> euro = currencies->Item(1);
  euro->CurrencyID(1);

  expenses->SaveChanges();
  std::printf("%s: %d columns, in %s too\n", expenses->LedgerName().c_str(),
              static_cast<int>(columns->Count()),
              ledgers->Item(expenses->LedgerID())->SubColumns()->Item(1)->CurrencyNumber().c_str());
  return expenses->LedgerID();
}

void ReadLedger(const String& props, Long ledger) {
  Print("the ledger of January",
        CreateObject("QDSVGLMCLedger.MultiColumnLedgerInfo")
            ->Call("GetLedger", props, ByRef(ledger), DateTime::FromYmd(2024, 1, 1),
                   DateTime::FromYmd(2024, 1, 31))
            .As<Recordset>(),
        {"FRow", "FDate", "FExplanation", "FDebit", "FColumn1", "FColumn2"});

  CreateObject("QDSVGLMCLedger.MColLedgerUpdate")->Call("Delete", props, ByRef(ledger));
  std::printf("%d ledgers left\n", static_cast<int>(Make<MultiLedgerSet>()->Count()));
}

void Notes(const String& props) {
  Ref<NoteSet> notes = Make<NoteSet>();
  Ref<Note> layout = notes->CreateNew("Ledger, landscape");
  layout->NoteType("print");
  layout->Data("margins=20;font=10");
  layout->SaveChanges();
  std::printf("%s: %s\n", layout->Name().c_str(), CStr(layout->Data()).c_str());

  CreateObject("QDSVGLNote.NoteUpdate")
      ->Call("Create", props, Row({{"FName", "Ledger, portrait"}, {"FData", "margins=15"}}));
  Print("notes", CreateObject("QDSVGLNote.NoteInfo")->Call("GetList", props).As<Recordset>(),
        {"FName", "FCreatorName"});
}

void Keep(const String& props) {
  SetUp();
  ReadLedger(props, MakeLedger());
  Notes(props);
}

}  // namespace

int main(int count, char** arguments) { return Tell(count, arguments, Keep); }
