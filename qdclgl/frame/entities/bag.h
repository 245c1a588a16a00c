// The bag through which an object reads and writes its row.
#pragma once

#include "qdclgl/frame/containers/deep_copy.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/entities/change_flag.h"

namespace qdclgl {

// A Dictionary with the rules of reading and writing, and the flag that tells of writes. A copy of
// a bag shares both. A bag that was never attached has neither, and using it is error 91.
class Bag {
 public:
  // Binds the bag to `Dict` itself (`Share`), to a deep copy of it, or to a new Dictionary when it
  // is Nothing; and to `Flag`, or a new flag when it is Nothing. Sets the Dictionary's tracking. A
  // copy that fails leaves the bag as it was.
  void Attach(Ref<qdclgl::Dictionary> Dict, Boolean Share, Ref<qdclgl::ChangeFlag> Flag,
              Long TrackState) {
    if (!Dict) {
      Dict = Make<qdclgl::Dictionary>();
    } else if (!Share) {
      Dict = CloneDictionary(Dict);
    }
    if (!Flag) Flag = Make<qdclgl::ChangeFlag>();
    Dict->SetTrackState(TrackState);
    // The former row is released behind it all, with the arguments.
    std::swap(m_Dict, Dict);
    std::swap(m_ChangeFlag, Flag);
  }
  bool IsAttached() const { return static_cast<bool>(m_Dict); }

  // Without a default: an object as it is, everything else as text, "" for Null, Empty and a
  // missing key. With one: the stored value with its own type, or the default where the key is
  // missing or its text is empty.
  Variant GetValue(const RowKey& key) const;
  Variant GetValue(const RowKey& key, const Variant& Default) const;

  // Stores a value. With a default, a value equal to it removes the key instead. The change flag is
  // set in any case.
  void SetValue(const RowKey& key, Variant value) {
    m_ChangeFlag->Modified(true);
    m_Dict->Put(key, std::move(value));  // last: what ends with the former value may use the bag
  }
  void SetValue(const RowKey& key, Variant value, const Variant& Default);
  // Removes the key where there is one, as the write of a default does.
  void ClearValue(const RowKey& key);
  // Stores an object; Nothing removes the key.
  void SetObject(const RowKey& key, const Ref<Object>& value);

  Ref<qdclgl::Dictionary> Dictionary() const { return m_Dict; }
  const Ref<qdclgl::ChangeFlag>& ChangeFlag() const { return m_ChangeFlag; }
  // The Dictionary's own modified state, not the change flag.
  Boolean Modified() const { return m_Dict->Modified(); }
  // The stored value in place, null when the key is absent.
  const Variant* Find(const RowKey& key) const { return m_Dict->Find(key); }

 private:
  Ref<qdclgl::Dictionary> m_Dict;
  Ref<qdclgl::ChangeFlag> m_ChangeFlag;
};

}  // namespace qdclgl
