#ifndef LINKMUTANTS_H
#define LINKMUTANTS_H

#include "linkexplorer.h"

#include <QString>

#include <vector>

/** A table with one row changed or removed. */
struct LinkMutant {
    /** The row and its change. */
    QString name;
    std::vector<LinkRow> rows;
};

/**
 * Returns every mutant of @p table. Each mutant has one change in one row: the row removed, another
 * next state or operation, an action removed, two neighbouring actions exchanged, the firmware flag
 * or the condition removed, or one of the states or operations of @p uses removed.
 */
std::vector<LinkMutant> mutantsOf(const LinkTable &table, const LinkUses &uses);

#endif
