// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/detector/NextFileName.h"

#include "logic/detector/FileNamePattern.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <future>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <unordered_set>
#include <utility>

namespace {

/// A file that goes with this object.
class TempFile {
public:
    explicit TempFile(std::string path)
        : _path(std::move(path))
        , _stream(_path, std::ios::app)  // what a foreign file or link of that name holds stays
    {}
    ~TempFile()
    {
        std::error_code ignored;
        if (good())
            std::filesystem::remove(_path, ignored);
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    bool good() const { return _stream.good(); }

private:
    const std::string _path;
    std::ofstream _stream;
};

/// Which names a folder holds: a few are asked for one by one, after that all are read at once, as
/// thousands of questions take a network's file system long.
class TakenNames {
public:
    bool operator()(const std::string& path)
    {
        std::error_code ignored;
        if (++_asked < 16)
            return std::filesystem::exists(path, ignored);
        const std::filesystem::path file(path);
        if (_asked == 16)
            for (std::filesystem::directory_iterator each(file.parent_path(), ignored), end;
                 !ignored && each != end; each.increment(ignored))
                _names.insert(each->path().filename().string());
        return _names.contains(file.filename().string());
    }

private:
    int _asked = 0;
    std::unordered_set<std::string> _names;
};

/// Folders whose file systems have not answered yet. Never destroyed, since one of the threads that
/// were left may come back when the program ends.
class SilentFolders {
public:
    static SilentFolders& ofThisProcess()
    {
        static auto& folders = *new SilentFolders;
        return folders;
    }
    bool has(const std::string& folder)
    {
        const std::lock_guard lock(_mutex);
        return _folders.contains(folder);
    }
    void add(const std::string& folder)
    {
        const std::lock_guard lock(_mutex);
        _folders.insert(folder);
    }
    void remove(const std::string& folder)
    {
        const std::lock_guard lock(_mutex);
        _folders.erase(_folders.find(folder));
    }

private:
    std::mutex _mutex;
    std::multiset<std::string> _folders;
};

NextFileName lookedUp(const FileNamePattern& parts, const std::string& pattern)
{
    if (const TempFile test(parts.directory() + "/.morvend_tarvik_halvo_service_test.tmp");
        !test.good())
        return {{}, "Directory not writable"};
    if (const auto name = parts.firstFree(TakenNames()))
        return {*name, {}};
    return {{}, "Pattern " + pattern + " appears to often"};
}

}  // namespace

NextFileName nextFileName(const std::string& pattern, std::chrono::milliseconds patience)
try {
    const FileNamePattern parts(pattern);
    auto& silent = SilentFolders::ofThisProcess();
    NextFileName noAnswer{{}, "Directory " + parts.directory() + "/ does not answer"};
    if (silent.has(parts.directory()))
        return noAnswer;
    // Silent from the start, so that its thread is surely the last one to change that.
    silent.add(parts.directory());
    std::promise<NextFileName> promise;
    std::future<NextFileName> answer = promise.get_future();
    std::thread([parts, pattern, &silent, promise = std::move(promise)]() mutable {
        NextFileName found = lookedUp(parts, pattern);
        silent.remove(parts.directory());
        promise.set_value(std::move(found));
    }).detach();
    return answer.wait_for(patience) == std::future_status::ready ? answer.get() : noAnswer;
} catch (const std::exception& error) {
    return {{}, error.what()};
}
