#include "qdclgl/server/books/trail_check.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/books/id_ranges.h"
#include "qdclgl/server/books/trailed_kinds.h"
#include "qdclgl/server/periods/settings.h"

namespace qdclgl::server {

namespace {

using Json = nlohmann::json;

// ---- What the trail makes of a record ----

bool IsZero(const Json& value) {
  return value == Json(0) || value == Json(false) || value == Json("");
}

// An exception of the library for what is no object.
const Json::object_t& MembersOf(const Json& json) { return json.get_ref<const Json::object_t&>(); }

void Apply(const Json& changes, Json& row);

// Rows are added and removed at the end of a list.
void ApplyToList(const Json& changes, Json::array_t& list) {
  std::size_t left = list.size();
  for (const auto& [number, change] : MembersOf(changes)) {
    const std::size_t at = std::stoul(number) - 1;
    if (change.contains("old")) {
      left = std::min(left, at);
    } else if (change.contains("new")) {
      left = std::max(left, at + 1);
      if (at >= list.size()) list.resize(at + 1);
      list[at] = change.at("new");
    } else {
      Apply(change, list.at(at));
    }
  }
  list.resize(left);
}

// Takes the changes of a row, as ChangesText writes them, into a whole row.
void Apply(const Json& changes, Json& row) {
  for (const auto& [key, change] : MembersOf(changes)) {
    if (change.is_array()) {
      if (IsZero(change.at(1))) row.erase(key);
      else row[key] = change.at(1);
      continue;
    }
    if (!row.contains(key)) row[key] = Json::array();
    auto& list = row[key].get_ref<Json::array_t&>();
    ApplyToList(change, list);
    if (list.empty()) row.erase(key);
  }
}

std::string ValueText(const Json& row, const std::string& key) {
  return row.contains(key) ? row[key].dump() : "nothing";
}

// The first value in which two rows differ, "" when they don't.
std::string Difference(const Json& trail, const Json& books, const std::string& where = "") {
  std::set<std::string> keys;
  for (const Json* row : {&trail, &books}) {
    for (const auto& [key, value] : MembersOf(*row)) keys.insert(key);
  }
  for (const std::string& key : keys) {
    const Json in_trail = trail.value(key, Json()), in_books = books.value(key, Json());
    if (in_trail == in_books) continue;
    if (!in_trail.is_array() || !in_books.is_array()) {
      return where + key + " is " + ValueText(books, key) + ", and its trail says " +
             ValueText(trail, key);
    }
    const std::string noun(NounOf(key));
    if (in_trail.size() != in_books.size()) {
      return where + "it has " + std::to_string(in_books.size()) + " " + noun +
             "(s), and its trail says " + std::to_string(in_trail.size());
    }
    for (std::size_t i = 0; i < in_trail.size(); ++i) {
      const std::string difference =
          Difference(in_trail[i], in_books[i], where + noun + " " + std::to_string(i + 1) + " ");
      if (!difference.empty()) return difference;
    }
  }
  return "";
}

// A record as the rows of its trail leave it, which outlive it. Most have changed in some values of
// their own since they were made, and are compared as they are written; others are taken apart.
class TrailedState {
 public:
  void Take(const AuditRow& row) {
    constexpr std::string_view kNew = "{\"new\":", kOld = "{\"old\":";
    const std::string_view changes = row.changes;
    if (changes.starts_with(kNew)) {
      whole_ = changes.substr(kNew.size(), changes.size() - kNew.size() - 1);
      later_.clear();
      is_there_ = true;
    } else if (changes.starts_with(kOld)) {
      is_there_ = false;
    } else if (is_there_ && changes.starts_with('{')) {
      // What stands before the first whole row former versions wrote; other texts are remarks.
      later_.push_back(changes);
    }
  }

  // What is different in the books, as a sentence; "" when nothing is.
  std::string Problem(const TrailRow* row) const {
    if (row == nullptr) return is_there_ ? "It is gone, and its trail still has it." : "";
    if (!is_there_) return "It is not on the trail, or was removed there.";
    if (IsAsWritten(*row)) return "";
    Json state = Json::parse(whole_);
    for (const std::string_view changes : later_) Apply(Json::parse(changes), state);
    const std::string difference = Difference(state, Json::parse(WholeText(*row)));
    return difference.empty() ? "" : "It was changed past the trail: " + difference + ".";
  }

 private:
  // Whether the row with its later changes taken back is the whole row, letter by letter.
  bool IsAsWritten(const TrailRow& row) const {
    std::vector<ValueChange> all;
    for (const std::string_view changes : later_) {
      const auto values = ValueChanges(changes);
      if (!values) return false;
      for (const ValueChange& value : *values) {
        const auto known = std::ranges::find(all, value.key, &ValueChange::key);
        if (known == all.end()) all.push_back(value);
        else known->after = value.after;
      }
    }
    return WholeTextBefore(row, all) == whole_;
  }

