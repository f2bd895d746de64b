// SPDX-License-Identifier: MIT
#include "session/DBSession.h"

#include "general/RunLog.h"
#include "platform/core/Cursor.h"
#include "platform/core/Format.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/StringList.h"
#include "platform/core/Text.h"
#include "platform/core/Variants.h"

namespace Korvane {

namespace {

constexpr auto ErrorFile = "Error.sql";

/// The description of the provider's main error. Raises EListError when there is none.
QString MainDescription(const QList<TSqlError> &errors)
{
    if (errors.isEmpty())
        throw EListError(QStringLiteral("列表索引越界（0）"));
    return errors.first().Description;
}

/// A log that cannot be written must not hide what failed.
void LogError(const QString &text)
{
    try {
        SaveError(QLatin1String(ErrorFile), text);
    } catch (const EFileError &) {
    }
}

/// The date and time that a text is in the form "yyyy-mm-dd hh:mm:ss.zzz"; nothing for any
/// other text.
std::optional<TDateTime> ParseClock(QStringView text)
{
    constexpr QStringView form = u"0000-00-00 00:00:00.000";
    if (text.size() != form.size())
        return std::nullopt;
    for (qsizetype i = 0; i < form.size(); ++i)
        if (form[i] == u'0' ? text[i] < u'0' || text[i] > u'9' : text[i] != form[i])
            return std::nullopt;
    const auto number = [text](qsizetype at, qsizetype digits) {
        int value = 0;
        for (qsizetype i = at; i < at + digits; ++i)
            value = value * 10 + (text[i].unicode() - u'0');
        return value;
    };
    const QDate date(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2), number(20, 3));
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return TDateTime(date, time);
}

QString LineText(const QString &line) { return TextOf({line}); }

} // namespace

QString AccessConnectionString(const QString &fileName, const QString &user, const QString &password)
{
    return Format(
        QStringLiteral(
            "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=%s;User ID=%s;Jet OLEDB:Database Password=%s"),
        {TConnectionString::Quoted(fileName), TConnectionString::Quoted(user),
         TConnectionString::Quoted(password)});
}

QString MSSQLConnectionString(const QString &server, const QString &database, const QString &user,
                              const QString &password, const QString &applicationName)
{
    return Format(
        QStringLiteral("Provider=SQLOLEDB.1;Data Source=%s;Initial Catalog=%s;User ID=%s;Password=%s;"
                       "Application Name=%s"),
        {TConnectionString::Quoted(server), TConnectionString::Quoted(database),
         TConnectionString::Quoted(user), TConnectionString::Quoted(password),
         TConnectionString::Quoted(applicationName)});
}

TDBSession::TDBSession(QObject *owner) : TComponent(owner)
{
    FConnection.SetIsolationLevel(ilCursorStability);
    FConnection.SetMode(cmUnknown);
    FConnection.SetKeepConnection(true);
    FConnection.SetLoginPrompt(false);
    FQuery.SetCacheSize(1000);
    FQuery.SetEnableBCD(false);
    FQuery.SetConnection(&FConnection);
    FProvider.SetDataSet(&FQuery);
    FCommand.SetConnection(&FConnection);
}

TDBSession::~TDBSession()
{
    FQuery.Close();
    SetConnected(false);
}

template <class Text, class Action> auto TDBSession::Guarded(TLogging logging, Text text, Action action)
{
    FConnection.ClearErrors(); // a failure before the connection is reached must not tell an old one
    try {
        return action();
    } catch (const Exception &) {
        Fail(logging, FConnection.Errors(), text());
    }
}

void TDBSession::Fail(TLogging logging, const QList<TSqlError> &errors, const QString &sql)
{
    SetScreenCursor(crDefault);
    if (logging == TLogging::ErrorFile)
        LogError(MainDescription(errors) + QLatin1Char('\r') + sql);
    if (!errors.isEmpty())
        throw Exception(MainDescription(errors) + QLatin1Char('\r') + sql);
    throw Exception(QStringLiteral("脚本运行出错，请检查脚本是否正确") + QLatin1Char('\r') + sql);
}

void TDBSession::SetConnected(bool connected)
{
    FConnected = connected;
    if (connected)
        Connect();
    else
        DisConnect();
}

void TDBSession::SetDBType(TDBType type)
{
    FDBType = type;
    FDBUser = type == dbtMSSQL ? QStringLiteral("sa") : QStringLiteral("Admin");
}

void TDBSession::Connect()
{
    if (FDBType == dbtMSSQL)
        ConnectMSSQL();
    else
        ConnectAccess();
}

void TDBSession::DisConnect()
{
    FConnection.SetConnected(false);
    FConnected = false;
}

