#include "qdclgl/server/periods/text_signature.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::server {

namespace {

// What is stored in the books goes by these: a change of them is one of the books, too.
constexpr Long kBlock = 64;            // vouchers
constexpr std::size_t kPlaces = 1900;  // of a signature; two of them go on a page of SQLite's
constexpr std::size_t kMarksOfPlace = 6;
constexpr char kNoMarks = '0', kAllMarks = '0' + 63;

// How many blocks are read at once.
constexpr Long kBlocksAtOnce = 16;

// More ranges than this are read no sooner one by one than all together.
constexpr std::size_t kMostRanges = 2000;

VoucherRange VouchersOfBlock(std::int64_t block) {
  return {block * kBlock, block * kBlock + (kBlock - 1)};
}

// What is known of the vouchers of a block.
struct Block {
  AccountingPeriod until;  // the latest of their periods
  TextSignature signature;
};

// Of the blocks from one to another, those with vouchers in them.
std::map<Long, Block> ReadBlocks(Database& db, Long first, Long last) {
  static const std::string kWhere = " WHERE FVoucherID BETWEEN ? AND ?";
  static const std::string kSql =
      "SELECT FVoucherID, FYear, FPeriod, FReference, FExplanation FROM t_Voucher" + kWhere +
      " UNION ALL SELECT FVoucherID, 0, 0, FExplanation, FTransNo FROM t_VoucherEntry" + kWhere +
      " UNION ALL SELECT FVoucherID, 0, 0, FItemNumber, FItemName FROM t_VoucherDetail" + kWhere;
  const std::int64_t from = VouchersOfBlock(first).first, to = VouchersOfBlock(last).second;
  std::map<Long, Block> blocks;
  for (const auto& [voucher, year, period, text, other] :
       db.Query<Long, Long, Long, std::string, std::string>(kSql, from, to, from, to, from, to)) {
    Block& block = blocks[voucher / kBlock];
    block.until = std::max(block.until, AccountingPeriod{year, period});
    block.signature.Add(text);
    block.signature.Add(other);
  }
  return blocks;
}

// Hands over what is in these blocks, which are in order, some at a time.
template <class Take>
void ReadEach(Database& db, std::span<const Long> blocks, Take take) {
  while (!blocks.empty()) {
    const std::int64_t behind = std::int64_t{blocks.front()} + kBlocksAtOnce;
    const auto end = std::ranges::find_if(blocks, [&](Long block) { return block >= behind; });
    const auto count = static_cast<std::size_t>(end - blocks.begin());
    const std::map<Long, Block> read = ReadBlocks(db, blocks.front(), blocks[count - 1]);
    for (const Long block : blocks.first(count)) {
      const auto found = read.find(block);
      if (found != read.end()) take(block, found->second);
    }
    blocks = blocks.subspan(count);
  }
}

// The blocks with vouchers of such periods and none behind the last closed one. A block into which
// new vouchers may still come, the last one, is left out.
template <class... Values>
std::vector<Long> Blocks(Database& db, const std::string& periods, AccountingPeriod last_closed,
                         const Values&... values) {
  static const std::string kVouchers = std::to_string(kBlock);
  std::vector<Long> blocks;
  for (const auto& [block] : db.Query<Long>(
           "SELECT FBlock FROM (SELECT DISTINCT FVoucherID / " + kVouchers +
               " AS FBlock FROM t_Voucher WHERE " + periods +
               ") AS of_periods WHERE FBlock < (SELECT MAX(FVoucherID) / " + kVouchers +
               " FROM t_Voucher) AND NOT EXISTS (SELECT 1 FROM t_Voucher v WHERE v.FVoucherID >="
               " FBlock * " +
               kVouchers + " AND v.FVoucherID < (FBlock + 1) * " + kVouchers +
               " AND (v.FYear > ? OR v.FYear = ? AND v.FPeriod > ?)) ORDER BY FBlock",
           values..., last_closed.year, last_closed.year, last_closed.period)) {
    blocks.push_back(block);
  }
  return blocks;
}

// A signature that is there already is none of ours.
void Sign(Database& db, std::span<const Long> blocks) {
  ReadEach(db, blocks, [&](Long number, const Block& block) {
    db.ExecuteLater(
        "INSERT INTO t_TextSignature (FBlock, FYear, FPeriod, FSignature) VALUES (?, ?, ?, ?)"
        " ON CONFLICT (FBlock) DO UPDATE SET FYear = excluded.FYear, FPeriod = excluded.FPeriod,"
        " FSignature = excluded.FSignature",
        number, block.until.year, block.until.period, block.signature.stored());
  });
}

// The kept signatures by block, some at a time.
template <class Take>
void EachSignature(Database& db, Take take) {
  constexpr std::size_t kAtOnce = 1000;
  for (std::int64_t from = INT64_MIN;;) {
    const auto rows = db.Query<Long, Long, Long, std::string>(
        "SELECT FBlock, FYear, FPeriod, FSignature FROM t_TextSignature WHERE FBlock >= ?"
        " ORDER BY FBlock LIMIT " +
            std::to_string(kAtOnce),
        from);
    for (const auto& [block, year, period, stored] : rows) {
      take(block, AccountingPeriod{year, period}, TextSignature(stored));
    }
    if (rows.size() < kAtOnce) return;
    from = std::int64_t{std::get<0>(rows.back())} + 1;
  }
}

}  // namespace

