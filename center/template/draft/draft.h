#pragma once

// What a user has typed into a template and not saved, as a value and as a JSON text.
//
// The text is an object with "lines" as the command line's `show --json` and `save` have them, so that a
// draft can be saved without a window, too, unless a column has refused one of its texts ("refused").

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "center/template/kept_lines.h"
#include "center/template/line_loader.h"

namespace vicenter::center {

struct Draft {
    std::string userId;
    std::string templateId;
    std::string templateName;
    std::string written;  // when, as a text
    std::string process;  // the process that wrote it, as text
    std::string mark;     // tells that process from a later one of the same number
    std::string window;   // the window of that process
    LinesDigest loaded;   // what the template held when the typing began
    std::vector<KeptLine> lines;
};

std::string EncodeDraft(const Draft& draft);
// Nothing for a text that is no whole draft.
std::optional<Draft> DecodeDraft(std::string_view text);

}  // namespace vicenter::center
