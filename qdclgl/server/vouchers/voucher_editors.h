// Who had a hand in a voucher: who saved it last stands in its header, all others in a table of
// their own. So nobody's part is forgotten, and a voucher that one person makes costs nothing more.
#pragma once

#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

// Notes down that the user has changed the voucher.
void AddEditor(Database& db, const VoucherTree& tree, Long user_id);

// Whether the user made the voucher or changed any part of it.
bool HadAHandIn(Database& db, const VoucherTree& tree, Long user_id);

// Forgets the editors of a voucher that is removed for good.
void RemoveEditors(Database& db, Long voucher_id);

}  // namespace qdclgl::server
