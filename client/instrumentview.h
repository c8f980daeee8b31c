#ifndef INSTRUMENTVIEW_H
#define INSTRUMENTVIEW_H

#include "bus.h"

#include <QVariantMap>
#include <QVector>

/** The whole instrument as the daemon reports it. */
class InstrumentView
{
public:
    InstrumentView();

    /**
     * Queries everything. @return the answer that ended the queries, or a good one
     */
    Answer ask();

    /** Queries the values of @p interface again. */
    Answer ask(const QString &interface);

    /** The screen: a line for each feature of this model. */
    QString text() const;

    /** The values by their names for machines; null if the daemon has no value. */
    QVariantMap values() const;

private:
    Answer askAgain(int index);

    /** In the order of the queries. */
    QVector<Answer> m_answers;
};

#endif
