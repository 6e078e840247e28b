#pragma once

// A copy of a workbook that was refused: the faulty cells coloured, the reasons in a column behind the last.
// Mended, it imports as the workbook that it was made of: its column of reasons, known by the format of its
// header, is no column of a template, and its mark in the file's name none of the template's name. Late bound
// throughout. User-interface thread only.

#include <string>
#include <vector>

#include "exchange/exchange_target.h"
#include "exchange/import_outcome.h"

namespace vicenter::exchange {

inline constexpr const char* kReasonsHeader = "原因";
// Of the header's cell: shows texts and hides numbers. No other program writes it over such a header.
inline constexpr const char* kReasonsFormat = ";;;@";
// Behind the base name of a copy's file.
inline constexpr const char* kMarkedMark = "(标错)";

// The name of a file's copy, beside it.
std::string MarkedCopyName(const std::string& fileName);
// The base name of a file, without blanks around it, and without the mark when the file is a copy that
// somebody has mended.
std::string TemplateNameOf(const std::string& fileName);

// Writes the copy over whatever is there; why it was not written, for users, or the empty text. Never throws.
std::string WriteMarkedCopy(const std::string& fileName, const std::vector<LineFault>& faults,
                            const std::string& target);

// The command on a workbook that was refused: reads it again, asks for a name, writes, and tells what came of
// it. Never throws.
void SaveMarkedCopy(ExchangeTarget& window, const std::string& fileName);

}  // namespace vicenter::exchange
