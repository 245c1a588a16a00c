// Closing and reopening accounting periods.
#pragma once

#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class PeriodUpdate final : public Object {
  QD_MEMBERS(PeriodUpdate, Object, Creatable, "Closes and reopens accounting periods.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLPeriod.PeriodUpdate";
  static constexpr MethodRight kRights[] = {
      {"Close", {Role::kPoster, "close periods"}},
      {"Reopen", {Role::kPoster, "reopen periods"}},
      {"ReopenTo", {Role::kAdministrator, "reopen periods that have postings behind them"}}};

  QD_METHOD(void, Close, (std::string_view PropsString),
            "Closes the current period: the books move on to the next one, and settings "
            "CurrentYear and CurrentPeriod of GL with them. NotAllPosted when a voucher of the "
            "period is not posted.")
  QD_METHOD(void, Reopen, (std::string_view PropsString),
            "Goes back to the period before. LaterPostings when a voucher is posted in the current "
            "period or behind it, FirstPeriod when the books begin with it.")
  QD_METHOD(void, ReopenTo, (std::string_view PropsString, Long nYear, Long Period),
            "Goes back to a closed period whatever is posted behind it. Its vouchers and those of "
            "all later periods stay as they are; the periods are open and have to be closed anew, "
            "one by one. BadValue for a period that is not closed, FirstPeriod before the books' "
            "first one.")
};

}  // namespace qdclgl::server
