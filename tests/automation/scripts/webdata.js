// Translation tables and profiles.
var table = new ActiveXObject("KQWebDataLib.TranslationTable");
table.SetText("Hello", "Hola");
expect("translated", table("Hello"), "Hola");
expect("keys", array(table.Keys).join(), "Hello");

var profiles = new ActiveXObject("KQWebDataLib.Profiles");
var heard = [];
relay.Connect(profiles, {
    ProfileAdded: function (profile) { heard.push("+" + profile.Name); },
    ProfileRemoved: function (name) { heard.push("-" + name); }
});
var work = profiles.AddNew("Work");
profiles.AddNew("Home");
expect("by name", profiles("Work") === work, true);
expect("by position", profiles.Item(1) === work, true);
var names = [];
for (var each = new Enumerator(profiles); !each.atEnd(); each.moveNext()) names.push(each.item().Name);
expect("for each", names.join(), "Work,Home");
profiles.Remove("Home");
expect("heard", heard.join(), "+Work,+Home,-Home");
expectError("a second one", function () { profiles.AddNew("Work"); }, "800A01C9");
expectError("another object", function () { profiles.Add(table); }, "800A000D");

var forms = work.Tables.Create("Forms", "Name,Left");
var row = forms.AddRow();
row.Value("Name") = "main";
expect("value", forms.Rows(1).Value("Name"), "main");
relay.Disconnect(profiles);
finish();
