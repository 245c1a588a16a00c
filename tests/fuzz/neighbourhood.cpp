#include "tests/fuzz/neighbourhood.h"

#include <exception>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/qdclgl.h"
#include "tests/fuzz/values.h"

namespace qdclgl::fuzz {
namespace {

constexpr int kDeepestAnswer = 4;  // of calls back in calls out
constexpr int kDeepestValue = 3;

const Tell kSilence = [](const std::string&) {};

class Neighbour final : public Object {
 public:
  explicit Neighbour(Neighbourhood& home) : home_(home) {}
  ~Neighbour() override {
    try {
      home_.Answer("ends", {});
    } catch (const Error&) {
      // A destructor has no way to tell of an error.
    }
  }
  std::string_view ClassName() const override { return "Neighbour"; }
  Variant Invoke(std::string_view name, CallKind, std::span<Argument> arguments) override {
    return home_.Answer(name, arguments);
  }
  Variant PlainValue() override { return home_.Answer("default", {}); }

 private:
  Neighbourhood& home_;
};

std::string KindText(CallKind kind) {
  std::string text;
  if (Includes(kind, CallKind::kMethod)) text += " call";
  if (Includes(kind, CallKind::kGet)) text += " get";
  if (Includes(kind, CallKind::kLet)) text += " let";
  if (Includes(kind, CallKind::kSet)) text += " set";
  return text;
}

}  // namespace

// ---- Variables ----

Variables::Variable& Variables::Any(Choices& choices, const Variant& value) {
  if (!variables_.empty() && choices.OneIn(6))
    return choices.OneIn(2) ? variables_.front() : variables_.back();
  switch (choices.Below(17)) {
    case 0: return variables_.emplace_back(Boolean{});
    case 1: return variables_.emplace_back(Byte{7});
    case 2: return variables_.emplace_back(Integer{7});
    case 3: return variables_.emplace_back(AnyLong(choices));
    case 4: return variables_.emplace_back(Single{1.5});
    case 5: return variables_.emplace_back(AnyDouble(choices));
    case 6: return variables_.emplace_back(Currency(1));
    case 7: return variables_.emplace_back(DateTime(AnyDouble(choices)));
    case 8: return variables_.emplace_back(Decimal(0, 15, 1, true));
    case 9: return variables_.emplace_back(AnyText(choices));
    case 10: return variables_.emplace_back(Ref<Dictionary>());
    case 11: return variables_.emplace_back(Ref<Recordset>());
    case 12: return variables_.emplace_back(Ref<Voucher>());
    case 13:
      return variables_.emplace_back(value.IsObject() ? Ref<Object>(value.ObjectPointer())
                                                      : Ref<Object>());
    default: return variables_.emplace_back(value);
  }
}

Argument Variables::Refer(Choices& choices, const Variant& value) {
  return std::visit([](auto& variable) { return Argument(ByRef(variable)); }, Any(choices, value));
}

Argument Variables::Refer(Choices& choices, const Variant& value, std::string_view name) {
  return std::visit([&](auto& variable) { return Argument(Named(name, ByRef(variable))); },
                    Any(choices, value));
}

// ---- The neighbourhood ----

Neighbourhood::Neighbourhood(Choices& choices)
    : former_gateway_(SetServerGateway(this)), circles_(choices.OneIn(2)) {
  former_creator_ = SetForeignComponentCreator(
      [this](std::string_view prog_id) { return CreateInstance(prog_id, Missing); });
  SetApartmentStarted(choices.OneIn(2));
  During(choices, kSilence, [&] {
    if (choices.OneIn(2)) SetSessionObject(Make<Neighbour>(*this));
    for (Ref<Object>& slot : slots_) slot = NewObject(choices);
  });
}

Neighbourhood::~Neighbourhood() {
  SetSessionObject(Nothing);
  SetForeignComponentCreator(former_creator_);
  SetServerGateway(former_gateway_);
}

Ref<Object> Neighbourhood::CreateInstance(std::string_view prog_id, const Variant&) {
  if (choices_ != nullptr && choices_->OneIn(30)) {
    if (choices_->OneIn(2)) return Nothing;
    throw Error(error_number::kCannotCreateObject, "Neighbourhood", std::string(prog_id));
  }
  return Make<Neighbour>(*this);
}

void Neighbourhood::During(Choices& choices, const Tell& tell, const std::function<void()>& act) {
  choices_ = &choices;
  tell_ = &tell;
  try {
    act();
  } catch (const Error&) {
    // Errors are what may come of a call.
  } catch (...) {
    choices_ = nullptr;
    throw;
  }
  choices_ = nullptr;
}

void Neighbourhood::Step(Choices& choices, const Tell& tell) {
  During(choices, tell, [&] { Call(choices, tell); });
}

// Everything that can be read is read once more.
void Neighbourhood::End() {
  Choices choices(0);
  const auto kept = slots_;
  for (const Ref<Object>& object : kept) {
    if (!object || object->Members() == nullptr) continue;
    for (const ClassMember& member : object->Members()->members()) {
      if (member.row.get == nullptr || !member.parameters.empty()) continue;
      During(choices, kSilence, [&] { object->Get(member.row.name); });
    }
  }
  During(choices, kSilence, [&] { slots_ = {}; });
}

std::string Neighbourhood::Place(const Object* object) const {
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].get() == object) return "#" + std::to_string(i);
  }
  return "";
}

