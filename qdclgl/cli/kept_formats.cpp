#include "qdclgl/cli/kept_formats.h"

#include "qdclgl/cli/console.h"
#include "qdclgl/cli/nearest.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::cli {

namespace {

// They are settings: texts of the books that administrators keep.
constexpr const char *kProfile = "QDSVBase.SystemProfile", *kCategory = "General";
constexpr std::string_view kPrefix = "ImportFormat.";

void Put(const std::string& props, const std::string& name, const std::string& text) {
  CreateObject(kProfile)->Call("SetProfile", props, std::string(kCategory),
                               std::string(kPrefix) + name, text);
}

}  // namespace

std::map<std::string, FileFormat> KeptFormats(const std::string& props) {
  std::map<std::string, FileFormat> formats;
  const auto settings =
      CreateObject(kProfile)->Call("ListProfiles", props, std::string(kCategory)).As<Dictionary>();
  for (Long i = 1; i <= settings->Count(); ++i) {
    const String name = settings->Name(i);
    const auto text = settings->Value(name).As<String>();
    if (!name.starts_with(kPrefix) || text.empty()) continue;
    formats.emplace(name.substr(kPrefix.size()), FileFormat::FromText(text));
  }
  return formats;
}

FileFormat KeptFormat(const std::string& props, const std::string& name) {
  const std::map<std::string, FileFormat> formats = KeptFormats(props);
  const auto found = formats.find(name);
  if (found != formats.end()) return found->second;
  std::vector<std::string_view> names = {kFoundFormat};
  for (const auto& [kept, format] : formats) names.push_back(kept);
  throw UsageError(NoSuch("format", name, names));
}

void KeepFormat(const std::string& props, const NamedFormat& format) {
  Put(props, format.name, format.format.ToText());
}

void RemoveFormat(const std::string& props, const std::string& name) { Put(props, name, ""); }

}  // namespace qdclgl::cli
