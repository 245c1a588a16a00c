#include "qdclgl/frame/entities/properties.h"

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

Boolean Properties::Lookup(std::string_view PropName) { return Find(PropName) != nullptr; }

Ref<Enumerator> Properties::NewEnum() {
  auto walker = Make<WalkProperty>();
  walker->Init(Ref<Properties>(this));
  return EnumFactory().CreateEnum(walker);
}

Long Properties::Count() const { return Bag::Dictionary()->Count(); }

Ref<Dictionary> Properties::Dictionary() const { return Bag::Dictionary(); }

Ref<Property> Properties::Item(Variant index) const {
  String key;
  if (IsVariantKind(index, variant_kind::kNumber)) {
    const Long position = CLng(index);
    if (position < 1 || position > Count()) RaiseError(error_number::kInvalidCall);
    key = Bag::Dictionary()->Name(position);
  } else if (IsVariantKind(index, variant_kind::kText)) {
    key = index.TextView();
  } else {
    RaiseError(error_number::kInvalidCall);
  }
  auto property = Make<Property>();
  property->Init(key, Ref<Properties>(const_cast<Properties*>(this)));
  return property;
}

EnumeratorRange<Property>::Iterator Properties::begin() {
  return EnumeratorRange<Property>::Iterator(NewEnum());
}

// ---- WalkProperty ----

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
