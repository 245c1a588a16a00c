#include "qdclgl/server/books/texts_check.h"

#include "qdclgl/server/db/extras.h"
#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

namespace {

// The rows of a table with a text that is too long, by the id that comes first in the table.
void CheckTable(Database& db, const StoredTable& table, Findings& findings) {
  std::string too_long;
  for (const Column& column : table.columns) {
    if (column.type != ColumnType::kText) continue;
    const std::string name(column.name);
    const std::size_t most = name == kExtraColumn ? kLongestExtras : kLongestStoredText;
    too_long += (too_long.empty() ? "" : " OR ") +
                std::string(db.Dialect("LENGTH(CAST(" + name + " AS BLOB))",
                                       "OCTET_LENGTH(" + name + ")")) +
                " > " + std::to_string(most);
  }
  if (too_long.empty()) return;
  const std::string id(table.columns.front().name);
  findings.AddRows(db, "TextLength", "Database",
                   "One of its texts is longer than its column takes.",
                   "SELECT DISTINCT " + id + ", '" + std::string(table.name) + "' FROM " +
                       std::string(table.name) + " WHERE " + too_long + " ORDER BY 1");
}

// The records with a text that is none of its column's words.
void CheckWords(Database& db, const MasterData& kind, Findings& findings) {
  const MasterData::Description& description = kind.description();
  for (const RecordColumn& column : description.columns) {
    if (column.words.empty()) continue;
    const std::string name(column.column.name), id(description.id);
    std::string words = "''";
    for (const std::string_view word : column.words) words += ", '" + std::string(word) + "'";
    findings.AddRows(db, "Word", kind.subject(), name + " is not " + WordsText(column.words) + ".",
                     "SELECT " + id + ", " + std::string(description.key.column) + " FROM " +
                         std::string(description.table) + " WHERE " + name + " NOT IN (" + words +
                         ") ORDER BY 1");
  }
}

}  // namespace

void CheckTexts(Database& db, Findings& findings) {
  for (const StoredTable& table : VoucherTables()) CheckTable(db, table, findings);
  for (const MasterData* kind : MasterDataKinds()) {
    for (const StoredTable& table : kind->Tables()) CheckTable(db, table, findings);
    CheckWords(db, *kind, findings);
  }
}

}  // namespace qdclgl::server
