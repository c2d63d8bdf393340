// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a reader process is asked and what it answers, as texts.
#pragma once

#include "imagelib/image/MException.h"

#include <cstdint>
#include <string>

namespace morvend::imglib {

/// The first request opens a file; all others are about it.
struct ReaderRequest {
    enum class Kind { Open, Frame, Path, Update };

    Kind kind = Kind::Open;
    std::string path;            ///< Open: the file
    std::uint64_t position = 0;  ///< Frame and Path: of the frame, from 0
    std::string dataset = {};    ///< Open: the data set, empty for the default

    std::string toText() const;
    /// @throws MRuntimeException for a text that isn't a request
    static ReaderRequest fromText(const std::string& text);
};

/// How an image's header is sent.
enum class HeaderForm {
    Whole,    ///< all of it
    Change,   ///< the fields that differ from those of the last image, and its metadata tree
    SameTree  ///< the fields that differ; the metadata tree is that of the last image
};

/// The answer to a request. That to a successful Frame is followed by the image.
struct ReaderAnswer {
    std::string exception;  ///< the class of a failure, empty for success
    std::string message;    ///< what the failure says
    // The container as it is now.
    std::string format;
    std::uint64_t frames = 0;
    std::uint64_t openedFrame = 0;
    std::uint32_t firstNumber = 0;
    std::string mainPath;
    std::string dataset;
    // Of the requested frame.
    std::string framePath;
    HeaderForm header = HeaderForm::Whole;

    bool failed() const { return !exception.empty(); }
    /// Makes the answer a failure. Any other exception becomes an MRuntimeException.
    void fail(const std::exception& error);
    /// Throws a failure as the class that it was.
    [[noreturn]] void rethrow() const;

    std::string toText() const;
    /// @throws MRuntimeException for a text that isn't an answer
    static ReaderAnswer fromText(const std::string& text);
};

}  // namespace morvend::imglib
