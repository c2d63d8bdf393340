// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "imagelib/control/MHalvoFileWriter.h"

#include "imagelib/control/UnitClient.h"

#include <nlohmann/json.hpp>

namespace morvend::imglib {
namespace {

constexpr char Switch[] = "filewriter/parameters/enabled";

}  // namespace

MHalvoFileWriter::MHalvoFileWriter(const std::string& host, int port)
    : _unit(std::make_unique<UnitClient>(host, port))
{}

MHalvoFileWriter::~MHalvoFileWriter() = default;

bool MHalvoFileWriter::enabled(const Cancel& cancel) { return _unit->flag(Switch, cancel); }

void MHalvoFileWriter::setEnabled(bool enabled, const Cancel& cancel)
{
    _unit->set(Switch, enabled, cancel);
}

}  // namespace morvend::imglib
