#pragma once

// The dispatch ids of the public classes' members, as early-bound hosts are compiled against them: the place
// in this list, the first being 1. New names stand at the end; none is ever taken out or moved. A default
// member has id 0 as well.

#include <span>

namespace vicenter::front {

inline constexpr const char* kMemberNames[] = {
    "ShowVICenter",
    "mTransMode",
    "IsExecuteSql",
    "GetRs",
    "GetUserCloudInfo",
    "GetVchTemplateByUserID",
    "GetVchTpProfileByUserID",
    "GetVchEntryCount",
    "CheckVchTemplateIsExist",
    "DeleteVchTemplateInfo",
    "InsertVchTemplateInfo",
    "GetVchTemplateEntryInfo",
    "GetItemInfoByNumber",
    "MergeItemsInfo",
    "GetItems",
    "GetItemClassIDs",
    "CheckErrorCell",
    "Encode",
    "Decode",
    "ChunkSize",
    "Append",
    "AppendLine",
    "Insert",
    "Remove",
    "Find",
    "ToString",
    "Clear",
    "TrimToSize",
    "Register",
    "Unregister",
    "SetFramework",
    "ProcessEvents",
    "RunWindows",
    "CloseWindows",
    "OpenWindows",
};

inline constexpr std::span<const char* const> MemberNames() {
    return kMemberNames;
}

}  // namespace vicenter::front
