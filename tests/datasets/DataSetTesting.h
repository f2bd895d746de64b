// SPDX-License-Identifier: MIT
#pragma once

#include "DataSetRecords.h"

#include "datasets/ExDB.h"
#include "design/DatabaseTesting.h"
#include "general/SessionValues.h"

namespace Korvane::Testing {

using namespace Qt::StringLiterals;

/// A database in both dialects made from a small design, and a session whose statements are
/// recorded. PART has a field of every type, QPART selects some of it, LINE is the detail of
/// HEAD.
class DataSetTest : public DatabaseTest
{
protected:
    DataSetTest()
    {
        if (IsSkipped())
            return;
        AUserCode = u"u1"_s;
        AUserGroup = u"g1"_s;
        RegisterClass<TPartRecord>();
        RegisterClass<TQPART>();
        RegisterClass<THeadRecord>();
        RegisterClass<TLineRecord>();
        RegisterClass<TNumberedRecord>();
        RegisterClass<TWrongRecord>();
        DesignStore store(Dir.filePath(u"design.dbd"_s));
        WriteDesign(store);
        Design.SetFileName(store.FileName());
        Design.SetActived(true);
        Design.CreateDB(Session, true);
        Session.SetConnected(true);
        Session.OnExecute() = [this](const QString &statement) { FLog.append(statement); };
    }
    ~DataSetTest() override
    {
        Session.OnExecute() = nullptr;
        AUserCode = AUserGroup = AIsSuper = QString();
    }

    static void WriteDesign(DesignStore &store)
    {
        store.Table(u"PART"_s, u"TPartRecord"_s, u"部件"_s)
            .Field(u"CODE"_s, u"varchar(6)"_s,
                   {.Name = u"编号"_s, .Prop = u"Code"_s, .Key = true, .NotNull = true})
            .Field(u"NAME"_s, u"varchar(60)"_s, {.Name = u"名称"_s, .Prop = u"Name"_s, .NotNull = true})
            .Field(u"GRADE"_s, u"char(1)"_s, {.Name = u"等级"_s, .NotNull = true, .Default = u"B"_s})
            .Field(u"QTY"_s, u"int"_s, {.Name = u"数量"_s})
            .Field(u"DAYS"_s, u"smallint"_s, {.Name = u"天数"_s, .Default = u"7"_s})
            .Field(u"PRICE"_s, u"decimal(12,4)"_s, {.Name = u"单价"_s})
            .Field(u"RATE"_s, u"float"_s, {.Name = u"折扣"_s})
            .Field(u"MADE"_s, u"date"_s, {.Name = u"日期"_s})
            .Field(u"SEEN"_s, u"datetime"_s, {.Name = u"时间"_s})
            .Field(u"STOPPED"_s, u"boolean(6)"_s, {.Name = u"停用"_s, .Default = u"N"_s})
            .Field(u"NOTE"_s, u"text"_s, {.Name = u"备注"_s})
            .Field(u"PIC"_s, u"image"_s, {.Name = u"图片"_s})
            .Index(u"UX_PART_NAME"_s, u"NAME"_s, u"u"_s);
        store.Table(u"HEAD"_s, u"THeadRecord"_s, u"单头"_s)
            .Field(u"BILLCODE"_s, u"varchar(8)"_s, {.Prop = u"BillCode"_s, .Key = true, .NotNull = true})
            .Field(u"CUST"_s, u"varchar(10)"_s, {.Prop = u"Cust"_s});
        store.Table(u"LINE"_s, u"TLineRecord"_s, u"明细"_s)
            .Field(u"BILLCODE"_s, u"varchar(8)"_s, {.Prop = u"BillCode"_s, .Key = true, .NotNull = true})
            .Field(u"NO"_s, u"char(4)"_s, {.Prop = u"No"_s, .Key = true, .NotNull = true})
            .Field(u"CODE"_s, u"varchar(6)"_s)
            .Field(u"QTY"_s, u"int"_s, {.Prop = u"Qty"_s});
        store.Table(u"NUMBERED"_s, u"TNumberedRecord"_s, u"编号"_s)
            .Field(u"ID"_s, u"int"_s, {.Prop = u"Id"_s, .Key = true, .NotNull = true})
            .Field(u"TEXT1"_s, u"char(5)"_s, {.Prop = u"Text"_s});
        store.Table(u"WRONG"_s, u"TWrongRecord"_s)
            .Field(u"CODE"_s, u"varchar(6)"_s, {.Prop = u"Code"_s, .Key = true})
            .Field(u"QTY"_s, u"int"_s, {.Prop = u"Missing"_s});
        store.Table(u"NOBODY"_s, u"TNobody"_s).Field(u"CODE"_s, u"varchar(6)"_s, {.Key = true});
        store.Query(u"QPART"_s, u"PART|"_s, u"PART"_s)
            .Column(u"PART.CODE"_s, u"Code"_s, u"PART.CODE"_s, u"编号"_s)
            .Column(u"PART.NAME"_s, u"Name"_s, u"PART.NAME"_s, u"标签"_s)
            .Column(u"PART.QTY"_s, u"Amount"_s, u"PART.QTY"_s, u"数量"_s)
            .Column(u"PART.RATE*2"_s, u"Twice"_s, u"PART.RATE"_s, u"两倍"_s);
        store.Query(u"QGRADE"_s, u"PART|"_s, u"PART where PART.GRADE='%s' and PART.NAME like '%%%%'"_s)
            .Column(u"PART.CODE"_s, u"Code"_s, u"PART.CODE"_s)
            .Column(u"PART.QTY"_s, u"Amount"_s, u"PART.QTY"_s);
        store.Command(u"CLOSE"_s,
                      u"update PART set NOTE='%USERCODE% %USERGROUP% %ISSUPER% access' where CODE='P1'"_s,
                      u"update PART set NOTE='%USERCODE% %USERGROUP% %ISSUPER% mssql' where CODE='P1'"_s);
        store.Command(u"STAMP"_s, u"update PART set NOTE='%DATETIME% %DATE% %TIME%' where CODE='%s'"_s);
        store.Command(u"TYPO"_s, u"update PART set NOTE='%USERNAME%'"_s);
    }

