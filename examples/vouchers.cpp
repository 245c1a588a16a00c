// A voucher from its lines to the trail: saved, changed, copied from a template, found, brought in
// from elsewhere: vouchers FILE
#include "examples/story.h"

namespace {

using namespace example;

constexpr Long kCustomers = 3;  // an item class of all books

void SetUp(const String& props) {
  Make<VoucherGroupSet>()->CreateNew("General")->SaveChanges();
  auto classes = Make<Vector>();
  classes->Append(Variant(Row({{"FItemClassID", kCustomers}})));
  CreateObject("QDSVGLAccount.AccountUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "1130"}, {"FName", "Receivables"}, {"_Items", Variant(classes)}}));
  Make<AccountSet>()->CreateNew("1000", "Bank")->SaveChanges();
  Make<AccountSet>()->CreateNew("4000", "Sales")->SaveChanges();
  CreateObject("QDSVGLItems.ItemUpdate")
      ->Call("Create", props,
             Row({{"FItemClassID", kCustomers}, {"FNumber", "C001"}, {"FName", "Anna"}}));
}

Long Invoice() {
  Ref<Voucher> invoice = Make<VoucherSet>()->CreateNew();
  invoice->VoucherDate(DateTime::FromYmd(2024, 1, 15));
  invoice->GroupID(1);
  invoice->Reference("2024-17");

  Ref<VoucherEntrySet> lines = invoice->Entries();
  lines->Count(2);
  Ref<VoucherEntry> debit = lines->Item(1);
  debit->AccountID(AccountId("1130"));
  debit->Explanation("Roof of the shed");
  debit->Debit(Currency(500));
  lines->Item(2)->AccountID(AccountId("4000"));
  lines->Item(2)->Credit(Currency(500));

  Ref<VoucherDetailSet> details = debit->Details();
  details->Add();
  Ref<VoucherDetail> customer = details->Item(1);
  customer->ItemClassID(kCustomers);
  customer->ItemNumber("C001");

  invoice->SaveChanges();
  std::printf("voucher %d of period %d, debit %s\n", static_cast<int>(invoice->Number()),
              static_cast<int>(invoice->Period()), invoice->DebitTotal().ToText().c_str());
  return invoice->VoucherID();
}

void Workflow(const String& props, Long id) {
  // As the components have it, a voucher is a row with rows in it.
  auto read = [&] {
    return CreateObject("QDSVGLVoucher.VoucherInfo")->Call("GetDetail", props, id).As<Dictionary>();
  };
  Ref<Dictionary> row = read();
  row->Value("FReference", "2024-17a");
  CreateObject("QDSVGLVoucher.VoucherUpdate")->Call("Update", props, ByRef(id), row);

  Boolean checked = true;
  CreateObject("QDSVGLVoucher.VoucherUpdate")->Call("Check", props, ByRef(id), ByRef(checked));
  CreateObject("QDSVGLVoucher.VoucherUpdate")->Call("Post", props, ByRef(id));
  row = read();
  std::printf("%s: checked by %s, posted by %s\n", CStr(row->Value("FReference")).c_str(),
              CStr(row->Value("FChecker")).c_str(), CStr(row->Value("FPoster")).c_str());
}

void Templates(const String& props) {
  // What comes again each month, without amounts; a template is made of a row or of nothing.
  Ref<VoucherTemp> rent = Make<VoucherTemp>();
  Ref<Dictionary> nothing;
  Ref<Object> no_transaction;
  rent->Construct(nothing, no_transaction);
  rent->Name("Rent of the shop");
  rent->GroupID(1);
  rent->Entries()->Count(2);
  rent->Entries()->Item(1)->AccountID(AccountId("4000"));
  rent->Entries()->Item(2)->AccountID(AccountId("1000"));
  rent->SaveChanges();

  Ref<VoucherTempSet> templates = Make<VoucherTempSet>();
  std::printf("template %s\n", templates->GetCurrent()->Name().c_str());

  Long id = rent->VoucherTempID();
  auto row = CreateObject("QDSVGLVoucherTemp.VoucherTempInfo")
                 ->Call("GetDetail", props, ByRef(id))
                 .As<Dictionary>();
  row->Value("FName", "Rent of the shop and the yard");
  CreateObject("QDSVGLVoucherTemp.VoucherTempUpdate")->Call("Update", props, ByRef(id), row);
  std::printf("%s, version %s\n", CStr(row->Value("FName")).c_str(),
              CStr(row->Value("FVersion")).c_str());
}

void Batch(const String& props) {
  auto batch = CreateObject("QDSVGLBatch.BatchUpdate");
  batch->Call("Begin", props);
  Save(DateTime::FromYmd(2024, 1, 20), "Cash sale", Currency(80), "1000", "4000");
  Save(DateTime::FromYmd(2024, 1, 21), "Cash sale", Currency(90), "1000", "4000");
  batch->Call("RollBack", props);
  std::printf("behind the batch: %d voucher\n", static_cast<int>(Make<VoucherSet>()->Count()));
}

void BringIn(const String& props) {
  Long import = CreateObject("QDSVGLImport.ImportUpdate")
                    ->Call("Create", props, Row({{"FName", "till.csv"}}))
                    .As<Long>();
  auto ids = Make<Vector>();
  ids->Append(
      Variant(Save(DateTime::FromYmd(2024, 1, 22), "Till no. 1", Currency(80), "1000", "4000")));
  CreateObject("QDSVGLImport.ImportUpdate")
      ->Call("AddVouchers", props, ByRef(import), Variant(ids));

  Print("came with the import",
        CreateObject("QDSVGLImport.ImportInfo")
            ->Call("GetVouchers", props, ByRef(import))
            .As<Recordset>(),
        {"FVoucher", "FDate", "FDebitTotal"});
  const Long taken_out =
      CreateObject("QDSVGLImport.ImportUpdate")->Call("TakeOut", props, ByRef(import)).As<Long>();
  std::printf("%d taken out again\n", static_cast<int>(taken_out));
}

void LookBack(const String& props) {
  Print("open on January 31",
        CreateObject("QDSVGLOpenItem.OpenItemInfo")
            ->Call("GetOpenItems", props, "CUSTOMER", DateTime::FromYmd(2024, 1, 31))
            .As<Recordset>(),
        {"FItemName", "FDate", "FOpen"});

  String words = "roof anna";
  Print("lines with both words",
        CreateObject("QDSVGLLine.LineInfo")->Call("Find", props, ByRef(words)).As<Recordset>(),
        {"FDate", "FExplanation", "FDebit"});

  String filter = "FSubject = 'Voucher' AND FRecordID = 1";
  Print(
      "what became of it",
      CreateObject("QDSVGLAudit.AuditInfo")->Call("GetList", props, ByRef(filter)).As<Recordset>(),
      {"FUserName", "FAction", "FRecord"});
}

void Keep(const String& props) {
  SetUp(props);
  const Long invoice = Invoice();
  Workflow(props, invoice);
  Templates(props);
  Batch(props);
  BringIn(props);
  LookBack(props);
}

}  // namespace

int main(int count, char** arguments) { return Tell(count, arguments, Keep); }
