// SPDX-License-Identifier: MIT
#include "platform/sql/ConnectionString.h"

namespace Korvane {

namespace {

/// Reads the value that begins at pos and moves pos behind the ";" that ends it.
QString ReadValue(const QString &text, qsizetype &pos)
{
    while (pos < text.size() && text[pos].isSpace())
        ++pos;
    const QChar quote = pos < text.size() ? text[pos] : QChar();
    if (quote != QLatin1Char('"') && quote != QLatin1Char('\'')) {
        const qsizetype end = text.indexOf(QLatin1Char(';'), pos);
        const QString value = text.mid(pos, end < 0 ? -1 : end - pos).trimmed();
        pos = end < 0 ? text.size() : end + 1;
        return value;
    }
    QString value;
    for (++pos; pos < text.size(); ++pos) {
        if (text[pos] == quote) {
            if (pos + 1 >= text.size() || text[pos + 1] != quote)
                break;
            ++pos;
        }
        value += text[pos];
    }
    const qsizetype end = text.indexOf(QLatin1Char(';'), pos);
    pos = end < 0 ? text.size() : end + 1;
    return value;
}

} // namespace

TConnectionString::TConnectionString(const QString &text)
{
    qsizetype pos = 0;
    while (pos < text.size()) {
        const qsizetype equals = text.indexOf(QLatin1Char('='), pos);
        const qsizetype semicolon = text.indexOf(QLatin1Char(';'), pos);
        if (semicolon >= 0 && (equals < 0 || semicolon < equals)) {
            pos = semicolon + 1; // a part without "="
            continue;
        }
        if (equals < 0)
            break;
        const QString name = text.mid(pos, equals - pos).trimmed();
        pos = equals + 1;
        SetValue(name, ReadValue(text, pos));
    }
}

QString TConnectionString::Value(QStringView name) const
{
    for (const auto &[known, value] : FParts)
        if (name.compare(known, Qt::CaseInsensitive) == 0)
            return value;
    return {};
}

bool TConnectionString::Contains(QStringView name) const
{
    return std::any_of(FParts.begin(), FParts.end(), [name](const auto &part) {
        return name.compare(part.first, Qt::CaseInsensitive) == 0;
    });
}

void TConnectionString::SetValue(const QString &name, const QString &value)
{
    for (auto &[known, old] : FParts)
        if (known.compare(name, Qt::CaseInsensitive) == 0) {
            old = value;
            return;
        }
    FParts.append({name, value});
}

QString TConnectionString::ToString() const
{
    QStringList parts;
    for (const auto &[name, value] : FParts)
        parts.append(name + QLatin1Char('=') + Quoted(value));
    return parts.join(QLatin1Char(';'));
}

QString TConnectionString::Quoted(const QString &value)
{
    const bool plain = value.trimmed() == value && !value.contains(QLatin1Char(';')) &&
                       !value.startsWith(QLatin1Char('"')) && !value.startsWith(QLatin1Char('\''));
    if (plain)
        return value;
    QString doubled = value;
    doubled.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + doubled + QLatin1Char('"');
}

QString TConnectionString::Provider() const { return Value(u"Provider"); }
QString TConnectionString::DataSource() const { return Value(u"Data Source"); }
QString TConnectionString::InitialCatalog() const { return Value(u"Initial Catalog"); }
QString TConnectionString::UserID() const { return Value(u"User ID"); }
QString TConnectionString::ApplicationName() const { return Value(u"Application Name"); }

QString TConnectionString::Password() const
{
    const QString password = Value(u"Jet OLEDB:Database Password");
    return password.isEmpty() ? Value(u"Password") : password;
}

} // namespace Korvane
