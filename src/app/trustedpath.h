#ifndef TRUSTEDPATH_H
#define TRUSTEDPATH_H

#include "descriptor.h"

#include <QByteArray>

class QString;

/*
 * Opening paths through directories that other accounts may own.
 *
 * A symbolic link anywhere in the path is followed only if root or the daemon's user owns it, so no
 * other account can redirect us. Each component is looked up in the open directory before it, so
 * another account gains nothing by replacing a directory with a link meanwhile.
 */

/**
 * Opens @p path relative to the directory @p from, with open flags @p flags.
 *
 * @return on failure no descriptor; error() is then EPERM for a link that must not be followed,
 *         ELOOP for a loop of links, otherwise the errno of the call that failed
 */
Descriptor openTrusted(int from, QByteArray path, int flags);

/** Opens the directory @p path for looking up names (O_PATH). */
Descriptor openDirectory(const QByteArray &path);
Descriptor openDirectory(const QString &path);

/** Opens the directory @p path for looking up names; creates it and its missing parents. */
Descriptor makeDirectory(const QString &path);

#endif
