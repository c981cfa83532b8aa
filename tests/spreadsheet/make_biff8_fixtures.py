"""Makes .xls files of many kinds in the folder given, by programs of other people.

Those that need a spreadsheet program are left out where it isn't installed.
"""
import os
import shutil
import struct
import subprocess
import sys
import zipfile
import zlib

import openpyxl
import xlwt
from openpyxl.chart import BarChart, Reference
from openpyxl.workbook.defined_name import DefinedName

FREE, END, TABLE = 0xFFFFFFFF, 0xFFFFFFFE, 0xFFFFFFFD


def ole2(streams, shift=9, chained=()):
    """An OLE2 file; streams below 4,096 bytes lie in the mini stream.

    `chained` names two of its streams, "Root Entry" for the mini stream: the chain of one goes on as that of the other.
    """
    size, sectors, table, mini, mini_table = 1 << shift, [], [], b"", []

    def add(content):
        start, count = len(sectors), -(-len(content) // size)
        for index in range(count):
            sectors.append(content[index * size:(index + 1) * size].ljust(size, b"\0"))
            table.append(start + index + 1 if index + 1 < count else END)
        return start if count else END

    entries = []
    for name, content in streams.items():
        if len(content) < 4096:
            start, count = len(mini_table), -(-len(content) // 64)
            mini += content.ljust(64 * count, b"\0")
            mini_table += [start + index + 1 for index in range(count - 1)] + [END] * (count > 0)
        else:
            start = add(content)
        entries.append((name, 2, FREE, start, len(content)))
    packed_mini = struct.pack("<%dI" % len(mini_table), *mini_table)
    mini_start = add(packed_mini + b"\xff" * (-len(packed_mini) % size))
    entries.insert(0, ("Root Entry", 5, 1, add(mini), len(mini)))
    if chained:
        first, second = (next(entry[3] for entry in entries if entry[0] == name) for name in chained)
        while table[first] != END:
            first = table[first]
        table[first] = second
    directory = b""
    for index, (name, kind, child, start, length) in enumerate(entries):
        utf16 = name.encode("utf-16-le") + b"\0\0"
        right = index + 1 if 0 < index < len(entries) - 1 else FREE
        directory += utf16.ljust(64, b"\0") + struct.pack(
            "<HBBIII36xIQ", len(utf16), kind, 1, FREE, right, child, start, length)
    directory_start = add(directory)
    table_start, per_sector = len(sectors), size // 4
    count = -(-(len(table) + 1) // (per_sector - 1))
    table += [TABLE] * count
    add(struct.pack("<%dI" % len(table), *table).ljust(count * size, b"\xff"))
    header = b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes(16) + struct.pack(
        "<HHHHH6xIIIIIIIIII", 0x3E, 3 if shift == 9 else 4, 0xFFFE, shift, 6, 0, count, directory_start, 0, 4096,
        mini_start, -(-len(packed_mini) // size), END, 0, *[table_start])
    header += struct.pack("<108I", *[table_start + i if i < count else FREE for i in range(1, 109)])
    return header.ljust(size, b"\0") + b"".join(sectors)


def several_sheets():
    book = xlwt.Workbook()
    numbers, overview, third = (book.add_sheet(name) for name in ("Numbers", "Übersicht", "Third"))
    for row in range(40):
        numbers.write(row, 0, row + 0.5)
    overview.write(0, 0, xlwt.Formula("SUM(Numbers!A1:A40)"))
    overview.write(1, 0, xlwt.Formula("Third!A1*2"))
    third.write(0, 0, 21)
    third.write(1, 0, xlwt.Formula("Numbers!A2&\"x\""))
    third.write(2, 0, 1.5, xlwt.easyxf("font: bold on, colour red; align: horiz right", num_format_str="0.000"))
    numbers.selected = third.selected = True
    book.set_active_sheet(1)
    return book


def texts_in_all_ways():
    book = xlwt.Workbook()
    sheet = book.add_sheet("Texts")
    font = xlwt.easyfont("bold on, colour blue")
    for row in range(900):
        sheet.write(row, 0, "text %d " % row + "-" * (row % 97))
        sheet.write(row, 1, "ελληνικά %d" % row)
        sheet.write_rich_text(row, 2, ["plain ", ("bold %d" % row, font), " plain"])
    return book


def from_1904():
    book = xlwt.Workbook()
    book.dates_1904 = True
    xlwt.add_palette_colour("own", 0x21)
    book.set_colour_RGB(0x21, 12, 34, 56)
    book.set_colour_RGB(17, 1, 99, 2)
    sheet = book.add_sheet("Dates")
    sheet.write(0, 0, 30000.25, xlwt.easyxf("font: colour own", num_format_str="yyyy-mm-dd"))
    return book


def beyond_seven_megabytes():
    book = xlwt.Workbook()
    sheet = book.add_sheet("Large")
    for row in range(30000):
        sheet.write(row, 0, "a text that no other row has %08d %s" % (row, "x" * 190))
        sheet.write(row, 1, row)
    return book


def everything(path):
    """What another spreadsheet program writes: names, filters, charts, pictures, windows."""
    book = openpyxl.Workbook()
    data = book.active
    data.title = "Data"
    for row in range(1, 21):
        data.append(["name %d" % row, row, row * row])
    data.auto_filter.ref = "A1:C20"
    data.freeze_panes = "B2"
    data.print_area = "A1:C20"
    data.print_title_rows = "1:1"
    chart = BarChart()
    chart.add_data(Reference(data, min_col=2, max_col=3, min_row=1, max_row=20))
    data.add_chart(chart, "E2")
    sums = book.create_sheet("It's a sum")
    sums["A1"] = "=SUM(Data!B1:B20)"
    sums["A2"] = "=SUM(Values)"
    sums["A3"] = "=Local*2"
    sums["A4"] = "=SUM(Data:Last!B1)"
    hidden = book.create_sheet("Hidden")
    hidden.sheet_state = "hidden"
    hidden["A1"] = 7
    last = book.create_sheet("Last")
    last["B1"] = 100
    last["A1"] = "='It''s a sum'!A1+Hidden!A1"
    book.defined_names.append(DefinedName("Values", attr_text="Data!$C$1:$C$20"))
    book.defined_names.append(DefinedName("Local", localSheetId=1, attr_text="Hidden!$A$1"))
    book.active = 3
    book.save(path)


def picture(path):
    """A sheet with a picture that takes several records."""
    rows = b"".join(b"\0" + bytes((row * column) % 251 for column in range(180)) for row in range(60))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    image = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 60, 60, 8, 2, 0, 0, 0)) + chunk(
        b"IDAT", zlib.compress(rows, 0)) + chunk(b"IEND", b"")
    name = "urn:oasis:names:tc:opendocument:xmlns:"
    spaces = " ".join('xmlns:%s="%s%s:1.0"' % (prefix, name, space) for prefix, space in (
        ("office", "office"), ("table", "table"), ("draw", "drawing"), ("svg", "svg-compatible")))
    content = ('<office:document-content %s xmlns:xlink="http://www.w3.org/1999/xlink" office:version="1.2"><office:body>'
               '<office:spreadsheet><table:table table:name="Picture"><table:table-row><table:table-cell><draw:frame '
               'svg:width="3cm" svg:height="3cm"><draw:image xlink:href="picture.png"/></draw:frame></table:table-cell>'
               '</table:table-row></table:table></office:spreadsheet></office:body></office:document-content>' % spaces)
    kind = "application/vnd.oasis.opendocument.spreadsheet"
    entries = (("/", kind), ("content.xml", "text/xml"), ("picture.png", "image/png"))
    manifest = '<manifest:manifest xmlns:manifest="%smanifest:1.0" manifest:version="1.2">%s</manifest:manifest>' % (
        name, "".join('<manifest:file-entry manifest:full-path="%s" manifest:media-type="%s"/>' % entry
                      for entry in entries))
    with zipfile.ZipFile(path, "w") as package:
        for part, body in (("mimetype", kind), ("content.xml", content), ("picture.png", image),
                           ("META-INF/manifest.xml", manifest)):
            package.writestr(part, body)


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


os.chdir(sys.argv[1])
for name, book in (("sheets.xls", several_sheets()), ("texts.xls", texts_in_all_ways()),
                   ("from-1904.xls", from_1904()), ("large.xls", beyond_seven_megabytes())):
    book.save(name)
small = xlwt.Workbook()
small.add_sheet("Small").write(0, 0, 1)
macros = {"_VBA_PROJECT": b"small", "Summary": bytes(range(256)) * 30}
for name, book, shift, chained in (
        ("mini.xls", small, 9, ()), ("sectors-of-4096.xls", several_sheets(), 12, ()),
        ("workbook-then-mini.xls", several_sheets(), 9, ("Workbook", "Root Entry")),
        ("mini-then-workbook.xls", several_sheets(), 9, ("Root Entry", "Workbook"))):
    with open(name, "wb") as file:
        file.write(ole2({"Workbook": book.get_biff_data(), **macros}, shift, chained))
everything("everything.xlsx")
picture("picture.ods")
if shutil.which("soffice"):
    run("soffice", "-env:UserInstallation=file://" + os.path.abspath("profile"), "--headless", "--convert-to", "xls",
        "everything.xlsx", "picture.ods")
if shutil.which("ssconvert"):
    run("ssconvert", "everything.xlsx", "rows-in-blocks.xls")
