// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObjects.h"
#include "general/Types.h"

namespace Korvane {

struct TPropInfo;

/// The literal with which a field of an object stands in a statement: texts and dates trimmed
/// and quoted, a Boolean as 'Y' or 'N', numbers and blobs bare. There is no NULL: an empty
/// text is '', an empty bare value an empty text. The same in both dialects. Raises
/// EPropertyError when the object has no such property.
QString GetDBFieldValue(const TDBObject &object, const TFieldsObject &field);
/// The same, by the name of the property and of the logical type.
QString GetDBFieldValue(const TDBObject &object, const QString &property, const QString &fieldType);
/// Adds the same to a statement, with the property and the type found before.
void AppendDBFieldValue(QString &statement, const TDBObject &object, const TPropInfo &property,
                        TDataType type);

} // namespace Korvane
