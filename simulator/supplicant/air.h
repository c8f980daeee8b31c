#ifndef AIR_H
#define AIR_H

#include "accesspoint.h"

#include <QFileSystemWatcher>
#include <QObject>

/**
 * The access points around the instrument: one directory for each, with a small text file for each
 * property. The files can be changed at any time.
 *
 * The environment variable STRANDEL_AIR names the parent of these directories; the default is
 * /run/strandel-air.
 */
class Air : public QObject
{
    Q_OBJECT

public:
    /** Creates the parent directory with several access points unless it exists. */
    Air();

    /** Returns the current access points. */
    const AccessPoints &accessPoints();

Q_SIGNALS:
    /** The files may have changed. */
    void changed();

private:
    void read();
    void watch();

    const QString m_directory;
    QFileSystemWatcher m_watcher;
    AccessPoints m_accessPoints;
};

#endif
