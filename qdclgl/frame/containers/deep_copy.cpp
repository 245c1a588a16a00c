#include "qdclgl/frame/containers/deep_copy.h"

#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl {

namespace {

// A copy by the object's own means; what takes the place of an object must be one.
Variant CopyByClone(const Variant& value) {
  const CopyLevel level;
  Variant copy = value.ObjectPointer()->Call("Clone");
  if (!copy.IsObject()) RaiseError(error_number::kTypeMismatch);
  return copy;
}

Variant CopyOfElement(const Variant& value);

Variant CopyOfValue(const Variant& value) {
  Object* object = value.ObjectPointer();
  switch (object->container()) {
    case Object::Container::kDictionary: {
      const CopyLevel level;
      return static_cast<Dictionary*>(object)->CopyWith(CopyOfValue);
    }
    case Object::Container::kVector: {
      const CopyLevel level;
      return static_cast<Vector*>(object)->CopyWith(CopyOfElement);
    }
    case Object::Container::kNone: break;
  }
  return CopyByClone(value);
}

Variant CopyOfElement(const Variant& value) {
  const bool is_row = value.ObjectPointer()->container() == Object::Container::kDictionary;
  return is_row ? CopyOfValue(value) : CopyByClone(value);
}

}  // namespace

Ref<Dictionary> CloneDictionary(const Ref<Dictionary>& dict) {
  if (!dict) return nullptr;
  const CopyLevel level;
  return dict->CopyWith(CopyOfValue);
}

Ref<Vector> CloneVector(const Ref<Vector>& vec) {
  if (!vec) RaiseError(error_number::kObjectNotSet);
  const CopyLevel level;
  return vec->CopyWith(CopyOfElement);
}

void VectorInsertAt(const Ref<Vector>& vec, Long index, const Ref<Object>& item) {
  if (!vec) RaiseError(error_number::kObjectNotSet);
  if (vec->size() == 0) RaiseError(error_number::kSubscriptOutOfRange);
  vec->Insert(index, Variant(item));
}

}  // namespace qdclgl
