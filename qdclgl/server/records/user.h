// The kind stands in user.cpp.
#pragma once

#include "qdclgl/server/records/kinds.h"