    /// A dataset that is ready to open.
    std::unique_ptr<TExTable> Table(const QString &code)
    {
        auto table = std::make_unique<TExTable>();
        table->SetTable(code);
        Connect(*table);
        return table;
    }
    std::unique_ptr<TExQuery> Query(const QString &code)
    {
        auto query = std::make_unique<TExQuery>();
        query->SetQuery(code);
        Connect(*query);
        return query;
    }
    /// An open dataset in batch mode.
    std::unique_ptr<TExTable> Batch(const QString &code)
    {
        auto table = Table(code);
        table->SetCommitType(ctBatchCommit);
        table->Open();
        return table;
    }
    void Connect(TExCustomDataSet &dataSet)
    {
        dataSet.SetDBDFile(&Design);
        dataSet.SetDBSession(&Session);
    }

    /// Rows of PART: code, name, quantity.
    void AddParts(const QList<std::tuple<QString, QString, int>> &rows)
    {
        for (const auto &[code, name, qty] : rows)
            Run({u"insert into PART(CODE, NAME, GRADE, QTY, RATE) values('%1', '%2', 'B', %3, 1.5)"_s.arg(
                code, name, QString::number(qty))});
    }
    /// Nothing in a test that is skipped, so that fixtures may begin with it.
    void Run(const QStringList &statements)
    {
        if (IsSkipped())
            return;
        for (const QString &statement : statements)
            Session.Execute(statement);
        FLog.clear();
    }

    /// What ran since the last call, times as "<time>" and questions for them as "<clock>".
    QStringList Log()
    {
        static const QRegularExpression time(u"\\b20\\d{12}\\b"_s);
        for (QString &statement : FLog) {
            statement.replace(time, u"<time>"_s);
            if (statement == "select now()" || statement == "select getdate()")
                statement = u"<clock>"_s;
        }
        return std::exchange(FLog, {});
    }

    QString TextOfTable(const QString &statement) { return Rows(statement).join(u" / "_s); }
    /// Rows of PART with user and, as "t", times of the audit columns.
    QString PartRows()
    {
        return TextOfTable(
                   u"select CODE, NAME, QTY, CREATOR, left(CREATEDATE, 2), MODIFIER, left(MODIFYDATE, 2), "
                   "CREATORGROUP from PART order by CODE"_s)
            .replace(u"|20|"_s, u"|t|"_s);
    }

private:
    QStringList FLog;
};

/// The values of some fields of the current row, joined by "|".
inline QString RowOf(const TDataSet &dataSet, const QString &fields)
{
    QStringList cells;
    for (const TField *field : dataSet.GetFieldList(fields))
        cells += field->IsNull() ? u"~"_s : field->AsString();
    return cells.join(u'|');
}

/// The rows of a dataset in its order, joined by " / "; the cursor goes back where it was.
inline QString Shown(TDataSet &dataSet, const QString &fields)
{
    QStringList rows;
    const qsizetype place = dataSet.RecNo();
    for (dataSet.First(); !dataSet.Eof(); dataSet.Next())
        rows += RowOf(dataSet, fields);
    if (place > 0)
        dataSet.SetRecNo(place);
    return rows.join(u" / "_s);
}

/// Writes values into the row being edited.
inline void Fill(TDataSet &dataSet, const QList<std::pair<QString, QString>> &values)
{
    for (const auto &[field, value] : values)
        dataSet.FieldByName(field)->SetAsString(value);
}

} // namespace Korvane::Testing
