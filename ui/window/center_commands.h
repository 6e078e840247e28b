#pragma once

// The main window's commands that live in other folders: import, export, cloud upload, generation.
// Brings the window together with exchange/ and autovch/, which know nothing of it. Stateless; user-interface
// thread only.

#include "center/frame/template_commands.h"

namespace vicenter::ui {

class CenterCommands : public center::TemplateCommands {
  public:
    void Import(center::TemplateWindow& window) override;
    void ImportFile(center::TemplateWindow& window, const std::string& fileName) override;
    void Export(center::TemplateWindow& window) override;
    void UploadToCloud(center::TemplateWindow& window) override;
    void GenerateFromVouchers(center::TemplateWindow& window) override;
};

}  // namespace vicenter::ui
