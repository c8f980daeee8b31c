#ifndef LINKSTORIES_H
#define LINKSTORIES_H

#include "linkexplorer.h"

#include <vector>

/**
 * A sequence of events, and a machine's reactions.
 *
 * Each line is "event answers | actions | link": the event, the results of the machine's actions,
 * the actions themselves, and the link afterwards.
 */
struct LinkStory {
    const char *name;
    LinkKind kind;
    std::vector<const char *> lines;
};

extern const std::vector<LinkStory> linkStories;

/**
 * Plays @p story on @p table. Returns the resulting lines; stops after the first that differs from
 * the story.
 */
QStringList tell(const LinkStory &story, const LinkTable &table);

#endif
