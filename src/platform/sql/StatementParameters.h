// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlDriver.h"

#include <QList>

namespace Korvane {

/// The parameters of a statement in the order of their first occurrence: a colon and a name
/// (letters, digits, "_"; no digit first), outside of literals, names in brackets or quotes, and comments.
/// A name that comes again, blind to the case of letters, is the same parameter. Values are
/// not set.
QList<TSqlParameter> ParametersOf(const QString &statement);

} // namespace Korvane
