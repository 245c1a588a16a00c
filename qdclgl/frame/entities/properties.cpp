#include "qdclgl/frame/entities/properties.h"

#include <limits>

#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/variant_kind.h"

namespace qdclgl {

QD_DEFINE_MEMBERS(Property)
QD_DEFINE_MEMBERS(Properties)

// ---- Property ----

void Property::Init(const String& Name, const Ref<Properties>& Parent) {
  m_Name = Name;
  m_Parent = Parent;
}

String Property::Name() const { return m_Name; }

Variant Property::Value() const { return m_Parent->GetValue(m_Name); }

void Property::Value(Variant value) { m_Parent->SetValue(m_Name, std::move(value)); }

// ---- Properties ----

Boolean Properties::Lookup(std::string_view PropName) { return m_Dict->Contains(PropName); }

Ref<Enumerator> Properties::NewEnum() {
  auto walker = Make<WalkProperty>();
  walker->Init(Ref<Properties>(this));
  return EnumFactory().CreateEnum(walker);
}

Long Properties::Count() const { return m_Dict->Count(); }

Ref<Dictionary> Properties::Dictionary() const { return m_Dict; }

Ref<Property> Properties::Item(Variant index) const {
  String key;
  if (IsVariantKind(index, variant_kind::kNumber)) {
    const Long position = CLng(index);
    if (position < 1 || position > Count()) RaiseError(error_number::kInvalidCall);
    key = m_Dict->Name(position);
  } else if (IsVariantKind(index, variant_kind::kText)) {
    key = index.TextView();
  } else {
    RaiseError(error_number::kInvalidCall);
  }
  auto property = Make<Property>();
  property->Init(key, Ref<Properties>(const_cast<Properties*>(this)));
  return property;
}

void Properties::Attach(const Ref<qdclgl::Dictionary>& Dict, Boolean Share,
                        const Ref<qdclgl::ChangeFlag>& Flag, Long TrackState) {
  Ref<qdclgl::Dictionary> bound = Dict;
  if (!Dict) {
    bound = Make<qdclgl::Dictionary>();
  } else if (!Share) {
    bound = CloneDictionary(Dict);
  }
  m_Dict = std::move(bound);
  m_ChangeFlag = Flag ? Flag : Make<qdclgl::ChangeFlag>();
  m_Dict->SetTrackState(TrackState);
}

Variant Properties::GetValue(const RowKey& key) const {
  const Variant* value = m_Dict->Find(key);
  if (value == nullptr) return Variant(std::string_view());
  if (value->IsObject() || value->IsString()) return *value;
  return Variant(ConcatenatedText(*value));
}

Variant Properties::GetValue(const RowKey& key, const Variant& Default) const {
  const Variant* value = m_Dict->Find(key);
  if (value == nullptr) return Default;
  return value->IsObject() || !HasEmptyText(*value) ? *value : Default;
}

void Properties::SetValue(const RowKey& key, Variant value, const Variant& Default) {
  if (Equals(value, Default)) {
    ClearValue(key);
  } else {
    SetValue(key, std::move(value));
  }
}

void Properties::ClearValue(const RowKey& key) {
  m_Dict->Erase(key);
  m_ChangeFlag->Modified(true);
}

void Properties::SetObject(const RowKey& key, const Ref<Object>& value) {
  if (value) {
    SetValue(key, Variant(value));
  } else {
    ClearValue(key);
  }
}

EnumeratorRange<Property>::Iterator Properties::begin() {
  return EnumeratorRange<Property>::Iterator(NewEnum());
}

// ---- WalkProperty ----

Integer NextPosition(Integer position) {
  if (position == std::numeric_limits<Integer>::max()) RaiseError(error_number::kOverflow);
  return static_cast<Integer>(position + 1);
}

void WalkProperty::Init(const Ref<Properties>& Parent) {
  m_Parent = Parent;
  m_Pos = 0;
}

void WalkProperty::Next(Variant& Item, Boolean& Done) {
  if (m_Pos >= m_Parent->Count()) return;
  m_Pos = NextPosition(m_Pos);
  auto property = Make<Property>();
  property->Init(m_Parent->Dictionary()->Name(m_Pos), m_Parent);
  Item = Variant(property);
  Done = true;
}

void WalkProperty::Skip(Boolean& Done) {
  if (m_Pos >= m_Parent->Count()) return;
  m_Pos = NextPosition(m_Pos);
  Done = true;
}

}  // namespace qdclgl
