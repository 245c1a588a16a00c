// The base currency, in which vouchers balance.
#pragma once

#include "qdclgl/frame/values/values.h"

namespace qdclgl::server {

// Its id.
inline constexpr Long kBaseCurrency = 1;

}  // namespace qdclgl::server
