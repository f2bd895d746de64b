// SPDX-License-Identifier: MIT
#include "Tool.h"

#include "Commands.h"
#include "ToolOptions.h"
#include "ToolPrompts.h"

#include <QFileDevice>

#include <algorithm>

namespace Korvane {

namespace {

struct TCommand
{
    QString Name;
    QString Arguments; ///< as the help writes them
    QString Summary;
    QString Details;
    QList<TOption> Options;
    int (*Run)(TCommandLine &, TToolStreams &);
};

TOption Flag(const QString &name, const QString &help) { return {name, {}, help}; }

TOption HelpOption() { return Flag(QStringLiteral("help"), QStringLiteral("显示本帮助")); }
TOption YesOption() { return Flag(QStringLiteral("yes"), QStringLiteral("对提问回答“是”")); }
TOption ProgressOption() { return Flag(QStringLiteral("progress"), QStringLiteral("不在终端上也显示进度")); }
TOption BoolAsCharOption()
{
    return Flag(QStringLiteral("bool-as-char"), QStringLiteral("布尔栏位建成 char(1)，不用 bit"));
}

QList<TOption> ImportOptions()
{
    return {{QStringLiteral("design"), QStringLiteral("FILE"), QStringLiteral("新数据库的设计文件")},
            Flag(QStringLiteral("plan"), QStringLiteral("只列出表和列的对应关系，不导入")),
            {QStringLiteral("write-design"), QStringLiteral("FILE"),
             QStringLiteral("按旧表写出设计文件，不导入")},
            {QStringLiteral("old-password"), QStringLiteral("TEXT"), QStringLiteral("旧数据库的密码")},
            {QStringLiteral("user-code"), QStringLiteral("CODE"),
             QStringLiteral("旧表没有创建者等列时填写的用户，默认为 admin")},
            {QStringLiteral("user-group"), QStringLiteral("CODE"),
             QStringLiteral("旧表没有创建者组时填写的组，默认为 Admins")}};
}

QList<TOption> CodeOptions()
{
    return {
        {QStringLiteral("rule"), QStringLiteral("CODE"), QStringLiteral("SYSMQ 中的编码规则，代替以下各项")},
        {QStringLiteral("type"), QStringLiteral("TYPE"),
         QStringLiteral("编码中的日期：day、month（默认）、year 或 number（没有日期）")},
        {QStringLiteral("year-digits"), QStringLiteral("N"), QStringLiteral("年份的位数，默认为 4")},
        {QStringLiteral("digits"), QStringLiteral("N"), QStringLiteral("流水号的位数，默认为 5")},
        Flag(QStringLiteral("custom"), QStringLiteral("流水号全年连续")),
        {QStringLiteral("date"), QStringLiteral("YYYY-MM-DD"),
         QStringLiteral("编码的日期，默认为服务器的当天")}};
}

QList<TOption> ExportOptions()
{
    return {{QStringLiteral("where"), QStringLiteral("TEXT"), QStringLiteral("只导出符合该 SQL 条件的行")},
            {QStringLiteral("order"), QStringLiteral("TEXT"), QStringLiteral("行的顺序，例如 \"CODE desc\"")},
            Flag(QStringLiteral("bom"), QStringLiteral("在 .csv 文件的开头加 UTF-8 标记"))};
}

const QList<TCommand> &Commands()
{
    static const QList<TCommand> commands = {
        {QStringLiteral("create"), QStringLiteral("DESIGN --database NAME"),
         QStringLiteral("按设计文件创建数据库"),
         QStringLiteral("数据库已经存在时先询问是否覆盖；拒绝时状态为 1。"),
         DesignOptions() + SessionOptions() +
             QList<TOption>{BoolAsCharOption(), YesOption(), ProgressOption()},
         RunCreate},
        {QStringLiteral("upgrade"), QStringLiteral("DESIGN --database NAME"),
         QStringLiteral("把数据库升级到设计文件的版本"),
         QStringLiteral("失败时列出已经执行的语句；版本号只在全部成功后才改。"),
         DesignOptions() + SessionOptions(), RunUpgrade},
        {QStringLiteral("script"), QStringLiteral("DESIGN"), QStringLiteral("输出创建全部表和索引的脚本"),
         QStringLiteral("脚本为 UTF-8，行尾为 CR LF，语句之间以 go 行隔开。"),
         DesignOptions() + DialectOptions() +
             QList<TOption>{BoolAsCharOption(),
                            Flag(QStringLiteral("comments"), QStringLiteral("在列后加注释")),
                            Flag(QStringLiteral("properties"), QStringLiteral("注释中加属性名")),
                            {QStringLiteral("output"), QStringLiteral("FILE"),
                             QStringLiteral("写入文件，代替标准输出")}},
         RunScript},
        {QStringLiteral("check"), QStringLiteral("DESIGN --database NAME"),
         QStringLiteral("查找数据库中的空值（NULL）"), QStringLiteral("找到空值时状态为 1。"),
         DesignOptions() + SessionOptions() + QList<TOption>{ProgressOption()}, RunCheck},
        {QStringLiteral("repair"), QStringLiteral("DESIGN --database NAME"),
         QStringLiteral("填充数据库中的空值（NULL）"),
         QStringLiteral("先列出空值并询问，再在一个事务中填充；拒绝时状态为 1。"),
         DesignOptions() + SessionOptions() + QList<TOption>{YesOption(), ProgressOption()}, RunRepair},
        {QStringLiteral("backup"), QStringLiteral("--database NAME FILE"),
         QStringLiteral("把数据库整个复制到一个文件"),
         QStringLiteral("其他用户可以继续使用数据库。FILE 已经存在时先询问是否覆盖；拒绝时状态为 1。"),
         SessionOptions() + QList<TOption>{YesOption()}, RunBackup},
        {QStringLiteral("restore"), QStringLiteral("--database NAME FILE"),
         QStringLiteral("用备份替换数据库"),
         QStringLiteral("备份先经检查，损坏时数据库不变。数据库必须无人使用。替换前先询问；拒绝时状态为 1。"),
         SessionOptions() + QList<TOption>{YesOption()}, RunRestore},
        {QStringLiteral("tables"), QStringLiteral("DESIGN"), QStringLiteral("列出设计文件中的表"), QString(),
         DesignOptions(), RunTables},
        {QStringLiteral("fields"), QStringLiteral("DESIGN NAME"),
         QStringLiteral("列出一个表的栏位或一个查询的列"), QStringLiteral("NAME 为表或查询的代码或类名。"),
         DesignOptions(), RunFields},
        {QStringLiteral("sql"), QStringLiteral("--database NAME STATEMENT | --file FILE | -"),
         QStringLiteral("执行 SQL 语句或以 GO 行隔开的脚本"),
         QStringLiteral("查询的结果以表格输出。参数 - 表示从标准输入读取。脚本在第一个失败的语句处停止。"),
         SessionOptions() +
             QList<TOption>{
                 {QStringLiteral("file"), QStringLiteral("FILE"), QStringLiteral("执行该文件中的脚本")},
                 Flag(QStringLiteral("csv"), QStringLiteral("查询的结果以 CSV 输出"))},
         RunSql},
        {QStringLiteral("class"), QStringLiteral("DESIGN NAME | --all | --cpp [NAME…]"),
         QStringLiteral("输出表或查询的记录类"),
         QStringLiteral("NAME 为表或查询的代码或类名。选项 --cpp 输出本系统的 C++ 头文件，"
                        "没有 NAME 时为全部表和查询。"),
         DesignOptions() +
             QList<TOption>{Flag(QStringLiteral("all"), QStringLiteral("全部表和查询")),
                            Flag(QStringLiteral("cpp"), QStringLiteral("输出 C++ 头文件，类自行登记")),
                            {QStringLiteral("output"), QStringLiteral("FILE"),
                             QStringLiteral("写入文件，代替标准输出；内容相同则不动")},
                            {QStringLiteral("namespace"), QStringLiteral("NS"),
                             QStringLiteral("类所在的名字空间，例如 Orders::Records")}},
         RunClass},
        {QStringLiteral("import"),
         QStringLiteral("OLD --design FILE --database NAME | OLD --write-design FILE"),
         QStringLiteral("把旧的 Jet 数据库导入新数据库"),
         QStringLiteral("全部的值都放得下并且校验一致才建立新数据库；新数据库已经存在时先询问是否覆盖。"
                        "选项 --write-design 按旧表写出设计文件。"),
         ImportOptions() + SessionOptions() +
             QList<TOption>{BoolAsCharOption(), YesOption(), ProgressOption()},
         RunImport},
        {QStringLiteral("export"), QStringLiteral("DESIGN --database NAME TABLE|QUERY FILE"),
         QStringLiteral("把一个表或查询的数据导出到文件"),
         QStringLiteral("FILE 的结尾决定格式：.xls、.xlsx 或 .csv（UTF-8）。FILE 已经存在时先询问是否覆盖；"
                        "拒绝时状态为 1。"),
         DesignOptions() + SessionOptions() + ExportOptions() + QList<TOption>{YesOption(), ProgressOption()},
         RunExport},
        {QStringLiteral("words"), QStringLiteral("AMOUNT"), QStringLiteral("输出金额的大写"),
         QStringLiteral("AMOUNT 最多两位小数。"),
         QList<TOption>{Flag(QStringLiteral("en"), QStringLiteral("用英文"))}, RunWords},
        {QStringLiteral("next-code"), QStringLiteral("--database NAME TABLE FIELD"),
         QStringLiteral("输出一个编码栏位的下一个编码"),
         QStringLiteral("只查询，不保留编码。没有此规则或规则为手工编码时状态为 1。"),
         CodeOptions() + SessionOptions(), RunNextCode},
    };
    return commands;
}

const TCommand &FindCommand(const QString &name)
{
    const QList<TCommand> &commands = Commands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const TCommand &command) { return command.Name == name; });
    if (found == commands.end())
        throw EUsageError(QStringLiteral("未知的命令 ") + name);
    return *found;
}

