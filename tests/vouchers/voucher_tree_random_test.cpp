// Edits a voucher at random through all the ways that lead into its tree, and a plain model of it
// alike; both must be the same text after every step. A failure tells the seed; QDCLGL_SEED repeats
// the run.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "qdclgl/vouchers/voucher.h"
#include "tests/support/random_seed.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl {
namespace {

using testing::FlagText;
using testing::RandomSeed;
using testing::Row;
using testing::State;
using testing::StateText;

// ---- The model: rows, lists and flags as plain structures ----

// A node of the flag tree. Here a node has either children by position or one named child.
struct FlagModel {
  bool own = false;
  std::vector<std::shared_ptr<FlagModel>> children;

  std::shared_ptr<FlagModel> At(std::size_t position) {
    while (children.size() < position) children.push_back(std::make_shared<FlagModel>());
    return children[position - 1];
  }
  std::shared_ptr<FlagModel> Named() { return At(1); }
  void RemoveAt(std::size_t position) {
    if (position <= children.size()) {
      children.erase(children.begin() + static_cast<std::ptrdiff_t>(position - 1));
    }
    own = true;
  }
  void Reset() {
    own = false;
    for (const auto& child : children) child->Reset();
  }
  bool Modified() const {
    return own || std::any_of(children.begin(), children.end(),
                              [](const auto& child) { return child->Modified(); });
  }
  std::string Text() const {
    std::string text;
    for (const auto& child : children) text += (text.empty() ? "" : " ") + child->Text();
    return (own ? "*" : Modified() ? "+" : "-") + (text.empty() ? "" : "[" + text + "]");
  }
};

struct ListModel;

struct CellModel {
  Variant value;
  std::shared_ptr<ListModel> list;  // takes the place of the value
};

struct RowModel {
  std::vector<std::string> order;  // of the keys
  std::map<std::string, CellModel> cells;
  bool modified = false;  // since a view was last bound to the row
  bool touched = false;   // ever
  bool tracks_nested = false;

  void Put(const std::string& key, CellModel cell) {
    if (!cells.contains(key)) order.push_back(key);
    cells[key] = std::move(cell);
    modified = touched = true;
  }
  void Erase(const std::string& key) {
    if (cells.erase(key) == 0) return;
    std::erase(order, key);
    modified = touched = true;
  }
  Variant Value(const std::string& key, const Variant& or_else) const {
    const auto cell = cells.find(key);
    return cell == cells.end() ? or_else : cell->second.value;
  }
  std::shared_ptr<ListModel> List(const std::string& key) const {
    const auto cell = cells.find(key);
    return cell == cells.end() ? nullptr : cell->second.list;
  }
  // What binding a view does.
  void Track(bool nested) {
    modified = false;
    tracks_nested = nested;
  }
  bool NestedTouched() const;
  bool Modified() const { return modified || (tracks_nested && NestedTouched()); }
  std::string Text() const;
  std::shared_ptr<RowModel> Copy() const;
};

struct ListModel {
  std::vector<std::shared_ptr<RowModel>> rows;  // null for a hole
  bool touched = false;

  Long Count() const { return static_cast<Long>(rows.size()); }

