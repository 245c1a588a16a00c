#include "python/core/stub.h"

#include "python/core/member_text.h"
#include "python/core/named_classes.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::python {

namespace {

constexpr const char* kHead = R"(# Written by scripts/update-derived from the member rows.
import datetime
import decimal
from collections.abc import Callable, Iterable, Iterator, MutableMapping, MutableSequence, Sequence
from typing import Any, ClassVar

from qdclgl import _core
from qdclgl._errors import Error, Refusal
from qdclgl._values import Ref

__version__: str

class Object: ...

class Enumerator(Object, Iterator[Any]):
    def __iter__(self) -> Enumerator: ...
    def __next__(self) -> Any: ...
)";

constexpr const char* kFunctions = R"(
def set_session(props: str, user: str, /) -> Object | None: ...
def restore_session(former: Object | None, /) -> None: ...
def create_object(prog_id: str, /) -> Any: ...
def register_component(prog_id: str, factory: Callable[[], object], /) -> None: ...
def unregister_component(prog_id: str, /) -> None: ...
def lists() -> dict[str, tuple[str, str, str]]: ...
def current_row(rows: Recordset, /) -> Dictionary: ...
def read_table(rows: Recordset, /) -> tuple[list[str], list[tuple[Any, ...]]]: ...

class RecordingServer:
    def __enter__(self) -> RecordingServer: ...
    def __exit__(self, *error: object) -> None: ...
    def Answer(self, component: str, method: str, answer: object, /) -> None: ...
    def AnswerOnce(self, component: str, method: str, answer: object, /) -> None: ...
    def AnswerWith(
        self, component: str, method: str, handler: Callable[..., object], /
    ) -> None: ...
    def FailAt(self, position: int, error: Error, /) -> None: ...
    def LogSession(self, log: bool, /) -> None: ...
    def TakeLog(self) -> str: ...
)";

// The containers that are more to Python than their members: see qdclgl/_containers.py.
struct Container {
  std::string_view name, base, members;
};
constexpr Container kContainers[] = {
    {"Dictionary", "MutableMapping[str, Any]",
     R"(    def __init__(
        self, rows: object = ..., /, **more: Any
    ) -> None: ...
    def __getitem__(self, key: str) -> Any: ...
    def __setitem__(self, key: str, value: Any) -> None: ...
    def __delitem__(self, key: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...
)"},
    {"Properties", "MutableMapping[str, Any]",
     R"(    def __getitem__(self, key: str | int) -> Any: ...
    def __setitem__(self, key: str | int, value: Any) -> None: ...
    def __delitem__(self, key: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...
)"},
    {"Vector", "MutableSequence[Any]",
     R"(    def __init__(self, values: Iterable[Any] = ..., /) -> None: ...
    def __getitem__(self, index: Any) -> Any: ...
    def __setitem__(self, index: Any, value: Any) -> None: ...
    def __delitem__(self, index: Any) -> None: ...
    def __len__(self) -> int: ...
    def insert(self, index: int, value: Any) -> None: ...
)"},
    {"Recordset", "",
     R"(    def __init__(
        self, columns: Iterable[str] = ..., rows: Iterable[Sequence[Any]] = ...
    ) -> None: ...
    def __iter__(self) -> Iterator[_core.Dictionary]: ...
    def __len__(self) -> int: ...
)"},
};

const Container* FindContainer(std::string_view name) {
  for (const Container& container : kContainers) {
    if (container.name == name) return &container;
  }
  return nullptr;
}

// What a value of such a type reads as. A member may have the name of a class, so a class is named
// with its module.
std::string ReadType(std::string_view word) {
  if (word == "Variant" || word == "Object") return "Any";
  if (word == "none") return "None";
  return (IsObjectWord(word) ? "_core." : "") + PythonWord(word);
}

// What may be given where such a type is asked for.
std::string GivenType(const MemberParameter& parameter) {
  const std::string_view word = parameter.type;
  if (word == "Variant" || word == "Object") return "object";
  std::string type = ReadType(word);
  if (word == "Currency" || word == "Double") type += word == "Double" ? "" : " | int";
  if (word == "Date") type = "datetime.date";
  if (IsObjectWord(word)) type += " | None";
  return parameter.by_ref ? type + " | Ref[Any]" : type;
}

