"""Texts for users: a blank parts Chinese from Latin letters, one way everywhere.

Usage: texts_test.py SOURCE_FOLDER
"""

import pathlib
import re
import sys

FOLDERS = ["autovch", "center", "dialogs", "entry", "exchange", "host", "platform", "store", "ui"]
LITERAL = re.compile(r'"((?:[^"\\\\]|\\\\.)*)"')
TOUCHING = re.compile("[\u4e00-\u9fff][A-Za-z]|[A-Za-z][\u4e00-\u9fff]")
# Texts that are what they are, to the character.
FIXED = {
    "Orbis提示",
    "安装的Excel版本不支持xlsx格式！",
    "引入模板失败！模板文件结构不正确，无法找到[凭证模板]sheet页！",
    "检测当前系统未安装Excel，引入失败！",
    "检测当前系统未安装Excel，引出失败！",
    "选择导入文件类型不正确，请确认是Excel文件！",
}


def literals(source):
    for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
        for match in LITERAL.finditer(re.sub(r"(^|\s)//.*", "", line)):
            yield number, match.group(1)


def main():
    root = pathlib.Path(sys.argv[1])
    seen = set()
    wrong = []
    texts = 0
    for folder in FOLDERS:
        for source in sorted((root / folder).rglob("*")):
            if source.suffix not in {".cpp", ".h"}:
                continue
            for number, text in literals(source):
                texts += 1
                if text in FIXED:
                    seen.add(text)
                elif TOUCHING.search(re.sub(r"\\[nrt]", " ", text)):
                    wrong.append(f"{source.relative_to(root)}:{number}: {text}")
    assert texts > 3000, texts
    assert not FIXED - seen, FIXED - seen
    assert not wrong, "\n".join(wrong)


main()
