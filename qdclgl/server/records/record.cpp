#include "qdclgl/server/records/record.h"

#include <algorithm>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kVersion = "FVersion";
constexpr std::string_view kNumber = "FNumber";
constexpr std::string_view kName = "FName";
constexpr Column kMachineName{"MachineName", ColumnType::kText};
constexpr Column kAddress{"IPAddress", ColumnType::kText};
constexpr Column kVersionColumn{kVersion, ColumnType::kLong};

constexpr std::size_t kLongestText = 255;

bool IsNothingGiven(const Variant* value) {
  return value == nullptr || value->IsEmpty() || value->IsNull() || value->IsMissing() ||
         value->IsNothing();
}

// A key of a sent row that is no column of the record.
std::string SentText(const Dictionary& sent, const Column& column) {
  return Normalized(column, sent.Value(column.name)).As<String>();
}

}  // namespace

// ---- The table ----

RecordTable::RecordTable(Description description)
    : description_(std::move(description)),
      shown_{{description_.id, ColumnType::kLong}, kVersionColumn} {
  for (const RecordColumn& column : description_.columns) {
    shown_.push_back(column.column);
    if (column.keeper != Keeper::kJoined) stored_.push_back(column.column);
  }
}

Ref<Recordset> RecordTable::List(Database& db, Long options, std::string_view filter,
                                 std::string_view sort) const {
  std::string query(description_.query);
  if ((options & kWithDeleted) == 0 && !description_.deleted.empty()) {
    query += " WHERE " + std::string(description_.deleted) + " = 0";
  }
  return FetchList(db, {query, shown_, description_.order}, filter, sort);
}

Ref<Dictionary> RecordTable::Read(Database& db, Long id) const {
  static constexpr Storage kParameters[] = {Storage::kWhole};
  Statement& statement =
      db.Prepared("SELECT " + NamesOf(shown_) + " FROM (" + std::string(description_.query) +
                      ") AS record WHERE " + std::string(description_.id) + " = ?",
                  kParameters, StoragesOf(shown_));
  statement.Set(0, std::int64_t{id});
  statement.Open();
  if (!statement.Fetch()) return nullptr;
  Ref<Dictionary> record = ReadRow(statement, shown_, KeysOf(shown_));
  statement.Reset();
  return record;
}

Ref<Dictionary> RecordTable::Require(Database& db, Long id) const {
  Ref<Dictionary> record = Read(db, id);
  if (!record) {
    Refuse(refusal::kNotFound,
           std::string(description_.noun) + " with id " + std::to_string(id) + ": there is none.");
  }
  return record;
}

Long RecordTable::IdWith(Database& db, std::string_view column, std::string_view text) const {
  const std::string id(description_.id);
  return db
      .QueryValue<Long>("SELECT " + id + " FROM " + std::string(description_.table) + " WHERE " +
                            std::string(column) + " = ? ORDER BY " + id,
                        text)
      .value_or(0);
}

std::string RecordTable::NameOf(const Dictionary& record) {
  const String name = record.Value(kName).As<String>();
  const Variant* number = record.Find(kNumber);
  return number == nullptr ? name : number->As<String>() + " (" + name + ")";
}

std::string RecordTable::Called(const Dictionary& record) const {
  return std::string(description_.noun) + " " + NameOf(record);
}

void RecordTable::Remove(Database& db, Long id) const {
  db.Execute("DELETE FROM " + std::string(description_.table) + " WHERE " +
                 std::string(description_.id) + " = ?",
             id);
}

Ref<Dictionary> RecordTable::Taken(const Dictionary& sent, const Dictionary* stored) const {
  RefuseUnknownKeys(sent);
  auto record = Make<Dictionary>();
  for (const auto& [column, keeper, absent, shown] : description_.columns) {
    if (keeper == Keeper::kJoined) continue;
    const Variant* given = keeper == Keeper::kCaller ? sent.Find(column.name)
                           : stored != nullptr       ? stored->Find(column.name)
                                                     : nullptr;
    record->Put(column.name, Normalized(column, IsNothingGiven(given) ? absent : *given));
  }
  return record;
}

