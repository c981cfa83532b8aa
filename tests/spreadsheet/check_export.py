"""Holds a workbook to the texts that its sheets were made of, as one reader sees it.

Arguments: the reader (python, soffice, ssconvert), the workbook, the kind (report, compare), the names of the sheets that
were in it before, with commas, or "=" for a workbook that had sheets of some of these names. Fails by an assertion.
"""
import csv
import datetime
import glob
import io
import os
import re
import shutil
import subprocess
import sys

import openpyxl
import xlrd

SHEETS = ["Product", "Tables", "Fields", "Tree", "Lookups", "Control Tags", "Languages", "Data Send"]
PARTS = ["product", "table", "field", "tree", "lookup", "ctrltag", "lang", "dsend"]
COLORS = {"Original in Primary": 10, "Changed in Secondary": 5, "Deleted from Primary": 3, "Added in Secondary": 53}
MOMENT = "m/d/yy h:mm AM/PM"
COUNTS = ("Count:", "Current:", "Max:", "Counted in VTR:")
NUMBERS = ("Tid", "LookupsID")
EPOCH = datetime.datetime(1899, 12, 30)


def rows_of(path):
    """The rows of a report: the two line ends of a gap row make an empty one of their own."""
    with open(path, "rb") as file:
        text = file.read().decode("cp1252")
    text = text.replace("\r\r\n", "\n\n").replace("\r\n", "\n").replace("\r", "\n")
    return [row for row in csv.reader(io.StringIO(text), strict=False)]


def texts(workbook, kind):
    """The reports of each sheet, made anew without a workbook, and read here."""
    names = ["dense.vtr", "dense-next.vtr"] if workbook.startswith("c-") else ["plant.vtr", "plant-next.vtr"]
    folder = workbook + ".texts"
    shutil.rmtree(folder, ignore_errors=True)
    os.mkdir(folder)
    for name in names:
        shutil.copy(name, folder)
    for part, sheet in zip(PARTS, SHEETS):
        command = ["vtrout", kind, *names[:1 if kind == "report" else 2], "--part", part]
        done = subprocess.run(command, cwd=folder, capture_output=True, text=True)
        yield sheet, rows_of(os.path.join(folder, done.stdout.strip()))


def number_in(text):
    """The number that a spreadsheet takes a plain text for, if the check knows it."""
    return float(text) if re.fullmatch(r"[+-]?\d{1,15}(\.\d+)?", text.strip(" ")) else None


def is_moment(text):
    return re.fullmatch(r"\d+/\d+/\d{4}( \d+:\d\d(:\d\d)? [AP]M)?|\d+-[A-Z][a-z]{2}-\d\d( \d+:\d\d [AP]M)?", text) is not None


class Xls:
    def __init__(self, path):
        self.book = xlrd.open_workbook(path, formatting_info=True)
        self.names = self.book.sheet_names()
        self.active = [name for name in self.names if self.book.sheet_by_name(name).sheet_selected]

    def value(self, name, row, column):
        sheet = self.book.sheet_by_name(name)
        if row >= sheet.nrows or column >= sheet.row_len(row):
            return None
        cell = sheet.cell(row, column)
        if cell.ctype == xlrd.XL_CELL_BOOLEAN:
            return bool(cell.value)
        return None if cell.ctype in (xlrd.XL_CELL_EMPTY, xlrd.XL_CELL_BLANK) else cell.value

    def style(self, name, row, column):
        sheet = self.book.sheet_by_name(name)
        there = row < sheet.nrows and column < sheet.row_len(row) and sheet.cell_type(row, column) != 0
        number = sheet.cell_xf_index(row, column) if there else sheet.colinfo_map[column].xf_index
        xf = self.book.xf_list[number]
        font = self.book.font_list[xf.font_index]
        color = font.colour_index - 7 if 8 <= font.colour_index < 64 else 0
        return self.book.format_map[xf.format_key].format_str, xf.alignment.hor_align == 1, font.weight == 700, color

    def filter(self, name):
        place = self.names.index(name)
        found = [each.result.text for each in self.book.name_obj_list
                 if each.builtin and each.name == "_FilterDatabase" and each.scope == place]
        return found[0].split("!")[1].replace("$", "") if found else None


class Xlsx:
    def __init__(self, path):
        self.book = openpyxl.load_workbook(path)
        self.names = self.book.sheetnames
        self.active = [sheet.title for sheet in self.book if sheet.sheet_view.tabSelected]
        assert self.book.active.title == self.active[0]

    def value(self, name, row, column):
        value = self.book[name].cell(row + 1, column + 1).value
        if isinstance(value, datetime.datetime):
            return (value - EPOCH) / datetime.timedelta(days=1)
        return value

    def style(self, name, row, column):
        sheet = self.book[name]
        cell = sheet.cell(row + 1, column + 1)
        if not cell.has_style:
            letter = openpyxl.utils.get_column_letter(column + 1)
            cell = next(each for each in sheet.column_dimensions.values() if each.min <= column + 1 <= each.max) if letter else cell
        color = cell.font.color.indexed - 7 if cell.font.color is not None and cell.font.color.type == "indexed" else 0
        return cell.number_format, cell.alignment.horizontal == "left", bool(cell.font.b), color

    def filter(self, name):
        return self.book[name].auto_filter.ref


