#pragma once

// The host's components that voucher templates call, one source each, and their registration by ProgID.
//
//   VelaPropsMgr.ShareProps       the property string by process id
//   VelaEBSBase.SecurityInfo      rights (t_UserRight)
//   VelaEBSBase.SystemProfile     the ledger's profile (t_SystemProfile)
//   VelaEBCGLView.GLData          operation log (t_Log)
//   VelaConnection.AppConnection  statements on the account set
//   Vela_APFC.FrameData           usage record (t_FrameLog)
//   VelaBillDataAccess.SysInfo    a user's cloud account (t_UserCloud)
//
// The look-up dialogs and name lists (VelaVchExp.ExpView, VelaEBCGLView.GLView, VelaGLNameListLib.GLNameList
// and VelaGLNameListLib2.GLNameList) need a window system: whoever brings one registers them behind these.

#include "automation/object.h"
#include "host/components/host_session.h"

namespace vicenter::host {

automation::ObjectRef MakeShareProps(const HostSessionRef& session);
automation::ObjectRef MakeSecurityInfo(const HostSessionRef& session);
automation::ObjectRef MakeSystemProfile(const HostSessionRef& session);
automation::ObjectRef MakeGlData(const HostSessionRef& session);
automation::ObjectRef MakeAppConnection(const HostSessionRef& session);
automation::ObjectRef MakeFrameData(const HostSessionRef& session);
automation::ObjectRef MakeSysInfo(const HostSessionRef& session);

// Registers all of them in the process's class registry, in place of whatever stood there. They share one
// session, which is returned.
HostSessionRef RegisterHostComponents(const HostSettings& settings);

}  // namespace vicenter::host
