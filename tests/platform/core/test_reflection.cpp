// SPDX-License-Identifier: MIT
#include "platform/core/ClassRegistry.h"
#include "platform/core/DateTime.h"
#include "platform/core/Exceptions.h"
#include "platform/core/FormatFloat.h"
#include "platform/core/Reflection.h"
#include "platform/core/Variants.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Korvane;

namespace {

class TBase : public TPersistent
{
    Q_GADGET
    Q_PROPERTY(QString Text MEMBER Text)
    Q_PROPERTY(int Whole MEMBER Whole)

public:
    QString Text;
    int Whole = 0;
};

class TSample : public TBase
{
    Q_GADGET
    Q_PROPERTY(qint16 Small MEMBER Small)
    Q_PROPERTY(quint8 Tiny MEMBER Tiny)
    Q_PROPERTY(qint64 Large MEMBER Large)
    Q_PROPERTY(double Number MEMBER Number)
    Q_PROPERTY(float Single MEMBER Single)
    Q_PROPERTY(Korvane::TDateTime Time MEMBER Time)
    Q_PROPERTY(bool Flag MEMBER Flag)
    Q_PROPERTY(TMood Mood MEMBER Mood)
    Q_PROPERTY(TMarks Marks READ GetMarks WRITE SetMarks)
    Q_PROPERTY(Korvane::TPersistent *Child MEMBER Child)
    Q_PROPERTY(QVariant Any MEMBER Any)
    Q_PROPERTY(QString Fixed READ Fixed)
    Q_PROPERTY(QString Shared READ Shared WRITE SetShared)
    Q_PROPERTY(QString Pointed READ Pointed)

public:
    enum TMood { mdCalm, mdGlad, mdSad = 7 };
    Q_ENUM(TMood)
    enum TMark { mkFirst = 1, mkSecond = 2 };
    Q_DECLARE_FLAGS(TMarks, TMark)
    Q_FLAG(TMarks)

    TMarks GetMarks() const { return Marks; }
    void SetMarks(TMarks marks) { Marks = marks; }
    QString Fixed() const { return "fixed"; }
    const QString &Shared() const { return FShared; }
    void SetShared(const QString &shared) { FShared = shared; }
    const QString *Pointed() const { return &FShared; }

    qint16 Small = 0;
    quint8 Tiny = 0;
    qint64 Large = 0;
    double Number = 0;
    float Single = 0;
    TDateTime Time;
    bool Flag = false;
    TMood Mood = mdCalm;
    TMarks Marks;
    TPersistent *Child = nullptr;
    QVariant Any;
    QString FShared = "shared";
};

/// Declares a property of its base anew.
class TOverriding : public TBase
{
    Q_GADGET
    Q_PROPERTY(bool Extra MEMBER Extra)
    Q_PROPERTY(double Whole MEMBER Better)

public:
    bool Extra = false;
    double Better = 0;
};

/// Never registered.
class TStranger : public TBase
{
    Q_GADGET
};

namespace Elsewhere {

/// Of the same name as the one above.
class TBase : public TPersistent
{
    Q_GADGET
    Q_PROPERTY(QString Other MEMBER Other)

public:
    QString Other;
};

} // namespace Elsewhere

class Reflection : public testing::Test
{
protected:
    Reflection()
    {
        RegisterClass<TBase>();
        RegisterClass<TSample>();
        RegisterClass<TOverriding>();
    }
    ~Reflection() override
    {
        UnRegisterClass<TOverriding>();
        UnRegisterClass<TSample>();
        UnRegisterClass<TBase>();
        UnRegisterClass<Elsewhere::TBase>();
    }
};

QString MessageOf(const std::function<void()> &call)
{
    try {
        call();
    } catch (const Exception &error) {
        return error.Message();
    }
    return "nothing";
}

QStringList NamesOf(const TPropList &list)
{
    QStringList names;
    for (const TPropInfo &property : list.Properties())
        names.append(property.Name);
    return names;
}

} // namespace

