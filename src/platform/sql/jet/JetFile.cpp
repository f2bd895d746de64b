// SPDX-License-Identifier: MIT
#include "platform/sql/jet/JetFile.h"

#include "platform/sql/SqlError.h"

#include <QFile>
#include <QSet>

namespace Korvane {

namespace {

constexpr quint32 CatalogPage = 2;

// Of the catalog's Type and Flags.
constexpr int TableObject = 1;
constexpr int QueryObject = 5;
constexpr quint32 SystemFlags = 0x80000002;

} // namespace

/// Turns damage that is met inside into an error with the file's name.
template <typename F> void TJetFile::Guarded(F action) const
{
    try {
        action();
    } catch (const EJetDamage &damage) {
        throw ESqlError(QStringLiteral("数据库文件“%1”已损坏：%2").arg(FFileName, damage.Message()));
    }
}

TJetFile::TJetFile(const QString &fileName) : FFileName(fileName)
{
    Guarded([this] {
        FPages = std::make_unique<TJetPages>(FFileName);
        ReadCatalog();
    });
}

TJetFile::~TJetFile() = default;

bool TJetFile::IsJetFile(const QString &fileName) { return TJetPages::HasMagic(fileName); }

bool TJetFile::IsJet3() const { return FPages->Layout().IsJet3; }

const QString &TJetFile::Password() const { return FPages->Password(); }

QList<TJetColumn> TJetFile::Columns(const QString &table)
{
    QList<TJetColumn> columns;
    Guarded([&] { columns = TJetTable(*FPages, Find(table).Page).Columns(); });
    return columns;
}

QList<TJetIndex> TJetFile::Indexes(const QString &table)
{
    QList<TJetIndex> indexes;
    Guarded([&] { indexes = TJetTable(*FPages, Find(table).Page).Indexes(); });
    return indexes;
}

qint64 TJetFile::RowCount(const QString &table)
{
    size_t rows = 0;
    Guarded([&] { rows = TJetTable(*FPages, Find(table).Page).RowCount(); });
    return qint64(rows);
}

void TJetFile::ReadTable(const QString &table, const TJetRowFunction &row)
{
    Guarded([&] { TJetTable(*FPages, Find(table).Page).ReadRows(row); });
}

// The catalog is a table like the others, with its definition always on the same page.
void TJetFile::ReadCatalog()
{
    TJetTable catalog(*FPages, CatalogPage);
    const auto column = [&catalog](QStringView name, bool needed) {
        const int index = catalog.IndexOf(name);
        if (index < 0 && needed)
            throw EJetDamage(QStringLiteral("系统表缺少字段 %1").arg(name));
        return index;
    };
    const int id = column(u"Id", true);
    const int name = column(u"Name", true);
    const int type = column(u"Type", true);
    const int flags = column(u"Flags", false);
    const int created = column(u"DateCreate", false);
    QSet<QString> seen;

    catalog.ReadRows([&](std::span<const TJetCell> row) {
        const auto number = [&row](int index) { return index < 0 ? 0 : row[size_t(index)].Int; };
        const qint64 object = number(type) & 0x7f;
        if (object != TableObject && object != QueryObject)
            return;
        TJetTableInfo table;
        const std::string_view text = row[size_t(name)].Bytes;
        table.Name = QString::fromUtf8(text.data(), qsizetype(text.size()));
        // A query that a form or report keeps for itself has no name of its own.
        if (object == QueryObject && table.Name.startsWith(u'~'))
            return;
        if (table.Name.isEmpty() || seen.contains(table.Name.toUpper()))
            throw EJetDamage(QStringLiteral("表名无效"));
        seen.insert(table.Name.toUpper());
        table.Page = quint32(number(id)) & 0xffffff;
        if (created >= 0)
            table.Created = row[size_t(created)].Number;
        if (object == QueryObject)
            table.Kind = TJetTableKind::View;
        else if ((quint32(number(flags)) & SystemFlags) != 0)
            table.Kind = TJetTableKind::SystemTable;
        FTables.append(table);
    });
}

const TJetTableInfo &TJetFile::Find(const QString &table) const
{
    for (const TJetTableInfo &info : FTables) {
        if (info.Kind != TJetTableKind::View && info.Name.compare(table, Qt::CaseInsensitive) == 0)
            return info;
    }
    throw ESqlError(QStringLiteral("数据库文件“%1”中没有表“%2”").arg(FFileName, table));
}

} // namespace Korvane
