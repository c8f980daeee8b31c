#ifndef INSTRUMENTVIEW_H
#define INSTRUMENTVIEW_H

#include "bus.h"

#include <QVariantMap>
#include <QVector>

/** The values of the whole instrument, as the daemon returns them. */
class InstrumentView
{
public:
    InstrumentView();

    /** Queries all values. @return the error that ended the queries, or a good answer */
    Answer ask();

    /** Queries the values of @p interface again. Returns the last answer. */
    Answer ask(const QString &interface);

    /** Returns the screen: a line for each value. */
    QString text() const;

    /** Returns the values by their names in JSON. A value that the daemon does not have is null. */
    QVariantMap values() const;

private:
    Answer askAgain(int index);

    /** The answers, in the order of the queries. */
    QVector<Answer> m_answers;
};

#endif
