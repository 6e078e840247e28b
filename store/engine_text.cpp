#include "store/engine_text.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "entry/sql_text.h"

namespace vicenter::store {

namespace {

// A refusal is known by two parts of its text, in this order: drivers put words of their own around it.
struct Refusal {
    int number;
    std::string_view part;
    std::string_view further;
    std::string_view told;
};

constexpr std::array<Refusal, 22> kRefusals{{
    {515, "Cannot insert the value NULL into column", "", "必填的内容为空，没有写入账套！"},
    {2627, "Violation of ", "Cannot insert duplicate key", "账套中已有相同的记录，没有写入！"},
    {2601, "Cannot insert duplicate key row", "", "账套中已有相同的记录，没有写入！"},
    {2628, "String or binary data would be truncated in table", "", "文本太长，账套的字段放不下，没有写入！"},
    {8152, "String or binary data would be truncated", "", "文本太长，账套的字段放不下，没有写入！"},
    {1222, "Lock request time out period exceeded", "", "账套正被其他用户锁定，请稍后再试！"},
    {1205, "was deadlocked on", "deadlock victim", "与其他用户的操作互相等待，本次操作已被撤销，请重试！"},
    {823, "The account set", "cannot be read or written", "账套文件不能读写！"},
    {824, "The account set", "is damaged", "账套文件已损坏，请从备份中恢复！"},
    {5172, "is not an account set", "", "该文件不是账套，不能打开！"},
    {948, "cannot be opened because it is version", "", "账套由更高版本的程序建立，不能打开！"},
    {4060, "Cannot open database", "requested by the login", "账套数据库不能打开！"},
    {3906, "Failed to update database", "read-only", "账套是只读的，没有写入！"},
    {9002, "The transaction log for database", "is full due to", "账套所在的磁盘或其日志已满，没有写入！"},
    {1105, "Could not allocate space for object", "is full", "账套所在的磁盘或其文件已满，没有写入！"},
    {1101, "Could not allocate a new page for database", "", "账套所在的磁盘或其文件已满，没有写入！"},
    {5120, "Unable to open the physical file", "", "账套文件不能打开！"},
    {701, "There is insufficient system memory", "", "内存不足，本次操作没有完成！"},
    {229, "permission was denied on the object", "", "数据库没有给您这项操作的权限！"},
    {262, "permission denied in database", "", "数据库没有给您这项操作的权限！"},
    {8115, "Arithmetic overflow error converting", "", "数字太大，账套的字段放不下，没有写入！"},
    {220, "Arithmetic overflow error for data type", "", "数字太大，账套的字段放不下，没有写入！"},
}};

bool Says(const Refusal& refusal, std::string_view text) {
    const std::size_t at = text.find(refusal.part);
    return at != std::string_view::npos && text.find(refusal.further, at) != std::string_view::npos;
}

}  // namespace

bool SaysLocked(const std::string& text) {
    return std::any_of(kRefusals.begin(), kRefusals.end(), [&](const Refusal& refusal) {
        return (refusal.number == 1222 || refusal.number == 1205) && Says(refusal, text);
    });
}

std::string EngineTextInChinese(const std::string& text) {
    const auto known = std::find_if(kRefusals.begin(), kRefusals.end(),
                                    [&](const Refusal& refusal) { return Says(refusal, text); });
    if (known == kRefusals.end() || text.find(known->told) != std::string::npos) return text;
    return std::string(known->told) + entry::kCrLf + entry::kCrLf + "（" + std::to_string(known->number) +
           "：" + text + "）";
}

}  // namespace vicenter::store
