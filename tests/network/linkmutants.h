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
 * Returns every mutant of @p table: each row removed, with each other next state and operation,
 * without each of its actions, with two neighbouring actions exchanged, without its firmware flag
 * and its condition, and without each of the states and operations of @p uses.
 */
std::vector<LinkMutant> mutantsOf(const LinkTable &table, const LinkUses &uses);

#endif
