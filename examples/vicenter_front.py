"""The C interface of the voucher template center for Python, by ctypes alone.

Objects made by create() are called as they read: data.GetVchEntryCount(5), data.mTransMode.value, and
dictionary.put("CompareMode", 1). A host's own component is any Python class: its public attributes become
members, its exceptions run-time errors. Everything but cancel() is called from one thread, the first that calls.
"""

import ctypes
import datetime
import decimal
import math
import os

EMPTY, NULL, BOOLEAN, INT16, INT32, INT64, DOUBLE, DECIMAL, DATE, TEXT, ARRAY, OBJECT, ERROR = range(13)
BYREF = 64
GET, PUT, CALL = range(3)
FIRST_DAY = datetime.datetime(1899, 12, 30)


def _date_of(number):
    """Days since the first one; the time of day is the fraction and counts forward before that day too."""
    days = math.trunc(number)
    return FIRST_DAY + datetime.timedelta(days=days) + datetime.timedelta(days=abs(number - days))


def _number_of(date):
    days = (date - FIRST_DAY).days  # whole ones, downward
    fraction = (date - FIRST_DAY - datetime.timedelta(days=days)) / datetime.timedelta(days=1)
    return days + fraction if days >= 0 else days - fraction


class _Text(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("length", ctypes.c_size_t)]


class _Array(ctypes.Structure):
    _fields_ = [("items", ctypes.c_void_p), ("count", ctypes.c_size_t)]


class _Value(ctypes.Union):
    _fields_ = [("boolean", ctypes.c_int32), ("int16", ctypes.c_int16), ("int32", ctypes.c_int32),
                ("int64", ctypes.c_int64), ("number", ctypes.c_double), ("text", _Text), ("array", _Array),
                ("object", ctypes.c_void_p), ("reference", ctypes.c_void_p)]


class Variant(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int32), ("flags", ctypes.c_int32), ("value", _Value)]


_Create = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.POINTER(ctypes.c_void_p))
_Invoke = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_int, ctypes.c_char_p,
                           ctypes.POINTER(Variant), ctypes.c_size_t, ctypes.POINTER(Variant))
_HasMember = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_char_p)
_Release = ctypes.CFUNCTYPE(None, ctypes.c_void_p)
_Message = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int32, ctypes.c_int32,
                            ctypes.c_char_p)


class _Class(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("type_name", ctypes.c_char_p), ("data", ctypes.c_void_p),
                ("create", _Create), ("invoke", _Invoke), ("has_member", _HasMember), ("release", _Release)]


class AutomationError(Exception):
    """A run-time error: number, description, source."""

    def __init__(self, number, description="", source=""):
        super().__init__("%d: %s" % (number, description))
        self.number, self.description, self.source = number, description, source


class Reference:
    """An argument that the called member may change: Reference(0), then .value."""

    def __init__(self, value=None):
        self.value = value


