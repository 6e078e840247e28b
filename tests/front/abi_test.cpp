// What hosts were compiled against stays as it is: exported symbols, their version, sizes and numbers.

#include <array>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/paths/source_folder.h"
#include "vicenter/vicenter.h"

namespace {

#if defined(__LP64__)
static_assert(sizeof(vic_variant) == 24);
static_assert(offsetof(vic_variant, flags) == 4);
static_assert(offsetof(vic_variant, value) == 8);
static_assert(sizeof(vic_text) == 16);
static_assert(sizeof(vic_array) == 16);
static_assert(sizeof(vic_class) == 56);
static_assert(offsetof(vic_class, type_name) == 8);
static_assert(offsetof(vic_class, data) == 16);
static_assert(offsetof(vic_class, create) == 24);
static_assert(offsetof(vic_class, invoke) == 32);
static_assert(offsetof(vic_class, has_member) == 40);
static_assert(offsetof(vic_class, release) == 48);
#endif
static_assert(sizeof(vic_int16) == 2 && sizeof(vic_int32) == 4 && sizeof(vic_int64) == 8);
static_assert(VIC_EMPTY == 0 && VIC_NULL == 1 && VIC_BOOLEAN == 2 && VIC_INT16 == 3 && VIC_INT32 == 4);
static_assert(VIC_INT64 == 5 && VIC_DOUBLE == 6 && VIC_DECIMAL == 7 && VIC_DATE == 8 && VIC_TEXT == 9);
static_assert(VIC_ARRAY == 10 && VIC_OBJECT == 11 && VIC_ERROR == 12 && VIC_BYREF == 64 && VIC_OWNED == 1);
static_assert(VIC_GET == 0 && VIC_PUT == 1 && VIC_CALL == 2);
static_assert(VIC_ERROR_WRONG_THREAD == static_cast<int>(0x8001010E));
static_assert(VIC_MISSING == static_cast<int>(0x80020004));

// What a command prints, line by line.
std::vector<std::string> LinesOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> lines;
    std::array<char, 4096> piece{};
    std::string text;
    while (pipe && std::fgets(piece.data(), piece.size(), pipe.get()) != nullptr) {
        text += piece.data();
        if (text.back() != '\n') continue;
        lines.push_back(std::exchange(text, {}));
    }
    return lines;
}

// "name@@VERSION" of every symbol that the library defines for others.
std::set<std::string> ExportedSymbols() {
    std::set<std::string> symbols;
    for (std::string text : LinesOf("nm -D --defined-only --with-symbol-versions '" VICENTER_LIBRARY "'")) {
        while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
            text.pop_back();
        const std::string kind = text.size() > 18 ? text.substr(17, 1) : "";
        if (kind == "A") continue;  // the version's own mark
        symbols.insert(text.substr(text.rfind(' ') + 1));
    }
    return symbols;
}

TEST(Abi, ExportsExactlyTheSymbolsOnRecord) {
    std::set<std::string> recorded;
    std::ifstream file(vicenter::testing_paths::SourceFolder() / "tests/front/exported_symbols.txt");
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') recorded.insert(line);
    }
    ASSERT_FALSE(recorded.empty());
    EXPECT_EQ(ExportedSymbols(), recorded);
}

#if VICENTER_FRONT_HAS_WINDOWS
TEST(Abi, HoldsTheComponentAndNothingOfTheReferenceHost) {
    int component = 0;
    int windows = 0;
    for (const std::string& symbol : LinesOf("nm --demangle '" VICENTER_LIBRARY "'")) {
        component += symbol.find("vicenter::center::") != std::string::npos ? 1 : 0;
        windows += symbol.find("vicenter::ui::") != std::string::npos ? 1 : 0;
        EXPECT_EQ(symbol.find("vicenter::host::"), std::string::npos) << symbol;
    }
    EXPECT_GT(component, 100);
    EXPECT_GT(windows, 100);
}
#endif

// A foreign host brings its own rights, logs and look-ups; without them the component must be told that there
// are none, not find another host's.
TEST(Abi, KnowsNoClassOfTheReferenceHost) {
    std::ifstream file(vicenter::testing_paths::SourceFolder() / "host/components/register.cpp");
    const std::string source{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::regex entry("\\{\"([A-Za-z0-9_.]+)\", Make");
    int classes = 0;
    for (std::sregex_iterator at(source.begin(), source.end(), entry), end; at != end; ++at, ++classes) {
        vic_object* object = nullptr;
        EXPECT_EQ(vic_create((*at)[1].str().c_str(), &object), 429) << (*at)[1];
        vic_release(object);
    }
    EXPECT_GE(classes, 13);
}

TEST(Abi, TellsItsVersions) {
    EXPECT_EQ(vic_abi_version(), VIC_ABI_VERSION);
    EXPECT_STREQ(vic_version(), "1.0.0");
}

}  // namespace
