// What every test script in JScript stands on, as common.vbs is for the others: check compares a whole
// result, and the last line of a script is finish().
var caseName = "", caseProblem = "", failures = 0;

function endCase() {
  if (caseName === "") return;
  if (caseProblem === "") {
    WScript.Echo("ok " + caseName);
  } else {
    WScript.Echo("FAILED " + caseName + ":" + caseProblem);
    ++failures;
  }
}

function testCase(name) {
  endCase();
  caseName = name;
  caseProblem = "";
}

function check(actual, expected) {
  var shown = actual === null ? "null" : typeof actual + " " + actual;
  if (shown !== expected) caseProblem += " got <" + shown + "> instead of <" + expected + ">";
}

// What of a call's own faults (no such member, wrong type) not every engine makes numbers of its own.
var numberOfCallFault = {"-2147352573": 438, "-2147352571": 13};

// The number of the error that a call raises; 0 when it raises none.
function errorOf(call) {
  try {
    call();
    return 0;
  } catch (error) {
    return numberOfCallFault[error.number] || error.number & 0xFFFF;
  }
}

function finish() {
  endCase();
  WScript.Echo("END");
  WScript.Quit(failures);
}
