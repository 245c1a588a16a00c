#include "qdclgl/server/records/settlement.h"

#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

namespace {

constexpr std::string_view kDeleted = "FDeleted";
constexpr Integer kLongestNumber = 80;

class SettlementInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_INHERITED(GetDetail)
  QD_INHERITED(GetDetailByNumber)
  QD_INHERITED(GetList)
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& RecordID = Missing,
             const Variant& RecordKey = Missing, const Variant& Name = Missing),
            "The id of the {record} with that id, or otherwise that {key}, or otherwise that name "
            "(the first one saved); 0 when there is none.")
};

Long SettlementInfo::ExistenceCheck(std::string_view PropsString, const Variant& RecordID,
                                    const Variant& RecordKey, const Variant& Name) {
  if (!RecordID.IsMissing() || !RecordKey.IsMissing()) {
    return RecordInfo::ExistenceCheck(PropsString, RecordID, RecordKey);
  }
  const Caller caller = Enter(PropsString, kind().reading());
  const std::string name = Name.IsMissing() ? std::string() : Name.As<String>();
  // Records without a name are not to be found by it.
  return name.empty() ? 0 : kind().IdWith(caller.db, record_column::kName, name);
}

}  // namespace

MasterData::Description SettlementDictionary(MasterData::Description own,
                                             const std::vector<SettlementLink>& links) {
  using enum ColumnType;
  std::vector<RecordColumn> columns = {{{record_column::kNumber, kText}},
                                       {{record_column::kName, kText}}};
  own.query = "SELECT record.*";
  for (const auto& [id, number, kind] : links) {
    columns.push_back({.column = {id, kLong}, .refers = {kind}});
    columns.push_back({{number, kText}, Keeper::kJoined});
    const std::string table(kind().description().table);
    own.query += ", COALESCE((SELECT FNumber FROM " + table + " WHERE " + table + "." +
                 std::string(kind().description().id) + " = record." + std::string(id) +
                 "), '') AS " + std::string(number);
  }
  own.query += " FROM " + std::string(own.table) + " record";
  columns.insert(columns.end(), own.columns.begin(), own.columns.end());
  columns.push_back({{kDeleted, kInteger}});
  own.columns = std::move(columns);
  own.deleted = kDeleted;
  own.order = record_column::kNumber;
  if (own.check == CheckKey) own.check = CheckSettlement;
  own.info = RecordClassOf<SettlementInfo>();
  own.errors = links.empty() ? "Required, BadNumber, NumberTaken, BadValue"
                             : "Required, BadNumber, NumberTaken, BadReference, BadValue";
  return own;
}

void CheckSettlement(RecordSave& save) {
  save.RequireKey();
  if (!IsValidCode(save.Text(record_column::kNumber), kLongestNumber, false)) {
    save.Refuse(refusal::kBadNumber, "a number has 1 to 80 letters, digits and underscores.");
  }
  save.RequireUniqueKey();
  save.record().Put(kDeleted, Integer{save.Number(kDeleted) != 0});
}

}  // namespace qdclgl::server
