' cscript //nologo report.vbs DOCUMENT
' Says what a document holds, and writes a report on its tables beside it.
Option Explicit
Dim utility, document, account, report, count, current, max, size
If WScript.Arguments.Count <> 1 Then
  WScript.Echo "usage: cscript //nologo report.vbs DOCUMENT"
  WScript.Quit 2
End If
document = WScript.Arguments(0)
Set utility = CreateObject("TrVtrOut.TarvelVtrOut_InOut")
If Not utility.ReadVTR(document, account, False) Then
  WScript.Echo "The document is damaged." & vbCrLf & account
End If
If utility.GetTableInfo(count, current, max, size) = "OK" Then
  WScript.Echo count & " tables; the last one that is used is number " & size
Else
  WScript.Echo "The list of tables doesn't hold together."
End If
If utility.ASCII_Output_Table(document, report, False) Then
  WScript.Echo "Report: " & report
Else
  WScript.Echo "No report could be written."
  WScript.Quit 1
End If
