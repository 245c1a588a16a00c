// A plain keyed list: elements by position from 1, some of them also under a text key. Keys ignore
// case; the second use of one is error 457.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl {

class Collection final : public Object {
  QD_MEMBERS(Collection, Object, Creatable,
             "A list whose elements are reached by position or by key.")

 public:
  QD_METHOD(void, Add,
            (Variant Item, const Variant& Key = Missing, const Variant& Before = Missing),
            "Adds an element at the end, or before the position or key given. Error 457 for a key "
            "in use.")
  QD_METHOD(void, Remove, (const Variant& Index),
            "Removes the element at a position (error 9 outside) or under a key (error 5 when "
            "there is none).")
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "The elements in order.")
  QD_PROPERTY(Get, Long, Count, "The number of elements.")
  QD_INDEXED(Get, Variant, Item, (const Variant& Index),
             "The element at a position (error 9 outside) or under a key (error 5 when there is "
             "none).",
             DefaultMember)

 private:
  struct Element {
    Variant value;
    std::string key;  // folded; empty without a key
  };

  std::size_t Locate(const Variant& index) const;

  // Elements stay where they are in memory, so that the keys can point at them.
  std::vector<std::unique_ptr<Element>> elements_;
  std::unordered_map<std::string, Element*> keys_;
};

}  // namespace qdclgl
