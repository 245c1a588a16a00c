#include "qdclgl/masterdata/sub_mes_type.h"

#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(SubMesType)
QD_DEFINE_MEMBERS(SubMesTypeSet)

namespace {

constexpr const char* kInfo = "QDSVGLItem.ItemInfo";
constexpr const char* kUpdate = "QDSVGLItem.ItemUpdate";
constexpr const char* kGetDetail = "GetSubMesTypeDetail";

bool IsPreset(Long id) { return (id > 20 && id < 500) || (id > 600 && id < 1000); }

}  // namespace

// ---- SubMesType ----

const NamedRowProtocol& SubMesType::Protocol() const {
  static constexpr NamedRowProtocol kProtocol = {
      .info_component = kInfo,
      .update_component = kUpdate,
      .detail_method = kGetDetail,
      .create_method = "CreateSubMesType",
      .rename_method = "RenameSubMesType",
  };
  return kProtocol;
}

void SubMesType::Construct(const Ref<Object>& xa, Long TypeID, String Name) {
  const CallingOut out(this);
  Reset(xa, TypeID, std::move(Name));
}

void SubMesType::TakeRow(const Ref<Dictionary>& row, const Ref<Object>& xa) {
  Construct(xa, row->Value("FTypeID").As<Long>(), row->Value("FName").As<String>());
}

void SubMesType::TakeDetail(const Dictionary& row) {
  Construct(m_Xa, m_ID, row.Value("FName").As<String>());
}

void SubMesType::Refresh() { NamedRow::Refresh(); }
void SubMesType::SaveChanges() { NamedRow::SaveChanges(); }

Long SubMesType::TypeID() const { return m_ID; }

// ---- SubMesTypeSet ----

const char* SubMesTypeSet::InfoComponent() const { return kInfo; }

Ref<Recordset> SubMesTypeSet::AskForList(Object& info) const {
  return info.Call("GetSubMesTypeList", GetPropsString(), Missing, ByRef(m_Filter)).As<Recordset>();
}

void SubMesTypeSet::Refresh() { Fetch(); }

String SubMesTypeSet::Filter() const { return m_Filter; }
void SubMesTypeSet::Filter(String value) { m_Filter = std::move(value); }

Ref<SubMesType> SubMesTypeSet::CreateNew() {
  const auto type = Make<SubMesType>();
  type->Construct(m_Xa);
  return type;
}

Long SubMesTypeSet::ExistenceCheck(Variant ClassID, Variant Name) {
  return IdOfRow("FTypeID", ClassID, Name);
}

Ref<SubMesType> SubMesTypeSet::Item(Variant Key) const {
  const CallingOut out(this);
  return MakeEntity(DetailOf(kGetDetail, std::move(Key)));
}

void SubMesTypeSet::Remove(Variant Key) {
  const Long id = IdOf(Key, [] { return Long{0}; });
  if (IsPreset(id)) throw Error(error_number::kInvalidCall, "", "系统预设数据不能删除。");
  DeleteRow(kUpdate, "DeleteSubMesType", id);
}

}  // namespace qdclgl
