// docs/automation.md lists every public member with its arguments, and none that does not exist.

#include <fstream>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "automation/member_table.h"
#include "entry/aplication.h"
#include "front/ado_connection.h"
#include "front/host_registrar.h"
#include "platform/ado/recordset.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/file_system_object.h"
#include "store/cls_vi_data.h"
#include "support/string_builder.h"
#include "support/vbs_json.h"
#include "tests/paths/source_folder.h"

namespace vicenter {
namespace {

using Members = std::map<std::string, std::string>;  // signature, kind

template <class T>
Members MembersOf() {
    Members members;
    for (const auto& member : T::Members().All()) {
        std::string signature = member.info.name;
        if (member.info.method || !member.info.arguments.empty()) {
            signature += '(';
            for (std::size_t i = 0; i < member.info.arguments.size(); ++i)
                signature += (i == 0 ? "" : ", ") + member.info.arguments[i];
            signature += ')';
        }
        std::string kind = member.info.method ? "method" : member.info.readable ? "get" : "put";
        if (!member.info.method && member.info.readable && member.info.writable) kind = "get, put";
        if (member.info.isDefault) kind += ", default";
        members[signature] = kind;
    }
    return members;
}

// The rows of a section's table: "| `signature` | kind | ...".
Members DocumentedMembers(const std::string& progId) {
    std::ifstream file(testing_paths::SourceFolder() / "docs/automation.md");
    Members members;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("## ", 0) == 0) inside = line == "## `" + progId + "`";
        if (!inside || line.rfind("| `", 0) != 0) continue;
        const std::size_t end = line.find('`', 3);
        const std::size_t kind = line.find("| ", end) + 2;
        members[line.substr(3, end - 3)] = line.substr(kind, line.find(" |", kind) - kind);
    }
    return members;
}

TEST(AutomationDoc, ListsTheMembersOfEveryPublicClass) {
    EXPECT_EQ(DocumentedMembers("VelaVICenter.aplication"), MembersOf<entry::aplication>());
    EXPECT_EQ(DocumentedMembers("VelaVICenter.clsVIData"), MembersOf<store::clsVIData>());
    EXPECT_EQ(DocumentedMembers("VelaVICenter.VbsJson"), MembersOf<support::VbsJson>());
    EXPECT_EQ(DocumentedMembers("VelaVICenter.StringBuilder"), MembersOf<support::StringBuilder>());
    EXPECT_EQ(DocumentedMembers("VelaVICenter.Host"), MembersOf<front::HostRegistrar>());
    EXPECT_EQ(DocumentedMembers("Scripting.Dictionary"), MembersOf<scripting::Dictionary>());
    EXPECT_EQ(DocumentedMembers("Scripting.FileSystemObject"), MembersOf<scripting::FileSystemObject>());
    EXPECT_EQ(DocumentedMembers("ADODB.Recordset"), MembersOf<ado::Recordset>());
    EXPECT_EQ(DocumentedMembers("ADODB.Connection"), MembersOf<front::AdoConnection>());
}

}  // namespace
}  // namespace vicenter
