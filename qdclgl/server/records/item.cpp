// Items of item classes: a tree within each class, by the id of the item above. The server keeps
// level, full number, full name and detail flag.
#include "qdclgl/server/records/item.h"

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/item_fields.h"
#include "qdclgl/server/records/item_list.h"
#include "qdclgl/server/records/item_slots.h"
#include "qdclgl/server/records/record_tree.h"

namespace qdclgl::server {

const MasterData& ItemClasses();

namespace {

constexpr Integer kDeepestLevel = 50;

bool IsUsedInLines(Database& db, Long id) {
  return db
      .QueryValue<int>("SELECT 1 FROM t_VoucherDetail WHERE FItemID = ? AND FItemID <> 0 LIMIT 1",
                       id)
      .has_value();
}

// ---- The tree ----

constexpr RecordTree kTree = {
    .table = "t_Item", .id = "FItemID", .deleted = "FDeleted", .heading = "FUNDetail"};

void RefuseBelowItself(const RecordSave& save, Long parent) {
  while (parent != 0) {
    if (parent == save.id()) save.Refuse(refusal::kNoParent, "it would stand below itself.");
    parent = save.db()
                 .QueryValue<Long>("SELECT FParentID FROM t_Item WHERE FItemID = ?", parent)
                 .value_or(0);
  }
}

bool Moves(const RecordSave& save) { return save.Changes("FParentID"); }

Ref<Dictionary> ParentFor(const RecordSave& save, Long parent_id) {
  const auto refuse = [&](const std::string& reason) { save.Refuse(refusal::kNoParent, reason); };
  const Ref<Dictionary> parent = Items().Read(save.db(), parent_id);
  if (!parent || parent->Value("FItemClassID").As<Long>() != save.Number("FItemClassID")) {
    refuse("there is no item " + std::to_string(parent_id) + " of its class above it.");
  }
  if (parent->Value("FDeleted").As<Boolean>() && save.Number("FDeleted") == 0) {
    refuse("item " + Items().NameOf(*parent) + " above it is deleted.");
  }
  if (Moves(save)) {
    if (!save.is_new()) RefuseBelowItself(save, parent_id);
    if (IsUsedInLines(save.db(), parent_id)) {
      save.Refuse(refusal::kParentInUse,
                  "item " + Items().NameOf(*parent) + " above it has lines in vouchers.");
    }
  }
  return parent;
}

void PlaceInTree(RecordSave& save) {
  Dictionary& record = save.record();
  const Long parent_id = save.Number("FParentID");
  if (parent_id == 0) {
    record.Put("FLevel", Integer{1});
    record.Put("FFullNumber", record.Value("FNumber"));
    record.Put("FFullName", record.Value("FName"));
    return;
  }
  const Ref<Dictionary> parent = ParentFor(save, parent_id);
  const Long level = parent->Value("FLevel").As<Long>() + 1;
  if (level > kDeepestLevel) {
    save.Refuse(refusal::kBadValue,
                "items have at most " + std::to_string(kDeepestLevel) + " levels.");
  }
  record.Put("FLevel", static_cast<Integer>(level));
  record.Put("FFullNumber", parent->Value("FFullNumber").As<String>() + "." + save.Text("FNumber"));
  record.Put("FFullName", parent->Value("FFullName").As<String>() + "_" + save.Text("FName"));
}

// Levels and full names of the items below follow from those of the item itself.
void PlaceBelow(const RecordSave& save) {
  Database& db = save.db();
  db.Execute("WITH RECURSIVE below (FItemID, FLevel, FFullNumber, FFullName) AS ("
             " SELECT FItemID, FLevel, FFullNumber, FFullName FROM t_Item WHERE FItemID = ?"
             " UNION ALL SELECT i.FItemID, b.FLevel + 1, b.FFullNumber || '.' || i.FNumber,"
             " b.FFullName || '_' || i.FName FROM t_Item i JOIN below b ON i.FParentID = b.FItemID"
             " AND i.FParentID <> 0)"
             " UPDATE t_Item SET FLevel = below.FLevel, FFullNumber = below.FFullNumber,"
             " FFullName = below.FFullName FROM below WHERE below.FItemID = t_Item.FItemID",
             save.id());
  const auto deepest = db.QueryValue<Long>("SELECT MAX(FLevel) FROM t_Item WHERE FItemClassID = ?",
                                           save.Number("FItemClassID"));
  if (deepest > Long{kDeepestLevel}) {
    save.Refuse(refusal::kBadValue,
                "items have at most " + std::to_string(kDeepestLevel) + " levels.");
  }
}

// ---- Saving ----

void Check(RecordSave& save) {
  save.RequireKey();
  save.RequireText("FName");
  save.RequireReferences();
  if (!save.is_new() && save.Changes("FItemClassID")) {
    save.Refuse(refusal::kBadValue, "an item stays in its class.");
  }
  save.RequireUniqueKey();
  if (!save.is_new() && save.Number("FDeleted") != 0 &&
      kTree.HasBelow(save.db(), save.id(), false)) {
    save.Refuse(refusal::kHasChildren, "it has items below it.");
  }
  PlaceInTree(save);
  if (save.is_new()) save.record().Put("FDetail", save.Number("FUNDetail") == 0);
  TakeFields(save);
}

void Follow(RecordSave& save) {
  Database& db = save.db();
  if (!save.is_new() && (Moves(save) || save.Changes("FNumber") || save.Changes("FName"))) {
    PlaceBelow(save);
  }
  if (!save.is_new() && Moves(save)) {
    kTree.KeepDetailFlag(db, save.stored().Value("FParentID").As<Long>());
  }
  kTree.KeepDetailFlag(db, save.Number("FParentID"));
  if (!save.is_new() && save.Changes("FUNDetail")) kTree.KeepDetailFlag(db, save.id());
}

void Remove(RecordRemoval& removal) {
  Database& db = removal.db();
  if (kTree.HasBelow(db, removal.id(), true)) {
    removal.Refuse(refusal::kHasChildren, "it has items below it.");
  }
  if (IsUsedInLines(db, removal.id())) removal.Refuse(refusal::kInUse, "vouchers use it.");
  removal.Remove();
  kTree.KeepDetailFlag(db, removal.stored().Value("FParentID").As<Long>());
}

// ---- The component that knows no class ----

class ItemRecordInfo final : public RecordInfo {
  QD_BASE_MEMBERS(RecordInfo)

