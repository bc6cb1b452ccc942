' Translation tables, profiles and their tables.
Sub TranslatesAndKeepsWhatItDoesNotKnow
    Dim Table, Other, Key, Keys
    Set Table = CreateObject("KQWebDataLib.TranslationTable")
    Table.Language = "es"
    Table.SetText "Hello", "Hola"
    Table.SetText "Bye", "Adios"
    Expect "default member", Table("Hello"), "Hola"
    Expect "unknown", Table.Translate("Good day"), "Good day"
    Expect "count", Table.Count, CLng(2)
    Expect "keys", JoinTexts(Table.Keys), "[Bye][Hello]"
    For Each Key In Table
        Keys = Keys & Key & ";"
    Next
    Expect "for each", Keys, "Bye;Hello;"
    Set Other = CreateObject("KQWebDataLib.TranslationTable")
    Other.LoadXML Table.ToXML
    Expect "as text", Other.Language & Other("Bye"), "esAdios"
    Table.Remove "Bye"
    Expect "removed", Table.Exists("Bye"), False
    On Error Resume Next
    Table.LoadXML "<Profiles/>"
    ExpectTrue "another's text", Err.Number = &H80040B11 And Err.Source = "KQWebDataLib"
End Sub

Sub KeepsProfilesByNameAndPosition
    Dim Profiles, Profile, Names
    Set Profiles = CreateObject("KQWebDataLib.Profiles")
    Set Profile = Profiles.AddNew("Work")
    Profiles.Add CreateObject("KQWebDataLib.Profile").Copy("Home")
    ExpectTrue "the same object", Profiles("Work") Is Profile
    ExpectTrue "by position", Profiles.Item(1) Is Profile
    Expect "count", Profiles.Count, CLng(2)
    Profiles.Rename "Home", "House"
    For Each Profile In Profiles
        Names = Names & Profile.Name & ";"
    Next
    Expect "for each", Names, "Work;House;"
    Profiles.LastUsed = "House"
    Expect "last used", Profiles.LastUsed, "House"
    On Error Resume Next
    Profiles.AddNew "Work"
    ExpectError "a second one", 457, "KQAppSessionLib", "This key is already associated with an element of this collection"
    Profiles.Add Nothing
    ExpectError "Nothing", 91, "KQAppSessionLib", "Object variable or With block variable not set"
    Profiles.Remove "Nobody"
    ExpectError "an unknown one", 5, "KQAppSessionLib", "Invalid procedure call or argument"
    Profiles.Add 5
    ExpectRunTimeError "a number", 13
    Profiles.Add Profiles
    ExpectRunTimeError "another object", 13
    Set Profile = Profiles.Item(3)
    ExpectError "a position that is none", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Sub KeepsTablesInProfiles
    Dim Profile, Table, Row, Values
    Set Profile = CreateObject("KQWebDataLib.Profile").Copy("Work")
    ExpectTrue "the same tables", Profile.Tables Is Profile.Tables
    Set Table = Profile.Tables.Create("Forms", "Name, Left")
    ExpectTrue "the same table", Profile.Tables("Forms") Is Table
    Set Row = Table.AddRow
    Row("Name") = "main"
    Row.Value("Left") = 12
    Expect "columns", JoinTexts(Table.Columns), "[Name][Left]"
    Expect "value", Row.Value("Left"), "12"
    Table.AddRow.Value("Name") = "other"
    Expect "a default", Table.Rows(2).ValueOr("Left", "none"), "none"
    Expect "selected", Table.Select("Name", "main").Count, CLng(1)
    ExpectTrue "the row itself", Table.Select("Name", "main")(1) Is Row
    For Each Row In Table.Rows
        Values = Values & Row("Name") & ";"
    Next
    Expect "for each", Values, "main;other;"
    Table.RemoveRow Table.Rows(1)
    Expect "removed", Table.Rows.Count, CLng(1)
    On Error Resume Next
    Table.Rows(1).Value("Nonsense") = "x"
    ExpectError "an unknown column", 5, "KQAppSessionLib", "The table has no column of that name"
End Sub

Class Handler
    Public Heard
    Sub ProfileAdded(Profile)
        Heard = Heard & "+" & Profile.Name
    End Sub
    Sub ProfileRemoved(Name)
        Heard = Heard & "-" & Name
    End Sub
End Class

Sub TellsWhatChanges
    Dim Profiles, Heard
    Set Profiles = CreateObject("KQWebDataLib.Profiles")
    Set Heard = New Handler
    Relay.Connect Profiles, Heard
    Profiles.AddNew "Work"
    Profiles.Remove "Work"
    Relay.Disconnect Profiles
    Profiles.AddNew "Unheard"
    Expect "heard", Heard.Heard, "+Work-Work"
End Sub

TranslatesAndKeepsWhatItDoesNotKnow
KeepsProfilesByNameAndPosition
KeepsTablesInProfiles
TellsWhatChanges
Finish
