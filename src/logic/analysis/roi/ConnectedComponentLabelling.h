// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Connected components of a bit field.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// Labels the connected components of a bit field in two passes with a union-find tree, as Hoshen
/// and Kopelman do (Phys. Rev. B 14, 3438, 1976). The neighbours of a pixel are the left, the upper
/// left and the upper one, not the upper right one: a diagonal from upper left to lower right is
/// one component, the other diagonal is not.
class ConnectedComponentLabelling {
public:
    /// Writes for each set bit the label of its component, at least 1 and not consecutive, and 0
    /// elsewhere. Bit i is pixel (i mod width, i / width); `labels` is resized to width * height.
    void label(const std::vector<bool>& field, std::vector<int>& labels, int width, int height);

private:
    using Few = std::array<int, 4>;  // ended by -1

    void _findNeighbours(const std::vector<bool>& field, const std::vector<int>& labels, int x,
                         int y);
    int _newLabel();
    int _root(int label) const;
    void _union(int a, int b);

    std::vector<int> _parent;  // by label; 0 for a root
    std::vector<int> _sizes;   // by root; 0 before its first union
    int _width = 0;
    int _height = 0;
    int _labels = 0;
    std::array<std::ptrdiff_t, 4> _neighbourPositions{};
    Few _neighbourLabels{};
};
