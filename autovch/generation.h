#pragma once

// Turns posted vouchers into a template: the checks, the question, the batch and the report.
//
// Works without a window; the dialog and the command line both use it. Messages go through the surroundings'
// message boxes. Nothing is written unless Generate() gets as far as its one batch. User-interface thread.

#include <cstdint>
#include <string>

#include "autovch/generation_preview.h"
#include "autovch/generation_sql.h"
#include "autovch/voucher_filter.h"
#include "store/template_outcome.h"

namespace vicenter::autovch {

struct GenerationRequest {
    VoucherFilter filter;
    std::string templateName;
    ChosenColumns columns;
    LeftOut without = {};  // what the user does not want of the selected vouchers
};

struct GenerationResult {
    store::TemplateOutcome outcome;
    std::string templateName = {};  // as it was looked for
    std::string message;            // for the caller to show once the dialog is closed
    // Nothing was written: what a template has no room for, which the user has been told.
    std::vector<store::LineFault> faults = {};
};

// progress may be empty; giving up there writes nothing and says nothing.
GenerationResult Generate(const GenerationRequest& request, const Progress& progress = {});

}  // namespace vicenter::autovch
