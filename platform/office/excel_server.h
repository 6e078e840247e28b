#pragma once

// The built-in server behind the ProgID Excel.Application: an in-memory workbook with readers and writers for
// ".xlsx" and ".xls". It answers late-bound calls as the spreadsheet program itself would, as far as template
// exchange uses them. Nothing needs to be running or installed; objects live on the user-interface thread.

#include <string>

namespace vicenter::office {

// Registers the server in the process's class registry with the version that Application.Version reports.
// Below 12 it knows only ".xls", as the old program did.
void RegisterExcelServer(const std::string& version = "16.0");
void UnregisterExcelServer();

}  // namespace vicenter::office
