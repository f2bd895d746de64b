// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/DataPacket.h"
#include "platform/sql/SqlDriver.h"

#include <QString>

#include <memory>
#include <span>

struct sqlite3;
struct sqlite3_stmt;

namespace Korvane {

class TSqliteDatabase;

/// Whether a statement is prepared to run once or to be kept.
enum class TStatementUse { Once, Often };

/// A prepared statement of the engine, in the engine's own language. Finalised with the
/// object; must not outlive its database.
class TSqliteStatement
{
public:
    /// Prepares the first statement of the text. rest, if given, gets what stands behind it.
    TSqliteStatement(TSqliteDatabase &database, const QByteArray &sql, QByteArray *rest = nullptr);
    TSqliteStatement(TSqliteDatabase &database, const QByteArray &sql, TStatementUse use);
    ~TSqliteStatement();
    TSqliteStatement(const TSqliteStatement &) = delete;
    TSqliteStatement &operator=(const TSqliteStatement &) = delete;

    /// False for a text of blanks and comments only.
    bool IsValid() const { return FStatement != nullptr; }
    sqlite3_stmt *Handle() const { return FStatement; }

    void Bind(int index, const QVariant &value); ///< index from 1
    void BindNull(int index);
    void BindInt(int index, qint64 value);
    void BindDouble(int index, double value);
    void BindText(int index, std::string_view utf8);
    /// The same without a copy: the text must last until the statement is reset.
    void BindLastingText(int index, std::string_view utf8);
    void BindBlob(int index, std::string_view bytes);
    /// Binds by name; a parameter that the statement does not have is ignored.
    void Bind(std::span<const TSqlParameter> parameters);

    /// True when a row stands ready, false at the end. Raises ESqlError.
    bool Step();
    void Reset();

    int ColumnCount() const;
    bool IsNull(int column) const;
    qint64 Int(int column) const;
    double Double(int column) const;
    std::string_view Text(int column) const; ///< UTF-8, valid until the next Step
    std::string_view Blob(int column) const;
    QString String(int column) const;
    // Whether the value in the current row is one.
    bool IsText(int column) const;
    bool IsFloat(int column) const;
    /// Whether there is such a column that is no table's own.
    bool IsReckoned(int column) const;

    /// Of the result, by the declared types; ftUnknown for columns without one. To be asked for when
    /// a step has been made, which may prepare the statement anew because the schema has changed.
    const QList<TPacketField> &Fields();
    /// Adds the current row to a packet of these fields.
    void AppendRow(TDataPacketBuilder &builder) const;
    /// Steps through all rows into a packet.
    TDataPacket ReadAll();

private:
    void Prepare(const QByteArray &sql, TStatementUse use, const char **tail);

    TSqliteDatabase &FDatabase;
    sqlite3_stmt *FStatement = nullptr;
    QList<TPacketField> FFields; // of the result, as of FPreparations
    int FPreparations = -1;
};

enum class TSqliteOpen { ReadOnly, ReadWrite, Create, Memory };

/// A connection of the engine's C interface that raises ESqlError in words a clerk understands.
class TSqliteDatabase
{
public:
    TSqliteDatabase(const QString &fileName, TSqliteOpen mode);
    ~TSqliteDatabase();
    TSqliteDatabase(const TSqliteDatabase &) = delete;
    TSqliteDatabase &operator=(const TSqliteDatabase &) = delete;

    sqlite3 *Handle() const { return FHandle; }
    const QString &FileName() const { return FFileName; }

    /// Runs all statements of a text in the engine's own language, dropping their rows.
    void Run(const QByteArray &sql);
    /// The first column of the first row, empty if there is none.
    QString Value(const QByteArray &sql);
    qint64 Changes() const;
    bool InTransaction() const;
    /// Raises the engine's present error.
    [[noreturn]] void Fail() const;

private:
    sqlite3 *FHandle = nullptr;
    QString FFileName;
};

} // namespace Korvane
