// SPDX-License-Identifier: MIT
#include "examples/orders/road/Stage.h"

#include "design/AuditColumns.h"
#include "design/DBDFile.h"
#include "platform/data/dataset/DataSet.h"
#include "tools/korvane/TextTable.h"

#include <QDir>
#include <QTextStream>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

bool IsNumber(TFieldType type)
{
    return type == ftFloat || type == ftInteger || type == ftSmallint || type == ftLargeint;
}

TTextTable::Alignment AlignmentOf(TFieldType type)
{
    return IsNumber(type) ? TTextTable::Alignment::Right : TTextTable::Alignment::Left;
}

} // namespace

TStage::TStage(TDBDFile &design, TDBType type, const QString &folder)
    : FDesign(design), FType(type), FFolder(folder), FSession(NewSession())
{
}

std::unique_ptr<TDBSession> TStage::NewSession() const
{
    auto session = std::make_unique<TDBSession>();
    session->SetDBType(FType);
    session->SetAppName(u"orders_road"_s);
    if (FType == dbtMSSQL) {
        session->SetDBServer(u"folder:"_s + FFolder);
        session->SetDBName(u"orders"_s);
    } else {
        session->SetDBName(QDir(FFolder).filePath(u"orders.access.db"_s));
    }
    session->SetConnected(true);
    return session;
}

// ---- telling --------------------------------------------------------------------------

void TStage::Head(const QString &text) { Say(u"\n%1. %2"_s.arg(++FStep).arg(text)); }

void TStage::Say(const QString &text) const
{
    static QTextStream out(stdout);
    out << text << Qt::endl;
}

QStringList TStage::Watch(const std::function<void()> &action)
{
    QStringList statements;
    FSession->OnExecute() = [&](const QString &statement) {
        statements.append(statement);
        Say(u"   %1 > %2"_s.arg(statements.size(), 2).arg(TTextTable::Escaped(statement)));
    };
    try {
        action();
    } catch (...) {
        FSession->OnExecute() = nullptr;
        throw;
    }
    FSession->OnExecute() = nullptr;
    return statements;
}

void TStage::Begin()
{
    Say(u"   BeginTrans"_s);
    FSession->BeginTrans();
}

void TStage::Commit()
{
    FSession->CommitTrans();
    Say(u"   CommitTrans"_s);
}

void TStage::RollBack()
{
    FSession->RollbackTrans();
    Say(u"   RollbackTrans"_s);
}

// ---- showing --------------------------------------------------------------------------

void TStage::ShowInMemory(TDataSet &set, const QString &fields) const
{
    TTextTable table;
    const QList<TField *> shown = set.GetFieldList(fields);
    for (const TField *field : shown)
        table.AddColumn(field->DisplayLabel(), AlignmentOf(field->DataType()));
    set.DisableControls();
    const TBookmark place = set.GetBookmark();
    for (set.First(); !set.Eof(); set.Next()) {
        QStringList cells;
        for (const TField *field : shown)
            cells.append(field->IsNull() ? QString() : field->DisplayText());
        table.AddRow(cells);
    }
    if (set.BookmarkValid(place))
        set.GotoBookmark(place);
    set.EnableControls();
    Say(u"内存中：\n"_s + table.ToText());
}

void TStage::ShowInDatabase(const QString &table, const QString &columns, const QString &where)
{
    const QStringList names = columns.split(u';');
    const TDataPacket rows =
        FSession->Open(u"select %1 from %2 where %3 order by %1"_s.arg(names.join(u','), table, where));
    TTextTable text;
    for (int i = 0; i < rows.FieldCount(); ++i)
        text.AddColumn(LabelOf(table, names[i]), AlignmentOf(rows.Field(i).Type));
    for (qsizetype row = 0; row < rows.RowCount(); ++row) {
        QStringList cells;
        for (int i = 0; i < rows.FieldCount(); ++i)
            cells.append(rows.Column(i).IsNull(row) ? QString() : rows.Text(i, row));
        text.AddRow(cells);
    }
    Say(u"数据库中，%1：\n"_s.arg(table) + text.ToText());
}

QString TStage::LabelOf(const QString &table, const QString &column)
{
    for (const TAuditColumn &audit : AuditColumns)
        if (audit.Name == column)
            return audit.Label;
    return FDesign.GetField(table, column)->FieldName;
}

int TStage::CountInDatabase(const QString &table, const QString &where)
{
    return ValueInDatabase(u"select count(*) from %1 where %2"_s.arg(table, where)).toInt();
}

QString TStage::ValueInDatabase(const QString &statement)
{
    const TDataPacket rows = FSession->Open(statement);
    return rows.RowCount() > 0 ? rows.Text(0, 0) : QString();
}

void TStage::Check(bool holds, const QString &claim) const
{
    if (!holds)
        throw Exception(u"核对不符："_s + claim);
    Say(u"   √ "_s + claim);
}
