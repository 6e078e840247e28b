#pragma once

// Writes a zip archive part by part in one pass, deflating while the parts are being made, so that no part is
// ever held whole. The archive is left incomplete unless Finish() was called; the caller removes the file
// then.

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::office {

class ZipWriter {
  public:
    // Throws automation::Error when the file cannot be made.
    explicit ZipWriter(const std::string& fileName);
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;
    ~ZipWriter();

    void Begin(const std::string& partName);
    void Write(std::string_view data);
    void End();
    void Add(const std::string& partName, std::string_view data) {
        Begin(partName);
        Write(data);
        End();
    }
    void Finish();

  private:
    struct Entry {
        std::string name;
        std::uint32_t crc = 0;
        std::uint64_t compressed = 0;
        std::uint64_t size = 0;
        std::uint64_t offset = 0;
    };
    struct Deflater;

    void Deflate(int flush);
    void Put(std::string_view data);

    std::ofstream file_;
    std::uint64_t position_ = 0;
    std::vector<Entry> entries_;
    std::unique_ptr<Deflater> deflater_;
};

}  // namespace vicenter::office
