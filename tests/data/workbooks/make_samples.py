#!/usr/bin/env python3
"""Makes the sample workbooks of this folder with other programs' writers (see README.md). Not run by any test.

Usage: make_samples.py, in this folder; needs Debian's python3-openpyxl, python3-xlsxwriter, python3-xlwt,
libreoffice-calc-nogui and gnumeric. What is not installed is left out.
"""
import datetime
import shutil
import subprocess

HEADERS = ["模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "附件数", "结算方式", "结算号", "核算项目",
           "币别", "汇率", "原币金额", "计量单位", "数量", "单价", "金额", "备注"]
ROWS = [
    [1, "提取现金", "借", "1001.10", "现金", 2, "支票", "0012", "01.01,02", "人民币", 1, 12.5, "公斤", 3, 0.1, 1234.56,
     "备注𠮷"],
    [1, None, "贷", 1002, "银行存款", None, None, None, None, "美元", 7.1234, 0.30000000000000004, None, None, None, -5,
     "=1+1"],
]


def openpyxl_sample():
    import openpyxl
    from openpyxl.comments import Comment
    from openpyxl.styles import Border, Side
    book = openpyxl.Workbook()
    book.active.title = "说明"
    book.active["A1"] = "=1+1"
    sheet = book.create_sheet("凭证模板")
    hidden = book.create_sheet("隐藏")
    hidden.sheet_state = "hidden"
    sheet.append([header.replace("(", "（").replace(")", "）") for header in HEADERS])
    for row in ROWS:
        sheet.append(row)
    sheet["Q3"].data_type = "s"
    sheet["Q3"].value = "=1+1"
    sheet["Q3"].data_type = "s"
    sheet["A1"].comment = Comment("批注", "somebody")
    sheet.auto_filter.ref = "A1:Q3"
    sheet.freeze_panes = "A2"
    sheet.column_dimensions["H"].hidden = True
    sheet.merge_cells("A6:C6")
    thin = Side(style="thin")
    for row in range(4, 8):
        for column in range(1, 18):
            sheet.cell(row, column).border = Border(thin, thin, thin, thin)
    book.save("openpyxl.xlsx")

    book = openpyxl.Workbook()
    book.epoch = openpyxl.utils.datetime.CALENDAR_MAC_1904
    sheet = book.active
    sheet.title = "dates"
    sheet["A1"] = datetime.datetime(2024, 1, 2)
    sheet["B1"] = datetime.datetime(2024, 1, 2, 3, 4, 5)
    sheet["C1"] = "#N/A"
    sheet["C1"].data_type = "e"
    sheet["D1"] = True
    book.save("openpyxl-1904.xlsx")


def xlsxwriter_sample():
    import xlsxwriter
    book = xlsxwriter.Workbook("xlsxwriter-inline.xlsx", {"constant_memory": True, "strings_to_formulas": False})
    sheet = book.add_worksheet("凭证模板")
    bold = book.add_format({"bold": True})
    for r, row in enumerate([HEADERS] + ROWS):
        for c, value in enumerate(row):
            if value is not None:
                sheet.write(r, c, value)
    book.close()

    book = xlsxwriter.Workbook("xlsxwriter-rich.xlsx")
    sheet = book.add_worksheet("rich")
    bold = book.add_format({"bold": True})
    sheet.write_rich_string("A1", "凭", bold, "证", "模板 ")
    sheet.write_formula("B1", '="文"&"本"', None, "文本")
    sheet.write_formula("C1", "=1/3", None, 1 / 3)
    sheet.write_formula("D1", "=1=1", None, True)
    sheet.write_formula("E1", "=1/0", None, "#DIV/0!")
    sheet.write_datetime("F1", datetime.datetime(2024, 1, 2), book.add_format({"num_format": "yyyy\"年\"m\"月\"d\"日\""}))
    sheet.write_number("G1", 12, book.add_format({"num_format": "0000"}))
    sheet.write_string(1048575, 16383, "last")
    book.close()


def xlwt_sample():
    import xlwt
    book = xlwt.Workbook()
    book.add_sheet("第一")
    sheet = book.add_sheet("凭证模板")
    for r, row in enumerate([HEADERS] + ROWS):
        for c, value in enumerate(row):
            if value is not None:
                sheet.write(r, c, value)
    date = xlwt.easyxf(num_format_str="YYYY-MM-DD")
    first = book.get_sheet(0)
    first.write(0, 0, datetime.datetime(2024, 1, 2), date)
    first.write(0, 1, True)
    first.write_rich_text(0, 2, ("凭证", ("模板", xlwt.easyfont("bold on"))))
    first.write(0, 3, xlwt.Formula("1/3"))
    book.save("xlwt.xls")


def office_samples():
    """What the two office programs make of the files above, the sheet with hidden and frozen parts among them."""
    plain = [("xlsxwriter-inline", "")]
    features = [("openpyxl", "-features"), ("openpyxl-1904", "-1904")]
    for source, mark in plain + features:
        if shutil.which("soffice"):
            for kind, name in (("xls", "MS Excel 97"), ("xlsx", "Calc MS Excel 2007 XML")):
                subprocess.run(["soffice", "--headless", "--convert-to", f"{kind}:{name}", "--outdir", "office",
                                f"{source}.xlsx"], check=True)
                shutil.move(f"office/{source}.{kind}", f"libreoffice{mark}.{kind}")
            shutil.rmtree("office")
        if shutil.which("ssconvert"):
            for kind, exporter in (("xls", "Gnumeric_Excel:excel_biff8"), ("xlsx", "Gnumeric_Excel:xlsx2")):
                subprocess.run(["ssconvert", "-T", exporter, f"{source}.xlsx", f"gnumeric{mark}.{kind}"], check=True)


openpyxl_sample()
xlsxwriter_sample()
xlwt_sample()
office_samples()
