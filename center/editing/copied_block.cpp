#include "center/editing/copied_block.h"

#include "platform/system/utf8.h"

namespace vicenter::center {

namespace {

constexpr std::size_t kRefusedNamed = 12;
constexpr std::size_t kCharactersNamed = 60;  // of a text

std::string LineOf(const RefusedCell& refused) {
    std::string text = "\r\n行" + std::to_string(refused.cell.row);
    if (refused.cell.column >= 1 && refused.cell.column <= kColumnCount)
        text += " " + std::string(Column(refused.cell.column).header);
    return text + "：“" + std::string(system::Head(refused.text, kCharactersNamed)) +
           (system::CharacterCount(refused.text) > kCharactersNamed ? "…" : "") + "” " + refused.reason;
}

// Texts that stand in their cells and must be mended there are one thing, texts that came into none another.
std::string Section(const std::vector<RefusedCell>& all, bool kept) {
    std::string lines;
    std::size_t count = 0;
    for (const RefusedCell& refused : all) {
        if (refused.kept == kept && ++count <= kRefusedNamed) lines += LineOf(refused);
    }
    if (count == 0) return {};
    if (count > kRefusedNamed) lines += "\r\n……";
    if (count > kRefusedNamed && kept) lines += "\r\n\r\n全部列在异常列表中（Ctrl+F8），按 F8 逐个查看。";
    return "以下 " + std::to_string(count) +
           (kept ? " 个单元格的内容不能使用，更正后才能保存：\r\n"
                 : " 处内容没有取用，单元格保持原样：\r\n") +
           lines;
}

}  // namespace

std::string RefusedText(const PasteResult& result) {
    const std::string toMend = Section(result.refused, true);
    const std::string leftOut = Section(result.refused, false);
    return toMend + (toMend.empty() || leftOut.empty() ? "" : "\r\n\r\n") + leftOut;
}

}  // namespace vicenter::center
