// How often a call has to wait for PostgreSQL: each message goes a way that may be long.
#include <chrono>
#include <cstdio>
#include <memory>

#include "qdclgl/server/db/connections.h"
#include "tests/server/faults/cutting_proxy.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

class Messages : public LedgerTest {
 protected:
  Messages() {
    const ConnectionText text = ConnectionText::Parse(connection);
    proxy_ = std::make_unique<CuttingProxy>(std::string(text[connection_key::kHost]),
                                            std::string(text[connection_key::kPort]));
    props = Call("QDSVGLSession.SessionUpdate", "Login",
                 text.With(connection_key::kPort, proxy_->port()).ToText(), "administrator", "")
                .As<String>();
    // From here on the connection looks at the trail's seals no more.
    first_ = Save(Sale(5));
  }
  ~Messages() override { Connections::OfThisThread().CloseAll(); }

  template <class Operation>
  int CountOf(Operation operation) {
    proxy_->CutAt(0, CuttingProxy::Cut::kBefore);
    operation();
    proxy_->Mend();
    return proxy_->Requests();
  }

  void Edit(Long id, const char* reference) {
    const Ref<Dictionary> voucher = Read(id);
    voucher->Value("FReference", reference);
    Update(id, voucher);
  }

  std::unique_ptr<CuttingProxy> proxy_;
  Long first_ = 0;
};

QDCLGL_BOOKS_TEST_OF(Messages, kPostgreSQL);

TEST_P(Messages, ANewVoucherAndItsReadingWaitFourTimes) {
  Long id = 0;
  EXPECT_EQ(CountOf([&] { id = Save(Sale(5)); }), 3);
  EXPECT_EQ(CountOf([&] { Read(id); }), 1);
  EXPECT_EQ(CountOf([&] {
              Save(Sale(5, "2024-01-15", {{"FNumber", Long{100}}}));
            }),
            3)
      << "with a number of its own";
}

TEST_P(Messages, AnEditedVoucherAndItsReadingsWaitFiveTimes) {
  EXPECT_EQ(CountOf([&] { Edit(first_, "once"); }), 4) << "one of them for the reading before";
  EXPECT_EQ(CountOf([&] { Read(first_); }), 1);
}

TEST_P(Messages, LinesAndDetailsWaitNoLonger) {
  const auto row = [] {
    const Ref<Dictionary> sale = Sale(5);
    const auto lines = sale->Value("_Entries").As<Vector>();
    for (int i = 0; i < 100; ++i) {
      lines->Append(Variant(Line("1000", 5, 0)));
      lines->Append(Variant(Line("3000", 0, 5)));
    }
    auto details = Make<Vector>();
    details->Append(Variant(Row({{"FItemNumber", "A"}, {"FValue", "1"}})));
    lines->Item(lines->LowerBound()).As<Dictionary>()->Value("_Details", Variant(details));
    return sale;
  };
  Long id = 0;
  EXPECT_EQ(CountOf([&] { id = Save(row()); }), 3);
  EXPECT_EQ(CountOf([&] { Read(id); }), 1);
  EXPECT_EQ(Read(id)->Value("_Entries").As<Vector>()->Count(), 202);
}

TEST_P(Messages, StepsWaitFewTimes) {
  EXPECT_EQ(CountOf([&] { Step("Check", first_); }), 3);
  EXPECT_EQ(CountOf([&] { Step("Post", first_); }), 5);
  EXPECT_EQ(CountOf([&] { Step("UnPost", first_); }), 5);
}

// The time is told and nothing goes by it.
TEST_P(Messages, ALongWayIsGoneFourTimes) {
  constexpr int kSaves = 20;
  Read(Save(Sale(5)));
  proxy_->Delay(std::chrono::milliseconds(2));
  const auto start = std::chrono::steady_clock::now();
  const int count = CountOf([&] {
    for (int i = 0; i < kSaves; ++i) Read(Save(Sale(5)));
  });
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  proxy_->Delay({});
  EXPECT_EQ(count, 4 * kSaves);
  std::printf("A save with its reading, each message 2 ms on its way: %.1f ms\n",
              time.count() / kSaves);
}

}  // namespace
}  // namespace qdclgl::server::testing
