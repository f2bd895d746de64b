// SPDX-License-Identifier: MIT
#include "platform/sql/odbc/OdbcConnection.h"

#include "platform/sql/odbc/OdbcErrors.h"

namespace Korvane {

namespace {

constexpr SQLULEN LoginSeconds = 15;

QString TextOf(const std::vector<SQLWCHAR> &buffer, SQLSMALLINT length)
{
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(buffer.data()),
                              std::min<qsizetype>(length, qsizetype(buffer.size()) - 1));
}

QList<TSqlError> DiagnosticsOf(SQLSMALLINT handleType, SQLHANDLE handle)
{
    QList<TSqlError> errors;
    std::vector<SQLWCHAR> text(2048);
    for (SQLSMALLINT number = 1;; ++number) {
        std::vector<SQLWCHAR> state(6);
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        const auto read = [&] {
            return SQLGetDiagRecW(handleType, handle, number, state.data(), &native, text.data(),
                                  SQLSMALLINT(text.size()), &length);
        };
        SQLRETURN result = read();
        if (result == SQL_SUCCESS_WITH_INFO && length >= SQLSMALLINT(text.size())) {
            text.resize(size_t(length) + 1);
            result = read();
        }
        if (!SQL_SUCCEEDED(result))
            return errors;
        errors.append({TextOf(text, length), native, TextOf(state, 5)});
    }
}

} // namespace

TOdbcConnection::TOdbcConnection(const TOdbcServer &server) : FServer(server)
{
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &FEnvironment);
    SQLSetEnvAttr(FEnvironment, SQL_ATTR_ODBC_VERSION, OdbcNumber(SQL_OV_ODBC3), 0);
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, FEnvironment, &FConnection))) {
        SQLFreeHandle(SQL_HANDLE_ENV, FEnvironment);
        throw ESqlError(QStringLiteral("不能使用 ODBC 驱动程序管理器"));
    }
}

TOdbcConnection::~TOdbcConnection()
{
    if (FIsConnected) {
        SQLEndTran(SQL_HANDLE_DBC, FConnection, SQL_ROLLBACK);
        SQLDisconnect(FConnection);
    }
    SQLFreeHandle(SQL_HANDLE_DBC, FConnection);
    SQLFreeHandle(SQL_HANDLE_ENV, FEnvironment);
}

QStringList TOdbcConnection::InstalledDrivers() const
{
    QStringList names;
    std::vector<SQLWCHAR> name(256), attributes(1024);
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    SQLSMALLINT length = 0, ignored = 0;
    while (SQL_SUCCEEDED(SQLDriversW(FEnvironment, direction, name.data(), SQLSMALLINT(name.size()), &length,
                                     attributes.data(), SQLSMALLINT(attributes.size()), &ignored))) {
        names.append(TextOf(name, length));
        direction = SQL_FETCH_NEXT;
    }
    return names;
}

void TOdbcConnection::Connect(const TOdbcTarget &target)
{
    const QString text = OdbcConnectionText(FServer, target, InstalledDrivers());
    SQLSetConnectAttr(FConnection, SQL_ATTR_LOGIN_TIMEOUT, OdbcNumber(LoginSeconds), 0);
    const SQLRETURN result = SQLDriverConnectW(FConnection, nullptr, OdbcText(text), SQLSMALLINT(text.size()),
                                               nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(result))
        FailToConnect(target);
    FIsConnected = true;
    SQLUINTEGER extensions = 0;
    SQLGetInfo(FConnection, SQL_GETDATA_EXTENSIONS, &extensions, sizeof extensions, nullptr);
    constexpr SQLUINTEGER needed = SQL_GD_BLOCK | SQL_GD_BOUND | SQL_GD_ANY_ORDER;
    FReadsCellsOfBlocks = (extensions & needed) == needed;
}

void TOdbcConnection::FailToConnect(const TOdbcTarget &target)
{
    QList<TSqlError> errors = DescribeOdbcErrors(FServer, DiagnosticsOf(SQL_HANDLE_DBC, FConnection));
    if (errors.isEmpty())
        errors.append(TSqlError{});
    TSqlError &main = errors.first();
    const bool noDriver = main.SQLState.startsWith(QLatin1String("IM")) ||
                          main.Description.startsWith(QLatin1String("Can't open lib"));
    main.Description = noDriver ? QStringLiteral("没有可用的 %1 驱动程序，请安装 %2（%3）")
                                      .arg(FServer.Title, FServer.Package, main.Description)
                                : QStringLiteral("不能连接到 %1 服务器“%2”的数据库“%3”（%4）")
                                      .arg(FServer.Title, target.Host, target.Database, main.Description);
    throw ESqlError(errors);
}

void TOdbcConnection::SetAutoCommit(bool on)
{
    Check(SQLSetConnectAttr(FConnection, SQL_ATTR_AUTOCOMMIT,
                            OdbcNumber(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER));
}

void TOdbcConnection::EndTransaction(SQLSMALLINT completion)
{
    Check(SQLEndTran(SQL_HANDLE_DBC, FConnection, completion));
}

bool TOdbcConnection::IsDead() const
{
    SQLUINTEGER dead = SQL_CD_FALSE;
    return SQL_SUCCEEDED(SQLGetConnectAttr(FConnection, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr)) &&
           dead == SQL_CD_TRUE;
}

void TOdbcConnection::Fail(SQLSMALLINT handleType, SQLHANDLE handle)
{
    // NOTE: read before anything else is asked of the driver, which would clear it.
    QList<TSqlError> errors = DescribeOdbcErrors(FServer, DiagnosticsOf(handleType, handle));
    if (errors.isEmpty())
        errors.append({QStringLiteral("%1 没有说明原因").arg(FServer.Title), 0, {}});
    FIsLost = IsDead() || std::any_of(errors.begin(), errors.end(), [](const TSqlError &error) {
                  return IsOdbcConnectionLost(error.SQLState);
              });
    if (FIsLost)
        errors.first().Description =
            QStringLiteral("与数据库服务器的连接已断开（%1）").arg(errors.first().Description);
    throw ESqlError(errors);
}

TOdbcStatement::TOdbcStatement(TOdbcConnection &connection) : FConnection(connection)
{
    connection.Check(SQLAllocHandle(SQL_HANDLE_STMT, connection.Handle(), &FStatement));
    // Braces in a statement are the server's business, not escapes of ODBC.
    SQLSetStmtAttr(FStatement, SQL_ATTR_NOSCAN, OdbcNumber(SQL_NOSCAN_ON), 0);
}

TOdbcStatement::~TOdbcStatement() { SQLFreeHandle(SQL_HANDLE_STMT, FStatement); }

bool TOdbcStatement::Execute(const QString &sql)
{
    const SQLRETURN result = SQLExecDirectW(FStatement, OdbcText(sql), SQLINTEGER(sql.size()));
    if (result == SQL_NEED_DATA)
        return true;
    if (result != SQL_NO_DATA) // a change that met no row
        Check(result);
    return false;
}

bool TOdbcStatement::NextResult()
{
    const SQLRETURN result = SQLMoreResults(FStatement);
    if (result == SQL_NO_DATA)
        return false;
    Check(result);
    return true;
}

int TOdbcStatement::ColumnCount() const
{
    SQLSMALLINT count = 0;
    Check(SQLNumResultCols(FStatement, &count));
    return count;
}

qint64 TOdbcStatement::RowCount() const
{
    SQLLEN count = 0;
    return SQL_SUCCEEDED(SQLRowCount(FStatement, &count)) && count > 0 ? qint64(count) : 0;
}

} // namespace Korvane
