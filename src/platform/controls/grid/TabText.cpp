// SPDX-License-Identifier: MIT
#include "platform/controls/grid/TabText.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

QString Quoted(QString cell)
{
    const bool needsQuotes =
        cell.startsWith(u'"') || cell.contains(u'\t') || cell.contains(u'\n') || cell.contains(u'\r');
    return needsQuotes ? u'"' + cell.replace(u'"', u"\"\""_s) + u'"' : cell;
}

/// The cell at a place, which moves behind it. A quote without an end takes all the rest.
QString TakeCell(const QString &text, qsizetype &place)
{
    QString cell;
    if (place < text.size() && text[place] == u'"') {
        for (++place; place < text.size(); ++place) {
            if (text[place] == u'"') {
                if (place + 1 == text.size() || text[place + 1] != u'"')
                    break;
                ++place;
            }
            cell += text[place];
        }
        ++place;
    }
    while (place < text.size() && text[place] != u'\t' && text[place] != u'\n' && text[place] != u'\r')
        cell += text[place++];
    return cell;
}

} // namespace

QString TabTextOf(const QList<QStringList> &rows)
{
    QStringList lines;
    for (const QStringList &row : rows) {
        QStringList cells;
        for (const QString &cell : row)
            cells += Quoted(cell);
        lines += cells.join(u'\t');
    }
    return lines.join(u'\n');
}

QList<QStringList> RowsOfTabText(const QString &text)
{
    QList<QStringList> rows;
    for (qsizetype place = 0; place < text.size();) {
        QStringList row = {TakeCell(text, place)};
        while (place < text.size() && text[place] == u'\t')
            row += TakeCell(text, ++place);
        rows += row;
        if (place < text.size() && text[place] == u'\r')
            ++place;
        if (place < text.size() && text[place] == u'\n')
            ++place;
    }
    return rows;
}

} // namespace Korvane
