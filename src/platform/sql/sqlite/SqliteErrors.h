// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// What a failure of the engine means to a clerk, followed by the engine's own words in
/// brackets; the engine's words alone where they are about the statement and so meant for
/// a developer. code is the extended result code.
QString DescribeSqliteError(int code, const QString &engineText, const QString &fileName);

} // namespace Korvane
