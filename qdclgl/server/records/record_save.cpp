#include "qdclgl/server/records/record_save.h"

#include <algorithm>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

using namespace record_column;

namespace {

constexpr std::size_t kLongestText = 255;

// The column of exactly this name, null when there is none.
const Column* FindIn(std::span<const Column> columns, std::string_view name) {
  const auto found = std::ranges::find(columns, name, &Column::name);
  return found == columns.end() ? nullptr : &*found;
}

// A key of a sent row that is no column of the record.
std::string SentText(const Dictionary& sent, const Column& column) {
  return Normalized(column, sent.Value(column.name)).As<String>();
}

}  // namespace

void CheckKey(RecordSave& save) {
  save.RequireKey();
  save.RequireUniqueKey();
}

void RemoveRecord(RecordRemoval& removal) { removal.Remove(); }

// ---- A save ----

RecordSave::RecordSave(const Caller& caller, const MasterData& kind, const Ref<Dictionary>& sent)
    : caller_(caller),
      kind_(kind),
      sent_(sent ? sent : throw Error(error_number::kObjectNotSet)),
      transaction_(caller, Transaction::Kind::kChangeRules),
      record_(kind.Taken(*sent, nullptr)) {}

RecordSave::RecordSave(const Caller& caller, const MasterData& kind, Long id,
                       const Ref<Dictionary>& sent, Stored)
    : caller_(caller),
      kind_(kind),
      sent_(sent ? sent : throw Error(error_number::kObjectNotSet)),
      transaction_(caller, Transaction::Kind::kChangeRules),
      id_(id),
      stored_(kind.Require(caller.db, id)),
      before_(kind.TrailOf(caller.db, id)),
      list_ids_(IdsInLists(caller.db, kind, id)) {}

RecordSave::RecordSave(const Caller& caller, const MasterData& kind, Long id,
                       const Ref<Dictionary>& sent)
    : RecordSave(caller, kind, id, sent, Stored{}) {
  const Ref<Dictionary> row = stored_->Clone();
  for (std::uint32_t i = 0; i < sent->size(); ++i) row->Put(sent->key_at(i), sent->value_at(i));
  record_ = kind.Taken(*row, stored_.get());
}

RecordSave::RecordSave(const Caller& caller, const MasterData& kind, const Ref<Dictionary>& sent,
                       Long id)
    : RecordSave(caller, kind, id, sent, Stored{}) {
  const Long version = Normalized(kVersion, sent->Value(kVersion.name)).As<Long>();
  const Long stored_version = stored_->Value(kVersion.name).As<Long>();
  const auto refuse = [&](std::int32_t number, const std::string& reason) {
    server::Refuse(number, kind.Called(*stored_) + ": " + reason);
  };
  if (version == 0) {
    refuse(refusal::kNoVersion, "the row sent does not say which version it changes.");
  }
  if (version != stored_version) {
    refuse(refusal::kChanged, "saved by somebody else in the meantime; it has version " +
                                  std::to_string(stored_version) + ", the row sent is version " +
                                  std::to_string(version) + ".");
  }
  record_ = kind.Taken(*sent, stored_.get());
}

void RecordSave::Run() {
  kind_.description().check(*this);
  SettleWords();
  RequireReferences();
  Write();
  if (kind_.description().follow != nullptr) kind_.description().follow(*this);
  RequireListReferences();
  Audit();
  Commit();
}

bool RecordSave::Changes(std::string_view column) const {
  return is_new() || !Equals(stored_->Value(column), record_->Value(column));
}

void RecordSave::PutOwner(std::string_view column, Long id) {
  if (Number(column) == 0) record_->Put(column, id);
  if (Number(column) == id) return;
  Refuse(refusal::kBadValue, std::string(column) + " of its row is " +
                                 std::to_string(Number(column)) + ", and the call says " +
                                 std::to_string(id) + ".");
}

void RecordSave::Refuse(std::int32_t number, const std::string& reason) const {
  server::Refuse(number, kind_.Called(*record_) + ": " + reason);
}

