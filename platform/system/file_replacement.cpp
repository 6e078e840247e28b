#include "platform/system/file_replacement.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "automation/error.h"
#include "automation/object.h"
#include "platform/system/files.h"
#include "platform/system/os.h"
#include "platform/system/utf8.h"
#include "platform/system/whole_path.h"
#include "text/ascii.h"

namespace vicenter::system {

using automation::Error;
namespace error_number = automation::error_number;
namespace fs = std::filesystem;

namespace {

constexpr int kMostLinks = 40;
// Beside a database stand its logs and their index, under its name and one of these.
constexpr std::array<std::string_view, 3> kLogTails = {"-wal", "-shm", "-journal"};
constexpr std::size_t kLongestTail = 8;
constexpr std::size_t kMostOfName = 255;  // what file systems take: bytes, on Windows UTF-16 units

// The end of a chain of links, which need not exist.
fs::path BehindLinks(fs::path path) {
    std::error_code failed;
    for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(path, failed)); ++i) {
        const fs::path next = fs::read_symlink(path, failed);
        if (failed) break;
        path = next.is_absolute() ? next : path.parent_path() / next;
    }
    return path;
}

std::string FolderOf(const fs::path& file) {
    std::error_code failed;
    const fs::path folder = WholePath(file, failed).parent_path();
    return PathToUtf8(failed ? fs::path(".") : folder);
}

// Empty when something could be written there; what is already there is not looked into.
std::string WhyNoPlace(const fs::path& file) {
    const std::string text = PathToUtf8(file);
    std::error_code failed;
    const fs::file_status status = fs::status(file, failed);
    if (fs::is_directory(status)) return "目标是文件夹，不能写入文件：" + text;
    if (os::IsNameOfDevice(text) || (fs::exists(status) && !fs::is_regular_file(status)))
        return "目标不是普通文件（设备、管道等），不能覆盖：" + text;
    if (!file.has_filename()) return "没有给出文件名：" + text;
    // Whoever opens the database of that name takes it for its own, and removes it.
    const std::string name = text::LowerAscii(PathToUtf8(file.filename()));
    if (std::any_of(kLogTails.begin(), kLogTails.end(),
                    [&](std::string_view tail) { return name.ends_with(tail); }))
        return "以 -wal、-shm、-journal 结尾的名称留给账套的日志，请另选文件名：" + text;
    const std::string folder = FolderOf(file);
    if (!fs::is_directory(PathFromUtf8(folder), failed)) return "文件夹不存在：" + folder;
    // Else the file that is made beside the target would be what could not be opened.
    if (!os::MayMakeFilesIn(folder)) return "没有写入权限：" + folder;
    return {};
}

bool HasExtension(const fs::path& file, const std::vector<std::string_view>& extensions) {
    const std::string extension = PathToUtf8(file.extension());
    return std::any_of(extensions.begin(), extensions.end(), [&](std::string_view wanted) {
        return !extension.empty() && automation::SameName(std::string_view(extension).substr(1), wanted);
    });
}

// The reason in the user's language, where it is one of those that users meet.
std::string Told(const std::error_code& failed) {
    if (failed == std::errc::no_space_on_device || failed == std::errc::file_too_large) return "磁盘已满";
    if (failed == std::errc::permission_denied || failed == std::errc::operation_not_permitted ||
        failed == std::errc::read_only_file_system)
        return "没有写入权限";
    return failed.message();
}

// A database that could not bring its log home is not whole without it, and the log does not move along.
bool HasLogBeside(const fs::path& file) {
    for (const char* tail : {"-wal", "-journal"}) {
        fs::path log = file;
        log += tail;
        std::error_code none;
        const std::uintmax_t size = fs::file_size(log, none);
        if (!none && size > 0) return true;
    }
    return false;
}

bool IsDatabase(const fs::path& file) {
    std::array<char, kDatabaseHead.size()> bytes{};
    std::ifstream content(file, std::ios::binary);
    content.read(bytes.data(), bytes.size());
    return std::string_view(bytes.data(), static_cast<std::size_t>(content.gcount())) == kDatabaseHead;
}

std::size_t LengthOfName(const fs::path& file) {
    const std::string name = PathToUtf8(file.filename());
#ifdef _WIN32
    return CodeUnitCount(name);
#else
    return name.size();
#endif
}

std::string TargetBehind(const std::string& target) {
    const fs::path file = BehindLinks(PathFromUtf8(target));
    if (const std::string refusal = WhyNoPlace(file); !refusal.empty())
        throw Error(error_number::kPathNotFound, refusal);
    return PathToUtf8(file);
}

}  // namespace

