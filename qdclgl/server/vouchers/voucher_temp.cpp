// Voucher templates: stored skeletons of vouchers. Their lines are kept as those of vouchers are,
// and need no more than accounts and currencies; what a voucher must be is asked of the voucher
// that is made of one.
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/record_save.h"
#include "qdclgl/server/vouchers/voucher_rules.h"
#include "qdclgl/server/vouchers/voucher_tree.h"

namespace qdclgl::server {

const MasterData& Accounts();
const MasterData& Currencies();
const MasterData& SettTypes();
const MasterData& VoucherGroups();

namespace {

constexpr std::string_view kEntries = "_Entries", kDetails = "_Details";

const LineTables& TempLines() {
  static const LineTables kTables("t_VoucherTemp", "FVoucherTempID", "t_VoucherTempEntry",
                                  "t_VoucherTempDetail");
  return kTables;
}

// ---- Reading ----

class VoucherTempInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& RecordID),
            "{A record} with its lines (_Entries) and their details (_Details), Nothing when there "
            "is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, const Long& Period, const Variant& Group,
             const Long& Number),
            "The same by period, group (its name or id) and number.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const String& Filter = {}, const String& Sort = {},
             const Variant& Page = Missing),
            "The {records} without their lines, by period, group and number unless Sort says "
            "otherwise. {page} BadFilter, BadSort, BadValue.")
  QD_METHOD(Long, ExistenceCheck,
            (std::string_view PropsString, const Variant& RecordID = Missing,
             const Variant& Period = Missing, const Variant& Group = Missing,
             const Variant& Number = Missing),
            "The id of the {record} with that id, or with that period, group (name or id) and "
            "number; 0 when there is none.")

 private:
  Ref<Dictionary> Read(Database& db, Long id) const;
};

// The group of a name or an id; nothing when there is none.
std::optional<Long> GroupOf(Database& db, const Variant& group) {
  if (IsVariantKind(group, variant_kind::kNumber)) return CLng(group);
  const std::string name = ConcatenatedText(group);
  if (name.empty()) return 0;
  return db.QueryValue<Long>("SELECT FGroupID FROM t_VoucherGroup WHERE FName = ?", name);
}

Long IdAt(Database& db, Long period, const Variant& group, Long number) {
  const std::optional<Long> group_id = GroupOf(db, group);
  if (!group_id) return 0;
  return db
      .QueryValue<Long>(
          "SELECT FVoucherTempID FROM t_VoucherTemp WHERE FPeriod = ? AND FGroupID = ?"
          " AND FNumber = ?",
          period, *group_id, number)
      .value_or(0);
}

Ref<Dictionary> VoucherTempInfo::Read(Database& db, Long id) const {
  Ref<Dictionary> record = kind().Read(db, id);
  if (!record) return record;
  const auto version = record->Value(record_column::kVersion.name).As<Long>();
  std::vector<VoucherLine> lines;
  TempLines().Ask(db, id);
  TempLines().Take(db, version, true, lines);
  record->Put(kEntries, Variant(RowsOfLines(lines)));
  record->SetTrackState(0);
  return record;
}

Ref<Dictionary> VoucherTempInfo::GetDetail(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return Read(caller.db, RecordID);
}

Ref<Dictionary> VoucherTempInfo::GetDetailByNumber(std::string_view PropsString, const Long& Period,
                                                   const Variant& Group, const Long& Number) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return Read(caller.db, IdAt(caller.db, Period, Group, Number));
}

Ref<Recordset> VoucherTempInfo::GetList(std::string_view PropsString, const String& Filter,
                                        const String& Sort, const Variant& Page) {
  const Caller caller = Enter(PropsString, kind().reading());
  return kind().List(caller.db, 0, Filter, Sort, PageIn(Page));
}

