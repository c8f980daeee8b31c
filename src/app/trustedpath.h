#ifndef TRUSTEDPATH_H
#define TRUSTEDPATH_H

#include "descriptor.h"

#include <QByteArray>

class QString;

/*
 * Opening paths of which others may own some directories.
 *
 * A symbolic link, anywhere in the path, is followed only if root or the process's own user owns
 * it: nobody else can lead us to what is not theirs. Each name is looked up in a directory that is
 * held open, so a link that takes a directory's place meanwhile changes nothing.
 */

/**
 * Opens @p path, seen from the directory @p from, with open flags @p flags.
 *
 * @return none with EPERM for a link that must not be followed, ELOOP for links in a circle, else
 *         with the error of the call that failed
 */
Descriptor openTrusted(int from, QByteArray path, int flags);

/** The directory @p path, as a place to look up names in (O_PATH). */
Descriptor openDirectory(const QByteArray &path);
Descriptor openDirectory(const QString &path);

/** The same, made with all missing parents where it does not exist. */
Descriptor makeDirectory(const QString &path);

#endif
