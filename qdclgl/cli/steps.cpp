#include "qdclgl/cli/steps.h"

#include <optional>

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/progress.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

[[noreturn]] void RefuseStep(Long id, const std::string& reason) {
  throw Error(server::refusal::kWrongStep, "qdclgl",
              "Voucher " + std::to_string(id) + ": " + reason);
}

// The voucher itself passes over an approval that its state does not allow, in silence.
void Approve(VoucherSet& vouchers, Long id) {
  const Ref<Voucher> voucher = OpenVoucher(vouchers, id);
  if (voucher->ApproveID() > 0) RefuseStep(id, "it is approved already.");
  voucher->Approve();
  if (voucher->ApproveID() <= 0) RefuseStep(id, "it is not checked, or posted already.");
}

void UnApprove(VoucherSet& vouchers, Long id) {
  const Ref<Voucher> voucher = OpenVoucher(vouchers, id);
  if (voucher->ApproveID() <= 0) RefuseStep(id, "it is not approved.");
  voucher->UnApprove();
  if (voucher->ApproveID() > 0) RefuseStep(id, "it is posted.");
}

constexpr Step kSteps[] = {
    {"check", "Checks vouchers", "FChecked = FALSE AND FPosted = FALSE", "checked",
     [](VoucherSet& vouchers, Long id) { vouchers.Check(id, true); }},
    {"uncheck", "Takes checks back", "FChecked = TRUE AND FPosted = FALSE AND FApproveID < 1",
     "unchecked", [](VoucherSet& vouchers, Long id) { vouchers.Check(id, false); }},
    {"approve", "Approves checked vouchers",
     "FChecked = TRUE AND FPosted = FALSE AND FApproveID < 1", "approved", Approve},
    {"unapprove", "Takes approvals back", "FPosted = FALSE AND FApproveID > 0", "unapproved",
     UnApprove},
    {"cash", "Marks vouchers as cashed", "FCashierID < 1", "cashed",
     [](VoucherSet& vouchers, Long id) { vouchers.Cash(id, true); }},
    {"uncash", "Takes the cashing back", "FCashierID > 0", "uncashed",
     [](VoucherSet& vouchers, Long id) { vouchers.Cash(id, false); }},
    {"post", "Posts vouchers into the balances", "FPosted = FALSE", "posted",
     [](VoucherSet& vouchers, Long id) { vouchers.Post(id); }},
    {"unpost", "Takes postings back", "FPosted = TRUE", "unposted",
     [](VoucherSet& vouchers, Long id) { vouchers.UnPost(id); }},
    {"remove", "Deletes vouchers; their numbers stay taken",
     "FChecked = FALSE AND FPosted = FALSE AND FCashierID < 1", "removed",
     [](VoucherSet& vouchers, Long id) { vouchers.Remove(id); }},
};

}  // namespace

Ref<Voucher> OpenVoucher(VoucherSet& vouchers, Long id) {
  Ref<Voucher> voucher = vouchers.Item(id);
  if (voucher->VoucherID() == 0) {
    throw Error(server::refusal::kNotFound, "qdclgl",
                "There is no voucher with the id " + std::to_string(id) + ".");
  }
  return voucher;
}

std::span<const Step> Steps() { return kSteps; }

const Step& StepNamed(std::string_view name) {
  for (const Step& step : kSteps) {
    if (step.name == name) return step;
  }
  RaiseError(error_number::kInvalidCall);
}

ExitCode TakeStep(const Step& step, const std::vector<Long>& ids, const std::string& props,
                  const Console& console) {
  Progress progress(console);
  const auto vouchers = Make<VoucherSet>();
  std::size_t done = 0;
  std::optional<Batch> batch;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (i % Batch::kSize == 0) {
      if (batch) batch->Commit();
      batch.emplace(props);
    }
    try {
      step.take(*vouchers, ids[i]);
      ++done;
    } catch (const Error& error) {
      if (!IsAboutRecord(error)) throw;
      progress.Clear();
      console.err << "qdclgl: " << ErrorText(error) << '\n';
    }
    progress.Show(std::string("vouchers ") + step.done, static_cast<long>(done),
                  static_cast<double>(i + 1) / static_cast<double>(ids.size()));
  }
  if (batch) batch->Commit();
  progress.Clear();
  console.out << done << (done == 1 ? " voucher " : " vouchers ") << step.done << ".\n";
  return OutcomeOf(done, ids.size());
}

ExitCode TakeStepOnAll(const Step& step, const std::string& props, const Console& console) {
  const auto vouchers = Make<VoucherSet>();
  vouchers->Filter(step.filter);
  vouchers->Refresh();
  const Ref<Recordset> rows = vouchers->RecordSet();
  const Long id_at = rows->FieldPosition("FVoucherID");
  std::vector<Long> ids;
  for (; !rows->Eof(); rows->MoveNext()) ids.push_back(rows->FieldValue(id_at).As<Long>());
  rows->Close();
  return TakeStep(step, ids, props, console);
}

}  // namespace qdclgl::cli
