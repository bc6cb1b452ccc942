// The client object and its session record.
var client = new ActiveXObject("KQAppSessionLib.KQAppSessClient");

function keepsValues() {
    client.AppServerPort = 7000;
    client.AppServerAddress = "host";
    client.UseProfiles = false;
    expect("port", client.AppServerPort, 7000);
    expect("address", client.AppServerAddress, "host");
    expect("use", client.UseProfiles, false);
}

function raisesErrors() {
    expectError("ServerLogin", function () { client.ServerLogin(false); }, "80040A63",
        "A system login must be performed before a server login, or the proper state must first be set.");
    expectError("no number", function () { client.AppServerPort = "x"; }, "800A000D");
    expectError("too large", function () { client.AppServerPort = 1e12; }, "800A0006");
    expectError("null as a profile", function () { client.CurrentProfile = null; }, "800A005B",
        "Object variable or With block variable not set");
    expectError("an empty record", function () { return client.SessionInfo.AppID; }, "800A005B",
        "Object variable or With block variable not set");
    expectError("ChangeConfiguration", function () { client.ChangeConfiguration(); }, "80040A13");
    expectError("ChangePassword", function () { client.ChangePassword("KQScripts"); }, "80004001",
        "ChangePassword is not implemented");
}

function takesALogin() {
    var profiles = new ActiveXObject("KQWebDataLib.Profiles");
    profiles.LoadXML(sampleProfiles);
    client.SetSystemLoginState(sampleSession, null, profiles, "Home", "host", 7000, 5000);
    expect("LoginState", client.LoginState, 1);
    expect("the very collection", client.Profiles === profiles, true);
    expect("the collection's object", client.CurrentProfile === profiles("Home"), true);
    client.CurrentProfile = profiles(1);
    expect("set", client.CurrentProfile.Name, "Work");
}

function showsTheRecord() {
    var session = client.SessionInfo;
    expect("the same object", session === client.SessionInfo, true);
    expect("UserUID", session.UserUID, 17);
    expect("BUIDList", array(session.BUIDList).join(), "7,9,");
    expect("no connection", session.Client, null);
    expect("the message itself", session.Export() === session.Export(), true);
}

keepsValues();
raisesErrors();
takesALogin();
showsTheRecord();
finish();
