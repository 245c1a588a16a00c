// The database fails at every place of every operation.
#include <filesystem>
#include <memory>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/db/new_books.h"
#include "qdclgl/server/db/schema.h"
#include "tests/server/faults/cutting_proxy.h"
#include "tests/server/faults/fault_sweep.h"
#include "tests/server/item_records.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

class Faults : public LedgerTest {
 protected:
  // Vouchers 1 and 2 are of the current period, January, and posted. Of those in February 3 is new,
  // 4 is checked, and 5 is posted. `prepare` adds what else is there.
  explicit Faults(const std::function<void(const std::string&)>& prepare = nullptr) {
    const auto sale = [&](const char* date) { return Save(Sale(10, date)); };
    for (const Long id : {sale("2024-01-10"), sale("2024-01-20")}) Step("Post", id);
    for (int i = 0; i < 3; ++i) sale("2024-02-01");
    Step("Check", 4);
    Step("Post", 5);
    if (prepare) prepare(props);
    place_ = NewConnectionText(GetParam());
    const ConnectionText text = ConnectionText::Parse(place_);
    model_ = connection;
    if (text.IsSQLite()) {
      // With saves in the log: so a log that a failure leaves behind is not an empty one.
      model_ = NewConnectionText(GetParam());
      CopyFilesOf(connection, model_);
      EXPECT_TRUE(std::filesystem::exists(
          std::string(ConnectionText::Parse(model_)[connection_key::kDataSource]) + "-wal"));
      reached_ = text.With(connection_key::kSynchronous, "Full").ToText();
    } else {
      proxy_ = std::make_unique<CuttingProxy>(std::string(text[connection_key::kHost]),
                                              std::string(text[connection_key::kPort]));
      reached_ = text.With(connection_key::kPort, proxy_->port()).ToText();
      Call("QDSVGLBooks.BooksUpdate", "Create", place_, "EUR", Long{2024},
           Named("NoPassword", true));
    }
    CopyBooks(model_, place_);
    props =
        Call("QDSVGLSession.SessionUpdate", "Login", reached_, "administrator", "").As<String>();
  }
  ~Faults() override {
    Clear();
    if (model_ != connection) RemoveBooks(model_);
  }

  void Sweep(const std::string& name, const std::function<void()>& operation) {
    Sweep({.name = name,
           .restore = [&] { CopyBooks(model_, place_); },
           .act = [&] { return RefusalOf(operation); },
           .state = [&] { return Shape(State()); },
           .check = [&] { return Breaches(); }});
  }
  void Sweep(const SweptOperation& operation) {
    const int places = proxy_ ? SweepConnection(*proxy_, operation) : SweepDisk(operation);
    RecordProperty(operation.name, places);
  }

  // Does something in a batch, which is taken back when it fails.
  void InBatch(const std::function<void()>& work) {
    Call("QDSVGLBatch.BatchUpdate", "Begin", props);
    try {
      work();
      Call("QDSVGLBatch.BatchUpdate", "Commit", props);
    } catch (const Error&) {
      Call("QDSVGLBatch.BatchUpdate", "RollBack", props);
      throw;
    }
  }

  // A state without what differs from one run to the next: of the trail only how long it is, and
  // not its seals, which come as time goes by; the check of the books looks at them.
  static std::string Shape(const std::string& state) {
    std::string shape;
    for (std::size_t at = 0; at < state.size();) {
      const std::size_t end = state.find('\n', at) + 1;
      const std::string table = ToUpper(state.substr(at, state.find(' ', at) - at));
      if (table == "T_AUDIT") shape += "t_Audit\n";
      else if (table != "T_AUDITSEAL") shape += state.substr(at, end - at);
      at = end;
    }
    return shape;
  }

  // Takes away what stands where the operations work, files of killed processes too.
  void Clear() const {
    RemoveBooks(place_);
    if (proxy_) return;
    const std::filesystem::path file{ConnectionText::Parse(place_)[connection_key::kDataSource]};
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
      if (entry.path().string().starts_with(file.string())) std::filesystem::remove(entry.path());
    }
  }

  std::unique_ptr<CuttingProxy> proxy_;  // PostgreSQL
  std::string model_;                    // the books that operations begin with
  std::string place_;                    // where operations work
  std::string reached_;                  // the same, as they reach it
};
QDCLGL_BOOKS_TEST(Faults);

TEST_P(Faults, SavesOfVouchersAreWholeOrRefused) {
  Sweep("Create", [&] { Save(Sale(5)); });
  Sweep("Update", [&] {
    const Ref<Dictionary> voucher = Read(3);
    voucher->Value("FReference", "again");
    Update(3, voucher);
  });
  Sweep("Delete", [&] { Call("QDSVGLVoucher.VoucherUpdate", "Delete", props, Long{3}); });
}

TEST_P(Faults, StepsOfTheWorkflowAreWholeOrRefused) {
  Sweep("Check", [&] { Step("Check", 3); });
  Sweep("Approve", [&] { Step("Approve", 4); });
  Sweep("Cash", [&] { Step("Cash", 3); });
}

TEST_P(Faults, PostingIsWholeOrRefused) {
  Sweep("Post", [&] { Step("Post", 4); });
  Sweep("UnPost", [&] { Step("UnPost", 5); });
}

TEST_P(Faults, ClosingIsWholeOrRefused) {
  Sweep("Close", [&] { Call("QDSVGLPeriod.PeriodUpdate", "Close", props); });
}

