// JSON as tests read it. Most of what a file that uses it would compile of nlohmann's library is
// compiled once, in json.cpp: there are many such files.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

extern template class nlohmann::basic_json<nlohmann::ordered_map>;
extern template class nlohmann::detail::serializer<nlohmann::ordered_json>;

namespace nlohmann {
// For messages of expectations that fail.
void PrintTo(const ordered_json& json, std::ostream* out);
}  // namespace nlohmann

namespace qdclgl::testing {

// Keys stand in the order of the text, and equal objects have them in the same one.
using Json = nlohmann::ordered_json;

// Throws Json::exception for what is none.
Json ParseJson(const std::string& text);

}  // namespace qdclgl::testing
