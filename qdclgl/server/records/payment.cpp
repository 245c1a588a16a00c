// Payment terms, in days, kept within a calendar.
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record_save.h"
#include "qdclgl/server/records/settlement.h"

namespace qdclgl::server {

namespace {

constexpr std::pair<std::string_view, Long> kLargest[] = {
    {"FBeforeDays", 999}, {"FMonthPayDay", 31}, {"FStandDays", 999}};

void Check(RecordSave& save) {
  CheckSettlement(save);
  for (const auto& [column, largest] : kLargest) {
    const Long days = save.Number(column);
    if (days >= 0 && days <= largest) continue;
    save.Refuse(refusal::kBadValue,
                std::string(column) + " is 0 to " + std::to_string(largest) + ".");
  }
}

}  // namespace

const MasterData& Payments() {
  using enum ColumnType;
  static const MasterData kKind(SettlementDictionary({
      .component = "QDSVGLPayment.Payment",
      .noun = "payment term",
      .nouns = "payment terms",
      .list = {"payment-terms", "Lists the payment terms",
               "FNumber FName FType FBeforeDays FMonthPayDay FStandDays"},
      .table = "t_Payment",
      .id = "FItemID",
      .key = {.column = "FNumber", .ignores_case = true},
      .columns = {{{"FBeforeDays", kInteger}},
                  {{"FMonthPayDay", kInteger}},
                  {{"FType", kText}, Keeper::kCaller, "1"},
                  {{"FStandDays", kInteger}}},
      .check = Check,
  }));
  return kKind;
}

}  // namespace qdclgl::server