TextSignature::TextSignature() : places_(kPlaces, kNoMarks) {}

TextSignature::TextSignature(std::string stored)
    : places_(stored.size() == kPlaces ? std::move(stored) : std::string(kPlaces, kAllMarks)) {}

TextSignature::Marks TextSignature::MarksOf(std::string_view text) {
  const std::string upper = ToUpper(text);
  Marks marks;
  for (std::size_t first = 0; first + 3 <= upper.size(); ++first) {
    std::uint32_t hash = 2166136261u;  // FNV-1a
    for (std::size_t i = first; i < std::min(first + 4, upper.size()); ++i) {
      hash = (hash ^ static_cast<unsigned char>(upper[i])) * 16777619u;
      if (i >= first + 2) marks.push_back(hash % (kPlaces * kMarksOfPlace));
    }
  }
  return marks;
}

void TextSignature::Add(std::string_view text) {
  for (const std::size_t mark : MarksOf(text)) {
    char& place = places_[mark / kMarksOfPlace];
    place = static_cast<char>(kNoMarks + ((place - kNoMarks) | 1 << mark % kMarksOfPlace));
  }
}

bool TextSignature::HasAll(const Marks& marks) const {
  return std::ranges::all_of(marks, [&](std::size_t mark) {
    return ((places_[mark / kMarksOfPlace] - kNoMarks) >> mark % kMarksOfPlace & 1) != 0;
  });
}

bool TextSignature::HasAllOf(const TextSignature& other) const {
  for (std::size_t i = 0; i < kPlaces; ++i) {
    if (((other.places_[i] - kNoMarks) & ~(places_[i] - kNoMarks)) != 0) return false;
  }
  return true;
}

void SignVouchersOf(Database& db, AccountingPeriod closed) {
  Sign(db, Blocks(db, "FYear = ? AND FPeriod = ?", closed, closed.year, closed.period));
}

void SignVouchersBefore(Database& db, AccountingPeriod current,
                        const std::function<void(double share)>& tell) {
  const std::vector<Long> blocks =
      Blocks(db, "FYear < ? OR FYear = ? AND FPeriod < ?", {current.year, current.period - 1},
             current.year, current.year, current.period);
  constexpr std::size_t kAtOnce = 256;
  for (std::size_t first = 0; first < blocks.size(); first += kAtOnce) {
    tell(static_cast<double>(first) / static_cast<double>(blocks.size()));
    Sign(db, std::span(blocks).subspan(first, std::min(kAtOnce, blocks.size() - first)));
  }
}

void TakeBackSignatures(Database& db, AccountingPeriod opened) {
  db.Execute("DELETE FROM t_TextSignature WHERE FYear > ? OR FYear = ? AND FPeriod >= ?",
             opened.year, opened.year, opened.period);
}

std::optional<std::vector<VoucherRange>> VouchersThatMayHave(Database& db,
                                                             std::span<const std::string> words) {
  TextSignature::Marks marks;
  for (const std::string& word : words) {
    const TextSignature::Marks own = TextSignature::MarksOf(word);
    marks.insert(marks.end(), own.begin(), own.end());
  }
  if (marks.empty()) return std::nullopt;
  std::vector<VoucherRange> ranges;
  std::int64_t from = 0;  // behind the last block that is passed over
  EachSignature(db, [&](Long block, AccountingPeriod, const TextSignature& signature) {
    if (signature.HasAll(marks)) return;
    const auto [first, last] = VouchersOfBlock(block);
    if (from < first) ranges.emplace_back(from, first - 1);
    from = last + 1;
  });
  if (from == 0) return std::nullopt;
  ranges.emplace_back(from, INT64_MAX);
  if (ranges.size() > kMostRanges) return std::nullopt;
  return ranges;
}

std::vector<VoucherRange> WrongSignatures(Database& db, AccountingPeriod current) {
  std::map<Long, std::pair<AccountingPeriod, TextSignature>> kept;
  std::vector<Long> blocks;
  std::vector<VoucherRange> wrong;
  const auto compare = [&] {
    ReadEach(db, blocks, [&](Long number, const Block& block) {
      const auto& [until, signature] = kept.at(number);
      if (block.until > until || until >= current || !signature.HasAllOf(block.signature)) {
        wrong.push_back(VouchersOfBlock(number));
      }
    });
    kept.clear();
    blocks.clear();
  };
  EachSignature(db, [&](Long block, AccountingPeriod until, const TextSignature& signature) {
    kept.emplace(block, std::pair(until, signature));
    blocks.push_back(block);
    if (std::ssize(blocks) == kBlocksAtOnce) compare();
  });
  compare();
  return wrong;
}

}  // namespace qdclgl::server
