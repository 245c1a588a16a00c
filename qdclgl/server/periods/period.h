// Closing and reopening accounting periods.
#pragma once

#include "qdclgl/frame/objects/members.h"

namespace qdclgl::server {

// "QDSVGLPeriod.PeriodUpdate": a component of this server.
class PeriodUpdate final : public Object {
  QD_MEMBERS(PeriodUpdate, Object, Creatable, "Closes and reopens accounting periods.")

 public:
  QD_METHOD(void, Close, (std::string_view PropsString),
            "Closes the current period: the books move on to the next one, and settings "
            "CurrentYear and CurrentPeriod of GL with them. NotAllPosted when a voucher of the "
            "period is not posted.")
  QD_METHOD(void, Reopen, (std::string_view PropsString),
            "Goes back to the period before. LaterPostings when a voucher is posted in the current "
            "period or behind it, FirstPeriod when the books begin with it.")
};

}  // namespace qdclgl::server
