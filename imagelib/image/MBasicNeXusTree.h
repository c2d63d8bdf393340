// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The metadata tree of a NeXus file: small values by absolute path, without the image data.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace morvend::nexus {

/// A value of a data set or of an attribute; monostate is a group.
using Value =
    std::variant<std::monostate, std::int64_t, double, std::string, std::vector<std::int64_t>,
                 std::vector<double>, std::vector<std::string>>;

/// A group or a data set with its attributes by name.
struct Node {
    Value value;
    std::map<std::string, Value> attributes;
};

/// Nodes by absolute path, such as "/entry/instrument/beam/wavelength". Groups in between need no
/// node of their own; one with an NX_class attribute has it. Images and masks are not held here.
class MBasicNeXusTree {
public:
    bool empty() const { return _nodes.empty(); }
    void clear() { _nodes.clear(); }

    const std::map<std::string, Node>& nodes() const { return _nodes; }
    /// The node of a path, null if it doesn't exist.
    const Node* find(const std::string& path) const;
    /// The node of a path, created if it doesn't exist.
    Node& node(const std::string& path) { return _nodes[path]; }

    /// Sets a scalar; `units` becomes its attribute unless empty.
    void setNumber(const std::string& path, double value, const std::string& units = {});
    void setText(const std::string& path, const std::string& text);

    /// One line a node, "path = value [units]", sorted by path.
    std::string toText() const;

private:
    std::map<std::string, Node> _nodes;
};

}  // namespace morvend::nexus
