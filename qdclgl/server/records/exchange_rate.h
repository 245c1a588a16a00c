// Exchange rates by day.
#pragma once

#include <optional>
#include <string>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

struct RateOfDay {
  Double rate;
  std::string day;  // of the rate: the last one not behind the day that was asked for
};

// The rate that holds on a day; nothing where none does yet.
std::optional<RateOfDay> RateOn(Database& db, Long currency, DateTime day);

}  // namespace qdclgl::server
