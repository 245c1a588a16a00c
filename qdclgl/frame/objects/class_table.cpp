#include "qdclgl/frame/objects/class_table.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

namespace {

[[noreturn]] void BadRow(std::string_view class_name, const MemberRow& row, const char* what) {
  throw Error(error_number::kInvalidCall, std::string(class_name) + "." + std::string(row.name),
              what);
}

// The same for names that differ in ASCII case only (and for some others, which the comparison
// behind a hit tells apart). Eight bytes at a time; the last eight may overlap those before them.
std::uint32_t HashIgnoringCase(std::string_view name) {
  std::uint64_t hash = name.size();
  const auto mix = [&hash](std::uint64_t word) {
    hash = (hash ^ (word | 0x2020202020202020u)) * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 32;
  };
  if (name.size() < 8) {
    std::uint64_t word = 0;
    for (const char c : name) word = word << 8 | static_cast<unsigned char>(c);
    mix(word);
    return static_cast<std::uint32_t>(hash);
  }
  const auto word_at = [&name](std::size_t offset) {
    std::uint64_t word;
    std::memcpy(&word, name.data() + offset, sizeof word);
    return word;
  };
  for (std::size_t i = 0; i + 8 < name.size(); i += 8) mix(word_at(i));
  mix(word_at(name.size() - 8));
  return static_cast<std::uint32_t>(hash);
}

// The value of a default as a row writes it: a number, a quoted text, true or false.
Variant DefaultFromText(std::string_view text, std::string_view type) {
  const Variant written = text == "true"          ? Variant(true)
                          : text == "false"       ? Variant(false)
                          : text.starts_with('"') ? Variant(text.substr(1, text.size() - 2))
                                                  : Variant(Val(text));
  if (type == "Long") return CLng(written);
  if (type == "Integer") return CInt(written);
  if (type == "Double") return CDbl(written);
  if (type == "Single") return CSng(written);
  if (type == "Currency") return CCur(written);
  if (type == "Date") return CDate(written);
  if (type == "Boolean") return CBool(written);
  return written;
}

// "(const Variant& Key, Long lngDelSign = 0)" beside the types of the signature.
std::vector<MemberParameter> ReadParameters(std::string_view class_name, const MemberRow& row) {
  std::vector<MemberParameter> parameters;
  std::string_view text = row.parameters;
  if (text.size() >= 2) text = text.substr(1, text.size() - 2);
  while (!TrimBlanks(text).empty()) {
    const auto comma = text.find(',');
    std::string_view part = TrimBlanks(text.substr(0, comma));
    text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);

    MemberParameter parameter;
    parameter.default_value = Missing;
    if (parameters.size() == row.parameter_types.size())
      BadRow(class_name, row, "a comma too many");
    parameter.type = row.parameter_types[parameters.size()].type;
    parameter.by_ref = row.parameter_types[parameters.size()].by_ref;
    if (const auto equals = part.find('='); equals != std::string_view::npos) {
      parameter.optional = true;
      const std::string_view value = TrimBlanks(part.substr(equals + 1));
      if (value == "{}") {
        parameter.default_value =
            DefaultFromText(parameter.type == "String" ? "\"\"" : "0", parameter.type);
      } else if (value != "Missing") {
        parameter.default_value = DefaultFromText(value, parameter.type);
        parameter.default_text =
            parameter.type == "Boolean" ? CStr(parameter.default_value) : value;
      }
      part = TrimBlanks(part.substr(0, equals));
    }
    const auto name = part.find_last_of(" &*");
    if (name == std::string_view::npos) BadRow(class_name, row, "a parameter without a name");
    parameter.name = part.substr(name + 1);
    parameters.push_back(std::move(parameter));
  }
  if (parameters.size() != row.parameter_types.size())
    BadRow(class_name, row, "a parameter is lost");
  return parameters;
}

// What a member is used as: how it is called, and whether a value stands behind the arguments.
struct Use {
  Invoker invoke = nullptr;
  bool takes_value = false;
};

Use FindUse(const MemberRow& row, CallKind kind, std::span<Argument> arguments) {
  if (Includes(kind, CallKind::kMethod) && row.method != nullptr) return {row.method, false};
  if (Includes(kind, CallKind::kGet) && row.get != nullptr) return {row.get, false};
  // An object may be put either way; what the row has serves both.
  if (Includes(kind, CallKind::kSet)) return {row.set != nullptr ? row.set : row.let, true};
  if (Includes(kind, CallKind::kLet)) {
    if (row.let != nullptr) return {row.let, true};
    const auto value = std::find_if(arguments.rbegin(), arguments.rend(),
                                    [](const Argument& given) { return given.name().empty(); });
    if (value != arguments.rend() && value->Value().IsObject()) return {row.set, true};
  }
  return {};
}

