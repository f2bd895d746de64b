// SPDX-License-Identifier: MIT
#pragma once

#include "ToolStreams.h"

#include <QStringList>

namespace Korvane {

/// Runs the tool with its arguments, the program's name not among them, and gives its exit
/// status (see TToolStatus). Every failure is told on Err; nothing is thrown.
int RunTool(const QStringList &arguments, TToolStreams &streams);

} // namespace Korvane
