#!/usr/bin/python3
"""Makes 211 template workbooks with five other programs, imports them all with the command line and compares every line
that came out with what was put in, and every refusal with the faults that were put in. What `show` prints of some of
them is saved again and must be the same.

Usage: check_imports.py PROGRAM [FOLDER]
PROGRAM is the command line (build/dev/host/vicenter). With FOLDER the workbooks are kept there. Needs Debian's
python3-openpyxl, python3-xlsxwriter, python3-xlwt, libreoffice-calc-nogui and gnumeric; the latter two write every
third workbook of the former three again, as .xlsx and as .xls.
Exit code 0: all as expected; 1: differences, listed; 2: could not be run.
"""
import datetime
import decimal
import glob
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile

try:
    import openpyxl
    import xlsxwriter
    import xlwt
except ImportError as missing:
    print(f"{missing}; the packages: python3-openpyxl python3-xlsxwriter python3-xlwt")
    sys.exit(2)

HEADERS = ["模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "附件数", "结算方式", "结算号", "核算项目",
           "币别", "汇率", "原币金额", "计量单位", "数量", "单价", "金额", "备注"]
FIELDS = ["FNo", "FExp", "FDC", "FAccountNumber", "FAcctountName", "FFileCount", "FSettleName", "FSettleNumber",
          "FItemsInfo", "FCurrencyName", "FRate", "FAmountFor", "FUnitName", "FQty", "FPrice", "FAmount", "FRemark"]
FIELD_OF = dict(zip(HEADERS, FIELDS))
TEXTS = ["摘要(*)", "科目名称(*)", "结算方式", "结算号", "核算项目", "币别", "计量单位", "备注"]
NUMBERS = ["汇率", "原币金额", "数量", "单价", "金额"]
REQUIRED = 5
EACH = 33  # workbooks of each writer
SAVED_AGAIN = 5  # of so many templates one
PACKAGES = "python3-openpyxl python3-xlsxwriter python3-xlwt libreoffice-calc-nogui gnumeric"
ESCAPED = "_x000D_"  # what the format writes for a character; as a text of its own it must be escaped

EDGE_TEXTS = ["提取现金", "a  b", "１２３", "𠮷野家", "😀", "é", "=1+1", "'x'", "<&>", ESCAPED, "0012", "1e5", "TRUE",
              "2024-01-02", "a\nb", "长" * 30, "，、；", "%", "#N/A "]


class Given:
    """A cell: what the writer is told, and what the import must make of it."""

    def __init__(self, value, expected, number_format=None, formula=None, fault=None):
        self.value, self.expected, self.number_format = value, expected, number_format
        self.formula, self.fault = formula, fault


def plain(number):
    text = f"{number:.10f}".rstrip("0").rstrip(".")
    return "0" if text in ("", "-0") else text


def text_cell(rng):
    kind = rng.randrange(12)
    if kind == 0:
        return Given(1001.1, "1001.10", "0.00")
    if kind == 1:
        return Given(12, "0012", "0000")
    if kind == 2:
        return Given(datetime.datetime(2024, 1, 2), "2024-01-02", "yyyy-mm-dd")
    if kind == 3:
        return Given(rng.randrange(1000, 9999), None)
    if kind == 4:
        return Given("  前后空格 ", "前后空格")
    if kind == 5:
        return Given(datetime.time(10, 20, 30), "10:20:30", "hh:mm:ss")
    if kind == 6:
        return Given(123456789012345, "123456789012345")
    text = rng.choice(EDGE_TEXTS)
    return Given(text, text.strip())


def number_cell(rng, places):
    kind = rng.randrange(9)
    amount = round(rng.uniform(-5, 99999), min(places, rng.randrange(5)))
    if kind == 0:
        return Given(f"{abs(amount):,.2f}", plain(round(abs(amount), 2)))
    if kind == 1:
        return Given(abs(amount), plain(abs(amount)), "#,##0.00")
    if kind == 2:
        return Given("￥1,234.50", "1234.5")
    if kind == 3:
        return Given("（12.5）", "-12.5")
    if kind == 4:
        return Given(0.125, "0.125", "0.0%")
    if kind == 5:
        return Given(2580, "2580", None, "860*3")
    if kind == 6:
        return Given(33.5, "33.5", None, "ROUND(100.5/3,1)")
    if kind == 7:
        return Given(7, "7", None, 'IF(1<2,7,VLOOKUP(1,A1:B2,2))')
    return Given(amount, plain(amount))


