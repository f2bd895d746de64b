// SPDX-License-Identifier: MIT
#include "platform/core/StringList.h"

#include "platform/core/Cp936.h"
#include "platform/core/Exceptions.h"
#include "platform/core/Text.h"

#include <QFile>
#include <QSaveFile>
#include <QStringConverter>

#include <algorithm>

namespace Korvane {

namespace {

constexpr QStringView LineEnd = u"\r\n";

/// Takes the items of a delimited text off its front.
class TDelimitedReader
{
public:
    TDelimitedReader(const QString &text, QChar delimiter, QChar quote, TDelimiting delimiting)
        : FText(text), FDelimiter(delimiter), FQuote(quote), FBlanksPart(delimiting == TDelimiting::BlanksToo)
    {
    }

    void ReadInto(QStringList &list)
    {
        SkipBlanks();
        while (FPos < FText.size()) {
            list += FText[FPos] == FQuote ? AnsiExtractQuotedStr(FText, FPos, FQuote) : PlainItem();
            SkipBlanks();
            if (FPos >= FText.size() || FText[FPos] != FDelimiter)
                continue;
            if (++FPos == FText.size())
                list += QString(); // a delimiter at the very end begins an empty item
            SkipBlanks();
        }
    }

private:
    bool IsBlank(QChar c) const { return FBlanksPart && c <= u' '; }

    void SkipBlanks()
    {
        while (FPos < FText.size() && IsBlank(FText[FPos]))
            ++FPos;
    }

    QString PlainItem()
    {
        const qsizetype start = FPos;
        while (FPos < FText.size() && FText[FPos] != FDelimiter && !IsBlank(FText[FPos]))
            ++FPos;
        return FText.mid(start, FPos - start);
    }

    const QString &FText;
    QChar FDelimiter;
    QChar FQuote;
    bool FBlanksPart;
    qsizetype FPos = 0;
};

QString DecodeText(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? Cp936::Decode(bytes) : text;
}

[[noreturn]] void RaiseFileError(const QString &what, const QFileDevice &file)
{
    throw EFileError(QStringLiteral("%1文件 '%2' 出错：%3").arg(what, file.fileName(), file.errorString()));
}

} // namespace

QString DelimitedText(const QStringList &list, QChar delimiter, QChar quote, TDelimiting delimiting)
{
    if (list.size() == 1 && list.first().isEmpty())
        return QString(2, quote);
    const auto parts = [&](QChar c) {
        return c == delimiter || c == quote || (delimiting == TDelimiting::BlanksToo && c <= u' ');
    };
    QString result;
    for (const QString &item : list) {
        result += std::any_of(item.begin(), item.end(), parts) ? QuotedStr(item, quote) : item;
        result += delimiter;
    }
    result.chop(1);
    return result;
}

void SetDelimitedText(QStringList &list, const QString &text, QChar delimiter, QChar quote,
                      TDelimiting delimiting)
{
    QStringList items;
    TDelimitedReader(text, delimiter, quote, delimiting).ReadInto(items);
    list = std::move(items);
}

QString CommaText(const QStringList &list) { return DelimitedText(list, u','); }

void SetCommaText(QStringList &list, const QString &text) { SetDelimitedText(list, text, u','); }

QString TextOf(const QStringList &list)
{
    return list.isEmpty() ? QString() : list.join(LineEnd).append(LineEnd);
}

void SetTextOf(QStringList &list, const QString &text)
{
    QStringList lines;
    const auto isLineEnd = [](QChar c) { return c == u'\r' || c == u'\n'; };
    for (auto pos = text.begin(); pos != text.end();) {
        const auto end = std::find_if(pos, text.end(), isLineEnd);
        lines += text.mid(pos - text.begin(), end - pos);
        pos = end;
        if (pos != text.end() && *pos == u'\r')
            ++pos;
        if (pos != text.end() && *pos == u'\n')
            ++pos;
    }
    list = std::move(lines);
}

QStringList LoadLines(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        RaiseFileError(QStringLiteral("读取"), file);
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        RaiseFileError(QStringLiteral("读取"), file);
    QStringList result;
    SetTextOf(result, DecodeText(bytes));
    return result;
}

void SaveLines(const QString &fileName, const QStringList &list)
{
    QSaveFile file(fileName);
    const QByteArray bytes = TextOf(list).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        RaiseFileError(QStringLiteral("写入"), file);
}

qsizetype IndexOfName(const QStringList &list, const QString &name)
{
    for (qsizetype i = 0; i < list.size(); ++i) {
        const qsizetype sign = list[i].indexOf(u'=');
        if (sign >= 0 && SameText(QStringView(list[i]).first(sign), name))
            return i;
    }
    return -1;
}

QString ValueOf(const QStringList &list, const QString &name)
{
    const qsizetype index = IndexOfName(list, name);
    return index < 0 ? QString() : list[index].mid(list[index].indexOf(u'=') + 1);
}

} // namespace Korvane
