// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/SqliteErrors.h"

#include <sqlite3.h>

namespace Korvane {

namespace {

/// The Chinese sentence for a result code, with %1 for the file; null where there is none.
const char *SentenceFor(int code)
{
    switch (code) {
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_ROWID:
        return "主键或唯一索引的值重复，记录已存在";
    case SQLITE_CONSTRAINT_NOTNULL:
        return "不可为空的字段没有值";
    case SQLITE_CONSTRAINT_FOREIGNKEY:
        return "相关联的记录不存在，或仍被引用";
    case SQLITE_CONSTRAINT_CHECK:
        return "字段的值不符合约束";
    default:
        break;
    }
    switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return "数据库正被其他用户锁定，请稍后再试：%1";
    case SQLITE_READONLY:
        return "数据库是只读的，不能写入：%1";
    case SQLITE_FULL:
        return "磁盘空间已满，不能写入数据库：%1";
    case SQLITE_IOERR:
        return "读写数据库文件时出错：%1";
    case SQLITE_CORRUPT:
        return "数据库文件已损坏：%1";
    case SQLITE_NOTADB:
        return "不是有效的数据库文件：%1";
    case SQLITE_CANTOPEN:
        return "不能打开数据库文件：%1";
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return "没有访问数据库文件的权限：%1";
    case SQLITE_NOMEM:
        return "内存不足";
    case SQLITE_TOOBIG:
        return "数据过长，超出数据库的限制";
    default:
        return nullptr;
    }
}

} // namespace

QString DescribeSqliteError(int code, const QString &engineText, const QString &fileName)
{
    const char *sentence = SentenceFor(code);
    if (!sentence)
        return engineText;
    QString text = QString::fromUtf8(sentence);
    if (text.contains(QLatin1String("%1")))
        text = text.arg(fileName);
    return QStringLiteral("%1（%2）").arg(text, engineText);
}

} // namespace Korvane