Long VoucherTempInfo::ExistenceCheck(std::string_view PropsString, const Variant& RecordID,
                                     const Variant& Period, const Variant& Group,
                                     const Variant& Number) {
  const Caller caller = Enter(PropsString, kind().reading());
  if (!RecordID.IsMissing()) {
    const Long id = CLng(RecordID);
    return kind().Read(caller.db, id) ? id : 0;
  }
  if (Period.IsMissing() || Group.IsMissing() || Number.IsMissing()) return 0;
  return IdAt(caller.db, CLng(Period), Group, CLng(Number));
}

// ---- Saving ----

// The group that a row names where it tells no id.
void SettleGroup(RecordSave& save) {
  const Variant* name = save.sent().Find("FGroup");
  if (save.Number("FGroupID") != 0 || name == nullptr) return;
  const std::optional<Long> group = GroupOf(save.db(), Variant(ConcatenatedText(*name)));
  if (!group) {
    save.Refuse(refusal::kBadGroup,
                "there is no voucher group \"" + ConcatenatedText(*name) + "\".");
  }
  save.record().Put("FGroupID", *group);
}

// Templates are numbered within their period and group, 0 asks for the next number.
void SettleNumber(RecordSave& save) {
  const Long period = save.Number("FPeriod"), group = save.Number("FGroupID");
  if (period < 0) save.Refuse(refusal::kBadValue, "FPeriod is not negative.");
  const bool moves = save.Changes("FPeriod") || save.Changes("FGroupID");
  if (save.Number("FNumber") == 0) {
    if (!moves) {
      save.record().Put("FNumber", save.stored().Value("FNumber"));
      return;
    }
    const auto last = save.db().QueryValue<Long>(
        "SELECT COALESCE(MAX(FNumber), 0) FROM t_VoucherTemp WHERE FPeriod = ? AND FGroupID = ?",
        period, group);
    save.record().Put("FNumber", *last + 1);
    return;
  }
  const Long number = save.Number("FNumber");
  if (number < 0 || (number > kLargestGivenNumber && save.Changes("FNumber"))) {
    save.Refuse(refusal::kBadNumber,
                "a number that is given is from 1 to " + std::to_string(kLargestGivenNumber) + ".");
  }
  const Long other = IdAt(save.db(), period, Variant(group), number);
  if (other != 0 && other != save.id()) {
    save.Refuse(refusal::kNumberTaken,
                "template " + std::to_string(other) + " has that number in its period and group.");
  }
}

void Check(RecordSave& save) {
  save.RequireKey();
  if (save.sent().Contains(kDetails)) {
    save.Refuse(refusal::kBadValue, "details belong to a line.");
  }
  SettleGroup(save);
  SettleNumber(save);
}

// What a line refers to: the id that it tells, or that of the record with the number that it tells
// instead; 0 for none.
Long IdOrNumbered(const RecordSave& save, const MasterData& kind, Long id, const Variant& number,
                  std::int32_t refusal, const std::string& place) {
  if (id != 0 || number.TextView().empty()) return id;
  const Long known = kind.IdWithKey(save.db(), number.TextView());
  if (known != 0) return known;
  save.Refuse(refusal, place + "there is no " + std::string(kind.description().noun) + " " +
                           number.Held<String>() + ".");
}

// The lines that a row has, their accounts and currencies told by ids. Whether these are in use is
// asked once the lines are written.
std::vector<VoucherLine> LinesOf(const RecordSave& save) {
  std::vector<VoucherLine> lines;
  try {
    lines = LinesFromRow(save.sent());
  } catch (const Error& error) {
    save.Refuse(error.number(), error.description());
  }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    LineCells& cells = lines[i].cells;
    const std::string place = "line " + std::to_string(i + 1) + ": ";
    const std::vector<Variant>& names = lines[i].names;
    const Long account =
        IdOrNumbered(save, Accounts(), cells.Get<"FAccountID">(),
                     names[PlaceOf(kLineNames, "FAccountNumber")], refusal::kBadAccount, place);
    if (account == 0) save.Refuse(refusal::kBadAccount, place + "it has no account.");
    const Long currency =
        IdOrNumbered(save, Currencies(), cells.Get<"FCurrencyID">(),
                     names[PlaceOf(kLineNames, "FCurrencyNumber")], refusal::kBadCurrency, place);
    cells.Put<"FAccountID">(account);
    cells.Put<"FCurrencyID">(currency != 0 ? currency : kBaseCurrency);
    const Long side = cells.Get<"FDC">();
    if (side != 0 && side != 1) {
      save.Refuse(refusal::kBadSide, place + "it is neither debit (1) nor credit (0).");
    }
  }
  return lines;
}

