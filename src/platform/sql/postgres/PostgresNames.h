// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// Raises ESqlError for a name that the engine would cut off.
void CheckPostgresName(const QString &name);

/// The name between double quotes, as PostgreSQL knows it: PostgresName of it.
QString QuotedPostgresName(const QString &name);

/// A name put together of others, between double quotes; one that is too long is shortened so that
/// different names stay different.
QString JoinedPostgresName(const QString &name);

/// A text literal.
QString PostgresText(const QString &text);

} // namespace Korvane
