// Every count and number of a file from elsewhere is held against the file's size before it is believed: no
// chain is followed further than the file has sectors, no list grows beyond them.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/office/compound_file.h"
#include "platform/office/compound_layout.h"
#include "platform/office/foreign_file.h"
#include "platform/office/limits.h"
#include "text/ascii.h"

namespace vicenter::office {

using namespace compound;

namespace {

[[noreturn]] void FailContainer() {
    FailDamaged("复合文档");
}

struct Entry {
    std::string name;  // ASCII in capitals; other characters as "?"
    std::uint8_t type = 0;
    std::uint32_t left = kNoEntry;
    std::uint32_t right = kNoEntry;
    std::uint32_t child = kNoEntry;
    std::uint32_t start = kEndOfChain;
    std::uint64_t size = 0;
};

std::string Capitals(std::string_view text) {
    std::string capitals(text);
    for (char& character : capitals)
        character = text::UpperAscii(character);
    return capitals;
}

std::string EntryName(const char* bytes) {
    const std::size_t length = std::min<std::size_t>(Get16(bytes + entry::kNameLength), kNameBytes);
    std::string name;
    for (std::size_t at = 0; at + 2 < length; at += 2) {
        const std::uint16_t unit = Get16(bytes + at);
        name += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return Capitals(name);
}

}  // namespace

class CompoundReader::Container {
  public:
    explicit Container(const std::string& fileName)
        : file_(std::filesystem::path(reinterpret_cast<const char8_t*>(fileName.c_str())), std::ios::binary) {
        if (!file_) FailDamaged("无法打开");
        file_.seekg(0, std::ios::end);
        fileBytes_ = static_cast<std::uint64_t>(std::max<std::streamoff>(0, file_.tellg()));
        ReadHeader();
        ReadFat();
        ReadDirectory();
    }

    // False when the root holds no stream of that name, compared without case.
    bool OpenStream(std::string_view name) {
        const Entry* found = Find(Capitals(name));
        if (found == nullptr) return false;
        if (found->size > fileBytes_) FailTruncated();
        size_ = found->size;
        if (size_ < kMiniCutoff) {
            PlaceInSmallPieces(*found);
        } else {
            pieceBytes_ = sectorBytes_;
            for (const std::uint32_t sector : Chain(fat_, found->start, PiecesOf(size_, sectorBytes_))) {
                places_.push_back(PlaceOf(sector));
            }
        }
        return true;
    }

    bool HasStream(std::string_view name) const { return Find(Capitals(name)) != nullptr; }

