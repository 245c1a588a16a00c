#include "qdclgl/cli/import_undo.h"

#include <array>
#include <string_view>

#include "qdclgl/cli/batch.h"
#include "qdclgl/cli/cell_values.h"
#include "qdclgl/cli/table.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

namespace {

constexpr const char* kInfo = "QDSVGLImport.ImportInfo";

Ref<Dictionary> ImportNumbered(const std::string& props, const std::string& number) {
  const auto import =
      CreateObject(kInfo)->Call("GetDetailByNumber", props, number).As<Dictionary>();
  if (import) return import;
  throw Error(server::refusal::kNotFound, "qdclgl", "There is no import " + Quoted(number) + ".");
}

std::string Vouchers(Long count) {
  return std::to_string(count) + (count == 1 ? " voucher" : " vouchers");
}

void TellWhatGoes(const Dictionary& import, const Ref<Recordset>& vouchers,
                  const Console& console) {
  console.out << "This removes " << Vouchers(vouchers->RecordCount()) << " of import "
              << OneLine(CellText(import.Value("FNumber"))) << " ("
              << OneLine(CellText(import.Value("FName"))) << ", " << CellText(import.Value("FTime"))
              << ", " << OneLine(CellText(import.Value("FUserName"))) << "):\n\n";
  constexpr std::array<std::string_view, 6> kShown = {"FVoucherID", "FDate",        "FVoucher",
                                                      "FReference", "FExplanation", "FDebitTotal"};
  WriteRecordset(console, Format::kPlain, vouchers, kShown);
  console.out << '\n';
}

}  // namespace

int UndoImport(const ImportUndo& wanted, const std::string& props, const Console& console) {
  const Ref<Dictionary> import = ImportNumbered(props, wanted.import);
  const Variant id = import->Value("FImportID");
  const auto vouchers = CreateObject(kInfo)->Call("GetVouchers", props, id).As<Recordset>();
  const auto take_out = [&] {
    return CreateObject("QDSVGLImport.ImportUpdate")->Call("TakeOut", props, id).As<Long>();
  };
  const bool is_any_left = !vouchers->Eof();
  if (is_any_left) TellWhatGoes(*import, vouchers, console);
  if (wanted.dry_run) {
    const Trial trial(props);
    take_out();
    console.out << "That is what it would do; nothing is removed.\n";
    return kDone;
  }
  if (is_any_left && !wanted.yes && !IsAgreed(console, "Remove them?")) {
    console.out << "Nothing is removed.\n";
    return kRefused;
  }
  const Long count = take_out();
  console.out << Vouchers(count) << " of import " << OneLine(CellText(import->Value("FNumber")))
              << (count == 1 ? " is" : " are") << " removed.\n";
  return kDone;
}

}  // namespace qdclgl::cli
