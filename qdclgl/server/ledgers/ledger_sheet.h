// A multi-column ledger as it is printed: what is posted on its account, line by line, and what of
// it falls under each of its columns.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// What a row of a sheet is, in its column FRow.
namespace sheet_row {
inline constexpr std::string_view kOpening = "Opening";  // what is brought forward
inline constexpr std::string_view kLine = "Line";        // a line of a voucher
inline constexpr std::string_view kPeriod = "Period";    // the sums of a period's lines above
inline constexpr std::string_view kYear = "Year";        // those of its year so far
inline constexpr std::string_view kClosing = "Closing";  // what is carried forward, and all sums
}  // namespace sheet_row

// The sheet of a ledger, a row as it is read with its lists, from one day to another; day 0 stands
// for the first day of the current year, and for the last day of the year that the sheet begins in.
//
// Behind FRow stand the line (FDate, FYear, FPeriod, FVoucherID, FEntryID, FGroup, FNumber,
// FAccountNumber, FExplanation), FDebit and FCredit, and the balance behind the row: FDC is 1 for
// debit, -1 for credit, 0 for none, and FBalance the amount without its sign. Then for each
// sub-column FSub1Debit, FSub1Credit and FSub1Rate, the line in that currency, and for each column
// FColumn1, and FColumn1Sub1 for each sub-column.
//
// A column counts the lines of the vouchers that stand on its account, or below it, on its side.
// Lines of the ledger's own account count in their own rows, others in the first row that their
// voucher has: so nothing counts twice.
//
// BadValue for days that no period has, and for a last day before the first one.
Ref<Recordset> LedgerSheet(Database& db, const Dictionary& ledger, DateTime from, DateTime to);

}  // namespace qdclgl::server
