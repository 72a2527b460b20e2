"""Property trees of typed values, as Python dicts, lists and NumPy arrays.

A tree in the MavProtobuf wire form maps to Python like this, both ways:

  map                    dict with str keys (bytes where a key is not UTF-8;
                         bytes keys are accepted)
  list                   list (tuples are accepted)
  empty node             None
  str                    str (bytes where the text is not UTF-8; bytes in
                         are stored as str unchanged)
  float64, int64, bool   float, int, bool
  complex128             complex
  float32, int8 ... uint64, complex64
                         the NumPy scalar of that dtype (numpy.float32, ...)
  time point, duration   numpy.datetime64 / numpy.timedelta64 in ns; on the
                         way in, datetime.datetime (naive means UTC),
                         datetime.timedelta and NumPy times of any fixed unit
  array                  numpy.ndarray of the matching dtype, with its shape
                         and order (an 'F' array comes back F-contiguous);
                         str arrays are object arrays of str

A Python int outside int64 raises OverflowError; anything else that has no
kind raises TypeError. Errors name the path of the object: "settings.gain",
"frame[3]".

What the plain mapping cannot say (a wellknowntype tag, an 8/16-bit value
outside its kind's range, dimensions that do not match the element count, a
value with no member, a time outside datetime64[ns]) comes back as a Value,
which keeps the value's bytes. So for every valid tree b,
dumps(loads(b)) is the deterministic serialization of b. Unknown fields are
dropped.

Arrays of float32, float64, complex64, complex128, int8, uint8, int32,
int64, uint32, uint64 and bool come back read-only and point into the
parsed tree, which they keep alive; loads(b, copy=True) gives writable
copies. Parsing and serializing release the GIL.

Files: load/dump one tree; iter_records/write_records the length-prefixed
record files of `mav --delimited`. mavprotobuf.dask reads many record files
as a dask.bag.
"""

import mmap
import os
import tempfile

from ._mavprotobuf import DecodeError, Value
from . import _mavprotobuf as _core

__all__ = ["DecodeError", "Value", "loads", "dumps", "load", "dump", "to_json",
           "from_json", "iter_records", "write_records"]


def loads(data, *, copy=False):
    """The tree serialized in `data` (bytes, bytearray, memoryview, mmap...).

    Fixed-width arrays point into the parsed tree (read-only) unless
    copy=True. Raises DecodeError (a ValueError) when `data` is not a tree.
    """
    return _core.loads(data, copy=copy)


def dumps(tree):
    """The deterministic serialization of `tree` (bytes)."""
    return _core.dumps(tree)


def to_json(tree, *, pretty=True):
    """The natural JSON of `tree`: with pretty=True exactly what `mav json`
    prints, else one line as in `mav json --delimited`; ends with a newline."""
    return _core.to_json(tree, pretty=pretty)


def from_json(text):
    """The tree that natural JSON `text` describes (what `mav encode` reads).

    Raises ValueError with the line and column of the problem."""
    return _core.from_json(text)


def load(source, *, copy=False):
    """The tree in a file: `source` is a path or a binary file object."""
    if hasattr(source, "read"):
        return loads(source.read(), copy=copy)
    with open(source, "rb") as file:
        return loads(file.read(), copy=copy)


def _write_atomically(path, chunks):
    # As the tool's -o: the file appears whole or not at all.
    directory = os.path.dirname(os.path.abspath(path))
    handle, temporary = tempfile.mkstemp(dir=directory, prefix=".mav-")
    try:
        with os.fdopen(handle, "wb") as file:
            for chunk in chunks:
                file.write(chunk)
        mode = os.stat(path).st_mode & 0o7777 if os.path.exists(path) else 0o666 & ~_umask()
        os.chmod(temporary, mode)
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise


def _umask():
    mask = os.umask(0)
    os.umask(mask)
    return mask


def dump(tree, target):
    """Writes `tree` to `target`, a path or a binary file object.

    To a path the write is atomic: the file is replaced whole, or, when the
    tree cannot be written, left as it was (no file is created)."""
    data = dumps(tree)
    if hasattr(target, "write"):
        target.write(data)
    else:
        _write_atomically(target, [data])


def _varint(value):
    out = bytearray()
    while value >= 0x80:
        out.append((value & 0x7F) | 0x80)
        value >>= 7
    out.append(value)
    return bytes(out)


def _records(view, name):
    position, record, end = 0, 0, len(view)
    while position < end:
        length, shift = 0, 0
        while True:
            if position >= end or shift > 28:
                raise DecodeError(f"{name}: record {record}: bad length prefix")
            byte = view[position]
            position += 1
            length |= (byte & 0x7F) << shift
            shift += 7
            if byte < 0x80:
                break
        if length >= 1 << 31 or position + length > end:
            raise DecodeError(f"{name}: record {record}: length {length} runs past the end")
        yield record, view[position:position + length]
        position += length
        record += 1


def iter_records(source, *, copy=True):
    """The trees of a record file (`mav --delimited`), one at a time.

    The file is memory-mapped; each tree is parsed out of the mapping. With
    copy=False arrays point into the parsed trees (never into the file).
    Raises DecodeError naming the record that is not a tree."""
    with open(source, "rb") as file:
        if os.fstat(file.fileno()).st_size == 0:
            return
        with mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as mapped:
            view = memoryview(mapped)
            try:
                for record, data in _records(view, os.fspath(source)):
                    try:
                        tree = loads(data, copy=copy)
                    except DecodeError as error:
                        raise DecodeError(f"{os.fspath(source)}: record {record}: {error}") from None
                    finally:
                        data.release()
                    yield tree
            finally:
                view.release()


def write_records(target, trees):
    """Writes `trees` as a record file that `mav --delimited` reads.

    The write is atomic, as dump()'s."""
    def chunks():
        for tree in trees:
            data = dumps(tree)
            yield _varint(len(data))
            yield data
    _write_atomically(target, chunks())
