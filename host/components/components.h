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
//   VelaBillDataAccess.SaveData   the record of files on the cloud drive (t_CloudFile)
//   VelaFRAPI.NXCloud             the cloud drive: a folder, whose place is a setting
//
//   VelaVchExp.ExpView            explanations to choose from (t_VoucherExp)
//   VelaEBCGLView.GLView          accounts, settlement types, currencies, units and items to choose from
//   VelaGLNameListLib.GLNameList  what the typing name lists offer;
//   VelaGLNameListLib2.GLNameList the same
//
// The look-ups ask the process's LookUpDialog, which whoever has a window system provides.

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
automation::ObjectRef MakeSaveData(const HostSessionRef& session);
automation::ObjectRef MakeNxCloud(const HostSessionRef& session);
automation::ObjectRef MakeExpView(const HostSessionRef& session);
automation::ObjectRef MakeGlView(const HostSessionRef& session);
automation::ObjectRef MakeGlNameList(const HostSessionRef& session);

// Registers all of them in the process's class registry, in place of whatever stood there. They share one
// session, which is returned.
HostSessionRef RegisterHostComponents(const HostSettings& settings);

}  // namespace vicenter::host
