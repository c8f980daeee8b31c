#ifndef LINKTARGET_H
#define LINKTARGET_H

#include <QString>

#include <optional>

/**
 * Returns the absolute, clean target of the symbolic link at @p path; the target need not exist.
 * Returns nothing if there is no such link, or if @p path contains another link that must not
 * be followed (see trustedpath.h).
 *
 * Otherwise equivalent to QFile::symLinkTarget().
 */
std::optional<QString> linkTarget(const QString &path);

#endif
