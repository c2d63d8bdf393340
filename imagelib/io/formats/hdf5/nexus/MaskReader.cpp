// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Masks read as images, turned, joined and folded.
#include "imagelib/io/formats/hdf5/nexus/MaskReader.h"

#include "imagelib/image/MException.h"
#include "imagelib/image/MaskBits.h"

#include <algorithm>

namespace morvend::imglib::hdf5 {

namespace {

constexpr int MostMasks = 16;
constexpr unsigned Tested = maskrule::Excluding;
constexpr unsigned Folded = 0xffe0;
constexpr unsigned Defective = 0x10;

MImage turned(const MImage& mask)
{
    MImage result(mask.height(), mask.width(), datatypes::UINT, 32);
    auto* to = static_cast<unsigned*>(result.data());
    const unsigned* from = mask.pixels<unsigned>();
    const auto width = static_cast<std::size_t>(mask.width());
    const auto height = static_cast<std::size_t>(mask.height());
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            to[x * height + y] = from[y * width + x];
    return result;
}

/// The masks of all modules, below each other.
MImage stacked(const FrameSource& set, OpenFrameSets& sets)
{
    const FrameShape& shape = set.shape();
    MImage result(shape.width(), static_cast<int>(shape.frames) * shape.height(), datatypes::UINT,
                  32);
    auto* to = static_cast<unsigned*>(result.data());
    for (std::size_t i = 0; i < set.frames(); ++i) {
        const MImage module = set.read(i, sets).asType<unsigned>();
        to = std::copy_n(module.pixels<unsigned>(), module.size(), to);
    }
    return result;
}

/// Reads the masks of one frame and adds them up.
class Gatherer {
public:
    Gatherer(OpenFrameSets& sets, const std::string& file, const MaskedFrame& frame)
        : _sets(sets)
        , _file(file)
        , _frame(frame)
    {}

    /// Adds the mask at a path. @returns whether there is one that fits
    bool add(const std::string& path)
    {
        try {
            if (!_sets.files().find(_sets.files().file(_file), path))
                return false;
            const MImage more = _read(*_sets.at({_file, path}));
            if (more.empty())
                return false;
            _or(more);
            return true;
        } catch (const MMemoryException&) {
            throw;
        } catch (const MException& error) {
            _remark(path, std::string("left out, because it can't be read (") + error.what() + ")");
            return false;
        }
    }

    Mask take()
    {
        if (!_mask.image.empty())
            _foldBits();
        return std::move(_mask);
    }

private:
    MImage _read(const FrameSource& set)
    {
        const FrameShape& shape = set.shape();
        const bool fits = shape.width() == _frame.width && shape.height() == _frame.height;
        const bool lies = shape.width() == _frame.height && shape.height() == _frame.width;
        const auto height = static_cast<hsize_t>(_frame.height);
        if (!fits && shape.rank == 3 && shape.width() == _frame.width &&
            shape.frames == height / shape.rows && shape.frames * shape.rows == height)
            return stacked(set, _sets);
        if (!fits && !lies) {
            _remark(set.path(), "left out: it has " + std::to_string(shape.width()) + " x " +
                                    std::to_string(shape.height()) + " pixels, the images have " +
                                    std::to_string(_frame.width) + " x " +
                                    std::to_string(_frame.height));
            return {};
        }
        const MImage mask = set.read(_plane(set), _sets).asType<unsigned>();
        return fits ? mask : turned(mask);
    }

    /// Which of the masks of a data set belongs to the frame.
    std::size_t _plane(const FrameSource& set)
    {
        if (set.frames() <= 1)
            return 0;
        if (set.frames() == _frame.frames) {
            _mask.ofFrame = true;
            return _frame.position;
        }
        _remark(set.path(), "the first of " + std::to_string(set.frames()) + ", for all " +
                                std::to_string(_frame.frames) + " images");
        return 0;
    }

    void _or(const MImage& more)
    {
        if (_mask.image.empty()) {
            _mask.image = more;
            return;
        }
        auto* bits = static_cast<unsigned*>(_mask.image.data());
        std::transform(bits, bits + more.size(), more.pixels<unsigned>(), bits,
                       [](unsigned left, unsigned right) { return left | right; });
    }

    void _foldBits()
    {
        auto* bits = static_cast<unsigned*>(_mask.image.data());
        std::transform(bits, bits + _mask.image.size(), bits, [](unsigned value) {
            const bool fold = (value & Tested) == 0 && (value & Folded) != 0;
            return value | (fold ? Defective : 0);
        });
    }

    void _remark(const std::string& path, const std::string& what)
    {
        if (_mask.remark.empty())
            _mask.remark = "HDF5: the pixel mask " + path + " is " + what + ": " + _file;
    }

    OpenFrameSets& _sets;
    const std::string& _file;
    const MaskedFrame& _frame;
    Mask _mask;
};

}  // namespace

Mask readMask(OpenFrameSets& sets, const std::string& file, const std::vector<std::string>& paths,
              const MaskedFrame& frame)
{
    Gatherer gatherer(sets, file, frame);
    for (const std::string& path : paths) {
        if (!gatherer.add(path))
            continue;
        for (int number = 2; number <= MostMasks; ++number)
            if (!gatherer.add(path + "_" + std::to_string(number)))
                break;
        break;
    }
    return gatherer.take();
}

}  // namespace morvend::imglib::hdf5
