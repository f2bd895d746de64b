// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace Korvane {

/// The text between quotes, quotes inside doubled.
QString QuotedStr(const QString &text, QChar quote = u'\'');
/// Reads a quoted text that begins at pos (0-based) and moves pos behind its closing quote, or to
/// the end where that is missing. Empty, and pos stays, if there is no quote at pos.
QString AnsiExtractQuotedStr(const QString &text, qsizetype &pos, QChar quote);
/// A quoted text without its quotes; any other text unchanged.
QString AnsiDequotedStr(const QString &text, QChar quote);

/// Blanks and control characters (all up to U+0020) go; other Unicode blanks stay.
QString Trim(const QString &text);
QString TrimLeft(const QString &text);
QString TrimRight(const QString &text);

/// The name that begins at pos (1-based) and ends before ";" or the end, trimmed; pos moves behind
/// the ";". The walk is over when pos is above the length.
QString ExtractFieldName(const QString &fields, int &pos);
/// All names of such a list.
QStringList SplitFieldNames(const QString &fields);

/// Blind to the case of letters.
bool SameText(QStringView left, QStringView right);
/// Blind to the case of letters: below 0, 0 or above 0.
int CompareText(QStringView left, QStringView right);

/// ASCII letters only.
QString UpperCase(const QString &text);
QString LowerCase(const QString &text);

} // namespace Korvane