TEST_F(Reflection, classes_are_found_by_name_blind_to_case)
{
    EXPECT_EQ(RegisteredClasses().mid(RegisteredClasses().size() - 3),
              QStringList({"TBase", "TSample", "TOverriding"}));
    for (const char *name : {"TSample", "tsample", "TSAMPLE"}) {
        ASSERT_TRUE(GetClass(name)) << name;
        EXPECT_EQ(FindClass(name).Name, "TSample");
        EXPECT_TRUE(dynamic_cast<TSample *>(FindClass(name).Create().get()));
    }
    EXPECT_EQ(GetClass("Korvane::TSample"), nullptr);
    EXPECT_EQ(GetClass(""), nullptr);
    EXPECT_EQ(MessageOf([] { FindClass("TNope"); }), "没有找到类TNope");
    EXPECT_THROW(FindClass("TNope"), EClassNotFound);
    EXPECT_EQ(ClassOf(TSample()).Name, "TSample");
    const TOverriding object;
    EXPECT_EQ(ClassOf(static_cast<const TBase &>(object)).Name, "TOverriding") << "the run-time class";
    EXPECT_THROW(ClassOf(TStranger()), EClassNotFound);
}

TEST_F(Reflection, registering_again_changes_nothing_and_another_class_takes_the_name)
{
    const TClassInfo *first = GetClass("TBase");
    RegisterClass<TBase>();
    EXPECT_EQ(GetClass("TBase"), first);
    EXPECT_EQ(RegisteredClasses().count("TBase"), 1);
    RegisterClass<Elsewhere::TBase>();
    EXPECT_EQ(RegisteredClasses().count("TBase"), 1);
    EXPECT_TRUE(dynamic_cast<Elsewhere::TBase *>(FindClass("TBase").Create().get()));
    EXPECT_THROW(ClassOf(TBase()), EClassNotFound) << "the one before is gone";
    UnRegisterClass<TBase>();
    EXPECT_TRUE(GetClass("TBase")) << "taking back one that is gone harms nobody";
    UnRegisterClass<Elsewhere::TBase>();
    UnRegisterClass<Elsewhere::TBase>();
    EXPECT_EQ(GetClass("TBase"), nullptr);
    EXPECT_FALSE(RegisteredClasses().contains("TBase"));
}

TEST_F(Reflection, properties_stand_in_declared_order_inherited_ones_first)
{
    EXPECT_EQ(NamesOf(GetPropList(TSample())),
              QStringList({"Text", "Whole", "Small", "Tiny", "Large", "Number", "Single", "Time", "Flag",
                           "Mood", "Marks", "Child", "Any", "Fixed", "Shared", "Pointed"}));
    EXPECT_EQ(NamesOf(GetPropList(TOverriding())), QStringList({"Text", "Whole", "Extra"}));
    EXPECT_TRUE(PropIsType(TOverriding(), u"Whole", tkFloat)) << "the later declaration holds";
    EXPECT_EQ(&GetPropList(TSample()), &GetPropList(TSample::staticMetaObject)) << "made once";
    EXPECT_THROW(GetPropList(TStranger()), EClassNotFound);
}

TEST_F(Reflection, kinds)
{
    const struct
    {
        const char *Name;
        TTypeKind Kind;
    } rows[] = {{"Text", tkString},      {"Whole", tkInteger},    {"Small", tkInteger}, {"Tiny", tkInteger},
                {"Large", tkInt64},      {"Number", tkFloat},     {"Single", tkFloat},  {"Time", tkFloat},
                {"Flag", tkEnumeration}, {"Mood", tkEnumeration}, {"Marks", tkSet},     {"Child", tkClass},
                {"Any", tkVariant},      {"Fixed", tkString}};
    for (const auto &row : rows) {
        const QString name = row.Name;
        EXPECT_EQ(GetPropInfo(TSample(), name).Kind, row.Kind) << row.Name;
        EXPECT_EQ(GetPropInfo(TSample(), name.toUpper()).Name, row.Name) << "blind to case";
        EXPECT_TRUE(PropIsType(TSample(), name, row.Kind));
        EXPECT_FALSE(PropIsType(TSample(), name, tkMethod));
    }
    EXPECT_FALSE(PropIsType(TSample(), u"Nope", tkString));
    EXPECT_EQ(MessageOf([] { GetPropInfo(TSample(), u"Nope"); }), "类TSample没有属性“Nope”");
    EXPECT_THROW(GetPropValue(TSample(), u"Nope"), EPropertyError);
    TSample object;
    EXPECT_THROW(SetPropValue(object, u"Nope", 1), EPropertyError);
}

