// by hand
// The program on a console of Windows, which a test plays the person before: what is shown and what is typed
// is Chinese whatever the code page.

#include <vector>

#include "platform/system/windows_text.h"
#include "tests/host/demo_set.h"

namespace vicenter::host {
namespace {

struct Pipe {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    // With room for all that a test shows, which is read at the end.
    Pipe() { EXPECT_TRUE(CreatePipe(&read, &write, nullptr, 1 << 20)); }
};

std::string ReadToEnd(HANDLE pipe) {
    std::string all;
    char bytes[4096];
    DWORD count = 0;
    while (ReadFile(pipe, bytes, sizeof bytes, &count, nullptr) && count > 0)
        all.append(bytes, count);
    CloseHandle(pipe);
    return all;
}

// Without the orders to the screen: ESC, "[", parameters, a letter.
std::string TextAlone(const std::string& shown) {
    std::string text;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] != '\x1b') {
            text += shown[i];
            continue;
        }
        while (i + 1 < shown.size() && std::isalpha(static_cast<unsigned char>(shown[i])) == 0)
            ++i;
    }
    return text;
}

class OnConsole : public testing::Test {
  protected:
    // The program's exit code; what was shown is kept. The Return key is "\r".
    int Run(const std::vector<std::string>& arguments, const std::string& typed = {}) {
        Pipe keys;
        Pipe screen;
        HPCON console = nullptr;
        EXPECT_EQ(CreatePseudoConsole({120, 200}, keys.read, screen.write, 0, &console), S_OK);
        CloseHandle(keys.read);
        CloseHandle(screen.write);
        const HANDLE process = Start(console, arguments);
        DWORD written = 0;
        EXPECT_TRUE(WriteFile(keys.write, typed.data(), static_cast<DWORD>(typed.size()), &written, nullptr));
        EXPECT_EQ(WaitForSingleObject(process, INFINITE), WAIT_OBJECT_0);
        DWORD code = 0;
        EXPECT_TRUE(GetExitCodeProcess(process, &code));
        CloseHandle(process);
        ClosePseudoConsole(console);
        CloseHandle(keys.write);
        shown_ = TextAlone(ReadToEnd(screen.read));
        return static_cast<int>(code);
    }
    bool Shows(const std::string& text) const { return shown_.find(text) != std::string::npos; }
    std::string NameOfTheFirst() const {
        return ado::OpenConnection(FileConnectString(set_))
            ->Execute("select min(FName) as FName from t_VchTemplate where FID = 1")
            ->Value("FName")
            .ToTextOrEmpty();
    }

    test::TestFolder folder_;
    std::string set_ = test::CopySet(folder_);
    std::string shown_;

  private:
    static HANDLE Start(HPCON console, const std::vector<std::string>& arguments) {
        std::vector<std::string> words{VICENTER_IN_CONSOLE, VICENTER_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::wstring line = system::os::CommandLine(words);
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        std::vector<char> room(size);
        STARTUPINFOEXW how{};
        how.StartupInfo.cb = sizeof how;
        how.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(room.data());
        EXPECT_TRUE(InitializeProcThreadAttributeList(how.lpAttributeList, 1, 0, &size));
        EXPECT_TRUE(UpdateProcThreadAttribute(how.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_PSEUDOCONSOLE,
                                              console, sizeof console, nullptr, nullptr));
        PROCESS_INFORMATION started{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE,
                                   EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr, &how.StartupInfo,
                                   &started));
        DeleteProcThreadAttributeList(how.lpAttributeList);
        CloseHandle(started.hThread);
        return started.hProcess;
    }
};

TEST_F(OnConsole, ChineseIsShown) {
    ASSERT_EQ(Run({"--account-set", set_, "list"}), 0) << shown_;
    EXPECT_TRUE(Shows("标准模板")) << shown_;
    // What goes to the other stream as well.
    EXPECT_NE(Run({"--account-set", set_, "show", "没有的模板"}), 0);
    EXPECT_TRUE(Shows("没有的模板")) << shown_;
}

TEST_F(OnConsole, ChineseIsTyped) {
    // Ctrl+Z at the beginning of a line ends what is typed. The last character is of two UTF-16 units.
    ASSERT_EQ(Run({"--account-set", set_, "sql"},
                  "update t_VchTemplate set FName = '差旅费𠮷' where FID = 1\rgo\r\x1a\r"),
              0)
        << shown_;
    EXPECT_EQ(NameOfTheFirst(), "差旅费𠮷") << shown_;
}

TEST_F(OnConsole, AQuestionIsAnsweredInChinese) {
    ASSERT_EQ(Run({"--account-set", set_, "delete", "日常费用"}, "否\r"), 1) << shown_;
    EXPECT_EQ(NameOfTheFirst(), "日常费用") << shown_;
    ASSERT_EQ(Run({"--account-set", set_, "delete", "日常费用"}, "是\r"), 0) << shown_;
    EXPECT_EQ(NameOfTheFirst(), "") << shown_;
}

}  // namespace
}  // namespace vicenter::host
