"""Books: opening them, and what is asked of them as a whole."""

from __future__ import annotations

from types import TracebackType
from typing import Any

from qdclgl import _core
from qdclgl._core import NotLoggedIn
from qdclgl._table import Table

_SESSION = "QDSVGLSession.SessionUpdate"
_BOOKS = "QDSVGLBooks.BooksUpdate"
_BALANCE = "QDSVGLBalance.BalanceInfo"


class Books:
    """Open books, and the session of one user in this thread.

    While they are open every class of the module works on them, in the thread that opened them.
    Books that are opened while others are open come before those until they are closed.
    """

    def __init__(self, source: str, user: str, password: str) -> None:
        self.source = source
        self.user = user
        self._session = _core.create_object(_SESSION)
        self._props: str | None = self._session.Login(source, user, password)
        self._former = _core.set_session(self._props, user)

    def __enter__(self) -> Books:
        return self

    def __exit__(
        self,
        kind: type[BaseException] | None,
        error: BaseException | None,
        trace: TracebackType | None,
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "" if self._props is not None else ", closed"
        return f"<qdclgl.Books for {self.user}{state}>"

    @property
    def props(self) -> str:
        """The connection text that server components take first; NotLoggedIn once closed."""
        if self._props is None:
            raise NotLoggedIn(NotLoggedIn.NUMBER, "qdclgl", "These books are closed.")
        return self._props

    @property
    def closed(self) -> bool:
        """Whether the books are closed."""
        return self._props is None

    def close(self) -> None:
        """Logs out. A batch that is under way is rolled back. Books may be closed twice."""
        if self._props is None:
            return
        # In this order: a session that has ended must not stay the thread's, whatever fails.
        _core.restore_session(self._former)
        props, self._props, self._former = self._props, None, None
        self._session.Logout(props)

    def component(self, prog_id: str) -> Any:
        """A new server component; its methods take ``books.props`` first."""
        self.props
        return _core.create_object(prog_id)

    @property
    def lists(self) -> dict[str, str]:
        """The names of the lists that ``list`` knows, and what they are."""
        return {name: help for name, (_, help, _) in _core.lists().items()}

    def list(self, name: str, filter: str = "", sort: str = "", **arguments: Any) -> Table:
        """One of the lists of the books, "accounts" for example.

        ``filter`` is such as ``"FNumber LIKE '1%'"``, ``sort`` such as ``"FNumber DESC"``. What
        else the list's component takes is given by its name.
        """
        try:
            prog_id, _, columns = _core.lists()[name]
        except KeyError:
            known = ", ".join(sorted(_core.lists()))
            raise KeyError(f"there is no list {name!r}; there are {known}") from None
        rows = self.component(prog_id).GetList(
            self.props, Filter=filter, Sort=sort, **arguments
        )
        return Table(rows, tuple(columns.split()))

    def balance(
        self, year: int = 0, first: int = 0, last: int = 0, filter: str = "", sort: str = ""
    ) -> Table:
        """The balances of accounts with movement over the periods ``first`` to ``last`` of a year.

        Year 0 is everything posted, a period 0 the year's first or last. Rows whose
        ``FCurrencyID`` is 0 hold all currencies of an account.
        """
        rows = self.component(_BALANCE).GetList(self.props, year, first, last, filter, sort)
        shown = ("FAccountNumber", "FAccountName", "FBeginBalance", "FDebit", "FCredit")
        return Table(rows, (*shown, "FEndBalance"))


def open(
    source: str,
    *,
    user: str = "administrator",
    password: str = "",
    create: str | None = None,
    year: int = 0,
) -> Books:
    """Opens books: a SQLite file or a connection text. Use it in a ``with`` block.

    With ``create``, the base currency's number, new books are made first, which begin with
    ``year`` (this year for 0) and have ``user`` as their administrator. Errors: NoBooks for books
    that are not there, BooksExist for new ones that are, LoginRefused for a wrong user or password.
    """
    if create is not None:
        _core.create_object(_BOOKS).Create(
            source,
            create,
            year,
            UserName=user,
            Password=password,
            NoPassword=password == "",
        )
    return Books(source, user, password)
