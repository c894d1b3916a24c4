"""What can go wrong, as exceptions. Every message says what happened, where, and what to do."""


class TableError(Exception):
    """The base of this package's exceptions. A file that is missing is a FileNotFoundError, as everywhere."""


class LibraryNotFoundError(TableError, ImportError):
    """The shared library vok_table_rw_vc was not found, or is too old."""


class ReadError(TableError):
    """A source that exists could not be read."""


class WriteError(TableError, OSError):
    """A table could not be written; the target is as it was."""


class UnknownFieldError(TableError, KeyError):
    """A table has no field of this name."""

    def __str__(self) -> str:  # KeyError would show the message's repr
        return str(self.args[0])


class ClosedError(TableError, ValueError):
    """A table or a writer was used after it had been closed."""
