// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Pages in one place.
#pragma once

class QStackedLayout;

/// Shows a page; the others take no part in the size.
void showPage(QStackedLayout& pages, int index);
