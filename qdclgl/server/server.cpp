#include "qdclgl/server/server.h"

#include <array>

#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/login.h"
#include "qdclgl/server/books/batch.h"
#include "qdclgl/server/books/books.h"
#include "qdclgl/server/periods/period.h"
#include "qdclgl/server/periods/period_date.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/account.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/user.h"
#include "qdclgl/server/records/voucher_group.h"
#include "qdclgl/server/vouchers/balance.h"
#include "qdclgl/server/vouchers/voucher.h"

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
