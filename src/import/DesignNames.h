// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>
#include <QStringList>

namespace Korvane {

/// Makes names for a design out of those of an old database: Latin letters (of Chinese the
/// pinyin), digits and "_", no word that SQL or C++ keeps for itself, each once. No name is that of
/// another old one, so that old and new names find each other.
class TDesignNames
{
public:
    explicit TDesignNames(const QStringList &oldNames);

    /// "客户编号" becomes KEHUBIANHAO. A name that is valid already changes to capitals alone.
    QString Code(const QString &name, qsizetype most = 40);
    /// "客户编号" becomes KeHuBianHao, "CUST_CODE" CustCode.
    QString Property(const QString &name);

private:
    QString Unique(const QString &name, const QString &old, qsizetype most, QSet<QString> &taken) const;

    QSet<QString> FOld; ///< in capitals
    QSet<QString> FCodes;
    QSet<QString> FProperties;
};

} // namespace Korvane
