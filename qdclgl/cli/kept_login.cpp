#include "qdclgl/cli/kept_login.h"

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <sstream>

#include "qdclgl/cli/output_file.h"
#include "qdclgl/cli/system_calls.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/path_text.h"
#include "qdclgl/server/db/sha256.h"

namespace qdclgl::cli {

namespace fs = std::filesystem;

namespace {

// Where the person's own files of this kind are; the first of these that is an absolute path. Empty
// when there is none.
fs::path SessionFolder() {
  struct Place {
    const char* variable;
    const char* below;
  };
  for (const auto& [variable, below] :
       std::initializer_list<Place>{{"QDCLGL_SESSIONS", ""},
                                    {"XDG_STATE_HOME", "qdclgl/sessions"},
                                    {"HOME", ".local/state/qdclgl/sessions"},
                                    {"LOCALAPPDATA", "qdclgl/sessions"}}) {
    const auto value = Environment(variable);
    if (!value) continue;
    const fs::path folder = server::PathOf(*value);
    if (folder.is_absolute()) return *below == '\0' ? folder : folder / below;
  }
  return {};
}

std::string PlaceOf(const std::string& book) {
  return server::ConnectionText::Parse(book).Place().ToText();
}

fs::path FileFor(const std::string& book) {
  const fs::path folder = SessionFolder();
  return folder.empty() ? folder : folder / (server::Sha256Of(PlaceOf(book)) + ".json");
}

[[noreturn]] void Fail(const fs::path& path, const std::string& reason) {
  throw FileError(server::TextOf(path) + ' ' + reason);
}

// A folder that nobody else looks into, so that nobody sees a file in it before its mode is set.
void MakePrivateFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (!error) MakePrivate(folder, error);
  if (error) Fail(folder, "can't be made: " + error.message());
}

}  // namespace

std::optional<KeptLogin> KeptLoginTo(const std::string& book) {
  const fs::path path = FileFor(book);
  std::error_code error;
  if (path.empty() || !fs::exists(path, error)) return {};
  if (!IsPrivate(path)) {
    Fail(path, "keeps a login and others can reach it; remove it, and log in again");
  }
  std::ifstream file(path, std::ios::binary);
  const auto json = nlohmann::json::parse(file, nullptr, false);
  const auto text = [&](const char* key) {
    const bool is_there = json.is_object() && json.contains(key) && json[key].is_string();
    return is_there ? json[key].get<std::string>() : std::string();
  };
  KeptLogin login{text("user"), text("ticket")};
  if (login.ticket.empty()) Fail(path, "is no kept login; remove it, and log in again");
  return login;
}

void KeepLogin(const std::string& book, const KeptLogin& login) {
  const fs::path path = FileFor(book);
  if (path.empty()) {
    throw FileError("a login is kept in a file of your own, and there is no home folder; "
                    "QDCLGL_SESSIONS names another one");
  }
  MakePrivateFolder(path.parent_path());
  fs::path part = path;
  part += ".part";
  std::error_code error;
  fs::remove(part, error);
  std::ofstream file(part, std::ios::binary);
  MakePrivate(part, error);
  const nlohmann::json json = {
      {"books", PlaceOf(book)}, {"user", login.user}, {"ticket", login.ticket}};
  file << json.dump(2) << '\n';
  file.close();
  if (!file || error) Fail(part, "can't be written");
  MoveInto(server::TextOf(path), server::TextOf(part), Overwriting::kAllowed);
}

void ForgetLogin(const std::string& book) {
  const fs::path path = FileFor(book);
  std::error_code ignored;
  if (!path.empty()) fs::remove(path, ignored);
}

}  // namespace qdclgl::cli
