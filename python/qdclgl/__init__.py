"""A general ledger's business objects.

``with qdclgl.open("books.db") as books:`` opens books; within the block the classes of this module
work on them, `VoucherSet`, `AccountSet` and their neighbours, by the names that they have in every
language. ``help(qdclgl.VoucherSet)`` tells of each member.
"""

from qdclgl import _containers as _containers
from qdclgl._books import Books, open
from qdclgl._core import *
from qdclgl._core import __version__ as __version__
from qdclgl._core import create_object, register_component, unregister_component
from qdclgl._errors import *
from qdclgl._table import Table
from qdclgl._values import ErrorCode, Null, Ref
