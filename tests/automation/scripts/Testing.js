// Words for the tests in JScript. It stands before each script; a script passes when its last line is DONE.
var relay = new ActiveXObject("KQTest.Relay");
var failures = 0;

function fail(text) {
    failures++;
    relay.Print("FAILED: " + text);
}

function expect(what, actual, wanted) {
    if (actual !== wanted) fail(what + ": " + actual + " instead of " + wanted);
}

// number: as an unsigned hexadecimal text such as "80040A63".
function expectError(what, action, number, description) {
    try {
        action();
    } catch (error) {
        var raised = (error.number >>> 0).toString(16).toUpperCase();
        if (raised !== number || (description !== undefined && error.description !== description)) {
            fail(what + " raised " + raised + " " + error.description);
        }
        return;
    }
    fail(what + " raised nothing");
}

// What the script host itself would keep to itself.
function run(test) {
    try {
        test();
    } catch (error) {
        fail("raised " + (error.number >>> 0).toString(16).toUpperCase() + " " + error.description + " in " + test);
    }
}

function array(value) {
    return new VBArray(value).toArray();
}

function await(done) {
    for (var i = 0; i < 400 && !done(); i++) relay.Pump(50);
    return done();
}

function finish() {
    if (failures === 0) relay.Print("DONE");
}

var sampleSession = "<ASMessage type=\"SessionInfo\" version=\"1\"><AppID>KQScripts</AppID><SessionID>S1</SessionID>" +
    "<UserUID>17</UserUID><BUIDUnionList>7|9|</BUIDUnionList></ASMessage>";
var sampleProfiles = "<Profiles><Profile name=\"Work\"/><Profile name=\"Home\"/></Profiles>";
