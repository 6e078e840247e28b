#include "center/frame/help.h"

#include <filesystem>
#include <string>

#include "automation/error.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"

namespace vicenter::center {

namespace {

constexpr const char* kTopic = "VelaV12.chm::/凭证模板.htm";
constexpr const char* kPage = "docs/help/凭证模板.htm";
constexpr int kLevelsUp = 5;  // a build tree lies below the folder that holds docs/

// The page beside the component or in a folder above it; the place beside it when there is none.
std::string HelpPage(const std::string& componentFolder) {
    const std::filesystem::path page = system::PathFromUtf8(kPage);
    std::filesystem::path folder = system::PathFromUtf8(componentFolder);
    for (int level = 0; level <= kLevelsUp && !folder.empty(); ++level, folder = folder.parent_path()) {
        std::error_code ignored;
        if (std::filesystem::exists(folder / page, ignored)) return system::PathToUtf8(folder / page);
        const std::filesystem::path installed = folder / "share" / "vicenter" / page;
        if (std::filesystem::exists(installed, ignored)) return system::PathToUtf8(installed);
    }
    return system::PathToUtf8(system::PathFromUtf8(componentFolder) / page);
}

}  // namespace

void ShowHelp() {
    const system::Surroundings& surroundings = system::Surroundings::Current();
    try {
        const std::string folder = surroundings.folders->Component();
        try {
            surroundings.processes->Start("hh.exe " + folder + "\\" + kTopic);
        } catch (const automation::Error& error) {
            if (error.Number() != automation::error_number::kFileNotFound) throw;
            surroundings.processes->OpenDocument(HelpPage(folder));
        }
    } catch (const automation::Error&) {
        // Help never stops the work in the window.
    }
}

}  // namespace vicenter::center
