#include "qdclgl/server/records/master_data.h"

#include <algorithm>
#include <limits>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

using namespace record_column;

namespace {

bool IsNothingGiven(const Variant* value) {
  return value == nullptr || value->IsEmpty() || value->IsNull() || value->IsMissing() ||
         value->IsNothing();
}

std::string WithArticle(std::string_view noun) {
  const bool begins_with_vowel = std::string_view("aeio").find(noun[0]) != std::string_view::npos;
  return (begins_with_vowel ? "an " : "a ") + std::string(noun);
}

std::string Capitalised(std::string text) {
  text.replace(0, 1, ToUpper(text.substr(0, 1)));
  return text;
}

void ReplaceAll(std::string& text, std::string_view word, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(word, at)) != text.npos; at += with.size()) {
    text.replace(at, word.size(), with);
  }
}

// "CurrencyInfo" of the ProgID QDSVGLCurrency.CurrencyInfo.
std::string_view ClassIn(std::string_view prog_id) { return prog_id.substr(prog_id.find('.') + 1); }

// "Number" of column FNumber, as an argument is called.
std::string_view ArgumentOf(std::string_view column) { return column.substr(1); }

}  // namespace

// ---- What the description makes ----

MasterData::MasterData(Description description)
    : description_(std::move(description)),
      shown_{{description_.id, ColumnType::kLong}, kVersion},
      callers_(shown_),
      trailed_(shown_),
      trail_texts_(trailed_.size()) {
  for (const RecordColumn& column : description_.columns) {
    shown_.push_back(column.column);
    if (column.keeper != Keeper::kSecret) {
      callers_.push_back({column.column.name, column.sent.value_or(column.column.type)});
    }
    if (column.keeper == Keeper::kJoined) continue;
    stored_.push_back(column.column);
    if (column.keeper == Keeper::kDerived) continue;
    trailed_.push_back(column.column);
    trail_texts_.push_back(column.shown);
  }
  if (description_.brief.empty()) description_.brief = description_.noun;
  if (description_.query.empty()) {
    description_.query = "SELECT * FROM " + std::string(description_.table);
  }
  if (description_.order.empty()) description_.order = description_.id;
  if (description_.errors.empty()) {
    description_.errors = description_.key.column == kNumber ? "Required, NumberTaken, BadValue"
                                                             : "Required, NameTaken, BadValue";
  }
  sql_ = MakeSql();
  const std::string nouns(description_.nouns);
  reading_ = {Role::kReader, Kept("read " + nouns)};
  writing_ = {description_.writer, Kept("change " + nouns)};
  info_prog_id_ = Kept(std::string(description_.component) + "Info");
  if (description_.update_component.empty()) {
    description_.update_component = description_.component;
  }
  update_prog_id_ = Kept(std::string(description_.update_component) + "Update");
  info_ = TableOf(info_prog_id_, "Reads " + nouns + ".", description_.info);
  update_ = TableOf(update_prog_id_, "Writes " + nouns + ".", description_.update);
  const auto rights_of = [&](const ClassTable& table, const Right& usual) {
    std::vector<MethodRight> rights;
    for (const ClassMember& member : table.members()) {
      const auto own =
          std::ranges::find(description_.rights, member.row.name, &MethodRight::method);
      rights.push_back({member.row.name, own != description_.rights.end() ? own->right : usual});
    }
    return rights;
  };
  info_rights_ = rights_of(*info_, reading_);
  update_rights_ = rights_of(*update_, writing_);

  const auto require_method = [&](std::string_view method) {
    if (info_->Find(method) != nullptr || update_->Find(method) != nullptr) return;
    throw Error(error_number::kInvalidCall, std::string(subject()),
                "There is no method " + std::string(method) + " to describe.");
  };
  for (const MethodRight& right : description_.rights) require_method(right.method);
  for (const auto& [method, help] : description_.helps) require_method(method);
}

namespace {

// A table's rows by their ids, which stand in the first column.
std::string IdsSql(std::string_view table, std::span<const Column> columns,
                   std::string_view order) {
  return "SELECT " + NamesOf(columns) + " FROM " + std::string(table) + " WHERE " +
         std::string(columns.front().name) + " BETWEEN ? AND ? ORDER BY " + std::string(order);
}

}  // namespace

