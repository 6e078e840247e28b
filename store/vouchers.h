#pragma once

// Posted vouchers: which are meant, and the statements that read them. Texts of a filter go into the
// statements as they stand, but for the group's name: they have to be whole numbers. User-interface thread.

#include <cstdint>
#include <string>
#include <vector>

namespace vicenter::store {

// Values are texts as a dialog's boxes hold them.
struct VoucherFilter {
    std::string year;
    std::string period;
    std::string from;            // first voucher number
    std::string to;              // last voucher number
    std::string group;           // a voucher group's name; empty: all groups
    bool includeSystem = false;  // with vouchers made by the system
};

// A whole number of digits alone: what may go into a statement as it stands.
bool IsWholeNumber(const std::string& text);

// The lines of the selected vouchers in the vouchers' own order.
std::string VoucherQuery(const VoucherFilter& filter);
// Voucher, number and line counts of the same selection.
std::string VoucherCountQuery(const VoucherFilter& filter);

// Names of all voucher groups, ordered by id.
std::vector<std::string> ReadVoucherGroups();

// Lowest and highest voucher number of a period as texts; "0" and "0" without vouchers.
struct VoucherNumbers {
    std::string lowest = "0";
    std::string highest = "0";
};
VoucherNumbers ReadVoucherNumbers(const std::string& year, const std::string& period);

// What a filter selects. Vouchers of different groups that share a number become one template number.
struct VoucherCount {
    std::int64_t numbers = 0;
    std::int64_t vouchers = 0;
    std::int64_t lines = 0;
    std::int64_t missing = 0;  // lines that are not read, see MissingLines
};
VoucherCount CountVouchers(const VoucherFilter& filter);

// Which groups have vouchers of a number, and how many, by number.
struct GroupOfNumber {
    std::int64_t number = 0;
    std::string group;
    std::int64_t vouchers = 0;
};
std::vector<GroupOfNumber> ReadGroupsOfNumbers(const VoucherFilter& filter);

// Lines of the selected vouchers whose account or currency is no longer in the ledger: the vouchers are read
// without them.
struct MissingLines {
    std::vector<std::string> numbers;  // of their vouchers, ascending
    std::int64_t lines = 0;
};
MissingLines ReadMissingLines(const VoucherFilter& filter);

}  // namespace vicenter::store
