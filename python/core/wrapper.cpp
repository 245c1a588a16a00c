#include <cstddef>
#include <unordered_map>

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/foreign.h"
#include "python/core/types.h"
#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/nesting.h"

namespace qdclgl::python {

namespace {

std::unordered_map<Object*, PyObject*>& Wrappers() {
  static auto& wrappers = *new std::unordered_map<Object*, PyObject*>;
  return wrappers;
}

Wrapper* Of(PyObject* self) { return reinterpret_cast<Wrapper*>(self); }

// Shows the collector the objects of Python's own that only this object holds. What others hold
// too, and what belongs to a thread that may be at work, counts as held from outside.
int VisitHeld(const Variant& value, visitproc visit, void* arg, int levels);

int VisitBelow(Object& object, visitproc visit, void* arg, int levels) {
  if (object.IsShared() || levels == 0) return 0;
  if (const auto* foreign = dynamic_cast<const ForeignObject*>(&object)) {
    Py_VISIT(foreign->object());
  } else if (const auto* dictionary = dynamic_cast<const Dictionary*>(&object)) {
    for (std::uint32_t i = 0; i < dictionary->size(); ++i) {
      if (const int result = VisitHeld(dictionary->value_at(i), visit, arg, levels - 1)) {
        return result;
      }
    }
  } else if (const auto* vector = dynamic_cast<const Vector*>(&object)) {
    for (std::size_t i = 0; i < vector->size(); ++i) {
      if (const int result = VisitHeld(vector->at(i), visit, arg, levels - 1)) return result;
    }
  }
  return 0;
}

int VisitHeld(const Variant& value, visitproc visit, void* arg, int levels) {
  if (!value.IsObject() || value.IsNothing()) return 0;
  return VisitBelow(*value.ObjectPointer(), visit, arg, levels);
}

int Traverse(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(self));
  Object* object = Of(self)->object;
  if (object == nullptr || !object->IsOfThisThread()) return 0;
  return VisitBelow(*object, visit, arg, kDeepestNesting);
}

int Clear(PyObject* self) {
  if (Object* object = std::exchange(Of(self)->object, nullptr)) {
    Wrappers().erase(object);
    ReleaseOf(Of(self)->owner, object);
  }
  return 0;
}

void Deallocate(PyObject* self) {
  PyTypeObject* type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  if (Of(self)->weak_references != nullptr) PyObject_ClearWeakRefs(self);
  Clear(self);
  std::destroy_at(&Of(self)->owner);
  reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(self);
  Py_DECREF(type);
}

PyObject* Represent(PyObject* self) {
  return Guarded([&] {
    const PyRef name = Attribute(reinterpret_cast<PyObject*>(Py_TYPE(self)), "__name__");
    return ToText("<qdclgl." + FromText(name.get()) + ">");
  });
}

}  // namespace

PyRef Wrap(Object* object) {
  ReleaseWaiting();
  if (object->Members() == nullptr) {
    if (const auto* foreign = dynamic_cast<const ForeignObject*>(object)) {
      return PyRef::Share(foreign->object());
    }
  }
  if (const auto found = Wrappers().find(object); found != Wrappers().end()) {
    return PyRef::Share(found->second);
  }
  const TypeOfClass& type = TypeOf(*object);
  PyRef made = PyRef::Take(type.allocate(type.type, 0));
  Wrapper* wrapper = Of(made.get());
  std::construct_at(&wrapper->owner, ThisOwner());
  wrapper->type = &type;
  wrapper->object = Ref<Object>(object).Detach();
  Wrappers().emplace(object, made.get());
  return made;
}

Object* Unwrap(PyObject* object) {
  if (PyObject_TypeCheck(object, BaseType()) == 0) return nullptr;
  return Of(object)->object;
}

PyTypeObject* BaseType() {
  static PyTypeObject* type = [] {
    static PyMemberDef members[] = {
        {"__weaklistoffset__", T_PYSSIZET, offsetof(Wrapper, weak_references), READONLY, nullptr},
        {}};
    static PyType_Slot slots[] = {{Py_tp_doc, const_cast<char*>("An object of the library.")},
                                  {Py_tp_members, members},
                                  {Py_tp_traverse, reinterpret_cast<void*>(Traverse)},
                                  {Py_tp_clear, reinterpret_cast<void*>(Clear)},
                                  {Py_tp_dealloc, reinterpret_cast<void*>(Deallocate)},
                                  {Py_tp_repr, reinterpret_cast<void*>(Represent)},
                                  {}};
    static PyType_Spec spec{"qdclgl.Object", sizeof(Wrapper), 0,
                            Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC |
                                Py_TPFLAGS_DISALLOW_INSTANTIATION,
                            slots};
    return reinterpret_cast<PyTypeObject*>(PyRef::Take(PyType_FromSpec(&spec)).Detach());
  }();
  return type;
}

}  // namespace qdclgl::python
