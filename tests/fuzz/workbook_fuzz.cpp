// Fuzz target of the workbook readers: any bytes are a file; it is read or refused with an automation::Error.
// The content decides which reader takes it, so one target serves both kinds.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "automation/error.h"
#include "platform/office/workbook_file.h"

namespace {

const std::string& FileName() {
    static const std::string name =
        (std::filesystem::temp_directory_path() / ("workbook_fuzz." + std::to_string(getpid()))).string();
    static const bool registered = [] {
        std::atexit([] { std::filesystem::remove(FileName()); });
        return true;
    }();
    static_cast<void>(registered);
    return name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    {
        std::ofstream file(FileName(), std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    try {
        vicenter::office::ReadWorkbook(FileName());
    } catch (const vicenter::automation::Error&) {
        // Refused: what most inputs deserve.
    }
    return 0;
}
