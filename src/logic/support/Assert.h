// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The assertions of imagelib, for the rooms that build on this one.
#pragma once

#include "imagelib/image/Assert.h"
