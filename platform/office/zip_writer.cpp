#include "platform/office/zip_writer.h"

#include <filesystem>

#include <zlib.h>

#include "automation/error.h"
#include "platform/office/limits.h"

namespace vicenter::office {

namespace {

// Sheets are so regular that higher levels cost twice the time for a few per cent of size.
constexpr int kLevel = 3;
constexpr int kRawDeflate = -15;
constexpr std::uint16_t kVersionNeeded = 20;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kFirstDate = 0x21;  // 1980-01-01: the same workbook gives the same file
constexpr std::uint64_t kMaxArchiveBytes = 0xFFFFFFFFull;

void Append16(std::string& to, std::uint16_t value) {
    to += static_cast<char>(value & 0xFF);
    to += static_cast<char>(value >> 8);
}

void Append32(std::string& to, std::uint32_t value) {
    Append16(to, static_cast<std::uint16_t>(value & 0xFFFF));
    Append16(to, static_cast<std::uint16_t>(value >> 16));
}

[[noreturn]] void FailWriting() {
    throw automation::Error(automation::error_number::kPermissionDenied,
                            "无法写入文件，磁盘可能已满或没有权限！");
}

}  // namespace

struct ZipWriter::Deflater {
    z_stream stream{};
    std::vector<unsigned char> output = std::vector<unsigned char>(128u << 10);
};

ZipWriter::ZipWriter(const std::string& fileName)
    : file_(std::filesystem::path(reinterpret_cast<const char8_t*>(fileName.c_str())),
            std::ios::binary | std::ios::trunc),
      deflater_(std::make_unique<Deflater>()) {
    if (!file_) FailWriting();
    if (deflateInit2(&deflater_->stream, kLevel, Z_DEFLATED, kRawDeflate, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
        FailTooLarge();
    }
}

ZipWriter::~ZipWriter() {
    deflateEnd(&deflater_->stream);
}

void ZipWriter::Put(std::string_view data) {
    file_.write(data.data(), static_cast<std::streamsize>(data.size()));
    if (!file_) FailWriting();
    position_ += data.size();
    if (position_ > kMaxArchiveBytes) FailTooLarge();
}

void ZipWriter::Begin(const std::string& partName) {
    Entry entry;
    entry.name = partName;
    entry.offset = position_;
    entry.crc = static_cast<std::uint32_t>(crc32(0, nullptr, 0));
    std::string header = "PK\x03\x04";
    Append16(header, kVersionNeeded);
    Append16(header, 0);
    Append16(header, kDeflated);
    Append16(header, 0);
    Append16(header, kFirstDate);
    Append32(header, 0);  // checksum and sizes follow at the end of the part
    Append32(header, 0);
    Append32(header, 0);
    Append16(header, static_cast<std::uint16_t>(partName.size()));
    Append16(header, 0);
    Put(header + partName);
    entries_.push_back(std::move(entry));
    deflateReset(&deflater_->stream);
}

void ZipWriter::Deflate(int flush) {
    z_stream& stream = deflater_->stream;
    do {
        stream.next_out = deflater_->output.data();
        stream.avail_out = static_cast<uInt>(deflater_->output.size());
        deflate(&stream, flush);
        const std::size_t count = deflater_->output.size() - stream.avail_out;
        Put({reinterpret_cast<const char*>(deflater_->output.data()), count});
        entries_.back().compressed += count;
    } while (stream.avail_out == 0);
}

void ZipWriter::Write(std::string_view data) {
    Entry& entry = entries_.back();
    while (!data.empty()) {
        const std::string_view piece = data.substr(0, 1u << 20);
        const auto* bytes = reinterpret_cast<const Bytef*>(piece.data());
        entry.crc = static_cast<std::uint32_t>(crc32(entry.crc, bytes, static_cast<uInt>(piece.size())));
        entry.size += piece.size();
        deflater_->stream.next_in = const_cast<Bytef*>(bytes);  // NOLINT: zlib reads only
        deflater_->stream.avail_in = static_cast<uInt>(piece.size());
        Deflate(Z_NO_FLUSH);
        data.remove_prefix(piece.size());
    }
}

void ZipWriter::End() {
    deflater_->stream.avail_in = 0;
    Deflate(Z_FINISH);
    const Entry& entry = entries_.back();
    if (entry.size > kMaxArchiveBytes) FailTooLarge();
    std::string sums;
    Append32(sums, entry.crc);
    Append32(sums, static_cast<std::uint32_t>(entry.compressed));
    Append32(sums, static_cast<std::uint32_t>(entry.size));
    constexpr std::uint64_t kSumsInHeader = 14;
    file_.seekp(static_cast<std::streamoff>(entry.offset + kSumsInHeader));
    file_.write(sums.data(), static_cast<std::streamsize>(sums.size()));
    file_.seekp(static_cast<std::streamoff>(position_));
    if (!file_) FailWriting();
}

void ZipWriter::Finish() {
    const std::uint64_t start = position_;
    std::string directory;
    for (const Entry& entry : entries_) {
        directory += "PK\x01\x02";
        Append16(directory, kVersionNeeded);
        Append16(directory, kVersionNeeded);
        Append16(directory, 0);
        Append16(directory, kDeflated);
        Append16(directory, 0);
        Append16(directory, kFirstDate);
        Append32(directory, entry.crc);
        Append32(directory, static_cast<std::uint32_t>(entry.compressed));
        Append32(directory, static_cast<std::uint32_t>(entry.size));
        Append16(directory, static_cast<std::uint16_t>(entry.name.size()));
        Append16(directory, 0);
        Append16(directory, 0);
        Append16(directory, 0);
        Append16(directory, 0);
        Append32(directory, 0);
        Append32(directory, static_cast<std::uint32_t>(entry.offset));
        directory += entry.name;
    }
    const std::size_t directoryBytes = directory.size();
    directory += "PK\x05\x06";
    Append32(directory, 0);
    Append16(directory, static_cast<std::uint16_t>(entries_.size()));
    Append16(directory, static_cast<std::uint16_t>(entries_.size()));
    Append32(directory, static_cast<std::uint32_t>(directoryBytes));
    Append32(directory, static_cast<std::uint32_t>(start));
    Append16(directory, 0);
    Put(directory);
    file_.close();
    if (!file_) FailWriting();
}

}  // namespace vicenter::office
