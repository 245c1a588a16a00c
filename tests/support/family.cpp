#include "tests/support/family.h"

#include <sstream>

#include "tests/support/test_objects.h"

namespace qdclgl::testing {

std::string Filled(std::string call,
                   std::initializer_list<std::pair<std::string_view, std::string>> places) {
  for (const auto& [place, text] : places) {
    for (std::size_t at = call.find(place); at != std::string::npos; at = call.find(place)) {
      call.replace(at, place.size(), text);
    }
  }
  return call;
}

std::string MethodOf(const std::string& call) { return call.substr(0, call.find('(')); }

std::string WithSession(const std::string& log) {
  std::string text;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("call ")) {
      text += "create-object QDCMtsCacheService.CacheFacade\n"
              "call GetItem(ref 4711, \"IsOuterLogin\") -> 1\n"
              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n"
              "call GetItem(ref 4711, \"PropsString\") -> \"props\"\n";
    }
    text += line + "\n";
  }
  return text;
}

const std::vector<NumericKey>& NumericKeys() {
  static const std::vector<NumericKey> keys = {
      {Long{5}, 5},   {Integer{5}, 5},         {Byte{5}, 5}, {5.4, 5},
      {Single{5}, 5}, {CDec(Variant("5")), 5}, {4.5, 4},     {5.5, 6},
  };
  return keys;
}

const std::vector<Variant>& OtherKeys() {
  static const std::vector<Variant> keys = {
      Variant(), Null, true, Currency(5), DateTime(5), Nothing, Variant(Row({}))};
  return keys;
}

}  // namespace qdclgl::testing
