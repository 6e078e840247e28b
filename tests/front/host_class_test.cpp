// Classes made of C functions: what the component sees of them, and what they see of it.

#include <map>
#include <string>

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

struct Recorder {
    std::vector<std::string> calls;
    int released = 0;
    vic_object* answer = nullptr;
};

std::string TextOf(const vic_variant& variant) {
    switch (variant.type) {
        case VIC_TEXT:
            return std::string(variant.value.text.data, variant.value.text.length);
        case VIC_INT32:
            return std::to_string(variant.value.int32);
        case VIC_BYREF:
            return "&" + TextOf(*variant.value.reference);
        default:
            return "type " + std::to_string(variant.type);
    }
}

vic_status CreateRecorder(void* data, void** instance) {
    *instance = data;
    return 0;
}

vic_status InvokeRecorder(void* instance, vic_kind kind, const char* name, vic_variant* arguments,
                          size_t count, vic_variant* result) {
    auto* recorder = static_cast<Recorder*>(instance);
    std::string call = std::string(kind == VIC_PUT ? "put " : kind == VIC_GET ? "get " : "call ") + name;
    for (size_t i = 0; i < count; ++i)
        call += " " + TextOf(arguments[i]);
    recorder->calls.push_back(call);
    const std::string member = name;
    if (member == "Echo" && count == 1) return vic_copy(result, &arguments[0]);
    if (member == "Double") {
        vic_variant* variable = arguments[0].value.reference;
        if (arguments[0].type != VIC_BYREF) return vic_raise(5, "by reference only", nullptr);
        variable->value.int32 *= 2;
        return 0;
    }
    if (member == "Name" && count != 0 && arguments[0].type == VIC_BYREF)
        return vic_set_text(arguments[0].value.reference, "凭证", static_cast<size_t>(-1));
    if (member == "Fail") return vic_raise(1004, "the host refused", "Host");
    if (member == "FailBare") return 76;
    if (member == "FailInside") {
        vic_object* object = nullptr;
        return vic_create("No.Such", &object);
    }
    if (member == "Object") return vic_set_object(result, recorder->answer);
    return 438;
}

void ReleaseRecorder(void* instance) {
    ++static_cast<Recorder*>(instance)->released;
}

vic_int32 HasRecorderMember(void*, const char* name) {
    return std::string(name) == "Echo" ? 1 : 0;
}

class HostClass : public FrontTest {
  protected:
    HostClass() {
        definition_.size = sizeof definition_;
        definition_.type_name = "Recorder";
        definition_.data = &recorder_;
        definition_.create = CreateRecorder;
        definition_.invoke = InvokeRecorder;
        definition_.release = ReleaseRecorder;
        EXPECT_EQ(vic_register_class("Test.Recorder", &definition_), 0);
    }

    Recorder recorder_;
    vic_class definition_{};
};

TEST_F(HostClass, IsCreatedCalledAndReleased) {
    {
        Handle object("TEST.recorder");
        EXPECT_EQ(object.TextOf("Echo", {Value::Text("凭证")}), "凭证");
        Value name;
        ASSERT_EQ(vic_type_name(object.object, &name.variant), 0);
        EXPECT_EQ(name.AsText(), "Recorder");
        std::size_t count = 0;
        ASSERT_EQ(vic_live_objects(&count), 0);
        EXPECT_EQ(count, 2U);  // the handle and the instance
        EXPECT_EQ(recorder_.released, 0);
    }
    EXPECT_EQ(recorder_.released, 1);
    EXPECT_EQ(recorder_.calls, std::vector<std::string>{"call Echo 凭证"});
}

TEST_F(HostClass, SeesTheKindOfEachCall) {
    Handle object("Test.Recorder");
    Value result;
    EXPECT_EQ(vic_get(object.object, "Size", &result.variant), 438);
    const vic_variant value = Value::Int(3);
    EXPECT_EQ(vic_put(object.object, "Size", &value), 438);
    EXPECT_EQ(object.Call("Size"), 438);
    EXPECT_EQ(recorder_.calls, (std::vector<std::string>{"get Size", "put Size 3", "call Size"}));
}

TEST_F(HostClass, ChangesVariablesPassedByReference) {
    Handle object("Test.Recorder");
    Value variable;
    variable.variant = Value::Int(21);
    EXPECT_EQ(object.Call("Double", {Value::Reference(&variable.variant)}), 0);
    EXPECT_EQ(variable.variant.value.int32, 42);
    EXPECT_EQ(object.Call("Name", {Value::Reference(&variable.variant)}), 0);
    EXPECT_EQ(variable.AsText(), "凭证");
    EXPECT_EQ(object.Call("Double", {Value::Int(1)}), 5);
    EXPECT_STREQ(vic_error_description(), "by reference only");
    EXPECT_EQ(recorder_.calls.front(), "call Double &21");
}

