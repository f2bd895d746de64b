// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

namespace Korvane {

/// Index behind the quoted piece that opens at a position and ends with the closing sign; a
/// doubled closing sign stands for itself. -1 for a piece that does not end.
inline qsizetype QuotedEnd(QStringView text, qsizetype open, QChar closing)
{
    for (qsizetype at = open + 1;; at += 2) {
        at = text.indexOf(closing, at);
        if (at < 0)
            return -1;
        if (at + 1 == text.size() || text[at + 1] != closing)
            return at + 1;
    }
}

/// Index behind the comment that begins at a position: "--" up to the end of the line, whose
/// signs do not belong to it, or what stands between the signs of a block. The position itself
/// where no comment begins, -1 for a block that does not end.
inline qsizetype CommentEnd(QStringView text, qsizetype at)
{
    const QStringView sign = text.mid(at, 2);
    if (sign == u"--") {
        for (at += 2; at < text.size() && text[at] != u'\n' && text[at] != u'\r';)
            ++at;
    } else if (sign == u"/*") {
        const qsizetype end = text.indexOf(u"*/", at + 2);
        return end < 0 ? -1 : end + 2;
    }
    return at;
}

} // namespace Korvane