// Puts named arguments into their places and fills in what was left out.
std::vector<Argument> Arrange(const ClassMember& member, std::span<Argument> arguments,
                              bool takes_value) {
  const std::size_t count = member.parameters.size();
  std::vector<std::optional<Argument>> places(count + (takes_value ? 1 : 0));
  std::size_t positional = 0;
  while (positional < arguments.size() && arguments[positional].name().empty()) ++positional;
  if (takes_value) {
    if (positional == 0) RaiseError(error_number::kWrongArgumentCount);
    places.back() = arguments[--positional];
  }
  if (positional > count) RaiseError(error_number::kWrongArgumentCount);
  for (std::size_t i = 0; i < positional; ++i) places[i] = arguments[i];
  for (const Argument& argument : arguments.subspan(positional + (takes_value ? 1 : 0))) {
    const auto parameter = std::find_if(
        member.parameters.begin(), member.parameters.end(),
        [&](const MemberParameter& p) { return EqualsIgnoringAsciiCase(p.name, argument.name()); });
    // A positional argument behind a named one has the empty name, which no parameter has.
    if (parameter == member.parameters.end()) RaiseError(error_number::kNamedArgumentNotFound);
    auto& place = places[static_cast<std::size_t>(parameter - member.parameters.begin())];
    if (place) RaiseError(error_number::kWrongArgumentCount);
    place = argument;
  }

  std::vector<Argument> arranged;
  arranged.reserve(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] && !places[i]->IsMissing()) {
      arranged.push_back(*places[i]);
    } else if (i < count && member.parameters[i].optional) {
      arranged.emplace_back(member.parameters[i].default_value);
    } else {
      RaiseError(error_number::kArgumentNotOptional);
    }
  }
  return arranged;
}

}  // namespace

ClassTable::ClassTable(const ClassDescription& description) : description_(description) {
  members_.reserve(description.rows.size());
  slots_.resize(std::bit_ceil(2 * description.rows.size() + 2));
  for (const MemberRow& row : description.rows) {
    if (Find(row.name) != nullptr) BadRow(name(), row, "the name stands twice");
    const auto index = static_cast<std::int32_t>(members_.size());
    members_.push_back({row, index + 1, ReadParameters(name(), row)});
    const std::uint32_t hash = HashIgnoringCase(row.name);
    std::size_t slot = hash & (slots_.size() - 1);
    while (slots_[slot].member >= 0) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = {hash, index};
    if (row.options.is_default_member) {
      if (default_member_ != nullptr) BadRow(name(), row, "a second default member");
      default_member_ = &members_.back();
    }
  }
}

Ref<Object> ClassTable::Create() const {
  if (!creatable()) {
    throw Error(error_number::kCannotCreateObject, std::string(name()),
                "Objects of this class come from other objects.");
  }
  return description_.create();
}

const ClassMember* ClassTable::Find(std::string_view name) const {
  const std::uint32_t hash = HashIgnoringCase(name);
  for (std::size_t slot = hash & (slots_.size() - 1); slots_[slot].member >= 0;
       slot = (slot + 1) & (slots_.size() - 1)) {
    const ClassMember& member = members_[static_cast<std::size_t>(slots_[slot].member)];
    if (slots_[slot].hash != hash) continue;
    // Most callers write a name as it stands in the row; that is the quick comparison.
    if (member.row.name == name || EqualsIgnoringAsciiCase(member.row.name, name)) return &member;
  }
  return nullptr;
}

Variant ClassTable::Invoke(Object& self, std::string_view member_name, CallKind kind,
                           std::span<Argument> arguments) const {
  const ClassMember* member = Find(member_name);
  if (member == nullptr) {
    throw Error(error_number::kMemberNotFound, std::string(name()),
                "No member " + std::string(member_name) + ".");
  }
  return Invoke(self, *member, kind, arguments);
}

Variant ClassTable::Invoke(Object& self, const ClassMember& member, CallKind kind,
                           std::span<Argument> arguments) const {
  return Bind(member, kind, arguments).Invoke(self);
}

BoundCall ClassTable::Bind(const ClassMember& member, CallKind kind,
                           std::span<Argument> arguments) const {
  const Use use = FindUse(member.row, kind, arguments);
  if (use.invoke == nullptr) {
    throw Error(error_number::kMemberNotFound, std::string(name()),
                "The member " + std::string(member.row.name) + " can't be used this way.");
  }
  const bool in_place =
      arguments.size() == member.parameters.size() + (use.takes_value ? 1 : 0) &&
      std::all_of(arguments.begin(), arguments.end(), [](const Argument& argument) {
        return argument.name().empty() && !argument.IsMissing();
      });
  if (in_place) return {use.invoke, arguments};
  return {use.invoke, Arrange(member, arguments, use.takes_value)};
}

// ---- What every object does with its table ----

Variant Object::Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) {
  CheckThread();
  const ClassTable* members = Members();
  if (members == nullptr) {
    throw Error(error_number::kMemberNotFound, std::string(ClassName()),
                "No member " + std::string(name) + ".");
  }
  return members->Invoke(*this, name, kind, arguments);
}

Variant Object::PlainValue() {
  CheckThread();
  const ClassTable* members = Members();
  const ClassMember* member = members != nullptr ? members->default_member() : nullptr;
  if (member == nullptr || !member->parameters.empty()) {
    throw Error(error_number::kMemberNotFound, std::string(ClassName()),
                "The object has no default value.");
  }
  return members->Invoke(*this, *member, CallKind::kMethod | CallKind::kGet, {});
}

}  // namespace qdclgl