def fault_cell(rng, header):
    """A cell that must be refused at its place."""
    if header in NUMBERS:
        return rng.choice([Given("一百", None, fault=True), Given(True, None, fault=True),
                           Given("9" * 30, None, fault=True), Given("2,5", None, fault=True)])
    if header == "借/贷(*)":
        return Given("借方", None, fault=True)
    if header in ("模板编号(*)", "附件数"):
        return Given("40000", None, fault=True)
    if header == "科目代码(*)":
        return Given(6222021234567890123, None, fault=True)
    return Given("长" * 300, None, fault=True)


def make_sheet(seed):
    """Headers and rows of cells; no cell at all is None."""
    rng = random.Random(seed)
    optional = [header for header in HEADERS[REQUIRED:] if rng.random() < 0.7] or ["备注"]
    headers = HEADERS[:REQUIRED] + optional
    if seed % 3 == 1:
        rng.shuffle(headers)
        if headers[-1] in HEADERS[:REQUIRED]:
            headers.append(headers.pop(headers.index(optional[0])))
    rows = []
    for _ in range(rng.randrange(1, 9)):
        row = {}
        row["模板编号(*)"] = rng.choice([Given(1, "1"), Given("2", "2"), Given("　3 ", "3"), Given(4, "4", "0000")])
        row["借/贷(*)"] = rng.choice([Given("借", "1"), Given("贷", "0"), Given(" 借 ", "1"), Given("贷\u200b", "0")])
        row["科目代码(*)"] = rng.choice([Given("1001.10", "1001.10"), Given(1002, "1002"), Given("\ufeff1002.01", "1002.01"),
                                     Given(1001.5, "1001.50", "0.00")])
        row["附件数"] = rng.choice([None, Given(3, "3"), Given("２", "2")])
        for header in TEXTS:
            row[header] = text_cell(rng) if header in ("摘要(*)", "科目名称(*)") or rng.random() < 0.6 else None
        for header in NUMBERS:
            places = 10 if header in ("汇率", "单价") else 4
            row[header] = number_cell(rng, places) if rng.random() < 0.7 else None
        rows.append([row[header] for header in headers])
    if seed % 5 == 4:
        place = rng.randrange(len(headers))
        rows[rng.randrange(len(rows))][place] = fault_cell(rng, headers[place])
    return headers, rows


def without_escapes(rows):
    """For writers that write the escape as it stands, so that it means the character."""
    for row in rows:
        for cell in row:
            if cell is not None and cell.value == ESCAPED:
                cell.value = cell.expected = "x000D"


def expected_of(headers, rows):
    """Lines by field, and the (row, column) of every fault."""
    lines, faults = [], []
    for r, row in enumerate(rows):
        line = {}
        for c, cell in enumerate(row):
            if cell is not None and cell.fault:
                faults.append((r + 2, c + 1))
            elif cell is not None:
                line[FIELD_OF[headers[c]]] = plain(cell.value) if cell.expected is None else cell.expected
        lines.append(line)
    return lines, faults


def write_openpyxl(file, headers, rows, seed):
    book = openpyxl.Workbook()
    if seed % 4 == 2:
        book.epoch = openpyxl.utils.datetime.CALENDAR_MAC_1904
    book.active.title = "凭证模板"
    sheet = book.active
    if seed % 2:
        book.create_sheet("说明", 0)
    for r, row in enumerate([[Given(header, "") for header in headers]] + rows):
        for c, given in enumerate(row):
            if given is None:
                continue
            cell = sheet.cell(r + 1, c + 1)
            if given.formula:
                cell.value = "=" + given.formula
            elif isinstance(given.value, str):
                cell.data_type, cell._value = "s", given.value
            else:
                cell.value = given.value
            if given.number_format:
                cell.number_format = given.number_format
    sheet.freeze_panes = "A2"
    sheet.column_dimensions["B"].hidden = bool(seed % 2)
    book.save(file)


