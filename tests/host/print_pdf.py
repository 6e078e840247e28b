"""Templates in PDF files, as another program reads them: every pattern on one page, sums, page numbers, account
set, user and day. And what `doctor` says of the machine that this runs on.

Usage: print_pdf.py [EMULATOR] PROGRAM
"""

import datetime
import json
import os
import subprocess
import sys
import tempfile


class Program:
    def __init__(self, command, home):
        self.command = command
        self.environment = dict(os.environ, HOME=home, XDG_DATA_HOME=home)
        self.account_set = []

    def on_demo_set(self, file):
        self.run("account-set", "new", file, "--demo")
        self.account_set = ["--account-set", file]

    def run(self, *arguments, text="", code=0):
        done = subprocess.run([*self.command, *self.account_set, *arguments], env=self.environment, input=text, capture_output=True,
                              text=True, check=False)
        assert done.returncode == code, (arguments, done.returncode, done.stdout, done.stderr)
        return done.stdout


def pages_of(file):
    text = subprocess.run(["pdftotext", "-layout", file, "-"], capture_output=True, text=True, check=True).stdout
    # Signs of radicals, which fonts draw as the characters, are found by nobody.
    assert not [c for c in text if "\u2e80" <= c <= "\u2fdf"], text
    return text.split("\f")[:-1]


def pattern(number, lines):
    """A balanced pattern, so many lines on the debit side."""
    rows = [{"FNo": number, "FExp": f"第{number}号摘要", "FDC": "借", "FAccountNumber": "1001",
             "FAcctountName": "库存现金", "FAmount": "10.5"} for _ in range(lines)]
    rows.append({"FNo": number, "FExp": f"第{number}号摘要", "FDC": "贷", "FAccountNumber": "1001",
                 "FAcctountName": "库存现金", "FAmount": str(10.5 * lines)})
    return rows


def check_template(program, folder):
    program.run("--yes", "new")
    name = program.run("list").splitlines()[-1].split("\t")[1]
    rows = [row for number in range(1, 31) for row in pattern(number, 1 + number % 7)]
    program.run("save", name, text=json.dumps({"lines": rows}))
    file = os.path.join(folder, "模板.pdf")
    program.run("print", name, file)
    pages = pages_of(file)
    assert len(pages) > 3, len(pages)
    for index, page in enumerate(pages):
        assert f"第 {index + 1} 页，共 {len(pages)} 页" in page, page
        assert name in page, page
        assert "账套：林氏茶礼商贸有限公司" in page and "用户：林晓岚" in page, page
        assert "日期：" + datetime.date.today().isoformat() in page, page
        assert "（续）" not in page, page
    for number in range(1, 31):
        # All lines of a pattern and its sums stand on the page of its caption.
        at = [page for page in pages if f"模板编号 {number}\n" in page]
        assert len(at) == 1, (number, len(at))
        assert at[0].count(f"第{number}号摘要") == 2 + number % 7, number
        assert f"{10.5 * (1 + number % 7):,.2f}" in at[0], number
    assert sum(page.count("合计") for page in pages) == 30


def check_long_pattern(program, folder):
    """Higher than a page: parted between lines, with its sums once."""
    program.run("--yes", "new")
    name = program.run("list").splitlines()[-1].split("\t")[1]
    program.run("save", name, text=json.dumps({"lines": pattern(1, 120)}))
    file = os.path.join(folder, "long.pdf")
    program.run("print", name, file)
    pages = pages_of(file)
    assert len(pages) > 1
    assert sum(page.count("第1号摘要") for page in pages) == 121
    assert ["（续）" in page for page in pages] == [False] + [True] * (len(pages) - 1)
    assert sum(page.count("合计") for page in pages) == 1 and "合计" in pages[-1]


TEXTS = ["购A4纸2包", "iPhone15手机3台", "2026年11月123元", "ＡＢＣ１２３全角", "Room 101 Wi-Fi 5G", "abc123def456",
         "结转X1Y2Z3成本", "PO-2026/0017号", "3M胶带10卷", "H2O水费 50%", "office fi ffi fl", "Café é ü", "（1）【2】《3》",
         "AVATAR To Te", "用户、丸、丹、角"]


def check_texts(program, folder):
    """What is copied out of the file is what stood in the cells."""
    program.run("--yes", "new")
    name = program.run("list").splitlines()[-1].split("\t")[1]
    rows = []
    for number, text in enumerate(TEXTS, 1):
        side = {"FNo": number, "FExp": text, "FAmount": f"12345678.{number:02}"}
        rows += [dict(side, FDC="借", FAccountNumber="1002.01", FAcctountName="工行A4户"),
                 dict(side, FDC="贷", FAccountNumber=f"99{number}.A{number}", FAcctountName="3M胶")]
    program.run("save", name, text=json.dumps({"lines": rows}))
    file = os.path.join(folder, "texts.pdf")
    program.run("print", name, file)
    text = "\n".join(pages_of(file))
    for number, wanted in enumerate(TEXTS, 1):
        assert text.count(wanted) >= 2, (wanted, text)
        assert f"99{number}.A{number} 3M胶" in text, (number, text)
        assert text.count(f"12,345,678.{number:02}") == 4, (number, text)
    assert text.count("1002.01 工行A4户") == len(TEXTS), text


