' Words for the tests in VBScript. It stands before each script; a script passes when its last line is DONE.
Option Explicit
Dim Relay, Failures
Set Relay = CreateObject("KQTest.Relay")
Failures = 0

Sub Fail(Text)
    Failures = Failures + 1
    Relay.Print "FAILED: " & Text
End Sub

Sub Expect(What, Actual, Wanted)
    If VarType(Actual) <> VarType(Wanted) Then
        Fail What & ": a " & TypeName(Actual) & " " & Actual & " instead of a " & TypeName(Wanted) & " " & Wanted
    ElseIf Actual <> Wanted Then
        Fail What & ": " & Actual & " instead of " & Wanted
    End If
End Sub

Sub ExpectTrue(What, Actual)
    If Not Actual Then Fail What
End Sub

' What the last statement raised, under On Error Resume Next.
Sub ExpectError(What, Number, Source, Description)
    Dim Raised
    Raised = Hex(Err.Number) & " " & Err.Source & ": " & Err.Description
    If Err.Number <> Number Or Err.Source <> Source Or Err.Description <> Description Then Fail What & " raised " & Raised
    Err.Clear
End Sub

' The same for errors that the script host words itself.
Sub ExpectRunTimeError(What, Number)
    If Err.Number <> Number Then Fail What & " raised " & Hex(Err.Number) & " " & Err.Description
    Err.Clear
End Sub

Function JoinTexts(Texts)
    Dim Text
    For Each Text In Texts
        JoinTexts = JoinTexts & "[" & Text & "]"
    Next
End Function

Sub Finish
    If Failures = 0 Then Relay.Print "DONE"
End Sub

Const SampleSession = "<ASMessage type=""SessionInfo"" version=""1""><AppID>KQScripts</AppID><SessionID>S1</SessionID><LoginID>ann</LoginID><FirstName>Ann</FirstName><LastName>Example</LastName><UserUID>17</UserUID><Language>en</Language><EnterpriseID>E1</EnterpriseID><OperatorID>O1</OperatorID><DST>1</DST><BUID>7</BUID><BUIDUnionList>7|9|</BUIDUnionList><PrivilegeList>read|write</PrivilegeList></ASMessage>"
Const SampleProfiles = "<Profiles><Profile name=""Work""/><Profile name=""Home""/></Profiles>"
