// Imports: which vouchers came from one file, so that they can go again together. An import keeps
// the ids of vouchers that are gone too; none is given twice.
#include "qdclgl/server/vouchers/import.h"

#include <set>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/conversions.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/db/sha256.h"
#include "qdclgl/server/records/record_save.h"
#include "qdclgl/server/records/voucher_names.h"
#include "qdclgl/server/vouchers/voucher.h"

namespace qdclgl::server {

const MasterData& Imports();

namespace {

const StoredTable& VoucherTable() {
  static const StoredTable kTable{
      "t_ImportVoucher", {{"FVoucherID", ColumnType::kLong}, {"FImportID", ColumnType::kLong}}};
  return kTable;
}

constexpr Column kVoucherColumns[] = {
    {"FVoucherID", ColumnType::kLong},   {"FDate", ColumnType::kDate},
    {"FVoucher", ColumnType::kText},     {"FReference", ColumnType::kText},
    {"FExplanation", ColumnType::kText}, {"FDebitTotal", ColumnType::kCurrency},
    {"FDeleted", ColumnType::kBoolean},
};

class ImportInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_INHERITED(GetDetail)
  QD_INHERITED(GetDetailByNumber)
  QD_INHERITED(GetList)
  QD_INHERITED(ExistenceCheck)
  QD_METHOD(Ref<Recordset>, GetVouchers, (std::string_view PropsString, const Long& RecordID),
            "What is left of the import's vouchers, those marked deleted too: FVoucherID, FDate, "
            "FVoucher (\"2024/1 Receipts 5\"), FReference, FExplanation, FDebitTotal, FDeleted. "
            "NotFound.")
};

Ref<Recordset> ImportInfo::GetVouchers(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  kind().Require(caller.db, RecordID);
  static const std::string kQuery =
      "SELECT v.FVoucherID, v.FDate, " + std::string(kVoucherName) +
      " AS FVoucher, v.FReference, v.FExplanation, v.FDebitTotal, v.FDeleted" +
      std::string(kFromVouchers) +
      " JOIN t_ImportVoucher i ON i.FVoucherID = v.FVoucherID WHERE i.FImportID = ?";
  const std::vector<BoundValue> values = {std::int64_t{RecordID}};
  return FetchList(caller.db, {kQuery, kVoucherColumns, "FVoucherID"}, "", "", values);
}

class ImportUpdate final : public RecordUpdate {
  QD_BASE_MEMBERS(RecordUpdate)

 public:
  using RecordUpdate::RecordUpdate;

