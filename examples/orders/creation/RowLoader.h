// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {
class TDBDFile;
class TDBSession;
} // namespace Korvane

/// Loads the CSV file of each table of the design that there is one for in a folder, within
/// one transaction. Pictures are files that the CSV names. Returns how many rows were loaded.
int LoadRows(Korvane::TDBDFile &design, Korvane::TDBSession &session, const QString &folder);
