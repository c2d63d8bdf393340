// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The exceptions of the image library: every failure of a read, a write or a request is one of
// them.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace morvend {

/// Base of all failures. what() states file, place and reason in words that a user understands.
class MException : public std::exception {
public:
    explicit MException(std::string message)
        : _message(std::move(message))
    {}
    const char* what() const noexcept override { return _message.c_str(); }

private:
    std::string _message;
};

/// A failed operation: damaged data, a rejected request, a series that doesn't accept a pushed
/// image.
class MRuntimeException : public MException {
public:
    using MException::MException;
};

/// The system gives no memory. Names no file: the reader of a file adds its name.
class MMemoryException : public MRuntimeException {
public:
    using MRuntimeException::MRuntimeException;
};

/// An index out of range.
class MOutOfRangeException : public MException {
public:
    using MException::MException;
};

/// A parameter that cannot be honoured.
class MBadParameterException : public MException {
public:
    using MException::MException;
};

/// A file or path that cannot be reached.
class MNoFileAccessException : public MException {
public:
    using MException::MException;
};

/// A file whose format is not known.
class MUnknownFormatException : public MException {
public:
    using MException::MException;
};

/// A pixel type or an operation without implementation.
class MNotImplementedException : public MException {
public:
    using MException::MException;
};

/// A wait that ran out.
class MTimeoutException : public MException {
public:
    explicit MTimeoutException(std::string message, double elapsed = 0.0)
        : MException(std::move(message))
        , _elapsed(elapsed)
    {}
    /// Seconds waited.
    double elapsed() const { return _elapsed; }

private:
    double _elapsed;
};

/// The other end of a connection closed it or died, and all that it sent has been received.
class MPeerGoneException : public MException {
public:
    using MException::MException;
};

/// The process that read a file has crashed, ended or sent invalid data in the middle of a request.
class MReaderGoneException : public MRuntimeException {
public:
    using MRuntimeException::MRuntimeException;
};

/// A request to a detector that failed at the protocol level.
class MHttpException : public MException {
public:
    using MException::MException;
};

/// An operation that was stopped on request.
class MTerminateException : public MException {
public:
    using MException::MException;
};

/// The class of a failure by its name, as it travels between processes: the first class of this
/// file that the exception is, derived classes before their bases; "MRuntimeException" for all
/// else.
const char* exceptionClass(const std::exception& exception);
/// Throws an exception of a class by its name; an MRuntimeException for any other name.
[[noreturn]] void throwException(const std::string& className, const std::string& message);

namespace imglib {

// Callers know these two by this namespace.
using morvend::MHttpException;
using morvend::MTerminateException;

/// Rethrows an exception as its own type in a context that has only the base: each class of this
/// file as itself, anything else as an MRuntimeException with the same text.
[[noreturn]] void forwardException(const std::exception& exception);

}  // namespace imglib
}  // namespace morvend
