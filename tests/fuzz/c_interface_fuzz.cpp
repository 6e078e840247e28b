// Fuzz target of the C interface: the bytes choose calls, on handles that live, with arguments of every type,
// missing objects and texts that are no UTF-8. Every call answers a status; what is given back leaves
// nothing.
//
// Left out is what reaches beyond the process: files (the file system object, workbooks) and windows.

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

#include "tests/fuzz/choices.h"
#include "vicenter/vicenter.h"

namespace {

using vicenter::fuzz::Choices;

const char* const kProgIds[] = {"Scripting.Dictionary",
                                "VelaVICenter.VbsJson",
                                "VelaVICenter.StringBuilder",
                                "VelaVICenter.clsVIData",
                                "VelaVICenter.aplication",
                                "ADODB.Connection",
                                "No.Such",
                                ""};
const char* const kMembers[] = {
    "Add",   "Item",   "Exists",      "Remove",       "RemoveAll", "Keys",           "Items",
    "Count", "Key",    "CompareMode", "Decode",       "Encode",    "Append",         "ToString",
    "Clear", "Length", "mTransMode",  "IsExecuteSql", "GetRs",     "MergeItemsInfo", "CheckErrorCell",
    "State", "Errors", "Execute",     "Close",        "",          "没有",           "item"};
const char* const kTexts[] = {"",
                              "a",
                              "键",
                              "{\"a\":[1,2,{\"b\":null}]}",
                              "[1,[2,[3]]]",
                              "\xff\xfe",
                              "12.50",
                              "2026-01-05",
                              "1e400",
                              "select 1",
                              "-2147483648"};

class Script {
  public:
    explicit Script(Choices& choices) : choices_(choices) {}
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;
    ~Script() {
        for (vic_variant& variant : variants_)
            vic_clear(&variant);
        for (vic_object* object : objects_)
            GiveBack(object);
    }

    void Run() {
        constexpr int kMostSteps = 200;
        for (int step = 0; step < kMostSteps && choices_.Any(); ++step)
            Step();
    }

  private:
    vic_object* Object() {
        if (objects_.empty() || choices_.Below(16) == 0) return nullptr;
        return objects_[choices_.Below(objects_.size())];
    }
    vic_variant& Variant() {
        if (variants_.size() < 8 || choices_.Below(8) == 0) variants_.push_back(vic_variant{});
        return variants_[choices_.Below(variants_.size())];
    }

    // Dictionaries that hold themselves or each other are not given back while they do.
    static void GiveBack(vic_object* object) {
        vic_invoke(object, VIC_CALL, "RemoveAll", nullptr, nullptr, 0, nullptr);
        vic_release(object);
    }

    // By hand, referring to what outlives the call.
    vic_variant Argument(int depth = 0) {
        vic_variant variant{};
        switch (choices_.Below(14)) {
            case 0:
                variant.type = VIC_NULL;
                break;
            case 1:
                variant.type = VIC_BOOLEAN;
                variant.value.boolean = choices_.Coin() ? -1 : 0;
                break;
            case 2:
                variant.type = VIC_INT16;
                variant.value.int16 = static_cast<vic_int16>(choices_.Below(65536));
                break;
            case 3:
                variant.type = VIC_INT32;
                variant.value.int32 = static_cast<vic_int32>(choices_.Below(5)) - 2;
                break;
            case 4:
                variant.type = VIC_INT64;
                variant.value.int64 = choices_.Coin() ? 9223372036854775807LL : -1;
                break;
            case 5:
                variant.type = VIC_DOUBLE;
                variant.value.number =
                    choices_.Coin() ? 1e308 : 0.1 * static_cast<double>(choices_.Below(256));
                break;
            case 6:
                variant.type = VIC_DATE;
                variant.value.number = static_cast<double>(choices_.Below(65536)) * 50 - 700000;
                break;
            case 7:
                variant.type = VIC_OBJECT;
                variant.value.object = Object();
                break;
            case 8:
                variant.type = VIC_ERROR;
                variant.value.int32 = choices_.Coin() ? VIC_MISSING : 5;
                break;
            case 9:
                variant.type = VIC_BYREF;
                variant.value.reference = choices_.Below(8) == 0 ? nullptr : &Variant();
                break;
            case 10:
                if (depth < 3) {
                    variant.type = VIC_ARRAY;
                    arrays_.emplace_back();
                    std::vector<vic_variant>& items = arrays_.back();
                    for (std::size_t count = choices_.Below(4); count > 0; --count)
                        items.push_back(Argument(depth + 1));
                    variant.value.array = {items.data(), items.size()};
                }
                break;
            case 11:
                variant.type = static_cast<vic_int32>(choices_.Below(256));  // mostly no type at all
                break;
            default:
                variant.type = choices_.Below(8) == 0 ? VIC_DECIMAL : VIC_TEXT;
                texts_.push_back(choices_.Coin() ? std::string(choices_.Of(kTexts)) : choices_.Bytes(24));
                variant.value.text = {texts_.back().data(), texts_.back().size()};
                break;
        }
        return variant;
    }

