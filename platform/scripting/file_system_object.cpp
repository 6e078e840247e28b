#include "platform/scripting/file_system_object.h"

#include <filesystem>
#include <system_error>

#include "automation/class_registry.h"
#include "platform/scripting/dictionary.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "platform/system/path_in.h"
#include "platform/system/surroundings.h"

namespace vicenter::scripting {

using automation::Arguments;
using automation::Error;
using automation::MemberTable;
using automation::Method;
using automation::Property;
using automation::Variant;
using system::PathFromUtf8;
using system::PathToUtf8;
namespace error_number = automation::error_number;
namespace fs = std::filesystem;

namespace {

constexpr std::int32_t kDiskFull = 61;
constexpr const char* kSource = "FileSystemObject";

[[noreturn]] void Fail(const std::error_code& error) {
    if (error == std::errc::no_space_on_device) throw Error(kDiskFull, "Disk full", kSource);
    if (error == std::errc::file_exists) throw Error(error_number::kFileAlreadyExists, {}, kSource);
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) {
        throw Error(error_number::kPathNotFound, {}, kSource);
    }
    throw Error(error_number::kPermissionDenied, {}, kSource);
}

bool IsSeparator(char c) {
    return c == '/' || c == '\\';
}

std::string TextAt(const Arguments& arguments, std::size_t index) {
    return arguments[index].Value().ToText();
}

bool FlagAt(const Arguments& arguments, std::size_t index, bool otherwise) {
    const Variant& value = arguments[index].Value();
    return value.IsMissing() ? otherwise : value.ToBoolean();
}

constexpr fs::perms kWritable = fs::perms::owner_write;

}  // namespace

const MemberTable<FileSystemObject>& FileSystemObject::Members() {
    using Self = FileSystemObject;
    static const MemberTable<Self> table{
        Method<Self>("BuildPath", {"Path", "Name"},
                     [](Self&, Arguments& a) { return Variant(BuildPath(TextAt(a, 0), TextAt(a, 1))); }),
        Method<Self>("GetExtensionName", {"Path"},
                     [](Self&, Arguments& a) { return Variant(GetExtensionName(TextAt(a, 0))); }),
        Method<Self>("GetBaseName", {"Path"},
                     [](Self&, Arguments& a) { return Variant(GetBaseName(TextAt(a, 0))); }),
        Method<Self>("GetFileName", {"Path"},
                     [](Self&, Arguments& a) { return Variant(GetFileName(TextAt(a, 0))); }),
        Method<Self>("GetParentFolderName", {"Path"},
                     [](Self&, Arguments& a) { return Variant(GetParentFolderName(TextAt(a, 0))); }),
        Method<Self>("FileExists", {"FileSpec"},
                     [](Self&, Arguments& a) { return Variant(FileExists(TextAt(a, 0))); }),
        Method<Self>("FolderExists", {"FolderSpec"},
                     [](Self&, Arguments& a) { return Variant(FolderExists(TextAt(a, 0))); }),
        Method<Self>("DeleteFile", {"FileSpec", "Force?"},
                     [](Self&, Arguments& a) {
                         DeleteFile(TextAt(a, 0), FlagAt(a, 1, false));
                         return Variant();
                     }),
        Method<Self>("CopyFile", {"Source", "Destination", "OverWriteFiles?"},
                     [](Self&, Arguments& a) {
                         CopyFile(TextAt(a, 0), TextAt(a, 1), FlagAt(a, 2, true));
                         return Variant();
                     }),
        Method<Self>("ReplaceFile", {"Source", "Destination"},
                     [](Self&, Arguments& a) {
                         ReplaceFile(TextAt(a, 0), TextAt(a, 1));
                         return Variant();
                     }),
        Method<Self>("GetFile", {"FilePath"},
                     [](Self&, Arguments& a) {
                         if (!FileExists(TextAt(a, 0))) throw Error(error_number::kFileNotFound, {}, kSource);
                         return Variant(std::make_shared<FileEntry>(TextAt(a, 0), false));
                     }),
        Method<Self>("GetSpecialFolder", {"SpecialFolder"},
                     [](Self&, Arguments& a) {
                         return Variant(
                             std::make_shared<FileEntry>(SpecialFolder(a[0].Value().ToInt32()), true));
                     }),
    };
    return table;
}

const MemberTable<FileEntry>& FileEntry::Members() {
    using Self = FileEntry;
    static const MemberTable<Self> table{
        Property<Self>("Path", [](Self& self, Arguments&) { return Variant(self.path_); }).AsDefault(),
        Property<Self>("Name", [](Self& self,
                                  Arguments&) { return Variant(FileSystemObject::GetFileName(self.path_)); }),
        Property<Self>(
            "Attributes",
            [](Self& self, Arguments&) { return Variant(FileSystemObject::Attributes(self.path_)); },
            [](Self& self, Arguments& a) {
                FileSystemObject::SetAttributes(self.path_, a[0].Value().ToInt32());
            }),
    };
    return table;
}

