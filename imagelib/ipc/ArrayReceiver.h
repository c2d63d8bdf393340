// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finds the pixels that incoming frames only name.
#pragma once

#include "imagelib/ipc/LeasePage.h"

#include <array>
#include <memory>
#include <vector>

namespace morvend::imglib {

/// The arrays of one connection and direction, at the receiver. Every request is checked.
/// Thread: one at a time; the buffers it returns may go to other threads.
class ArrayReceiver : public wire::ArraySource {
public:
    /// The page that came with the peer's hello.
    void setReturns(const UniqueFd& page);
    /// Descriptors of the frame that is decoded next.
    void setDescriptors(std::vector<UniqueFd> descriptors);
    /// `frames` frames have been taken from the socket.
    void taken(std::uint64_t frames);
    void forget(const wire::Forget& forgotten);

    image::PixelBufferPtr outside(const wire::ArrayPlace& place, std::size_t bytes) override;
    image::MBasicImage<> kept(std::uint32_t number) override;
    void keep(std::uint32_t number, const image::MBasicImage<>& pixels) override;

private:
    UniqueFd descriptor(std::int32_t index);

    std::shared_ptr<LeaseReturns> _returns;
    std::vector<UniqueFd> _descriptors;
    std::vector<std::shared_ptr<const Mapping>> _segments;  // by number
    std::array<image::MBasicImage<>, wire::MostKept> _kept;
};

}  // namespace morvend::imglib
