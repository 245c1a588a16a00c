"""Threads: each has its own objects and its own session, and they run at the same time."""

from __future__ import annotations

import gc
import sys
import threading
import time
import weakref
from collections.abc import Callable
from typing import Any

import pytest

import qdclgl


def on_another_thread(work: Callable[[], Any]) -> Any:
    """What work gives, or the exception that it raises."""
    results: list[Any] = []

    def run() -> None:
        try:
            results.append(work())
        except Exception as error:
            results.append(error)

    thread = threading.Thread(target=run)
    thread.start()
    thread.join()
    return results[0]


def test_an_object_is_refused_on_another_thread_whatever_is_done(ledger: Any) -> None:
    accounts = qdclgl.AccountSet()
    account = accounts[1]
    row = qdclgl.Dictionary(a=1)
    rows = qdclgl.Recordset(["a"], [(1,)])
    walk = accounts.NewEnum()
    uses: list[Callable[[], Any]] = [
        lambda: account.Name,
        lambda: setattr(account, "Name", "x"),
        lambda: account.SaveChanges(),
        lambda: len(accounts),
        lambda: accounts[1],
        lambda: 1 in accounts,
        lambda: iter(accounts),
        lambda: next(walk),
        lambda: row["a"],
        lambda: row.update(b=2),
        lambda: list(rows),
        lambda: qdclgl.Table(rows),
        lambda: account.SetTransactionContext(None),
    ]
    for use in uses:
        error = on_another_thread(use)
        assert isinstance(error, qdclgl.WrongThread), use
        assert "belongs to another thread" in str(error)
    assert account.Name == "Cash" and dict(row) == {"a": 1}


def test_a_thread_has_the_session_that_it_has_opened_or_none(ledger: Any) -> None:
    def without() -> None:
        qdclgl.AccountSet().Refresh()

    assert isinstance(on_another_thread(without), qdclgl.NotLoggedIn)

    def with_own() -> list[str]:
        with qdclgl.open(ledger.source):
            return [account.Name for account in qdclgl.AccountSet()]

    assert on_another_thread(with_own) == ["Cash", "Sales"]
    assert qdclgl.AccountSet().Count == 2


def test_books_are_closed_by_their_own_thread(books: qdclgl.Books) -> None:
    assert isinstance(on_another_thread(books.close), qdclgl.WrongThread)
    assert not books.closed
    assert qdclgl.CurrencySet().Count == 1


def test_others_run_while_the_database_works(ledger: Any) -> None:
    """One who waits for the database must let the other one run, who has to go on first."""
    waiting = threading.Event()

    def save() -> Any:
        waiting.set()
        with qdclgl.open(ledger.source):  # the login stands on the trail, and so has to wait
            return ledger.sale("2").Number

    batch = ledger.books.component("QDSVGLBatch.BatchUpdate")
    batch.Begin(ledger.books.props)
    assert ledger.sale("1").Number == 2
    results: list[Any] = []
    other = threading.Thread(target=lambda: results.append(save()))
    other.start()
    assert waiting.wait(30)
    time.sleep(0.5)
    batch.Commit(ledger.books.props)
    other.join()
    assert results == [3]


def test_objects_that_end_on_another_thread_wait_for_their_own() -> None:
    class Own:
        pass

    own = Own()
    gone = weakref.ref(own)
    rows = [qdclgl.Dictionary(own=own)]
    del own
    on_another_thread(rows.clear)
    gc.collect()
    assert gone() is not None  # the object waits for this thread
    qdclgl.Dictionary()
    assert gone() is None


def test_objects_of_a_thread_that_has_ended_end_anywhere() -> None:
    class Own:
        pass

    def make() -> tuple[Any, Any]:
        own = Own()
        return qdclgl.Dictionary(own=own), weakref.ref(own)

    row, gone = on_another_thread(make)
    assert isinstance(on_another_thread(lambda: row["own"]), qdclgl.WrongThread)
    del row
    gc.collect()
    assert gone() is None


def test_many_threads_work_on_one_set_of_books(ledger: Any) -> None:
    count, each = 4, 5
    barrier = threading.Barrier(count)
    failures: list[BaseException] = []

    def work() -> None:
        try:
            with qdclgl.open(ledger.source):
                barrier.wait(30)
                for _ in range(each):
                    ledger.sale("1")
        except BaseException as error:
            failures.append(error)

    threads = [threading.Thread(target=work) for _ in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []
    numbers = sorted(row["FNumber"] for row in ledger.books.list("vouchers"))
    assert numbers == list(range(1, 2 + count * each))
    assert len(ledger.books.component("QDSVGLBooks.BooksInfo").Check(ledger.books.props)) == 0


def test_a_component_of_python_s_own_is_called_while_the_lock_is_away(ledger: Any) -> None:
    """The server reads the values of a row's own objects: those of Python come through."""
    seen: list[int] = []

    class Number:
        def __index__(self) -> int:
            seen.append(1)
            return 1

    row = qdclgl.Dictionary(FName="By number", FStandard=Number())
    info = ledger.books.component("QDSVGLVoucherGroup.VoucherGroupUpdate")
    assert info.Create(ledger.books.props, row) == 2
    assert seen == [1]


def test_a_sub_interpreter_is_refused_in_a_sentence() -> None:
    interpreters = pytest.importorskip("_xxsubinterpreters")
    made = interpreters.create(isolated=False)
    try:
        code = f"""
import sys
sys.path[:] = {sys.path!r}
try:
    import qdclgl
except ImportError as error:
    assert "in the main interpreter only" in str(error), error
else:
    raise AssertionError("imported")
"""
        interpreters.run_string(made, code)
    finally:
        interpreters.destroy(made)
