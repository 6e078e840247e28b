#pragma once

// What the account set says when it refuses something, for message boxes: the usual refusals in Chinese, with
// the server's number and its own text behind them. The one place where they are worded. Stateless.

#include <string>

namespace vicenter::store {

// Any other text comes back as it is.
std::string EngineTextInChinese(const std::string& text);

// True when it says that others are in the way: what was asked or written may well be there.
bool SaysLocked(const std::string& text);

}  // namespace vicenter::store