    void Step() {
        switch (choices_.Below(16)) {
            case 0:
            case 1: {
                vic_object* object = nullptr;
                if (vic_create(choices_.Of(kProgIds), &object) == 0 && object != nullptr)
                    objects_.push_back(object);
                break;
            }
            case 2:
                if (!objects_.empty()) {
                    const std::size_t place = choices_.Below(objects_.size());
                    GiveBack(objects_[place]);
                    objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(place));
                }
                break;
            case 3: {
                vic_object* object = Object();
                if (object != nullptr && objects_.size() < 64 && vic_retain(object) == 0)
                    objects_.push_back(object);
                break;
            }
            case 4:
                vic_clear(&Variant());
                break;
            case 5: {
                const vic_variant from = Argument();
                vic_copy(&Variant(), &from);
                break;
            }
            case 6: {
                const vic_variant from = Argument();
                vic_convert(&from, static_cast<vic_type>(choices_.Below(16)), &Variant());
                break;
            }
            case 7:
                vic_set_array(&Variant(), choices_.Below(5));
                break;
            case 8:
                vic_set_object(&Variant(), Object());
                break;
            case 9: {
                const std::string digits = choices_.Bytes(50);
                vic_set_decimal(&Variant(), digits.c_str());
                break;
            }
            case 10: {
                vic_int32 answer = 0;
                vic_has_member(Object(), choices_.Of(kMembers), &answer);
                vic_same(Object(), Object(), &answer);
                vic_variant name{};
                if (vic_type_name(Object(), &name) == 0) variants_.push_back(name);
                break;
            }
            default:
                Invoke();
                break;
        }
        texts_.clear();
        arrays_.clear();
    }

    void Invoke() {
        std::vector<vic_variant> arguments;
        for (std::size_t count = choices_.Below(4); count > 0; --count)
            arguments.push_back(Argument());
        vic_variant result{};
        const std::string own = choices_.Bytes(8);
        const char* name = choices_.Below(12) == 0 ? own.c_str() : choices_.Of(kMembers);
        const vic_status status = vic_invoke(Object(), static_cast<vic_kind>(choices_.Below(4)), name,
                                             arguments.data(), nullptr, arguments.size(), &result);
        if (status != 0 && (vic_error_number() != status || vic_error_description() == nullptr)) std::abort();
        if (status == 0) variants_.push_back(result);
    }

    Choices& choices_;
    std::vector<vic_object*> objects_;
    std::deque<vic_variant> variants_;
    std::deque<std::string> texts_;
    std::deque<std::vector<vic_variant>> arrays_;
};

vic_int32 Silent(void*, const char*, vic_int32, vic_int32, const char*) {
    return 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const vic_status silent = vic_set_message_handler(Silent, nullptr);
    if (silent != 0) std::abort();
    Choices choices(data, size);
    Script(choices).Run();
    return 0;
}
