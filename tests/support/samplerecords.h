#ifndef SAMPLERECORDS_H
#define SAMPLERECORDS_H

#include <QVariantMap>

/** A valid record of the instrument: every text has its full length. */
QVariantMap instrumentRecord();

/** A valid record of the measure card: every coefficient that there may be, each one different. */
QVariantMap measureRecord();

#endif
