#ifndef TESTPART_H
#define TESTPART_H

#include <QMetaObject>
#include <QStringList>

/**
 * Returns the arguments with which a test program runs a part of its functions.
 *
 * @p part is "2/3" for the second of three parts, each with every third function; empty for all
 * functions. Given arguments stay unchanged and disable the selection.
 */
QStringList argumentsOfPart(const QMetaObject &test, const QStringList &arguments,
                            const QString &part);

#endif
