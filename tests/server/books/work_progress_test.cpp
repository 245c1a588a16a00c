// What those are told who watch a work on the whole of the books.
#include "qdclgl/server/books/work_progress.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

class WorkProgressTest : public LedgerTest {
 protected:
  WorkProgressTest() {
    for (int i = 0; i < 3; ++i) Save(Sale(Currency(100 + i)));
  }
  ~WorkProgressTest() override { SetWorkListener(nullptr); }

  void Listen() {
    SetWorkListener([this](std::string_view work, double share) {
      if (works.empty() || works.back() != work) works.emplace_back(work);
      shares.push_back(share);
    });
  }
  bool SharesRise() const {
    return std::ranges::is_sorted(shares) && shares.front() >= 0 && shares.back() <= 1;
  }

  std::vector<std::string> works;
  std::vector<double> shares;
};
QDCLGL_BOOKS_TEST(WorkProgressTest);

using Works = std::vector<std::string>;

TEST_P(WorkProgressTest, ACheckTellsWhatItIsAtAndHowFar) {
  Listen();
  Call("QDSVGLBooks.BooksInfo", "Check", props);
  EXPECT_EQ(works, (Works{"Checking vouchers", "Checking records", "Checking the database"}));
  EXPECT_TRUE(SharesRise());
}

TEST_P(WorkProgressTest, ABackupTellsOfTheCopyAndOfItsCheck) {
  Listen();
  const std::string copy = NewConnectionText(GetParam());
  Call("QDSVGLBooks.BooksInfo", "BackUp", props, copy);
  EXPECT_EQ(works, (Works{"Checking vouchers", "Checking records", "Checking the database"}))
      << "few rows are copied at once";
  EXPECT_TRUE(SharesRise());
  EXPECT_GE(shares.front(), 0.6) << "the copy came before";
  RemoveBooks(copy);
}

TEST_P(WorkProgressTest, AFailureOfWhoWatchesEndsTheWorkAndLeavesNothing) {
  const std::string before = State();
  const std::string copy = NewConnectionText(GetParam());
  SetWorkListener([](std::string_view, double) { throw std::runtime_error("enough"); });
  EXPECT_THROW(Call("QDSVGLBooks.BooksInfo", "BackUp", props, copy), std::runtime_error);
  SetWorkListener(nullptr);
  EXPECT_EQ(State(), before);
  EXPECT_EQ(Breaches(), "");
  EXPECT_NE(RefusalOf([&] { Login("administrator"); }), "NoBooks");
  EXPECT_EQ(Call("QDSVGLBooks.BooksInfo", "Version", connection).As<Long>() > 0, true);
  EXPECT_EQ(
      RefusalOf([&] { Call("QDSVGLSession.SessionUpdate", "Login", copy, "administrator", ""); }),
      "NoBooks");
}

TEST_P(WorkProgressTest, NobodyIsToldOnceNobodyListens) {
  Listen();
  SetWorkListener(nullptr);
  Call("QDSVGLBooks.BooksInfo", "Check", props);
  EXPECT_EQ(works, Works());
}

TEST(WorkProgressPart, LiesWithinTheWhole) {
  std::vector<double> shares;
  SetWorkListener([&](std::string_view, double share) { shares.push_back(share); });
  const WorkProgress half = WorkProgress().Part(0.5, 1);
  half.Tell("x", 0);
  half.Part(0.5, 1).Tell("x", 0.5);
  half.Tell("x", 1);
  SetWorkListener(nullptr);
  EXPECT_EQ(shares, (std::vector<double>{0.5, 0.875, 1}));
}

}  // namespace
}  // namespace qdclgl::server::testing
