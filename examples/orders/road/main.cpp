// SPDX-License-Identifier: MIT
// The road of a record: from the database into a dataset, through an edit, and back as
// statements, in direct and in batch mode, on the databases that orders_creation has made.
//
//     orders_road FOLDER-OF-THE-DESIGN FOLDER-OF-THE-DATABASES
//
// What it tells it also checks, and fails at the first thing that is not so.
#include "design/DBDFile.h"
#include "examples/orders/road/OrderForm.h"
#include "examples/orders/road/Stage.h"
#include "examples/orders/road/Steps.h"
#include "general/SessionValues.h"

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

void SignIn()
{
    AUserCode = u"u101"_s;
    AUserGroup = u"SalesA"_s;
}

void WalkTheRoad(TDBDFile &design, TDBType type, const QString &folder)
{
    SignIn();
    TStage stage(design, type, folder);
    stage.Say(u"\n%1 方言"_s.arg(GetDBTypeName(type)));
    const int heads = stage.CountInDatabase(u"ORDERHEAD"_s, u"1=1"_s);
    const int lines = stage.CountInDatabase(u"ORDERLINE"_s, u"1=1"_s);

    WalkOrders(stage);
    TOrderForm form(stage);
    InsertHead(stage, form);
    InsertLines(stage, form);
    ChangeLines(stage, form);
    ReplaceLines(stage, form);
    ChangeKey(stage, form);
    RollBackHead(stage, form);
    FailAndRepeat(stage, form);
    DeleteOrder(stage, form);

    stage.Check(stage.CountInDatabase(u"ORDERHEAD"_s, u"1=1"_s) == heads &&
                    stage.CountInDatabase(u"ORDERLINE"_s, u"1=1"_s) == lines,
                u"数据库与开始时一样：单头 %1 行，明细 %2 行"_s.arg(heads).arg(lines));
}

void Run(const QString &source, const QString &target)
{
    TDBDFile design;
    design.SetFileName(QDir(source).absoluteFilePath(u"orders.dbd"_s));
    design.SetActived(true);
    const QString folder = QDir(target).absolutePath();
    // Failed statements are kept in a file "Error.sql" of the current folder.
    if (!QDir::setCurrent(folder))
        throw EFileError(u"没有文件夹：%1"_s.arg(folder));
    for (const TDBType type : {dbtAccess, dbtMSSQL})
        WalkTheRoad(design, type, folder);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        QTextStream(stdout) << u"用法：orders_road 设计文件夹 数据库文件夹"_s << Qt::endl;
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
