// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Reports of a job, and scans.
#include "logic/loading/LoaderContext.h"

#include "logic/support/Console.h"

#include <string>
#include <utility>

LoaderContext::LoaderContext(std::shared_ptr<LoaderDesk> desk)
    : session(desk->shown())
    , _desk(std::move(desk))
{}

void LoaderContext::abandon()
{
    _abandoned = true;
    session.cancel();
}

void LoaderContext::deliver(const LoaderData& record)
{
    _desk->deliver(*this, session.bounds(), record, session.openedAs());
}

void LoaderContext::fail(const std::string& message)
{
    _desk->fail(*this, session.bounds(), message);
}

void LoaderContext::notice(const std::string& message) { _desk->notice(*this, message); }

void LoaderContext::scan()
{
    scanQueued = false;
    const unsigned int number = requests.enter({.what = {}, .reads = true});
    requests.begin(number);
    try {
        session.scan();
        _scanFailure.clear();
    } catch (const std::exception& error) {
        // The known state of the series stays; a picture of it is on the screen. A folder that
        // can't be reached would be reported ten times a second.
        if (std::exchange(_scanFailure, error.what()) != error.what())
            console::warn("WARNING: " + _scanFailure + '\n');
    }
    requests.leave(number);
    _desk->scanned(*this, session.bounds());
}

void LoaderContext::listReadAhead()
{
    listQueued = false;
    auto list = session.listReadAhead();
    _desk->readAhead(*this, list ? std::make_shared<const ReadAhead>(std::move(*list)) : nullptr);
}
