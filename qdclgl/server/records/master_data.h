// A kind of master data (accounts, currencies, voucher groups, users): its rows, its names, and the
// rules that are its own, described at one place. Each kind is one file of this folder,
//
//   const MasterData& Currencies() {
//     static const MasterData kKind({.component = "QDSVGLCurrency.Currency", ...});
//     return kKind;
//   }
//
// and everything else follows: its components and what they ask of callers, versions, the audit
// trail, the command line's list, the tables of docs/server.md.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/component.h"
#include "qdclgl/server/access/trail_row.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

class MasterData;
class RecordRemoval;
class RecordSave;

// ---- The two components of every kind ----
//
// One reads records, one writes them. Their rows are written once. What differs between kinds in
// names and help texts stands in them as a word that the kind fills in: RecordID and RecordKey in
// parameters; {record}, {key} and the like in help texts. So the kind makes their class tables, and
// these classes and those derived from them begin with QD_BASE_MEMBERS.

class RecordComponent : public Object {
 public:
  std::string_view ClassName() const override { return table_.name(); }
  const ClassTable* Members() const override { return &table_; }

 protected:
  RecordComponent(const MasterData& kind, const ClassTable& table) : kind_(kind), table_(table) {}

  const MasterData& kind() const { return kind_; }

 private:
  const MasterData& kind_;
  const ClassTable& table_;
};

class RecordInfo : public RecordComponent {
  QD_BASE_MEMBERS(RecordComponent)

 public:
  explicit RecordInfo(const MasterData& kind);

  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& RecordID),
            "{A record}, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view RecordKey),
            "{A record} by its {key,} Nothing when there is none.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Page = Missing),
            "The {records}; bit 1 of ListOptions includes those marked deleted. {page} BadFilter, "
            "BadSort, BadValue.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& RecordID = Missing,
             const Variant& RecordKey = Missing),
            "The id of the {record} with that id, or otherwise with that {key}; 0 when there is "
            "none.")
};

class RecordUpdate : public RecordComponent {
  QD_BASE_MEMBERS(RecordComponent)

 public:
  explicit RecordUpdate(const MasterData& kind);

  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& dict),
            "Saves a new {record}; its id and version come back in the row too. Errors: {errors}.")
  QD_METHOD(void, Update,
            (std::string_view PropsString, const Long& RecordID, const Ref<Dictionary>& dict),
            "Saves {a record}; the new version comes back in the row. Errors: NotFound, NoVersion, "
            "Changed, and those of Create.")
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& RecordID, std::string_view MachineName = "",
             std::string_view IPAddress = ""),
            "Removes {a record}. NotFound, InUse.")
};

// The C++ class of a component: its rows, and how its objects are made.
struct RecordClass {
  std::span<const MemberRow> rows;
  Ref<Object> (*make)(const MasterData& kind);
};
template <class Component>
constexpr RecordClass RecordClassOf() {
  return {RowsOf<Component>(),
          [](const MasterData& kind) { return Ref<Object>(Make<Component>(kind)); }};
}

// ---- The kind ----

enum class Keeper : std::uint8_t {
  kCaller,   // callers write it; where their row lacks the key, it stands for the absent value
  kServer,   // the server keeps it; what callers send is passed over
  kSecret,   // kept likewise, and never shown
  kDerived,  // kept likewise, and follows from other values, also of other records: not on the
             // trail
  kJoined,   // of another table, shown beside the record; what callers send is passed over
};

// The kind of the records whose ids stand in a column. What follows from it, see references.h.
struct Referred {
  const MasterData& (*kind)() = nullptr;
  bool is_required = false;  // otherwise 0 stands for none
  std::int32_t refusal = refusal::kBadReference;
};

struct RecordColumn {
  Column column;
  Keeper keeper = Keeper::kCaller;
  Variant absent = {};                             // Empty: the zero of the type
  std::string (*shown)(const Variant&) = nullptr;  // as the trail tells a value, if otherwise
  Referred refers = {};
  std::optional<ColumnType> sent = {};  // in callers' rows, if otherwise
  // What a text may be besides "", case ignored; any where there are none.
  std::span<const std::string_view> words = {};
};

// "asset, liability, equity, income or expense"
std::string WordsText(std::span<const std::string_view> words);

