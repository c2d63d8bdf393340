// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The requests and replies between a viewer and its preloader.
#pragma once

#include "logic/preload/ReadAhead.h"

#include <cstdint>
#include <string>

/// Byte strings in the byte order of the machine:
///
/// | request: offset | size | field |
/// |---|---|---|
/// | 0 | 4 | method |
/// | 4 | 8 | index: an image number of the series |
/// | 12 | rest | bytes of the path |
///
/// A GET is answered by one byte, 0 for a miss, 1 for a hit, and after a hit by an image. A hit may
/// be 2 instead: the image comes without its metadata tree, which is that of the last image on this
/// connection. A LIST is answered by the bytes of a ReadAhead.
namespace preloader {

enum Method : std::uint32_t {
    GET = 0,     ///< hand over an image, and read ahead from it
    PUT = 1,     ///< read ahead from this image
    FORGET = 2,  ///< no view shows this series now
    LIST = 3     ///< say what has been read ahead; the index is ignored
};

std::string pack(Method method, unsigned long index, const std::string& path);
/// What a peer sent, if it is long enough to be unpacked. @throws MRuntimeException otherwise
const std::string& checkedRequest(const std::string& data);
/// Asserts that method and index are present.
void unpack(const std::string& data, Method& method, unsigned long& index, std::string& path);

std::string pack(bool hit);
/// A hit whose image has the tree of the one before.
std::string packHitOfSameTree();
bool hasSameTree(const std::string& data);
/// As checkedRequest().
const std::string& checkedReply(const std::string& data);
/// Asserts that the byte is present.
void unpack(const std::string& data, bool& hit);

std::string pack(const ReadAhead& list);
/// @throws MRuntimeException for bytes that no pack() made
ReadAhead unpackList(const std::string& data);

}  // namespace preloader