void RecordTable::RefuseUnknownKeys(const Dictionary& sent) const {
  for (std::uint32_t i = 0; i < sent.size(); ++i) {
    const std::string_view key = sent.key_at(i);
    if (key == kMachineName.name || key == kAddress.name ||
        std::ranges::find(shown_, key, &Column::name) != shown_.end() ||
        std::ranges::find(description_.further_keys, key) != description_.further_keys.end()) {
      continue;
    }
    Refuse(refusal::kBadValue,
           std::string(description_.noun) + ": there is no column \"" + std::string(key) + "\".");
  }
}

Long RecordTable::Insert(Database& db, const Dictionary& record) const {
  std::string marks;
  for (std::size_t i = 0; i < stored_.size(); ++i) marks += ", ?";
  static constexpr Storage kResults[] = {Storage::kWhole};
  Statement& statement =
      db.Prepared("INSERT INTO " + std::string(description_.table) + " (" + std::string(kVersion) +
                      ", " + NamesOf(stored_) + ") VALUES (1" + marks +
                      ") ON CONFLICT DO NOTHING RETURNING " + std::string(description_.id),
                  StoragesOf(stored_), kResults);
  for (std::size_t i = 0; i < stored_.size(); ++i) {
    BindCell(statement, i, stored_[i], *record.Find(stored_[i].name));
  }
  statement.Open();
  if (!statement.Fetch()) {
    // Another program was quicker, one that does not wait for the lock of our transactions.
    Refuse(record.Contains(kNumber) ? refusal::kNumberTaken : refusal::kNameTaken,
           Called(record) + ": there is another one already.");
  }
  const auto id = static_cast<Long>(statement.Whole(0));
  statement.Reset();
  return id;
}

void RecordTable::Overwrite(Database& db, Long id, const Dictionary& record) const {
  std::string sql = "UPDATE " + std::string(description_.table) + " SET FVersion = FVersion + 1";
  for (const Column& column : stored_) sql += ", " + std::string(column.name) + " = ?";
  sql += " WHERE " + std::string(description_.id) + " = ?";
  std::vector<Storage> parameters = StoragesOf(stored_);
  parameters.push_back(Storage::kWhole);
  Statement& statement = db.Prepared(sql, parameters, {});
  for (std::size_t i = 0; i < stored_.size(); ++i) {
    BindCell(statement, i, stored_[i], *record.Find(stored_[i].name));
  }
  statement.Set(stored_.size(), std::int64_t{id});
  statement.Execute();
}

std::string RecordTable::Changes(const Dictionary& stored, const Dictionary& record) const {
  std::string changes;
  for (const auto& [column, keeper, absent, shown] : description_.columns) {
    if (keeper != Keeper::kCaller) continue;
    const Variant before = stored.Value(column.name), after = record.Value(column.name);
    if (Equals(before, after)) continue;
    if (!changes.empty()) changes += "; ";
    changes += std::string(column.name) + ": " + shown(before) + " -> " + shown(after);
  }
  return changes;
}

// ---- A save ----

RecordSave::RecordSave(const Caller& caller, const RecordTable& table, const Ref<Dictionary>& sent)
    : caller_(caller),
      table_(table),
      sent_(sent ? sent : throw Error(error_number::kObjectNotSet)),
      transaction_(caller.db, Transaction::Kind::kChangeRules),
      record_(table.Taken(*sent, nullptr)) {}

