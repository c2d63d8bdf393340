// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/support/PacedCalls.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

TEST(PacedCalls, OtherEventsComeBetweenLongCallsWhichStayInOrder)
{
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    QCoreApplication application(count, arguments);
    std::string order;
    QEventLoop loop;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, [&] { order += '.'; });
    ticks.start(1);
    QObject receiver;
    auto leaver = std::make_unique<QObject>();
    const auto longCall = [&](char letter) {
        return [&order, letter] {
            QElapsedTimer clock;
            clock.start();
            while (clock.elapsed() < 50) {
            }
            order += letter;
        };
    };
    // Queued, as from other threads: without pacing one turn would do them all.
    for (const char letter : {'a', 'b', 'x', 'c'})
        QMetaObject::invokeMethod(
            &receiver,
            [&, letter] {
                PacedCalls::ofThisProcess().call(letter == 'x' ? leaver.get() : &receiver,
                                                 longCall(letter));
                if (letter == 'x')
                    leaver.reset();
            },
            Qt::QueuedConnection);
    QMetaObject::invokeMethod(
        &receiver,
        [&] { PacedCalls::ofThisProcess().call(&receiver, [&] { order += 'e', loop.quit(); }); },
        Qt::QueuedConnection);
    loop.exec();

    std::string letters;
    for (const char each : order)
        if (each != '.')
            letters += each;
    EXPECT_EQ(letters, "abce");
    EXPECT_NE(order.find('.', order.find('a')), std::string::npos);
    EXPECT_LT(order.find('.', order.find('a')), order.find('b')) << order;
    EXPECT_LT(order.find('.', order.find('b')), order.find('c')) << order;
}

}  // namespace
