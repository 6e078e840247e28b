#pragma once

// Short forms for tests that use the library as a host does: only its C interface.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "vicenter/vicenter.h"

namespace vicenter::front {

// A variant that gives back what it owns.
class Value {
  public:
    Value() = default;
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { vic_clear(&variant); }

    static vic_variant Int(vic_int32 number) {
        vic_variant result{};
        result.type = VIC_INT32;
        result.value.int32 = number;
        return result;
    }
    static vic_variant Number(double number) {
        vic_variant result{};
        result.type = VIC_DOUBLE;
        result.value.number = number;
        return result;
    }
    // Refers to the text.
    static vic_variant Text(std::string_view text) {
        vic_variant result{};
        result.type = VIC_TEXT;
        result.value.text.data = text.data();
        result.value.text.length = text.size();
        return result;
    }
    static vic_variant Object(vic_object* object) {
        vic_variant result{};
        result.type = VIC_OBJECT;
        result.value.object = object;
        return result;
    }
    static vic_variant Reference(vic_variant* variable) {
        vic_variant result{};
        result.type = VIC_BYREF;
        result.value.reference = variable;
        return result;
    }

    std::string AsText() const {
        if (variant.type != VIC_TEXT && variant.type != VIC_DECIMAL)
            return "type " + std::to_string(variant.type);
        EXPECT_EQ(variant.value.text.data[variant.value.text.length], '\0');
        return {variant.value.text.data, variant.value.text.length};
    }

    vic_variant variant{};
};

// An object made by ProgID.
class Handle {
  public:
    explicit Handle(const char* progId) { EXPECT_EQ(vic_create(progId, &object), 0) << progId; }
    explicit Handle(vic_object* given) : object(given) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { vic_release(object); }

    vic_status Call(const char* name, const std::vector<vic_variant>& arguments = {},
                    Value* result = nullptr) {
        if (result != nullptr) vic_clear(&result->variant);
        return vic_call(object, name, arguments.data(), arguments.size(),
                        result != nullptr ? &result->variant : nullptr);
    }
    std::string TextOf(const char* name, const std::vector<vic_variant>& arguments = {}) {
        Value result;
        const vic_status status = Call(name, arguments, &result);
        return status == 0 ? result.AsText() : "error " + std::to_string(status);
    }

    vic_object* object = nullptr;
};

// Ends the session after each test; nothing may be held then.
class FrontTest : public ::testing::Test {
  protected:
    void TearDown() override {
        std::size_t count = 0;
        EXPECT_EQ(vic_live_objects(&count), 0);
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(vic_shutdown(), 0) << vic_error_description();
    }
};

}  // namespace vicenter::front
