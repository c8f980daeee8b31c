#ifndef BOARDREVISIONS_H
#define BOARDREVISIONS_H

#include <QVariantMap>

class IBoardRev;

/**
 * Returns the revisions of the board's parts by their names on the bus, without those that cannot
 * be read. Also passes the system-on-module's revision to the library.
 */
QVariantMap readRevisions(IBoardRev &board);

/** Passes the brand and the model of @p instrument, a valid record, to the library. */
void passInstrument(const QVariantMap &instrument, IBoardRev &board);

#endif
