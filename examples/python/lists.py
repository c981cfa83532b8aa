"""Tells what a VTR file holds, with nothing but Python's own ctypes.

    python3 lists.py FILE.vtr

The library is found as the machine finds libraries; the variable TRVTROUT names another one.
"""

import ctypes
import json
import os
import sys
from ctypes import CFUNCTYPE, POINTER, Structure, byref, c_char, c_char_p, c_int32, c_size_t, c_uint32, c_uint64, c_void_p

OK, DAMAGED, STOPPED = 0, 1, 4
PRIMARY, TEXT_CODE, JSON = 0, 0, 0


class Question(Structure):
    _fields_ = [("struct_size", c_uint32), ("buttons", c_int32), ("prompt", c_char_p), ("title", c_char_p)]


class Progress(Structure):
    _fields_ = [("struct_size", c_uint32), ("reserved", c_int32), ("path", c_char_p), ("done", c_uint64),
                ("total", c_uint64)]


Ask = CFUNCTYPE(c_int32, c_void_p, POINTER(Question))
ChoosePath = CFUNCTYPE(c_int32, c_void_p, c_void_p, POINTER(c_char), c_size_t)
OnProgress = CFUNCTYPE(c_int32, c_void_p, POINTER(Progress))
DoEvents = CFUNCTYPE(None, c_void_p)
Write = CFUNCTYPE(c_int32, c_void_p, POINTER(c_char), c_size_t)


class Host(Structure):
    _fields_ = [("struct_size", c_uint32), ("code_page", c_int32), ("context", c_void_p), ("ask", Ask),
                ("choose_path", ChoosePath), ("progress", OnProgress), ("do_events", DoEvents)]


class ListInfo(Structure):
    _fields_ = [("struct_size", c_uint32), ("holds", c_int32), ("count", c_int32), ("current", c_int32),
                ("max", c_int32), ("size", c_int32), ("name", c_char_p)]


class Document:
    """A document; closes with the `with` that opened it."""

    def __init__(self, progress=None):
        self.library = ctypes.CDLL(os.environ.get("TRVTROUT", "libtrvtrout.so.1"))
        self.library.trvtrout_last_message.restype = c_char_p
        self.library.trvtrout_result_text.restype = c_char_p
        # The callbacks must live as long as the document.
        self.host = Host(ctypes.sizeof(Host), 1252)
        if progress:
            self.host.progress = OnProgress(lambda _, told: progress(told.contents.done, told.contents.total))
        self.handle = c_void_p()
        self.check(self.library.trvtrout_new(byref(self.host), byref(self.handle)))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.library.trvtrout_free(self.handle)

    def check(self, result, *fine):
        if result != OK and result not in fine:
            text = self.library.trvtrout_result_text(result).decode()
            raise RuntimeError(f"{text}: {self.library.trvtrout_last_message(self.handle).decode()}")
        return result

    def read(self, path):
        return self.check(self.library.trvtrout_read(self.handle, os.fsencode(path), PRIMARY), DAMAGED)

    def text(self, which):
        text, length = c_void_p(), c_size_t()
        self.check(self.library.trvtrout_get_text(self.handle, which, byref(text), byref(length)))
        try:
            return ctypes.string_at(text, length.value).decode()
        finally:
            self.library.trvtrout_free(text)

    def lists(self):
        for number in range(18):
            info = ListInfo(ctypes.sizeof(ListInfo))
            self.check(self.library.trvtrout_get_list(self.handle, number, byref(info)))
            yield info

    def as_json(self):
        pieces = []
        take = Write(lambda _, bytes, count: pieces.append(bytes[:count]) or 0)
        self.check(self.library.trvtrout_export(self.handle, JSON, take, None))
        return json.loads(b"".join(pieces))


def main():
    with Document(lambda done, total: print(f"{done} of {total} bytes", file=sys.stderr) or 0) as document:
        if document.read(sys.argv[1]) == DAMAGED:
            print("damaged:", document.library.trvtrout_last_message(document.handle).decode())
        print("product", document.text(TEXT_CODE))
        for info in document.lists():
            if info.size > 0:
                print(info.name.decode(), info.size, "" if info.holds else "doesn't hold together")
        print("modified", document.as_json()["header"]["Modified"])


if __name__ == "__main__":
    main()