std::vector<Ref<Dictionary>> RecordSave::SentRows(std::string_view key,
                                                  std::span<const Column> known) const {
  const std::string name(key);
  const auto refuse = [&](const std::string& reason) { Refuse(refusal::kBadValue, reason); };
  const Variant sent = sent_->Value(key);
  const auto* list = sent.IsObject() ? dynamic_cast<const Vector*>(sent.ObjectPointer()) : nullptr;
  if (list == nullptr) refuse(name + " is no Vector.");
  std::vector<Ref<Dictionary>> rows;
  for (std::size_t i = 0; i < list->size(); ++i) {
    const Variant& element = list->at(i);
    auto* row = element.IsObject() ? dynamic_cast<Dictionary*>(element.ObjectPointer()) : nullptr;
    if (row == nullptr) refuse("an element of " + name + " is no Dictionary.");
    for (std::uint32_t at = 0; at < row->size(); ++at) {
      if (FindIn(known, row->key_at(at)) == nullptr) {
        refuse("there is no column \"" + row->key_at(at) + "\" in an element of " + name + ".");
      }
    }
    rows.emplace_back(row);
  }
  return rows;
}

void RecordSave::SettleWords() {
  for (const RecordColumn& column : kind_.description().columns) {
    if (column.words.empty()) continue;
    const std::string text = Text(column.column.name);
    const auto word = std::ranges::find_if(
        column.words, [&](std::string_view one) { return EqualsIgnoringAsciiCase(one, text); });
    if (word != column.words.end()) {
      record_->Put(column.column.name, *word);
    } else if (!text.empty()) {
      Refuse(refusal::kBadValue, std::string(column.column.name) + " is " +
                                     WordsText(column.words) + ", not \"" + text + "\".");
    }
  }
}

void RecordSave::RequireText(std::string_view column) const {
  const std::string text = Text(column);
  if (text.empty()) Refuse(refusal::kRequired, std::string(column) + " is missing.");
  if (Utf16Length(text) > kLongestText) {
    server::Refuse(refusal::kBadValue, kind_.Noun() + ": " + std::string(column) +
                                           " is longer than " + std::to_string(kLongestText) +
                                           " characters.");
  }
}

void RecordSave::RequireKey() {
  const TextKey& key = kind_.description().key;
  if (key.ignores_case) record_->Put(key.column, ToUpper(Text(key.column)));
  RequireText(key.column);
}

void RecordSave::RequireUniqueKey() const {
  const auto& [column, ignores_case, within] = kind_.description().key;
  const std::string text = Text(column);
  const Long other = within.empty()
                         ? kind_.IdWith(caller_.db, column, text)
                         : kind_.IdWith(caller_.db, column, text, within, Number(within));
  if (other == 0 || other == id_) return;
  server::Refuse(column == kNumber ? refusal::kNumberTaken : refusal::kNameTaken,
                 kind_.Called(*kind_.Require(caller_.db, other)) + " has " + std::string(column) +
                     " " + text + " already.");
}

void RecordSave::RequireReferences() const {
  for (const RecordColumn& column : kind_.description().columns) {
    const std::string_view name = column.column.name;
    if (column.refers.kind == nullptr || !Changes(name)) continue;
    const auto reason = ReasonAgainst(caller_.db, column.refers, name, Number(name));
    if (reason) Refuse(column.refers.refusal, *reason);
  }
}

void RecordSave::RequireListReferences() const {
  for (const auto& [place, ids] : IdsInLists(caller_.db, kind_, id_)) {
    const auto before = list_ids_.find(place);
    for (const Long id : ids) {
      if (before != list_ids_.end() && before->second.contains(id)) continue;
      const Referred& refers = place->second;
      const auto reason = ReasonAgainst(caller_.db, refers, place->first, id);
      if (reason) Refuse(refers.refusal, *reason);
    }
  }
}

void RecordSave::Write() {
  if (is_new()) {
    id_ = kind_.Insert(caller_.db, *record_);
  } else {
    kind_.Overwrite(caller_.db, id_, *record_);
  }
}

void RecordSave::Audit() const {
  const std::string changes = kind_.Changes(caller_.db, id_, before_);
  const std::string name = kind_.NameOf(*record_);
  const std::string machine_name = SentText(*sent_, kMachineName);
  const std::string address = SentText(*sent_, kAddress);
  WriteAudit(caller_, {.subject = kind_.subject(),
                       .record_id = id_,
                       .record = name,
                       .action = is_new() ? "Create" : "Update",
                       .changes = changes,
                       .machine_name = machine_name,
                       .address = address});
}

