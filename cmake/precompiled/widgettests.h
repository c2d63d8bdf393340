// What most tests of windows include; precompiled.
#include "cmake/precompiled/tests.h"
#include "cmake/precompiled/widgets.h"

#include <QSignalSpy>
#include <QTest>
