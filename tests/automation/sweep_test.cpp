// Compares the library's conversions, comparison and text forms with those of the platform, over
// thousands of values of every type. A difference fails the case unless it is one of the decisions
// below, which docs/automation.md tells; of each decision the sweep must meet some cases, so that
// none is kept that no longer holds.
#include <algorithm>
#include <cmath>
#include <random>

#include "qdclgl/automation/values.h"
#include "qdclgl/frame/objects/conversions.h"
#include "tests/automation/client.h"

using namespace qdclgl;
using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;

namespace {

constexpr LCID kEnglish = 0x409;

// ---- The values ----

std::vector<double> Numbers() {
  std::vector<double> numbers;
  for (const double base : {0.0,
                            1.0,
                            2.0,
                            3.0,
                            5.0,
                            7.0,
                            10.0,
                            99.0,
                            100.0,
                            127.0,
                            128.0,
                            254.0,
                            255.0,
                            256.0,
                            1000.0,
                            32767.0,
                            32768.0,
                            65535.0,
                            65536.0,
                            99999.0,
                            1e6,
                            16777216.0,
                            16777217.0,
                            2147483647.0,
                            2147483648.0,
                            4294967295.0,
                            4294967296.0,
                            1e10,
                            2958465.0,
                            657434.0,
                            922337203685477.0,
                            922337203685478.0,
                            1e14,
                            1e15,
                            1e16,
                            9007199254740992.0,
                            1e18,
                            9.3e18,
                            1e20,
                            1e28,
                            7.9e28,
                            8e28,
                            1e38,
                            3.5e38,
                            1e100,
                            1e300}) {
    for (const double shift :
         {0.0, 0.5, -0.5, 0.25, 0.4999, 0.5001, 0.00005, 0.00015, 0.123456789}) {
      numbers.push_back(base + shift);
      numbers.push_back(-(base + shift));
    }
  }
  for (const double tiny : {0.1, 0.01, 0.001, 0.0001, 0.00001, 0.00012345, 0.0001234567890123456,
                            0.000099999, 1e-7, 1.5e-10, 1e-28, 1e-29, 1e-45, 1e-300, 1.0 / 3.0,
                            2.0 / 3.0, 3.14159265358979, 0.30000000000000004}) {
    numbers.push_back(tiny);
    numbers.push_back(-tiny);
  }
  std::mt19937_64 random(20240229);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-12, 20);
  for (int i = 0; i < 1500; ++i) {
    numbers.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
  }
  return numbers;
}

std::vector<std::string> Texts() {
  std::vector<std::string> texts = {
      "",
      " ",
      "0",
      "1",
      "-1",
      "+1",
      "1-",
      "(1)",
      "12",
      " 12 ",
      "1 2",
      "1,234",
      "1,2,3",
      "1,234.5",
      ",5",
      "1.5",
      "-1.5",
      ".5",
      "5.",
      ".",
      "-",
      "1e3",
      "1E+3",
      "1e-3",
      "1e",
      "e1",
      "1d3",
      "abc",
      "12abc",
      "True",
      "False",
      "true",
      "FALSE",
      "Yes",
      "&HFF",
      "&hffff",
      "&O17",
      "&H",
      "0x10",
      "$5",
      "5%",
      "255",
      "256",
      "32767",
      "32768",
      "-32769",
      "2147483648",
      "1e400",
      "1e-400",
      "0.5",
      "1.5",
      "2.5",
      "-0.5",
      "0.00005",
      "0.00015",
      "1E15",
      "922337203685477.5807",
      "922337203685477.5808",
      "79228162514264337593543950335",
      "79228162514264337593543950336",
      "0.1234567890123456789012345678901",
      "1\t",
      "\n1",
  };
  for (int i = -40; i < 300; i += 7) texts.push_back(std::to_string(i));
  for (int i = 1; i < 200; i += 3)
    texts.push_back(std::to_string(i) + "." + std::to_string(i * 37));
  return texts;
}

