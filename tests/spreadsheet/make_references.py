"""Puts a sheet "Theirs" into the workbook t.xlsx, with formulas and names that lead to its sheet "Tables".

Writes openpyxl.xlsx, and where LibreOffice is installed soffice.xlsx and soffice.xls as that program saves it.
"""
import os
import shutil
import subprocess

import openpyxl
from openpyxl.workbook.defined_name import DefinedName

book = openpyxl.load_workbook("t.xlsx")
sheet = book.create_sheet("Theirs")
book.defined_names.append(DefinedName("Block", attr_text="Tables!$A$1:$L$60"))
book.defined_names.append(DefinedName("OfThem", localSheetId=book.sheetnames.index("Theirs"), attr_text="Tables!$C$1"))
for row in range(1, 61):
    for column, letter in enumerate("ABCDEFGHIJKL", 1):
        sheet.cell(row, column, '=Tables!%s%d&""' % (letter, row))
sheet["N1"] = "=COUNTA(Block)"
sheet["N2"] = "=OfThem"
sheet["N3"] = "=SUM(N1,1)"
book.save("openpyxl.xlsx")
if shutil.which("soffice"):
    profile = "-env:UserInstallation=file://" + os.path.abspath("profile")
    for kind in "xls", "xlsx:Calc MS Excel 2007 XML":
        subprocess.run(["soffice", profile, "--headless", "--convert-to", kind, "--outdir", "out", "openpyxl.xlsx"],
                       check=True, capture_output=True)
        os.rename("out/openpyxl." + kind[:4].rstrip(":"), "soffice." + kind[:4].rstrip(":"))
