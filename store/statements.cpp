#include "store/statements.h"

#include "store/cls_vi_data.h"

namespace vicenter::store {

ado::RecordsetRef GetRecordset(const std::string& sql) {
    return clsVIData().GetRs(sql);
}

bool RunSql(const std::string& sql) {
    return clsVIData().IsExecuteSql(sql);
}

}  // namespace vicenter::store
