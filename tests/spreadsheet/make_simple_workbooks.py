"""Makes made.xls and made.xlsx: three sheets, the second one active, with formulas across them."""
import openpyxl
import xlwt

book = xlwt.Workbook()
for number, sheet in enumerate([book.add_sheet(name) for name in ["First", "Active", "Last"]]):
    sheet.write(0, 0, number)
    sheet.write(1, 0, xlwt.Formula("First!A1+Last!A1" if number == 1 else "A1"))
book.set_active_sheet(1)
book.save("made.xls")

book = openpyxl.Workbook()
book.active.title = "First"
book.create_sheet("Active")
book.create_sheet("Last")
for number, sheet in enumerate(book):
    sheet["A1"] = number
    sheet["A2"] = "=First!A1+Last!A1" if sheet.title == "Active" else "=A1"
book.active = 1
book.save("made.xlsx")
