#ifndef BOARDREVISIONS_H
#define BOARDREVISIONS_H

#include <QVariantMap>

class IBoardRev;

/**
 * The revisions of the board's parts, by the names that clients know, without those that cannot be
 * read. The library is told that of the system-on-module.
 */
QVariantMap readRevisions(IBoardRev &board);

#endif
