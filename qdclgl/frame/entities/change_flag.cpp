#include "qdclgl/frame/entities/change_flag.h"

#include <algorithm>

#include "qdclgl/frame/objects/position_walk.h"
#include "qdclgl/frame/objects/variant_kind.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl {

std::size_t ChangeFlag::Children::Find(const String& key) const {
  const auto found =
      std::find_if(keys.begin(), keys.end(), [&](const auto& entry) { return entry.first == key; });
  if (found == keys.end()) return flags.size();
  const auto flag = std::find_if(flags.begin(), flags.end(),
                                 [&](const auto& child) { return child.get() == found->second; });
  return static_cast<std::size_t>(flag - flags.begin());
}

void ChangeFlag::Children::Remove(std::size_t position) {
  std::erase_if(keys, [&](const auto& entry) { return entry.second == flags[position].get(); });
  flags.erase(flags.begin() + static_cast<std::ptrdiff_t>(position));
}

String ChangeFlag::MakeKey(const Variant& Key) { return ToUpper("K" + CStr(Key)); }

ChangeFlag::Children& ChangeFlag::ChildrenToFill() {
  if (!m_Children) m_Children = std::make_unique<Children>();
  return *m_Children;
}

void ChangeFlag::Insert(Long Index) {
  if (static_cast<Long>(ChildCount()) < Index) return;
  if (Index < 1) RaiseError(error_number::kSubscriptOutOfRange);
  Children& children = *m_Children;
  const String key = MakeKey(Index);
  if (children.Find(key) < children.flags.size()) RaiseError(error_number::kDuplicateKey);
  auto flag = Make<ChangeFlag>();
  children.keys.emplace_back(key, flag.get());
  children.flags.insert(children.flags.begin() + (Index - 1), std::move(flag));
}

Ref<Enumerator> ChangeFlag::NewEnum() {
  const Ref<ChangeFlag> self(this);
  return EnumerateByPosition(
      [self] { return self->ChildCount(); },
      [self](std::size_t position) { return self->m_Children->flags[position]; });
}

void ChangeFlag::Remove(const Variant& Key) {
  m_Modified = true;
  try {
    const std::size_t count = ChildCount();
    std::size_t place = count;
    if (!IsVariantKind(Key, variant_kind::kNumber)) {
      if (m_Children) place = m_Children->Find(MakeKey(Key));
    } else if (const Long position = CLng(Key); position >= 1) {
      place = static_cast<std::size_t>(position - 1);
    }
    if (place < count) m_Children->Remove(place);
  } catch (const Error&) {
    // A key that can't be one has no child.
  }
}

void ChangeFlag::Reset() {
  m_Modified = false;
  if (!m_Children) return;
  for (const Ref<ChangeFlag>& child : m_Children->flags) child->Reset();
}

void ChangeFlag::AddUpTo(std::size_t place) {
  std::vector<Ref<ChangeFlag>>& flags = ChildrenToFill().flags;
  while (flags.size() <= place) flags.push_back(Make<ChangeFlag>());
}

Ref<ChangeFlag> ChangeFlag::Item(const Variant& Key) {
  if (IsVariantKind(Key, variant_kind::kNumber)) {
    try {
      return At(CLng(Key));
    } catch (const Error&) {
      return Nothing;  // a number that no position can be
    }
  }
  const String key = MakeKey(Key);
  Children& children = ChildrenToFill();
  const std::size_t place = children.Find(key);
  if (place < children.flags.size()) return children.flags[place];
  auto flag = Make<ChangeFlag>();
  children.keys.emplace_back(key, flag.get());
  children.flags.push_back(flag);
  return flag;
}

Boolean ChangeFlag::Modified() const {
  if (m_Modified) return true;
  if (!m_Children) return false;
  return std::any_of(m_Children->flags.begin(), m_Children->flags.end(),
                     [](const Ref<ChangeFlag>& child) { return child->Modified(); });
}

}  // namespace qdclgl
