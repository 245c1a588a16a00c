#include "python/core/recording_server.h"

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/gil.h"
#include "python/core/known.h"
#include "tests/support/recording_server.h"

namespace qdclgl::python {

namespace {

using Server = qdclgl::testing::RecordingServer;

// It stands in the place of this thread's gateway while `server` is not null. It is not counted as
// an object of the library, so it has a mark of its own for the thread.
struct Recorder {
  PyObject_HEAD Server* server;
  std::uint16_t thread;
};

Server& ServerOf(PyObject* self) {
  const auto& recorder = *reinterpret_cast<Recorder*>(self);
  if (recorder.server == nullptr) RaiseValueError("the server is used within its with block only");
  if (recorder.thread != detail::ThisThread()) {
    throw Error(error_number::kWrongThread, "QDCLGL",
                "A recording server is used on the thread that began it.");
  }
  return *recorder.server;
}

PyObject* Begin(PyObject* self, PyObject*) {
  return Guarded([&] {
    auto& recorder = *reinterpret_cast<Recorder*>(self);
    if (recorder.server != nullptr) RaiseValueError("the server has begun already");
    recorder.thread = detail::ThisThread();
    recorder.server = new Server;
    return PyRef::Share(self);
  });
}

PyObject* End(PyObject* self, PyObject*) {
  return Guarded([&] {
    delete &ServerOf(self);
    reinterpret_cast<Recorder*>(self)->server = nullptr;
    return PyRef::Share(Py_None);
  });
}

// One that is dropped within its block stays in its place: others may have been put above it.
void Deallocate(PyObject* self) {
  PyTypeObject* type = Py_TYPE(self);
  reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(self);
  Py_DECREF(type);
}

struct Place {
  std::string component, method;
  PyObject* answer = nullptr;
};

Place PlaceFrom(PyObject* arguments) {
  PyObject *component = nullptr, *method = nullptr, *answer = nullptr;
  if (PyArg_ParseTuple(arguments, "UUO", &component, &method, &answer) == 0) throw Raised();
  return {FromText(component), FromText(method), answer};
}

PyObject* Answer(PyObject* self, PyObject* arguments) {
  return Guarded([&] {
    const Place place = PlaceFrom(arguments);
    ServerOf(self).Answer(place.component, place.method, FromPython(place.answer));
    return PyRef::Share(Py_None);
  });
}

PyObject* AnswerOnce(PyObject* self, PyObject* arguments) {
  return Guarded([&] {
    const Place place = PlaceFrom(arguments);
    ServerOf(self).AnswerOnce(place.component, place.method, FromPython(place.answer));
    return PyRef::Share(Py_None);
  });
}

// A method of a stand-in that a function of Python answers.
Variant AnswerOf(PyObject* handler, std::span<Argument> arguments) {
  const WithLock lock;
  try {
    const Ref<Object> call = FromPython(handler, true).As<Object>();
    return call->Invoke("__call__", CallKind::kMethod, arguments);
  } catch (const Raised&) {
    throw TakeRaised("handler");
  }
}

PyObject* AnswerWith(PyObject* self, PyObject* arguments) {
  return Guarded([&] {
    const Place place = PlaceFrom(arguments);
    if (PyCallable_Check(place.answer) == 0) RaiseTypeError("a handler is callable");
    const auto handler = std::make_shared<PyRef>(PyRef::Share(place.answer));
    ServerOf(self).AnswerWith(place.component, place.method, [handler](std::span<Argument> given) {
      return AnswerOf(handler->get(), given);
    });
    return PyRef::Share(Py_None);
  });
}

PyObject* FailAt(PyObject* self, PyObject* arguments) {
  return Guarded([&] {
    int position = 0;
    PyObject* error = nullptr;
    if (PyArg_ParseTuple(arguments, "iO", &position, &error) == 0) throw Raised();
    if (!IsOf(error, TheKnown().error)) RaiseTypeError("a qdclgl.Error is needed");
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error)), error);
    ServerOf(self).FailAt(position, TakeRaised(""));
    return PyRef::Share(Py_None);
  });
}

PyObject* TakeLog(PyObject* self, PyObject*) {
  return Guarded([&] { return ToText(ServerOf(self).TakeLog()); });
}

PyObject* LogSession(PyObject* self, PyObject* log) {
  return Guarded([&] {
    ServerOf(self).LogSession(Checked(PyObject_IsTrue(log)) != 0);
    return PyRef::Share(Py_None);
  });
}

}  // namespace

void AddRecordingServer(PyObject* module) {
  static PyMethodDef methods[] = {
      {"__enter__", Begin, METH_NOARGS, "Puts the server in the place of this thread's."},
      {"__exit__", End, METH_VARARGS, "Gives the place back."},
      {"Answer", Answer, METH_VARARGS,
       "Answer($self, component, method, answer, /)\n--\n\nWhat a method answers to every call."},
      {"AnswerOnce", AnswerOnce, METH_VARARGS,
       "AnswerOnce($self, component, method, answer, /)\n--\n\n"
       "What a method answers to the next call that has no such answer yet."},
      {"AnswerWith", AnswerWith, METH_VARARGS,
       "AnswerWith($self, component, method, handler, /)\n--\n\n"
       "The function that answers a method: called with its arguments."},
      {"FailAt", FailAt, METH_VARARGS,
       "FailAt($self, position, error, /)\n--\n\n"
       "Makes the event at that position of the log from now on, from 1, raise the error."},
      {"LogSession", LogSession, METH_O,
       "LogSession($self, log, /)\n--\n\nWhether the log tells of the session stores too."},
      {"TakeLog", TakeLog, METH_NOARGS,
       "TakeLog($self, /)\n--\n\nThe log since the last call, a line an event."},
      {}};
  static PyType_Slot slots[] = {
      {Py_tp_doc,
       const_cast<char*>("RecordingServer()\n--\n\n"
                         "A stand-in for every server component in a with block: it answers as it "
                         "is told, fails on demand, and keeps a log of all creations and calls.")},
      {Py_tp_methods, methods},
      {Py_tp_dealloc, reinterpret_cast<void*>(Deallocate)},
      {}};
  static PyType_Spec spec{"qdclgl.testing.RecordingServer", sizeof(Recorder), 0, Py_TPFLAGS_DEFAULT,
                          slots};
  const PyRef type = PyRef::Take(PyType_FromSpec(&spec));
  Checked(PyModule_AddObjectRef(module, "RecordingServer", type.get()));
}

}  // namespace qdclgl::python
