"""The part of a desktop that ends the session: it asks every program over X's session protocol, and then says "die"."""

import ctypes
import select
import threading

from desktop import PATIENCE, wait_until

ICE = ctypes.CDLL("libICE.so.6")
SM = ctypes.CDLL("libSM.so.6")

Handle = ctypes.c_void_p
IS_LOCAL, INTERACT_NONE = 1, 0  # of SMlib.h: what is to be saved, and no questions
ALL_CALLBACKS = 0x3FF
Failure = ctypes.CFUNCTYPE(None, Handle)
Permission = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_char_p)
Notice = ctypes.CFUNCTYPE(None, Handle, Handle)
Register = ctypes.CFUNCTYPE(ctypes.c_int, Handle, Handle, ctypes.c_char_p)
Done = ctypes.CFUNCTYPE(None, Handle, Handle, ctypes.c_int)


class Callbacks(ctypes.Structure):
    """What SMlib.h calls so: a function, and what is handed to it, for each message of a client."""
    NAMES = ("register_client", "interact_request", "interact_done", "save_request", "phase2_request", "save_done",
             "close", "set_properties", "delete_properties", "get_properties")
    _fields_ = [(name + part, Handle) for name in NAMES for part in ("", "_data")]


NewClient = ctypes.CFUNCTYPE(ctypes.c_int, Handle, Handle, ctypes.POINTER(ctypes.c_ulong), ctypes.POINTER(Callbacks),
                             Handle)

for library, name, result, arguments in (
        (SM, "SmsInitialize", ctypes.c_int,
         [ctypes.c_char_p, ctypes.c_char_p, NewClient, Handle, Permission, ctypes.c_int, ctypes.c_char_p]),
        (SM, "SmsGenerateClientID", Handle, [Handle]),
        (SM, "SmsRegisterClientReply", ctypes.c_int, [Handle, Handle]),
        (SM, "SmsSaveYourself", None, [Handle, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_int]),
        (SM, "SmsSaveYourselfPhase2", None, [Handle]),
        (SM, "SmsSaveComplete", None, [Handle]),
        (SM, "SmsDie", None, [Handle]),
        (ICE, "IceSetIOErrorHandler", Handle, [Failure]),
        (ICE, "IceListenForConnections", ctypes.c_int,
         [ctypes.POINTER(ctypes.c_int), ctypes.POINTER(ctypes.POINTER(Handle)), ctypes.c_int, ctypes.c_char_p]),
        (ICE, "IceSetHostBasedAuthProc", None, [Handle, Permission]),
        (ICE, "IceFreeListenObjs", None, [ctypes.c_int, ctypes.POINTER(Handle)]),
        (ICE, "IceComposeNetworkIdList", ctypes.c_char_p, [ctypes.c_int, ctypes.POINTER(Handle)]),
        (ICE, "IceGetListenConnectionNumber", ctypes.c_int, [Handle]),
        (ICE, "IceAcceptConnection", Handle, [Handle, ctypes.POINTER(ctypes.c_int)]),
        (ICE, "IceConnectionNumber", ctypes.c_int, [Handle]),
        (ICE, "IceProcessMessages", ctypes.c_int, [Handle, Handle, Handle]),
        (ICE, "_IceTransNoListen", ctypes.c_int, [ctypes.c_char_p])):
    function = getattr(library, name)
    function.restype, function.argtypes = result, arguments


EVERYBODY = Permission(lambda host: 1)  # the library keeps the first that it is given


class SessionManager:
    """Knows the programs that start on a desktop in its `with` block. Works on a thread of its own. One at a time: its
    socket is named after the process."""

    def __init__(self, desktop):
        self.clients = []
        self.saved = threading.Event()
        self._end = threading.Event()
        self._stop = threading.Event()
        self._connections = []
        self._listen(desktop)
        self._thread = threading.Thread(target=self._serve, daemon=True)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._stop.set()
        self._thread.join()
        ICE.IceFreeListenObjs(len(self._listeners), self._listener_objects)

    def _listen(self, desktop):
        self._failure = Failure(lambda connection: None)  # otherwise a client that leaves ends us
        self._new_client = NewClient(self._welcome)
        self._callbacks = {"register_client": Register(self._registered), "save_done": Done(self._save_done),
                           "phase2_request": Notice(lambda client, _: SM.SmsSaveYourselfPhase2(client))}
        self._nothing = ctypes.CFUNCTYPE(None)(lambda: None)
        ICE.IceSetIOErrorHandler(self._failure)
        error = ctypes.create_string_buffer(200)
        assert SM.SmsInitialize(b"test", b"1", self._new_client, None, EVERYBODY, 200, error), error.value
        ICE._IceTransNoListen(b"tcp")  # noqa: SLF001  nobody else calls it otherwise
        count, listeners = ctypes.c_int(), ctypes.POINTER(Handle)()
        assert ICE.IceListenForConnections(count, listeners, 200, error), error.value
        for index in range(count.value):
            ICE.IceSetHostBasedAuthProc(listeners[index], EVERYBODY)
        desktop.environment["SESSION_MANAGER"] = ICE.IceComposeNetworkIdList(count, listeners).decode()
        self._listener_objects = listeners
        self._listeners = [listeners[index] for index in range(count.value)]

    def _welcome(self, client, _, mask, callbacks, _reason):
        mask[0] = ALL_CALLBACKS
        for name in Callbacks.NAMES:
            function = self._callbacks.get(name, self._nothing)
            setattr(callbacks[0], name, ctypes.cast(function, Handle).value)
        return 1

    def _registered(self, client, _, previous):
        if previous is not None:
            return 0  # we remember nobody; the client asks once more
        SM.SmsRegisterClientReply(client, SM.SmsGenerateClientID(client))
        SM.SmsSaveYourself(client, IS_LOCAL, 0, INTERACT_NONE, 0)  # the protocol has this after each registration
        self.clients.append(client)
        return 1

    def _save_done(self, client, _, _success):
        if self._end.is_set():
            self.saved.set()
            SM.SmsDie(client)
        else:
            SM.SmsSaveComplete(client)

    def _serve(self):
        asked = False
        while not self._stop.is_set():
            numbers = {ICE.IceGetListenConnectionNumber(listener): listener for listener in self._listeners}
            numbers |= {ICE.IceConnectionNumber(connection): connection for connection in self._connections}
            for number in select.select(list(numbers), [], [], 0.05)[0]:
                self._attend(numbers[number])
            if self._end.is_set() and not asked:
                asked = True
                for client in self.clients:
                    SM.SmsSaveYourself(client, IS_LOCAL, 1, INTERACT_NONE, 0)

    def _attend(self, source):
        if source in self._listeners:
            connection = ICE.IceAcceptConnection(source, ctypes.c_int())
            if connection:
                self._connections.append(connection)
        elif ICE.IceProcessMessages(source, None, None) != 0:
            self._connections.remove(source)  # it has gone

    def wait_for_client(self):
        wait_until(lambda: self.clients, "the program tells the session of itself")

    def end_session(self):
        self._end.set()
        assert self.saved.wait(PATIENCE), "the program says that all is saved"
