// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

namespace Bench {

/// Waits for a program that is a peer. Ends the benchmarks when it fails.
void FinishProgram(QProcess &process);

/// Writes a table of a Jet file as text, by mdb-export with some options.
void ExportJetTable(const QString &file, const QString &table, const QStringList &options,
                    const QString &target);

} // namespace Bench