  QD_INHERITED(Create)
  QD_INHERITED(Update)
  QD_INHERITED(Delete)
  QD_METHOD(void, AddVouchers,
            (std::string_view PropsString, const Long& RecordID, const Variant& VoucherIDs),
            "Tells that these vouchers, a Vector of ids, came with the import. NotFound; "
            "BadReference for what is no "
            "voucher, came with an import before, or is older than one that it has.")
  QD_METHOD(Long, TakeOut, (std::string_view PropsString, const Long& RecordID),
            "Removes the vouchers of the import with their rows, all or none, and returns how many "
            "there were. VoucherChecked, VoucherCashed, VoucherPosted and PeriodClosed for the "
            "first one that can't go, as VoucherUpdate.Delete raises them; Changed for one that "
            "was saved since; NotFound, also where none is left.")
};

std::set<Long> IdsBetween(Database& db, std::string_view table, Long first, Long last) {
  std::set<Long> ids;
  for (const auto& [id] : db.Query<Long>("SELECT FVoucherID FROM " + std::string(table) +
                                             " WHERE FVoucherID >= ? AND FVoucherID <= ?",
                                         first, last)) {
    ids.insert(id);
  }
  return ids;
}

// In their order. BadReference unless all of them are vouchers, told once, of no import yet, and
// made behind those that the import has.
std::set<Long> NewVouchers(Database& db, Long import, const Vector& sent) {
  const auto refuse = [](Long id, const char* reason) {
    Refuse(refusal::kBadReference, "The voucher with the id " + std::to_string(id) + reason);
  };
  std::set<Long> ids;
  for (std::size_t i = 0; i < sent.size(); ++i) {
    const Long id = CLng(sent.at(i));
    if (!ids.insert(id).second) refuse(id, " is told twice.");
  }
  if (ids.empty()) return ids;
  const auto last = db.QueryValue<Long>(
      "SELECT FVoucherID FROM t_ImportVoucher WHERE FImportID = ? ORDER BY FVoucherID DESC LIMIT 1",
      import);
  const std::set<Long> there = IdsBetween(db, "t_Voucher", *ids.begin(), *ids.rbegin());
  const std::set<Long> taken = IdsBetween(db, VoucherTable().name, *ids.begin(), *ids.rbegin());
  for (const Long id : ids) {
    if (!there.contains(id)) refuse(id, " is not there.");
    if (taken.contains(id)) refuse(id, " came with an import before.");
  }
  if (*ids.begin() < last.value_or(0))
    refuse(*ids.begin(), " is older than the import's last one.");
  return ids;
}

void ImportUpdate::AddVouchers(std::string_view PropsString, const Long& RecordID,
                               const Variant& VoucherIDs) {
  const Caller caller = EnterUnconfirmed(PropsString, kind().writing());
  Database& db = caller.db;
  CallersTransaction transaction(caller, Transaction::Kind::kSave);
  // It keeps others from the import until the transaction ends.
  db.Execute("UPDATE t_Import SET FVersion = FVersion WHERE FImportID = ?", RecordID);
  const Ref<Dictionary> stored = kind().Require(db, RecordID);
  const std::optional<TrailRow> before = kind().TrailOf(db, RecordID);
  const auto sent = VoucherIDs.As<Vector>();
  if (!sent) throw Error(error_number::kObjectNotSet);
  const std::set<Long> ids = NewVouchers(db, RecordID, *sent);
  auto next = ids.begin();
  RowInsertion(VoucherTable().name, VoucherTable().columns)
      .Run(db, ids.size(), [&](Statement& statement, std::size_t position, std::size_t) {
        statement.Set(position, std::int64_t{*next++});
        statement.Set(position + 1, std::int64_t{RecordID});
      });
  auto hash = stored->Value("FVoucherHash").As<String>();
  for (const Long id : ids) hash = HashWithVoucher(hash, id);
  db.Execute("UPDATE t_Import SET FVersion = FVersion + 1, FVoucherCount = FVoucherCount + ?,"
             " FVoucherHash = ? WHERE FImportID = ?",
             static_cast<std::int64_t>(ids.size()), hash, RecordID);
  const std::string name = kind().NameOf(*stored);
  WriteAudit(caller, {.subject = kind().subject(),
                      .record_id = RecordID,
                      .record = name,
                      .action = "AddVouchers",
                      .changes = kind().Changes(db, RecordID, before)});
  transaction.Commit();
}

struct ImportedVoucher {
  Long id;
  std::string name;
  bool is_changed;  // by a save since
};

// Those that are still there, marked deleted or not. Only vouchers of another version than the
// first are looked up on the trail: steps and their taking back count as versions as well.
std::vector<ImportedVoucher> VouchersOf(Database& db, Long import) {
  std::vector<ImportedVoucher> vouchers;
  for (const auto& [id, name, is_changed] : db.Query<Long, std::string, bool>(
           "SELECT v.FVoucherID, " + std::string(kVoucherName) +
               ", CASE WHEN v.FVersion > 1 AND v.FDeleted = 0 AND EXISTS (SELECT 1 FROM t_Audit a"
               " WHERE a.FSubject = 'Voucher' AND a.FRecordID = v.FVoucherID"
               " AND a.FAction IN ('Update', 'ClearCashFlow')) THEN 1 ELSE 0 END" +
               std::string(kFromVouchers) +
               " JOIN t_ImportVoucher i ON i.FVoucherID = v.FVoucherID WHERE i.FImportID = ?"
               " ORDER BY v.FVoucherID",
           import)) {
    vouchers.push_back({id, name, is_changed});
  }
  return vouchers;
}

Long ImportUpdate::TakeOut(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = EnterUnconfirmed(PropsString, kind().writing());
  RecordSave save(caller, kind(), RecordID, Make<Dictionary>());
  const std::vector<ImportedVoucher> vouchers = VouchersOf(caller.db, RecordID);
  if (vouchers.empty()) save.Refuse(refusal::kNotFound, "none of its vouchers is left.");
  for (const ImportedVoucher& voucher : vouchers) {
    if (voucher.is_changed) {
      Refuse(refusal::kChanged, "Voucher " + voucher.name +
                                    ": it was changed since the import; remove it by itself where "
                                    "it shall go too.");
    }
    Make<VoucherUpdate>()->Delete(caller.session->props, voucher.id, true);
  }
  save.record().Put("FTakenOut", true);
  save.Run();
  return static_cast<Long>(vouchers.size());
}

// The next number that is free, for one that brings none.
std::string NextNumber(Database& db) {
  auto number = db.QueryValue<Long>("SELECT COALESCE(MAX(FImportID), 0) FROM t_Import").value_or(0);
  do ++number;
  while (Imports().IdWithKey(db, std::to_string(number)) != 0);
  return std::to_string(number);
}

void Check(RecordSave& save) {
  Dictionary& record = save.record();
  if (save.Text("FNumber").empty()) record.Put("FNumber", NextNumber(save.db()));
  CheckKey(save);
  if (!save.is_new()) return;
  record.Put("FTime", Variant(CurrentPlatform().Now()));
  record.Put("FUserName", save.session().user_name);
}

void Remove(RecordRemoval& removal) {
  removal.db().Execute("DELETE FROM t_ImportVoucher WHERE FImportID = ?", removal.id());
  removal.Remove();
}

}  // namespace

