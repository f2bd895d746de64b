// SPDX-License-Identifier: MIT
#pragma once

#include "design/DatabaseTesting.h"
#include "import/DatabaseImport.h"
#include "platform/sql/jet/JetBuilder.h"
#include "platform/sql/jet/JetTesting.h"

namespace Korvane::Testing {

/// A Jet file from literals. Texts are variable unless their column is fixed.
///
///     JetStore old;
///     old.Table("T", {{"CODE", TJetType::Text, 20}, {"QTY", TJetType::LongInteger, 4, true}});
///     old.Row({Words("A1"), TJetBuilder::Int(5, 4)});
///     const QString fileName = old.Write(folder);
class JetStore
{
public:
    JetStore() : FBuilder(ReadBytes(Sample(QStringLiteral("orders.dbd"))).first(4096), false) {}

    JetStore &Table(const QString &name, const QList<TJetBuilder::TColumn> &columns)
    {
        FBuilder.BeginTable(name, columns);
        return *this;
    }
    JetStore &Row(const TJetBuilder::TCells &cells)
    {
        FBuilder.AddRow(cells);
        return *this;
    }
    JetStore &Index(const QString &name, const QList<int> &columns, TJetBuilder::TIndexKind kind)
    {
        FBuilder.AddIndex(name, columns, kind);
        return *this;
    }
    QByteArray Chained(const QByteArray &value) { return FBuilder.ChainedValue(value); }
    QString Write(const QTemporaryDir &folder, const QString &name = QStringLiteral("old.mdb")) const
    {
        return WriteBytes(folder, name, FBuilder.Build());
    }

private:
    TJetBuilder FBuilder;
};

inline QByteArray Words(const QString &text, int filledTo = 0)
{
    return TJetBuilder::Utf16(text.leftJustified(filledTo));
}
inline QByteArray Memo(const QString &text) { return TJetBuilder::InlineValue(TJetBuilder::Utf16(text)); }
inline QByteArray Long(qint64 value) { return TJetBuilder::Int(quint64(value), 4); }
inline QByteArray Short(qint64 value) { return TJetBuilder::Int(quint64(value), 2); }
inline QByteArray Money(qint64 tenThousandths) { return TJetBuilder::Int(quint64(tenThousandths), 8); }
inline QByteArray Decimal(quint64 digits, bool isNegative = false)
{
    return QByteArray(1, isNegative ? '\x80' : '\0') + TJetBuilder::Int(0, 8) +
           TJetBuilder::Int(digits >> 32, 4) + TJetBuilder::Int(digits & 0xffffffff, 4);
}

inline TJetBuilder::TColumn TextColumn(const QString &name, int size)
{
    return {name, TJetType::Text, 2 * size, false};
}
inline TJetBuilder::TColumn FixedColumn(const QString &name, int size)
{
    return {name, TJetType::Text, 2 * size, true};
}
inline TJetBuilder::TColumn LongColumn(const QString &name) { return {name, TJetType::LongInteger, 4, true}; }

/// An import into the test's database, in each dialect.
class ImportTest : public DatabaseTest
{
protected:
    ImportTest()
    {
        Import.SetDBDFile(&Design);
        Import.SetDBSession(&Session);
    }

    /// What is in the test's folders, without the inputs and the log of failed statements.
    QStringList Files() const
    {
        QStringList files;
        for (const QString &folder : {Dir.path(), Dir.filePath(QStringLiteral("server"))})
            for (const QString &file : QDir(folder).entryList(QDir::Files, QDir::Name))
                if (!file.startsWith(QLatin1String("old")) && file != QLatin1String("design.dbd") &&
                    file != QLatin1String("Error.sql") && file != QLatin1String("master.db"))
                    files.append(file);
        return files;
    }

    void Open(const QString &design)
    {
        Design.SetFileName(design);
        Design.SetActived(true);
    }

    /// The message of a failing import, its lines parted by line feeds.
    QString Failure()
    {
        return MessageOf([&] { Import.Run(); }).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    }

    /// Connects to the database that was imported and reads.
    QStringList Imported(const QString &statement)
    {
        Session.SetConnected(true);
        const QStringList rows = Rows(statement);
        Session.SetConnected(false);
        return rows;
    }

    TDatabaseImport Import;
};

} // namespace Korvane::Testing