def write_xlsxwriter(file, headers, rows, seed):
    book = xlsxwriter.Workbook(file, {"constant_memory": bool(seed % 2), "date_1904": seed % 4 == 2})
    sheet = book.add_worksheet("凭证模板")
    if seed % 3 == 0:
        book.add_worksheet("Sheet2")
    for r, row in enumerate([[Given(header, "") for header in headers]] + rows):
        for c, given in enumerate(row):
            if given is None:
                continue
            look = book.add_format({"num_format": given.number_format}) if given.number_format else None
            if given.formula:
                # Without a value it writes 0 and asks for calculation.
                arguments = [] if seed % 2 else [given.value]
                sheet.write_formula(r, c, "=" + given.formula, look, *arguments)
            elif isinstance(given.value, str):
                sheet.write_string(r, c, given.value, look)
            elif isinstance(given.value, bool):
                sheet.write_boolean(r, c, given.value, look)
            elif isinstance(given.value, (datetime.date, datetime.time)):
                sheet.write_datetime(r, c, given.value, look)
            else:
                sheet.write_number(r, c, given.value, look)
    sheet.set_landscape()
    sheet.autofilter(0, 0, len(rows), len(headers) - 1)
    book.close()


def write_xlwt(file, headers, rows, seed):
    book = xlwt.Workbook()
    book.dates_1904 = 1 if seed % 4 == 2 else 0
    sheet = book.add_sheet("凭证模板")
    book.add_sheet("说明")
    for r, row in enumerate([[Given(header, "") for header in headers]] + rows):
        for c, given in enumerate(row):
            if given is None:
                continue
            style = xlwt.easyxf(num_format_str=given.number_format) if given.number_format else xlwt.Style.default_style
            value = given.value
            if given.formula:
                value = xlwt.Formula(given.formula)
            elif isinstance(value, datetime.datetime) and book.dates_1904:
                # It knows the setting and counts from 1900 all the same.
                value = (value - datetime.datetime(1904, 1, 1)).days
            elif isinstance(value, datetime.time):
                value = (value.hour * 3600 + value.minute * 60 + value.second) / 86400
            elif isinstance(value, int) and not isinstance(value, bool):
                value = float(value)
            sheet.write(r, c, value, style)
    book.save(file)


WRITERS = {"openpyxl": (write_openpyxl, "xlsx"), "xlsxwriter": (write_xlsxwriter, "xlsx"), "xlwt": (write_xlwt, "xls")}


def run(command):
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        print(" ".join(command), done.stdout, done.stderr, sep="\n")
        sys.exit(2)


def seed_of(file):
    return int(os.path.basename(file).split("-")[1].split(".")[0])


def is_unwritten(file):
    """Formulas that xlsxwriter gives the result 0, to be calculated by whoever opens the file."""
    return os.path.basename(file).startswith("xlsxwriter") and seed_of(file) % 2 == 1


def convert(folder, expected):
    """Every third workbook once more by the office programs, unless they would take the 0 of a formula for its result."""
    files = [file for file in sorted(glob.glob(f"{folder}/*.xls*"))
             if seed_of(file) % 3 == 0 and not is_unwritten(file)]
    for program, ending, kind, arguments in (
            ("soffice", "lo-xlsx", "xlsx", ["--headless", "--convert-to", "xlsx:Calc MS Excel 2007 XML"]),
            ("soffice", "lo-xls", "xls", ["--headless", "--convert-to", "xls:MS Excel 97"]),
            ("ssconvert", "gnumeric-xlsx", "xlsx", ["-T", "Gnumeric_Excel:xlsx2"]),
            ("ssconvert", "gnumeric-xls", "xls", ["-T", "Gnumeric_Excel:excel_biff8"])):
        if not shutil.which(program):
            print(f"{program} not found; the packages: {PACKAGES}")
            sys.exit(2)
        with tempfile.TemporaryDirectory() as out:
            if program == "soffice":
                run([program, f"-env:UserInstallation=file://{out}/profile", *arguments, "--outdir", out, *files])
            for file in files:
                stem = os.path.splitext(os.path.basename(file))[0]
                target = f"{out}/{stem}.{kind}"
                if program == "ssconvert":
                    run([program, *arguments, file, target])
                shutil.move(target, f"{folder}/{stem}-{ending}.{kind}")
                headers, lines, faults = expected[os.path.basename(file)]
                if ending == "gnumeric-xls" and file.endswith("xlsx"):
                    # It reads the escape as it stands, and writes it so.
                    lines = [{field: text.replace(ESCAPED, "_x005F" + ESCAPED) for field, text in line.items()}
                             for line in lines]
                expected[f"{stem}-{ending}.{kind}"] = (headers, lines, faults)


