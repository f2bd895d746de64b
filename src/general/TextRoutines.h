// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace Korvane {

/// The text repeated; empty for a count of 0 or less.
QString CopyStr(const QString &text, int count);

/// Fills a text up to so many bytes of code page 936, in which a Chinese character is two,
/// before it or behind it. The pad is added whole for each missing byte, so that one of
/// more than one byte overshoots. A text that is long enough comes back as it is.
QString AddSpaces(const QString &text, int count, const QString &pad, bool atLeft);

/// That many blanks; none for 0 or less.
QString GetSpaces(int count);

/// The pieces of a list such as "a1,b2", with blanks at both ends and one delimiter at each
/// end taken off before. Three things are as they are meant:
/// - empty pieces are dropped;
/// - the delimiter is compared with one character at a time, so that a longer one never
///   matches and the text is one piece;
/// - a last piece of one character is lost: "ab,c" gives "ab" alone.
QStringList Split(const QString &text, const QString &delimiter);

/// The place of the last occurrence of a part, in characters counted from 1 and by exact
/// comparison; -1 if there is none or the part is empty.
int RightPosEx(const QString &text, const QString &part);

/// The text with the last occurrence of a part replaced; unchanged if there is none.
QString ReplaceRight(const QString &text, const QString &old, const QString &replacement);

/// Traditional Chinese as simplified. The text keeps its length.
QString GBCht2Chs(const QString &text);
/// Simplified Chinese as traditional. The text keeps its length.
QString GBChs2Cht(const QString &text);

} // namespace Korvane
