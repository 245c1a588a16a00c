// The tables of the books, and how books of an older version become books of this one.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

struct Migration {
  std::string_view title;
  std::string_view sql;
};

// The files of db/migrations/, by their numbers. The first makes version 1 out of nothing, each
// further one the next version out of the one before. A migration that has been released is never
// changed.
std::span<const Migration> Migrations();

inline int CurrentSchemaVersion() { return static_cast<int>(Migrations().size()); }

// Whether the books have a table, by its name in small letters.
bool HasTable(Database& database, std::string_view name);
// Whether there is any table, of books or of others.
bool HasTables(Database& database);

// The version of the books, 0 for a database without books.
int SchemaVersion(Database& database);

// Runs the migrations behind the books' version up to `version`, in the transaction under way.
void Migrate(Database& database, int version);

// This table stands beside those of books that are being copied here, until the copy is whole. Till
// then their version is 0.
inline constexpr std::string_view kHalfCopyTable = "t_halfcopy";
bool HoldsHalfCopy(Database& database);
// NoBooks for a database that does.
void RequireNoHalfCopy(Database& database);

// WrongSchema unless the books are of this program's version, NoBooks when there are none.
void RequireCurrentSchema(Database& database);

}  // namespace qdclgl::server
