#include "bench/server/books.h"

#include "qdclgl/frame/session/session.h"
#include "qdclgl/qdclgl.h"
#include "qdclgl/server/server.h"

namespace bench {

using namespace qdclgl;

namespace {

// Behind the one with sub-accounts, which has the id 1.
constexpr int kFirstAccount = 2;

Ref<Voucher> NewVoucher(VoucherSet& vouchers, int number, DateTime date, const Lines& lines = {}) {
  Ref<Voucher> voucher = vouchers.CreateNew();
  voucher->VoucherDate(date);
  voucher->GroupID(1);
  voucher->FootNote(" ");
  const auto entries = voucher->Entries();
  for (int i = 0; i < 4; ++i) {
    entries->Add();
    const auto entry = entries->Item(i + 1);
    entry->AccountID(kFirstAccount + (number * 7 + i) % lines.accounts);
    entry->CurrencyID(1);
    entry->Explanation(lines.explanation ? lines.explanation(number, i) : "Goods received");
    if (i % 2 == 0) {
      entry->Debit(Currency(100));
    } else {
      entry->Credit(Currency(100));
    }
  }
  return voucher;
}

Ref<Object> Batch() { return CreateObject("QDSVGLBatch.BatchUpdate"); }

// How many changes go into one transaction.
constexpr int kBatch = 1000;

}  // namespace

void LogInTo(const std::string& connection) {
  CreateObject("QDSVGLSession.SessionUpdate")->Call("Login", connection, "administrator", "");
}

void MakeBooks(const std::string& connection, int accounts) {
  CreateObject("QDSVGLBooks.BooksUpdate")
      ->Call("Create", connection, "EUR", Long{2024}, Named("NoPassword", true));
  LogInTo(connection);
  Batch()->Call("Begin", GetPropsString());
  Make<VoucherGroupSet>()->CreateNew("General")->SaveChanges();
  auto chart = Make<AccountSet>();
  const auto make = [&](const std::string& number) {
    chart->CreateNew(Variant(number), Variant("Account"))->SaveChanges();
  };
  make("2000");
  for (int i = 0; i < accounts; ++i) {
    const bool is_below = i >= accounts / 2;
    make(is_below ? "2000." + std::to_string(i) : std::to_string(1000 + i));
  }
  Batch()->Call("Commit", GetPropsString());
}

long SaveVoucher(int number, int month) {
  auto vouchers = Make<VoucherSet>();
  const auto voucher =
      NewVoucher(*vouchers, number, DateTime::FromYmd(2024, month, 1 + number % 28));
  voucher->SaveChanges();
  return voucher->VoucherID();
}

void SaveVouchers(int count, int year) {
  auto vouchers = Make<VoucherSet>();
  const DateTime date = DateTime::FromYmd(year, 1, 15);
  for (int i = 0; i < count; ++i) NewVoucher(*vouchers, i, date)->SaveChanges();
}

void SaveVouchersInBatches(int count, int year, const Lines& lines) {
  auto vouchers = Make<VoucherSet>();
  for (int i = 0; i < count; i += kBatch) {
    Batch()->Call("Begin", GetPropsString());
    for (int k = i; k < std::min(count, i + kBatch); ++k) {
      const DateTime date = DateTime::FromYmd(year, 1 + k % 12, 1 + k % 28);
      NewVoucher(*vouchers, k, date, lines)->SaveChanges1();
    }
    Batch()->Call("Commit", GetPropsString());
  }
}

void PostAll(int year) {
  auto vouchers = Make<VoucherSet>();
  vouchers->Filter("FYear = " + std::to_string(year));
  int posted = 0;
  Batch()->Call("Begin", GetPropsString());
  for (auto& voucher : vouchers) {
    vouchers->Post(voucher.VoucherID());
    if (++posted % kBatch != 0) continue;
    Batch()->Call("Commit", GetPropsString());
    Batch()->Call("Begin", GetPropsString());
  }
  Batch()->Call("Commit", GetPropsString());
}

const char* const kCounterSql =
    "INSERT INTO t_Counter (FYear, FPeriod, FGroupID, FNext) VALUES (2024, 1, 1, 2)"
    " ON CONFLICT (FYear, FPeriod, FGroupID) DO UPDATE SET FNext = t_Counter.FNext + 1"
    " RETURNING FNext - 1";

const std::string kHeaderSql =
    "INSERT INTO t_Voucher (FVersion, FDate, FYear, FPeriod, FGroupID, FNumber, FReference,"
    " FExplanation, FAttachments, FEntryCount, FDetailCount, FDebitTotal, FCreditTotal, FTransDate,"
    " FTranType, FSerialNum, FInternalInd, FHandler, FObjectName, FParameter, FFootNote, FLockDate,"
    " FIsAmortize, FAmortizeSchemeID, FBlankOutFlag, FOwnerGroupID, FPreparerID, FPreparer,"
    " FChecked, FCheckerID, FChecker, FApproveID, FApprover, FCashierID, FCashier, FPosted,"
    " FPosterID, FPoster, FSummarized, FDeleted, FExtra) VALUES (1, '2024-01-15', 2024, 1, 1, ?,"
    " '', '', 0, 4, 0, 2000000, 2000000, '', 0, 0, '', '', '', '', ' ', 0, 0, 0, 0, -1, 1,"
    " 'administrator', 0, -1, '', -1, '', -1, '', 0, -1, '', 0, 0, '') RETURNING FVoucherID";

const std::string kLineSql =
    "INSERT INTO t_VoucherEntry (FVoucherID, FEntryID, FAccountID, FDC, FAmount, FCurrencyID,"
    " FAmountFor, FExchangeRate, FQuantity, FUnitPrice, FMeasureUnitID, FMeasureUnit,"
    " FMeasureUnitNumber, FExplanation, FCashFlowItem, FSettleTypeID, FSettleNo, FTransNo, FExtra)"
    " VALUES (?, ?, ?, ?, 1000000, 1, 0, 0, 0, 0, 0, '', '', 'Goods received', 0, 0, '', '', '')";

const std::string kAuditSql = [] {
  std::string lines;
  for (int i = 0; i < 4; ++i) {
    lines += std::string(i == 0 ? "" : ",") +
             R"({"FAccountID":100,"FDC":1,"FAmount":"100","FCurrencyID":1,)"
             R"("FExplanation":"Goods received"})";
  }
  return "INSERT INTO t_Audit (FTime, FUserID, FUserName, FMachineName, FIPAddress, FSubject,"
         " FRecordID, FRecord, FAction, FOrigin, FNumber, FHash, FChanges) VALUES"
         " ('2024-01-15T10:00:00Z', 1, 'administrator', 'HOST', '10.0.0.1', 'Voucher', ?,"
         " '2024/1 General 1', 'Create', 1, 1, '" +
         std::string(64, 'a') + "', '" +
         R"({"new":{"FVersion":1,"FDate":"2024-01-15","FYear":2024,"FPeriod":1,"FGroupID":1,)"
         R"("FNumber":1,"FFootNote":" ","FOwnerGroupID":-1,"FPreparerID":1,)"
         R"("FPreparer":"administrator","FCheckerID":-1,"FApproveID":-1,"FCashierID":-1,)"
         R"("FPosterID":-1,"_Entries":[)" +
         lines + "]}}')";
}();

}  // namespace bench
