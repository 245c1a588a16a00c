// What the dictionaries of settlement share: settlement types, settlement accounts, check types and
// payment terms are numbers with names, found by either, that may refer to accounts.
#pragma once

#include <vector>

#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

// A record that another one refers to, with the column that shows its number.
struct SettlementLink {
  std::string_view id, number;
  const MasterData& (*kind)();
};

// The description of such a dictionary, of what is its own: names, table, links, further columns.
MasterData::Description SettlementDictionary(MasterData::Description own,
                                             const std::vector<SettlementLink>& links = {});

// Numbers are unique codes; whether a record is deleted is 0 or 1.
void CheckSettlement(RecordSave& save);

}  // namespace qdclgl::server
