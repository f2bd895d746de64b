// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QStringList>

namespace Korvane {

/// The text that spreadsheets exchange by the clipboard: tab characters between cells, a line for
/// each row. A cell that holds one of them, or begins with a quote, stands in double quotes, those
/// within doubled.
QString TabTextOf(const QList<QStringList> &rows);

/// The cells of such a text; lines end at CR LF, LF or CR, and the end of the last one is optional.
QList<QStringList> RowsOfTabText(const QString &text);

} // namespace Korvane
