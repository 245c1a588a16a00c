// What people call a voucher, "2024/1 Receipts 5", in SQL.
#pragma once

#include <string_view>

namespace qdclgl::server {

// The text, for the tables v and g of kFromVouchers.
inline constexpr std::string_view kVoucherName =
    "CAST(v.FYear AS TEXT) || '/' || CAST(v.FPeriod AS TEXT) || ' ' || COALESCE(g.FName, '?') ||"
    " ' ' || CAST(v.FNumber AS TEXT)";
inline constexpr std::string_view kFromVouchers =
    " FROM t_Voucher v LEFT JOIN t_VoucherGroup g ON g.FGroupID = v.FGroupID";

}  // namespace qdclgl::server
