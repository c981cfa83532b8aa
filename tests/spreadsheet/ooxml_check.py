"""For each workbook X of a folder, and added-X with the tests' sheet in it: is all as it was but for that sheet?

Arguments: the folder, the sheet's name; --exchanged if the sheet had other content before.
"""
import datetime, re, struct, sys, zipfile
import xml.etree.ElementTree as ET
from pathlib import Path
from openpyxl import load_workbook

NAME, exchanged = sys.argv[2], "--exchanged" in sys.argv
TOUCHED = re.compile(r"\[Content_Types\].xml|xl/workbook.xml|xl/_rels/workbook.xml.rels|xl/styles.xml")
TEXTS = ["Heading", "=1+1", "x < y & \"z\" ]]>", " two\nlines\t", "_x005F_x0041_ _x41_", "cr_x000D_ nul_x0000_", "_xFFFE__xDC80_ ü€😀"]


def raw(path):
    """The entries in their order: each as it's stored, its content, its record without its place, its date."""
    data = path.read_bytes()
    with zipfile.ZipFile(path) as package:
        assert package.testzip() is None
        entries, at = {}, package.start_dir
        ends = sorted(entry.header_offset for entry in package.infolist()) + [at]
        for entry in package.infolist():
            end = ends[ends.index(entry.header_offset) + 1]
            size = 46 + sum(struct.unpack_from("<HHH", data, at + 28))
            place_end = at + size - 8 if data[at + 42:at + 46] == bytes(4 * [255]) else at + size
            entries[entry.filename] = (data[entry.header_offset:end], package.read(entry),
                                       data[at:at + 42] + data[at + 46:place_end], entry.date_time)
            at += size
        return entries, package.comment


def decoded(content):
    return content.decode("utf-16" if content[:2] in (b"\xff\xfe", b"\xfe\xff") else "utf-8")


def unchanged(part, text):
    """The text of a part without what a new sheet adds, and with positions masked."""
    if part == "xl/workbook.xml":
        if exchanged:
            text = re.sub(r"""<(\w+:)?calcPr fullCalcOnLoad="1"/>| fullCalcOnLoad=["'](1|True)["']""", "", text)
        text = re.sub(rf'<(\w+:)?sheet [^<]*name="{NAME}"[^<]*/>', "", text)
        text = re.sub(rf"""<(\w+:)?definedName name="_xlnm._FilterDatabase" localSheetId="\d+" hidden="1">'{NAME}'"""
                      r"!\$A\$1:\$A\$3</(\w+:)?definedName>", "", text)
        return re.sub(r"""((activeTab|firstSheet|localSheetId)=["'])\d+""", r"\1N", re.sub("<definedNames ?(/>|></definedNames>)", "", text))
    return re.sub(r'<(\w+:)?(Override|Relationship) [^<]*"(/xl/)?(worksheets/sheet\d+|styles)\.xml"[^<]*/>', "", text)


def check_styles(old, new):
    old, new = ET.fromstring(old), ET.fromstring(new)
    for item in old:
        same = next(other for other in new if other.tag == item.tag)
        assert [ET.tostring(child) for child in item] == [ET.tostring(child) for child in same][:len(item)], item.tag
        if same.get("count"):
            assert int(same.get("count")) == len(same)


def check_package(old, new):
    (before, comment), (after, new_comment) = raw(old), raw(new)
    assert comment == new_comment
    assert list(after)[:len(before)] == list(before)
    for part in before:
        if after[part] == before[part]:
            continue
        old_text, new_text = decoded(before[part][1]), decoded(after[part][1])
        assert before[part][1][:2] == after[part][1][:2]
        if part == "xl/styles.xml":
            check_styles(before[part][1], after[part][1])
        elif part == "docProps/app.xml":
            assert re.sub("<Application>.*?</Application>", "", old_text) == new_text and exchanged, (old_text, new_text)
        elif TOUCHED.fullmatch(part):
            assert unchanged(part, new_text) == unchanged(part, old_text), (part, new_text)
        else:
            assert old_text != new_text, (part, "is stored in another way", before[part], after[part])
            assert re.sub(r"""(tabSelected\s*=\s*["'])(1|true)""", r"\g<1>0", old_text) == new_text, part
    added = set(after) - set(before)
    assert all(re.fullmatch(r"xl/(worksheets/sheet\d+|styles).xml", part) for part in added), added
    assert all(after[part][3] == (1980, 1, 1, 0, 0, 0) for part in added)


def named(book):
    """What each defined name of a workbook stands for, with the name of its sheet."""
    sheets = book.sheetnames
    return {(name.name, None if name.localSheetId is None else sheets[name.localSheetId]): name.attr_text
            for name in book.defined_names.definedName} | {
        ("Print_Area", sheet.title): sheet.print_area for sheet in book.worksheets if sheet.print_area}


def check_sheet(sheet):
    assert [cell.value for cell in sheet[1]] == TEXTS, [cell.value for cell in sheet[1]]
    number, date, yes, blank, huge = sheet["A3"], sheet["B3"], sheet["C3"], sheet["D3"], sheet["E3"]
    assert (number.value, number.number_format) == (0.1, '"a""<"0.00'), number.number_format
    assert isinstance(date.value, datetime.datetime) and date.number_format in ("m/d/yy h:mm", "m/d/yyyy h:mm"), date.number_format
    assert yes.value is True and yes.data_type == "b" and huge.value == -1e300
    assert blank.value is None and blank.font.b and blank.font.color.indexed == 10
    head, text = sheet["A1"], sheet["B1"]
    assert head.font.b and head.font.color is None or head.font.color.indexed is None or head.font.color.type == "theme"
    assert text.data_type != "f" and text.alignment.horizontal == "left" and text.font.color.indexed == 17
    assert not text.font.b and text.font.name == head.font.name and text.font.sz == head.font.sz
    assert sheet.auto_filter.ref == "A1:A3" and sheet.sheet_view.tabSelected
    assert sheet.column_dimensions["A"].width == 20.7109375 and sheet.column_dimensions["C"].max == 16384


def check(old, new):
    check_package(old, new)
    if old.stem == "strict":
        return  # openpyxl doesn't know these namespaces
    before, after = load_workbook(old), load_workbook(new)
    active = before.sheetnames.index(before.active.title)
    assert after.sheetnames == before.sheetnames[:active] + [NAME] + before.sheetnames[active:], after.sheetnames
    for old_view, new_view in zip(before.views, after.views):
        assert (new_view.firstSheet or 0) == min(old_view.firstSheet or 0, active)
    assert after.active.title == NAME and after.epoch == before.epoch
    assert [sheet.title for sheet in after.worksheets if sheet.sheet_view.tabSelected] == [NAME]
    old_names, new_names = named(before), named(after)
    assert new_names.items() >= old_names.items(), (old_names, new_names)
    check_sheet(after[NAME])
    for sheet in before.worksheets:
        same = after[sheet.title]
        assert same.sheet_state == sheet.sheet_state
        for row in sheet.iter_rows():
            for cell in row:
                assert same[cell.coordinate].value == cell.value
                assert same[cell.coordinate].number_format == cell.number_format


for path in sorted(Path(sys.argv[1]).glob("added-*")):
    try:
        check(path.with_name(path.name.removeprefix("added-")), path)
    except Exception as error:
        raise AssertionError(f"{path.name}: {error!r}") from error
