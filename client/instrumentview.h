#ifndef INSTRUMENTVIEW_H
#define INSTRUMENTVIEW_H

#include "bus.h"

#include <QVariantMap>
#include <QVector>

/** The whole instrument as the daemon tells of it. */
class InstrumentView
{
public:
    InstrumentView();

    /** Asks for everything. @return the answer that ended it, or a good one */
    Answer ask();

    /** Asks again for what @p interface tells of. */
    Answer ask(const QString &interface);

    /** The screen: a line for each thing that this model has. */
    QString text() const;

    /** The values by the names that machines know them by; null where there is nothing to tell. */
    QVariantMap values() const;

private:
    Answer askAgain(int index);

    /** In the order of the questions. */
    QVector<Answer> m_answers;
};

#endif
