#include "platform/office/compound_file.h"

#include <algorithm>
#include <array>

#include <gsf/gsf.h>

#include "platform/office/limits.h"

namespace vicenter::office {

namespace {

void InitLibrary() {
    static const bool done = [] {
        gsf_init();
        return true;
    }();
    static_cast<void>(done);
}

// The library tells damaged files to the process's log, too; the Error is enough. Only for the time of a
// call: the log belongs to the whole process.
class QuietLog {
  public:
    QuietLog() {
        const auto silent = [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {};
        const auto levels = static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK & ~G_LOG_LEVEL_ERROR);
        for (std::size_t i = 0; i < kDomains.size(); ++i) {
            handlers_[i] = g_log_set_handler(kDomains[i], levels, silent, nullptr);
        }
    }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;
    ~QuietLog() {
        for (std::size_t i = 0; i < kDomains.size(); ++i)
            g_log_remove_handler(kDomains[i], handlers_[i]);
    }

  private:
    static constexpr std::array<const char*, 5> kDomains = {nullptr, "libgsf:msole", "libgsf", "GLib",
                                                            "GLib-GObject"};
    std::array<guint, kDomains.size()> handlers_{};
};

struct Unref {
    void operator()(void* object) const {
        if (object != nullptr) g_object_unref(object);
    }
};

template <class T>
using Owned = std::unique_ptr<T, Unref>;

[[noreturn]] void FailWriting() {
    throw automation::Error(automation::error_number::kPermissionDenied,
                            "无法写入文件，磁盘可能已满或没有权限！");
}

}  // namespace

struct CompoundWriter::Handles {
    Owned<GsfOutput> file;
    Owned<GsfOutfile> compound;
    Owned<GsfOutput> stream;
};

CompoundWriter::CompoundWriter(const std::string& fileName, const std::string& streamName)
    : handles_(std::make_unique<Handles>()) {
    InitLibrary();
    handles_->file.reset(gsf_output_stdio_new(fileName.c_str(), nullptr));
    if (!handles_->file) FailWriting();
    handles_->compound.reset(gsf_outfile_msole_new(handles_->file.get()));
    handles_->stream.reset(gsf_outfile_new_child(handles_->compound.get(), streamName.c_str(), FALSE));
    if (!handles_->stream) FailWriting();
}

CompoundWriter::~CompoundWriter() = default;

void CompoundWriter::Write(std::string_view data) {
    if (!gsf_output_write(handles_->stream.get(), data.size(),
                          reinterpret_cast<const guint8*>(data.data()))) {
        FailWriting();
    }
}

void CompoundWriter::Finish() {
    bool good = gsf_output_close(handles_->stream.get());
    good = gsf_output_close(GSF_OUTPUT(handles_->compound.get())) && good;
    // The compound file may have closed the file below it already.
    if (!gsf_output_is_closed(handles_->file.get())) good = gsf_output_close(handles_->file.get()) && good;
    if (!good) FailWriting();
}

struct CompoundReader::Handles {
    Owned<GsfInput> file;
    Owned<GsfInfile> compound;
    Owned<GsfInput> stream;
};

CompoundReader::CompoundReader(const std::string& fileName) : handles_(std::make_unique<Handles>()) {
    InitLibrary();
    const QuietLog quiet;
    handles_->file.reset(gsf_input_stdio_new(fileName.c_str(), nullptr));
    if (!handles_->file) FailDamaged("无法打开");
    handles_->compound.reset(gsf_infile_msole_new(handles_->file.get(), nullptr));
    if (!handles_->compound) FailDamaged("复合文档");
    const auto open = [this](const char* name) {
        return Owned<GsfInput>(gsf_infile_child_by_name(handles_->compound.get(), name));
    };
    handles_->stream = open("Workbook");
    if (handles_->stream) return;
    if (open("EncryptedPackage")) throw automation::Error(kExcelError, "文件已加密，无法打开！");
    if (open("Book")) throw automation::Error(kExcelError, "不支持 Excel 95 及更早版本的文件！");
    FailDamaged("缺少工作簿");
}

CompoundReader::~CompoundReader() = default;

std::size_t CompoundReader::Read(char* buffer, std::size_t size) {
    const QuietLog quiet;
    GsfInput* stream = handles_->stream.get();
    const gsf_off_t left = gsf_input_remaining(stream);
    if (left <= 0) return 0;
    const std::size_t count = std::min(size, static_cast<std::size_t>(left));
    if (gsf_input_read(stream, count, reinterpret_cast<guint8*>(buffer)) == nullptr) FailDamaged("复合文档");
    return count;
}

void CompoundReader::Seek(std::uint64_t position) {
    const QuietLog quiet;
    if (position > Size() ||
        gsf_input_seek(handles_->stream.get(), static_cast<gsf_off_t>(position), G_SEEK_SET)) {
        FailDamaged("工作表位置");
    }
}

std::uint64_t CompoundReader::Size() const {
    return static_cast<std::uint64_t>(std::max<gsf_off_t>(0, gsf_input_size(handles_->stream.get())));
}

}  // namespace vicenter::office
