// The jobs of a host that passes no variables by reference: each argument is a document to read, report on and recover,
// or two with "*" between them to compare. What comes of it is left in the documents' folder.
var files = new ActiveXObject("Scripting.FileSystemObject");
// What a part is called in the names of operations, and in that of the report on its comparison.
var parts = {
  Product: "Product", Table: "Tables", Field: "Fields", Tree: "Tree",
  Lookup: "Lookups", CtrlTag: "ControlTag", Lang: "Language", DSend: "DSend"
};

for (var at = 0; at < WScript.Arguments.length; ++at) {
  var names = WScript.Arguments(at).split("*");
  if (names.length === 1) {
    reportOn(names[0]);
  } else {
    compareTwo(names[0], names[1]);
  }
}

function reportOn(fname) {
  var folder = files.GetParentFolderName(fname);
  var utility = new ActiveXObject("TrVtrOut.TarvelVtrOut_InOut");
  save(folder + "\\read.txt", "result: " + told(utility.ReadVTR(fname, "", false)) + "\r\n");
  for (var part in parts) {
    keep("report", fname, part, part, utility["ASCII_Output_" + part](fname, "", true));
  }
  if (!utility.RecoverVTR(folder + "\\recovered.vtr", "")) WScript.Quit(1);
  save(folder + "\\recover.txt", "@GIVEN@");
}

function compareTwo(first, second) {
  var utility = new ActiveXObject("TrVtrOut.TarvelVtrOut_InOut");
  if (!utility.ReadVTR(second, "", true) || !utility.ReadVTR(first, "", false)) WScript.Quit(1);
  for (var part in parts) {
    keep("compare", first, part, parts[part] + "_Compared", utility["Compare_" + part](first, second, ""));
  }
}

// The path doesn't come back, but a temporary name is known beforehand.
function keep(kind, fname, part, named, result) {
  var folder = files.GetParentFolderName(fname) + "\\";
  var base = files.GetFileName(fname).split(".")[0];
  var name = folder + kind + "-" + part.toLowerCase();
  files.MoveFile(folder + "~tmp" + base + "_" + named + ".CSV", name + ".csv");
  if (!result) save(name + ".result", told(result) + "\r\n");
}

function told(result) {
  return result ? "True" : "False";
}

function save(path, text) {
  var stream = files.CreateTextFile(path, true, false);
  stream.Write(text);
  stream.Close();
}
