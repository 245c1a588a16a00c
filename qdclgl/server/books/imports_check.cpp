#include "qdclgl/server/books/imports_check.h"

#include "qdclgl/server/vouchers/import.h"

namespace qdclgl::server {

void CheckImports(Database& db, Findings& findings) {
  for (const auto& [id, number, count, hash] : db.Query<Long, std::string, Long, std::string>(
           "SELECT FImportID, FNumber, FVoucherCount, FVoucherHash FROM t_Import"
           " ORDER BY FImportID")) {
    Long found = 0;
    std::string found_hash;
    for (const auto& [voucher] : db.Query<Long>(
             "SELECT FVoucherID FROM t_ImportVoucher WHERE FImportID = ? ORDER BY FVoucherID",
             id)) {
      ++found;
      found_hash = HashWithVoucher(found_hash, voucher);
    }
    if (found != count || found_hash != hash) {
      findings.Add("ImportVouchers", "Import", id, number,
                   "The vouchers that came with it are not those that it tells.");
    }
  }
  findings.AddRows(db, "ImportVouchers", "Import", "There is no such import, and vouchers name it.",
                   "SELECT DISTINCT FImportID, '' FROM t_ImportVoucher v WHERE NOT EXISTS (SELECT 1"
                   " FROM t_Import i WHERE i.FImportID = v.FImportID) ORDER BY 1");
}

}  // namespace qdclgl::server
