// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The two passes and the union-find tree.
#include "logic/analysis/roi/ConnectedComponentLabelling.h"

#include <algorithm>

void ConnectedComponentLabelling::label(const std::vector<bool>& field, std::vector<int>& labels,
                                        int width, int height)
{
    _width = width;
    _height = height;
    _labels = 0;
    _parent.assign(1, 0);
    _sizes.assign(1, 0);
    labels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);

    std::size_t position = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, ++position) {
            if (!field[position])
                continue;
            _findNeighbours(field, labels, x, y);
            if (_neighbourLabels[0] < 0) {
                labels[position] = _newLabel();
                continue;
            }
            const auto end = std::find(_neighbourLabels.begin(), _neighbourLabels.end(), -1);
            const int smallest = *std::min_element(_neighbourLabels.begin(), end);
            labels[position] = smallest;
            for (auto other = _neighbourLabels.begin(); other != end; ++other)
                _union(smallest, *other);
        }
    }
    for (int& each : labels)
        if (each > 0)
            each = _root(each);
}

void ConnectedComponentLabelling::_findNeighbours(const std::vector<bool>& field,
                                                  const std::vector<int>& labels, int x, int y)
{
    const std::ptrdiff_t here = std::ptrdiff_t(y) * _width + x;
    std::size_t positions = 0;
    if (x > 0)
        _neighbourPositions[positions++] = here - 1;
    if (x > 0 && y > 0)
        _neighbourPositions[positions++] = here - _width - 1;
    if (y > 0)
        _neighbourPositions[positions++] = here - _width;
    _neighbourPositions[positions] = -1;

    std::size_t found = 0;
    for (std::size_t i = 0; _neighbourPositions[i] >= 0; ++i) {
        const auto neighbour = static_cast<std::size_t>(_neighbourPositions[i]);
        if (field[neighbour])
            _neighbourLabels[found++] = labels[neighbour];
    }
    _neighbourLabels[found] = -1;
}

int ConnectedComponentLabelling::_newLabel()
{
    _parent.push_back(0);
    _sizes.push_back(0);
    return ++_labels;
}

int ConnectedComponentLabelling::_root(int label) const
{
    while (_parent[static_cast<std::size_t>(label)] > 0)
        label = _parent[static_cast<std::size_t>(label)];
    return label;
}

void ConnectedComponentLabelling::_union(int a, int b)
{
    const int rootA = _root(a);
    const int rootB = _root(b);
    if (rootA == rootB)
        return;
    int& sizeA = _sizes[static_cast<std::size_t>(rootA)];
    int& sizeB = _sizes[static_cast<std::size_t>(rootB)];
    sizeA = std::max(sizeA, 1);
    sizeB = std::max(sizeB, 1);
    if (sizeA < sizeB) {
        _parent[static_cast<std::size_t>(rootA)] = rootB;
        sizeB += sizeA;
    } else {
        _parent[static_cast<std::size_t>(rootB)] = rootA;
        sizeA += sizeB;
    }
}
