// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace Korvane {

/// What parts the items of a delimited text beside the delimiter.
enum class TDelimiting {
    BlanksToo,    ///< blanks and control characters outside of quotes
    DelimiterOnly ///< nothing
};

/// The items joined by the delimiter; an item that holds the delimiter, a quote or what else parts
/// items is quoted. A single empty item is a pair of quotes, an empty list an empty text.
QString DelimitedText(const QStringList &list, QChar delimiter, QChar quote = u'"',
                      TDelimiting delimiting = TDelimiting::BlanksToo);
/// Fills the list from a delimited text.
void SetDelimitedText(QStringList &list, const QString &text, QChar delimiter, QChar quote = u'"',
                      TDelimiting delimiting = TDelimiting::BlanksToo);
/// Delimited text with comma and double quote, blanks part items too.
QString CommaText(const QStringList &list);
void SetCommaText(QStringList &list, const QString &text);

/// The lines, each one ended by CR LF.
QString TextOf(const QStringList &list);
/// Fills the list with a text's lines, which end at CR LF, CR or LF. A line end at the very end
/// begins no further line.
void SetTextOf(QStringList &list, const QString &text);

/// A text file's lines. It is UTF-8, with or without a mark at its start; a file that is not valid
/// UTF-8 is read as code page 936. Raises EFileError.
QStringList LoadLines(const QString &fileName);
/// Writes a text file in UTF-8 with CR LF, replacing it as a whole or not at all. Raises EFileError.
void SaveLines(const QString &fileName, const QStringList &list);

/// The place of the first "name=value" line of a name, blind to case; -1 if there is none.
qsizetype IndexOfName(const QStringList &list, const QString &name);
/// The value of that line; empty if there is none.
QString ValueOf(const QStringList &list, const QString &name);

} // namespace Korvane
