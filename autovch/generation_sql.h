#pragma once

// The statements of the generation: the voucher query and the batch that writes the template.

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "autovch/voucher_filter.h"
#include "platform/ado/recordset.h"
#include "store/template_columns.h"

namespace vicenter::autovch {

// The optional fields by the grid column that stands for them, out of store::VoucherColumns().
using ChosenColumns = std::set<int>;

// The lines of the selected vouchers in the vouchers' own order.
std::string VoucherQuery(const VoucherFilter& filter);
// Voucher, number and line counts of the same selection.
std::string VoucherCountQuery(const VoucherFilter& filter);

// The column list of every entry insert.
std::string EntryColumns(const ChosenColumns& chosen);

// The items text of a voucher line's detail id.
using ItemsOf = std::function<std::string(const std::string& detailId)>;
// Called now and then while the batch is built; false gives up.
using Progress = std::function<bool(std::int64_t done, std::int64_t all)>;

struct TemplateTarget {
    std::string name;
    std::string userId;
    std::int32_t overwriteId = -1;  // the template to replace; store::kNewTemplate: a new one
};

// The whole batch, or the empty text when the progress gave up. Reads the recordset from its first row.
std::string GenerationBatch(const TemplateTarget& target, const ChosenColumns& chosen,
                            ado::Recordset& vouchers, const ItemsOf& itemsOf, const Progress& progress);

}  // namespace vicenter::autovch