void TDBSession::ConnectTo(const QString &connectionString)
{
    FConnected = false;
    FConnection.SetConnected(false);
    FConnection.SetConnectionString(connectionString);
    FConnection.SetApplicationName(FAppName);
    try {
        FConnection.SetConnected(true);
    } catch (const Exception &) {
        SetScreenCursor(crDefault);
        if (!FConnection.Errors().isEmpty())
            throw Exception(MainDescription(FConnection.Errors()));
        throw Exception(QStringLiteral("连接失败，请检验属性设置是否正确"));
    }
    FConnected = true;
}

void TDBSession::ConnectAccess()
{
    ConnectTo(AccessConnectionString(FDBName, FDBUser, FDBPassword));
    OpenQuery(QStringLiteral("select now()"));
    const QTime time = VarToDateTime(FirstValue()).ToQTime();
    // The milliseconds go in unscaled, on purpose: the number only has to tell sessions apart.
    FSPID = time.hour() * 3600 + time.minute() * 60 + time.second() + time.msec();
}

void TDBSession::ConnectMSSQL()
{
    ConnectTo(MSSQLConnectionString(FDBServer, FDBName, FDBUser, FDBPassword, FAppName));
    OpenQuery(QStringLiteral("select @@spid"));
    FSPID = VarToInt(FirstValue());
}

void TDBSession::BeginTrans()
{
    if (!FConnection.InTransaction())
        FTransLevel = FConnection.BeginTrans();
}

void TDBSession::CommitTrans()
{
    if (FConnection.InTransaction())
        FConnection.CommitTrans();
}

void TDBSession::RollbackTrans()
{
    if (FConnection.InTransaction())
        FConnection.RollbackTrans();
}

void TDBSession::OpenQuery(const QString &statement)
{
    FQuery.Close();
    FQuery.SetSQL({statement});
    FQuery.Open();
}

QVariant TDBSession::FirstValue() const { return FQuery.Fields(0).AsVariant(); }

bool TDBSession::Execute(const QString &statement, const TBlobStreams *streams)
{
    Guarded(
        TLogging::ErrorFile, [&] { return statement; },
        [&] {
            FCommand.SetCommandText(statement);
            if (streams && FCommand.ParameterCount() > 0)
                for (qsizetype i = 0; i < streams->Count(); ++i)
                    FCommand.LoadParameter(i, streams->Bytes(i), ftBlob);
            FCommand.Execute();
        });
    return true;
}

int TDBSession::Execute(const QString &statement)
{
    return Guarded(
        TLogging::ErrorFile, [&] { return statement; },
        [&] {
            FCommand.SetCommandText(statement);
            return int(FCommand.Execute());
        });
}

bool TDBSession::Execute(const QStringList &script)
{
    FQuery.Close();
    QStringList batch;
    for (qsizetype i = 0; i < script.size(); ++i) {
        const QString line = Trim(script[i]);
        const bool separator = UpperCase(line) == QLatin1String("GO");
        if (!separator && !line.isEmpty())
            batch.append(line);
        if ((!separator && i + 1 < script.size()) || batch.isEmpty())
            continue;
        FQuery.SetSQL(batch);
        Guarded(
            TLogging::None, [&] { return TextOf(FQuery.SQL()); }, [&] { FQuery.ExecSQL(); });
        FQuery.Close();
        batch.clear();
    }
    FQuery.SetSQL({});
    return true;
}

bool TDBSession::ExecuteSQL()
{
    FQuery.Close();
    for (const QString &text : std::as_const(FSQL)) {
        const QString line = Trim(text);
        if (line.isEmpty())
            continue;
        FQuery.Close();
        FQuery.SetSQL({line});
        Guarded(
            TLogging::None, [&] { return LineText(line); }, [&] { FQuery.ExecSQL(); });
    }
    return true;
}

TDataPacket TDBSession::Open(const QString &statement)
{
    // A packet carries no read-only marks, so that none have to be taken off its fields.
    Guarded(
        TLogging::ErrorFile, [&] { return statement; }, [&] { OpenQuery(statement); });
    return FProvider.Data();
}

/// Reports failures in the library's form. The session may be gone by then.
class TDBSession::TFeed final : public TRowFeed
{
public:
    TFeed(std::shared_ptr<TRowFeed> rows, QString statement)
        : FRows(std::move(rows)), FStatement(std::move(statement))
    {
    }

    bool Read(QDeadlineTimer deadline) override
    {
        try {
            return FRows->Read(deadline);
        } catch (const ESqlError &error) {
            Fail(TLogging::ErrorFile, error.Errors(), FStatement);
        } catch (const Exception &error) {
            Fail(TLogging::ErrorFile, {{error.Message(), 0, {}}}, FStatement);
        }
    }
    const TDataPacket &Rows() const override { return FRows->Rows(); }

private:
    const std::shared_ptr<TRowFeed> FRows;
    const QString FStatement;
};

