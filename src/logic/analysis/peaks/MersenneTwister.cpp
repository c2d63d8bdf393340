// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// State transition and tempering of MT19937.
#include "logic/analysis/peaks/MersenneTwister.h"

namespace {

constexpr std::size_t N = 624;
constexpr std::size_t M = 397;
constexpr unsigned int A[2] = {0, 0x9908B0DF};
constexpr unsigned int UpperBit = 0x80000000;
constexpr unsigned int LowerBits = 0x7FFFFFFF;

}  // namespace

MersenneTwister::MersenneTwister(unsigned int seed)
    : _seed(seed)
    , _position(0)
    , _state(N)
{
    __initialize();
}

void MersenneTwister::__initialize()
{
    _state[0] = _seed;
    for (unsigned int i = 1; i < N; ++i)
        _state[i] = 1812433253U * (_state[i - 1] ^ (_state[i - 1] >> 30)) + i;
    _position = N;
}

void MersenneTwister::_generate()
{
    for (std::size_t i = 0; i < N; ++i) {
        const unsigned int y = (_state[i] & UpperBit) | (_state[(i + 1) % N] & LowerBits);
        _state[i] = _state[(i + M) % N] ^ (y >> 1) ^ A[y & 1];
    }
    _position = 0;
}

unsigned int MersenneTwister::rand()
{
    if (_position >= static_cast<int>(N))
        _generate();
    unsigned int y = _state[static_cast<std::size_t>(_position++)];
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680U;
    y ^= (y << 15) & 0xEFC60000U;
    return y ^ (y >> 18);
}
