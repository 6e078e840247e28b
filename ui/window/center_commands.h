#pragma once

// The main window's commands that live in other folders: import, export, cloud upload, generation.
// Brings the window together with exchange/ and autovch/, which know nothing of it. Stateless; user-interface
// thread only.

#include "center/frame/template_commands.h"

namespace vicenter::ui {

class CenterCommands : public center::TemplateCommands {
  public:
    void Import(center::CommandTarget& window) override;
    void ImportFiles(center::CommandTarget& window, const std::vector<std::string>& fileNames) override;
    void ImportTidily(center::CommandTarget& window, const std::string& fileName) override;
    void SaveMarkedCopy(center::CommandTarget& window, const std::string& fileName) override;
    void Export(center::CommandTarget& window) override;
    void UploadToCloud(center::CommandTarget& window) override;
    void GenerateFromVouchers(center::CommandTarget& window) override;
};

}  // namespace vicenter::ui
