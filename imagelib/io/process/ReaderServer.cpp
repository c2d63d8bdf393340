// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// From requests to answers.
#include "imagelib/io/process/ReaderServer.h"

#include "imagelib/io/process/ReaderProcess.h"

#include <new>
#include <utility>

namespace morvend::imglib {

namespace {

using Kind = ReaderRequest::Kind;

/// A view shows few images at a time, and many views may have a reader each.
constexpr SegmentPool::Limits Memory{
    .segments = 64, .bytes = std::size_t(2) << 30, .idleBytes = std::size_t(256) << 20};

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
            const Message message = _channel.receive();
            const auto* text = std::get_if<std::string>(&message);
            const ReaderRequest request = ReaderRequest::fromText(text ? *text : std::string());
            MImage image;
            ReaderAnswer answer = _answer(request, image);
            if (!image.empty())
                answer.header = _header.shorten(image.optionalData());
            if (image.empty()) {
                _channel.send(answer.toText());
            } else {
                // Written together, both wake the parent once.
                _channel.enqueue(answer.toText());
                _channel.send(std::move(image));
            }
        }
    } catch (const MPeerGoneException&) {
        return;
    }
}

ReaderAnswer ReaderServer::_answer(const ReaderRequest& request, MImage& image)
{
    ReaderAnswer answer;
    try {
        _do(request, answer, image);
    } catch (const std::bad_alloc&) {
        answer.fail(MRuntimeException("Not enough memory: " + _path));
    } catch (const MMemoryException& error) {
        answer.fail(MRuntimeException(std::string(error.what()) + ": " + _path));
    } catch (const std::exception& error) {
        answer.fail(error);
    }
    if (answer.failed())
        image = {};
    if (_file) {
        answer.format = _file->format();
        answer.frames = _file->frameCount();
        answer.openedFrame = _file->openedFrame();
        answer.firstNumber = static_cast<std::uint32_t>(_file->firstNumber());
        answer.mainPath = _file->mainPath();
    }
    return answer;
}

void ReaderServer::_do(const ReaderRequest& request, ReaderAnswer& answer, MImage& image)
{
    if (request.kind == Kind::Open) {
        _file.reset();
        _path = request.path;
        _file = _opener(_path);
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
