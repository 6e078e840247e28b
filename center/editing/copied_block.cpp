#include "center/editing/copied_block.h"

#include "platform/system/utf8.h"

namespace vicenter::center {

namespace {

constexpr std::size_t kRefusedNamed = 12;
constexpr std::size_t kCharactersNamed = 60;  // of a text

}  // namespace

std::string RefusedText(const PasteResult& result) {
    if (result.refused.empty()) return {};
    std::string text =
        "以下 " + std::to_string(result.refused.size()) + " 个单元格的内容不能使用，更正后才能保存：\r\n";
    for (std::size_t i = 0; i < result.refused.size() && i < kRefusedNamed; ++i) {
        const RefusedCell& refused = result.refused[i];
        text += "\r\n行" + std::to_string(refused.cell.row);
        if (refused.cell.column >= 1 && refused.cell.column <= kColumnCount) {
            text += " " + std::string(Column(refused.cell.column).header);
        }
        text += "：“" + std::string(system::Head(refused.text, kCharactersNamed)) +
                (system::CharacterCount(refused.text) > kCharactersNamed ? "…" : "") + "” " + refused.reason;
        if (!refused.kept) text += "，保持原样";
    }
    if (result.refused.size() > kRefusedNamed)
        text += "\r\n……\r\n\r\n全部列在异常列表中（Ctrl+F8），按 F8 逐个查看。";
    return text;
}

}  // namespace vicenter::center
