// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/SqlError.h"
#include "platform/sql/jet/JetFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Korvane::Testing {

inline QString Sample(const QString &name) { return QStringLiteral(KORVANE_EXAMPLES_DIR) + u'/' + name; }

inline QString LegacyDatabase()
{
    return QStringLiteral(KORVANE_TEST_DATA_DIR) + QStringLiteral("/legacy.mdb");
}

inline QByteArray ReadBytes(const QString &fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(fileName);
    return file.readAll();
}

/// Writes a file into a folder and returns its path.
inline QString WriteBytes(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    const QString path = folder.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return path;
}

/// A cell as a literal: NULL, 12, 0.5, 'text', x'hex'.
inline QString CellText(const TJetCell &cell)
{
    switch (cell.Kind) {
    case TJetCell::Null:
        return QStringLiteral("NULL");
    case TJetCell::Integer:
        return QString::number(cell.Int);
    case TJetCell::Real:
        return QString::number(cell.Number, 'g', 15);
    case TJetCell::Text:
        return u'\'' + QString::fromUtf8(cell.Bytes.data(), qsizetype(cell.Bytes.size())) + u'\'';
    case TJetCell::Blob:
        break;
    }
    return QStringLiteral("x'%1'").arg(
        QString::fromLatin1(QByteArray(cell.Bytes.data(), qsizetype(cell.Bytes.size())).toHex()));
}

inline QList<QStringList> RowsOf(TJetFile &file, const QString &table)
{
    QList<QStringList> rows;
    file.ReadTable(table, [&rows](std::span<const TJetCell> cells) {
        QStringList row;
        for (const TJetCell &cell : cells)
            row.append(CellText(cell));
        rows.append(row);
    });
    return rows;
}

/// Reads all there is, as the damage tests do. Returns the number of cells.
inline qsizetype ReadEverything(const QString &fileName)
{
    TJetFile file(fileName);
    qsizetype cells = 0;
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind != TJetTableKind::View)
            file.ReadTable(table.Name,
                           [&cells](std::span<const TJetCell> row) { cells += qsizetype(row.size()); });
    }
    return cells;
}

} // namespace Korvane::Testing
