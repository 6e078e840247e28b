// Files that bear a workbook's name and cannot be read: each says why, and what to do.

#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/package.h"
#include "tests/platform/office/records.h"

namespace vicenter::office {
namespace {

using namespace std::string_literals;

constexpr const char* kAdvice = "，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！";

class UnreadableFile : public testing::Test {
  protected:
    std::string File() const { return folder_.File("f.xls"); }
    std::string Reason() const {
        try {
            ReadWorkbook(File());
        } catch (const automation::Error& error) {
            EXPECT_EQ(error.Number(), kExcelError);
            return error.Text();
        }
        return "was read";
    }
    std::string ReasonOf(const std::string& bytes) const {
        WriteBytes(File(), bytes);
        return Reason();
    }
    std::string ReasonOf(const Package& package) const {
        package.Save(File());
        return Reason();
    }
    std::string ReasonOf(const XlsParts& parts) const {
        parts.Save(File());
        return Reason();
    }

  private:
    fakes::TemporaryFolder folder_;
};

TEST_F(UnreadableFile, IsNamedForWhatItIs) {
    const std::string html = "文件实际上是网页（HTML），不是 Excel 工作簿"s + kAdvice;
    EXPECT_EQ(ReasonOf(""s), "文件是空的，没有任何内容！");
    EXPECT_EQ(ReasonOf(std::string(9000, '\0')),
              "文件内容全部为零，可能没有下载或复制完，请重新取得该文件！");
    EXPECT_EQ(ReasonOf("<html xmlns:x=\"urn:x\"><body><table/></body></html>"s), html);
    EXPECT_EQ(ReasonOf("\xEF\xBB\xBF\r\n <!DOCTYPE HTML><Table>"s), html);
    EXPECT_EQ(ReasonOf("\xFF\xFE<\0h\0t\0m\0l\0>\0"s), html);
    EXPECT_EQ(ReasonOf("<?xml version=\"1.0\"?><?mso-application progid=\"Excel.Sheet\"?><Workbook/>"s),
              "文件实际上是 XML 表格（Excel 2003），不是 Excel 工作簿"s + kAdvice);
    EXPECT_EQ(ReasonOf("MIME-Version: 1.0\r\nContent-Type: multipart/related"s),
              "文件实际上是网页归档（MHTML），不是 Excel 工作簿"s + kAdvice);
    EXPECT_EQ(ReasonOf("模板编号(*),摘要(*)\r\n1,提现\r\n"s),
              "文件实际上是文本，不是 Excel 工作簿"s + kAdvice);
    EXPECT_EQ(ReasonOf("%PDF-1.7\n\x01"s), "文件实际上是 PDF 文档，不是 Excel 工作簿！");
    EXPECT_EQ(ReasonOf("\x89PNG\r\n\x1A\n\0\0"s), "文件不是 Excel 工作簿！");
}

TEST_F(UnreadableFile, OfOldVersionsAndEncryptedOnesAreTold) {
    const std::string old =
        "不支持 Excel 95 及更早版本的文件，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！";
    const std::string encrypted = "文件已加密，请在 Excel 中取消打开密码（xls 文件还有工作簿保护）后另存！";
    EXPECT_EQ(ReasonOf("\x09\x04\x06\0\0\0\x10\0"s), old);
    EXPECT_EQ(ReasonOf("\x09\x08\x08\0\0\x05\x05\0"s), old);
    XlsParts parts;
    parts.version = 0x0500;
    EXPECT_EQ(ReasonOf(parts), old);
    parts.stream = "Book";
    EXPECT_EQ(ReasonOf(parts), old);
    parts = {};
    parts.encrypted = true;
    EXPECT_EQ(ReasonOf(parts), encrypted);
    parts.stream = "EncryptedPackage";
    EXPECT_EQ(ReasonOf(parts), encrypted);
    parts.stream = "WordDocument";
    EXPECT_EQ(ReasonOf(parts), "文件实际上是 Word 文档，不是 Excel 工作簿！");
}

TEST_F(UnreadableFile, PackagesOfOtherKindsAreTold) {
    Package package;
    package.rootRelations =
        "<Relationships><Relationship Id='r' Type='x/officeDocument' "
        "Target='xl/workbook.bin'/></Relationships>";
    EXPECT_EQ(ReasonOf(package), "文件实际上是二进制工作簿（.xlsb）"s + kAdvice);
    package = {};
    package.workbook = "<w:document xmlns:w='w'/>";
    EXPECT_EQ(ReasonOf(package), "文件实际上是 Word 文档，不是 Excel 工作簿！");
    {
        ZipWriter zip(File());
        zip.Add("mimetype", "application/vnd.oasis.opendocument.spreadsheet");
        zip.Add("content.xml", "<x/>");
        zip.Finish();
    }
    EXPECT_EQ(Reason(), "文件实际上是 OpenDocument 文件（.ods），不是 Excel 工作簿"s + kAdvice);
}

TEST_F(UnreadableFile, ThatBreaksOffSaysSo) {
    const std::string truncated = "文件不完整，可能没有下载或复制完，请重新取得该文件！";
    Package().Save(File());
    const std::string package = FileBytes(File());
    for (const std::size_t size : {package.size() - 1, package.size() / 2, std::size_t{30}})
        EXPECT_EQ(ReasonOf(package.substr(0, size)), truncated) << size;
    XlsParts parts;
    for (std::uint16_t row = 0; row < 2000; ++row)
        parts.Number(row, 0, row);
    parts.Save(File());
    const std::string container = FileBytes(File());
    for (const std::size_t size : {container.size() - 600, container.size() / 2, std::size_t{700}})
        EXPECT_EQ(ReasonOf(container.substr(0, size)), truncated) << size;
}

}  // namespace
}  // namespace vicenter::office
