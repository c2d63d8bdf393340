// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// memfd_create, seals and mmap.
#include "imagelib/ipc/SharedMemory.h"

#include "imagelib/ipc/WireBytes.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace morvend::imglib {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw MRuntimeException("Queue: " + what + ": " + std::generic_category().message(errno));
}

}  // namespace

Mapping::Mapping(const UniqueFd& file, std::size_t bytes, Access access)
{
    const int protection = access == Access::Write ? PROT_READ | PROT_WRITE : PROT_READ;
    void* data = ::mmap(nullptr, bytes, protection, MAP_SHARED | MAP_POPULATE, file.get(), 0);
    if (data == MAP_FAILED)
        fail("shared memory of " + std::to_string(bytes) + " bytes can't be mapped");
    _data = static_cast<std::byte*>(data);
    _size = bytes;
}

Mapping::~Mapping() { ::munmap(_data, _size); }

UniqueFd makeMemoryFile(const char* name, std::size_t bytes)
{
    UniqueFd file(::memfd_create(name, MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!file)
        fail("no shared memory");
    // Reserved here, so that lack of memory is an error of this call, not a signal later.
    if (::fallocate(file.get(), 0, 0, static_cast<off_t>(bytes)) != 0)
        fail("no shared memory of " + std::to_string(bytes) + " bytes");
    if (::fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        fail("shared memory can't be sealed");
    return file;
}

std::size_t checkedMemoryFile(const UniqueFd& file)
{
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        wire::malformed("a descriptor that is no memory file");
    const int seals = ::fcntl(file.get(), F_GET_SEALS);
    if (seals < 0)
        wire::malformed("a descriptor that is no memory file");
    if (!(seals & F_SEAL_SHRINK))
        wire::malformed("a memory file that is not sealed");
    constexpr off_t most = off_t(1) << 39;
    if (status.st_size <= 0 || status.st_size > most)
        wire::malformed("a memory file of " + std::to_string(status.st_size) + " bytes");
    // Reading a hole would fill it: memory that the sender has not reserved.
    if (status.st_blocks < status.st_size / 512)
        wire::malformed("a memory file with holes");
    return static_cast<std::size_t>(status.st_size);
}

}  // namespace morvend::imglib
