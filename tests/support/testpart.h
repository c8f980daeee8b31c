#ifndef TESTPART_H
#define TESTPART_H

#include <QMetaObject>
#include <QStringList>

/**
 * The arguments with which a test's program runs a part of its functions.
 *
 * @p part is "2/3" for the second of three parts, each with every third function; empty for all of
 * them. Arguments that are given already stay as they are, and are all that counts.
 */
QStringList argumentsOfPart(const QMetaObject &test, const QStringList &arguments,
                            const QString &part);

#endif
