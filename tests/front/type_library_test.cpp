// front/com/vicenter.idl, from which the type library is made, says of every public member what the member
// tables say, with the ids that early-bound hosts are compiled against. VICENTER_UPDATE_GOLDENS=1 in the
// environment writes it anew, to be read.

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "automation/member_table.h"
#include "entry/aplication.h"
#include "front/com/member_ids.h"
#include "store/cls_vi_data.h"
#include "support/string_builder.h"
#include "support/vbs_json.h"
#include "tests/paths/source_folder.h"

namespace vicenter::front {
namespace {

using automation::MemberInfo;

int IdOf(const std::string& name) {
    const auto names = MemberNames();
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const char* known) { return automation::SameName(known, name); });
    EXPECT_NE(found, names.end()) << name << " has no id: it goes to the end of the list";
    return static_cast<int>(found - names.begin()) + 1;
}

std::string Parameters(const MemberInfo& member, bool put) {
    std::string text;
    for (std::string name : member.arguments) {
        const bool optional = name.back() == '?';
        if (optional) name.pop_back();
        // The one argument that a member writes to.
        const bool out = name == "lMaxNum";
        text += (text.empty() ? "[" : ", [") + std::string(out ? "in, out" : "in") +
                (optional ? ", optional] " : "] ") + (out ? "VARIANT* " : "VARIANT ") + name;
    }
    if (put) text += (text.empty() ? "" : ", ") + std::string("[in] VARIANT value");
    return text;
}

void Declare(std::ostream& out, const MemberInfo& member) {
    const std::string id = "id(" + std::to_string(member.isDefault ? 0 : IdOf(member.name)) + ")";
    const auto line = [&](const char* kind, const char* result, bool put) {
        out << "        [" << id << kind << "] " << result << " " << member.name << "("
            << Parameters(member, put) << ");\n";
    };
    if (member.method) return line("", "VARIANT", false);
    if (member.readable) line(", propget", "VARIANT", false);
    if (member.writable) line(", propput", "void", true);
}

struct Names {
    const char* name;
    const char* text;
    const char* interfaceId;
    const char* classId;
};

template <class T>
void Declare(std::ostream& out, const Names& names) {
    out << "\n    [uuid(" << names.interfaceId << "), helpstring(\"" << names.text << "\")]\n"
        << "    dispinterface _" << names.name << "\n    {\n    properties:\n    methods:\n";
    for (const auto& member : T::Members().All())
        Declare(out, member.info);
    out << "    };\n\n    [uuid(" << names.classId << "), helpstring(\"" << names.text << "\")]\n"
        << "    coclass " << names.name << "\n    {\n        [default] dispinterface _" << names.name
        << ";\n    };\n";
}

std::string Made() {
    std::ostringstream out;
    out << "// Generated from the member tables by tests/front/type_library_test.cpp.\n"
        << "#ifdef __WIDL__\ninterface IUnknown;\ninterface IDispatch;\ntypedef struct tagVARIANT VARIANT;\n"
        << "#endif\n\n"
        << "[uuid(FE125752-6EC8-4741-9BFB-F7486F0ACFD9), version(1.0), helpstring(\"Voucher Template Center "
           "1.0\")]\n"
        << "library VelaVICenter\n{\n    importlib(\"stdole2.tlb\");\n";
    Declare<entry::aplication>(
        out, {"aplication", "Voucher Template Center", "9867BA6C-8315-4A8B-AE17-B4ED69D41C32",
              "CB676E64-08A3-419D-A549-611B88F63FD6"});
    Declare<store::clsVIData>(
        out, {"clsVIData", "Voucher Template Center data", "2C1010B2-F19E-4383-B11E-07158318FDB9",
              "E057ECA1-F300-496A-AF3A-BDD28D0FDF35"});
    Declare<support::VbsJson>(
        out, {"VbsJson", "Voucher Template Center JSON", "002A486B-E05E-4582-9369-D11F49445D69",
              "DAF99C00-B329-41C3-B7F8-6C02791E0D6C"});
    Declare<support::StringBuilder>(
        out, {"StringBuilder", "Voucher Template Center string builder",
              "E946C532-8754-499C-A35B-10927A784918", "956C88A9-D994-4FCF-A8B3-4A6DB0955360"});
    out << "};\n";
    return out.str();
}

TEST(TypeLibrary, SaysWhatTheMemberTablesSay) {
    const auto file = testing_paths::SourceFolder() / "front" / "com" / "vicenter.idl";
    const std::string made = Made();
    if (std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr) std::ofstream(file, std::ios::binary) << made;
    std::ifstream in(file, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), made);
}

TEST(TypeLibrary, GivesEachNameOneId) {
    std::set<std::string> names;
    for (std::string name : MemberNames()) {
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    // What hosts have been compiled against.
    EXPECT_EQ(IdOf("ShowVICenter"), 1);
    EXPECT_EQ(IdOf("mTransMode"), 2);
    EXPECT_EQ(IdOf("Encode"), 18);
}

}  // namespace
}  // namespace vicenter::front
