// The kind stands in voucher_group.cpp.
#pragma once

#include "qdclgl/server/records/kinds.h"
