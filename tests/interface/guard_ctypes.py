"""A host in Python, through its foreign-function interface alone: python3 guard_ctypes.py libQuarry.Guard.so"""

import ctypes
import sys

OPTIONS, INPUT, RESULT = 0x0F0F0F0F, 0x10F0F0F0, 0x1FFF0000
OK, MARSHALING, BAD_ARGUMENT, OPENCV = range(4)
WIDTH, HEIGHT = 24, 16


class Image(ctypes.Structure):
    _fields_ = [
        ("data", ctypes.c_void_p),
        ("width", ctypes.c_int32),
        ("height", ctypes.c_int32),
        ("stride", ctypes.c_int32),
        ("timestamp", ctypes.c_uint64),
    ]


class ProcessOptions(ctypes.Structure):
    _fields_ = [("Header", ctypes.c_uint32), ("Reserved", ctypes.c_uint32)]


class VoLInputData(ctypes.Structure):
    _fields_ = [("Header", ctypes.c_uint32), ("Image", Image)]


class VoLOutputData(ctypes.Structure):
    _fields_ = [("Status", ctypes.c_int32), ("Variance", ctypes.c_float)]


def framed(record, tag):
    """The record between its length word and its tag."""

    class Framed(ctypes.Structure):
        _fields_ = [
            ("Unread", ctypes.c_int32),
            ("Length", ctypes.c_int32),
            ("Record", record),
            ("Tag", ctypes.c_uint32),
        ]

    return Framed(Length=ctypes.sizeof(record), Tag=tag)


def main(library):
    guard = ctypes.CDLL(library)
    guard.GuardMessage.restype = ctypes.c_char_p
    handle = ctypes.c_void_p()
    options = framed(ProcessOptions, OPTIONS)
    frame = framed(VoLInputData, INPUT)
    sharpness = framed(VoLOutputData, RESULT)
    create = guard.GuardCreateCVLaplacianVarianceProcessor

    def process():
        return guard.GuardProcess(handle, ctypes.byref(frame.Record), ctypes.byref(sharpness.Record))

    assert process() == BAD_ARGUMENT
    assert b"handle is null" in guard.GuardMessage()
    options.Tag = INPUT
    assert create(ctypes.byref(handle), ctypes.byref(options.Record)) == MARSHALING
    assert guard.GuardMessage() == b"Analysis System data marshaling error"
    assert not handle
    options.Tag = OPTIONS
    assert create(ctypes.byref(handle), ctypes.byref(options.Record)) == OK

    frame.Record.Image = Image(None, WIDTH, HEIGHT, WIDTH * 3, 0)
    assert process() == OPENCV
    assert b"data != NULL" in guard.GuardMessage()
    # One white pixel on black: the Laplacian is -4 and four times 1, in units of 255.
    pixels = (ctypes.c_uint8 * (WIDTH * HEIGHT * 3))()
    at = (8 * WIDTH + 12) * 3
    pixels[at : at + 3] = [255] * 3
    frame.Record.Image.data = ctypes.addressof(pixels)
    assert process() == OK
    assert guard.GuardMessage() == b""
    expected = 255**2 * 20 / (WIDTH * HEIGHT)
    assert abs(sharpness.Record.Variance - expected) < 1e-3 * expected
    assert guard.GuardDisposeResult(handle, ctypes.byref(sharpness.Record)) == OK
    assert guard.GuardDispose(handle) == OK


if __name__ == "__main__":
    main(sys.argv[1])