    std::size_t Read(char* buffer, std::size_t count) {
        count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - position_));
        std::size_t done = 0;
        while (done < count) {
            // Pieces that lie one behind the other are read at once.
            const auto piece = static_cast<std::size_t>(position_ / pieceBytes_);
            const std::uint64_t within = position_ % pieceBytes_;
            std::size_t last = piece;
            std::uint64_t run = pieceBytes_ - within;
            while (run < count - done && places_[last + 1] == places_[last] + pieceBytes_) {
                run += pieceBytes_;
                ++last;
            }
            const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(run, count - done));
            ReadAt(places_[piece] + within, buffer + done, bytes);
            done += bytes;
            position_ += bytes;
        }
        return done;
    }

    void Seek(std::uint64_t position) { position_ = position; }
    std::uint64_t Size() const { return size_; }

  private:
    static std::uint64_t PiecesOf(std::uint64_t bytes, std::uint64_t pieceBytes) {
        return (bytes + pieceBytes - 1) / pieceBytes;
    }
    // The header takes a sector's place, in files of large sectors too.
    std::uint64_t PlaceOf(std::uint32_t sector) const { return (std::uint64_t{sector} + 1) * sectorBytes_; }

    void ReadAt(std::uint64_t place, char* buffer, std::size_t count) {
        // What lies behind the end was there once: the containers of whole files end behind their last
        // sector.
        if (place > fileBytes_ || count > fileBytes_ - place) FailTruncated();
        file_.seekg(static_cast<std::streamoff>(place));
        file_.read(buffer, static_cast<std::streamsize>(count));
        if (!file_) FailContainer();
    }
    std::string ReadSector(std::uint32_t sector) {
        std::string bytes(static_cast<std::size_t>(sectorBytes_), '\0');
        if (sector > kLastSector) FailContainer();
        ReadAt(PlaceOf(sector), bytes.data(), bytes.size());
        return bytes;
    }

    void ReadHeader() {
        header_.resize(kHeaderBytes);
        if (fileBytes_ < kHeaderBytes) FailContainer();
        ReadAt(0, header_.data(), header_.size());
        if (header_.compare(0, kSignature.size(), kSignature) != 0) FailContainer();
        const std::uint16_t shift = Get16(header_.data() + header::kSectorShift);
        if (shift != kSectorShift && shift != kLargeSectorShift) FailContainer();
        sectorBytes_ = std::uint64_t{1} << shift;
        hasLargeSizes_ = shift == kLargeSectorShift;
        sectors_ = PiecesOf(fileBytes_, sectorBytes_) - 1;
    }

    // The FAT's own sectors: the first in the header, the others in sectors chained by their last number.
    std::vector<std::uint32_t> FatSectors() {
        const std::uint64_t numbers = sectorBytes_ / 4;
        // What a table says of sectors behind the file's end is of no use.
        const std::uint64_t wanted =
            std::min<std::uint64_t>(Get32(header_.data() + header::kFatSectors), PiecesOf(sectors_, numbers));
        std::vector<std::uint32_t> found;
        for (std::size_t i = 0; i < kHeaderFatSectors && found.size() < wanted; ++i) {
            found.push_back(Get32(header_.data() + header::kFirstFatSectors + 4 * i));
        }
        std::uint32_t next = Get32(header_.data() + header::kDifat);
        while (found.size() < wanted) {
            const std::string bytes = ReadSector(next);
            for (std::uint64_t i = 0; i + 1 < numbers && found.size() < wanted; ++i) {
                found.push_back(Get32(bytes.data() + 4 * i));
            }
            next = Get32(bytes.data() + bytes.size() - 4);
        }
        return found;
    }

    void AppendNumbers(std::vector<std::uint32_t>& to, const std::string& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += 4)
            to.push_back(Get32(bytes.data() + at));
    }

    void ReadFat() {
        for (const std::uint32_t sector : FatSectors())
            AppendNumbers(fat_, ReadSector(sector));
    }

    // The first `wanted` numbers of a chain; a shorter one is damaged. With kWhole: up to its end.
    static constexpr std::uint64_t kWhole = ~std::uint64_t{0};
    static std::vector<std::uint32_t> Chain(const std::vector<std::uint32_t>& table, std::uint32_t start,
                                            std::uint64_t wanted) {
        std::vector<std::uint32_t> chain;
        for (std::uint32_t at = start; chain.size() < wanted; at = table[at]) {
            if (at == kEndOfChain && wanted == kWhole) break;
            if (at >= table.size() || chain.size() >= table.size()) FailContainer();
            chain.push_back(at);
        }
        return chain;
    }

    void ReadDirectory() {
        for (const std::uint32_t sector : Chain(fat_, Get32(header_.data() + header::kDirectory), kWhole)) {
            const std::string bytes = ReadSector(sector);
            for (std::size_t at = 0; at < bytes.size(); at += kEntryBytes) {
                const char* place = bytes.data() + at;
                Entry& added = entries_.emplace_back();
                added.name = EntryName(place);
                added.type = static_cast<std::uint8_t>(place[entry::kType]);
                added.left = Get32(place + entry::kLeft);
                added.right = Get32(place + entry::kRight);
                added.child = Get32(place + entry::kChild);
                added.start = Get32(place + entry::kStart);
                added.size = hasLargeSizes_ ? Get64(place + entry::kSize) : Get32(place + entry::kSize);
            }
        }
        if (entries_.empty() || entries_.front().type != kRoot) FailContainer();
    }

    // Visits all children of the root: foreign writers do not all sort them as a search would need.
    const Entry* Find(const std::string& name) const {
        std::vector<bool> seen(entries_.size(), false);
        std::vector<std::uint32_t> open = {entries_.front().child};
        while (!open.empty()) {
            const std::uint32_t at = open.back();
            open.pop_back();
            if (at >= entries_.size() || seen[at]) continue;
            seen[at] = true;
            const Entry& candidate = entries_[at];
            if (candidate.type == kStream && candidate.name == name) return &candidate;
            open.push_back(candidate.left);
            open.push_back(candidate.right);
        }
        return nullptr;
    }

    // A short stream lies in the root's own stream, in pieces chained by a table of their own.
    void PlaceInSmallPieces(const Entry& stream) {
        pieceBytes_ = std::uint64_t{1} << kMiniShift;
        const Entry& root = entries_.front();
        const std::vector<std::uint32_t> home = Chain(fat_, root.start, kWhole);
        std::vector<std::uint32_t> table;
        for (const std::uint32_t sector : Chain(fat_, Get32(header_.data() + header::kMiniFat), kWhole)) {
            AppendNumbers(table, ReadSector(sector));
        }
        for (const std::uint32_t piece : Chain(table, stream.start, PiecesOf(size_, pieceBytes_))) {
            const std::uint64_t within = std::uint64_t{piece} * pieceBytes_;
            const std::uint64_t sector = within / sectorBytes_;
            if (sector >= home.size()) FailContainer();
            places_.push_back(PlaceOf(home[static_cast<std::size_t>(sector)]) + within % sectorBytes_);
        }
    }

    std::ifstream file_;
    std::uint64_t fileBytes_ = 0;
    std::string header_;
    std::uint64_t sectorBytes_ = 0;
    std::uint64_t sectors_ = 0;  // of the file, the header not counted
    bool hasLargeSizes_ = false;
    std::vector<std::uint32_t> fat_;
    std::vector<Entry> entries_;

    std::vector<std::uint64_t> places_;  // in the file, of each piece of the open stream
    std::uint64_t pieceBytes_ = 1;
    std::uint64_t size_ = 0;
    std::uint64_t position_ = 0;
};

CompoundReader::CompoundReader(const std::string& fileName)
    : container_(std::make_unique<Container>(fileName)) {
    if (container_->OpenStream("Workbook")) return;
    if (container_->HasStream("EncryptedPackage")) FailEncrypted();
    if (container_->HasStream("Book")) FailOldVersion();
    if (container_->HasStream("WordDocument")) FailOtherDocument(" Word 文档");
    FailDamaged("缺少工作簿");
}

CompoundReader::~CompoundReader() = default;

std::size_t CompoundReader::Read(char* buffer, std::size_t size) {
    return container_->Read(buffer, size);
}

void CompoundReader::Seek(std::uint64_t position) {
    if (position > Size()) FailDamaged("工作表位置");
    container_->Seek(position);
}

std::uint64_t CompoundReader::Size() const {
    return container_->Size();
}

}  // namespace vicenter::office
