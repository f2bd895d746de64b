// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/dialect/SqlEngine.h"

#include <QHash>

namespace Korvane {

/// PostgreSQL's answers to the query rules, for one statement text.
class TPostgresEngine : public TSqlEngine
{
public:
    /// See TPostgresStatement::WrittenNames.
    QHash<QString, QString> WrittenNames;
    /// The query at the cursor gives values to columns that have a type.
    bool IsInserting = false;

    void WriteName(TSqlCursor &cursor, int token) override;
    void WriteDatabaseName(TSqlCursor &cursor, int token) override;
    void WriteFunctionName(TSqlCursor &cursor, int token) override;
    void WriteCollation(TSqlCursor &cursor, int token) override;
    void WriteItem(TSqlCursor &cursor, const TSqlOperand &item, int alias) override;
    void WriteTextItems(TSqlCursor &cursor, const QList<int> &items) override;
    QString AliasText(const TSqlCursor &cursor, int alias) const override;
    void WriteOrderItem(TSqlCursor &cursor, bool isDown) override;
    void WriteCatalogTable(TSqlCursor &cursor, const TSqlSource &source) override;
    TSqlValueKind WriteClock(TSqlCursor &cursor, int token) override;
    void WriteLike(TSqlCursor &cursor, int token, const TSqlOperand &left, const TSqlOperand &right) override;
    TSqlValueKind WriteCall(TSqlCursor &cursor, const TFunctionRule &rule, int name, int close,
                            const QList<TSqlOperand> &arguments) override;
    const TFunctionRule *FindFunction(QStringView name, TSqlDialect dialect) const override;
    TSqlConversion ConversionTo(const TSqlType &type, const QString &style) const override;

    bool KnowsTypes() const override { return true; }
    bool TakesBracketBranches() const override { return true; }
};

/// The operand as a text, whatever its type.
void CastToText(TSqlEdits &edits, const TSqlOperand &operand);

/// A column's or cast's type in the engine's language, size included.
QString PostgresType(const TSqlType &type);

} // namespace Korvane
