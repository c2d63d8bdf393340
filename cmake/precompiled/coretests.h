// What most tests of rooms with Qt include; precompiled.
#include "cmake/precompiled/core.h"
#include "cmake/precompiled/tests.h"

#include <QImage>
#include <QSignalSpy>
#include <QTest>
