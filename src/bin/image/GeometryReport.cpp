// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Text and JSON about distances, resolutions and rings.
#include "bin/image/GeometryReport.h"

#include "bin/image/JsonText.h"

#include <ostream>

namespace tarvik::tool {

GeometryReport::GeometryReport(const Arguments& arguments)
    : _chosen(arguments)
    , _rings(geometry::adviseRings(_header(), _chosen.image.width(), _chosen.image.height(),
                                   arguments.rings))
{
    for (const auto& [x, y] : arguments.places)
        _places.push_back({x, y, geometry::distance(_header(), x, y),
                           geometry::resolution(_header(), x, y),
                           geometry::powderRadius(_header(), x, y)});
}

void GeometryReport::writeJson(std::ostream& out) const
{
    const auto centreIf = [&](bool defined) {
        return defined ? '[' + jsonOf(*_header().beam_center_x()) + ", " +
                             jsonOf(*_header().beam_center_y()) + ']'
                       : std::string("null");
    };
    std::string places;
    for (const Place& place : _places) {
        JsonObject object;
        object.add("x", jsonOf(place.x));
        object.add("y", jsonOf(place.y));
        object.add("distance", jsonOf(place.distance));
        object.add("resolution", jsonOf(place.resolution));
        object.add("powderRadius", jsonOf(place.powderRadius));
        places += (places.empty() ? "" : ", ") + object.text();
    }
    std::vector<std::string> labels;
    for (const QString& label : _rings.labels)
        labels.push_back(label.toStdString());
    JsonObject rings;
    rings.add("centre", centreIf(geometry::resolutionDefined(_header())));
    rings.add("radii", jsonOf(_rings.radii));
    rings.add("labels", jsonOf(labels));

    JsonObject object;
    object.add("distanceDefined", jsonOf(geometry::distanceDefined(_header())));
    object.add("resolutionDefined", jsonOf(geometry::resolutionDefined(_header())));
    object.add("powderPlotDefined", jsonOf(geometry::beamCentreDefined(_header())));
    object.add("beamCentre", centreIf(geometry::beamCentreDefined(_header())));
    object.add("at", '[' + places + ']');
    object.add("rings", rings.text());
    out << object.text() << '\n';
}

void GeometryReport::writeText(std::ostream& out) const
{
    const auto known = [](bool defined) { return defined ? "known" : "not known"; };
    out << "Beam centre           ";
    if (geometry::beamCentreDefined(_header()))
        out << ImageNumber(*_header().beam_center_x()).text() << ", "
            << ImageNumber(*_header().beam_center_y()).text() << " pixels\n";
    else
        out << "not known\n";
    out << "Distances             " << known(geometry::distanceDefined(_header())) << '\n'
        << "Resolutions           " << known(geometry::resolutionDefined(_header())) << '\n';
    for (const Place& place : _places) {
        out << "At " << place.x << ',' << place.y << ':';
        if (geometry::beamCentreDefined(_header()))
            out << "  " << place.powderRadius << " pixels";
        if (geometry::distanceDefined(_header()))
            out << "  " << ImageNumber(place.distance * 1000).text() << " mm";
        if (geometry::resolutionDefined(_header()))
            out << "  " << ImageNumber(place.resolution).text() << " A";
        out << '\n';
    }
    for (std::size_t i = 0; i < _rings.radii.size(); ++i)
        out << "Ring " << _rings.labels[i].toStdString() << ": radius "
            << ImageNumber(_rings.radii[i]).text() << " pixels\n";
}

}  // namespace tarvik::tool
