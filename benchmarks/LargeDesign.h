// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"

#include <QString>

#include <array>

namespace Bench {

inline constexpr int LargeTables = 300;
inline constexpr int FieldsPerTable = 40;

/// The tables that a design store consists of.
inline constexpr std::array DesignTables = {"Tables", "Querys",  "Commands", "Fields",
                                            "Indexs", "Columns", "Changes"};

QString LargeTableCode(int table);
QString LargeFieldCode(int field);

/// Makes a design store (SQLite) without rows.
void MakeEmptyDesign(const QString &fileName);
/// Makes a design store of 300 tables with 40 fields and two indexes each, with an
/// index on (TableCode, FieldCode) so that a peer's lookup need not scan.
void MakeLargeDesign(const QString &fileName);
/// Writes the tables of that store as a Jet 4 file.
void MakeLargeJetDesign(const QString &storeFile, const QString &jetFile);

/// Writes tables as a Jet 4 file, with columns of like types.
void WriteJetFile(const QString &fileName, const QList<std::pair<QString, Korvane::TDataPacket>> &tables);

} // namespace Bench
