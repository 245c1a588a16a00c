#include "frame/change_flag.h"

#include "frame/variant_kind.h"

namespace qdclgl {

namespace {

ChangeFlag& FlagIn(const Variant& child) {
  return static_cast<ChangeFlag&>(*child.ObjectPointer());
}

}  // namespace

Variant ChangeFlag::MakeKey(const Variant& Key) { return Variant("K" + CStr(Key)); }

Collection& ChangeFlag::Children() {
  if (!m_Children) m_Children = Make<Collection>();
  return *m_Children;
}

void ChangeFlag::Insert(Long Index) {
  if (Children().Count() < Index) return;
  Children().Add(Variant(Make<ChangeFlag>()), MakeKey(Index), Index);
}

Ref<Enumerator> ChangeFlag::NewEnum() { return Children().NewEnum(); }

void ChangeFlag::Remove(const Variant& Key) {
  try {
    const bool by_position = IsVariantKind(Key, variant_kind::kNumber);
    Children().Remove(by_position ? Variant(CLng(Key)) : MakeKey(Key));
  } catch (const Error&) {
    // A child that was never asked for has no flag to remove.
  }
  m_Modified = true;
}

void ChangeFlag::Reset() {
  m_Modified = false;
  for (Long i = 1; m_Children && i <= m_Children->Count(); ++i) FlagIn(m_Children->Item(i)).Reset();
}

Ref<ChangeFlag> ChangeFlag::Item(const Variant& Key) {
  if (IsVariantKind(Key, variant_kind::kNumber)) {
    try {
      const Long position = CLng(Key);
      while (Children().Count() < position) Children().Add(Variant(Make<ChangeFlag>()));
      return Children().Item(position).As<ChangeFlag>();
    } catch (const Error&) {
      return Nothing;  // no child stands below position 1
    }
  }
  const Variant key = MakeKey(Key);
  try {
    Children().Add(Variant(Make<ChangeFlag>()), key);
  } catch (const Error&) {
    // The child is there already.
  }
  return Children().Item(key).As<ChangeFlag>();
}

Boolean ChangeFlag::Modified() const {
  if (m_Modified) return true;
  for (Long i = 1; m_Children && i <= m_Children->Count(); ++i) {
    if (FlagIn(m_Children->Item(i)).Modified()) return true;
  }
  return false;
}

}  // namespace qdclgl
