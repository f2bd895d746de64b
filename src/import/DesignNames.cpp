// SPDX-License-Identifier: MIT
#include "import/DesignNames.h"

#include "platform/core/Exceptions.h"

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>

namespace Korvane {

namespace {

/// Words that stand for something in a statement of one of the dialects or of an engine, and
/// the name of the table that holds a database's version.
const QSet<QString> &SqlWords()
{
    static const QStringList words =
        QStringLiteral(
            "ADD ALL ALTER ANALYSE ANALYZE AND ANY ARRAY AS ASC AUTHORIZATION BACKUP BEGIN BETWEEN BINARY "
            "BIT "
            "BOTH BREAK BROWSE BULK BY BYTE CASCADE CASE CAST CHAR CHARACTER CHECK CHECKPOINT CLOSE "
            "CLUSTERED "
            "COALESCE COLLATE COLUMN COMMIT COMPUTE CONSTRAINT CONTAINS CONTINUE CONVERT COUNTER CREATE "
            "CROSS "
            "CURRENCY CURRENT CURRENT_DATE CURRENT_TIME CURRENT_TIMESTAMP CURRENT_USER CURSOR DATABASE DATE "
            "DATETIME DBCC DEALLOCATE DECIMAL DECLARE DEFAULT DEFERRABLE DELETE DENY DESC DISTINCT "
            "DISTINCTROW "
            "DO DOUBLE DROP ELSE END ERRLVL ESCAPE EXCEPT EXEC EXECUTE EXISTS EXIT EXTERNAL FALSE FETCH FILE "
            "FLOAT FOR FOREIGN FREETEXT FROM FULL FUNCTION GLOB GO GOTO GRANT GROUP HAVING HOLDLOCK IDENTITY "
            "IF ILIKE IMAGE IN INDEX INDEXED INITIALLY INNER INSERT INT INTEGER INTERSECT INTERVAL INTO IS "
            "ISNULL JOIN KEY KILL LATERAL LEADING LEFT LEVEL LIKE LIMIT LINENO LOAD LOCALTIME LOGICAL LONG "
            "MATCH "
            "MEMO MERGE MONEY NATIONAL NATURAL NOCHECK NONCLUSTERED NOT NOTNULL NULL NULLIF NUMBER NUMERIC "
            "OF "
            "OFF OFFSET OLEOBJECT ON ONLY OPEN OPTION OR ORDER OUTER OVER OVERLAPS PARAMETERS PERCENT PIVOT "
            "PLACING PLAN "
            "PRECISION PRIMARY PRINT PROC PROCEDURE PUBLIC RAISERROR READ REAL RECONFIGURE REFERENCES REGEXP "
            "RELEASE REPLICATION RESTORE RESTRICT RETURN RETURNING REVERT REVOKE RIGHT ROLLBACK ROW ROWCOUNT "
            "ROWGUIDCOL RULE SAVE SAVEPOINT SCHEMA SECTION SELECT SESSION_USER SET SETUSER SHORT SHUTDOWN "
            "SIMILAR "
            "SINGLE SMALLINT SOME STATISTICS SYMMETRIC SYSTEM_USER TABLE TABLESAMPLE TEXT TEXTSIZE THEN TIME "
            "TIMESTAMP TO TOP TRAILING TRAN TRANSACTION TRANSFORM TRIGGER TRUE TRUNCATE UNION UNIQUE UNPIVOT "
            "UPDATE USE USER USING VALUE VALUES VARBINARY VARCHAR VARIADIC VERBOSE VERSION VIEW WAITFOR WHEN "
            "WHERE WHILE WINDOW WITH WITHIN WRITETEXT YESNO")
            .split(u' ');
    static const QSet<QString> set(words.begin(), words.end());
    return set;
}

/// What a property may not be called: members of every record.
bool IsMember(const QString &name)
{
    static const QSet<QString> members = {QStringLiteral("keyvalues"), QStringLiteral("getclassproperties"),
                                          QStringLiteral("clear"), QStringLiteral("qstring"),
                                          QStringLiteral("staticmetaobject")};
    return members.contains(name.toLower());
}

/// The name in Latin letters; syllables and words have blanks between them.
QString Latin(const QString &name)
{
    static const std::unique_ptr<icu::Transliterator> latin = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Transliterator> made(
            icu::Transliterator::createInstance("Any-Latin; Latin-ASCII", UTRANS_FORWARD, status));
        if (U_FAILURE(status))
            throw Exception(
                QStringLiteral("不能把名称转换为拉丁字母：%1").arg(QLatin1String(u_errorName(status))));
        return made;
    }();
    icu::UnicodeString text(name.utf16(), int32_t(name.size()));
    latin->transliterate(text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

bool IsLatin(QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }
bool IsPart(QChar c) { return IsLatin(c) || (c >= u'0' && c <= u'9'); }

QStringList WordsOf(const QString &name)
{
    QStringList words = {QString()};
    for (const QChar c : Latin(name)) {
        if (IsPart(c))
            words.last() += c;
        else if (!words.last().isEmpty())
            words.append(QString());
    }
    words.removeAll(QString());
    return words;
}

/// Names begin with a letter.
QString WithLetter(const QString &name) { return !name.isEmpty() && IsLatin(name[0]) ? name : u'F' + name; }

} // namespace

TDesignNames::TDesignNames(const QStringList &oldNames)
{
    for (const QString &name : oldNames)
        FOld.insert(name.toUpper());
}

QString TDesignNames::Unique(const QString &name, const QString &old, qsizetype most,
                             QSet<QString> &taken) const
{
    const auto isTaken = [&](const QString &unique) {
        return taken.contains(unique) || (FOld.contains(unique) && unique != old.toUpper());
    };
    QString unique = name.left(most);
    for (int number = 2; isTaken(unique.toUpper()); ++number) {
        const QString ending = QString::number(number);
        unique = name.left(most - ending.size()) + ending;
    }
    taken.insert(unique.toUpper());
    return unique;
}

QString TDesignNames::Code(const QString &name, qsizetype most)
{
    const bool isValid =
        !name.isEmpty() && IsLatin(name[0]) &&
        std::all_of(name.begin(), name.end(), [](QChar c) { return IsPart(c) || c == u'_'; });
    QString code = (isValid ? name : WithLetter(WordsOf(name).join(QString()))).toUpper();
    if (SqlWords().contains(code))
        code += u'_';
    return Unique(code, name, most, FCodes);
}

QString TDesignNames::Property(const QString &name)
{
    QString property;
    for (const QString &word : WordsOf(name)) {
        const bool isCapitals = word == word.toUpper();
        property += word[0].toUpper() + (isCapitals ? word.mid(1).toLower() : word.mid(1));
    }
    property = WithLetter(property);
    if (IsMember(property))
        property += QStringLiteral("Field");
    return Unique(property, name, 40, FProperties);
}

} // namespace Korvane
