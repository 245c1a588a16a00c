// One save of a record, and one deletion: the transaction, what was stored, and what it becomes.
#pragma once

#include "qdclgl/server/records/references.h"

namespace qdclgl::server {

class RecordSave {
 public:
  // A new record.
  RecordSave(const Caller& caller, const MasterData& kind, const Ref<Dictionary>& sent);
  // NotFound without a record; NoVersion and Changed unless the sent row is of the stored version.
  RecordSave(const Caller& caller, const MasterData& kind, const Ref<Dictionary>& sent, Long id);
  // A stored record, of whatever version, of which the caller sends some columns alone. NotFound.
  RecordSave(const Caller& caller, const MasterData& kind, Long id, const Ref<Dictionary>& sent);

  // Checks, writes, lets follow what follows, and commits; then id and version stand in the sent
  // row.
  void Run();

  const Caller& caller() const { return caller_; }
  Database& db() const { return caller_.db; }
  const Session& session() const { return *caller_.session; }
  bool is_new() const { return !stored_; }
  Long id() const { return id_; }  // of a new record once it is written
  const Dictionary& sent() const { return *sent_; }
  // The rows of a list that was sent under `key`. BadValue for what is no list of rows, and for a
  // key in one of them that is no column of `known`.
  std::vector<Ref<Dictionary>> SentRows(std::string_view key, std::span<const Column> known) const;
  // What was stored; not for a new record.
  const Dictionary& stored() const { return *stored_; }
  // Whether the save gives a column another value; true for a new record.
  bool Changes(std::string_view column) const;

  // The record as it will be stored.
  Dictionary& record() { return *record_; }
  std::string Text(std::string_view column) const { return record_->Value(column).As<String>(); }
  Long Number(std::string_view column) const { return record_->Value(column).As<Long>(); }

  // What a call names as the owner of the record, in the column for it; BadValue when the row names
  // another one.
  void PutOwner(std::string_view column, Long id);

  // Refuses it: "Account 1000 (Cash): " and the reason.
  [[noreturn]] void Refuse(std::int32_t number, const std::string& reason) const;
  // Required when the text is empty, BadValue when it is longer than 255 characters.
  void RequireText(std::string_view column) const;
  // Puts the key into the case that keys have, and requires it.
  void RequireKey();
  // NumberTaken or NameTaken when another record has the key.
  void RequireUniqueKey() const;
  // Refuses ids that the save brings in and that are no records in use. Every save does so behind
  // its kind's check; one that looks into such a record asks for it first.
  void RequireReferences() const;

 private:
  // What both saves of a stored record begin with.
  struct Stored {};
  RecordSave(const Caller& caller, const MasterData& kind, Long id, const Ref<Dictionary>& sent,
             Stored);

  // Puts texts that are one of a column's words into the case that these have; BadValue for others.
  void SettleWords();
  // The same as RequireReferences for what belongs to the record elsewhere, behind all that follows
  // from the save.
  void RequireListReferences() const;
  // Inserts or overwrites the record.
  void Write();
  // Writes the audit trail, behind all that follows from the save.
  void Audit() const;
  // Commits, and only then writes id and version into the sent row.
  void Commit();

  const Caller& caller_;
  const MasterData& kind_;
  Ref<Dictionary> sent_;
  CallersTransaction transaction_;
  Long id_ = 0;
  Ref<Dictionary> stored_;
  std::optional<TrailRow> before_;
  HeldIds list_ids_;  // what its lists referred to before
  Ref<Dictionary> record_;
};

class RecordRemoval {
 public:
  // NotFound without a record.
  RecordRemoval(const Caller& caller, const MasterData& kind, Long id);

  const Caller& caller() const { return caller_; }
  Database& db() const { return caller_.db; }
  Long id() const { return id_; }
  const Dictionary& stored() const { return *stored_; }

  // Refuses it: "Account 1000 (Cash): " and the reason.
  [[noreturn]] void Refuse(std::int32_t number, const std::string& reason) const;

  // What refers to the record, as a sentence names it; nothing when nothing does.
  std::optional<std::string> Referrer() const;
  // Deletes the record's row, or marks the record deleted. InUse when something refers to it,
  // unless its kind marks what is used.
  void Remove();
  void Mark();
  // Writes the audit trail and commits.
  void Commit(std::string_view machine_name, std::string_view address);

 private:
  void RequireNoReferrer() const;

  const Caller& caller_;
  const MasterData& kind_;
  CallersTransaction transaction_;
  Long id_;
  Ref<Dictionary> stored_;
  std::optional<TrailRow> before_;
};

// ---- What components do with one record ----

Long CreateRecord(const MasterData& kind, std::string_view props, const Ref<Dictionary>& sent);
void DeleteRecord(const MasterData& kind, std::string_view props, Long id,
                  std::string_view machine_name, std::string_view address);
// For callers to whom a record is a name: they know of no version.
Long CreateNamed(const MasterData& kind, std::string_view props, const String& name,
                 std::string_view machine_name, std::string_view address);
void RenameRecord(const MasterData& kind, std::string_view props, Long id, const String& name,
                  std::string_view machine_name, std::string_view address);

}  // namespace qdclgl::server
