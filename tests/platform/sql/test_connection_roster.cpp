// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/ConnectionRoster.h"

#include "platform/sql/ADODataSet.h"
#include "platform/sql/OtherUser.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// "number name" of all entries.
QString Names(TConnectionRoster &roster)
{
    QStringList names;
    for (const TRosterEntry &entry : roster.Entries())
        names += QString::number(entry.Number) + u' ' + entry.ApplicationName;
    return names.join(u", "_s);
}

TRosterEntry Named(const QString &name)
{
    TRosterEntry entry;
    entry.ApplicationName = name;
    return entry;
}

/// The roster of users as the schema rowset tells it: the application names.
QString Users(TADOConnection &connection)
{
    TADODataSet rowset;
    connection.OpenSchema(siProviderSpecific, {}, QLatin1String(UserRosterSchemaId), rowset);
    QStringList names;
    for (; !rowset.Eof(); rowset.Next())
        names += rowset.FieldByName(u"APPLICATION_NAME"_s).AsString();
    names.sort();
    return names.join(u", "_s);
}

} // namespace

TEST(ConnectionRoster, several_of_one_process_count_as_several)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"roster"_s);
    TConnectionRoster a(file), b(file), c(file);
    EXPECT_EQ(a.Number(), 0);
    EXPECT_TRUE(a.Entries().isEmpty());
    a.Join(Named(u"a"_s));
    b.Join(Named(u"b"_s));
    c.Join(Named(u"c"_s));
    EXPECT_EQ(Names(a), u"1 a, 2 b, 3 c"_s);
    EXPECT_EQ(Names(c), Names(a));
    b.Leave();
    EXPECT_EQ(b.Number(), 0);
    EXPECT_EQ(Names(a), u"1 a, 3 c"_s);
    b.Join(Named(u"b2"_s));
    EXPECT_EQ(Names(c), u"1 a, 2 b2, 3 c"_s);
    b.Join(Named(u"b3"_s));
    EXPECT_EQ(Names(c), u"1 a, 2 b3, 3 c"_s) << "joining again leaves first";
    c.SetDatabase(u"x"_s);
    EXPECT_EQ(a.Entries().last().Database, u"x"_s);
}

TEST(ConnectionRoster, the_file_goes_with_the_last_and_only_then)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"roster"_s);
    {
        TConnectionRoster a(file);
        a.Join({});
        {
            TConnectionRoster b(file);
            b.Join({});
        }
        EXPECT_TRUE(QFile::exists(file));
        EXPECT_EQ(Names(a), u"1 "_s);
    }
    EXPECT_FALSE(QFile::exists(file));
}

TEST(ConnectionRoster, entries_carry_all_their_texts)
{
    const QTemporaryDir folder;
    TConnectionRoster own(folder.filePath(u"roster"_s)), other(folder.filePath(u"roster"_s));
    const QDateTime time(QDate(2024, 1, 31), QTime(8, 30, 5, 7));
    own.Join({0, u"收银\n台"_s, u"PC-1"_s, u"sa"_s, u"订单"_s, 4711, time});
    other.Join({});
    const TRosterEntry entry = other.Entries().first();
    EXPECT_EQ(entry.ApplicationName, u"收银 台"_s);
    EXPECT_EQ(entry.ComputerName, u"PC-1"_s);
    EXPECT_EQ(entry.LoginName, u"sa"_s);
    EXPECT_EQ(entry.Database, u"订单"_s);
    EXPECT_EQ(entry.ProcessId, 4711);
    EXPECT_EQ(entry.Connected, time);
    // Texts of any length leave the others' in place.
    other.Join({0, QString(500, u'长'), QString(500, u'x'), QString(500, u'y'), QString(500, u'\U00004E2D'),
                1, time});
    const TRosterEntry longest = own.Entries().last();
    EXPECT_TRUE(QString(500, u'长').startsWith(longest.ApplicationName));
    EXPECT_GE(longest.ApplicationName.size(), 30);
    EXPECT_EQ(longest.ProcessId, 1);
    EXPECT_EQ(longest.Connected, time);
}

TEST(ConnectionRoster, where_no_file_can_be_made_it_knows_itself_alone)
{
    const QTemporaryDir folder;
    TConnectionRoster roster(folder.filePath(u"none/roster"_s));
    roster.Join(Named(u"a"_s));
    EXPECT_EQ(Names(roster), u"1 a"_s);
    roster.Leave();
    EXPECT_EQ(Names(roster), u""_s);
}

TEST(ConnectionRoster, a_file_that_holds_anything_harms_nobody)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(u"roster"_s);
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(100'000, '\xff'));
    file.close();
    TConnectionRoster roster(name);
    roster.Join(Named(u"a"_s));
    EXPECT_EQ(Names(roster), u"1 a"_s);
}

TEST(ConnectionRoster, lists_users_of_other_processes_until_they_leave_or_are_killed)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        const auto own = database.Connect(u"Application Name=own"_s);
        EXPECT_EQ(Users(*own), u"own"_s);
        {
            OtherUser other;
            ASSERT_EQ(other.Ask(u"connect"_s, database.ConnectionString() + u"Application Name=收银台"_s),
                      u"ok"_s);
            EXPECT_EQ(Users(*own), u"own, 收银台"_s);
            const auto second = database.Connect(u"Application Name=own"_s);
            EXPECT_EQ(Users(*own), u"own, own, 收银台"_s);
            EXPECT_EQ(other.Ask(u"disconnect"_s), u"ok"_s);
            EXPECT_EQ(Users(*own), u"own, own"_s);
            ASSERT_EQ(other.Ask(u"connect"_s, database.ConnectionString() + u"Application Name=again"_s),
                      u"ok"_s);
            EXPECT_EQ(Users(*second), u"again, own, own"_s);
            other.Kill();
            EXPECT_EQ(Users(*second), u"own, own"_s);
        }
        // The last one takes the roster with it, whatever the killed one left.
        own->SetConnected(false);
        EXPECT_TRUE(QDir(database.Folder()).entryList({u"*roster*"_s}, QDir::Files).isEmpty());
    }
}

TEST(ConnectionRoster, a_killed_last_user_does_not_keep_the_database_in_use)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        OtherUser other;
        ASSERT_EQ(other.Ask(u"connect"_s, database.ConnectionString()), u"ok"_s);
        EXPECT_NE(RaisedBy([&] { RemoveCatalog(database.ConnectionString()); }), u"nothing"_s);
        other.Kill();
        RemoveCatalog(database.ConnectionString());
        EXPECT_FALSE(QFile::exists(database.FileName()));
    }
}
