// The exported functions. Each enters the session, does its work on the objects of the inside and leaves no
// exception behind.

#include <cstring>
#include <string>
#include <vector>

#include "automation/class_registry.h"
#include "automation/object.h"
#include "entry/kept_error.h"
#include "front/guarded.h"
#include "front/handles.h"
#include "front/host_class.h"
#include "front/host_things.h"
#include "front/include/vicenter/vicenter.h"
#include "front/message_handler.h"
#include "front/variant_bridge.h"
#include "platform/ado/connection.h"

namespace front = vicenter::front;
namespace automation = vicenter::automation;
using automation::Argument;
using automation::Arguments;
using automation::Error;
using automation::Variant;
using front::Guarded;
using front::LibrarySession;
using front::Need;

namespace {

automation::InvokeKind KindOf(vic_kind kind) {
    switch (kind) {
        case VIC_GET:
            return automation::InvokeKind::Get;
        case VIC_PUT:
            return automation::InvokeKind::Put;
        case VIC_CALL:
            return automation::InvokeKind::Call;
    }
    throw Error(VIC_ERROR_INVALID_ARGUMENT, "The kind of call does not exist");
}

// The callers' variables behind arguments by reference, during one call.
class References {
  public:
    explicit References(std::size_t count) : values_(count), targets_(count, nullptr) {}

    Argument Bind(std::size_t index, vic_variant* target) {
        Need(target);
        if (target->type == VIC_BYREF)
            throw Error(VIC_ERROR_INVALID_ARGUMENT, "A reference must not lead to another one");
        values_[index] = front::FromC(*target);
        targets_[index] = target;
        return Argument::ByReference(values_[index]);
    }

    void WriteBack() {
        for (std::size_t i = 0; i < targets_.size(); ++i) {
            if (targets_[i] == nullptr) continue;
            vic_variant value{};
            front::ToC(values_[i], value);
            front::Clear(*targets_[i]);
            *targets_[i] = value;
        }
    }

  private:
    std::vector<Variant> values_;
    std::vector<vic_variant*> targets_;
};

void Invoke(vic_object* object, vic_kind kind, const char* name, const vic_variant* arguments,
            const char* const* names, std::size_t count, vic_variant* result) {
    Need(object, name);
    if (count != 0) Need(arguments);
    if (kind == VIC_PUT && count == 0)
        throw Error(automation::error_number::kArgumentNotOptional, "A property is set to a value");
    References references(count);
    Arguments passed;
    passed.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const bool named = names != nullptr && names[i] != nullptr && names[i][0] != '\0';
        if (named) {
            if (arguments[i].type == VIC_BYREF)
                throw Error(VIC_ERROR_INVALID_ARGUMENT, "A named argument is passed by value");
            passed.push_back(Argument::Named(front::CleanText(names[i]), front::FromC(arguments[i])));
        } else if (arguments[i].type == VIC_BYREF) {
            passed.push_back(references.Bind(i, arguments[i].value.reference));
        } else {
            passed.emplace_back(front::FromC(arguments[i]));
        }
    }
    const automation::ObjectRef self = front::ObjectOf(object);  // a call may give back the handle it came by
    vicenter::entry::TakeKeptError();
    const Variant value = self->Invoke(front::CleanText(name), KindOf(kind), passed);
    if (const auto kept = vicenter::entry::TakeKeptError()) front::SetLastError(*kept);
    references.WriteBack();
    if (result != nullptr) front::ToC(value, *result);
}

Variant Converted(const Variant& value, vic_type type) {
    switch (type) {
        case VIC_BOOLEAN:
            return value.ToBoolean();
        case VIC_INT16:
            return value.ToInt16();
        case VIC_INT32:
            return value.ToInt32();
        case VIC_INT64:
            return value.ToInt64();
        case VIC_DOUBLE:
            return value.ToDouble();
        case VIC_DECIMAL:
            return value.ToDecimal();
        case VIC_DATE:
            return value.ToDate();
        case VIC_TEXT:
            return value.ToText();
        default:
            throw Error(automation::error_number::kTypeMismatch);
    }
}