  // The row at a position; a hole is filled.
  std::shared_ptr<RowModel> RowAt(Long index) {
    CheckIndex(index);
    auto& row = rows[static_cast<std::size_t>(index - 1)];
    if (!row) {
      row = std::make_shared<RowModel>();
      touched = true;
    }
    return row;
  }
  void CheckIndex(Long index) const {
    if (index < 1 || index > Count()) RaiseError(error_number::kSubscriptOutOfRange);
  }
  void Insert(Long index) {
    if (rows.empty()) RaiseError(error_number::kSubscriptOutOfRange);
    rows.insert(rows.begin() + (index - 1), std::make_shared<RowModel>());
    touched = true;
  }
  void Resize(Long count) {
    if (count < 0) RaiseError(error_number::kSubscriptOutOfRange);
    touched = touched || count != Count();
    while (Count() < count) rows.push_back(std::make_shared<RowModel>());
    rows.resize(static_cast<std::size_t>(count));
  }
  std::string Text() const {
    std::string text;
    for (const auto& row : rows)
      text += (text.empty() ? "" : ", ") + (row ? row->Text() : "Nothing");
    return "[" + text + "]";
  }
  std::shared_ptr<ListModel> Copy() const {
    auto copy = std::make_shared<ListModel>();
    for (const auto& row : rows) copy->rows.push_back(row ? row->Copy() : nullptr);
    return copy;
  }
};

bool RowModel::NestedTouched() const {
  return std::any_of(cells.begin(), cells.end(), [](const auto& entry) {
    const auto& list = entry.second.list;
    return list &&
           (list->touched || std::any_of(list->rows.begin(), list->rows.end(), [](const auto& row) {
              return row && (row->touched || row->NestedTouched());
            }));
  });
}

std::string RowModel::Text() const {
  std::string text;
  for (const std::string& key : order) {
    const CellModel& cell = cells.at(key);
    text += (text.empty() ? "" : ", ") + key + ": " +
            (cell.list ? cell.list->Text() : StateText(cell.value));
  }
  return "{" + text + "}";
}

std::shared_ptr<RowModel> RowModel::Copy() const {
  auto copy = std::make_shared<RowModel>();
  copy->order = order;
  for (const auto& [key, cell] : cells) {
    copy->cells[key] = {cell.value, cell.list ? cell.list->Copy() : nullptr};
  }
  return copy;
}

// ---- The model: views ----

// A row and the flag that its writes set.
struct ViewModel {
  ViewModel() = default;
  ViewModel(std::shared_ptr<RowModel> bound_row, std::shared_ptr<FlagModel> bound_flag)
      : row(std::move(bound_row)), flag(std::move(bound_flag)) {
    row->Track(false);
  }

  std::shared_ptr<RowModel> row;
  std::shared_ptr<FlagModel> flag;

  void Store(const std::string& key, const Variant& value) const {
    row->Put(key, {value, nullptr});
    flag->own = true;
  }
  void StoreOrClear(const std::string& key, const Variant& value, const Variant& clear) const {
    if (StateText(value) == StateText(clear)) {
      row->Erase(key);
      flag->own = true;
    } else {
      Store(key, value);
    }
  }
  std::string Text() const {
    return row->Text() + (row->Modified() ? " modified" : "") +
           (flag->Modified() ? " flagged" : "");
  }
};

// A list and its flag.
struct ListViewModel {
  std::shared_ptr<ListModel> list;
  std::shared_ptr<FlagModel> flag;

  void Add() const {
    list->Resize(list->Count() + 1);
    flag->own = true;
  }
  void Add(Long index) const {
    list->Insert(index);
    flag->own = true;
  }
  void Remove(Long index) const {
    list->CheckIndex(index);
    list->rows.erase(list->rows.begin() + (index - 1));
    list->touched = true;
    flag->RemoveAt(static_cast<std::size_t>(index));
  }
  void Count(Long count) const {
    list->Resize(count);
    flag->own = true;
  }
  // What a walk and the Item of a list of lines give.
  ViewModel AtItsFlag(Long index) const {
    auto row = list->RowAt(index);
    return {row, flag->At(static_cast<std::size_t>(index))};
  }
  // What the Item of a list of details gives.
  ViewModel AtTheSharedFlag(Long index) const { return {list->RowAt(index), flag}; }
};

struct LineModel : ViewModel {
  LineModel() = default;
  LineModel(ViewModel view) : ViewModel(std::move(view)) {}

