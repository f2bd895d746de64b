// SPDX-License-Identifier: MIT
// From a design file to a database: creates the sample application's database in both
// dialects, loads rows, upgrades an older database and looks for NULLs.
//
//     orders_creation FOLDER-OF-THE-DESIGN FOLDER-FOR-THE-DATABASES
#include "design/DBDFile.h"
#include "examples/orders/creation/OlderDatabase.h"
#include "examples/orders/creation/RowLoader.h"
#include "general/Types.h"
#include "session/DBSession.h"
#include "tools/korvane/TextTable.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTextStream>

using namespace Korvane;

namespace {

QTextStream &Out()
{
    static QTextStream out(stdout);
    return out;
}

void Say(const QString &text) { Out() << text << Qt::endl; }

/// The session of a database in the target folder, in one of the dialects.
void PointTo(TDBSession &session, TDBType type, const QString &folder, const QString &name)
{
    session.SetDBType(type);
    session.SetAppName(QStringLiteral("orders_creation"));
    if (type == dbtMSSQL) {
        session.SetDBServer(QStringLiteral("folder:") + folder);
        session.SetDBName(name);
    } else {
        session.SetDBName(QDir(folder).filePath(name + QStringLiteral(".access.db")));
    }
}

void PrintRowCounts(TDBDFile &design, TDBSession &session)
{
    TTextTable table;
    table.AddColumn(QStringLiteral("数据表"));
    table.AddColumn(QStringLiteral("名称"));
    table.AddColumn(QStringLiteral("行数"), TTextTable::Alignment::Right);
    for (const auto &entry : design.GetTables()) {
        const TDataPacket count = session.Open(QStringLiteral("select count(*) from ") + entry->TableCode);
        table.AddRow({entry->TableCode, entry->TableName, count.Text(0, 0)});
    }
    Say(table.ToText());
}

/// Runs the check statements and tells of the columns that hold NULLs.
void PrintNulls(TDBDFile &design, TDBSession &session)
{
    int columns = 0;
    qsizetype rows = 0;
    const QStringList statements = design.GetCheckSQL();
    for (const QString &statement : statements) {
        const qsizetype found = session.Open(statement).RowCount();
        columns += found > 0;
        rows += found;
    }
    Say(QStringLiteral("  检查语句 %1 条：%2 个字段有空值，共 %3 处")
            .arg(statements.size())
            .arg(columns)
            .arg(rows));
}

void CreateAndLoad(TDBDFile &design, TDBType type, const QString &source, const QString &target)
{
    QElapsedTimer clock;
    clock.start();
    TDBSession session;
    PointTo(session, type, target, QStringLiteral("orders"));
    design.CreateDB(session, false);
    session.SetConnected(true);
    Say(QStringLiteral("  已创建，版本 %1，%2 毫秒").arg(session.GetVersion()).arg(clock.restart()));
    const int rows = LoadRows(design, session, QDir(source).filePath(QStringLiteral("seed")));
    Say(QStringLiteral("  已载入 %1 行，%2 毫秒；在线用户 %3")
            .arg(rows)
            .arg(clock.elapsed())
            .arg(session.GetOnlineUsers(session.AppName())));
    PrintRowCounts(design, session);
    PrintNulls(design, session);
}

void UpgradeOlder(TDBDFile &design, TDBType type, const QString &target)
{
    TDBSession session;
    PointTo(session, type, target, QStringLiteral("older"));
    design.CreateDB(session, false);
    session.SetConnected(true);
    MakeOlder(session);
    Say(QStringLiteral("  旧数据库，版本 %1，升级语句：").arg(session.GetVersion()));
    session.OnExecute() = [](const QString &statement) {
        Say(QStringLiteral("    ") + statement.simplified());
    };
    design.UpgradeDB(session);
    session.OnExecute() = nullptr;
    session.SetConnected(true);
    const TDataPacket order =
        session.Open(QStringLiteral("select BILLCODE, CURRCODE, RATE, PRINTCOUNT from ORDERHEAD"));
    Say(QStringLiteral("  升级后版本 %1；旧订单 %2：币别 %3，汇率 %4，打印次数 %5")
            .arg(QString::number(session.GetVersion()), order.Text(0, 0), order.Text(1, 0), order.Text(2, 0),
                 order.Text(3, 0)));
}

void Run(const QString &source, const QString &target)
{
    if (!QDir().mkpath(target))
        throw EFileError(QStringLiteral("不能创建文件夹：%1").arg(target));
    TDBDFile design;
    design.SetFileName(QDir(source).filePath(QStringLiteral("orders.dbd")));
    design.SetActived(true);
    Say(QStringLiteral("设计文件 %1：%2 个数据表，%3 个查询，%4 个命令，版本 %5")
            .arg(design.FileName())
            .arg(design.GetTables().size())
            .arg(design.GetQuerys().size())
            .arg(design.GetCommands().size())
            .arg(design.GetMaxChangeNo()));
    for (const TDBType type : {dbtAccess, dbtMSSQL}) {
        Say(QStringLiteral("\n%1 方言").arg(GetDBTypeName(type)));
        CreateAndLoad(design, type, source, target);
        UpgradeOlder(design, type, target);
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        Say(QStringLiteral("用法：orders_creation 设计文件夹 数据库文件夹"));
        return 2;
    }
    try {
        Run(arguments[1], arguments[2]);
        return 0;
    } catch (const Exception &error) {
        QTextStream(stderr) << error.Message() << Qt::endl;
        return 1;
    }
}