 public:
  using RecordInfo::RecordInfo;

  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, const Long& RecordID),
            "{A record} with the fields of its class, Nothing when there is none.")
  QD_METHOD(Ref<Dictionary>, GetDetailByNumber,
            (std::string_view PropsString, std::string_view RecordKey),
            "The same by its {key,} the first one where several classes have it.")
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const Long& ListOptions = {}, const String& Filter = {},
             const String& Sort = {}, const Long& ItemClassID = {}, const Variant& Page = Missing),
            "The {records} of all classes, or those of one with its fields; bit 1 of ListOptions "
            "includes those marked deleted. {page} BadFilter, BadSort, BadValue.")
  QD_INHERITED(ExistenceCheck)
};

Ref<Dictionary> ItemRecordInfo::GetDetail(std::string_view PropsString, const Long& RecordID) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return ReadItem(caller.db, RecordID);
}

Ref<Dictionary> ItemRecordInfo::GetDetailByNumber(std::string_view PropsString,
                                                  std::string_view RecordKey) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return ReadItem(caller.db, kind().IdWithKey(caller.db, RecordKey));
}

Ref<Recordset> ItemRecordInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                       const String& Filter, const String& Sort,
                                       const Long& ItemClassID, const Variant& Page) {
  const Caller caller = Enter(PropsString, kind().reading());
  const Transaction view(caller.db, Transaction::Kind::kRead);
  return ListItems(caller.db, {.item_class = ItemClassID,
                               .with_deleted = (ListOptions & kWithDeleted) != 0,
                               .filter = Filter,
                               .sort = Sort,
                               .page = PageIn(Page)});
}

// ---- The kind ----

std::vector<RecordColumn> Columns() {
  using enum ColumnType;
  using enum Keeper;
  std::vector<RecordColumn> columns = {
      {.column = {"FItemClassID", kLong}, .refers = {.kind = ItemClasses, .is_required = true}},
      {{"FParentID", kLong}},
      {{"FNumber", kText}},
      {{"FName", kText}},
      {{"FFullNumber", kText}, kDerived},
      {{"FFullName", kText}, kDerived},
      {{"FLevel", kInteger}, kDerived},
      {{"FDetail", kBoolean}, kDerived},
      {{"FUNDetail", kBoolean}},
      {{"FHelpCode", kText}},
      {{"FModel", kText}},
      {{"FChkUserID", kLong}, kServer},
      {{"FRemark", kText}},
      {{"FDeleted", kBoolean}},
      {{"UUID", kText}}};
  for (const Column& slot : ItemSlots()) columns.push_back({slot, kSecret});
  return columns;
}

}  // namespace

Ref<Dictionary> ReadItem(Database& db, Long id) {
  Ref<Dictionary> item = Items().Read(db, id);
  if (item) ShowFields(db, *item);
  return item;
}

const MasterData& Items() {
  static const MasterData kKind({
      .component = "QDSVGLItems.Item",
      .noun = "item",
      .nouns = "items",
      .list = {"items", "Lists the items of item classes",
               "FItemID FItemClassID FNumber FName FFullName"},
      .table = "t_Item",
      .id = "FItemID",
      .key = {.column = "FNumber", .ignores_case = true, .within = "FItemClassID"},
      .deleted = "FDeleted",
      .columns = Columns(),
      .order = "FItemClassID, FNumber",
      .is_further_key = IsFieldKey,
      .check = Check,
      .follow = Follow,
      .remove = Remove,
      .name_on_trail = NameFieldsOnTrail,
      .info = RecordClassOf<ItemRecordInfo>(),
      .errors = "Required, BadReference, NumberTaken, NoParent, ParentInUse, HasChildren, BadValue",
      .helps = {{"Delete", "Removes an item. NotFound, InUse, HasChildren."}},
      .components = ItemComponents(),
  });
  return kKind;
}

}  // namespace qdclgl::server
