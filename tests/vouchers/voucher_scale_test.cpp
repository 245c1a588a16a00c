// Vouchers of as many lines as a payroll or a closing run makes.

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

#include "qdclgl/vouchers/voucher.h"
#include "tests/support/recording_server.h"
#include "tests/support/voucher_state.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::RecordingServer;
using testing::Row;
using testing::StateText;
using testing::VoucherOf;

constexpr Long kMostWalked = 32767;

// What a component of the server was called with. Unlike the recording server it makes no text of
// what it is handed.
struct ServerLog {
  std::string calls;
  Ref<Dictionary> received;  // by the latest Create or Update
};

class NativeComponent final : public Object {
 public:
  explicit NativeComponent(ServerLog& log) : log_(log) {}
  std::string_view ClassName() const override { return "NativeComponent"; }

  Variant Invoke(std::string_view name, CallKind, std::span<Argument> arguments) override {
    log_.calls += std::string(name) + " ";
    if (name == "GetDetail") return Variant(log_.received);
    if (name == "CheckExistCashProfit") return Long{3};
    if (name != "Create" && name != "Update") return {};
    log_.received = arguments[arguments.size() - 1].As<Dictionary>();
    if (name == "Create") log_.received->Put("FVoucherID", Variant(Long{8}));
    return Long{8};
  }

 private:
  ServerLog& log_;
};

class VoucherScale : public ::testing::Test {
 protected:
  VoucherScale() {
    SetServerGateway(nullptr);  // the components are the registered ones
    for (const char* component : kComponents) {
      RegisterComponent(component, [this] { return Make<NativeComponent>(log); });
    }
  }
  ~VoucherScale() override {
    for (const char* component : kComponents) UnregisterComponent(component);
  }

  // Runs `operation`, prints what it took and keeps it in the test's record. The times of two sizes
  // beside each other show an operation that grows faster than its voucher.
  template <class Operation>
  void Timed(const std::string& what, Operation operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    const auto took = std::chrono::steady_clock::now() - start;
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(took).count();
    const std::string name = what + ", " + std::to_string(lines_) + " lines";
    RecordProperty(name, std::to_string(microseconds) + " us");
    std::cout << name << ": " << microseconds << " us\n";
  }

  // The two lives of a voucher of `life.count` lines.
  struct Life {
    Long count;
    const char* odd_sum;   // of the odd numbers up to the count
    const char* even_sum;  // of the even ones
  };
  void LiveAsExisting(const Life& life);
  void LiveAsNew(const Life& life);

  static constexpr const char* kComponents[] = {"QDSVGLVoucher.VoucherInfo",
                                                "QDSVGLVoucher.VoucherUpdate"};
  RecordingServer server;  // the session and the machine
  ServerLog log;

 private:
  Long lines_ = 0;
};

// Line i is a debit of i where i is odd and a credit of i where it is even, in base currency.
Ref<Dictionary> RowOfLines(Long count) {
  auto lines = Make<Vector>();
  for (Long i = 1; i <= count; ++i) {
    lines->Append(Variant(Row({{"FAccountID", Long{100}},
                               {"FCurrencyID", Long{1}},
                               {"FDC", Long{i % 2}},
                               {"FAmount", Currency(i)}})));
  }
  return Row({{"FVoucherID", Long{5}}, {"_Entries", Variant(lines)}});
}

std::string Totals(const Voucher& voucher) {
  return voucher.DebitTotal().ToText() + " " + voucher.CreditTotal().ToText();
}

std::string LineText(const Ref<Dictionary>& row, Long index) {
  return StateText(row->Value("_Entries").As<Vector>()->Item(index));
}

