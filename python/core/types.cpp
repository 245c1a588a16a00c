#include "python/core/types.h"

#include <deque>
#include <unordered_map>

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/incoming_call.h"
#include "python/core/known.h"
#include "python/core/member_text.h"
#include "python/core/named_classes.h"
#include "python/core/released.h"
#include "qdclgl/frame/objects/enumeration.h"
#include "qdclgl/frame/session/transaction_context.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::python {

namespace {

// What the interpreter keeps pointers into lives to the end of the process.
std::deque<std::string>& Texts() {
  static auto& texts = *new std::deque<std::string>;
  return texts;
}
const char* Kept(std::string text) { return Texts().emplace_back(std::move(text)).c_str(); }

Wrapper& Of(PyObject* self) { return *reinterpret_cast<Wrapper*>(self); }

// ---- Methods: the interpreter asks for a function of its own for each ----

constexpr std::size_t kMostMembers = 160;
using Function = PyObject* (*)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*);

template <std::size_t Place>
PyObject* MethodAt(PyObject* self, PyObject* const* values, Py_ssize_t count, PyObject* names) {
  return Guarded([&] {
    const ClassMember& member = Of(self).type->table->members()[Place];
    return CallMember(*Of(self).object, member, {values, static_cast<std::size_t>(count), names});
  });
}

template <std::size_t... Place>
constexpr std::array<Function, kMostMembers> MethodsAt(std::index_sequence<Place...>) {
  return {MethodAt<Place>...};
}
constexpr auto kMethods = MethodsAt(std::make_index_sequence<kMostMembers>());

// The one method of another interface, of the classes that have that.
PyObject* SetTransactionContext(PyObject* self, PyObject* context) {
  return Guarded([&] {
    Object& object = *Of(self).object;
    object.CheckThread();
    dynamic_cast<ISetXactContext&>(object).SetTransactionContext(
        FromPython(context, true).As<Object>());
    return PyRef::Share(Py_None);
  });
}

// ---- Values ----

PyObject* GetValue(PyObject* self, void* member) {
  return Guarded(
      [&] { return GetMember(*Of(self).object, *static_cast<const ClassMember*>(member)); });
}

int PutValue(PyObject* self, PyObject* value, void* member) {
  return Guarded(-1, [&] {
    if (value == nullptr) RaiseTypeError("a member can't be deleted");
    PutMember(*Of(self).object, *static_cast<const ClassMember*>(member), {}, value);
    return 0;
  });
}

// ---- What the interpreter's own operations do ----

// The keys in x[key]: several where the member takes several.
std::vector<PyObject*> KeysIn(PyObject* key, const ClassMember& member) {
  if (member.parameters.size() < 2 || PyTuple_Check(key) == 0) return {key};
  std::vector<PyObject*> keys;
  for (Py_ssize_t i = 0; i < PyTuple_Size(key); ++i) keys.push_back(PyTuple_GetItem(key, i));
  return keys;
}

// Whether an object of a row has none.
bool IsWithoutRow(Object& object) {
  if (object.Members() == nullptr || object.Members()->Find("Properties") == nullptr) return false;
  return object.Get("Properties").As<Object>()->Get("Count").As<Long>() == 0;
}

// What a list of a server's rows gives for a key; null where the server knows none. The members
// themselves give an object without a row then, or raise error 91.
PyRef RowOf(Object& list, const ClassMember& item, std::span<PyObject* const> keys) {
  try {
    PyRef found = GetMember(list, item, keys);
    Object* object = Unwrap(found.get());
    return object != nullptr && IsWithoutRow(*object) ? PyRef() : found;
  } catch (const Error& error) {
    if (error.number() != error_number::kObjectNotSet) throw;
    return {};
  }
}

// What x[key] gives: KeyError or IndexError where there is nothing, which for a line the member
// itself tells by Nothing.
PyRef ItemOf(PyObject* self, PyObject* key) {
  const TypeOfClass& type = *Of(self).type;
  Object& object = *Of(self).object;
  const std::vector<PyObject*> keys = KeysIn(key, *type.item);
  PyRef found =
      type.is_of_rows ? RowOf(object, *type.item, keys) : GetMember(object, *type.item, keys);
  if (found.get() == Py_None && IsObjectWord(type.item->row.type)) found = PyRef();
  if (!found) {
    PyErr_SetObject(type.is_of_rows ? PyExc_KeyError : PyExc_IndexError, key);
    throw Raised();
  }
  return found;
}

