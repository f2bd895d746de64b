// SPDX-License-Identifier: MIT
#include "general/RunLog.h"

#include "general/SystemRoutines.h"
#include "platform/core/Cp936.h"
#include "platform/core/Exceptions.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

QByteArray ContentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("(cannot be read)");
}

void Write(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

double SecondsBehind(const QString &line, const QString &begin)
{
    EXPECT_TRUE(line.startsWith(begin)) << qPrintable(line);
    bool isNumber = false;
    const double seconds = line.mid(begin.size()).toDouble(&isNumber);
    EXPECT_TRUE(isNumber) << qPrintable(line);
    return seconds;
}

} // namespace

TEST(RunLog, a_line_is_the_text_filled_to_50_bytes_and_the_seconds_of_the_lap)
{
    ARunLogger = {u"of an earlier run"_s};
    StartRunLogger();
    EXPECT_TRUE(ARunLogger.isEmpty());
    ARunTime -= 5000;
    SetRunLogger(u"导入"_s);
    SetRunLogger(QString(50, u'x'));
    SetRunLogger(QString(26, u'长'));
    ASSERT_EQ(ARunLogger.size(), 3);

    const double first = SecondsBehind(ARunLogger[0], u"导入"_s + QString(46, u' '));
    EXPECT_GE(first, 5);
    EXPECT_LT(first, 65);
    // Each line begins a lap, so that the five seconds are in the first one alone.
    EXPECT_LT(SecondsBehind(ARunLogger[1], QString(50, u'x')), first);
    EXPECT_LT(SecondsBehind(ARunLogger[2], QString(26, u'长')), first);
}

TEST(RunLog, a_lap_across_the_new_beginning_of_the_tick_count_is_negative)
{
    ARunTime = double(TickCount()) + 4294967296.0 - 60'000;
    EXPECT_LT(GetRunTime(), 0);
    EXPECT_GE(GetRunTime(), 0);
}

TEST(RunLog, saving_replaces_the_file_and_empties_the_log)
{
    QTemporaryDir folder;
    const QString fileName = folder.filePath(u"运行.log"_s);
    Write(fileName, "an old and longer content\r\n");
    ARunLogger = {u"第一步 1"_s, u"b"_s};
    SaveRunLogger(fileName);
    EXPECT_EQ(ContentOf(fileName), QByteArray("第一步 1\r\nb\r\n"));
    EXPECT_TRUE(ARunLogger.isEmpty());

    SaveRunLogger(fileName);
    EXPECT_EQ(ContentOf(fileName), QByteArray());
}

TEST(RunLog, a_log_that_cannot_be_saved_stays)
{
    QTemporaryDir folder;
    ARunLogger = {u"a"_s};
    EXPECT_THROW(SaveRunLogger(folder.filePath(u"missing/run.log"_s)), EFileError);
    EXPECT_EQ(ARunLogger, QStringList{u"a"_s});
    EXPECT_THROW(SaveError(folder.path(), u"a folder is no file"_s), EFileError);
}

TEST(RunLog, SaveError_appends_to_the_whole_file)
{
    QTemporaryDir folder;
    const QString fileName = folder.filePath(u"Error.sql"_s);
    SaveError(fileName, u"insert into T values ('名')"_s);
    EXPECT_EQ(ContentOf(fileName), QByteArray("insert into T values ('名')\r\n"));
    SaveError(fileName, u"select\n1"_s);
    SaveError(fileName, u""_s); // the two lines are two now
    EXPECT_EQ(ContentOf(fileName), QByteArray("insert into T values ('名')\r\nselect\r\n1\r\n\r\n"));

    // An end without a line end, and a file of the Chinese code page.
    Write(fileName, Cp936::Encode(u"错误"_s));
    SaveError(fileName, u"b"_s);
    EXPECT_EQ(ContentOf(fileName), QByteArray("错误\r\nb\r\n"));
}
