// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "tests/logic/headerfiles/FaultyCalls.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <functional>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tarvik::tests::faulty {

namespace {

bool watching = false;
int countdown = 0;
Fault fault = Fault::Refused;
std::vector<std::string> names;

/// What the function of the system does with these arguments.
template <class Result, class... Arguments>
Result real(const char* name, Arguments... arguments)
{
    using Function = Result (*)(Arguments...);
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name))(arguments...);
}

/// @returns whether the call is to fail
bool fails(const char* name, const std::function<void()>& half = {})
{
    if (!watching)
        return false;
    names.emplace_back(name);
    if (countdown-- != 0)
        return false;
    if (fault == Fault::KillMidway && half)
        half();
    if (fault != Fault::Refused)
        ::raise(SIGKILL);
    errno = ENOSPC;
    return true;
}

}  // namespace

void begin(int number, Fault what)
{
    names.clear();
    countdown = number;
    fault = what;
    watching = true;
}

bool end()
{
    watching = false;
    return countdown < 0;
}

const std::vector<std::string>& seen() { return names; }

}  // namespace tarvik::tests::faulty

using tarvik::tests::faulty::fails;
using tarvik::tests::faulty::real;
using tarvik::tests::faulty::watching;

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list more;
    va_start(more, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(more, unsigned) : 0;
    va_end(more);
    return fails("open") ? -1 : real<int>("open", path, flags, mode);
}

int fcntl(int file, int command, ...)
{
    va_list more;
    va_start(more, command);
    const long argument = va_arg(more, long);
    va_end(more);
    return fails("fcntl") ? -1 : real<int>("fcntl", file, command, argument);
}

ssize_t read(int file, void* bytes, size_t size)
{
    return fails("read") ? -1 : real<ssize_t>("read", file, bytes, size);
}

ssize_t write(int file, const void* bytes, size_t size)
{
    const auto half = [&] { real<ssize_t>("write", file, bytes, size / 2); };
    return fails("write", half) ? -1 : real<ssize_t>("write", file, bytes, size);
}

ssize_t pwrite(int file, const void* bytes, size_t size, off_t at)
{
    const auto half = [&] { real<ssize_t>("pwrite", file, bytes, size / 2, at); };
    return fails("pwrite", half) ? -1 : real<ssize_t>("pwrite", file, bytes, size, at);
}

int fsync(int file) { return fails("fsync") ? -1 : watching ? 0 : real<int>("fsync", file); }

int fdatasync(int file)
{
    return fails("fdatasync") ? -1 : watching ? 0 : real<int>("fdatasync", file);
}

int close(int file)
{
    const int result = real<int>("close", file);
    return fails("close") ? -1 : result;
}

int rename(const char* from, const char* to) noexcept
{
    return fails("rename") ? -1 : real<int>("rename", from, to);
}

int unlink(const char* path) noexcept { return fails("unlink") ? -1 : real<int>("unlink", path); }

int ftruncate(int file, off_t size) noexcept
{
    return fails("ftruncate") ? -1 : real<int>("ftruncate", file, size);
}

int flock(int file, int operation) noexcept
{
    return fails("flock") ? -1 : real<int>("flock", file, operation);
}

int fchown(int file, uid_t user, gid_t group) noexcept
{
    return fails("fchown") ? -1 : real<int>("fchown", file, user, group);
}

int fchmod(int file, mode_t mode) noexcept
{
    return fails("fchmod") ? -1 : real<int>("fchmod", file, mode);
}

int stat(const char* path, struct stat* status) noexcept
{
    return fails("stat") ? -1 : real<int>("stat", path, status);
}

int fstat(int file, struct stat* status) noexcept
{
    return fails("fstat") ? -1 : real<int>("fstat", file, status);
}

int lstat(const char* path, struct stat* status) noexcept
{
    return fails("lstat") ? -1 : real<int>("lstat", path, status);
}

ssize_t flistxattr(int file, char* names, size_t size) noexcept
{
    return fails("flistxattr") ? -1 : real<ssize_t>("flistxattr", file, names, size);
}

ssize_t fgetxattr(int file, const char* name, void* value, size_t size) noexcept
{
    return fails("fgetxattr") ? -1 : real<ssize_t>("fgetxattr", file, name, value, size);
}

int fsetxattr(int file, const char* name, const void* value, size_t size, int flags) noexcept
{
    return fails("fsetxattr") ? -1 : real<int>("fsetxattr", file, name, value, size, flags);
}

}  // extern "C"
