' A host in VBScript that opens the window. A script has no message loop: it asks the component to handle events.
'   cscript //nologo script_window.vbs CONNECT_STRING FOLDER
' Files in the folder are its user: "close" has it close the windows, "leave" end with one open.
Option Explicit

Class ShareProps
    Public ConnectString
    Public Function GetProperty(process, name)
        GetProperty = "UserID=1;ConnectString={" & ConnectString & "};"
    End Function
End Class

Class SecurityInfo
    Public Function AccessCheck(properties, first, second, rights)
        AccessCheck = True
    End Function
End Class

Dim host, properties, security, files, folder, leave
folder = WScript.Arguments(1)
Set files = CreateObject("Scripting.FileSystemObject")
Set host = CreateObject("VelaVICenter.Host")
Set properties = New ShareProps
properties.ConnectString = WScript.Arguments(0)
host.Register "VelaPropsMgr.ShareProps", properties
Set security = New SecurityInfo
host.Register "VelaEBSBase.SecurityInfo", security

CreateObject("VelaVICenter.aplication").ShowVICenter
WScript.Echo "open: " & CStr(host.OpenWindows)
leave = False
Do While host.OpenWindows > 0 And Not leave
    host.ProcessEvents 100
    If files.FileExists(folder & "\close") Then host.CloseWindows
    leave = files.FileExists(folder & "\leave")
Loop
WScript.Echo "at the end: " & CStr(host.OpenWindows)