PyObject* GetItem(PyObject* self, PyObject* key) {
  return Guarded([&] { return ItemOf(self, key); });
}

int PutItem(PyObject* self, PyObject* key, PyObject* value) {
  return Guarded(-1, [&] {
    if (value == nullptr) RaiseTypeError("elements are removed by Remove");
    const ClassMember& item = *Of(self).type->item;
    PutMember(*Of(self).object, item, KeysIn(key, item), value);
    return 0;
  });
}

bool TellsOfAbsence(const Error& error) {
  using namespace error_number;
  return error.number() == kInvalidCall || error.number() == kSubscriptOutOfRange ||
         error.number() == kFieldNotFound || error.number() == server::refusal::kNotFound;
}

int HasItem(PyObject* self, PyObject* key) {
  return Guarded(-1, [&] {
    try {
      ItemOf(self, key);
      return 1;
    } catch (const Error& error) {
      if (!TellsOfAbsence(error)) throw;
      return 0;
    } catch (const Raised&) {
      if (PyErr_ExceptionMatches(PyExc_LookupError) == 0) throw;
      PyErr_Clear();
      return 0;
    }
  });
}

Py_ssize_t Length(PyObject* self) {
  return Guarded(Py_ssize_t{-1}, [&] {
    const PyRef count = GetMember(*Of(self).object, *Of(self).type->count);
    return PyLong_AsSsize_t(count.get());
  });
}

PyObject* Elements(PyObject* self) {
  return Guarded([&] { return CallMember(*Of(self).object, *Of(self).type->elements, {}); });
}

PyObject* SameIterator(PyObject* self) { return Py_NewRef(self); }

PyObject* NextElement(PyObject* self) {
  return Guarded<PyObject*>(nullptr, [&]() -> PyObject* {
    auto& enumerator = static_cast<Enumerator&>(*Of(self).object);
    enumerator.CheckThread();
    Variant element;
    return enumerator.Next(element) ? ToPython(element).Detach() : nullptr;
  });
}

PyObject* NewObject(PyTypeObject* type, PyObject* arguments, PyObject* names);

// ---- Making a class ----

allocfunc AllocatorOf(PyTypeObject* type) {
  return reinterpret_cast<allocfunc>(PyType_GetSlot(type, Py_tp_alloc));
}

class TypeMaker {
 public:
  explicit TypeMaker(TypeOfClass& type) : type_(type) {}

  void Make() {
    const ClassTable& table = *type_.table;
    if (table.members().size() > kMostMembers) RaiseValueError("a class has too many members");
    auto& methods = *new std::vector<PyMethodDef>;
    auto& values = *new std::vector<PyGetSetDef>;
    for (const ClassMember& member : table.members()) {
      if (IsMethod(member)) {
        methods.push_back({Kept(PythonName(member.row.name)),
                           reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(
                               kMethods[static_cast<std::size_t>(member.ordinal - 1)])),
                           METH_FASTCALL | METH_KEYWORDS, Kept(MethodText(member))});
      } else {
        values.push_back({Kept(PythonName(member.row.name)), GetValue,
                          IsPut(member.row) ? PutValue : nullptr, Kept(PropertyText(member)),
                          const_cast<ClassMember*>(&member)});
      }
      TakeRole(member);
    }
    if (table.takes_context()) {
      methods.push_back({"SetTransactionContext", SetTransactionContext, METH_O,
                         "SetTransactionContext($self, xa, /)\n--\n\n"
                         "(xa: object) -> None\n\nHands over the transaction context."});
    }
    methods.emplace_back();
    values.emplace_back();
    Add(Py_tp_doc, const_cast<char*>(Kept(ClassText(table))));
    Add(Py_tp_methods, methods.data());
    Add(Py_tp_getset, values.data());
    if (table.creatable()) Add(Py_tp_new, reinterpret_cast<void*>(NewObject));
    AddRoles();
    MakeType(std::string(table.name()), table.creatable() ? 0 : Py_TPFLAGS_DISALLOW_INSTANTIATION);
  }

  void MakeEnumerator() {
    Add(Py_tp_doc, const_cast<char*>("The elements of a list, one after the other."));
    Add(Py_tp_iter, reinterpret_cast<void*>(SameIterator));
    Add(Py_tp_iternext, reinterpret_cast<void*>(NextElement));
    MakeType("Enumerator", Py_TPFLAGS_DISALLOW_INSTANTIATION);
  }

 private:
  void TakeRole(const ClassMember& member) {
    const std::string_view name = member.row.name;
    if (name == "Count" && !IsMethod(member)) type_.count = &member;
    if (name == "NewEnum") type_.elements = &member;
    if (name == "RecordSet") type_.is_of_rows = true;
    if (member.row.options.is_default_member && !member.parameters.empty()) type_.item = &member;
  }

  void AddRoles() {
    if (type_.count != nullptr) Add(Py_mp_length, reinterpret_cast<void*>(Length));
    if (type_.elements != nullptr) Add(Py_tp_iter, reinterpret_cast<void*>(Elements));
    if (type_.item == nullptr) return;
    Add(Py_mp_subscript, reinterpret_cast<void*>(GetItem));
    Add(Py_sq_contains, reinterpret_cast<void*>(HasItem));
    if (IsPutByCall(*type_.item)) Add(Py_mp_ass_subscript, reinterpret_cast<void*>(PutItem));
  }

  void Add(int slot, void* function) { slots_.push_back({slot, function}); }

  void MakeType(const std::string& name, unsigned long flags) {
    slots_.emplace_back();
    PyType_Spec spec{Kept("qdclgl." + name), sizeof(Wrapper), 0,
                     static_cast<unsigned>(Py_TPFLAGS_DEFAULT | flags), slots_.data()};
    const PyRef bases = PyRef::Take(PyTuple_Pack(1, BaseType()));
    type_.type = reinterpret_cast<PyTypeObject*>(
        PyRef::Take(PyType_FromSpecWithBases(&spec, bases.get())).Detach());
    type_.allocate = AllocatorOf(type_.type);
  }

  TypeOfClass& type_;
  std::vector<PyType_Slot> slots_;
};

