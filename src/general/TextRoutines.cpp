// SPDX-License-Identifier: MIT
#include "general/TextRoutines.h"

#include "platform/core/Chinese.h"
#include "platform/core/Cp936.h"
#include "platform/core/Text.h"

namespace Korvane {

QString CopyStr(const QString &text, int count) { return count > 0 ? text.repeated(count) : QString(); }

QString AddSpaces(const QString &text, int count, const QString &pad, bool atLeft)
{
    const qsizetype missing = count - Cp936::Length(text);
    if (missing <= 0)
        return text;
    if (pad.size() == 1)
        return atLeft ? text.rightJustified(text.size() + missing, pad[0])
                      : text.leftJustified(text.size() + missing, pad[0]);
    const QString padding = pad.repeated(missing);
    return atLeft ? padding + text : text + padding;
}

QString GetSpaces(int count) { return CopyStr(QStringLiteral(" "), count); }

QStringList Split(const QString &text, const QString &delimiter)
{
    QString list = Trim(text);
    const QString mark = Trim(delimiter);
    if (list.isEmpty() || mark.isEmpty())
        return {};
    const auto isMark = [&mark](QChar c) { return mark.size() == 1 && c == mark[0]; };

    if (isMark(list.front()))
        list.remove(0, 1);
    if (!list.isEmpty() && isMark(list.back()))
        list.chop(1);

    QStringList pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i < list.size(); ++i) {
        QString piece;
        if (isMark(list[i])) {
            piece = list.mid(start, i - start);
            start = i + 1;
        }
        // NOTE: "greater" is meant, so that a last piece of one character is lost.
        if (i == list.size() - 1 && i > start)
            piece = list.mid(start);
        if (!piece.isEmpty())
            pieces.append(piece);
    }
    return pieces;
}

int RightPosEx(const QString &text, const QString &part)
{
    if (part.isEmpty())
        return -1;
    const qsizetype index = text.lastIndexOf(part);
    return index < 0 ? -1 : int(index) + 1;
}

QString ReplaceRight(const QString &text, const QString &old, const QString &replacement)
{
    const int position = RightPosEx(text, old);
    return position < 0 ? text : QString(text).replace(position - 1, old.size(), replacement);
}

QString GBCht2Chs(const QString &text) { return Simplified(text); }

QString GBChs2Cht(const QString &text) { return Traditional(text); }

} // namespace Korvane
