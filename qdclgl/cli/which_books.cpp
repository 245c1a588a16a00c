#include "qdclgl/cli/which_books.h"

#include "qdclgl/cli/one_line.h"
#include "qdclgl/cli/table.h"

namespace qdclgl::cli {

std::string WhichBooks(const Dictionary& account) {
  const Long vouchers = account.Value("FVouchers").As<Long>();
  std::string text = "version " + CellText(account.Value("FVersion")) + ", " +
                     std::to_string(vouchers) + (vouchers == 1 ? " voucher" : " vouchers");
  if (vouchers > 0) {
    text += ", the last one " + CellText(account.Value("FVoucher")) + " of " +
            CellText(account.Value("FDate"));
  }
  return OneLine(text + ", audit head " + CellText(account.Value("FHead")));
}

}  // namespace qdclgl::cli
