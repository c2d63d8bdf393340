// What most tests include; precompiled.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
