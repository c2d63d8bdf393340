// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// Words, numbers and quantities of header texts, independent of the locale.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace morvend::imglib {

/// White space and control characters, a NUL included.
inline bool isBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }
inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
inline bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// A text without the blanks around it.
std::string_view trimmed(std::string_view text);
/// True if two texts are equal apart from the case of ASCII letters.
bool sameWord(std::string_view left, std::string_view right);

using Words = std::vector<std::string_view>;
/// The words of a line, without blanks, brackets, quotes and # : = ;. A comma ends a word only
/// before a blank unless `splitAtCommas`, so that "0,5" stays one word, which isn't a number, and
/// is not read as 0.
Words wordsOf(std::string_view line, bool splitAtCommas = false);

/// Reads a decimal number such as "172e-6" or "+1.5" that fills the whole text. False, with `value`
/// untouched, for anything else and for values beyond a double.
bool parseNumber(std::string_view text, double& value);

/// A unit and the factor to the unit of a field.
struct Unit {
    std::string_view name;
    double factor;
};
using Units = std::span<const Unit>;

/// Units of a photon energy in eV.
inline constexpr Unit EnergyUnits[] = {{"eV", 1}, {"keV", 1e3}};
/// Photon energy in eV times wavelength in Angstrom.
inline constexpr double ElectronVoltAngstrom = 12398.42;

/// The factor of a unit's name, if it is one of `units`.
std::optional<double> factorOf(std::string_view word, Units units);

/// Between two numbers, as in "172 x 172": the multiplication sign.
inline constexpr std::string_view Times = "\xc3\x97";

/// A number and the unit after it, which may be glued to it or be the next word.
struct Quantity {
    double value = 0;
    std::optional<double> factor;  ///< of its unit, if it has one
    std::size_t words = 1;         ///< how many words the two take
};
/// The quantity that begins at word number `at`. Nothing if there is no number, or if a word
/// follows that is not in `units`: its meaning is then unknown. A number or an "x" may
/// follow.
std::optional<Quantity> quantityAt(const Words& words, std::size_t at, Units units);

}  // namespace morvend::imglib
