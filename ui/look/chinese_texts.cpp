#include "ui/look/chinese_texts.h"

#include <QHash>

namespace vicenter::ui {

namespace {

struct Entry {
    const char* source;
    const char* chinese;
};

constexpr Entry kEntries[] = {
    {"OK", "确定"},
    {"&OK", "确定(&O)"},
    {"Cancel", "取消"},
    {"&Cancel", "取消(&C)"},
    {"&Yes", "是(&Y)"},
    {"&No", "否(&N)"},
    {"Close", "关闭"},
    {"&Close", "关闭(&C)"},
    {"Save", "保存"},
    {"&Save", "保存(&S)"},
    {"Open", "打开"},
    {"&Open", "打开(&O)"},
    {"Apply", "应用"},
    {"&Undo", "撤消(&U)"},
    {"&Redo", "重做(&R)"},
    {"Cu&t", "剪切(&T)"},
    {"&Copy", "复制(&C)"},
    {"&Paste", "粘贴(&P)"},
    {"Delete", "删除"},
    {"&Delete", "删除(&D)"},
    {"Select All", "全选"},
    {"Back", "后退"},
    {"Forward", "前进"},
    {"Parent Directory", "上一级文件夹"},
    {"Create New Folder", "新建文件夹"},
    {"&New Folder", "新建文件夹(&N)"},
    {"New Folder", "新建文件夹"},
    {"List View", "列表"},
    {"Detail View", "详细信息"},
    {"&Rename", "重命名(&R)"},
    {"Show &hidden files", "显示隐藏文件(&H)"},
    {"All Files (*)", "所有文件 (*)"},
    {"All files (*)", "所有文件 (*)"},
    {"Files of type:", "文件类型："},
    {"Look in:", "位置："},
    {"File &name:", "文件名(&N)："},
    {"Directory:", "文件夹："},
    {"&Choose", "选择(&C)"},
    {"Name", "名称"},
    {"Size", "大小"},
    {"Type", "类型"},
    {"Kind", "种类"},
    {"Date Modified", "修改日期"},
    {"Computer", "计算机"},
    {"My Computer", "我的电脑"},
    {"Recent Places", "最近访问的位置"},
    {"Remove", "移除"},
    {"%1 already exists.\nDo you want to replace it?", "%1 已经存在。\n要替换它吗？"},
    {"%1\nFile not found.\nPlease verify the correct file name was given.",
     "%1\n找不到文件。\n请检查文件名是否正确。"},
    {"Toggle the visibility of the toolbar", "显示或隐藏工具栏"},
};

QHash<QByteArray, QString> BuildTable() {
    QHash<QByteArray, QString> table;
    for (const Entry& entry : kEntries)
        table.insert(entry.source, QString::fromUtf8(entry.chinese));
    return table;
}

}  // namespace

ChineseTexts::ChineseTexts(QObject* parent) : QTranslator(parent) {}

QString ChineseTexts::translate(const char* /*context*/, const char* sourceText,
                                const char* /*disambiguation*/, int /*n*/) const {
    static const QHash<QByteArray, QString> table = BuildTable();
    return table.value(QByteArray::fromRawData(sourceText, static_cast<qsizetype>(qstrlen(sourceText))));
}

}  // namespace vicenter::ui