TFirstRows TDBSession::Open(const QString &statement, qsizetype firstRows)
{
    TFirstRows rows = Guarded(
        TLogging::ErrorFile, [&] { return statement; },
        [&] { return FConnection.QueryFirst(statement, firstRows); });
    if (rows.Feed)
        rows.Feed = std::make_shared<TFeed>(std::move(rows.Feed), statement);
    return rows;
}

bool TDBSession::TableExists(const QString &table)
{
    return FDBType == dbtMSSQL ? TableExistsMSSQL(table) : TableExistsAccess(table);
}

bool TDBSession::TableExistsAccess(const QString &table)
{
    OpenSchema(siTables, {}, {}, FSchema);
    bool found = false;
    const auto type = FSchema.FieldByName(QStringLiteral("TABLE_TYPE"));
    const auto name = FSchema.FieldByName(QStringLiteral("TABLE_NAME"));
    for (; !found && !FSchema.Eof(); FSchema.Next())
        found = type.AsString() == QLatin1String("TABLE") && name.AsString() == table;
    FSchema.Close();
    return found;
}

bool TDBSession::TableExistsMSSQL(const QString &table)
{
    Open(Format(QStringLiteral("select 1 from sysobjects where xtype='U' and name='%s'"), {table}));
    return !FQuery.IsEmpty();
}

bool TDBSession::IsEmpty(const QString &statement)
{
    return Guarded(
        TLogging::ErrorFile, [&] { return statement; },
        [&] {
            OpenQuery(statement);
            return FQuery.IsEmpty();
        });
}

int TDBSession::GetVersion()
{
    return Guarded(
        TLogging::None, [&] { return TextOf(FQuery.SQL()); },
        [&] {
            OpenQuery(QStringLiteral("select max(VerNo) from Version"));
            return VarToInt(FirstValue());
        });
}

void TDBSession::SetVersion(int version)
{
    Guarded(
        TLogging::None, [&] { return TextOf(FQuery.SQL()); },
        [&] {
            FQuery.Close();
            FQuery.SetSQL({QStringLiteral("update Version set VerNo=") + QString::number(version)});
            FQuery.ExecSQL();
        });
}

TDateTime TDBSession::GetDateTime()
{
    const QVariant clock = FConnection.QueryValue(FDBType == dbtMSSQL ? QStringLiteral("select getdate()")
                                                                      : QStringLiteral("select now()"));
    if (VarIsNull(clock))
        return {};
    // Every saved row asks: the form of the embedded engine goes the short way.
    if (clock.typeId() == QMetaType::QString)
        if (const auto moment = ParseClock(*static_cast<const QString *>(clock.constData())))
            return *moment;
    return VarToDateTime(clock);
}

QString TDBSession::GetDateTimeStr()
{
    return FormatDateTime(QStringLiteral("yyyymmddhhmmss"), GetDateTime());
}
QString TDBSession::GetDateStr() { return FormatDateTime(QStringLiteral("yyyymmdd"), GetDateTime()); }
QString TDBSession::GetTimeStr() { return FormatDateTime(QStringLiteral("hhmmss"), GetDateTime()); }

int TDBSession::GetOnlineUsers(const QString &applicationName)
{
    if (FDBType == dbtMSSQL) {
        OpenQuery(
            QStringLiteral("select count(*) as UserCount from master..sysprocesses where program_name=") +
            QuotedStr(applicationName));
        return VarToInt(FirstValue());
    }
    FSchema.Close();
    OpenSchema(siProviderSpecific, {}, QLatin1String(UserRosterSchemaId), FSchema);
    // The connection itself does not count.
    return int(qMax<qsizetype>(FSchema.RecordCount() - 1, 0));
}

TDateTime TDBSession::GetDBDate()
{
    if (FDBType == dbtMSSQL) {
        OpenQuery(QStringLiteral("select crdate as UseDate from master..sysdatabases where name = ") +
                  QuotedStr(FDBName));
        return VarToDateTime(FirstValue());
    }
    FSchema.Close();
    OpenSchema(siTables, {}, {}, FSchema);
    return VarToDateTime(FSchema.FieldByName(QStringLiteral("DATE_CREATED")).AsVariant());
}

void TDBSession::OpenSchema(TSchemaInfo schema, const QVariant &restrictions, const QVariant &schemaId,
                            TADODataSet &target)
{
    FConnection.OpenSchema(schema, restrictions, schemaId, target);
}

} // namespace Korvane
