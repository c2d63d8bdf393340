// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Where journals are.
#pragma once

#include <string>
#include <vector>

/// The folder of journals, which are numbered in the order of their batches.
namespace journal_folder {

/// Those that are there, rising; none if the folder can't be read.
std::vector<long> numbers(const std::string& folder);
std::string name(const std::string& folder, long number);
/// Makes the folder, for its user alone, if it isn't there.
void make(const std::string& folder);
/// Puts its list of files on the disk.
void sync(const std::string& folder);

}  // namespace journal_folder
