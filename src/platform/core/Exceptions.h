// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <exception>

namespace Korvane {

/// The general failure of the library. Its message is what the user reads, so it is
/// written for clerks and in Chinese, save where a database's own words are passed on.
class Exception : public std::exception
{
public:
    explicit Exception(QString message);

    const QString &Message() const noexcept { return FMessage; }
    /// The message in UTF-8.
    const char *what() const noexcept override { return FUtf8.constData(); }

private:
    QString FMessage;
    QByteArray FUtf8;
};

/// Ends what is going on without a message: the top-level handler swallows it.
class EAbort : public Exception
{
public:
    EAbort();
};

/// A text or value does not convert to the type asked for.
class EConvertError : public Exception
{
public:
    using Exception::Exception;
};

/// A Variant cannot be read in the way asked for: no array, index out of bounds, wrong type.
class EVariantError : public Exception
{
public:
    using Exception::Exception;
};

/// An index lies outside a list.
class EListError : public Exception
{
public:
    using Exception::Exception;
};

/// An object has no reflected property of a name, or the property refuses a value.
class EPropertyError : public Exception
{
public:
    using Exception::Exception;
};

/// No class is registered under a name.
class EClassNotFound : public Exception
{
public:
    using Exception::Exception;
};

class EInvalidCast : public Exception
{
public:
    using Exception::Exception;
};

/// Memory, handles or a format's size limit are used up.
class EOutOfResources : public Exception
{
public:
    using Exception::Exception;
};

/// A file cannot be opened, read or written.
class EFileError : public Exception
{
public:
    using Exception::Exception;
};

/// A dataset, a connection or a statement failed.
class EDatabaseError : public Exception
{
public:
    using Exception::Exception;
};

/// Raises EAbort.
[[noreturn]] void Abort();

} // namespace Korvane
