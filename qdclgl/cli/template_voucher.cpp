#include "qdclgl/cli/template_voucher.h"

#include <algorithm>

#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/voucher_draft.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/vouchers/voucher_temp.h"

namespace qdclgl::cli {

namespace {

namespace refusal = server::refusal;

[[noreturn]] void Refuse(std::int32_t number, const std::string& sentence) {
  throw Error(number, "qdclgl", sentence);
}

Ref<VoucherTemp> TemplateOf(const std::string& name) {
  auto temps = Make<VoucherTempSet>();
  const bool is_id =
      !name.empty() && std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; });
  if (!is_id) {
    temps->Filter("FName = " + FilterText(name));
    if (temps->Count() > 1) {
      Refuse(refusal::kNameTaken,
             "Several templates are called " + Quoted(name) + "; name one by its id.");
    }
  }
  const Long id = is_id                 ? ReadWhole(name)
                  : temps->Count() == 0 ? 0
                                        : temps->GetCurrent()->VoucherTempID();
  const Ref<VoucherTemp> temp = temps->Item(id);
  if (temp->VoucherTempID() == 0) {
    Refuse(refusal::kNotFound, "There is no template " + Quoted(name) + ".");
  }
  return temp;
}

}  // namespace

Ref<Voucher> VoucherOf(const TemplateUse& use, const std::string& props) {
  const Ref<VoucherTemp> temp = TemplateOf(use.name);
  auto voucher = Make<Voucher>();
  voucher->Construct(Nothing, Nothing);
  voucher->VoucherDate(use.date.days != 0 ? use.date : DayInCurrentPeriod(props));
  if (use.group.empty()) voucher->GroupID(temp->GroupID());
  else voucher->Group(use.group);
  voucher->Reference(use.reference.empty() ? temp->Reference() : use.reference);
  voucher->Attachments(temp->Attachments());
  CopyLines(temp->Entries(), voucher->Entries());
  const Ref<VoucherEntrySet> lines = voucher->Entries();
  for (const auto& [number, amount] : use.amounts) {
    if (number < 1 || number > lines->Count()) {
      Refuse(refusal::kNoLines,
             "The template " + Quoted(use.name) + " has no line " + std::to_string(number) + ".");
    }
    PutAmount(*lines->Item(number), amount, voucher->VoucherDate());
  }
  Balance(*voucher);
  return voucher;
}

}  // namespace qdclgl::cli
