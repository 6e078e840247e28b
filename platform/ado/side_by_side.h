#pragma once

// Questions that do not wait for each other. Where each question costs a trip to a server, all that can be
// asked by then is sent at once over several connections; elsewhere they are asked one after the other. The
// texts are the same either way.
//
// A question is a function that asks its statements through the process's own brokers, reads and changes
// nothing. It may be begun several times, until all that it asks has been answered, and is then brought to
// its end once; what an unanswered statement throws is no automation::Error and must pass through it. Meant
// for one command: nothing of an answer is kept behind it. User-interface thread.

#include <functional>
#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace vicenter::ado {

// Whether AskSideBySide gains anything for that host property string.
bool PaysToAskSideBySide(const std::string& propsString);

void AskSideBySide(const std::string& propsString, const std::vector<std::function<void()>>& questions);

// What a back end does: the answers to statements that change nothing, in their order; no object for one that
// failed or was not asked, which is then asked by itself. Throws
// automation::Error when the user has stopped it: what is still open fails with that.
using SideBySideAsker = std::function<std::vector<RecordsetRef>(const std::string& connectString,
                                                                std::vector<std::string> texts)>;
void RegisterSideBySide(const std::string& provider, SideBySideAsker asker);

// ---- for the brokers

// The connection that notes or answers what a question asks; none while nobody asks side by side there.
ConnectionRef SideBySideConnection(const std::string& connectString);

}  // namespace vicenter::ado