// A list of rows that belongs to a record.
struct RecordList {
  std::string_view key;  // of a sent row, and on the trail
  StoredTable table;     // its first column is the record's id
  std::string_view order;
  std::vector<std::pair<std::string_view, Referred>> refers = {};  // by column
  // Of a list that is part of its record's rows, as a Vector of rows under its key: what these
  // have, and the SELECT of that, which has the record's id too. Otherwise rows don't have it.
  std::vector<Column> shown = {};
  std::string_view query = {};
  // What callers may send of a row, where that is not what it has.
  std::vector<Column> sent = {};
  // What gives callers the rows by a record's id, where GetDetail does not bring them under the
  // key.
  std::string_view component = {}, method = {};
  bool is_within_list = false;  // its rows stand within those of the list before
};

// A record as the trail tells it.
struct TrailedRecord {
  std::string name;
  TrailRow state;
};

// Columns that have a meaning of their own wherever they stand, and keys of a sent row that tell
// where it comes from.
namespace record_column {
inline constexpr Column kVersion{"FVersion", ColumnType::kLong};
inline constexpr std::string_view kNumber = "FNumber";
inline constexpr std::string_view kName = "FName";
inline constexpr Column kMachineName{"MachineName", ColumnType::kText};
inline constexpr Column kAddress{"IPAddress", ColumnType::kText};
}  // namespace record_column

// The text by which people tell records apart, unique among them.
struct TextKey {
  std::string_view column;       // FNumber, or that of the name
  bool ignores_case = false;     // then it is kept in upper case
  std::string_view within = {};  // a column: unique only among records with the same value there
};

// Records have a key, and another record has another one.
void CheckKey(RecordSave& save);
// The record goes, and its number or name is free again.
void RemoveRecord(RecordRemoval& removal);

class MasterData {
 public:
  struct Description {
    // "QDSVGLCurrency.Currency": the components are QDSVGLCurrency.CurrencyInfo and
    // .CurrencyUpdate, an id is their argument CurrencyID, and the audit trail calls a record
    // Currency.
    std::string_view component;
    std::string_view update_component = {};  // where the writing one is called otherwise
    std::string_view noun;                   // as people call a record: "voucher group"
    std::string_view nouns;                  // "voucher groups"
    std::string_view brief = {};             // in help texts, where the noun is long: "group"
    NamedList list;

    std::string_view table;
    std::string_view id;  // its column; FVersion is in every table
    TextKey key;
    std::string_view name = record_column::kName;  // the column with the name
    std::string_view deleted = {};                 // the column that marks a record deleted
    bool is_marked_when_used = false;              // by a removal, which is refused otherwise
    std::vector<RecordColumn> columns;             // all but id and version
    std::string query = {};              // the table with the joined columns; otherwise the table
    std::string_view order = {};         // of lists; otherwise by id
    std::vector<RecordList> lists = {};  // what belongs to a record elsewhere
    // What else does, which is on the trail only as columns tell of it: its keys in a sent row, and
    // its tables.
    std::vector<std::string_view> keys = {};
    bool (*is_further_key)(std::string_view key) = nullptr;  // where they are not known beforehand
    std::vector<StoredTable> tables = {};

    Role writer = Role::kAdministrator;
    // What a record must be to be written, what follows from one that is, and what a deletion does.
    // All raise refusals, and nothing has happened then.
    void (*check)(RecordSave& save) = CheckKey;
    void (*follow)(RecordSave& save) = nullptr;
    void (*remove)(RecordRemoval& removal) = RemoveRecord;
    // Gives the cells of records on the trail the keys that callers know them by, where those are
    // not the names of columns.
    void (*name_on_trail)(Database& db, std::map<Long, TrailedRecord>& records) = nullptr;

    // Where the interface departs: classes with rows of their own, what these ask of callers, help
    // texts in place of the shared ones, and components besides.
    RecordClass info = RecordClassOf<RecordInfo>();
    RecordClass update = RecordClassOf<RecordUpdate>();
    std::vector<MethodRight> rights = {};
    std::string_view errors = {};  // of Create; otherwise those of CheckKey
    std::vector<std::pair<std::string_view, std::string_view>> helps = {};  // method, text
    std::vector<ServerComponent> components = {};
  };
  // Error 5 for a right or a help text of a method that neither component has.
  explicit MasterData(Description description);
  MasterData(const MasterData&) = delete;
  MasterData& operator=(const MasterData&) = delete;

  const Description& description() const { return description_; }
  std::string_view subject() const;  // "Currency"
  std::string Noun() const;          // "Voucher group", as a sentence begins
  const Right& reading() const { return reading_; }
  const Right& writing() const { return writing_; }
  // Of its two components.
  std::string_view info_prog_id() const { return info_prog_id_; }
  std::string_view update_prog_id() const { return update_prog_id_; }
  const ClassTable& info() const { return *info_; }
  const ClassTable& update() const { return *update_; }