std::vector<Variant> Values() {
  std::vector<Variant> values = {Variant(), Variant(Null), Variant(true), Variant(false)};
  for (int i = 0; i < 256; i += 5) values.emplace_back(static_cast<Byte>(i));
  values.emplace_back(static_cast<Byte>(255));
  for (int i = -32768; i < 32768; i += 1111) values.emplace_back(static_cast<Integer>(i));
  values.emplace_back(static_cast<Integer>(32767));
  for (std::int64_t i = INT32_MIN; i <= INT32_MAX; i += 50000017) {
    values.emplace_back(static_cast<Long>(i));
  }
  values.emplace_back(static_cast<Long>(INT32_MAX));
  for (const double number : Numbers()) {
    values.emplace_back(number);
    if (std::abs(number) < 3e38) values.emplace_back(static_cast<float>(number));
    if (std::abs(number) < 9e14) {
      values.emplace_back(Currency::FromUnits(static_cast<std::int64_t>(number * 10000)));
    }
    if (number > -657434 && number < 2958466) values.emplace_back(DateTime(number));
    if (std::abs(number) < 7.9e28) values.emplace_back(Decimal::FromDouble(number));
  }
  for (const std::string& text : Texts()) values.emplace_back(text);
  return values;
}

// ---- One conversion, by ours and by theirs ----

struct Target {
  const char* name;
  VARTYPE type;
  Variant (*convert)(const Variant&);
};

constexpr Target kTargets[] = {
    {"Boolean", VT_BOOL, [](const Variant& v) { return Variant(CBool(v)); }},
    {"Byte", VT_UI1, [](const Variant& v) { return Variant(CByte(v)); }},
    {"Integer", VT_I2, [](const Variant& v) { return Variant(CInt(v)); }},
    {"Long", VT_I4, [](const Variant& v) { return Variant(CLng(v)); }},
    {"Single", VT_R4, [](const Variant& v) { return Variant(CSng(v)); }},
    {"Double", VT_R8, [](const Variant& v) { return Variant(CDbl(v)); }},
    {"Currency", VT_CY, [](const Variant& v) { return Variant(CCur(v)); }},
    {"Date", VT_DATE, [](const Variant& v) { return Variant(CDate(v)); }},
    {"Decimal", VT_DECIMAL, [](const Variant& v) { return Variant(CDec(v)); }},
    {"String", VT_BSTR, [](const Variant& v) { return Variant(CStr(v)); }},
};

// All of a value that can be seen, with every bit of a number.
std::string Exact(const Variant& value) {
  if (value.Is(VariantType::kDouble)) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value.Held<Double>());
    return text;
  }
  if (value.Is(VariantType::kSingle)) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value.Held<Single>()));
    return text;
  }
  if (value.Is(VariantType::kDate)) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value.Held<DateTime>().days);
    return text;
  }
  if (value.Is(VariantType::kNull)) return "Null";
  return CStr(value);
}

std::string Ours(const Variant& value, const Target& target) {
  try {
    return Exact(target.convert(value));
  } catch (const Error& error) {
    return "error " + std::to_string(error.number());
  }
}

std::string Theirs(const Variant& value, const Target& target) {
  OwnedVariant source, result;
  ToVariant(value, source.get());
  const HRESULT code =
      VariantChangeTypeEx(result.get(), source.get(), kEnglish, VARIANT_ALPHABOOL, target.type);
  if (code == DISP_E_OVERFLOW) return "error 6";
  if (code == DISP_E_TYPEMISMATCH) return "error 13";
  if (FAILED(code)) return CodeText(code);
  return Exact(FromVariant(*result, Taking::kCopy));
}

// ---- The decisions ----

struct Difference {
  const Variant& value;
  const Target& target;
  const std::string& ours;
  const std::string& theirs;

  bool From(VariantType type) const { return value.Is(type); }
  bool To(const char* name) const { return std::string_view(target.name) == name; }
};

struct Decision {
  const char* name;
  bool (*covers)(const Difference&);
  int met = 0;
};

// Whether an amount is at most half a unit away from what it was made of.
bool IsNearestUnit(const Variant& value, const std::string& amount) {
  constexpr double kHalfUnit = 0.00005;
  const double exact = CDbl(value);
  return std::abs(exact - CDbl(Variant(amount))) <= kHalfUnit + std::abs(exact) * 1e-15;
}

bool IsOutsideTheCalendar(const Variant& value) {
  const double days = CDbl(value);
  return days <= -657435 || days >= 2958466;
}

// Both texts are of one length and differ by the last digit of the number only.
bool DifferInLastDigit(const std::string& ours, const std::string& theirs) {
  if (ours.size() != theirs.size()) return false;
  const auto differing = std::mismatch(ours.begin(), ours.end(), theirs.begin());
  const auto rest = std::string(differing.first + 1, ours.end());
  return std::abs(*differing.first - *differing.second) == 1 &&
         (rest.empty() || rest.starts_with('E'));
}

