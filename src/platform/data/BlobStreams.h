// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace Korvane {

/// Blobs with names, in the order in which they were added: what a statement's blob
/// parameters are filled from. Names need not differ.
class TBlobStreams
{
public:
    qsizetype Count() const { return FStreams.size(); }
    bool IsEmpty() const { return FStreams.isEmpty(); }
    void Clear() { FStreams.clear(); }

    void Add(const QString &name, const QByteArray &bytes) { FStreams.append({name, bytes}); }
    /// Puts bytes behind those that stand under the name; adds the name if it is not there.
    void Append(const QString &name, const QByteArray &bytes)
    {
        const qsizetype index = IndexOf(name);
        if (index < 0)
            Add(name, bytes);
        else
            FStreams[index].Bytes += bytes;
    }

    /// The first of a name, blind to the case of letters; -1 if there is none.
    qsizetype IndexOf(QStringView name) const
    {
        for (qsizetype i = 0; i < FStreams.size(); ++i)
            if (FStreams[i].Name.compare(name, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
    const QString &Name(qsizetype index) const { return FStreams[index].Name; }
    const QByteArray &Bytes(qsizetype index) const { return FStreams[index].Bytes; }

private:
    struct TStream
    {
        QString Name;
        QByteArray Bytes;
    };
    QList<TStream> FStreams;
};

} // namespace Korvane
