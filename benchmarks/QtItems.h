// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlDatabase>
#include <QSqlTableModel>

namespace Bench {

/// A connection of Qt's own to a database file, with the pragmas of ours.
QSqlDatabase OpenQtDatabase(const QString &name, const QString &file);

/// The rows of the large table as Qt's model of a table.
class TQtItems : public QSqlTableModel
{
    Q_OBJECT

public:
    /// With a condition, if one is given.
    explicit TQtItems(const QSqlDatabase &database, const QString &where = {});

    /// Selects the rows and fetches all of them.
    void SelectAll();
};

} // namespace Bench