const TypeOfClass& EnumeratorType() {
  static const TypeOfClass& type = [&]() -> TypeOfClass& {
    auto& made = *new TypeOfClass;
    TypeMaker(made).MakeEnumerator();
    return made;
  }();
  return type;
}

const TypeOfClass& OtherType() {
  static const TypeOfClass& type =
      *new TypeOfClass{.type = BaseType(), .allocate = AllocatorOf(BaseType())};
  return type;
}

std::unordered_map<const ClassTable*, TypeOfClass>& Types() {
  static auto& types = *new std::unordered_map<const ClassTable*, TypeOfClass>;
  return types;
}

const ClassTable& TableOf(PyTypeObject* type) {
  for (const auto& [table, made] : Types()) {
    if (made.type == type) return *table;
  }
  RaiseTypeError("a class of the library can't be derived from");
}

PyObject* NewObject(PyTypeObject* type, PyObject* arguments, PyObject* names) {
  return Guarded([&] {
    // The containers have constructors of their own, which take the arguments.
    const bool has_own =
        PyType_GetSlot(type, Py_tp_init) != PyType_GetSlot(&PyBaseObject_Type, Py_tp_init);
    const bool takes_any =
        PyTuple_Size(arguments) > 0 || (names != nullptr && PyDict_Size(names) > 0);
    const ClassTable& table = TableOf(type);
    if (takes_any && !has_own) {
      RaiseTypeError(std::string(table.name()) + "() takes no arguments");
    }
    return Wrap(table.Create().get());
  });
}

}  // namespace

const TypeOfClass& TypeOf(Object& object) {
  if (const ClassTable* table = object.Members()) return TypeOf(*table);
  if (dynamic_cast<Enumerator*>(&object) != nullptr) return EnumeratorType();
  const ClassTable* table = Behind(object).Members();
  return table != nullptr ? TypeOf(*table) : OtherType();
}

const TypeOfClass& TypeOf(const ClassTable& table) {
  TypeOfClass& type = Types()[&table];
  if (type.type == nullptr) {
    type.table = &table;
    TypeMaker(type).Make();
  }
  return type;
}

void AddTypes(PyObject* module) {
  const auto add = [&](const char* name, PyTypeObject* type) {
    Checked(PyModule_AddObjectRef(module, name, reinterpret_cast<PyObject*>(type)));
  };
  add("Object", BaseType());
  add("Enumerator", EnumeratorType().type);
  for (const ClassTable* table : NamedClasses()) {
    add(std::string(table->name()).c_str(), TypeOf(*table).type);
  }
}

}  // namespace qdclgl::python
