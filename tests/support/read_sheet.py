# SPDX-License-Identifier: MIT
# Prints a spreadsheet file as programs that others have written read it: a line per row, cells
# joined by "|", texts in quotes, "~" for a cell that is not there. Of a workbook, also how its head
# looks.
import sys


def cell_text(value):
    if value is None:
        return '~'
    if isinstance(value, str):
        return '"' + value.encode('unicode_escape', 'surrogatepass').decode() + '"' \
            if any(ord(c) < 32 for c in value) else '"' + value + '"'
    return repr(int(value)) if float(value).is_integer() and abs(value) < 1e16 else repr(value)


def worksheet_rows(name):
    import xlrd
    with open(name, 'rb') as file:
        sheet = xlrd.open_workbook(file_contents=file.read(), encoding_override='cp936').sheet_by_index(0)
    for row in range(sheet.nrows):
        cells = [sheet.cell(row, column) for column in range(sheet.ncols)]
        yield [None if cell.ctype in (xlrd.XL_CELL_EMPTY, xlrd.XL_CELL_BLANK) else cell.value for cell in cells]


def workbook_rows(name):
    import openpyxl
    from openpyxl.utils import escape, get_column_letter
    sheet = openpyxl.load_workbook(name).active
    head = sheet[1]
    print('sheet', sheet.title, 'frozen at', sheet.freeze_panes,
          'bold' if all(cell.font.b for cell in head) else 'thin', 'widths',
          *[int(sheet.column_dimensions[get_column_letter(cell.column)].width) for cell in head])
    for row in sheet.iter_rows(values_only=True):
        yield [escape.unescape(value) if isinstance(value, str) else value for value in row]


for row in (workbook_rows if sys.argv[1].endswith('x') else worksheet_rows)(sys.argv[1]):
    print('|'.join(cell_text(value) for value in row))
