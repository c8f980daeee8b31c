#ifndef LINKSTORIES_H
#define LINKSTORIES_H

#include "linkexplorer.h"

#include <vector>

/**
 * A sequence of events, and a machine's reactions.
 *
 * Each line is "event answers | actions | link": the event, the results of the machine's actions
 * in order, its actions, and the link afterwards.
 */
struct LinkStory {
    const char *name;
    LinkKind kind;
    std::vector<const char *> lines;
};

extern const std::vector<LinkStory> linkStories;

/** The lines of @p story as @p table produces them, up to the first difference. */
QStringList tell(const LinkStory &story, const LinkTable &table);

#endif
