#include "automation/class_registry.h"
#include "host/components/components.h"

namespace vicenter::host {

HostSessionRef RegisterHostComponents(const HostSettings& settings) {
    auto session = std::make_shared<HostSession>(settings);
    struct Component {
        const char* progId;
        automation::ObjectRef (*make)(const HostSessionRef&);
    };
    static constexpr Component kComponents[] = {
        {"VelaPropsMgr.ShareProps", MakeShareProps},
        {"VelaEBSBase.SecurityInfo", MakeSecurityInfo},
        {"VelaEBSBase.SystemProfile", MakeSystemProfile},
        {"VelaEBCGLView.GLData", MakeGlData},
        {"VelaConnection.AppConnection", MakeAppConnection},
        {"Vela_APFC.FrameData", MakeFrameData},
        {"VelaBillDataAccess.SysInfo", MakeSysInfo},
        {"VelaBillDataAccess.SaveData", MakeSaveData},
        {"VelaFRAPI.NXCloud", MakeNxCloud},
        {"VelaVchExp.ExpView", MakeExpView},
        {"VelaEBCGLView.GLView", MakeGlView},
        {"VelaGLNameListLib.GLNameList", MakeGlNameList},
        {"VelaGLNameListLib2.GLNameList", MakeGlNameList},
    };
    for (const Component& component : kComponents) {
        automation::ClassRegistry::Process().Register(
            component.progId, [session, make = component.make] { return make(session); });
    }
    return session;
}

}  // namespace vicenter::host
