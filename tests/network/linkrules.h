#ifndef LINKRULES_H
#define LINKRULES_H

#include "linkexplorer.h"

#include <vector>

/** The rules for every step of a machine. */
struct LinkRule {
    const char *text;
    bool (*holds)(const LinkOutcome &outcome, LinkKind kind);
};

extern const std::vector<LinkRule> linkRules;

#endif
