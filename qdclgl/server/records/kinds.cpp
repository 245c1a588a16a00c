#include "qdclgl/server/records/kinds.h"

#include <array>

namespace qdclgl::server {

// Each kind's function stands in the file that describes it.
// clang-format off
// BEGIN kinds (scripts/update-derived)
const MasterData& MultiLedgers();
const MasterData& Accounts();
const MasterData& CheckTypes();
const MasterData& Currencies();
const MasterData& ExchangeRates();
const MasterData& Items();
const MasterData& ItemClasses();
const MasterData& MeasureUnits();
const MasterData& Notes();
const MasterData& Payments();
const MasterData& SettAccts();
const MasterData& SettTypes();
const MasterData& SubMessages();
const MasterData& SubMessageTypes();
const MasterData& UnitGroups();
const MasterData& Users();
const MasterData& VoucherGroups();
const MasterData& Budgets();
const MasterData& Imports();
const MasterData& VoucherTemps();

std::span<const MasterData* const> MasterDataKinds() {
  static const std::array kKinds = {
      &MultiLedgers(),
      &Accounts(),
      &CheckTypes(),
      &Currencies(),
      &ExchangeRates(),
      &Items(),
      &ItemClasses(),
      &MeasureUnits(),
      &Notes(),
      &Payments(),
      &SettAccts(),
      &SettTypes(),
      &SubMessages(),
      &SubMessageTypes(),
      &UnitGroups(),
      &Users(),
      &VoucherGroups(),
      &Budgets(),
      &Imports(),
      &VoucherTemps(),
  };
  return kKinds;
}
// END kinds
// clang-format on

}  // namespace qdclgl::server