  Long Side() const { return row->Value("FDC", Long{0}).As<Long>(); }
  Currency Amount() const { return row->Value("FAmount", Currency()).As<Currency>(); }
  Currency On(Long side) const { return Side() == side ? Amount() : Currency(); }
  void Side(Long side) const {
    if (side != 0 && side != 1) RaiseError(error_number::kInvalidPropertyValue);
    Store("FDC", side);
  }
  void Amount(Currency amount) const {
    Store("FAmount", amount);
    Side(Side());
  }
  void On(Long side, Currency amount) const {
    if (On(1 - side) != Currency() && amount == Currency()) return;
    Side(side);
    Amount(amount);
  }
  ListViewModel Details() const {
    if (!row->List("_Details")) {
      row->Put("_Details", {{}, std::make_shared<ListModel>()});
      flag->own = true;
    }
    return {row->List("_Details"), flag->Named()};
  }
  bool IsEmpty() const {
    return row->Value("FAccountID", Long{0}).As<Long>() == 0 && Amount() == Currency() &&
           row->Value("FExplanation", "").As<String>().empty() && Details().list->Count() == 0;
  }
  void ReadFrameWorkNum() const {
    Store("FCussentFrameWorkName", row->Value("FCussentFrameWorkNum", ""));
  }
  LineModel Clone() const { return ViewModel(row->Copy(), std::make_shared<FlagModel>()); }
};

struct VoucherModel {
  std::shared_ptr<RowModel> row = std::make_shared<RowModel>();
  std::shared_ptr<FlagModel> flag = std::make_shared<FlagModel>();
  std::shared_ptr<RowModel> baseline;
  Long id = 0;

  void Construct(const std::shared_ptr<RowModel>& data) {
    baseline = data;
    TakeBaseline(false);
    if (data) id = data->Value("FVoucherID", Long{0}).As<Long>();
  }
  void TakeBaseline(bool tracks_nested) {
    row = baseline ? baseline->Copy() : std::make_shared<RowModel>();
    row->Track(tracks_nested);
    flag = std::make_shared<FlagModel>();
  }
  VoucherModel Clone() const {
    VoucherModel clone;
    clone.Construct(row->Copy());
    clone.baseline = baseline ? baseline->Copy() : nullptr;
    return clone;
  }
  ListViewModel Entries() const {
    if (!row->List("_Entries")) row->Put("_Entries", {{}, std::make_shared<ListModel>()});
    return {row->List("_Entries"), flag->Named()};
  }
  // For a list whose lines were all just looked at.
  Currency Total(Long side) const {
    Currency total;
    for (const auto& line : Entries().list->rows) {
      if (line->Value("FDC", Long{0}).As<Long>() == side) {
        total += line->Value("FAmount", Currency()).As<Currency>();
      }
    }
    return total;
  }
  String Explanation() const {
    const ListViewModel entries = Entries();
    for (Long i = 1; i <= entries.list->Count(); ++i) {
      auto text = entries.AtItsFlag(i).row->Value("FExplanation", "").As<String>();
      if (!text.empty()) return text;
    }
    return {};
  }
};

// ---- The two side by side ----

struct HeldLine {
  Ref<VoucherEntry> real;
  LineModel model;
};
struct HeldDetail {
  Ref<VoucherDetail> real;
  ViewModel model;
};
struct HeldEntries {
  Ref<VoucherEntrySet> real;
  ListViewModel model;
};

// What an operation answers or raises, as text.
std::string Outcome(const std::function<std::string()>& operation) {
  try {
    return operation();
  } catch (const Error& error) {
    return error.what();
  }
}

class VoucherTreeRandomTest : public ::testing::Test {
 protected:
  static constexpr Long kMostLines = 4;
  static constexpr Long kMostDetails = 3;
  static constexpr std::size_t kMostHeld = 3;

  VoucherTreeRandomTest() {
    const Ref<Dictionary> loaded = Row({{"FVoucherID", Long{7}}, {"FNumber", Long{1}}});
    auto loaded_model = std::make_shared<RowModel>();
    loaded_model->Put("FVoucherID", {Long{7}, nullptr});
    loaded_model->Put("FNumber", {Long{1}, nullptr});
    voucher->Construct(loaded, Nothing);
    model.Construct(loaded_model);
  }

  Long Below(Long end) { return static_cast<Long>(random() % static_cast<std::uint32_t>(end)); }
  bool OneIn(Long chances) { return Below(chances) == 0; }
  // A position in a list of `count` elements, sometimes one outside.
  Long PositionIn(Long count) { return OneIn(12) ? Below(count + 3) - 1 : Below(count) + 1; }
  template <class T>
  const T& OneOf(const std::vector<T>& all) {
    return all[static_cast<std::size_t>(Below(static_cast<Long>(all.size())))];
  }
  Currency SomeAmount() {
    static const std::vector<Currency> amounts = {0, 0, 100, 40, -5, 7};
    return OneOf(amounts);
  }
  String SomeText() {
    static const std::vector<String> texts = {"", "", "a", "b", "c"};
    return OneOf(texts);
  }

