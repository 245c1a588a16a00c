"""Server components in Python, and the stand-in for tests."""

from __future__ import annotations

from collections.abc import Iterator
from typing import Any

import pytest

import qdclgl
from qdclgl.testing import RecordingServer

INFO = "QDSVGLVoucherGroup.VoucherGroupInfo"
UPDATE = "QDSVGLVoucherGroup.VoucherGroupUpdate"


class Groups:
    """Voucher groups in memory."""

    rows: dict[int, str] = {}
    log: list[tuple[Any, ...]] = []

    def GetList(self, props: str, options: Any, filter: Any, sort: Any) -> qdclgl.Recordset:
        self.log.append(("GetList", options.value, filter.value, sort.value))
        filter.value = "as the server understood it"
        return qdclgl.Recordset(["FGroupID", "FName"], list(self.rows.items()))

    def GetDetail(self, props: str, id: Any) -> qdclgl.Dictionary | None:
        number = id.value if isinstance(id, qdclgl.Ref) else id
        name = self.rows.get(number)
        return qdclgl.Dictionary(FGroupID=number, FName=name) if name else None

    def create(self, props: str, row: qdclgl.Dictionary) -> int:  # case is ignored
        number = len(self.rows) + 1
        self.rows[number] = row["FName"]
        return number

    def Update(self, props: str, id: Any, row: qdclgl.Dictionary) -> None:
        if row["FName"] == "forbidden":
            raise qdclgl.Error(1234, "Groups", "That name is forbidden.")
        if row["FName"] == "broken":
            raise KeyError("broken")
        self.rows[id.value] = row["FName"]


@pytest.fixture
def groups() -> Iterator[type[Groups]]:
    Groups.rows, Groups.log = {}, []
    for prog_id in (INFO, UPDATE):
        qdclgl.register_component(prog_id, Groups)
    yield Groups
    for prog_id in (INFO, UPDATE):
        qdclgl.unregister_component(prog_id)


def test_the_library_works_on_components_in_python(groups: type[Groups]) -> None:
    group = qdclgl.VoucherGroupSet().CreateNew("Receipts")
    group.SaveChanges()
    group.Name = "Income"
    group.SaveChanges()
    assert groups.rows == {1: "Income"}
    listed = qdclgl.VoucherGroupSet()
    listed.Sort = "FName"
    assert [entry.Name for entry in listed] == ["Income"]
    assert groups.log == [("GetList", 0, "", "FName")]
    assert listed.Filter == "as the server understood it"


def test_an_exception_of_a_component_arrives_as_an_error(groups: type[Groups]) -> None:
    group = qdclgl.VoucherGroupSet().CreateNew("Receipts")
    group.SaveChanges()
    group.Name = "forbidden"
    with pytest.raises(qdclgl.Error) as own:
        group.SaveChanges()
    assert own.value.args == (1234, "Groups", "That name is forbidden.")
    group.Name = "broken"
    with pytest.raises(qdclgl.InvalidCall) as other:
        group.SaveChanges()
    assert other.value.args == (5, "Groups", "KeyError: 'broken'")
    assert groups.rows == {1: "Receipts"}


@pytest.mark.parametrize(
    ("exception", "number"),
    [
        (OverflowError("x"), 6), (TypeError("x"), 13), (IndexError("x"), 9), (ValueError("x"), 5),
        (MemoryError("x"), 7), (RecursionError("x"), 28), (RuntimeError("x"), 440),
        (AttributeError("x"), 438), (qdclgl.PeriodClosed(qdclgl.PeriodClosed.NUMBER, "a", "b"),
        -2147204570),
    ],
)  # fmt: skip
def test_an_exception_has_the_number_of_its_class(exception: Exception, number: int) -> None:
    def fail(*arguments: object) -> None:
        raise exception

    with RecordingServer() as server:
        server.AnswerWith(INFO, "GetList", fail)
        with pytest.raises(qdclgl.Error) as caught:
            qdclgl.VoucherGroupSet().Refresh()
    assert caught.value.number == number


