#pragma once

// The one stream of an ".xls" file inside its compound file, written and read in pieces.
//
// Our own on every system: what a hostile file can make a reader do (chains that bite their tails, sizes that
// nothing holds) is bounded here by the size of the file, and nothing is loaded into the host's process for
// it. Both classes own what they open; not thread-safe.

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "platform/office/xml_scanner.h"

namespace vicenter::office {

class CompoundWriter {
  public:
    // Makes the file, with one stream in it. Throws automation::Error when that is impossible.
    CompoundWriter(const std::string& fileName, std::string_view streamName);
    CompoundWriter(const CompoundWriter&) = delete;
    CompoundWriter& operator=(const CompoundWriter&) = delete;

    // More of the stream, at most 2 GiB in all.
    void Write(std::string_view data);
    // Makes a file of it. The stream is filled up with zeros to the 4,096 bytes from which on streams lie in
    // whole sectors; behind a workbook's last record they say nothing.
    void Finish();

  private:
    void Put(std::string_view data);

    std::string streamName_;
    std::ofstream file_;
    std::uint64_t streamBytes_ = 0;
};

class CompoundReader : public ByteSource {
  public:
    // Opens the file's workbook stream. Throws automation::Error for a file that is no compound file, holds
    // no workbook of a known kind, or is encrypted.
    explicit CompoundReader(const std::string& fileName);
    ~CompoundReader() override;

    std::size_t Read(char* buffer, std::size_t size) override;
    // position from the stream's start, at most its size.
    void Seek(std::uint64_t position);
    std::uint64_t Size() const;

  private:
    class Container;
    std::unique_ptr<Container> container_;
};

}  // namespace vicenter::office
