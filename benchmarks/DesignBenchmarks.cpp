// SPDX-License-Identifier: MIT
#include "DesignBenchmarks.h"

#include "LargeDesign.h"
#include "Programs.h"
#include "design/DBDFile.h"
#include "platform/sql/dialect/SqlRewriter.h"
#include "platform/sql/sqlite/DatabaseFile.h"
#include "session/DBSession.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <memory>

namespace Bench {

using namespace Korvane;

namespace {

constexpr int Lookups = 1'000'000;
constexpr int PeerLookups = 50'000; // measured on fewer, reported for as many

/// Reads every value of the seven tables, as a program on Qt SQL would.
void ReadBySqlQuery(const QString &file)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("open"));
        database.setDatabaseName(file);
        database.open();
        qint64 cells = 0;
        for (const char *table : DesignTables) {
            QSqlQuery query(database);
            query.setForwardOnly(true);
            query.exec(QStringLiteral("select * from %1").arg(QLatin1String(table)));
            while (query.next())
                for (int i = 0; query.value(i).isValid() && i < 20; ++i)
                    ++cells;
        }
        Use(cells);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("open"));
}

/// A prepared lookup with Qt SQL that reads all columns of the row it finds.
class TSqlLookup
{
public:
    explicit TSqlLookup(const QString &file)
    {
        QSqlDatabase database =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("lookup"));
        database.setDatabaseName(file);
        database.open();
        FQuery = std::make_unique<QSqlQuery>(database);
        FQuery->setForwardOnly(true);
        FQuery->prepare(QStringLiteral("select * from Fields where TableCode=? and FieldCode=?"));
    }

    void Run(const QStringList &tables, const QStringList &fields)
    {
        qint64 sum = 0;
        for (int i = 0; i < PeerLookups; ++i) {
            FQuery->bindValue(0, tables[i % LargeTables]);
            FQuery->bindValue(1, fields[i * 7 % FieldsPerTable]);
            FQuery->exec();
            if (FQuery->next())
                for (int column = 0; column < 13; ++column)
                    sum += FQuery->value(column).isNull() ? 0 : 1;
            FQuery->finish();
        }
        Use(sum);
    }

private:
    std::unique_ptr<QSqlQuery> FQuery;
};

/// The create script in the engine's own language, as the shell can run it.
QByteArray ShellScript(TDBDFile &design)
{
    QByteArray script = "pragma journal_mode=wal;\npragma synchronous=full;\n"
                        "create table Version(VerNo integer not null, primary key(VerNo));\n"
                        "insert into Version(VerNo) values(0);\n";
    const QStringList entries = design.CreateScript(dbtAccess, false, false, false);
    for (const QString &entry : entries)
        if (!entry.isEmpty() && entry != QLatin1String("go"))
            for (const TRewrittenStep &step : RewriteForSqlite(entry, TSqlDialect::Access).Steps)
                script += step.Sql + ";\n";
    return script;
}

void RunShell(const QString &database, const QString &script)
{
    QProcess shell;
    shell.setStandardInputFile(script);
    shell.start(QStringLiteral("sqlite3"), {QStringLiteral("-bail"), database});
    FinishProgram(shell);
}

/// Reads every value of the seven tables of a Jet file with the exporter, a process for each.
void ExportJetTables(const QString &file)
{
    for (const char *table : DesignTables)
        ExportJetTable(file, QLatin1String(table), {}, QProcess::nullDevice());
}

std::shared_ptr<TDBDFile> OpenDesign(const QString &file)
{
    const auto design = std::make_shared<TDBDFile>();
    design->SetFileName(file);
    design->SetActived(true);
    return design;
}

