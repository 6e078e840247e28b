#!/usr/bin/env python3
"""A small host in Python: its own security, log and look-up components, an account set, the window.

    python_host.py ACCOUNT_SET [--show]

lists the user's templates and their lines; with --show it opens the template center, makes a template and deletes
it again, and waits until the window is closed. VICENTER_LIBRARY names the library when it is not installed;
an account set with demo data is made by: vicenter account-set new FILE --demo
"""

import os
import sys

from vicenter_front import Library, Reference

USER = 16394


class ShareProps:
    """VelaPropsMgr.ShareProps: what the component learns of its host."""

    account_set = ""

    def GetProperty(self, process_id, name):
        if process_id != os.getpid() or name.lower() != "propsstring":
            return None
        return 'UserID=%d;ConnectString={Provider=VelaAccountSet;Data Source="%s"};' % (USER, self.account_set)


class SecurityInfo:
    """VelaEBSBase.SecurityInfo: everybody may do everything here."""

    asked = 0

    def __getattr__(self, name):
        if name.startswith("_"):
            raise AttributeError(name)

        def allow(*_):
            SecurityInfo.asked += 1
            return True

        return allow


class GLData:
    """VelaEBCGLView.GLData: the operation log, on the terminal."""

    entries = []

    def WriteLog(self, function_code, kind, text):
        GLData.entries.append((function_code, kind, text))
        print("log %s %d %s" % (function_code, kind, text))


class ExpView:
    """VelaVchExp.ExpView: a look-up that always picks nothing."""

    def __getattr__(self, name):
        if name.startswith("_"):
            raise AttributeError(name)
        return lambda *_: None


def rows(recordset):
    """The rows of a recordset as dictionaries."""
    while recordset is not None and not recordset.EOF.value:
        fields = recordset.Fields.value
        names = [fields.Item(i).Name.value for i in range(fields.Count.value)]
        yield {name: fields.Item(name).Value.value for name in names}
        recordset.MoveNext()


def list_templates(library):
    """The user's templates with their lines, through clsVIData."""
    data = library.create("VelaVICenter.clsVIData")
    templates = list(rows(data.GetVchTemplateByUserID(USER)))
    for template in templates:
        count = data.GetVchEntryCount(template["FID"])
        print("%5d  %-24s %4d lines" % (template["FID"], template["FName"], count))
        for line in rows(data.GetVchTemplateEntryInfo(template["FID"])):
            print("       %s %s %s" % (line["FNo"], line["FExp"], line["FAccountNumber"]))
    return templates


def make_and_delete(library):
    """A new custom template, found by its name and deleted again; its number comes back by reference."""
    data = library.create("VelaVICenter.clsVIData")
    number = Reference(0)
    new_id = data.InsertVchTemplateInfo(number)
    if new_id <= 0:
        print("no template was made")
        return False
    name = "自定义模板(%d)" % (number.value + 1)
    print("made %s (%d): %s" % (name, new_id, data.CheckVchTemplateIsExist(name)))
    deleted = data.DeleteVchTemplateInfo(new_id)
    print("deleted: %s, still there: %s" % (deleted, data.CheckVchTemplateIsExist(name)))
    return deleted and not data.CheckVchTemplateIsExist(name)


def register_components(library, account_set):
    ShareProps.account_set = account_set
    library.register("VelaPropsMgr.ShareProps", ShareProps)
    library.register("VelaEBSBase.SecurityInfo", SecurityInfo)
    library.register("VelaEBCGLView.GLData", GLData)
    library.register("VelaVchExp.ExpView", ExpView)


def main(arguments):
    if not arguments or arguments[0].startswith("-"):
        print(__doc__.strip())
        return 2
    library = Library()
    print("library %s" % library.version)
    register_components(library, os.path.abspath(arguments[0]))
    list_templates(library)
    make_and_delete(library)
    if "--show" in arguments:
        library.create("VelaVICenter.aplication").ShowVICenter()
        library.run()
    library.shutdown()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
