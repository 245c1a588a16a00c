#include "qdclgl/api/class_list.h"

#include <array>

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/accounts/currency.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/ledgers/multi_ledger_set.h"
#include "qdclgl/masterdata/check_type.h"
#include "qdclgl/masterdata/item.h"
#include "qdclgl/masterdata/item_class.h"
#include "qdclgl/masterdata/measure_unit_group.h"
#include "qdclgl/masterdata/payment.h"
#include "qdclgl/masterdata/sett_acct.h"
#include "qdclgl/masterdata/sett_type.h"
#include "qdclgl/masterdata/sub_mes.h"
#include "qdclgl/masterdata/sub_mes_type.h"
#include "qdclgl/notes/note.h"
#include "qdclgl/settings/system_profile.h"
#include "qdclgl/vouchers/voucher_group.h"
#include "qdclgl/vouchers/voucher_set.h"
#include "qdclgl/vouchers/voucher_temp.h"

namespace qdclgl {

std::span<const ClassTable* const> PublicClasses() {
  static const std::array kClasses = {
      // Of the frame.
      &Property::Table(), &Properties::Table(),
      // Of the subsystems.
      // clang-format off
      // BEGIN classes (scripts/update-derived)
      &Account::Table(),
      &AccountSet::Table(),
      &Currencyx::Table(),
      &CurrencySet::Table(),
      &MultiColumn::Table(),
      &MultiColumnSet::Table(),
      &MultiLedger::Table(),
      &MultiLedgerSet::Table(),
      &MultiSubColumn::Table(),
      &MultiSubColumnSet::Table(),
      &CheckType::Table(),
      &CheckTypeSet::Table(),
      &CustomProperty::Table(),
      &CustomPropertySet::Table(),
      &WalkCustomPropertySet::Table(),
      &Item::Table(),
      &ItemSet::Table(),
      &ItemClass::Table(),
      &ItemClassSet::Table(),
      &MeasureUnit::Table(),
      &MeasureUnitSet::Table(),
      &MeasureUnitGroup::Table(),
      &MeasureUnitGroupSet::Table(),
      &Payment::Table(),
      &PaymentSet::Table(),
      &SettAcct::Table(),
      &SettAcctSet::Table(),
      &SettType::Table(),
      &SettTypeSet::Table(),
      &SubMes::Table(),
      &SubMesSet::Table(),
      &SubMesType::Table(),
      &SubMesTypeSet::Table(),
      &Note::Table(),
      &NoteSet::Table(),
      &SystemProfile::Table(),
      &Voucher::Table(),
      &VoucherDetail::Table(),
      &VoucherDetailSet::Table(),
      &VoucherEntry::Table(),
      &VoucherEntrySet::Table(),
      &VoucherGroup::Table(),
      &VoucherGroupSet::Table(),
      &VoucherSet::Table(),
      &VoucherTemp::Table(),
      &VoucherTempSet::Table(),
      // END classes
      // clang-format on
  };
  return kClasses;
}

const ClassTable* FindPublicClass(std::string_view name) {
  for (const ClassTable* table : PublicClasses()) {
    if (EqualsIgnoringAsciiCase(table->name(), name)) return table;
  }
  return nullptr;
}

Ref<Object> CreatePublicObject(std::string_view name) {
  const ClassTable* table = FindPublicClass(name);
  if (table == nullptr) {
    throw Error(error_number::kCannotCreateObject, "QDCLGL",
                "There is no class " + std::string(name) + ".");
  }
  return table->Create();
}

}  // namespace qdclgl
