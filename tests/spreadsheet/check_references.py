"""Holds what other sheets show of an exchanged sheet "Tables" to the text that this is made of.

Arguments: the workbook before and after, the text. Others' sheets must be as they were.
"""
import csv
import glob
import io
import os
import shutil
import subprocess
import sys

import openpyxl
import xlrd

before, after, text = sys.argv[1:]


def others(path):
    """All that a reader knows of the sheets that nobody exchanged, and of the names."""
    if path.endswith(".xls"):
        book = xlrd.open_workbook(path, formatting_info=True, logfile=io.StringIO())
        names = [(name.name, name.scope, name.result and name.result.text) for name in book.name_obj_list
                 if "FilterDatabase" not in name.name]
        return [(sheet.name, sheet.visibility, sheet.sheet_selected, [sheet.row_values(row) for row in range(sheet.nrows)]
                 if sheet.name != "Tables" else None) for sheet in book.sheets()], names
    book = openpyxl.load_workbook(path)
    names = [(name.name, name.localSheetId, name.attr_text) for name in book.defined_names.definedName]
    return [(sheet.title, sheet.sheet_state, sheet.sheet_view.tabSelected,
             [[cell.value for cell in row] for row in sheet] if sheet.title != "Tables" else None)
            for sheet in book], names, book.active.title


def shown(program, path):
    """The rows of "Theirs" as a program shows them, worked out anew by itself."""
    folder = path + "." + program
    os.mkdir(folder)
    if program == "soffice":
        kind = "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1"
        command = ["soffice", "-env:UserInstallation=file://" + os.path.abspath("profile"), "--headless", "--convert-to",
                   kind, "--outdir", folder, path]
        name = "*-Theirs.csv"
    else:
        command = ["ssconvert", "--recalc", "-S", path, folder + "/%s.csv"]
        name = "Theirs.csv"
    subprocess.run(command, check=True, capture_output=True)
    with open(glob.glob(os.path.join(folder, name))[0], encoding="utf-8", newline="") as file:
        return list(csv.reader(file))


assert others(before) == others(after), (others(before), others(after))
with open(text, "rb") as file:
    rows = list(csv.reader(io.StringIO(file.read().decode("cp1252").replace("\r\r\n", "\n\n").replace("\r", ""))))
for program in "soffice", "ssconvert":
    if not shutil.which(program):
        continue
    seen, compared = shown(program, after), 0
    for row, cells in enumerate(rows):
        for column, cell in enumerate(cells[:12]):
            value = seen[row][column]
            if "/" in cell or cell.upper() in ("TRUE", "FALSE"):
                continue
            try:
                assert float(value) == float(cell), (program, row, column, cell, value)
            except ValueError:
                assert value == cell, (program, row, column, cell, value)
            compared += cell != ""
    assert compared > 30, compared
    count = sum(cell != "" for cells in rows for cell in cells[:12])
    assert seen[0][13] == str(count) and seen[2][13] == str(count + 1), (program, seen[0][13], count)
    assert rows[0][2] == seen[1][13], (program, seen[1][13])