void Neighbourhood::Keep(Choices& choices, const Variant& value) {
  if (!value.IsObject() || value.IsNothing() || choices.OneIn(3)) return;
  slots_[choices.Below(kSlots)] = Ref<Object>(value.ObjectPointer());
}

// ---- Values ----

Ref<Dictionary> Neighbourhood::AnyRow(Choices& choices) {
  auto row = Make<Dictionary>();
  for (std::size_t left = choices.OneIn(100) ? 3000 : choices.Below(12); left > 0; --left) {
    if (choices.OneIn(6)) {
      row->Put(AnyText(choices), AnyValue(choices));
    } else {
      row->Put(choices.Of(RowKeys()),
               choices.OneIn(3) ? AnyValue(choices) : AnyPlainValue(choices));
    }
  }
  // A document's lines.
  if (choices.OneIn(2) && built_ < kDeepestValue) {
    row->Put(std::string_view(choices.OneIn(2) ? "_Entries" : "_Details"),
             Variant(AnyVector(choices)));
  }
  if (choices.OneIn(2)) row->SetTrackState(AnyLong(choices));
  return row;
}

Ref<Vector> Neighbourhood::AnyVector(Choices& choices) {
  auto vector = Make<Vector>();
  if (choices.OneIn(3)) vector->LowerBound(choices.OneIn(2) ? 0 : AnyLong(choices) / 2);
  ++built_;
  for (std::size_t left = choices.Below(6); left > 0; --left) {
    vector->Append(choices.OneIn(3) ? AnyValue(choices) : Variant(AnyRow(choices)));
  }
  --built_;
  return vector;
}

Ref<Recordset> Neighbourhood::AnyRecordset(Choices& choices) {
  auto list = Make<Recordset>();
  const std::size_t columns = choices.Below(8);
  try {
    for (std::size_t i = 0; i < columns; ++i) {
      list->AppendField(choices.OneIn(8) ? AnyText(choices) : std::string(choices.Of(RowKeys())));
    }
    if (choices.OneIn(10)) return list;
    list->Open();
    for (std::size_t rows = choices.Below(5); rows > 0; --rows) {
      std::vector<Variant> row;
      for (Long i = 0; i < list->FieldCount(); ++i) row.push_back(AnyValue(choices));
      list->AddRow(std::move(row));
    }
  } catch (const Error&) {
    // Two columns of one name, or a list that is not open.
  }
  return list;
}