std::string Quoted(std::string_view help) { return "\"\"\"" + std::string(help) + "\"\"\""; }

std::string MethodStub(const ClassMember& member) {
  std::string text = "    def " + PythonName(member.row.name) + "(self";
  for (const MemberParameter& parameter : member.parameters) {
    text += ", " + PythonName(parameter.name) + ": " + GivenType(parameter);
    if (parameter.optional) text += " = ...";
  }
  if (IsPutByCall(member)) {
    text += std::string(", ") + kValueParameter + ": Any";
    if (member.row.get != nullptr) text += " = ...";
  }
  const bool reads = member.row.method != nullptr || member.row.get != nullptr;
  return text + ") -> " + (reads ? ReadType(member.row.type) : "None") + ":\n        " +
         Quoted(member.row.help) + "\n";
}

std::string ValueStub(const ClassMember& member) {
  const std::string name = PythonName(member.row.name);
  const bool reads = member.row.get != nullptr;
  const std::string type = ReadType(reads ? member.row.type : member.row.PutType());
  std::string text = "    @property\n    def " + name + "(self) -> " + type + ":\n        " +
                     Quoted(member.row.help) + "\n";
  if (IsPut(member.row)) {
    text +=
        "    @" + name + ".setter\n    def " + name + "(self, value: " + type + ") -> None: ...\n";
  }
  return text;
}

// What the interpreter's own operations do with an object.
std::string OperationStubs(const ClassTable& table) {
  std::string text, element = "Any";
  bool has_elements = false;
  for (const ClassMember& member : table.members()) {
    if (member.row.name == "Count" && !IsMethod(member)) {
      text += "    def __len__(self) -> int: ...\n";
    }
    if (member.row.name == "NewEnum") has_elements = true;
    if (member.row.name == "GetCurrent") element = ReadType(member.row.type);
    if (!member.row.options.is_default_member || member.parameters.empty()) continue;
    element = ReadType(member.row.type);
    const std::string key = member.parameters.size() == 1 ? GivenType(member.parameters[0]) : "Any";
    text += "    def __contains__(self, key: object, /) -> bool: ...\n";
    text += "    def __getitem__(self, key: " + key + ", /) -> " + element + ": ...\n";
    if (IsPutByCall(member)) {
      text += "    def __setitem__(self, key: " + key + ", value: Any, /) -> None: ...\n";
    }
  }
  if (has_elements) text += "    def __iter__(self) -> Iterator[" + element + "]: ...\n";
  return text;
}

std::string ClassStub(const ClassTable& table) {
  const Container* container = FindContainer(table.name());
  const bool has_base = container != nullptr && !container->base.empty();
  std::string text = "\nclass " + std::string(table.name()) + "(Object" +
                     (has_base ? ", " + std::string(container->base) : "") + "):\n    " +
                     Quoted(table.help()) + "\n";
  for (const ClassMember& member : table.members()) {
    text += IsMethod(member) ? MethodStub(member) : ValueStub(member);
  }
  if (table.takes_context()) {
    text += "    def SetTransactionContext(self, xa: object, /) -> None: ...\n";
  }
  return text + (container != nullptr ? std::string(container->members) : OperationStubs(table));
}

std::string RefusalStub(const server::RefusalRow& row) {
  const bool is_lookup = row.number == server::refusal::kNotFound;
  return "\nclass " + std::string(row.name) + "(Refusal" + (is_lookup ? ", KeyError" : "") +
         "):\n    " + Quoted(row.meaning) + "\n    NUMBER: ClassVar[int]\n";
}

std::string ExportsStub() {
  std::string text = "\n__all__ = [\n";
  for (const std::string& name : ExportedNames()) text += "    \"" + name + "\",\n";
  return text + "]\n";
}

}  // namespace

std::string StubText() {
  std::string text = kHead;
  for (const ClassTable* table : NamedClasses()) text += ClassStub(*table);
  for (const server::RefusalRow& row : server::kRefusals) text += RefusalStub(row);
  return text + kFunctions + ExportsStub();
}

}  // namespace qdclgl::python
