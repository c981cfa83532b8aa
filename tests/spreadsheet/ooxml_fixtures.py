"""Makes workbooks in a folder: ordinary ones by openpyxl, then the same packages as other programs may write them."""
import re, struct, sys, zipfile, zlib
from pathlib import Path
from openpyxl import Workbook
from openpyxl.chart import BarChart, Reference
from openpyxl.comments import Comment
from openpyxl.utils.datetime import CALENDAR_MAC_1904
from openpyxl.workbook.defined_name import DefinedName

folder = Path(sys.argv[1])
MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"


def rich():
    book = Workbook()
    first = book.active
    first.title = "First"
    second, hidden = book.create_sheet("It's 2nd"), book.create_sheet("Hidden")
    chart_sheet = book.create_chartsheet("Chart")
    for row in range(1, 9):
        first.append([row, f"='It''s 2nd'!A{row}*2", f"text {row}"])
        second.append([row * 1.5, f"=SUM(First!A1:A{row})"])
    first["C1"].comment = Comment("a comment", "somebody")
    first["A3"].number_format = "#,##0.000"
    first.freeze_panes = "B2"
    second.print_area = "A1:B5"
    second.auto_filter.ref = "A1:B8"
    hidden.sheet_state = "hidden"
    for place in first, chart_sheet:
        chart = BarChart()
        chart.add_data(Reference(second, min_col=1, min_row=1, max_row=8))
        first.add_chart(chart, "E5") if place is first else chart_sheet.add_chart(chart)
    book.defined_names.append(DefinedName("Everywhere", attr_text="First!$A$1:$A$8"))
    book.defined_names.append(DefinedName("Here", attr_text="First!$C$1", localSheetId=0))
    book.defined_names.append(DefinedName("There", attr_text="Hidden!$A$1", localSheetId=2))
    book.active = 1
    book.views[0].firstSheet = 3
    for sheet in first, second:
        sheet.sheet_view.tabSelected = True
    book.save(folder / "rich.xlsx")


def variant(name, edits, source="rich.xlsx", tail=()):
    """A copy with functions over the texts of parts, and with further entries; a part may vanish or be renamed."""
    with zipfile.ZipFile(folder / source) as old, zipfile.ZipFile(folder / name, "w", zipfile.ZIP_DEFLATED) as new:
        for entry in old.infolist():
            text = old.read(entry)
            if entry.filename in edits:
                text = edits[entry.filename](text.decode())
            if text is not None:
                new.writestr(entry.filename, text)
        for entry in tail:
            new.writestr(*entry)


def prefixed(text):
    return re.sub(r"<(/?)(?=[a-zA-Z])", r"<\1x:", text).replace("xmlns=", "xmlns:x=")


def change(*pairs):
    def changed(text):
        for old, new in pairs:
            assert old in text, (old, text[:2000])
            text = text.replace(old, new)
        return text
    return changed


BOOK, RELS, STYLES, TYPES = "xl/workbook.xml", "xl/_rels/workbook.xml.rels", "xl/styles.xml", "[Content_Types].xml"
PLAIN = {f"xl/worksheets/sheet{number}.xml": lambda text: re.sub(r' s="\d+"', "", text) for number in (1, 2, 3)}
NO_STYLES = PLAIN | {RELS: lambda text: re.sub(r"<Relationship [^>]*styles[^>]*>", "", text),
             TYPES: lambda text: re.sub(r"<Override [^>]*styles[^>]*>", "", text), STYLES: lambda text: None}


