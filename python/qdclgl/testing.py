"""For tests of programs that use the library: a stand-in for every server component."""

from qdclgl._core import RecordingServer

__all__ = ["RecordingServer"]