def check_what_is_read_wrongly(program, folder):
    """A line end is one on paper, too; marks that turn what is behind them are seen; no amount is parted."""
    program.run("sql", text="insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                "values(990,N'怪字',1,'',getdate())\n" + "".join(
                    "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountNumber,FAcctountName,FAmount) "
                    f"values(990,{line},1,{text},{line % 2},N'1001',N'库存现金',{amount})\n"
                    for line, (text, amount) in enumerate([
                        ("N'第一'+nchar(13)+nchar(10)+N'第二'", "12345678901.2345"),
                        ("N'行首'+nchar(8232)+N'行尾'", "-1234567.8901"),
                        ("N'转'+nchar(8238)+N'abc'", "999999999999.9999"),
                        ("N'长摘要'", "1")])))
    file = os.path.join(folder, "odd.pdf")
    program.run("print", "怪字", file)
    text = "\n".join(pages_of(file))
    assert "第一第二" not in text and "第一" in text and "第二" in text, text
    assert "行首行尾" not in text and "行首" in text and "行尾" in text, text
    assert "abc" in text and "cba" not in text, text
    # Those of the lines and the sums of either side.
    for amount in ("12,345,678,901.2345", "-1,234,567.8901", "999,999,999,999.9999", "1,012,345,678,901.2344",
                   "-1,234,566.8901"):
        assert amount in text, (amount, text)


def check_large_amounts(program, folder):
    """A number stands on one line, however many digits it has."""
    program.run("--yes", "new")
    name = program.run("list").splitlines()[-1].split("\t")[1]
    largest = {"FAmount": "999999998.1234", "FAmountFor": "999999998.4321", "FCurrencyName": "美元",
               "FRate": "1.0123456789", "FQty": "999999997.5678", "FPrice": "999999996.0987654321"}
    line = {"FNo": 1, "FExp": "大额", "FAccountNumber": "1001", "FAcctountName": "库存现金"}
    rows = [dict(line, FDC="借", **largest) for _ in range(1200)]
    rows += [dict(line, FDC="贷", FAmount="999999999") for _ in range(2)]
    program.run("save", name, text=json.dumps({"lines": rows}))
    file = os.path.join(folder, "large.pdf")
    program.run("print", name, file)
    text = "\n".join(pages_of(file))
    for number in ("999,999,998.1234", "999,999,998.4321", "1.0123456789", "999,999,997.5678",
                   "999,999,996.0987654321"):
        assert text.count(number) == 1200, (number, text.count(number))
    for number in ("1,199,999,997,748.08", "1,999,999,998.00", "1,197,999,997,750.08"):
        assert number in text, (number, text[-2000:])


def check_voucher(program, folder):
    file = os.path.join(folder, "voucher.pdf")
    program.run("print", "外币业务（待核对）", file, "--number", "3")
    text = "".join(pages_of(file))
    assert "模板编号 3" in text and "模板编号 2" not in text, text
    assert "第 1 行：科目代码 1002，不是明细科目" in text.replace("\n", ""), text
    program.run("print", "标准模板", os.path.join(folder, "no", "where.pdf"), code=1)


def check_doctor(program, folder):
    answer = json.loads(program.run("--json", "doctor"))
    areas = {finding["area"] for finding in answer["findings"]}
    assert answer["ok"] and {"程序", "字体", "驱动", "账套", "用户", "宿主"} <= areas, answer
    assert any("中文字体：" in finding["text"] for finding in answer["findings"]), answer
    secret = "geheim-1234"
    missing = ("Provider=SQLOLEDB;Data Source=127.0.0.1,1;Initial Catalog=x;User ID=sa;"
               f"Password={secret};Connect Timeout=1")
    for form in ([], ["--json"]):
        done = subprocess.run([*program.command, *form, "--connect", missing, "doctor"], env=program.environment,
                              capture_output=True, text=True, check=False)
        assert done.returncode == 1, done
        assert secret not in done.stdout + done.stderr, done
        assert "账套不能打开" in done.stdout, done
    # It looks, and makes nothing.
    with tempfile.TemporaryDirectory() as empty:
        fresh = Program(program.command, empty)
        fresh.run("doctor")
        assert not any(name.endswith(".vas") for _, _, names in os.walk(empty) for name in names)


def main():
    with tempfile.TemporaryDirectory() as folder:
        program = Program(sys.argv[1:], folder)
        program.on_demo_set(os.path.join(folder, "demo.vas"))
        check_template(program, folder)
        check_long_pattern(program, folder)
        check_texts(program, folder)
        check_what_is_read_wrongly(program, folder)
        check_large_amounts(program, folder)
        check_voucher(program, folder)
        check_doctor(program, folder)


main()
