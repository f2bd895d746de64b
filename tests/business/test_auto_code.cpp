// SPDX-License-Identifier: MIT
#include "business/AutoCode.h"
#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"
#include "support/TestPlace.h"

#include <QDir>

using namespace Korvane;
using namespace Korvane::Testing;
using namespace Qt::StringLiterals;

namespace {

/// A table BILL of codes and the rules of SYSMQ.
class AutoCodes : public testing::TestWithParam<TTestPlace>
{
protected:
    AutoCodes()
    {
        QDir::setCurrent(FCurrent.path()); // failed statements are logged there
        if (!IsThere(GetParam()))
            return;
        Aim(FSession, FDatabase);
        FSession.SetConnected(true);
        Run({u"create table BILL(CODE varchar(30))"_s,
             u"create table SYSMQ(MQ001 varchar(10), MQ005 varchar(1), MQ006 int, MQ007 int)"_s});
        FSession.OnExecute() = [this](const QString &statement) { FSent += statement; };
        FCode.SetDBSession(&FSession);
        FCode.SetTable(u"BILL"_s);
        FCode.SetField(u"CODE"_s);
        FCode.SetToday(EncodeDate(2024, 3, 7));
    }

    ~AutoCodes() override { QDir::setCurrent(FBefore); }

    void Run(const QStringList &statements)
    {
        for (const QString &statement : statements)
            FSession.Execute(statement, nullptr);
    }
    void Store(const QStringList &codes)
    {
        Run({u"delete from BILL"_s});
        for (const QString &code : codes)
            Run({u"insert into BILL values('%1')"_s.arg(code)});
        FSent.clear();
    }

