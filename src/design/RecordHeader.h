// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDObjects.h"

namespace Korvane {

class TDBDQuery;
class TDBDTable;

/// A record class to be generated.
struct TRecordClass
{
    QString Name;
    QString Comment;                   ///< what a row is, for people
    TObjectList<TFieldsObject> Fields; ///< a property each, named by FieldProp, explained by FieldName
};

TRecordClass RecordClassOf(const TDBDTable &definition);
TRecordClass RecordClassOf(const TDBDQuery &definition);

/// Source text of a C++ header with record classes: a TDBObject each, with a property and a
/// member per field, registered by name wherever the header is included. Lines end in LF. A
/// class that comes again with the same properties is written once. nameSpace may be empty or
/// nested ("A::B"); origin tells readers of the header what it was generated from.
///
/// Raises Exception, which names the definition and the field, for what would not compile or
/// not work: a name that is no identifier, is a keyword, or is that of a member of TDBObject;
/// two properties of a class or two classes that the capitals alone tell apart; a class of the
/// library's own name; the same class with other properties.
QString RecordHeaderText(const QList<TRecordClass> &classes, const QString &origin, const QString &nameSpace);

} // namespace Korvane
