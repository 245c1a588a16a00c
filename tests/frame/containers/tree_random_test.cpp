// Long random sequences of operations on two bags over trees of rows and lists that share some of
// their parts, with a tree of flags each, against a plain model. After each operation the whole
// state is compared as text. A failure tells the seed; QDCLGL_SEED repeats the run.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/entities/properties.h"
#include "qdclgl/frame/entities/walkers.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "tests/support/random_seed.h"
#include "tests/support/state_text.h"
#include "tests/support/test_objects.h"
#include "tests/support/view_state.h"

namespace qdclgl {
namespace {

using testing::ErrorOf;
using testing::FlagText;
using testing::StateText;

// ---- Plain values ----

struct Sample {
  Variant value;
  std::string state;  // as StateText has it
  std::string text;   // as the bag reads it
  enum { kEmpty, kNull, kNumber, kText } kind;
  double number = 0;
};

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> samples = {
      {Variant(), "Empty", "", Sample::kEmpty},
      {Null, "Null", "", Sample::kNull},
      {0, "0", "0", Sample::kNumber, 0},
      {-1, "-1", "-1", Sample::kNumber, -1},
      {5, "5", "5", Sample::kNumber, 5},
      {Integer{5}, "5%", "5", Sample::kNumber, 5},
      {2.5, "2.5#", "2.5", Sample::kNumber, 2.5},
      {Currency(5), "5@", "5", Sample::kNumber, 5},
      {true, "True", "True", Sample::kNumber, -1},
      {false, "False", "False", Sample::kNumber, 0},
      {"", "\"\"", "", Sample::kText},
      {"5", "\"5\"", "5", Sample::kText},
      {"longer than a value", "\"longer than a value\"", "longer than a value", Sample::kText},
  };
  return samples;
}

bool AreEqual(const Sample& left, const Sample& right) {
  if (left.kind == Sample::kNull || right.kind == Sample::kNull) return false;
  if (left.kind == Sample::kEmpty || right.kind == Sample::kEmpty) {
    const Sample& other = left.kind == Sample::kEmpty ? right : left;
    return other.kind == Sample::kNumber ? other.number == 0 : other.text.empty();
  }
  if (left.kind != right.kind) return false;
  return left.kind == Sample::kNumber ? left.number == right.number : left.text == right.text;
}

// ---- The model of the data ----

struct Node;
using NodeRef = std::shared_ptr<Node>;

struct Cell {
  const Sample* sample = nullptr;  // null for an object
  NodeRef node;                    // null for Nothing
};

// A row, with a key for each cell, or a list.
struct Node {
  bool is_list = false;
  Long lower_bound = 1;
  std::vector<std::string> keys;
  std::vector<Cell> cells;
  bool modified = false;
  bool touched = false;
  bool tracks_nested = false;

  void MarkEdited() { modified = touched = true; }
  std::size_t PositionOf(const std::string& key) const {
    return static_cast<std::size_t>(std::find(keys.begin(), keys.end(), key) - keys.begin());
  }
  const Cell* Find(const std::string& key) const {
    const std::size_t position = PositionOf(key);
    return position < cells.size() ? &cells[position] : nullptr;
  }
  void Put(const std::string& key, Cell cell) {
    const std::size_t position = PositionOf(key);
    if (position == keys.size()) {
      keys.push_back(key);
      cells.push_back(std::move(cell));
    } else {
      cells[position] = std::move(cell);
    }
    MarkEdited();
  }
  void Erase(const std::string& key) {
    const auto position = static_cast<std::ptrdiff_t>(PositionOf(key));
    if (position == std::ssize(keys)) return;
    keys.erase(keys.begin() + position);
    cells.erase(cells.begin() + position);
    MarkEdited();
  }

  bool TouchedWithin() const { return touched || AnyCellTouched(); }
  bool AnyCellTouched() const {
    return std::any_of(cells.begin(), cells.end(),
                       [](const Cell& cell) { return cell.node && cell.node->TouchedWithin(); });
  }
  void ClearCellsTouched() {
    for (const Cell& cell : cells) {
      if (!cell.node) continue;
      cell.node->touched = false;
      cell.node->ClearCellsTouched();
    }
  }
  bool Modified() const { return modified || (tracks_nested && AnyCellTouched()); }
  void ResetModified() {
    modified = false;
    if (tracks_nested) ClearCellsTouched();
  }
  void SetTrackState(Long state) {
    tracks_nested = state != 0;
    ResetModified();
  }

