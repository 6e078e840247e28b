"""The library from Python: a host's components, the account set, the windows, without a leak.

    python_front_test.py LIBRARY WITH_WINDOWS [VICENTER_PROGRAM]
"""

import datetime
import decimal
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