TEST_F(Reflection, what_is_written_is_converted_and_reads_as_value_and_as_text)
{
    const struct
    {
        const char *Name;
        QVariant Written;
        QVariant Value;
        const char *Text;
    } rows[] = {
        {"Text", "中", "中", "中"},
        {"Text", 5, "5", "5"},
        {"Text", true, "True", "True"},
        {"Text", QVariant(), "", ""},
        {"Whole", "42", 42, "42"},
        {"Whole", " -7 ", -7, "-7"},
        {"Whole", QVariant(), 0, "0"},
        {"Whole", VarNull(), 0, "0"},
        {"Whole", true, 1, "1"},
        {"Whole", 2.5, 2, "2"},
        {"Whole", std::numeric_limits<int>::min(), std::numeric_limits<int>::min(), "-2147483648"},
        {"Small", 12, QVariant::fromValue(qint16(12)), "12"},
        {"Tiny", 200, QVariant::fromValue(quint8(200)), "200"},
        {"Large", Q_INT64_C(5000000000), Q_INT64_C(5000000000), "5000000000"},
        {"Large", "-5000000000", Q_INT64_C(-5000000000), "-5000000000"},
        {"Number", "0.1", 0.1, "0.1"},
        {"Number", 3, 3.0, "3"},
        {"Number", QVariant(), 0.0, "0"},
        {"Single", 0.5, QVariant::fromValue(0.5f), "0.5"},
        {"Flag", true, true, "True"},
        {"Flag", "TRUE", true, "True"},
        {"Flag", "false", false, "False"},
        {"Flag", "", false, "False"},
        {"Flag", 2, true, "True"},
        {"Flag", "0", false, "False"},
        {"Flag", QVariant(), false, "False"},
        {"Any", 5, 5, "5"},
    };
    for (const auto &row : rows) {
        TSample object;
        // So that the value before shows when nothing is written.
        object.Text = "before";
        object.Whole = 99;
        object.Number = 99;
        object.Large = 99;
        SetPropValue(object, QString(row.Name), row.Written);
        EXPECT_EQ(GetPropValue(object, QString(row.Name), false), row.Value) << row.Name;
        EXPECT_EQ(GetPropValue(object, QString(row.Name), true).toString(), row.Text) << row.Name;
        EXPECT_EQ(GetPropInfo(object, QString(row.Name)).Text(object), row.Text) << row.Name;
    }
}

TEST_F(Reflection, typed_writing_ends_as_SetValue_does)
{
    const char *properties[] = {"Text", "Whole", "Small", "Tiny", "Large", "Number", "Single",
                                "Time", "Flag",  "Mood",  "Any",  "Fixed", "Child"};
    const struct
    {
        QVariant Value;
        std::function<void(const TPropInfo &, TSample &)> Write;
    } rows[] = {
        {"12", [](const auto &property, auto &object) { property.WriteString(object, "12"); }},
        {"", [](const auto &property, auto &object) { property.WriteString(object, ""); }},
        {"x", [](const auto &property, auto &object) { property.WriteString(object, "x"); }},
        {7, [](const auto &property, auto &object) { property.WriteInt(object, 7); }},
        {-300, [](const auto &property, auto &object) { property.WriteInt(object, -300); }},
        {Q_INT64_C(5000000000),
         [](const auto &property, auto &object) { property.WriteInt(object, 5000000000); }},
        {2.5, [](const auto &property, auto &object) { property.WriteDouble(object, 2.5); }},
        {1e30, [](const auto &property, auto &object) { property.WriteDouble(object, 1e30); }},
        {true, [](const auto &property, auto &object) { property.WriteBool(object, true); }},
        {false, [](const auto &property, auto &object) { property.WriteBool(object, false); }},
    };
    const auto outcome = [](const TPropInfo &property, const auto &write) {
        TSample object;
        object.Text = "before";
        object.Whole = object.Small = object.Tiny = 99;
        object.Large = 99;
        object.Flag = true;
        const QString message = MessageOf([&] { write(object); });
        return message + QLatin1Char('|') + (property.Kind == tkClass ? QString() : property.Text(object));
    };
    for (const char *name : properties) {
        const TPropInfo &property = GetPropInfo(TSample(), QString(name));
        for (const auto &row : rows)
            EXPECT_EQ(outcome(property, [&](TSample &object) { row.Write(property, object); }),
                      outcome(property, [&](TSample &object) { property.SetValue(object, row.Value); }))
                << name << " takes " << row.Value.toString().toStdString();
    }
}