MasterData::Sql MasterData::MakeSql() const {
  const std::string table(description_.table), where = " WHERE " + std::string(description_.id);
  Sql sql{.read = "SELECT " + NamesOf(shown_) + " FROM (" + description_.query + ") AS record" +
                  where + " = ?",
          .trail = IdsSql(table, trailed_, description_.id),
          .insert = "INSERT INTO " + table + " (" + std::string(kVersion.name) + ", " +
                    NamesOf(stored_) + ") VALUES (1",
          .overwrite = "UPDATE " + table + " SET FVersion = FVersion + 1",
          .list_trails = {}};
  for (const Column& column : stored_) {
    sql.insert += ", ?";
    sql.overwrite += ", " + std::string(column.name) + " = ?";
  }
  sql.insert += ") ON CONFLICT DO NOTHING RETURNING " + std::string(description_.id);
  sql.overwrite += where + " = ?";
  for (const RecordList& list : description_.lists) {
    sql.list_trails.push_back(IdsSql(list.table.name, list.table.columns, list.order));
  }
  return sql;
}

std::string WordsText(std::span<const std::string_view> words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

std::string_view MasterData::subject() const { return ClassIn(description_.component); }

std::vector<std::string_view> MasterData::NestedLists() const {
  std::vector<std::string_view> keys;
  for (const RecordList& list : description_.lists) {
    if (!list.shown.empty()) keys.push_back(list.key);
  }
  return keys;
}

std::string_view MasterData::Kept(std::string text) { return texts_.emplace_back(std::move(text)); }

std::string MasterData::Worded(std::string_view help) const {
  const std::string key = FoldAsciiCase(ArgumentOf(description_.key.column));
  const std::string key_and_case = key + (description_.key.ignores_case ? ", case ignored;" : ",");
  std::string text(help);
  for (const auto& [word, own] : std::initializer_list<std::pair<const char*, std::string>>{
           {"{A record}", Capitalised(WithArticle(description_.noun))},
           {"{a record}", WithArticle(description_.brief)},
           {"{record}", std::string(description_.brief)},
           {"{records}", std::string(description_.nouns)},
           {"{key}", key},
           {"{key,}", key_and_case},
           {"{page}", QDCLGL_PAGE_HELP},
           {"{errors}", std::string(description_.errors)}}) {
    ReplaceAll(text, word, own);
  }
  return text;
}

std::unique_ptr<const ClassTable> MasterData::TableOf(std::string_view prog_id,
                                                      std::string_view help,
                                                      const RecordClass& type) {
  std::vector<MemberRow> rows(type.rows.begin(), type.rows.end());
  for (MemberRow& row : rows) {
    const auto own = std::ranges::find(description_.helps, row.name,
                                       &std::pair<std::string_view, std::string_view>::first);
    row.help = Kept(Worded(own != description_.helps.end() ? own->second : row.help));
    std::string parameters(row.parameters);
    ReplaceAll(parameters, "RecordID", std::string(subject()) + "ID");
    ReplaceAll(parameters, "RecordKey", ArgumentOf(description_.key.column));
    row.parameters = Kept(std::move(parameters));
  }
  return std::make_unique<const ClassTable>(
      ClassDescription{ClassIn(prog_id), Kept(std::string(help)), rows});
}

std::vector<ServerComponent> MasterData::Components() const {
  const auto maker = [this](const RecordClass& type) {
    return [this, make = type.make] { return make(*this); };
  };
  std::vector<ServerComponent> components = description_.components;
  components.push_back(
      {info_prog_id_, info_.get(), maker(description_.info), info_rights_, &description_.list});
  components.push_back(
      {update_prog_id_, update_.get(), maker(description_.update), update_rights_});
  return components;
}

std::vector<StoredTable> MasterData::Tables() const {
  std::vector<StoredTable> tables = {
      {description_.table, {{description_.id, ColumnType::kLong}, kVersion}}};
  tables[0].columns.insert(tables[0].columns.end(), stored_.begin(), stored_.end());
  std::ranges::transform(description_.lists, std::back_inserter(tables), &RecordList::table);
  std::ranges::copy(description_.tables, std::back_inserter(tables));
  return tables;
}

// ---- Reading ----

namespace {

using RowsById = std::map<Long, Ref<Vector>>;

// The rows of a nested list of the records with ids from `first` to `last`, by their ids.
RowsById NestedRows(Database& db, const RecordList& list, Long first, Long last) {
  std::vector<Column> columns = list.shown;
  columns.push_back(list.table.columns.front());
  const std::string id(columns.back().name);
  Statement& statement =
      db.Prepared("SELECT " + NamesOf(columns) + " FROM (" + std::string(list.query) +
                  ") AS list WHERE " + id + " BETWEEN ? AND ? ORDER BY " + std::string(list.order));
  statement.Set(0, std::int64_t{first});
  statement.Set(1, std::int64_t{last});
  RowsById rows;
  const Ref<KeyList> keys = KeysOf(list.shown);
  for (statement.Open(); statement.Fetch();) {
    Ref<Vector>& of_record = rows[static_cast<Long>(statement.Whole(list.shown.size()))];
    if (!of_record) of_record = Make<Vector>();
    of_record->Append(Variant(ReadRow(statement, list.shown, keys)));
  }
  return rows;
}

Variant RowsFor(Long id, const RowsById& rows) {
  const auto found = rows.find(id);
  return found == rows.end() ? Variant(Make<Vector>()) : Variant(found->second);
}

}  // namespace

Ref<Recordset> MasterData::List(Database& db, Long options, std::string_view filter,
                                std::string_view sort, const std::optional<Page>& page) const {
  std::string query = description_.query;
  if ((options & kWithDeleted) == 0 && !description_.deleted.empty()) {
    query += " WHERE " + std::string(description_.deleted) + " = 0";
  }
  const Ref<Recordset> list =
      FetchList(db, {query, shown_, description_.order}, filter, sort, {}, page);
  return NestedLists().empty() ? list : WithNestedLists(db, list);
}

Ref<Recordset> MasterData::WithNestedLists(Database& db, const Ref<Recordset>& list) const {
  auto records = Make<Recordset>();
  for (const Column& column : shown_) records->AppendField(column.name);
  std::vector<RowsById> nested;
  for (const RecordList& rows : description_.lists) {
    if (rows.shown.empty()) continue;
    records->AppendField(rows.key);
    nested.push_back(NestedRows(db, rows, 1, std::numeric_limits<Long>::max()));
  }
  records->Open();
  for (; !list->Eof(); list->MoveNext()) {
    std::vector<Variant> row;
    for (Long i = 0; i < list->FieldCount(); ++i) row.push_back(list->FieldValue(i));
    for (const RowsById& rows : nested) row.push_back(RowsFor(row[0].As<Long>(), rows));
    records->AddRow(std::move(row));
  }
  return records;
}

Ref<Dictionary> MasterData::Read(Database& db, Long id) const {
  Statement& statement = db.Prepared(sql_.read);
  statement.Set(0, std::int64_t{id});
  statement.Open();
  if (!statement.Fetch()) return nullptr;
  Ref<Dictionary> record = ReadRow(statement, shown_, KeysOf(shown_));
  statement.Reset();
  for (const RecordList& list : description_.lists) {
    if (!list.shown.empty()) record->Put(list.key, RowsFor(id, NestedRows(db, list, id, id)));
  }
  return record;
}

Ref<Dictionary> MasterData::Require(Database& db, Long id) const {
  Ref<Dictionary> record = Read(db, id);
  if (!record) {
    Refuse(refusal::kNotFound, Noun() + " with id " + std::to_string(id) + ": there is none.");
  }
  return record;
}

Ref<Dictionary> MasterData::RequireByKey(Database& db, const Variant& key) const {
  if (IsVariantKind(key, variant_kind::kNumber)) return Require(db, CLng(key));
  const auto text = key.As<String>();
  const Long id = IdWithKey(db, text);
  if (id == 0) Refuse(refusal::kNotFound, Noun() + " \"" + text + "\": there is none.");
  return Require(db, id);
}

Long MasterData::IdWith(Database& db, std::string_view column, std::string_view text) const {
  const std::string id(description_.id);
  return db
      .QueryValue<Long>("SELECT " + id + " FROM " + std::string(description_.table) + " WHERE " +
                            std::string(column) + " = ? ORDER BY " + id,
                        text)
      .value_or(0);
}

Long MasterData::IdWith(Database& db, std::string_view column, std::string_view text,
                        std::string_view owner_column, Long owner) const {
  const std::string id(description_.id);
  return db
      .QueryValue<Long>("SELECT " + id + " FROM " + std::string(description_.table) + " WHERE " +
                            std::string(column) + " = ? AND " + std::string(owner_column) +
                            " = ? ORDER BY " + id,
                        text, owner)
      .value_or(0);
}

namespace {

std::string NameFrom(std::string_view name, const Variant* number) {
  return number == nullptr ? std::string(name)
                           : number->As<String>() + " (" + std::string(name) + ")";
}

// The rows of IdsSql with ids from `first` to `last`.
template <class Take>
void ReadIds(Database& db, std::string_view sql, std::span<const Column> columns, Long first,
             Long last, Take take) {
  Statement& statement = db.Prepared(sql);
  statement.Set(0, std::int64_t{first});
  statement.Set(1, std::int64_t{last});
  for (statement.Open(); statement.Fetch();) {
    take(static_cast<Long>(statement.Whole(0)), ReadCells(statement, columns));
  }
}

}  // namespace

std::map<Long, TrailedRecord> MasterData::Trailed(Database& db, Long first, Long last) const {
  std::map<Long, TrailedRecord> records;
  ReadIds(db, sql_.trail, trailed_, first, last, [&](Long id, const std::vector<Variant>& values) {
    auto& [called, row] = records[id];
    const Variant *name = nullptr, *number = nullptr;
    for (std::size_t i = 1; i < trailed_.size(); ++i) {
      const auto [key, type] = trailed_[i];
      if (key == description_.name) name = &values[i];
      if (key == kNumber) number = &values[i];
      if (const auto text = trail_texts_[i]; text != nullptr) {
        row.AddText(key, text(values[i]));
      } else {
        row.cells.push_back({std::string(key), type, values[i]});
      }
    }
    if (name != nullptr) called = NameFrom(name->TextView(), number);
    for (const RecordList& list : description_.lists) row.lists.push_back({list.key, {}});
  });
  if (description_.name_on_trail != nullptr) description_.name_on_trail(db, records);
  for (std::size_t i = 0; i < description_.lists.size(); ++i) {
    const RecordList& list = description_.lists[i];
    const std::span<const Column> columns(list.table.columns);
    ReadIds(db, sql_.list_trails[i], columns, first, last,
            [&](Long id, const std::vector<Variant>& values) {
              const auto record = records.find(id);
              if (record == records.end()) return;  // the foreign keys are another rule
              record->second.state.lists[i].rows.emplace_back().Add(columns.subspan(1),
                                                                    std::span(values).subspan(1));
            });
  }
  return records;
}

std::optional<TrailRow> MasterData::TrailOf(Database& db, Long id) const {
  auto records = Trailed(db, id, id);
  if (records.empty()) return std::nullopt;
  return std::move(records.begin()->second.state);
}

std::string MasterData::Changes(Database& db, Long id,
                                const std::optional<TrailRow>& before) const {
  const std::optional<TrailRow> now = TrailOf(db, id);
  return ChangesText(before ? &*before : nullptr, now ? &*now : nullptr);
}

std::string MasterData::NameOf(const Dictionary& record) const {
  return NameFrom(record.Value(description_.name).As<String>(), record.Find(kNumber));
}

std::string MasterData::Called(const Dictionary& record) const {
  return Noun() + " " + NameOf(record);
}

Long MasterData::IdWithKey(Database& db, std::string_view key) const {
  const TextKey& column = description_.key;
  return IdWith(db, column.column, column.ignores_case ? ToUpper(key) : std::string(key));
}

std::string MasterData::Noun() const { return Capitalised(std::string(description_.noun)); }

// ---- Writing ----

Ref<Dictionary> MasterData::Taken(const Dictionary& sent, const Dictionary* stored) const {
  RefuseUnknownKeys(sent);
  auto record = Make<Dictionary>();
  for (const RecordColumn& described : description_.columns) {
    if (described.keeper == Keeper::kJoined) continue;
    const Column& column = described.column;
    const Variant* given = described.keeper == Keeper::kCaller ? sent.Find(column.name)
                           : stored != nullptr                 ? stored->Find(column.name)
                                                               : nullptr;
    record->Put(column.name, Normalized(column, IsNothingGiven(given) ? described.absent : *given));
  }
  return record;
}

void MasterData::RefuseUnknownKeys(const Dictionary& sent) const {
  for (std::uint32_t i = 0; i < sent.size(); ++i) {
    const std::string_view key = sent.key_at(i);
    if (key == kMachineName.name || key == kAddress.name ||
        std::ranges::find(shown_, key, &Column::name) != shown_.end() ||
        std::ranges::find(description_.lists, key, &RecordList::key) != description_.lists.end() ||
        std::ranges::find(description_.keys, key) != description_.keys.end() ||
        (description_.is_further_key != nullptr && description_.is_further_key(key))) {
      continue;
    }
    Refuse(refusal::kBadValue, Noun() + ": there is no column \"" + std::string(key) + "\".");
  }
}

Long MasterData::Insert(Database& db, const Dictionary& record) const {
  Statement& statement = db.Prepared(sql_.insert);
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

void MasterData::Overwrite(Database& db, Long id, const Dictionary& record) const {
  Statement& statement = db.Prepared(sql_.overwrite);
  for (std::size_t i = 0; i < stored_.size(); ++i) {
    BindCell(statement, i, stored_[i], *record.Find(stored_[i].name));
  }
  statement.Set(stored_.size(), std::int64_t{id});
  statement.Execute();
}

bool IsUsedInVouchers(Database& db, std::string_view column, Long id) {
  const std::string where = " WHERE " + std::string(column) + " = ?";
  return db.QueryValue<int>("SELECT 1 FROM t_VoucherEntry" + where + " LIMIT 1", id) ||
         db.QueryValue<int>("SELECT 1 FROM t_Balance" + where +
                                " AND (FDebit <> 0 OR FCredit <> 0 OR FDebitFor <> 0 OR"
                                " FCreditFor <> 0 OR FDebitQty <> 0 OR FCreditQty <> 0) LIMIT 1",
                            id);
}

void RemoveEmptyBalances(Database& db, std::string_view column, Long id) {
  for (const std::string_view table : {"t_ItemBalance", "t_YearBalance", "t_Balance"}) {
    db.Execute("DELETE FROM " + std::string(table) + " WHERE " + std::string(column) + " = ?", id);
  }
}

// ---- The components; what saves and removes stands with the save ----

RecordInfo::RecordInfo(const MasterData& kind) : RecordComponent(kind, kind.info()) {}

Ref<Dictionary> RecordInfo::GetDetail(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().Read(caller.db, RecordID);
}

Ref<Dictionary> RecordInfo::GetDetailByNumber(std::string_view PropsString,
                                              std::string_view RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().Read(caller.db, kind().IdWithKey(caller.db, RecordKey));
}

Ref<Recordset> RecordInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                   const String& Filter, const String& Sort, const Variant& Page) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().List(caller.db, ListOptions, Filter, Sort, PageIn(Page));
}

Long RecordInfo::ExistenceCheck(std::string_view PropsString, const Variant& RecordID,
                                const Variant& RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  if (!RecordID.IsMissing()) {
    const auto id = RecordID.As<Long>();
    return kind().Read(caller.db, id) ? id : 0;
  }
  return RecordKey.IsMissing() ? 0 : kind().IdWithKey(caller.db, RecordKey.As<String>());
}

RecordUpdate::RecordUpdate(const MasterData& kind) : RecordComponent(kind, kind.update()) {}

}  // namespace qdclgl::server
