"""What the library's calls raise. str() of each is the library's own sentence."""


class Error(Exception):
    """A call failed. `status` is the library's word for it, "ZEL_BAD_VALUE"."""

    def __init__(self, message, status="ZEL_FAILED"):
        super().__init__(message)
        self.status = status

    def __reduce__(self):  # so that it comes whole out of a worker process
        return type(self), (str(self), self.status)


class ArgumentError(Error, ValueError):
    """A value, name or shape that is none, or an input that an effect lacks."""


class FileError(Error, OSError):
    """A file or asset that is missing, damaged or of another kind."""


class UnavailableError(Error):
    """This installation, or the context's settings, cannot do it."""


class Cancelled(Error):
    """The progress function said so."""