TEST_P(Faults, SavesOfMasterDataAreWholeOrRefused) {
  Sweep("Account", [&] { AddAccount("5000"); });
  Sweep("Reference", [&] {
    Call("QDSVGLSettAcct.SettAcctUpdate", "Create", props,
         Row({{"FNumber", "TILL"}, {"FAcctID", Long{1}}}));
  });
}

// With item classes, items and units.
class ItemFaults : public Faults {
 protected:
  ItemFaults()
      : Faults([](const std::string& administrator) {
          MakeReceivables(administrator);
          MakeProjects(administrator);
          MakeWeights(administrator);
        }) {}
};
QDCLGL_BOOKS_TEST(ItemFaults);

TEST_P(ItemFaults, SavesOfItemsAndTheirClassesAreWholeOrRefused) {
  Sweep("Item",
        [&] { Call("QDSVGLItem.ItemUpdate", "Create", props, kProjects, Project("large")); });
  Sweep("Rename", [&] { RenameProjectField(props); });
  Sweep("Remove class",
        [&] { Call("QDSVGLItemClass.ItemClassUpdate", "Delete", props, kProjects); });
}

TEST_P(ItemFaults, ChangesOfUnitsAreWholeOrRefused) {
  Sweep("Unit", [&] {
    Call("QDSVGLUnit.MeasureUnitUpdate", "CreateUnit", props, Long{1},
         Row({{"FNumber", "oz"}, {"FName", "oz"}, {"FCoefficient", 28.35}}));
  });
  Sweep("Adjust", [&] {
    Call("QDSVGLUnit.MeasureUnitUpdate", "AdjustCoefficient", props, Long{1}, 1000.0, true);
  });
}

TEST_P(ItemFaults, SavesAndPostingsOfLinesWithItemsAndUnitsAreWholeOrRefused) {
  Sweep("Save and post", [&] {
    InBatch([&] {
      Step("Post",
           Save(Voucher("2024-02-01",
                        {Line("1130", 5, 0, {{"_Details", Variant(DetailOfAnna())}}),
                         Line("5000", 0, 5, {{"FQuantity", 2.0}, {"FMeasureUnitID", Long{1}}})})));
    });
  });
}

TEST_P(Faults, BatchesAreWholeOrRefused) {
  Sweep("Batch", [&] {
    InBatch([&] {
      Save(Sale(5));
      Step("Post", 4);
      Save(Sale(6));
    });
  });
}

TEST_P(Faults, BatchesThatDoNotFitIntoMemoryAreWholeOrRefused) {
  if (proxy_) return;  // where a server keeps what is saved, the client's memory does not count
  Sweep("Large batch", [&] {
    InBatch([&] {
      // So statements write too, and fail, and not the commit alone.
      Books().QueryValue<Long>("PRAGMA cache_size = 1");
      for (int i = 0; i < 3; ++i) Save(Sale(5));
    });
  });
}

TEST_P(Faults, UpgradesAreWholeOrRefused) {
  const std::string old = NewConnectionText(GetParam());
  MakeBooks(ConnectionText::Parse(old), [](Database& db) { Migrate(db, 1); });
  const auto version = [&] {
    return std::to_string(Call("QDSVGLBooks.BooksInfo", "Version", reached_).As<Long>());
  };
  const auto restore = [&] {
    if (!proxy_) return CopyBooks(old, place_);
    RemoveBooks(place_);
    MakeBooks(ConnectionText::Parse(place_), [](Database& db) { Migrate(db, 1); });
  };
  Sweep(
      {.name = "Upgrade",
       .restore = restore,
       .act =
           [&] { return RefusalOf([&] { Call("QDSVGLBooks.BooksUpdate", "Upgrade", reached_); }); },
       .state = [&] { return version() == "1" ? "1" : version() + Shape(State()); },
       .check = [&] { return version(); }});
  RemoveBooks(old);
}

TEST_P(Faults, NewBooksAreWholeOrNotThere) {
  Sweep({.name = "Init",
         .restore = [&] { Clear(); },
         .act =
             [&] {
               return RefusalOf([&] {
                 Call("QDSVGLBooks.BooksUpdate", "Create", reached_, "EUR", Long{2024},
                      Named("NoPassword", true));
               });
             },
         .state = [&]() -> std::string {
           std::string version;
           const std::string refusal = RefusalOf([&] {
             version =
                 std::to_string(Call("QDSVGLBooks.BooksInfo", "Version", reached_).As<Long>());
           });
           if (refusal == "NoBooks" || version == "0") return "none";
           return version;
         },
         .check = [&] { return Breaches(); }});
}

TEST_P(Faults, CopiesOfBooksAreWholeOrNoBooks) {
  const std::string source =
      Call("QDSVGLSession.SessionUpdate", "Login", model_, "administrator", "").As<String>();
  Sweep({.name = "Copy",
         .restore = [&] { Clear(); },
         .act =
             [&] {
               return RefusalOf([&] { Call("QDSVGLBooks.BooksInfo", "CopyTo", source, reached_); });
             },
         .state = [&]() -> std::string {
           Long version = 0;
           const std::string refusal = RefusalOf(
               [&] { version = Call("QDSVGLBooks.BooksInfo", "Version", reached_).As<Long>(); });
           return refusal == "NoBooks" || version == 0 ? "none" : Shape(State());
         },
         .check = [&] { return Breaches(); }});
}

}  // namespace
}  // namespace qdclgl::server::testing
