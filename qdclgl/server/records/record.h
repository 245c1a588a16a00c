// What the tables of master data (accounts, currencies, voucher groups, users) share: how a row
// that a caller sends becomes a record, with its version, and how records are read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/login.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

enum class Keeper : std::uint8_t {
  kCaller,  // callers write it; where their row lacks the key, it stands for the absent value
  kServer,  // the server keeps it; what callers send is passed over
  kJoined,  // of another table, shown beside the record; what callers send is passed over
};

struct RecordColumn {
  Column column;
  Keeper keeper = Keeper::kCaller;
  Variant absent = {};                          // Empty: the zero of the type
  std::string (*shown)(const Variant&) = CStr;  // as the audit trail tells a value
};

class RecordTable {
 public:
  struct Description {
    std::string_view subject;  // as the audit trail calls a record: "VoucherGroup"
    std::string_view noun;     // as people do: "Voucher group"
    std::string_view table;
    std::string_view id;                // the column of the id; FVersion is in every table
    std::string_view query;             // the table with the joined columns
    std::string_view order;             // of lists
    std::string_view deleted = {};      // the column that marks a record deleted
    std::vector<RecordColumn> columns;  // all but id and version
    std::vector<std::string_view> further_keys = {};  // what else a sent row may hold
  };
  explicit RecordTable(Description description);

  const Description& description() const { return description_; }

  // The rows of `ListOptions`, filtered and sorted. BadFilter, BadSort.
  Ref<Recordset> List(Database& db, Long options, std::string_view filter,
                      std::string_view sort) const;
  // A record with all its columns, Nothing when there is none.
  Ref<Dictionary> Read(Database& db, Long id) const;
  // NotFound when there is none.
  Ref<Dictionary> Require(Database& db, Long id) const;
  // The id of the first record with this text in a column, 0 when there is none.
  Long IdWith(Database& db, std::string_view column, std::string_view text) const;

  // "1000 (Cash)", or "Receipts" for records without a number.
  static std::string NameOf(const Dictionary& record);
  // "Account 1000 (Cash)"
  std::string Called(const Dictionary& record) const;

  void Remove(Database& db, Long id) const;

 private:
  friend class RecordSave;

  // What `sent` makes of the record `stored`, null for a new one.
  Ref<Dictionary> Taken(const Dictionary& sent, const Dictionary* stored) const;
  // BadValue for a key that no column has: nothing that a caller sends is lost in silence.
  void RefuseUnknownKeys(const Dictionary& sent) const;
  Long Insert(Database& db, const Dictionary& record) const;
  void Overwrite(Database& db, Long id, const Dictionary& record) const;
  std::string Changes(const Dictionary& stored, const Dictionary& record) const;

  Description description_;
  std::vector<Column> shown_;   // of lists and details: id, version, then the others
  std::vector<Column> stored_;  // those that are written
};

// One save of a record: the transaction, what was stored, and what it becomes.
class RecordSave {
 public:
  // A new record.
  RecordSave(const Caller& caller, const RecordTable& table, const Ref<Dictionary>& sent);
  // NotFound without a record; NoVersion and Changed unless the sent row is of the stored version.
  RecordSave(const Caller& caller, const RecordTable& table, const Ref<Dictionary>& sent, Long id);

  bool is_new() const { return !stored_; }
  Long id() const { return id_; }  // of a new record once it is written
  // What was stored; not for a new record.
  const Dictionary& stored() const { return *stored_; }
  // Whether the save gives a column another value; true for a new record.
  bool Changes(std::string_view column) const;

  // The record as it will be stored.
  Dictionary& record() { return *record_; }
  std::string Text(std::string_view column) const { return record_->Value(column).As<String>(); }
  Long Number(std::string_view column) const { return record_->Value(column).As<Long>(); }

  // Required when the text is empty, BadValue when it is longer than 255 characters.
  void RequireText(std::string_view column) const;
  // NumberTaken or NameTaken when another record has this text in the column.
  void RequireUnique(std::string_view column) const;

  // Inserts or overwrites the record, and writes the audit trail.
  void Write();
  // Commits, and only then writes id and version into the sent row.
  void Commit();

 private:
  const Caller& caller_;
  const RecordTable& table_;
  Ref<Dictionary> sent_;
  Transaction transaction_;
  Long id_ = 0;
  Ref<Dictionary> stored_;
  Ref<Dictionary> record_;
};

// A deletion, which the caller has made, in the audit trail.
void AuditDeletion(const Caller& caller, const RecordTable& table, const Dictionary& record,
                   std::string_view machine_name, std::string_view address);

// Whether lines of vouchers, deleted ones too, or balances that are not zero hold `id` in `column`,
// which is FAccountID or FCurrencyID.
bool IsUsedInVouchers(Database& db, std::string_view column, Long id);

}  // namespace qdclgl::server
