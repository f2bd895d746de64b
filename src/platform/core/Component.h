// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace Korvane {

/// Base of the non-visual components. The owner is the QObject parent and frees what it
/// owns; the name is the object name.
class TComponent : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE SetName STORED false)
    Q_PROPERTY(qint64 Tag READ Tag WRITE SetTag)

public:
    explicit TComponent(QObject *owner = nullptr);

    QObject *Owner() const { return parent(); }
    QString Name() const { return objectName(); }
    void SetName(const QString &name) { setObjectName(name); }

    /// A number for the application's own use.
    qint64 Tag() const { return FTag; }
    void SetTag(qint64 tag) { FTag = tag; }

    /// The component owned directly by this one whose name equals the argument, blind to
    /// the case of letters; null if there is none.
    TComponent *FindComponent(const QString &name) const;
    /// The components owned directly by this one, in order of creation.
    QList<TComponent *> Components() const;

private:
    qint64 FTag = 0;
};

} // namespace Korvane
