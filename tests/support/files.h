#ifndef FILES_H
#define FILES_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * Writes @p content to @p path and creates missing parent directories; aborts the test on failure.
 */
void writeFile(const QString &path, const QByteArray &content);

/** The content of @p path, null if it cannot be read. */
QByteArray readFile(const QString &path);

/** Removes @p path, recursively if it is a directory. */
void removePath(const QString &path);

/** Removes everything inside @p directory. */
void emptyDirectory(const QString &directory);

/**
 * Lists everything below @p directory, sorted: "name" for a directory, "name=content" for a file
 * and "name->target" for a link.
 */
QStringList snapshot(const QString &directory);

#endif
