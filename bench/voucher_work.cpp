// The voucher at work: live totals, a walk over its lines, and the way of one edit from the server
// and back.
#include "bench/sample.h"
#include "bench/work.h"
#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/vouchers/voucher_set.h"

namespace bench {

namespace {

using namespace qdclgl;

// A server that has one voucher and takes every save.
class NullServer final : public Object {
 public:
  std::string_view ClassName() const override { return "NullServer"; }
  Variant Invoke(std::string_view name, CallKind, std::span<Argument>) override {
    return name == "GetDetail" ? Variant(document) : Variant();
  }
  static inline Ref<Dictionary> document;
};

void UseNullServer(std::int32_t lines) {
  NullServer::document = OurDocument(lines);
  for (const char* component : {"QDSVGLVoucher.VoucherInfo", "QDSVGLVoucher.VoucherUpdate"}) {
    RegisterComponent(component, [] { return Ref<Object>(Make<NullServer>()); });
  }
}

Ref<Voucher> OurVoucher(std::int32_t lines) {
  auto voucher = Make<Voucher>();
  voucher->Construct(OurDocument(lines), Nothing);
  return voucher;
}

const std::string kEntries = "_Entries", kAmount = "FAmount", kSide = "FDC",
                  kAccount = "FAccountID";

PeerList& LinesOf(PeerRow& document) { return std::get<PeerList>(document.find(kEntries)->second); }

Work DebitTotal(const std::string& name, std::int32_t lines, int iterations) {
  return {"DebitTotal of " + name,
          0.6,
          lines,
          iterations,
          [lines](benchmark::State& state) {
            const auto voucher = OurVoucher(lines);
            for (auto _ : state) benchmark::DoNotOptimize(voucher->DebitTotal());
          },
          [lines](benchmark::State& state) {
            PeerRow document = TheirDocument(lines);
            for (auto _ : state) {
              std::int64_t sum = 0;
              for (const PeerRow& line : LinesOf(document)) {
                const bool debit = std::get<std::int32_t>(line.find(kSide)->second) == 1;
                const std::int64_t units = std::get<Amount>(line.find(kAmount)->second).units;
                sum += debit ? units : 0;
              }
              benchmark::DoNotOptimize(sum);
            }
          }};
}

Work WalkLines(const std::string& name, std::int32_t lines, int iterations) {
  return {"walk with two reads a line, " + name,
          0.8,
          lines,
          iterations,
          [lines](benchmark::State& state) {
            const auto voucher = OurVoucher(lines);
            for (auto _ : state) {
              std::int64_t sum = 0;
              for (auto& line : voucher->Entries()) sum += line.AccountID() + line.Amount().units();
              benchmark::DoNotOptimize(sum);
            }
          },
          [lines](benchmark::State& state) {
            PeerRow document = TheirDocument(lines);
            for (auto _ : state) {
              std::int64_t sum = 0;
              for (const PeerRow& line : LinesOf(document)) {
                sum += std::get<std::int32_t>(line.find(kAccount)->second) +
                       std::get<Amount>(line.find(kAmount)->second).units;
              }
              benchmark::DoNotOptimize(sum);
            }
          }};
}

// The peer copies its document as often as the voucher does: for the working data when it is
// opened, and again for the next round of edits when it is saved.
Work OpenEditSave(std::int32_t lines, int iterations) {
  return {"open, edit a line, save, 1,000 lines",
          kNoGoal,
          lines,
          iterations,
          [lines](benchmark::State& state) {
            UseNullServer(lines);
            const auto vouchers = Make<VoucherSet>();
            for (auto _ : state) {
              const auto voucher = vouchers->Item(4711);
              voucher->Entries()->Item(lines / 2)->Explanation("Goods returned");
              voucher->SaveChanges();
            }
          },
          [lines](benchmark::State& state) {
            const PeerRow server = TheirDocument(lines);
            for (auto _ : state) {
              PeerRow voucher = server;
              LinesOf(voucher)[static_cast<std::size_t>(lines / 2)]["FExplanation"] =
                  std::string("Goods returned");
              const PeerRow saved = voucher;
              benchmark::DoNotOptimize(saved);
            }
          }};
}

}  // namespace

std::vector<Work> VoucherWorks() {
  return {
      DebitTotal("10 lines", 10, 20000),
      DebitTotal("1,000 lines", 1000, 500),
      DebitTotal("30,000 lines", 30000, 8),
      WalkLines("10 lines", 10, 20000),
      WalkLines("1,000 lines", 1000, 300),
      WalkLines("30,000 lines", 30000, 8),
      OpenEditSave(1000, 20),
  };
}

}  // namespace bench
