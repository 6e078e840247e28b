#include <array>
#include <iostream>
#include <streambuf>
#include <utility>

#include <fcntl.h>
#include <io.h>

#include "platform/system/program.h"
#include "platform/system/windows_text.h"

namespace vicenter::system {

std::vector<std::string> ProgramArguments(int, char**) {
    std::vector<std::string> result;
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i)
        result.push_back(os::Narrow(arguments[i]));
    LocalFree(arguments);
    return result;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const std::wstring wide = os::Wide(name);
    SetLastError(ERROR_SUCCESS);
    DWORD size = GetEnvironmentVariableW(wide.c_str(), nullptr, 0);
    if (size == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    std::wstring value(size, L'\0');
    value.resize(GetEnvironmentVariableW(wide.c_str(), value.data(), size));
    return os::Narrow(value);
}

namespace {

// A console takes and gives UTF-16 whatever its code page. A character may come in pieces.
class ConsoleOutput final : public std::streambuf {
  public:
    explicit ConsoleOutput(HANDLE console) : console_(console) {}

  protected:
    int_type overflow(int_type c) override {
        if (traits_type::eq_int_type(c, traits_type::eof())) return 0;
        const char byte = traits_type::to_char_type(c);
        return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
    }
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        pending_.append(bytes, static_cast<std::size_t>(count));
        return Write(WholeCharacters()) ? count : 0;
    }
    int sync() override { return 0; }

  private:
    std::size_t WholeCharacters() const {
        std::size_t end = pending_.size();
        // At most three bytes behind a first one that announces more.
        for (std::size_t back = 1; back <= 3 && back <= end; ++back) {
            const auto byte = static_cast<unsigned char>(pending_[end - back]);
            if (byte < 0x80) return end;
            if (byte >= 0xC0) {
                const std::size_t wanted = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
                return back < wanted ? end - back : end;
            }
        }
        return end;
    }
    bool Write(std::size_t bytes) {
        std::wstring text = os::Wide(std::string_view(pending_).substr(0, bytes));
        pending_.erase(0, bytes);
        std::wstring_view rest = text;
        while (!rest.empty()) {
            DWORD written = 0;
            // Long texts are refused by some.
            const auto piece = static_cast<DWORD>(std::min<std::size_t>(rest.size(), 8000));
            if (!WriteConsoleW(console_, rest.data(), piece, &written, nullptr) || written == 0) return false;
            rest.remove_prefix(written);
        }
        return true;
    }

    HANDLE console_;
    std::string pending_;
};

class ConsoleInput final : public std::streambuf {
  public:
    explicit ConsoleInput(HANDLE console) : console_(console) {}

  protected:
    int_type underflow() override {
        constexpr wchar_t kControlZ = 0x1A;
        DWORD count = 0;
        if (!ReadConsoleW(console_, units_.data(), static_cast<DWORD>(units_.size()), &count, nullptr) ||
            count == 0 || units_[0] == kControlZ)
            return traits_type::eof();
        std::wstring text = std::exchange(half_, {}) + std::wstring(units_.data(), count);
        if (IS_HIGH_SURROGATE(text.back())) {
            half_ = text.back();
            text.pop_back();
        }
        std::erase(text, L'\r');
        bytes_ = os::Narrow(text);
        setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
        return bytes_.empty() ? underflow() : traits_type::to_int_type(bytes_.front());
    }

  private:
    HANDLE console_;
    std::array<wchar_t, 1024> units_{};
    std::wstring half_;
    std::string bytes_;
};

HANDLE ConsoleOf(DWORD which) {
    const HANDLE handle = GetStdHandle(which);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) ? handle : nullptr;
}

}  // namespace

class StandardStreams::Consoles {
  public:
    Consoles()
        : input_(ConsoleOf(STD_INPUT_HANDLE)),
          output_(ConsoleOf(STD_OUTPUT_HANDLE)),
          errors_(ConsoleOf(STD_ERROR_HANDLE)) {
        for (const int stream : {0, 1, 2})
            _setmode(stream, _O_BINARY);
        std::ios::sync_with_stdio(false);
        if (ConsoleOf(STD_INPUT_HANDLE) != nullptr) before_[0] = std::cin.rdbuf(&input_);
        if (ConsoleOf(STD_OUTPUT_HANDLE) != nullptr) before_[1] = std::cout.rdbuf(&output_);
        if (ConsoleOf(STD_ERROR_HANDLE) != nullptr) before_[2] = std::cerr.rdbuf(&errors_);
    }
    ~Consoles() {
        if (before_[0] != nullptr) std::cin.rdbuf(before_[0]);
        if (before_[1] != nullptr) std::cout.rdbuf(before_[1]);
        if (before_[2] != nullptr) std::cerr.rdbuf(before_[2]);
    }
    Consoles(const Consoles&) = delete;
    Consoles& operator=(const Consoles&) = delete;

  private:
    ConsoleInput input_;
    ConsoleOutput output_;
    ConsoleOutput errors_;
    std::array<std::streambuf*, 3> before_{};
};

StandardStreams::StandardStreams() : consoles_(std::make_unique<Consoles>()) {}

StandardStreams::~StandardStreams() {
    std::cout.flush();
}

}  // namespace vicenter::system
