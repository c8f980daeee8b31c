#ifndef LINKTARGET_H
#define LINKTARGET_H

#include <QString>

/**
 * The absolute and clean target of the symbolic link at @p path, which need not exist; empty when
 * there is no such link, or one on the way to it must not be followed (see trustedpath.h).
 *
 * Otherwise the same as QFile::symLinkTarget().
 */
QString linkTarget(const QString &path);

#endif