  void Both(const std::function<std::string()>& real,
            const std::function<std::string()>& expected) {
    const std::string answer = Outcome(real);
    EXPECT_EQ(answer, Outcome(expected)) << last_step;
  }
  // For operations that answer nothing.
  void BothDo(const std::function<void()>& real, const std::function<void()>& expected) {
    Both(
        [&] {
          real();
          return std::string();
        },
        [&] {
          expected();
          return std::string();
        });
  }

  std::string RealState() const {
    std::string text = "id " + std::to_string(voucher->VoucherID()) + " " + State(*voucher) + " " +
                       FlagText(*voucher->Properties()->ChangeFlag()) + "\nbaseline " +
                       StateText(Variant(voucher->DictOrig()));
    for (const HeldLine& held : lines) {
      text +=
          "\nline " + State(*held.real) + " " + FlagText(*held.real->Properties()->ChangeFlag());
    }
    for (const HeldDetail& held : details) text += "\ndetail " + State(*held.real);
    for (const HeldEntries& held : lists) {
      text += "\nlist of " + std::to_string(held.real->Count()) +
              (held.real->Modified() ? " modified" : "");
    }
    return text;
  }
  std::string ModelState() const {
    std::string text = "id " + std::to_string(model.id) + " " + ViewText(*model.row, *model.flag) +
                       " " + model.flag->Text() + "\nbaseline " +
                       (model.baseline ? model.baseline->Text() : "Nothing");
    for (const HeldLine& held : lines) {
      text += "\nline " + held.model.Text() + " " + held.model.flag->Text();
    }
    for (const HeldDetail& held : details) text += "\ndetail " + held.model.Text();
    for (const HeldEntries& held : lists) {
      text += "\nlist of " + std::to_string(held.model.list->Count()) +
              (held.model.flag->Modified() ? " modified" : "");
    }
    return text;
  }
  static std::string ViewText(const RowModel& row, const FlagModel& flag) {
    return row.Text() + (row.Modified() ? " modified" : "") + (flag.Modified() ? " flagged" : "");
  }

  template <class Held>
  void Hold(std::vector<Held>& all, Held held) {
    if (all.size() < kMostHeld) {
      all.push_back(std::move(held));
    } else {
      all[static_cast<std::size_t>(Below(static_cast<Long>(kMostHeld)))] = std::move(held);
    }
  }

  // ---- Steps ----

  void EditHeader() {
    const Long number = Below(3);
    switch (Below(4)) {
      case 0:
        last_step = "Number = " + std::to_string(number);
        voucher->Number(number);
        HeaderModel().Store("FNumber", number);
        break;
      case 1:
        last_step = "Explanation is written and read";
        voucher->Explanation("header");
        HeaderModel().Store("FExplanation", "header");
        Both([&] { return voucher->Explanation(); }, [&] { return model.Explanation(); });
        break;
      case 2:
        last_step = "a key is written past the bag";
        voucher->Properties()->Dictionary()->Value("FDirect", number);
        model.row->Put("FDirect", {number, nullptr});
        break;
      default:
        last_step = "a key is written through the bag";
        voucher->Properties()->Item("FByName")->Value(number);
        HeaderModel().Store("FByName", number);
    }
  }
  // The header as a view; the voucher's bag is bound already, so nothing is tracked anew.
  ViewModel HeaderModel() const {
    ViewModel view;
    view.row = model.row;
    view.flag = model.flag;
    return view;
  }

  // A fresh view of the lines, or one that was taken earlier.
  HeldEntries SomeEntries() {
    if (!lists.empty() && OneIn(4)) {
      return OneOf(lists);
    }
    HeldEntries entries{voucher->Entries(), model.Entries()};
    if (OneIn(10)) Hold(lists, entries);
    return entries;
  }

