// Header, stream, directory, FAT, and what finds the FAT: in this order, so that the stream goes out as it is
// made and only the header is written twice.

#include <filesystem>

#include "platform/office/compound_file.h"
#include "platform/office/compound_layout.h"
#include "platform/office/limits.h"

namespace vicenter::office {

namespace {

using namespace compound;

constexpr std::uint64_t kSectorBytes = 1u << kSectorShift;
constexpr std::uint64_t kNumbersOfASector = kSectorBytes / 4;
constexpr std::uint64_t kMaxStreamBytes = 0x7FFFFFFF;  // of a version 3 file

[[noreturn]] void FailWriting() {
    throw automation::Error(automation::error_number::kPermissionDenied,
                            "无法写入文件，磁盘可能已满或没有权限！");
}

std::uint32_t Pieces(std::uint64_t count, std::uint64_t size) {
    return static_cast<std::uint32_t>((count + size - 1) / size);
}

// Numbers of the sectors behind the stream's own.
struct Places {
    std::uint32_t streamSectors;
    std::uint32_t fatSectors = 0;
    std::uint32_t difatSectors = 0;

    explicit Places(std::uint64_t streamBytes) : streamSectors(Pieces(streamBytes, kSectorBytes)) {
        // The FAT counts its own sectors, and those that find them.
        for (std::uint32_t before = kFree; before != fatSectors + difatSectors;) {
            before = fatSectors + difatSectors;
            fatSectors = Pieces(std::uint64_t{All()}, kNumbersOfASector);
            if (fatSectors > kHeaderFatSectors) {
                difatSectors = Pieces(fatSectors - kHeaderFatSectors, kNumbersOfASector - 1);
            }
        }
    }
    std::uint32_t Directory() const { return streamSectors; }
    std::uint32_t Fat() const { return Directory() + 1; }
    std::uint32_t Difat() const { return Fat() + fatSectors; }
    std::uint32_t All() const { return Difat() + difatSectors; }
};

std::string DirectoryEntry(std::string_view name, std::uint8_t type) {
    std::string bytes(kEntryBytes, '\0');
    for (std::size_t i = 0; i < name.size(); ++i)
        bytes[2 * i] = name[i];
    if (!name.empty()) Put16(bytes, entry::kNameLength, static_cast<std::uint16_t>(2 * (name.size() + 1)));
    bytes[entry::kType] = static_cast<char>(type);
    bytes[entry::kColor] = 1;  // black: a tree of one
    for (const std::size_t link : {entry::kLeft, entry::kRight, entry::kChild})
        Put32(bytes, link, kNoEntry);
    return bytes;
}

std::string Directory(std::string_view streamName, std::uint64_t streamBytes) {
    std::string root = DirectoryEntry("Root Entry", kRoot);
    Put32(root, entry::kChild, 1);
    Put32(root, entry::kStart, kEndOfChain);  // no stream lies in small pieces
    std::string stream = DirectoryEntry(streamName, kStream);
    Put32(stream, entry::kStart, 0);
    Put32(stream, entry::kSize, static_cast<std::uint32_t>(streamBytes));
    const std::string unused = DirectoryEntry("", 0);
    return root + stream + unused + unused;
}

std::string Fat(const Places& places) {
    std::string bytes(std::size_t{places.fatSectors} * kSectorBytes, '\xFF');  // kFree
    for (std::uint32_t sector = 0; sector < places.All(); ++sector) {
        std::uint32_t next = sector + 1;
        if (sector >= places.Difat()) {
            next = kDifatSector;
        } else if (sector >= places.Fat()) {
            next = kFatSector;
        } else if (sector == places.Directory() || sector + 1 == places.streamSectors) {
            next = kEndOfChain;
        }
        Put32(bytes, 4 * std::size_t{sector}, next);
    }
    return bytes;
}

// The FAT's sectors that the header has no place for; a sector's last number leads to the next.
std::string Difat(const Places& places) {
    std::string bytes(std::size_t{places.difatSectors} * kSectorBytes, '\xFF');
    std::size_t at = 0;
    for (std::uint32_t i = kHeaderFatSectors; i < places.fatSectors; ++i) {
        if (at % kSectorBytes == kSectorBytes - 4) at += 4;
        Put32(bytes, at, places.Fat() + i);
        at += 4;
    }
    for (std::uint32_t i = 1; i <= places.difatSectors; ++i) {
        Put32(bytes, i * kSectorBytes - 4, i == places.difatSectors ? kEndOfChain : places.Difat() + i);
    }
    return bytes;
}

std::string Header(const Places& places) {
    std::string bytes(kHeaderBytes, '\0');
    bytes.replace(0, kSignature.size(), kSignature);
    Put16(bytes, header::kMinorVersion, 0x3E);
    Put16(bytes, header::kMajorVersion, 3);
    Put16(bytes, header::kByteOrder, 0xFFFE);
    Put16(bytes, header::kSectorShift, kSectorShift);
    Put16(bytes, header::kMiniShift, kMiniShift);
    Put32(bytes, header::kFatSectors, places.fatSectors);
    Put32(bytes, header::kDirectory, places.Directory());
    Put32(bytes, header::kMiniCutoff, static_cast<std::uint32_t>(kMiniCutoff));
    Put32(bytes, header::kMiniFat, kEndOfChain);
    Put32(bytes, header::kDifat, places.difatSectors > 0 ? places.Difat() : kEndOfChain);
    Put32(bytes, header::kDifatSectors, places.difatSectors);
    for (std::uint32_t i = 0; i < kHeaderFatSectors; ++i) {
        Put32(bytes, header::kFirstFatSectors + 4 * i, i < places.fatSectors ? places.Fat() + i : kFree);
    }
    return bytes;
}

}  // namespace

CompoundWriter::CompoundWriter(const std::string& fileName, std::string_view streamName)
    : streamName_(streamName),
      file_(std::filesystem::path(reinterpret_cast<const char8_t*>(fileName.c_str())),
            std::ios::binary | std::ios::trunc) {
    Put(std::string(kHeaderBytes, '\0'));
}

void CompoundWriter::Put(std::string_view data) {
    file_.write(data.data(), static_cast<std::streamsize>(data.size()));
    if (!file_) FailWriting();
}

void CompoundWriter::Write(std::string_view data) {
    streamBytes_ += data.size();
    if (streamBytes_ > kMaxStreamBytes) FailTooLarge();
    Put(data);
}

void CompoundWriter::Finish() {
    if (streamBytes_ < kMiniCutoff) Write(std::string(kMiniCutoff - streamBytes_, '\0'));
    const Places places(streamBytes_);
    Put(std::string(places.streamSectors * kSectorBytes - streamBytes_, '\0'));
    Put(Directory(streamName_, streamBytes_));
    Put(Fat(places));
    Put(Difat(places));
    file_.seekp(0);
    Put(Header(places));
    file_.close();
    if (!file_) FailWriting();
}

}  // namespace vicenter::office