void VoucherScale::LiveAsExisting(const Life& life) {
  const Long count = lines_ = life.count;
  const std::string totals = std::string(life.odd_sum) + " " + life.even_sum;
  const std::string swapped = std::string(life.even_sum) + " " + life.odd_sum;
  const Ref<Dictionary> row = RowOfLines(count);
  const auto voucher = Make<Voucher>();

  Timed("Construct", [&] { voucher->Construct(row, Nothing); });
  EXPECT_EQ(voucher->Entries()->Count(), count);

  Currency walked;
  Timed("Walk", [&] {
    const auto lines = voucher->Entries();
    for (auto& line : *lines) walked += line.Debit();
  });
  EXPECT_EQ(walked.ToText(), life.odd_sum);

  Timed("Totals", [&] { EXPECT_EQ(Totals(*voucher), totals); });
  Timed("HasForCyOrUnit", [&] { EXPECT_FALSE(voucher->HasForCyOrUnit()); });
  Timed("Explanation", [&] { EXPECT_EQ(voucher->Explanation(), ""); });
  Timed("Modified of an unmodified voucher", [&] { EXPECT_FALSE(voucher->Modified()); });

  // Each line goes to the other side.
  Timed("Edit of every line by position", [&] {
    const auto lines = voucher->Entries();
    for (Long i = 1; i <= count; ++i) {
      const auto line = lines->Item(i);
      line->DC(1 - line->DC());
    }
  });
  EXPECT_EQ(Totals(*voucher), swapped);
  EXPECT_TRUE(voucher->Modified());

  Timed("CancelChanges", [&] { voucher->CancelChanges(); });
  EXPECT_EQ(Totals(*voucher), totals);
  EXPECT_FALSE(voucher->Modified());

  Timed("Edit of every line in a walk", [&] {
    const auto lines = voucher->Entries();
    for (auto& line : *lines) line.Explanation("moved");
  });
  EXPECT_EQ(voucher->Explanation(), "moved");
  Timed("ResetModified", [&] { voucher->ResetModified(); });
  EXPECT_FALSE(voucher->Modified());

  Ref<Voucher> clone;
  Timed("Clone", [&] { clone = voucher->Clone(); });
  EXPECT_EQ(Totals(*clone), totals);
  Timed("ValueDifferent", [&] { EXPECT_TRUE(voucher->ValueDifferent(clone)); });
  EXPECT_EQ(LineText(voucher->Properties()->Dictionary(), count),
            "{FAccountID: 100, FCurrencyID: 1, FDC: 0, FAmount: " + std::to_string(count) +
                "@, FExplanation: \"moved\", _Details: []}");

  Timed("SaveChanges", [&] { voucher->SaveChanges(); });
  EXPECT_EQ(log.calls, "CheckExistCashProfit ClearCashFlow Update ");
  EXPECT_EQ(log.received, voucher->DictOrig());
  EXPECT_EQ(log.received->Value("_Entries").As<Vector>()->Count(), count);
  EXPECT_FALSE(voucher->Modified());

  Timed("Removal of the last line, one by one", [&] {
    const auto lines = voucher->Entries();
    while (lines->Count() > count / 2) lines->Remove(lines->Count());
  });
  EXPECT_EQ(voucher->Entries()->Count(), count / 2);
  Timed("Refresh", [&] { voucher->Refresh(); });
  EXPECT_EQ(voucher->Entries()->Count(), count);
  EXPECT_EQ(Totals(*voucher), totals);
}

void VoucherScale::LiveAsNew(const Life& life) {
  const Long count = lines_ = life.count;
  const auto voucher = VoucherOf(Nothing);
  Timed("Add and fill", [&] {
    const auto lines = voucher->Entries();
    for (Long i = 1; i <= count; ++i) {
      lines->Add();
      const auto line = lines->Item(i);
      if (i % 2 == 1) {
        line->Debit(i);
      } else {
        line->Credit(i);
      }
    }
  });
  EXPECT_EQ(Totals(*voucher), std::string(life.odd_sum) + " " + life.even_sum);

  Timed("SaveChanges of a new voucher", [&] { voucher->SaveChanges(); });
  EXPECT_EQ(log.calls, "Create GetDetail ");
  EXPECT_EQ(voucher->VoucherID(), 8);
  EXPECT_EQ(voucher->Entries()->Count(), count);
  EXPECT_EQ(LineText(log.received, count), "{FDC: 0, FAmount: " + std::to_string(count) + "@}");
  EXPECT_FALSE(voucher->Modified());

  Timed("Count let", [&] { voucher->Entries()->Count(1); });
  EXPECT_EQ(Totals(*voucher), "1 0");
}