  // A line of the voucher, one taken earlier, or nothing when the position is not there.
  std::optional<HeldLine> SomeLine() {
    if (!lines.empty() && OneIn(3)) {
      return OneOf(lines);
    }
    const HeldEntries entries = SomeEntries();
    const Long index = PositionIn(std::max<Long>(1, entries.model.list->Count()));
    std::optional<HeldLine> line;
    Both(
        [&] {
          const auto found = entries.real->Item(index);
          if (found) line = HeldLine{found, {}};
          return found ? State(*found) : "Nothing";
        },
        [&]() -> std::string {
          if (index > entries.model.list->Count()) return "Nothing";
          const LineModel found = entries.model.AtItsFlag(index);
          if (line) line->model = found;
          return found.Text();
        });
    if (line && OneIn(4)) Hold(lines, *line);
    return line;
  }

  void EditEntries() {
    const HeldEntries entries = SomeEntries();
    const Long count = entries.model.list->Count();
    const bool full = count >= kMostLines;
    switch (Below(full ? 4 : 7)) {
      case 0: {
        const Long index = PositionIn(std::max<Long>(1, count));
        last_step = "Remove " + std::to_string(index);
        BothDo([&] { entries.real->Remove(index); }, [&] { entries.model.Remove(index); });
        break;
      }
      case 1: {
        const Long wanted = OneIn(20) ? -1 : Below(kMostLines + 1);
        last_step = "Count = " + std::to_string(wanted);
        BothDo([&] { entries.real->Count(wanted); }, [&] { entries.model.Count(wanted); });
        break;
      }
      case 2: PutLineInto(entries); break;
      case 3:
        last_step = "a walk over the lines";
        WalkLines(entries, OneIn(2));
        break;
      case 4:
        last_step = "Add";
        entries.real->Add();
        entries.model.Add();
        break;
      case 5: {
        const Long index = Below(count + 1) + 1;
        last_step = "Add at " + std::to_string(index);
        BothDo([&] { entries.real->Add(index); }, [&] { entries.model.Add(index); });
        break;
      }
      default: MakeHole();
    }
  }

  void PutLineInto(const HeldEntries& entries) {
    HeldLine line;
    if (!lines.empty() && OneIn(2)) {
      line = OneOf(lines);
    } else {
      line.real = entries.real->CreateNewEntry();
      line.model = ViewModel(std::make_shared<RowModel>(), std::make_shared<FlagModel>());
      Hold(lines, line);
    }
    const Long index = PositionIn(std::max<Long>(1, entries.model.list->Count()));
    last_step = "Item set at " + std::to_string(index);
    BothDo([&] { entries.real->Item(index, line.real); },
           [&] {
             entries.model.list->CheckIndex(index);
             entries.model.list->rows[static_cast<std::size_t>(index - 1)] = line.model.row;
             entries.model.list->touched = true;
             entries.model.flag->At(static_cast<std::size_t>(index))->own = true;
           });
  }

  void WalkLines(const HeldEntries& entries, bool writes) {
    const Currency amount = SomeAmount();
    Long position = 0;
    for (auto& line : *entries.real) {
      const LineModel line_model = entries.model.AtItsFlag(++position);
      EXPECT_EQ(State(line), line_model.Text());
      if (writes && OneIn(2)) {
        line.Credit(amount);
        line_model.On(0, amount);
        if (OneIn(4)) Hold(lines, {Ref<VoucherEntry>(&line), line_model});
      }
    }
    EXPECT_EQ(position, entries.model.list->Count());
  }

  // A hole, as an import past the library leaves it.
  void MakeHole() {
    const ListViewModel list = model.Entries();
    voucher->Entries();
    if (list.list->rows.empty()) return;
    const Long index = Below(list.list->Count()) + 1;
    last_step = "a hole at " + std::to_string(index);
    voucher->Properties()->Dictionary()->Value("_Entries").As<Vector>()->Item(index, Nothing);
    list.list->rows[static_cast<std::size_t>(index - 1)] = nullptr;
    list.list->touched = true;
  }