std::vector<Decision> decisions = {
    {"a date is text in one form on every machine",
     [](const Difference& d) { return d.From(VariantType::kDate) && d.To("String"); }},
    {"a number outside the years 100 to 9999 is no date, whatever its type",
     [](const Difference& d) {
       return d.To("Date") && d.ours == "error 6" && !d.From(VariantType::kString) &&
              IsOutsideTheCalendar(d.value);
     }},
    {"a text is a date in ISO form, or a number",
     [](const Difference& d) { return d.To("Date") && d.From(VariantType::kString); }},
    {"True is -1 as a Decimal too",
     [](const Difference& d) { return d.From(VariantType::kBoolean) && d.To("Decimal"); }},
    {"a Decimal has at most the 15 digits of a Double's text",
     [](const Difference& d) {
       return (d.From(VariantType::kDouble) || d.From(VariantType::kDate)) && d.To("Decimal") &&
              d.ours == CStr(CDec(Variant(RealText(CDbl(d.value), 15))));
     }},
    {"a hexadecimal or octal text is the number it spells, for every type",
     [](const Difference& d) {
       return d.From(VariantType::kString) && d.value.TextView().starts_with('&');
     }},
    {"a Decimal or a text goes to the nearest unit of Currency",
     [](const Difference& d) {
       return (d.From(VariantType::kDecimal) || d.From(VariantType::kString)) && d.To("Currency") &&
              !d.ours.starts_with("error") && IsNearestUnit(d.value, d.ours);
     }},
    {"a Decimal has at most the 7 digits of a Single's text",
     [](const Difference& d) {
       return d.From(VariantType::kSingle) && d.To("Decimal") &&
              d.ours == CStr(CDec(Variant(RealText(CDbl(d.value), 7))));
     }},
    {"a Decimal is the nearest Double",
     [](const Difference& d) {
       return d.From(VariantType::kDecimal) && (d.To("Double") || d.To("Date")) &&
              CDbl(d.value) == std::strtod(CStr(d.value).c_str(), nullptr);
     }},
#ifdef _WIN64
    // The platform's own goes by Doubles here, and by more digits where there are 32 bits.
    {"a text is the nearest Double",
     [](const Difference& d) {
       return d.From(VariantType::kString) && d.To("Double") && !d.ours.starts_with("error") &&
              CDbl(d.value) == std::strtod(CStr(d.value).c_str(), nullptr);
     }},
#endif
    {"a text halfway between two last digits has the even one",
     [](const Difference& d) {
       return d.To("String") && (d.From(VariantType::kDouble) || d.From(VariantType::kSingle)) &&
              DifferInLastDigit(d.ours, d.theirs);
     }},
    {"a text with a currency sign is no number",
     [](const Difference& d) {
       return d.From(VariantType::kString) && d.ours == "error 13" &&
              d.value.TextView().starts_with('$');
     }},
    {"a text with more decimals than a Decimal has is rounded",
     [](const Difference& d) {
       return d.From(VariantType::kString) && d.To("Decimal") && !d.ours.starts_with("error");
     }},
};

void Conversions() {
  std::map<std::string, int> unexplained;
  std::map<std::string, std::string> example;
  int compared = 0;
  for (const Variant& value : Values()) {
    for (const Target& target : kTargets) {
      ++compared;
      const std::string ours = Ours(value, target);
      const std::string theirs = Theirs(value, target);
      if (ours == theirs) continue;
      const Difference difference{value, target, ours, theirs};
      const auto decision = std::find_if(decisions.begin(), decisions.end(),
                                         [&](Decision& d) { return d.covers(difference); });
      if (decision != decisions.end()) {
        ++decision->met;
        continue;
      }
      const std::string pair = std::string(TypeName(value.Type())) + " to " + target.name;
      if (unexplained[pair]++ < 6) {
        example[pair] += " <" + Exact(value) + "> ours " + ours + " theirs " + theirs + ";";
      }
    }
  }
  TestCase("every conversion is as the platform's, but for the decisions");
  std::printf("# %d conversions compared\n", compared);
  for (const auto& [pair, count] : unexplained) {
    case_problem += " [" + pair + ": " + std::to_string(count) + example[pair] + "]";
  }
  for (const Decision& decision : decisions) {
    TestCase(decision.name);
    std::printf("# %d times\n", decision.met);
    Check(decision.met > 0, "the sweep meets a case of it");
  }
}

