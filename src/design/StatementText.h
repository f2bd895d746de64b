// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// Adds a text between quotes, quotes inside doubled: QuotedStr in place.
void AppendQuoted(QString &statement, QStringView text);

/// Trim without a copy.
QStringView Trimmed(QStringView text);

} // namespace Korvane