  void EditLine() {
    last_step = "a line is taken";
    const std::optional<HeldLine> line = SomeLine();
    if (!line) return;
    VoucherEntry& real = *line->real;
    const LineModel& mirror = line->model;
    const Currency amount = SomeAmount();
    const String text = SomeText();
    const Long number = Below(3);
    switch (Below(12)) {
      case 0:
        last_step = "Debit = " + amount.ToText();
        real.Debit(amount);
        mirror.On(1, amount);
        break;
      case 1:
        last_step = "Credit = " + amount.ToText();
        real.Credit(amount);
        mirror.On(0, amount);
        break;
      case 2:
        last_step = "Amount = " + amount.ToText();
        BothDo([&] { real.Amount(amount); }, [&] { mirror.Amount(amount); });
        break;
      case 3:
        last_step = "DC = " + std::to_string(number);
        BothDo([&] { real.DC(number); }, [&] { mirror.Side(number); });
        break;
      case 4:
        last_step = "AccountID = " + std::to_string(number);
        real.AccountID(number);
        mirror.StoreOrClear("FAccountID", number, Long{0});
        break;
      case 5:
        last_step = "Explanation = " + text;
        real.Explanation(text);
        mirror.StoreOrClear("FExplanation", text, "");
        break;
      case 6:
        last_step = "Quantity = " + std::to_string(number);
        real.Quantity(number);
        mirror.Store("FQuantity", static_cast<Double>(number));
        break;
      case 7:
        last_step = "CussentFrameWorkNum is written and read";
        if (OneIn(2)) {
          real.CussentFrameWorkNum(text);
          mirror.Store("FCussentFrameWorkNum", text);
        }
        EXPECT_EQ(real.CussentFrameWorkNum(), "");
        mirror.ReadFrameWorkNum();
        break;
      case 8:
        last_step = "IsEmpty";
        EXPECT_EQ(real.IsEmpty(), mirror.IsEmpty());
        break;
      case 9:
        last_step = "Clone of a line";
        Hold(lines, {real.Clone(), mirror.Clone()});
        break;
      case 10:
        // Loaded data may have a side that no line can be given.
        last_step = "a bad side comes in past the line";
        real.Properties()->Dictionary()->Value("FDC", Long{2});
        mirror.row->Put("FDC", {Long{2}, nullptr});
        break;
      default:
        last_step = "a line is read";
        EXPECT_EQ(real.Debit(), mirror.On(1));
        EXPECT_EQ(real.Credit(), mirror.On(0));
        EXPECT_EQ(real.Modified(), mirror.flag->Modified());
    }
  }

  void EditDetails() {
    last_step = "a line is taken for its details";
    const std::optional<HeldLine> line = SomeLine();
    if (!line) return;
    const Ref<VoucherDetailSet> real = line->real->Details();
    const ListViewModel mirror = line->model.Details();
    const Long count = mirror.list->Count();
    const Long index = PositionIn(std::max<Long>(1, count));
    const Long number = Below(3);
    switch (Below(count >= kMostDetails ? 5 : 8)) {
      case 0:
        last_step = "Remove of detail " + std::to_string(index);
        BothDo([&] { real->Remove(index); }, [&] { mirror.Remove(index); });
        break;
      case 1:
        last_step = "Count of details = " + std::to_string(number);
        real->Count(number);
        mirror.Count(number);
        break;
      case 2: FindDetail(*real, mirror, number); break;
      case 3: WalkDetails(*real, mirror, number); break;
      case 4:
        last_step = "detail " + std::to_string(index) + " is written";
        WriteDetail(*real, mirror, index, number);
        break;
      case 5:
        last_step = "Add of a detail at " + std::to_string(count + 1);
        BothDo([&] { real->Add(count + 1); }, [&] { mirror.Add(count + 1); });
        break;
      default:
        last_step = "Add of a detail";
        real->Add();
        mirror.Add();
    }
  }

  void WriteDetail(VoucherDetailSet& real, const ListViewModel& mirror, Long index, Long number) {
    HeldDetail detail;
    BothDo(
        [&] {
          detail.real = real.Item(index);
          detail.real->ItemClassID(number);
        },
        [&] {
          detail.model = mirror.AtTheSharedFlag(index);
          detail.model.StoreOrClear("FItemClassID", number, Long{0});
        });
    if (detail.real && OneIn(3)) Hold(details, detail);
  }

