// The sheet of a multi-column ledger for people: a table for the terminal, a page for the printer.
#pragma once

#include "qdclgl/cli/console.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::cli {

// `sheet` is what GetLedger gives of `ledger`.
void WriteLedgerTable(const Console& console, const Dictionary& ledger, Recordset& sheet);
void WriteLedgerPage(const Console& console, const Dictionary& ledger, Recordset& sheet);

}  // namespace qdclgl::cli
