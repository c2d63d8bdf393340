// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/MStreamObject.h"

#include "imagelib/image/MException.h"

namespace morvend::imglib {
namespace {

template <class T>
const T& contentAs(const MStreamObject::Content& content)
{
    if (const T* found = std::get_if<T>(&content))
        return *found;
    throw MRuntimeException("Stream: a message of type " + std::to_string(content.index()) +
                            " has no such content");
}

}  // namespace

const MStreamConfig& MStreamObject::config() const { return contentAs<MStreamConfig>(_content); }

const MStreamData& MStreamObject::data() const { return contentAs<MStreamData>(_content); }

const MStreamEnd& MStreamObject::end() const { return contentAs<MStreamEnd>(_content); }

}  // namespace morvend::imglib
