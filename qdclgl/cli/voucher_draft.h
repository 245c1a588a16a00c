// A voucher while a command puts it together.
#pragma once

#include <string>

#include "qdclgl/cli/console.h"
#include "qdclgl/qdclgl.h"

namespace qdclgl::cli {

// The group of vouchers that name none.
inline constexpr const char* kUsualGroup = "General";

// Today or, where today is not in the current period, that period's nearest day.
DateTime DayInCurrentPeriod(const std::string& props);

// Copies of lines, with all that is in them, behind those that are there.
void CopyLines(const Ref<VoucherEntrySet>& from, const Ref<VoucherEntrySet>& to);

// Gives a line its amount, which is in the line's currency. A line without a rate gets that of the
// day or, where none is kept, the currency's.
void PutAmount(VoucherEntry& line, Currency amount, DateTime day);

// Gives the one line without an amount what the others lack, on its side. NotBalanced when there
// are more of them.
void Balance(Voucher& voucher);

// Tells what a new voucher has become.
void TellDraft(Voucher& voucher, const Console& console);
// Saves it first.
void SaveDraft(Voucher& voucher, const Console& console);

}  // namespace qdclgl::cli
