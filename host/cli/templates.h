#pragma once

// What the commands on templates share: the user's list, names and lines.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "center/grid/entry_grid.h"
#include "host/cli/context.h"
#include "platform/ado/recordset.h"

namespace vicenter::host {

struct TemplateHead {
    std::string id;
    std::string name;
};

// The user's templates as the tree lists them, the standard template first. Throws when they cannot be read.
std::vector<TemplateHead> ReadTemplates(const CliContext& context);

// Whether a template is meant by what was given as its name: without regard to case and width, nor to line
// ends behind it.
bool IsNamed(std::string_view name, std::string_view given);
// The template that is meant among them, by its exact name first; none when there is none.
std::optional<TemplateHead> FindTemplateIfAny(const CliContext& context, std::string_view given);
// Throws Error 32811 instead.
TemplateHead FindTemplate(const CliContext& context, const std::string& given);

// A template's lines as stored, and the grid that holds them with the checks' marks; the same order in both.
// Others work on the same account set: lines of what is no longer the template that was listed are none of
// its. Throws when they cannot be read, and when it is that no more.
struct TemplateLines {
    ado::RecordsetRef records;
    center::EntryGrid grid;
    int count = 0;
};
void ReadLines(const TemplateHead& head, TemplateLines& lines);

// Whether a text column of the grid would take the text, apostrophes and bars aside.
bool FitsColumn(const center::ColumnSpec& spec, std::string_view text);

// The fields of a row's cells that the window shows red, in column order.
std::vector<std::string> FaultyFields(const center::EntryGrid& grid, int row);
// Those, and the fields of texts that no cell takes although the account set holds them: a line that
// names them is taken back with them.
std::vector<std::string> FieldsToTakeBack(const center::EntryGrid& grid, int row);

// Whether the user lets a file that is there be replaced.
bool MayReplaceFile(const std::string& file);

// Control rows of a template as JSON, ordered by template number.
VariantArray ReadControlRows(const std::string& templateId);

}  // namespace vicenter::host
