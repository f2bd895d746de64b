// SPDX-License-Identifier: MIT
#pragma once

#include "platform/core/DateTime.h"
#include "platform/data/dataset/ClientDataSet.h"

#include <initializer_list>

namespace Korvane {

class TDBDFile;
class TDBSession;

/// How GetCodeByCustom writes the months, from index 1. An application may change it; it is read at
/// each call.
extern QString Month[13];

/// Proposes the next document number of a table's column, a date and a running number behind it, and
/// the next version of a document. Both come from the highest value that is stored; nothing is written
/// or reserved, so that two callers that ask before either saves get the same, and the table's unique key
/// decides. Failures of statements are those of TDBSession::Open; a stored value that is no whole
/// number raises EConvertError.
///
///     TAutoCode code;
///     code.SetDBSession(&session);
///     code.SetTable("ORDERHEAD");
///     code.SetField("BILLCODE");
///     code.SetToday(session.GetDateTime());
///     order.BillCode = code.GetAutoCode(); // "20240300001"
class TAutoCode : public TComponent
{
    Q_OBJECT
    Q_MOC_INCLUDE("design/DBDFile.h")
    Q_MOC_INCLUDE("session/DBSession.h")
    Q_PROPERTY(int NumberDigit READ NumberDigit WRITE SetNumberDigit)
    Q_PROPERTY(int YearDigit READ YearDigit WRITE SetYearDigit)
    Q_PROPERTY(QString Field READ Field WRITE SetField)
    Q_PROPERTY(QString Table READ Table WRITE SetTable)
    Q_PROPERTY(TCodeType CodeType READ CodeType WRITE SetCodeType)
    Q_PROPERTY(Korvane::TDBSession *DBSession READ DBSession WRITE SetDBSession)
    Q_PROPERTY(Korvane::TDBDFile *DBDFile READ DBDFile WRITE SetDBDFile)
    Q_PROPERTY(bool ByCustom READ ByCustom WRITE SetByCustom)
    Q_PROPERTY(Korvane::TDateTime Today READ Today WRITE SetToday)

public:
    /// How much of the date stands before the number. A rule's number outside of these counts as
    /// ctNumber in GetCode and as ctYear in GetCodeByCustom.
    enum TCodeType : int { ctDay, ctMonth, ctYear, ctNumber, ctManual };
    Q_ENUM(TCodeType)
    /// The kinds of document that have versions.
    enum TVerType { vtBOM, vtORD, vtPUR, vtMOC, vtINV, vtSO };
    Q_ENUM(TVerType)

    explicit TAutoCode(QObject *owner = nullptr);

    /// Least digits of the running number; it widens when it outgrows them.
    int NumberDigit() const { return FNumberDigit; }
    void SetNumberDigit(int digits) { FNumberDigit = digits; }
    /// 1 and 2 give the year in two digits, 3 and 4 in four, others leave it out.
    int YearDigit() const { return FYearDigit; }
    void SetYearDigit(int digits) { FYearDigit = digits; }
    /// The column that holds the codes, and its table.
    const QString &Field() const { return FField; }
    void SetField(const QString &field) { FField = field; }
    const QString &Table() const { return FTable; }
    void SetTable(const QString &table) { FTable = table; }
    TCodeType CodeType() const { return FCodeType; }
    void SetCodeType(TCodeType type) { FCodeType = type; }
    TDBSession *DBSession() const;
    void SetDBSession(TDBSession *session);
    /// Kept for the application.
    TDBDFile *DBDFile() const;
    void SetDBDFile(TDBDFile *file);
    /// Whether GetAutoCode goes by GetCodeByCustom.
    bool ByCustom() const { return FByCustom; }
    void SetByCustom(bool custom) { FByCustom = custom; }
    /// The date in the code; the application sets it before it asks.
    TDateTime Today() const { return FToday; }
    void SetToday(TDateTime today) { FToday = today; }

    /// One more than what follows the prefix in the highest code that begins with it; 1 if there is
    /// none. The highest as a text: "9" is above "10".
    int GetNumber(const QString &prefix);
    /// The same by the last NumberDigit characters alone.
    int GetNumberByCustom(const QString &prefix);

    /// The date as far as CodeType tells, and the number behind it. Empty, and nothing is asked, for
    /// ctManual.
    QString GetCode();
    /// The same with the months by Month, and with numbers that run on through the year whatever part of
    /// the date is shown. Empty for ctManual.
    QString GetCodeByCustom();
    QString GetAutoCode();
    /// By a rule of the table SYSMQ, which sets CodeType, NumberDigit and YearDigit for later
    /// calls, too. Empty for an unknown rule and for one of manual codes.
    QString GetAutoCode(const QString &code);

    // Versions. The arguments are the document's keys; they go into the statement as they are. Too few
    // raise EConvertError.

    /// The highest version that is stored; empty if there is none.
    QString GetMaxVersion(TVerType type, const QVariantList &args);
    /// Four digits, from "0001"; wider when they are used up.
    QString GetVersion(TVerType type, const QVariantList &args);
    /// A letter, from "A"; empty behind "Z", when there is no next one. Anything but a single capital
    /// letter begins anew with "A".
    QString GetVersionA(TVerType type, const QVariantList &args);

    QString GetMaxVersion(TVerType type, std::initializer_list<QVariant> args)
    {
        return GetMaxVersion(type, QVariantList(args));
    }
    QString GetVersion(TVerType type, std::initializer_list<QVariant> args)
    {
        return GetVersion(type, QVariantList(args));
    }
    QString GetVersionA(TVerType type, std::initializer_list<QVariant> args)
    {
        return GetVersionA(type, QVariantList(args));
    }

private:
    void OpenRows(const QString &statement);
    QString MaximumOf(const QString &statement);
    QString Numbered(const QString &prefix, int number) const;

    TClientDataSet FRows; // of the latest statement
    int FNumberDigit = 5;
    int FYearDigit = 4;
    QString FField;
    QString FTable;
    TCodeType FCodeType = ctMonth;
    QPointer<TDBSession> FDBSession;
    QPointer<TDBDFile> FDBDFile;
    bool FByCustom = false;
    TDateTime FToday;
};

using TCodeType = TAutoCode::TCodeType;
using TVerType = TAutoCode::TVerType;
using enum TAutoCode::TCodeType;
using enum TAutoCode::TVerType;

} // namespace Korvane
