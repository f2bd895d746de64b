// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/PasswordVerifier.h"
#include "support/Packets.h"
#include "support/TestDatabase.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

TEST(Passwords, a_verifier_tells_the_password_and_does_not_hold_it)
{
    const QString verifier = MakePasswordVerifier(u"秘密 secret;"_s);
    EXPECT_TRUE(CheckPassword(u"秘密 secret;"_s, verifier));
    EXPECT_FALSE(CheckPassword(u"秘密 Secret;"_s, verifier));
    EXPECT_FALSE(CheckPassword(u""_s, verifier));
    EXPECT_FALSE(verifier.contains(u"secret"_s, Qt::CaseInsensitive));
    EXPECT_EQ(verifier.count(u'$'), 3);
    EXPECT_NE(MakePasswordVerifier(u"秘密 secret;"_s), verifier) << "the salt is random";
}

TEST(Passwords, a_verifier_that_cannot_be_read_lets_nobody_in)
{
    const QString verifier = MakePasswordVerifier(u"p"_s);
    const QString salt = verifier.section(u'$', 2, 2), key = verifier.section(u'$', 3, 3);
    for (const QString &text :
         {u""_s, u"p"_s, u"$$$"_s, u"md5$100000$%1$%2"_s, u"pbkdf2-sha256$0$%1$%2"_s,
          u"pbkdf2-sha256$-1$%1$%2"_s, u"pbkdf2-sha256$2000000000$%1$%2"_s, u"pbkdf2-sha256$x$%1$%2"_s,
          u"pbkdf2-sha256$100000$%1$"_s, u"pbkdf2-sha256$100000$%1"_s, u"pbkdf2-sha256$100000$%1$%2$"_s}) {
        const QString forged = QString(text).replace(u"%1"_s, salt).replace(u"%2"_s, key);
        EXPECT_FALSE(CheckPassword(u"p"_s, forged)) << forged.toStdString();
        EXPECT_FALSE(CheckPassword(u""_s, forged)) << forged.toStdString();
    }
    EXPECT_TRUE(CheckPassword(u"p"_s, u"pbkdf2-sha256$100000$%1$%2"_s.arg(salt, key)));
}

TEST(Passwords, a_database_made_with_one_asks_for_it)
{
    for (const TSqlDialect dialect : BothDialects) {
        const QString password = u"密码;\"x\" "_s;
        const TestDatabase database(dialect, password);
        EXPECT_EQ(ConnectFailure(database.ConnectionString()),
                  u"数据库设有密码，请输入密码后再连接："_s + database.FileName());
        EXPECT_EQ(ConnectFailure(database.ConnectionString(u"密码"_s)),
                  u"数据库密码不正确，不能连接："_s + database.FileName());
        EXPECT_EQ(ConnectFailure(database.ConnectionString(password.toUpper())),
                  u"数据库密码不正确，不能连接："_s + database.FileName());
        EXPECT_EQ(Rows(*ConnectTo(database.ConnectionString(password)), u"select 1"_s), u"1"_s);
        // Who was turned away is not in the roster, so that it is not in use.
        RemoveCatalog(database.ConnectionString(password));
        EXPECT_FALSE(QFile::exists(database.FileName()));
    }
}

TEST(Passwords, a_database_without_one_takes_any)
{
    for (const TSqlDialect dialect : BothDialects) {
        const TestDatabase database(dialect);
        EXPECT_EQ(ConnectFailure(database.ConnectionString(u"any"_s)), u"nothing"_s);
        EXPECT_EQ(ConnectFailure(database.ConnectionString()), u"nothing"_s);
    }
}

TEST(Passwords, a_servers_database_goes_only_to_who_knows_it)
{
    const TestDatabase database(TSqlDialect::MSSQL, u"p"_s);
    EXPECT_EQ(RaisedBy([&] { RemoveCatalog(database.ConnectionString()); }),
              u"EDatabaseError: 数据库设有密码，请输入密码后再连接："_s + database.FileName());
    EXPECT_EQ(RaisedBy([&] { RemoveCatalog(database.ConnectionString(u"q"_s)); }),
              u"EDatabaseError: 数据库密码不正确，不能连接："_s + database.FileName());
    EXPECT_TRUE(QFile::exists(database.FileName()));
    RemoveCatalog(database.ConnectionString(u"p"_s));
    EXPECT_FALSE(QFile::exists(database.FileName()));
}

TEST(Passwords, a_servers_database_takes_the_password_of_the_session_that_made_it)
{
    const TestDatabase server(TSqlDialect::MSSQL);
    const auto session = ConnectTo(server.ConnectionTo(u"master"_s, u"geheim"_s));
    session->Execute(u"create database [sales]"_s);
    const QString file = server.Folder() + u"/sales.db"_s;
    EXPECT_EQ(ConnectFailure(server.ConnectionTo(u"sales"_s)),
              u"数据库设有密码，请输入密码后再连接："_s + file);
    EXPECT_EQ(ConnectFailure(server.ConnectionTo(u"sales"_s, u"geheim"_s)), u"nothing"_s);
    EXPECT_FALSE(PlainDatabase(file).Run(u"select Value from _korvane"_s).contains(u"geheim"_s));

    EXPECT_EQ(FailureOf(*ConnectTo(server.ConnectionTo(u"master"_s)), u"drop database [sales]"_s),
              u"数据库设有密码，请输入密码后再连接："_s + file);
    EXPECT_TRUE(QFile::exists(file));
    session->Execute(u"drop database [sales]"_s);
    EXPECT_FALSE(QFile::exists(file));
}
