#ifndef FILES_H
#define FILES_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Writes @p content to @p path, making the directories on the way; fails the test when it cannot.
 */
void writeFile(const QString &path, const QByteArray &content);

/** The content of @p path, null where it cannot be read. */
QByteArray readFile(const QString &path);

/** Removes @p path, with everything inside where it is a directory. */
void removePath(const QString &path);

/** Removes everything inside @p directory, whatever it is. */
void emptyDirectory(const QString &directory);

/**
 * Everything below @p directory, sorted: "name" for a directory, "name=content" for a file and
 * "name->target" for a link.
 */
QStringList snapshot(const QString &directory);

#endif
