// Messages and elements.
var message = new ActiveXObject("KQXMLMessageLib.XMLMessage");
message.Type = "ASLoginRequest";
message.Version = "1";
message.Field("LoginID") = "ann";
message.Field("Text") = "one & two";
expect("default member", message("LoginID"), "ann");
expect("field", message.Field("Text"), "one & two");
expect("names", array(message.FieldNames).join(), "LoginID,Text");
var copy = message.Copy();
expect("another object", copy === message, false);
expect("the same text", copy.ToXML(), message.ToXML());
expectError("no message", function () { message.LoadXML("x"); }, "80040B01");
expectError("no such element", function () { return message.Element("None"); }, "800A0005");
var names = [];
for (var each = new Enumerator(message.Root); !each.atEnd(); each.moveNext()) names.push(each.item().Name);
expect("elements", names.join(), "LoginID,Text");
finish();
