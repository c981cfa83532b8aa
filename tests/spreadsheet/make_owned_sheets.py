"""Puts what somebody may own into copies of good.xls and good.xlsx, in their sheet "One": WHAT=HOW.xls and .xlsx.

WHAT is in the message that refuses to exchange the sheet; "nothing" stands for one that isn't refused. Those that need a
spreadsheet program are left out where it isn't installed.
"""
import glob
import os
import shutil
import subprocess
import sys

import openpyxl
import xlwt
from openpyxl.chart import BarChart, Reference
from openpyxl.comments import Comment
from openpyxl.formatting.rule import CellIsRule
from openpyxl.worksheet.datavalidation import DataValidation
from openpyxl.worksheet.pagebreak import Break
from openpyxl.worksheet.table import Table


def chart(sheet):
    bars = BarChart()
    bars.add_data(Reference(sheet, min_col=3, min_row=1, max_row=3))
    sheet.add_chart(bars, "E2")


def table(sheet):
    for column, head in enumerate("abc", 1):
        sheet.cell(10, column, head)
    sheet.add_table(Table(displayName="Theirs", ref="A10:C12"))


def check(sheet):
    rule = DataValidation(type="whole", operator="greaterThan", formula1="3")
    rule.add("C3")
    sheet.add_data_validation(rule)


def rename(sheet):
    sheet["B1"] = "Mine"


def printed(sheet):
    sheet.page_setup.orientation = "landscape"
    sheet.oddHeader.center.text = "Head"
    sheet.freeze_panes = "B4"
    sheet.sheet_properties.tabColor = "00FF00"


def foreign(sheet):
    sheet["A1"], sheet["B1"] = "second of all", "Ταρβελ"


OWNED = {
    "nothing=at all": lambda sheet: None,
    "nothing=page and view": printed,
    "made by the same program=other text": rename,
    "made by the same program=other columns": foreign,
    "formulas=one": lambda sheet: sheet.cell(50, 9, "=1+1"),
    "formulas=in the first row": lambda sheet: sheet.cell(1, 9, "=C1"),
    "merged cells=two": lambda sheet: sheet.merge_cells("C7:D8"),
    "conditional formats=one": lambda sheet: sheet.conditional_formatting.add(
        "C1:C9", CellIsRule(operator="lessThan", formula=["1"], font=openpyxl.styles.Font(bold=True))),
    "checks of what is typed in=one": check,
    "page breaks=one": lambda sheet: sheet.row_breaks.append(Break(id=5)),
    "a protection=on": lambda sheet: sheet.protection.enable(),
    "=comment": lambda sheet: setattr(sheet["B3"], "comment", Comment("theirs", "somebody")),
    "=chart": chart,
    "=link": lambda sheet: setattr(sheet["C1"], "hyperlink", "http://example.com/"),
}

os.chdir(sys.argv[1])
for name, put in OWNED.items():
    book = openpyxl.load_workbook("good.xlsx")
    put(book["One"])
    book.save(name + ".xlsx")
book = openpyxl.load_workbook("good.xlsx")
table(book["One"])
book.save("tables=one.xlsx.keep")
if shutil.which("soffice"):
    profile = "-env:UserInstallation=file://" + os.path.abspath("profile")
    for kind in "xls", "xlsx:Calc MS Excel 2007 XML":
        subprocess.run(["soffice", profile, "--headless", "--convert-to", kind, "--outdir", "out", *glob.glob("*=*.xlsx")],
                       check=True, capture_output=True)
    for path in glob.glob("out/*"):
        name = os.path.basename(path)
        os.rename(path, name.replace(".xlsx", " again.xlsx"))
os.rename("tables=one.xlsx.keep", "tables=one.xlsx")
sheet = xlwt.Workbook()
page = sheet.add_sheet("One")
page.write(0, 1, "second of all")
page.write(5, 5, xlwt.Formula("1+1"))
sheet.save("formulas=xlwt.xls")
