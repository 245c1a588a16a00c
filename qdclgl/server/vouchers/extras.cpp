#include "qdclgl/server/vouchers/extras.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

// Keys keep their order. A value that JSON has no type for is an object with one key, its type.
using Json = nlohmann::ordered_json;

constexpr int kDeepestNesting = 50;

Json ToJson(const Variant& value, int depth);

// JSON has no text for what is no number or infinite.
Json FiniteToJson(double number) {
  if (!std::isfinite(number)) RaiseError(error_number::kOverflow);
  return number;
}

Json RowToJson(const Dictionary& row, int depth) {
  Json json = Json::object();
  for (std::uint32_t i = 0; i < row.size(); ++i)
    json[row.key_at(i)] = ToJson(row.value_at(i), depth);
  return json;
}

Json ToJson(const Variant& value, int depth) {
  if (depth > kDeepestNesting) RaiseError(error_number::kOutOfStackSpace);
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kMissing:
    case VariantType::kNull: return nullptr;
    case VariantType::kBoolean: return CBool(value);
    case VariantType::kByte:
    case VariantType::kInteger:
    case VariantType::kLong: return CLng(value);
    case VariantType::kSingle:
    case VariantType::kDouble: return FiniteToJson(CDbl(value));
    case VariantType::kCurrency: return {{"Currency", CStr(value)}};
    case VariantType::kDecimal: return {{"Decimal", CStr(value)}};
    case VariantType::kDate: return {{"Date", CStr(value)}};
    case VariantType::kString: return CStr(value);
    case VariantType::kObject: break;
    case VariantType::kByteArray:
    case VariantType::kError: RaiseError(error_number::kTypeMismatch);
  }
  if (value.IsNothing()) return nullptr;
  Object* object = qdclgl::detail::ObjectIn(value);
  if (auto* row = dynamic_cast<Dictionary*>(object)) {
    return {{"Dictionary", RowToJson(*row, depth + 1)}};
  }
  if (auto* list = dynamic_cast<Vector*>(object)) {
    Json elements = Json::array();
    for (std::size_t i = 0; i < list->size(); ++i)
      elements.push_back(ToJson(list->at(i), depth + 1));
    return {{"Vector", std::move(elements)}};
  }
  RaiseError(error_number::kTypeMismatch);
}

Variant FromJson(const Json& json, int depth);

Ref<Dictionary> RowFromJson(const Json& json, int depth) {
  if (!json.is_object()) RaiseError(error_number::kTypeMismatch);
  auto row = Make<Dictionary>();
  for (const auto& [key, value] : json.items()) row->Put(RowKey(key), FromJson(value, depth));
  row->SetTrackState(0);
  return row;
}

// Raises some exception for what ToJson doesn't write, as damaged books may hold it.
Variant FromJson(const Json& json, int depth) {
  if (depth > kDeepestNesting) RaiseError(error_number::kOutOfStackSpace);
  if (json.is_null()) return Null;
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_integer()) return CLng(Variant(json.get<double>()));
  if (json.is_number()) return json.get<double>();
  if (json.is_string()) return json.get<std::string>();
  if (!json.is_object() || json.size() != 1) RaiseError(error_number::kTypeMismatch);
  const std::string& type = json.begin().key();
  const Json& content = json.begin().value();
  if (type == "Currency") return CCur(Variant(content.get<std::string>()));
  if (type == "Decimal") return CDec(Variant(content.get<std::string>()));
  if (type == "Date") return CDate(Variant(content.get<std::string>()));
  if (type == "Dictionary") return Variant(RowFromJson(content, depth + 1));
  if (type != "Vector" || !content.is_array()) RaiseError(error_number::kTypeMismatch);
  auto list = Make<Vector>();
  for (const Json& element : content) list->Append(FromJson(element, depth + 1));
  return Variant(list);
}

}  // namespace

std::string ExtrasText(const Dictionary& row,
                       const std::function<bool(std::string_view key)>& is_known) {
  Json json = Json::object();
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    const std::string& key = row.key_at(i);
    const Variant& value = row.value_at(i);
    if (is_known(key) || value.IsEmpty() || value.IsNothing()) continue;
    try {
      json[key] = ToJson(value, 0);
      json.dump();  // raises for text that is no UTF-8
    } catch (const std::exception&) {
      Refuse(refusal::kBadValue, "The value of " + key + " can't be kept.");
    }
  }
  return json.empty() ? std::string() : json.dump();
}

void PutExtras(std::string_view text, Dictionary& row) {
  if (text.empty()) return;
  Ref<Dictionary> extras;
  try {
    extras = RowFromJson(Json::parse(text), 0);
  } catch (const std::exception&) {
    Refuse(refusal::kBadValue, "The keys that are kept with the record can't be read.");
  }
  for (std::uint32_t i = 0; i < extras->size(); ++i) {
    row.Put(RowKey(extras->key_at(i)), extras->value_at(i));
  }
}

}  // namespace qdclgl::server
