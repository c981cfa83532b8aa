"""Reads a workbook before and after a sheet was added, with a reader that knows nothing of the writer.

Arguments: the workbook before ("-" for none) and after, and the sheet that was added, as JSON. Fails by an assertion.
"""
import io
import json
import struct
import sys

import xlrd
from xlrd import compdoc

KINDS = {"number": xlrd.XL_CELL_NUMBER, "date": xlrd.XL_CELL_DATE, "text": xlrd.XL_CELL_TEXT,
         "boolean": xlrd.XL_CELL_BOOLEAN, "blank": xlrd.XL_CELL_BLANK}


def check_style(book, number, style):
    xf = book.xf_list[number]
    font = book.font_list[xf.font_index]
    plain = book.font_list[0]
    # The reader spells the date of the country as it was long ago.
    format_text = "m/d/yyyy" if xf.format_key == 14 else book.format_map[xf.format_key].format_str
    assert format_text == style["format"], (xf.format_key, style)
    assert font.weight == (700 if style["bold"] else plain.weight)
    assert font.colour_index == (style["color"] + 7 if style["color"] else plain.colour_index)
    assert font.name == plain.name and font.height == plain.height
    assert xf.alignment.hor_align == (1 if style["left"] else 0)
    assert not xf.is_style


def check_new_sheet(book, expected):
    sheet = book.sheet_by_name(expected["name"])
    assert sheet.sheet_selected and sheet.sheet_visible and sheet.visibility == 0
    for column in expected["columns"]:
        for index in range(column["first"], min(column["last"], 255) + 1):
            info = sheet.colinfo_map[index]
            check_style(book, info.xf_index, expected["styles"][column["style"]])
            if column["width"]:
                assert info.width == (column["width"] * 7 + 5) / 7 * 256 // 1
    for row, cells in enumerate(expected["rows"]):
        for column, (kind, value, style) in enumerate(cells):
            if kind == "skipped":
                assert column >= sheet.row_len(row) or sheet.cell_type(row, column) == xlrd.XL_CELL_EMPTY
                continue
            cell = sheet.cell(row, column)
            # xlrd takes a number for a date by its format alone
            is_number = kind in ("number", "date")
            assert cell.ctype == KINDS[kind] or (is_number and cell.ctype in (2, 3)), (row, column, cell, kind)
            assert kind == "blank" or cell.value == value, (row, column, str(cell)[:99])
            check_style(book, cell.xf_index, expected["styles"][style])


def check_others(before, after, new_name):
    names = after.sheet_names()
    names.remove(new_name)
    assert names == before.sheet_names()
    assert before.datemode == after.datemode and before.palette_record == after.palette_record
    for name in names:
        old, new = before.sheet_by_name(name), after.sheet_by_name(name)
        assert not new.sheet_selected and old.visibility == new.visibility
        assert (old.nrows, old.ncols) == (new.nrows, new.ncols)
        for row in range(old.nrows):
            assert old.row_values(row) == new.row_values(row) and old.row_types(row) == new.row_types(row)
        assert old._cell_xf_indexes == new._cell_xf_indexes and old.rich_text_runlist_map == new.rich_text_runlist_map
    # A name's scope follows its sheet.
    place = after.sheet_names().index(new_name)
    scopes = [(name.name, name.scope if name.scope < place else name.scope + 1, name.result and name.result.text)
              for name in before.name_obj_list]
    kept = [(name.name, name.scope, name.result and name.result.text) for name in after.name_obj_list]
    assert [scope[:2] for scope in scopes] == [name[:2] for name in kept[:len(scopes)]], (scopes, kept)
    assert [scope[2] for scope in scopes] == [name[2] for name in kept[:len(scopes)]]


def check_filter(book, expected):
    place = book.sheet_names().index(expected["name"])
    found = [name for name in book.name_obj_list if name.builtin and name.name == "_FilterDatabase" and name.scope == place]
    assert len(found) == expected["filter"]
    for name in found:
        sheet, area = name.result.text.rsplit("!", 1)
        assert sheet in (expected["name"], "'%s'" % expected["name"].replace("'", "''"))
        assert name.hidden and area == "$A$1:$A$%d" % len(expected["rows"])


def check_index_of_texts(path):
    with open(path, "rb") as file:
        data, base, length = compdoc.CompDoc(file.read(), logfile=io.StringIO()).locate_named_stream("Workbook")
    stream, at, index = bytes(data[base:base + length]), 0, None
    starts = {}
    while index is None:
        kind, size = struct.unpack_from("<HH", stream, at)
        if kind == 0xFC or (starts and kind == 0x3C):
            starts[at] = size
            assert size <= 8224
        if kind == 0xFF:
            index = stream[at + 4:at + 4 + size]
        at += 4 + size
    count = struct.unpack_from("<I", stream, min(starts) + 8)[0]
    texts = xlrd.open_workbook(path, on_demand=True, logfile=io.StringIO())._sharedstrings
    step = struct.unpack_from("<H", index)[0]
    assert len(texts) == count and step == max(8, count // 128 + 1)
    assert len(index) == 2 + 8 * -(-count // step)
    for bucket, first in enumerate(range(0, count, step)):
        place, in_record = struct.unpack_from("<IH", index, 2 + 8 * bucket)
        assert 4 <= in_record < 4 + starts[place - in_record]
        length, flags = struct.unpack_from("<HB", stream, place)
        assert length == len(texts[first].encode("utf-16-le")) // 2
        begin = place + 3 + 2 * (flags >> 3 & 1) + 4 * (flags >> 2 & 1)
        end = place - in_record + 4 + starts[place - in_record]
        units = min(length, 4, (end - begin) // (1 + (flags & 1)))
        text = stream[begin:begin + units * (1 + (flags & 1))].decode("utf-16-le" if flags & 1 else "latin-1")
        assert texts[first].startswith(text)


before, after, sheet = sys.argv[1:]
with open(sheet) as file:
    expected = json.load(file)
book = xlrd.open_workbook(after, formatting_info=True, logfile=io.StringIO())
check_new_sheet(book, expected)
check_filter(book, expected)
check_index_of_texts(after)
if before != "-":
    check_others(xlrd.open_workbook(before, formatting_info=True, logfile=io.StringIO()), book, expected["name"])
