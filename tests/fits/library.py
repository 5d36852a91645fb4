"""The fits of objects.h for the programs of this folder, by ctypes: plain wrappers, no mathematics."""
import ctypes as C
import os
import pathlib

import numpy as np

ROOT = pathlib.Path(__file__).resolve().parents[2]
_PATH = os.environ.get("PRAL_LIBRARY", ROOT / "build/release/libpral_core.so")
_library = C.CDLL(str(_PATH))
_library.pral_ranking_left_out.restype = C.c_char_p
_library.pral_ranking_count.restype = C.c_size_t

_Doubles = C.POINTER(C.c_double)
KINDS = ("regular", "edge", "cells")
PARAMETER, QUANTILE = 0, 1
WALD, PROFILE, BOOTSTRAP = 0, 1, 2
KOLMOGOROV_SMIRNOV, CRAMER_VON_MISES, ANDERSON_DARLING, CHI_SQUARE = range(4)


class Refused(Exception):
    """The library's own sentence."""


class _Struct(C.Structure):
    def __init__(self, *values):
        super().__init__(C.sizeof(self), *values)


class _Error(_Struct):
    _fields_ = [("size", C.c_size_t), ("code", C.c_int32), ("index", C.c_int64), ("text", C.c_char * 256)]


class _Observations(_Struct):
    _fields_ = [("size", C.c_size_t), ("n", C.c_size_t), ("left", _Doubles), ("right", _Doubles),
                ("weights", _Doubles), ("lower", _Doubles), ("upper", _Doubles)]


class _Options(_Struct):
    _fields_ = [("size", C.c_size_t), ("lower", C.c_double), ("upper", C.c_double), ("held", _Doubles),
                ("held_count", C.c_size_t), ("shift", C.c_int32), ("method", C.c_int32), ("cell", C.c_double),
                ("seconds", C.c_double), ("threads", C.c_int32)]


class _Values(_Struct):
    _fields_ = [("size", C.c_size_t), ("family", C.c_char_p), ("kind", C.c_int32), ("free", C.c_int32),
                ("parameter_count", C.c_size_t), ("n", C.c_double), ("log_likelihood", C.c_double),
                ("aic", C.c_double), ("aicc", C.c_double), ("bic", C.c_double), ("cell", C.c_double),
                ("limit", C.c_char_p)]


class _Replication(_Struct):
    _fields_ = [("size", C.c_size_t), ("stream", C.c_void_p), ("count", C.c_size_t), ("source", C.c_int32),
                ("threads", C.c_int32), ("progress", C.c_void_p), ("context", C.c_void_p)]


class _Test(_Struct):
    _fields_ = [("size", C.c_size_t), ("statistic", C.c_double), ("p", C.c_double), ("p_error", C.c_double),
                ("replicates", C.c_size_t), ("failed", C.c_size_t)]


class _Ranked(_Struct):
    _fields_ = [("size", C.c_size_t), ("difference", C.c_double), ("weight", C.c_double),
                ("equal_to", C.c_char_p)]


def _call(function, *arguments):
    error = _Error()
    if function(*arguments, C.byref(error)) != 0:
        raise Refused(error.text.decode())


def _column(values):
    return None if values is None else np.ascontiguousarray(values, dtype=float)


def _pointer(values):
    return None if values is None else values.ctypes.data_as(_Doubles)


def _request(left, right, weights, options):
    columns = [_column(column) for column in (left, right, weights)]
    observations = _Observations(len(columns[0]), *map(_pointer, columns))
    chosen = _Options()
    _call(_library.pral_fit_defaults, C.byref(chosen))
    held = _column(options.pop("held", None))
    if held is not None:
        chosen.held, chosen.held_count = _pointer(held), len(held)
    for name, value in options.items():
        setattr(chosen, name, value)
    return observations, chosen, (columns, held)  # the last keeps the arrays alive


class Fit:
    """`left` alone are exact values; options are those of pral_fit_options."""

    def __init__(self, family, left, right=None, weights=None, **options):
        observations, chosen, _arrays = _request(left, right, weights, options)
        handle = C.c_void_p()
        _call(_library.pral_fit_make, family.encode(), C.byref(observations), C.byref(chosen), C.byref(handle))
        self._take(handle)

    def _take(self, handle):
        self._handle = handle
        values = _Values()
        _call(_library.pral_fit_get, handle, C.byref(values))
        self.family, self.limit = values.family.decode(), values.limit.decode()
        self.kind, self.log_likelihood, self.aicc = KINDS[values.kind], values.log_likelihood, values.aicc
        self.parameters = np.zeros(values.parameter_count)
        _call(_library.pral_fit_parameters, handle, _pointer(self.parameters), None, None,
              C.c_size_t(values.parameter_count))

    @classmethod
    def from_handle(cls, handle):
        fit = cls.__new__(cls)
        fit._take(handle)
        return fit

    def __del__(self):
        if hasattr(self, "_handle"):
            _library.pral_fit_free(self._handle)

    def interval(self, target, which, method, level, replicates=0, seed=1):
        how, stream = _replication(replicates, seed)
        lower, upper = C.c_double(), C.c_double()
        try:
            _call(_library.pral_fit_interval, self._handle, target, C.c_double(which), method,
                  C.c_double(level), C.byref(how), C.byref(lower), C.byref(upper))
        finally:
            _library.pral_stream_free(stream)
        return lower.value, upper.value

    def test(self, statistic, replicates, seed=1):
        """p, and how many refits have failed."""
        how, stream = _replication(replicates, seed)
        result = _Test()
        try:
            _call(_library.pral_fit_test, self._handle, statistic, C.byref(how), C.byref(result))
        finally:
            _library.pral_stream_free(stream)
        return result.p, result.failed


def _replication(count, seed):
    stream = C.c_void_p()
    _call(_library.pral_stream_make, (C.c_uint64 * 1)(seed), C.c_size_t(1), C.byref(stream))
    return _Replication(stream, count, 0, 1, None, None), stream


def rank(left, right=None, weights=None, **options):
    """Rows (fit, AICc difference, weight), the best first, and pairs (family, why it was left out)."""
    observations, chosen, _arrays = _request(left, right, weights, options)
    handle = C.c_void_p()
    _call(_library.pral_rank, None, C.c_size_t(0), C.byref(observations), C.byref(chosen), None, None,
          C.byref(handle))
    rows, left_out = [], []
    for index in range(_library.pral_ranking_count(handle)):
        ranked, fit = _Ranked(), C.c_void_p()
        _call(_library.pral_ranking_row, handle, C.c_size_t(index), C.byref(ranked), C.byref(fit))
        rows.append((Fit.from_handle(fit), ranked.difference, ranked.weight))
    why = C.c_char_p()
    while name := _library.pral_ranking_left_out(handle, C.c_size_t(len(left_out)), C.byref(why)):
        left_out.append((name.decode(), why.value.decode()))
    _library.pral_ranking_free(handle)
    return rows, left_out
