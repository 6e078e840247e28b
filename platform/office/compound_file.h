#pragma once

// The one stream of an ".xls" file inside its compound file, written and read in pieces.
// Both classes own what they open; not thread-safe.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/office/xml_scanner.h"

namespace vicenter::office {

class CompoundWriter {
  public:
    // Makes the file with one stream in it. Throws automation::Error when that is impossible.
    CompoundWriter(const std::string& fileName, const std::string& streamName);
    CompoundWriter(const CompoundWriter&) = delete;
    CompoundWriter& operator=(const CompoundWriter&) = delete;
    ~CompoundWriter();

    void Write(std::string_view data);
    void Finish();

  private:
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

class CompoundReader : public ByteSource {
  public:
    // Opens the file's workbook stream. Throws automation::Error for a file that is no compound file, holds
    // no workbook of a known kind, or is encrypted.
    explicit CompoundReader(const std::string& fileName);
    ~CompoundReader() override;

    std::size_t Read(char* buffer, std::size_t size) override;
    void Seek(std::uint64_t position);
    std::uint64_t Size() const;

  private:
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

}  // namespace vicenter::office
