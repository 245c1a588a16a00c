#include "qdclgl/server/server.h"

#include <algorithm>
#include <vector>

#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/login.h"
#include "qdclgl/server/books/batch.h"
#include "qdclgl/server/books/books.h"
#include "qdclgl/server/ledgers/account_statement.h"
#include "qdclgl/server/ledgers/cash_flow.h"
#include "qdclgl/server/ledgers/line_search.h"
#include "qdclgl/server/ledgers/open_items.h"
#include "qdclgl/server/periods/period.h"
#include "qdclgl/server/periods/period_date.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/reports/report.h"
#include "qdclgl/server/reports/revaluation.h"
#include "qdclgl/server/reports/year_end.h"
#include "qdclgl/server/vouchers/balance.h"
#include "qdclgl/server/vouchers/voucher.h"

namespace qdclgl::server {

std::span<const ServerComponent> ServerComponents() {
  static const std::vector<ServerComponent> kComponents = [] {
    std::vector<ServerComponent> components = {
        ComponentOf<SessionUpdate>(), ComponentOf<CacheFacade>(),  ComponentOf<ShareProps>(),
        ComponentOf<AuditInfo>(),     ComponentOf<PeriodDate>(),   ComponentOf<ServerProfile>(),
        ComponentOf<BaseInfo>(),      ComponentOf<PeriodUpdate>(), ComponentOf<VoucherInfo>(),
        ComponentOf<VoucherUpdate>(), ComponentOf<BalanceInfo>(),  ComponentOf<BooksInfo>(),
        ComponentOf<BooksUpdate>(),   ComponentOf<BatchUpdate>(),  ComponentOf<StatementInfo>(),
        ComponentOf<LineInfo>(),      ComponentOf<OpenItemInfo>(), ComponentOf<CashFlowInfo>(),
        ComponentOf<ReportInfo>(),    ComponentOf<YearEndInfo>(),  ComponentOf<RevaluationInfo>(),
    };
    for (const MasterData* kind : MasterDataKinds()) {
      std::ranges::move(kind->Components(), std::back_inserter(components));
    }
    std::ranges::sort(components, {}, &ServerComponent::prog_id);
    return components;
  }();
  return kComponents;
}

void RegisterServerComponents() {
  for (const ServerComponent& component : ServerComponents()) {
    RegisterComponent(component.prog_id, component.make);
  }
}

}  // namespace qdclgl::server
