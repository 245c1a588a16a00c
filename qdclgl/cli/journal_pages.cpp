#include "qdclgl/cli/journal_pages.h"

#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

Ref<Dictionary> JournalPages::Next() {
  const bool is_read = page_ && next_ == page_->size();
  if (is_read && page_->size() < static_cast<std::size_t>(kPageSize)) return nullptr;
  if (!page_ || is_read) ReadPage();
  if (page_->size() == 0) return nullptr;
  const auto voucher = page_->at(next_++).As<Dictionary>();
  from_ = voucher->Value("FDate").As<DateTime>();
  after_ = voucher->Value("FVoucherID").As<Long>();
  return voucher;
}

void JournalPages::ReadPage() {
  page_ = CreateObject("QDSVGLVoucher.VoucherInfo")
              ->Call("GetJournal", props_, from_, after_, to_, kPageSize)
              .As<Vector>();
  next_ = 0;
}

}  // namespace qdclgl::cli
