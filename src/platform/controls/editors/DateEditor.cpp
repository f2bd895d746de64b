// SPDX-License-Identifier: MIT
#include "platform/controls/editors/CellEditor.h"
#include "platform/controls/editors/DropDownEdit.h"
#include "platform/core/Exceptions.h"
#include "platform/core/FormatDateTime.h"
#include "platform/data/dataset/Fields.h"

#include <QCalendarWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <optional>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// Eight digits, or year, month and day with "-", "/" or "." between them; invalid for anything else.
QDate DayOf(const QString &text)
{
    static const QRegularExpression form(u"^(\\d{4})(?:([-/.])(\\d{1,2})\\2(\\d{1,2})|(\\d\\d)(\\d\\d))$"_s);
    const QRegularExpressionMatch match = form.match(text.trimmed());
    const int first = match.hasCaptured(3) ? 3 : 5;
    const int year = match.captured(1).toInt();
    return year < 1 ? QDate() : QDate(year, match.captured(first).toInt(), match.captured(first + 1).toInt());
}

bool IsEightDigits(const QString &text)
{
    return text.size() == 8 &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

/// The calendar, and a button for today.
class TCalendarFrame : public TDropDownFrame
{
public:
    TCalendarFrame(QLineEdit &line, const QWidget &button)
        : TDropDownFrame(line, button), FCalendar(new QCalendarWidget(this))
    {
        FCalendar->setLocale(QLocale(QLocale::Chinese));
        FCalendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
        FCalendar->setDateEditEnabled(false);
        FCalendar->setDateRange(QDate(1, 1, 1), QDate(9999, 12, 31));
        FCalendar->setAccessibleName(line.accessibleName());
        auto *today = new QPushButton(u"今天"_s, this);
        today->setAutoDefault(false);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(1, 1, 1, 1);
        layout->setSpacing(1);
        layout->addWidget(FCalendar);
        layout->addWidget(today);
        // NOTE: the arrows of the calendar would take Alt+Up.
        FCalendar->focusProxy()->installEventFilter(this);
        connect(FCalendar, &QCalendarWidget::clicked, this, &TCalendarFrame::Choose);
        connect(FCalendar, &QCalendarWidget::activated, this, &TCalendarFrame::Choose);
        connect(today, &QAbstractButton::clicked, this, [this] { Choose(QDate::currentDate()); });
    }

    /// At a day, or at today for none.
    void Open(QDate day)
    {
        FCalendar->setSelectedDate(day.isValid() ? day : QDate::currentDate());
        FCalendar->setFocus();
        TDropDownFrame::Open(sizeHint());
    }

    TEvent<QDate> OnChoose;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress && TakeKey(static_cast<QKeyEvent &>(*event)))
            return true;
        return TDropDownFrame::eventFilter(object, event);
    }

private:
    void Choose(QDate day)
    {
        if (!isVisible()) // a click may come as an activation, too
            return;
        hide();
        OnChoose(day);
    }

    QCalendarWidget *const FCalendar;
};

/// A date, in a date field or as eight digits in a text. A time of the day that stands there stays when
/// another day is chosen.
class TDateEditor : public TCellEditor
{
public:
    explicit TDateEditor(const TCellEditorRequest &request)
        : FLine(std::make_unique<TDropDownEdit>(request.Field, request.Parent)),
          FType(request.Field.DataType()), FIsDateField(qobject_cast<const TDateTimeField *>(&request.Field))
    {
        FLine->Button().setAccessibleName(u"打开日历"_s);
        if (FType == ftTime)
            FLine->HideButton();
        QObject::connect(FLine.get(), &QLineEdit::textEdited, FLine.get(), [this] { OnChange(); });
        FLine->OnDrop = [this] { DropDown(); };
    }

    QWidget *Widget() override { return FLine.get(); }
    void Load(TField &field) override
    {
        const QString text = field.Text();
        const QDate day = FIsDateField || !IsEightDigits(text) ? QDate() : DayOf(text);
        FLine->setText(day.isValid() ? day.toString(u"yyyy-MM-dd"_s) : text);
        FValue.reset();
        if (FIsDateField && !field.IsNull())
            SetValue(field.AsDateTime(), FLine->text());
        FLine->selectAll();
    }
    /// Raises EConvertError for a text that is no date.
    void Store(TField &field) override
    {
        const QString text = FLine->text().trimmed();
        if (FIsDateField)
            return StoreDate(field, text);
        const QDate day = DayOf(text);
        if (!text.isEmpty() && !day.isValid())
            throw EConvertError(u"“%1”不是有效的日期"_s.arg(text));
        field.SetText(text.isEmpty() ? text : day.toString(u"yyyyMMdd"_s));
    }
    void TypeOver(const QString &text) override { FLine->setText(text); }
    void DropDown() override
    {
        if (FType == ftTime)
            return;
        if (!FCalendar) {
            FCalendar = new TCalendarFrame(*FLine, FLine->Button());
            FLine->SetPopup(FCalendar);
            FCalendar->OnChoose = [this](QDate day) { Choose(day); };
        }
        FCalendar->Open(FIsDateField ? Shown().ToQDate() : DayOf(FLine->text()));
    }
    bool KeepsKey(const QKeyEvent &key) const override { return FLine->KeepsKey(key); }

private:
    void SetValue(TDateTime value, const QString &text)
    {
        FValue = value;
        FValueText = text;
    }
    /// What the line shows, to the millisecond if it was not typed; empty for no date.
    TDateTime Shown() const
    {
        const QString text = FLine->text().trimmed();
        if (FValue && text == FValueText)
            return *FValue;
        TDateTime value(DayOf(text));
        if (value.IsEmpty())
            TryStrToDateTime(text, value);
        return value;
    }
    void Choose(QDate day)
    {
        if (FType == ftDateTime) {
            const TDateTime value = ComposeDateTime(TDateTime(day), TimeOf(Shown()));
            SetValue(value, DateTimeToStr(value));
        } else if (FIsDateField) {
            SetValue(TDateTime(day), DateToStr(TDateTime(day)));
        }
        FLine->setText(FIsDateField ? FValueText : day.toString(u"yyyy-MM-dd"_s));
        FLine->selectAll();
        OnChange();
        OnAccept();
    }
    void StoreDate(TField &field, const QString &text)
    {
        // The line shows no milliseconds; what was not typed keeps them.
        if (FValue && text == FValueText && !field.OnSetText)
            return field.SetAsDateTime(*FValue);
        const QDate day = FType == ftTime ? QDate() : DayOf(text);
        TDateTime value;
        if (!day.isValid() && !text.isEmpty() && !field.OnSetText && !TryStrToDateTime(text, value))
            throw EConvertError(u"“%1”不是有效的%2"_s.arg(text, FType == ftTime ? u"时间"_s : u"日期"_s));
        field.SetText(day.isValid() ? DateToStr(TDateTime(day)) : text);
    }

    const std::unique_ptr<TDropDownEdit> FLine;
    const TFieldType FType;
    const bool FIsDateField;
    std::optional<TDateTime> FValue; // what FValueText stands for
    QString FValueText;
    TCalendarFrame *FCalendar = nullptr; // the line's
};

} // namespace

std::unique_ptr<TCellEditor> MakeDateEditor(const TCellEditorRequest &request)
{
    return std::make_unique<TDateEditor>(request);
}

} // namespace Korvane
