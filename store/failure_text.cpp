#include "store/failure_text.h"

#include "store/cls_vi_data.h"
#include "store/engine_text.h"

namespace vicenter::store {

std::string WithReason(const std::string& sentence) {
    const std::string& why = clsVIData::LastFailure();
    return why.empty() ? sentence : sentence + "\r\n\r\n" + EngineTextInChinese(why);
}

}  // namespace vicenter::store
