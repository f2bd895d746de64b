// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/ClassRegistry.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace Korvane {

/// A list of shared objects: a list handed out stays valid whatever becomes of the one that
/// it came from.
template <class T> using TObjectList = QList<std::shared_ptr<T>>;

/// Base of all record objects: a row of a table travels as such an object, its columns being
/// reflected properties reached by name. A record class derives from it, declares Q_GADGET and
/// a Q_PROPERTY … MEMBER per column, and is registered:
///
///     class TUnit : public TDBObject
///     {
///         Q_GADGET
///         Q_PROPERTY(QString UnitCode MEMBER UnitCode)
///     public:
///         QString UnitCode;
///     };
///     RegisterClass<TUnit>();
class TDBObject : public TPersistent
{
    Q_GADGET

public:
    /// The key of the row as it stands in the database: a list with an entry per key field in
    /// key order, or a single value. Update and delete statements that are given only an
    /// object find the row by it. Invalid in a new object.
    QVariant KeyValues;

    /// Names of the reflected properties of the run-time class, in declared order, inherited
    /// ones first. Properties that are sets or objects are left out.
    QStringList GetClassProperties() const;
    /// Resets all of these properties to 0, false or the empty text. KeyValues stays.
    void Clear();
};

} // namespace Korvane
