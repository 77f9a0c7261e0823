"""What no tool does here: asking a window to close, as a window manager does, and setting how keys repeat."""
import ctypes

CLIENT_MESSAGE = 33
CORE_KEYBOARD = 0x100


class ClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("pad", ctypes.c_long * 16)]


class XLib:
    def __init__(self, display):
        self._x = ctypes.CDLL("libX11.so.6")
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        self._x.XInternAtom.restype = ctypes.c_ulong
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(display.encode()))

    def _atom(self, name):
        return self._x.XInternAtom(self._display, name.encode(), 0)

    def ask_to_close(self, window):
        message = ClientMessage(type=CLIENT_MESSAGE, window=window, message_type=self._atom("WM_PROTOCOLS"), format=32)
        message.data[0] = self._atom("WM_DELETE_WINDOW")
        self._x.XSendEvent(self._display, ctypes.c_ulong(window), 0, ctypes.c_long(0), ctypes.byref(message))

    def repeat_keys(self, after_ms, every_ms):
        if not self._x.XkbSetAutoRepeatRate(self._display, CORE_KEYBOARD, after_ms, every_ms):
            raise RuntimeError("the display does not repeat keys")

    def close(self):
        self._x.XCloseDisplay(self._display)
