// SPDX-License-Identifier: MIT
// What is written comes back, and what a transaction holds together stays together: in every place.
#include "SessionFixture.h"

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

class SessionValues : public SessionFixture
{
protected:
    SessionValues()
    {
        if (IsSkipped())
            return;
        FSession.Execute(
            u"create table V(ID int not null, T varchar(60), M text, N decimal(16,4), F float, W smallint, "
            "D char(14), P image, constraint PK_V primary key(ID))"_s);
    }
    std::unique_ptr<TDBSession> AnotherSession() const
    {
        auto session = std::make_unique<TDBSession>();
        Aim(*session, FDatabase);
        session->SetConnected(true);
        return session;
    }
    void Insert(int id, const QString &column, const QString &literal)
    {
        FSession.Execute(u"insert into V(ID, %1) values(%2, %3)"_s.arg(column, QString::number(id), literal));
    }
};
INSTANTIATE_TEST_SUITE_P(Places, SessionValues, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace

TEST_P(SessionValues, come_back_as_they_were_written)
{
    const QString memo = QString(20'000, u'长') + u"\r\n末"_s;
    const struct
    {
        QString Column, Literal, Read;
    } rows[] = {
        {u"T"_s, u"'轴承 — é ß 😀'"_s, u"轴承 — é ß 😀"_s},
        {u"T"_s, u"'O''Brien \"x\" \\n %s'"_s, u"O'Brien \"x\" \\n %s"_s},
        {u"T"_s, u"'  blanks  '"_s, u"  blanks  "_s},
        {u"T"_s, u"''"_s, u""_s},
        {u"T"_s, u"null"_s, u"~"_s},
        {u"M"_s, u'\'' + memo + u'\'', memo},
        {u"M"_s, u"''"_s, u""_s},
        {u"N"_s, u"123456789012.3456"_s, u"123456789012.3456"_s},
        {u"N"_s, u"-0.5"_s, u"-0.5"_s},
        {u"N"_s, u"7"_s, u"7"_s},
        {u"N"_s, u"null"_s, u"~"_s},
        {u"F"_s, u"0.1"_s, u"0.1"_s},
        {u"F"_s, u"1234567.875"_s, u"1234567.875"_s},
        {u"W"_s, u"-32768"_s, u"-32768"_s},
        {u"D"_s, u"'20240131080509'"_s, u"20240131080509"_s},
        {u"D"_s, u"''"_s, u""_s},
    };
    for (const auto &row : rows) {
        FSession.Execute(u"delete from V"_s);
        Insert(1, row.Column, row.Literal);
        const TDataPacket packet = FSession.Open(u"select "_s + row.Column + u" from V"_s);
        EXPECT_EQ(packet.Column(0).IsNull(0) ? u"~"_s : packet.Text(0, 0), row.Read)
            << row.Literal.left(40).toStdString();
    }
}

TEST_P(SessionValues, blobs_come_back_to_the_byte)
{
    QByteArray large(300'000, '\0');
    for (qsizetype i = 0; i < large.size(); ++i)
        large[i] = char(i * 31 >> 3);
    for (const QByteArray &bytes : {QByteArray("\0\r\n'\x1a\\", 6), QByteArray("", 0), large}) {
        TBlobStreams streams;
        streams.Add(u"P"_s, bytes);
        FSession.Execute(u"delete from V"_s);
        FSession.Execute(u"insert into V(ID, P) values(1, :P)"_s, &streams);
        const TDataPacket packet = FSession.Open(u"select P from V"_s);
        EXPECT_EQ(packet.Value(0, 0).toByteArray(), bytes) << bytes.size();
    }
}

TEST_P(SessionValues, a_failed_statement_leaves_the_transaction_before_it)
{
    FSession.BeginTrans();
    Insert(1, u"T"_s, u"'a'"_s);
    const QString message = RaisedBy([&] { Insert(1, u"T"_s, u"'b'"_s); });
    EXPECT_TRUE(message.startsWith(u"Exception: 主键或唯一索引的值重复，记录已存在"_s))
        << message.toStdString();
    EXPECT_THROW(FSession.Open(u"select * from NONE"_s), Exception);
    Insert(2, u"T"_s, u"'c'"_s);
    FSession.CommitTrans();
    EXPECT_EQ(Rows(u"select ID, T from V order by ID"_s), u"1|a / 2|c"_s);
}

TEST_P(SessionValues, others_see_a_transaction_when_it_is_committed)
{
    const auto other = AnotherSession();
    const auto seen = [&] { return other->Open(u"select count(*) from V"_s).Text(0, 0); };
    for (const bool isKept : {false, true}) {
        FSession.BeginTrans();
        Insert(1, u"T"_s, u"'a'"_s);
        // On a SQL Server a reader waits for the writer.
        if (GetParam().Kind != ServerKind::SqlServer) {
            EXPECT_EQ(seen(), u"0"_s);
        }
        isKept ? FSession.CommitTrans() : FSession.RollbackTrans();
        EXPECT_EQ(seen(), isKept ? u"1"_s : u"0"_s);
    }
}

TEST_P(SessionValues, a_session_that_goes_takes_its_transaction_back)
{
    auto other = AnotherSession();
    other->BeginTrans();
    other->Execute(u"insert into V(ID) values(1)"_s);
    other.reset();
    Insert(1, u"T"_s, u"'mine'"_s); // nothing waits
    EXPECT_EQ(Rows(u"select ID, T from V"_s), u"1|mine"_s);
}
