' A host in VBScript: its components are classes of the script, handed to the component as late-bound objects. It makes
' a template, saves lines, reads them back and deletes it; then it runs the component on connections of its own.
'   cscript //nologo script_host.vbs CONNECT_STRING
' Ends with a line "verdict: N checks, M failures": the script engine's exit code tells nothing.
Option Explicit

Dim checks, failures
checks = 0
failures = 0

Sub Check(what, holds)
    checks = checks + 1
    If holds Then
        WScript.Echo "ok: " & what
    Else
        failures = failures + 1
        WScript.Echo "FAILED: " & what
    End If
End Sub

Sub Same(what, seen, wanted)
    Check what & " (" & CStr(seen) & ")", CStr(seen) = CStr(wanted)
End Sub

' ---- the host's components

Class ShareProps
    Public ConnectString
    Public Asked
    Public Function GetProperty(process, name)
        Asked = Asked + 1
        GetProperty = "UserID=1;ConnectString={" & ConnectString & "};"
    End Function
End Class

Class SecurityInfo
    Public Function AccessCheck(properties, first, second, rights)
        AccessCheck = True
    End Function
End Class

Class OperationLog
    Public Lines
    Public Last
    Public Sub WriteLog(code, kind, text)
        Lines = Lines + 1
        Last = text
    End Sub
End Class

' ---- a connection service

Class OneField
    Public Name
    Public Value
End Class

Class FieldList
    Public One
    Public Two
    Public Property Get Count
        Count = 2
    End Property
    Public Function Item(index)
        If index = 0 Then
            Set Item = One
        Else
            Set Item = Two
        End If
    End Function
End Class

Class Rows
    Public Fields
    Public Remaining
    Public Property Get State
        State = 1
    End Property
    Public Property Get EOF
        EOF = (Remaining = 0)
    End Property
    Public Sub MoveNext()
        Remaining = Remaining - 1
        Fields.Two.Value = "row " & CStr(Remaining)
    End Sub
    Public Sub Close()
    End Sub
End Class

Class ScriptConnection
    Public Batches
    Public Last
    Public Function Execute(text, affected, options)
        Batches = Batches + 1
        Last = text
        Dim answer
        Set answer = New Rows
        Set answer.Fields = New FieldList
        Set answer.Fields.One = New OneField
        Set answer.Fields.Two = New OneField
        answer.Fields.One.Name = "FID"
        answer.Fields.One.Value = 7
        answer.Fields.Two.Name = "FName"
        answer.Fields.Two.Value = "row 3"
        answer.Remaining = 3
        Set Execute = answer
    End Function
End Class

Class ScriptBroker
    Public Connection
    Public Bound
    Public Sub Bind(properties)
        Bound = properties
    End Sub
    Public Function Auxiliary()
        Set Auxiliary = Nothing
    End Function
    Public Sub Settle()
    End Sub
    Public Function GiveConnection()
        Set GiveConnection = Connection
    End Function
End Class

Class ScriptFramework
    Public Connection
    Public Brokers
    Public Function GiveBroker()
        Brokers = Brokers + 1
        Dim broker
        Set broker = New ScriptBroker
        Set broker.Connection = Connection
        Set GiveBroker = broker
    End Function
End Class

' ---- what is done