TEST_F(VoucherScale, AVoucherOfThreeThousandLinesIsEditedAndSaved) {
  LiveAsExisting({3000, "2250000", "2251500"});
}

TEST_F(VoucherScale, AVoucherOfThirtyThousandLinesIsEditedAndSaved) {
  LiveAsExisting({30000, "225000000", "225015000"});
}

TEST_F(VoucherScale, ANewVoucherOfThreeThousandLinesIsMadeLineByLineAndSaved) {
  LiveAsNew({3000, "2250000", "2251500"});
}

TEST_F(VoucherScale, ANewVoucherOfThirtyThousandLinesIsMadeLineByLineAndSaved) {
  LiveAsNew({30000, "225000000", "225015000"});
}

TEST_F(VoucherScale, AWalkReachesAsManyLinesAsItsPositionCanCount) {
  const auto voucher = VoucherOf(RowOfLines(kMostWalked));
  const auto lines = voucher->Entries();
  Long walked = 0;
  for (auto& line : *lines) walked += line.CurrencyID();
  EXPECT_EQ(walked, kMostWalked);
  EXPECT_FALSE(voucher->HasForCyOrUnit());
}

TEST_F(VoucherScale, AWalkOverOneLineMoreRaisesOverflowAtTheLastOne) {
  const auto voucher = VoucherOf(RowOfLines(kMostWalked + 1));
  const auto lines = voucher->Entries();
  Long walked = 0;
  EXPECT_EQ(ErrorOf([&] {
              for (auto& line : *lines) walked += line.CurrencyID();
            }),
            "error 6");
  EXPECT_EQ(walked, kMostWalked);
  const auto enumerator = lines->NewEnum();
  EXPECT_TRUE(enumerator->Skip(kMostWalked));
  EXPECT_EQ(ErrorOf([&] { enumerator->Skip(1); }), "error 6");
}

TEST_F(VoucherScale, HasForCyOrUnitRaisesOverflowUnlessALineBeforeTheLastDecides) {
  const auto voucher = VoucherOf(RowOfLines(kMostWalked + 1));
  EXPECT_EQ(ErrorOf([&] { voucher->HasForCyOrUnit(); }), "error 6");
  voucher->Entries()->Item(kMostWalked + 1)->CurrencyID(2);
  EXPECT_EQ(ErrorOf([&] { voucher->HasForCyOrUnit(); }), "error 6");
  voucher->Entries()->Item(kMostWalked)->MeasureUnitID(4);
  EXPECT_TRUE(voucher->HasForCyOrUnit());
}

TEST_F(VoucherScale, TotalsAndPositionsGoBeyondWhatAWalkReaches) {
  const auto voucher = VoucherOf(RowOfLines(kMostWalked + 1));
  EXPECT_EQ(Totals(*voucher), "268435456 268451840");
  EXPECT_EQ(voucher->Explanation(), "");
  voucher->Entries()->Item(kMostWalked + 1)->Explanation("the last one");
  EXPECT_EQ(voucher->Explanation(), "the last one");
  EXPECT_TRUE(voucher->ValueDifferent(voucher->Clone()));
  EXPECT_EQ(LineText(voucher->Properties()->Dictionary(), kMostWalked + 1),
            "{FAccountID: 100, FCurrencyID: 1, FDC: 0, FAmount: 32768@, FExplanation: \"the last "
            "one\", _Details: []}");
}

}  // namespace
}  // namespace qdclgl