    QString FBefore = QDir::currentPath();
    QTemporaryDir FCurrent;
    PlaceDatabase FDatabase{GetParam()};
    TDBSession FSession;
    TAutoCode FCode;
    QStringList FSent;
};

INSTANTIATE_TEST_SUITE_P(Places, AutoCodes, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace

TEST_P(AutoCodes, follow_the_highest_one_that_begins_alike)
{
    const struct
    {
        TCodeType Type;
        int YearDigit;
        QStringList Stored;
        QString Plain, Custom;
    } rows[] = {
        {ctMonth, 4, {}, u"20240300001"_s, u"20240300001"_s},
        {ctDay, 4, {}, u"2024030700001"_s, u"2024030700001"_s},
        {ctYear, 4, {}, u"202400001"_s, u"202400001"_s},
        {ctNumber, 4, {}, u"00001"_s, u"00001"_s},
        {ctManual, 4, {}, {}, {}},
        // Custom numbers run on through the year.
        {ctMonth,
         4,
         {u"20240200041"_s, u"20240300007"_s, u"20231200099"_s},
         u"20240300008"_s,
         u"20240300042"_s},
        {ctDay, 2, {u"24030700002"_s, u"24030600009"_s}, u"24030700003"_s, u"24030700010"_s},
        {ctYear, 1, {u"2400005"_s}, u"2400006"_s, u"2400006"_s},
        {ctYear, 3, {u"202400005"_s}, u"202400006"_s, u"202400006"_s},
        {ctDay, 5, {u"030700003"_s}, u"030700004"_s, {}},
        {ctNumber, 4, {u"9"_s, u"10"_s}, u"00010"_s, u"00010"_s}, // as texts
        // A number that has outgrown its digits stays below the highest text.
        {ctNumber, 4, {u"99999"_s, u"100000"_s}, u"100000"_s, u"100000"_s},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << int(row.Type) << " " << row.YearDigit);
        Store(row.Stored);
        FCode.SetCodeType(row.Type);
        FCode.SetYearDigit(row.YearDigit);
        FCode.SetByCustom(false);
        EXPECT_EQ(FCode.GetAutoCode(), row.Plain);
        EXPECT_EQ(FSent.isEmpty(), row.Type == ctManual);
        FCode.SetByCustom(true);
        FSent.clear();
        if (row.YearDigit <= 4) {
            EXPECT_EQ(FCode.GetAutoCode(), row.Custom);
            EXPECT_EQ(FSent.size(), 1) << "it asks for manual codes, too";
        }
    }
}

TEST_P(AutoCodes, are_asked_for_by_these_statements)
{
    FCode.SetNumberDigit(3);
    FCode.GetNumber({});
    FCode.GetNumber(u"单2024"_s);
    FCode.GetNumberByCustom({});
    FCode.GetNumberByCustom(u"单2024"_s);
    EXPECT_EQ(FSent, (QStringList{u"select max(CODE) from BILL"_s,
                                  u"select max(CODE) from BILL where left(CODE, 6)='单2024'"_s,
                                  u"select max(right(CODE, 3)) from BILL"_s,
                                  u"select max(right(CODE, 3)) from BILL where left(CODE, 6)='单2024'"_s}));
}

TEST_P(AutoCodes, take_the_date_as_it_is_set)
{
    FCode.SetToday({});
    FCode.SetCodeType(ctDay);
    EXPECT_EQ(FCode.GetCode(), u"1899123000001"_s);
    Month[12] = u"C"_s;
    EXPECT_EQ(FCode.GetCodeByCustom(), u"1899C3000001"_s);
    Month[12] = u"12"_s;
    // An empty format is the usual form of a date.
    FCode.SetToday(EncodeDate(2024, 3, 7));
    FCode.SetCodeType(ctYear);
    FCode.SetYearDigit(0);
    EXPECT_EQ(FCode.GetCode(), FormatDateTime({}, FCode.Today()) + u"00001"_s);
}

TEST_P(AutoCodes, go_by_the_rules_of_SYSMQ)
{
    Run({u"insert into SYSMQ values('A','1',2,3)"_s, u"insert into SYSMQ values('M','5',4,4)"_s,
         u"insert into SYSMQ values('N','4',4,6)"_s, u"insert into SYSMQ values('X','9',4,2)"_s});
    EXPECT_EQ(FCode.GetAutoCode(u"none"_s), QString());
    EXPECT_EQ(FCode.GetAutoCode(u"M"_s), QString()) << "manual";
    EXPECT_EQ(FCode.CodeType(), ctMonth);
    EXPECT_EQ(FCode.NumberDigit(), 5);

    EXPECT_EQ(FCode.GetAutoCode(u"A"_s), u"240307001"_s);
    EXPECT_EQ(FCode.GetAutoCode(), u"240307001"_s) << "the rule stays";
    EXPECT_EQ(FCode.GetAutoCode(u"N"_s), u"000001"_s);
    // A rule's type outside of the known ones: no prefix, and the year.
    EXPECT_EQ(FCode.GetAutoCode(u"X"_s), u"01"_s);
    FCode.SetByCustom(true);
    EXPECT_EQ(FCode.GetAutoCode(u"X"_s), u"202401"_s);
}

TEST_P(AutoCodes, refuse_what_is_no_number)
{
    Store({u"202403A0001"_s});
    EXPECT_THROW(FCode.GetCode(), EConvertError);
    FCode.SetCodeType(ctNumber);
    Store({u"2147483647"_s});
    EXPECT_THROW(FCode.GetCode(), EConvertError);
    FCode.SetTable(u"NOTHERE"_s);
    EXPECT_THROW(FCode.GetCode(), Exception);
    FCode.SetDBSession(nullptr);
    EXPECT_THROW(FCode.GetCode(), Exception);
}

TEST_P(AutoCodes, versions_follow_the_highest_one)
{
    Run({u"create table BOMMC(MC001 varchar(20), MC009 varchar(4))"_s,
         u"create table ORDTE(TE001 varchar(4), TE002 varchar(11), TE003 varchar(4))"_s,
         u"create table PURTE(TE001 varchar(4), TE002 varchar(11), TE003 varchar(4))"_s,
         u"create table MOCTO(TO001 varchar(4), TO002 varchar(11), TO003 varchar(4))"_s,
         u"create table ORDTP(TP001 varchar(4))"_s,
         u"create table PURUC(UC001 varchar(4), UC002 varchar(11), UC003 varchar(4))"_s});
    EXPECT_EQ(FCode.GetVersion(vtBOM, {u"P1"_s}), u"0001"_s);
    EXPECT_EQ(FCode.GetVersionA(vtORD, {u"21"_s, u"1"_s}), u"A"_s);
    const struct
    {
        QString Stored, Number, Letter;
    } rows[] = {{u"0009"_s, u"0010"_s, u"A"_s},
                {u"9999"_s, u"10000"_s, u"A"_s},
                {u"A"_s, {}, u"B"_s},
                {u"Y"_s, {}, u"Z"_s},
                {u"Z"_s, {}, {}},
                {u"y"_s, {}, u"A"_s},
                {u"AB"_s, {}, u"A"_s}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.Stored.toStdString());
        Run({u"delete from BOMMC"_s, u"insert into BOMMC values('P1','%1')"_s.arg(row.Stored),
             u"insert into BOMMC values('P2','Q')"_s});
        EXPECT_EQ(FCode.GetMaxVersion(vtBOM, {u"P1"_s}), row.Stored);
        EXPECT_EQ(FCode.GetVersionA(vtBOM, {u"P1"_s}), row.Letter);
        if (row.Number.isEmpty())
            EXPECT_THROW(FCode.GetVersion(vtBOM, {u"P1"_s}), EConvertError);
        else
            EXPECT_EQ(FCode.GetVersion(vtBOM, {u"P1"_s}), row.Number);
    }
    Run({u"insert into ORDTE values('21','1','0003')"_s, u"insert into PURTE values('21','1','0004')"_s,
         u"insert into MOCTO values('21','1','0005')"_s, u"insert into PURUC values('21','1','0006')"_s,
         u"insert into ORDTP values('0021')"_s});
    EXPECT_EQ(FCode.GetVersion(vtORD, {u"21"_s, u"1"_s}), u"0004"_s);
    EXPECT_EQ(FCode.GetVersion(vtPUR, {u"21"_s, u"1"_s}), u"0005"_s);
    EXPECT_EQ(FCode.GetVersion(vtMOC, {u"21"_s, u"1"_s}), u"0006"_s);
    EXPECT_EQ(FCode.GetVersion(vtSO, {u"21"_s, u"1"_s}), u"0007"_s);
    EXPECT_EQ(FCode.GetMaxVersion(vtINV, {u"0021"_s}), u"0021"_s) << "it asks for what it was told";
    EXPECT_EQ(FCode.GetMaxVersion(vtINV, {u"0022"_s}), QString());
    EXPECT_THROW(FCode.GetMaxVersion(vtORD, {u"21"_s}), EConvertError) << "a key is missing";
}
