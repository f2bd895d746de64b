// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

/// A column that every created table begins with. It is not part of the design: saving fills
/// it (who made and who last changed the row, and when, by the server's clock).
struct TAuditColumn
{
    QString Name;
    QString Type;    ///< as in "create table", with the comma
    QString Comment; ///< of the table script
    QString Label;   ///< in check statements
    QString Repair;  ///< what a missing value is filled with; empty for the present time
};

inline const TAuditColumn AuditColumns[] = {
    {QStringLiteral("CREATOR"), QStringLiteral("varchar(10) null,"), QStringLiteral("--创建者"),
     QStringLiteral("创建者"), QStringLiteral("admin")},
    {QStringLiteral("CREATEDATE"), QStringLiteral("char(14) null,"),
     QStringLiteral("--创建时间(YYYYMMDDHHMMSS)"), QStringLiteral("创建时间"), QString()},
    {QStringLiteral("MODIFIER"), QStringLiteral("varchar(10) null,"), QStringLiteral("--修改者"),
     QStringLiteral("修改者"), QStringLiteral("admin")},
    {QStringLiteral("MODIFYDATE"), QStringLiteral("char(14) null,"),
     QStringLiteral("--修改时间(YYYYMMDDHHMMSS)"), QStringLiteral("修改时间"), QString()},
    {QStringLiteral("CREATORGROUP"), QStringLiteral("varchar(10) null,"), QStringLiteral("--创建者组"),
     QStringLiteral("创建者组"), QStringLiteral("Admins")},
};

} // namespace Korvane
