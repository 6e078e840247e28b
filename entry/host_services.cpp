#include "entry/host_services.h"

#include <string>

#include "automation/class_registry.h"
#include "automation/object.h"
#include "entry/host_context.h"
#include "platform/ado/host_connection_service.h"

namespace vicenter::entry {

using automation::CreateObject;
using automation::Error;
using automation::ObjectRef;
using automation::Variant;

Variant GetSystemProfile(std::string_view category, std::string_view key) {
    try {
        const ObjectRef profile = ado::HostFramework::Process().CreateObject("VelaEBSBase.SystemProfile");
        return profile->Call("GetProfile", {GetPropsString(), category, key});
    } catch (const Error&) {
        return {};
    }
}

void WriteOperationLog(std::string_view code, LogKind kind, std::string_view text) {
    try {
        CreateObject("VelaEBCGLView.GLData")->Call("WriteLog", {code, static_cast<std::int32_t>(kind), text});
    } catch (const Error&) {
        // The log never stops a command.
    }
}

void WriteOperationLog(LogKind kind, std::string_view text) {
    WriteOperationLog(kFunctionCode, kind, text);
}

void WriteFrameLog(std::string_view code, std::string_view name) {
    try {
        const ObjectRef frame = CreateObject("Vela_APFC.FrameData");
        frame->Put("Propstring", GetPropsString());
        frame->Call("WriteMGLog", {code, name});
    } catch (const Error&) {
        // Neither does the usage record.
    }
}

}  // namespace vicenter::entry
