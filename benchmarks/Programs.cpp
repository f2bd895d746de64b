// SPDX-License-Identifier: MIT
#include "Programs.h"

namespace Bench {

void FinishProgram(QProcess &process)
{
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        qFatal("%s failed: %s", qUtf8Printable(process.program()),
               process.error() == QProcess::FailedToStart ? qUtf8Printable(process.errorString())
                                                          : process.readAllStandardError().constData());
}

void ExportJetTable(const QString &file, const QString &table, const QStringList &options,
                    const QString &target)
{
    QProcess exporter;
    exporter.setStandardOutputFile(target);
    exporter.start(QStringLiteral("mdb-export"), options + QStringList{file, table});
    FinishProgram(exporter);
}

} // namespace Bench
