#include "qdclgl/cli/version_text.h"

#include "qdclgl/server/db/built_in.h"
#include "qdclgl/version.h"

namespace qdclgl::cli {

std::string VersionText(std::string_view commit) {
  std::string text = "qdclgl " + std::string(Version()) + "\n";
  if (!commit.empty()) text += "commit " + std::string(commit) + "\n";
  return text + "databases: " + server::DatabasesBuiltIn();
}

}  // namespace qdclgl::cli
