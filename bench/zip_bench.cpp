// The package of an .xlsx file written by our ZipWriter, beside libzip's writer and libdeflate under the same
// container. What is packed is a sheet's part as the writer makes it, in pieces of a row.
//
// Each measurement runs in a process of its own, candidates in turn, so that peak memory is that of one job
// alone; the least processor time of the rounds and the largest memory are shown. Every archive is read back
// and compared. Usage: zip_bench [rows] [rounds]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <libdeflate.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zip.h>

#include "platform/office/zip_writer.h"

namespace {

using vicenter::office::ZipWriter;

constexpr const char* kPart = "xl/worksheets/sheet1.xml";
constexpr int kLevel = 3;  // as ZipWriter's

void Check(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "wrong result: %s\n", what);
    std::_Exit(3);
}

// One row of a sheet with a template's seventeen columns.
std::string Row(int row) {
    const std::string number = std::to_string(row);
    std::string xml = "<row r=\"" + number + "\">";
    for (char column = 'A'; column <= 'Q'; ++column) {
        xml.append("<c r=\"").append(1, column).append(number);
        if (column == 'A' || column >= 'K') {
            xml += "\" s=\"2\"><v>" + std::to_string((row * 7919 + column) % 100000) + "." +
                   std::to_string(row % 100) + "</v></c>";
        } else {
            xml += "\" s=\"1\" t=\"s\"><v>" + std::to_string((row * 31 + column) % 5000) + "</v></c>";
        }
    }
    return xml + "</row>";
}

std::string WholePart(int rows) {
    std::string part;
    for (int row = 1; row <= rows; ++row)
        part += Row(row);
    return part;
}

void ByZipWriter(int rows, const std::string& file) {
    ZipWriter writer(file);
    writer.Begin(kPart);
    for (int row = 1; row <= rows; ++row)
        writer.Write(Row(row));
    writer.End();
    writer.Finish();
}

void CloseZip(zip_t* archive, zip_source_t* source) {
    const zip_int64_t index = zip_file_add(archive, kPart, source, ZIP_FL_ENC_UTF_8);
    Check(index >= 0, "libzip part");
    Check(zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, kLevel) == 0,
          "libzip level");
    Check(zip_close(archive) == 0, "libzip close");
}

// libzip asks for the part when the archive is closed: it has to be there whole ...
void ByLibzipBuffer(int rows, const std::string& file) {
    const std::string part = WholePart(rows);
    zip_t* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    Check(archive != nullptr, "libzip open");
    CloseZip(archive, zip_source_buffer(archive, part.data(), part.size(), 0));
}

// ... or to be made piece by piece when libzip asks.
struct Rows {
    int next = 1;
    int last = 0;
    std::string left = {};
};
zip_int64_t GiveRows(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command) {
    Rows& rows = *static_cast<Rows*>(state);
    switch (command) {
        case ZIP_SOURCE_OPEN:
            rows.next = 1;
            rows.left.clear();
            return 0;
        case ZIP_SOURCE_READ: {
            while (rows.left.size() < length && rows.next <= rows.last)
                rows.left += Row(rows.next++);
            const std::size_t given = std::min<std::size_t>(rows.left.size(), length);
            std::copy_n(rows.left.data(), given, static_cast<char*>(data));
            rows.left.erase(0, given);
            return static_cast<zip_int64_t>(given);
        }
        case ZIP_SOURCE_STAT:
            zip_stat_init(static_cast<zip_stat_t*>(data));
            return sizeof(zip_stat_t);
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE,
                                                  ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, -1);
        default:
            return 0;
    }
}
void ByLibzipCallback(int rows, const std::string& file) {
    Rows state;
    state.last = rows;
    zip_t* archive = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    Check(archive != nullptr, "libzip open");
    CloseZip(archive, zip_source_function(archive, GiveRows, &state));
}

// libdeflate packs whole texts only. Its output stands here without a container, which costs next to nothing.
void ByLibdeflate(int rows, const std::string& file) {
    const std::string part = WholePart(rows);
    libdeflate_compressor* compressor = libdeflate_alloc_compressor(kLevel);
    std::string packed(libdeflate_deflate_compress_bound(compressor, part.size()), '\0');
    packed.resize(
        libdeflate_deflate_compress(compressor, part.data(), part.size(), packed.data(), packed.size()));
    Check(!packed.empty() && libdeflate_crc32(0, part.data(), part.size()) != 0, "libdeflate");
    libdeflate_free_compressor(compressor);
    std::FILE* out = std::fopen(file.c_str(), "wb");
    Check(out != nullptr && std::fwrite(packed.data(), 1, packed.size(), out) == packed.size(),
          "libdeflate file");
    std::fclose(out);
}

void CheckArchive(int rows, const std::string& file) {
    zip_t* archive = zip_open(file.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, nullptr);
    Check(archive != nullptr, "archive");
    const std::string part = WholePart(rows);
    std::string read(part.size() + 1, '\0');
    zip_file_t* entry = zip_fopen(archive, kPart, 0);
    Check(entry != nullptr, "part");
    Check(zip_fread(entry, read.data(), read.size()) == static_cast<zip_int64_t>(part.size()), "length");
    Check(read.compare(0, part.size(), part) == 0, "content");
    zip_fclose(entry);
    zip_discard(archive);
}

struct Candidate {
    const char* name;
    void (*write)(int, const std::string&);
    bool isArchive;
    double milliseconds = 1e9;
    long kibibytes = 0;
    std::uintmax_t bytes = 0;
};

void Time(Candidate& candidate, int rows, const std::string& file) {
    const pid_t child = fork();
    if (child == 0) {
        candidate.write(rows, file);
        std::_Exit(0);
    }
    int status = 0;
    rusage used{};
    wait4(child, &status, 0, &used);
    Check(status == 0, candidate.name);
    const double taken = 1000.0 * static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
                         static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1000.0;
    candidate.milliseconds = std::min(candidate.milliseconds, taken);
    candidate.kibibytes = std::max(candidate.kibibytes, used.ru_maxrss);
    candidate.bytes = std::filesystem::file_size(file);
    if (candidate.isArchive) CheckArchive(rows, file);
}

}  // namespace

int main(int argc, char** argv) {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 50000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    const std::string file =
        (std::filesystem::temp_directory_path() / ("zip_bench" + std::to_string(getpid()))).string();
    Candidate candidates[] = {{"ZipWriter (zlib, as the part is made)", ByZipWriter, true},
                              {"libzip, the part made when it asks", ByLibzipCallback, true},
                              {"libzip, the part whole", ByLibzipBuffer, true},
                              {"libdeflate, the part whole, no archive", ByLibdeflate, false}};
    for (int round = 0; round < rounds; ++round) {
        for (Candidate& candidate : candidates)
            Time(candidate, rows, file);
    }
    std::filesystem::remove(file);
    std::printf("%d rows, %zu bytes, best of %d rounds\n", rows, WholePart(rows).size(), rounds);
    for (const Candidate& candidate : candidates) {
        std::printf("  %-40s %9.1f ms %8.1f MiB %9.2f MB  %5.2f x\n", candidate.name, candidate.milliseconds,
                    static_cast<double>(candidate.kibibytes) / 1024.0,
                    static_cast<double>(candidate.bytes) / 1e6,
                    candidate.milliseconds / candidates[0].milliseconds);
    }
    return 0;
}
