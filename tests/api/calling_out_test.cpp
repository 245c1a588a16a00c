// All members of all classes with a hostile neighbour: whatever they call (server components, a
// session, `Clone` methods, default values, destructors of what they release) does some harm at one
// of its calls. The members are called as a C++ caller calls them: nobody but the test holds the
// object. What is tested is that nothing but an error comes of it (the sanitizers watch), and that
// the object can be used afterwards.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "qdclgl/api/class_list.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/ledgers/multi_ledger.h"
#include "qdclgl/masterdata/item_class.h"
#include "qdclgl/vouchers/voucher.h"
#include "tests/support/recording_server.h"
#include "tests/support/test_objects.h"

namespace qdclgl {
namespace {

using testing::Row;

class Neighbourhood;

// Everything that our objects call out to.
class Neighbour final : public Object {
 public:
  explicit Neighbour(Neighbourhood& home) : home_(home) {}
  ~Neighbour() override;
  std::string_view ClassName() const override { return "Neighbour"; }
  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override;
  Variant PlainValue() override;

 private:
  Neighbourhood& home_;
};

// What a neighbour does at the chosen call.
struct Deed {
  std::string name;
  std::function<void(Neighbourhood&)> act = {};
  Variant answer = Missing;  // in place of the right one
};

class Neighbourhood final : public Gateway {
 public:
  Neighbourhood() : former_(SetServerGateway(this)) {}
  ~Neighbourhood() override {
    subject = nullptr;
    SetServerGateway(former_);
  }

  Ref<Object> CreateInstance(std::string_view, const Variant&) override {
    Act();
    return Make<Neighbour>(*this);
  }

  // Calls `member` and gives how many calls out it made, the `position`-th of them with the deed.
  int Run(const std::function<void()>& member, int position, const Deed& deed) {
    calls_ = 0;
    position_ = position;
    deed_ = &deed;
    try {
      member();
    } catch (const Error&) {
    }
    deed_ = nullptr;
    return calls_;
  }

  // A call out: the deed, when it is the one that was chosen. True when its answer counts.
  bool Act() {
    ++calls_;
    if (deed_ == nullptr || calls_ != position_ || busy_) return false;
    busy_ = true;
    try {
      if (deed_->act) deed_->act(*this);
    } catch (...) {
      busy_ = false;
      throw;
    }
    busy_ = false;
    return !deed_->answer.IsMissing();
  }

  Variant AnswerOf(std::string_view method) {
    if (Act()) return deed_->answer;
    if (method.ends_with("List") || method == "GetListByAccount") return Variant(List());
    if (method.find("Detail") != method.npos) return Variant(FullRow());
    if (method == "ListProfiles") return Variant(Row({{"CurrentPeriod", "5"}}));
    if (method == "Clone") return Variant(Make<Neighbour>(*this));
    if (method == "CheckExistCashProfit") return Long{3};
    return Long{8};
  }

  // A row that holds an object.
  Ref<Dictionary> FullRow() {
    auto row = Row({{"Held", Variant(Make<Neighbour>(*this))}});
    for (const std::string_view id :
         {"FGroupID", "FAccountID", "FCurrencyID", "FVoucherID", "FMeasureUnitID", "FUnitGroupID",
          "FItemID", "FTypeID", "FItemClassID"}) {
      row->Put(id, Variant(Long{5}));
    }
    return row;
  }
  // The same with neighbours under the key of a member, or under all keys that have rules.
  Ref<Dictionary> HostileRow(std::string_view key_of_member) {
    auto row = FullRow();
    if (!key_of_member.empty()) {
      row->Put(key_of_member, Variant(Make<Neighbour>(*this)));
      return row;
    }
    for (const std::string_view key :
         {"FDC", "FAmount", "FMeasureUnit", "CashFlow", "FTransDate", "FApprover", "FExchangeRate",
          "FOperator", "FNumber", "FName", "FNewName", "FPageName", "FDataType"}) {
      row->Put(key, Variant(Make<Neighbour>(*this)));
    }
    return row;
  }
  Ref<Recordset> List() {
    auto list = Recordset::Create({"FGroupID", "Held"});
    for (int i = 0; i < 3; ++i) {
      list->AddRow({Variant(Long{5}), Variant(Make<Neighbour>(*this))});
    }
    return list;
  }

