#pragma once

// What the demo firm trades and who works there. Constants.

#include <cstdint>
#include <string_view>

namespace vicenter::host {

struct DemoProduct {
    std::string_view name;
    std::string_view stock;  // account numbers
    std::string_view revenue;
    std::string_view cost;
    std::string_view supplier;
    std::int64_t costCents;  // of one unit
    std::int64_t priceCents;
};

inline constexpr DemoProduct kDemoProducts[] = {
    {"绿茶", "1405.01", "5001.01", "5401.01", "S002", 26'000, 42'000},
    {"乌龙茶", "1405.02", "5001.02", "5401.02", "S001", 18'050, 31'500},
    {"紫砂壶", "1405.03", "5001.03", "5401.03", "S003", 15'600, 28'800},
    {"丝绸面料", "1405.04", "5001.04", "5401.04", "S004", 6'025, 11'250},
};

struct DemoDepartment {
    std::string_view number;
    std::string_view salaryAccount;
    std::int64_t salaryCents;  // of a month
};

inline constexpr DemoDepartment kDemoDepartments[] = {
    {"D01", "5602.01", 1'850'000}, {"D02", "5602.01", 1'620'000}, {"D03", "5602.01", 980'000},
    {"D04", "5601.01", 2'140'000}, {"D05", "5601.01", 2'360'000}, {"D06", "5602.01", 860'000},
};

}  // namespace vicenter::host
