// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The list of all classes, and the functions that need it.
#include "imagelib/image/MException.h"

// Derived classes come before their bases, since the first match is taken.
#define TARVIK_FOR_EACH_EXCEPTION(X)                                                               \
    X(MMemoryException)                                                                            \
    X(MReaderGoneException)                                                                        \
    X(MRuntimeException)                                                                           \
    X(MOutOfRangeException)                                                                        \
    X(MBadParameterException)                                                                      \
    X(MNoFileAccessException)                                                                      \
    X(MUnknownFormatException)                                                                     \
    X(MNotImplementedException)                                                                    \
    X(MTimeoutException)                                                                           \
    X(MPeerGoneException)                                                                          \
    X(MHttpException)                                                                              \
    X(MTerminateException)                                                                         \
    X(MException)

namespace morvend {

const char* exceptionClass(const std::exception& exception)
{
#define TARVIK_NAME(Class)                                                                         \
    if (dynamic_cast<const Class*>(&exception))                                                    \
        return #Class;
    TARVIK_FOR_EACH_EXCEPTION(TARVIK_NAME)
#undef TARVIK_NAME
    return "MRuntimeException";
}

void throwException(const std::string& className, const std::string& message)
{
#define TARVIK_THROW(Class)                                                                        \
    if (className == #Class)                                                                       \
        throw Class(message);
    TARVIK_FOR_EACH_EXCEPTION(TARVIK_THROW)
#undef TARVIK_THROW
    throw MRuntimeException(message);
}

void imglib::forwardException(const std::exception& exception)
{
#define TARVIK_FORWARD(Class)                                                                      \
    if (const auto* match = dynamic_cast<const Class*>(&exception))                                \
        throw Class(*match);
    TARVIK_FOR_EACH_EXCEPTION(TARVIK_FORWARD)
#undef TARVIK_FORWARD
    throw MRuntimeException(exception.what());
}

}  // namespace morvend
