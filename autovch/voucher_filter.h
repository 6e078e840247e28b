#pragma once

// Which posted vouchers are meant: the filter of the generation dialog and what the ledger knows of it.
//
// Values are texts as the dialog's boxes hold them; they go into the statements as they stand, so that
// Problem() has to be empty before any statement is built. User-interface thread.

#include <cstdint>
#include <string>
#include <vector>

#include "automation/object.h"

namespace vicenter::autovch {

struct VoucherFilter {
    std::string year;
    std::string period;
    std::string from;            // first voucher number
    std::string to;              // last voucher number
    std::string group;           // a voucher group's name; empty: all groups
    bool includeSystem = false;  // with vouchers made by the system
};

// Ledger settings of the general-ledger system profile; what the host does not know is 0.
struct LedgerPeriod {
    std::int16_t periodCount = 0;
    std::int16_t currentYear = 0;
    std::int16_t currentPeriod = 0;
};
LedgerPeriod ReadLedgerPeriod();

// Names of all voucher groups, ordered by id.
std::vector<std::string> ReadVoucherGroups();

// Lowest and highest voucher number of a period as texts; "0" and "0" without vouchers.
struct VoucherNumbers {
    std::string lowest = "0";
    std::string highest = "0";
};
VoucherNumbers ReadVoucherNumbers(const std::string& year, const std::string& period);

// What a filter selects. Vouchers of different groups that share a number become one template number.
struct FilterCount {
    std::int64_t numbers = 0;
    std::int64_t vouchers = 0;
    std::int64_t lines = 0;
};
// Zeros for a filter that is not complete yet.
FilterCount CountSelected(const VoucherFilter& filter);

// What keeps the filter from being used, in the words for the user; empty when nothing does.
std::string FilterProblem(const VoucherFilter& filter);

// A whole number of digits alone: what may go into a statement as it stands.
bool IsWholeNumber(const std::string& text);

}  // namespace vicenter::autovch
