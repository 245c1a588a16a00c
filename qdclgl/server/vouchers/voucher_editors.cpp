#include "qdclgl/server/vouchers/voucher_editors.h"

namespace qdclgl::server {

void AddEditor(Database& db, const VoucherTree& tree, Long user_id) {
  db.ExecuteLater("INSERT INTO t_VoucherEditor (FVoucherID, FUserID) VALUES (?, ?)"
                  " ON CONFLICT (FVoucherID, FUserID) DO NOTHING",
                  tree.state.Get<"FVoucherID">(), user_id);
}

bool HadAHandIn(Database& db, const VoucherTree& tree, Long user_id) {
  return tree.state.Get<"FPreparerID">() == user_id ||
         db.QueryValue<int>("SELECT 1 FROM t_VoucherEditor WHERE FVoucherID = ? AND FUserID = ?",
                            tree.state.Get<"FVoucherID">(), user_id);
}

void RemoveEditors(Database& db, Long voucher_id) {
  db.ExecuteLater("DELETE FROM t_VoucherEditor WHERE FVoucherID = ?", voucher_id);
}

}  // namespace qdclgl::server
