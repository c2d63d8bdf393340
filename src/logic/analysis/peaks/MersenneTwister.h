// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// The generator MT19937.
#pragma once

#include <vector>

/// Pseudo-random numbers by the Mersenne Twister MT19937 (Matsumoto and Nishimura, ACM Trans.
/// Model. Comput. Simul. 8, 3, 1998), with its usual constants.
class MersenneTwister {
public:
    explicit MersenneTwister(unsigned int seed);

    /// The next 32-bit word.
    unsigned int rand();

private:
    void __initialize();
    void _generate();

    unsigned int _seed;
    int _position;  // of the next word; 624 when all are used
    std::vector<unsigned int> _state;
};
