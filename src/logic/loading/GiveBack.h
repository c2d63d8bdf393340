// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Returns the memory that this process keeps for reuse.
#pragma once

/// Returns to the system what waits in pools of pixels, of shared memory and of the allocator.
/// Thread: any; takes some milliseconds.
void giveBackMemory();