def variants():
    variant("prefixed.xlsx", {part: prefixed for part in (BOOK, RELS, STYLES, TYPES, "xl/worksheets/sheet2.xml")})
    def strict(text):
        return text.replace(MAIN, "http://purl.oclc.org/ooxml/spreadsheetml/main").replace(
            RELATIONS, "http://purl.oclc.org/ooxml/officeDocument/relationships")
    variant("strict.xlsx", {part: strict for part in (BOOK, RELS, STYLES, "_rels/.rels", "xl/worksheets/sheet1.xml",
                                                      "xl/worksheets/sheet2.xml", "xl/worksheets/sheet3.xml")})
    variant("relative.xlsx", {RELS: change(("/xl/", "../xl/./")), "_rels/.rels": change(('Target="xl', 'Target="/xl'))})
    variant("no_styles.xlsx", NO_STYLES)
    variant("hollow_styles.xlsx", PLAIN | {STYLES: lambda text: f"<styleSheet xmlns='{MAIN}' ><!-- > --></styleSheet>"})
    variant("quotes.xlsx", {BOOK: lambda text: "\ufeff" + text.replace("'", "&apos;").replace('"', "'").replace("'1'/>", "'1' /><!-- <sheets> -->"),
                            "xl/worksheets/sheet1.xml": change(
                                ('tabSelected="1"', "tabSelected\n=\n'true'"),
                                ("<sheetViews>", "<?x <sheetData/>?><!-- <sheetData> --><sheetViews>"))})
    variant("bare.xlsx", {BOOK: lambda text: re.sub(r"<(definedNames|bookViews)>.*?</\1>", "", text)})
    palette = "<colors><indexedColors>" + 64 * '<rgbColor rgb="00123456"/>' + "</indexedColors></colors>"
    variant("palette.xlsx", {STYLES: lambda text: re.sub("<colors>.*</colors>", palette, text)})
    redefined = '<numFmt numFmtId="22" formatCode="dd-MM-yyyy h:mm a"/><numFmt numFmtId="0" formatCode="GENERAL"/>'
    variant("redefined.xlsx", {STYLES: lambda text: re.sub("(<numFmts)[^>]*>", rf"\1>{redefined}", text)})
    def utf16(text):
        return re.sub('encoding="UTF-8"|encoding=.UTF-8.', 'encoding="UTF-16"', text, flags=re.I).encode("utf-16")
    variant("utf16.xlsx", dict.fromkeys((BOOK, RELS, STYLES, TYPES, "_rels/.rels", "xl/worksheets/sheet1.xml"), utf16))
    streamed()
    wide()
    noise = bytes((index * 2654435761 >> 7) & 255 for index in range(1 << 16)) * 128
    variant("large.xlsx", {}, tail=[("xl/media/noise.png", noise, zipfile.ZIP_STORED)])


def streamed():
    """A copy as a program may stream it: lengths behind the contents, no dates, names told a second time, comments."""
    class Stream:
        def __init__(self, path):
            self.file = open(path, "wb")
        def write(self, data):
            return self.file.write(data)
        def flush(self):
            self.file.flush()
    with zipfile.ZipFile(folder / "rich.xlsx") as old, zipfile.ZipFile(Stream(folder / "streamed.xlsx"), "w") as new:
        for number, entry in enumerate(old.infolist()):
            name = entry.filename.encode()
            told = zipfile.ZipInfo(entry.filename, (1980, number % 2, 0, 0, 0, 0))
            told.extra = struct.pack("<HHBI", 0x7075, 5 + len(name), 1, zlib.crc32(name)) + name
            told.extra += struct.pack("<HHBI", 0x5455, 5, 1, 0)
            told.compress_type = zipfile.ZIP_DEFLATED if number % 3 else zipfile.ZIP_STORED
            told.external_attr, told.comment = 0o640 << 16, b"PK\5\6 %d" % number
            with new.open(told, "w", force_zip64=number % 2 == 0) as part:
                part.write(old.read(entry))
        new.comment = b"streamed"


def wide():
    """A copy whose directory has numbers of 64 bits, as for a huge file."""
    data = (folder / "rich.xlsx").read_bytes()
    with zipfile.ZipFile(folder / "rich.xlsx") as package:
        start, count = package.start_dir, len(package.infolist())
    records, at = b"", start
    for _ in range(count):
        size = 46 + struct.unpack_from("<H", data, at + 28)[0]
        place, = struct.unpack_from("<I", data, at + 42)
        records += data[at:at + 30] + struct.pack("<H", 12) + data[at + 32:at + 42] + bytes(4 * [255])
        records += data[at + 46:at + size] + struct.pack("<HHQ", 1, 8, place)
        at += size
    end = struct.pack("<4sQHHIIQQQQ", b"PK\6\6", 44, 45, 45, 0, 0, count, count, len(records), start)
    locator = struct.pack("<4sIQI", b"PK\6\7", 0, start + len(records), 1)
    (folder / "wide.xlsx").write_bytes(data[:start] + records + end + locator + struct.pack(
        "<4sHHHHIIH", b"PK\5\6", 0, 0, 0xFFFF, 0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0))


