#pragma once

// The batch of a generation: the lines that the voucher query gives, written as a template.

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "autovch/generation_preview.h"
#include "autovch/voucher_filter.h"
#include "platform/ado/recordset.h"
#include "store/line_fault.h"
#include "store/template_columns.h"
#include "store/template_guard.h"

namespace vicenter::autovch {

// The optional fields by the grid column that stands for them, out of store::VoucherColumns().
using ChosenColumns = std::set<int>;

using store::VoucherCountQuery;
using store::VoucherQuery;

// The column list of every entry insert.
std::string EntryColumns(const ChosenColumns& chosen);

// The items text of a voucher line's detail id.
using ItemsOf = std::function<std::string(const std::string& detailId)>;
// Called now and then while the batch is built; false gives up.
using Progress = std::function<bool(std::int64_t done, std::int64_t all)>;

struct TemplateTarget {
    std::string name;
    std::string userId;
    std::int32_t overwriteId = -1;                 // the template to replace; store::kNewTemplate: a new one
    std::optional<store::SeenTemplate> seen = {};  // that one, as the user is asked about it
};

// The whole batch, or the empty text when the progress gave up or the account set has no room for some of the
// values, each of which is then among the faults. Reads the recordset from its first row.
std::string GenerationBatch(const TemplateTarget& target, const ChosenColumns& chosen,
                            ado::Recordset& vouchers, const ItemsOf& itemsOf, const Progress& progress,
                            std::vector<store::LineFault>& faults, const LeftOut& without = {});

}  // namespace vicenter::autovch