def stored_lines(base):
    """The lines of every template by its name, in their order, numbers without surplus zeros."""
    query = ("select t.FName as FTemplate, e.* from t_VchTemplate t inner join t_VchTemplateEntry e on t.FID = e.FID "
             "order by t.FID, e.FEntryID")
    done = subprocess.run(base + ["--json", "sql"], input=query, capture_output=True, text=True)
    result = json.loads(done.stdout)[0]["results"][0]
    lines = {}
    for row in result["rows"]:
        line = {column: "" if value is None else str(value) for column, value in zip(result["columns"], row)}
        for field in (FIELD_OF[header] for header in NUMBERS):
            line[field] = plain(decimal.Decimal(line[field]))
        lines.setdefault(line["FTemplate"], []).append(line)
    return lines


def saved_again(base, name):
    """Differences between a template and what `save` makes of what `show` prints of it."""
    shown = subprocess.run(base + ["--json", "show", name], capture_output=True, text=True).stdout
    saved = subprocess.run(base + ["save", name], input=shown, capture_output=True, text=True)
    if saved.returncode != 0:
        return [f"{name}: not saved again: {saved.stdout}{saved.stderr}"]
    again = subprocess.run(base + ["--json", "show", name], capture_output=True, text=True).stdout
    own = ("FEntryID", "FAccountID", "FSettleID", "FCurrencyID", "FUnitID", "faulty")

    def lines(text):
        return [{field: value for field, value in line.items() if field not in own} for line in json.loads(text)["lines"]]
    return [f"{name}: saved again {b}, was {a}" for a, b in zip(lines(shown), lines(again)) if a != b]


def compare(name, wanted, got, headers):
    differences = []
    if len(wanted) != len(got):
        return [f"{name}: {len(wanted)} lines expected, {len(got)} found"]
    for i, (want, line) in enumerate(zip(wanted, got)):
        for field in (FIELD_OF[header] for header in headers):
            empty = "0" if FIELDS.index(field) in (5, 10, 11, 13, 14, 15) else ""
            if line[field] != want.get(field, empty):
                differences.append(
                    f"{name}: line {i + 1} {field}: {want.get(field, empty)!r} expected, {line[field]!r} found")
    return differences


def main():
    if len(sys.argv) not in (2, 3):
        print(__doc__)
        return 2
    program = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as temporary:
        folder = os.path.abspath(sys.argv[2]) if len(sys.argv) == 3 else temporary + "/books"
        os.makedirs(folder, exist_ok=True)
        expected = {}
        for writer, (write, kind) in WRITERS.items():
            for seed in range(EACH):
                headers, rows = make_sheet(seed + 1000 * len(writer))
                if writer != "xlsxwriter":
                    without_escapes(rows)
                name = f"{writer}-{seed:02}.{kind}"
                write(f"{folder}/{name}", headers, rows, seed)
                expected[name] = (headers, *expected_of(headers, rows))
        convert(folder, expected)
        base = [program, "--account-set", temporary + "/a.vas"]
        run([program, "account-set", "new", temporary + "/a.vas", "--demo"])
        done = subprocess.run(base + ["--json", "--yes", "import", folder], capture_output=True, text=True)
        try:
            answer = json.loads(done.stdout)
        except ValueError:
            print(done.stdout[:2000], done.stderr[:2000])
            return 2
        written = {os.path.basename(entry["file"]): entry["FName"] for entry in answer["data"]}
        refused = {os.path.basename(entry["file"]): entry for entry in answer["refused"]}
        stored = stored_lines(base)
        differences, again = [], []
        for name, (headers, lines, faults) in sorted(expected.items()):
            if name in refused:
                found = [(fault["row"], fault["column"]) for fault in refused[name]["faults"]]
                if found != faults:
                    differences.append(f"{name}: refused at {found}, expected {faults}: {refused[name]}")
            elif name not in written:
                differences.append(f"{name}: neither imported nor refused")
            elif faults:
                differences.append(f"{name}: imported in spite of faults at {faults}")
            else:
                differences += compare(name, lines, stored[written[name]], headers)
                if len(again) * SAVED_AGAIN < len(written):
                    again.append(name)
                    differences += saved_again(base, written[name])
        print("\n".join(differences))
        print(f"{len(expected)} workbooks: {len(written)} imported, {len(refused)} refused, "
              f"{len(again)} saved again, {len(differences)} differences; totals {answer['totals']}")
        return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
