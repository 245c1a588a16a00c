#include "qdclgl/automation/foreign.h"

#include "qdclgl/automation/crossing.h"
#include "qdclgl/automation/errors.h"
#include "qdclgl/automation/foreign_containers.h"
#include "qdclgl/automation/foreign_recordset.h"

namespace qdclgl::automation {

Ref<Object> TakeIn(IUnknown* object, Taking taking) {
  if (object == nullptr) return nullptr;
  if (Ref<Object> own = Unwrap(object)) return own;
  auto foreign = Make<ForeignObject>(object);
  if (foreign->Offers({L"MoveNext", L"MoveFirst", L"Fields", L"EOF"})) {
    return Make<ForeignRecordset>(foreign);
  }
  if (foreign->Offers({L"Lookup", L"Name", L"Value", L"Count"})) {
    return Taken<Dictionary>(foreign, taking);
  }
  if (foreign->Offers({L"LowerBound", L"UpperBound", L"Append", L"Item"})) {
    return Taken<Vector>(foreign, taking);
  }
  return foreign;
}

IUnknown* ForeignBehind(Object* object) {
  const auto* foreign = dynamic_cast<const Foreign*>(object);
  return foreign != nullptr ? foreign->object() : nullptr;
}

Ref<Object> CreateForeign(std::string_view prog_id) {
  CLSID class_id;
  if (FAILED(CLSIDFromProgID(ToWide(prog_id).c_str(), &class_id))) return nullptr;
  Com<IUnknown> object;
  const HRESULT code = CallOut([&] {
    return CoCreateInstance(class_id, nullptr, CLSCTX_SERVER, IID_IUnknown, object.PutVoid());
  });
  if (code == REGDB_E_CLASSNOTREG) return nullptr;
  if (FAILED(code)) {
    object.Detach();  // whatever was left there, it is no reference
    RaiseFailure(code);
  }
  return TakeIn(object.get(), Taking::kCopy);
}

}  // namespace qdclgl::automation