TEST_F(Reflection, numbers_read_as_FloatToStr_writes_them)
{
    const TPropInfo &property = GetPropInfo(TSample(), u"Number");
    TSample object;
    const char decimalSeparator = DefaultFormatSettings().DecimalSeparator.toLatin1();
    for (const char separator : {'.', ','}) {
        DefaultFormatSettings().DecimalSeparator = QLatin1Char(separator);
        for (const double value : {0.0,
                                   -0.0,
                                   1.0,
                                   -7.0,
                                   0.1,
                                   0.5,
                                   -12.35,
                                   0.001,
                                   0.0009,
                                   1e-7,
                                   123456789012345.0,
                                   1e15,
                                   -1e15,
                                   1e21,
                                   1.0 / 3,
                                   0.1 + 0.2,
                                   1234567.891,
                                   99999999999999.9,
                                   999999999999999.9,
                                   4.35,
                                   2.675,
                                   std::numeric_limits<double>::max(),
                                   std::numeric_limits<double>::infinity()}) {
            object.Number = value;
            QString text = "x";
            property.AppendText(object, text);
            EXPECT_EQ(text, "x" + FloatToStr(value)) << value;
        }
    }
    DefaultFormatSettings().DecimalSeparator = QLatin1Char(decimalSeparator);
}

TEST_F(Reflection, getters_that_give_a_reference_or_a_pointer)
{
    EXPECT_EQ(GetPropInfo(TSample(), u"Shared").Text(TSample()), "shared");
    EXPECT_EQ(GetPropInfo(TSample(), u"Pointed").Text(TSample()), "shared");
    TSample object;
    GetPropInfo(object, u"Shared").WriteString(object, "new");
    EXPECT_EQ(object.FShared, "new");
}

TEST_F(Reflection, the_registrys_version_tells_of_every_change)
{
    const quint64 start = RegistryVersion();
    RegisterClass<TBase>();
    EXPECT_EQ(RegistryVersion(), start) << "nothing changed";
    RegisterClass<Elsewhere::TBase>();
    const quint64 taken = RegistryVersion();
    EXPECT_NE(taken, start);
    UnRegisterClass<Elsewhere::TBase>();
    EXPECT_NE(RegistryVersion(), taken);
}

TEST_F(Reflection, enumerations_go_by_name_or_number_and_read_as_name)
{
    TSample object;
    const struct
    {
        QVariant Written;
        TSample::TMood Mood;
        const char *Text;
    } rows[] = {{"mdGlad", TSample::mdGlad, "mdGlad"},
                {7, TSample::mdSad, "mdSad"},
                {"1", TSample::mdGlad, "mdGlad"},
                {QVariant(), TSample::mdCalm, "mdCalm"},
                {QVariant::fromValue(TSample::mdSad), TSample::mdSad, "mdSad"}};
    for (const auto &row : rows) {
        object.Mood = TSample::mdSad;
        SetPropValue(object, u"Mood", row.Written);
        EXPECT_EQ(object.Mood, row.Mood) << row.Text;
        EXPECT_EQ(GetPropValue(object, u"Mood").toString(), row.Text);
        EXPECT_EQ(GetPropValue(object, u"Mood", false).toInt(), int(row.Mood));
    }
    object.Mood = TSample::mdGlad;
    EXPECT_THROW(SetPropValue(object, u"Mood", "mdNope"), Exception);
    EXPECT_EQ(object.Mood, TSample::mdGlad);
}

TEST_F(Reflection, a_date_time_is_a_number_of_days)
{
    TSample object;
    SetPropValue(object, u"Time", QVariant::fromValue(EncodeDate(2024, 3, 7)));
    EXPECT_EQ(object.Time.Days(), EncodeDate(2024, 3, 7).Days());
    SetPropValue(object, u"Time", QVariant());
    EXPECT_TRUE(object.Time.IsEmpty());
}

TEST_F(Reflection, what_does_not_fit_is_refused_and_changes_nothing)
{
    const struct
    {
        const char *Name;
        QVariant Value;
    } rows[] = {{"Whole", "x"},
                {"Whole", "1.5x"},
                {"Whole", Q_INT64_C(5000000000)},
                {"Whole", "5000000000"},
                {"Small", 40000},
                {"Small", -40000},
                {"Tiny", -1},
                {"Tiny", 256},
                {"Number", "x"},
                {"Flag", "maybe"},
                {"Mood", 12},
                {"Mood", "3"},
                {"Whole", QVariantList{1}},
                {"Text", QVariantList{1}},
                {"Fixed", "x"}};
    for (const auto &row : rows) {
        TSample object;
        object.Text = "5";
        object.Whole = object.Small = object.Tiny = 5;
        object.Number = 5;
        object.Flag = true;
        const QVariant before = GetPropValue(object, QString(row.Name), false);
        EXPECT_THROW(SetPropValue(object, QString(row.Name), row.Value), Exception) << row.Name;
        EXPECT_EQ(GetPropValue(object, QString(row.Name), false), before) << row.Name;
    }
}

#include "test_reflection.moc"