FileReplacement::FileReplacement(const std::string& target)
    : target_(TargetBehind(target)), part_(UnfinishedFile::NewPath(FolderOf(PathFromUtf8(target_)))) {
    RemoveLeftBehind(FolderOf(PathFromUtf8(target_)));
}

void FileReplacement::PutInPlace(Durable durable) {
    Finish(durable, true);
}

void FileReplacement::PutInPlaceAsNew() {
    Finish(Durable::Yes, false);
}

void FileReplacement::Finish(Durable durable, bool replace) {
    const fs::path target = PathFromUtf8(target_);
    if (HasLogBeside(PathFromUtf8(Path())))
        throw Error(error_number::kPermissionDenied, "文件未能写完，磁盘可能已满：" + target_);
    if (durable == Durable::Yes && !os::SyncFile(Path()))
        throw Error(error_number::kPermissionDenied, "无法写入文件，磁盘可能已满或没有权限！");
    // It may have become something else meanwhile.
    if (const std::string refusal = WhyNoPlace(target); !refusal.empty())
        throw Error(error_number::kPathNotFound, refusal);
    if (IsDatabase(PathFromUtf8(Path()))) {
        if (const std::string refusal = WhyNoPlaceForDatabase(target_); !refusal.empty())
            throw Error(error_number::kPermissionDenied, refusal);
    }
    std::error_code ignored;
    if (const fs::file_status old = fs::status(target, ignored); replace && fs::exists(old))
        fs::permissions(PathFromUtf8(Path()), old.permissions() | fs::perms::owner_write, ignored);
    const std::error_code failed = replace ? os::MoveOver(Path(), target_) : os::MoveToNew(Path(), target_);
    if (failed == std::errc::file_exists)
        throw Error(error_number::kFileAlreadyExists, "文件已存在：" + target_);
    if (failed) throw Error(error_number::kPermissionDenied, Told(failed) + "：" + target_);
    if (durable == Durable::Yes) os::SyncFolder(FolderOf(target));
}

std::string WhyNotWritable(const std::string& target, const Replaceable& replaceable) {
    const fs::path file = BehindLinks(PathFromUtf8(target));
    if (std::string refusal = WhyNoPlace(file); !refusal.empty()) return refusal;
    std::error_code failed;
    if (!fs::exists(file, failed)) return {};
    const std::string text = PathToUtf8(file);
    if (os::IsOpenInThisProcess(text)) return "目标文件正在使用，不能覆盖：" + text;
    std::array<char, kDatabaseHead.size()> bytes{};
    std::ifstream content(file, std::ios::binary);
    if (!content) return "目标文件无法读取，不能确认可以覆盖：" + text;
    content.read(bytes.data(), bytes.size());
    const std::string_view head(bytes.data(), static_cast<std::size_t>(content.gcount()));
    const bool known = std::any_of(replaceable.heads.begin(), replaceable.heads.end(),
                                   [head](std::string_view wanted) { return head.starts_with(wanted); });
    if (head == kDatabaseHead && !known) return "目标是账套或其他数据库文件，不能覆盖：" + text;
    if (HasExtension(file, replaceable.extensions)) return {};
    // A blank parts Chinese from Latin letters.
    const bool latin = !replaceable.what.empty() && text::IsLetter(replaceable.what.front());
    return known ? std::string()
                 : "目标文件已存在，且不是" + std::string(latin ? " " : "") + replaceable.what +
                       "，不能覆盖：" + text;
}

std::string WhyNoPlaceForDatabase(const std::string& target) {
    const fs::path file = BehindLinks(PathFromUtf8(target));
    if (std::string refusal = WhyNoPlace(file); !refusal.empty()) return refusal;
    if (LengthOfName(file) + kLongestTail > kMostOfName)
        return "文件名太长，请另选文件名：" + PathToUtf8(file);
    if (!HasLogBeside(file)) return {};
    return "旁边有以前的账套留下的日志（-wal、-journal），其中可能有已保存的内容；请先移走，或放回原来的账套旁边：" +
           PathToUtf8(file);
}

std::error_code CopyOver(const std::string& source, const std::string& target, Durable durable) {
    FileReplacement replacement(target);
    if (const std::error_code failed = os::CopyContent(source, replacement.Path())) return failed;
    replacement.PutInPlace(durable);
    return {};
}

void ReplaceWithCopy(const std::string& source, const std::string& target, Durable durable) {
    if (const std::error_code failed = CopyOver(source, target, durable))
        throw Error(error_number::kPermissionDenied, Told(failed) + "：" + target);
}

}  // namespace vicenter::system
