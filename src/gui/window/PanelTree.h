// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The panels beside the views.
#pragma once

#include <functional>

class ContainerSideBar;
class ImageDrawerMain;
class TarvikService;

/// Makes the panels of a view; the view and its service outlive them. Panels of two views fold
/// together if their keys are the same.
/// @param firstKey  the first of PanelKeys keys for them
/// @returns the root, empty if there are no panels
using PanelMaker = std::function<ContainerSideBar*(TarvikService& service, ImageDrawerMain& view,
                                                   unsigned long long firstKey)>;

/// Keys that the panels of a window may use.
constexpr unsigned long long PanelKeys = 16;

/// The panels of the program.
ContainerSideBar* makePanels(TarvikService& service, ImageDrawerMain& view,
                             unsigned long long firstKey);