def refused():
    def spoiled(name, edits, **options):
        variant("refused_" + name, edits, **options)
    spoiled("locked", {BOOK: change(("<workbookProtection/>", '<workbookProtection lockStructure="true"/>'))})
    spoiled("binary", {TYPES: change(("vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml",
                                      "vnd.ms-excel.sheet.binary.macroEnabled.main"))})
    spoiled("document", {TYPES: change(("spreadsheetml.sheet.main", "wordprocessingml.document.main"))})
    spoiled("signed", {}, tail=[("_xmlsignatures/origin.sigs", b"")])
    spoiled("shared", {RELS: change(("</Relationships>", f'<Relationship Id="s" Type="{RELATIONS}/revisionHeaders" '
                                     'Target="revisions/revisionHeaders.xml"/></Relationships>'))})
    spoiled("twice", {}, tail=[("XL/WORKBOOK.XML", b"")])
    spoiled("broken_xml", {BOOK: change(("</sheets>", ""))})
    spoiled("doctype", {BOOK: lambda text: "<!DOCTYPE workbook [<!ENTITY a 'b'>]>" + text})
    spoiled("utf16", {BOOK: lambda text: text.encode("utf-16-le")})
    spoiled("half_utf16", {BOOK: lambda text: text.encode("utf-16") + b"\0"})
    spoiled("utf16_as_utf8", {BOOK: lambda text: ('<?xml version="1.0" encoding="UTF-8"?>' + text).encode("utf-16")})
    markup = 'xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006"'
    def alternatives(choice, fallback):
        return (f'<mc:AlternateContent {markup}><mc:Choice Requires="x">{choice}</mc:Choice>'
                f'<mc:Fallback>{fallback}</mc:Fallback></mc:AlternateContent>')
    spoiled("alternative_fonts", {STYLES: change(("</fonts>", alternatives("<font/><font/>", "<font/>") + "</fonts>"))})
    spoiled("alternative_list", {STYLES: lambda text: re.sub("(<fonts.*</fonts>)", alternatives(r"\1", r"\1"), text)})
    spoiled("alternative_sheets", {BOOK: change(("</sheets>", alternatives("", "") + "</sheets>"))})
    spoiled("latin", {BOOK: lambda text: '<?xml version="1.0" encoding="ISO-8859-1"?>' + text})
    spoiled("deep", {BOOK: lambda text: text.replace("<sheets>", "<a>" * 9999 + "</a>" * 9999 + "<sheets>")})
    spoiled("bomb", {BOOK: lambda text: text.replace("<sheets>", " " * (40 << 20) + "<sheets>")})
    spoiled("no_workbook", {BOOK: lambda text: None})
    spoiled("no_sheets", {BOOK: lambda text: re.sub("<sheets>.*</sheets>", "", text)})
    with zipfile.ZipFile(folder / "rich.xlsx") as old, zipfile.ZipFile(folder / "refused_backslashes", "w") as new:
        for entry in old.infolist():
            new.writestr(entry.filename.replace("/", "\\"), old.read(entry))
    with zipfile.ZipFile(folder / "refused_plain_zip", "w") as plain:
        plain.writestr("a.txt", "a")
    whole = (folder / "rich.xlsx").read_bytes()
    (folder / "refused_cut").write_bytes(whole[:-100])
    (folder / "refused_password").write_bytes(re.sub(b"(PK\x01\x02....)\0", b"\\1\1", whole, flags=re.S))
    data = bytearray(whole)
    with zipfile.ZipFile(folder / "rich.xlsx") as package:
        at = package.getinfo(BOOK).header_offset + 30 + len(BOOK)
    data[at + 60:at + 64] = b"\xff" * 4
    (folder / "refused_damaged").write_bytes(data)
    data = bytearray(whole)
    with zipfile.ZipFile(folder / "rich.xlsx") as package:
        first, at = package.infolist()[0], package.start_dir
    at += 46 + sum(struct.unpack_from("<HHH", data, at + 28))
    struct.pack_into("<I", data, at + 42, first.header_offset)
    (folder / "refused_overlapping").write_bytes(data)


rich()
book = Workbook()
book.epoch = CALENDAR_MAC_1904
book.active.append([1, 2])
book.save(folder / "epoch1904.xlsx")
variants()
refused()
