// SPDX-License-Identifier: MIT
#include "support/DataSets.h"

#include "platform/core/Variants.h"
#include "platform/data/dataset/Fields.h"

#include <gtest/gtest.h>

namespace Korvane {

namespace {

const QVariant Null;

std::unique_ptr<TClientDataSet> Parts()
{
    return DataSetOf(
        {{"CODE", ftString, 10}, {"QTY", ftInteger}, {"PRICE", ftFloat}, {"NOTE", ftMemo}},
        {{"A1", 5, 1.5, "x"}, {"A2", Null, 2.0, Null}, {"b1", 3, Null, "y"}, {"B1", 3, 0.5, "中"}});
}

QString TextOf(const QVariant &value)
{
    if (!VarIsArray(value))
        return VarIsNull(value) ? QStringLiteral("~") : VarToStr(value);
    QStringList texts;
    for (const QVariant &item : value.toList())
        texts += TextOf(item);
    return texts.join(u'|');
}

// ---- columns --------------------------------------------------------------------------

TEST(ClientDataSet, CreatesColumnsOfAllTypes)
{
    const struct
    {
        TFieldDef Def;
        QVariant Value;
    } columns[] = {
        {{"S", ftString, 5}, "abc"},
        {{"F", ftFixedChar, 3}, "中"},
        {{"W", ftWideString, 5}, "é"},
        {{"I2", ftSmallint}, -32768},
        {{"W2", ftWord}, 65535},
        {{"I4", ftInteger}, -7},
        {{"I8", ftLargeint}, 1LL << 60},
        {{"ID", ftAutoInc}, 3},
        {{"B", ftBoolean}, true},
        {{"D", ftFloat}, 0.5},
        {{"M", ftCurrency}, 12.25},
        {{"N", ftBCD, 18, false, 4}, 1.5},
        {{"DATE", ftDate}, 45292.0},
        {{"TIME", ftTime}, 0.25},
        {{"STAMP", ftDateTime}, 45292.75},
        {{"BYTES", ftBytes, 2}, QByteArray("\1\2")},
        {{"VB", ftVarBytes, 4}, QByteArray("\3")},
        {{"BLOB", ftBlob}, QByteArray("\0z", 2)},
        {{"MEMO", ftMemo}, "文本"},
        {{"PIC", ftGraphic}, QByteArray("p")},
        {{"RTF", ftFmtMemo}, "r"},
        {{"GUID", ftGuid, 38}, "{00000000-0000-0000-0000-000000000001}"},
    };
    TClientDataSet set;
    for (const auto &column : columns)
        set.FieldDefs() += column.Def;
    set.CreateDataSet();
    EXPECT_EQ(PlaceOf(set), "browse 0/0 bof eof");
    set.Append();
    for (const auto &[def, value] : columns)
        set.FieldByName(def.Name)->SetValue(value);
    set.Post();
    Do(set, "append; post");
    const TDataPacket packet = set.Data();
    for (int i = 0; i < packet.FieldCount(); ++i) {
        const auto &[def, value] = columns[i];
        EXPECT_EQ(packet.Field(i), (TPacketField{def.Name, def.DataType, def.Size, def.Precision}));
        EXPECT_EQ(packet.Value(i, packet.LogBegin()).toByteArray(),
                  value.typeId() == QMetaType::Bool ? QByteArray("1") : value.toByteArray())
            << def.Name.toStdString();
        EXPECT_TRUE(packet.Column(i).IsNull(packet.LogBegin() + 1)) << def.Name.toStdString();
    }
    Do(set, "first; merge");
    EXPECT_EQ(TextOf(set.Data()).section(u'\n', 1, 1),
              "abc|中|é|-32768|65535|-7|1152921504606846976|3|1|0.5|12.25|1.5|45292|0.25|45292.75|"
              "0x0102|0x03|0x007a|文本|0x70|r|{00000000-0000-0000-0000-000000000001}");
}

TEST(ClientDataSet, CreatesColumnsFromItsFields)
{
    TClientDataSet set;
    for (const char *name : {"CODE", "NAME"}) {
        auto *field = new TStringField(&set);
        field->SetFieldName(name);
        field->SetSize(8);
        field->SetDataSet(&set);
    }
    auto *length = new TIntegerField(&set);
    length->SetFieldName("LENGTH");
    length->SetFieldKind(fkCalculated);
    length->SetDataSet(&set);
    set.CreateDataSet();
    EXPECT_EQ(TextOf(set.Data()), "CODE:string(8)|NAME:string(8)\n");
    EXPECT_EQ(set.FieldCount(), 3);

    TClientDataSet none;
    EXPECT_EQ(KindRaised([&] { none.CreateDataSet(); }), "EDatabaseError");
    none.FieldDefs() = {{"CODE", ftString, 5}, {"code", ftInteger}};
    EXPECT_EQ(KindRaised([&] { none.CreateDataSet(); }), "EDatabaseError");
    EXPECT_FALSE(none.Active());
}

TEST(ClientDataSet, CutsTexts)
{
    const auto set = DataSetOf({{"S", ftString, 4}, {"F", ftFixedChar, 4}, {"M", ftMemo}}, {});
    Do(*set, "append");
    for (TField *field : set->Fields())
        field->SetAsString("a  ");
    Do(*set, "post");
    EXPECT_EQ(RowOf(*set), "a|a|a  ");
    set->SetDisableStringTrim(true);
    Do(*set, "append");
    for (TField *field : set->Fields())
        field->SetAsString("b    c");
    EXPECT_EQ(RowOf(*set), "b   |b   |b    c");
}

// ---- filter ---------------------------------------------------------------------------

TEST(ClientDataSet, FiltersByTextAndHandler)
{
    const struct
    {
        const char *Text;
        TFilterOptions Options;
        int AtLeast; // what the handler lets pass of QTY; -1 without a handler
        const char *View;
    } cases[] = {
        {"", {}, -1, ">A1 A2 b1 B1"},
        {"QTY=3", {}, -1, ">b1 B1"},
        {"CODE='b*'", {}, -1, ">b1"},
        {"CODE='b*'", foCaseInsensitive, -1, ">b1 B1"},
        {"CODE='b*'", foNoPartialCompare, -1, ""},
        {"QTY is null", {}, -1, ">A2"},
        {"NOTE='中'", {}, -1, ">B1"},
        {"", {}, 3, ">A1 b1 B1"},
        {"PRICE>0", {}, 3, ">A1 B1"},
        {"PRICE>0", {}, 4, ">A1"},
        {"PRICE>0", {}, 6, ""},
    };
    for (const auto &[text, options, atLeast, view] : cases) {
        for (const bool reopens : {false, true}) {
            const auto set = Parts();
            Do(*set, "index CODE; index; last");
            set->SetFilter(text);
            set->SetFilterOptions(options);
            if (atLeast >= 0)
                set->SetOnFilterRecord([least = atLeast](TDataSet *source, bool &accept) {
                    EXPECT_EQ(source->State(), dsFilter);
                    accept = source->FieldByName(u"QTY")->AsInteger() >= least;
                });
            EXPECT_EQ(PlaceOf(*set), "browse 4/4 eof"); // nothing happens until it is switched on
            set->SetFiltered(true);
            if (reopens)
                set->SetData(set->Data());
            EXPECT_EQ(ViewOf(*set, "CODE"), view) << text;
            EXPECT_EQ(set->State(), dsBrowse);
            set->SetFiltered(false);
            EXPECT_EQ(ViewOf(*set, "CODE"), ">A1 A2 b1 B1");
        }
    }
}

TEST(ClientDataSet, ABadFilterChangesNothing)
{
    const auto set = Parts();
    Do(*set, "filter QTY=3; next");
    for (const char *text : {"QTY=", "NO_SUCH=1"}) {
        EXPECT_EQ(KindRaised([&] { set->SetFilter(text); }), "EDatabaseError");
        EXPECT_EQ(set->Filter(), "QTY=3");
        EXPECT_EQ(ViewOf(*set, "CODE"), "b1 >B1");
    }
}

TEST(ClientDataSet, APostedRowMayLeaveTheView)
{
    const struct
    {
        const char *Steps;
        const char *View;
    } cases[] = {
        {"edit; QTY=4; post", ">B1"},
        {"next; edit; QTY=4; post", ">b1"},
        {"edit; QTY=4; post; edit; QTY=4; post", ""},
        {"next; insert; CODE=N; post", "b1 >B1"},
        {"append; CODE=N; QTY=3; post", "b1 B1 >N"},
        {"edit; QTY=4; next", ">B1"},
    };
    for (const auto &[steps, view] : cases) {
        const auto set = Parts();
        Do(*set, "filter QTY=3");
        Do(*set, steps);
        EXPECT_EQ(ViewOf(*set, "CODE"), view) << steps;
    }
}

// ---- search ---------------------------------------------------------------------------

struct TLocateCase
{
    const char *Names;
    QVariant Values;
    TLocateOptions Options;
    const char *Found; // the code, or empty
};

const TLocateCase LocateCases[] = {
    {"CODE", "A2", {}, "A2"},
    {"code", "A2", {}, "A2"},
    {"CODE", "a2", {}, ""},
    {"CODE", "a2", loCaseInsensitive, "A2"},
    {"CODE", "b", loPartialKey, "b1"},
    {"CODE", "B", loPartialKey, "B1"},
    {"CODE", "B", loPartialKey | loCaseInsensitive, "b1"},
    {"CODE", "1", loPartialKey, ""},
    {"CODE", "", {}, ""},
    {"QTY", 3, {}, "b1"},
    {"QTY", 3.0, {}, "b1"},
    {"QTY", 3.5, {}, ""},
    {"QTY", "3", {}, "b1"},
    {"QTY", "three", {}, ""},
    {"QTY", "3", loPartialKey, "b1"},
    {"PRICE", "0.50", {}, "B1"},
    {"PRICE", 2, {}, "A2"},
    {"QTY", Null, {}, "A2"},
    {"NOTE", "中", {}, "B1"},
    {"NOTE", VarNull(), {}, "A2"},
    {"CODE;QTY", QVariantList{"B1", 3}, {}, "B1"},
    {"CODE;QTY", QVariantList{"b1", "3"}, loCaseInsensitive, "b1"},
    {"QTY;PRICE", QVariantList{3, Null}, {}, "b1"},
    {"QTY;CODE", QVariantList{3, "B"}, loPartialKey, "B1"},
    {"QTY;CODE", QVariantList{4, "B1"}, {}, ""},
};

TEST(ClientDataSet, Locates)
{
    // The second use goes by a table of the keys that the first one has not had.
    const auto kept = Parts();
    for (int use = 0; use < 3; ++use) {
        for (const auto &[names, values, options, found] : LocateCases) {
            const auto fresh = Parts();
            for (TClientDataSet *set : {fresh.get(), kept.get()}) {
                set->SetRecNo(use + 1);
                EXPECT_EQ(set->Locate(names, values, options), *found != 0)
                    << names << " " << TextOf(values).toStdString();
                const QString code = *found ? QString(found) : QStringList{"A1", "A2", "b1"}[use];
                EXPECT_EQ(set->FieldByName(u"CODE")->AsString(), code)
                    << names << " " << TextOf(values).toStdString();
            }
        }
    }
}

TEST(ClientDataSet, LocatesWhatHasChanged)
{
    const auto set = Parts();
    const struct
    {
        const char *Steps;
        const char *Names;
        QVariant Values;
        const char *View;
    } steps[] = {
        {"", "QTY", 3, "A1 A2 >b1 B1"},
        {"", "QTY", 3, "A1 A2 >b1 B1"},
        {"first; edit; QTY=3; post; last", "QTY", 3, ">A1 A2 b1 B1"},
        {"first; edit; CODE=C; last", "CODE", "C", ">C A2 b1 B1"},
        {"edit; QTY=5; post", "QTY", 3, "C A2 >b1 B1"},
        {"delete; first", "QTY", 3, "C A2 >B1"},
        {"append; CODE=N; QTY=9; post; first", "QTY", 9, "C A2 B1 >N"},
        {"first; insert; CODE=N0; QTY=9; post; last", "QTY", 9, ">N0 C A2 B1 N"},
        {"index CODE", "QTY", 9, "A2 B1 C >N N0"},
        {"filter CODE>'N'", "QTY", 9, ">N0"},
        {"filter", "QTY", 9, "A2 B1 C >N N0"},
        {"edit; CODE=Z; post", "QTY", 9, "A2 B1 C >N0 Z"},
        {"cancelupdates; first", "QTY", 3, "A1 A2 >B1 b1"},
        {"index; first", "QTY", 3, "A1 A2 >b1 B1"},
    };
    for (const auto &[change, names, values, view] : steps) {
        Do(*set, change);
        EXPECT_TRUE(set->Locate(names, values)) << change;
        EXPECT_EQ(ViewOf(*set, "CODE"), view) << change;
    }
    TClientDataSet clone;
    clone.CloneCursor(set.get(), true);
    Do(clone, "edit; QTY=3; post");
    EXPECT_TRUE(set->Locate("QTY", 3));
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A1 A2 b1 B1");
}

TEST(ClientDataSet, ALocateThatFailsLeavesThePosition)
{
    const auto set = Parts();
    Do(*set, "last");
    EXPECT_FALSE(set->Locate("CODE", "none"));
    EXPECT_EQ(PlaceOf(*set), "browse 4/4 eof");
    for (const char *names : {"NO_SUCH", "CODE;QTY", ""})
        EXPECT_EQ(KindRaised([&] { set->Locate(names, "A1"); }), "EDatabaseError") << names;
    EXPECT_EQ(PlaceOf(*set), "browse 4/4 eof");
    Do(*set, "edit; QTY=7"); // what was written is kept all the same
    EXPECT_FALSE(set->Locate("CODE", "none"));
    EXPECT_EQ(DeltaOf(*set), "unmodified B1|3|0.5|中\nmodified ~|7|~|~\n");
}

TEST(ClientDataSet, LooksUpWithoutMoving)
{
    const auto set = Parts();
    TDataSetRecorder recorder(*set);
    EXPECT_EQ(TextOf(set->Lookup("CODE", "b1", "QTY")), "3");
    EXPECT_EQ(TextOf(set->Lookup("QTY", 3, "CODE;PRICE;NOTE")), "b1|~|y");
    EXPECT_EQ(TextOf(set->Lookup("CODE;QTY", QVariantList{"B1", 3}, "NOTE")), "中");
    EXPECT_TRUE(VarIsNull(set->Lookup("CODE", "none", "QTY")));
    EXPECT_TRUE(VarIsNull(set->Lookup("CODE", "A2", "QTY")));
    EXPECT_EQ(KindRaised([&] { set->Lookup("CODE", "A2", "NO_SUCH"); }), "EDatabaseError");
    EXPECT_EQ(recorder.Take(), "");
    Do(*set, "edit; CODE=X");
    EXPECT_EQ(TextOf(set->Lookup("CODE", "B1", "QTY")), "3");
    EXPECT_EQ(PlaceOf(*set), "edit 1/4 modified");
}

// ---- calculated fields ----------------------------------------------------------------

TEST(ClientDataSet, CalculatesFieldsRowByRow)
{
    TClientDataSet set;
    auto *amount = new TFloatField(&set);
    amount->SetFieldName("AMOUNT");
    amount->SetFieldKind(fkCalculated);
    amount->SetDataSet(&set);
    int reckoned = 0;
    set.OnCalcFields = [&](TDataSet *source) {
        ++reckoned;
        EXPECT_EQ(source->State(), dsCalcFields);
        if (!source->FieldByName(u"PRICE")->IsNull())
            amount->SetAsFloat(source->FieldByName(u"QTY")->AsInteger() *
                               source->FieldByName(u"PRICE")->AsFloat());
    };
    set.SetData(Parts()->Data());
    EXPECT_EQ(ViewOf(set, "AMOUNT"), ">7.5 0 ~ 1.5");
    EXPECT_EQ(set.State(), dsBrowse);

    set.First();
    reckoned = 0;
    EXPECT_EQ(amount->AsFloat() + amount->AsFloat(), 15);
    EXPECT_LE(reckoned, 1);
    Do(set, "edit; QTY=10");
    EXPECT_EQ(amount->AsFloat(), 15);
    EXPECT_EQ(ViewOf(set, "AMOUNT"), ">15 0 ~ 1.5");
    Do(set, "cancel");
    EXPECT_EQ(amount->AsFloat(), 7.5);
    Do(set, "append; QTY=2; PRICE=2");
    EXPECT_EQ(amount->AsFloat(), 4);
    EXPECT_EQ(ViewOf(set, "AMOUNT"), "7.5 0 ~ 1.5");
    EXPECT_EQ(amount->AsFloat(), 4);
    Do(set, "post");
    EXPECT_EQ(ViewOf(set, "AMOUNT"), "7.5 0 ~ 1.5 >4");

    TClientDataSet clone; // changes by others are seen, too
    clone.CloneCursor(&set, true);
    Do(clone, "last; edit; QTY=3; post");
    EXPECT_EQ(amount->AsFloat(), 6);

    EXPECT_EQ(set.Data().IndexOf(u"AMOUNT"), -1);
    Do(set, "edit");
    EXPECT_EQ(KindRaised([&] { amount->SetAsFloat(1); }), "EDatabaseError");
    EXPECT_EQ(KindRaised([&] { set.SetIndexFieldNames("AMOUNT"); }), "EDatabaseError");
}

// ---- clones ---------------------------------------------------------------------------

TEST(ClientDataSet, AClonesSettings)
{
    const auto set = Parts();
    set->AddIndex("DOWN", "CODE", ixDescending);
    set->SetIndexName("DOWN");
    Do(*set, "filter CODE<>'A2'; next");
    const struct
    {
        bool Reset;
        bool Keep;
        const char *View;
    } cases[] = {
        {false, false, ">b1 B1 A1"},
        {true, false, ">A1 A2 b1 B1"},
        {false, true, ">B1 b1"},
    };
    for (const auto &[reset, keep, view] : cases) {
        TClientDataSet clone;
        clone.SetFilter("QTY=3");
        clone.SetFiltered(true);
        clone.SetIndexFieldNames("PRICE");
        if (keep)
            clone.SetIndexFieldNames("CODE");
        clone.CloneCursor(set.get(), reset, keep);
        EXPECT_EQ(ViewOf(clone, "CODE"), view);
        EXPECT_EQ(ViewOf(*set, "CODE"), "b1 >B1 A1");
        EXPECT_EQ(clone.GetBookmark().Data(), set->GetBookmark().Data());
        Do(clone, "filter; index; last"); // a position and settings of its own
        EXPECT_EQ(ViewOf(*set, "CODE"), "b1 >B1 A1");
        set->GotoBookmark(clone.GetBookmark());
        set->SetRecNo(2);
    }
    TClientDataSet closed;
    TClientDataSet clone;
    EXPECT_EQ(KindRaised([&] { clone.CloneCursor(&closed, true); }), "EDatabaseError");
}

// ---- aggregates -----------------------------------------------------------------------

TEST(ClientDataSet, SumsUp)
{
    const auto set = Parts();
    const struct
    {
        const char *Expression;
        const char *All;
        const char *Filtered; // without the first row
        const char *Changed;  // and the last one with 10 in QTY
    } cases[] = {
        {"sum(QTY)", "11", "6", "13"},     {"SUM( [QTY] )", "11", "6", "13"},
        {"sum(PRICE)", "4", "2.5", "2.5"}, {"avg(qty)", "3.66666666666667", "3", "6.5"},
        {"min(QTY)", "3", "3", "3"},       {"max(QTY)", "5", "3", "10"},
        {"min(CODE)", "A1", "A2", "A2"},   {"max(CODE)", "b1", "b1", "b1"},
        {"Count(*)", "4", "3", "3"},       {"count(QTY)", "3", "2", "2"},
        {"count(NOTE)", "3", "2", "2"},
    };
    std::vector<TAggregate *> aggregates;
    for (const auto &entry : cases) {
        aggregates.push_back(set->Aggregates().Add());
        aggregates.back()->SetExpression(entry.Expression);
        EXPECT_TRUE(VarIsNull(aggregates.back()->Value()));
        aggregates.back()->SetActive(true);
    }
    using TCase = std::remove_cvref_t<decltype(cases[0])>;
    const auto expect = [&](const char *TCase::*expected) {
        for (size_t i = 0; i < aggregates.size(); ++i)
            EXPECT_EQ(TextOf(aggregates[i]->Value()), cases[i].*expected) << cases[i].Expression;
    };
    expect(&TCase::All);
    Do(*set, "filter CODE<>'A1'");
    expect(&TCase::Filtered);
    Do(*set, "last; edit; QTY=10; post");
    expect(&TCase::Changed);
    Do(*set, "revert");
    expect(&TCase::Filtered);
    Do(*set, "filter CODE='none'");
    for (TAggregate *aggregate : aggregates)
        EXPECT_EQ(TextOf(aggregate->Value()),
                  aggregate->Expression().startsWith("count", Qt::CaseInsensitive) ? "0" : "~")
            << aggregate->Expression().toStdString();
    EXPECT_EQ(aggregates[0]->Value().isNull(), true);
    set->Aggregates().Remove(aggregates[0]);
    EXPECT_EQ(set->Aggregates().Count(), qsizetype(std::size(cases)) - 1);
    set->Close();
    EXPECT_TRUE(VarIsNull(aggregates[1]->Value()));
}

TEST(ClientDataSet, RefusesBadAggregates)
{
    const auto set = Parts();
    for (const char *expression :
         {"", "sum", "sum()", "sum(*)", "sum(NO_SUCH)", "sum(CODE)", "avg(NOTE)", "median(QTY)", "sum(QTY"}) {
        TAggregate *const aggregate = set->Aggregates().Add();
        aggregate->SetExpression(expression);
        EXPECT_EQ(KindRaised([&] { aggregate->SetActive(true); }), "EDatabaseError") << expression;
        EXPECT_FALSE(aggregate->Active());
    }
}

TEST(ClientDataSet, ClosesWithoutFields)
{
    const auto set = Parts();
    set->SetData(TDataPacket());
    EXPECT_EQ(PlaceOf(*set), "inactive");
    EXPECT_EQ(set->Data().FieldCount(), 0);
    EXPECT_EQ(set->ChangeCount(), 0);
}

} // namespace

} // namespace Korvane
