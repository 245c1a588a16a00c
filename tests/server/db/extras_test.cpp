#include "qdclgl/server/db/extras.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/server/books_state.h"
#include "tests/support/state_text.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::StateText;

std::string KeptText(const Variant& value) {
  return ExtrasText(*Row({{"Key", value}}), [](std::string_view) { return false; });
}

TEST(Extras, NumbersThatAreNoneAreRefused) {
  using Limits = std::numeric_limits<double>;
  for (const double number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
    EXPECT_EQ(RefusalOf([&] { KeptText(number); }), "BadValue") << number;
    EXPECT_EQ(RefusalOf([&] { KeptText(static_cast<Single>(number)); }), "BadValue") << number;
  }
}

TEST(Extras, WhatIsKeptComesBackBetweenTheKeysOfTheRow) {
  const auto row = Row({{"FNumber", Long{1}}});
  PutExtras(KeptText(Variant(Row({{"a", Currency(2)}, {"b", Null}}))), *row);
  EXPECT_EQ(StateText(Variant(row)), "{FNumber: 1, Key: {a: 2@, b: Null}}");
}

// Of damaged books: what the server doesn't write is refused, and never half taken over.
TEST(Extras, TextsThatTheServerDoesNotWriteAreRefused) {
  std::string deep = "1";
  for (int level = 0; level < 500; ++level) deep = R"({"Vector":[)" + deep + "]}";
  for (const std::string& text :
       {std::string("{"), std::string("[]"), std::string("5"), std::string(R"({"a":{}})"),
        std::string(R"({"a":[]})"), std::string(R"({"a":{"Currency":5}})"),
        std::string(R"({"a":{"Date":"never"}})"), std::string(R"({"a":{"Vector":{}}})"),
        std::string(R"({"a":{"Dictionary":[]}})"), std::string(R"({"a":{"Other":1}})"),
        std::string(R"({"a":{"Date":"2024-01-31","Currency":"1"}})"),
        std::string(R"({"a":2147483648})"), R"({"a":1,"b":)" + deep + "}"}) {
    const auto row = Row({{"FNumber", Long{1}}});
    EXPECT_EQ(RefusalOf([&] { PutExtras(text, *row); }), "BadValue") << text.substr(0, 60);
    EXPECT_EQ(StateText(Variant(row)), "{FNumber: 1}") << text.substr(0, 60);
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
