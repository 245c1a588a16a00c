// A client of the books in a process of its own, for tests that kill clients or let many of them
// work at once.
//
//   qdclgl-server-worker CONNECTION SEED SECONDS [stays]
//
// Saves, edits, checks, posts and unposts vouchers at random through the library until the time is
// up; at the end it prints "saved N edited N refused N". It exits with 1 on an error that such a
// client must not meet. One that "stays" goes on when its connection is lost, and repeats what is
// not saved. Each of its vouchers has a reference that nobody else uses.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "qdclgl/frame/session/startup.h"
#include "qdclgl/qdclgl.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/server.h"

namespace {

using namespace qdclgl;

class Worker {
 public:
  Worker(unsigned seed, bool stays) : name_(std::to_string(seed)), random_(seed), stays_(stays) {}

  void Run(std::chrono::steady_clock::time_point end) {
    while (std::chrono::steady_clock::now() < end) {
      try {
        Act();
      } catch (const Error& error) {
        if (!IsPartOfTheGame(error)) throw;
        ++refused_;
      }
    }
    std::printf("saved %d edited %d refused %d\n", saved_, edited_, refused_);
    if (stays_) std::printf("lost %d\n", lost_);
  }

 private:
  int Draw(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

  // What one meets when others work on the same vouchers.
  bool IsPartOfTheGame(const Error& error) {
    using namespace server::refusal;
    if (stays_ && error.number() == kConnectionLost) {
      ++lost_;
      return true;
    }
    for (const auto number : {kChanged, kWrongStep, kVoucherChecked, kVoucherPosted, kNotFound}) {
      if (error.number() == number) return true;
    }
    return false;
  }

  void Act() {
    switch (Draw(8)) {
      case 0:
      case 1:
      case 2: return SaveNew();
      case 3: return EditTheFirst();
      case 4: return vouchers_->Check(Any(), Draw(3) != 0);
      case 5:
      case 6: return vouchers_->Post(Any());
      default: return vouchers_->UnPost(Any());
    }
  }

  // Any voucher, one's own or another's.
  Long Any() { return last_ == 0 ? 2 : 2 + Draw(last_); }

  void SaveNew() {
    Ref<Voucher> voucher = vouchers_->CreateNew();
    voucher->Reference(name_ + "-" + std::to_string(++made_));
    voucher->VoucherDate(DateTime::FromYmd(2024, 1 + Draw(2), 1 + Draw(28)));
    voucher->GroupID(1 + Draw(2));
    const auto entries = voucher->Entries();
    const int pairs = 1 + Draw(3);
    for (int i = 0; i < pairs; ++i) {
      const auto amount = Currency::FromUnits(1 + Draw(10'000'000));
      entries->Add();
      entries->Item(2 * i + 1)->AccountNumber(i % 2 == 0 ? "1000" : "4000.01");
      entries->Item(2 * i + 1)->Debit(amount);
      entries->Add();
      entries->Item(2 * i + 2)->AccountNumber(i % 2 == 0 ? "3000" : "2000");
      entries->Item(2 * i + 2)->Credit(amount);
    }
    while (voucher->VoucherID() == 0) Save(*voucher, [&] { return voucher->VoucherID() != 0; });
    ++saved_;
    last_ = voucher->VoucherID();
  }

  // All clients count up one voucher's attachments; a count that gets lost shows at the end.
  void EditTheFirst() {
    Ref<Voucher> voucher = vouchers_->Item(Long{1});
    voucher->Attachments(voucher->Attachments() + 1);
    const auto version = [&] { return voucher->Properties()->Dictionary()->Value("FVersion"); };
    const Long before = CLng(version());
    if (Save(*voucher, [&] { return CLng(version()) != before; })) ++edited_;
  }

  // Whether it is saved: by the call, or by what the voucher tells when a connection was lost. That
  // may have been the one that reads a saved voucher again.
  template <class IsSaved>
  bool Save(Voucher& voucher, const IsSaved& is_saved) {
    try {
      voucher.SaveChanges();
    } catch (const Error& error) {
      if (!stays_ || error.number() != server::refusal::kConnectionLost) throw;
      ++lost_;
      return is_saved();
    }
    return true;
  }

  std::string name_;
  std::mt19937 random_;
  Ref<VoucherSet> vouchers_ = Make<VoucherSet>();
  bool stays_;
  int made_ = 0, saved_ = 0, edited_ = 0, refused_ = 0, lost_ = 0;
  Long last_ = 0;
};

}  // namespace

int main(int count, char** arguments) {
  try {
    SetApartmentStarted(true);
    server::RegisterServerComponents();
    CreateObject("QDSVGLSession.SessionUpdate")->Call("Login", arguments[1], "administrator", "");
    Worker worker(static_cast<unsigned>(std::atoi(arguments[2])),
                  count > 4 && std::string(arguments[4]) == "stays");
    std::puts("ready");
    std::fflush(stdout);
    worker.Run(std::chrono::steady_clock::now() +
               std::chrono::milliseconds(static_cast<int>(1000 * std::atof(arguments[3]))));
    return 0;
  } catch (const Error& error) {
    std::printf("%s\n", error.what());
    return 1;
  }
}
