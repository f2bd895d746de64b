// SPDX-License-Identifier: MIT
#pragma once

#include "CommandLine.h"
#include "general/Types.h"

namespace Korvane {

class TDBDFile;
class TDBSession;

// The options that several commands share, and what they mean.

/// "--design".
QList<TOption> DesignOptions();
/// "--dialect".
QList<TOption> DialectOptions();
/// "--dialect" and all that names a database and its user.
QList<TOption> SessionOptions();

/// The design file's name: the option's value or, without it, the next argument.
QString DesignFileName(TCommandLine &line);
/// Opens a design file.
void OpenDesign(TDBDFile &design, const QString &fileName);
/// dbtAccess unless the option says otherwise. Raises EUsageError for an unknown name.
TDBType Dialect(const TCommandLine &line);
/// Aims a session at the database that the options name, without connecting. Raises
/// EUsageError when one is missing, and EFileError for an unreadable password file.
void AimSession(TDBSession &session, const TCommandLine &line);

} // namespace Korvane
