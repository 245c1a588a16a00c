// What callers reach of the bag of an object: its keys and their values.
#pragma once

#include <limits>

#include "qdclgl/frame/entities/bag.h"
#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl {

class Properties;

// One key of a bag: a name and a reference. Reading or writing it goes to the bag.
class Property final : public Object {
  QD_MEMBERS(Property, Object, Internal, "One key of a bag.")

 public:
  QD_PROPERTY(Get, String, Name, "The key.")
  QD_PROPERTY(GetLetSet, Variant, Value,
              "The value of the key: an object as it is, anything else as text. A write stores the "
              "value and marks the bag's owner modified.",
              DefaultMember)

  void Init(const String& Name, const Ref<Properties>& Parent);

 private:
  String m_Name;
  Ref<Properties> m_Parent;
};

// A bag as an object.
class Properties final : public Object, public Bag {
  QD_MEMBERS(Properties, Object, Internal, "The keys and values of one object.")

 public:
  QD_METHOD(Boolean, Lookup, (std::string_view PropName), "True when the key exists.")
  QD_METHOD(Ref<Enumerator>, NewEnum, (), "The keys in order, as Property objects.")
  QD_PROPERTY(Get, Long, Count, "The number of keys.")
  QD_PROPERTY(Get, Ref<qdclgl::Dictionary>, Dictionary,
              "The live Dictionary. What is written into it reaches the server on save, and does "
              "not set the change flag.")
  QD_INDEXED(Get, Ref<Property>, Item, (Variant index),
             "A key by position from 1 or by name; a name need not exist. Error 5 for a position "
             "outside and for a key that is neither number nor text.",
             DefaultMember)

  // ---- For the library's own classes ----

  Properties() = default;
  // Shares the row and the flag of `bag`.
  explicit Properties(const Bag& bag) : Bag(bag) {}
  void Share(const Bag& bag) { Bag::operator=(bag); }

  EnumeratorRange<Property>::Iterator begin();
  std::default_sentinel_t end() const { return {}; }
};

// Enumerates a bag. The position has 16 bits: error 6 behind the 32,767th key.
class WalkProperty final : public IWalkVariant {
 public:
  std::string_view ClassName() const override { return "WalkProperty"; }

  void Init(const Ref<Properties>& Parent);
  void Next(Variant& Item, Boolean& Done) override;
  void Skip(Boolean& Done) override;
  void Reset() override { m_Pos = 0; }

 private:
  Ref<Properties> m_Parent;
  Integer m_Pos = 0;
};

// `position` + 1 in 16 bits. Error 6 at the end of their range.
inline Integer NextPosition(Integer position) {
  if (position == std::numeric_limits<Integer>::max()) RaiseError(error_number::kOverflow);
  return static_cast<Integer>(position + 1);
}

}  // namespace qdclgl
