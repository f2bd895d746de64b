// SPDX-License-Identifier: MIT
// Many processes that save into one database at once, and some that are killed.
#include "DataSetTesting.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

constexpr int Patience = 120'000;

class Writers : public DataSetTest
{
protected:
    Writers() { AddParts({{u"P1"_s, u"a"_s, 0}, {u"P2"_s, u"b"_s, 0}}); }

    /// A writer that is connected and waits for its start.
    std::unique_ptr<QProcess> Writer(const QString &mode, const QString &name, int count)
    {
        auto writer = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"KORVANE_WRITER_PASSWORD"_s, Session.DBPassword());
        writer->setProcessEnvironment(environment);
        writer->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        writer->start(QStringLiteral(KORVANE_WRITER),
                      {mode, Design.FileName(), GetParam() == dbtAccess ? u"access"_s : u"mssql"_s,
                       Session.DBServer(), Session.DBName(), Session.DBUser(), name, QString::number(count),
                       Application()});
        EXPECT_EQ(LineOf(*writer), "ready");
        return writer;
    }
    /// NOTE: what is written leaves only while the process is waited for.
    static void Start(QProcess &writer)
    {
        writer.write("\n");
        EXPECT_TRUE(writer.waitForBytesWritten(Patience));
    }
    static QString LineOf(QProcess &writer)
    {
        while (!writer.canReadLine())
            if (!writer.waitForReadyRead(Patience))
                return writer.errorString();
        return QString::fromUtf8(writer.readLine()).trimmed();
    }
    static void Kill(QProcess &writer)
    {
        writer.kill();
        ASSERT_TRUE(writer.waitForFinished(Patience));
        EXPECT_EQ(writer.exitStatus(), QProcess::CrashExit) << "it ended by itself";
    }

    /// The rows, the sum of their numbers, and both counts.
    QString Totals()
    {
        return TextOfTable(u"select count(*), sum(QTY) from LINE"_s) + u" / "_s +
               TextOfTable(u"select QTY from PART order by CODE"_s);
    }
    /// Under a name of its own: other tests use the same server.
    QString Application() const { return u"writers "_s + QFileInfo(Session.DBName()).completeBaseName(); }
    int Users() { return Session.GetOnlineUsers(Application()); }
    /// Waits until a server has noticed who is gone.
    bool UsersBecome(int count)
    {
        for (const QDeadlineTimer deadline(30'000); !deadline.hasExpired();)
            if (Users() == count)
                return true;
        return false;
    }
};

TEST_P(Writers, SixteenAtOnceLoseNothing)
{
    constexpr int writerCount = 16, saves = 500;
    const int usersBefore = Users();
    std::vector<std::unique_ptr<QProcess>> writers;
    for (int i = 0; i < writerCount; ++i)
        writers.push_back(Writer(u"save"_s, u"w%1"_s.arg(10 + i), saves));
    EXPECT_EQ(Users(), usersBefore + writerCount);
    for (const auto &writer : writers)
        Start(*writer);
    int repeats = 0;
    for (const auto &writer : writers) {
        repeats += LineOf(*writer).toInt();
        ASSERT_TRUE(writer->waitForFinished(Patience));
        EXPECT_EQ(writer->exitStatus() == QProcess::NormalExit ? writer->exitCode() : -1, 0);
    }
    RecordProperty("repeats", repeats);
    EXPECT_EQ(Totals(), u"%1|%2 / %1 / 4"_s.arg(QString::number(writerCount * saves),
                                                QString::number(writerCount * saves * (saves + 1) / 2)));
    QStringList expected;
    for (int i = 10; i < 10 + writerCount; ++i)
        expected += u"w%1|%2|0001|%3"_s.arg(QString::number(i), QString::number(saves), u"0500"_s);
    EXPECT_EQ(
        LinesOf(Rows(u"select BILLCODE, count(*), min(NO), max(NO) from LINE where CREATOR=BILLCODE and "
                     "MODIFIER=BILLCODE and CREATEDATE>'2' group by BILLCODE order by BILLCODE"_s)),
        LinesOf(expected));
    EXPECT_TRUE(UsersBecome(usersBefore));
}

TEST_P(Writers, OneThatIsKilledLeavesNoLockAndNoEntry)
{
    const int usersBefore = Users();
    const auto writer = Writer(u"hold"_s, u"w5"_s, 3);
    Start(*writer);
    ASSERT_EQ(LineOf(*writer), "holding");
    EXPECT_EQ(Users(), usersBefore + 1);
    Kill(*writer);
    Run({u"update PART set QTY=QTY+1"_s, u"insert into LINE(BILLCODE, NO, QTY) values('w5', '0003', 9)"_s});
    EXPECT_EQ(Totals(), "3|12 / 3 / 1");
    EXPECT_TRUE(UsersBecome(usersBefore)) << Users();
}

TEST_P(Writers, AtWhateverMomentOneIsKilledItsLastRowIsWholeOrNotThere)
{
    int saved = 0;
    for (int round = 0; round < 10; ++round) {
        const auto writer = Writer(u"save"_s, u"w%1"_s.arg(round), 9'999);
        Start(*writer);
        writer->waitForFinished(int(QRandomGenerator::global()->bounded(10, 150)));
        Kill(*writer);
        Run({u"update PART set QTY=QTY where CODE='P1'"_s}); // when it is done, so is what was under way
        const QStringList rows =
            Rows(u"select count(*), max(QTY), max(NO) from LINE where BILLCODE='w%1'"_s.arg(round));
        const int count = rows[0].section(u'|', 0, 0).toInt();
        saved += count;
        if (count > 0) {
            EXPECT_EQ(rows[0],
                      u"%1|%1|%2"_s.arg(QString::number(count), u"%1"_s.arg(count, 4, 10, QLatin1Char('0'))));
        }
        EXPECT_EQ(TextOfTable(u"select QTY from PART where CODE='P1'"_s), QString::number(saved)) << round;
        EXPECT_EQ(TextOfTable(u"select count(*) from LINE where CREATOR is null"_s), "0");
    }
    EXPECT_GT(saved, 0);
}

INSTANTIATE_TEST_SUITE_P(Places, Writers, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
