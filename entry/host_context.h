#pragma once

// How the component learns its host context: the host property string and the values in it.
//
// The property string is fetched anew on every call; nothing of it is cached. What the module keeps for the
// life of the process: the current user id (of the window that opened last), an attachable host context
// object and a preset property string (the latter two empty unless a host sets them). User-interface thread.

#include <string>
#include <string_view>

#include "automation/object.h"

namespace vicenter::entry {

// The host property string: from the attached context object (when its AcctID is not empty), else the preset
// string, else the shared property "PropsString". Errors of the host components pass.
std::string GetPropsString();

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

// The current user is that one until the end of the scope: windows of several users may live in one process,
// and what a command writes belongs to the user of the window that asks. An empty id changes nothing.
class UserScope {
  public:
    explicit UserScope(const std::string& userId);
    UserScope(const UserScope&) = delete;
    UserScope& operator=(const UserScope&) = delete;
    ~UserScope();

  private:
    std::string saved_;
};

void AttachHostContext(automation::ObjectRef context);
void PresetPropsString(std::string propsString);

}  // namespace vicenter::entry
