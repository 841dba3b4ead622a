# SPDX-License-Identifier: MIT
"""scipy.sparse as a contestant: scipy_peer.py STEM OPERATION.

The operands are files that begin with STEM. Commands come line by line: "prepare" lays out what
"run" changes, "run" is timed and answers with seconds (wall, processor), "take" writes the result.
"""
import os
import sys
import time

import numpy
import scipy.sparse

stem, operation = sys.argv[1:3]


def array(name, kind):
    file = stem + "." + name
    if not os.path.exists(file):
        return None
    elements = numpy.fromfile(file, dtype=kind)
    os.remove(file)
    return elements


def matrix(name):
    shape = array(name + ".shape", numpy.int32)
    if shape is None:
        return None
    starts = array(name + ".starts", numpy.int32)
    columns = array(name + ".columns", numpy.int32)
    values = array(name + ".values", numpy.float64)
    return scipy.sparse.csr_matrix((values, columns, starts), shape=tuple(shape))


a, b, r = matrix("a"), matrix("b"), matrix("r")
x = array("x", numpy.float64)
rows = array("rows", numpy.int32)
listed = array("listed", numpy.int32)
listed_values = array("listed_values", numpy.float64)


def forgetful_copy():
    """A copy that has not looked yet whether its rows are sorted."""
    return scipy.sparse.csr_matrix((a.data.copy(), a.indices.copy(), a.indptr.copy()), a.shape)


def sort(c):
    c.sort_indices()
    return c


def clean(c):
    c.sum_duplicates()
    return c


def coordinates():
    return scipy.sparse.coo_matrix((listed_values, (rows - 1, listed - 1)), a.shape)


nothing = lambda: None
laid_out, call = {
    "multiply": (nothing, lambda _: a @ a),
    "restriction": (nothing, lambda _: r @ (a @ b)),
    "sum": (nothing, lambda _: a + b),
    "symmetrize": (nothing, lambda _: a + a.T.tocsr()),
    "transpose": (nothing, lambda _: a.T.tocsr()),
    "sort": (forgetful_copy, sort),
    "coordinates": (coordinates, lambda c: c.tocsr()),
    "A x": (nothing, lambda _: a @ x),
    "A' x": (nothing, lambda _: a.T @ x),
    "clean": (forgetful_copy, clean),
}[operation]


def say(text):
    sys.stdout.write(text + "\n")
    sys.stdout.flush()


result = state = None
say("ready")
for command in sys.stdin:
    command = command.strip()
    if command == "prepare":
        result = state = None
        state = laid_out()
        say("prepared")
    elif command == "run":
        processor = time.process_time()
        wall = time.perf_counter()
        result = call(state)
        wall = time.perf_counter() - wall
        processor = time.process_time() - processor
        say("%.9f %.9f" % (wall, processor))
    elif command == "take":
        if isinstance(result, numpy.ndarray):
            result.tofile(stem + ".y")
            say("vector")
        else:
            numpy.array(result.shape, dtype=numpy.int32).tofile(stem + ".c.shape")
            result.indptr.astype(numpy.int32).tofile(stem + ".c.starts")
            result.indices.astype(numpy.int32).tofile(stem + ".c.columns")
            result.data.tofile(stem + ".c.values")
            say("matrix")
