// What the suites of entities and of sets have in common: calls written as a declaration has them,
// and the two ways in which every behaviour is used.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "tests/support/recording_server.h"

namespace qdclgl::testing {

// A call as the log shows it, with places for what differs from test to test:
//   Filled("Update(\"props\", ref <id>, <row>)", {{"<id>", "5"}, {"<row>", "{FGroupID: 5}"}})
std::string Filled(std::string call,
                   std::initializer_list<std::pair<std::string_view, std::string>> places);

// The name in front of the arguments of such a call.
std::string MethodOf(const std::string& call);

// The log of events with the traffic of the session in it: the connection text is asked for behind
// the component and afresh for each call.
std::string WithSession(const std::string& log);

// Numbers of the kinds that count as an id, each with the id that it is.
struct NumericKey {
  Variant key;
  Long id;
};
const std::vector<NumericKey>& NumericKeys();

// Values that are neither an id nor a text.
const std::vector<Variant>& OtherKeys();

}  // namespace qdclgl::testing
