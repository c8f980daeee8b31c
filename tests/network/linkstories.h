#ifndef LINKSTORIES_H
#define LINKSTORIES_H

#include "linkexplorer.h"

#include <vector>

/**
 * A course of events, and all that a machine makes of it.
 *
 * Each line is "event answers | actions | link": what happens, how the machine's questions are
 * answered in their order, what it does, and what the link is afterwards.
 */
struct LinkStory {
    const char *name;
    LinkKind kind;
    std::vector<const char *> lines;
};

extern const std::vector<LinkStory> linkStories;

/** The lines of @p story as @p table tells them, up to the first that differs.
 */
QStringList tell(const LinkStory &story, const LinkTable &table);

#endif