def test_a_component_that_lacks_a_member_or_is_none_is_refused() -> None:
    qdclgl.register_component(INFO, object)
    try:
        with pytest.raises(qdclgl.MemberNotFound, match="No member GetList"):
            qdclgl.VoucherGroupSet().Refresh()
        qdclgl.register_component(INFO, lambda: 5)
        with pytest.raises(qdclgl.TypeMismatch):
            qdclgl.VoucherGroupSet().Refresh()

        def broken() -> object:
            raise ValueError("no component today")

        qdclgl.register_component(INFO, broken)
        with pytest.raises(qdclgl.InvalidCall, match="no component today"):
            qdclgl.VoucherGroupSet().Refresh()
    finally:
        qdclgl.unregister_component(INFO)
    with pytest.raises(qdclgl.NotLoggedIn):  # the module's own component is back
        qdclgl.VoucherGroupSet().Refresh()
    with pytest.raises(TypeError, match="callable"):
        qdclgl.register_component(INFO, 5)  # type: ignore[arg-type]


def test_a_component_answers_all_calls_by_one_method() -> None:
    class All:
        calls: list[tuple[Any, ...]] = []

        def __invoke__(self, use: str, name: str, arguments: list[Any], named: Any) -> object:
            self.calls.append((use, name, len(arguments), named))
            return 7

    qdclgl.register_component(INFO, All)
    try:
        assert qdclgl.VoucherGroupSet().ExistenceCheck(Name="x") == 7
    finally:
        qdclgl.unregister_component(INFO)
    assert [call[:2] for call in All.calls] == [("call", "ExistenceCheck")]


def test_a_component_comes_back_as_itself_and_may_call_the_library() -> None:
    class Own:
        pass

    qdclgl.register_component("Own.Component", Own)
    try:
        assert isinstance(qdclgl.create_object("own.component"), Own)
    finally:
        qdclgl.unregister_component("Own.Component")
    with pytest.raises(qdclgl.CannotCreateObject):
        qdclgl.create_object("Own.Component")


def test_calls_without_end_are_an_error() -> None:
    def again(*arguments: object) -> object:
        qdclgl.VoucherGroupSet().Refresh()
        return None

    with RecordingServer() as server:
        server.AnswerWith(INFO, "GetList", again)
        with pytest.raises(qdclgl.OutOfStackSpace):
            qdclgl.VoucherGroupSet().Refresh()


def test_the_recording_server_answers_fails_and_logs() -> None:
    with RecordingServer() as server:
        server.Answer(INFO, "GetDetail", qdclgl.Dictionary(FGroupID=5, FName="always"))
        server.AnswerOnce(INFO, "GetDetail", qdclgl.Dictionary(FGroupID=5, FName="once"))
        groups = qdclgl.VoucherGroupSet()
        assert [groups.Item(5).Name, groups.Item(5).Name] == ["once", "always"]
        server.FailAt(2, qdclgl.Error(77, "me", "words"))
        with pytest.raises(qdclgl.Error, match="error 77"):
            groups.Item("A")
        server.AnswerWith(UPDATE, "Delete", lambda props, id, *rest: setattr(id, "value", 9))
        groups.Remove(5)
        assert server.TakeLog().splitlines() == [
            f"create {INFO}",
            'call GetDetail("props", 5) -> {FGroupID: 5, FName: "once"}',
            f"create {INFO}",
            'call GetDetail("props", 5) -> {FGroupID: 5, FName: "always"}',
            f"create {INFO}",
            'call GetDetailByNumber("props", ref Variant "A") -> error 77 (me): words',
            f"create {UPDATE}",
            'call Delete("props", ref 5, "HOST", "10.0.0.1", ref 0)',
        ]
    with pytest.raises(ValueError, match="with block"):
        server.TakeLog()
