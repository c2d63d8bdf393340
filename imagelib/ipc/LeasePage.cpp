// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Both sides of the lease page.
#include "imagelib/ipc/LeasePage.h"

#include "imagelib/ipc/WireBytes.h"

namespace morvend::imglib {

namespace {

constexpr std::uint32_t Magic = 0x504c5654;  // "TVLP"
constexpr std::uint32_t PageVersion = 1;
constexpr std::size_t TakenAt = 8;
constexpr std::size_t CountersAt = 64;
static_assert(CountersAt + 4 * wire::MostSegments <= LeasePageBytes);

template <class T>
std::atomic_ref<T> at(const Mapping& page, std::size_t offset)
{
    return std::atomic_ref<T>(*reinterpret_cast<T*>(page.data() + offset));
}

std::atomic_ref<std::uint32_t> counter(const Mapping& page, std::uint32_t number)
{
    return at<std::uint32_t>(page, CountersAt + 4 * std::size_t(number));
}

std::size_t checkedPage(const UniqueFd& file)
{
    if (checkedMemoryFile(file) != LeasePageBytes)
        wire::malformed("a lease page of a wrong size");
    return LeasePageBytes;
}

}  // namespace

LeaseBook::LeaseBook()
    : _file(makeMemoryFile("tarvik-leases", LeasePageBytes))
    , _page(_file, LeasePageBytes, Mapping::Access::Write)
{
    at<std::uint32_t>(_page, 0).store(Magic);
    at<std::uint32_t>(_page, 4).store(PageVersion);
}

bool LeaseBook::isBack(std::uint32_t number) const
{
    // Acquire: the receiver's last read of the pixels comes before the next write there.
    return counter(_page, number).load(std::memory_order_acquire) ==
           _given[number].load(std::memory_order_relaxed);
}

std::uint64_t LeaseBook::taken() const
{
    return at<std::uint64_t>(_page, TakenAt).load(std::memory_order_acquire);
}

LeaseReturns::LeaseReturns(const UniqueFd& file)
    : _page(file, checkedPage(file), Mapping::Access::Write)
{
    if (at<std::uint32_t>(_page, 0).load() != Magic ||
        at<std::uint32_t>(_page, 4).load() != PageVersion)
        wire::malformed("a lease page that is none");
}

void LeaseReturns::giveBack(std::uint32_t number)
{
    counter(_page, number).fetch_add(1, std::memory_order_release);
}

void LeaseReturns::setTaken(std::uint64_t frames)
{
    at<std::uint64_t>(_page, TakenAt).store(frames, std::memory_order_release);
}

}  // namespace morvend::imglib
