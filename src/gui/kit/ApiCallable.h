// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#pragma once

/// Marks a slot that scripts may call by its name; moc makes it the tag of the method.
#ifndef Q_MOC_RUN
#define API_CALLABLE
#endif