std::string HashWithVoucher(const std::string& before, Long voucher_id) {
  return Sha256Of(before + " " + std::to_string(voucher_id));
}

const MasterData& Imports() {
  using enum ColumnType;
  using enum Keeper;
  static const MasterData kKind({
      .component = "QDSVGLImport.Import",
      .noun = "import",
      .nouns = "imports",
      .list = {"imports", "Lists the imports of vouchers, and what is left of them",
               "FNumber FTime FUserName FName FVoucherCount FLeft"},
      .table = "t_Import",
      .id = "FImportID",
      .key = {.column = "FNumber", .ignores_case = true},
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {{"FTime", kDate}, kServer},
                  {{"FUserName", kText}, kServer},
                  {{"FVoucherCount", kLong}, kServer},
                  {{"FVoucherHash", kText}, kServer},
                  {{"FTakenOut", kBoolean}, kServer},
                  {{"FLeft", kLong}, kJoined}},
      .query = "SELECT i.*, (SELECT COUNT(*) FROM t_ImportVoucher l JOIN t_Voucher v"
               " ON v.FVoucherID = l.FVoucherID WHERE l.FImportID = i.FImportID"
               " AND v.FDeleted = 0) AS FLeft FROM t_Import i",
      .tables = {VoucherTable()},
      .writer = Role::kPreparer,
      .check = Check,
      .remove = Remove,
      .info = RecordClassOf<ImportInfo>(),
      .update = RecordClassOf<ImportUpdate>(),
      .errors = "NumberTaken, BadValue",
      .helps =
          {{"Create",
            "Saves a new import, with no vouchers yet; one without a number gets the next. "
            "Its id and version come back in the row too. Errors: {errors}."},
           {"Delete",
            "Forgets {a record}; its vouchers stay, and are of no import any more. NotFound."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
