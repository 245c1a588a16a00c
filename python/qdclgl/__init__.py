"""A general ledger's business objects.

``with qdclgl.open("books.db") as books:`` opens books; within the block the classes of this module
work on them, `VoucherSet`, `AccountSet` and their neighbours, by the names that they have in every
language. ``help(qdclgl.VoucherSet)`` tells of each member.
"""

from qdclgl import _containers as _containers
from qdclgl._books import Books as Books
from qdclgl._books import open as open
from qdclgl._core import *
from qdclgl._core import __version__ as __version__
from qdclgl._core import create_object as create_object
from qdclgl._core import register_component as register_component
from qdclgl._core import unregister_component as unregister_component
from qdclgl._errors import *
from qdclgl._table import Table as Table
from qdclgl._values import ErrorCode as ErrorCode
from qdclgl._values import Null as Null
from qdclgl._values import Ref as Ref
