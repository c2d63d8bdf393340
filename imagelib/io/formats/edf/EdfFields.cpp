// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Keys and values, as the common table knows them.
#include "imagelib/io/formats/edf/EdfFields.h"

#include "imagelib/io/formats/base/HeaderValues.h"
#include "imagelib/io/formats/edf/EdfHeader.h"

namespace morvend::imglib::edf {

void readFields(const EdfHeader& from, MBasicImageOptionalData<>& header)
{
    HeaderValues values;
    from.forEach([&](std::string_view key, std::string_view value) { values.add(key, value); });
    values.fill(header);
    header.set_rawHeader(from.shownText());
}

}  // namespace morvend::imglib::edf
