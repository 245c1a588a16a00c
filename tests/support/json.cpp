#include "tests/support/json.h"

template class nlohmann::basic_json<nlohmann::ordered_map>;
template class nlohmann::detail::serializer<nlohmann::ordered_json>;

namespace nlohmann {

void PrintTo(const ordered_json& json, std::ostream* out) { *out << json; }

}  // namespace nlohmann

namespace qdclgl::testing {

Json ParseJson(const std::string& text) { return Json::parse(text); }

}  // namespace qdclgl::testing
