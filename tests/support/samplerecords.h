#ifndef SAMPLERECORDS_H
#define SAMPLERECORDS_H

#include <QVariantMap>

/** A valid instrument record with texts of their full length. */
QVariantMap instrumentRecord();

/** A valid measure record with the maximum number of coefficients, all different. */
QVariantMap measureRecord();

#endif
