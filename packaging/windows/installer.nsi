; The installer for Windows, for one user or for the whole machine, in Chinese and English. packaging/windows/installer.cmake
; compiles it over the staged files:
;   vicenter-setup.exe [/S] [/CurrentUser | /AllUsers] [/D=FOLDER]
;   uninstall.exe [/S] [/CurrentUser | /AllUsers]
; It registers the COM server and unregisters it, and puts the window into the start menu where there is one. What users
; have made of account sets, drafts and settings stays.
; Exit codes: 0 done, 1 given up by the user, 2 a file is in use or cannot be written, 3 the registration failed.

; Hosts of both widths want the component beside the other's: a user's folder and keys are the same for programs of both.
!if ${WIDTH} == 64
  !define PRODUCT "VoucherTemplateCenter"
  !define SHOWN_WIDTH ""
!else
  !define PRODUCT "VoucherTemplateCenter-x86"
  !define SHOWN_WIDTH " (x86)"
!endif
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
!define OWN_KEY "Software\${PRODUCT}"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_INSTDIR "${PRODUCT}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${OWN_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "Folder"
!define MULTIUSER_INIT_TEXT_ALLUSERSNOTPOSSIBLE "$(NotAllowed)"
!if ${WIDTH} == 64
  !define MULTIUSER_USE_PROGRAMFILES64
!endif
!include MultiUser.nsh

Name "$(ProductName)${SHOWN_WIDTH}"
OutFile "${OUTPUT}"
BrandingText " "
SetCompressor /SOLID lzma
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=1033 ProductName "Voucher Template Center"
VIAddVersionKey /LANG=1033 FileDescription "Voucher Template Center, installer"
VIAddVersionKey /LANG=1033 FileVersion "${VERSION}"
VIAddVersionKey /LANG=1033 LegalCopyright "MIT licence"

!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_LICENSE "${STAGE}\doc\LICENSE"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
; The first one is for systems of any other language.
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE SimpChinese

LangString ProductName ${LANG_ENGLISH} "Voucher Template Center"
LangString ProductName ${LANG_SIMPCHINESE} "凭证模板中心"
LangString NotAllowed ${LANG_ENGLISH} "Installing for all users wants an administrator."
LangString NotAllowed ${LANG_SIMPCHINESE} "为所有用户安装需要管理员权限。"
LangString InUse ${LANG_ENGLISH} "A program uses the files in $INSTDIR, or they cannot be written. Close it and try again."
LangString InUse ${LANG_SIMPCHINESE} "有程序正在使用 $INSTDIR 中的文件，或该文件夹不可写入。请关闭该程序后重试。"
LangString NotRegistered ${LANG_ENGLISH} "The component could not be registered (regsvr32: $0)."
LangString NotRegistered ${LANG_SIMPCHINESE} "组件注册失败（regsvr32：$0）。"

; Gives up, with the message on the screen unless the installer is silent.
!macro Fail CODE TEXT
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  Abort
!macroend

; A file that is in use lets nobody write.
!macro FailIfInUse FILE
  ${If} ${FileExists} "$INSTDIR\${FILE}"
    ClearErrors
    FileOpen $1 "$INSTDIR\${FILE}" a
    ${If} ${Errors}
      !insertmacro Fail 2 "$(InUse)"
    ${EndIf}
    FileClose $1
  ${EndIf}
!macroend

; regsvr32 with these switches; its exit code in $0.
!macro RegisterLibrary SWITCHES
  ${If} $MultiUser.InstallMode == "CurrentUser"
    ExecWait '"$SYSDIR\regsvr32.exe" /s ${SWITCHES} /n /i:user "$INSTDIR\bin\VelaVICenter.dll"' $0
  ${Else}
    ExecWait '"$SYSDIR\regsvr32.exe" /s ${SWITCHES} "$INSTDIR\bin\VelaVICenter.dll"' $0
  ${EndIf}
!macroend

; The same name in each language: whoever takes it away may read another one than whoever put it there.
!define SHORTCUT "$SMPROGRAMS\凭证模板中心 Voucher Template Center${SHOWN_WIDTH}.lnk"

Function .onInit
  SetRegView ${WIDTH}
  Push $INSTDIR ; empty without /D=
  !insertmacro MULTIUSER_INIT
  Pop $0
  ${If} $0 != ""
    StrCpy $INSTDIR $0
  ${EndIf}
FunctionEnd

Section
  !insertmacro FailIfInUse "bin\VelaVICenter.dll"
  !insertmacro FailIfInUse "bin\vicenter.exe"
  SetOutPath "$INSTDIR"
  SetOverwrite try
  ClearErrors
  File /r "${STAGE}\*"
  ${If} ${Errors}
    !insertmacro Fail 2 "$(InUse)"
  ${EndIf}
  WriteUninstaller "$INSTDIR\uninstall.exe"
  !insertmacro RegisterLibrary ""
  ${If} $0 != 0
    !insertmacro Fail 3 "$(NotRegistered)"
  ${EndIf}
  ${If} ${FileExists} "$INSTDIR\bin\vicenter-window.exe"
    CreateShortcut "${SHORTCUT}" "$INSTDIR\bin\vicenter-window.exe"
  ${EndIf}
  WriteRegStr SHCTX "${OWN_KEY}" "Folder" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "$(ProductName)${SHOWN_WIDTH}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; Started by hand it finds out by the folder for whom it was installed.
Function un.onInit
  SetRegView ${WIDTH}
  Push $INSTDIR
  ReadRegStr $2 HKCU "${OWN_KEY}" "Folder"
  !insertmacro MULTIUSER_UNINIT
  Pop $INSTDIR
  ${If} $2 == $INSTDIR
    Push $INSTDIR
    Call un.MultiUser.InstallMode.CurrentUser
    Pop $INSTDIR
  ${EndIf}
FunctionEnd

Section Uninstall
  !insertmacro FailIfInUse "bin\VelaVICenter.dll"
  !insertmacro FailIfInUse "bin\vicenter.exe"
  ${If} ${FileExists} "$INSTDIR\bin\VelaVICenter.dll"
    !insertmacro RegisterLibrary "/u"
    ${If} $0 != 0
      !insertmacro Fail 3 "$(NotRegistered)"
    ${EndIf}
  ${EndIf}
  ; Delete and RMDir of what was installed and of nothing else: the folder may hold account sets.
  !include "${REMOVAL}"
  Delete "${SHORTCUT}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  DeleteRegKey SHCTX "${OWN_KEY}"
SectionEnd
