#ifndef MODULEDELAY_H
#define MODULEDELAY_H

#include <QtGlobal>

class Daemon;
class ModeScript;

/**
 * Skips the two seconds that the daemon waits after each mode script. The test controls the
 * daemon's clock: Daemon::controlClock().
 */
class ModuleDelay
{
public:
    ModuleDelay(Daemon &daemon, ModeScript &script);
    Q_DISABLE_COPY(ModuleDelay)

    /** Forgets the scripts so far; for an empty log. */
    void reset();

    /**
     * Lets two seconds pass if another script has ended. Call it in the condition of a wait. A
     * delay that it misses takes two real seconds.
     */
    void skip();

private:
    Daemon &m_daemon;
    ModeScript &m_script;
    int m_skipped = 0;
};

#endif
