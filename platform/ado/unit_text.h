#pragma once

// What users are told of a batch whose unit is gone.

namespace vicenter::ado {

inline constexpr const char* kUnitLostText = "事务没有开始或已经撤消，整个操作没有保存。请重新操作。";

}  // namespace vicenter::ado
