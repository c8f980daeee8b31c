#ifndef TIMING_H
#define TIMING_H

#include <QTest>

/**
 * Fails the test if @p time is too early for a timer that was set at @p start for @p seconds.
 *
 * On a busy machine, the test may notice the start too late: a twentieth of the time is tolerated.
 * For the same reason, a late timer is no failure.
 */
#define VERIFY_NOT_EARLY(time, start, seconds)                                                     \
    QVERIFY2((time) - (start) >= 0.95 * (seconds),                                                 \
             qPrintable(QStringLiteral("after %1 s").arg((time) - (start))))

#endif
