#include "qdclgl/server/access/trail_seal.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <sstream>

#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

namespace {

constexpr Long kLongestBlock = 1000;
// Of "2024-01-31T13:05:00Z": a seal is due with the first deed of each ten minutes.
constexpr std::size_t kTenMinutes = sizeof "2024-01-31T13:0" - 1;

constexpr Column kColumns[] = {
    {"FSealID", ColumnType::kLong},      {"FTime", ColumnType::kText},
    {"FLastAuditID", ColumnType::kLong}, {"FCount", ColumnType::kLong},
    {"FUnderWay", ColumnType::kText},    {"FHash", ColumnType::kText},
};

std::vector<TrailSeal> Seals(Database& db, const std::string& which) {
  std::vector<TrailSeal> seals;
  for (auto& [number, time, last_id, count, under_way, hash] :
       db.Query<Long, std::string, Long, Long, std::string, std::string>(
           "SELECT " + NamesOf(kColumns) + " FROM t_AuditSeal " + which)) {
    seals.push_back(
        {number, std::move(time), last_id, count, std::move(under_way), std::move(hash)});
  }
  return seals;
}

constexpr const char* kNewest = "ORDER BY FSealID DESC LIMIT 1";

TrailSeal FirstOf(const std::vector<TrailSeal>& seals) {
  return seals.empty() ? TrailSeal() : seals.front();
}

// One program seals at a time; the others go on.
bool TakeSealLock(Database& db) {
  return db.IsSQLite() ||
         *db.QueryValue<bool>("SELECT CAST(pg_try_advisory_xact_lock(hashtext(current_schema()), 2)"
                              " AS INTEGER)");
}

// The other transactions that change the books just now, each with a name that is never used again.
// They are known by the lock that every one of them takes at its beginning.
std::string OthersUnderWay(Database& db) {
  if (db.IsSQLite()) return "";
  std::string names;
  for (const auto& [name] : db.Query<std::string>(
           "SELECT virtualtransaction FROM pg_locks WHERE locktype = 'advisory' AND granted"
           " AND database = (SELECT oid FROM pg_database WHERE datname = current_database())"
           " AND CAST(classid AS BIGINT) = CAST(hashtext(current_schema()) AS BIGINT) & 4294967295"
           " AND objid = 0 AND objsubid = 2 AND pid <> pg_backend_pid()")) {
    names += (names.empty() ? "" : " ") + name;
  }
  return names;
}

bool AnyInBoth(const std::string& left, const std::string& right) {
  const auto words = [](const std::string& text) {
    std::istringstream stream(text);
    return std::vector<std::string>{std::istream_iterator<std::string>(stream), {}};
  };
  const std::vector<std::string> others = words(right);
  return std::ranges::any_of(words(left), [&](const std::string& word) {
    return std::ranges::find(others, word) != others.end();
  });
}

// Puts the hash under a block whose rows are all there.
void Close(Database& db, const TrailSeal& seal) {
  const TrailSeal former = FirstOf(Seals(db, "WHERE FSealID = " + std::to_string(seal.number - 1)));
  Long count = 0;
  const std::string hash = SealHash(db, former, seal, count);
  db.Execute("UPDATE t_AuditSeal SET FCount = ?, FUnderWay = '', FHash = ? WHERE FSealID = ?",
             count, hash, seal.number);
}

// Marks the end of a block behind `seal`; its time is that of its last row.
TrailSeal Mark(Database& db, const TrailSeal& former, Long last_id, const std::string& others) {
  TrailSeal seal{.number = former.number + 1, .last_id = last_id, .under_way = others};
  seal.time = *db.QueryValue<std::string>("SELECT FTime FROM t_Audit WHERE FAuditID = ?", last_id);
  db.Execute("INSERT INTO t_AuditSeal (FSealID, FTime, FLastAuditID, FCount, FUnderWay, FHash)"
             " VALUES (?, ?, ?, 0, ?, '')",
             seal.number, seal.time, seal.last_id, seal.under_way);
  return seal;
}

}  // namespace

namespace {

// Seals the rows up to this one, or marks them.
void SealUpTo(Database& db, Long id) {
  if (!TakeSealLock(db)) return;
  const std::string others = OthersUnderWay(db);
  TrailSeal last = FirstOf(Seals(db, kNewest));
  if (last.number > 0 && last.hash.empty()) {
    if (AnyInBoth(last.under_way, others)) {
      if (id <= last.last_id) return;
      // Still waiting for some: the block grows, so that not every deed from here on asks again.
      db.Execute("DELETE FROM t_AuditSeal WHERE FSealID = ?", last.number);
      --last.number;
    } else {
      Close(db, last);
    }
  }
  if (id <= last.last_id) return;
  const TrailSeal seal = Mark(db, last, id, others);
  if (others.empty()) Close(db, seal);
}

// When a connection looked last whether a seal is due.
struct LastLook {
  int deeds = 0;  // since then
  std::optional<std::chrono::steady_clock::time_point> time;

  bool IsLongAgo() {
    constexpr int kDeeds = 100;
    const auto now = std::chrono::steady_clock::now();
    if (time && ++deeds < kDeeds && now - *time < std::chrono::minutes(1)) return false;
    deeds = 0;
    time = now;
    return true;
  }
};

}  // namespace

bool IsSealDue(Long id, std::string_view time, Long sealed_id, std::string_view sealed_time) {
  if (sealed_id == 0) return false;  // the first seal is that of the books' making
  return id - sealed_id >= kLongestBlock ||
         time.substr(0, kTenMinutes) != sealed_time.substr(0, kTenMinutes);
}

void SealIfDue(Database& db) {
  if (!db.Kept<LastLook>().IsLongAgo()) return;
  const auto row = db.QueryRow<Long, std::string>(
      "SELECT FAuditID, FTime FROM t_Audit ORDER BY FAuditID DESC LIMIT 1");
  const auto& [id, time] = *row;
  const TrailSeal last = FirstOf(Seals(db, kNewest));
  if (IsSealDue(id, time, last.last_id, last.time)) SealUpTo(db, id);
}

void SealTrail(Database& db) {
  SealUpTo(db, db.QueryValue<Long>("SELECT COALESCE(MAX(FAuditID), 0) FROM t_Audit").value_or(0));
}

TrailSeal LastSeal(Database& db) {
  return FirstOf(Seals(db, "WHERE FHash <> '' ORDER BY FSealID DESC LIMIT 1"));
}

std::vector<TrailSeal> AllSeals(Database& db) { return Seals(db, "ORDER BY FSealID"); }

std::string SealHash(Database& db, const TrailSeal& former, const TrailSeal& seal, Long& count) {
  Sha256 sum;
  sum.Add(former.hash + " " + std::to_string(seal.number) + " " + seal.time);
  Statement& statement = db.Prepared(
      "SELECT FAuditID, FHash FROM t_Audit WHERE FAuditID > ? AND FAuditID <= ? ORDER BY FAuditID");
  statement.Set(0, std::int64_t{former.last_id});
  statement.Set(1, std::int64_t{seal.last_id});
  count = 0;
  for (statement.Open(); statement.Fetch(); ++count) {
    sum.Add(" " + std::to_string(statement.Whole(0)) + " ");
    sum.Add(statement.Text(1));
  }
  return sum.Digits();
}

std::string HeadOf(const TrailSeal& seal) {
  return seal.number == 0 ? "" : std::to_string(seal.number) + "-" + seal.hash;
}

StoredTable SealTable() { return {"t_AuditSeal", {std::begin(kColumns), std::end(kColumns)}}; }

}  // namespace qdclgl::server
