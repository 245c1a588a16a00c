// Everything a program needs of the library.
//
// What this header reaches is for users and is installed; in it, namespace `detail` and macros that
// begin with QD_IMPL_ are not for users.
#pragma once

#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/containers/collection.h"
#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/entities/properties.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/objects/enumeration.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/session/transaction_context.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/errors.h"
#include "qdclgl/frame/vocabulary/strings.h"
#include "qdclgl/version.h"

// The classes of the subsystems.
// BEGIN headers (scripts/update-derived)
#include "qdclgl/accounts/account.h"
#include "qdclgl/accounts/account_set.h"
#include "qdclgl/accounts/currency.h"
#include "qdclgl/ledgers/multi_column.h"
#include "qdclgl/ledgers/multi_ledger.h"
#include "qdclgl/ledgers/multi_ledger_set.h"
#include "qdclgl/ledgers/multi_sub_column.h"
#include "qdclgl/masterdata/check_type.h"
#include "qdclgl/masterdata/measure_unit.h"
#include "qdclgl/masterdata/measure_unit_group.h"
#include "qdclgl/masterdata/payment.h"
#include "qdclgl/masterdata/sett_acct.h"
#include "qdclgl/masterdata/sett_type.h"
#include "qdclgl/masterdata/sub_mes.h"
#include "qdclgl/masterdata/sub_mes_type.h"
#include "qdclgl/notes/note.h"
#include "qdclgl/settings/system_profile.h"
#include "qdclgl/vouchers/voucher.h"
#include "qdclgl/vouchers/voucher_detail.h"
#include "qdclgl/vouchers/voucher_entry.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "qdclgl/vouchers/voucher_set.h"
#include "qdclgl/vouchers/voucher_temp.h"
// END headers
