#include "qdclgl/server/books/trailed_kinds.h"

#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

namespace {

std::map<Long, TrailedRecord> TrailedVouchers(Database& db, Long first, Long last) {
  std::map<Long, TrailedRecord> records;
  for (const VoucherTree& tree : VoucherTree::ReadRange(db, first, last)) {
    records[tree.state.Get<"FVoucherID">()] = {tree.Name(),
                                               tree.Trail(VoucherTree::Trailing::kWhole)};
  }
  return records;
}

}  // namespace

const std::vector<TrailedKind>& TrailedKinds() {
  static const std::vector<TrailedKind> kKinds = [] {
    std::vector<TrailedKind> kinds = {{"Voucher", "t_Voucher", "FVoucherID", TrailedVouchers}};
    for (const MasterData* kind : MasterDataKinds()) {
      kinds.push_back(
          {kind->subject(), kind->description().table, kind->description().id,
           [kind](Database& db, Long first, Long last) { return kind->Trailed(db, first, last); }});
    }
    return kinds;
  }();
  return kKinds;
}

}  // namespace qdclgl::server