  void FindDetail(VoucherDetailSet& real, const ListViewModel& mirror, Long id) {
    last_step = "FindItem of " + std::to_string(id);
    const Ref<VoucherDetail> found = real.FindItem(id);
    std::optional<ViewModel> expected;
    for (Long i = 1; i <= mirror.list->Count() && !expected; ++i) {
      const ViewModel detail = mirror.AtItsFlag(i);
      if (detail.row->Value("FItemClassID", Long{0}).As<Long>() == id) expected = detail;
    }
    ASSERT_EQ(found != nullptr, expected.has_value()) << last_step;
    if (!found) return;
    EXPECT_EQ(State(*found), expected->Text());
    found->Value("found");
    expected->Store("FValue", "found");
    if (OneIn(3)) Hold(details, {found, *expected});
  }

  void WalkDetails(VoucherDetailSet& real, const ListViewModel& mirror, Long number) {
    last_step = "a walk over details";
    Long position = 0;
    for (auto& detail : real) {
      const ViewModel expected = mirror.AtItsFlag(++position);
      EXPECT_EQ(State(detail), expected.Text());
      if (position == number) {
        detail.Value("walked");
        expected.Store("FValue", "walked");
      }
    }
    EXPECT_EQ(position, mirror.list->Count());
  }

  void EditHeldDetail() {
    if (details.empty()) return;
    const HeldDetail& held = OneOf(details);
    const String text = SomeText();
    last_step = "a detail taken earlier is written";
    held.real->Value(text);
    held.model.StoreOrClear("FValue", text, "");
  }

  void UseVoucher() {
    switch (Below(6)) {
      case 0:
        last_step = "CancelChanges";
        voucher->CancelChanges();
        model.TakeBaseline(true);
        break;
      case 1:
        last_step = "Refresh1";
        voucher->Refresh1();
        model.Construct(model.row);
        break;
      case 2:
        last_step = "ResetModified";
        voucher->ResetModified();
        model.flag->Reset();
        break;
      case 3:
        last_step = "Clone takes the voucher's place";
        voucher = voucher->Clone();
        model = model.Clone();
        break;
      case 4:
        last_step = "Construct of Nothing";
        if (!OneIn(10)) return;
        voucher->Construct(Nothing, Nothing);
        model.Construct(nullptr);
        break;
      default:
        last_step = "totals";
        WalkLines({voucher->Entries(), model.Entries()}, false);
        Both([&] { return voucher->DebitTotal().ToText(); },
             [&] { return model.Total(1).ToText(); });
        Both([&] { return voucher->CreditTotal().ToText(); },
             [&] { return model.Total(0).ToText(); });
    }
  }

  void Step() {
    switch (Below(20)) {
      case 0: EditHeader(); break;
      case 1: EditHeldDetail(); break;
      case 2: UseVoucher(); break;
      default:
        switch (Below(3)) {
          case 0: EditEntries(); break;
          case 1: EditLine(); break;
          default: EditDetails();
        }
    }
    EXPECT_EQ(voucher->Modified(), model.flag->Modified());
    EXPECT_EQ(RealState(), ModelState()) << "after: " << last_step;
  }

  std::mt19937 random;
  Ref<Voucher> voucher = Make<Voucher>();
  VoucherModel model;
  std::vector<HeldLine> lines;
  std::vector<HeldDetail> details;
  std::vector<HeldEntries> lists;
  std::string last_step = "none";
};

TEST_F(VoucherTreeRandomTest, IsTheSameAsItsModelAfterEveryStep) {
  constexpr int kSteps = 2000;
  const std::uint32_t seed = RandomSeed();
  random.seed(seed);
  for (int step = 1; step <= kSteps && !HasFailure(); ++step) {
    SCOPED_TRACE("QDCLGL_SEED=" + std::to_string(seed) + ", step " + std::to_string(step));
    Step();
  }
}

}  // namespace
}  // namespace qdclgl