// A row without a list of lines, as lists have them, leaves the lines as they are.
void Follow(RecordSave& save) {
  if (!save.sent().Contains(kEntries)) return;
  const std::vector<VoucherLine> lines = LinesOf(save);
  TempLines().Remove(save.db(), save.id());
  TempLines().Insert(save.db(), save.id(), lines);
}

void Remove(RecordRemoval& removal) {
  TempLines().Remove(removal.db(), removal.id());
  removal.Remove();
}

}  // namespace

const MasterData& VoucherTemps() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLVoucherTemp.VoucherTemp",
      .noun = "voucher template",
      .nouns = "voucher templates",
      .brief = "template",
      .list = {"templates", "Lists the voucher templates",
               "FVoucherTempID FPeriod FGroup FNumber FName FReference"},
      .table = "t_VoucherTemp",
      .id = "FVoucherTempID",
      .key = {"FName"},
      .columns = {{{"FName", kText}},
                  {{"FPeriod", kLong}},
                  {{"FPeriodRange", kText}},
                  {.column = {"FGroupID", kLong},
                   .refers = {.kind = VoucherGroups, .refusal = refusal::kBadGroup}},
                  {{"FGroup", kText}, Keeper::kJoined},
                  {{"FNumber", kLong}},
                  {{"FReference", kText}},
                  {{"FAttachments", kLong}},
                  {{"FTypeID", kLong}},
                  {{"FVoucherID", kLong}},
                  {{"FSaveFlag", kText}}},
      .query = "SELECT t.*, COALESCE(g.FName, '') AS FGroup FROM t_VoucherTemp t"
               " LEFT JOIN t_VoucherGroup g ON g.FGroupID = t.FGroupID",
      .order = "FPeriod, FGroupID, FNumber, FVoucherTempID",
      .lists = {{.key = kEntries,
                 .table = TempLines().lines(),
                 .order = "FVoucherTempID, FEntryID",
                 .refers = {{"FAccountID", {Accounts, true, refusal::kBadAccount}},
                            {"FCurrencyID", {Currencies, true, refusal::kBadCurrency}},
                            {"FSettleTypeID", {SettTypes}}}},
                {.key = kDetails,
                 .table = TempLines().details(),
                 .order = "FVoucherTempID, FEntryID, FIndex",
                 .is_within_list = true}},
      .writer = Role::kPreparer,
      .check = Check,
      .follow = Follow,
      .remove = Remove,
      .info = RecordClassOf<VoucherTempInfo>(),
      .errors = "Required, BadValue, BadGroup, BadNumber, NumberTaken, BadAccount, BadCurrency, "
                "BadReference, BadSide",
      .helps =
          {{"Create",
            "Saves a new template with its lines, which need accounts and no balance; its id "
            "and version come back in the row too. It is numbered within its period and "
            "group, number 0 asks for the next one. Errors: {errors}."},
           {"Update",
            "Saves a template, its lines in place of the former ones, which stay where the row "
            "has no list of lines; number 0 leaves the one it has unless period or group "
            "change. The new version comes back in the row. Errors: NotFound, NoVersion, "
            "Changed, and those of Create."}},
  });
  return kKind;
}

}  // namespace qdclgl::server
