// The rows of a list made into rows of one's own.
#include "bench/sample.h"
#include "bench/work.h"
#include "qdclgl/frame/containers/recordset.h"

namespace bench {

namespace {

using namespace qdclgl;

constexpr std::int32_t kRows = 100000;

// A list as a server component hands it out, with the columns of a line.
Ref<Recordset> OurList() {
  auto list = Make<Recordset>();
  FillLine(0, [&](std::string_view name, const auto&) { list->AppendField(name); });
  list->Open();
  for (std::int32_t i = 1; i <= kRows; ++i) {
    std::vector<Variant> row;
    FillLine(i, [&](std::string_view, const auto& value) { row.push_back(ToVariant(value)); });
    list->AddRow(std::move(row));
  }
  return list;
}

struct TheirList {
  TheirList() {
    FillLine(0, [&](std::string_view name, const auto&) { columns.emplace_back(name); });
    rows.resize(kRows);
    for (std::int32_t i = 1; i <= kRows; ++i) {
      auto& row = rows[static_cast<std::size_t>(i - 1)];
      row.reserve(columns.size());
      FillLine(i, [&](std::string_view, const auto& value) { row.emplace_back(value); });
    }
  }

  PeerRow Row(std::size_t index) const {
    PeerRow row;
    for (std::size_t i = 0; i < columns.size(); ++i) row.emplace(columns[i], rows[index][i]);
    return row;
  }

  std::vector<std::string> columns;
  std::vector<std::vector<PeerValue>> rows;
};

const Ref<Recordset>& Ours() {
  static const Ref<Recordset> list = OurList();
  return list;
}
const TheirList& Theirs() {
  static const TheirList list;
  return list;
}

// Makes all rows, then drops them. As with copies, the first time goes uncounted.
void KeepOurs(const Ref<Recordset>& list) {
  std::vector<Ref<Dictionary>> kept;
  for (list->MoveFirst(); !list->Eof(); list->MoveNext()) kept.push_back(RowToDictionary(list));
  benchmark::DoNotOptimize(kept.data());
}
void KeepTheirs(const TheirList& list) {
  std::vector<PeerRow> kept;
  for (std::size_t i = 0; i < list.rows.size(); ++i) kept.push_back(list.Row(i));
  benchmark::DoNotOptimize(kept.data());
}

}  // namespace

std::vector<Work> RecordsetWorks() {
  return {
      {"a recordset row made into a row, dropped", 0.22, kRows, 1,
       [](benchmark::State& state) {
         const auto& list = Ours();
         for (auto _ : state) {
           for (list->MoveFirst(); !list->Eof(); list->MoveNext()) {
             benchmark::DoNotOptimize(RowToDictionary(list).get());
           }
         }
       },
       [](benchmark::State& state) {
         const auto& list = Theirs();
         for (auto _ : state) {
           for (std::size_t i = 0; i < list.rows.size(); ++i) {
             PeerRow row = list.Row(i);
             benchmark::DoNotOptimize(row);
           }
         }
       }},
      {"a recordset row made into a row, all kept", 0.22, kRows, 1,
       [](benchmark::State& state) {
         KeepOurs(Ours());
         for (auto _ : state) KeepOurs(Ours());
       },
       [](benchmark::State& state) {
         KeepTheirs(Theirs());
         for (auto _ : state) KeepTheirs(Theirs());
       }},
  };
}

}  // namespace bench