QString Column(const QString &text, int width)
{
    return QStringLiteral("  ") + text.leftJustified(width) + QStringLiteral("  ");
}

QString ToolHelp()
{
    QString help = QStringLiteral("用法：korvane 命令 [选项] [参数]\n\n命令：\n");
    for (const TCommand &command : Commands())
        help += Column(command.Name, 9) + command.Summary + u'\n';
    return help + QStringLiteral("\n选项：\n") + Column(QStringLiteral("--help"), 9) +
           QStringLiteral("显示本帮助；放在命令后面则显示该命令的帮助\n") +
           Column(QStringLiteral("--version"), 9) +
           QStringLiteral(
               "显示版本\n\n退出状态：0 完成；1 失败、被拒绝，或 check 找到了空值；2 用法不对。\n");
}

QString CommandHelp(const TCommand &command)
{
    QString help = QStringLiteral("用法：korvane %1 [选项] %2\n\n%3。")
                       .arg(command.Name, command.Arguments, command.Summary) +
                   command.Details + QStringLiteral("\n\n选项：\n");
    for (const TOption &option : command.Options + QList<TOption>{HelpOption()})
        help += Column(QStringLiteral("--%1 %2").arg(option.Name, option.Value), 20) + option.Help + u'\n';
    return help;
}

