#include "qdclgl/server/records/note_data.h"

#include <array>
#include <charconv>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/server/db/extras.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kObjectKey = "FData";  // of the row that stands around an object
constexpr std::string_view kFrom = " from ";      // before the bound of an array

[[noreturn]] void RefuseStored() {
  Refuse(refusal::kBadValue, "The data of the note can't be read.");
}

// ---- Values as texts that lose nothing ----

template <class Number>
std::string NumberText(Number number) {
  char text[64];
  return {text, std::to_chars(text, std::end(text), number).ptr};
}

template <class Number>
Number NumberFrom(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end) RefuseStored();
  return number;
}

std::string ObjectText(const Variant& value) {
  if (value.IsNothing()) return "";
  auto row = Make<Dictionary>();
  row->Put(kObjectKey, value);
  return ExtrasText(*row, [](std::string_view) { return false; });
}

Variant ObjectFrom(std::string_view text) {
  if (text.empty()) return Nothing;
  auto row = Make<Dictionary>();
  PutExtras(text, *row);
  return row->Value(kObjectKey);
}

std::string ContentOf(const Variant& value) {
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kMissing: return "";
    case VariantType::kBoolean: return NumberText(int{value.Held<Boolean>()});
    case VariantType::kByte: return NumberText(value.Held<Byte>());
    case VariantType::kInteger: return NumberText(value.Held<Integer>());
    case VariantType::kLong: return NumberText(value.Held<Long>());
    case VariantType::kSingle: return NumberText(value.Held<Single>());
    case VariantType::kDouble: return NumberText(value.Held<Double>());
    case VariantType::kCurrency: return NumberText(value.Held<Currency>().units());
    case VariantType::kDate: return NumberText(value.Held<DateTime>().days);
    case VariantType::kError: return NumberText(value.ErrorCode());
    case VariantType::kDecimal: return value.Held<Decimal>().ToText();
    case VariantType::kString: return std::string(value.TextView());
    case VariantType::kObject: return ObjectText(value);
    case VariantType::kByteArray: {
      const auto bytes = value.BytesView();
      return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
  }
  return "";
}

std::size_t SizeOf(const Variant& value) {
  if (value.IsString()) return value.TextView().size();
  return value.Is(VariantType::kByteArray) ? value.BytesView().size() : 0;
}

Variant ValueOf(VariantType type, Long bound, const std::string& content) {
  const auto whole = [&]<class T>(T) { return NumberFrom<T>(content); };
  switch (type) {
    case VariantType::kEmpty: return {};
    case VariantType::kNull: return Null;
    case VariantType::kMissing: return Missing;
    case VariantType::kBoolean: return whole(int{}) != 0;
    case VariantType::kByte: return whole(Byte{});
    case VariantType::kInteger: return whole(Integer{});
    case VariantType::kLong: return whole(Long{});
    case VariantType::kSingle: return whole(Single{});
    case VariantType::kDouble: return whole(Double{});
    case VariantType::kCurrency: return Currency::FromUnits(whole(std::int64_t{}));
    case VariantType::kDate: return DateTime(whole(double{}));
    case VariantType::kError: return ErrorValue{whole(std::int32_t{})};
    case VariantType::kDecimal: return CDec(Variant(content));
    case VariantType::kString: return content;
    case VariantType::kObject: return ObjectFrom(content);
    case VariantType::kByteArray:
      return Bytes{{reinterpret_cast<const std::uint8_t*>(content.data()), content.size()}, bound};
  }
  RefuseStored();
}

// ---- Bytes as text ----

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string Base64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (k < count ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += k <= count ? kDigits[bits >> (18 - 6 * k) & 63] : '=';
    }
  }
  return text;
}

void AppendBytes(std::string& bytes, std::string_view text) {
  static constexpr auto kValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(64);
    for (std::size_t i = 0; i < kDigits.size(); ++i) {
      values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
    }
    return values;
  }();
  if (text.size() % 4 != 0) RefuseStored();
  while (text.ends_with('=')) text.remove_suffix(1);
  std::uint32_t bits = 0;
  int held = 0;
  for (const char c : text) {
    const std::uint8_t value = kValues[static_cast<unsigned char>(c)];
    if (value > 63) RefuseStored();
    bits = bits << 6 | value;
    held += 6;
    if (held < 8) continue;
    held -= 8;
    bytes += static_cast<char>(bits >> held & 255);
  }
}

// The first part of a text that is no longer than a column takes, at the end of a character.
std::string_view FirstPart(std::string_view text) {
  if (text.size() <= kLongestStoredText) return text;
  std::size_t end = kLongestStoredText;
  while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

}  // namespace

std::string NoteData::Hash() const { return Sha256Of(content); }

NoteData NoteData::From(const Variant& value) {
  if (SizeOf(value) > kLargestNoteData) {
    Refuse(refusal::kTooLarge, "the data have " + std::to_string(SizeOf(value)) +
                                   " bytes; they may have " + std::to_string(kLargestNoteData) +
                                   ".");
  }
  std::string kind(TypeName(value.Type()));
  if (value.Is(VariantType::kByteArray) && value.BytesLowerBound() != 0) {
    kind += std::string(kFrom) + std::to_string(value.BytesLowerBound());
  }
  return {std::move(kind), ContentOf(value)};
}

Variant NoteData::ToValue() const {
  std::string_view name = kind;
  Long bound = 0;
  if (const auto at = name.find(kFrom); at != name.npos) {
    bound = NumberFrom<Long>(name.substr(at + kFrom.size()));
    name = name.substr(0, at);
  }
  for (int i = 0; i <= static_cast<int>(VariantType::kError); ++i) {
    const auto type = static_cast<VariantType>(i);
    if (TypeName(type) != name) continue;
    try {
      return ValueOf(type, bound, content);
    } catch (const Error&) {
      RefuseStored();
    }
  }
  RefuseStored();
}

// ---- The table ----

const StoredTable& NoteDataTable() {
  static const StoredTable kTable = {"t_NoteData",
                                     {{"FNoteID", ColumnType::kLong},
                                      {"FPart", ColumnType::kLong},
                                      {"FEncoded", ColumnType::kBoolean},
                                      {"FText", ColumnType::kText}}};
  return kTable;
}

void WriteNoteContent(Database& db, Long note, const std::string& content) {
  const bool is_text = IsStorable(content);
  const std::string encoded = is_text ? std::string() : Base64(content);
  std::string_view rest = is_text ? content : encoded;
  for (Long part = 1; !rest.empty(); ++part) {
    const std::string_view first = FirstPart(rest);
    db.Execute("INSERT INTO t_NoteData (FNoteID, FPart, FEncoded, FText) VALUES (?, ?, ?, ?)", note,
               part, !is_text, first);
    rest.remove_prefix(first.size());
  }
}

void RemoveNoteContent(Database& db, Long note) {
  db.Execute("DELETE FROM t_NoteData WHERE FNoteID = ?", note);
}

std::string ReadNoteContent(Database& db, Long note) {
  std::string content;
  for (const auto& [is_encoded, text] : db.Query<bool, std::string>(
           "SELECT FEncoded, FText FROM t_NoteData WHERE FNoteID = ? ORDER BY FPart", note)) {
    if (is_encoded) AppendBytes(content, text);
    else content += text;
  }
  return content;
}

}  // namespace qdclgl::server
