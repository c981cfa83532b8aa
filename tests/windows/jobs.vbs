' The jobs of a host: each argument is a document to read, report on and recover, or two with "*" between them to
' compare. What comes of it is left in the documents' folder.
Option Explicit
Dim files, at, names
Set files = CreateObject("Scripting.FileSystemObject")
For at = 0 To WScript.Arguments.Count - 1
  names = Split(WScript.Arguments(at), "*")
  If UBound(names) = 0 Then
    ReportOn names(0)
  Else
    CompareTwo names(0), names(1)
  End If
Next

Sub ReportOn(ByVal fname)
  Dim utility, list, message, path, recovered, result, folder
  folder = files.GetParentFolderName(fname)
  Set utility = CreateObject("TrVtrOut.TarvelVtrOut_InOut")
  list = "unchanged"
  result = utility.ReadVTR(fname, list, False)
  If list = "unchanged" Then list = " " & list Else list = vbCrLf & list
  Save folder & "\read.txt", "result: " & result & vbCrLf & "StructureList:" & list & vbCrLf
  Keep folder & "\report-product", utility.ASCII_Output_Product(fname, path, True), path
  Keep folder & "\report-table", utility.ASCII_Output_Table(fname, path, True), path
  Keep folder & "\report-field", utility.ASCII_Output_Field(fname, path, True), path
  Keep folder & "\report-tree", utility.ASCII_Output_Tree(fname, path, True), path
  Keep folder & "\report-lookup", utility.ASCII_Output_Lookup(fname, path, True), path
  Keep folder & "\report-ctrltag", utility.ASCII_Output_CtrlTag(fname, path, True), path
  Keep folder & "\report-lang", utility.ASCII_Output_Lang(fname, path, True), path
  Keep folder & "\report-dsend", utility.ASCII_Output_DSend(fname, path, True), path
  message = "@GIVEN@"
  recovered = folder & "\recovered.vtr"
  If Not utility.RecoverVTR(recovered, message) Then WScript.Quit 1
  Save folder & "\recover.txt", message
End Sub

Sub CompareTwo(ByVal first, ByVal second)
  Dim utility, list, path, folder
  folder = files.GetParentFolderName(first)
  Set utility = CreateObject("TrVtrOut.TarvelVtrOut_InOut")
  If Not utility.ReadVTR(second, list, True) Then WScript.Quit 1
  If Not utility.ReadVTR(first, list, False) Then WScript.Quit 1
  Keep folder & "\compare-product", utility.Compare_Product(first, second, path), path
  Keep folder & "\compare-table", utility.Compare_Table(first, second, path), path
  Keep folder & "\compare-field", utility.Compare_Field(first, second, path), path
  Keep folder & "\compare-tree", utility.Compare_Tree(first, second, path), path
  Keep folder & "\compare-lookup", utility.Compare_Lookup(first, second, path), path
  Keep folder & "\compare-ctrltag", utility.Compare_CtrlTag(first, second, path), path
  Keep folder & "\compare-lang", utility.Compare_Lang(first, second, path), path
  Keep folder & "\compare-dsend", utility.Compare_DSend(first, second, path), path
End Sub

Sub Keep(ByVal name, ByVal result, ByVal path)
  files.MoveFile path, name & ".csv"
  If Not result Then Save name & ".result", result & vbCrLf
End Sub

Sub Save(ByVal path, ByVal text)
  Dim stream
  Set stream = files.CreateTextFile(path, True, False)
  stream.Write text
  stream.Close
End Sub
