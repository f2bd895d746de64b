// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/DateTime.h"

#include <QVariant>

namespace Korvane {

/// A value that is present but null, unlike the unassigned one, which is an invalid QVariant.
QVariant VarNull();
/// Null or unassigned.
bool VarIsNull(const QVariant &value);
/// Unassigned.
bool VarIsEmpty(const QVariant &value);
bool VarIsArray(const QVariant &value);

/// The conversions read null and unassigned as empty text, 0, false and the empty date. They raise
/// EVariantError for an array and for a text or value that cannot be read so.
/// Booleans are "True" and "False", numbers as by FloatToStr, dates as by DateTimeToStr.
QString VarToStr(const QVariant &value);
QString VarToStrDef(const QVariant &value, const QString &def); ///< def for null
int VarToInt(const QVariant &value);                            ///< rounds halves to the even neighbour
qint64 VarToInt64(const QVariant &value);
double VarToDouble(const QVariant &value);
bool VarToBool(const QVariant &value); ///< a number is true unless 0; "True" and "False" in any case
/// Dates, date-time numbers, and texts "yyyy-mm-dd[ hh:mm:ss[.zzz]]" or in the settings' form.
TDateTime VarToDateTime(const QVariant &value);

QVariant VarArrayOf(const QVariantList &values);
/// Raises EVariantError if the value is no array or the index (from 0) is outside of it.
QVariant VarArrayGet(const QVariant &value, qsizetype index);

/// Joins if one side is text, otherwise adds; null if one side is null.
QVariant VarAdd(const QVariant &left, const QVariant &right);
/// Equal values: numbers by value whatever their types, texts exactly, text and another type by what
/// the text reads as, arrays item by item, null only to null. Never raises.
bool VarSame(const QVariant &left, const QVariant &right);

} // namespace Korvane
