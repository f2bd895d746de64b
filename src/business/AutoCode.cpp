// SPDX-License-Identifier: MIT
#include "business/AutoCode.h"

#include "design/DBDFile.h"
#include "platform/core/Cp936.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Format.h"
#include "platform/core/FormatDateTime.h"
#include "platform/core/Numbers.h"
#include "session/DBSession.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace Korvane {

QString Month[13] = {u""_s,   u"01"_s, u"02"_s, u"03"_s, u"04"_s, u"05"_s, u"06"_s,
                     u"07"_s, u"08"_s, u"09"_s, u"10"_s, u"11"_s, u"12"_s};

namespace {

QString YearFormat(int digits) { return digits >= 1 && digits <= 4 ? QString(digits, u'y') : QString(); }

int NextOf(const QString &digits)
{
    const int number = StrToInt(digits);
    if (number == std::numeric_limits<int>::max())
        throw EConvertError(u"编号已达到最大值：%1"_s.arg(digits));
    return number + 1;
}

const QString &VersionStatement(TVerType type)
{
    // NOTE: that of vtINV asks for the column that it tests, on purpose.
    static const QString statements[] = {u"select max(MC009) from BOMMC where MC001='%s'"_s,
                                         u"select max(TE003) from ORDTE where TE001='%s' and TE002='%s'"_s,
                                         u"select max(TE003) from PURTE where TE001='%s' and TE002='%s'"_s,
                                         u"select max(TO003) from MOCTO where TO001='%s' and TO002='%s'"_s,
                                         u"select max(TP001) from ORDTP where TP001='%s'"_s,
                                         u"select max(UC003) from PURUC where UC001='%s' and UC002='%s'"_s};
    if (type < vtBOM || type > vtSO)
        throw EListError(u"列表索引越界（%1）"_s.arg(int(type)));
    return statements[type];
}

} // namespace

TAutoCode::TAutoCode(QObject *owner) : TComponent(owner) {}

TDBSession *TAutoCode::DBSession() const { return FDBSession; }
void TAutoCode::SetDBSession(TDBSession *session) { FDBSession = session; }
TDBDFile *TAutoCode::DBDFile() const { return FDBDFile; }
void TAutoCode::SetDBDFile(TDBDFile *file) { FDBDFile = file; }

void TAutoCode::OpenRows(const QString &statement)
{
    if (!FDBSession)
        throw Exception(u"没有设置正确的DBSession属性"_s);
    FRows.SetData(FDBSession->Open(statement));
}

/// The first value of the first row; empty for NULL.
QString TAutoCode::MaximumOf(const QString &statement)
{
    OpenRows(statement);
    return FRows.Fields(0)->AsString();
}

// ---- codes ----------------------------------------------------------------------------

int TAutoCode::GetNumber(const QString &prefix)
{
    // Lengths are in bytes, here and in the statement.
    const qsizetype length = Cp936::Length(prefix);
    QString code =
        MaximumOf(prefix.isEmpty() ? Format(u"select max(%0:s) from %1:s"_s, {FField, FTable})
                                   : Format(u"select max(%0:s) from %1:s where left(%0:s, %2:d)='%3:s'"_s,
                                            {FField, FTable, length, prefix}));
    if (code.isEmpty())
        return 1;
    return NextOf(code.mid(Cp936::Left(code, length).size()));
}

int TAutoCode::GetNumberByCustom(const QString &prefix)
{
    const QString digits =
        MaximumOf(prefix.isEmpty()
                      ? Format(u"select max(right(%0:s, %2:d)) from %1:s"_s, {FField, FTable, FNumberDigit})
                      : Format(u"select max(right(%0:s, %4:d)) from %1:s where left(%0:s, %2:d)='%3:s'"_s,
                               {FField, FTable, Cp936::Length(prefix), prefix, FNumberDigit}));
    return digits.isEmpty() ? 1 : NextOf(digits);
}

QString TAutoCode::Numbered(const QString &prefix, int number) const
{
    return prefix + Format(u"%."_s + IntToStr(FNumberDigit) + u'd', {number});
}

QString TAutoCode::GetCode()
{
    // A format that is empty altogether gives the usual form of date and time.
    const QString year = YearFormat(FYearDigit);
    QString prefix;
    switch (FCodeType) {
    case ctDay:
        prefix = FormatDateTime(year + u"mmdd"_s, FToday);
        break;
    case ctMonth:
        prefix = FormatDateTime(year + u"mm"_s, FToday);
        break;
    case ctYear:
        prefix = FormatDateTime(year, FToday);
        break;
    case ctNumber:
        break;
    case ctManual:
        return {};
    }
    return Numbered(prefix, GetNumber(prefix));
}

QString TAutoCode::GetCodeByCustom()
{
    const QString year = FCodeType == ctNumber ? QString() : FormatDateTime(YearFormat(FYearDigit), FToday);
    // NOTE: by the year alone, also for ctManual, which gets no code.
    const int number = GetNumberByCustom(year);
    int years = 0, month = 0, day = 0;
    DecodeDate(FToday, years, month, day);
    switch (FCodeType) {
    case ctDay:
        return Numbered(year + Month[month] + Format(u"%.2d"_s, {day}), number);
    case ctMonth:
        return Numbered(year + Month[month], number);
    case ctNumber:
        return Numbered({}, number);
    case ctManual:
        return {};
    case ctYear:
        break;
    }
    return Numbered(year, number);
}

QString TAutoCode::GetAutoCode() { return FByCustom ? GetCodeByCustom() : GetCode(); }

QString TAutoCode::GetAutoCode(const QString &code)
{
    OpenRows(u"select * from SYSMQ where MQ005<>'5' and MQ001='"_s + code + u'\'');
    if (FRows.IsEmpty())
        return {};
    FCodeType = TCodeType(FRows.FieldByName(u"MQ005")->AsInteger() - 1);
    FNumberDigit = FRows.FieldByName(u"MQ007")->AsInteger();
    FYearDigit = FRows.FieldByName(u"MQ006")->AsInteger();
    return GetAutoCode();
}

// ---- versions -------------------------------------------------------------------------

QString TAutoCode::GetMaxVersion(TVerType type, const QVariantList &args)
{
    return MaximumOf(Format(VersionStatement(type), args));
}

QString TAutoCode::GetVersion(TVerType type, const QVariantList &args)
{
    const QString version = GetMaxVersion(type, args);
    return Format(u"%.4d"_s, {version.isEmpty() ? 1 : NextOf(version)});
}

QString TAutoCode::GetVersionA(TVerType type, const QVariantList &args)
{
    const QString version = GetMaxVersion(type, args);
    if (version.size() != 1 || version[0] < u'A' || version[0] > u'Z')
        return u"A"_s;
    return version[0] == u'Z' ? QString() : QString(QChar(version[0].unicode() + 1));
}

} // namespace Korvane