class Library:
    """The loaded library, and the host's classes that it knows."""

    def __init__(self, path=None):
        path = path or os.environ.get("VICENTER_LIBRARY") or "libvicenter.so.1"
        self._c = ctypes.CDLL(path)
        self._c.vic_error_description.restype = ctypes.c_char_p
        self._c.vic_error_source.restype = ctypes.c_char_p
        self._c.vic_version.restype = ctypes.c_char_p
        self._c.vic_cancel.restype = None
        self._classes = {}    # Python class: its definition and that one's functions, kept alive here
        self._instances = {}  # key: Python object
        self._last_key = 0
        self._message = None

    @property
    def version(self):
        return self._c.vic_version().decode()

    def create(self, prog_id):
        handle = ctypes.c_void_p()
        self._check(self._c.vic_create(prog_id.encode(), ctypes.byref(handle)))
        return AutomationObject(self, handle)

    def register(self, prog_id, python_class):
        """Makes a Python class a component of that ProgID."""
        definition = self._definition(python_class)
        self._check(self._c.vic_register_class(prog_id.encode(), ctypes.byref(definition)))

    def unregister(self, prog_id):
        """Forgets the component of that ProgID; an unknown one is no failure."""
        self._check(self._c.vic_unregister_class(prog_id.encode()))

    def set_framework(self, framework):
        """A Python object in the place of the data connections (docs/hosting.md); None puts those back."""
        if framework is None:
            self._check(self._c.vic_set_framework(None))
            return
        kept = Variant()
        self._to_c(framework, kept)
        try:
            self._check(self._c.vic_set_framework(ctypes.c_void_p(kept.value.object)))
        finally:
            self._c.vic_clear(ctypes.byref(kept))

    def on_message(self, function):
        """function(text, buttons, icon, title) answers message boxes: 1 OK, 2 Cancel, 6 Yes, 7 No."""

        def call(_, text, buttons, icon, title):
            return function(text.decode(), buttons, icon, title.decode()) or 1

        message = _Message(call) if function else _Message(0)
        self._check(self._c.vic_set_message_handler(message, None))
        self._message = message

    def process_events(self, milliseconds=0):
        self._check(self._c.vic_process_events(milliseconds))

    def run(self):
        self._check(self._c.vic_run())

    def open_windows(self):
        return self._count(self._c.vic_open_windows)

    def live_objects(self):
        return self._count(self._c.vic_live_objects)

    def close_windows(self):
        self._check(self._c.vic_close_windows())

    def cancel(self):
        """Ends the statements that run, from any thread; their calls fail."""
        self._c.vic_cancel()

    def shutdown(self):
        self._check(self._c.vic_shutdown())

    # ---- inside

    def _count(self, function):
        count = ctypes.c_size_t()
        self._check(function(ctypes.byref(count)))
        return count.value

    def _check(self, status):
        if status != 0:
            raise AutomationError(self._c.vic_error_number(), self._c.vic_error_description().decode(),
                                  self._c.vic_error_source().decode())

    def _raise_in_c(self, error):
        if not isinstance(error, AutomationError):
            error = AutomationError(51, "%s: %s" % (type(error).__name__, error))
        return self._c.vic_raise(error.number, error.description.encode(), error.source.encode())

    def _keep(self, instance):
        self._last_key += 1
        self._instances[self._last_key] = instance
        return self._last_key

    def _definition(self, python_class):
        if python_class not in self._classes:
            self._classes[python_class] = self._new_definition(python_class)
        return self._classes[python_class]

    def _new_definition(self, python_class):
        def create(_, instance):
            try:
                instance[0] = self._keep(python_class())
                return 0
            except Exception as error:  # no exception may pass through C
                return self._raise_in_c(error)

        def invoke(key, kind, name, arguments, count, result):
            try:
                values = [self._from_c(arguments[i]) for i in range(count)]
                answer = self._member(self._instances[key], kind, name.decode(), values)
                for i, value in enumerate(values):
                    if isinstance(value, Reference):
                        self._to_c(value.value, Variant.from_address(arguments[i].value.reference))
                self._to_c(answer, result[0])
                return 0
            except Exception as error:
                return self._raise_in_c(error)

        def has_member(key, name):
            return 1 if hasattr(self._instances[key], name.decode() or "__call__") else 0

        def release(key):
            del self._instances[key]

        return _Class(ctypes.sizeof(_Class), python_class.__name__.encode(), None, _Create(create),
                      _Invoke(invoke), _HasMember(has_member), _Release(release))

    @staticmethod
    def _member(instance, kind, name, values):
        if name.startswith("_") or not hasattr(instance, name):
            raise AutomationError(438, "Object doesn't support this property or method",
                                  type(instance).__name__)
        if kind == PUT:
            setattr(instance, name, values[-1])
            return None
        member = getattr(instance, name)
        return member(*values) if callable(member) else member

    def _from_c(self, variant):
        value = variant.value
        if variant.type == BYREF:
            return Reference(self._from_c(Variant.from_address(value.reference)))
        if variant.type in (TEXT, DECIMAL):
            text = ctypes.string_at(value.text.data, value.text.length).decode()
            return text if variant.type == TEXT else decimal.Decimal(text)
        if variant.type == ARRAY:
            items = (Variant * value.array.count).from_address(value.array.items) if value.array.count else []
            return [self._from_c(item) for item in items]
        if variant.type == OBJECT:
            if not value.object:
                return None
            self._check(self._c.vic_retain(ctypes.c_void_p(value.object)))
            return AutomationObject(self, ctypes.c_void_p(value.object))
        if variant.type == DATE:
            return _date_of(value.number)
        return {BOOLEAN: value.boolean != 0, INT16: value.int16, INT32: value.int32, INT64: value.int64,
                DOUBLE: value.number}.get(variant.type)

    def _to_c(self, python_value, variant):
        reference = ctypes.byref(variant)
        self._check(self._c.vic_clear(reference))
        if python_value is None:
            return
        if isinstance(python_value, bool):
            variant.type, variant.value.boolean = BOOLEAN, -1 if python_value else 0
        elif isinstance(python_value, int):
            small = -2**31 <= python_value < 2**31
            variant.type = INT32 if small else INT64
            if small:
                variant.value.int32 = python_value
            else:
                variant.value.int64 = python_value
        elif isinstance(python_value, float):
            variant.type, variant.value.number = DOUBLE, python_value
        elif isinstance(python_value, decimal.Decimal):
            self._check(self._c.vic_set_decimal(reference, format(python_value, "f").encode()))
        elif isinstance(python_value, datetime.datetime):
            variant.type = DATE
            variant.value.number = _number_of(python_value)
        elif isinstance(python_value, str):
            data = python_value.encode()
            self._check(self._c.vic_set_text(reference, data, ctypes.c_size_t(len(data))))
        elif isinstance(python_value, AutomationObject):
            self._check(self._c.vic_set_object(reference, python_value._handle))
        elif isinstance(python_value, (list, tuple)):
            self._check(self._c.vic_set_array(reference, ctypes.c_size_t(len(python_value))))
            for i, item in enumerate(python_value):
                self._to_c(item, Variant.from_address(variant.value.array.items + i * ctypes.sizeof(Variant)))
        else:  # an object of the host's own
            definition = self._definition(type(python_value))
            handle = ctypes.c_void_p()
            self._check(self._c.vic_new_object(ctypes.byref(definition),
                                               ctypes.c_void_p(self._keep(python_value)),
                                               ctypes.byref(handle)))
            self._check(self._c.vic_set_object(reference, handle))
            self._check(self._c.vic_release(handle))

    def _invoke(self, handle, kind, name, arguments):
        count = len(arguments)
        passed, variables, result = (Variant * count)(), (Variant * count)(), Variant()
        try:
            for i, argument in enumerate(arguments):
                if isinstance(argument, Reference):
                    self._to_c(argument.value, variables[i])
                    passed[i].type = BYREF
                    passed[i].value.reference = ctypes.addressof(variables[i])
                else:
                    self._to_c(argument, passed[i])
            self._check(self._c.vic_invoke(handle, kind, name.encode(), passed, None,
                                           ctypes.c_size_t(count), ctypes.byref(result)))
            for argument, variable in zip(arguments, variables):
                if isinstance(argument, Reference):
                    argument.value = self._from_c(variable)
            return self._from_c(result)
        finally:
            for variant in (*passed, *variables, result):
                self._c.vic_clear(ctypes.byref(variant))


class AutomationObject:
    """An object of the library; every public attribute is a member of it."""

    def __init__(self, library, handle):
        self._library, self._handle = library, handle

    def __getattr__(self, name):
        if name.startswith("_"):
            raise AttributeError(name)
        return _Member(self, name)

    def __call__(self, *arguments):
        return self.get("", *arguments)

    def get(self, name, *arguments):
        return self._library._invoke(self._handle, GET, name, arguments)

    def put(self, name, *arguments):
        self._library._invoke(self._handle, PUT, name, arguments)

    @property
    def type_name(self):
        name = Variant()
        self._library._check(self._library._c.vic_type_name(self._handle, ctypes.byref(name)))
        try:
            return self._library._from_c(name)
        finally:
            self._library._c.vic_clear(ctypes.byref(name))

    def release(self):
        if self._handle:
            handle, self._handle = self._handle, None
            self._library._c.vic_release(handle)

    def __del__(self):
        self.release()


class _Member:
    """A member by name: called, it is a method; .value reads a property."""

    def __init__(self, owner, name):
        self._owner, self._name = owner, name

    def __call__(self, *arguments):
        return self._owner._library._invoke(self._owner._handle, CALL, self._name, arguments)

    @property
    def value(self):
        return self._owner.get(self._name)