  // Its components, as the server offers them.
  std::vector<ServerComponent> Components() const;
  // The columns of its records: id, version, then the others.
  std::span<const Column> Columns() const { return shown_; }
  // The keys of the lists that its rows have behind them.
  std::vector<std::string_view> NestedLists() const;
  // The same as callers' rows have them, without those that are secret.
  std::span<const Column> CallersColumns() const { return callers_; }
  // Its tables with all their columns.
  std::vector<StoredTable> Tables() const;

  // The rows of `ListOptions`, filtered and sorted. BadFilter, BadSort, BadValue.
  Ref<Recordset> List(Database& db, Long options, std::string_view filter, std::string_view sort,
                      const std::optional<Page>& page = {}) const;
  // A record with all its columns, Nothing when there is none.
  Ref<Dictionary> Read(Database& db, Long id) const;
  // NotFound when there is none.
  Ref<Dictionary> Require(Database& db, Long id) const;
  // The same of a key: the id, where it is a number, and otherwise the text.
  Ref<Dictionary> RequireByKey(Database& db, const Variant& key) const;
  // The id of the first record with this text in a column, 0 when there is none.
  Long IdWith(Database& db, std::string_view column, std::string_view text) const;
  // The same among those with an id in another column.
  Long IdWith(Database& db, std::string_view column, std::string_view text,
              std::string_view owner_column, Long owner) const;
  // The same for the key, in whatever case where that is ignored.
  Long IdWithKey(Database& db, std::string_view key) const;

  // The records with ids from `first` to `last` as the trail tells them, by their ids.
  std::map<Long, TrailedRecord> Trailed(Database& db, Long first, Long last) const;
  // One of them, nothing when there is none.
  std::optional<TrailRow> TrailOf(Database& db, Long id) const;
  // What the trail tells of a record that was `before` and is now as it stands.
  std::string Changes(Database& db, Long id, const std::optional<TrailRow>& before) const;

  // "1000 (Cash)", or "Receipts" for records without a number.
  std::string NameOf(const Dictionary& record) const;
  // "Account 1000 (Cash)"
  std::string Called(const Dictionary& record) const;

 private:
  friend class RecordRemoval;
  friend class RecordSave;

  // A text that is kept as long as this.
  std::string_view Kept(std::string text);
  // A help text with the kind's words in place of those in braces.
  std::string Worded(std::string_view help) const;
  std::unique_ptr<const ClassTable> TableOf(std::string_view prog_id, std::string_view help,
                                            const RecordClass& type);

  // Made once: an import saves many records.
  struct Sql {
    std::string read, trail, insert, overwrite;
    std::vector<std::string> list_trails;
  };
  Sql MakeSql() const;
  // The records of a list with those of their lists that are part of their rows.
  Ref<Recordset> WithNestedLists(Database& db, const Ref<Recordset>& list) const;
  // What `sent` makes of the record `stored`, null for a new one.
  Ref<Dictionary> Taken(const Dictionary& sent, const Dictionary* stored) const;
  // BadValue for a key that no column has: nothing that a caller sends is lost in silence.
  void RefuseUnknownKeys(const Dictionary& sent) const;
  Long Insert(Database& db, const Dictionary& record) const;
  void Overwrite(Database& db, Long id, const Dictionary& record) const;

  Description description_;
  std::vector<Column> shown_;
  std::vector<Column> callers_;
  std::vector<Column> stored_;   // those of them that are written
  std::vector<Column> trailed_;  // the id, and those that are on the trail
  std::vector<std::string (*)(const Variant&)> trail_texts_;  // how, for each of them
  Sql sql_;
  std::deque<std::string> texts_;
  Right reading_, writing_;
  std::string_view info_prog_id_, update_prog_id_;
  std::unique_ptr<const ClassTable> info_, update_;
  std::vector<MethodRight> info_rights_, update_rights_;
};

// Whether lines of vouchers, deleted ones too, or balances that are not zero hold `id` in `column`,
// which is FAccountID or FCurrencyID.
bool IsUsedInVouchers(Database& db, std::string_view column, Long id);
// Takes away the balances of what is not used so: they are zero.
void RemoveEmptyBalances(Database& db, std::string_view column, Long id);

}  // namespace qdclgl::server
