#include "qdclgl/masterdata/item.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/platform/platform.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Item)
QD_DEFINE_MEMBERS(ItemSet)

namespace {

constexpr RowKey kItemClassID("FItemClassID");
constexpr RowKey kItemID("FItemID");
constexpr RowKey kName("FName");
constexpr RowKey kNumber("FNumber");
constexpr RowKey kParentID("FParentID");
constexpr RowKey kUNDetail("FUNDetail");
constexpr RowKey kUUID("UUID");
constexpr RowOptions kPlain;

constexpr std::size_t kLongestUUID = 38;

}  // namespace

// ---- Item ----

const EntityProtocol& Item::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLItem.ItemInfo",
      .update_component = "QDSVGLItem.ItemUpdate",
      .id_key = kItemID.text(),
      .construct_track_state = 1,
  };
  return kProtocol;
}

void Item::TakeIds(const Dictionary& row) {
  Entity::TakeIds(row);
  m_ItemClassID = row.Value(kItemClassID.text()).As<Long>();
}

void Item::Refresh() {
  if (m_ID == 0) return;
  const CallingOut out(this);
  try {
    Entity::Refresh();
  } catch (const Error& error) {
    CurrentPlatform().ShowMessage(error.description());
  }
}

void Item::SaveChanges() {
  if (!HasChanges()) return;
  const CallingOut out(this);
  WriteRow();
  Refresh();
}

Long Item::CreateRow(Object& update, const Ref<Dictionary>& row) {
  return update.Call("Create", GetPropsString(), row->Value(kItemClassID.text()), row).As<Long>();
}

Boolean Item::UpdateDefineField() {
  const CallingOut out(this);
  const Ref<Object> update = ServerGateway().CreateInstance(Protocol().update_component);
  const Boolean done = update
                           ->Call("UpdateDefineField", GetPropsString(), ByRef(m_ItemClassID),
                                  ByRef(m_DefinedFields))
                           .As<Boolean>();
  Refresh();
  return done;
}

void Item::UNDetail(Boolean value) {
  static constexpr RowOptions kClearFalse(row_options::Clear(false));
  WriteField(kUNDetail, value, kClearFalse);
}

void Item::DictDeifne(Ref<Dictionary> value) { std::swap(m_DefinedFields, value); }

Long Item::ItemClassID() const { return m_ItemClassID; }

Long Item::ItemID() const { return m_ID; }

String Item::Number() const { return ReadField<String>(kNumber, kPlain); }

void Item::Number(String value) { Bag().SetValue(kNumber, Variant(ToUpper(value))); }

String Item::UUID() const { return ReadField<String>(kUUID, kPlain); }

void Item::UUID(String value) {
  if (Utf16Length(value) > kLongestUUID) {
    throw Error(error_number::kInvalidCall, "QDCLGL.Item.UUID", "全球未已识别符号格式不正确。");
  }
  Bag().SetValue(kUUID, Variant(std::move(value)));
}

// ---- ItemSet ----

const SetProtocol& ItemSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLItem.ItemInfo",
      .update_component = "QDSVGLItem.ItemUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

Long ItemSet::ItemClassID() const { return m_ItemClassID; }

void ItemSet::ItemClassID(Long value) { m_ItemClassID = value; }

Ref<Object> ItemSet::Parameters() const { return m_Parameters; }

void ItemSet::Parameters(Ref<Object> value) { std::swap(m_Parameters, value); }

Boolean ItemSet::IgnoreRight() const { return m_IgnoreRight; }

void ItemSet::IgnoreRight(Boolean value) { m_IgnoreRight = value; }

Ref<Recordset> ItemSet::RecordSet() const {
  const Ref self(this);
  if (!EntityListBase::RecordSet()) Fetch();
  return EntityListBase::RecordSet();
}

void ItemSet::RecordSet(Ref<Recordset> value) { EntityListBase::RecordSet(std::move(value)); }

Ref<Recordset> ItemSet::FetchList(Object& info, Query& query) const {
  return info
      .Call("GetList", GetPropsString(), ByRef(m_ItemClassID), ByRef(query.list_options),
            ByRef(query.filter), ByRef(query.sort), ByRef(m_Parameters), ByRef(m_IgnoreRight))
      .As<Recordset>();
}

Ref<Object> ItemSet::CreateNew(Long ItemClassID, Long ParentID, Variant Number, Variant Name) {
  if (ItemClassID == 0) RaiseError(error_number::kNoClassOrType);
  const CallingOut out(this);
  auto row = Make<Dictionary>();
  row->Put(kItemClassID, Variant(ItemClassID));
  row->Put(kParentID, Variant(ParentID));
  if (!Number.IsMissing()) row->Put(kNumber, Variant(CStr(Number)));
  if (!Name.IsMissing()) row->Put(kName, Variant(CStr(Name)));
  return MakeEntity(row);
}

Long ItemSet::ExistenceCheck(Variant ItemID, Long ItemClassID, Variant Number) {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  if (!ItemID.IsMissing()) {
    return info->Call("ExistenceCheck", GetPropsString(), ByRef(ItemID)).As<Long>();
  }
  if (Number.IsMissing()) return 0;
  if (ItemClassID == 0) ItemClassID = m_ItemClassID;
  return info
      ->Call("ExistenceCheck", GetPropsString(), Named("ItemClassID", ByRef(ItemClassID)),
             Named("Number", ByRef(Number)))
      .As<Long>();
}

Ref<Item> ItemSet::ItemOf(const Ref<Recordset>& list, Boolean no_check) const {
  if (list->Eof()) RaiseError(error_number::kInvalidCall);
  const Variant id = list->FieldValue(list->FieldPosition(kItemID.text()));
  return Read(id.As<Long>(), 0, {}, no_check, {});
}

Ref<Object> ItemSet::GetCurrent(Boolean blNoCheck) {
  const CallingOut out(this);
  return ItemOf(List(), blNoCheck);
}

Ref<Item> ItemSet::GetNext() {
  const CallingOut out(this);
  const Ref<Recordset> list = List();  // the one that is read is the one that moves on
  Ref<qdclgl::Item> item = ItemOf(list, false);
  list->MoveNext();
  return item;
}

void ItemSet::Remove(Long ItemID) {
  CallUpdate("Delete", ItemID, GetMachineName(), GetIPAddress());
}

Ref<Object> ItemSet::Item(Long ItemID, Long ClassID, String Number, Boolean blNoCheck,
                          String strFilter) const {
  return Read(ItemID, ClassID, std::move(Number), blNoCheck, std::move(strFilter));
}

Ref<Item> ItemSet::Read(Long id, Long item_class, String number, Boolean no_check,
                        String filter) const {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  if (id != 0) {
    return MakeEntity(
        info->Call("GetDetail", GetPropsString(), ByRef(id), ByRef(no_check), ByRef(filter))
            .As<Dictionary>());
  }
  if (item_class == 0) item_class = m_ItemClassID;
  if (item_class == 0) RaiseError(error_number::kNoClassOrType);
  if (number.empty()) RaiseError(error_number::kInvalidCall);
  return MakeEntity(info->Call("GetDetailByNumber", GetPropsString(), ByRef(item_class),
                               ByRef(number), ByRef(filter))
                        .As<Dictionary>());
}

}  // namespace qdclgl