/// Two stores of one design must give the same answers, or different work would be measured.
void CheckSameDesign(TDBDFile &left, TDBDFile &right)
{
    const auto script = [](TDBDFile &design) { return design.CreateScript(dbtAccess, true, false, true); };
    bool same = left.GetTableNames() == right.GetTableNames() && script(left) == script(right);
    for (const int table : {0, LargeTables / 2, LargeTables - 1}) {
        for (int i = 0; i < FieldsPerTable; ++i) {
            const auto one = left.GetField(LargeTableCode(table), LargeFieldCode(i));
            const auto other = right.GetField(LargeTableCode(table), LargeFieldCode(i));
            same = same && one->FieldNo == other->FieldNo && one->FieldName == other->FieldName &&
                   one->FieldProp == other->FieldProp && one->FieldDefault == other->FieldDefault;
        }
    }
    for (const auto &command : left.GetCommands()) {
        const auto other = right.GetCommand(command->CommandCode);
        same = same && command->Access == other->Access && command->MSSQL == other->MSSQL;
    }
    if (!same)
        qFatal("%s and %s hold different designs", qUtf8Printable(left.FileName()),
               qUtf8Printable(right.FileName()));
}

void WriteFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qUtf8Printable(name));
}

} // namespace

QList<TComparison> DesignComparisons(const QString &folder)
{
    const QString file = QDir(folder).filePath(QStringLiteral("large.store"));
    MakeLargeDesign(file);
    const QString jetFile = QDir(folder).filePath(QStringLiteral("large.dbd"));
    MakeLargeJetDesign(file, jetFile);

    const auto design = OpenDesign(file);
    CheckSameDesign(*design, *OpenDesign(jetFile));
    QStringList tables, fields;
    for (int i = 0; i < LargeTables; ++i)
        tables.append(LargeTableCode(i));
    for (int i = 0; i < FieldsPerTable; ++i)
        fields.append(LargeFieldCode(i));
    const auto lookup = std::make_shared<TSqlLookup>(file);

    const QString script = QDir(folder).filePath(QStringLiteral("large.sql"));
    WriteFile(script, ShellScript(*design));
    const QString ours = QDir(folder).filePath(QStringLiteral("ours.db"));
    const QString theirs = QDir(folder).filePath(QStringLiteral("theirs.db"));

    return {
        {QStringLiteral("open a design of 300 tables, 12,000 fields (SQLite)"),
         QStringLiteral("QSqlQuery reading the same tables"),
         {},
         [file] { Use(OpenDesign(file)->GetMaxChangeNo()); },
         [file] { ReadBySqlQuery(file); }},
        {QStringLiteral("open a design of 300 tables, 12,000 fields (Jet)"),
         QStringLiteral("mdb-export of the same tables to /dev/null, a process for each"),
         {},
         [jetFile] { Use(OpenDesign(jetFile)->GetMaxChangeNo()); },
         [jetFile] { ExportJetTables(jetFile); }},
        {QStringLiteral("1,000,000 GetField lookups"),
         QStringLiteral("prepared QSqlQuery, indexed; 50,000 times 20"),
         AtLeast(20),
         [design, tables, fields] {
             qint64 sum = 0;
             for (int i = 0; i < Lookups; ++i)
                 sum += design->GetField(tables[i % LargeTables], fields[i * 7LL % FieldsPerTable])->FieldNo;
             Use(sum);
         },
         [lookup, tables, fields] { lookup->Run(tables, fields); },
         {},
         double(Lookups) / PeerLookups},
        {QStringLiteral("CreateScript of that design"),
         {},
         {},
         [design] { Use(design->CreateScript(dbtAccess, true, false, true).size()); },
         {}},
        {QStringLiteral("create the database of that design"), QStringLiteral("sqlite3 shell, same script"),
         Within(1.3),
         [design, ours] {
             TDBSession session;
             session.SetDBType(dbtAccess);
             session.SetDBName(ours);
             design->CreateDB(session, false);
         },
         [theirs, script] { RunShell(theirs, script); },
         [ours, theirs] {
             RemoveDatabaseFile(ours);
             RemoveDatabaseFile(theirs);
         }},
    };
}

} // namespace Bench
