#ifndef FILES_H
#define FILES_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Writes @p content to @p path, making the folders on the way; fails the test when it cannot. */
void writeFile(const QString &path, const QByteArray &content);

/** The content of @p path, null where it cannot be read. */
QByteArray readFile(const QString &path);

/** Removes @p path, with everything inside where it is a folder. */
void removePath(const QString &path);

/** Removes everything inside @p folder, whatever it is. */
void emptyFolder(const QString &folder);

/**
 * Everything below @p folder, sorted: "name" for a folder, "name=content" for a file and
 * "name->target" for a link.
 */
QStringList snapshot(const QString &folder);

#endif
