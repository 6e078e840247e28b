"""The library from Python: a host's components, the account set, the windows, without a leak.

    python_front_test.py LIBRARY WITH_WINDOWS [VICENTER_PROGRAM]
"""

import datetime
import decimal
import gc
import os
import subprocess
import sys
import tempfile
import threading
import unittest

import python_host
from vicenter_front import AutomationError, Library, Reference

LIBRARY, WITH_WINDOWS = sys.argv[1], sys.argv[2] == "1"
PROGRAM = sys.argv[3] if len(sys.argv) > 3 else None


class Echo:
    def __init__(self):
        self.Name = "回声"

    def Twice(self, value):
        value.value *= 2

    def Same(self, value):
        return value

    def Fail(self):
        raise AutomationError(1004, "the host refused", "Echo")

    def Break(self):
        raise KeyError("x")


class Field:
    Type = 202

    def __init__(self, name, value):
        self.Name, self.Value = name, value


class Fields:
    def __init__(self, fields):
        self._fields = fields
        self.Count = len(fields)

    def Item(self, number):
        return self._fields[number]


class ForwardOnly:
    """A recordset of the host's own: read once from its first row to its last."""

    RecordCount = -1

    def __init__(self, recordset):
        self._rows = recordset
        self.State = 0 if recordset is None else recordset.State.value
        self.closed = False

    @property
    def EOF(self):
        return self._rows.EOF.value

    def MoveNext(self):
        self._rows.MoveNext()

    def Close(self):
        self.closed = True

    @property
    def Fields(self):
        fields = self._rows.Fields.value
        at_end = self.EOF
        return Fields([Field(fields.Item(i).Name.value, None if at_end else fields.Item(i).Value.value)
                       for i in range(fields.Count.value)])


class HostConnection:
    """The host's connection: what is executed goes through its hands."""

    def __init__(self, framework):
        self._framework = framework

    def Execute(self, text, affected, options):
        self._framework.executed.append((text, options))
        if self._framework.refuse in text:
            raise AutomationError(-2147217900, "the host's own server refused", "Host")
        return ForwardOnly(self._framework.connection.Execute(text, affected, options))


class HostBroker:
    def __init__(self, framework):
        self._framework = framework

    def Bind(self, props):
        self._framework.bound = props

    def Auxiliary(self):
        return None

    def Settle(self):
        self._framework.settled += 1

    def GiveConnection(self):
        return HostConnection(self._framework)


class HostFramework:
    def __init__(self, library, account_set):
        self.executed, self.settled, self.bound, self.refuse = [], 0, "", "no such text"
        self.connection = library.create("ADODB.Connection")
        self.connection.Open('Provider=VelaAccountSet;Data Source="%s"' % account_set)

    def GiveBroker(self):
        return HostBroker(self)


