// The kind stands in account.cpp.
#pragma once

#include "qdclgl/server/records/kinds.h"
