#include "host/account_set_choice.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "automation/error.h"
#include "host/account_set.h"
#include "platform/ado/connection.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"
#include "platform/system/whole_path.h"
#include "store/engine_text.h"

namespace vicenter::host {

using automation::Error;
namespace fs = std::filesystem;

namespace {

constexpr const char* kListFile = "recent-account-sets.txt";
constexpr std::size_t kMost = 12;

fs::path ListOf(const std::string& folder) {
    return system::PathFromUtf8(folder) / kListFile;
}

std::vector<std::string> ReadList(const std::string& folder) {
    std::vector<std::string> files;
    std::ifstream list(ListOf(folder), std::ios::binary);
    for (std::string line; std::getline(list, line) && files.size() < kMost;) {
        if (!line.empty()) files.push_back(line);
    }
    return files;
}

// The start of a command line takes words in double quotes; a name that holds one cannot be given there.
bool CanBeQuoted(const std::string& text) {
    return text.find('"') == std::string::npos;
}

}  // namespace

AccountSetChoice::AccountSetChoice(const std::string& folder) : recent_(ReadList(folder)) {
    std::erase_if(recent_, [](const std::string& file) {
        std::error_code ignored;
        return !fs::is_regular_file(system::PathFromUtf8(file), ignored);
    });
}

void AccountSetChoice::Choose(const std::string& file) {
    file_ = file;
    users_.clear();
    note_.clear();
    try {
        // Kept for nobody: a file that is open can be neither moved nor deleted on Windows.
        const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(file) + ";Pooling=no");
        const ado::RecordsetRef rows =
            connection->Execute("select FUserID,FName,FDescription from t_User order by FUserID");
        for (std::size_t row = 0; row < static_cast<std::size_t>(rows->RecordCount()); ++row)
            users_.push_back({rows->ValueAt(row, 0).ToInt32(), rows->ValueAt(row, 1).ToText(),
                              rows->ValueAt(row, 2).ToText()});
        if (users_.empty()) note_ = "账套中没有用户。";
    } catch (const Error& error) {
        users_.clear();
        note_ = "账套不能打开：" + store::EngineTextInChinese(error.Text());
    }
}

bool AccountSetChoice::Open(std::size_t user) {
    if (user >= users_.size()) return false;
    const std::string program = system::PathToUtf8(
        system::PathFromUtf8(system::Surroundings::Current().folders->Component()) / "vicenter");
    if (!CanBeQuoted(program) || !CanBeQuoted(file_)) {
        note_ = "文件名中有引号，不能从这里打开。";
        return false;
    }
    try {
        system::Surroundings::Current().processes->Start("\"" + program + "\" --account-set \"" + file_ +
                                                         "\" --user " + std::to_string(users_[user].id) +
                                                         " window");
        return true;
    } catch (const Error& error) {
        note_ = "窗口不能打开：" + store::EngineTextInChinese(error.Text());
        return false;
    }
}

void AccountSetChoice::Remember(const std::string& folder, const std::string& file) {
    std::error_code failed;
    const std::string path = system::PathToUtf8(system::WholePath(system::PathFromUtf8(file), failed));
    if (failed || path.find('\n') != std::string::npos) return;
    std::vector<std::string> files = ReadList(folder);
    if (!files.empty() && files.front() == path) return;
    std::erase(files, path);
    files.insert(files.begin(), path);
    if (files.size() > kMost) files.resize(kMost);
    // Nobody else has made it where no demo set was opened and no setting changed.
    fs::create_directories(system::PathFromUtf8(folder), failed);
    try {
        system::FileReplacement list(system::PathToUtf8(ListOf(folder)));
        {
            std::ofstream out(system::PathFromUtf8(list.Path()), std::ios::binary | std::ios::trunc);
            for (const std::string& line : files)
                out << line << '\n';
            out.close();
            if (!out) return;
        }
        list.PutInPlace(system::Durable::No);
    } catch (const Error&) {
        // The list that was there stays.
    }
}

}  // namespace vicenter::host
