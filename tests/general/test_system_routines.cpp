// SPDX-License-Identifier: MIT
#include "general/SystemRoutines.h"

#include "platform/core/Cp936.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <memory>

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

QStringList Sorted(QStringList list)
{
    list.sort();
    return list;
}

/// Messages and the lookup of hosts need an application.
class SystemRoutinesOfAnApplication : public testing::Test
{
    int FArgumentCount = 1;
    char FName[5] = "test";
    char *FArguments[2] = {FName, nullptr};
    std::unique_ptr<QCoreApplication> FApplication{
        QCoreApplication::instance() ? nullptr : new QCoreApplication(FArgumentCount, FArguments)};
};

} // namespace

TEST(SystemRoutines, FindFileList_follows_the_masks_that_people_type)
{
    QTemporaryDir folder;
    for (const char *name :
         {"a.dbd", "B.DBD", "ab.txt", "readme", ".hidden", "单据.dbd", "a.b.c", "x[1].txt"}) {
        QFile file(folder.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"sub.dbd"_s));

    const QStringList all = {u"."_s,      u".."_s,     u".hidden"_s, u"B.DBD"_s,    u"a.b.c"_s,   u"a.dbd"_s,
                             u"ab.txt"_s, u"readme"_s, u"sub.dbd"_s, u"x[1].txt"_s, u"单据.dbd"_s};
    const struct
    {
        QString Mask;
        QStringList Names;
    } rows[] = {
        {u"*.*"_s, all},
        {u"*"_s, all},
        {u"*.dbd"_s, {u"B.DBD"_s, u"a.dbd"_s, u"sub.dbd"_s, u"单据.dbd"_s}},
        {u"A.DBD"_s, {u"a.dbd"_s}},
        {u"?.dbd"_s, {u"B.DBD"_s, u"a.dbd"_s}},
        {u"??.dbd"_s, {u"B.DBD"_s, u"a.dbd"_s, u"单据.dbd"_s}}, // "?" may be missing before a dot
        {u"a*"_s, {u"a.b.c"_s, u"a.dbd"_s, u"ab.txt"_s}},
        {u"readme.*"_s, {u"readme"_s}},
        {u"re*.*"_s, {u"readme"_s}},
        {u"readme.txt"_s, {}},
        {u"*."_s, {u"readme"_s}},
        {u"*.c"_s, {u"a.b.c"_s}},
        {u"x[1].*"_s, {u"x[1].txt"_s}},
        {u"x+1*"_s, {}},
        {u"h"_s, {}},
        {u""_s, {}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(Sorted(FindFileList(folder.path() + u'/' + row.Mask)), row.Names) << qPrintable(row.Mask);
    EXPECT_EQ(FindFileList(folder.filePath(u"missing/*.*"_s)), QStringList());
}

TEST(SystemRoutines, FindFileList_without_a_folder_looks_into_the_current_one)
{
    QTemporaryDir folder;
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"only"_s));
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    EXPECT_EQ(FindFileList(u"o*"_s), QStringList{u"only"_s});
    QDir::setCurrent(before);
}

TEST_F(SystemRoutinesOfAnApplication, Delay_lasts_and_handles_messages)
{
    bool handled = false;
    QTimer::singleShot(0, [&handled] { handled = true; });
    Delay(-1); // at least once
    EXPECT_TRUE(handled);

    QElapsedTimer timer;
    timer.start();
    const quint32 begin = TickCount();
    Delay(20.5);
    EXPECT_GT(timer.elapsed(), 20);
    EXPECT_GE(TickCount() - begin, 20u);
}

TEST_F(SystemRoutinesOfAnApplication, names_and_addresses_of_hosts)
{
    EXPECT_FALSE(ComputerName().isEmpty());
    EXPECT_LE(Cp936::Length(ComputerName()), 15);
    EXPECT_FALSE(ComputerName().contains(u'.'));

    const QString local = LocalIP();
    EXPECT_TRUE(local.isEmpty() || QHostAddress(local).protocol() == QAbstractSocket::IPv4Protocol)
        << qPrintable(local);

    QString ip = u"as it was"_s;
    EXPECT_FALSE(HostToIP(u"no.such.host.invalid"_s, ip));
    EXPECT_FALSE(HostToIP(QString(), ip));
    EXPECT_EQ(ip, u"as it was"_s);
    EXPECT_TRUE(HostToIP(u"10.2.3.4"_s, ip));
    EXPECT_EQ(ip, u"10.2.3.4"_s);
    EXPECT_TRUE(HostToIP(u"localhost"_s, ip));
    EXPECT_TRUE(ip.startsWith(u"127."_s)) << qPrintable(ip);
}
