// The vouchers of the books in the order of date and id, as rows with lines and details: a page at
// a time, so that what is held does not grow with the books.
#pragma once

#include <string>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"

namespace qdclgl::cli {

class JournalPages {
 public:
  // From the first day to the last one; day 0 is no bound.
  JournalPages(std::string props, DateTime from, DateTime to)
      : props_(std::move(props)), from_(from), to_(to) {}

  // The next voucher, Nothing behind the last.
  Ref<Dictionary> Next();

 private:
  static constexpr Long kPageSize = 500;

  void ReadPage();

  std::string props_;
  DateTime from_, to_;
  Long after_ = 0;  // the last voucher of from_ that was given
  Ref<Vector> page_;
  std::size_t next_ = 0;
};

}  // namespace qdclgl::cli
