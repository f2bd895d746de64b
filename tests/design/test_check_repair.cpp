// SPDX-License-Identifier: MIT
#include "DatabaseTesting.h"

#include "platform/core/FormatDateTime.h"

using namespace Korvane;
using namespace Korvane::Testing;

using CheckStatements = DesignTest;

namespace {

class CheckAndRepair : public DatabaseTest
{
};

QString NowText() { return FormatDateTime("yyyymmddhhmmss", Now()); }

/// Puts "now" for each quoted time that lies in the run of the test.
QStringList WithoutTimes(QStringList statements, const QString &start)
{
    const QString end = NowText();
    static const QRegularExpression time("'(20\\d{12})'");
    for (QString &statement : statements) {
        const auto match = time.match(statement);
        if (match.hasMatch() && match.captured(1) >= start && match.captured(1) <= end)
            statement.replace(match.captured(0), "now");
    }
    return statements;
}

} // namespace

TEST_F(CheckStatements, a_statement_per_column_with_its_place_behind)
{
    Store.Table("B", {}, "乙表")
        .Field("Y", "int", {.Name = "序号"})
        .Field("X", "text", {.Name = "%s", .NotNull = true});
    Store.Table("A", {}, "甲%0:s表").Field("CODE", "char(1)", {.Name = "编号"});
    Store.Run("insert into Fields(TableCode, FieldNo, FieldCode) values('ORPHAN', 1, 'Z')").Table("NOFIELDS");
    Open();
    const auto audit = [](const QString &table, const QString &name) {
        QStringList lines;
        for (const char *column : {"CREATOR is null  --%2.创建者", "CREATEDATE is null  --%2.创建时间",
                                   "MODIFIER is null  --%2.修改者", "MODIFYDATE is null  --%2.修改时间",
                                   "CREATORGROUP is null  --%2.创建者组"})
            lines.append(("select 1 from %1 where " + QString(column)).arg(table, name));
        return lines;
    };
    EXPECT_EQ(File.GetCheckSQL(), audit("A", "甲%0:s表") +
                                      QStringList("select 1 from A where CODE is null  --甲%0:s表.编号") +
                                      audit("B", "乙表") +
                                      QStringList({"select 1 from B where Y is null  --乙表.序号",
                                                   "select 1 from B where X is null  --乙表.%s"}));
    // The file is read anew.
    Store.Run("delete from Tables where TableCode='A'");
    EXPECT_EQ(File.GetCheckSQL().size(), 7);
}

TEST_F(CheckStatements, repair_fills_by_type)
{
    Store.Table("T");
    const struct
    {
        const char *Type;
        DesignField Options;
        const char *Value; ///< null for no statement
    } rows[] = {
        {"char(1)", {}, "''"},
        {"char(1)", {.Default = "B"}, "'B'"},
        {"varchar(9)", {.Default = "O'x"}, "'O''x'"},
        {"varchar(9)", {.Default = "''"}, "''''''"},
        {"int", {}, "0"},
        {"int", {.Default = "7"}, "7"},
        {"smallint", {.Default = "abc"}, "abc"},
        {"decimal(8,2)", {}, "0"},
        {"float", {.Default = "1.5"}, "1.5"},
        {"datetime", {}, "''"},
        {"date", {.Default = "20240101"}, "'20240101'"},
        {"boolean", {.Default = "N"}, "'N'"},
        {"boolean", {}, "''"},
        {"text", {}, "''"},
        {"image", {}, nullptr},
        {"image", {.Default = "x"}, nullptr},
        {"int", {.Auto = true, .Default = "7"}, nullptr},
        {"int", {.Key = true}, "0"},
        {"money", {}, "''"},
        {"varchar(9)", {.Default = "50%%"}, "'50%'"},
        {"varchar(9)", {.Default = "%0:s"}, "'T'"},
    };
    QStringList expected = {"update T set CREATOR = 'admin' where CREATOR is null",
                            "update T set CREATEDATE = now where CREATEDATE is null",
                            "update T set MODIFIER = 'admin' where MODIFIER is null",
                            "update T set MODIFYDATE = now where MODIFYDATE is null",
                            "update T set CREATORGROUP = 'Admins' where CREATORGROUP is null"};
    for (size_t i = 0; i < std::size(rows); ++i) {
        const QString code = QString("F%1").arg(i);
        Store.Field(code, rows[i].Type, rows[i].Options);
        if (rows[i].Value)
            expected.append("update T set " + code + " = " + rows[i].Value + " where " + code + " is null");
    }
    Open();
    const QString start = NowText();
    EXPECT_EQ(WithoutTimes(File.GetRepairSQL(), start), expected);
    Store.Table("U").Field("X", "varchar(9)", {.Default = "50%"});
    EXPECT_THROW(File.GetRepairSQL(), EConvertError) << "a percent sign in a default is a placeholder";
}

TEST_P(CheckAndRepair, a_databases_nulls_are_found_and_filled)
{
    DesignStore store(Dir.filePath("design.dbd"));
    store.Table("T", {}, "表")
        .Field("ID", "int", {.Key = true, .NotNull = true, .Auto = true})
        .Field("NAME", "varchar(10)", {.Default = "x"})
        .Field("QTY", "decimal(8,2)")
        .Field("OK", "boolean", {.Default = "N"})
        .Field("PIC", "image");
    Design.SetFileName(store.FileName());
    Design.SetActived(true);
    Design.CreateDB(Session, true);
    Session.SetConnected(true);
    Session.Execute(QString("insert into T(NAME, QTY, OK) values('a', 5, 'Y')"));
    Session.Execute(QString("insert into T(NAME, QTY, OK) values(null, null, null)"));
    const auto found = [this] {
        QStringList places;
        for (const QString &statement : Design.GetCheckSQL())
            if (!Session.IsEmpty(statement))
                places.append(statement.section("--", 1));
        return places;
    };
    EXPECT_EQ(found(), QStringList({"表.创建者", "表.创建时间", "表.修改者", "表.修改时间", "表.创建者组",
                                    "表.NAME", "表.QTY", "表.OK", "表.PIC"}));
    for (const QString &statement : Design.GetRepairSQL())
        Session.Execute(statement);
    EXPECT_EQ(found(), QStringList("表.PIC")) << "pictures have no default";
    EXPECT_EQ(Rows("select ID, NAME, QTY, OK, CREATOR, CREATORGROUP from T order by ID"),
              QStringList({"1|a|5|Y|admin|Admins", "2|x|0|N|admin|Admins"}));
}

INSTANTIATE_TEST_SUITE_P(Places, CheckAndRepair, testing::ValuesIn(AllPlaces()), PlaceName);
