// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObjects.h"

namespace Korvane {

/// Source text of a record class in the language of the component framework: a property per
/// field, named by its FieldProp, with direct access to its backing field. Lines end in CR LF.
QString RecordClassText(const QString &className, const TObjectList<TFieldsObject> &fields);

} // namespace Korvane
