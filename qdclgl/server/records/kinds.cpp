#include "qdclgl/server/records/kinds.h"

#include <array>

namespace qdclgl::server {

// Each kind's function stands in the file of this folder that describes it.
// clang-format off
// BEGIN kinds (scripts/update-derived)
const MasterData& Accounts();
const MasterData& Currencies();
const MasterData& ItemClasses();
const MasterData& Users();
const MasterData& VoucherGroups();

std::span<const MasterData* const> MasterDataKinds() {
  static const std::array kKinds = {
      &Accounts(),
      &Currencies(),
      &ItemClasses(),
      &Users(),
      &VoucherGroups(),
  };
  return kKinds;
}
// END kinds
// clang-format on

}  // namespace qdclgl::server
