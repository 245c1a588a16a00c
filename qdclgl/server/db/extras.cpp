#include "qdclgl/server/db/extras.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

using Json = nlohmann::json;

// Keys keep their order. A value that JSON has no type for is an object with one key, its type.
namespace type_name {
constexpr std::string_view kCurrency = "Currency", kDecimal = "Decimal", kDate = "Date",
                           kDictionary = "Dictionary", kVector = "Vector";
}  // namespace type_name

// ---- Writing ----

// Writes value by value and looks at the bounds at each: objects that hold each other many times
// over are never written out.
class Writer {
 public:
  void Pair(std::string_view key, const Variant& value) {
    Put(text_.size() > 1 ? "," : "");
    Text(key);
    Put(":");
    Value(value, 0);
  }

  bool IsEmpty() const { return text_.size() == 1; }
  std::string Taken() { return std::move(text_ += '}'); }

 private:
  [[noreturn]] static void RefuseBound(const std::string& reason) {
    Refuse(refusal::kBadValue, "The keys that have no column " + reason);
  }

  void Put(std::string_view text) {
    if (text.size() > kLongestExtras - text_.size()) {
      RefuseBound("are longer than " + std::to_string(kLongestExtras) + " bytes.");
    }
    text_ += text;
  }
  void Text(std::string_view text) {
    if (text.size() > kLongestExtras) Put(text);  // is refused, and never copied
    Put(Json(text).dump());                       // raises for text that is no UTF-8
  }

  // JSON has no text for what is no number or infinite.
  void Number(double number) {
    if (!std::isfinite(number)) RaiseError(error_number::kOverflow);
    Put(Json(number).dump());
  }

  void Type(std::string_view type) {
    Put("{\"");
    Put(type);
    Put("\":");
  }

  void Typed(std::string_view type, const Variant& value) {
    Type(type);
    Text(CStr(value));
    Put("}");
  }

  void Value(const Variant& value, int depth) {
    if (++count_ > kMostExtras) {
      RefuseBound("hold more than " + std::to_string(kMostExtras) + " values.");
    }
    switch (value.Type()) {
      case VariantType::kEmpty:
      case VariantType::kMissing:
      case VariantType::kNull: return Put("null");
      case VariantType::kBoolean: return Put(CBool(value) ? "true" : "false");
      case VariantType::kByte:
      case VariantType::kInteger:
      case VariantType::kLong: return Put(std::to_string(CLng(value)));
      case VariantType::kSingle:
      case VariantType::kDouble: return Number(CDbl(value));
      case VariantType::kCurrency: return Typed(type_name::kCurrency, value);
      case VariantType::kDecimal: return Typed(type_name::kDecimal, value);
      case VariantType::kDate: return Typed(type_name::kDate, value);
      case VariantType::kString: return Text(value.TextView());
      case VariantType::kObject: return Container(value, depth + 1);
      case VariantType::kByteArray:
      case VariantType::kError: RaiseError(error_number::kTypeMismatch);
    }
  }

  void Container(const Variant& value, int depth) {
    if (value.IsNothing()) return Put("null");
    if (depth > kDeepestExtras) {
      RefuseBound("are nested deeper than " + std::to_string(kDeepestExtras) + " levels.");
    }
    Object* object = qdclgl::detail::ObjectIn(value);
    if (const auto* row = dynamic_cast<Dictionary*>(object)) return Row(*row, depth);
    if (const auto* list = dynamic_cast<Vector*>(object)) return List(*list, depth);
    RaiseError(error_number::kTypeMismatch);
  }

  void Row(const Dictionary& row, int depth) {
    Type(type_name::kDictionary);
    Put("{");
    for (std::uint32_t i = 0; i < row.size(); ++i) {
      if (i > 0) Put(",");
      Text(row.key_at(i));
      Put(":");
      Value(row.value_at(i), depth);
    }
    Put("}}");
  }

  void List(const Vector& list, int depth) {
    Type(type_name::kVector);
    Put("[");
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (i > 0) Put(",");
      Value(list.at(i), depth);
    }
    Put("]}");
  }

  std::string text_ = "{";
  std::size_t count_ = 0;
};

// ---- Reading ----

// Takes the events of a parser and makes the values as they come. What Writer doesn't write, as
// damaged books may hold it, is refused by a false answer or an error.
class Reader : public nlohmann::json_sax<Json> {
 public:
  Ref<Dictionary> row() const { return levels_.front().row; }

