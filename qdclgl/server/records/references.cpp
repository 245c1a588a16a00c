#include "qdclgl/server/records/references.h"

#include "qdclgl/server/records/kinds.h"
#include "qdclgl/server/records/voucher_names.h"

namespace qdclgl::server {

const MasterData& SettTypes();

namespace {

// The references in the rows of a kind, and in those that belong to its records elsewhere.
void AddReferencesOf(const MasterData& kind, std::vector<Reference>& references) {
  const MasterData::Description& description = kind.description();
  const auto add = [&](std::string_view table, std::string_view id, std::string_view column,
                       const Referred& refers) {
    if (refers.kind == nullptr) return;
    // As the trail tells it, which needs none of the records that it refers to.
    const auto name_of = [&kind](Database& db, Long record) {
      return kind.Trailed(db, record, record)[record].name;
    };
    references.push_back(
        {kind.subject(), description.noun, table, id, column, refers, &kind, name_of});
  };
  for (const RecordColumn& column : description.columns) {
    add(description.table, description.id, column.column.name, column.refers);
  }
  for (const RecordList& list : description.lists) {
    for (const auto& [column, refers] : list.refers) {
      add(list.table.name, list.table.columns.front().name, column, refers);
    }
  }
}

std::string VoucherName(Database& db, Long id) {
  return db
      .QueryValue<std::string>("SELECT " + std::string(kVoucherName) + std::string(kFromVouchers) +
                                   " WHERE v.FVoucherID = ?",
                               id)
      .value_or("?");
}

}  // namespace

std::span<const ReferringColumn> LineReferences() {
  static constexpr ReferringColumn kReferences[] = {{"FSettleTypeID", {SettTypes}}};
  return kReferences;
}

const std::vector<Reference>& References() {
  static const std::vector<Reference> kReferences = [] {
    std::vector<Reference> references;
    for (const MasterData* kind : MasterDataKinds()) AddReferencesOf(*kind, references);
    for (const auto& [column, refers] : LineReferences()) {
      references.push_back({.subject = "Voucher",
                            .noun = "voucher",
                            .table = "t_VoucherEntry",
                            .id = "FVoucherID",
                            .column = column,
                            .refers = refers,
                            .name_of = VoucherName});
    }
    return references;
  }();
  return kReferences;
}

std::optional<std::string> ReasonAgainst(Database& db, const Referred& refers,
                                         std::string_view column, Long id) {
  const MasterData& kind = refers.kind();
  const MasterData::Description& description = kind.description();
  if (id == 0 && !refers.is_required) return std::nullopt;
  const std::string deleted(description.deleted.empty() ? "0" : description.deleted);
  const auto is_deleted =
      db.QueryValue<bool>("SELECT " + deleted + " FROM " + std::string(description.table) +
                              " WHERE " + std::string(description.id) + " = ?",
                          id);
  if (is_deleted == false) return std::nullopt;
  if (id == 0) return std::string(column) + " is missing.";
  return "there is no " + std::string(description.noun) + " " + std::to_string(id) +
         (is_deleted ? " in use." : ".");
}

std::optional<std::string> ReferrerOf(Database& db, const MasterData& kind, Long id) {
  for (const Reference& reference : References()) {
    if (&reference.refers.kind() != &kind) continue;
    const std::string column(reference.column), owner(reference.id);
    // That 0 is none is said for indexes that leave out what refers to nothing.
    const auto holder = db.QueryValue<Long>(
        "SELECT " + owner + " FROM " + std::string(reference.table) + " WHERE " + column +
            " = ? AND " + column + " <> 0 AND " + owner + " <> ? ORDER BY " + owner + " LIMIT 1",
        id, reference.owner == &kind ? id : Long{0});
    if (!holder) continue;
    return std::string(reference.noun) + " " + reference.name_of(db, *holder);
  }
  return std::nullopt;
}

HeldIds IdsInLists(Database& db, const MasterData& kind, Long id) {
  HeldIds ids;
  for (const RecordList& list : kind.description().lists) {
    for (const auto& place : list.refers) {
      for (const auto& [held] :
           db.Query<Long>("SELECT DISTINCT " + std::string(place.first) + " FROM " +
                              std::string(list.table.name) + " WHERE " +
                              std::string(list.table.columns.front().name) + " = ?",
                          id)) {
        ids[&place].insert(held);
      }
    }
  }
  return ids;
}

}  // namespace qdclgl::server
