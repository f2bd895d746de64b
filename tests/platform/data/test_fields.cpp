// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/core/FormatFloat.h"
#include "platform/data/CellValues.h"
#include "platform/data/dataset/ClientDataSet.h"
#include "platform/data/dataset/Fields.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>
#include <limits>

namespace Korvane {

namespace {

const QVariant Null;
const QString Name = QStringLiteral("F");

/// What a call gives as a text, or what it raises.
template <class Call> QString Outcome(Call call)
{
    QString text;
    const QString raised = RaisedBy([&] { text = call(); });
    return raised == u"nothing" ? text : raised;
}

QString CellText(const TRowReader &row, TFieldType type)
{
    return row.IsNull(0) ? QStringLiteral("~") : TCellReader(row, 0, type, Name).AsString();
}

/// A closed dataset takes one row with a value, which is being edited.
class TOneField
{
public:
    TOneField(TFieldType type, int size, const QVariant &value)
    {
        FSet.SetData(PacketOf({{"F", type, size}}, {{value}}));
        FSet.Edit();
        FField = FSet.Fields(0);
    }
    TField *operator->() const { return FField; }
    template <class Class> Class &As() const { return dynamic_cast<Class &>(*FField); }
    TClientDataSet &Set() { return FSet; }
    /// The text of the value, or what writing raises; "~" for NULL.
    QString After(const std::function<void(TField &)> &write) const
    {
        return Outcome([&] {
            write(*FField);
            return FField->IsNull() ? QStringLiteral("~") : FField->AsString();
        });
    }

private:
    TClientDataSet FSet;
    TField *FField;
};

} // namespace

TEST(CellValues, EachTypeTakesWhatItCanHold)
{
    const QDateTime noon(QDate(2024, 2, 29), QTime(12, 0));
    const struct
    {
        TFieldType Type;
        QVariant Value;
        const char *Stored;
    } rows[] = {
        {ftString, "文字 ", "文字 "},
        {ftString, "", ""},
        {ftString, Null, "~"},
        {ftString, 12, "12"},
        {ftString, -0.25, "-0.25"},
        {ftString, true, "1"},
        {ftString, noon, "2024-02-29 12:00:00"},
        {ftString, std::numeric_limits<quint64>::max(), "18446744073709551615"},
        {ftString, QByteArray("\xff"), "EConvertError: 字段“F”的内容不是有效的 UTF-8 文本"},
        {ftString, QVariantList{1}, "EConvertError: 字段“F”不能存入类型为 数组 的值"},
        {ftMemo, QByteArray("中"), "中"},
        {ftInteger, " 12 ", "12"},
        {ftInteger, "  ", "~"},
        {ftInteger, 2.5, "2"},
        {ftInteger, 3.5, "4"},
        {ftInteger, -2.5, "-2"},
        {ftInteger, QByteArray("7"), "7"},
        {ftInteger, "1.5", "EConvertError: 字段“F”的值“1.5”不是有效的整数"},
        {ftInteger, "x", "EConvertError: 字段“F”的值“x”不是有效的整数"},
        {ftInteger, 2147483648.0,
         "EDatabaseError: 字段“F”的值“2147483648”超出范围，应在 -2147483648 到 2147483647 之间"},
        {ftInteger, 1e300, "EDatabaseError: 字段“F”的值“1E300”超出范围，应在 -2147483648 到 2147483647 之间"},
        {ftInteger, std::nan(""), "EConvertError: 字段“F”的值“NAN”不是有效的数值"},
        {ftSmallint, -32768, "-32768"},
        {ftSmallint, -32769, "EDatabaseError: 字段“F”的值“-32769”超出范围，应在 -32768 到 32767 之间"},
        {ftWord, 65535, "65535"},
        {ftWord, "-1", "EDatabaseError: 字段“F”的值“-1”超出范围，应在 0 到 65535 之间"},
        {ftLargeint, "9223372036854775807", "9223372036854775807"},
        {ftLargeint, "9223372036854775808", "EConvertError: 字段“F”的值“9223372036854775808”不是有效的整数"},
        {ftBoolean, "t", "1"},
        {ftBoolean, "FALSE", "0"},
        {ftBoolean, "-1", "1"},
        {ftBoolean, 0.25, "1"},
        {ftBoolean, "", "~"},
        {ftBoolean, "maybe", "EConvertError: 字段“F”的值“maybe”不是有效的布尔值"},
        {ftFloat, "1e3", "1000"},
        {ftFloat, "0.1", "0.1"},
        {ftFloat, 7, "7"},
        {ftFloat, "", "~"},
        {ftFloat, "1,000", "EConvertError: 字段“F”的值“1,000”不是有效的数值"},
        {ftFloat, "inf", "EConvertError: 字段“F”的值“inf”不是有效的数值"},
        {ftFloat, qInf(), "EConvertError: 字段“F”的值“INF”不是有效的数值"},
        {ftDateTime, noon, "2024-02-29 12:00:00"},
        {ftDateTime, "2024-02-29 12:00", "2024-02-29 12:00:00"},
        {ftDateTime, QVariant::fromValue(TDateTime(45351.5)), "2024-02-29 12:00:00"},
        {ftDateTime, 45351.5, "2024-02-29 12:00:00"},
        {ftDateTime, 45351, "2024-02-29"},
        {ftDateTime, "2023-02-29", "EConvertError: 字段“F”的值“2023-02-29”不是有效的日期或时间"},
        {ftDateTime, 1e7, "EConvertError: 字段“F”的值“10000000”不是有效的日期或时间"},
        {ftDateTime, std::nan(""), "EConvertError: 字段“F”的值“NAN”不是有效的日期或时间"},
        {ftDate, noon, "2024-02-29"},
        {ftDate, QDate(1, 1, 1), "0001-01-01"},
        {ftDate, "12:00", "EConvertError: 字段“F”的值“12:00”不是有效的日期或时间"},
        {ftTime, noon, "12:00:00"},
        {ftTime, QTime(0, 0), "00:00:00"},
        {ftTime, "2024-02-29", "EConvertError: 字段“F”的值“2024-02-29”不是有效的日期或时间"},
        {ftBlob, QByteArray("\xff"), "\uFFFD"},
        {ftBlob, QByteArray(""), ""},
        {ftBlob, "", "~"},
        {ftBlob, 5, "5"},
    };
    for (const auto &row : rows) {
        TRowValues values(1);
        const auto store = [&] {
            TCellWriter(values, 0, row.Type, Name).SetValue(row.Value);
            return CellText(values, row.Type);
        };
        EXPECT_EQ(Outcome(store), QString::fromUtf8(row.Stored))
            << NameOf(row.Type).toStdString() << " " << testing::PrintToString(row.Value);
    }
}

TEST(CellValues, ReadsConvertAsFarAsTheValueAllows)
{
    const QString noInt = "EConvertError: 字段“F”的值“%1”不是有效的整数";
    const QString noFloat = "EConvertError: 字段“F”的值“%1”不是有效的数值";
    const QString noDate = "EConvertError: 字段“F”的值“%1”不是有效的日期或时间";
    const struct
    {
        TFieldType Type;
        QVariant Value;
        QString Text, Integer, Float, Boolean, Date;
    } rows[] = {
        {ftString, Null, "", "0", "0", "no", "0"},
        {ftDate, Null, "", "0", "0", "no", "0"},
        {ftString, "12", "12", "12", "12", "no", "0.5"},
        {ftString, "yes", "yes", noInt.arg("yes"), noFloat.arg("yes"), "yes", noDate.arg("yes")},
        {ftString, "True", "True", noInt.arg("True"), noFloat.arg("True"), "yes", noDate.arg("True")},
        {ftString, "2.5", "2.5", noInt.arg("2.5"), "2.5", "no", noDate.arg("2.5")},
        {ftString, "2024-02-29", "2024-02-29", noInt.arg("2024-02-29"), noFloat.arg("2024-02-29"), "no",
         "45351"},
        {ftInteger, -3, "-3", "-3", "-3", "yes", "-3"},
        {ftBoolean, true, "1", "1", "1", "yes", "1"},
        {ftFloat, 2.5, "2.5", "2", "2.5", "yes", "2.5"},
        {ftFloat, 0.1 + 0.2, "0.30000000000000004", "0", "0.3", "yes", "0.3"},
        {ftFloat, 1e300, "1E300", noInt.arg("1E300"), "1E300", "yes", "1E300"},
        {ftDateTime, 45351.75, "2024-02-29 18:00:00", "45352", "45351.75", "yes", "45351.75"},
        {ftTime, 0.75, "18:00:00", "1", "0.75", "yes", "0.75"},
        {ftBlob, QByteArray("18"), "18", "18", "18", "no", "0.75"},
    };
    for (const auto &row : rows) {
        const TDataPacket packet = PacketOf({{"F", row.Type}}, {{row.Value}});
        const TPacketRow values(packet, 0);
        const TCellReader cell(values, 0, row.Type, Name);
        const auto number = [](double value) { return FloatToStr(value); };
        const QStringList read = {Outcome([&] { return cell.AsString(); }),
                                  Outcome([&] { return QString::number(cell.AsInteger()); }),
                                  Outcome([&] { return number(cell.AsFloat()); }),
                                  cell.AsBoolean() ? "yes" : "no",
                                  Outcome([&] { return number(cell.AsDateTime().Days()); })};
        const QStringList expected = {row.Text, row.Integer, row.Float, row.Boolean, row.Date};
        EXPECT_EQ(read.join('|'), expected.join('|')) << NameOf(row.Type).toStdString();
        EXPECT_EQ(cell.Value(), packet.Value(0, 0));
        EXPECT_EQ(cell.Value().metaType(), packet.Value(0, 0).metaType());
    }
}

TEST(Fields, EachTypeHasItsClassAndItsMeasures)
{
    const struct
    {
        TFieldType Type;
        const char *Class;
        int DataSize, Width;
        bool IsBlob;
    } rows[] = {
        {ftString, "TStringField", 6, 5, false},
        {ftFixedChar, "TStringField", 6, 5, false},
        {ftSmallint, "TIntegerField", 2, 10, false},
        {ftInteger, "TIntegerField", 4, 10, false},
        {ftLargeint, "TIntegerField", 8, 10, false},
        {ftBoolean, "TBooleanField", 2, 5, false},
        {ftFloat, "TFloatField", 8, 10, false},
        {ftBCD, "TFloatField", 8, 10, false},
        {ftDate, "TDateTimeField", 4, 10, false},
        {ftTime, "TDateTimeField", 4, 10, false},
        {ftDateTime, "TDateTimeField", 8, 18, false},
        {ftMemo, "TBlobField", 0, 10, true},
        {ftBlob, "TBlobField", 0, 10, true},
        {ftGraphic, "TBlobField", 0, 10, true},
        {ftBytes, "TField", 5, 10, false},
        {ftGuid, "TField", 6, 10, false},
    };
    for (const auto &row : rows) {
        const auto field = MakeField(row.Type, nullptr);
        field->SetSize(5);
        EXPECT_EQ(field->metaObject()->className(), "Korvane::" + QByteArray(row.Class));
        EXPECT_EQ(field->DataType(), row.Type);
        EXPECT_EQ(field->DataSize(), row.DataSize) << row.Class << row.Type;
        EXPECT_EQ(field->DisplayWidth(), row.Width) << row.Class << row.Type;
        EXPECT_EQ(field->IsBlob(), row.IsBlob) << row.Class << row.Type;
    }
}

TEST(Fields, EachSetterConvertsToTheFieldsType)
{
    const auto text = [](const char *value) {
        return [value](TField &field) { field.SetAsString(QString::fromUtf8(value)); };
    };
    const struct
    {
        TFieldType Type;
        std::function<void(TField &)> Write;
        const char *Result;
    } rows[] = {
        {ftString, [](TField &f) { f.SetAsBoolean(true); }, "True"},
        {ftString, [](TField &f) { f.SetAsDateTime(TDateTime(45351.5)); }, "2024-02-29 12:00:00"},
        {ftString, [](TField &f) { f.SetAsBytes("中文"); }, "中文"},
        {ftString, [](TField &f) { f.SetValue(QVariantList{1}); },
         "EConvertError: 字段“F”不能存入类型为 数组 的值"},
        {ftInteger, [](TField &f) { f.SetAsBoolean(true); }, "1"},
        {ftInteger, [](TField &f) { f.SetAsFloat(2.5); }, "2"},
        {ftInteger, [](TField &f) { f.SetValue(Null); }, "~"},
        {ftInteger, [](TField &f) { f.Clear(); }, "~"},
        {ftInteger, text("x"), "EConvertError: 字段“F”的值“x”不是有效的整数"},
        {ftBoolean, text("fa"), "False"},
        {ftBoolean, [](TField &f) { f.SetAsInteger(5); }, "True"},
        {ftFloat, [](TField &f) { f.SetAsDateTime(TDateTime(1.5)); }, "1.5"},
        {ftDate, [](TField &f) { f.SetAsDateTime(TDateTime(45351.5)); }, "2024-02-29"},
        {ftDateTime, [](TField &f) { f.SetValue(QDate(2024, 2, 29)); }, "2024-02-29"},
        {ftBlob, [](TField &f) { f.SetAsBytes(QByteArray()); }, ""},
        {ftBlob, text(""), "~"},
        {ftMemo, text(""), ""},
    };
    for (const auto &row : rows) {
        const TOneField field(row.Type, 0, Null);
        EXPECT_EQ(field.After(row.Write), QString::fromUtf8(row.Result)) << NameOf(row.Type).toStdString();
    }
}

TEST(Fields, TextsAreCutToTheirSizeAndTrimmed)
{
    const struct
    {
        TFieldType Type;
        int Size;
        const char *Text, *Trimmed, *Kept;
    } rows[] = {
        {ftString, 3, "abcd", "abc", "abc"},  {ftString, 3, "中文字样", "中文字", "中文字"},
        {ftString, 2, "😀😀😀", "😀😀", "😀😀"},     {ftString, 4, "ab   c", "ab", "ab  "},
        {ftFixedChar, 4, "ab ", "ab", "ab "}, {ftWideString, 0, " ab  ", " ab", " ab  "},
        {ftString, 3, "   ", "", "   "},      {ftMemo, 3, "abcd ", "abcd ", "abcd "},
    };
    for (const auto &row : rows) {
        TOneField field(row.Type, row.Size, Null);
        for (const bool keeps : {false, true}) {
            field.Set().SetDisableStringTrim(keeps);
            field->SetAsString(QString::fromUtf8(row.Text));
            EXPECT_EQ(field->AsString(), QString::fromUtf8(keeps ? row.Kept : row.Trimmed)) << row.Text;
        }
    }
}

TEST(Fields, BoundsCountOnceOneIsSet)
{
    TOneField whole(ftInteger, 0, 5);
    auto &integer = whole.As<TIntegerField>();
    integer.SetMaxValue(10);
    EXPECT_EQ(whole.After([](TField &f) { f.SetAsString("10"); }), "10");
    for (const auto &write : std::initializer_list<std::function<void(TField &)>>{
             [](TField &f) { f.SetAsString("11"); }, [](TField &f) { f.SetAsInteger(11); },
             [](TField &f) { f.SetAsFloat(10.7); }})
        EXPECT_EQ(whole.After(write), "EDatabaseError: 字段“F”的值“11”超出范围，应在 0 到 10 之间");
    EXPECT_EQ(whole->AsInteger(), 10);
    TOneField fraction(ftFloat, 0, Null);
    fraction.As<TFloatField>().SetMinValue(-0.5);
    EXPECT_EQ(fraction.After([](TField &f) { f.SetAsFloat(-0.5); }), "-0.5");
    EXPECT_EQ(fraction.After([](TField &f) { f.SetAsString("-0.6"); }),
              "EDatabaseError: 字段“F”的值“-0.6”超出范围，应在 -0.5 到 0 之间");
    EXPECT_EQ(fraction.After([](TField &f) { f.SetAsInteger(1); }),
              "EDatabaseError: 字段“F”的值“1”超出范围，应在 -0.5 到 0 之间");
}

TEST(Fields, IntegersBeyond32BitsAreRefusedByAsInteger)
{
    const TOneField field(ftLargeint, 0, qint64(1) << 40);
    EXPECT_EQ(field->AsLargeInt(), qint64(1) << 40);
    EXPECT_EQ(RaisedBy([&] { field->AsInteger(); }),
              "EConvertError: 字段“F”的值“1099511627776”不是有效的整数");
}

TEST(Fields, ShownAndEditedTexts)
{
    const struct
    {
        TFieldType Type;
        QVariant Value;
        const char *Format, *EditFormat, *Display, *Text;
    } rows[] = {
        {ftInteger, 1234, "", "", "1234", "1234"},
        {ftInteger, 1234, "#,##0", "", "1,234", "1234"},
        {ftInteger, Null, "0", "0", "", ""},
        {ftFloat, 1234.5, "#,##0.00", "0.0", "1,234.50", "1234.5"},
        {ftFloat, 0.1 + 0.2, "", "", "0.3", "0.3"},
        {ftBoolean, true, "是;否", "", "是", "是"},
        {ftBoolean, false, "是;否", "", "否", "否"},
        {ftBoolean, false, "√", "", "", ""},
        {ftBoolean, true, "", "", "True", "True"},
        {ftDate, 45351.0, "yyyy年m月", "", "2024年2月", "2024-02-29"},
        {ftDateTime, 45351.5, "", "", "2024-02-29 12:00:00", "2024-02-29 12:00:00"},
        {ftString, "文字", "", "", "文字", "文字"},
        {ftBlob, QByteArray("x"), "", "", "(BLOB)", "(BLOB)"},
        {ftBlob, QByteArray(""), "", "", "(blob)", "(blob)"},
        {ftMemo, "长文", "", "", "(MEMO)", "长文"},
        {ftMemo, "", "", "", "(memo)", ""},
        {ftMemo, Null, "", "", "", ""},
    };
    for (const auto &row : rows) {
        const TOneField field(row.Type, 0, row.Value);
        if (*row.Format)
            field->SetDisplayFormat(QString::fromUtf8(row.Format));
        if (*row.EditFormat)
            field.As<TNumericField>().SetEditFormat(row.EditFormat);
        EXPECT_EQ(field->DisplayText(), QString::fromUtf8(row.Display)) << NameOf(row.Type).toStdString();
        EXPECT_EQ(field->Text(), QString::fromUtf8(row.Text)) << NameOf(row.Type).toStdString();
    }
    EXPECT_EQ(RaisedBy([] { TOneField(ftString, 0, "x")->SetDisplayFormat("0"); }),
              "Exception: 字段“F”没有显示格式");
}

TEST(Fields, BooleansTakeTheirOwnWords)
{
    const TOneField field(ftBoolean, 0, Null);
    field->SetDisplayFormat("Ja;Nein");
    const struct
    {
        const char *Text, *Result;
    } rows[] = {{"j", "Ja"},   {"NEI", "Nein"}, {"true", "Ja"},
                {"0", "Nein"}, {" ", "~"},      {"nö", "EConvertError: 字段“F”的值“nö”不是有效的布尔值"}};
    for (const auto &row : rows)
        EXPECT_EQ(field.After([&](TField &f) { f.SetAsString(QString::fromUtf8(row.Text)); }),
                  QString::fromUtf8(row.Result));
    EXPECT_EQ(field->DisplayWidth(), 4);
}

TEST(Fields, HandlersTakeOverTextsBothWays)
{
    const TOneField field(ftInteger, 0, 7);
    field->OnGetText = [](TField *f, QString &text, bool display) {
        text = (display ? "No. " : "#") + f->AsString();
    };
    field->OnSetText = [](TField *f, const QString &text) { f->SetAsString(text.mid(1)); };
    EXPECT_EQ(field->DisplayText(), "No. 7");
    EXPECT_EQ(field->Text(), "#7");
    field->SetText("#12");
    EXPECT_EQ(field->AsInteger(), 12);
    field->Clear();
    EXPECT_EQ(field->DisplayText(), "No. "); // also for NULL
    field->OnSetText = nullptr;
    EXPECT_EQ(RaisedBy([&] { field->SetText("#12"); }), "EConvertError: 字段“F”的值“#12”不是有效的整数");
}

TEST(Fields, AWriteValidatesThenChangesAndAFailureKeepsTheOldValue)
{
    for (const TFieldType type : {ftString, ftInteger, ftLargeint, ftFloat, ftBlob}) {
        for (const QVariant &old : {QVariant("1"), Null}) {
            TOneField field(type, 0, Null);
            field->SetValue(old);
            const QVariant before = field->Value();
            QStringList log;
            field->OnValidate = [&](TField *f) {
                log += "validate " + f->AsString();
                if (f->AsString() == u"3")
                    throw EDatabaseError("三不行");
            };
            field->OnChange = [&](TField *f) { log += "change " + f->AsString(); };
            EXPECT_EQ(RaisedBy([&] { field->SetAsString("3"); }), "EDatabaseError: 三不行");
            EXPECT_EQ(field->Value(), before);
            EXPECT_EQ(field->IsNull(), old.isNull());
            field->SetAsString("2");
            EXPECT_EQ(log.join(", "), "validate 3, validate 2, change 2") << NameOf(type).toStdString();
        }
    }
}

TEST(Fields, AValidationMayEndTheEditOrTheDataset)
{
    for (const bool closes : {false, true}) {
        TOneField field(ftString, 0, "old");
        field->OnChange = [](TField *) { ADD_FAILURE(); };
        field->OnValidate = [&](TField *f) {
            if (closes)
                f->DataSet()->Close();
            else
                f->DataSet()->Cancel();
            throw EDatabaseError("完");
        };
        EXPECT_EQ(RaisedBy([&] { field->SetAsString("new"); }), "EDatabaseError: 完");
        EXPECT_EQ(field.Set().State(), closes ? dsInactive : dsBrowse);
        if (!closes) {
            EXPECT_EQ(field->AsString(), "old");
        }
    }
}

TEST(Fields, WritingNeedsAnEditAndAFieldThatAllowsIt)
{
    TOneField field(ftString, 0, "old");
    const auto write = [](TField &f) { f.SetAsString("new"); };
    EXPECT_TRUE(field->CanModify());
    field->SetReadOnly(true);
    EXPECT_FALSE(field->CanModify());
    EXPECT_EQ(field.After(write), "EDatabaseError: 字段“F”是只读的，不能修改");
    field->SetReadOnly(false);
    field.Set().Cancel();
    EXPECT_FALSE(field->CanModify());
    EXPECT_EQ(field.After(write), "EDatabaseError: 数据集不在编辑或新增状态");
    EXPECT_EQ(field->AsString(), "old");
    TStringField alone(nullptr);
    alone.SetFieldName("A");
    EXPECT_EQ(RaisedBy([&] { alone.SetAsString("x"); }), "EDatabaseError: 字段“A”不属于任何数据集");
    EXPECT_EQ(alone.AsString(), "");
    EXPECT_TRUE(alone.IsNull());
    EXPECT_EQ(alone.Index(), -1);
}

TEST(Fields, OldValuesAreThoseBeforeTheEdit)
{
    TOneField field(ftDate, 0, 45351.0);
    field->SetAsString("2024-03-01");
    EXPECT_EQ(field->OldString(), "2024-02-29");
    EXPECT_EQ(field->OldValue(), 45351.0);
    field.Set().Cancel();
    field.Set().Append();
    EXPECT_TRUE(field->OldValue().isNull());
    EXPECT_EQ(field->OldString(), "");
}

TEST(Fields, JoinAndLeaveClosedDatasetsOnly)
{
    TClientDataSet set;
    auto field = std::make_unique<TStringField>(nullptr);
    field->SetFieldName("A");
    field->SetDataSet(&set);
    TStringField twin(nullptr);
    twin.SetFieldName("a");
    EXPECT_EQ(RaisedBy([&] { twin.SetDataSet(&set); }), "EDatabaseError: 字段“a”已经存在");
    EXPECT_EQ(twin.DataSet(), nullptr);
    twin.SetFieldName("B");
    twin.SetDataSet(&set);
    EXPECT_EQ(RaisedBy([&] { twin.SetFieldName("a"); }), "EDatabaseError: 字段“a”已经存在");
    twin.SetFieldName("b");
    set.SetData(PacketOf({{"A", ftString}, {"B", ftString}}, {{"1", "2"}}));
    EXPECT_EQ(twin.AsString(), "2");
    EXPECT_EQ(RaisedBy([&] { twin.SetDataSet(nullptr); }), "EDatabaseError: 数据集已打开，不能增减字段");
    EXPECT_EQ(RaisedBy([&] { twin.SetFieldName("C"); }),
              "EDatabaseError: 数据集已打开，不能改变字段“b”的名称");
    EXPECT_EQ(RaisedBy([&] { twin.SetFieldKind(fkCalculated); }),
              "EDatabaseError: 数据集已打开，不能改变字段“b”的种类");
    twin.SetIndex(0);
    EXPECT_EQ(field->Index(), 1);
    field.reset(); // leaves even the open one
    EXPECT_EQ(set.FieldCount(), 1);
    set.Close();
    twin.SetDataSet(nullptr);
    EXPECT_EQ(set.FieldCount(), 0);
}

TEST(Fields, OutliveTheirDataset)
{
    TStringField field(nullptr);
    field.SetFieldName("A");
    {
        TClientDataSet set;
        field.SetDataSet(&set);
        set.SetData(PacketOf({{"A", ftString}}, {{"1"}}));
    }
    EXPECT_EQ(field.DataSet(), nullptr);
    EXPECT_TRUE(field.IsNull());
}

TEST(Fields, BlobStreamsReadAndBecomeTheValueWhenClosed)
{
    TOneField one(ftBlob, 0, QByteArray("old"));
    auto &field = one.As<TBlobField>();
    EXPECT_EQ(field.CreateBlobStream(QIODevice::ReadOnly)->readAll(), "old");
    auto stream = field.CreateBlobStream(QIODevice::ReadWrite);
    EXPECT_EQ(stream->readAll(), "old");
    stream->write("er");
    EXPECT_EQ(field.AsBytes(), "old");
    stream->close();
    EXPECT_EQ(field.AsBytes(), "older");
    field.CreateBlobStream(QIODevice::WriteOnly)->write("new");
    EXPECT_EQ(field.AsBytes(), "new");
    field.CreateBlobStream(QIODevice::WriteOnly);
    EXPECT_EQ(field.BlobSize(), 0);
    EXPECT_FALSE(field.IsNull());
    // What closing raises, destroying drops.
    field.OnValidate = [](TField *) { throw EDatabaseError("不行"); };
    field.CreateBlobStream(QIODevice::WriteOnly)->write("x");
    stream = field.CreateBlobStream(QIODevice::WriteOnly);
    EXPECT_EQ(RaisedBy([&] { stream->close(); }), "EDatabaseError: 不行");
    one.Set().Cancel();
    EXPECT_EQ(field.AsBytes(), "old");
    EXPECT_EQ(RaisedBy([&] { field.CreateBlobStream(QIODevice::WriteOnly); }),
              "EDatabaseError: 数据集不在编辑或新增状态");
}

TEST(Fields, BlobsGoToFilesAndBack)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("blob");
    TOneField one(ftBlob, 0, QByteArray("\0\xff", 2));
    auto &field = one.As<TBlobField>();
    field.SaveToFile(name);
    field.Clear();
    field.LoadFromFile(name);
    EXPECT_EQ(field.AsBytes(), QByteArray("\0\xff", 2));
    EXPECT_TRUE(RaisedBy([&] { field.LoadFromFile(name + "x"); }).startsWith(u"EFileError: 打开文件"));
    EXPECT_TRUE(RaisedBy([&] { field.SaveToFile(name + "/x"); }).startsWith(u"EFileError: 打开文件"));
    EXPECT_EQ(field.BlobSize(), 2);
}

} // namespace Korvane
