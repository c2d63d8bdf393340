// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a script can learn of a view.
#pragma once

#include "api/ApiMessages.h"
#include "imagelib/image/MImage.h"

#include <functional>
#include <optional>

class QObject;
class SubWindow;

/// An answer, and the image that follows it on the queue.
struct ApiAnswer {
    ApiResult result;
    std::optional<morvend::imglib::MImage> image{};
};

/// Answers on the GUI thread; see docs/protocols/scripting.md for the texts.
namespace viewanswers {

using Answer = std::function<ApiAnswer(SubWindow& view)>;

/// The answer to a command, null if there is none of that name.
Answer find(const QString& command);

/// True while what a command asks for is being computed: it is asked again later.
bool pending(const QString& command, SubWindow& view);

/// The region with its numbers and curves, as JSON.
QString region(SubWindow& view);

}  // namespace viewanswers
