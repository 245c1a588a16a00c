// Which folder may include which: read from the sources themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = QDCLGL_SOURCE_DIR;

// A folder and those right below it; what is below those it may include too.
struct Floor {
  std::string folder;
  std::vector<std::string> below;
};

const std::vector<Floor> kFloors = {
    {"qdclgl", {}},  // language.h and version.h; the umbrella qdclgl.h stands with the faces
    {"qdclgl/frame/vocabulary", {"qdclgl"}},
    {"qdclgl/frame/values", {"qdclgl/frame/vocabulary"}},
    {"qdclgl/frame/platform", {"qdclgl/frame/values"}},
    {"qdclgl/frame/objects", {"qdclgl/frame/platform"}},
    {"qdclgl/frame/containers", {"qdclgl/frame/objects"}},
    {"qdclgl/frame/session", {"qdclgl/frame/containers"}},
    {"qdclgl/frame/entities", {"qdclgl/frame/session"}},
    {"qdclgl/settings", {"qdclgl/frame/entities"}},
    {"qdclgl/accounts", {"qdclgl/frame/entities"}},
    {"qdclgl/vouchers", {"qdclgl/frame/entities"}},
    {"qdclgl/ledgers", {"qdclgl/accounts"}},
    {"qdclgl/masterdata", {"qdclgl/accounts", "qdclgl/vouchers"}},
    {"qdclgl/notes", {"qdclgl/frame/entities"}},
    {"qdclgl/api", {"qdclgl/settings", "qdclgl/ledgers", "qdclgl/masterdata", "qdclgl/notes"}},
    {"qdclgl/server/db", {"qdclgl/frame/session"}},
    {"qdclgl/server/access", {"qdclgl/server/db"}},
    {"qdclgl/server/records", {"qdclgl/server/access"}},
    {"qdclgl/server/periods", {"qdclgl/server/records"}},
    {"qdclgl/server/vouchers", {"qdclgl/server/periods"}},
    {"qdclgl/server/ledgers", {"qdclgl/server/vouchers"}},
    {"qdclgl/server/reports", {"qdclgl/server/vouchers"}},
    {"qdclgl/server/books", {"qdclgl/server/ledgers"}},
    {"qdclgl/server", {"qdclgl/server/books", "qdclgl/server/reports"}},
    {"qdclgl/automation", {"qdclgl/api", "qdclgl/server"}},
    {"qdclgl/cli", {"qdclgl/api", "qdclgl/server"}},
    {"tests/support", {"qdclgl/api"}},
    {"python/core", {"qdclgl/api", "qdclgl/server", "tests/support"}},
    {"qdclgl/derived", {"qdclgl/api", "qdclgl/server", "python/core"}},
};

std::set<std::string> ReachedFrom(const std::string& folder) {
  std::set<std::string> reached{folder};
  for (const Floor& floor : kFloors) {
    if (floor.folder != folder) continue;
    for (const std::string& below : floor.below) reached.merge(ReachedFrom(below));
  }
  return reached;
}

bool IsSource(const fs::path& path) {
  return path.extension() == ".h" || path.extension() == ".cpp";
}

// Paths from the root, with "/".
std::vector<std::string> SourcesBelow(const char* folder) {
  std::vector<std::string> sources;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kRoot / folder)) {
    if (IsSource(entry.path()))
      sources.push_back(fs::relative(entry.path(), kRoot).generic_string());
  }
  std::sort(sources.begin(), sources.end());
  return sources;
}

// The library's, and those of the Python module.
std::vector<std::string> Sources() {
  std::vector<std::string> sources = SourcesBelow("qdclgl");
  for (const std::string& source : SourcesBelow("python/core")) sources.push_back(source);
  return sources;
}

// The files of ours that a file includes.
std::vector<std::string> IncludesOf(const std::string& source) {
  std::vector<std::string> includes;
  std::ifstream file(kRoot / source);
  for (std::string line; std::getline(file, line);) {
    constexpr std::string_view kInclude = "#include \"";
    if (!line.starts_with(kInclude)) continue;
    line.erase(0, kInclude.size());
    const std::string name = line.substr(0, line.find('"'));
    if (fs::exists(kRoot / name)) includes.push_back(name);
  }
  return includes;
}

std::string FolderOf(const std::string& file) {
  return fs::path(file).parent_path().generic_string();
}

// A header and its .cpp are one unit.
std::string UnitOf(const std::string& file) {
  return fs::path(file).replace_extension().generic_string();
}

TEST(Floors, EveryFolderOfSourcesHasItsFloor) {
  std::set<std::string> known;
  for (const Floor& floor : kFloors) known.insert(floor.folder);
  for (const std::string& source : Sources()) {
    EXPECT_TRUE(known.contains(FolderOf(source)))
        << source << " stands in a folder that has no floor; say in this file which it is";
  }
}

TEST(Floors, AFileIncludesItsOwnFloorAndThoseBelow) {
  const std::string umbrella = "qdclgl/qdclgl.h";
  std::size_t seen = 0;
  for (const std::string& source : Sources()) {
    if (source == umbrella) continue;
    const std::set<std::string> allowed = ReachedFrom(FolderOf(source));
    for (const std::string& include : IncludesOf(source)) {
      ++seen;
      const bool is_face = allowed.contains("qdclgl/api");
      EXPECT_TRUE(include == umbrella ? is_face : allowed.contains(FolderOf(include)))
          << source << " includes " << include << ", which is not below it";
    }
  }
  EXPECT_GT(seen, 500u) << "the includes were not read";
}

TEST(Floors, NoCircleOfFiles) {
  std::map<std::string, std::set<std::string>> below;
  for (const std::string& source : Sources()) {
    for (const std::string& include : IncludesOf(source)) {
      if (UnitOf(include) != UnitOf(source)) below[UnitOf(source)].insert(UnitOf(include));
    }
  }
  const auto reaches = [&](const std::string& from, const std::string& to) {
    std::set<std::string> seen{from};
    std::vector<std::string> open{from};
    while (!open.empty()) {
      const std::string unit = open.back();
      open.pop_back();
      for (const std::string& next : below[unit]) {
        if (next == to) return true;
        if (seen.insert(next).second) open.push_back(next);
      }
    }
    return false;
  };
  std::set<std::string> units;
  for (const auto& [unit, needs] : below) units.insert(unit);
  for (const std::string& unit : units) {
    for (const std::string& needed : std::set(below[unit])) {
      EXPECT_FALSE(reaches(needed, unit)) << unit << " needs " << needed << ", which needs it";
    }
  }
}

TEST(Floors, TestsStandWhereTheirSourcesDo) {
  for (const std::string& test : SourcesBelow("tests")) {
    if (!test.ends_with("_test.cpp")) continue;
    const std::string folder = FolderOf(test).substr(std::string("tests/").size());
    if (folder == "house" || folder == "fuzz") continue;  // tools of tests
    EXPECT_TRUE(fs::is_directory(kRoot / "qdclgl" / folder))
        << test << ": there is no folder qdclgl/" << folder;
    const std::string name = fs::path(test).stem().string();
    const std::string subject = name.substr(0, name.size() - std::string("_test").size());
    std::set<std::string> homes;  // the folders of the sources of that name
    for (const std::string& source : SourcesBelow("qdclgl")) {
      if (fs::path(source).stem() == subject) homes.insert(FolderOf(source));
    }
    EXPECT_TRUE(homes.empty() || homes.contains("qdclgl/" + folder))
        << test << ": its source stands in " << *homes.begin();
  }
}

}  // namespace
