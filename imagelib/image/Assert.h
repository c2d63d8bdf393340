// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Assertions of programmer errors, active in the product.
#pragma once

// A failed assertion prints the source expression and the file and ends the process. A packager's
// flags must not take the checks away, so NDEBUG has no effect here. tools/check-includes.py
// ensures that no assertion comes from elsewhere.
#undef NDEBUG
#include <cassert>