std::string FileSystemObject::BuildPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || IsSeparator(folder.back())) return folder + name;
    return PathToUtf8(system::PathIn(PathFromUtf8(folder), name));
}

std::string FileSystemObject::GetFileName(const std::string& path) {
    std::size_t start = path.size();
    while (start > 0 && !IsSeparator(path[start - 1]))
        --start;
    return path.substr(start);
}

std::string FileSystemObject::GetExtensionName(const std::string& path) {
    const std::string name = GetFileName(path);
    const std::size_t point = name.rfind('.');
    return point == std::string::npos ? std::string() : name.substr(point + 1);
}

std::string FileSystemObject::GetBaseName(const std::string& path) {
    const std::string name = GetFileName(path);
    return name.substr(0, name.rfind('.'));
}

std::string FileSystemObject::GetParentFolderName(const std::string& path) {
    return PathToUtf8(PathFromUtf8(path).parent_path());
}

bool FileSystemObject::FileExists(const std::string& path) {
    std::error_code error;
    const auto status = fs::status(PathFromUtf8(path), error);
    return !error && fs::exists(status) && !fs::is_directory(status);
}

bool FileSystemObject::FolderExists(const std::string& path) {
    std::error_code error;
    return fs::is_directory(PathFromUtf8(path), error);
}

void FileSystemObject::DeleteFile(const std::string& path, bool force) {
    if (!FileExists(path)) throw Error(error_number::kFileNotFound, {}, kSource);
    if ((Attributes(path) & kAttributeReadOnly) != 0) {
        if (!force) throw Error(error_number::kPermissionDenied, {}, kSource);
        SetAttributes(path, 0);
    }
    std::error_code error;
    fs::remove(PathFromUtf8(path), error);
    if (error) Fail(error);
}

void FileSystemObject::CopyFile(const std::string& source, const std::string& target, bool overwrite) {
    if (!FileExists(source)) throw Error(error_number::kFileNotFound, {}, kSource);
    if (FolderExists(target)) throw Error(error_number::kPermissionDenied, {}, kSource);
    const bool existed = FileExists(target);
    if (existed && !overwrite) throw Error(error_number::kFileAlreadyExists, {}, kSource);
    if (existed && (Attributes(target) & kAttributeReadOnly) != 0)
        throw Error(error_number::kPermissionDenied, {}, kSource);
    std::error_code error;
    const fs::perms permissions = fs::status(PathFromUtf8(source), error).permissions();
    if (const std::error_code failed =
            system::CopyOver(source, target, existed ? system::Durable::Yes : system::Durable::No))
        Fail(failed);
    // The copy is as read-only as its source.
    if (!error) fs::permissions(PathFromUtf8(target), permissions, error);
}

void FileSystemObject::ReplaceFile(const std::string& source, const std::string& target) {
    if (!FileExists(source)) throw Error(error_number::kFileNotFound, {}, kSource);
    system::ReplaceWithCopy(source, target);
}

std::int32_t FileSystemObject::Attributes(const std::string& path) {
    std::error_code error;
    const auto status = fs::status(PathFromUtf8(path), error);
    if (error || !fs::exists(status)) throw Error(error_number::kFileNotFound, {}, kSource);
    const bool writable = (status.permissions() & kWritable) != fs::perms::none;
    return kAttributeArchive | (writable ? 0 : kAttributeReadOnly);
}

void FileSystemObject::SetAttributes(const std::string& path, std::int32_t attributes) {
    const bool readOnly = (attributes & kAttributeReadOnly) != 0;
    std::error_code error;
    fs::permissions(PathFromUtf8(path), kWritable,
                    readOnly ? fs::perm_options::remove : fs::perm_options::add, error);
    if (error) Fail(error);
}

std::string FileSystemObject::SpecialFolder(std::int32_t kind) {
    constexpr std::int32_t kTemporaryFolder = 2;
    if (kind != kTemporaryFolder) throw Error(error_number::kInvalidProcedureCall, {}, kSource);
    return system::Surroundings::Current().folders->Temporary();
}

void RegisterScripting() {
    auto& registry = automation::ClassRegistry::Process();
    registry.Register("Scripting.Dictionary", [] { return std::make_shared<Dictionary>(); });
    registry.Register("Scripting.FileSystemObject", [] { return std::make_shared<FileSystemObject>(); });
}

}  // namespace vicenter::scripting