// ---- Comparison ----

std::string OurOrder(const Variant& left, const Variant& right) {
  const auto order = Compare(left, right);
  if (order == std::partial_ordering::unordered) return "unordered";
  return order < 0 ? "less" : order > 0 ? "greater" : "equal";
}

std::string TheirOrder(const Variant& left, const Variant& right) {
  OwnedVariant a, b;
  ToVariant(left, a.get());
  ToVariant(right, b.get());
  switch (VarCmp(a.get(), b.get(), kEnglish, 0)) {
    case VARCMP_LT: return "less";
    case VARCMP_EQ: return "equal";
    case VARCMP_GT: return "greater";
    case VARCMP_NULL: return "unordered";
    default: return "refused";
  }
}

struct OrderDecision {
  const char* name;
  bool (*covers)(const Variant& left, const Variant& right);
  int met = 0;
};

bool IsReal(const Variant& value) {
  return value.Is(VariantType::kSingle) || value.Is(VariantType::kDouble) ||
         value.Is(VariantType::kDate);
}

std::vector<OrderDecision> order_decisions = {
    {"numbers compare as Doubles where a Single, a Double or a Date takes part",
     [](const Variant& left, const Variant& right) {
       return !left.IsString() && !right.IsString() && (IsReal(left) || IsReal(right));
     }},
    {"True is -1 beside a Decimal too",
     [](const Variant& left, const Variant& right) {
       return (left.Is(VariantType::kBoolean) && right.Is(VariantType::kDecimal)) ||
              (left.Is(VariantType::kDecimal) && right.Is(VariantType::kBoolean));
     }},
    {"texts compare byte by byte, whatever the language",
     [](const Variant& left, const Variant& right) { return left.IsString() && right.IsString(); }},
};

void Comparisons() {
  std::vector<Variant> values = {Variant(), Variant(Null), Variant(true), Variant(false)};
  for (const int number : {0, 1, -1, 5, 200, 255}) {
    if (number >= 0) values.emplace_back(static_cast<Byte>(number));
    values.emplace_back(static_cast<Integer>(number));
    values.emplace_back(static_cast<Long>(number));
  }
  for (const double number : {0.0, 1.0, -1.0, 0.1, 0.25, 5.0001, -5.0001, 200.5, 1e6, -1e6, 1e14,
                              0.30000000000000004, 123456.789}) {
    values.emplace_back(number);
    values.emplace_back(static_cast<float>(number));
    values.emplace_back(Currency(number));
    values.emplace_back(DateTime(number));
    values.emplace_back(Decimal::FromDouble(number));
  }
  for (const char* text : {"", "a", "b", "ab", "1", "10", "9", "-1", "abc"}) {
    values.emplace_back(text);
  }
  std::map<std::string, int> unexplained;
  std::map<std::string, std::string> example;
  int compared = 0;
  for (const Variant& left : values) {
    for (const Variant& right : values) {
      ++compared;
      const std::string ours = OurOrder(left, right);
      const std::string theirs = TheirOrder(left, right);
      if (ours == theirs) continue;
      const auto decision =
          std::find_if(order_decisions.begin(), order_decisions.end(),
                       [&](const OrderDecision& d) { return d.covers(left, right); });
      if (decision != order_decisions.end()) {
        ++decision->met;
        continue;
      }
      const std::string pair =
          std::string(TypeName(left.Type())) + " with " + std::string(TypeName(right.Type()));
      if (unexplained[pair]++ < 2) {
        example[pair] += " <" + Exact(left) + "> and <" + Exact(right) + "> ours " + ours +
                         " theirs " + theirs + ";";
      }
    }
  }
  TestCase("every comparison is as the platform's, but for the decisions");
  std::printf("# %d comparisons\n", compared);
  for (const auto& [pair, count] : unexplained) {
    case_problem += " [" + pair + ": " + std::to_string(count) + example[pair] + "]";
  }
  for (const OrderDecision& decision : order_decisions) {
    TestCase(decision.name);
    std::printf("# %d times\n", decision.met);
    Check(decision.met > 0, "the sweep meets a case of it");
  }
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  Conversions();
  Comparisons();
  const int failed = Finish();
  CoUninitialize();
  return failed;
}