class FrontTest(unittest.TestCase):
    def setUp(self):
        self.front = Library(LIBRARY)
        self.front.on_message(lambda *_: 1)  # nobody is there to read them

    def tearDown(self):
        self.assertEqual(self.front.live_objects(), 0)
        self.front.shutdown()

    def test_values_of_every_type_come_back(self):
        dictionary = self.front.create("Scripting.Dictionary")
        for value in (True, False, 7, -2**31, 2**40, 1.5, "凭证😀", "a\0b", decimal.Decimal("12.50"),
                      datetime.datetime(2026, 1, 31, 6), [1, "a", [True, []]], None):
            dictionary.put("Item", "key", value)
            self.assertEqual(dictionary.Item("key"), value)

    def test_before_the_first_day_a_time_of_day_counts_forward(self):
        dictionary = self.front.create("Scripting.Dictionary")
        json = self.front.create("VelaVICenter.VbsJson")
        for date in (datetime.datetime(1899, 12, 29, 6), datetime.datetime(1899, 12, 29),
                     datetime.datetime(1899, 12, 30, 6), datetime.datetime(1899, 12, 28, 18, 30, 15),
                     datetime.datetime(1753, 1, 1, 23, 59, 59)):
            dictionary.put("Item", "key", date)
            self.assertEqual(dictionary.Item("key"), date)
            # What the library itself takes it for.
            self.assertIn(date.strftime("%H:%M").lstrip("0"), json.Encode(date))

    def test_objects_of_one_class_are_handed_over_at_no_lasting_cost(self):
        dictionary = self.front.create("Scripting.Dictionary")

        def hand_over():
            for number in range(200):
                dictionary.put("Item", "key", Echo())
            dictionary.RemoveAll()
            gc.collect()
            return len(gc.get_objects())

        before = hand_over()
        self.assertLess(hand_over() - before, 200)

    def test_a_host_may_end_without_a_shutdown(self):
        script = """
import vicenter_front

class Component:
    pass

front = vicenter_front.Library(%r)
front.register("Test.Class", Component)
front.create("VelaVICenter.Host").Register("Test.Component", Component())
front.set_framework(Component())
print("ends")
""" % LIBRARY
        ended = subprocess.run([sys.executable, "-c", script], stdout=subprocess.PIPE, timeout=60)
        self.assertEqual((ended.returncode, ended.stdout), (0, b"ends\n"))

    def test_json_objects_are_dictionaries(self):
        json = self.front.create("VelaVICenter.VbsJson")
        decoded = json.Decode('{"b":[1,null],"a":"\\ud83d\\ude00"}')
        self.assertEqual(decoded.type_name, "Dictionary")
        self.assertEqual(decoded.Keys(), ["b", "a"])
        self.assertEqual(decoded("a"), "😀")
        self.assertEqual(json.Encode(decoded), '{"b":[1,null],"a":"😀"}')

    def test_errors_become_exceptions(self):
        with self.assertRaises(AutomationError) as caught:
            self.front.create("VelaVICenter.VbsJson").Decode("TRUE")
        self.assertEqual((caught.exception.number, caught.exception.description),
                         (8732, "No JSON object could be ScanOnced"))
        caught.exception.__traceback__ = None

    def test_python_classes_are_components(self):
        self.front.register("Test.Echo", Echo)
        echo = self.front.create("Test.Echo")
        self.assertEqual(echo.type_name, "Echo")
        self.assertEqual(echo.Name.value, "回声")
        echo.put("Name", "甲")
        self.assertEqual(echo.Name.value, "甲")
        number = Reference(21)
        echo.Twice(number)
        self.assertEqual(number.value, 42)
        self.assertEqual(echo.Same([1, "x"]), [1, "x"])
        for member, expected in (("Fail", 1004), ("Break", 51), ("NoSuch", 438)):
            try:
                getattr(echo, member)()
                self.fail(member)
            except AutomationError as error:
                self.assertEqual(error.number, expected)

    def test_a_component_that_is_forgotten_is_found_no_more(self):
        self.front.register("Test.Echo", Echo)
        self.front.unregister("Test.Echo")
        self.front.unregister("Test.Echo")
        with self.assertRaises(AutomationError) as caught:
            self.front.create("Test.Echo")
        self.assertEqual(caught.exception.number, 429)
        caught.exception.__traceback__ = None

    def test_another_thread_ends_a_statement_that_runs(self):
        with tempfile.TemporaryDirectory() as folder:
            connection = self.front.create("ADODB.Connection")
            connection.Open('Provider=VelaAccountSet;Create=yes;Data Source="%s"' % os.path.join(folder, "a.vas"))
            connection.put("CommandTimeout", 0)
            ended = threading.Event()

            def stop():
                while not ended.wait(0.01):
                    self.front.cancel()

            stopping = threading.Thread(target=stop)
            stopping.start()
            try:
                with self.assertRaises(AutomationError) as caught:
                    connection.Execute("declare @i int = 0 while 1 = 1 set @i = 1 - @i")
            finally:
                ended.set()
                stopping.join()
            self.assertEqual(caught.exception.number, -2147217842)
            caught.exception.__traceback__ = None
            connection.Close()
            connection.release()

    def test_another_thread_is_refused(self):
        self.front.live_objects()
        numbers = []

        def call():
            try:
                self.front.create("Scripting.Dictionary")
            except AutomationError as error:
                numbers.append(error.number)

        thread = threading.Thread(target=call)
        thread.start()
        thread.join()
        self.assertEqual(numbers, [-2147417842])

    @unittest.skipUnless(PROGRAM, "no account set can be made")
    def test_the_example_lists_the_templates_of_an_account_set(self):
        with tempfile.TemporaryDirectory() as folder:
            account_set = os.path.join(folder, "demo.vela")
            subprocess.run([PROGRAM, "account-set", "new", account_set, "--demo"], check=True,
                           stdout=subprocess.DEVNULL)
            python_host.register_components(self.front, account_set)
            templates = python_host.list_templates(self.front)
            self.assertEqual(templates[0]["FID"], 0)
            self.assertEqual(templates[0]["FName"], "标准模板")
            # No window has told the component its user yet.
            self.assertTrue(python_host.make_and_delete(self.front))
            self.assertEqual(len(python_host.list_templates(self.front)), len(templates))
            if WITH_WINDOWS:
                python_host.GLData.entries.clear()
                self.front.create("VelaVICenter.aplication").ShowVICenter()
                self.front.process_events()
                self.assertEqual(self.front.open_windows(), 1)
                self.front.close_windows()
                self.assertEqual(self.front.open_windows(), 0)
                self.assertTrue(python_host.GLData.entries)
                self.assertEqual({entry[0] for entry in python_host.GLData.entries}, {"K831000"})

    @unittest.skipUnless(PROGRAM, "no account set can be made")
    def test_a_host_gives_its_own_data_connections(self):
        with tempfile.TemporaryDirectory() as folder:
            account_set = os.path.join(folder, "demo.vela")
            subprocess.run([PROGRAM, "account-set", "new", account_set, "--demo"], check=True,
                           stdout=subprocess.DEVNULL)
            # Nothing but the framework leads to the account set.
            python_host.register_components(self.front, os.path.join(folder, "nowhere.vela"))
            framework = HostFramework(self.front, account_set)
            self.front.set_framework(framework)
            templates = python_host.list_templates(self.front)
            self.assertEqual([template["FName"] for template in templates][:1], ["标准模板"])
            self.assertTrue(python_host.make_and_delete(self.front))
            self.assertIn("UserID=", framework.bound)
            self.assertGreater(framework.settled, 0)
            self.assertEqual({options for _, options in framework.executed}, {-1})
            if WITH_WINDOWS:
                del framework.executed[:]
                self.front.create("VelaVICenter.aplication").ShowVICenter()
                self.front.process_events()
                self.assertEqual(self.front.open_windows(), 1)
                self.front.close_windows()
                self.assertTrue(any("t_VchTemplateEntry" in text for text, _ in framework.executed))
            framework.refuse = "t_VchTemplate "
            shown = []
            self.front.on_message(lambda text, *_: shown.append(text) or 1)
            data = self.front.create("VelaVICenter.clsVIData")
            self.assertFalse(data.IsExecuteSql("delete t_VchTemplate where FID = -1"))
            self.assertEqual(shown, ["the host's own server refused"])
            self.front.set_framework(None)
            self.assertEqual(list(python_host.rows(data.GetVchTemplateByUserID(1))), [])
            data.release()
            framework.connection.Close()
            framework.connection.release()

    @unittest.skipUnless(WITH_WINDOWS, "built without windows")
    def test_windows_open_and_close(self):
        application = self.front.create("VelaVICenter.aplication")
        application.ShowVICenter()
        application.ShowVICenter()
        self.front.process_events(1)
        self.assertEqual(self.front.open_windows(), 2)
        self.front.close_windows()
        self.assertEqual(self.front.open_windows(), 0)
        self.front.run()

    @unittest.skipIf(WITH_WINDOWS, "built with windows")
    def test_without_windows_the_answer_is_an_error(self):
        with self.assertRaises(AutomationError) as caught:
            self.front.create("VelaVICenter.aplication").ShowVICenter()
        self.assertEqual(caught.exception.number, 429)
        caught.exception.__traceback__ = None


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
