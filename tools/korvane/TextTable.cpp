// SPDX-License-Identifier: MIT
#include "TextTable.h"

#include "platform/core/Exceptions.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace Korvane {

namespace {

constexpr auto ColumnBar = u" | ";
constexpr auto RuleBar = u"-+-";

bool IsPrintableAscii(char32_t c) { return c >= 0x20 && c < 0x7F; }

int WidthOf(char32_t c)
{
    constexpr char32_t softHyphen = 0xAD;
    if (IsPrintableAscii(c) || c == softHyphen)
        return 1;
    switch (u_charType(UChar32(c))) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
        return 0;
    default:
        break;
    }
    // The vowels and finals of a Korean syllable are drawn into the block of its initial.
    if (c >= 0x1160 && c <= 0x11FF)
        return 0;
    const int width = u_getIntPropertyValue(UChar32(c), UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

bool ChangesDirection(char32_t c) { return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069); }

bool NeedsEscape(char32_t c)
{
    if (IsPrintableAscii(c))
        return false;
    switch (u_charType(UChar32(c))) {
    case U_CONTROL_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
    case U_SURROGATE:
        return true;
    default:
        return ChangesDirection(c);
    }
}

QString EscapeOf(char32_t c)
{
    switch (c) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return c < 0x100 ? QStringLiteral("\\x%1").arg(uint(c), 2, 16, QLatin1Char('0'))
                         : QStringLiteral("\\u%1").arg(uint(c), 4, 16, QLatin1Char('0'));
    }
}

/// Calls with each character of a text; half of a pair that stands alone comes as it is.
template <class Visit> void ForEachCharacter(const QString &text, Visit visit)
{
    const char16_t *const units = reinterpret_cast<const char16_t *>(text.constData());
    for (qsizetype i = 0; i < text.size();) {
        char32_t c = 0;
        U16_NEXT(units, i, text.size(), c);
        visit(c);
    }
}

} // namespace

void TTextTable::AddColumn(const QString &header, Alignment alignment)
{
    const Cell cell = MakeCell(header.isNull() ? QStringLiteral("") : header);
    FColumns.append({cell, alignment, cell.Width});
}

void TTextTable::AddRow(const QStringList &cells)
{
    if (cells.size() != FColumns.size())
        throw Exception(
            QStringLiteral("表格有 %1 列，而该行有 %2 个值").arg(FColumns.size()).arg(cells.size()));
    QList<Cell> row;
    row.reserve(cells.size());
    for (qsizetype i = 0; i < cells.size(); ++i) {
        row.append(MakeCell(cells[i]));
        FColumns[i].Width = std::max(FColumns[i].Width, row[i].Width);
    }
    FRows.append(std::move(row));
}

QString TTextTable::ToText() const
{
    QString text;
    if (FColumns.isEmpty())
        return text;
    for (qsizetype i = 0; i < FColumns.size(); ++i)
        AppendCell(text, FColumns[i].Header, i);
    for (qsizetype i = 0; i < FColumns.size(); ++i) {
        if (i > 0)
            text += RuleBar;
        text += QString(FColumns[i].Width, QLatin1Char('-'));
    }
    text += QLatin1Char('\n');
    for (const QList<Cell> &row : FRows)
        for (qsizetype i = 0; i < row.size(); ++i)
            AppendCell(text, row[i], i);
    return text;
}

void TTextTable::AppendCell(QString &line, const Cell &cell, qsizetype column) const
{
    const bool last = column == FColumns.size() - 1;
    const QString padding(FColumns[column].Width - cell.Width, QLatin1Char(' '));
    if (column > 0)
        line += ColumnBar;
    if (FColumns[column].Align == Alignment::Right)
        line += padding + cell.Text;
    else
        line += last ? cell.Text : cell.Text + padding;
    if (last)
        line += QLatin1Char('\n');
}

TTextTable::Cell TTextTable::MakeCell(const QString &text)
{
    const QString shown = text.isNull() ? QStringLiteral("NULL") : Escaped(text);
    return {shown, DisplayWidth(shown)};
}

int TTextTable::DisplayWidth(const QString &text)
{
    int width = 0;
    ForEachCharacter(text, [&width](char32_t c) { width += WidthOf(c); });
    return width;
}

QString TTextTable::Escaped(const QString &text)
{
    QString shown;
    shown.reserve(text.size());
    ForEachCharacter(text, [&shown](char32_t c) {
        if (NeedsEscape(c))
            shown += EscapeOf(c);
        else
            shown += QChar::fromUcs4(c);
    });
    return shown;
}

} // namespace Korvane