Ref<Object> Neighbourhood::NewObject(Choices& choices) {
  switch (choices.Below(9)) {
    case 0: return AnyRow(choices);
    case 1: return AnyVector(choices);
    case 2: return AnyRecordset(choices);
    case 3: return Make<Collection>();
    case 4: return Make<Neighbour>(*this);
    case 5: {
      const auto voucher = Make<Voucher>();
      try {
        voucher->Construct(AnyRow(choices), Nothing);
        voucher->Entries()->Count(static_cast<Long>(choices.Below(4)));
      } catch (const Error&) {
      }
      return voucher;
    }
    default:
      for (;;) {
        const ClassTable& table = *choices.Of(PublicClasses());
        if (!table.creatable()) continue;
        Ref<Object> object = table.Create();
        if (table.Find("Construct") == nullptr || choices.OneIn(2)) return object;
        try {
          object->Call("Construct", AnyRow(choices), Nothing);
        } catch (const Error&) {
        }
        return object;
      }
  }
}

Ref<Object> Neighbourhood::AnyObject(Choices& choices) {
  if (choices.OneIn(20)) return Nothing;
  if (circles_ && choices.OneIn(2)) return choices.Of(slots_);
  return NewObject(choices);
}

Variant Neighbourhood::AnyValue(Choices& choices) {
  if (built_ >= kDeepestValue || !choices.OneIn(3)) return AnyPlainValue(choices);
  ++built_;
  Variant value(AnyObject(choices));
  --built_;
  return value;
}

Variant Neighbourhood::SuitingValue(Choices& choices, std::string_view type) {
  if (type == "Dictionary") return Variant(AnyRow(choices));
  if (type == "Recordset") return Variant(AnyRecordset(choices));
  if (type == "Vector") return Variant(AnyVector(choices));
  if (type == "Object") return Variant(AnyObject(choices));
  if (const ClassTable* table = FindPublicClass(type); table != nullptr && table->creatable()) {
    return Variant(table->Create());
  }
  if (type == "String") return AnyText(choices);
  if (type == "Boolean") return choices.OneIn(2);
  if (type == "Long" || type == "Integer" || type == "Byte") {
    return choices.OneIn(2) ? static_cast<Long>(choices.Below(6)) : AnyLong(choices);
  }
  if (type == "Double" || type == "Single" || type == "Currency") return AnyDouble(choices);
  if (type == "Date") {
    return choices.OneIn(2) ? DateTime::FromYmd(2024, 1, 31) : DateTime(AnyDouble(choices));
  }
  return AnyValue(choices);
}

// ---- Calls ----

Argument Neighbourhood::AnyArgument(Choices& choices, const MemberParameter& parameter,
                                    Variables& variables) {
  if (choices.OneIn(15)) return Variant(Missing);
  const Variant value =
      choices.OneIn(4) ? AnyValue(choices) : SuitingValue(choices, parameter.type);
  return choices.OneIn(3) ? variables.Refer(choices, value) : Argument(value);
}

