// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Names of the kinds of pixel values.
#include "imagelib/image/Type.h"

#include "imagelib/image/MException.h"

namespace morvend::datatypes {

std::string typeStr(Type type)
{
    switch (type) {
    case NONE:
        return "NONE";
    case BOOL:
        return "BOOL";
    case CHAR:
        return "CHAR";
    case UINT:
        return "UINT";
    case INT:
        return "INT";
    case FLOAT:
        return "FLOAT";
    }
    throw MNotImplementedException("Unknown data type");
}

}  // namespace morvend::datatypes