TEST_F(HostClass, RaisesItsOwnErrors) {
    Handle object("Test.Recorder");
    EXPECT_EQ(object.Call("Fail"), 1004);
    EXPECT_STREQ(vic_error_description(), "the host refused");
    EXPECT_STREQ(vic_error_source(), "Host");
    EXPECT_EQ(object.Call("FailBare"), 76);
    EXPECT_STREQ(vic_error_description(), "Path not found");
    EXPECT_STREQ(vic_error_source(), "Recorder");
    EXPECT_EQ(object.Call("FailInside"), 429);
    EXPECT_STREQ(vic_error_description(), "ActiveX component can't create object");
}

TEST_F(HostClass, AnErrorLeavesVariablesAndResultAlone) {
    Handle object("Test.Recorder");
    Value variable;
    variable.variant = Value::Int(21);
    Value result;
    const vic_variant arguments[] = {Value::Reference(&variable.variant)};
    EXPECT_EQ(vic_call(object.object, "Fail", arguments, 1, &result.variant), 1004);
    EXPECT_EQ(variable.variant.value.int32, 21);
    EXPECT_EQ(result.variant.type, VIC_EMPTY);
}

TEST_F(HostClass, AnswersWhichMembersExist) {
    vic_int32 answer = 0;
    {
        Handle object("Test.Recorder");
        ASSERT_EQ(vic_has_member(object.object, "Anything", &answer), 0);
        EXPECT_EQ(answer, 1);
    }
    definition_.has_member = HasRecorderMember;
    ASSERT_EQ(vic_register_class("Test.Recorder", &definition_), 0);
    Handle object("Test.Recorder");
    ASSERT_EQ(vic_has_member(object.object, "Anything", &answer), 0);
    EXPECT_EQ(answer, 0);
    ASSERT_EQ(vic_has_member(object.object, "Echo", &answer), 0);
    EXPECT_EQ(answer, 1);
}

TEST_F(HostClass, GivesObjectsOfItsOwn) {
    Recorder inner;
    ASSERT_EQ(vic_new_object(&definition_, &inner, &recorder_.answer), 0);
    {
        Handle object("Test.Recorder");
        Value result;
        EXPECT_EQ(object.Call("Object", {}, &result), 0);
        ASSERT_EQ(result.variant.type, VIC_OBJECT);
        vic_int32 same = 0;
        ASSERT_EQ(vic_same(result.variant.value.object, recorder_.answer, &same), 0);
        EXPECT_EQ(same, 1);
    }
    EXPECT_EQ(inner.released, 0);
    ASSERT_EQ(vic_release(recorder_.answer), 0);
    EXPECT_EQ(inner.released, 1);
}

TEST_F(HostClass, CanBeUnregistered) {
    ASSERT_EQ(vic_unregister_class("Test.Recorder"), 0);
    vic_object* object = nullptr;
    EXPECT_EQ(vic_create("Test.Recorder", &object), 429);
}

TEST_F(HostClass, IncompleteDefinitionsAreRefused) {
    EXPECT_EQ(vic_register_class("", &definition_), 5);
    EXPECT_EQ(vic_register_class(nullptr, &definition_), 5);
    EXPECT_EQ(vic_register_class("Test.Other", nullptr), 5);
    vic_class other = definition_;
    other.size = 8;
    EXPECT_EQ(vic_register_class("Test.Other", &other), 5);
    other = definition_;
    other.invoke = nullptr;
    EXPECT_EQ(vic_register_class("Test.Other", &other), 5);
    other = definition_;
    other.type_name = nullptr;
    EXPECT_EQ(vic_register_class("Test.Other", &other), 5);
    other = definition_;
    other.create = nullptr;
    ASSERT_EQ(vic_register_class("Test.Other", &other), 0);
    vic_object* object = nullptr;
    EXPECT_EQ(vic_create("Test.Other", &object), 429);
}

TEST_F(HostClass, ShutdownForgetsTheHostsClasses) {
    ASSERT_EQ(vic_shutdown(), 0);
    vic_object* object = nullptr;
    EXPECT_EQ(vic_create("Test.Recorder", &object), 429);
}

vic_status InvokeShutdown(void*, vic_kind, const char*, vic_variant*, size_t, vic_variant*) {
    return vic_shutdown();
}

TEST_F(HostClass, CannotShutDownWhileItIsCalled) {
    definition_.invoke = InvokeShutdown;
    ASSERT_EQ(vic_register_class("Test.Recorder", &definition_), 0);
    Handle object("Test.Recorder");
    EXPECT_EQ(object.Call("Now"), 5);
    EXPECT_STREQ(vic_error_description(),
                 "The template center cannot be shut down while a call is under way.");
}

// A dictionary of the host's own, for the codec.
vic_status InvokeDictionary(void*, vic_kind, const char* name, vic_variant* arguments, size_t count,
                            vic_variant* result) {
    if (std::string(name) == "Keys") {
        const vic_status status = vic_set_array(result, 2);
        if (status != 0) return status;
        vic_set_text(&result->value.array.items[0], "甲", static_cast<size_t>(-1));
        vic_set_text(&result->value.array.items[1], "乙", static_cast<size_t>(-1));
        return 0;
    }
    if (std::string(name) == "Item" && count == 1) return vic_copy(result, &arguments[0]);
    return 438;
}

