// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/FolderServer.h"

#include "platform/sql/SqlError.h"

#include <QDir>

namespace Korvane {

namespace {

constexpr auto Prefix = "folder:";
constexpr auto Suffix = ".db";

bool IsFileName(const QString &name)
{
    static const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    if (name.isEmpty() || name.startsWith(QLatin1Char('.')) || name.size() > 120)
        return false;
    return std::none_of(name.begin(), name.end(),
                        [](QChar c) { return c.unicode() < 0x20 || forbidden.contains(c); });
}

} // namespace

bool TFolderServer::IsAddress(const QString &address)
{
    return address.startsWith(QLatin1String(Prefix), Qt::CaseInsensitive);
}

TFolderServer::TFolderServer(const QString &address)
    : FFolder(QDir::cleanPath(address.mid(qsizetype(strlen(Prefix)))))
{
    if (FFolder.isEmpty() || !QDir(FFolder).exists())
        throw ESqlError(QStringLiteral("找不到数据库服务器的文件夹：%1").arg(FFolder));
}

QString TFolderServer::FileOf(const QString &database) const
{
    if (database.isEmpty())
        throw ESqlError(QStringLiteral("没有指定数据库名称"));
    if (!IsFileName(database))
        throw ESqlError(QStringLiteral("“%1”不能作为数据库名称").arg(database));
    for (const QString &known : Databases())
        if (known.compare(database, Qt::CaseInsensitive) == 0)
            return QDir(FFolder).filePath(known + QLatin1String(Suffix));
    return QDir(FFolder).filePath(database + QLatin1String(Suffix));
}

QStringList TFolderServer::Databases() const
{
    QStringList names = {QStringLiteral("master")};
    for (const QString &file : QDir(FFolder).entryList({QLatin1Char('*') + QLatin1String(Suffix)},
                                                       QDir::Files | QDir::CaseSensitive, QDir::Name)) {
        const QString name = file.chopped(qsizetype(strlen(Suffix)));
        if (name.compare(names.first(), Qt::CaseInsensitive) != 0)
            names.append(name);
    }
    return names;
}

QString TFolderServer::RosterFile() const { return QDir(FFolder).filePath(QStringLiteral("roster")); }

} // namespace Korvane
