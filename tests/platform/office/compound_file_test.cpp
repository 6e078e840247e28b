// The container of ".xls" files: what is written comes back at every size at which the layout changes,
// foreign files with short streams are read, and no damaged one is followed beyond its own size.

#include "platform/office/compound_file.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/paths/source_folder.h"
#include "tests/platform/office/office_fixture.h"

namespace vicenter::office {
namespace {

class CompoundFile : public testing::Test {
  protected:
    std::string File(const std::string& name = "container.xls") const { return folder_.File(name); }

    static std::string Content(std::size_t size) {
        std::mt19937 random(static_cast<std::uint32_t>(size));
        std::string content(size, '\0');
        for (char& byte : content)
            byte = static_cast<char>(random());
        return content;
    }

    void WriteStream(const std::string& content, std::size_t piece,
                     std::string_view name = "Workbook") const {
        CompoundWriter writer(File(), name);
        for (std::size_t at = 0; at < content.size(); at += piece)
            writer.Write(std::string_view(content).substr(at, piece));
        writer.Finish();
    }

    static std::string ReadAll(CompoundReader& reader, std::size_t piece) {
        std::string content;
        std::string buffer(piece, '\0');
        while (const std::size_t got = reader.Read(buffer.data(), buffer.size()))
            content.append(buffer, 0, got);
        return content;
    }

    // What Open says of the file, or the empty text when it opens and can be read to its end.
    std::string Fault() const {
        try {
            CompoundReader reader(File());
            ReadAll(reader, 4096);
            return "";
        } catch (const automation::Error& error) {
            return error.Text();
        }
    }

  private:
    fakes::TemporaryFolder folder_;
};

// 6,938,112 bytes are the last whose table the header can find: 109 sectors of 128 numbers, less those that
// the table and the directory take.
TEST_F(CompoundFile, WhatIsWrittenComesBackAtEverySizeWhereTheLayoutChanges) {
    constexpr std::size_t kLastOfHeader = (109 * 128 - 109 - 1) * 512;
    for (const std::size_t size :
         {std::size_t{4096}, std::size_t{4097}, std::size_t{4608}, std::size_t{126 * 512},
          std::size_t{126 * 512 + 1}, kLastOfHeader, kLastOfHeader + 1, (109 + 127) * std::size_t{128} * 512,
          std::size_t{20'000'000}}) {
        const std::string content = Content(size);
        WriteStream(content, 70'000);
        CompoundReader reader(File());
        ASSERT_EQ(reader.Size(), size);
        EXPECT_TRUE(ReadAll(reader, 100'003) == content) << size;
    }
}

TEST_F(CompoundFile, ShortStreamsAreFilledUpWithZeros) {
    for (const std::size_t size : {0u, 1u, 4095u}) {
        const std::string content = Content(size);
        WriteStream(content, 512);
        CompoundReader reader(File());
        EXPECT_EQ(ReadAll(reader, 1000), content + std::string(4096 - size, '\0')) << size;
    }
}

TEST_F(CompoundFile, ReadingStartsAgainWhereverItIsPutTo) {
    const std::string content = Content(50'000);
    WriteStream(content, 50'000);
    CompoundReader reader(File());
    for (const std::size_t place : {49'999u, 0u, 511u, 512u, 50'000u, 1u}) {
        reader.Seek(place);
        EXPECT_TRUE(ReadAll(reader, 777) == content.substr(place)) << place;
    }
    EXPECT_THROW(reader.Seek(50'001), automation::Error);
}

TEST_F(CompoundFile, ShortStreamsOfOtherProgramsAreRead) {
    CompoundReader reader((testing_paths::SourceFolder() / "tests/data/compound/short_stream.ole").string());
    EXPECT_EQ(ReadAll(reader, 10), "a short stream of sixty-five bytes and more, so that it takes two..");
}

TEST_F(CompoundFile, OtherStreamsAreToldApart) {
    WriteStream(Content(5000), 5000, "WORKBOOK");
    EXPECT_EQ(Fault(), "");
    WriteStream(Content(5000), 5000, "EncryptedPackage");
    EXPECT_EQ(Fault(), "文件已加密，请在 Excel 中取消打开密码（xls 文件还有工作簿保护）后另存！");
    WriteStream(Content(5000), 5000, "Book");
    EXPECT_EQ(Fault(), "不支持 Excel 95 及更早版本的文件，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！");
    WriteStream(Content(5000), 5000, "Picture");
    EXPECT_EQ(Fault(), "文件已损坏或不是有效的 Excel 文件：缺少工作簿");
}

TEST_F(CompoundFile, EveryTruncationIsRefused) {
    WriteStream(Content(10'000), 10'000);
    const std::string whole = FileBytes(File());
    for (std::size_t size = 0; size < whole.size(); size += 256) {
        WriteBytes(File(), whole.substr(0, size));
        const std::string fault = Fault();
        if (fault != "文件不完整，可能没有下载或复制完，请重新取得该文件！") {
            EXPECT_EQ(fault, "文件已损坏或不是有效的 Excel 文件：复合文档") << size;
        }
    }
}

// Every number of header, table and directory set to values that lead astray: an answer each time, and soon.
TEST_F(CompoundFile, EveryNumberMayLie) {
    for (const bool foreign : {false, true}) {
        if (foreign) {
            WriteBytes(
                File(),
                FileBytes((testing_paths::SourceFolder() / "tests/data/compound/short_stream.ole").string()));
        } else {
            WriteStream(Content(6'000), 6'000);
        }
        const std::string good = FileBytes(File());
        int refused = 0;
        // Every number of the header, and every seventh behind it: they meet every field of the directory.
        for (std::size_t at = 24; at + 4 <= good.size(); at += at < 96 ? 4 : 28) {
            for (const std::uint32_t value : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFEu}) {
                std::string bytes = good;
                for (int i = 0; i < 4; ++i)
                    bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i) & 0xFF);
                WriteBytes(File(), bytes);
                if (!Fault().empty()) ++refused;
            }
        }
        EXPECT_GT(refused, 15) << foreign;
    }
}

TEST_F(CompoundFile, AFileThatCannotBeMadeIsTold) {
    EXPECT_THROW(CompoundWriter(File("missing/container.xls"), "Workbook"), automation::Error);
}

TEST_F(CompoundFile, AFullDiskIsTold) {
    CompoundWriter writer("/dev/full", "Workbook");
    EXPECT_THROW(
        {
            for (int i = 0; i < 10; ++i)
                writer.Write(Content(10'000));
            writer.Finish();
        },
        automation::Error);
}

}  // namespace
}  // namespace vicenter::office
