#include "server/server.h"

#include <array>

#include "frame/server_gateway.h"
#include "server/account.h"
#include "server/audit.h"
#include "server/balance.h"
#include "server/batch.h"
#include "server/books.h"
#include "server/calendar.h"
#include "server/currency.h"
#include "server/login.h"
#include "server/period.h"
#include "server/settings.h"
#include "server/user.h"
#include "server/voucher.h"
#include "server/voucher_group.h"

namespace qdclgl::server {

std::span<const ServerComponent> ServerComponents() {
  static const std::array kComponents = {
      ServerComponent{"QDCMtsCacheService.CacheFacade", &CacheFacade::Table()},
      ServerComponent{"QDCPropsMgr.ShareProps", &ShareProps::Table()},
      ServerComponent{"QDCPeriodDate.clsPeriodDate", &PeriodDate::Table()},
      ServerComponent{"QDSVBase.BaseInfo", &BaseInfo::Table()},
      ServerComponent{"QDSVBase.SystemProfile", &ServerProfile::Table()},
      ServerComponent{"QDSVGLAccount.AccountInfo", &AccountInfo::Table()},
      ServerComponent{"QDSVGLAccount.AccountItemInfo", &AccountItemInfo::Table()},
      ServerComponent{"QDSVGLAccount.AccountUpdate", &AccountUpdate::Table()},
      ServerComponent{"QDSVGLAudit.AuditInfo", &AuditInfo::Table()},
      ServerComponent{"QDSVGLBalance.BalanceInfo", &BalanceInfo::Table()},
      ServerComponent{"QDSVGLBatch.BatchUpdate", &BatchUpdate::Table()},
      ServerComponent{"QDSVGLBooks.BooksInfo", &BooksInfo::Table()},
      ServerComponent{"QDSVGLBooks.BooksUpdate", &BooksUpdate::Table()},
      ServerComponent{"QDSVGLCurrency.CurrencyInfo", &CurrencyInfo::Table()},
      ServerComponent{"QDSVGLCurrency.CurrencyUpdate", &CurrencyUpdate::Table()},
      ServerComponent{"QDSVGLPeriod.PeriodUpdate", &PeriodUpdate::Table()},
      ServerComponent{"QDSVGLSession.SessionUpdate", &SessionUpdate::Table()},
      ServerComponent{"QDSVGLUser.UserInfo", &UserInfo::Table()},
      ServerComponent{"QDSVGLUser.UserUpdate", &UserUpdate::Table()},
      ServerComponent{"QDSVGLVoucher.VoucherInfo", &VoucherInfo::Table()},
      ServerComponent{"QDSVGLVoucher.VoucherUpdate", &VoucherUpdate::Table()},
      ServerComponent{"QDSVGLVoucherGroup.VoucherGroupInfo", &VoucherGroupInfo::Table()},
      ServerComponent{"QDSVGLVoucherGroup.VoucherGroupUpdate", &VoucherGroupUpdate::Table()},
  };
  return kComponents;
}

void RegisterServerComponents() {
  for (const ServerComponent& component : ServerComponents()) {
    RegisterComponent(component.prog_id, [table = component.table] { return table->Create(); });
  }
}

}  // namespace qdclgl::server