  Ref<Object> subject;

 private:
  Gateway* former_;
  int calls_ = 0;
  int position_ = 0;
  const Deed* deed_ = nullptr;
  bool busy_ = false;
};

Neighbour::~Neighbour() {
  try {
    home_.Act();
  } catch (...) {
    // A destructor has no way to tell of an error.
  }
}

Variant Neighbour::Invoke(std::string_view name, CallKind, std::span<Argument>) {
  return home_.AnswerOf(name);
}

Variant Neighbour::PlainValue() { return home_.AnswerOf("default"); }

// ---- What neighbours do ----

// Calls a member of the subject when it is one of those that have it.
void CallBack(Neighbourhood& home, std::string_view name, std::initializer_list<Variant> values,
              CallKind kind = CallKind::kMethod) {
  const Ref<Object> subject = home.subject;
  if (!subject) return;
  std::vector<Argument> arguments(values.begin(), values.end());
  try {
    subject->Invoke(name, kind, arguments);
  } catch (const Error&) {
  }
}

std::vector<Deed> Deeds(Neighbourhood& home) {
  std::vector<Deed> deeds = {
      {"nothing"},
      {"raises", [](Neighbourhood&) { throw Error(4711, "Neighbour", "words"); }},
      {"releases the caller's last reference", [](Neighbourhood& it) { it.subject = nullptr; }},
      {"cancels the changes", [](Neighbourhood& it) { CallBack(it, "CancelChanges", {}); }},
      {"constructs",
       [](Neighbourhood& it) {
         CallBack(it, "Construct", {Variant(it.FullRow()), Variant(Nothing)});
       }},
      {"constructs of nothing",
       [](Neighbourhood& it) {
         CallBack(it, "Construct", {Variant(Nothing), Variant(Nothing)});
       }},
      {"refreshes", [](Neighbourhood& it) { CallBack(it, "Refresh", {}); }},
      {"saves", [](Neighbourhood& it) { CallBack(it, "SaveChanges", {}); }},
      {"takes the recordset away",
       [](Neighbourhood& it) { CallBack(it, "RecordSet", {Variant(Nothing)}, CallKind::kSet); }},
      {"puts another recordset",
       [](Neighbourhood& it) { CallBack(it, "RecordSet", {Variant(it.List())}, CallKind::kSet); }},
      {"takes all lines away",
       [](Neighbourhood& it) { CallBack(it, "Count", {Variant(Long{0})}, CallKind::kLet); }},
      {"adds a line", [](Neighbourhood& it) { CallBack(it, "Add", {Variant(Long{1})}); }},
      {"removes a line", [](Neighbourhood& it) { CallBack(it, "Remove", {Variant(Long{1})}); }},
  };
  const std::pair<const char*, Variant> answers[] = {
      {"Empty", Variant()},
      {"Null", Null},
      {"Nothing", Nothing},
      {"a number", Long{7}},
      {"a text", "seven"},
      {"a byte array", Variant(Bytes{})},
      {"a Dictionary", Variant(Make<Dictionary>())},
      {"a Vector", Variant(Make<Vector>())},
      {"a closed recordset", Variant(Make<Recordset>())},
      {"an object of its own", Variant(Make<Neighbour>(home))},
  };
  for (const auto& [kind, answer] : answers) {
    deeds.push_back({"answers with " + std::string(kind), {}, answer});
  }
  return deeds;
}

// ---- The members ----

// A new object of a class of ledgers or their columns; Nothing for other classes.
Ref<Object> NewOfLedger(Neighbourhood& home, const ClassTable& table,
                        std::string_view key_of_member) {
  const auto ledger = Make<MultiLedger>();
  const Ref<Dictionary> row = home.HostileRow(key_of_member);
  for (const std::string_view key : {"_Columns", "_SubColumns"}) {
    auto list = Make<Vector>();
    for (int i = 0; i < 3; ++i) {
      const Ref<Dictionary> column = home.HostileRow(key_of_member);
      if (key_of_member.empty()) column->Put("FAccountNumber", Variant(Make<Neighbour>(home)));
      list->Append(Variant(column));
    }
    row->Put(key, Variant(list));
  }
  ledger->Construct(row, Nothing);
  ledger->LedgerName("Edited");
  if (table.name() == "MultiLedger") return ledger;
  if (table.name() == "MultiColumnSet") return ledger->Columns();
  if (table.name() == "MultiColumn") return ledger->Columns()->Item(1);
  if (table.name() == "MultiSubColumnSet") return ledger->SubColumns();
  if (table.name() == "MultiSubColumn") return ledger->SubColumns()->Item(1);
  return Nothing;
}

// An item class whose fields have neighbours in their rows.
Ref<ItemClass> NewItemClass(Neighbourhood& home, std::string_view key_of_member) {
  auto fields = Make<Vector>();
  for (const Integer id : {Integer{101}, Integer{102}, Integer{103}}) {
    const Ref<Dictionary> field = home.HostileRow(key_of_member);
    field->Put("FPropID", id);
    fields->Append(Variant(field));
  }
  const Ref<Dictionary> row = home.FullRow();
  row->Put("_PropDesc", Variant(fields));
  auto item_class = Make<ItemClass>();
  item_class->Construct(row, Nothing);
  return item_class;
}

// A new object of the class with neighbours in its row; held by nobody else.
Ref<Object> NewSubject(Neighbourhood& home, const ClassTable& table,
                       std::string_view key_of_member) {
  if (Ref<Object> of_ledger = NewOfLedger(home, table, key_of_member)) return of_ledger;
  if (table.name() == "ItemClass") return NewItemClass(home, key_of_member);
  if (table.name().find("CustomProperty") != std::string_view::npos) {
    const Ref<CustomPropertySet> set = NewItemClass(home, key_of_member)->CustomProperties();
    if (table.name() == "CustomPropertySet") return set;
    if (table.name() == "CustomProperty") return set->Item(2);
  }
  if (table.creatable()) {
    Ref<Object> object = table.Create();
    if (table.Find("Construct") != nullptr && table.Find("Properties") == nullptr) {
      object->Call("Construct", Make<Neighbour>(home), Long{5}, "Old");
      object->Let("Name", "Edited");
    } else if (table.Find("Construct") != nullptr) {
      const Ref<Dictionary> row = home.HostileRow(key_of_member);
      auto list = Make<Vector>();
      list->Append(Variant(home.HostileRow("FAmount")));
      row->Put("_Entries", Variant(list));
      object->Call("Construct", row, Nothing);
      object->Get("Properties").As<Properties>()->SetValue("Edited", Variant(1));
    }
    return object;
  }
  const auto voucher = Make<Voucher>();
  voucher->Construct(home.FullRow(), Nothing);
  const Ref<VoucherEntrySet> entries = voucher->Entries();
  const auto bag_of = [&](RowView& view) {
    const Ref<Dictionary> row = home.HostileRow(key_of_member);
    for (std::uint32_t i = 0; i < row->size(); ++i) {
      view.Properties()->Dictionary()->Put(row->key_at(i), row->value_at(i));
    }
  };
  entries->Count(3);
  for (auto& entry : entries) bag_of(entry);
  const Ref<VoucherDetailSet> details = entries->Item(1)->Details();
  details->Count(2);
  for (auto& detail : details) bag_of(detail);
  if (table.name() == "VoucherEntrySet") return entries;
  if (table.name() == "VoucherEntry") return entries->Item(1);
  if (table.name() == "VoucherDetailSet") return details;
  if (table.name() == "VoucherDetail") return details->Item(1);
  if (table.name() == "Properties") return voucher->Properties();
  if (table.name() == "Property") return voucher->Properties()->Item("Held");
  ADD_FAILURE() << "there is no way to make a " << table.name();
  return Nothing;
}

enum class Style { kNumbers, kTexts, kObjects };

Argument ValueOf(Neighbourhood& home, std::string_view type, Style style) {
  if (type == "Dictionary") return Variant(home.FullRow());
  if (type == "Recordset") return Variant(home.List());
  if (type == "Voucher" || type == "VoucherEntry") {
    return Variant(NewSubject(home, *FindPublicClass(type), {}));
  }
  if (type == "Object") return Variant(Make<Neighbour>(home));
  if (style == Style::kObjects) {
    if (type == "Variant") return Variant(Make<Neighbour>(home));
    return Variant(Long{1});
  }
  if (type == "String") return Variant("GL");
  return style == Style::kTexts ? Variant("1") : Variant(Long{1});
}

struct Use {
  const char* kind;
  Invoker invoke;
  bool takes_value;
};

std::vector<Use> UsesOf(const MemberRow& row) {
  std::vector<Use> uses;
  for (const Use& use : {Use{"call", row.method, false}, Use{"get", row.get, false},
                         Use{"let", row.let, true}, Use{"set", row.set, true}}) {
    if (use.invoke != nullptr) uses.push_back(use);
  }
  return uses;
}

void ReadAll(Object& object, const ClassTable& table) {
  for (const ClassMember& member : table.members()) {
    if (member.row.get == nullptr || !member.parameters.empty()) continue;
    try {
      member.row.get(object, nullptr);
    } catch (const Error&) {
    }
  }
}

class CallingOutWalk : public ::testing::TestWithParam<const ClassTable*> {};

TEST_P(CallingOutWalk, NothingButAnErrorComesOfWhatANeighbourDoes) {
  const ClassTable& table = *GetParam();
  const testing::RecordingServer server;
  Neighbourhood home;
  const std::vector<Deed> deeds = Deeds(home);
  int runs = 0;
  for (const ClassMember& member : table.members()) {
    for (const Use& use : UsesOf(member.row)) {
      const bool takes_any = use.takes_value || !member.parameters.empty();
      for (const Style style : {Style::kNumbers, Style::kTexts, Style::kObjects}) {
        if (style != Style::kNumbers && !takes_any) continue;
        for (const Deed& deed : deeds) {
          for (int position = 1, calls = position; position <= calls; ++position, ++runs) {
            SCOPED_TRACE(std::string(table.name()) + "." + std::string(member.row.name) + " " +
                         use.kind + ", call " + std::to_string(position) + " " + deed.name);
            home.subject = NewSubject(home, table, member.row.key);
            std::vector<Argument> arguments;
            for (const MemberParameter& parameter : member.parameters) {
              arguments.push_back(ValueOf(home, parameter.type, style));
            }
            if (use.takes_value) arguments.push_back(ValueOf(home, member.row.type, style));
            calls = home.Run(
                [&] {
                  Variant result = use.invoke(*home.subject, arguments.data());
                  arguments.clear();
                  if (!result.IsObject() || result.IsNothing()) return;
                  if (const auto enumerator = result.ObjectPointer();
                      enumerator->ClassName() == Enumerator::kClassName) {
                    Variant element;
                    while (enumerator->Call("Next", ByRef(element)).As<Boolean>()) {
                    }
                  }
                },
                position, deed);
            if (const Ref<Object> left = home.subject) ReadAll(*left, table);
            home.subject = nullptr;
          }
          if (::testing::Test::HasFailure()) return;
        }
      }
    }
  }
  RecordProperty("runs", runs);
  EXPECT_GT(runs, 100);
}

INSTANTIATE_TEST_SUITE_P(AllClasses, CallingOutWalk,
                         ::testing::ValuesIn(PublicClasses().begin(), PublicClasses().end()),
                         [](const auto& instance) { return std::string(instance.param->name()); });

}  // namespace
}  // namespace qdclgl
