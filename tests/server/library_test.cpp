// The library's own classes at work on real books: what callers see from end to end.
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/qdclgl.h"
#include "tests/server/ledger_fixture.h"
#include "tests/support/test_platform.h"

namespace qdclgl::server::testing {
namespace {

class LibraryOnBooks : public LedgerTest {
 protected:
  static void AddLine(const Ref<qdclgl::Voucher>& voucher, const char* account, Currency debit,
                      Currency credit) {
    const auto entries = voucher->Entries();
    entries->Add();
    const auto line = entries->Item(entries->Count());
    line->AccountNumber(account);
    if (debit != 0) line->Debit(debit);
    if (credit != 0) line->Credit(credit);
  }
  static Ref<qdclgl::Voucher> NewSale(const Ref<VoucherSet>& vouchers, Currency amount) {
    auto voucher = vouchers->CreateNew();
    voucher->VoucherDate(DateTime::FromYmd(2024, 1, 15));
    voucher->GroupID(1);
    AddLine(voucher, "1000", amount, 0);
    AddLine(voucher, "3000", 0, amount);
    return voucher;
  }
};
QDCLGL_BOOKS_TEST(LibraryOnBooks);

TEST_P(LibraryOnBooks, AVoucherIsMadeOpenedChangedAndSaved) {
  auto vouchers = Make<VoucherSet>();
  auto made = NewSale(vouchers, 100);
  made->SaveChanges();
  EXPECT_EQ(made->Number(), 1);
  EXPECT_EQ(made->Year(), 2024);
  EXPECT_EQ(made->FootNote(), " ");
  EXPECT_FALSE(made->Modified());

  auto voucher = vouchers->Item(made->VoucherID());
  EXPECT_EQ(voucher->Entries()->Item(1)->AccountName(), "Cash");
  EXPECT_FALSE(voucher->Modified());
  EXPECT_EQ(voucher->Entries()->Item(1)->Details()->Count(), 0);
  EXPECT_FALSE(voucher->Modified()) << "looking at details changes nothing";
  voucher->Entries()->Item(1)->Debit(150);
  voucher->Entries()->Item(2)->Credit(150);
  EXPECT_TRUE(voucher->Modified());
  voucher->SaveChanges();
  EXPECT_FALSE(voucher->Modified());
  voucher->Reference("again");
  voucher->SaveChanges();  // a second save of the same object works
  auto reread = vouchers->Item(made->VoucherID());
  EXPECT_EQ(reread->DebitTotal(), Currency(150));
  EXPECT_EQ(reread->DebitTotal2(), Currency(150));
  EXPECT_EQ(reread->Reference(), "again");
}

TEST_P(LibraryOnBooks, SaveChanges1KeepsTheObjectAndSavesAgain) {
  auto vouchers = Make<VoucherSet>();
  auto voucher = NewSale(vouchers, 100);
  voucher->SaveChanges1();
  const Long id = voucher->VoucherID();
  EXPECT_GT(id, 0);
  EXPECT_TRUE(voucher->Modified());
  voucher->Reference("second");
  voucher->SaveChanges1();
  voucher->SaveChanges();
  EXPECT_EQ(voucher->VoucherID(), id) << "the row that was sent knows its id";
  EXPECT_EQ(vouchers->Count(), 1);
  EXPECT_EQ(vouchers->Item(id)->Reference(), "second");
}

TEST_P(LibraryOnBooks, SaveChanges2MarksTheSaveAsAutomatic) {
  auto vouchers = Make<VoucherSet>();
  auto voucher = NewSale(vouchers, 100);
  voucher->SaveChanges2();
  voucher->Reference("x");
  voucher->SaveChanges2();
  EXPECT_EQ(Call("QDSVGLAudit.AuditInfo", "GetList", props, "FSubject = 'Voucher' AND FOrigin = 2")
                .As<Recordset>()
                ->RecordCount(),
            2);
}

TEST_P(LibraryOnBooks, TwoPeopleWithOneVoucherOpenTheSecondIsToldAndKeepsTheEdit) {
  auto vouchers = Make<VoucherSet>();
  auto made = NewSale(vouchers, 100);
  made->SaveChanges();
  auto mine = vouchers->Item(made->VoucherID()), yours = vouchers->Item(made->VoucherID());
  mine->Reference("mine");
  mine->SaveChanges();
  yours->Reference("yours");
  EXPECT_EQ(ErrorText([&] { yours->SaveChanges(); }).substr(0, 8), "80044214");
  EXPECT_TRUE(yours->Modified());
  EXPECT_EQ(yours->Reference(), "yours");
  EXPECT_EQ(vouchers->Item(made->VoucherID())->Reference(), "mine");
}

TEST_P(LibraryOnBooks, TheWorkflowRunsThroughTheVoucher) {
  auto vouchers = Make<VoucherSet>();
  auto voucher = NewSale(vouchers, 100);
  voucher->SaveChanges();
  voucher->Check();
  EXPECT_TRUE(voucher->Checked());
  EXPECT_EQ(voucher->Checker(), "administrator");
  voucher->Approve();
  EXPECT_EQ(voucher->ApproveID(), 1);
  voucher->Cash();
  EXPECT_EQ(voucher->Cashier(), "administrator");
  vouchers->Post(voucher->VoucherID());
  voucher->Refresh();
  EXPECT_TRUE(voucher->Posted());
  vouchers->UnPost(voucher->VoucherID());
  voucher->Refresh();
  voucher->UnCash();
  voucher->UnApprove();
  voucher->UnCheck();
  EXPECT_FALSE(voucher->Checked());
  EXPECT_EQ(voucher->ApproveID(), -1);
  EXPECT_EQ(voucher->CashierID(), -1);
}

TEST_P(LibraryOnBooks, AVoucherIsFoundByItsPartsAndRemoved) {
  auto vouchers = Make<VoucherSet>();
  NewSale(vouchers, 100)->SaveChanges();
  const Long id = vouchers->ExistenceCheck(Missing, Variant(Long{2024}), Variant(Long{1}),
                                           Variant("Receipts"), Variant(Long{1}));
  EXPECT_EQ(vouchers->Item(Missing, 2024, 1, "Receipts", 1)->VoucherID(), id);
  vouchers->Remove(Missing, Variant(Long{2024}), Variant(Long{1}), Variant("Receipts"),
                   Variant(Long{1}));
  EXPECT_EQ(vouchers->Item(id)->VoucherID(), 0);
  auto deleted = vouchers->Item(id, 0, 0, "", 0, true);
  EXPECT_EQ(deleted->VoucherID(), id);
  deleted->Refresh();
  EXPECT_EQ(deleted->VoucherID(), id);
}

TEST_P(LibraryOnBooks, AListIsWalkedAndAVoucherOfItRefreshed) {
  auto vouchers = Make<VoucherSet>();
  for (int i = 1; i <= 3; ++i) NewSale(vouchers, i)->SaveChanges();
  Currency total;
  for (auto& voucher : vouchers) {
    EXPECT_EQ(voucher.Entries()->Count(), 0) << "a list row has no lines";
    voucher.Refresh();
    total += voucher.DebitTotal();
  }
  EXPECT_EQ(total, Currency(6));
  vouchers->Filter("FDebitTotal > 1.5");
  vouchers->Sort("FNumber DESC");
  EXPECT_EQ(vouchers->Count(), 3);
  vouchers->Refresh();
  EXPECT_EQ(vouchers->Count(), 2);
  EXPECT_EQ(vouchers->GetNext()->Number(), 3);
}

TEST_P(LibraryOnBooks, TheChartKnowsItsTree) {
  auto accounts = Make<AccountSet>();
  auto rent = accounts->Item(Variant("4000.01"));
  EXPECT_EQ(rent->Level(), 2);
  EXPECT_EQ(rent->FullName(), "Costs_Rent");
  EXPECT_EQ(rent->GetFullName("/"), "Costs/Rent");
  EXPECT_TRUE(accounts->IsChildAcct(Variant("4000.01"), Variant("4000")));
  Variant root(Long{4}), sub(Long{5});
  EXPECT_TRUE(accounts->IsSubAcct(root, sub));
  EXPECT_EQ(CStr(root), "4000");
  EXPECT_FALSE(accounts->Item(Variant("4000"))->Detail());
  rent->Name("Rents");
  rent->SaveChanges();
  rent->Name("Rent and heating");
  rent->SaveChanges();
  EXPECT_EQ(rent->FullName(), "Costs_Rent and heating");
  auto copy = rent->Clone();
  copy->Number("4000.03");
  copy->SaveChanges();
  EXPECT_EQ(accounts->ExistenceCheck(Missing, Variant("4000.03")), copy->AccountID());
  accounts->Remove(Variant("4000.03"));
  EXPECT_EQ(accounts->ExistenceCheck(Missing, Variant("4000.03")), 0);
  EXPECT_FALSE(rent->CheckAccountInVoucher());
}

TEST_P(LibraryOnBooks, CurrenciesAndGroupsAreSavedTwiceInARow) {
  auto currencies = Make<CurrencySet>();
  auto currency = currencies->CreateNew(Variant("chf"), Variant("Franc"));
  currency->ExchangeRate(0.95);
  currency->SaveChanges();
  currency->ExchangeRate(0.96);
  currency->SaveChanges();
  EXPECT_EQ(currencies->Item(Variant("CHF"))->ExchangeRate(), 0.96);
  auto groups = Make<VoucherGroupSet>();
  auto group = groups->CreateNew(Variant("Transfers"));
  group->SaveChanges();
  group->DRange("1000");
  group->SaveChanges();
  EXPECT_EQ(groups->Item(Variant("Transfers"))->DRange(), "1000");
  groups->Remove(Variant("Transfers"));
  EXPECT_EQ(groups->ExistenceCheck(Missing, Variant("Transfers")), 0);
}

TEST_P(LibraryOnBooks, SettingsAndCalendarComeFromTheBooks) {
  auto profile = Make<SystemProfile>();
  EXPECT_EQ(profile->GLGetCurrentYear(), 2024);
  EXPECT_EQ(profile->GLGetPeriodCount(), 12);
  EXPECT_TRUE(profile->GLGetPeriodByMonth());
  profile->Item("General", "CompanyName", "Trading Ltd");
  EXPECT_EQ(Make<SystemProfile>()->CompanyName(), "Trading Ltd");
  Long year = 0;
  EXPECT_EQ(profile->GLGetPeriodByDate(DateTime::FromYmd(2024, 5, 31), year), 5);
  EXPECT_EQ(year, 2024);
  EXPECT_EQ(CStr(Variant(profile->GLGetPeriodDate(2024, 14))), "2025-02-01");
  EXPECT_FALSE(profile->IsNeedOffline());
  profile->Item("Base", "Offline", "1");
  EXPECT_TRUE(profile->IsNeedOffline());
}

TEST_P(LibraryOnBooks, BothSessionStoresServeTheLibrary) {
  EXPECT_EQ(GetPropsString(), props) << "ordinary login";
  EXPECT_EQ(GetSessionUserName(), "administrator");
  props = Call("QDSVGLSession.SessionUpdate", "Login", connection, "administrator", "", true)
              .As<String>();
  EXPECT_EQ(GetPropsString(), props) << "outer login";
  EXPECT_EQ(GetSessionUserName(), "administrator");
  EXPECT_EQ(CLng(GetSessionProperty("UserID")), 1);
  EXPECT_NE(GetPropsValue(props, "Initial catalog", "="), "");
  Call("QDSVGLSession.SessionUpdate", "Logout", props);
  EXPECT_EQ(GetPropsString(), "");
}

}  // namespace
}  // namespace qdclgl::server::testing
