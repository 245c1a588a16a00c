// Whole documents: copied and dropped, and walked line by line.
#include "bench/sample.h"
#include "bench/work.h"
#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/objects/conversions.h"

namespace bench {

namespace {

using namespace qdclgl;

// Made on first use and kept: both sides look into memory that was filled in one go.
struct Document {
  explicit Document(std::int32_t lines) : ours(OurDocument(lines)), theirs(TheirDocument(lines)) {}
  Ref<Dictionary> ours;
  PeerRow theirs;
};

const Document& DocumentOf(std::int32_t lines) {
  static std::map<std::int32_t, Document> documents;
  return documents.try_emplace(lines, lines).first->second;
}

// A first copy goes uncounted: it pays for tidying up the memory that the work before it gave back.
Work Copy(const std::string& name, std::int32_t lines, double goal, int iterations) {
  return {"deep copy and destroy, " + name,
          goal,
          1,
          iterations,
          [lines](benchmark::State& state) {
            const auto& tree = DocumentOf(lines).ours;
            benchmark::DoNotOptimize(CloneDictionary(tree).get());
            for (auto _ : state) benchmark::DoNotOptimize(CloneDictionary(tree).get());
          },
          [lines](benchmark::State& state) {
            const auto& tree = DocumentOf(lines).theirs;
            const auto copy_and_destroy = [&tree] {
              PeerRow copy = tree;
              benchmark::DoNotOptimize(copy);
            };
            copy_and_destroy();
            for (auto _ : state) copy_and_destroy();
          }};
}

std::int64_t OurSum(const Dictionary& document) {
  std::int64_t sum = 0;
  const auto& entries = static_cast<const Vector&>(*document.Find("_Entries")->ObjectPointer());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto& line = static_cast<const Dictionary&>(*entries.at(i).ObjectPointer());
    const std::int64_t amount = line.Find("FAmount")->As<Currency>().units();
    sum += line.Find("FDC")->As<Long>() != 0 ? amount : -amount;
  }
  return sum;
}

std::int64_t TheirSum(const PeerRow& document) {
  static const std::string entries_key = "_Entries", amount_key = "FAmount", side_key = "FDC";
  std::int64_t sum = 0;
  for (const PeerRow& line : std::get<PeerList>(document.find(entries_key)->second)) {
    const std::int64_t amount = std::get<Amount>(line.find(amount_key)->second).units;
    sum += std::get<std::int32_t>(line.find(side_key)->second) != 0 ? amount : -amount;
  }
  return sum;
}

Work Walk(const std::string& name, std::int32_t lines, double goal, int iterations) {
  return {"two keys of every line, " + name,
          goal,
          1,
          iterations,
          [lines](benchmark::State& state) {
            const auto& tree = *DocumentOf(lines).ours;
            for (auto _ : state) benchmark::DoNotOptimize(OurSum(tree));
          },
          [lines](benchmark::State& state) {
            const auto& tree = DocumentOf(lines).theirs;
            for (auto _ : state) benchmark::DoNotOptimize(TheirSum(tree));
          }};
}

}  // namespace

std::vector<Work> TreeWorks() {
  return {
      Copy("10 lines", 10, 0.14, 4000),     Copy("1,000 lines", 1000, 0.10, 40),
      Copy("30,000 lines", 30000, 0.10, 2), Walk("10 lines", 10, 0.40, 100000),
      Walk("1,000 lines", 1000, 0.30, 500), Walk("30,000 lines", 30000, 0.20, 8),
  };
}

}  // namespace bench