Sub UseTheSupportClasses()
    Dim json, builder, value, text
    Set json = CreateObject("VelaVICenter.VbsJson")
    Set builder = CreateObject("VelaVICenter.StringBuilder")
    builder.Append "{""a"":1,"
    builder.Append """b"":{""c"":[10,20,30],""1"":""one""}}"
    text = builder.ToString()
    Same "default member", builder, text
    Set value = json.Decode(text)
    Same "TypeName", TypeName(value), "Dictionary"
    Same "item", value.Item("a"), 1
    Same "default member with an argument", value("a"), 1
    Same "default member behind a member", value.Item("b")("1"), "one"
    Same "default member behind a default member", value("b")("1"), "one"
    Dim list
    list = value("b")("c")
    Same "an array", list(1), 20
    list = value.Item("b").Item("c")
    Same "an array behind members", list(2), 30
    value("new") = 5
    Same "put by the default member", value("new"), 5
    Dim key, seen
    seen = ""
    For Each key In value
        seen = seen & key & ";"
    Next
    Same "For Each", seen, "a;b;new;"
    value.Remove "new"
    Same "encoded again", json.Encode(value), "{""a"":1,""b"":{""c"":[10,20,30],""1"":""one""}}"
    Dim own
    Set own = CreateObject("Scripting.Dictionary")
    own.Add "x", Array(1, "two", Null, True)
    Same "the system's own dictionary", json.Encode(own), "{""x"":[1,""two"",null,true]}"
    On Error Resume Next
    json.Decode "{1}"
    Same "an error's number", Err.Number, 8732
    Same "an error's text", Err.Description, "Expecting property name"
    Err.Clear
    value.NoSuchMember
    Same "no such member", Err.Number, 438
    On Error GoTo 0
End Sub

Sub MakeSaveAndDelete()
    Dim data, number, fid, rows, i, chinese
    chinese = CreateObject("VelaVICenter.VbsJson").Decode("""\u6458\u8981""")
    Set data = CreateObject("VelaVICenter.clsVIData")
    Same "transaction mode", data.mTransMode, 2
    Set rows = data.GetVchTemplateByUserID(1)
    Check "the user's templates", rows.RecordCount > 0
    number = 0
    fid = data.InsertVchTemplateInfo(number)
    Check "made: FID " & CStr(fid), fid > 0
    For i = 1 To 2
        Check "line " & CStr(i), data.IsExecuteSql("insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC," & _
            "FAccountNumber,FAmount) values(" & CStr(fid) & "," & CStr(i) & ",1,N'" & chinese & _
            "'," & CStr(2 - i) & ",'1001','12.5')")
    Next
    Same "lines counted", data.GetVchEntryCount(fid), 2
    Set rows = data.GetVchTemplateEntryInfo(fid)
    Same "lines read", rows.RecordCount, 2
    Same "a Chinese text", rows.Fields("FExp").Value, chinese
    Same "by the default members", rows("FAccountNumber"), "1001"
    rows.MoveNext
    Same "the second line", rows.Fields("FEntryID"), 2
    rows.MoveNext
    Check "the end", rows.EOF
    Check "deleted", data.DeleteVchTemplateInfo(fid)
    Same "nothing left", data.GetVchEntryCount(fid), 0
End Sub

Sub RunOnConnectionsOfTheScript(host)
    Dim framework, connection, rows, names
    Set connection = New ScriptConnection
    connection.Batches = 0
    Set framework = New ScriptFramework
    Set framework.Connection = connection
    framework.Brokers = 0
    host.SetFramework framework
    Set rows = CreateObject("VelaVICenter.clsVIData").GetRs("select what the script knows")
    Same "the script's connection was asked", connection.Last, "select what the script knows"
    Same "once", connection.Batches, 1
    names = ""
    Do Until rows.EOF
        names = names & rows("FName") & ";"
        rows.MoveNext
    Loop
    Same "its rows", names, "row 3;row 2;row 1;"
    host.SetFramework Nothing
    CreateObject("VelaVICenter.clsVIData").GetVchEntryCount 1
    Same "back on plain connections", connection.Batches, 1
End Sub

Sub CreateAndRelease()
    Dim name, i, made
    For Each name In Array("aplication", "clsVIData", "VbsJson", "StringBuilder", "Host")
        For i = 1 To 1000
            Set made = CreateObject("VelaVICenter." & name)
        Next
        Set made = Nothing
    Next
    Check "1,000 of each class", True
End Sub

Dim host, properties, journal, security
Set host = CreateObject("VelaVICenter.Host")
Set properties = New ShareProps
properties.ConnectString = WScript.Arguments(0)
properties.Asked = 0
Set journal = New OperationLog
journal.Lines = 0
host.Register "VelaPropsMgr.ShareProps", properties
host.Register "VelaEBCGLView.GLData", journal
Set security = New SecurityInfo
host.Register "VelaEBSBase.SecurityInfo", security

UseTheSupportClasses
MakeSaveAndDelete
Check "the component asked its host", properties.Asked > 0
RunOnConnectionsOfTheScript host
CreateAndRelease

' The window, where the library has been built with windows.
Dim shown
On Error Resume Next
CreateObject("VelaVICenter.aplication").ShowVICenter
shown = Err.Number
On Error GoTo 0
If shown = 0 Then
    Same "windows open", host.OpenWindows, 1
    host.ProcessEvents 10
    host.CloseWindows
    Same "windows left", host.OpenWindows, 0
Else
    Same "no windows", shown, 429
End If

WScript.Echo "verdict: " & CStr(checks) & " checks, " & CStr(failures) & " failures"