  bool null() override { return TakePlain(Null); }
  bool boolean(bool value) override { return TakePlain(value); }
  bool number_integer(std::int64_t value) override { return TakeWhole(value); }
  bool number_unsigned(std::uint64_t value) override { return TakeWhole(value); }
  bool number_float(double value, const std::string&) override { return TakePlain(value); }
  bool string(std::string& value) override {
    if (levels_.empty()) return false;
    const Level& level = levels_.back();
    if (!level.IsTyped()) return Take(value);
    if (level.key == type_name::kCurrency) return Take(CCur(Variant(value)));
    if (level.key == type_name::kDecimal) return Take(CDec(Variant(value)));
    if (level.key == type_name::kDate) return Take(CDate(Variant(value)));
    return false;
  }
  bool binary(Json::binary_t&) override { return false; }

  bool start_object(std::size_t) override {
    if (levels_.empty()) return Begin({.row = Make<Dictionary>()});
    if (!levels_.back().IsTyped()) return Begin({});  // a value with its type
    if (levels_.back().key != type_name::kDictionary) return false;
    return Begin({.row = Make<Dictionary>()});
  }
  bool key(std::string& value) override {
    levels_.back().key = value;
    return !levels_.back().IsTyped() || !levels_.back().has_value;
  }
  bool end_object() override {
    if (levels_.size() == 1) return true;
    const Level level = Ended();
    if (!level.row) return level.has_value && Take(level.value);
    level.row->SetTrackState(0);
    return Take(Variant(level.row));
  }
  bool start_array(std::size_t) override {
    if (levels_.empty() || !levels_.back().IsTyped()) return false;
    return levels_.back().key == type_name::kVector && Begin({.list = Make<Vector>()});
  }
  bool end_array() override { return Take(Variant(Ended().list)); }
  bool parse_error(std::size_t, const std::string&, const Json::exception&) override {
    return false;
  }

 private:
  // A row, a list, or a value with its type, which is then the key.
  struct Level {
    Ref<Dictionary> row = nullptr;
    Ref<Vector> list = nullptr;
    std::string key = {};
    Variant value = {};
    bool has_value = false;

    bool IsTyped() const { return !row && !list; }
  };

  bool Begin(Level level) {
    // Two for each nested container.
    if (levels_.size() > 2 * kDeepestExtras) return false;
    levels_.push_back(std::move(level));
    return true;
  }
  Level Ended() {
    Level level = std::move(levels_.back());
    levels_.pop_back();
    return level;
  }

  // A value of a type that JSON has.
  bool TakePlain(const Variant& value) {
    return !levels_.empty() && !levels_.back().IsTyped() && Take(value);
  }
  template <class Whole>
  bool TakeWhole(Whole value) {
    return std::in_range<Long>(value) && TakePlain(static_cast<Long>(value));
  }

  bool Take(const Variant& value) {
    Level& level = levels_.back();
    if (level.row) {
      level.row->Put(RowKey(level.key), value);
    } else if (level.list) {
      level.list->Append(value);
    } else {
      level.value = value;
      level.has_value = true;
    }
    return true;
  }

  std::vector<Level> levels_;  // the row itself first
};

Ref<Dictionary> RowFrom(std::string_view text) {
  Reader reader;
  try {
    if (Json::sax_parse(text, &reader)) return reader.row();
  } catch (const Error&) {
    // A value that is none of its type.
  }
  Refuse(refusal::kBadValue, "The keys that are kept with the record can't be read.");
}

}  // namespace

std::string ExtrasText(const Dictionary& row,
                       const std::function<bool(std::string_view key)>& is_known) {
  Writer writer;
  for (std::uint32_t i = 0; i < row.size(); ++i) {
    const std::string& key = row.key_at(i);
    const Variant& value = row.value_at(i);
    if (is_known(key) || value.IsEmpty() || value.IsNothing()) continue;
    try {
      writer.Pair(key, value);
    } catch (const Error& error) {
      if (error.number() == refusal::kBadValue) throw;
      Refuse(refusal::kBadValue, "The value of " + key + " can't be kept.");
    } catch (const Json::exception&) {
      Refuse(refusal::kBadValue, "The value of " + key + " can't be kept.");
    }
  }
  return writer.IsEmpty() ? std::string() : writer.Taken();
}

void PutExtras(std::string_view text, Dictionary& row) {
  if (text.empty()) return;
  const Ref<Dictionary> extras = RowFrom(text);
  for (std::uint32_t i = 0; i < extras->size(); ++i) {
    row.Put(RowKey(extras->key_at(i)), extras->value_at(i));
  }
}

}  // namespace qdclgl::server
