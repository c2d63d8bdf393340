// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// A reader process whose images do what a damaged file or a faulty library does to it.
#include "imagelib/image/MException.h"
#include "imagelib/io/process/ReaderProcess.h"
#include "imagelib/io/process/ReaderServer.h"
#include "tests/imagelib/io/process/StrangeImages.h"

#include <csignal>
#include <cstdlib>

#include <unistd.h>

namespace {

using namespace morvend;
using namespace morvend::imglib;
using namespace tarvik::tests;

class StrangeFile : public ImageFile {
public:
    explicit StrangeFile(bool diesOfUpdates)
        : _diesOfUpdates(diesOfUpdates)
    {}

    const char* format() const override { return "STRANGE"; }
    std::size_t frameCount() const override { return StrangeImages; }
    std::size_t openedFrame() const override { return 2; }
    int firstNumber() const override { return 1; }
    std::string framePath(std::size_t position) const override
    {
        return "/data/" + std::to_string(position);
    }
    MImage frame(std::size_t position) const override
    {
        switch (static_cast<StrangeImage>(position)) {
        case Violates:
            std::raise(SIGSEGV);
            break;
        case Aborts:
            std::abort();
        case Exits:
            std::_Exit(3);
        case Hangs:
            for (;;)
                ::pause();
        case Babbles: {
            const std::string noise(4096, 'x');
            if (::write(ReaderProcess::SocketNumber, noise.data(), noise.size()) < 0)
                std::_Exit(4);
            for (;;)
                ::pause();
        }
        case Refuses:
            throw MOutOfRangeException("there is no such image: /data/strange");
        case Throws:
            throw std::runtime_error("an exception of another family");
        default:
            break;
        }
        return strangeImage(position);
    }
    void update() override
    {
        if (_diesOfUpdates)
            std::raise(SIGSEGV);
    }

private:
    bool _diesOfUpdates;
};

std::unique_ptr<ImageFile> open(const std::string& path, const std::string& /*dataset*/)
{
    if (path == FatalPath)
        std::raise(SIGBUS);
    while (path == HangingPath)
        ::pause();
    if (path == MissingPath)
        throw MNoFileAccessException("Cannot open file: No such file or directory: " + path);
    return std::make_unique<StrangeFile>(path == FatalUpdatePath);
}

}  // namespace

int main() { ReaderServer(UniqueFd(ReaderProcess::SocketNumber), open).run(); }
