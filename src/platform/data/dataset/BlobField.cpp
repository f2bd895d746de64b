// SPDX-License-Identifier: MIT
#include "platform/core/Exceptions.h"
#include "platform/data/RowReader.h"
#include "platform/data/dataset/Fields.h"

#include <QBuffer>
#include <QFile>
#include <QSaveFile>

namespace Korvane {

namespace {

[[noreturn]] void RaiseFile(const QString &text, const QFileDevice &file)
{
    throw EFileError(text.arg(file.fileName(), file.errorString()));
}

/// A buffer whose bytes become the field's value when it is closed.
class TBlobWriter final : public QBuffer
{
public:
    explicit TBlobWriter(TBlobField *field) : FField(field) {}
    ~TBlobWriter() override
    {
        try {
            TBlobWriter::close();
        } catch (const Exception &) {
            // Only who closes the stream can be told.
        }
    }

    void close() override
    {
        if (!isOpen())
            return;
        QBuffer::close();
        if (FField)
            FField->SetAsBytes(data());
    }

private:
    const QPointer<TBlobField> FField;
};

} // namespace

void TBlobField::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        RaiseFile(QStringLiteral("打开文件“%1”失败：%2"), file);
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        RaiseFile(QStringLiteral("读文件“%1”失败：%2"), file);
    SetAsBytes(bytes);
}

void TBlobField::SaveToFile(const QString &fileName) const
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        RaiseFile(QStringLiteral("打开文件“%1”失败：%2"), file);
    file.write(AsBytes());
    if (!file.commit())
        RaiseFile(QStringLiteral("写文件“%1”失败：%2"), file);
}

std::unique_ptr<QIODevice> TBlobField::CreateBlobStream(QIODevice::OpenMode mode)
{
    const bool writes = mode & QIODevice::WriteOnly;
    if (writes)
        WritableRow();
    auto stream = writes ? std::make_unique<TBlobWriter>(this) : std::make_unique<QBuffer>();
    if (!writes || mode & QIODevice::ReadOnly)
        stream->setData(AsBytes());
    stream->open(writes ? mode : QIODevice::ReadOnly);
    return stream;
}

QString TBlobField::FormattedText(bool display) const
{
    const bool isMemo = Kind() == TColumnKind::Text;
    if (isMemo && !display)
        return AsString();
    const QString text = isMemo ? QStringLiteral("(MEMO)") : QStringLiteral("(BLOB)");
    return Row()->GetText(FieldNo()).empty() ? text.toLower() : text;
}

int TBlobField::DefaultWidth() const { return 10; }

} // namespace Korvane
