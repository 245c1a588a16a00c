// The rows of whole books, as they are carried from one database into another: which ones go along,
// and how one is read here and written there.
#pragma once

#include <string>
#include <vector>

#include "qdclgl/server/books/work_progress.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

struct CarriedColumn {
  std::string name;
  Storage storage;
};
struct CarriedTable {
  std::string name;
  std::vector<CarriedColumn> columns;
  std::string order;  // the columns that tell one row from another
};

// All tables of the database, in the order in which they were made: what others refer to comes
// first.
std::vector<CarriedTable> CarriedTables(Database& db);

// The query of the rows that go along, all of the table's columns. What belongs to programs that
// are at work stays behind.
std::string RowsOf(const CarriedTable& table);
// How many there are.
double CountRows(Database& db, const CarriedTable& table);
// The statement that writes a row, and a row of RowsOf as its values.
std::string InsertInto(const CarriedTable& table);
void SetRow(Statement& insert, const CarriedTable& table, const Statement& row);

// Takes all rows away; in a transaction.
void EmptyTables(Database& db, const std::vector<CarriedTable>& tables);
// The last ids that tables gave, those of records that are gone included: no new one gets them.
void CarryLastIds(Database& from, Database& to);

// Damaged unless the books pass their check.
void RequireToCarry(Database& db, const WorkProgress& progress);

}  // namespace qdclgl::server
