#include "qdclgl/masterdata/item_class.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/frame/values/value_rules.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(ItemClass)
QD_DEFINE_MEMBERS(ItemClassSet)

namespace {

constexpr RowKey kName("FName");
constexpr RowKey kNewName("FNewName");
constexpr RowKey kNumber("FNumber");
constexpr RowKey kPropDesc("_PropDesc");
constexpr RowOptions kPlain;

constexpr Long kRefused = -1;  // what the server answers in place of the id of a new class

}  // namespace

// ---- ItemClass ----

const EntityProtocol& ItemClass::Protocol() const {
  static constexpr EntityProtocol kProtocol = {
      .info_component = "QDSVGLItemClass.ItemClassInfo",
      .update_component = "QDSVGLItemClass.ItemClassUpdate",
      .id_key = "FItemClassID",
  };
  return kProtocol;
}

void ItemClass::CancelChanges() { Construct(m_DictOrig, m_Xa); }

void ItemClass::Refresh() {
  if (m_ID == 0) return;
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  Construct(FetchRow(*info), m_Xa);
}

Long ItemClass::SaveChanges() {
  if (!HasChanges()) return 0;
  const CallingOut out(this);
  const bool is_new = m_ID == 0;
  WriteRow();
  if (is_new && m_ID == kRefused) return kRefused;
  Refresh();
  return 0;
}

Ref<Recordset> ItemClass::GetF7ShownFields() {
  const CallingOut out(this);
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  return info->Call("GetShownF7Fields", GetPropsString(), ByRef(m_ID)).As<Recordset>();
}

Ref<Vector> ItemClass::Descriptions() const {
  Ref<Vector> list = ReadField<Ref<Vector>>(kPropDesc, kPlain);
  if (!list) {
    list = Make<Vector>();
    list->LowerBound(1);
    Bag().SetObject(kPropDesc, list);
    return list;
  }
  for (Long i = list->LowerBound(); i <= list->UpperBound(); ++i) {
    const Ref<Dictionary> row = list->Item(i).As<Dictionary>();
    if (!row) continue;
    row->Put(kNewName, row->Value(kName.text()));
    row->ResetModified();
  }
  return list;
}

Ref<CustomPropertySet> ItemClass::CustomProperties() const {
  const CallingOut out(this);
  const Ref<Dictionary> row = Bag().Dictionary();
  if (m_DescribedRow == row) return m_CustomProperties;
  const Ref<ChangeFlag> flag = Bag().ChangeFlag();
  auto set = Make<CustomPropertySet>();
  set->Init(Descriptions(), flag->Item(kPropDesc.text()));
  m_CustomProperties = set;
  m_DescribedRow = row;
  return set;
}

Boolean ItemClass::IsCustom() const {
  return (m_ID >= 1000 && m_ID <= 1999) || (m_ID >= 3000 && m_ID <= 9999);
}

Long ItemClass::ItemClassID() const { return m_ID; }

void ItemClass::ItemClassID(Long value) { m_ID = value; }

Boolean ItemClass::Modified() const { return Bag().ChangeFlag()->Modified(); }

String ItemClass::Name() const {
  return ReadField<String>(RowKey(LocalizedFieldName(String(kName.text()))), kPlain);
}

void ItemClass::Name(String value) { Bag().SetValue(kName, Variant(std::move(value))); }

String ItemClass::Number() const { return ReadField<String>(kNumber, kPlain); }

void ItemClass::Number(String value) { Bag().SetValue(kNumber, Variant(ToUpper(value))); }

// ---- ItemClassSet ----

const SetProtocol& ItemClassSet::Protocol() const {
  static constexpr SetProtocol kProtocol = {
      .info_component = "QDSVGLItemClass.ItemClassInfo",
      .update_component = "QDSVGLItemClass.ItemClassUpdate",
      .text_key_method = "GetDetailByNumber",
  };
  return kProtocol;
}

Ref<Recordset> ItemClassSet::FetchSigned(Object& info, Query& query, Long sign) {
  return info
      .Call("GetList", GetPropsString(), ByRef(query.list_options), ByRef(query.filter),
            ByRef(query.sort), Missing, ByRef(sign))
      .As<Recordset>();
}

Ref<Recordset> ItemClassSet::FetchList(Object& info, Query& query) const {
  return FetchSigned(info, query, 0);
}

void ItemClassSet::Refresh(Long lngSign) {
  FetchBy([this, lngSign](Object& info) { return FetchSigned(info, ListQuery(), lngSign); });
}

Ref<ItemClass> ItemClassSet::CreateNew(Variant Number, Variant Name) {
  Ref<ItemClass> item_class = MakeEntity(Nothing);
  if (!Number.IsMissing()) item_class->Number(CStr(Number));
  if (!Name.IsMissing()) item_class->Name(CStr(Name));
  return item_class;
}

Long ItemClassSet::ExistenceCheck(Variant ItemClassID, Variant Number) {
  return CheckExistence({ByRef(ItemClassID), Named("Number", ByRef(Number))});
}

void ItemClassSet::Remove(Variant Key) {
  const CallingOut out(this);
  const Long id = IdOf(Key, [&] { return ExistenceCheck(Missing, Key); });
  DeleteRow(id, GetMachineName(), GetIPAddress());
}

Ref<ItemClass> ItemClassSet::Item(Variant Key, String sFilter, Boolean bBatchUpdate) const {
  const CallingOut out(this);
  if (!IsVariantKind(Key, variant_kind::kNumber)) return MakeEntity(FetchRow(std::move(Key)));
  const Ref<Object> info = ServerGateway().CreateInstance(Protocol().info_component);
  return MakeEntity(
      info->Call("GetDetail", GetPropsString(), CLng(Key), ByRef(sFilter), ByRef(bBatchUpdate))
          .As<Dictionary>());
}

}  // namespace qdclgl
