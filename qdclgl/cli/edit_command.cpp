// Vouchers as texts in an editor.
#include "qdclgl/cli/program.h"
#include "qdclgl/cli/steps.h"
#include "qdclgl/cli/voucher_editor.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

struct EditOptions {
  Login login;
  std::vector<Long> ids;
};

int Edit(const EditOptions& options, const Console& console) {
  if (options.ids.size() != 1) throw UsageError("edit takes one ID");
  const std::string props = options.login.Open();
  const Ref<Voucher> voucher = OpenVoucher(*Make<VoucherSet>(), options.ids.front());
  const auto row = CreateObject("QDSVGLVoucher.VoucherInfo")
                       ->Call("GetDetail", props, voucher->VoucherID())
                       .As<Dictionary>();
  switch (EditVoucher(*voucher, EditableText(*row), console)) {
    case EditOutcome::kSaved:
      console.out << "Voucher " << voucher->VoucherID() << " is saved.\n";
      return kDone;
    case EditOutcome::kUnchanged: console.out << "Nothing is changed.\n"; return kDone;
    case EditOutcome::kGivenUp: return kRefused;
  }
  return kRefused;
}

}  // namespace

void AddEditCommand(Program& program) {
  const auto options = std::make_shared<EditOptions>();
  program.AddForVouchers("edit", "Changes a voucher in an editor", options->login, options->ids,
                         [options, &program] { return Edit(*options, program.console()); });
}

}  // namespace qdclgl::cli
