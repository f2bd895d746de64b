// SPDX-License-Identifier: MIT
#include "general/SystemRoutines.h"

#include "general/FileVersion.h"
#include "platform/core/Cp936.h"
#include "platform/core/Prompts.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QHostInfo>
#include <QRegularExpression>
#include <QSysInfo>

#include <chrono>

namespace Korvane {

namespace {

/// The addresses of the older protocol, in the order that the system gives.
QStringList AddressesOf(const QString &host)
{
    // An address is its own answer: asking about it would ask for its host's name.
    if (const QHostAddress address(host); address.protocol() == QAbstractSocket::IPv4Protocol)
        return {address.toString()};
    QStringList list;
    for (const QHostAddress &address : QHostInfo::fromName(host).addresses())
        if (address.protocol() == QAbstractSocket::IPv4Protocol)
            list.append(address.toString());
    return list;
}

/// The names that a mask matches, by the rules of the masks that people type: a dot before
/// a wildcard may be missing at the end of a name, and so may what "?" stands for before a
/// dot or at the end; a mask that ends with a dot wants names without one.
QRegularExpression PatternOf(QString mask)
{
    const bool withoutDot = mask.size() > 1 && mask.endsWith(u'.') && mask != QStringLiteral("..");
    if (withoutDot)
        mask.chop(1);
    QString pattern = withoutDot ? QStringLiteral("(?!.*\\.)") : QString();
    for (qsizetype i = 0; i < mask.size(); ++i) {
        const QChar c = mask[i];
        const QChar next = i + 1 < mask.size() ? mask[i + 1] : QChar();
        if (c == u'*')
            pattern += QStringLiteral(".*");
        else if (c == u'?')
            pattern += QStringLiteral("(?:[^.]|(?=\\.|\\z))");
        else if (c == u'.' && (next == u'*' || next == u'?'))
            pattern += QStringLiteral("(?:\\.|\\z)");
        else
            pattern += QRegularExpression::escape(QString(c));
    }
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::DotMatchesEverythingOption);
}

} // namespace

quint32 TickCount()
{
    using namespace std::chrono;
    return quint32(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void Delay(double milliseconds)
{
    // NOTE: not by TickCount, which would make a wait across its new beginning endless.
    QElapsedTimer timer;
    timer.start();
    do
        QCoreApplication::processEvents();
    while (double(timer.elapsed()) <= milliseconds);
}

QString ComputerName() { return Cp936::Left(QSysInfo::machineHostName().section(u'.', 0, 0), 15); }

QString LocalIP()
{
    const QStringList addresses = AddressesOf(QHostInfo::localHostName());
    return addresses.isEmpty() ? QString() : addresses.last();
}

bool HostToIP(const QString &host, QString &ip)
{
    const QStringList addresses = AddressesOf(host);
    if (addresses.isEmpty())
        return false;
    ip = addresses.first();
    return true;
}

QString GetVersionString(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const uchar *const image = file.map(0, file.size());
    return image ? FileVersionOf(QByteArrayView(image, file.size())) : QString();
}

QStringList FindFileList(const QString &mask)
{
    const QString path = QDir::fromNativeSeparators(mask);
    const qsizetype nameAt = path.lastIndexOf(u'/') + 1;
    const QDir folder(nameAt > 0 ? path.left(nameAt) : QStringLiteral("."));
    const QRegularExpression pattern = PatternOf(path.mid(nameAt));
    return folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System, QDir::Unsorted).filter(pattern);
}

QString SelectFolder()
{
    QString path = QDir::toNativeSeparators(Prompts::Current().SelectFolder(QStringLiteral("选择路径")));
    if (!path.isEmpty() && !path.endsWith(QDir::separator()))
        path += QDir::separator();
    return path;
}

} // namespace Korvane