RecordSave::RecordSave(const Caller& caller, const RecordTable& table, const Ref<Dictionary>& sent,
                       Long id)
    : caller_(caller),
      table_(table),
      sent_(sent ? sent : throw Error(error_number::kObjectNotSet)),
      transaction_(caller.db, Transaction::Kind::kChangeRules),
      id_(id),
      stored_(table.Require(caller.db, id)) {
  const Long version = Normalized(kVersionColumn, sent->Value(kVersion)).As<Long>();
  const Long stored_version = stored_->Value(kVersion).As<Long>();
  if (version == 0) {
    Refuse(refusal::kNoVersion,
           table.Called(*stored_) + ": the row sent does not say which version it changes.");
  }
  if (version != stored_version) {
    Refuse(refusal::kChanged, table.Called(*stored_) +
                                  ": saved by somebody else in the meantime; it has version " +
                                  std::to_string(stored_version) + ", the row sent is version " +
                                  std::to_string(version) + ".");
  }
  record_ = table.Taken(*sent, stored_.get());
}

bool RecordSave::Changes(std::string_view column) const {
  return is_new() || !Equals(stored_->Value(column), record_->Value(column));
}

void RecordSave::RequireText(std::string_view column) const {
  const std::string text = Text(column);
  const std::string what = table_.Called(*record_) + ": " + std::string(column);
  if (text.empty()) Refuse(refusal::kRequired, what + " is missing.");
  if (Utf16Length(text) > kLongestText) {
    Refuse(refusal::kBadValue, std::string(table_.description().noun) + ": " + std::string(column) +
                                   " is longer than " + std::to_string(kLongestText) +
                                   " characters.");
  }
}

void RecordSave::RequireUnique(std::string_view column) const {
  const std::string text = Text(column);
  const Long other = table_.IdWith(caller_.db, column, text);
  if (other == 0 || other == id_) return;
  Refuse(column == kNumber ? refusal::kNumberTaken : refusal::kNameTaken,
         table_.Called(*table_.Require(caller_.db, other)) + " has " + std::string(column) + " " +
             text + " already.");
}

void RecordSave::Write() {
  std::string changes;
  if (is_new()) {
    id_ = table_.Insert(caller_.db, *record_);
  } else {
    table_.Overwrite(caller_.db, id_, *record_);
    changes = table_.Changes(*stored_, *record_);
  }
  const std::string name = RecordTable::NameOf(*record_);
  const std::string machine_name = SentText(*sent_, kMachineName);
  const std::string address = SentText(*sent_, kAddress);
  WriteAudit(caller_, {.subject = table_.description().subject,
                       .record_id = id_,
                       .record = name,
                       .action = is_new() ? "Create" : "Update",
                       .changes = changes,
                       .machine_name = machine_name,
                       .address = address});
}

void RecordSave::Commit() {
  transaction_.Commit();
  sent_->Put(table_.description().id, id_);
  sent_->Put(kVersion, is_new() ? Long{1} : stored_->Value(kVersion).As<Long>() + 1);
}

// ---- Deletion ----

void AuditDeletion(const Caller& caller, const RecordTable& table, const Dictionary& record,
                   std::string_view machine_name, std::string_view address) {
  const std::string name = RecordTable::NameOf(record);
  WriteAudit(caller, {.subject = table.description().subject,
                      .record_id = record.Value(table.description().id).As<Long>(),
                      .record = name,
                      .action = "Delete",
                      .machine_name = machine_name,
                      .address = address});
}

bool IsUsedInVouchers(Database& db, std::string_view column, Long id) {
  const std::string where = " WHERE " + std::string(column) + " = ?";
  return db.QueryValue<int>("SELECT 1 FROM t_VoucherEntry" + where + " LIMIT 1", id) ||
         db.QueryValue<int>("SELECT 1 FROM t_Balance" + where +
                                " AND (FDebit <> 0 OR FCredit <> 0 OR FDebitFor <> 0 OR"
                                " FCreditFor <> 0 OR FDebitQty <> 0 OR FCreditQty <> 0) LIMIT 1",
                            id);
}

}  // namespace qdclgl::server
