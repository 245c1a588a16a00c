// A voucher as a text in an editor.
#pragma once

#include <string>

#include "qdclgl/cli/console.h"
#include "qdclgl/vouchers/voucher.h"

namespace qdclgl::cli {

// A stored voucher as the text of a journal; Error when such a text can't hold all of it.
std::string EditableText(const Dictionary& voucher);
// That of a voucher that is to be entered.
std::string EmptyText(DateTime day, const std::string& group);

enum class EditOutcome { kSaved, kUnchanged, kGivenUp };

// Has somebody change the text, and saves what it then says as the voucher. What is refused is
// shown beside its line and the editor opened again; who gives up finds the text in a file that is
// told on the error output.
EditOutcome EditVoucher(Voucher& voucher, const std::string& text, const Console& console);

}  // namespace qdclgl::cli
