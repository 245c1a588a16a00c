#include "tests/fuzz/values.h"

#include <array>
#include <cstdio>
#include <limits>
#include <set>
#include <vector>

#include "qdclgl/api/class_list.h"

namespace qdclgl::fuzz {
namespace {

const std::vector<std::string>& Texts() {
  static const std::vector<std::string> kTexts = {
      "",
      " ",
      "0",
      "1",
      "2",
      "5",
      "-1",
      "1.5",
      "1e400",
      "-1e-400",
      "&hFFFF",
      "&o17",
      "0x10",
      "922337203685477.5808",
      "79228162514264337593543950336",
      "2147483648",
      "32768",
      "256",
      "12345678901234567890123456789.12345678901234567890",
      "1,5",
      "True",
      "False",
      "Null",
      "2024-01-31",
      "2024-02-30",
      "2024-01-31 25:00:00",
      "13:05:00",
      "0099-12-31",
      "9999-12-31",
      "GL",
      "Receipts",
      "EUR",
      "USD",
      "1000",
      "4000.01",
      "administrator",
      "a;b",
      "{a;b}",
      "a=b",
      "Data Source=;Initial catalog=x;",
      "FName = 'x'",
      "FNumber LIKE '%'",
      "FNumber like '*1*'",
      "FName = 'it''s'",
      "FDate >= #2024-01-01#",
      "FYear DESC, FPeriod",
      "'",
      "''",
      "%",
      "_",
      "\\",
      "*",
      "a*a*a*a*a*a*a*b",
      "\"",
      "\n",
      "\r\n\t",
      std::string("a\0b", 3),
      std::string(1, '\0'),
      "\xc4\xb0\xc4\xb1\xc3\x9f",
      "\xf0\x9f\x98\x80",
      "\xed\xa0\x80",
      "\xed\xb0\x80\xed\xa0\x80",
      "\xff\xfe",
      "\xc0\x80",
      "\xf4\x90\x80\x80",
      "\xe2\x82",
      "\xef\xbb\xbf",
      "../x",
      "C:\\x",
      std::string(14, 'x'),
      std::string(15, 'x'),
      std::string(255, 'y'),
      std::string(256, '9'),
      std::string(2048, '('),
      std::string(70000, 'z')};
  return kTexts;
}

}  // namespace

std::span<const std::string_view> RowKeys() {
  static const std::vector<std::string_view> kKeys = [] {
    std::set<std::string_view> keys = {"Held", "", "_Entries", "_Details"};
    for (const ClassTable* table : PublicClasses()) {
      for (const ClassMember& member : table->members()) {
        if (!member.row.key.empty()) keys.insert(member.row.key);
      }
    }
    return std::vector<std::string_view>(keys.begin(), keys.end());
  }();
  return kKeys;
}

std::string AnyText(Choices& choices) {
  switch (choices.Below(6)) {
    case 0: return std::string(choices.Of(RowKeys()));
    case 1: return choices.Of(Texts()) + choices.Of(Texts());
    case 2: {
      std::string noise(choices.Below(20), ' ');
      for (char& c : noise) c = static_cast<char>(choices.Below(256));
      return noise;
    }
    default: return choices.Of(Texts());
  }
}

Long AnyLong(Choices& choices) {
  constexpr Long kNumbers[] = {
      0,     1,     2,      3,      5,     -1,     -2,     12,   255,        256,
      32767, 32768, -32768, -32769, 65535, 100000, 999999, 2024, 2147483647, -2147483647 - 1};
  return choices.OneIn(4) ? static_cast<Long>(choices.Next()) : choices.Of(kNumbers);
}

Double AnyDouble(Choices& choices) {
  using Limits = std::numeric_limits<double>;
  constexpr double kNumbers[] = {0.0,
                                 -0.0,
                                 0.5,
                                 1.5,
                                 2.5,
                                 -1.25,
                                 100.00005,
                                 45292.75,
                                 1e15,
                                 1e17,
                                 -1e18,
                                 1e300,
                                 -1e300,
                                 1e-300,
                                 922337203685477.5807,
                                 2958465.9999999,
                                 2958466,
                                 -657434,
                                 -657435,
                                 2147483647.5,
                                 -2147483648.5,
                                 32767.5,
                                 3.5e38,
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::quiet_NaN(),
                                 Limits::denorm_min()};
  return choices.Of(kNumbers);
}

Variant AnyPlainValue(Choices& choices) {
  switch (choices.Below(19)) {
    case 0: return {};
    case 1: return Null;
    case 2: return Missing;
    case 3: return choices.OneIn(2);
    case 4: return static_cast<Byte>(choices.Next());
    case 5: return static_cast<Integer>(AnyLong(choices));
    case 6: return static_cast<Single>(AnyDouble(choices));
    case 7: return AnyDouble(choices);
    case 8: {
      constexpr std::int64_t kUnits[] = {0, 1, -1, 10000, 15000, INT64_MAX, INT64_MIN};
      return Currency::FromUnits(choices.Of(kUnits));
    }
    case 9: return DateTime(AnyDouble(choices));
    case 10:
      return Decimal(choices.OneIn(2) ? UINT32_MAX : 0, choices.OneIn(2) ? UINT64_MAX : 15,
                     static_cast<int>(choices.Below(Decimal::kMaxScale + 1)), choices.OneIn(2));
    case 11: {
      const std::vector<std::uint8_t> bytes(choices.OneIn(5) ? 70000 : choices.Below(9), 0xd8);
      return Bytes{bytes, choices.OneIn(3) ? AnyLong(choices) : 0};
    }
    case 15: return ErrorValue{AnyLong(choices)};
    case 12:
    case 13:
    case 14: return AnyLong(choices);
    default: return AnyText(choices);
  }
}

std::string ShortText(const Variant& value) {
  constexpr std::size_t kLongest = 60;
  std::string text(TypeName(value.Type()));
  const auto escaped = [](std::string_view bytes) {
    std::string result = "\"";
    for (const char c : bytes.substr(0, kLongest)) {
      std::array<char, 5> code{};
      std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned char>(c));
      result += c >= ' ' && c <= '~' ? std::string(1, c) : code.data();
    }
    return result + "\"" +
           (bytes.size() > kLongest ? " of " + std::to_string(bytes.size()) + " bytes" : "");
  };
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kMissing: return text;
    case VariantType::kObject:
      return value.IsNothing() ? "Nothing"
                               : "<" + std::string(value.ObjectPointer()->ClassName()) + ">";
    case VariantType::kError: return text + " " + std::to_string(value.ErrorCode());
    case VariantType::kByteArray: return text + " of " + std::to_string(value.BytesView().size());
    case VariantType::kString: return escaped(value.TextView());
    case VariantType::kDate: return "Date " + RealText(value.Held<DateTime>().days, 17);
    default: return text + " " + CStr(value);
  }
}

}  // namespace qdclgl::fuzz
