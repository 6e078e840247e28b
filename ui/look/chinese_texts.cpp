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
    // The choice of a printer.
    {"Printer", "打印机"},
    {"&Name:", "名称(&N)："},
    {"P&roperties", "属性(&R)"},
    {"Location:", "位置："},
    {"Preview", "预览"},
    {"Type:", "类型："},
    {"Output &file:", "输出文件(&F)："},
    {"Copies", "份数"},
    {"Print range", "打印范围"},
    {"Print all", "全部"},
    {"Pages from", "页码从"},
    {"to", "到"},
    {"Pages", "页码"},
    {"Current Page", "当前页"},
    {"Selection", "选中部分"},
    {"Page Set:", "页面："},
    {"Output Settings", "输出设置"},
    {"Copies:", "份数："},
    {"Collate", "逐份打印"},
    {"Reverse", "逆序"},
    {"Options", "选项"},
    {"Color Mode", "颜色"},
    {"Color", "彩色"},
    {"Grayscale", "灰度"},
    {"Double Sided Printing", "双面打印"},
    {"None", "无"},
    {"Off", "关"},
    {"Long side binding", "长边装订"},
    {"Short side binding", "短边装订"},
    {"All Pages", "全部页"},
    {"Odd Pages", "奇数页"},
    {"Even Pages", "偶数页"},
    {"&Options >>", "选项(&O) >>"},
    {"&Options <<", "选项(&O) <<"},
    {"&Print", "打印(&P)"},
    {"Print to File (PDF)", "打印到文件 (PDF)"},
    {"Local file", "本机文件"},
    {"Write PDF file", "写入 PDF 文件"},
    {"Print To File ...", "打印到文件…"},
    {"Paper", "纸张"},
    {"Page size:", "纸张大小："},
    {"Width:", "宽度："},
    {"Height:", "高度："},
    {"Paper source:", "纸张来源："},
    {"Orientation", "方向"},
    {"Portrait", "纵向"},
    {"Landscape", "横向"},
    {"Reverse landscape", "反向横向"},
    {"Reverse portrait", "反向纵向"},
    {"Margins", "页边距"},
    {"top margin", "上边距"},
    {"bottom margin", "下边距"},
    {"left margin", "左边距"},
    {"right margin", "右边距"},
    {"Page Layout", "页面布局"},
    {"Pages per sheet:", "每张页数："},
    {"Page order:", "页面顺序："},
    {"Page", "页面"},
    {"Advanced", "高级"},
    {"Job Options", "打印任务"},
    {"Automatic", "自动"},
    {"Custom", "自定义"},
    {"Millimeters (mm)", "毫米 (mm)"},
    {"Points (pt)", "点 (pt)"},
    {"Inches (in)", "英寸 (in)"},
    {"Left to Right, Top to Bottom", "从左到右，从上到下"},
    {"Left to Right, Bottom to Top", "从左到右，从下到上"},
    {"Right to Left, Top to Bottom", "从右到左，从上到下"},
    {"Right to Left, Bottom to Top", "从右到左，从下到上"},
    {"Top to Bottom, Left to Right", "从上到下，从左到右"},
    {"Top to Bottom, Right to Left", "从上到下，从右到左"},
    {"Bottom to Top, Left to Right", "从下到上，从左到右"},
    {"Bottom to Top, Right to Left", "从下到上，从右到左"},
    {"Job Control", "任务控制"},
    {"Scheduled printing:", "打印时间："},
    {"Print Immediately", "立即打印"},
    {"Job priority:", "优先级："},
    {"Billing information:", "计费信息："},
    {"Banner Pages", "标题页"},
    {"Start:", "开头："},
    {"End:", "结尾："},
    {"Page Setup", "页面设置"},
    {"The 'From' value cannot be greater than the 'To' value.", "起始页不能大于终止页。"},
    {"File %1 is not writable.\nPlease choose a different file name.",
     "文件 %1 不能写入。\n请选择另一个文件名。"},
    {"%1 already exists.\nDo you want to overwrite it?", "%1 已经存在。\n要覆盖它吗？"},
    {"%1 is a directory.\nPlease choose a different file name.", "%1 是文件夹。\n请选择另一个文件名。"},
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
