// Every way in which a silent login fails, as a script sees it: the two servers are played by a listener of this
// same script, which answers each request as it is told to.
var client = new ActiveXObject("KQAppSessionLib.KQAppSessClient");
var listener = new ActiveXObject("KQAppProtocolLib.Listener");
var answers = {};
var uploads = 0;

function message(type, fields) {
    var made = new ActiveXObject("KQXMLMessageLib.XMLMessage");
    made.Type = type;
    made.Version = "1";
    for (var name in fields) made.Field(name) = fields[name];
    return made;
}

function play() {
    listener.ReceiveType = 128;
    relay.Connect(listener, {
        Receive: function (from, data) {
            var request = new ActiveXObject("KQXMLMessageLib.XMLMessage");
            request.LoadXML(data);
            if (request.Type === "ASProfilesUpdate") uploads++;
            var answer = answers[request.Type];
            if (answer) from.Send(answer);
        }
    });
    listener.Listen(0, "127.0.0.1");
}

// A login as good servers let it be, but for one answer; null: no answer.
function servers(type, answer) {
    answers = {
        ASValidateClientRequest: message("ASValidateClientResponse",
            { ErrorNumber: "0", ClientAvailable: "False", InterfaceAvailable: "True" }),
        ASLoginRequest: granted(""),
        ASProfilesUpdate: message("ASProfilesUpdateResponse", { ErrorNumber: "0" }),
        ASRegisterRequest: message("ASRegisterResponse", { ErrorNum: "0" })
    };
    if (type) answers[type] = answer;
}

// A granted login; what is left out is told by name.
function granted(without) {
    var made = message("ASLoginResponse", { ErrorNumber: "0", Port: listener.Port, SessionID: "S1" });
    if (without !== "TranslationTable") {
        var table = new ActiveXObject("KQWebDataLib.TranslationTable");
        table.SetText("Hello", "Hola");
        made.SetXMLField("TranslationTable", table.ToXML());
    }
    if (without !== "SessionInfo") made.SetXMLField("SessionInfo", sampleSession);
    made.SetXMLField("Profiles", sampleProfiles);
    return made;
}

function systemLogin() {
    client.SystemLogin2(false, "KQScripts", "1.0", "1.0.0", undefined, undefined, undefined, "ann", "secret",
        "127.0.0.1", listener.Port, 2000, false);
}

function refused(what, type, answer, number, description) {
    servers(type, answer);
    expectError(what, systemLogin, number, description);
    expect(what + ", LoginState", client.LoginState, 0);
}

function validationIsRefused() {
    var request = "ASValidateClientRequest";
    var response = "ASValidateClientResponse";
    refused("no validation", request, null, "80040A07",
        "Did not receive a validation reply from the login server: The connection timed out.");
    refused("a refused validation", request, message(response, { ErrorNumber: "1", ErrorDesc: "not today" }), "80040A08",
        "Validation failed: not today.");
    refused("another answer", request, message("ASLoginResponse", {}), "80040A08",
        "Validation failed: An improper response was received.");
    var newer = message(response, { ErrorNumber: "0", InterfaceAvailable: "True" });
    newer.Version = "2";
    refused("another version", request, newer, "80040A0A",
        "The login server does not support this client.  A new client version is required.");
    refused("no application server", request, message(response, { ErrorNumber: "0", InterfaceAvailable: "true" }),
        "80040A0B", "No servers available for this client.");
}

function loginIsRefused() {
    var request = "ASLoginRequest";
    var response = "ASLoginResponse";
    refused("no login reply", request, null, "80040A05", "Invalid login ID (ann) or password () was specified.");
    refused("a password that must change", request, message(response, { ErrorNumber: "7722" }), "80040A09",
        "Password must be changed before login may be completed.");
    refused("a wrong password", request, message(response, { ErrorNumber: "7721", ErrorDesc: "who?" }), "80040A0D",
        "Login failed: who?.");
    refused("another refusal", request, message(response, { ErrorNumber: "7", ErrorParam: "ZEBError-303" }), "80040A0D",
        "Login failed: Too Many Repeating Characters in Password.");
    refused("too many sessions", request, message(response, { ErrorNumber: "7790", ErrorParam: "ann" }), "80040A14",
        "Too many concurrent sessions for user ann.  Please close any unneeded sessions.");
    refused("no texts", request, granted("TranslationTable"), "80040A0E",
        "The translation table was not found in the response from the Login Server.");
    refused("no session", request, granted("SessionInfo"), "80040A0F",
        "Session information was not returned properly by the login.");
}

function registrationIsRefused() {
    var request = "ASRegisterRequest";
    var register = function () { client.ServerLogin(false); };
    servers();
    systemLogin();
    expect("LoginState", client.LoginState, 1);
    servers(request, null);
    expectError("no registration", register, "80040A11", "Could not register with the application server.");
    servers(request, message("ASRegisterResponse", { ErrorNum: "5", ErrorDesc: "full" }));
    expectError("a refused registration", register, "80040A12", "Registration failed:  full.");
    servers();
    systemLogin();
    client.AppServerPort = 1;
    expectError("no application server", register, "80040A10", "Could not connect to the application server.");
}

function whatIsGrantedIsSeen() {
    servers();
    systemLogin();
    client.ServerLogin(false);
    expect("LoginState", client.LoginState, 2);
    expect("a text", client.TranslationTable("Hello"), "Hola");
    expect("a profile", client.CurrentProfile.Name, "Work");
    expect("connected", client.SessionClient.Connected, true);
    client.TerminateClient();
    expect("no connection", client.SessionClient, null);
}

// A host without dialogs: interactive members show nothing and go on, until they would have to ask.
function nobodyIsAsked() {
    var unasked = "This program has no dialogs, so the user cannot be asked: ";
    servers();
    systemLogin();
    client.SetSystemConnectState("127.0.0.1", listener.Port, 2000);
    expect("registered", client.ServerLogin(true), true);
    uploads = 0;
    client.Profiles.Add(client.Profiles.Item("Home").Copy("Elsewhere"));
    expect("uploaded by an event", uploads, 1);
    client.UpdateProfiles();
    expect("uploaded", uploads, 2);
    client.SetSystemConnectState("127.0.0.1", 1, 2000);
    expectError("no login server", function () { client.UpdateProfiles(); }, "800A0005",
        unasked + "Could not connect to login server.  Would you like to try again?");
    servers("ASRegisterRequest", message("ASRegisterResponse", { ErrorNum: "5", ErrorDesc: "full." }));
    expectError("a refused registration", function () { client.ServerLogin(true); }, "800A0005",
        unasked + "Registration failed:  full.  Would you like to login again?");
    client.TerminateClient();
}

run(play);
run(validationIsRefused);
run(loginIsRefused);
run(registrationIsRefused);
run(whatIsGrantedIsSeen);
run(nobodyIsAsked);
relay.Disconnect(listener);
finish();
