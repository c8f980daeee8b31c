#ifndef TIMING_H
#define TIMING_H

#include <QTest>

/**
 * Fails the test when @p time is too early for a timer that was set at @p start for @p seconds.
 *
 * The start that a test knows may come after the timer was set, on a busy machine by a twentieth of
 * the time; a late timer says nothing but that the machine is busy.
 */
#define VERIFY_NOT_EARLY(time, start, seconds)                                                     \
    QVERIFY2((time) - (start) >= 0.95 * (seconds),                                                 \
             qPrintable(QStringLiteral("after %1 s").arg((time) - (start))))

#endif