  NodeRef ShallowCopy() const {
    auto copy = std::make_shared<Node>();
    copy->is_list = is_list;
    copy->lower_bound = lower_bound;
    copy->keys = keys;
    copy->cells = cells;
    return copy;
  }
  // Rows are copied to the bottom; a list directly inside a list is copied shallow.
  NodeRef DeepCopy() const {
    NodeRef copy = ShallowCopy();
    for (Cell& cell : copy->cells) {
      if (!cell.node) continue;
      const bool shallow = is_list && cell.node->is_list;
      cell.node = shallow ? cell.node->ShallowCopy() : cell.node->DeepCopy();
    }
    return copy;
  }

  bool Reaches(const Node& other) const {
    return this == &other || std::any_of(cells.begin(), cells.end(), [&](const Cell& cell) {
             return cell.node && cell.node->Reaches(other);
           });
  }
  std::size_t Size() const {
    std::size_t size = 1 + cells.size();
    for (const Cell& cell : cells) size += cell.node ? cell.node->Size() : 0;
    return size;
  }
};

std::string Text(const Node& node);

std::string Text(const Cell& cell) {
  if (cell.sample != nullptr) return cell.sample->state;
  return cell.node ? Text(*cell.node) : "Nothing";
}

std::string Text(const Node& node) {
  std::string text;
  for (std::size_t i = 0; i < node.cells.size(); ++i) {
    if (i > 0) text += ", ";
    if (!node.is_list) text += node.keys[i] + ": ";
    text += Text(node.cells[i]);
  }
  if (!node.is_list) return "{" + text + "}";
  const std::string bound = node.lower_bound == 1 ? "" : std::to_string(node.lower_bound) + ": ";
  return "[" + bound + text + "]";
}

// What each container from the top tells of edits: a row whether it is modified, each whether the
// container above it will count it.
std::string Marks(const Node& node) {
  std::string text = node.is_list ? "" : node.Modified() ? "m" : "-";
  text += node.TouchedWithin() ? "t " : ". ";
  for (const Cell& cell : node.cells) {
    if (cell.node) text += Marks(*cell.node);
  }
  return text;
}

std::string Marks(const Variant& value) {
  const Ref<Object> object = value.As<Object>();
  if (!object) return "";
  std::string text;
  if (auto* row = dynamic_cast<Dictionary*>(object.get())) {
    text = row->Modified() ? "m" : "-";
    text += row->TouchedWithin() ? "t " : ". ";
    for (std::uint32_t i = 0; i < row->size(); ++i) {
      if (row->value_at(i).IsObject()) text += Marks(row->value_at(i));
    }
  } else {
    const Ref<Vector> list = value.As<Vector>();
    text = list->TouchedWithin() ? "t " : ". ";
    for (std::size_t i = 0; i < list->size(); ++i) {
      if (list->at(i).IsObject()) text += Marks(list->at(i));
    }
  }
  return text;
}

// ---- The model of the flags ----

struct Flag;
using FlagRef = std::shared_ptr<Flag>;

struct Flag {
  struct Child {
    std::optional<std::string> key;  // in upper case
    FlagRef flag;
  };
  bool modified = false;
  std::vector<Child> children;

