// What a voucher costs in memory once it is loaded, by the C library's own count.
#include <malloc.h>

#include <utility>

#include "bench/sample.h"
#include "bench/work.h"
#include "qdclgl/vouchers/voucher.h"

namespace bench {

namespace {

using namespace qdclgl;

std::size_t BytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;  // small blocks, and those that are mapped one by one
}

// A voucher keeps the row that the server sent and the working copy, and so does the peer. Small
// ones are loaded by the hundred: the few blocks that the C library keeps at hand would hide one.
Memory LoadedVouchers(const std::string& name, std::int32_t lines, int count) {
  Memory memory{"a loaded voucher, " + name, 1.0 / 3, lines * count, 0, 0};
  std::vector<Ref<Voucher>> vouchers;
  vouchers.reserve(static_cast<std::size_t>(count));
  std::vector<std::pair<PeerRow, PeerRow>> peers(static_cast<std::size_t>(count));
  std::size_t before = BytesInUse();
  for (int i = 0; i < count; ++i) {
    vouchers.push_back(Make<Voucher>());
    vouchers.back()->Construct(OurDocument(lines), Nothing);
  }
  memory.ours = BytesInUse() - before;
  before = BytesInUse();
  for (auto& [received, working] : peers) {
    received = TheirDocument(lines);
    working = received;
  }
  memory.theirs = BytesInUse() - before;
  return memory;
}

}  // namespace

std::vector<Memory> MemoryOfVouchers() {
  return {LoadedVouchers("10 lines", 10, 1000), LoadedVouchers("1,000 lines", 1000, 10),
          LoadedVouchers("30,000 lines", 30000, 1)};
}

}  // namespace bench
