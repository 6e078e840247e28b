#pragma once

// How the component learns its host context: the host property string and the values in it.
//
// The property string is fetched anew on every call; nothing of it is cached. What the module keeps for the
// life of the process: the current user id (of the window that opened last), an attachable host context
// object and a preset property string (the latter two empty unless a host sets them). A host may go to
// another account set, or to another user, while windows stand open: what they ask and write is then still
// their own (SessionScope). User-interface thread.

#include <string>
#include <string_view>

#include "automation/object.h"

namespace vicenter::entry {

// The host property string: from the attached context object (when its AcctID is not empty), else the preset
// string, else the shared property "PropsString". Errors of the host components pass. Within a SessionScope
// the window's own where the host's names another user or account set by now.
std::string GetPropsString();
// Its ConnectString. Errors of the host components pass.
std::string ConnectStringOfHost();

// Which account set a property string names: equal for all that lead to the same one, however a password or a
// ticket in them is renewed, and without these.
std::string AccountSetOf(const std::string& propsString);

// What the host's shared property manager holds for this process under that name: an object or a value.
automation::Variant GetShareProperty(std::string_view name);

// The value of a key of the property string; "chs" for LANGUAGE whatever the host says. The empty text when
// the key is missing or the host fails. The bare key is searched for, so that a key that ends another one
// finds that one.
std::string GetPropValue(std::string_view key);

// The value of a key in a list of key, "=", value pairs. ConnectString's value stands in braces, which end
// it.
std::string GetKeyValue(std::string_view text, std::string_view key, std::string_view separator);

// The id that the last window kept; before there was one, the host's own UserID as it stands now, so
// that a host that only uses the data class has an owner for what it makes.
std::string CurrentUserId();
void SetCurrentUserId(std::string userId);

// Whose a window is, and on which account set it works: what the host said when it was opened.
struct WindowSession {
    std::string userId;
    std::string propsString;
};

// Until the end of the scope the current user is the window's, and so is the account set: windows of several
// users and account sets may live in one process, and what a command reads and writes belongs to the window
// that asks. What a host renews within a property string, a password or a ticket, counts as soon as it is
// there. An empty user changes nothing; an empty property string lets the host's count alone.
class SessionScope {
  public:
    explicit SessionScope(const WindowSession& window);
    SessionScope(const SessionScope&) = delete;
    SessionScope& operator=(const SessionScope&) = delete;
    ~SessionScope();

  private:
    WindowSession saved_;
};

void AttachHostContext(automation::ObjectRef context);
void PresetPropsString(std::string propsString);

}  // namespace vicenter::entry