int RunCommand(const TCommand &command, const QStringList &arguments, TToolStreams &streams)
{
    TCommandLine line(command.Options + QList<TOption>{HelpOption()}, arguments);
    if (line.Has(QStringLiteral("help"))) {
        streams.Out << CommandHelp(command);
        return tsDone;
    }
    const auto answer =
        line.Has(QStringLiteral("yes")) ? TToolPrompts::Answer::Yes : TToolPrompts::Answer::Ask;
    const TInstalledPrompts prompts(streams, answer);
    return command.Run(line, streams);
}

int Dispatch(const QStringList &arguments, TToolStreams &streams)
{
    if (arguments.isEmpty())
        throw EUsageError(QStringLiteral("缺少命令"));
    const QString first = arguments.first();
    if (first == QLatin1String("--help") || first == QLatin1String("-h"))
        streams.Out << ToolHelp();
    else if (first == QLatin1String("--version"))
        streams.Out << "korvane " KORVANE_VERSION "\n";
    else
        return RunCommand(FindCommand(first), arguments.mid(1), streams);
    return tsDone;
}

/// Says which help to read: the command's when there is one of that name.
QString HelpCall(const QStringList &arguments)
{
    const QString name = arguments.value(0);
    const bool known = std::any_of(Commands().begin(), Commands().end(),
                                   [&](const TCommand &command) { return command.Name == name; });
    return known ? QStringLiteral("korvane %1 --help").arg(name) : QStringLiteral("korvane --help");
}

/// What was printed is out, or EFileError is raised: a full disk is no success.
void FinishOutput(TToolStreams &streams)
{
    streams.Out.flush();
    auto *file = qobject_cast<QFileDevice *>(streams.Out.device());
    if (streams.Out.status() != QTextStream::Ok || (file && !file->flush()))
        throw EFileError(QStringLiteral("无法写入标准输出"));
}

} // namespace

int RunTool(const QStringList &arguments, TToolStreams &streams)
{
    int status = tsFailed;
    try {
        status = Dispatch(arguments, streams);
        FinishOutput(streams);
    } catch (const EUsageError &error) {
        streams.Err << QStringLiteral("%1。用法见 %2\n").arg(error.Message(), HelpCall(arguments));
        status = tsUsage;
    } catch (const EAbort &) {
        status = tsFailed; // given up without a word, as asked for
    } catch (const Exception &error) {
        streams.Out.flush();
        PrintError(streams, error);
        status = tsFailed;
    } catch (const std::exception &error) {
        PrintError(streams, Exception(QString::fromUtf8(error.what())));
        status = tsFailed;
    }
    streams.Out.flush();
    streams.Err.flush();
    return status;
}

} // namespace Korvane
