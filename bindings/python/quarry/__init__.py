"""Computer-vision building blocks for video analysis: the operations of the shared library, one class for each.

Frames and masks are C-contiguous numpy arrays of uint8, (height, width, 3) and (height, width). They are read in place,
without a copy, and must not change during the call. Results of processors are arrays over the library's buffers, which
are released with the last reference; results of updaters are copies.

Calls release the interpreter's lock: threads that have an object each run side by side, threads that share one take
turns. Sub-interpreters are refused.
"""

from quarry._quarry import *  # noqa: F401, F403: the package has what its modules have
from quarry._quarry import __version__ as __version__  # noqa: F401
from quarry._types import *  # noqa: F401, F403

# Tracebacks and messages name the types as users do: quarry.OpenCVError, not quarry._types.OpenCVError.
for _value in list(vars().values()):
    if isinstance(_value, type):
        _value.__module__ = __name__
del _value
