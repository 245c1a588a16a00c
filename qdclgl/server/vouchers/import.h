// What an import keeps of its vouchers.
#pragma once

#include <string>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// A hash over the ids of the vouchers of an import, in their order: the hash of all before a
// voucher, "" for the first one, and its id.
std::string HashWithVoucher(const std::string& before, Long voucher_id);

}  // namespace qdclgl::server
