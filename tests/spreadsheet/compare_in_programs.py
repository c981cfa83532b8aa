"""Compares what two spreadsheet programs see in a workbook before and after a sheet was added.

Arguments: the workbook before and after, the name of the new sheet; --no-filter if that has none.
"""
import csv
import glob
import os
import subprocess
import sys
import tempfile

import openpyxl


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def as_xlsx(path):
    folder = os.path.abspath(os.path.splitext(path)[0] + ".out")
    run("soffice", "-env:UserInstallation=file://" + os.path.abspath("profile"), "--headless", "--convert-to", "xlsx",
        "--outdir", folder, path)
    return glob.glob(folder + "/*.xlsx")[0]


def sheets_of(path):
    """Of each sheet its formulas, values, filter, freeze and state; of the workbook its names."""
    formulas, values = openpyxl.load_workbook(path), openpyxl.load_workbook(path, data_only=True)
    sheets = {}
    for sheet in formulas:
        cells = [[(cell.value, values[sheet.title][cell.coordinate].value) for cell in row] for row in sheet.iter_rows()]
        sheets[sheet.title] = (cells, sheet.auto_filter.ref, sheet.freeze_panes, sheet.sheet_state, sheet.print_area,
                               len(sheet._charts))
    names = sorted(((name.name, name.attr_text, formulas.sheetnames[name.localSheetId]
                    if name.localSheetId is not None else None) for name in formulas.defined_names.definedName), key=str)
    return sheets, names, formulas.active.title


def tables_of(path):
    """Of each sheet, by its number, what is shown."""
    tables = []
    with tempfile.TemporaryDirectory() as folder:
        run("ssconvert", "--recalc", "-S", path, folder + "/%n.csv")
        while os.path.exists(folder + "/%d.csv" % len(tables)):
            with open(folder + "/%d.csv" % len(tables), newline="") as file:
                tables.append(list(csv.reader(file)))
    return tables


before, after, new, *options = sys.argv[1:]
# LibreOffice takes a file with sectors of 4,096 bytes for a text.
if before != "sectors-of-4096.xls":
    old_sheets, old_names, _ = sheets_of(as_xlsx(before))
    new_sheets, new_names, active = sheets_of(as_xlsx(after))
    added = new_sheets.pop(new)
    assert active == new and added[1] == (None if options else "A1:A%d" % len(added[0])), (active, added[1])
    assert new_sheets == old_sheets
    assert [name for name in new_names if name[2] != new] == old_names, (old_names, new_names)

old_tables, new_tables = tables_of(before), tables_of(after)
place = next(index for index in range(len(new_tables)) if index >= len(old_tables) or new_tables[index] != old_tables[index])
assert new_tables.pop(place)[1][:3] == ["1.5", "7", "-3"] and new_tables == old_tables