TEST_F(HostClass, AHostsDictionaryIsEncoded) {
    definition_.type_name = "Dictionary";
    definition_.invoke = InvokeDictionary;
    ASSERT_EQ(vic_register_class("Test.Dictionary", &definition_), 0);
    Handle dictionary("Test.Dictionary");
    Handle json("VelaVICenter.VbsJson");
    EXPECT_EQ(json.TextOf("Encode", {Value::Object(dictionary.object)}), R"({"甲":"甲","乙":"乙"})");
}

// The component asks the host's property manager, as it does for every statement.
vic_status InvokeShareProps(void* instance, vic_kind, const char* name, vic_variant* arguments, size_t count,
                            vic_variant* result) {
    InvokeRecorder(instance, VIC_CALL, name, arguments, count, result);
    return vic_set_text(result, "UserID=7;ConnectString={Provider=Nobody};", static_cast<size_t>(-1));
}

TEST_F(HostClass, TheComponentFindsTheHostsComponents) {
    definition_.invoke = InvokeShareProps;
    ASSERT_EQ(vic_register_class("VelaPropsMgr.ShareProps", &definition_), 0);
    Handle data("VelaVICenter.clsVIData");
    Value rows;
    EXPECT_EQ(data.Call("GetRs", {Value::Text("select 1")}, &rows), 0);
    EXPECT_EQ(rows.variant.type, VIC_OBJECT);
    EXPECT_EQ(rows.variant.value.object, nullptr);  // no such provider: no recordset, silently
    ASSERT_EQ(recorder_.calls.size(), 1U);
    EXPECT_EQ(recorder_.calls[0].substr(0, 17), "call GetProperty ");
    EXPECT_EQ(recorder_.calls[0].substr(recorder_.calls[0].rfind(' ')), " PropsString");
}

vic_int32 RememberMessage(void* data, const char* text, vic_int32 buttons, vic_int32 icon,
                          const char* title) {
    static_cast<Recorder*>(data)->calls.push_back(std::string(title) + "|" + text + "|" +
                                                  std::to_string(buttons) + "|" + std::to_string(icon));
    return 1;
}

TEST_F(HostClass, WhatAnsweredNoObjectTellsWhy) {
    Recorder messages;
    ASSERT_EQ(vic_set_message_handler(RememberMessage, &messages), 0);
    Handle data("VelaVICenter.clsVIData");
    const char* const missing = "宿主没有提供 VelaPropsMgr.ShareProps，无法取得账套的连接信息。";
    Value rows;
    EXPECT_EQ(data.Call("GetRs", {Value::Text("select 1")}, &rows), 0);
    EXPECT_EQ(rows.variant.value.object, nullptr);
    EXPECT_EQ(vic_error_number(), 429);
    EXPECT_STREQ(vic_error_description(), missing);
    EXPECT_STREQ(vic_error_source(), "VelaPropsMgr.ShareProps");

    EXPECT_EQ(data.Call("IsExecuteSql", {Value::Text("select 1")}, &rows), 0);
    EXPECT_EQ(rows.variant.value.boolean, 0);
    ASSERT_EQ(messages.calls.size(), 1U);
    EXPECT_EQ(messages.calls[0], std::string("信息提示|") + missing + "|0|64");

    definition_.invoke = InvokeShareProps;
    ASSERT_EQ(vic_register_class("VelaPropsMgr.ShareProps", &definition_), 0);
    EXPECT_EQ(data.Call("GetRs", {Value::Text("select 1")}, &rows), 0);
    EXPECT_EQ(vic_error_number(), 3706);
    ASSERT_EQ(vic_set_message_handler(nullptr, nullptr), 0);
}

TEST_F(HostClass, AFunctionOfTheHostAnswersTheMessageBoxes) {
    Recorder messages;
    ASSERT_EQ(vic_set_message_handler(RememberMessage, &messages), 0);
    definition_.invoke = InvokeShareProps;
    ASSERT_EQ(vic_register_class("VelaPropsMgr.ShareProps", &definition_), 0);
    Handle data("VelaVICenter.clsVIData");
    Value done;
    EXPECT_EQ(data.Call("IsExecuteSql", {Value::Text("select 1")}, &done), 0);
    EXPECT_EQ(done.variant.value.boolean, 0);
    ASSERT_EQ(messages.calls.size(), 1U);
    EXPECT_EQ(messages.calls[0], "信息提示|Provider cannot be found. It may not be properly installed.|0|64");
    ASSERT_EQ(vic_set_message_handler(nullptr, nullptr), 0);
    EXPECT_EQ(data.Call("IsExecuteSql", {Value::Text("select 1")}, &done), 0);
    EXPECT_EQ(messages.calls.size(), 1U);
}

}  // namespace
}  // namespace vicenter::front
