' Messages and elements.
Function NewMessage
    Set NewMessage = CreateObject("KQXMLMessageLib.XMLMessage")
    NewMessage.Type = "ASLoginRequest"
    NewMessage.Version = "1"
    NewMessage("LoginID") = "ann"
    NewMessage.Field("Count") = 5
End Function

Sub HasFields
    Dim Message
    Set Message = NewMessage
    Expect "default member", Message("LoginID"), "ann"
    Expect "a number becomes a text", Message.Field("Count"), "5"
    Expect "absent", Message.Field("Nothing"), ""
    Expect "has", Message.HasField("LoginID"), True
    Expect "names", JoinTexts(Message.FieldNames), "[LoginID][Count]"
    Message.RemoveField "Count"
    Expect "removed", Message.HasField("Count"), False
End Sub

Sub TravelsAsText
    Dim Message, Copy
    Set Message = NewMessage
    Set Copy = CreateObject("KQXMLMessageLib.XMLMessage")
    Copy.LoadXML Message.ToXML
    Expect "type", Copy.Type, "ASLoginRequest"
    Expect "version", Copy.Version, "1"
    Expect "field", Copy("LoginID"), "ann"
    ExpectTrue "another object", Not Copy Is Message
    Message.SetDestination "ZEB"
    Message.Schema = "ZEBSchemas"
    Copy.LoadBusXML Message.ToBusXML
    Expect "destination", Copy.DestinationType & "|" & Copy.DestinationSubType, "ZEB|"
    Expect "bus message", Copy.ToClientMessage.ToBusMessage("S").Schema, "S"
End Sub

Sub RefusesWhatIsNoMessage
    Dim Message
    Set Message = NewMessage
    On Error Resume Next
    Message.LoadXML "no message"
    ExpectTrue "number", Err.Number = &H80040B01
    Expect "source", Err.Source, "KQXMLMessageLib"
    ExpectTrue "description", Len(Err.Description) > 0
    Err.Clear
    Expect "unchanged", Message("LoginID"), "ann"
    Message("no name") = "x"
    ExpectError "a field that cannot be", 5, "KQAppSessionLib", """no name"" cannot name an element or attribute"
End Sub

Sub IsATreeOfElements
    Dim Element, Child, Names
    Set Element = CreateObject("KQXMLMessageLib.XMLElement")
    Element.Initialize "List"
    Element.Attribute("kind") = "short"
    Element.Add "Item", "one"
    Element.Add "Item", "two"
    Expect "count", Element.Count, CLng(2)
    Expect "by position", Element(2).Text, "two"
    Expect "by path", Element("Item").Text, "one"
    Expect "attribute", Element.Attribute("kind") & JoinTexts(Element.AttributeNames), "short[kind]"
    For Each Child In Element
        Names = Names & Child.Name & "=" & Child.Text & ";"
    Next
    Expect "for each", Names, "Item=one;Item=two;"
    Expect "exists", Element.Exists("Other"), False
    Expect "removed", Element.Remove("Item"), CLng(2)
    On Error Resume Next
    Set Child = Element.Item(1)
    ExpectError "none left", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Sub CarriesElementsAndMessages
    Dim Message, Element, Inner
    Set Message = NewMessage
    Set Element = CreateObject("KQXMLMessageLib.XMLElement")
    Element.Initialize "Extra", "text"
    Message.SetElementField Element
    Element.Text = "changed afterwards"
    Expect "a copy was taken", Message("Extra"), "text"
    Expect "by path", Message.Element("Extra").Text, "text"
    Set Inner = NewMessage
    Message.SetMessageField "SessionInfo", Inner
    Inner.LoadXML Message("SessionInfo")
    Expect "nested message", Inner.Type, "ASLoginRequest"
    Message.SetXMLField "Data", "<a><b>1</b></a>"
    Expect "nested element", Message.Element("Data/b").Text, "1"
    Set Message.Root = Element
    Expect "another root", Message.Type, "Extra"
    On Error Resume Next
    Message.SetMessageField "X", Nothing
    ExpectError "Nothing", 91, "KQAppSessionLib", "Object variable or With block variable not set"
End Sub

HasFields
TravelsAsText
RefusesWhatIsNoMessage
IsATreeOfElements
CarriesElementsAndMessages
Finish