void RecordSave::Commit() {
  transaction_.Commit();
  sent_->Put(kind_.description().id, id_);
  sent_->Put(kVersion.name, is_new() ? Long{1} : stored_->Value(kVersion.name).As<Long>() + 1);
}

// ---- A deletion ----

RecordRemoval::RecordRemoval(const Caller& caller, const MasterData& kind, Long id)
    : caller_(caller),
      kind_(kind),
      transaction_(caller, Transaction::Kind::kChangeRules),
      id_(id),
      stored_(kind.Require(caller.db, id)),
      before_(kind.TrailOf(caller.db, id)) {}

void RecordRemoval::Refuse(std::int32_t number, const std::string& reason) const {
  server::Refuse(number, kind_.Called(*stored_) + ": " + reason);
}

std::optional<std::string> RecordRemoval::Referrer() const {
  return ReferrerOf(caller_.db, kind_, id_);
}

void RecordRemoval::RequireNoReferrer() const {
  if (const auto referrer = Referrer()) Refuse(refusal::kInUse, *referrer + " refers to it.");
}

void RecordRemoval::Remove() {
  RequireNoReferrer();
  const MasterData::Description& description = kind_.description();
  db().Execute("DELETE FROM " + std::string(description.table) + " WHERE " +
                   std::string(description.id) + " = ?",
               id_);
}

void RecordRemoval::Mark() {
  if (!kind_.description().is_marked_when_used) RequireNoReferrer();
  const MasterData::Description& description = kind_.description();
  db().Execute("UPDATE " + std::string(description.table) + " SET " +
                   std::string(description.deleted) + " = 1, FVersion = FVersion + 1 WHERE " +
                   std::string(description.id) + " = ?",
               id_);
}

void RecordRemoval::Commit(std::string_view machine_name, std::string_view address) {
  const std::string name = kind_.NameOf(*stored_);
  const std::string changes = kind_.Changes(caller_.db, id_, before_);
  WriteAudit(caller_, {.subject = kind_.subject(),
                       .record_id = id_,
                       .record = name,
                       .action = "Delete",
                       .changes = changes,
                       .machine_name = machine_name,
                       .address = address});
  transaction_.Commit();
}

// ---- What components do with one record ----

namespace {

Ref<Dictionary> NamedRow(const String& name, std::string_view machine_name,
                         std::string_view address) {
  auto row = Make<Dictionary>();
  row->Put(kName, Variant(name));
  row->Put(kMachineName.name, Variant(String(machine_name)));
  row->Put(kAddress.name, Variant(String(address)));
  return row;
}

}  // namespace

Long CreateRecord(const MasterData& kind, std::string_view props, const Ref<Dictionary>& sent) {
  const Caller caller = EnterUnconfirmed(props, kind.writing());
  RecordSave save(caller, kind, sent);
  save.Run();
  return save.id();
}

void DeleteRecord(const MasterData& kind, std::string_view props, Long id,
                  std::string_view machine_name, std::string_view address) {
  const Caller caller = EnterUnconfirmed(props, kind.writing());
  RecordRemoval removal(caller, kind, id);
  kind.description().remove(removal);
  removal.Commit(machine_name, address);
}

Long CreateNamed(const MasterData& kind, std::string_view props, const String& name,
                 std::string_view machine_name, std::string_view address) {
  return CreateRecord(kind, props, NamedRow(name, machine_name, address));
}

void RenameRecord(const MasterData& kind, std::string_view props, Long id, const String& name,
                  std::string_view machine_name, std::string_view address) {
  const Caller caller = EnterUnconfirmed(props, kind.writing());
  RecordSave(caller, kind, id, NamedRow(name, machine_name, address)).Run();
}

// ---- The component that writes ----

Long RecordUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  return CreateRecord(kind(), PropsString, dict);
}

void RecordUpdate::Update(std::string_view PropsString, const Long& RecordID,
                          const Ref<Dictionary>& dict) {
  const Caller caller = EnterUnconfirmed(PropsString, kind().writing());
  RecordSave(caller, kind(), dict, RecordID).Run();
}

void RecordUpdate::Delete(std::string_view PropsString, const Long& RecordID,
                          std::string_view MachineName, std::string_view IPAddress) {
  DeleteRecord(kind(), PropsString, RecordID, MachineName, IPAddress);
}

}  // namespace qdclgl::server
