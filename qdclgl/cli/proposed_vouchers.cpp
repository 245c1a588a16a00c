#include "qdclgl/cli/proposed_vouchers.h"

#include <unordered_map>
#include <vector>

#include "qdclgl/accounts/account_set.h"
#include "qdclgl/accounts/currency.h"
#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/chart.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/cli/voucher_draft.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/settings/system_profile.h"

namespace qdclgl::cli {

namespace {

Ref<Vector> LinesOf(const Dictionary& voucher) { return voucher.Value("_Entries").As<Vector>(); }

// The items of a line, by their numbers.
std::string ItemsOf(const Dictionary& line) {
  const Variant details = line.Value("_Details");
  if (!details.IsObject()) return "";
  std::string items;
  const auto list = details.As<Vector>();
  for (std::size_t i = 0; i < list->size(); ++i) {
    const auto item =
        CreateObject("QDSVGLItems.ItemInfo")
            ->Call("GetDetail", GetPropsString(), list->at(i).As<Dictionary>()->Value("FItemID"))
            .As<Dictionary>();
    if (item) items += (items.empty() ? "" : ", ") + item->Value("FNumber").As<String>();
  }
  return items;
}

bool IsForbidden(const Error& error) {
  return error.number() == server::refusal::kOwnVoucher ||
         error.number() == server::refusal::kNotPermitted;
}

// Whether the step could be taken with all of them; another refusal than one of rights is an error.
bool TakeStepWithAll(const char* name, const std::vector<Long>& ids, const Console& console) {
  const Step& step = StepNamed(name);
  const auto vouchers = Make<VoucherSet>();
  try {
    for (const Long id : ids) step.take(*vouchers, id);
    return true;
  } catch (const Error& error) {
    if (!IsForbidden(error)) throw;
    console.err << "qdclgl: " << ErrorText(error) << '\n';
    return false;
  }
}

}  // namespace

void WriteProposedVouchers(const Console& console, Recordset& vouchers) {
  const auto accounts = Make<AccountSet>();
  const auto currencies = Make<CurrencySet>();
  TableWriter table(console, Format::kPlain,
                    {"FAccountNumber", "FAccountName", "Items", "FCurrencyNumber", "FAmountFor",
                     "FDebit", "FCredit"});
  table.AlignRight(4);
  for (; !vouchers.Eof(); vouchers.MoveNext()) {
    const Ref<Vector> lines = LinesOf(*vouchers.Row());
    for (std::size_t i = 0; i < lines->size(); ++i) {
      const auto line = lines->at(i).As<Dictionary>();
      const Ref<Account> account = accounts->Item(line->Value("FAccountID"));
      const auto currency = line->Value("FCurrencyID").As<Long>();
      const bool is_foreign = currency != Names::kBaseCurrency;
      const bool is_debit = line->Value("FDC").As<Long>() == 1;
      const Variant amount = line->Value("FAmount"), none = "";
      table.Row({WithoutOwnLines(account->Number()), account->Name(), ItemsOf(*line),
                 is_foreign ? Variant(currencies->Item(currency)->Number()) : none,
                 is_foreign ? line->Value("FAmountFor") : none, is_debit ? amount : none,
                 is_debit ? none : amount},
                currency);
    }
  }
  table.Finish();
}

void SaveProposedVouchers(const std::string& props, const Propose& propose,
                          const Console& console) {
  Batch batch(props);
  const Ref<Recordset> vouchers = propose();
  std::vector<Long> ids;
  for (; !vouchers->Eof(); vouchers->MoveNext()) {
    const Ref<Dictionary> voucher = vouchers->Row();
    voucher->Put("FGroup", kUsualGroup);
    ids.push_back(
        CreateObject("QDSVGLVoucher.VoucherUpdate")->Call("Create", props, voucher).As<Long>());
  }
  const bool is_checked =
      !Make<SystemProfile>()->GLGetCheckBeforePost() || TakeStepWithAll("check", ids, console);
  const bool is_posted = is_checked && TakeStepWithAll("post", ids, console);
  batch.Commit();
  for (const Long id : ids) {
    const Ref<Voucher> voucher = OpenVoucher(*Make<VoucherSet>(), id);
    TellDraft(*voucher, console);
  }
  if (is_posted) return;
  console.out << "Somebody else has to take " << (ids.size() == 1 ? "it" : "them") << " through "
              << (is_checked ? "posting" : "check and posting") << ".\n";
}

}  // namespace qdclgl::cli
