// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// Traditional characters as simplified ones and the other way round, character by character, so
/// that the text keeps its length. All else stays.
QString Simplified(const QString &text);
QString Traditional(const QString &text);

} // namespace Korvane
