// Vouchers that the server proposes: shown, then saved as a whole or not at all.
#pragma once

#include <functional>
#include <string>

#include "qdclgl/cli/console.h"
#include "qdclgl/frame/containers/recordset.h"

namespace qdclgl::cli {

// Asks the server for them; a row for each voucher.
using Propose = std::function<Ref<Recordset>()>;

// A table of their lines.
void WriteProposedVouchers(const Console& console, Recordset& vouchers);

// Saves them in one batch, in which they are asked for anew, and takes them through check and
// posting where the rules of the books let this user do so. Tells what is made.
void SaveProposedVouchers(const std::string& props, const Propose& propose, const Console& console);

}  // namespace qdclgl::cli
