// Random work on vouchers: whatever the order of steps, the balances that posting keeps are those
// that the lines add up to.
#include "qdclgl/server/db/refusals.h"
#include "tests/server/ledger_fixture.h"
#include "tests/support/random_seed.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::RandomSeed;

class Workflow : public LedgerTest {};
QDCLGL_BOOKS_TEST(Workflow);

TEST_P(Workflow, BalancesEqualTheLinesAfterEveryStep) {
  const auto seed = RandomSeed();
  SCOPED_TRACE("QDCLGL_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  const auto draw = [&](int below) {
    return std::uniform_int_distribution<int>(0, below - 1)(random);
  };
  const char* accounts[] = {"1000", "2000", "3000", "4000.01", "4000.02"};
  std::vector<Long> ids;
  int done = 0;
  for (int step = 0; step < 300; ++step) {
    const Long id =
        ids.empty() ? 0 : ids[static_cast<std::size_t>(draw(static_cast<int>(ids.size())))];
    const std::string outcome = ErrorText([&] {
      switch (ids.empty() ? 0 : draw(9)) {
        case 0:
        case 1: {
          std::vector<Ref<Dictionary>> lines;
          Currency total;
          for (int i = draw(4); i >= 0; --i) {
            const auto amount = Currency::FromUnits(draw(2'000'000) - 500'000);
            const bool foreign = draw(2) == 0;
            lines.push_back(Line(accounts[draw(5)], 0, amount,
                                 {{"FDC", Long{1}},
                                  {"FCurrencyID", Long{foreign ? 2 : 1}},
                                  {"FAmountFor", Currency::FromUnits(draw(100'000))},
                                  {"FQuantity", draw(1000) / 7.0}}));
            total += amount;
          }
          lines.push_back(Line("3000", 0, total));
          ids.push_back(Save(Voucher("2024-0" + std::to_string(1 + draw(4)) + "-10", lines)));
          break;
        }
        case 2: Step("Check", id, draw(2) == 0); break;
        case 3: {
          Ref<Dictionary> voucher = Read(id);
          if (!voucher) break;
          voucher->Value("FYear", Long{0});
          voucher->Value("FPeriod", Long{0});
          voucher->Value("FNumber", Long{0});
          voucher->Value("FDate", DateTime::FromYmd(2024, 1 + draw(4), 20));
          Update(id, voucher);
          break;
        }
        case 4: {
          Long copy = id;
          Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, ByRef(copy), draw(2) == 0, "M", "A");
          break;
        }
        case 5: Step("UnPost", id); break;
        case 6: Call("QDSVGLPeriod.PeriodUpdate", draw(2) == 0 ? "Close" : "Reopen", props); break;
        default: Step("Post", id); break;
      }
    });
    if (outcome == "no error") {
      ++done;
    } else {
      ASSERT_EQ(outcome.substr(0, 6), "800442") << outcome;
    }
    ASSERT_EQ(BalanceText(), RecomputedText()) << "after step " << step << ": " << outcome;
    ASSERT_EQ(BalanceText(2024, 2, 3), RecomputedText(2024, 2, 3)) << "after step " << step;
  }
  EXPECT_GT(done, 20) << "closings left something to do";
  EXPECT_EQ(Breaches(), "");
}

}  // namespace
}  // namespace qdclgl::server::testing