  std::size_t PositionOf(const std::string& key) const {
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const Child& child) { return child.key == key; });
    return static_cast<std::size_t>(found - children.begin());
  }
  FlagRef Item(Long position) {
    if (position < 1) return nullptr;
    while (std::ssize(children) < position) children.push_back({{}, std::make_shared<Flag>()});
    return children[static_cast<std::size_t>(position) - 1].flag;
  }
  FlagRef Item(const std::string& key) {
    const std::size_t position = PositionOf(ToUpper(key));
    if (position == children.size()) {
      children.push_back({ToUpper(key), std::make_shared<Flag>()});
    }
    return children[position].flag;
  }
  std::string Insert(Long position) {
    if (std::ssize(children) < position) return "no error";
    if (position < 1) return "error 9";
    const std::string key = std::to_string(position);
    if (PositionOf(key) < children.size()) return "error 457";
    children.insert(children.begin() + (position - 1), {key, std::make_shared<Flag>()});
    return "no error";
  }
  void Remove(std::size_t offset) {
    if (offset < children.size()) {
      children.erase(children.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    modified = true;
  }
  void Reset() {
    modified = false;
    for (const Child& child : children) child.flag->Reset();
  }
  bool Modified() const {
    return modified || std::any_of(children.begin(), children.end(),
                                   [](const Child& child) { return child.flag->Modified(); });
  }
  std::size_t Size() const {
    std::size_t size = 1;
    for (const Child& child : children) size += child.flag->Size();
    return size;
  }
};

std::string Text(const Flag& flag) {
  std::string children;
  for (const Flag::Child& child : flag.children) {
    children += (children.empty() ? "" : " ") + Text(*child.flag);
  }
  const std::string text = flag.modified ? "*" : flag.Modified() ? "+" : "-";
  return children.empty() ? text : text + "[" + children + "]";
}

// ---- The test ----

const std::vector<std::string> kKeys = {"FName", "FNAME", "FDebit", "_Entries", "_Details", ""};
const std::vector<std::string> kFlagKeys = {"_Entries", "_ENTRIES", "_Details", "1", "2"};

// The bag and its model.
struct Document {
  Ref<Properties> bag = Make<Properties>();
  NodeRef row;
  FlagRef flag;
};

std::string ActualText(const Document& document) {
  const Properties& bag = *document.bag;
  const Variant dictionary(bag.Dictionary());
  std::string text = StateText(dictionary) + "\n" + Marks(dictionary) + "\n" +
                     FlagText(*bag.ChangeFlag()) + "\n" + std::to_string(bag.Count());
  for (const std::string& key : kKeys) {
    for (const Variant& value : {bag.GetValue(key), bag.GetValue(key, 3)}) {
      text += value.IsObject() ? " object" : " " + StateText(value);
    }
  }
  return text + "\n";
}

std::string ExpectedText(const Document& document) {
  std::string text = Text(*document.row) + "\n" + Marks(*document.row) + "\n" +
                     Text(*document.flag) + "\n" + std::to_string(document.row->cells.size());
  for (const std::string& key : kKeys) {
    const Cell* cell = document.row->Find(key);
    if (cell != nullptr && cell->sample == nullptr) {
      text += " object object";
    } else {
      const bool has_text = cell != nullptr && !cell->sample->text.empty();
      text += " \"" + (has_text ? cell->sample->text : "") + "\" " +
              (has_text ? cell->sample->state : "3");
    }
  }
  return text + "\n";
}

class RandomTree {
 public:
  explicit RandomTree(std::uint32_t seed) : random_(seed) {
    for (Document& document : documents_) Clear(document);
  }

  // Does one operation on both sides and compares what came of it.
  void Step() {
    Document& document = Choose(documents_);
    if (document.row->Size() > 30 || document.flag->Size() > 20) {
      Clear(document);
    } else {
      Operate(document);
    }
    ASSERT_EQ(actual_outcome_, expected_outcome_) << operation_;
    for (const Document& each : documents_) {
      ASSERT_EQ(ActualText(each), ExpectedText(each)) << operation_;
    }
  }

 private:
  // A place in a tree: the way to it by offsets, and what the model has there.
  struct Place {
    const Document* document;
    std::vector<std::size_t> path;
    NodeRef node;
  };
  struct FlagPlace {
    Ref<ChangeFlag> actual;
    FlagRef expected;
  };
  // One value for both sides.
  struct Value {
    Variant actual;
    Cell expected;
  };

  Long Number(Long least, Long greatest) {
    return std::uniform_int_distribution<Long>(least, greatest)(random_);
  }
  template <class Elements>
  auto Choose(Elements& elements) -> decltype((elements[0])) {
    return elements[static_cast<std::size_t>(
        Number(0, static_cast<Long>(std::size(elements)) - 1))];
  }

  template <class Operation>
  void Actual(Operation operation) {
    actual_outcome_ = ErrorOf(operation);
  }

  void Clear(Document& document) {
    operation_ = "clear";
    document.bag->Attach(Nothing, false, Nothing, 0);
    document.row = std::make_shared<Node>();
    document.flag = std::make_shared<Flag>();
    expected_outcome_ = actual_outcome_ = "no error";
  }

  static void Collect(Place place, std::vector<Place>& places) {
    places.push_back(place);
    for (std::size_t i = 0; i < place.node->cells.size(); ++i) {
      if (!place.node->cells[i].node) continue;
      Place below = place;
      below.path.push_back(i);
      below.node = place.node->cells[i].node;
      Collect(std::move(below), places);
    }
  }
  // Any container of any document that `accept` takes.
  template <class Accept>
  std::optional<Place> ChoosePlace(Accept accept) {
    std::vector<Place> places;
    for (const Document& document : documents_) Collect({&document, {}, document.row}, places);
    std::erase_if(places, [&](const Place& place) { return !accept(*place.node); });
    if (places.empty()) return std::nullopt;
    return Choose(places);
  }
  std::optional<Place> ChooseRow() {
    return ChoosePlace([](const Node& node) { return !node.is_list; });
  }
  static Variant At(const Place& place) {
    Variant value(place.document->bag->Dictionary());
    for (const std::size_t step : place.path) {
      if (auto* row = dynamic_cast<Dictionary*>(value.ObjectPointer())) {
        value = Variant(row->value_at(static_cast<std::uint32_t>(step)));
      } else {
        value = Variant(value.As<Vector>()->at(step));
      }
    }
    return value;
  }

  FlagPlace ChooseFlag(const Document& document) {
    FlagPlace place = {document.bag->ChangeFlag(), document.flag};
    while (!place.expected->children.empty() && Number(0, 1) == 1) {
      const Long position = Number(1, static_cast<Long>(place.expected->children.size()));
      place = {place.actual->Item(position), place.expected->Item(position)};
    }
    return place;
  }

  Value PlainValue() {
    const Sample& sample = Choose(Samples());
    return {sample.value, {&sample, nullptr}};
  }
  // A new row or list, Nothing, or a container that stands somewhere already. It is not to lie
  // above `container`, which is to hold it.
  Value ObjectValue(const Node& container) {
    switch (Number(0, 3)) {
      case 0: {
        auto row = Make<Dictionary>();
        auto node = std::make_shared<Node>();
        for (Long i = Number(0, 3); i > 0; --i) {
          const std::string& key = Choose(kKeys);
          const Value value = PlainValue();
          row->Put(key, value.actual);
          node->Put(key, value.expected);
        }
        return {Variant(row), {nullptr, node}};
      }
      case 1: {
        auto list = Make<Vector>();
        auto node = std::make_shared<Node>();
        node->is_list = true;
        node->lower_bound = Number(0, 2);
        list->LowerBound(node->lower_bound);
        for (Long i = Number(0, 2); i > 0; --i) {
          const Value value = PlainValue();
          list->Append(value.actual);
          node->cells.push_back(value.expected);
          node->MarkEdited();
        }
        return {Variant(list), {nullptr, node}};
      }
      case 2:
        if (const auto place =
                ChoosePlace([&](const Node& node) { return !node.Reaches(container); })) {
          return {At(*place), {nullptr, place->node}};
        }
        break;
    }
    return {Nothing, {}};
  }
  Value AnyValue(const Node& container) {
    return Number(0, 1) == 0 ? PlainValue() : ObjectValue(container);
  }

  void Operate(Document& document) {
    expected_outcome_ = "no error";
    switch (Number(0, 10)) {
      case 0: WriteValue(document); break;
      case 1: WriteObject(document); break;
      case 2: WriteThroughProperty(document); break;
      case 3: WriteThroughChild(document); break;
      case 4: Attach(document); break;
      case 5: EditRow(); break;
      case 6: SetTracking(); break;
      case 7:
      case 8: EditFlag(document); break;
      default: EditList(); break;
    }
  }

  void WriteValue(Document& document) {
    const std::string& key = Choose(kKeys);
    const Value value = PlainValue();
    const Value other = PlainValue();
    document.flag->modified = true;
    switch (Number(0, 2)) {
      case 0:
        operation_ = "SetValue " + key;
        Actual([&] { document.bag->SetValue(key, value.actual); });
        document.row->Put(key, value.expected);
        break;
      case 1:
        operation_ = "SetValue with a default " + key;
        Actual([&] { document.bag->SetValue(key, value.actual, other.actual); });
        if (AreEqual(*value.expected.sample, *other.expected.sample)) {
          document.row->Erase(key);
        } else {
          document.row->Put(key, value.expected);
        }
        break;
      default:
        operation_ = "ClearValue " + key;
        Actual([&] { document.bag->ClearValue(key); });
        document.row->Erase(key);
        break;
    }
  }

  void WriteObject(Document& document) {
    const std::string& key = Choose(kKeys);
    const Value value = ObjectValue(*document.row);
    operation_ = "SetObject " + key;
    Actual([&] { document.bag->SetObject(key, value.actual.As<Object>()); });
    if (value.expected.node) {
      document.row->Put(key, value.expected);
    } else {
      document.row->Erase(key);
    }
    document.flag->modified = true;
  }

  void WriteThroughProperty(Document& document) {
    const Value value = AnyValue(*document.row);
    const Long count = static_cast<Long>(document.row->cells.size());
    const Long position = Number(0, count + 1);
    operation_ = "property " + std::to_string(position);
    Actual([&] { document.bag->Item(position)->Value(value.actual); });
    if (position < 1 || position > count) {
      expected_outcome_ = "error 5";
    } else {
      document.row->Put(document.row->keys[static_cast<std::size_t>(position) - 1], value.expected);
      document.flag->modified = true;
    }
  }

  // A view that shares a row for one write, with a child flag of the document.
  void WriteThroughChild(Document& document) {
    const auto place = ChooseRow();
    const std::string& key = Choose(kKeys);
    const Value value = PlainValue();
    const Long position = Number(1, 3);
    operation_ = "child " + std::to_string(position) + " " + key;
    const Ref<Dictionary> row = At(*place).As<Dictionary>();
    Actual([&] {
      const auto child = Make<Properties>();
      child->Attach(row, true, document.bag->ChangeFlag()->Item(position), 0);
      child->SetValue(key, value.actual);
    });
    place->node->SetTrackState(0);
    place->node->Put(key, value.expected);
    document.flag->Item(position)->modified = true;
  }

  void Attach(Document& document) {
    const auto place = ChooseRow();
    const FlagPlace flag = ChooseFlag(Choose(documents_));
    const bool with_flag = Number(0, 1) == 1;
    const Long track_state = Number(0, 1);
    const Ref<Dictionary> row = At(*place).As<Dictionary>();
    const Ref<ChangeFlag> actual_flag = with_flag ? flag.actual : nullptr;
    switch (Number(0, 2)) {
      case 0:
        operation_ = "attach shared";
        Actual([&] { document.bag->Attach(row, true, actual_flag, track_state); });
        document.row = place->node;
        break;
      case 1:
        operation_ = "attach a deep copy";
        Actual([&] { document.bag->Attach(row, false, actual_flag, track_state); });
        document.row = place->node->DeepCopy();
        break;
      default:
        operation_ = "attach a shallow copy";
        Actual([&] { document.bag->Attach(row->Clone(), true, actual_flag, track_state); });
        document.row = place->node->ShallowCopy();
        break;
    }
    document.row->SetTrackState(track_state);
    document.flag = with_flag ? flag.expected : std::make_shared<Flag>();
  }

  void EditRow() {
    const auto place = ChooseRow();
    const std::string& key = Choose(kKeys);
    const Ref<Dictionary> row = At(*place).As<Dictionary>();
    if (Number(0, 2) == 0) {
      operation_ = "remove in a row " + key;
      Actual([&] { row->Remove(key); });
      place->node->Erase(key);
      place->node->MarkEdited();
    } else {
      operation_ = "write in a row " + key;
      const Value value = AnyValue(*place->node);
      Actual([&] { row->Value(key, value.actual); });
      place->node->Put(key, value.expected);
    }
  }

  void SetTracking() {
    const auto place = ChooseRow();
    const Ref<Dictionary> row = At(*place).As<Dictionary>();
    const Long state = Number(0, 2);
    if (state == 2) {
      operation_ = "ResetModified";
      Actual([&] { row->ResetModified(); });
      place->node->ResetModified();
    } else {
      operation_ = "SetTrackState " + std::to_string(state);
      Actual([&] { row->SetTrackState(state); });
      place->node->SetTrackState(state);
    }
  }

  void EditList() {
    const auto place = ChoosePlace([](const Node& node) { return node.is_list; });
    if (!place) return WriteObject(documents_[0]);
    Node& node = *place->node;
    const Ref<Vector> list = At(*place).As<Vector>();
    const Long count = static_cast<Long>(node.cells.size());
    const Long offset = Number(-1, count + 1);
    const Long index = node.lower_bound + offset;
    const bool inside = offset >= 0 && offset < count;
    const auto at = [&] { return node.cells.begin() + offset; };
    const Value value = AnyValue(node);
    const auto expect = [&](bool possible, auto edit) {
      if (possible) {
        edit();
        node.MarkEdited();
      } else {
        expected_outcome_ = "error 9";
      }
    };
    switch (Number(0, 6)) {
      case 0:
        operation_ = "append";
        Actual([&] { list->Append(value.actual); });
        expect(true, [&] { node.cells.push_back(value.expected); });
        break;
      case 1:
        operation_ = "insert at " + std::to_string(index);
        Actual([&] { list->Insert(index, value.actual); });
        expect(offset >= 0 && offset <= count, [&] { node.cells.insert(at(), value.expected); });
        break;
      case 2: {
        const Long removed = Number(1, 2);
        operation_ = "remove " + std::to_string(removed) + " at " + std::to_string(index);
        Actual([&] { list->Remove(index, removed); });
        expect(inside && offset + removed <= count,
               [&] { node.cells.erase(at(), at() + removed); });
        break;
      }
      case 3:
        operation_ = "write at " + std::to_string(index);
        Actual([&] { list->Item(index, value.actual); });
        expect(inside, [&] { *at() = value.expected; });
        break;
      case 4: {
        if (!inside && count > 0) return EditList();
        const Value object = ObjectValue(node);
        operation_ = "insert with a shift at " + std::to_string(index);
        Actual([&] { VectorInsertAt(list, index, object.actual.As<Object>()); });
        expect(inside, [&] { node.cells.insert(at(), object.expected); });
        break;
      }
      case 5:
        operation_ = "row at " + std::to_string(index);
        Actual([&] { RowAt(list, index); });
        if (inside && (at()->sample != nullptr || (at()->node && at()->node->is_list))) {
          expected_outcome_ = "error 13";
        } else if (!inside || !at()->node) {
          expect(inside, [&] { *at() = {nullptr, std::make_shared<Node>()}; });
        }
        break;
      default: {
        Document& document = Choose(documents_);
        // The copy shares the rows of a list inside the list; the document may be one of them.
        if (node.Reaches(*document.row)) return WriteObject(document);
        const std::string& key = Choose(kKeys);
        operation_ = "a copy of a list under " + key;
        Actual([&] { document.bag->SetObject(key, CloneVector(list)); });
        document.row->Put(key, {nullptr, node.DeepCopy()});
        document.flag->modified = true;
        break;
      }
    }
  }

  void EditFlag(const Document& document) {
    const FlagPlace place = ChooseFlag(document);
    const Long position = Number(0, 4);
    const Long inserted = Number(0, static_cast<Long>(place.expected->children.size()) + 1);
    const std::string& key = Choose(kFlagKeys);
    switch (Number(0, 6)) {
      case 0:
        operation_ = "flag " + std::to_string(position);
        Actual([&] { place.actual->Item(position); });
        place.expected->Item(position);
        break;
      case 1:
        operation_ = "flag " + key;
        Actual([&] { place.actual->Item(key)->Modified(true); });
        place.expected->Item(key)->modified = true;
        break;
      case 2:
        operation_ = "insert flag " + std::to_string(inserted);
        Actual([&] { place.actual->Insert(inserted); });
        expected_outcome_ = place.expected->Insert(inserted);
        break;
      case 3:
        operation_ = "remove flag " + std::to_string(position);
        Actual([&] { place.actual->Remove(position); });
        place.expected->Remove(static_cast<std::size_t>(position) - 1);
        break;
      case 4:
        operation_ = "remove flag " + key;
        Actual([&] { place.actual->Remove(key); });
        place.expected->Remove(place.expected->PositionOf(ToUpper(key)));
        break;
      case 5:
        operation_ = "reset flags";
        Actual([&] { place.actual->Reset(); });
        place.expected->Reset();
        break;
      default:
        operation_ = "set flag";
        place.expected->modified = Number(0, 1) == 1;
        Actual([&] { place.actual->Modified(place.expected->modified); });
        break;
    }
  }

  std::mt19937 random_;
  Document documents_[2];
  std::string operation_;
  std::string actual_outcome_;
  std::string expected_outcome_;
};

TEST(Tree, KeepsUpWithAPlainModelOverLongRandomEdits) {
  constexpr int kRuns = 5;
  constexpr int kSteps = 500;
  const std::uint32_t seed = testing::RandomSeed();
  RecordProperty("seed", std::to_string(seed));
  SCOPED_TRACE("QDCLGL_SEED=" + std::to_string(seed));
  for (int run = 0; run < kRuns; ++run) {
    RandomTree tree(seed + static_cast<std::uint32_t>(run));
    for (int step = 0; step < kSteps; ++step) {
      SCOPED_TRACE("run " + std::to_string(run) + ", step " + std::to_string(step));
      ASSERT_NO_FATAL_FAILURE(tree.Step());
    }
  }
}

}  // namespace
}  // namespace qdclgl
