#ifndef AIR_H
#define AIR_H

#include "accesspoint.h"

#include <QFileSystemWatcher>
#include <QObject>

/**
 * The access points around the instrument: a directory for each, with a small text file for each of
 * its properties, to be changed at any time by anybody.
 *
 * The directory of the air is STRANDEL_AIR of the environment, or /run/strandel-air.
 */
class Air : public QObject
{
    Q_OBJECT

public:
    /** Makes the directory with a handful of access points unless it is there. */
    Air();

    /** Everything as it is now. */
    const AccessPoints &accessPoints();

Q_SIGNALS:
    /** The files may say something new. */
    void changed();

private:
    void read();
    void watch();

    const QString m_directory;
    QFileSystemWatcher m_watcher;
    AccessPoints m_accessPoints;
};

#endif
