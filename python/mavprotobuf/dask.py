"""Many record files at once, as a dask.bag of trees.

    import mavprotobuf.dask
    bag = mavprotobuf.dask.read_records("captures/*.mav")
    means = bag.map(lambda tree: tree["frame"].mean()).compute()

Each file is one partition; a scheduler (dask.distributed's Client, local
or a cluster whose workers can read the paths and import mavprotobuf) runs
the partitions where it likes.
"""

import glob as _glob
import os

import dask.bag as _bag

from . import iter_records


def _expand(paths_or_glob):
    if isinstance(paths_or_glob, (str, os.PathLike)):
        text = os.fspath(paths_or_glob)
        paths = sorted(_glob.glob(text)) if _glob.has_magic(text) else [text]
    else:
        paths = [os.fspath(path) for path in paths_or_glob]
    if not paths:
        raise FileNotFoundError(f"no record files match {paths_or_glob!r}")
    return paths


def _read_file(path):
    return list(iter_records(path, copy=True))


def read_records(paths_or_glob):
    """A dask.bag of the trees in record files (a glob, a path or a list of
    paths), one partition per file, in file order."""
    paths = _expand(paths_or_glob)
    return _bag.from_sequence(paths, npartitions=len(paths)).map(_read_file).flatten()
