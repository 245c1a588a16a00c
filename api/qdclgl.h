// Everything a program needs of the library.
#pragma once

#include "frame/collection.h"
#include "frame/conversions.h"
#include "frame/deep_copy.h"
#include "frame/dictionary.h"
#include "frame/enumeration.h"
#include "frame/errors.h"
#include "frame/late_bound.h"
#include "frame/properties.h"
#include "frame/recordset.h"
#include "frame/server_gateway.h"
#include "frame/session.h"
#include "frame/strings.h"
#include "frame/transaction_context.h"
#include "frame/vector.h"
#include "vouchers/voucher_group.h"
#include "vouchers/voucher_set.h"
