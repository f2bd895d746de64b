// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlError.h"
#include "platform/sql/odbc/OdbcServer.h"

namespace Korvane {

/// The server's own words in a driver's message: without the "[vendor][part]" before them and
/// without what the driver adds behind.
QString OdbcServerWords(const TOdbcServer &server, const QString &message);

/// Whether an error says that the server is gone.
bool IsOdbcConnectionLost(const QString &sqlState);

/// Errors as the user gets them: the server's sentence for the state stands before its words.
QList<TSqlError> DescribeOdbcErrors(const TOdbcServer &server, QList<TSqlError> errors);

} // namespace Korvane
