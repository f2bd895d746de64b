// SPDX-License-Identifier: MIT
#include "design/DBDFile.h"
#include "examples/orders/window/OrdersForm.h"
#include "examples/orders/window/script/OrderScript.h"
#include "general/SessionValues.h"
#include "platform/core/Exceptions.h"
#include "platform/forms/Application.h"

#include <QDir>
#include <QTextStream>

#include <cstring>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

struct TArguments
{
    QString DesignFolder, DatabaseFolder;
    QString PictureFolder; // empty unless a script is to be played
};

TArguments Read(const QStringList &arguments)
{
    const bool isScript = arguments.size() == 5 && arguments[3] == u"--script";
    if (arguments.size() != 3 && !isScript)
        throw Exception(u"用法：orders 设计文件夹 数据库文件夹 [--script 图片文件夹]"_s);
    return {arguments[1], arguments[2], isScript ? QDir(arguments[4]).absolutePath() : QString()};
}

void SignIn()
{
    AUserCode = u"u101"_s;
    AUserGroup = u"SalesA"_s;
}

/// Chinese letters in their Chinese shapes where the desktop's font has none of its own.
void ChooseFonts()
{
    QFont font = QApplication::font();
    font.setFamilies({font.family(), u"Noto Sans CJK SC"_s, u"Microsoft YaHei"_s, u"PingFang SC"_s});
    QApplication::setFont(font);
}

void Connect(TDBSession &session, const QString &folder)
{
    const QString file = QDir(folder).absoluteFilePath(u"orders.access.db"_s);
    if (!QFile::exists(file))
        throw EFileError(u"没有数据库 %1，请先用 orders_creation 建立"_s.arg(QDir::toNativeSeparators(file)));
    session.SetDBType(dbtAccess);
    session.SetAppName(u"orders"_s);
    session.SetDBName(file);
    session.SetConnected(true);
    // Failed statements are kept in a file "Error.sql" of the current folder.
    QDir::setCurrent(folder);
}

int Run(TApplication &application, const TArguments &arguments)
{
    SignIn();
    ChooseFonts();
    TDBDFile design;
    design.SetFileName(QDir(arguments.DesignFolder).absoluteFilePath(u"orders.dbd"_s));
    design.SetActived(true);
    TDBSession session;
    Connect(session, arguments.DatabaseFolder);
    TOrdersForm form(design, session);
    application.SetMainForm(&form);
    std::unique_ptr<TOrderScript> script;
    if (!arguments.PictureFolder.isEmpty()) {
        script = std::make_unique<TOrderScript>(form, arguments.PictureFolder);
        script->Start();
    }
    return application.Run();
}

} // namespace

int main(int argc, char **argv)
{
    const bool isScript = argc > 3 && std::strcmp(argv[3], "--script") == 0;
    if (isScript)
        qputenv("QT_NO_GLIB", "1"); // its dispatcher does not tell when it waits
    TApplication application(argc, argv);
    application.SetTitle(u"订单管理"_s);
    try {
        return Run(application, Read(QCoreApplication::arguments()));
    } catch (const Exception &error) {
        if (isScript)
            QTextStream(stderr) << error.Message() << Qt::endl;
        else
            application.ShowException(error);
        return 1;
    }
}
