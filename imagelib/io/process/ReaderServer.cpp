// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From requests to answers.
#include "imagelib/io/process/ReaderServer.h"

#include "imagelib/image/ErrorPlace.h"
#include "imagelib/io/process/ReaderProcess.h"

#include <chrono>
#include <utility>

namespace morvend::imglib {

namespace {

using Kind = ReaderRequest::Kind;

/// A view shows few images at a time, and many views may have a reader each.
constexpr SegmentPool::Limits Memory{
    .segments = 64, .bytes = std::size_t(2) << 30, .idleBytes = std::size_t(256) << 20};

/// After this long without a request, memory that waits for reuse is freed: a view that is fed by
/// the preloader asks its own reader for nothing.
constexpr std::chrono::milliseconds IdlePeriod{1000};

}  // namespace

ReaderServer::ReaderServer(UniqueFd socket, Opener opener)
    : _opener(std::move(opener))
    , _pool(SegmentPool::create(Memory))
    , _channel(std::move(socket), _pool, ReaderProcess::Greeting)
{}

void ReaderServer::run()
{
    try {
        for (;;) {
            const Message message = _nextMessage();
            const auto* text = std::get_if<std::string>(&message);
            const ReaderRequest request = ReaderRequest::fromText(text ? *text : std::string());
            MImage image;
            ReaderAnswer answer = _answer(request, image);
            _send(answer, std::move(image));
        }
    } catch (const MPeerGoneException&) {
        return;
    }
}

Message ReaderServer::_nextMessage()
{
    try {
        return _channel.receive(IdlePeriod);
    } catch (const MTimeoutException&) {
        _pool->trim();
        image::PixelBuffer::trimPool();
        return _channel.receive();
    }
}

template <class Step>
void ReaderServer::_attempt(ReaderAnswer& answer, Step step) const
{
    try {
        withPlace([&] { return _path; }, step);
    } catch (const std::exception& error) {
        answer.fail(error);
    }
}

ReaderAnswer ReaderServer::_answer(const ReaderRequest& request, MImage& image)
{
    ReaderAnswer answer = _container;
    _attempt(answer, [&] { _do(request, answer, image); });
    if (_file)
        _attempt(answer, [&] { _describe(answer); });
    if (answer.failed())
        image = {};
    _container = answer;
    _container.exception.clear();
    _container.message.clear();
    _container.framePath.clear();
    return answer;
}

void ReaderServer::_describe(ReaderAnswer& answer) const
{
    answer.format = _file->format();
    answer.frames = _file->frameCount();
    answer.openedFrame = _file->openedFrame();
    answer.firstNumber = static_cast<std::uint32_t>(_file->firstNumber());
    answer.mainPath = _file->mainPath();
    answer.dataset = _file->dataset();
}

void ReaderServer::_send(ReaderAnswer& answer, MImage image)
{
    if (!image.empty()) {
        answer.header = _header.shorten(image.optionalData());
        try {
            return _channel.sendBoth(answer.toText(), std::move(image));
        } catch (const MBadParameterException& error) {
            // Its header fits in no message, and the other end does not know it.
            _header = {};
            answer.header = HeaderForm::Whole;
            answer.fail(MRuntimeException(std::string(error.what()) + ": " + answer.framePath));
        }
    }
    _channel.send(answer.toText());
}

void ReaderServer::_do(const ReaderRequest& request, ReaderAnswer& answer, MImage& image)
{
    if (request.kind == Kind::Open) {
        _file.reset();
        _path = request.path;
        _file = _opener(_path, request.dataset);
        return;
    }
    if (!_file)
        throw MRuntimeException("no file is open");
    if (request.kind == Kind::Update)
        return _file->update();
    if (request.kind == Kind::Frame) {
        const image::PixelSource::Scope scope(*_pool);
        image = _file->frame(request.position);
        if (image.empty())
            throw MRuntimeException("The image has no pixels: " +
                                    _file->framePath(request.position));
    }
    answer.framePath = _file->framePath(request.position);
}

}  // namespace morvend::imglib
