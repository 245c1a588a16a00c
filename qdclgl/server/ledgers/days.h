// The days that a sheet or a statement is of.
#pragma once

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

struct Days {
  Calendar calendar;
  DateTime from, to;
  Long first_year;
  AccountingPeriod last;
  DateTime year_start;  // of the first year

  // Day 0 stands for the first day of the current year, and for the last day of the year that the
  // days begin in. BadValue for days that no period has, and for a last day before the first one.
  static Days Of(Database& db, DateTime from, DateTime to);
};

}  // namespace qdclgl::server
