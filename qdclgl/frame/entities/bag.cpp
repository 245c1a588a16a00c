#include "qdclgl/frame/entities/bag.h"

#include "qdclgl/frame/objects/variant_kind.h"

namespace qdclgl {

Variant Bag::GetValue(const RowKey& key) const {
  const Variant* value = m_Dict->Find(key);
  if (value == nullptr) return Variant(std::string_view());
  if (value->IsObject() || value->IsString()) return *value;
  return Variant(ConcatenatedText(*value));
}

Variant Bag::GetValue(const RowKey& key, const Variant& Default) const {
  const Variant* value = m_Dict->Find(key);
  if (value == nullptr) return Default;
  return value->IsObject() || !HasEmptyText(*value) ? *value : Default;
}

void Bag::SetValue(const RowKey& key, Variant value, const Variant& Default) {
  if (Equals(value, Default)) {
    ClearValue(key);
  } else {
    SetValue(key, std::move(value));
  }
}

void Bag::ClearValue(const RowKey& key) {
  m_ChangeFlag->Modified(true);
  m_Dict->Erase(key);  // last, as in SetValue
}

void Bag::SetObject(const RowKey& key, const Ref<Object>& value) {
  if (value) {
    SetValue(key, Variant(value));
  } else {
    ClearValue(key);
  }
}

}  // namespace qdclgl
