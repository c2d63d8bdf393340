// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Finds the files of a batch and goes through them.
#include "logic/headerfiles/WriteHeaderToFilesThread.h"

#include <QMutexLocker>

#include <algorithm>
#include <exception>
#include <memory>

#include <dirent.h>
#include <sys/stat.h>

WriteHeaderToFilesThread::~WriteHeaderToFilesThread()
{
    abort();
    wait();
}

void WriteHeaderToFilesThread::setNeXuS(const Header& header, int index)
{
    const QMutexLocker lock(&_mutex);
    _writer.setNeXuS(header);
    _index = index;
}

void WriteHeaderToFilesThread::setImageSeries(const std::string& directory,
                                              const std::string& prefix, const std::string& suffix,
                                              unsigned long digits)
{
    const QMutexLocker lock(&_mutex);
    _files = {directory, prefix, suffix, digits};
}

std::string WriteHeaderToFilesThread::Files::name(long long number) const
{
    std::string text = std::to_string(number);
    if (text.size() < digits)
        text.insert(0, digits - text.size(), '0');
    return directory + '/' + prefix + text + '.' + suffix;
}

bool WriteHeaderToFilesThread::Files::exists(long long number) const
{
    struct stat status = {};
    return ::stat(name(number).c_str(), &status) == 0;
}

long long WriteHeaderToFilesThread::Files::count() const
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(directory.c_str()), ::closedir);
    long long entries = 0;
    while (folder && ::readdir(folder.get()))
        ++entries;
    return entries;
}

bool WriteHeaderToFilesThread::_find(const Files& files, int index, Range& range) const
{
    // A series has no more numbers than its folder has entries.
    const long long entries = files.count();
    range.highest = index + entries - 1;
    while (!aborted() && range.highest >= 1 && !files.exists(range.highest))
        --range.highest;
    if (aborted() || range.highest < 1)
        return false;
    range.lowest = std::max<long long>(index - entries, 0);
    while (!aborted() && range.lowest < range.highest && !files.exists(range.lowest))
        ++range.lowest;
    return !aborted();
}

void WriteHeaderToFilesThread::run()
{
    QMutexLocker lock(&_mutex);
    CbfHeaderWriter writer = _writer;
    const Files files = _files;
    const int index = _index;
    lock.unlock();

    HeaderBatch batch(mode(), journalFolder());
    Range range = {};
    if (_find(files, index, range)) {
        try {
            batch.lock(files.directory);
            _walk(files, range, writer, index, batch);
        } catch (const std::exception& error) {
            print(error);
            HeaderReport report;
            report.failed(error.what());
            return setReport(report);
        }
    }
    setReport(batch.report());
}

void WriteHeaderToFilesThread::_walk(const Files& files, const Range& range, CbfHeaderWriter writer,
                                     int index, HeaderBatch& batch)
{
    const int total = static_cast<int>(range.highest - range.lowest + 1);
    emit progress(0, total);
    for (int i = 0; i < total && !aborted(); ++i) {
        const long long number = range.lowest + i;
        Header header = writer.header();
        // The writer keeps the header, so each angle builds on the one of the file before.
        if (header.rotation_angle() && header.rotation_angle_step()) {
            header.set_rotation_angle(*header.rotation_angle() +
                                      static_cast<float>(number - index) *
                                          *header.rotation_angle_step());
            writer.setNeXuS(header);
        }
        try {
            batch.write(files.name(number), writer);
        } catch (const std::exception& error) {
            print(error);
        }
        emit progress(i + 1, total);
    }
}
