#include "platform/scripting/file_system_object.h"

#include <fstream>

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "tests/fakes/error_number.h"
#include "tests/fakes/fake_surroundings.h"
#ifndef _WIN32
#include "tests/tsql/child_process.h"
#endif

namespace vicenter::scripting {
namespace {

using automation::Variant;
using fakes::NumberOfError;

std::string ContentOf(const std::string& path) {
    std::ifstream stream(system::PathFromUtf8(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class FileSystemObjectTest : public testing::Test {
  protected:
    void SetUp() override {
        RegisterScripting();
        files_ = automation::CreateObject("Scripting.FileSystemObject");
    }
    std::string Write(const std::string& name, const std::string& content) {
        std::string path = folder_.File(name);
        std::ofstream(system::PathFromUtf8(path), std::ios::binary) << content;
        return path;
    }
    bool Exists(const std::string& path) { return files_->Call("FileExists", {path}).ToBoolean(); }

    automation::ClassRegistry::Restore restore_;
    fakes::TemporaryFolder folder_;
    automation::ObjectRef files_;
};

TEST_F(FileSystemObjectTest, TakesNamesApart) {
    EXPECT_EQ(files_->Call("GetExtensionName", {"C:\\模板\\abc.def.XLSX"}), Variant("XLSX"));
    EXPECT_EQ(files_->Call("GetBaseName", {"/tmp/模板/abc.def.xlsx"}), Variant("abc.def"));
    EXPECT_EQ(files_->Call("GetFileName", {"C:\\模板\\abc.xls"}), Variant("abc.xls"));
    EXPECT_EQ(files_->Call("GetExtensionName", {"/a.b/noextension"}), Variant(""));
    EXPECT_EQ(files_->Call("GetBaseName", {"noextension"}), Variant("noextension"));
    EXPECT_EQ(files_->Call("GetParentFolderName", {"/a/b.txt"}), Variant("/a"));
}

TEST_F(FileSystemObjectTest, BuildsPathsWithOneSeparator) {
    EXPECT_EQ(files_->Call("BuildPath", {"/tmp/", "a"}), Variant("/tmp/a"));
    const std::string separator(1, static_cast<char>(std::filesystem::path::preferred_separator));
    EXPECT_EQ(files_->Call("BuildPath", {"/tmp", "a"}), Variant("/tmp" + separator + "a"));
    EXPECT_EQ(files_->Call("BuildPath", {"", "a"}), Variant("a"));
}

TEST_F(FileSystemObjectTest, TellsFilesFromFolders) {
    const std::string path = Write("凭证 模板.xls", "x");
    EXPECT_TRUE(Exists(path));
    EXPECT_FALSE(Exists(folder_.Text()));
    EXPECT_FALSE(Exists(folder_.File("none")));
    EXPECT_EQ(files_->Call("FolderExists", {folder_.Text()}), Variant(true));
    EXPECT_EQ(files_->Call("FolderExists", {path}), Variant(false));
}

TEST_F(FileSystemObjectTest, CopiesOverAndOnlyWhenAsked) {
    const std::string source = Write("a", "new");
    const std::string target = Write("b", "old");
    EXPECT_EQ(NumberOfError([&] { files_->Call("CopyFile", {source, target, false}); }), 58);
    EXPECT_EQ(ContentOf(target), "old");
    files_->Call("CopyFile", {source, target});
    EXPECT_EQ(ContentOf(target), "new");
    EXPECT_EQ(NumberOfError([&] { files_->Call("CopyFile", {folder_.File("none"), target}); }), 53);
    EXPECT_EQ(NumberOfError([&] { files_->Call("CopyFile", {source, folder_.File("no/such")}); }), 76);
    EXPECT_EQ(NumberOfError([&] { files_->Call("CopyFile", {source, folder_.Text()}); }), 70);
}

#ifndef _WIN32  // where no process can be kept from long files
TEST_F(FileSystemObjectTest, ACopyThatCannotBeWrittenLeavesTheOldFile) {
    const std::string source = Write("a", std::string(200'000, 'n'));
    const std::string target = Write("b", std::string(50'000, 'o'));
    const auto files = [&] { return std::distance(std::filesystem::directory_iterator(folder_.Path()), {}); };
    const auto before = files();
    EXPECT_EQ(testing_support::RunWithFileLimit(100'000,
                                                [&] {
                                                    return NumberOfError([&] {
                                                        files_->Call("CopyFile", {source, target});
                                                        files_->Call("CopyFile", {source, target});
                                                    });
                                                }),
              70);
    EXPECT_EQ(ContentOf(target), std::string(50'000, 'o'));
    EXPECT_EQ(files(), before);
}
#endif

TEST_F(FileSystemObjectTest, ACopyIsAsReadOnlyAsItsSourceAndCoversNoReadOnlyFile) {
    const std::string source = Write("a", "x");
    files_->Call("GetFile", {source}).AsObject()->Put("Attributes", kAttributeReadOnly);
    const std::string target = folder_.File("b");
    files_->Call("CopyFile", {source, target});
    EXPECT_EQ(FileSystemObject::Attributes(target), kAttributeArchive | kAttributeReadOnly);
    EXPECT_EQ(NumberOfError([&] { files_->Call("CopyFile", {Write("c", "y"), target}); }), 70);
    EXPECT_EQ(ContentOf(target), "x");
}

#ifndef _WIN32
TEST_F(FileSystemObjectTest, ACopyOntoALinkLeavesTheLink) {
    const std::string source = Write("a", "new");
    Write("b", "old");
    std::filesystem::create_symlink("b", folder_.Path() / "link");
    files_->Call("CopyFile", {source, folder_.File("link")});
    EXPECT_TRUE(std::filesystem::is_symlink(folder_.Path() / "link"));
    EXPECT_EQ(ContentOf(folder_.File("b")), "new");
}
#endif

TEST_F(FileSystemObjectTest, AWriteProtectedFileNeedsForce) {
    const std::string path = Write("a", "x");
    const auto file = files_->Call("GetFile", {path}).AsObject();
    EXPECT_EQ(file->Get("Attributes"), Variant(kAttributeArchive));
    file->Put("Attributes", kAttributeReadOnly);
    EXPECT_EQ(file->Get("Attributes"), Variant(kAttributeArchive | kAttributeReadOnly));
    EXPECT_EQ(NumberOfError([&] { files_->Call("DeleteFile", {path}); }), 70);
    EXPECT_TRUE(Exists(path));
    file->Put("Attributes", 0);
    EXPECT_EQ(file->Get("Attributes"), Variant(kAttributeArchive));
    file->Put("Attributes", kAttributeReadOnly);
    files_->Call("DeleteFile", {path, true});
    EXPECT_FALSE(Exists(path));
}

TEST_F(FileSystemObjectTest, MissingFilesAreError53) {
    EXPECT_EQ(NumberOfError([&] { files_->Call("DeleteFile", {folder_.File("none")}); }), 53);
    EXPECT_EQ(NumberOfError([&] { files_->Call("GetFile", {folder_.File("none")}); }), 53);
}

TEST_F(FileSystemObjectTest, FolderTwoIsTheTemporaryOne) {
    fakes::FakeSurroundings surroundings;
    surroundings.folders->temporary = "/somewhere";
    EXPECT_EQ(files_->Call("GetSpecialFolder", {2}).ToText(), "/somewhere");
    EXPECT_EQ(NumberOfError([&] { files_->Call("GetSpecialFolder", {0}); }), 5);
}

}  // namespace
}  // namespace vicenter::scripting