void Neighbourhood::Call(Choices& choices, const Tell& tell) {
  const Ref<Object> object = choices.Of(slots_);
  if (!object || choices.OneIn(25)) {
    tell("a new object");
    slots_[choices.Below(kSlots)] = choices.OneIn(8) ? Ref<Object>() : NewObject(choices);
    return;
  }
  const std::string place = std::string(static_cast<std::size_t>(2 * nesting_), ' ') +
                            Place(object.get()) + ":" + std::string(object->ClassName()) + ".";
  if (object->Members() == nullptr) {
    if (object->ClassName() != Enumerator::kClassName) return;
    tell(place + "Next, twenty times");
    for (int left = 20; left > 0; --left) {
      Variant element;
      if (!object->Call("Next", ByRef(element)).As<Boolean>()) break;
      Keep(choices, element);
    }
    return;
  }

  const auto& members = object->Members()->members();
  const ClassMember* chosen = &choices.Of(members);
  // Plain reads are many, and seldom do harm.
  if (chosen->row.let == nullptr && chosen->row.get != nullptr && chosen->parameters.empty()) {
    chosen = &choices.Of(members);
  }
  const ClassMember& member = *chosen;
  CallKind kind = CallKind::kMethod | CallKind::kGet;
  bool takes_value = false;
  if ((member.row.let != nullptr || member.row.set != nullptr) && choices.OneIn(2)) {
    kind = member.row.set == nullptr || choices.OneIn(2) ? CallKind::kLet : CallKind::kSet;
    takes_value = true;
  } else if (choices.OneIn(30)) {
    kind = static_cast<CallKind>(choices.Below(16));
  }
  Variables variables;
  std::vector<Argument> arguments;
  const std::size_t named_from =
      choices.OneIn(4) && !takes_value ? choices.Below(member.parameters.size() + 1) : SIZE_MAX;
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    const MemberParameter& parameter = member.parameters[i];
    if (parameter.optional && choices.OneIn(3)) {
      if (!takes_value) break;
      arguments.emplace_back(Variant(Missing));
    } else if (i >= named_from) {
      const std::string_view name = choices.OneIn(20) ? "Nobody" : std::string_view(parameter.name);
      const Variant value = SuitingValue(choices, parameter.type);
      arguments.push_back(choices.OneIn(2) ? variables.Refer(choices, value, name)
                                           : Argument(Named(name, value)));
    } else {
      arguments.push_back(AnyArgument(choices, parameter, variables));
    }
  }
  if (takes_value) {
    const Variant value =
        choices.OneIn(4) ? AnyValue(choices) : SuitingValue(choices, member.row.type);
    arguments.push_back(choices.OneIn(5) ? variables.Refer(choices, value) : Argument(value));
  }
  if (choices.OneIn(40)) arguments.emplace_back(AnyValue(choices));
  if (choices.OneIn(40) && !arguments.empty()) arguments.pop_back();

  std::string words = place + std::string(member.row.name) + KindText(kind) + "(";
  for (const Argument& argument : arguments) {
    if (words.back() != '(') words += ", ";
    if (!argument.name().empty()) words += std::string(argument.name()) + ":=";
    const Variant value = argument.Value();
    words += (argument.IsByRef() ? "ref " : "") + ShortText(value) +
             (value.IsObject() ? Place(value.ObjectPointer()) : "");
  }
  tell(words + ")");
  try {
    Keep(choices, object->Invoke(member.row.name, kind, arguments));
    for (const Argument& argument : arguments) {
      if (argument.IsByRef()) Keep(choices, argument.Value());
    }
  } catch (const Error&) {
  }
}

Variant Neighbourhood::Answer(std::string_view name, std::span<Argument> arguments) {
  if (choices_ == nullptr || nesting_ >= kDeepestAnswer) return Long{8};
  Choices& choices = *choices_;
  ++nesting_;
  struct Leave {
    int& nesting;
    ~Leave() { --nesting; }
  } leave{nesting_};
  if (choices.OneIn(12)) Call(choices, *tell_);
  if (choices.OneIn(30)) slots_[choices.Below(kSlots)] = Nothing;
  if (choices.OneIn(4)) {
    for (const Argument& argument : arguments) {
      if (argument.IsByRef() && choices.OneIn(2)) argument.Put(AnyPlainValue(choices));
    }
  }
  if (choices.OneIn(10)) throw Error(4711, "Neighbour", AnyText(choices));
  if (choices.OneIn(4)) return AnyValue(choices);
  if (name.starts_with("GetList")) return Variant(AnyRecordset(choices));
  if (name.starts_with("GetDetail") || name == "ListProfiles") return Variant(AnyRow(choices));
  if (name == "Clone") return Variant(AnyObject(choices));
  return AnyPlainValue(choices);
}

}  // namespace qdclgl::fuzz
