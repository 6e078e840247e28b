#pragma once

// Scripting.FileSystemObject: the operations on files and names that the component uses.
//
// Stateless; paths are UTF-8. Errors are the scripting runtime's: 53 file not found, 58 file already exists,
// 61 disk full, 70 permission denied, 76 path not found.

#include <cstdint>
#include <string>

#include "automation/member_table.h"

namespace vicenter::scripting {

// File attributes: what clearing them (0) must undo is the write protection.
inline constexpr std::int32_t kAttributeReadOnly = 1;
inline constexpr std::int32_t kAttributeArchive = 32;

class FileSystemObject : public automation::TableObject<FileSystemObject> {
  public:
    static const automation::MemberTable<FileSystemObject>& Members();
    std::string TypeName() const override { return "FileSystemObject"; }

    // Folder and name joined by one separator.
    static std::string BuildPath(const std::string& folder, const std::string& name);
    static std::string GetExtensionName(const std::string& path);  // without the point
    static std::string GetBaseName(const std::string& path);       // without folder and extension
    static std::string GetFileName(const std::string& path);
    static std::string GetParentFolderName(const std::string& path);
    static bool FileExists(const std::string& path);
    static bool FolderExists(const std::string& path);
    // A write-protected file needs force.
    static void DeleteFile(const std::string& path, bool force);
    static void CopyFile(const std::string& source, const std::string& target, bool overwrite);
    // Copies a file over another, or to a new name, so that the name holds the old content or the new one at
    // every moment.
    static void ReplaceFile(const std::string& source, const std::string& target);
    static std::int32_t Attributes(const std::string& path);
    static void SetAttributes(const std::string& path, std::int32_t attributes);
    // 2 is the temporary folder; any other kind is error 5.
    static std::string SpecialFolder(std::int32_t kind);
};

// A file or folder as an object: Path (default), Name and, for files, Attributes.
class FileEntry : public automation::TableObject<FileEntry> {
  public:
    FileEntry(std::string path, bool folder) : path_(std::move(path)), folder_(folder) {}
    static const automation::MemberTable<FileEntry>& Members();
    std::string TypeName() const override { return folder_ ? "Folder" : "File"; }

  private:
    std::string path_;
    bool folder_;
};

// Registers Scripting.Dictionary and Scripting.FileSystemObject in the process's class registry.
void RegisterScripting();

}  // namespace vicenter::scripting