  bool is_there_ = false;
  std::string_view whole_;
  std::vector<std::string_view> later_;
};

// The problem that `operation` finds; a trail that makes no sense is one too.
template <class Operation>
std::string ProblemOf(Operation operation) {
  try {
    return operation();
  } catch (const std::exception&) {
    return "What its trail tells makes no sense.";
  }
}

// ---- Chains and records ----

// The first row of one record's trail that is missing or changed, as a sentence.
std::string BreakIn(std::span<const AuditRow> rows) {
  std::string_view former;
  Long number = 0;
  for (const AuditRow& row : rows) {
    ++number;
    if (row.number != number) return "Row " + std::to_string(number) + " of its trail is missing.";
    if (row.hash != row.HashBehind(former)) {
      return "Row " + std::to_string(number) + " of its trail was changed.";
    }
    former = row.hash;
  }
  return "";
}

class ChainCheck {
 public:
  ChainCheck(Database& db, Findings& findings) : db_(db), findings_(findings) {}

  // The trail of all records of a subject, and the records where `kind` tells how to read them.
  void Run(std::string_view subject, const TrailedKind* kind, const WorkProgress& progress) {
    const double last_id =
        db_.QueryValue<Long>("SELECT COALESCE(MAX(FRecordID), 0) FROM t_Audit WHERE FSubject = ?",
                             subject)
            .value_or(0);
    const auto next = [&](Long from) {
      const auto on_trail =
          db_.QueryValue<Long>("SELECT FRecordID FROM t_Audit WHERE FSubject = ? AND FRecordID >= ?"
                               " ORDER BY FRecordID LIMIT 1",
                               subject, from);
      const auto in_books =
          kind != nullptr ? NextId(db_, kind->table, kind->id, from) : std::optional<Long>();
      return on_trail && in_books ? std::min(on_trail, in_books) : on_trail ? on_trail : in_books;
    };
    InRanges(next, [&](Long first, Long last) {
      const std::vector<AuditRow> rows = AuditRowsOf(db_, subject, first, last);
      std::map<Long, TrailedRecord> records;
      if (kind != nullptr) records = Read(*kind, first, last);
      for (std::span<const AuditRow> rest(rows); !rest.empty();) {
        const Long id = rest.front().record_id;
        const auto end =
            std::ranges::find_if(rest, [&](const AuditRow& row) { return row.record_id != id; });
        const auto chain = rest.first(static_cast<std::size_t>(end - rest.begin()));
        rest = rest.subspan(chain.size());
        const auto record = records.find(id);
        CheckOne(subject, id, chain, kind != nullptr,
                 record != records.end() ? &record->second : nullptr);
        if (record != records.end()) records.erase(record);
      }
      for (const auto& [id, record] : records) CheckOne(subject, id, {}, true, &record);
      if (last < last_id) progress.Tell("Checking the audit trail", last / last_id);
    });
  }

 private:
  // The records with these ids; one that can't be read, a date being none, say, has no cells.
  std::map<Long, TrailedRecord> Read(const TrailedKind& kind, Long first, Long last) {
    try {
      return kind.read(db_, first, last);
    } catch (const Error&) {
      if (first == last) return {{first, {}}};
    }
    std::map<Long, TrailedRecord> records;
    for (auto id = NextId(db_, kind.table, kind.id, first); id && *id <= last;) {
      records.merge(Read(kind, *id, *id));
      id = *id < last ? NextId(db_, kind.table, kind.id, *id + 1) : std::nullopt;
    }
    return records;
  }

  void CheckOne(std::string_view subject, Long id, std::span<const AuditRow> rows, bool has_state,
                const TrailedRecord* record) {
    const std::string name = rows.empty() || (record != nullptr && !record->name.empty())
                                 ? record->name
                                 : rows.back().record;
    if (const std::string problem = BreakIn(rows); !problem.empty()) {
      return findings_.Add("Trail", subject, id, name, problem);
    }
    if (!has_state) return;
    if (record != nullptr && record->state.cells.empty()) {
      return findings_.Add("Record", subject, id, name,
                           "It was changed past the trail: a value does not fit its column.");
    }
    const std::string problem = ProblemOf([&] {
      TrailedState state;
      for (const AuditRow& row : rows) state.Take(row);
      return state.Problem(record != nullptr ? &record->state : nullptr);
    });
    if (!problem.empty()) findings_.Add("Record", subject, id, name, problem);
  }

