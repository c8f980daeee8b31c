#ifndef LINKMUTANTS_H
#define LINKMUTANTS_H

#include "linkmachine.h"

#include <QString>

#include <vector>

/** A table with one row changed or removed. */
struct LinkMutant {
    /** Which row, and what was done to it. */
    QString name;
    std::vector<LinkRow> rows;
};

/**
 * Every mutant of @p table: each row removed, with each other next state and next operation,
 * without each of its actions, with each two neighbouring actions exchanged, and without its
 * firmware flag and its condition.
 */
std::vector<LinkMutant> mutantsOf(const LinkTable &table);

#endif
