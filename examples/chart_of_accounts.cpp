// Sets up books: currencies and rates, accounts, groups of vouchers, users and settings:
// chart-of-accounts FILE
#include "examples/story.h"

namespace {

using namespace example;

void Currencies(const String& props) {
  auto currencies = Make<CurrencySet>();
  Ref<Currencyx> dollar = currencies->CreateNew("USD", "US dollar");
  dollar->ExchangeRate(0.9);
  dollar->SaveChanges();
  std::printf("%s has the id %d, %d currencies in all\n", dollar->Number().c_str(),
              static_cast<int>(dollar->CurrencyID()), static_cast<int>(currencies->Count()));

  // The same by the components, with rows in place of objects.
  CreateObject("QDSVGLCurrency.CurrencyUpdate")
      ->Call("Create", props, Row({{"FNumber", "CHF"}, {"FName", "Swiss franc"}}));
  Print("currencies",
        CreateObject("QDSVGLCurrency.CurrencyInfo")->Call("GetList", props).As<Recordset>(),
        {"FCurrencyID", "FNumber", "FName"});

  CreateObject("QDSVGLExchangeRate.ExchangeRateUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "2024-01"},
                  {"FCurrencyID", dollar->CurrencyID()},
                  {"FDate", DateTime::FromYmd(2024, 1, 31)},
                  {"FExchangeRate", 0.92}}));

  Long currency = dollar->CurrencyID();
  DateTime day = DateTime::FromYmd(2024, 2, 15);
  const double rate = CreateObject("QDSVGLExchangeRate.ExchangeRateInfo")
                          ->Call("GetRate", props, ByRef(currency), ByRef(day))
                          .As<Double>();
  std::printf("a dollar is %g in February\n", rate);
}

void Accounts(const String& props) {
  auto accounts = Make<AccountSet>();
  Ref<Account> bank = accounts->CreateNew("1000", "Bank");
  bank->SaveChanges();
  Ref<Account> giro = accounts->CreateNew("1000.01", "Giro account");
  giro->IsBank(true);
  giro->SaveChanges();
  std::printf("%s is below %s: %s\n", giro->FullName().c_str(), bank->Number().c_str(),
              accounts->IsChildAcct(giro->AccountID(), bank->AccountID()) ? "yes" : "no");

  Ref<Properties> all = giro->Properties();
  Ref<Property> name = all->Item("FName");
  std::printf("%d keys, %s is %s\n", static_cast<int>(all->Count()), name->Name().c_str(),
              CStr(name->Value()).c_str());

  // Each line on the account will name a customer.
  constexpr Long kCustomers = 3;
  auto classes = Make<Vector>();
  classes->Append(Variant(Row({{"FItemClassID", kCustomers}})));
  Long receivables =
      CreateObject("QDSVGLAccount.AccountUpdate")
          ->Call("Create", props,
                 Row({{"FNumber", "1130"}, {"FName", "Receivables"}, {"_Items", Variant(classes)}}))
          .As<Long>();

  Print("lines on Receivables name",
        CreateObject("QDSVGLAccount.AccountItemInfo")
            ->Call("GetListByAccount", props, ByRef(receivables))
            .As<Recordset>(),
        {"FItemClassNumber"});

  Long options = 0;
  String filter = "FNumber LIKE '1%'", sort = "FNumber DESC";
  Print("accounts",
        CreateObject("QDSVGLAccount.AccountInfo")
            ->Call("GetList", props, ByRef(options), ByRef(filter), ByRef(sort))
            .As<Recordset>(),
        {"FNumber", "FName", "FLevel"});
}

void Groups(const String& props) {
  auto groups = Make<VoucherGroupSet>();
  Ref<VoucherGroup> receipts = groups->CreateNew("Receipts");
  receipts->SaveChanges();

  CreateObject("QDSVGLVoucherGroup.VoucherGroupUpdate")
      ->Call("Create", props, Row({{"FName", "Payments"}}));
  Print("groups of vouchers",
        CreateObject("QDSVGLVoucherGroup.VoucherGroupInfo")->Call("GetList", props).As<Recordset>(),
        {"FGroupID", "FName"});
}

void Users(const String& props) {
  CreateObject("QDSVGLUser.UserUpdate")
      ->Call("Create", props,
             Row({{"FName", "anna"}, {"FRoles", "preparer"}, {"FPassword", "correct horse"}}));
  Print("users", CreateObject("QDSVGLUser.UserInfo")->Call("GetList", props).As<Recordset>(),
        {"FName", "FRoles"});
}

void Settings(const String& props) {
  String category = "GL", key = "CheckBeforePost", value = "1";
  CreateObject("QDSVBase.SystemProfile")
      ->Call("SetProfile", props, ByRef(category), ByRef(key), ByRef(value));

  auto settings = Make<SystemProfile>();
  std::printf("vouchers are checked before they are posted: %s; the books are in %d/%d\n",
              settings->GLGetCheckBeforePost() ? "yes" : "no", settings->GLGetCurrentYear(),
              settings->GLGetCurrentPeriod());

  DateTime day = DateTime::FromYmd(2024, 2, 29);
  Long period = 0;
  const Long year = CreateObject("QDCPeriodDate.clsPeriodDate")
                        ->Call("GetPeriod", props, ByRef(day), ByRef(period))
                        .As<Long>();
  std::printf("%s is in %d/%d\n", day.ToText().c_str(), static_cast<int>(year),
              static_cast<int>(period));

  String computer = "desk-7";
  const bool is_offline = CreateObject("QDSVBase.BaseInfo")
                              ->Call("IsNeedOffline", props, Integer{1}, ByRef(computer))
                              .As<Boolean>();
  std::printf("%s works on line: %s\n", computer.c_str(), is_offline ? "no" : "yes");

  // What the login has left for the objects of this process.
  const Long process = CurrentPlatform().ProcessId();
  const Variant user =
      CreateObject("QDCPropsMgr.ShareProps")->Call("GetProperty", process, "UserName");
  const Variant outer =
      CreateObject("QDCMtsCacheService.CacheFacade")->Call("GetItem", process, "IsOuterLogin");
  std::printf("%s has logged in, from outside: %s\n", CStr(user).c_str(), CStr(outer).c_str());
}

void SetUp(const String& props) {
  Currencies(props);
  Accounts(props);
  Groups(props);
  Users(props);
  Settings(props);
}

}  // namespace

int main(int count, char** arguments) { return Tell(count, arguments, SetUp); }
