#include "qdclgl/cli/records.h"

#include <algorithm>

#include "qdclgl/cli/listing.h"
#include "qdclgl/cli/program.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::cli {

using server::MasterData;

namespace {

[[noreturn]] void RefuseKey(const std::string& reason) {
  throw Error(server::refusal::kNotFound, "qdclgl", reason);
}

}  // namespace

Ref<Dictionary> Records::Read(Long id) const {
  return CreateObject(kind_.info_prog_id())->Call("GetDetail", props_, ByRef(id)).As<Dictionary>();
}

Long Records::IdOf(const Dictionary& record) const {
  return record.Value(kind_.description().id).As<Long>();
}

Long Records::IdWith(const std::string& key) const {
  const server::TextKey& column = kind_.description().key;
  const std::string text = column.ignores_case ? ToUpper(key) : key;
  const Ref<Recordset> rows = cli::FetchList(
      *FindList(KindName(kind_)), props_,
      {.filter = std::string(column.column) + " = " + FilterText(text), .with_deleted = true});
  const auto id = [&] { return rows->FieldValue(rows->FieldPosition(kind_.description().id)); };
  const Long first = rows->Eof() ? 0 : id().As<Long>();
  if (rows->RecordCount() <= 1) return first;
  std::string ids;
  for (; !rows->Eof(); rows->MoveNext()) ids += (ids.empty() ? "#" : ", #") + CellText(id());
  RefuseKey(kind_.Noun() + " " + OneLine(key) + ": there are several, with the ids " + ids + ".");
}

Ref<Dictionary> Records::Find(const std::string& key) const {
  const bool is_id = key.size() > 1 && key[0] == '#' && IsID(key.substr(1));
  const Long id = is_id ? WholeOption("KEY", key.substr(1)) : IdWith(key);
  Ref<Dictionary> record = id != 0 ? Read(id) : nullptr;
  if (!record) RefuseKey(kind_.Noun() + " " + OneLine(key) + ": there is none.");
  return record;
}

void Records::AddLists(Dictionary& record) const {
  for (const server::RecordList& list : kind_.description().lists) {
    if (list.component.empty()) continue;
    Long id = IdOf(record);
    const auto rows =
        CreateObject(list.component)->Call(list.method, props_, ByRef(id)).As<Recordset>();
    auto shown = Make<Vector>();
    for (; !rows->Eof(); rows->MoveNext()) {
      const Ref<Dictionary> row = RowToDictionary(rows);
      row->Remove(list.table.columns.front().name);  // the record's id
      shown->Append(Variant(row));
    }
    record.Put(list.key, Variant(shown));
  }
}

Long Records::Save(const Ref<Dictionary>& row, Long id) const {
  row->Put(server::record_column::kMachineName.name, Variant(GetMachineName()));
  row->Put(server::record_column::kAddress.name, Variant(GetIPAddress()));
  const Ref<Object> update = CreateObject(kind_.update_prog_id());
  if (id == 0) {
    id = update->Call("Create", props_, row).As<Long>();
  } else {
    update->Call("Update", props_, ByRef(id), row);
  }
  return id;
}

bool Records::Delete(Long id) const {
  CreateObject(kind_.update_prog_id())
      ->Call("Delete", props_, ByRef(id), GetMachineName(), GetIPAddress());
  return !Read(id);
}

// ---- Printing ----

namespace {

const Vector* ListIn(const Variant& value) {
  return value.IsObject() ? dynamic_cast<const Vector*>(value.ObjectPointer()) : nullptr;
}

// The keys of all rows, in the order in which they come up.
std::vector<std::string> KeysOf(const std::vector<Ref<Dictionary>>& rows) {
  std::vector<std::string> keys;
  for (const Ref<Dictionary>& row : rows) {
    for (std::uint32_t i = 0; i < row->size(); ++i) {
      if (std::ranges::find(keys, row->key_at(i)) == keys.end()) keys.push_back(row->key_at(i));
    }
  }
  return keys;
}

// In CSV a list is one cell, in JSON.
Variant CellOf(const Variant& value, Format format) {
  return format == Format::kCsv && ListIn(value) != nullptr ? Variant(JsonText(value)) : value;
}

void WriteTable(const Console& console, Format format, const std::vector<Ref<Dictionary>>& rows) {
  const std::vector<std::string> keys = KeysOf(rows);
  TableWriter table(console, format, keys);
  for (const Ref<Dictionary>& row : rows) {
    std::vector<Variant> cells;
    for (const std::string& key : keys) cells.push_back(CellOf(row->Value(key), format));
    table.Row(cells);
  }
  table.Finish();
}

void WritePlain(Console console, const Dictionary& record) {
  console.look.shows_keys = true;
  std::size_t width = 0;
  for (std::uint32_t i = 0; i < record.size(); ++i) {
    if (ListIn(record.value_at(i)) == nullptr) width = std::max(width, record.key_at(i).size());
  }
  for (std::uint32_t i = 0; i < record.size(); ++i) {
    if (ListIn(record.value_at(i)) != nullptr) continue;
    std::string line = record.key_at(i);
    line.append(width + 2 - line.size(), ' ').append(OneLine(CellText(record.value_at(i))));
    line.erase(line.find_last_not_of(' ') + 1);
    console.out << line << '\n';
  }
  for (std::uint32_t i = 0; i < record.size(); ++i) {
    const Vector* list = ListIn(record.value_at(i));
    if (list == nullptr || list->size() == 0) continue;
    std::vector<Ref<Dictionary>> rows;
    for (std::size_t row = 0; row < list->size(); ++row) {
      rows.push_back(list->at(row).As<Dictionary>());
    }
    console.out << '\n' << record.key_at(i) << '\n';
    WriteTable(console, Format::kPlain, rows);
  }
}

}  // namespace

void WriteRecords(const Console& console, Format format,
                  const std::vector<Ref<Dictionary>>& records) {
  if (format != Format::kPlain) return WriteTable(console, format, records);
  for (const Ref<Dictionary>& record : records) {
    if (record != records.front()) console.out << '\n';
    WritePlain(console, *record);
  }
}

}  // namespace qdclgl::cli
