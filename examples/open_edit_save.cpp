// Opens a voucher of books, changes a line and saves it: open-edit-save BOOK ID
#include <cstdio>
#include <cstdlib>

#include "qdclgl/qdclgl.h"
#include "qdclgl/server/server.h"

using namespace qdclgl;

static void Show(const char* step, Voucher& voucher) {
  auto line = voucher.Entries()->Item(1);
  std::printf("%-11s line 1: %s, debit %s, \"%s\"; modified: %s\n", step,
              line->AccountNumber().c_str(), line->Debit().ToText().c_str(),
              line->Explanation().c_str(), voucher.Modified() ? "yes" : "no");
}

int main(int count, char** arguments) {
  if (count != 3) return std::fputs("usage: open-edit-save BOOK ID\n", stderr), 2;
  try {
    server::RegisterServerComponents();
    CreateObject("QDSVGLSession.SessionUpdate")->Call("Login", arguments[1], "administrator", "");

    auto vouchers = Make<VoucherSet>();
    auto voucher = vouchers->Item(Long{std::atoi(arguments[2])});
    Show("opened", *voucher);

    auto line = voucher->Entries()->Item(1);
    line->Explanation(line->Explanation() + ", counted again");
    Show("changed", *voucher);

    voucher->SaveChanges();
    Show("saved", *voucher);
    Show("read again", *vouchers->Item(voucher->VoucherID()));
  } catch (const Error& error) {
    return std::fprintf(stderr, "%s\n", error.what()), 1;
  }
}
