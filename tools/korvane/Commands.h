// SPDX-License-Identifier: MIT
#pragma once

#include "CommandLine.h"
#include "ToolStreams.h"

namespace Korvane {

/// The exit status of the tool.
enum TToolStatus {
    tsDone = 0,
    tsFailed = 1, ///< failed, refused by the user, or found what it looks for
    tsUsage = 2   ///< called in a wrong way; nothing was done
};

// The commands. Each raises EUsageError before it has done anything, and any other Exception
// when it fails.
int RunCreate(TCommandLine &line, TToolStreams &streams);
int RunUpgrade(TCommandLine &line, TToolStreams &streams);
int RunScript(TCommandLine &line, TToolStreams &streams);
int RunCheck(TCommandLine &line, TToolStreams &streams);
int RunRepair(TCommandLine &line, TToolStreams &streams);
int RunBackup(TCommandLine &line, TToolStreams &streams);
int RunRestore(TCommandLine &line, TToolStreams &streams);
int RunTables(TCommandLine &line, TToolStreams &streams);
int RunFields(TCommandLine &line, TToolStreams &streams);
int RunSql(TCommandLine &line, TToolStreams &streams);
int RunClass(TCommandLine &line, TToolStreams &streams);
int RunImport(TCommandLine &line, TToolStreams &streams);
int RunExport(TCommandLine &line, TToolStreams &streams);
int RunWords(TCommandLine &line, TToolStreams &streams);
int RunNextCode(TCommandLine &line, TToolStreams &streams);

} // namespace Korvane
