#include "python/core/session.h"

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/foreign.h"
#include "python/core/gil.h"
#include "python/core/released.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/server.h"

namespace qdclgl::python {

namespace {

// What the library asks for who the session is.
class ThreadSession final : public Object {
 public:
  ThreadSession(std::string props, std::string user)
      : props_(std::move(props)), user_(std::move(user)) {}

  std::string_view ClassName() const override { return "ThreadSession"; }
  Variant Invoke(std::string_view name, CallKind, std::span<Argument>) override {
    CheckThread();
    if (EqualsIgnoringAsciiCase(name, "PropsString")) return props_;
    if (EqualsIgnoringAsciiCase(name, "UserName")) return user_;
    RaiseError(error_number::kMemberNotFound);
  }

 private:
  std::string props_;
  std::string user_;
};

PyObject* SetSession(PyObject*, PyObject* arguments) {
  return Guarded([&] {
    PyObject *props = nullptr, *user = nullptr;
    if (PyArg_ParseTuple(arguments, "UU", &props, &user) == 0) throw Raised();
    // Python is a client of its own server, so there is nobody to ask about working offline.
    SetApartmentStarted(true);
    PyRef former = ToPython(Variant(SessionObject()));
    SetSessionObject(Make<ThreadSession>(FromText(props), FromText(user)));
    return former;
  });
}

PyObject* RestoreSession(PyObject*, PyObject* former) {
  return Guarded([&] {
    Object* session = Unwrap(former);
    if (session != nullptr) session->CheckThread();
    SetSessionObject(Ref<Object>(session));
    return PyRef::Share(Py_None);
  });
}

PyObject* CreateComponent(PyObject*, PyObject* prog_id) {
  return Guarded([&] {
    if (PyUnicode_Check(prog_id) == 0) RaiseTypeError("a ProgID is a text");
    return ToPython(Variant(CreateObject(FromText(prog_id))));
  });
}

// The factory, which the process keeps until another one takes its place. It may be called, and
// end, on any thread that runs Python.
class Factory {
 public:
  explicit Factory(PyRef factory) : factory_(std::make_shared<Held>(std::move(factory))) {}

  Ref<Object> operator()() const {
    const WithLock lock;
    try {
      const PyRef made = PyRef::Take(PyObject_CallNoArgs(factory_->factory.get()));
      return FromPython(made.get(), true).As<Object>();
    } catch (const Raised&) {
      throw TakeRaised("component");
    }
  }

 private:
  struct Held {
    PyRef factory;
    explicit Held(PyRef given) : factory(std::move(given)) {}
    ~Held() {
      const WithLock lock;
      factory = PyRef();
    }
  };

  std::shared_ptr<Held> factory_;
};

PyObject* Register(PyObject*, PyObject* arguments) {
  return Guarded([&] {
    PyObject *prog_id = nullptr, *factory = nullptr;
    if (PyArg_ParseTuple(arguments, "UO:register_component", &prog_id, &factory) == 0) {
      throw Raised();
    }
    if (PyCallable_Check(factory) == 0) RaiseTypeError("the factory of a component is callable");
    RegisterComponent(FromText(prog_id), Factory(PyRef::Share(factory)));
    return PyRef::Share(Py_None);
  });
}

PyObject* Unregister(PyObject*, PyObject* prog_id) {
  return Guarded([&] {
    if (PyUnicode_Check(prog_id) == 0) RaiseTypeError("a ProgID is a text");
    UnregisterComponent(FromText(prog_id));
    RegisterReleasedComponent(FromText(prog_id));
    return PyRef::Share(Py_None);
  });
}

PyObject* Lists(PyObject*, PyObject*) {
  return Guarded([&] {
    PyRef lists = PyRef::Take(PyDict_New());
    for (const server::ServerComponent& component : server::ServerComponents()) {
      if (component.list == nullptr) continue;
      const PyRef row = PyRef::Take(Py_BuildValue("(NNN)", ToText(component.prog_id).Detach(),
                                                  ToText(component.list->help).Detach(),
                                                  ToText(component.list->columns).Detach()));
      Checked(PyDict_SetItem(lists.get(), ToText(component.list->name).get(), row.get()));
    }
    return lists;
  });
}

Ref<Recordset> RecordsetFrom(PyObject* rows) {
  Object* object = Unwrap(rows);
  auto* recordset = dynamic_cast<Recordset*>(object);
  if (recordset == nullptr) RaiseTypeError("a qdclgl.Recordset is needed");
  recordset->CheckThread();
  return Ref<Recordset>(recordset);
}

PyObject* CurrentRow(PyObject*, PyObject* rows) {
  return Guarded([&] { return ToPython(Variant(RecordsetFrom(rows)->Row())); });
}

PyObject* ReadTable(PyObject*, PyObject* rows) {
  return Guarded([&] {
    const Ref<Recordset> all = RecordsetFrom(rows)->Clone();
    const Long width = all->FieldCount();
    const PyRef names = PyRef::Take(PyList_New(0));
    for (Long i = 0; i < width; ++i) {
      Checked(PyList_Append(names.get(), ToText(all->FieldName(i)).get()));
    }
    const PyRef cells = PyRef::Take(PyList_New(0));
    for (; !all->Eof(); all->MoveNext()) {
      const PyRef row = PyRef::Take(PyTuple_New(width));
      for (Long i = 0; i < width; ++i) {
        Checked(PyTuple_SetItem(row.get(), i, ToPython(all->FieldValue(i)).Detach()));
      }
      Checked(PyList_Append(cells.get(), row.get()));
    }
    return PyRef::Take(PyTuple_Pack(2, names.get(), cells.get()));
  });
}

}  // namespace

PyMethodDef kSessionFunctions[] = {
    {"set_session", SetSession, METH_VARARGS, "Makes a session this thread's; gives the former."},
    {"restore_session", RestoreSession, METH_O, "Puts back what set_session gave."},
    {"create_object", CreateComponent, METH_O,
     "create_object($module, prog_id, /)\n--\n\nA new component of that ProgID."},
    {"register_component", Register, METH_VARARGS,
     "register_component($module, prog_id, factory, /)\n--\n\n"
     "Makes a component known to the process: factory() gives an object whose methods are called "
     "by name."},
    {"unregister_component", Unregister, METH_O,
     "unregister_component($module, prog_id, /)\n--\n\nTakes a component away again; the module's "
     "own of that ProgID is back."},
    {"lists", Lists, METH_NOARGS, "The lists of the books: name to (ProgID, help, columns)."},
    {"current_row", CurrentRow, METH_O, "The current row of a recordset as a Dictionary."},
    {"read_table", ReadTable, METH_O, "The columns and all rows of a recordset."},
    {}};

}  // namespace qdclgl::python
