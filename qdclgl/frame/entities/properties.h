// The bag through which an entity reads and writes its row, and what callers reach of it.
#pragma once

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/entities/change_flag.h"
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

// A Dictionary with the rules of reading and writing, and the flag that tells of writes.
class Properties final : public Object {
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

  // Binds the bag to `Dict` itself (`Share`), to a deep copy of it, or to a new Dictionary when it
  // is Nothing; and to `Flag`, or a new flag when it is Nothing. Sets the Dictionary's tracking.
  void Attach(const Ref<qdclgl::Dictionary>& Dict, Boolean Share, const Ref<ChangeFlag>& Flag,
              Long TrackState);

  // Without a default: an object as it is, everything else as text, "" for Null, Empty and a
  // missing key. With one: the stored value with its own type, or the default where the key is
  // missing or its text is empty.
  Variant GetValue(const RowKey& key) const;
  Variant GetValue(const RowKey& key, const Variant& Default) const;

  // Stores a value. With a default, a value equal to it removes the key instead. The change flag is
  // set in any case.
  void SetValue(const RowKey& key, Variant value) {
    m_Dict->Put(key, std::move(value));
    m_ChangeFlag->Modified(true);
  }
  void SetValue(const RowKey& key, Variant value, const Variant& Default);
  // Removes the key where there is one, as the write of a default does.
  void ClearValue(const RowKey& key);
  // Stores an object; Nothing removes the key.
  void SetObject(const RowKey& key, const Ref<Object>& value);

  const Ref<qdclgl::ChangeFlag>& ChangeFlag() const { return m_ChangeFlag; }
  // The Dictionary's own modified state, not the change flag.
  Boolean Modified() const { return m_Dict->Modified(); }
  // The stored value in place, null when the key is absent.
  const Variant* Find(const RowKey& key) const { return m_Dict->Find(key); }

  EnumeratorRange<Property>::Iterator begin();
  std::default_sentinel_t end() const { return {}; }

 private:
  Ref<qdclgl::Dictionary> m_Dict;
  Ref<qdclgl::ChangeFlag> m_ChangeFlag;
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
Integer NextPosition(Integer position);

}  // namespace qdclgl
