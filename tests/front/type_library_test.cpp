// front/com/vicenter.idl, from which the type library is made, and the header for early-bound hosts in C++
// say of every public member what the member tables say, with the ids that such hosts are compiled against.
// VICENTER_UPDATE_GOLDENS=1 in the environment writes them anew, to be read.

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "automation/member_table.h"
#include "entry/aplication.h"
#include "front/com/member_ids.h"
#include "front/host_registrar.h"
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

int NumberOf(const MemberInfo& member) {
    return member.isDefault ? 0 : IdOf(member.name);
}

void Declare(std::ostream& out, const MemberInfo& member) {
    const std::string id = "id(" + std::to_string(NumberOf(member)) + ")";
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

struct PublicType {
    Names names;
    std::vector<MemberInfo> members;
};

template <class T>
PublicType Described(const Names& names) {
    PublicType type{names, {}};
    for (const auto& member : T::Members().All())
        type.members.push_back(member.info);
    return type;
}

std::vector<PublicType> PublicTypes() {
    return {
        Described<entry::aplication>({"aplication", "Voucher Template Center",
                                      "9867BA6C-8315-4A8B-AE17-B4ED69D41C32",
                                      "CB676E64-08A3-419D-A549-611B88F63FD6"}),
        Described<store::clsVIData>({"clsVIData", "Voucher Template Center data",
                                     "2C1010B2-F19E-4383-B11E-07158318FDB9",
                                     "E057ECA1-F300-496A-AF3A-BDD28D0FDF35"}),
        Described<support::VbsJson>({"VbsJson", "Voucher Template Center JSON",
                                     "002A486B-E05E-4582-9369-D11F49445D69",
                                     "DAF99C00-B329-41C3-B7F8-6C02791E0D6C"}),
        Described<support::StringBuilder>({"StringBuilder", "Voucher Template Center string builder",
                                           "E946C532-8754-499C-A35B-10927A784918",
                                           "956C88A9-D994-4FCF-A8B3-4A6DB0955360"}),
        Described<HostRegistrar>({"Host", "Voucher Template Center host",
                                  "656D0DE9-B0D6-42AD-ABE4-217BF0F645ED",
                                  "FA5C40F4-4231-4F78-9BA2-53C7CC5C590D"}),
    };
}

std::string MadeLibrary() {
    std::ostringstream out;
    out << "// Generated from the member tables by tests/front/type_library_test.cpp.\n"
        << "#ifdef __WIDL__\ninterface IUnknown;\ninterface IDispatch;\ntypedef struct tagVARIANT VARIANT;\n"
        << "#endif\n\n"
        << "[uuid(FE125752-6EC8-4741-9BFB-F7486F0ACFD9), version(1.0), helpstring(\"Voucher Template Center "
           "1.0\")]\n"
        << "library VelaVICenter\n{\n    importlib(\"stdole2.tlb\");\n";
    for (const auto& [names, members] : PublicTypes()) {
        out << "\n    [uuid(" << names.interfaceId << "), helpstring(\"" << names.text << "\")]\n"
            << "    dispinterface _" << names.name << "\n    {\n    properties:\n    methods:\n";
        for (const MemberInfo& member : members)
            Declare(out, member);
        out << "    };\n\n    [uuid(" << names.classId << "), helpstring(\"" << names.text << "\")]\n"
            << "    coclass " << names.name << "\n    {\n        [default] dispinterface _" << names.name
            << ";\n    };\n";
    }
    out << "};\n";
    return out.str();
}

// {0x…, 0x…, 0x…, {0x…, …}} of a number's text.
std::string Initializer(const std::string& number) {
    std::string digits;
    std::copy_if(number.begin(), number.end(), std::back_inserter(digits), [](char c) { return c != '-'; });
    std::string text =
        "{0x" + digits.substr(0, 8) + ", 0x" + digits.substr(8, 4) + ", 0x" + digits.substr(12, 4) + ", {";
    for (std::size_t i = 16; i < digits.size(); i += 2)
        text += (i == 16 ? "0x" : ", 0x") + digits.substr(i, 2);
    return text + "}}";
}

std::string MadeHeader() {
    std::ostringstream out;
    out << "// Generated from the member tables by tests/front/type_library_test.cpp.\n"
        << "//\n"
        << "// For hosts in C++ that are bound early: the classes of the COM server, the interface that each "
           "is asked for\n"
        << "// (IDispatch under a name of its own) and the numbers of its members, which never change.\n"
        << "#pragma once\n\n// clang-format off\n#include <windows.h>\n#include <oaidl.h>\n\nnamespace "
           "VelaVICenter {\n";
    for (const auto& [names, members] : PublicTypes()) {
        out << "\nstruct " << names.name
            << " {\n    static constexpr CLSID kClass = " << Initializer(names.classId)
            << ";\n    static constexpr IID kInterface = " << Initializer(names.interfaceId)
            << ";\n    enum Member : DISPID {\n";
        for (const MemberInfo& member : members)
            out << "        " << member.name << " = " << NumberOf(member) << ",\n";
        out << "    };\n};\n";
    }
    out << "\n}  // namespace VelaVICenter\n";
    return out.str();
}

void ExpectInFile(const char* name, const std::string& made) {
    const auto file = testing_paths::SourceFolder() / "front" / name;
    if (std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr) std::ofstream(file, std::ios::binary) << made;
    std::ifstream in(file, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), made);
}

TEST(TypeLibrary, SaysWhatTheMemberTablesSay) {
    ExpectInFile("com/vicenter.idl", MadeLibrary());
    ExpectInFile("include/vicenter/vicenter_com.h", MadeHeader());
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
    EXPECT_EQ(IdOf("Register"), 29);
}

}  // namespace
}  // namespace vicenter::front