  Database& db_;
  Findings& findings_;
};

// The settings are one record, whose changes closing and reopening tell of under a name of their
// own.
void CheckSettingsTrail(Database& db, Findings& findings) {
  std::vector<AuditRow> rows = AuditRowsOf(db, kSettingSubject, 0, 0);
  std::ranges::move(AuditRowsOf(db, kPeriodSubject, 0, 0), std::back_inserter(rows));
  std::ranges::sort(rows, {}, &AuditRow::id);
  const std::string problem = ProblemOf([&] {
    TrailedState state;
    for (const AuditRow& row : rows) state.Take(row);
    return state.Problem(&TrailedSettings(db).row());
  });
  if (!problem.empty()) findings.Add("Record", kSettingSubject, 0, "", problem);
}

// ---- Seals ----

void CheckSeals(Database& db, std::string_view kept_head, Findings& findings) {
  TrailSeal former;
  bool is_kept_there = kept_head.empty();
  for (const TrailSeal& seal : AllSeals(db)) {
    const std::string name = std::to_string(seal.number);
    if (seal.number != former.number + 1) {
      findings.Add("Seal", "Audit", seal.number, name, "A seal before it is missing.");
    } else if (!seal.hash.empty()) {
      Long count = 0;
      const std::string hash = SealHash(db, former, seal, count);
      if (count != seal.count) {
        findings.Add("Seal", "Audit", seal.number, name,
                     "Its block has " + std::to_string(count) + " row(s), sealed were " +
                         std::to_string(seal.count) + ".");
      } else if (hash != seal.hash) {
        findings.Add("Seal", "Audit", seal.number, name, "Its block or itself was changed.");
      }
    }
    is_kept_there = is_kept_there || HeadOf(seal) == kept_head;
    former = seal;
  }
  if (former.number == 0) findings.Add("Seal", "Audit", 0, "", "The trail has no seal at all.");
  if (!is_kept_there) {
    findings.Add("Head", "Audit", 0, std::string(kept_head),
                 "The trail does not lead to this head: it was cut off or written anew.");
  }
  if (!db.IsSQLite()) return;
  // Here ids have no gaps, so that what is not sealed yet is counted too.
  const auto rows = db.QueryRow<Long, Long>(
      "SELECT COUNT(*), COALESCE((SELECT seq FROM sqlite_sequence WHERE name = 't_Audit'), 0)"
      " FROM t_Audit WHERE FAuditID > ?",
      former.last_id);
  const auto [count, last_id] = rows.value_or(std::tuple<Long, Long>());
  if (count != last_id - former.last_id) {
    findings.Add("Seal", "Audit", 0, "",
                 "Behind the last seal there are " + std::to_string(count) + " row(s), " +
                     std::to_string(last_id - former.last_id) + " were written.");
  }
}

}  // namespace

namespace {

// Who had a hand in a voucher, which four eyes go by, is told by its trail too.
void CheckEditors(Database& db, Findings& findings) {
  const std::string deed =
      " a.FSubject = 'Voucher' AND a.FAction IN ('Create', 'Update', 'ClearCashFlow')";
  findings.AddRows(db, "Editors", "Voucher", "Somebody who changed it is not among its editors.",
                   "SELECT DISTINCT v.FVoucherID, " + std::string(kVoucherName) +
                       std::string(kFromVouchers) +
                       " JOIN t_Audit a ON a.FRecordID = v.FVoucherID AND" + deed +
                       " WHERE a.FUserID <> v.FPreparerID AND NOT EXISTS (SELECT 1 FROM"
                       " t_VoucherEditor e WHERE e.FVoucherID = v.FVoucherID"
                       " AND e.FUserID = a.FUserID) ORDER BY 1");
  findings.AddRows(db, "Editors", "Voucher", "One of its editors never changed it.",
                   "SELECT e.FVoucherID, 'user ' || CAST(e.FUserID AS TEXT) FROM t_VoucherEditor e"
                   " WHERE NOT EXISTS (SELECT 1 FROM t_Audit a WHERE a.FRecordID = e.FVoucherID"
                   " AND a.FUserID = e.FUserID AND" +
                       deed + ") ORDER BY 1, 2");
}

}  // namespace

void CheckTrail(Database& db, std::string_view kept_head, Findings& findings,
                const WorkProgress& progress) {
  struct Subject {
    double rows = 0;  // that the trail has of it
    const TrailedKind* kind = nullptr;
  };
  std::map<std::string, Subject, std::less<>> subjects;
  double all_rows = 1;
  for (const auto& [subject, rows] : db.Query<std::string, std::int64_t>(
           "SELECT FSubject, COUNT(*) FROM t_Audit GROUP BY FSubject")) {
    subjects[subject].rows = static_cast<double>(rows);
    all_rows += static_cast<double>(rows);
  }
  for (const TrailedKind& kind : TrailedKinds()) subjects[std::string(kind.subject)].kind = &kind;
  ChainCheck check(db, findings);
  double done = 0;
  for (const auto& [name, subject] : subjects) {
    const double share = subject.rows / all_rows;
    check.Run(name, subject.kind, progress.Part(done, done + share));
    done += share;
  }
  CheckSettingsTrail(db, findings);
  CheckEditors(db, findings);
  CheckSeals(db, kept_head, findings);
}

}  // namespace qdclgl::server
