#!/usr/bin/env python3
"""Opens exported workbooks of both kinds in LibreOffice and compares every cell with the template: value, kind,
number format, font size, borders, fill, column width and row height; and how the sheet is printed. (What a window
has frozen does not survive the conversion without one.)

Usage: check_exports.py PROGRAM [FOLDER]
PROGRAM is the command line (build/dev/host/vicenter). With FOLDER the workbooks, what LibreOffice made of them and
a PDF of each are kept there, to be looked at. Needs Debian's libreoffice-calc-nogui.
Exit code 0: all alike; 1: differences, listed; 2: could not be run.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unicodedata
import xml.etree.ElementTree as xml
from decimal import Decimal

HEADERS = ["模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "附件数", "结算方式", "结算号", "核算项目",
           "币别", "汇率", "原币金额", "计量单位", "数量", "单价", "金额", "备注"]
FIELDS = ["FNo", "FExp", "FDC", "FAccountNumber", "FAcctountName", "FFileCount", "FSettleName", "FSettleNumber",
          "FItemsInfo", "FCurrencyName", "FRate", "FAmountFor", "FUnitName", "FQty", "FPrice", "FAmount", "FRemark"]
# By column: fewest and most decimals that are shown, thousands separated.
AMOUNTS = {11: (2, 4), 13: (0, 4), 14: (2, 10), 15: (2, 4)}
NUMBERS = {"FNo", "FFileCount", "FRate", "FAmountFor", "FQty", "FPrice", "FAmount"}

# Texts that a sheet could take for something else, one in every text column of a line.
EDGES = ["=1+1", "+1", "-1", "@x", "'", "'quoted'", "0012", "1001.10", "1e5", "12%", "1/2", "2024-01-02", "TRUE", "#N/A",
         "<&>", "&amp;", "_x000D_", "a  b   c", "a\nb", "１２３", "𠮷野家", "😀", "é", "长" * 80, "x" * 80]
EDGE_NUMBERS = ["0", "1", "0.0001", "0.1", "-0.01", "1234.5678", "999999999.9999", "-999999999.9999"]

NAMESPACES = {prefix: f"urn:oasis:names:tc:opendocument:xmlns:{name}" for prefix, name in
              (("office", "office:1.0"), ("table", "table:1.0"), ("text", "text:1.0"), ("style", "style:1.0"),
               ("number", "datastyle:1.0"), ("fo", "xsl-fo-compatible:1.0"))}


def name_of(prefixed):
    prefix, local = prefixed.split(":")
    return f"{{{NAMESPACES[prefix]}}}{local}"


def run(command, text=None):
    done = subprocess.run(command, input=text, capture_output=True, text=True)
    if done.returncode != 0:
        print(" ".join(command), done.stdout, done.stderr, sep="\n")
        sys.exit(2)
    return done.stdout


def paragraph_text(element):
    """The text of a paragraph: runs of blanks are written as a count."""
    text = element.text or ""
    for child in element:
        if child.tag == name_of("text:s"):
            text += " " * int(child.get(name_of("text:c"), "1"))
        elif child.tag == name_of("text:tab"):
            text += "\t"
        elif child.tag == name_of("text:line-break"):
            text += "\n"
        else:
            text += paragraph_text(child)
        text += child.tail or ""
    return text


class Sheet:
    """The first sheet of a flat OpenDocument file: cells by (row, column), each a dict."""

    def __init__(self, file):
        root = xml.parse(file).getroot()
        self.text_formats = {style.get(name_of("style:name")) for style in root.iter(name_of("number:text-style"))}
        self.styles = {style.get(name_of("style:name")): style for style in root.iter(name_of("style:style"))}
        tables = list(root.iter(name_of("table:table")))
        self.sheet_names = [table.get(name_of("table:name")) for table in tables]
        self.widths = []
        self.cells = {}
        self.heights = []
        for column in tables[0].iter(name_of("table:table-column")):
            repeated = int(column.get(name_of("table:number-columns-repeated"), "1"))
            style = self.styles[column.get(name_of("table:style-name"))]
            width = style.find("style:table-column-properties", NAMESPACES).get(name_of("style:column-width"))
            self.widths += [float(width.removesuffix("in"))] * min(repeated, 30)
        self.read_page(root, tables[0])
        row = 0
        for element in tables[0].iter(name_of("table:table-row")):
            repeated = int(element.get(name_of("table:number-rows-repeated"), "1"))
            style = self.styles[element.get(name_of("table:style-name"))]
            height = style.find("style:table-row-properties", NAMESPACES).get(name_of("style:row-height"))
            self.heights += [float(height.removesuffix("in"))] * min(repeated, 1000)
            column = 0
            for cell in element:
                count = int(cell.get(name_of("table:number-columns-repeated"), "1"))
                content = self.content_of(cell)
                if repeated < 1000 and count < 1000 and content:
                    for r in range(repeated):
                        for c in range(count):
                            self.cells[row + r, column + c] = content
                column += count
            row += repeated

    def read_page(self, root, table):
        """Orientation, pages that it is fitted to, rows on every page."""
        master = self.styles[table.get(name_of("table:style-name"))].get(name_of("style:master-page-name"))
        layouts = {page.get(name_of("style:name")): page.get(name_of("style:page-layout-name"))
                   for page in root.iter(name_of("style:master-page"))}
        self.page = None
        for layout in root.iter(name_of("style:page-layout")):
            if layout.get(name_of("style:name")) == layouts[master]:
                look = layout.find("style:page-layout-properties", NAMESPACES)
                self.page = (look.get(name_of("style:print-orientation")), look.get(name_of("style:scale-to-X")),
                             look.get(name_of("style:scale-to-Y"), "0"))  # without: as many as it takes
        titles = table.find("table:table-header-rows", NAMESPACES)
        self.titles = 0 if titles is None else len(list(titles.iter(name_of("table:table-row"))))

    def content_of(self, cell):
        style = self.styles.get(cell.get(name_of("table:style-name")))
        kind = cell.get(name_of("office:value-type"))
        paragraphs = [paragraph_text(p) for p in cell.findall("text:p", NAMESPACES)]
        if style is None and kind is None:
            return None
        found = {"value": None, "text format": False, "size": None, "border": None, "fill": None}
        if cell.get(name_of("table:formula")):
            found["value"] = "formula"
        elif kind == "float":
            found["value"] = float(cell.get(name_of("office:value")))
        elif kind == "string":
            found["value"] = "\n".join(paragraphs)
        elif kind is not None:
            found["value"] = kind
        if style is not None:
            found["text format"] = style.get(name_of("style:data-style-name")) in self.text_formats
            cell_look = style.find("style:table-cell-properties", NAMESPACES)
            text_look = style.find("style:text-properties", NAMESPACES)
            if cell_look is not None:
                found["border"] = cell_look.get(name_of("fo:border"))
                found["fill"] = cell_look.get(name_of("fo:background-color"))
            if text_look is not None:
                found["size"] = text_look.get(name_of("fo:font-size"))
        return found


def expected_value(field, line):
    value = line[field]
    if field == "FDC":
        return "借" if value == 1 else "贷"
    if field in NUMBERS:
        # The grid shows no rate without a currency.
        if field == "FRate" and not line["FCurrencyName"]:
            return None
        return float(value) or None
    return value.strip(" ") or None


def display_width(text):
    return max(sum(2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in part) for part in text.split("\n"))


def expected_widths(rows):
    """In characters of the standard font of 11 points: the contents at 10 points, and a margin."""
    def shown(value, c):
        if isinstance(value, str):
            return value
        if c not in AMOUNTS:
            return repr(value).removesuffix(".0")
        return f"{value:,.{decimals[c]}f}"
    def digits(value):
        return max(0, -Decimal(repr(value)).normalize().as_tuple().exponent) if isinstance(value, float) else 0
    decimals = {c: min(most, max([fewest] + [digits(row[c]) for row in rows])) for c, (fewest, most) in AMOUNTS.items()}
    return [min(255.0, max(display_width(shown(row[c], c)) for row in rows if row[c] is not None) * 10 / 11 + 1.5)
            for c in range(len(HEADERS))]


class Check:
    def __init__(self):
        self.differences = 0
        self.cells = 0

    def expect(self, place, what, expected, found):
        if expected != found:
            self.differences += 1
            print(f"{place}: {what}: expected {expected!r}, found {found!r}")

    def compare(self, name, lines, file):
        sheet = Sheet(file)
        self.expect(name, "sheets", ["凭证模板"], sheet.sheet_names)
        self.expect(name, "page", ("landscape", "1", "0"), sheet.page)
        self.expect(name, "rows on every page", 1, sheet.titles)
        rows = [HEADERS] + [[expected_value(field, line) for field in FIELDS] for line in lines]
        for r, row in enumerate(rows):
            for c, value in enumerate(row):
                place = f"{name} {chr(65 + c)}{r + 1}"
                cell = sheet.cells.pop((r, c), None)
                if cell is None:
                    self.expect(place, "cell", "one with a format", None)
                    continue
                self.cells += 1
                self.expect(place, "value", value, cell["value"])
                self.expect(place, "text format", c == 3, cell["text format"])
                self.expect(place, "size", "10pt", cell["size"])
                self.expect(place, "border", "0.74pt solid #000000", cell["border"])
                self.expect(place, "fill", "#99ccff" if r == 0 else None, cell["fill"])
        for (r, c), cell in sheet.cells.items():
            if cell["value"] is not None or cell["border"] is not None or cell["fill"] is not None:
                self.expect(f"{name} {chr(65 + c)}{r + 1}", "cell", None, cell)
        for r, height in enumerate(sheet.heights[:len(rows)]):
            # Room for a Chinese character of the sheet's font.
            if height < 0.187:
                self.expect(f"{name} row {r + 1}", "height", "at least 0.187", height)
        widths = expected_widths(rows)
        unit = sum(sheet.widths[:len(widths)]) / sum(widths)
        for c, width in enumerate(widths):
            if abs(sheet.widths[c] / unit - width) > 0.1:
                self.expect(f"{name} {chr(65 + c)}", "width", round(width, 2), round(sheet.widths[c] / unit, 2))


def edge_template():
    """T-SQL that makes a template of the edge values."""
    sql = "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(900,'边界',1,'',getdate())\n"
    texts = [f for f in FIELDS if f not in NUMBERS and f != "FDC"]
    decimals = [f for f in FIELDS if f in NUMBERS and f not in ("FNo", "FFileCount")]
    room = {"FCurrencyName": 30}
    for i, edge in enumerate(EDGES):
        values = ["900", str(i + 1), str(i // 2 + 1), str(i % 2), str(i % 3)]
        values += ["N'" + edge[:room.get(field, 80)].replace("'", "''") + "'" for field in texts]
        values += [EDGE_NUMBERS[(i + j) % len(EDGE_NUMBERS)] for j in range(len(decimals))]
        sql += (f"insert into t_VchTemplateEntry(FID,FEntryID,FNo,FDC,FFileCount,{','.join(texts + decimals)}) "
                f"values({','.join(values)})\n")
    return sql


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    soffice = shutil.which("soffice")
    if soffice is None:
        print("LibreOffice is not installed: apt-get install --no-install-recommends libreoffice-calc-nogui")
        sys.exit(2)
    with tempfile.TemporaryDirectory() as temporary:
        folder = sys.argv[2] if len(sys.argv) > 2 else os.path.join(temporary, "exports")
        os.makedirs(folder, exist_ok=True)
        vicenter = [sys.argv[1], "--account-set", os.path.join(temporary, "set.vas"), "--yes"]
        run([sys.argv[1], "account-set", "new", os.path.join(temporary, "set.vas"), "--demo"])
        run(vicenter + ["sql"], edge_template())
        run(vicenter + ["sql"], "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                                "values(901,'空',1,'',getdate())\n")
        templates = json.loads(run(vicenter + ["--json", "list"]))
        convert = [soffice, f"-env:UserInstallation=file://{temporary}/profile", "--headless"]
        check = Check()
        for kind in ("xlsx", "xls"):
            into = os.path.join(folder, kind)
            os.makedirs(into, exist_ok=True)
            files = []
            for template in templates:
                files.append(os.path.join(into, f"{template['FID']}.{kind}"))
                run(vicenter + ["export", template["FName"], files[-1]])
            run(convert + ["--convert-to", "fods", "--outdir", into] + files)
            if len(sys.argv) > 2:
                run(convert + ["--convert-to", "pdf", "--outdir", into] + files)
            for template in templates:
                lines = json.loads(run(vicenter + ["--json", "show", template["FName"]]))["lines"]
                check.compare(f"{template['FName']}.{kind}", lines, os.path.join(into, f"{template['FID']}.fods"))
        print(f"{len(templates)} templates, both kinds, {check.cells} cells, {check.differences} differences")
        sys.exit(1 if check.differences or not check.cells else 0)


if __name__ == "__main__":
    main()
