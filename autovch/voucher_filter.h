#pragma once

// Which posted vouchers are meant: the filter of the generation dialog and what the ledger knows of it.
//
// Values are texts as the dialog's boxes hold them; they go into the statements as they stand, so that
// FilterProblem() has to be empty before any statement is built. User-interface thread.

#include <cstdint>
#include <string>
#include <vector>

#include "automation/object.h"
#include "store/vouchers.h"

namespace vicenter::autovch {

using store::IsWholeNumber;
using store::ReadVoucherGroups;
using store::ReadVoucherNumbers;
using store::VoucherFilter;
using store::VoucherNumbers;

// Ledger settings of the general-ledger system profile; what the host does not know is 0.
struct LedgerPeriod {
    std::int16_t periodCount = 0;
    std::int16_t currentYear = 0;
    std::int16_t currentPeriod = 0;
};
LedgerPeriod ReadLedgerPeriod();

// Zeros for a filter that is not complete yet.
store::VoucherCount CountSelected(const VoucherFilter& filter);

// What keeps the filter from being used, in the words for the user; empty when nothing does.
std::string FilterProblem(const VoucherFilter& filter);

}  // namespace vicenter::autovch
