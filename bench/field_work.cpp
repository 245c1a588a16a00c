// Single numbers of a header, read and written.
#include <array>
#include <string>

#include "bench/sample.h"
#include "bench/work.h"
#include "qdclgl/frame/entities/row_view.h"
#include "qdclgl/frame/objects/class_table.h"

namespace bench {

namespace {

using namespace qdclgl;

// A class whose data is a header, as the library declares its own.
class Header final : public RowView {
  QD_MEMBERS(Header, RowView, Internal, "A header of 25 keys.")

 public:
  QD_FIELD(GetLet, Long, Number, "FNumber", "A number.")
  QD_FIELD(GetLet, Long, PreparerID, "FPreparerID", "A number.")
  QD_FIELD(GetLet, Long, SerialNum, "FSerialNum", "A number.")
  QD_FIELD(GetLet, Long, VoucherID, "FVoucherID", "A number.")

  explicit Header(const Ref<Dictionary>& row) { Attach(row, true, Nothing, 1); }
};

QD_DEFINE_MEMBERS(Header)

// The peer's accessors. The key of a typed one is made once; every write sets the row's flag.
struct TheirRow {
  PeerRow values = TheirHeader();
  bool modified = false;

  std::int32_t Read(const std::string& key) const {
    const auto found = values.find(key);
    return found == values.end() ? 0 : std::get<std::int32_t>(found->second);
  }
  void Write(const std::string& key, std::int32_t value) {
    values[key] = value;
    modified = true;
  }

  std::int32_t Number() const {
    static const std::string key = "FNumber";
    return Read(key);
  }
  std::int32_t PreparerID() const {
    static const std::string key = "FPreparerID";
    return Read(key);
  }
  std::int32_t SerialNum() const {
    static const std::string key = "FSerialNum";
    return Read(key);
  }
  std::int32_t VoucherID() const {
    static const std::string key = "FVoucherID";
    return Read(key);
  }
  void Number(std::int32_t value) {
    static const std::string key = "FNumber";
    Write(key, value);
  }
  void PreparerID(std::int32_t value) {
    static const std::string key = "FPreparerID";
    Write(key, value);
  }
  void SerialNum(std::int32_t value) {
    static const std::string key = "FSerialNum";
    Write(key, value);
  }
  void VoucherID(std::int32_t value) {
    static const std::string key = "FVoucherID";
    Write(key, value);
  }
};

// Both sides have the same member names.
constexpr int kMembers = 4;

template <class Row>
void ReadTyped(benchmark::State& state, Row& row) {
  for (auto _ : state) {
    benchmark::ClobberMemory();
    benchmark::DoNotOptimize(row.Number());
    benchmark::DoNotOptimize(row.PreparerID());
    benchmark::DoNotOptimize(row.SerialNum());
    benchmark::DoNotOptimize(row.VoucherID());
  }
}

template <class Row>
void WriteTyped(benchmark::State& state, Row& row) {
  std::int32_t value = 0;
  for (auto _ : state) {
    ++value;
    row.Number(value);
    row.PreparerID(value);
    row.SerialNum(value);
    row.VoucherID(value);
    benchmark::DoNotOptimize(row);
    benchmark::ClobberMemory();
  }
}

// Keys that arrive as text: nobody knows them before, and they lie elsewhere than the names in the
// rows.
class ArrivingKeys {
 public:
  const std::vector<std::string_view>& Next() {
    benchmark::DoNotOptimize(views_.data());
    benchmark::ClobberMemory();
    return views_;
  }

 private:
  std::vector<std::string> texts_ = {"FNumber",     "FPreparerID", "FSerialNum", "FVoucherID",
                                     "FEntryCount", "FGroupID",    "FCheckerID", "FTranType"};
  std::vector<std::string_view> views_{texts_.begin(), texts_.end()};
};
constexpr int kTextKeys = 8;

}  // namespace

std::vector<Work> FieldWorks() {
  return {
      {"read a number by typed member", 0.30, kMembers, 300000,
       [](benchmark::State& state) {
         auto row = Make<Header>(OurHeader());
         ReadTyped(state, *row);
       },
       [](benchmark::State& state) {
         TheirRow row;
         ReadTyped(state, row);
       }},
      {"read a number by text key", 0.45, kTextKeys, 150000,
       [](benchmark::State& state) {
         const auto row = OurHeader();
         ArrivingKeys keys;
         for (auto _ : state) {
           for (const std::string_view key : keys.Next()) {
             benchmark::DoNotOptimize(row->Value(key).As<Long>());
           }
         }
       },
       [](benchmark::State& state) {
         const TheirRow row;
         ArrivingKeys keys;
         for (auto _ : state) {
           for (const std::string_view key : keys.Next()) {
             benchmark::DoNotOptimize(row.Read(std::string(key)));
           }
         }
       }},
      {"write a number by typed member", 0.30, kMembers, 300000,
       [](benchmark::State& state) {
         auto row = Make<Header>(OurHeader());
         WriteTyped(state, *row);
       },
       [](benchmark::State& state) {
         TheirRow row;
         WriteTyped(state, row);
       }},
      {"write a number by text key", 0.45, kTextKeys, 150000,
       [](benchmark::State& state) {
         const auto row = Make<Header>(OurHeader());
         const auto properties = row->Properties();
         ArrivingKeys keys;
         Long value = 0;
         for (auto _ : state) {
           ++value;
           for (const std::string_view key : keys.Next()) properties->SetValue(key, value);
         }
       },
       [](benchmark::State& state) {
         TheirRow row;
         ArrivingKeys keys;
         std::int32_t value = 0;
         for (auto _ : state) {
           ++value;
           for (const std::string_view key : keys.Next()) row.Write(std::string(key), value);
           benchmark::DoNotOptimize(row);
         }
       }},
  };
}

}  // namespace bench
