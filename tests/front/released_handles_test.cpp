// A handle that has been given back stays known as such.

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

class ReleasedHandles : public FrontTest {
  protected:
    static vic_object* NewDictionary() {
        vic_object* object = nullptr;
        EXPECT_EQ(vic_create("Scripting.Dictionary", &object), 0);
        return object;
    }
    static vic_object* Released() {
        vic_object* object = NewDictionary();
        EXPECT_EQ(vic_release(object), 0);
        return object;
    }
};

TEST_F(ReleasedHandles, ASecondReleaseIsAnError) {
    vic_object* object = Released();
    EXPECT_EQ(vic_release(object), VIC_ERROR_RELEASED);
    EXPECT_STREQ(vic_error_description(), "The object had been released before");
    EXPECT_EQ(vic_release(object), VIC_ERROR_RELEASED);
}

TEST_F(ReleasedHandles, EveryShareIsGivenBackOnce) {
    vic_object* object = NewDictionary();
    ASSERT_EQ(vic_retain(object), 0);
    EXPECT_EQ(vic_release(object), 0);
    EXPECT_EQ(vic_release(object), 0);
    EXPECT_EQ(vic_release(object), VIC_ERROR_RELEASED);
}

TEST_F(ReleasedHandles, EveryUseIsAnError) {
    vic_object* object = Released();
    Handle other("Scripting.Dictionary");
    Value result;
    vic_int32 answer = 0;
    EXPECT_EQ(vic_retain(object), VIC_ERROR_RELEASED);
    EXPECT_EQ(vic_type_name(object, &result.variant), VIC_ERROR_RELEASED);
    EXPECT_EQ(vic_has_member(object, "Count", &answer), VIC_ERROR_RELEASED);
    EXPECT_EQ(vic_same(object, other.object, &answer), VIC_ERROR_RELEASED);
    EXPECT_EQ(vic_same(other.object, object, &answer), VIC_ERROR_RELEASED);
    EXPECT_EQ(vic_get(object, "Count", &result.variant), VIC_ERROR_RELEASED);
    EXPECT_STREQ(vic_error_description(), "The object has been released");
    const vic_variant value = Value::Int(1);
    EXPECT_EQ(vic_put(object, "CompareMode", &value), VIC_ERROR_RELEASED);
    EXPECT_EQ(vic_set_object(&result.variant, object), VIC_ERROR_RELEASED);
    EXPECT_EQ(result.variant.type, VIC_EMPTY);
    EXPECT_EQ(other.Call("Add", {Value::Int(1), Value::Object(object)}), VIC_ERROR_RELEASED);
}

TEST_F(ReleasedHandles, DoNotAnswerForTheObjectThatCameAfterThem) {
    vic_object* old = Released();
    for (int i = 0; i < 1000; ++i) {
        Handle next("Scripting.Dictionary");
        ASSERT_EQ(vic_release(old), VIC_ERROR_RELEASED);
        Value count;
        ASSERT_EQ(next.Call("Count", {}, &count), 0);
    }
}

TEST_F(ReleasedHandles, AVariantThatIsClearedTwiceIsAnError) {
    Value first;
    Handle object("Scripting.Dictionary");
    ASSERT_EQ(vic_set_object(&first.variant, object.object), 0);
    Value copied;  // as a host would that copies the structure
    copied.variant = first.variant;
    ASSERT_EQ(vic_clear(&first.variant), 0);
    ASSERT_EQ(vic_release(object.object), 0);
    object.object = nullptr;
    EXPECT_EQ(vic_clear(&copied.variant), VIC_ERROR_RELEASED);
    EXPECT_EQ(copied.variant.type, VIC_EMPTY);
}

TEST_F(ReleasedHandles, WhatWasNeverAHandleIsAnError) {
    vic_variant somewhere{};
    auto* invented = reinterpret_cast<vic_object*>(&somewhere);
    EXPECT_EQ(vic_release(invented), VIC_ERROR_RELEASED);
    Value count;
    EXPECT_EQ(vic_get(invented, "Count", &count.variant), VIC_ERROR_RELEASED);
}

}  // namespace
}  // namespace vicenter::front
