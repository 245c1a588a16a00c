// The seals of the audit trail: each stands behind a block of rows and holds a hash of them and of
// the seal before. What a row of the trail doesn't betray by itself, that the whole life of a
// record was cut out or that everything was written anew, breaks a seal, or the last one doesn't
// agree with the head that somebody has kept elsewhere.
//
// Blocks are sealed as books are made, upgraded and closed, and by whoever writes when a block is
// long or old enough. Nobody waits for that. Where others are writing meanwhile, the end of the
// block is only marked, together with who they are; it is sealed once all of them are done, when no
// row can come into it any more.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/server/db/columns.h"

namespace qdclgl::server {

struct TrailSeal {
  Long number = 0;  // from 1, 0: none
  std::string time = {};
  Long last_id = 0;  // the last row of the block
  Long count = 0;
  std::string under_way = {};  // who was writing when the end of the block was marked
  std::string hash = {};       // "" while the end is only marked
};

// Whether it is time for a seal behind the last row, when the last block ended there.
bool IsSealDue(Long id, std::string_view time, Long sealed_id, std::string_view sealed_time);
// Behind a row that was just written: seals or marks the rows up to it when it is time. Looks with
// the first row of a connection, and then now and again, so that most rows cost nothing.
void SealIfDue(Database& db);
// Seals all rows; in a transaction that changes rules, so that nobody else is writing.
void SealTrail(Database& db);

// The last one with a hash.
TrailSeal LastSeal(Database& db);
std::vector<TrailSeal> AllSeals(Database& db);
// What a seal should hold behind `former`: the hash of its rows, and their number in `count`.
std::string SealHash(Database& db, const TrailSeal& former, const TrailSeal& seal, Long& count);

// "12-0f3a...", "" for none.
std::string HeadOf(const TrailSeal& seal);

StoredTable SealTable();

}  // namespace qdclgl::server
