// The base of every class whose data is a row: typed members over a bag.
#pragma once

#include "qdclgl/frame/entities/properties.h"

namespace qdclgl {

class RowView : public Object {
  QD_BASE_MEMBERS(Object)

 public:
  QD_PROPERTY(Get, Ref<qdclgl::Properties>, Properties,
              "All keys and values of the object, those without a member of their own included.")

 protected:
  // Gives the object a bag of its own, as Bag::Attach binds one. What Properties gave out before
  // stays with the former row.
  void Attach(Ref<Dictionary> row, Boolean share, Ref<ChangeFlag> flag, Long track_state) {
    qdclgl::Bag bag;
    bag.Attach(std::move(row), share, std::move(flag), track_state);
    const Ref<qdclgl::Properties> former = PutBag(bag);
  }
  // Puts `bag` in the place of the object's own, which comes back in it, and gives back what
  // Properties gave out before. The caller lets go of both when all is in place.
  Ref<qdclgl::Properties> PutBag(qdclgl::Bag& bag) {
    std::swap(m_Bag, bag);
    return std::exchange(m_Props, nullptr);
  }
  // The same, with what Properties gave out going along to the new row. Error 91 for an object that
  // was never given a row.
  void PutSharedBag(qdclgl::Bag& bag) {
    std::swap(Bag(), bag);
    if (m_Props) m_Props->Share(m_Bag);
  }

  // The bag. Error 91 for an object that was never given a row.
  qdclgl::Bag& Bag() const {
    if (!m_Bag.IsAttached()) RaiseError(error_number::kObjectNotSet);
    return m_Bag;
  }

  // What a FIELD row reads: the stored value as T, or the default where the key is absent, Null or
  // empty. Error 13 or 6 when the stored value does not convert.
  template <class T>
  T ReadField(const RowKey& key, const RowOptions& options) const {
    if (!options.has_default) return Bag().GetValue(key).template As<T>();
    return FieldOf<T>(Bag().Find(key), options);
  }
  // The same of a value in place, null when the key is absent.
  template <class T>
  static T FieldOf(const Variant* stored, const RowOptions& options) {
    if constexpr (!detail::IsRef<T>::value && !std::is_same_v<T, String>) {
      if (stored != nullptr && stored->Holds<T>()) return stored->template Held<T>();
    }
    if constexpr (std::is_same_v<T, String>) {
      if (stored != nullptr && stored->IsString() && !stored->TextView().empty()) {
        return String(stored->TextView());
      }
    }
    if (stored == nullptr || (!stored->IsObject() && HasEmptyText(*stored))) {
      return options.default_value.To<T>();
    }
    return ConvertTo<T>(*stored);
  }

  // What a FIELD row writes; the row's clear value removes the key.
  template <class T>
  void WriteField(const RowKey& key, T value, const RowOptions& options) {
    if (options.clear_value.given() && value == options.clear_value.To<T>()) {
      Bag().ClearValue(key);
    } else {
      Bag().SetValue(key, Variant(std::move(value)));
    }
  }

 private:
  mutable qdclgl::Bag m_Bag;
  // The bag as an object, made when someone asks for it.
  mutable Ref<qdclgl::Properties> m_Props;
};

}  // namespace qdclgl
