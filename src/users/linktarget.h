#ifndef LINKTARGET_H
#define LINKTARGET_H

#include <QString>

/**
 * Returns the absolute, clean target of the symbolic link at @p path; the target need not exist.
 * Returns an empty text if there is no such link, or if @p path contains another link that must not
 * be followed (see trustedpath.h).
 *
 * Otherwise equivalent to QFile::symLinkTarget().
 */
QString linkTarget(const QString &path);

#endif