def counts_and_numbers(rows):
    """The places of the first document's counts, and of the numbers by which tables and lookups are known."""
    columns = []
    for row, cells in enumerate(rows):
        counts = [column for column, text in enumerate(cells) if text in COUNTS]
        yield from ((row, column + 1) for column in counts[:1])
        yield from ((row, column) for column in columns if column < len(cells))
        columns = [column for column, text in enumerate(cells) if text in NUMBERS] or columns


def is_fraction(text, row, column, rows):
    """Of a version, which is nothing to calculate with, no more than the whole number need be seen."""
    above = [cells[column] for cells in rows[:row] if column < len(cells)]
    return re.fullmatch(r"\d+\.\d+", text) is not None and "Version:" not in rows[row] and "Version" not in above


def check_styles(book, kind, sheet, rows):
    whole = set(counts_and_numbers(rows))
    assert whole, sheet
    for row, cells in enumerate(rows):
        for column, text in enumerate(cells):
            format_text, left, bold, color = book.style(sheet, row, column)
            where = (sheet, row, column, text, format_text)
            assert left, where
            label = COLORS.get(text, 0) if kind == "compare" and column == 0 else 0
            assert (bold, color) == (label != 0, label), (where, bold, color)
            assert (format_text == MOMENT) == is_moment(text), where
            assert format_text == "0" or (row, column) not in whole, where
            assert format_text == "General" or not is_fraction(text, row, column, rows), where


def check_with_python(path, kind, others):
    book = Xls(path) if path.endswith(".xls") else Xlsx(path)
    before = others.split(",") if others else []
    expected = before[:1] + SHEETS + before[1:]
    if others == "=":
        assert set(book.names) == set(SHEETS) | {"First", "Active", "Last"} and len(book.names) == 11, book.names
        assert len(book.active) == 1, book.active
    else:
        assert book.names == expected, book.names
        assert book.active == ["Product"], book.active
    for sheet, rows in texts(path, kind):
        for row, cells in enumerate(rows):
            for column, text in enumerate(cells):
                value, number = book.value(sheet, row, column), number_in(text)
                if number is not None:
                    assert value == number, (sheet, row, column, text, value)
                elif is_moment(text):
                    assert isinstance(value, float) and value > 30000, (sheet, row, column, text, value)
                elif text.upper() in ("TRUE", "FALSE"):
                    assert value is (text.upper() == "TRUE"), (sheet, row, column, text, value)
                else:
                    assert (value or "") == text, (sheet, row, column, text, value)
        check_styles(book, kind, sheet, rows)
        # The hidden name of a filter that is no more may stay, as it does in other programs.
        filter_area = None if others == "=" and kind == "report" and path.endswith(".xls") else book.filter(sheet)
        assert filter_area == ("A1:A%d" % len(rows) if kind == "compare" else None), filter_area


def shown_by(reader, path):
    """The rows of each new sheet as a spreadsheet program shows them, in the order of the sheets."""
    folder = path + "." + reader
    shutil.rmtree(folder, ignore_errors=True)
    os.mkdir(folder)
    if reader == "soffice":
        filter_text = "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1"
        profile = "-env:UserInstallation=file://" + os.path.abspath("profile")
        command = ["soffice", profile, "--headless", "--convert-to", filter_text, "--outdir", folder, path]
    else:
        command = ["ssconvert", "-S", path, folder + "/%n.csv"]
    subprocess.run(command, check=True, capture_output=True)
    for place_of_sheet, sheet in enumerate(SHEETS, 1):
        name = "*-%s.csv" % sheet if reader == "soffice" else "%d.csv" % place_of_sheet
        with open(glob.glob(os.path.join(folder, name))[0], encoding="utf-8", newline="") as file:
            yield sheet, [row for row in csv.reader(file)]


def check_with_program(reader, path, kind):
    shown = dict(shown_by(reader, path))
    compared = 0
    for sheet, rows in texts(path, kind):
        for row, cells in enumerate(rows):
            for column, text in enumerate(cells):
                seen = shown[sheet][row][column] if row < len(shown[sheet]) and column < len(shown[sheet][row]) else ""
                number = number_in(text)
                if is_moment(text) or number is not None and abs(number) > 1e9:
                    continue
                if number is not None:
                    assert abs(float(seen) - number) <= (0.5 if "." in text else 0), (sheet, row, column, text, seen)
                elif text in ("True", "False"):
                    assert seen.upper() == text.upper() or seen == str(int(text == "True")), (sheet, row, column, text, seen)
                else:
                    assert seen.replace("\r", "") == text.replace("\r", ""), (sheet, row, column, text, seen)
                compared += text != ""
    assert compared > 300, compared


reader_name, workbook_path, kind_of_report, names_before = sys.argv[1:]
if reader_name == "python":
    check_with_python(workbook_path, kind_of_report, names_before)
else:
    check_with_program(reader_name, workbook_path, kind_of_report)
