// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace Korvane {

/// A folder that serves as a database server: its databases are the files NAME.db in it, and
/// "master" is always there. The address is "folder:" and the path.
class TFolderServer
{
public:
    static bool IsAddress(const QString &address);
    /// Raises ESqlError when the folder does not exist.
    explicit TFolderServer(const QString &address);

    const QString &Folder() const { return FFolder; }
    /// Path of a database's file, whether it exists or not; names are blind to the case of
    /// letters. Raises ESqlError for an empty name and for one that is no file name.
    QString FileOf(const QString &database) const;
    /// Names of the databases that exist, "master" first.
    QStringList Databases() const;
    QString RosterFile() const;

private:
    QString FFolder;
};

} // namespace Korvane