void NeedHeld(bool held) {
    if (!held) throw Error(VIC_ERROR_RELEASED, "The object had been released before", "VelaVICenter");
}

// Gives back the old content once the new one stands.
template <class Work>
void Refill(vic_variant* variant, const Work& work) {
    vic_variant fresh{};
    work(fresh);
    front::Clear(*variant);
    *variant = fresh;
}

}  // namespace

extern "C" {

const char* vic_version(void) {
    return VICENTER_VERSION;
}

vic_int32 vic_abi_version(void) {
    return VIC_ABI_VERSION;
}

vic_status vic_shutdown(void) {
    return front::Caught([] { LibrarySession::End(); });
}

void vic_cancel(void) {
    vicenter::ado::CancelRunning();
}

vic_int32 vic_error_number(void) {
    return front::LastErrorNumber();
}

const char* vic_error_description(void) {
    return front::LastErrorDescription();
}

const char* vic_error_source(void) {
    return front::LastErrorSource();
}

vic_status vic_raise(vic_int32 number, const char* description, const char* source) {
    const vic_status status = front::Caught([&] {
        throw Error(number, description != nullptr ? front::CleanText(description) : std::string(),
                    source != nullptr ? front::CleanText(source) : std::string());
    });
    return status;
}

vic_status vic_create(const char* prog_id, vic_object** object) {
    return Guarded([&](LibrarySession&) {
        Need(prog_id, object);
        *object = nullptr;
        *object = front::NewHandle(automation::CreateObject(prog_id));
    });
}

vic_status vic_retain(vic_object* object) {
    return Guarded([&](LibrarySession&) {
        Need(object);
        front::Retain(object);
    });
}

vic_status vic_release(vic_object* object) {
    return Guarded([&](LibrarySession&) { NeedHeld(front::Release(object)); });
}

vic_status vic_same(const vic_object* a, const vic_object* b, vic_int32* same) {
    return Guarded([&](LibrarySession&) {
        Need(a, b);
        Need(same);
        *same = front::ObjectOf(a) == front::ObjectOf(b) ? 1 : 0;
    });
}

vic_status vic_type_name(vic_object* object, vic_variant* name) {
    return Guarded([&](LibrarySession&) {
        Need(object);
        Need(name);
        const automation::ObjectRef self = front::ObjectOf(object);
        front::SetText(*name, VIC_TEXT, self->TypeName());
    });
}

vic_status vic_has_member(vic_object* object, const char* name, vic_int32* answer) {
    return Guarded([&](LibrarySession&) {
        Need(object);
        Need(name);
        Need(answer);
        const automation::ObjectRef self = front::ObjectOf(object);
        *answer = self->HasMember(name) ? 1 : 0;
    });
}

vic_status vic_live_objects(size_t* count) {
    return Guarded([&](LibrarySession&) {
        Need(count);
        *count = front::LiveObjects();
    });
}

vic_status vic_invoke(vic_object* object, vic_kind kind, const char* name, const vic_variant* arguments,
                      const char* const* names, size_t count, vic_variant* result) {
    return Guarded([&](LibrarySession&) { Invoke(object, kind, name, arguments, names, count, result); });
}

vic_status vic_call(vic_object* object, const char* name, const vic_variant* arguments, size_t count,
                    vic_variant* result) {
    return Guarded(
        [&](LibrarySession&) { Invoke(object, VIC_CALL, name, arguments, nullptr, count, result); });
}

vic_status vic_get(vic_object* object, const char* name, vic_variant* result) {
    return Guarded([&](LibrarySession&) {
        Need(result);
        Invoke(object, VIC_GET, name, nullptr, nullptr, 0, result);
    });
}

vic_status vic_put(vic_object* object, const char* name, const vic_variant* value) {
    return Guarded([&](LibrarySession&) {
        Need(value);
        Invoke(object, VIC_PUT, name, value, nullptr, 1, nullptr);
    });
}

vic_status vic_clear(vic_variant* variant) {
    return Guarded([&](LibrarySession&) {
        if (variant != nullptr) NeedHeld(front::Clear(*variant));
    });
}

vic_status vic_copy(vic_variant* to, const vic_variant* from) {
    return Guarded([&](LibrarySession&) {
        Need(to, from);
        if (to == from) return;
        Refill(to, [&](vic_variant& fresh) { front::ToC(front::FromC(*from), fresh); });
    });
}

vic_status vic_set_text(vic_variant* variant, const char* data, size_t length) {
    return Guarded([&](LibrarySession&) {
        Need(variant);
        if (length != 0) Need(data);
        if (length == static_cast<size_t>(-1)) length = std::strlen(data);
        const std::string_view text = length != 0 ? std::string_view(data, length) : std::string_view();
        Refill(variant, [&](vic_variant& fresh) { front::SetText(fresh, VIC_TEXT, front::CleanText(text)); });
    });
}

vic_status vic_set_decimal(vic_variant* variant, const char* digits) {
    return Guarded([&](LibrarySession&) {
        Need(variant);
        Need(digits);
        const auto decimal = automation::Decimal::Parse(digits);
        if (!decimal) throw Error(automation::error_number::kTypeMismatch);
        Refill(variant, [&](vic_variant& fresh) { front::ToC(*decimal, fresh); });
    });
}

vic_status vic_set_object(vic_variant* variant, vic_object* object) {
    return Guarded([&](LibrarySession&) {
        Need(variant);
        Refill(variant, [&](vic_variant& fresh) {
            if (object != nullptr) front::Retain(object);
            fresh.type = VIC_OBJECT;
            fresh.flags = VIC_OWNED;
            fresh.value.object = object;
        });
    });
}

vic_status vic_set_array(vic_variant* variant, size_t count) {
    return Guarded([&](LibrarySession&) {
        Need(variant);
        Refill(variant, [&](vic_variant& fresh) { front::SetArray(fresh, count); });
    });
}

vic_status vic_convert(const vic_variant* from, vic_type type, vic_variant* to) {
    return Guarded([&](LibrarySession&) {
        Need(from, to);
        Refill(to, [&](vic_variant& fresh) { front::ToC(Converted(front::FromC(*from), type), fresh); });
    });
}

vic_status vic_register_class(const char* prog_id, const vic_class* definition) {
    return Guarded([&](LibrarySession&) {
        Need(prog_id);
        if (prog_id[0] == '\0') throw Error(VIC_ERROR_INVALID_ARGUMENT, "A class needs a ProgID");
        const front::HostClass copy = front::CopyOf(definition);
        front::RegisterForHost(front::CleanText(prog_id), [copy] { return front::CreateInstance(copy); });
    });
}

vic_status vic_unregister_class(const char* prog_id) {
    return Guarded([&](LibrarySession&) {
        Need(prog_id);
        front::UnregisterForHost(prog_id);
    });
}

vic_status vic_new_object(const vic_class* definition, void* instance, vic_object** object) {
    return Guarded([&](LibrarySession&) {
        Need(object);
        *object = nullptr;
        *object = front::NewHandle(front::WrapInstance(front::CopyOf(definition), instance));
    });
}

vic_status vic_set_framework(vic_object* framework) {
    return Guarded([&](LibrarySession&) {
        front::SetFrameworkOfHost(framework == nullptr ? nullptr : front::ObjectOf(framework));
    });
}

vic_status vic_set_message_handler(vic_message_handler handler, void* data) {
    return Guarded([&](LibrarySession&) { front::SetMessageHandler(handler, data); });
}

vic_status vic_process_events(vic_int32 milliseconds) {
    return Guarded([&](LibrarySession& session) { session.Windows().Process(milliseconds); });
}

vic_status vic_run(void) {
    return Guarded([](LibrarySession& session) { session.Windows().Run(); });
}

vic_status vic_open_windows(size_t* count) {
    return Guarded([&](LibrarySession& session) {
        Need(count);
        *count = session.Windows().OpenWindows();
    });
}

vic_status vic_close_windows(void) {
    return Guarded([](LibrarySession& session) { session.Windows().CloseAll(); });
}

}  // extern "C"
