#pragma once

// The parts of an ".xlsx" package, read from its zip archive one at a time and in pieces.
// Nothing is ever unpacked to disk, so names inside the archive cannot reach any file. The package owns the
// archive; a part refers to it and must not outlive it.

#include <memory>
#include <string>
#include <string_view>

#include "platform/office/xml_scanner.h"

struct zip;
struct zip_file;

namespace vicenter::office {

class XlsxPart : public ByteSource {
  public:
    explicit XlsxPart(zip_file* file) : file_(file) {}
    ~XlsxPart() override;
    std::size_t Read(char* buffer, std::size_t size) override;

  private:
    zip_file* file_;
    std::uint64_t total_ = 0;
};

class XlsxPackage {
  public:
    // Throws automation::Error when the file is no zip archive.
    explicit XlsxPackage(const std::string& fileName);
    XlsxPackage(const XlsxPackage&) = delete;
    XlsxPackage& operator=(const XlsxPackage&) = delete;
    ~XlsxPackage();

    // The part of that name, compared without case; no object when it is missing.
    std::unique_ptr<XlsxPart> Open(const std::string& name) const;

  private:
    zip* archive_ = nullptr;
};

// The name of the part that a relationship's target means, seen from the part `base`: "../x", "/x" and "x".
// A target that leads out of the package gives a name that no part has.
std::string ResolvePartName(std::string_view base, std::string_view target);

}  // namespace vicenter::office
